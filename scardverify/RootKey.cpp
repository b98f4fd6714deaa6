#include <scardverify/RootKey.h>

#include <scardverify/detail/CertificateG2.h>
#include <scardverify/detail/KeyIdentifier.h>
#include <scardverify/detail/TrustedRoot.h>

namespace scard::verify {

namespace {

RootKeyResult noKey(const QString& reason)
{
    return {std::nullopt, reason};
}

/// @param bytes 144: what else could be that long is no certificate
RootKeyResult readFirst(const QByteArray& bytes, const std::shared_ptr<const detail::RsaPublicKey>& key)
{
    RootKey root;
    root.generation = Generation::First;
    root.keyIdentifier = bytes.left(detail::keyIdentifierLength);
    root.bytes = bytes;
    root.algorithm = key->algorithm();
    return {root, {}};
}

RootKeyResult readSecond(const QByteArray& bytes, const detail::CertificateG2& certificate)
{
    const QByteArray rootAuthorisation("\xFFSMRDT\x0D", 7);
    if (certificate.issuer != certificate.holder)
        return noKey(
            QStringLiteral("it is the certificate of %1, signed by %2, and not signed with its own key")
                .arg(keyIdentifierText(certificate.holder), keyIdentifierText(certificate.issuer)));
    if (certificate.authorisation != rootAuthorisation)
        return noKey(QStringLiteral("it is the certificate of something else than a root"));
    if (!certificate.isKnown())
        return noKey(QStringLiteral("its profile or its curve is not known here"));
    if (!detail::EcPublicKey::isAvailable(*certificate.curve))
        return noKey(QStringLiteral("this machine has not got its curve, %1")
                         .arg(QLatin1String(certificate.curve->name)));
    if (certificate.key() == nullptr)
        return noKey(QStringLiteral("it tells a key that is none"));
    if (certificate.key()->check(certificate.signedPart, certificate.signature) != detail::Check::Holds)
        return noKey(QStringLiteral("its signature does not hold"));
    RootKey root;
    root.generation = Generation::Second;
    root.keyIdentifier = certificate.holder;
    root.bytes = bytes.left(certificate.length);
    root.algorithm = certificate.key()->algorithm();
    root.validFrom = certificate.validFrom;
    root.validUntil = certificate.validUntil;
    return {root, {}};
}

} // namespace

RootKeyResult readRootKey(const QByteArray& bytes)
{
    if (const auto certificate = detail::parseCertificateG2(bytes))
        return readSecond(bytes, *certificate);
    if (const auto key = detail::rootKeyG1(bytes))
        return readFirst(bytes, key);
    return noKey(QStringLiteral("it is neither 144 bytes of a root key nor a root certificate"));
}

QString keyIdentifierText(const QByteArray& keyIdentifier)
{
    return QString::fromLatin1(keyIdentifier.toHex(' ').toUpper());
}

} // namespace scard::verify
