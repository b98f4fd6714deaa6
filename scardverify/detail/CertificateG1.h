#pragma once

#include "RsaPublicKey.h"

#include <QDateTime>

#include <memory>
#include <optional>

namespace scard::verify::detail {

/// What a certificate of the first generation says (Annex 1B, Appendix 11). The most of it lies inside the
/// signature, so only the key of the issuer brings it to light.
struct CertificateG1
{
    static constexpr int length = 194; ///< bytes: signature 128, rest of the content 58, issuer 8

    int profile = 0;                         ///< 1
    QByteArray issuer;                       ///< key identifier (CAR)
    QByteArray authorisation;                ///< application name and equipment type (CHA)
    QDateTime validUntil;                    ///< null when it has no end
    QByteArray holder;                       ///< key identifier (CHR)
    std::shared_ptr<const RsaPublicKey> key; ///< null when its numbers are no key
};

/// What came of opening a certificate.
struct OpenedG1
{
    Check check = Check::Fails; ///< whether it was signed with the key
    CertificateG1 content;      ///< what it says, when that holds
};

/// Opens the certificate at the front of @p file with the key of its issuer (ISO 9796-2, partial message
/// recovery).
OpenedG1 openCertificateG1(const QByteArray& file, const RsaPublicKey& issuer);

/// The key identifier that stands in clear at the end of the certificate at the front of @p file.
QByteArray issuerBehind(const QByteArray& file);

} // namespace scard::verify::detail
