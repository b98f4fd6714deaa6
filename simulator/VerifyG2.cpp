#include "VerifyG2.h"

#include <memory>
#include <openssl/core_names.h>
#include <openssl/ecdsa.h>
#include <openssl/evp.h>
#include <openssl/param_build.h>

namespace sim {

namespace {

/// "SMRDT" behind FF, root.
constexpr std::uint8_t RootAuthorisation[] = {0xFF, 0x53, 0x4D, 0x52, 0x44, 0x54, 0x0D};

/// Takes data objects off the front of a byte string.
class Objects
{
  public:
    explicit Objects(const Bytes& bytes) : m_bytes(bytes) {}

    bool atEnd() const { return m_offset == m_bytes.size(); }

    /// The value of the next object; nullopt when it has another tag, a length not in its shortest form, or
    /// runs beyond the end.
    std::optional<Bytes> next(const Bytes& tag)
    {
        std::size_t at = m_offset;
        for (const std::uint8_t byte : tag) {
            if (at >= m_bytes.size() || m_bytes[at++] != byte) {
                return std::nullopt;
            }
        }
        if (at >= m_bytes.size()) {
            return std::nullopt;
        }
        std::size_t length = m_bytes[at++];
        if (length > 0x7F) {
            const std::size_t bytes = length - 0x80;
            const std::size_t smallest = bytes == 1 ? 0x80 : 0x100;
            if (bytes < 1 || bytes > 2 || m_bytes.size() - at < bytes) {
                return std::nullopt;
            }
            length = bytes == 1 ? m_bytes[at] : readU16(m_bytes, at);
            at += bytes;
            if (length < smallest) {
                return std::nullopt;
            }
        }
        if (length > m_bytes.size() - at) {
            return std::nullopt;
        }
        m_offset = at + length;
        return slice(m_bytes, at, length);
    }

    /// The same, of a fixed length.
    std::optional<Bytes> next(const Bytes& tag, std::size_t length)
    {
        std::optional<Bytes> value = next(tag);
        return value && value->size() == length ? value : std::nullopt;
    }

    std::size_t offset() const { return m_offset; }

