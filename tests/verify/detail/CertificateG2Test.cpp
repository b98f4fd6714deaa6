#include <scardverify/detail/CertificateG2.h>

#include <simulator/TestPkiG2.h>
#include <verify/Certificates.h>
#include <verify/Image.h>

#include <gtest/gtest.h>

namespace {

using namespace scard::verify::detail;
using namespace test;

QByteArray certificate(sim::Curve curve = sim::Curve::NistP256)
{
    return arrayOf(sim::caCertificateG2(curve, 0x12, 2021));
}

TEST(CertificateG2Test, TellsItsFields)
{
    const int lengths[] = {204, 205, 266, 270, 337, 341};
    for (const sim::CurveDescription& curve : sim::curves()) {
        const auto parsed = parseCertificateG2(certificate(curve.curve));
        ASSERT_TRUE(parsed) << curve.name;
        EXPECT_EQ(parsed->length, lengths[static_cast<int>(curve.curve)]);
        EXPECT_EQ(parsed->length, certificate(curve.curve).size());
        EXPECT_EQ(parsed->profile, 0);
        EXPECT_EQ(parsed->issuer.left(4), QByteArray::fromHex("FD454320"));
        EXPECT_EQ(parsed->authorisation, QByteArray::fromHex("FF534D5244540E"));
        EXPECT_EQ(parsed->holder.left(4), QByteArray::fromHex("1246494E"));
        EXPECT_EQ(parsed->validFrom, QDateTime(QDate(2021, 1, 1), QTime(0, 0), Qt::UTC));
        EXPECT_EQ(parsed->validUntil, QDateTime(QDate(2028, 1, 31), QTime(23, 59, 59), Qt::UTC));
        ASSERT_NE(parsed->curve, nullptr);
        EXPECT_EQ(static_cast<std::size_t>(parsed->point.size()), curve.pointLength());
        EXPECT_EQ(static_cast<std::size_t>(parsed->signature.size()), curve.signatureLength());
        EXPECT_TRUE(parsed->key());
    }
}

TEST(CertificateG2Test, SaysWhatItsIssuerSigned)
{
    const auto parsed = parseCertificateG2(certificate());
    const auto root = parseCertificateG2(arrayOf(sim::rootCertificateG2(sim::Curve::NistP256)));
    ASSERT_TRUE(parsed && root && root->key());
    EXPECT_EQ(parsed->signedPart, certificate().mid(4, 133));
    EXPECT_EQ(root->key()->check(parsed->signedPart, parsed->signature), Check::Holds);
    EXPECT_EQ(root->key()->check(parsed->signedPart + 'x', parsed->signature), Check::Fails);
    EXPECT_EQ(root->key()->check(parsed->signedPart, parsed->signature.left(63)), Check::Fails);
    EXPECT_EQ(parsed->key()->check(parsed->signedPart, parsed->signature), Check::Fails);
}

TEST(CertificateG2Test, LeavesOutWhatStandsBehind)
{
    const auto parsed = parseCertificateG2(certificate() + "padding");
    ASSERT_TRUE(parsed);
    EXPECT_EQ(parsed->length, 204);
}

TEST(CertificateG2Test, IsNotInFewerBytes)
{
    for (int size = 0; size < certificate().size(); ++size)
        EXPECT_FALSE(parseCertificateG2(certificate().left(size))) << size;
}

TEST(CertificateG2Test, IsNotThereWhenATagOrALengthIsAnother)
{
    using namespace placesG2;
    // Tags and lengths stand between the fields.
    const struct
    {
        int begin;
        int end;
    } gaps[] = {
        {0, profile},
        {profile + 1, issuer},
        {issuer + 8, authorisation},
        {authorisation + 7, curve},
        {curve + 8, point},
        {point + 65, holder},
        {holder + 8, validFrom},
        {validFrom + 4, validUntil},
        {validUntil + 4, signature}};
    for (const auto& gap : gaps) {
        ASSERT_LT(gap.begin, gap.end);
        for (int at = gap.begin; at < gap.end; ++at) {
            for (const int pattern : {0x01, 0x80, 0xFF}) {
                QByteArray changed = certificate();
                changed[at] = static_cast<char>(changed.at(at) ^ pattern);
                EXPECT_FALSE(parseCertificateG2(changed)) << at << " xor " << pattern;
            }
        }
    }
}

TEST(CertificateG2Test, KeepsThePointOfACurveThatIsNotKnown)
{
    const auto parsed = parseCertificateG2(with(certificate(), placesG2::curve, "\x01"));
    ASSERT_TRUE(parsed);
    EXPECT_EQ(parsed->curve, nullptr);
    EXPECT_FALSE(parsed->key());
    EXPECT_EQ(parsed->point, certificate().mid(placesG2::point, 65));
}

TEST(CertificateG2Test, HasNoKeyInAPointThatIsNotOnTheCurve)
{
    QByteArray changed = certificate();
    changed[placesG2::point + 64] = static_cast<char>(changed.at(placesG2::point + 64) ^ 0x01);
    const auto parsed = parseCertificateG2(changed);
    ASSERT_TRUE(parsed);
    EXPECT_NE(parsed->curve, nullptr);
    EXPECT_FALSE(parsed->key());
}

} // namespace
