// Downloads of simulated cards as the cards made them: what is proven of them, and what is told.
#include "Image.h"
#include "Roots.h"
#include "Told.h"

#include <cli/Downloads.h>
#include <scardverify/VerifyImage.h>
#include <simulator/DriverCard.h>
#include <simulator/WorkshopCard.h>
#include <support/ExpectedDriver.h>
#include <support/ExpectedWorkshop.h>

#include <gmock/gmock.h>

#include <string>

namespace {

using namespace scard::verify;
using namespace test;
using testing::ElementsAre;
using testing::IsEmpty;

bool isCompanyOfSecondGeneration(const CardFile& download)
{
    return download.card.applications.size() == 2 && std::string(download.name).find("company") == 0;
}

std::vector<CardFile> downloads()
{
    std::vector<CardFile> all = realDownloads();
    const std::vector<CardFile>& small = smallDownloads();
    all.insert(all.end(), small.begin(), small.end());
    return all;
}

std::vector<Verdict> verdictsOf(const VerificationReport& report)
{
    std::vector<Verdict> verdicts;
    for (const ApplicationReport& application : report.applications)
        verdicts.push_back(application.verdict);
    return verdicts;
}

std::string hex(const QByteArray& bytes)
{
    return bytes.toHex(' ').toUpper().toStdString();
}

std::string text(const QDateTime& time)
{
    return time.toString(Qt::ISODate).toStdString();
}

/// A certificate of a chain as a row of a test.
struct ChainRow
{
    CertificateRole role;
    CertificateVerdict verdict;
    unsigned int fid;
    std::string holder;
    std::string issuer;
    std::string authorisation;
    std::string algorithm;
    std::string validFrom;
    std::string validUntil;

