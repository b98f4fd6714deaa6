#pragma once

#include "CertificateG2.h"
#include "RsaPublicKey.h"

#include <scardverify/RootKey.h>

#include <memory>
#include <optional>
#include <vector>

namespace scard::verify::detail {

/// A root key that is ready to check with.
struct TrustedRoot
{
    RootKey root;
    std::shared_ptr<const RsaPublicKey> rsaKey; ///< first generation
    std::optional<CertificateG2> certificate;   ///< second generation
};

/// Of @p roots those whose bytes are a key.
std::vector<TrustedRoot> trustedRoots(const std::vector<RootKey>& roots);

/// The key in the 144 bytes of the first generation's root; null for other bytes.
std::shared_ptr<const RsaPublicKey> rootKeyG1(const QByteArray& bytes);

} // namespace scard::verify::detail
