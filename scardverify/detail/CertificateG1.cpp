#include "CertificateG1.h"

#include "KeyIdentifier.h"
#include "TimeReal.h"

namespace scard::verify::detail {

namespace {

constexpr int digestLength = 20;

/// Takes the fields of a content one behind the other.
class Fields
{
  public:
    explicit Fields(QByteArray bytes) : m_bytes(std::move(bytes)) {}

    QByteArray next(int length)
    {
        m_position += length;
        return m_bytes.mid(m_position - length, length);
    }

  private:
    QByteArray m_bytes;
    int m_position = 0;
};

CertificateG1 contentOf(const QByteArray& content)
{
    Fields fields(content);
    CertificateG1 certificate;
    certificate.profile = static_cast<unsigned char>(fields.next(1).front());
    certificate.issuer = fields.next(keyIdentifierLength);
    certificate.authorisation = fields.next(7);
    certificate.validUntil = timeOf(fields.next(4));
    certificate.holder = fields.next(keyIdentifierLength);
    const QByteArray modulus = fields.next(RsaPublicKey::modulusLength);
    certificate.key = RsaPublicKey::make(modulus, fields.next(RsaPublicKey::exponentLength));
    return certificate;
}

} // namespace

OpenedG1 openCertificateG1(const QByteArray& file, const RsaPublicKey& issuer)
{
    constexpr char header = 0x6A;
    constexpr char trailer = '\xBC';
    constexpr int signatureLength = RsaPublicKey::modulusLength;
    const QByteArray certificate = file.left(CertificateG1::length);
    if (certificate.size() != CertificateG1::length)
        return {};
    if (!issuer.canOpen())
        return {Check::Unsupported, {}};
    const QByteArray block = issuer.open(certificate.left(signatureLength));
    if (block.isEmpty() || block.front() != header || block.back() != trailer)
        return {};
    const int recovered = signatureLength - 1 - digestLength - 1;
    const int rest = CertificateG1::length - signatureLength - keyIdentifierLength;
    const QByteArray content = block.mid(1, recovered) + certificate.mid(signatureLength, rest);
    const QByteArray digest = issuer.digest(content);
    if (digest.isEmpty())
        return {Check::Unsupported, {}};
    if (digest != block.mid(1 + recovered, digestLength))
        return {};
    return {Check::Holds, contentOf(content)};
}

QByteArray issuerBehind(const QByteArray& file)
{
    return file.left(CertificateG1::length).right(keyIdentifierLength);
}

} // namespace scard::verify::detail
