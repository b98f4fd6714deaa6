#include "EcPublicKey.h"

#include <openssl/core_names.h>

namespace scard::verify::detail {

namespace {

Key keyOfPoint(const Curve& curve, const QByteArray& point)
{
    const ParameterBuilder builder(OSSL_PARAM_BLD_new());
    if (!builder ||
        OSSL_PARAM_BLD_push_utf8_string(builder.get(), OSSL_PKEY_PARAM_GROUP_NAME, curve.groupName, 0) != 1 ||
        OSSL_PARAM_BLD_push_octet_string(
            builder.get(), OSSL_PKEY_PARAM_PUB_KEY, point.constData(), sizeOf(point)) != 1)
        return nullptr;
    return keyOf("EC", builder, EVP_PKEY_PUBLIC_KEY);
}

/// SEQUENCE { INTEGER r, INTEGER s }, which OpenSSL wants in place of the plain form.
QByteArray derOf(const QByteArray& plain)
{
    const int half = plain.size() / 2;
    BigNumber r = numberOf(plain.left(half));
    BigNumber s = numberOf(plain.mid(half));
    const EcdsaSignature signature(ECDSA_SIG_new());
    if (!r || !s || ECDSA_SIG_set0(signature.get(), r.get(), s.get()) != 1)
        return {};
    r.release(); // NOLINT(bugprone-unused-return-value): the signature owns the numbers now
    s.release(); // NOLINT(bugprone-unused-return-value)
    QByteArray der(i2d_ECDSA_SIG(signature.get(), nullptr), '\0');
    auto* end = reinterpret_cast<unsigned char*>(der.data());
    i2d_ECDSA_SIG(signature.get(), &end);
    return der;
}

} // namespace

std::unique_ptr<EcPublicKey> EcPublicKey::make(const Curve& curve, const QByteArray& point)
{
    constexpr char uncompressed = 0x04;
    if (point.size() != curve.pointLength() || point.front() != uncompressed)
        return nullptr;
    const KeptErrorQueue kept;
    Key key = keyOfPoint(curve, point);
    if (!key)
        return nullptr;
    return std::unique_ptr<EcPublicKey>(new EcPublicKey(curve, std::move(key)));
}

bool EcPublicKey::isAvailable(const Curve& curve)
{
    const KeptErrorQueue kept;
    const ParameterBuilder builder(OSSL_PARAM_BLD_new());
    return builder &&
           OSSL_PARAM_BLD_push_utf8_string(builder.get(), OSSL_PKEY_PARAM_GROUP_NAME, curve.groupName, 0) ==
               1 &&
           keyOf("EC", builder, EVP_PKEY_KEY_PARAMETERS);
}

EcPublicKey::EcPublicKey(const Curve& curve, Key key)
    : m_curve(curve), m_key(std::move(key)), m_digest(EVP_MD_fetch(nullptr, curve.digestName, nullptr)),
      m_verifying(verifyingContext(m_key.get()))
{}

Check EcPublicKey::check(const QByteArray& data, const QByteArray& signature) const
{
    if (signature.size() != signatureLength())
        return Check::Fails;
    const KeptErrorQueue kept;
    const QByteArray digest = digestOf(m_digest, data);
    if (!m_verifying || digest.isEmpty())
        return Check::Unsupported;
    const QByteArray der = derOf(signature);
    const int result =
        EVP_PKEY_verify(m_verifying.get(), bytesOf(der), sizeOf(der), bytesOf(digest), sizeOf(digest));
    return result == 1 ? Check::Holds : Check::Fails;
}

QString EcPublicKey::algorithm() const
{
    return QString::fromLatin1(m_curve.name);
}

} // namespace scard::verify::detail
