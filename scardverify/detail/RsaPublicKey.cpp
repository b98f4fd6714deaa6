#include "RsaPublicKey.h"

#include <openssl/core_names.h>
#include <openssl/rsa.h>

namespace scard::verify::detail {

namespace {

Key keyOfNumbers(const QByteArray& modulus, const QByteArray& exponent)
{
    const BigNumber n = numberOf(modulus);
    const BigNumber e = numberOf(exponent);
    const ParameterBuilder builder(OSSL_PARAM_BLD_new());
    if (!builder || OSSL_PARAM_BLD_push_BN(builder.get(), OSSL_PKEY_PARAM_RSA_N, n.get()) != 1 ||
        OSSL_PARAM_BLD_push_BN(builder.get(), OSSL_PKEY_PARAM_RSA_E, e.get()) != 1)
        return nullptr;
    return keyOf("RSA", builder, EVP_PKEY_PUBLIC_KEY);
}

/// Ready to check signatures of PKCS#1 v1.5.
KeyContext paddedContext(EVP_PKEY* key, const EVP_MD* digest)
{
    KeyContext context = verifyingContext(key);
    if (!context || !digest || EVP_PKEY_CTX_set_rsa_padding(context.get(), RSA_PKCS1_PADDING) != 1 ||
        EVP_PKEY_CTX_set_signature_md(context.get(), digest) != 1)
        return nullptr;
    return context;
}

/// Ready for the bare public operation.
KeyContext openingContext(EVP_PKEY* key)
{
    KeyContext context(EVP_PKEY_CTX_new_from_pkey(nullptr, key, nullptr));
    if (!context || EVP_PKEY_encrypt_init(context.get()) != 1 ||
        EVP_PKEY_CTX_set_rsa_padding(context.get(), RSA_NO_PADDING) != 1)
        return nullptr;
    return context;
}

} // namespace

std::unique_ptr<RsaPublicKey> RsaPublicKey::make(const QByteArray& modulus, const QByteArray& exponent)
{
    // A modulus is odd and has all its bits, an exponent is odd: nobody could sign with anything else.
    if (modulus.size() != modulusLength || exponent.size() != exponentLength ||
        (modulus.front() & 0x80) == 0 || (modulus.back() & 0x01) == 0 || (exponent.back() & 0x01) == 0)
        return nullptr;
    const KeptErrorQueue kept;
    Key key = keyOfNumbers(modulus, exponent);
    if (!key)
        return nullptr;
    return std::unique_ptr<RsaPublicKey>(new RsaPublicKey(std::move(key)));
}

RsaPublicKey::RsaPublicKey(Key key) : m_key(std::move(key)), m_digest(EVP_MD_fetch(nullptr, "SHA1", nullptr))
{}

Check RsaPublicKey::check(const QByteArray& data, const QByteArray& signature) const
{
    const KeptErrorQueue kept;
    const QByteArray hash = digest(data);
    if (!m_verifying)
        m_verifying = paddedContext(m_key.get(), m_digest.get());
    if (!m_verifying || hash.isEmpty())
        return Check::Unsupported;
    const int result = EVP_PKEY_verify(
        m_verifying.get(), bytesOf(signature), sizeOf(signature), bytesOf(hash), sizeOf(hash));
    return result == 1 ? Check::Holds : Check::Fails;
}

QString RsaPublicKey::algorithm() const
{
    return QStringLiteral("RSA-1024");
}

bool RsaPublicKey::canOpen() const
{
    const KeptErrorQueue kept;
    if (!m_opening)
        m_opening = openingContext(m_key.get());
    return m_opening != nullptr;
}

QByteArray RsaPublicKey::open(const QByteArray& signature) const
{
    if (!canOpen())
        return {};
    const KeptErrorQueue kept;
    QByteArray block(modulusLength, '\0');
    std::size_t length = sizeOf(block);
    const int result = EVP_PKEY_encrypt(
        m_opening.get(), reinterpret_cast<unsigned char*>(block.data()), &length, bytesOf(signature),
        sizeOf(signature));
    return result == 1 && length == modulusLength ? block : QByteArray();
}

} // namespace scard::verify::detail
