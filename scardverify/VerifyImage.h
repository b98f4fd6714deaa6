#pragma once

#include <scardverify/Export.h>
#include <scardverify/RootKey.h>
#include <scardverify/VerificationReport.h>

#include <QByteArray>
#include <QDateTime>

#include <vector>

namespace scard::verify {

/// Checks whether a download came from a card, unchanged: the signature behind each signed EF, and the
/// certificates up to a root key (Appendix 11 of Annexes 1B and 1C). It needs the file alone, neither card
/// nor network, and takes any bytes. It never fails: what cannot be judged is a finding. Any thread may ask.
/// @param image        the bytes of the file
/// @param roots        the keys that are trusted, of both generations; without any no download is Genuine
/// @param downloadedAt when the card was downloaded, for the validity of the certificates; null when that is
///                     not known, then their dates are told and not judged
SCARDVERIFY_EXPORT VerificationReport
verifyImage(const QByteArray& image, const std::vector<RootKey>& roots, const QDateTime& downloadedAt = {});

} // namespace scard::verify
