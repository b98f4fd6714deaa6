#pragma once

#include "FileRules.h"
#include "Findings.h"
#include "ImageApplications.h"
#include "PublicKey.h"
#include "TrustedRoot.h"

#include <map>
#include <memory>
#include <vector>

namespace scard::verify::detail {

/// What a chain is checked against.
struct ChainRequest
{
    const ImageApplication& application;
    const Expected& expected;
    const std::vector<TrustedRoot>& roots;
    const QDateTime& downloadedAt;
};

/// Bytes of an EF.
struct Stretch
{
    int begin = 0; ///< in the payload
    int length = 0;
};

/// The way from the root key to the card, as far as it holds.
struct Chain
{
    std::vector<CertificateReport> certificates;
    std::shared_ptr<const PublicKey> cardKey; ///< that signs the EFs; null when it cannot be known
    QByteArray card;                          ///< extended serial number that the certificates name; or empty
    /// By the EFs whose certificate holds: what of them nothing vouches for all the same.
    std::map<unsigned short, std::vector<Stretch>> covered;
};

Chain checkChainG1(const ChainRequest& request, Findings& findings);
Chain checkChainG2(const ChainRequest& request, Findings& findings);

} // namespace scard::verify::detail
