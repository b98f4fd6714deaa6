#include "Certificates.h"

#include "Image.h"

#include <simulator/TestPki.h>
#include <simulator/TimeReal.h>
#include <simulator/VerifyG1.h>
#include <support/DownloadScript.h>

namespace test {

namespace {

constexpr int recoveredLength = 106;

sim::EcKey keyOf(const char* label)
{
    return sim::EcKey::fromLabel(sim::Curve::NistP256, label);
}

} // namespace

QByteArray contentG1(const QByteArray& certificate, const sim::RsaKey& issuer)
{
    const sim::PublicKeyG1 key{issuer.modulus(), issuer.exponent()};
    const sim::CertificateContentG1 fields = sim::verifyCertificateG1(test::bytes(certificate), key).value();
    sim::Bytes content = {fields.profile};
    sim::appendBytes(content, fields.authority);
    sim::appendBytes(content, fields.authorisation);
    sim::appendU32(content, fields.endOfValidity);
    sim::appendBytes(content, fields.holder);
    sim::appendBytes(content, fields.key.modulus);
    sim::appendBytes(content, fields.key.exponent);
    return arrayOf(content);
}

QByteArray certificateG1(const QByteArray& content, const sim::RsaKey& issuer)
{
    const QByteArray block = QByteArray(1, '\x6A') + content.left(recoveredLength) +
                             arrayOf(sim::sha1(test::bytes(content))) + QByteArray(1, '\xBC');
    return arrayOf(issuer.privateOperation(test::bytes(block))) + content.mid(recoveredLength) +
           content.mid(placesG1::issuer, static_cast<int>(sim::KeyIdLength));
}

QByteArray
changedG1(const QByteArray& certificate, const sim::RsaKey& issuer, int place, const QByteArray& field)
{
    return certificateG1(with(contentG1(certificate, issuer), place, field), issuer);
}

QByteArray
changedG2(const QByteArray& certificate, const sim::EcKey& issuer, int place, const QByteArray& field)
{
    constexpr int outerHeader = 4;
    constexpr int signatureHeader = 3;
    const QByteArray changed = with(certificate, place, field);
    const int signedEnd = placesG2::signature - signatureHeader;
    const QByteArray signedPart = changed.mid(outerHeader, signedEnd - outerHeader);
    return with(changed, placesG2::signature, arrayOf(issuer.sign(test::bytes(signedPart))));
}

const sim::EcKey& previousRootKeyG2()
{
    static const sim::EcKey key = keyOf("test key of the previous root");
    return key;
}

const sim::EcKey& rootKeyG2()
{
    static const sim::EcKey key = keyOf("test key of the root");
    return key;
}

const sim::EcKey& memberStateKeyG2()
{
    static const sim::EcKey key = keyOf("test key of a Member State");
    return key;
}

QByteArray timeReal(int year, int month, int day)
{
    sim::Bytes time;
    sim::appendU32(time, sim::timeOf({year, month, day}));
    return arrayOf(time);
}

} // namespace test
