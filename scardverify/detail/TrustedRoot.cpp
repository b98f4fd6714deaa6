#include "TrustedRoot.h"

#include "KeyIdentifier.h"

namespace scard::verify::detail {

std::shared_ptr<const RsaPublicKey> rootKeyG1(const QByteArray& bytes)
{
    if (bytes.size() != keyIdentifierLength + RsaPublicKey::modulusLength + RsaPublicKey::exponentLength)
        return nullptr;
    return RsaPublicKey::make(
        bytes.mid(keyIdentifierLength, RsaPublicKey::modulusLength),
        bytes.right(RsaPublicKey::exponentLength));
}

std::vector<TrustedRoot> trustedRoots(const std::vector<RootKey>& roots)
{
    std::vector<TrustedRoot> trusted;
    for (const RootKey& root : roots) {
        TrustedRoot each{root, nullptr, std::nullopt};
        if (root.generation == Generation::First)
            each.rsaKey = rootKeyG1(root.bytes);
        else
            each.certificate = parseCertificateG2(root.bytes);
        const bool hasKey = each.rsaKey || (each.certificate && each.certificate->key());
        // Certificates name their issuer by what stands in the root's own bytes.
        each.root.keyIdentifier =
            each.certificate ? each.certificate->holder : root.bytes.left(keyIdentifierLength);
        if (hasKey)
            trusted.push_back(std::move(each));
    }
    return trusted;
}

} // namespace scard::verify::detail
