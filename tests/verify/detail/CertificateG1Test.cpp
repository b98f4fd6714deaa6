#include <scardverify/detail/CertificateG1.h>

#include <simulator/TestPki.h>
#include <verify/Certificates.h>
#include <verify/Image.h>
#include <verify/OtherCard.h>

#include <gtest/gtest.h>

namespace {

using namespace scard::verify::detail;
using namespace test;

std::unique_ptr<RsaPublicKey> publicKey(const sim::RsaKey& key)
{
    return RsaPublicKey::make(arrayOf(key.modulus()), arrayOf(key.exponent()));
}

/// Of a Member State.
QByteArray certificate()
{
    return arrayOf(sim::caCertificateG1(0x12));
}

/// What the certificate says; null when @p key does not open it.
std::optional<CertificateG1> openedWith(const RsaPublicKey& key, const QByteArray& file)
{
    OpenedG1 opened = openCertificateG1(file, key);
    EXPECT_NE(opened.check, Check::Unsupported);
    return opened.check == Check::Holds ? std::make_optional(std::move(opened.content)) : std::nullopt;
}

std::optional<CertificateG1> opened(const QByteArray& file)
{
    return openedWith(*publicKey(sim::rootPrivateKeyG1()), file);
}

TEST(CertificateG1Test, OpensWithTheKeyOfItsIssuer)
{
    const auto content = opened(certificate());
    ASSERT_TRUE(content);
    EXPECT_EQ(content->profile, 1);
    EXPECT_EQ(content->issuer, arrayOf(sim::rootKeyG1()).left(8));
    EXPECT_EQ(content->authorisation, QByteArray::fromHex("FF544143484F00"));
    EXPECT_TRUE(content->validUntil.isNull());
    EXPECT_EQ(content->holder, QByteArray::fromHex("1246494E01544B01"));
    ASSERT_TRUE(content->key);
    EXPECT_EQ(content->key->algorithm(), "RSA-1024");
    EXPECT_EQ(content->key->signatureLength(), 128);
}

TEST(CertificateG1Test, TellsAKeyThatOpensTheNextOne)
{
    const auto memberState = opened(arrayOf(sim::caCertificateG1(0x0D)));
    ASSERT_TRUE(memberState);
    const QByteArray card = arrayOf(sim::cardCertificateG1(
        0x0D, sim::Equipment::Driver, sim::fromHex("01 02 03 04 05 06 07 08"), 1709640000));
    const auto content = openedWith(*memberState->key, card);
    ASSERT_TRUE(content);
    EXPECT_EQ(content->issuer, memberState->holder);
    EXPECT_EQ(content->holder, QByteArray::fromHex("0102030405060708"));
    EXPECT_EQ(content->validUntil, QDateTime(QDate(2024, 3, 5), QTime(12, 0), Qt::UTC));
}

TEST(CertificateG1Test, DoesNotOpenWithAnotherKey)
{
    EXPECT_FALSE(openedWith(*publicKey(otherRsaKey()), certificate()));
    EXPECT_FALSE(openedWith(*publicKey(sim::cardPrivateKeyG1()), certificate()));
}

TEST(CertificateG1Test, DoesNotOpenWhenItIsShort)
{
    EXPECT_FALSE(opened({}));
    EXPECT_FALSE(opened(certificate().left(CertificateG1::length - 1)));
    EXPECT_TRUE(opened(certificate() + "padding"));
}

TEST(CertificateG1Test, DoesNotOpenWhenASignedByteIsAnother)
{
    constexpr int issuerLength = 8;
    for (int at = 0; at < CertificateG1::length - issuerLength; ++at) {
        QByteArray changed = certificate();
        changed[at] = static_cast<char>(changed.at(at) ^ 0x10);
        EXPECT_FALSE(opened(changed)) << at;
    }
}

TEST(CertificateG1Test, DoesNotOpenWithAnotherFrame)
{
    const QByteArray content = contentG1(certificate(), sim::rootPrivateKeyG1());
    const QByteArray hash = arrayOf(sim::sha1(sim::Bytes(content.begin(), content.end())));
    const auto framed = [&](char header, char trailer) {
        const QByteArray block = QByteArray(1, header) + content.left(106) + hash + QByteArray(1, trailer);
        const sim::Bytes signature =
            sim::rootPrivateKeyG1().privateOperation(sim::Bytes(block.begin(), block.end()));
        return opened(arrayOf(signature) + content.mid(106) + content.mid(1, 8)).has_value();
    };
    EXPECT_TRUE(framed('\x6A', '\xBC'));
    EXPECT_FALSE(framed('\x6B', '\xBC'));
    EXPECT_FALSE(framed('\x6A', '\xCC'));
}

TEST(CertificateG1Test, HasNoKeyInNumbersThatAreNone)
{
    const QByteArray changed =
        changedG1(certificate(), sim::rootPrivateKeyG1(), placesG1::modulus, QByteArray(1, '\x7F'));
    const auto content = opened(changed);
    ASSERT_TRUE(content);
    EXPECT_FALSE(content->key);
}

TEST(CertificateG1Test, NamesItsIssuerAtTheEnd)
{
    EXPECT_EQ(issuerBehind(certificate() + "padding"), arrayOf(sim::rootKeyG1()).left(8));
}

} // namespace
