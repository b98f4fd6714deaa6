// What a certificate says, although it is signed as it should be.
#include "Certificates.h"
#include "Image.h"
#include "OtherCard.h"
#include "Roots.h"
#include "Told.h"

#include <scardverify/VerifyImage.h>
#include <simulator/TestPki.h>

#include <gmock/gmock.h>

namespace {

using namespace scard::verify;
using namespace test;
using testing::ElementsAre;
using testing::IsEmpty;

/// The key that signs the certificate in an EF.
const sim::RsaKey& issuerG1(unsigned int fid)
{
    return fid == 0xC108 ? sim::rootPrivateKeyG1() : sim::memberStatePrivateKeyG1();
}

const sim::EcKey& issuerG2(unsigned int fid)
{
    return fid == 0xC109 ? previousRootKeyG2() : fid == 0xC108 ? rootKeyG2() : memberStateKeyG2();
}

/// A driver card with another field in a certificate, signed by its issuer.
Image withFieldG1(unsigned int fid, int place, const QByteArray& field)
{
    Image image = driver();
    QByteArray& certificate = image.payload(fid, dataG1);
    certificate = changedG1(certificate, issuerG1(fid), place, field);
    return image;
}

Image withFieldG2(unsigned int fid, int place, const QByteArray& field)
{
    Image image = secondAlone();
    QByteArray& certificate = image.payload(fid, dataG2);
    certificate = changedG2(certificate, issuerG2(fid), place, field);
    return image;
}

QDateTime day(int year, int month, int dayOfMonth)
{
    return {QDate(year, month, dayOfMonth), QTime(12, 0), Qt::UTC};
}

// Dates.

TEST(CertificateTest, IsValidOnTheDayOfTheDownload)
{
    expectTold(driver(), Verdict::Genuine, {}, day(2024, 3, 5));
    expectTold(secondAlone(), Verdict::Genuine, {}, day(2024, 3, 5));
}

TEST(CertificateTest, WarnsThatTheCardHadExpired)
{
    expectTold(
        driver(), Verdict::Genuine,
        {{FindingCode::CertificateExpired, Severity::Warning, 0xC100, dataG1,
          "EF_Card_Certificate: the certificate was valid until 2027-02-22, the card was downloaded on "
          "2028-01-01."}},
        day(2028, 1, 1));
    expectTold(
        secondAlone(), Verdict::Genuine,
        {{FindingCode::CertificateExpired, Severity::Warning, 0xC100, dataG2,
          "EF_MA_Certificate: the certificate was valid until 2027-02-22, the card was downloaded on "
          "2027-03-01."}},
        day(2027, 3, 1));
}

TEST(CertificateTest, WarnsOfEachCertificateThatHadExpired)
{
    expectTold(
        secondAlone(), Verdict::Genuine,
        {{FindingCode::CertificateExpired, Severity::Warning, 0xC109, dataG2,
          "EF_Link_Certificate: the certificate was valid until 2032-08-31, the card was downloaded on "
          "2060-01-01."},
         {FindingCode::CertificateExpired, Severity::Warning, 0, noRecord,
          "The root key: the certificate was valid until 2049-08-31, the card was downloaded on "
          "2060-01-01."},
         {FindingCode::CertificateExpired, Severity::Warning, 0xC108, dataG2,
          "EF_CA_Certificate: the certificate was valid until 2029-01-31, the card was downloaded on "
          "2060-01-01."},
         {FindingCode::CertificateExpired, Severity::Warning, 0xC100, dataG2,
          "EF_MA_Certificate: the certificate was valid until 2027-02-22, the card was downloaded on "
          "2060-01-01."},
         {FindingCode::CertificateExpired, Severity::Warning, 0xC101, dataG2,
          "EF_Card_Sign_Certificate: the certificate was valid until 2027-03-22, the card was downloaded "
          "on 2060-01-01."}},
        day(2060, 1, 1));
}

TEST(CertificateTest, WarnsOfEachCertificateThatIsNotYetValid)
{
    expectTold(
        secondAlone(), Verdict::Genuine,
        {{FindingCode::CertificateNotYetValid, Severity::Warning, 0xC109, dataG2,
          "EF_Link_Certificate: the certificate is valid from 2015-06-01, the card was downloaded on "
          "2010-01-01."},
         {FindingCode::CertificateNotYetValid, Severity::Warning, 0, noRecord,
          "The root key: the certificate is valid from 2015-06-01, the card was downloaded on "
          "2010-01-01."},
         {FindingCode::CertificateNotYetValid, Severity::Warning, 0xC108, dataG2,
          "EF_CA_Certificate: the certificate is valid from 2022-01-01, the card was downloaded on "
          "2010-01-01."},
         {FindingCode::CertificateNotYetValid, Severity::Warning, 0xC100, dataG2,
          "EF_MA_Certificate: the certificate is valid from 2022-02-23, the card was downloaded on "
          "2010-01-01."},
         {FindingCode::CertificateNotYetValid, Severity::Warning, 0xC101, dataG2,
          "EF_Card_Sign_Certificate: the certificate is valid from 2022-02-23, the card was downloaded on "
          "2010-01-01."}},
        day(2010, 1, 1));
}

TEST(CertificateTest, WarnsThatTheMemberStatesCertificateOfTheFirstGenerationHadExpired)
{
    const Image image = withFieldG1(0xC108, placesG1::validUntil, timeReal(2020, 2, 3));
    expectTold(
        image, Verdict::Genuine,
        {{FindingCode::CertificateExpired, Severity::Warning, 0xC108, dataG1,
          "EF_CA_Certificate: the certificate was valid until 2020-02-03, the card was downloaded on "
          "2024-03-05."}},
        day(2024, 3, 5));
}

TEST(CertificateTest, IsValidToItsLastSecond)
{
    const Image image = withFieldG1(0xC100, placesG1::validUntil, timeReal(2020, 2, 3));
    const QDateTime last(QDate(2020, 2, 3), QTime(0, 0), Qt::UTC);
    expectTold(image, Verdict::Genuine, {}, last);
    EXPECT_THAT(
        codesOf(verifyImage(image.bytes(), roots(), last.addSecs(1))),
        ElementsAre(FindingCode::CertificateExpired));
    // The moment counts, in whatever zone it is told.
    EXPECT_THAT(codesOf(verifyImage(image.bytes(), roots(), last.toOffsetFromUtc(7200))), IsEmpty());
    EXPECT_THAT(
        codesOf(verifyImage(image.bytes(), roots(), last.addSecs(1).toLocalTime())),
        ElementsAre(FindingCode::CertificateExpired));
}

TEST(CertificateTest, IsValidForEverWithoutAnEnd)
{
    const QByteArray never(4, '\xFF');
    expectTold(withFieldG1(0xC100, placesG1::validUntil, never), Verdict::Genuine, {}, day(2090, 1, 1));
    const Image image = withFieldG2(0xC101, placesG2::validUntil, never);
    const VerificationReport report = verifyImage(image.bytes(), allRoots(), day(2090, 1, 1));
    EXPECT_TRUE(report.applications.front().chain.back().validUntil.isNull());
    for (const Told& each : toldOf(report))
        EXPECT_NE(each.fid, 0xC101U);
}

TEST(CertificateTest, TellsDatesWithoutJudgingThemWhenTheDayIsNotKnown)
{
    const Image image = withFieldG2(0xC101, placesG2::validUntil, timeReal(2001, 1, 1));
    expectTold(image, Verdict::Genuine, {});
    const VerificationReport report = verifyImage(image.bytes(), allRoots());
    EXPECT_EQ(
        report.applications.front().chain.back().validUntil,
        QDateTime(QDate(2001, 1, 1), QTime(0, 0), Qt::UTC));
}

// What it is for.

TEST(CertificateTest, TellsTheCertificateOfAnotherKindOfHolder)
{
    struct Row
    {
        unsigned int fid;
        int type;
        const char* text;
    };
    const Row first[] = {
        {0xC100, 0x02, "EF_Card_Certificate holds a certificate for a workshop card, not for a driver card."},
        {0xC100, 0x00, "EF_Card_Certificate holds a certificate for a Member State, not for a driver card."},
        {0xC100, 0x06, "EF_Card_Certificate holds a certificate for a vehicle unit, not for a driver card."},
        {0xC100, 0x07,
         "EF_Card_Certificate holds a certificate for equipment of type 7, not for a driver card."},
        {0xC108, 0x01, "EF_CA_Certificate holds a certificate for a driver card, not for a Member State."},
    };
    for (const Row& row : first) {
        SCOPED_TRACE(row.text);
        expectTold(
            withFieldG1(row.fid, placesG1::equipment, QByteArray(1, static_cast<char>(row.type))),
            Verdict::Altered,
            {{FindingCode::CertificateForAnotherUse, Severity::Altered, row.fid, dataG1, row.text}});
    }
    const Row second[] = {
        {0xC100, 0x11,
         "EF_MA_Certificate holds a certificate for the signatures of a driver card, not for the mutual "
         "authentication of a driver card."},
        {0xC100, 0x02,
         "EF_MA_Certificate holds a certificate for the mutual authentication of a workshop card, not for "
         "the mutual authentication of a driver card."},
        {0xC101, 0x01,
         "EF_Card_Sign_Certificate holds a certificate for the mutual authentication of a driver card, not "
         "for the signatures of a driver card."},
        {0xC101, 0x12,
         "EF_Card_Sign_Certificate holds a certificate for the signatures of a workshop card, not for the "
         "signatures of a driver card."},
        {0xC101, 0x13,
         "EF_Card_Sign_Certificate holds a certificate for the signatures of a vehicle unit, not for the "
         "signatures of a driver card."},
        {0xC108, 0x0D, "EF_CA_Certificate holds a certificate for a root, not for a Member State."},
        {0xC109, 0x0E, "EF_Link_Certificate holds a certificate for a Member State, not for a root."},
    };
    for (const Row& row : second) {
        SCOPED_TRACE(row.text);
        expectTold(
            withFieldG2(row.fid, placesG2::equipment, QByteArray(1, static_cast<char>(row.type))),
            Verdict::Altered,
            {{FindingCode::CertificateForAnotherUse, Severity::Altered, row.fid, dataG2, row.text}});
    }
}

TEST(CertificateTest, TellsTheCertificateForAnotherApplication)
{
    expectTold(
        withFieldG1(0xC100, placesG1::authorisation, "\xFFSMRDT"), Verdict::Altered,
        {{FindingCode::CertificateForAnotherUse, Severity::Altered, 0xC100, dataG1,
          "EF_Card_Certificate holds a certificate for another application, not for a driver card."}});
    expectTold(
        withFieldG2(0xC101, placesG2::authorisation, "\xFFTACHO"), Verdict::Altered,
        {{FindingCode::CertificateForAnotherUse, Severity::Altered, 0xC101, dataG2,
          "EF_Card_Sign_Certificate holds a certificate for another application, not for the signatures of "
          "a driver card."}});
}

// Who made it out.

TEST(CertificateTest, TellsThatItNamesAnotherIssuer)
{
    const QByteArray other = arrayOf(sim::memberStateIdG1(0x12));
    expectTold(
        withFieldG1(0xC100, placesG1::issuer, other), Verdict::Altered,
        {{FindingCode::CertificateOfAnotherIssuer, Severity::Altered, 0xC100, dataG1,
          "EF_Card_Certificate was issued by 12 46 49 4E 01 54 4B 01, EF_CA_Certificate is that of 0D 44 20 "
          "20 "
          "01 54 4B 01."}});
    expectTold(
        withFieldG2(0xC101, placesG2::issuer, other), Verdict::Altered,
        {{FindingCode::CertificateOfAnotherIssuer, Severity::Altered, 0xC101, dataG2,
          "EF_Card_Sign_Certificate was issued by 12 46 49 4E 01 54 4B 01, EF_CA_Certificate is that of 0D "
          "44 "
          "20 20 30 54 4B 01."}});
}

TEST(CertificateTest, TellsThatItsEndNamesAnotherIssuer)
{
    const struct
    {
        unsigned int fid;
        const char* text;
    } rows[] = {
        {0xC100, "EF_Card_Certificate names another issuer at its end than the one that signed it."},
        {0xC108, "EF_CA_Certificate names another issuer at its end than the one that signed it."},
    };
    for (const auto& row : rows) {
        Image image = driver();
        QByteArray& certificate = image.payload(row.fid, dataG1);
        certificate.replace(certificate.size() - 8, 8, arrayOf(sim::memberStateIdG1(0x12)));
        expectTold(
            image, Verdict::Altered,
            {{FindingCode::CertificateInvalid, Severity::Altered, row.fid, dataG1, row.text}});
    }
}

TEST(CertificateTest, TellsThatItsIssuerSignedItWithAnotherKey)
{
    Image first = driver();
    const QByteArray content = contentG1(first.payload(0xC100, dataG1), sim::memberStatePrivateKeyG1());
    first.payload(0xC100, dataG1) = certificateG1(content, otherRsaKey());
    expectTold(
        first, Verdict::Altered,
        {{FindingCode::CertificateInvalid, Severity::Altered, 0xC100, dataG1,
          "EF_Card_Certificate was changed, or was not signed with the key in EF_CA_Certificate."}});

    const struct
    {
        unsigned int fid;
        const char* text;
    } rows[] = {
        {0xC100, "EF_MA_Certificate was changed, or was not signed with the key in EF_CA_Certificate."},
        {0xC101,
         "EF_Card_Sign_Certificate was changed, or was not signed with the key in EF_CA_Certificate."},
        {0xC108, "EF_CA_Certificate was changed, or was not signed with the root key that it names."},
        {0xC109, "EF_Link_Certificate was changed, or was not signed with the root key that it names."},
    };
    for (const auto& row : rows) {
        Image image = secondAlone();
        QByteArray& certificate = image.payload(row.fid, dataG2);
        certificate = changedG2(certificate, otherEcKey(), placesG2::profile, QByteArray(1, '\0'));
        expectTold(
            image, Verdict::Altered,
            {{FindingCode::CertificateInvalid, Severity::Altered, row.fid, dataG2, row.text}});
    }
}

TEST(CertificateTest, TellsARootKeyOfAnotherNameThanTheMemberStatesCertificateHas)
{
    const QByteArray renamed = arrayOf(sim::testKeyId(sim::RootNation, "EC", 9)) + rootFileG1().mid(8);
    const VerificationReport report = verifyImage(driver().bytes(), rootsIn({renamed}));
    EXPECT_EQ(report.verdict, Verdict::Altered);
    EXPECT_THAT(
        textsOf(report),
        ElementsAre("EF_CA_Certificate names another root key than the one that it was signed with."));
}

TEST(CertificateTest, TellsARootKeyThatOnlyHasTheNameOfTheRightOne)
{
    const QByteArray fake = rootFileG1().left(8) + otherRootFileG1().mid(8);
    const VerificationReport report = verifyImage(driver().bytes(), rootsIn({fake}));
    EXPECT_EQ(report.verdict, Verdict::Altered);
    EXPECT_THAT(
        textsOf(report),
        ElementsAre("EF_CA_Certificate was changed, or was not signed with the root key that it names."));
}

// What is not known.

TEST(CertificateTest, CannotJudgeAnotherProfile)
{
    struct Row
    {
        unsigned int fid;
        const char* text;
    };
    const Row first[] = {
        {0xC100, "EF_Card_Certificate has a profile or a key that is not known here."},
        {0xC108, "EF_CA_Certificate has a profile or a key that is not known here."},
    };
    for (const Row& row : first)
        expectTold(
            withFieldG1(row.fid, placesG1::profile, "\x02"), Verdict::Unproven,
            {{FindingCode::CertificateUnsupported, Severity::Unproven, row.fid, dataG1, row.text}});
    const Row second[] = {
        {0xC100, "EF_MA_Certificate has a profile or a curve that is not known here."},
        {0xC101, "EF_Card_Sign_Certificate has a profile or a curve that is not known here."},
        {0xC108, "EF_CA_Certificate has a profile or a curve that is not known here."},
        {0xC109, "EF_Link_Certificate has a profile or a curve that is not known here."},
    };
    for (const Row& row : second)
        expectTold(
            withFieldG2(row.fid, placesG2::profile, "\x01"), Verdict::Unproven,
            {{FindingCode::CertificateUnsupported, Severity::Unproven, row.fid, dataG2, row.text}});
}

TEST(CertificateTest, CannotJudgeAnotherCurve)
{
    const QByteArray secp256k1 = QByteArray::fromHex("2A8648CE3D03010A");
    const Image image = withFieldG2(0xC101, placesG2::curve, secp256k1);
    expectTold(
        image, Verdict::Unproven,
        {{FindingCode::CertificateUnsupported, Severity::Unproven, 0xC101, dataG2,
          "EF_Card_Sign_Certificate has a profile or a curve that is not known here."}});
    const ApplicationReport application = verifyImage(image.bytes(), allRoots()).applications.front();
    EXPECT_EQ(application.count(SignatureVerdict::NoCertificate), application.signedRecords());
    EXPECT_EQ(application.chain.back().algorithm, QString());
}

TEST(CertificateTest, CannotJudgeAKeyOfTheFirstGenerationThatIsNone)
{
    const QByteArray even(1, '\x02');
    expectTold(
        withFieldG1(0xC100, placesG1::modulus + 127, even), Verdict::Unproven,
        {{FindingCode::CertificateUnsupported, Severity::Unproven, 0xC100, dataG1,
          "EF_Card_Certificate has a profile or a key that is not known here."}});
}

TEST(CertificateTest, TellsAPointThatIsNotOnTheCurve)
{
    struct Row
    {
        unsigned int fid;
        const char* text;
    };
    for (const Row& row :
         {Row{0xC101, "EF_Card_Sign_Certificate tells a key that is none."},
          Row{0xC108, "EF_CA_Certificate tells a key that is none."},
          Row{0xC109, "EF_Link_Certificate tells a key that is none."}}) {
        const Image image = withFieldG2(row.fid, placesG2::point, "\x04" + QByteArray(64, '\x01'));
        expectTold(
            image, Verdict::Altered,
            {{FindingCode::CertificateUnreadable, Severity::Altered, row.fid, dataG2, row.text}});
    }
}

TEST(CertificateTest, DoesNotNeedTheKeyForMutualAuthentication)
{
    expectTold(withFieldG2(0xC100, placesG2::point, "\x04" + QByteArray(64, '\x01')), Verdict::Genuine, {});
}

TEST(CertificateTest, TellsAPointInAnotherForm)
{
    for (const char form : {'\x00', '\x02', '\x06'})
        expectTold(
            withFieldG2(0xC101, placesG2::point, QByteArray(1, form)), Verdict::Altered,
            {{FindingCode::CertificateUnreadable, Severity::Altered, 0xC101, dataG2,
              "EF_Card_Sign_Certificate tells a key that is none."}});
}

TEST(CertificateTest, TellsALengthThatIsNotInItsShortestForm)
{
    Image image = secondAlone();
    QByteArray& certificate = image.payload(0xC101, dataG2);
    certificate = QByteArray::fromHex("7F218200C8") + certificate.mid(4);
    expectTold(
        image, Verdict::Altered,
        {{FindingCode::CertificateUnreadable, Severity::Altered, 0xC101, dataG2,
          "EF_Card_Sign_Certificate holds nothing that can be read as a certificate."}});
}

// The link to the root before.

TEST(CertificateTest, LeadsFromTheRootBeforeOverTheLink)
{
    const VerificationReport report = verifyImage(secondAlone().bytes(), rootsIn({previousRootFileG2()}));
    EXPECT_EQ(report.verdict, Verdict::Genuine);
    EXPECT_THAT(toldOf(report), IsEmpty());
    const auto& chain = report.applications.front().chain;
    ASSERT_EQ(chain.size(), 5U);
    EXPECT_EQ(chain[0].verdict, CertificateVerdict::Trusted);
    EXPECT_EQ(keyIdentifierText(chain[0].holder), "FD 45 43 20 10 54 4B 01");
    EXPECT_EQ(chain[1].role, CertificateRole::Link);
    EXPECT_EQ(chain[1].verdict, CertificateVerdict::Valid);
    EXPECT_EQ(chain[2].verdict, CertificateVerdict::Valid);
}

TEST(CertificateTest, DoesNotLeadOverALinkThatWasChanged)
{
    Image image = secondAlone();
    QByteArray& link = image.payload(0xC109, dataG2);
    link.back() = static_cast<char>(link.back() ^ 0x01);
    const VerificationReport report = verifyImage(image.bytes(), rootsIn({previousRootFileG2()}));
    EXPECT_EQ(report.verdict, Verdict::Altered);
    EXPECT_THAT(codesOf(report), ElementsAre(FindingCode::CertificateInvalid, FindingCode::RootKeyUnknown));
}

TEST(CertificateTest, DoesNotLeadFromANewerRootToTheOneBefore)
{
    // A card that the root before vouches for, and that carries the link all the same.
    Image image = secondAlone();
    QByteArray& memberState = image.payload(0xC108, dataG2);
    const QByteArray before = image.payload(0xC109, dataG2).mid(placesG2::issuer, 8);
    memberState = changedG2(memberState, previousRootKeyG2(), placesG2::issuer, before);
    EXPECT_EQ(verifyImage(image.bytes(), rootsIn({previousRootFileG2()})).verdict, Verdict::Genuine);

    const VerificationReport report = verifyImage(image.bytes(), rootsIn({rootFileG2()}));
    EXPECT_EQ(report.verdict, Verdict::RootUnknown);
    EXPECT_THAT(
        textsOf(report),
        ElementsAre(
            "EF_Link_Certificate was not checked: the root key before, FD 45 43 20 10 54 4B 01, was not "
            "given.",
            "The root key FD 45 43 20 10 54 4B 01 of the second generation was not given. "
            "EF_Link_Certificate leads from it to FD 45 43 20 20 54 4B 01, but a newer root does not vouch "
            "for the older."));
}

TEST(CertificateTest, TellsALinkToAnotherKeyThanThatOfTheRoot)
{
    const Image image = withFieldG2(0xC109, placesG2::point, arrayOf(otherEcKey().publicPoint()));
    const VerificationReport report = verifyImage(image.bytes(), roots());
    EXPECT_EQ(report.verdict, Verdict::Altered);
    EXPECT_THAT(
        toldOf(report),
        ElementsAre(Told{
            FindingCode::CertificateInvalid, Severity::Altered, 0xC109, image.offsetOf(0xC109, dataG2),
            "EF_Link_Certificate tells another key of the root than the one that was given."}));
}

} // namespace
