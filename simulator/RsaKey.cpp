#include "RsaKey.h"

#include "Crypto.h"

#include <openssl/bio.h>
#include <openssl/bn.h>
#include <openssl/core_names.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/rsa.h>
#include <utility>

namespace sim {

namespace {

Bytes numberOf(const EVP_PKEY* key, const char* name, std::size_t length)
{
    BIGNUM* number = nullptr;
    require(EVP_PKEY_get_bn_param(key, name, &number) == 1, "RSA key without public part");
    const std::unique_ptr<BIGNUM, decltype(&BN_free)> owner(number, &BN_free);
    Bytes bytes(length);
    require(BN_bn2binpad(number, bytes.data(), static_cast<int>(length)) >= 0, "RSA key of another size");
    return bytes;
}

/// `md` null: no digest information is put before the block.
Bytes rsaSign(EVP_PKEY* key, int padding, const EVP_MD* md, const Bytes& block)
{
    const std::unique_ptr<EVP_PKEY_CTX, decltype(&EVP_PKEY_CTX_free)> context(
        EVP_PKEY_CTX_new(key, nullptr), &EVP_PKEY_CTX_free);
    Bytes out(RsaKey::Length);
    std::size_t length = out.size();
    require(
        context && EVP_PKEY_sign_init(context.get()) == 1 &&
            EVP_PKEY_CTX_set_rsa_padding(context.get(), padding) == 1 &&
            (md == nullptr || EVP_PKEY_CTX_set_signature_md(context.get(), md) == 1) &&
            EVP_PKEY_sign(context.get(), out.data(), &length, block.data(), block.size()) == 1 &&
            length == out.size(),
        "RSA operation failed");
    return out;
}

} // namespace

RsaKey::RsaKey(const std::string& pem)
{
    const std::unique_ptr<BIO, decltype(&BIO_free)> source(
        BIO_new_mem_buf(pem.data(), static_cast<int>(pem.size())), &BIO_free);
    require(source != nullptr, "out of memory");
    m_key.reset(PEM_read_bio_PrivateKey(source.get(), nullptr, nullptr, nullptr), &EVP_PKEY_free);
    require(m_key && EVP_PKEY_is_a(m_key.get(), "RSA") == 1, "not an RSA private key");
    require(EVP_PKEY_get_bits(m_key.get()) == static_cast<int>(8 * Length), "RSA key of another size");
    m_modulus = numberOf(m_key.get(), OSSL_PKEY_PARAM_RSA_N, Length);
    m_exponent = numberOf(m_key.get(), OSSL_PKEY_PARAM_RSA_E, ExponentLength);
}

Bytes RsaKey::privateOperation(const Bytes& block) const
{
    return rsaSign(m_key.get(), RSA_NO_PADDING, nullptr, block);
}

Bytes RsaKey::signDigest(const Bytes& sha1) const
{
    return rsaSign(m_key.get(), RSA_PKCS1_PADDING, EVP_sha1(), sha1);
}

RsaSigner::RsaSigner(RsaKey key) : m_key(std::move(key)) {}

Bytes RsaSigner::hash(const Bytes& fileContent) const
{
    return sha1(fileContent);
}

Bytes RsaSigner::signHash(const Bytes& hash) const
{
    return m_key.signDigest(hash);
}

Bytes sha1(const Bytes& data)
{
    Bytes digest(20);
    require(
        EVP_Digest(data.data(), data.size(), digest.data(), nullptr, EVP_sha1(), nullptr) == 1,
        "SHA-1 failed");
    return digest;
}

} // namespace sim