    bool operator==(const ChainRow& other) const
    {
        return role == other.role && verdict == other.verdict && fid == other.fid && holder == other.holder &&
               issuer == other.issuer && authorisation == other.authorisation &&
               algorithm == other.algorithm && validFrom == other.validFrom && validUntil == other.validUntil;
    }
};

void PrintTo(const ChainRow& row, std::ostream* stream)
{
    *stream << "role " << static_cast<int>(row.role) << ", verdict " << static_cast<int>(row.verdict)
            << ", EF " << std::hex << row.fid << std::dec << ", of " << row.holder << ", by " << row.issuer
            << ", for " << row.authorisation << ", " << row.algorithm << ", " << row.validFrom << " to "
            << row.validUntil;
}

std::vector<ChainRow> chainOf(const ApplicationReport& application)
{
    std::vector<ChainRow> rows;
    for (const CertificateReport& each : application.chain)
        rows.push_back(
            {each.role, each.verdict, each.fid, hex(each.holder), hex(each.issuer), hex(each.authorisation),
             each.algorithm.toStdString(), text(each.validFrom), text(each.validUntil)});
    return rows;
}

TEST(GenuineTest, KnowsEveryCardThatSigns)
{
    for (const CardFile& download : downloads()) {
        if (isCompanyOfSecondGeneration(download))
            continue;
        SCOPED_TRACE(download.name);
        const VerificationReport report = verifyImage(download.file, allRoots());
        EXPECT_EQ(report.verdict, Verdict::Genuine);
        EXPECT_THAT(toldOf(report), IsEmpty());
        EXPECT_EQ(report.applications.size(), download.card.applications.size());
        for (const ApplicationReport& application : report.applications) {
            EXPECT_EQ(application.verdict, Verdict::Genuine);
            EXPECT_TRUE(application.signaturesHold());
            EXPECT_EQ(application.count(SignatureVerdict::Valid), application.signedRecords());
        }
    }
}

TEST(GenuineTest, ProvesTheFirstApplicationOfACompanyCardAndNotTheSecond)
{
    for (const CardFile& download : downloads()) {
        if (!isCompanyOfSecondGeneration(download))
            continue;
        SCOPED_TRACE(download.name);
        const VerificationReport report = verifyImage(download.file, allRoots());
        EXPECT_EQ(report.verdict, Verdict::Unproven);
        EXPECT_THAT(verdictsOf(report), ElementsAre(Verdict::Genuine, Verdict::Unproven));
        EXPECT_THAT(
            toldOf(report), ElementsAre(Told{
                                FindingCode::ApplicationNotSigned, Severity::Unproven, 0, -1,
                                "Cards of this kind have no key to sign their second application with."}));
        const ApplicationReport& second = report.applications.at(1);
        EXPECT_EQ(second.generation, Generation::Second);
        EXPECT_EQ(second.signedRecords(), 0);
        EXPECT_FALSE(second.signaturesHold());
        for (const CertificateReport& each : second.chain)
            EXPECT_NE(each.role, CertificateRole::CardSign);
    }
}

class CurveTest : public testing::TestWithParam<sim::CurveDescription>
{};

/// Names as people write them.
std::string algorithmOf(const sim::CurveDescription& curve)
{
    const std::string group = curve.groupName;
    return group.find("brainpool") == 0
               ? group
               : "NIST P-" + std::to_string(curve.fieldLength == 66 ? 521 : 8 * curve.fieldLength);
}

TEST_P(CurveTest, KnowsDriverAndWorkshopCards)
{
    sim::DriverParametersG2 driver;
    driver.version2 = true;
    driver.activityLength = 600;
    driver.borderCrossings = 2;
    driver.loadUnloadOperations = 2;
    driver.curve = GetParam().curve;
    sim::WorkshopParametersG2 workshop;
    workshop.calibrations = 2;
    workshop.curve = GetParam().curve;
    const sim::Bytes images[] = {
        expectedDriverImageG2(sim::makeDriverCardG2(driver)),
        expectedWorkshopImageG2(sim::makeWorkshopCardG2(workshop))};
    for (const sim::Bytes& image : images) {
        const VerificationReport report = verifyImage(arrayOf(image), roots(GetParam().curve));
        EXPECT_EQ(report.verdict, Verdict::Genuine);
        EXPECT_THAT(codesOf(report), ElementsAre(FindingCode::LinkCertificateNotChecked));
        ASSERT_EQ(report.applications.size(), 2U);
        const ApplicationReport& second = report.applications.back();
        for (const CertificateReport& each : second.chain)
            EXPECT_EQ(each.algorithm.toStdString(), algorithmOf(GetParam()));
        for (const RecordReport& each : second.records) {
            if (each.signature == SignatureVerdict::Valid) {
                EXPECT_EQ(each.signatureLength, GetParam().signatureLength());
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(
    Of, CurveTest, testing::ValuesIn(sim::curves()),
    [](const testing::TestParamInfo<sim::CurveDescription>& tested) {
        return std::string(tested.param.groupName);
    });

TEST(GenuineTest, AsksForTheRootKeysThatWereNotGiven)
{
    const CardFile& download = smallDownload("driverV2");
    const VerificationReport report = verifyImage(download.file, {});
    EXPECT_EQ(report.verdict, Verdict::RootUnknown);
    EXPECT_THAT(verdictsOf(report), ElementsAre(Verdict::RootUnknown, Verdict::RootUnknown));
    const Image image(download.file);
    EXPECT_THAT(
        toldOf(report),
        ElementsAre(
            Told{
                FindingCode::RootKeyUnknown, Severity::RootUnknown, 0, -1,
                "The root key FD 45 43 20 00 54 4B 01 of the first generation was not given; its "
                "certificates cannot be opened without it."},
            Told{
                FindingCode::LinkCertificateNotChecked, Severity::Note, 0xC109,
                image.offsetOf(0xC109, dataG2),
                "EF_Link_Certificate was not checked: the root key before, FD 45 43 20 10 54 4B 01, was not "
                "given."},
            Told{
                FindingCode::RootKeyUnknown, Severity::RootUnknown, 0, -1,
                "The root key FD 45 43 20 20 54 4B 01 of the second generation was not given. "
                "EF_Link_Certificate leads to it from FD 45 43 20 10 54 4B 01, which would do as well if it "
                "is a root's."}));
}

TEST(GenuineTest, ChecksTheSignaturesOfTheSecondGenerationWithoutARoot)
{
    const VerificationReport report = verifyImage(smallDownload("driverV2").file, {});
    ASSERT_EQ(report.applications.size(), 2U);
    EXPECT_FALSE(report.applications[0].signaturesHold());
    EXPECT_EQ(
        report.applications[0].count(SignatureVerdict::NoCertificate),
        report.applications[0].signedRecords());
    EXPECT_TRUE(report.applications[1].signaturesHold());
}

TEST(GenuineTest, DoesNotTakeOneRootForAnother)
{
    const struct
    {
        const char* card;
        std::vector<QByteArray> files;
        std::vector<Verdict> verdicts;
    } rows[] = {
        {"driver", {otherRootFileG1()}, {Verdict::RootUnknown}},
        {"workshop", {rootFileG2(), previousRootFileG2()}, {Verdict::RootUnknown}},
        {"company", {otherRootFileG1(), rootFileG2()}, {Verdict::RootUnknown}},
        {"driverV2",
         {rootFileG1(), rootFileG2(sim::Curve::BrainpoolP256r1)},
         {Verdict::Genuine, Verdict::RootUnknown}},
        {"workshopV2",
         {otherRootFileG1(), rootFileG2(sim::Curve::NistP384), previousRootFileG2(sim::Curve::NistP384)},
         {Verdict::RootUnknown, Verdict::RootUnknown}},
        {"workshopV2", {rootFileG2()}, {Verdict::RootUnknown, Verdict::Genuine}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.card);
        const VerificationReport report = verifyImage(smallDownload(row.card).file, rootsIn(row.files));
        EXPECT_EQ(report.verdict, Verdict::RootUnknown);
        EXPECT_EQ(verdictsOf(report), row.verdicts);
    }
}

TEST(GenuineTest, FindsTheRightRootAmongMany)
{
    const auto many = rootsIn(
        {otherRootFileG1(), rootFileG2(sim::Curve::NistP521), previousRootFileG2(), rootFileG2(),
         rootFileG1()});
    EXPECT_EQ(verifyImage(smallDownload("driverV2").file, many).verdict, Verdict::Genuine);
}

/// Of the card in EF_ICC.
std::string serialNumber(const Image& image)
{
    return hex(image.payload(0x0002, dataG1).mid(1, 8));
}

/// A TimeReal in EF_Identification.
std::string timeIn(const Image& image, int offset)
{
    const auto seconds = image.payload(0x0520, dataG1).mid(offset, 4).toHex().toUInt(nullptr, 16);
    return text(QDateTime::fromSecsSinceEpoch(seconds, Qt::UTC));
}

constexpr int validityBeginAt = 57;
constexpr int expiryAt = 61;

TEST(GenuineTest, TellsTheChainOfTheFirstGeneration)
{
    for (const char* card : {"driver", "workshop", "company"}) {
        SCOPED_TRACE(card);
        const Image image(smallDownload(card).file);
        const VerificationReport report = verifyImage(image.bytes(), roots());
        ASSERT_EQ(report.applications.size(), 1U);
        const ApplicationReport& application = report.applications.front();
        EXPECT_EQ(application.generation, Generation::First);
        const std::string root = "FD 45 43 20 00 54 4B 01";
        const std::string memberState = "0D 44 20 20 01 54 4B 01";
        const std::string type = "0" + std::to_string(application.cardType);
        ASSERT_EQ(application.chain.size(), 3U);
        // EF_Identification of a company card is not in its download.
        const std::string until =
            std::string(card) == "company" ? text(application.chain[2].validUntil) : timeIn(image, expiryAt);
        EXPECT_FALSE(until.empty());
        EXPECT_THAT(
            chainOf(application),
            ElementsAre(
                ChainRow{
                    CertificateRole::Root, CertificateVerdict::Trusted, 0, root, root, "", "RSA-1024", "",
                    ""},
                ChainRow{
                    CertificateRole::MemberState, CertificateVerdict::Valid, 0xC108, memberState, root,
                    "FF 54 41 43 48 4F 00", "RSA-1024", "", ""},
                ChainRow{
                    CertificateRole::Card, CertificateVerdict::Valid, 0xC100, serialNumber(image),
                    memberState, "FF 54 41 43 48 4F " + type, "RSA-1024", "", until}));
    }
}

TEST(GenuineTest, TellsTheChainOfTheSecondGeneration)
{
    const struct
    {
        const char* card;
        std::string type;
        std::string memberStateFrom;
        std::string memberStateUntil;
        std::string signUntil;
    } rows[] = {
        {"driverV2", "1", "2022-01-01T00:00:00Z", "2029-01-31T23:59:59Z", "2027-03-22T23:59:59Z"},
        {"workshopV2", "2", "2024-01-01T00:00:00Z", "2031-01-31T23:59:59Z", "2025-03-16T23:59:59Z"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.card);
        const Image image(smallDownload(row.card).file);
        const VerificationReport report = verifyImage(image.bytes(), allRoots());
        ASSERT_EQ(report.applications.size(), 2U);
        const std::string root = "FD 45 43 20 20 54 4B 01";
        const std::string before = "FD 45 43 20 10 54 4B 01";
        const std::string memberState = "0D 44 20 20 30 54 4B 01";
        const std::string application = "FF 53 4D 52 44 54 ";
        const std::string curve = "NIST P-256";
        EXPECT_THAT(
            chainOf(report.applications[1]),
            ElementsAre(
                ChainRow{
                    CertificateRole::Root, CertificateVerdict::Trusted, 0, root, root, application + "0D",
                    curve, "2015-06-01T00:00:00Z", "2049-08-31T23:59:59Z"},
                ChainRow{
                    CertificateRole::Link, CertificateVerdict::Valid, 0xC109, root, before,
                    application + "0D", curve, "2015-06-01T00:00:00Z", "2032-08-31T23:59:59Z"},
                ChainRow{
                    CertificateRole::MemberState, CertificateVerdict::Valid, 0xC108, memberState, root,
                    application + "0E", curve, row.memberStateFrom, row.memberStateUntil},
                ChainRow{
                    CertificateRole::Card, CertificateVerdict::Valid, 0xC100, serialNumber(image),
                    memberState, application + "0" + row.type, curve, timeIn(image, validityBeginAt),
                    timeIn(image, expiryAt)},
                ChainRow{
                    CertificateRole::CardSign, CertificateVerdict::Valid, 0xC101, serialNumber(image),
                    memberState, application + "1" + row.type, curve, timeIn(image, validityBeginAt),
                    row.signUntil}));
    }
}

TEST(GenuineTest, TellsWhatItCanWithoutARoot)
{
    const VerificationReport report = verifyImage(smallDownload("driverV2").file, {});
    ASSERT_EQ(report.applications.size(), 2U);
    const auto first = chainOf(report.applications[0]);
    EXPECT_THAT(
        first, ElementsAre(
                   ChainRow{
                       CertificateRole::Root, CertificateVerdict::NotChecked, 0, "FD 45 43 20 00 54 4B 01",
                       "", "", "", "", ""},
                   ChainRow{
                       CertificateRole::MemberState, CertificateVerdict::NotChecked, 0xC108, "",
                       "FD 45 43 20 00 54 4B 01", "", "", "", ""},
                   ChainRow{
                       CertificateRole::Card, CertificateVerdict::NotChecked, 0xC100, "",
                       "0D 44 20 20 01 54 4B 01", "", "", "", ""}));
    const auto& second = report.applications[1].chain;
    ASSERT_EQ(second.size(), 5U);
    EXPECT_EQ(second[0].verdict, CertificateVerdict::NotChecked);
    EXPECT_EQ(hex(second[0].holder), "FD 45 43 20 20 54 4B 01");
    EXPECT_EQ(second[1].verdict, CertificateVerdict::NotChecked);
    EXPECT_EQ(second[2].verdict, CertificateVerdict::NotChecked);
    EXPECT_EQ(second[3].verdict, CertificateVerdict::Valid);
    EXPECT_EQ(second[4].verdict, CertificateVerdict::Valid);
}

TEST(GenuineTest, LeavesOutALinkThatTheCardDoesNotHave)
{
    Image without(smallDownload("workshopV2").file);
    without.remove(0xC109, dataG2);
    Image blank(smallDownload("workshopV2").file);
    blank.payload(0xC109, dataG2).fill('\0');
    for (const Image& image : {without, blank}) {
        const VerificationReport report = verifyImage(image.bytes(), roots());
        EXPECT_EQ(report.verdict, Verdict::Genuine);
        EXPECT_THAT(toldOf(report), IsEmpty());
        ASSERT_EQ(report.applications.size(), 2U);
        for (const CertificateReport& each : report.applications[1].chain)
            EXPECT_NE(each.role, CertificateRole::Link);
    }
}

/// The records of a generation, as the file has them.
void expectRecordsOf(const ApplicationReport& application, const Image& image, unsigned int dataType)
{
    std::size_t index = 0;
    long long offset = 0;
    int valid = 0;
    for (std::size_t i = 0; i < image.records.size(); ++i) {
        const Record& record = image.records[i];
        if (record.type == dataType) {
            ASSERT_LT(index, application.records.size());
            const RecordReport& told = application.records[index++];
            const bool isSigned = i + 1 < image.records.size() && image.records[i + 1].type == dataType + 1;
            EXPECT_EQ(told.offset, offset);
            EXPECT_EQ(told.fid, record.fid);
            EXPECT_EQ(told.length, record.payload.size());
            EXPECT_EQ(told.signatureLength, isSigned ? image.records[i + 1].payload.size() : 0);
            EXPECT_EQ(told.signature, isSigned ? SignatureVerdict::Valid : SignatureVerdict::NotSigned);
            valid += isSigned ? 1 : 0;
        }
        offset += record.bytes().size();
    }
    EXPECT_EQ(index, application.records.size());
    EXPECT_EQ(application.count(SignatureVerdict::Valid), valid);
    EXPECT_EQ(application.signedRecords(), valid);
}

TEST(GenuineTest, TellsEachRecord)
{
    const struct
    {
        const char* card;
        int cardType;
        std::vector<int> valid;
    } rows[] = {
        {"driver", 1, {12}},   {"driverG2", 1, {12, 14}},   {"driverV2", 1, {12, 20}},
        {"workshop", 2, {12}}, {"workshopV2", 2, {12, 21}}, {"company", 4, {2}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.card);
        const Image image(smallDownload(row.card).file);
        const VerificationReport report = verifyImage(image.bytes(), allRoots());
        std::vector<int> valid;
        for (const ApplicationReport& application : report.applications) {
            const bool isFirst = application.generation == Generation::First;
            EXPECT_EQ(application.cardType, row.cardType);
            expectRecordsOf(application, image, isFirst ? dataG1 : dataG2);
            valid.push_back(application.count(SignatureVerdict::Valid));
        }
        EXPECT_EQ(valid, row.valid);
    }
}

} // namespace
