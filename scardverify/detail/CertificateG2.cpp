#include "CertificateG2.h"

#include "DataObjects.h"
#include "KeyIdentifier.h"
#include "TimeReal.h"

namespace scard::verify::detail {

namespace {

// Tags, in the order in which they stand.
const QByteArray tagCertificate("\x7F\x21", 2);
const QByteArray tagBody("\x7F\x4E", 2);
const QByteArray tagProfile("\x5F\x29", 2);
const QByteArray tagIssuer("\x42", 1);
const QByteArray tagAuthorisation("\x5F\x4C", 2);
const QByteArray tagPublicKey("\x7F\x49", 2);
const QByteArray tagCurve("\x06", 1);
const QByteArray tagPoint("\x86", 1);
const QByteArray tagHolder("\x5F\x20", 2);
const QByteArray tagValidFrom("\x5F\x25", 2);
const QByteArray tagValidUntil("\x5F\x24", 2);
const QByteArray tagSignature("\x5F\x37", 2);

bool parseKey(const QByteArray& bytes, CertificateG2& certificate)
{
    DataObjects objects(bytes);
    const auto oid = objects.take(tagCurve);
    const auto point = objects.take(tagPoint);
    if (!oid || !point || !objects.atEnd())
        return false;
    certificate.curve = curveOf(*oid);
    certificate.point = *point;
    return true;
}

bool parseBody(const QByteArray& bytes, CertificateG2& certificate)
{
    constexpr int timeLength = 4;
    DataObjects objects(bytes);
    const auto profile = objects.take(tagProfile, 1);
    const auto issuer = objects.take(tagIssuer, keyIdentifierLength);
    certificate.issuerAt = objects.taken().size() - keyIdentifierLength;
    const auto authorisation = objects.take(tagAuthorisation, 7);
    const auto key = objects.take(tagPublicKey);
    const auto holder = objects.take(tagHolder, keyIdentifierLength);
    const auto validFrom = objects.take(tagValidFrom, timeLength);
    const auto validUntil = objects.take(tagValidUntil, timeLength);
    if (!profile || !issuer || !authorisation || !key || !holder || !validFrom || !validUntil ||
        !objects.atEnd())
        return false;
    certificate.profile = static_cast<unsigned char>(profile->front());
    certificate.issuer = *issuer;
    certificate.authorisation = *authorisation;
    certificate.holder = *holder;
    certificate.validFrom = timeOf(*validFrom);
    certificate.validUntil = timeOf(*validUntil);
    return parseKey(*key, certificate);
}

} // namespace

const std::shared_ptr<const EcPublicKey>& CertificateG2::key() const
{
    if (!m_key && curve != nullptr)
        m_key = EcPublicKey::make(*curve, point);
    return m_key;
}

std::optional<CertificateG2> parseCertificateG2(const QByteArray& file)
{
    DataObjects outer(file);
    const auto inside = outer.take(tagCertificate);
    if (!inside)
        return std::nullopt;
    CertificateG2 certificate;
    certificate.length = outer.taken().size();
    DataObjects parts(*inside);
    const auto body = parts.take(tagBody);
    // The issuer signs the body with its tag and length.
    certificate.signedPart = parts.taken();
    const auto signature = parts.take(tagSignature);
    if (!body || !signature || !parts.atEnd() || !parseBody(*body, certificate))
        return std::nullopt;
    certificate.signature = *signature;
    certificate.issuerAt +=
        certificate.length - inside->size() + certificate.signedPart.size() - body->size();
    return certificate;
}

} // namespace scard::verify::detail
