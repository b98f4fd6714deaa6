// Files that tell the key of the European root authority, and files that do not.
#include "Certificates.h"
#include "Image.h"
#include "OtherCard.h"
#include "Roots.h"
#include "Told.h"

#include <cli/Downloads.h>
#include <scardverify/VerifyImage.h>

#include <gmock/gmock.h>

namespace {

using namespace scard::verify;
using namespace test;

std::string reasonOf(const QByteArray& bytes)
{
    const RootKeyResult result = readRootKey(bytes);
    EXPECT_FALSE(result.key);
    return result.reason.toStdString();
}

const char* const isNone = "it is neither 144 bytes of a root key nor a root certificate";

TEST(RootKeyTest, ReadsThatOfTheFirstGeneration)
{
    const RootKeyResult result = readRootKey(rootFileG1());
    ASSERT_TRUE(result.key);
    EXPECT_EQ(result.reason, QString());
    EXPECT_EQ(result.key->generation, Generation::First);
    EXPECT_EQ(result.key->keyIdentifier, rootFileG1().left(8));
    EXPECT_EQ(result.key->bytes, rootFileG1());
    EXPECT_EQ(result.key->algorithm, "RSA-1024");
    EXPECT_TRUE(result.key->validFrom.isNull());
    EXPECT_TRUE(result.key->validUntil.isNull());
}

TEST(RootKeyTest, ReadsThoseOfTheSecondGeneration)
{
    const std::vector<QString> algorithms = {"NIST P-256",      "brainpoolP256r1", "NIST P-384",
                                             "brainpoolP384r1", "brainpoolP512r1", "NIST P-521"};
    for (const sim::CurveDescription& curve : sim::curves()) {
        const QByteArray file = rootFileG2(curve.curve);
        const RootKeyResult result = readRootKey(file);
        ASSERT_TRUE(result.key) << curve.name;
        EXPECT_EQ(result.key->generation, Generation::Second);
        EXPECT_EQ(result.key->bytes, file);
        EXPECT_EQ(result.key->algorithm, algorithms.at(static_cast<std::size_t>(curve.curve)));
        EXPECT_EQ(result.key->validFrom, QDateTime(QDate(2015, 6, 1), QTime(0, 0), Qt::UTC));
        EXPECT_EQ(result.key->validUntil, QDateTime(QDate(2049, 8, 31), QTime(23, 59, 59), Qt::UTC));
        EXPECT_TRUE(keyIdentifierText(result.key->keyIdentifier).startsWith("FD 45 43 20 2"));
    }
}

TEST(RootKeyTest, LeavesOutWhatStandsBehindTheCertificate)
{
    const RootKeyResult result = readRootKey(rootFileG2() + "padding");
    ASSERT_TRUE(result.key);
    EXPECT_EQ(result.key->bytes, rootFileG2());
}

TEST(RootKeyTest, WritesItsIdentifierAsPeopleCompareIt)
{
    EXPECT_EQ(keyIdentifierText(QByteArray::fromHex("fd45432001ffff01")), "FD 45 43 20 01 FF FF 01");
    EXPECT_EQ(keyIdentifierText({}), "");
}

TEST(RootKeyTest, IsNotInOtherBytes)
{
    EXPECT_EQ(reasonOf({}), isNone);
    EXPECT_EQ(reasonOf("x"), isNone);
    EXPECT_EQ(reasonOf(rootFileG1().left(143)), isNone);
    EXPECT_EQ(reasonOf(rootFileG1() + '\n'), isNone);
    EXPECT_EQ(reasonOf(QByteArray(144, '\0')), isNone);
    EXPECT_EQ(reasonOf(rootFileG1().toHex()), isNone);
    EXPECT_EQ(reasonOf(rootFileG2().left(203)), isNone);
    EXPECT_EQ(reasonOf(rootFileG2().mid(1)), isNone);
    EXPECT_EQ(reasonOf(Image(smallDownload("driver").file).payload(0xC108, dataG1)), isNone);
}

TEST(RootKeyTest, IsNotInNumbersThatNoKeyHas)
{
    constexpr int modulus = 8;
    constexpr int exponent = 8 + 128;
    EXPECT_EQ(reasonOf(with(rootFileG1(), modulus, QByteArray(1, '\0'))), isNone) << "too small";
    EXPECT_EQ(reasonOf(with(rootFileG1(), modulus + 127, QByteArray(1, '\0'))), isNone) << "even";
    EXPECT_EQ(reasonOf(with(rootFileG1(), exponent + 7, QByteArray(1, '\x02'))), isNone) << "even exponent";
    EXPECT_EQ(reasonOf(with(rootFileG1(), exponent, QByteArray(8, '\0'))), isNone) << "no exponent";
}

TEST(RootKeyTest, IsNotInACertificateOfSomethingElse)
{
    const Image image(smallDownload("driverV2").file);
    EXPECT_EQ(
        reasonOf(image.payload(0xC108, dataG2)),
        "it is the certificate of 0D 44 20 20 30 54 4B 01, signed by FD 45 43 20 20 54 4B 01, and not "
        "signed with its own key");
    EXPECT_EQ(
        reasonOf(image.payload(0xC109, dataG2)),
        "it is the certificate of FD 45 43 20 20 54 4B 01, signed by FD 45 43 20 10 54 4B 01, and not "
        "signed with its own key");
    EXPECT_EQ(
        reasonOf(changedG2(rootFileG2(), rootKeyG2(), placesG2::equipment, "\x0E")),
        "it is the certificate of something else than a root");
}

TEST(RootKeyTest, IsNotInACertificateThatWasChanged)
{
    const char* const reason = "its signature does not hold";
    EXPECT_EQ(reasonOf(with(rootFileG2(), placesG2::validUntil, timeReal(2099, 1, 1))), reason);
    EXPECT_EQ(reasonOf(with(rootFileG2(), placesG2::point, arrayOf(otherEcKey().publicPoint()))), reason);
    EXPECT_EQ(reasonOf(with(rootFileG2(), placesG2::length - 1, "\x01")), reason);
}

TEST(RootKeyTest, IsNotOnACurveThatIsNotKnown)
{
    const QByteArray secp256k1 = QByteArray::fromHex("2A8648CE3D03010A");
    EXPECT_EQ(
        reasonOf(changedG2(rootFileG2(), rootKeyG2(), placesG2::curve, secp256k1)),
        "its profile or its curve is not known here");
}

TEST(RootKeyTest, IsNotInAPointThatIsNone)
{
    EXPECT_EQ(
        reasonOf(changedG2(rootFileG2(), rootKeyG2(), placesG2::point, "\x04" + QByteArray(64, '\x01'))),
        "it tells a key that is none");
}

TEST(RootKeyTest, VouchesForNothingWhenItsBytesAreJunk)
{
    const QByteArray junk[] = {
        {},
        "x",
        QByteArray(8, '\0'),
        QByteArray(144, '\0'),
        QByteArray(144, '\xFF'),
        rootFileG2().left(100),
        with(rootFileG2(), placesG2::curve, QByteArray(8, '\x01'))};
    for (const QByteArray& bytes : junk) {
        for (const Generation generation : {Generation::First, Generation::Second}) {
            RootKey root = *readRootKey(generation == Generation::First ? rootFileG1() : rootFileG2()).key;
            root.generation = generation;
            root.bytes = bytes;
            const Verdict verdict = verifyImage(smallDownload("driverV2").file, {root}).verdict;
            EXPECT_NE(verdict, Verdict::Genuine);
        }
    }
}

TEST(RootKeyTest, IsNamedByItsBytes)
{
    std::vector<RootKey> keys = roots();
    for (RootKey& key : keys)
        key.keyIdentifier = "any name";
    EXPECT_EQ(verifyImage(smallDownload("driverV2").file, keys).verdict, Verdict::Genuine);
}

// Several of one name.

/// The name of the root with a key that certified none of the cards.
QByteArray sameNameG1()
{
    return rootFileG1().left(8) + otherRootFileG1().mid(8);
}

QByteArray sameNameG2()
{
    return changedG2(rootFileG2(), otherEcKey(), placesG2::point, arrayOf(otherEcKey().publicPoint()));
}

QByteArray samePreviousNameG2()
{
    return changedG2(
        previousRootFileG2(), otherEcKey(), placesG2::point, arrayOf(otherEcKey().publicPoint()));
}

/// With the files in this order, and in the other one.
void expectToldInBothOrders(
    const Image& image, const QByteArray& one, const QByteArray& other, const std::vector<QByteArray>& more,
    const std::vector<FindingCode>& codes)
{
    for (std::vector<QByteArray> files : {std::vector{one, other}, std::vector{other, one}}) {
        files.insert(files.end(), more.begin(), more.end());
        const VerificationReport report = verifyImage(image.bytes(), rootsIn(files));
        EXPECT_EQ(report.verdict, Verdict::Genuine);
        EXPECT_EQ(codesOf(report), codes);
        EXPECT_EQ(report.applications.front().chain.front().verdict, CertificateVerdict::Trusted);
    }
}

TEST(RootKeyTest, IsThatOfTheFirstGenerationThatSignedAmongTwoOfOneName)
{
    expectToldInBothOrders(driver(), sameNameG1(), rootFileG1(), {}, {});
}

TEST(RootKeyTest, IsThatOfTheSecondGenerationThatSignedAmongTwoOfOneName)
{
    expectToldInBothOrders(secondAlone(), sameNameG2(), rootFileG2(), {previousRootFileG2()}, {});
}

TEST(RootKeyTest, IsThatTheLinkCertificateNamesAmongTwoOfOneName)
{
    expectToldInBothOrders(
        secondAlone(), sameNameG2(), rootFileG2(), {}, {FindingCode::LinkCertificateNotChecked});
}

TEST(RootKeyTest, IsThatBeforeThatSignedTheLinkCertificateAmongTwoOfOneName)
{
    expectToldInBothOrders(secondAlone(), samePreviousNameG2(), previousRootFileG2(), {rootFileG2()}, {});
    expectToldInBothOrders(secondAlone(), samePreviousNameG2(), previousRootFileG2(), {}, {});
}

TEST(RootKeyTest, DidNotSignWhenEachOfItsNameHasAnotherKey)
{
    const VerificationReport first = verifyImage(driver().bytes(), rootsIn({sameNameG1(), sameNameG1()}));
    EXPECT_EQ(first.verdict, Verdict::Altered);
    EXPECT_EQ(codesOf(first), std::vector{FindingCode::CertificateInvalid});
    Image image = secondAlone();
    image.remove(0xC109, dataG2);
    const VerificationReport second = verifyImage(image.bytes(), rootsIn({sameNameG2(), sameNameG2()}));
    EXPECT_EQ(second.verdict, Verdict::Altered);
    EXPECT_EQ(codesOf(second), std::vector{FindingCode::CertificateInvalid});
}

TEST(RootKeyTest, IsOfItsOwnGenerationOnly)
{
    std::vector<RootKey> keys = roots();
    std::swap(keys[0].generation, keys[1].generation);
    EXPECT_EQ(verifyImage(smallDownload("driverV2").file, keys).verdict, Verdict::RootUnknown);
}

} // namespace