  private:
    const Bytes& m_bytes;
    std::size_t m_offset = 0;
};

std::optional<PublicKeyG2> parsePublicKey(const Bytes& bytes)
{
    Objects objects(bytes);
    const auto oid = objects.next({0x06});
    const auto point = objects.next({0x86});
    if (!oid || !point || !objects.atEnd()) {
        return std::nullopt;
    }
    for (const CurveDescription& row : curves()) {
        if (*oid == row.oid && point->size() == row.pointLength() && point->front() == 0x04) {
            return PublicKeyG2{row.curve, *point};
        }
    }
    return std::nullopt;
}

std::optional<CertificateContentG2> parseBody(const Bytes& body)
{
    Objects objects(body);
    const auto profile = objects.next({0x5F, 0x29}, 1);
    const auto authority = objects.next({0x42}, 8);
    const auto authorisation = objects.next({0x5F, 0x4C}, 7);
    const auto publicKey = objects.next({0x7F, 0x49});
    const auto holder = objects.next({0x5F, 0x20}, 8);
    const auto effective = objects.next({0x5F, 0x25}, 4);
    const auto expires = objects.next({0x5F, 0x24}, 4);
    if (!profile || !authority || !authorisation || !publicKey || !holder || !effective || !expires ||
        !objects.atEnd()) {
        return std::nullopt;
    }
    const auto key = parsePublicKey(*publicKey);
    if (!key) {
        return std::nullopt;
    }
    CertificateContentG2 content;
    content.profile = profile->front();
    content.authority = *authority;
    content.authorisation = *authorisation;
    content.key = *key;
    content.holder = *holder;
    content.effective = readU32(*effective, 0);
    content.expires = readU32(*expires, 0);
    return content;
}

struct Certificate
{
    CertificateContentG2 content;
    Bytes signedPart;
    Bytes signature;
};

std::optional<Certificate> parse(const Bytes& bytes)
{
    Objects outer(bytes);
    const auto inside = outer.next({0x7F, 0x21});
    if (!inside || !outer.atEnd()) {
        return std::nullopt;
    }
    Objects parts(*inside);
    const auto body = parts.next({0x7F, 0x4E});
    const std::size_t bodyEnd = parts.offset();
    const auto signature = parts.next({0x5F, 0x37});
    if (!body || !signature || !parts.atEnd()) {
        return std::nullopt;
    }
    const auto content = parseBody(*body);
    if (!content) {
        return std::nullopt;
    }
    return Certificate{*content, slice(*inside, 0, bodyEnd), *signature};
}

std::shared_ptr<EVP_PKEY> importKey(const PublicKeyG2& key)
{
    const std::unique_ptr<OSSL_PARAM_BLD, decltype(&OSSL_PARAM_BLD_free)> builder(
        OSSL_PARAM_BLD_new(), &OSSL_PARAM_BLD_free);
    if (!builder ||
        OSSL_PARAM_BLD_push_utf8_string(
            builder.get(), OSSL_PKEY_PARAM_GROUP_NAME, describe(key.curve).groupName, 0) != 1 ||
        OSSL_PARAM_BLD_push_octet_string(
            builder.get(), OSSL_PKEY_PARAM_PUB_KEY, key.point.data(), key.point.size()) != 1) {
        return nullptr;
    }
    const std::unique_ptr<OSSL_PARAM, decltype(&OSSL_PARAM_free)> parameters(
        OSSL_PARAM_BLD_to_param(builder.get()), &OSSL_PARAM_free);
    const std::unique_ptr<EVP_PKEY_CTX, decltype(&EVP_PKEY_CTX_free)> context(
        EVP_PKEY_CTX_new_from_name(nullptr, "EC", nullptr), &EVP_PKEY_CTX_free);
    EVP_PKEY* imported = nullptr;
    if (parameters && context && EVP_PKEY_fromdata_init(context.get()) == 1) {
        EVP_PKEY_fromdata(context.get(), &imported, EVP_PKEY_PUBLIC_KEY, parameters.get());
    }
    return std::shared_ptr<EVP_PKEY>(imported, &EVP_PKEY_free);
}

/// SEQUENCE { INTEGER r, INTEGER s }; empty when it cannot be built.
Bytes derOf(const Bytes& plain)
{
    const auto half = static_cast<int>(plain.size() / 2);
    const std::unique_ptr<ECDSA_SIG, decltype(&ECDSA_SIG_free)> signature(ECDSA_SIG_new(), &ECDSA_SIG_free);
    BIGNUM* r = BN_bin2bn(plain.data(), half, nullptr);
    BIGNUM* s = BN_bin2bn(plain.data() + half, half, nullptr);
    if (!signature || !r || !s || ECDSA_SIG_set0(signature.get(), r, s) != 1) {
        BN_free(r);
        BN_free(s);
        return {};
    }
    unsigned char* encoded = nullptr;
    const int length = i2d_ECDSA_SIG(signature.get(), &encoded);
    Bytes der(encoded, encoded + (length > 0 ? length : 0));
    OPENSSL_free(encoded);
    return der;
}

} // namespace

std::optional<CertificateContentG2> verifyCertificateG2(const Bytes& certificate, const PublicKeyG2& issuer)
{
    const auto parsed = parse(certificate);
    if (!parsed || !verifySignatureG2(issuer, parsed->signedPart, parsed->signature)) {
        return std::nullopt;
    }
    return parsed->content;
}

std::optional<PublicKeyG2> publicKeyFromRootCertificateG2(const Bytes& certificate)
{
    const auto parsed = parse(certificate);
    if (!parsed || !verifyCertificateG2(certificate, parsed->content.key)) {
        return std::nullopt;
    }
    const CertificateContentG2& content = parsed->content;
    if (content.authority != content.holder ||
        content.authorisation != Bytes(std::begin(RootAuthorisation), std::end(RootAuthorisation))) {
        return std::nullopt;
    }
    return content.key;
}

bool verifySignatureG2(const PublicKeyG2& key, const Bytes& data, const Bytes& signature)
{
    const CurveDescription& curve = describe(key.curve);
    if (signature.size() != curve.signatureLength()) {
        return false;
    }
    const auto imported = importKey(key);
    const Bytes der = derOf(signature);
    const std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> context(EVP_MD_CTX_new(), &EVP_MD_CTX_free);
    return imported && !der.empty() && context &&
           EVP_DigestVerifyInit_ex(
               context.get(), nullptr, curve.digestName, nullptr, nullptr, imported.get(), nullptr) == 1 &&
           EVP_DigestVerify(context.get(), der.data(), der.size(), data.data(), data.size()) == 1;
}

} // namespace sim
