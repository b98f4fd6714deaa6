// Workshop, control and company cards through their commands: which EFs there are, how large, and who may do
// what with them.

#include "CompanyCard.h"
#include "ControlCard.h"
#include "EcKey.h"
#include "ReadBack.h"
#include "RowName.h"
#include "Terminal.h"
#include "TestPki.h"
#include "TestPkiG2.h"
#include "VerifyG1.h"
#include "VerifyG2.h"
#include "WorkshopCard.h"

#include <gtest/gtest.h>
#include <numeric>
#include <set>

namespace {

using sim::AidG1;
using sim::AidG2;
using sim::Bytes;
using sim::Curve;
using sim::readU32;
using sim::slice;
using sim::toHex;

sim::CardDescription workshopG1()
{
    return sim::makeWorkshopCardG1();
}

sim::WorkshopParametersG2 workshopParameters(bool version2, Curve curve = Curve::NistP256)
{
    sim::WorkshopParametersG2 parameters;
    parameters.version2 = version2;
    parameters.curve = curve;
    return parameters;
}

sim::CardDescription workshopG2()
{
    return sim::makeWorkshopCardG2(workshopParameters(false));
}

sim::CardDescription workshopG2v2()
{
    return sim::makeWorkshopCardG2(workshopParameters(true));
}

sim::CardDescription controlG1()
{
    return sim::makeControlCardG1();
}

sim::CardDescription controlG2(bool version2)
{
    sim::ControlParametersG2 parameters;
    parameters.first.activityRecords = 520;
    parameters.version2 = version2;
    return sim::makeControlCardG2(parameters);
}

sim::CardDescription controlG2v1()
{
    return controlG2(false);
}

sim::CardDescription controlG2v2()
{
    return controlG2(true);
}

sim::CardDescription companyG1()
{
    return sim::makeCompanyCardG1();
}

sim::CardDescription companyG2(bool version2)
{
    sim::CompanyParametersG2 parameters;
    parameters.activityRecords = 520;
    parameters.version2 = version2;
    return sim::makeCompanyCardG2(parameters);
}

sim::CardDescription companyG2v1()
{
    return companyG2(false);
}

sim::CardDescription companyG2v2()
{
    return companyG2(true);
}

constexpr const char* Yes = "90 00";
constexpr const char* NoRight = "69 82";
constexpr const char* NoCondition = "69 85";
constexpr const char* NoFile = "6A 82";

/// An EF and what a terminal without keys is told.
struct FileRow
{
    std::uint16_t fid;
    std::size_t size;
    int sfid = 0;
    const char* read = Yes;
    const char* update = NoRight;
    const char* hash = Yes;
    const char* select = Yes;
};

const std::vector<FileRow> WorkshopFilesG1 = {
    {0x0501, 11},
    {0xC100, 194},
    {0xC108, 194},
    {0x0520, 211},
    {0x0509, 2, 0, Yes, Yes},
    {0x050A, 26778},
    {0x050B, 16, 0, NoRight, NoRight, NoCondition},
    {0x0502, 432},
    {0x0503, 288},
    {0x0504, 496},
    {0x0505, 250},
    {0x0506, 81},
    {0x0507, 19},
    {0x0508, 46},
    {0x0522, 10}};

const std::vector<FileRow> WorkshopFilesG2 = {
    {0x0501, 19, 1},          {0xC100, 204, 2},    {0xC101, 204, 3},
    {0xC108, 204, 4},         {0xC109, 204, 5},    {0x0520, 211, 6},
    {0x0509, 2, 7, Yes, Yes}, {0x050A, 45394, 10}, {0x050B, 102, 11, NoRight, NoRight, NoCondition, NoRight},
    {0x0502, 792, 12},        {0x0503, 288, 13},   {0x0504, 496, 14},
    {0x0505, 386, 15},        {0x0506, 170, 16},   {0x0507, 19, 17},
    {0x0508, 46, 18},         {0x0522, 22, 19},    {0x0523, 82, 20},
    {0x0524, 434, 21}};

const std::vector<FileRow> WorkshopFilesOfVersion2 = {
    {0x0525, 10, 22},   {0x0526, 42, 23},
    {0x0527, 122, 24},  {0x0528, 70, 25},
    {0x0529, 162, 26},  {0x0530, 22, 27},
    {0x0531, 6887, 28}, {0x0540, 3072, 30, NoRight, NoRight, NoCondition}};

const std::vector<FileRow> ControlFilesG1 = {
    {0x0501, 5},
    {0xC100, 194},
    {0xC108, 194},
    {0x0520, 211, 0, NoRight, NoRight, NoCondition},
    {0x050C, 10582}};

const std::vector<FileRow> CompanyFilesG1 = {
    {0x0501, 5},
    {0xC100, 194},
    {0xC108, 194},
    {0x0520, 139, 0, NoRight, NoRight, NoCondition},
    {0x050D, 10582}};

// Without a key for signatures nothing is hashed.
const std::vector<FileRow> ControlFilesG2 = {
    {0x0501, 5, 1, Yes, NoRight, NoCondition},   {0xC100, 204, 2, Yes, NoRight, NoCondition},
    {0xC108, 204, 4, Yes, NoRight, NoCondition}, {0xC109, 204, 5, Yes, NoRight, NoCondition},
    {0x0520, 211, 6, Yes, NoRight, NoCondition}, {0x050C, 10582, 14, Yes, NoRight, NoCondition}};

const std::vector<FileRow> CompanyFilesG2 = {
    {0x0501, 5, 1, Yes, NoRight, NoCondition},   {0xC100, 204, 2, Yes, NoRight, NoCondition},
    {0xC108, 204, 4, Yes, NoRight, NoCondition}, {0xC109, 204, 5, Yes, NoRight, NoCondition},
    {0x0520, 139, 6, Yes, NoRight, NoCondition}, {0x050D, 23922, 14, Yes, NoRight, NoCondition}};

const std::vector<FileRow> OfficeFilesOfVersion2 = {
    {0x0525, 4, 22, Yes, NoRight, NoCondition}, {0x0540, 3072, 30, NoRight, NoRight, NoCondition}};

std::vector<FileRow> together(std::vector<FileRow> files, const std::vector<FileRow>& others)
{
    files.insert(files.end(), others.begin(), others.end());
    return files;
}

std::vector<FileRow> withActivity(std::vector<FileRow> files, std::size_t size)
{
    files.back().size = size;
    return files;
}

struct CardRow
{
    const char* name;
    sim::CardDescription (*make)();
    std::vector<FileRow> first;
    std::vector<FileRow> second;
    /// The first bytes of the SHA-256 of all files; a changed generator changes them.
    const char* digest;
};

void PrintTo(const CardRow& row, std::ostream* out)
{
    *out << row.name;
}

class CardOfAKind : public testing::TestWithParam<CardRow>
{
  protected:
    Terminal m_terminal{GetParam().make()};

    /// Calls `test` with the rows of each application, which is selected.
    template <typename Test>
    void inEachApplication(Test test)
    {
        ASSERT_EQ(m_terminal.select(AidG1), Yes);
        test(GetParam().first);
        ASSERT_EQ(m_terminal.select(AidG2), GetParam().second.empty() ? NoFile : Yes);
        if (!GetParam().second.empty()) {
            test(GetParam().second);
        }
    }
};

TEST_P(CardOfAKind, hasTheSameBytesOnEveryMachine)
{
    EXPECT_EQ(
        toHex(slice(sim::sha2(Curve::NistP256, everything(GetParam().make())), 0, 4)), GetParam().digest);
}

TEST_P(CardOfAKind, hasItsFilesAndNoOthers)
{
    inEachApplication([&](const std::vector<FileRow>& rows) {
        std::set<std::uint16_t> fids;
        for (const FileRow& row : rows) {
            EXPECT_EQ(m_terminal.select(row.fid), row.select) << std::hex << row.fid;
            fids.insert(row.fid);
        }
        for (std::uint32_t fid = 0; fid <= 0xFFFF; ++fid) {
            if (fids.count(static_cast<std::uint16_t>(fid)) == 0) {
                ASSERT_EQ(m_terminal.select(static_cast<std::uint16_t>(fid)), NoFile) << std::hex << fid;
            }
        }
    });
}

TEST_P(CardOfAKind, givesWholeFilesAndNotAByteMore)
{
    inEachApplication([&](const std::vector<FileRow>& rows) {
        const Bytes aid = &rows == &GetParam().first ? AidG1 : AidG2;
        for (const FileRow& row : rows) {
            SCOPED_TRACE(
                toHex({static_cast<std::uint8_t>(row.fid >> 8), static_cast<std::uint8_t>(row.fid)}));
            const Bytes* stored = m_terminal.card().file(aid, row.fid);
            ASSERT_TRUE(stored);
            EXPECT_EQ(stored->size(), row.size);
            if (m_terminal.select(row.fid) != Yes) {
                continue;
            }
            const auto read = m_terminal.read(row.size);
            ASSERT_EQ(read.has_value(), row.read == std::string(Yes));
            if (read) {
                EXPECT_EQ(*read, *stored);
                EXPECT_FALSE(m_terminal.read(row.size + 1));
            } else {
                EXPECT_EQ(m_terminal.ask("00 B0 00 00 01"), row.read);
            }
        }
    });
}

TEST_P(CardOfAKind, letsOnlyTheCountOfCalibrationsBeWritten)
{
    inEachApplication([&](const std::vector<FileRow>& rows) {
        const Bytes aid = &rows == &GetParam().first ? AidG1 : AidG2;
        for (const FileRow& row : rows) {
            if (m_terminal.select(row.fid) != Yes) {
                continue;
            }
            const Bytes before = *m_terminal.card().file(aid, row.fid);
            EXPECT_EQ(m_terminal.update({0xA5, 0x5A}), row.update) << std::hex << row.fid;
            const Bytes& after = *m_terminal.card().file(aid, row.fid);
            if (row.update == std::string(Yes)) {
                EXPECT_EQ(toHex(after), "A5 5A");
            } else {
                EXPECT_EQ(after, before) << std::hex << row.fid;
            }
        }
    });
}

TEST_P(CardOfAKind, hashesWhatItMaySign)
{
    inEachApplication([&](const std::vector<FileRow>& rows) {
        for (const FileRow& row : rows) {
            if (m_terminal.select(row.fid) == Yes) {
                EXPECT_EQ(m_terminal.hash(), row.hash) << std::hex << row.fid;
            }
        }
    });
}

TEST_P(CardOfAKind, findsTheFilesOfTheSecondGenerationByTheirShortIdentifiers)
{
    inEachApplication([&](const std::vector<FileRow>& rows) {
        std::set<int> unused;
        for (int sfid = 1; sfid <= 30; ++sfid) {
            unused.insert(sfid);
        }
        for (const FileRow& row : rows) {
            if (row.sfid == 0) {
                continue;
            }
            unused.erase(row.sfid);
            const std::string answer =
                m_terminal.ask("00 B0 " + toHex({static_cast<std::uint8_t>(0x80 + row.sfid)}) + " 00 02");
            const std::string expected =
                row.read == std::string(Yes)
                    ? toHex(slice(*m_terminal.card().file(AidG2, row.fid), 0, 2)) + " 90 00"
                    : row.read;
            EXPECT_EQ(answer, expected) << std::hex << row.fid;
        }
        for (const int sfid : unused) {
            EXPECT_EQ(
                m_terminal.ask("00 B0 " + toHex({static_cast<std::uint8_t>(0x80 + sfid)}) + " 00 01"), NoFile)
                << sfid;
        }
    });
}

TEST_P(CardOfAKind, showsItsChipAndItsApplicationsInTheMasterFile)
{
    const bool isSecond = !GetParam().second.empty();
    EXPECT_EQ(m_terminal.select(std::uint16_t{0x0002}), Yes);
    const auto icc = m_terminal.read(25);
    ASSERT_TRUE(icc);
    EXPECT_EQ(toHex(slice(*icc, 7, 1)), toHex(slice(*m_terminal.card().file(AidG1, 0x0501), 0, 1)));
    EXPECT_EQ(m_terminal.select(std::uint16_t{0x0005}), Yes);
    EXPECT_TRUE(m_terminal.read(8));
    EXPECT_EQ(m_terminal.select(std::uint16_t{0x2F00}), isSecond ? Yes : NoFile);
    EXPECT_EQ(m_terminal.ask("00 B0 9E 00 14").size() > 6, isSecond);
}

TEST_P(CardOfAKind, certifiesItsKeyOfTheFirstGeneration)
{
    const sim::Card& card = m_terminal.card();
    const auto authority =
        sim::verifyCertificateG1(*card.file(AidG1, 0xC108), *sim::publicKeyFromRootG1(sim::rootKeyG1()));
    ASSERT_TRUE(authority);
    const auto certificate = sim::verifyCertificateG1(*card.file(AidG1, 0xC100), authority->key);
    ASSERT_TRUE(certificate);
    EXPECT_EQ(toHex(slice(certificate->authorisation, 0, 6)), "FF 54 41 43 48 4F");
    EXPECT_EQ(certificate->authorisation.back(), card.file(AidG1, 0x0501)->at(0));
    EXPECT_EQ(certificate->holder, slice(*card.file(sim::MasterFile, 0x0002), 1, 8));
    EXPECT_EQ(certificate->endOfValidity, readU32(*card.file(AidG1, 0x0520), 61));

    ASSERT_EQ(m_terminal.select(AidG1), Yes);
    for (const FileRow& row : GetParam().first) {
        if (m_terminal.select(row.fid) == Yes && row.hash == std::string(Yes)) {
            const auto signature = m_terminal.sign(128);
            ASSERT_TRUE(signature);
            EXPECT_TRUE(sim::verifySignatureG1(certificate->key, *card.file(AidG1, row.fid), *signature))
                << std::hex << row.fid;
        }
    }
}

TEST_P(CardOfAKind, refusesHashAndSignatureWhereItIsToldTo)
{
    sim::Switches switches = m_terminal.card().switches();
    switches.hashRefused = sim::sw::InstructionUnknown;
    m_terminal.card().setSwitches(switches);
    ASSERT_EQ(m_terminal.select(AidG1), Yes);
    ASSERT_EQ(m_terminal.select(std::uint16_t{0x0501}), Yes);
    EXPECT_EQ(m_terminal.hash(), "6D 00");
    switches.hashRefused.reset();
    switches.signRefused = sim::sw::SecurityNotSatisfied;
    m_terminal.card().setSwitches(switches);
    EXPECT_EQ(m_terminal.hash(), Yes);
    EXPECT_EQ(m_terminal.ask("00 2A 9E 9A 80"), NoRight);
}

TEST_P(CardOfAKind, hasTheOddFormOfReadInTheSecondGenerationOnly)
{
    ASSERT_EQ(m_terminal.select(AidG1), Yes);
    ASSERT_EQ(m_terminal.select(std::uint16_t{0x0501}), Yes);
    EXPECT_EQ(
        m_terminal.ask("00 B1 00 00 03 54 01 00 03"),
        GetParam().second.empty()
            ? "6D 00"
            : "53 01 " + toHex(slice(*m_terminal.card().file(AidG1, 0x0501), 0, 1)) + " 90 00");
}

INSTANTIATE_TEST_SUITE_P(
    All, CardOfAKind,
    testing::Values(
        CardRow{"workshopG1", workshopG1, WorkshopFilesG1, {}, "81 22 9B 88"},
        CardRow{"workshopG2", workshopG2, WorkshopFilesG1, WorkshopFilesG2, "41 80 0C 77"},
        CardRow{
            "workshopG2v2", workshopG2v2, WorkshopFilesG1, together(WorkshopFilesG2, WorkshopFilesOfVersion2),
            "34 B2 E8 14"},
        CardRow{"controlG1", controlG1, ControlFilesG1, {}, "90 97 08 03"},
        CardRow{"controlG2", controlG2v1, withActivity(ControlFilesG1, 23922), ControlFilesG2, "1F 2C EB 69"},
        CardRow{
            "controlG2v2", controlG2v2, withActivity(ControlFilesG1, 23922),
            together(ControlFilesG2, OfficeFilesOfVersion2), "6F 11 15 10"},
        CardRow{"companyG1", companyG1, CompanyFilesG1, {}, "2A 44 D6 4D"},
        CardRow{"companyG2", companyG2v1, CompanyFilesG1, CompanyFilesG2, "79 80 84 F6"},
        CardRow{
            "companyG2v2", companyG2v2, CompanyFilesG1, together(CompanyFilesG2, OfficeFilesOfVersion2),
            "41 97 D8 F9"}),
    RowName());

std::size_t
sizeOf(const std::vector<sim::FileDescription>& files, const std::set<std::uint16_t>& without = {})
{
    return std::accumulate(
        files.begin(), files.end(), std::size_t{0}, [&](std::size_t sum, const sim::FileDescription& file) {
            return sum + (without.count(file.fid) != 0 ? 0 : file.content.size());
        });
}

TEST(CardSizes, addUpToThoseOfTheRegulation)
{
    EXPECT_EQ(sizeOf(workshopG1().applications.at(0).files), 29028u);
    const auto largest = sim::makeWorkshopCardG2(workshopParameters(true, Curve::NistP521));
    EXPECT_EQ(sizeOf(largest.applications.at(1).files), 60214u);
}

TEST(CardSizes, addUpToWhatADownloadReads)
{
    const std::size_t chip = 25 + 8;
    EXPECT_EQ(chip + sizeOf(workshopG1().applications.at(0).files, {0x050B}), 29045u);
    sim::WorkshopParametersG2 parameters = workshopParameters(false, Curve::BrainpoolP256r1);
    parameters.linkCertificate = sim::CertificateFiles::Empty;
    const std::set<std::uint16_t> unread = {0x050B, 0x0540};
    EXPECT_EQ(chip + sizeOf(sim::makeWorkshopCardG2(parameters).applications.at(1).files, unread), 49213u);
    parameters.version2 = true;
    EXPECT_EQ(
        chip + sizeOf(sim::makeWorkshopCardG2(parameters).applications.at(1).files, unread), 49213u + 7315u);
    EXPECT_EQ(chip + sizeOf(companyG1().applications.at(0).files, {0x0520}), 11008u);
}

class CardOfACurve : public testing::TestWithParam<sim::CurveDescription>
{
  protected:
    Curve m_curve = GetParam().curve;

    static sim::PublicKeyG2 memberState(const sim::Card& card, Curve curve)
    {
        const auto root = sim::publicKeyFromRootCertificateG2(sim::rootCertificateG2(curve)).value();
        return sim::verifyCertificateG2(*card.file(AidG2, 0xC108), root).value().key;
    }
};

TEST_P(CardOfACurve, ofAWorkshopSignsEveryFileThatMayBeSigned)
{
    Terminal terminal(sim::makeWorkshopCardG2(workshopParameters(true, m_curve)));
    const sim::Card& card = terminal.card();
    const sim::PublicKeyG2 authority = memberState(card, m_curve);
    const auto signing = sim::verifyCertificateG2(*card.file(AidG2, 0xC101), authority);
    const auto mutual = sim::verifyCertificateG2(*card.file(AidG2, 0xC100), authority);
    ASSERT_TRUE(signing && mutual);
    EXPECT_EQ(toHex(mutual->authorisation), "FF 53 4D 52 44 54 02");
    EXPECT_EQ(toHex(signing->authorisation), "FF 53 4D 52 44 54 12");
    const Bytes serial = slice(*card.file(sim::MasterFile, 0x0002), 1, 8);
    EXPECT_EQ(signing->holder, serial);
    EXPECT_EQ(mutual->holder, serial);
    const Bytes& identification = *card.file(AidG2, 0x0520);
    EXPECT_EQ(signing->effective, mutual->effective);
    EXPECT_EQ(mutual->effective, readU32(identification, 57));
    EXPECT_EQ(mutual->expires, readU32(identification, 61));

    ASSERT_EQ(terminal.select(AidG2), Yes);
    const std::size_t length = GetParam().signatureLength();
    for (const FileRow& row : together(WorkshopFilesG2, WorkshopFilesOfVersion2)) {
        if (row.hash == std::string(Yes)) {
            ASSERT_EQ(terminal.select(row.fid), Yes);
            const auto signature = terminal.sign(length);
            ASSERT_TRUE(signature) << std::hex << row.fid;
            EXPECT_TRUE(sim::verifySignatureG2(signing->key, *card.file(AidG2, row.fid), *signature))
                << std::hex << row.fid;
        }
    }
}

TEST_P(CardOfACurve, ofABodyHasNoKeyForSignatures)
{
    sim::ControlParametersG2 control;
    control.curve = m_curve;
    sim::CompanyParametersG2 company;
    company.curve = m_curve;
    const std::pair<const char*, sim::CardDescription> cards[] = {
        {"FF 53 4D 52 44 54 03", sim::makeControlCardG2(control)},
        {"FF 53 4D 52 44 54 04", sim::makeCompanyCardG2(company)}};
    for (const auto& [authorisation, description] : cards) {
        Terminal terminal(description);
        const sim::Card& card = terminal.card();
        const auto mutual = sim::verifyCertificateG2(*card.file(AidG2, 0xC100), memberState(card, m_curve));
        ASSERT_TRUE(mutual);
        EXPECT_EQ(toHex(mutual->authorisation), authorisation);
        EXPECT_EQ(mutual->holder, slice(*card.file(sim::MasterFile, 0x0002), 1, 8));
        EXPECT_EQ(mutual->effective, readU32(*card.file(AidG2, 0x0520), 57));
        EXPECT_EQ(mutual->expires, readU32(*card.file(AidG2, 0x0520), 61));
        ASSERT_EQ(terminal.select(AidG2), Yes);
        ASSERT_EQ(terminal.select(std::uint16_t{0x0501}), Yes);
        EXPECT_EQ(terminal.hash(), NoCondition);
        EXPECT_EQ(
            terminal.ask("00 2A 9E 9A " + toHex({static_cast<std::uint8_t>(GetParam().signatureLength())})),
            NoCondition);
    }
}

INSTANTIATE_TEST_SUITE_P(All, CardOfACurve, testing::ValuesIn(sim::curves()), curveName);

TEST(CertificatesOfACard, areFilledInTheFormAskedFor)
{
    sim::WorkshopParametersG2 workshop;
    workshop.certificateFiles = sim::CertificateFiles::Padded;
    workshop.linkCertificate = sim::CertificateFiles::Missing;
    sim::CompanyParametersG2 company;
    company.certificateFiles = sim::CertificateFiles::Empty;
    company.linkCertificate = sim::CertificateFiles::Padded;
    sim::ControlParametersG2 control;
    control.certificateFiles = sim::CertificateFiles::Missing;

    const sim::Card workshopCard(sim::makeWorkshopCardG2(workshop));
    for (const std::uint16_t fid : {std::uint16_t{0xC100}, std::uint16_t{0xC101}, std::uint16_t{0xC108}}) {
        EXPECT_EQ(workshopCard.file(AidG2, fid)->size(), 341u);
    }
    EXPECT_FALSE(workshopCard.file(AidG2, 0xC109));
    const sim::Card companyCard(sim::makeCompanyCardG2(company));
    EXPECT_EQ(*companyCard.file(AidG2, 0xC100), Bytes(204, 0x00));
    EXPECT_EQ(*companyCard.file(AidG2, 0xC108), Bytes(204, 0x00));
    EXPECT_EQ(companyCard.file(AidG2, 0xC109)->size(), 341u);
    const sim::Card controlCard(sim::makeControlCardG2(control));
    EXPECT_FALSE(controlCard.file(AidG2, 0xC100));
    EXPECT_FALSE(controlCard.file(AidG2, 0xC108));
    EXPECT_EQ(controlCard.file(AidG2, 0xC109)->size(), 204u);
}

struct OddRow
{
    const char* name;
    sim::Switches::OddHeader header;
    sim::Switches::OddEnd end;
    sim::Switches::BeyondEnd beyond;
    std::size_t step;
    std::size_t wholeSteps;
    /// Answer to Le = 00 at the last, shorter step, and the Le that works there.
    const char* lastAnswer;
    std::uint8_t lastLe;
};

void PrintTo(const OddRow& row, std::ostream* out)
{
    *out << row.name;
}

class OddReadOfCalibrations : public testing::TestWithParam<OddRow>
{};

TEST_P(OddReadOfCalibrations, takesAsManyStepsAsTheHeaderCosts)
{
    const OddRow& row = GetParam();
    sim::WorkshopParametersG2 parameters = workshopParameters(true);
    parameters.first.usedCalibrations = 300;
    Terminal terminal(sim::makeWorkshopCardG2(parameters));
    sim::Switches switches = terminal.card().switches();
    switches.oddHeader = row.header;
    switches.oddEnd = row.end;
    switches.beyondEnd = row.beyond;
    terminal.card().setSwitches(switches);
    ASSERT_EQ(terminal.select(AidG2), Yes);
    ASSERT_EQ(terminal.select(std::uint16_t{0x050A}), Yes);

    const Bytes& file = *terminal.card().file(AidG2, 0x050A);
    const auto readAt = [&](std::size_t offset, std::uint8_t le) {
        // The offset in the fewest bytes.
        Bytes object = {0x54, 0x02};
        if (offset > 0xFF) {
            sim::appendU16(object, static_cast<std::uint32_t>(offset));
        } else {
            object = {0x54, 0x01, static_cast<std::uint8_t>(offset)};
        }
        Bytes command = {0x00, 0xB1, 0x00, 0x00, static_cast<std::uint8_t>(object.size())};
        sim::appendBytes(command, object);
        command.push_back(le);
        return terminal.ask(toHex(command));
    };
    const auto object = [&](const char* header, std::size_t offset, std::size_t length) {
        return header + (" " + toHex(slice(file, offset, length))) + " 90 00";
    };
    const bool isShort = row.header == sim::Switches::OddHeader::Shortest;
    std::size_t offset = 4;
    for (std::size_t i = 0; i < row.wholeSteps; ++i) {
        ASSERT_EQ(readAt(offset, 0x00), object(isShort ? "53 81 FD" : "53 82 00 FC", offset, row.step));
        offset += row.step;
    }
    const std::size_t rest = file.size() - offset;
    ASSERT_LT(rest, row.step);
    ASSERT_GT(rest, 0u);
    const std::string last = object(isShort ? "53 67" : "53 82 00 1E", offset, rest);
    EXPECT_EQ(readAt(offset, 0x00), row.end == sim::Switches::OddEnd::Rest ? last : row.lastAnswer);
    EXPECT_EQ(readAt(offset, row.lastLe), last);
}

using sim::Switches;

INSTANTIATE_TEST_SUITE_P(
    All, OddReadOfCalibrations,
    testing::Values(
        OddRow{
            "shortHeaderRest", Switches::OddHeader::Shortest, Switches::OddEnd::Rest,
            Switches::BeyondEnd::Refuse, 253, 179, "", 0x69},
        OddRow{
            "shortHeaderRefused", Switches::OddHeader::Shortest, Switches::OddEnd::Refuse,
            Switches::BeyondEnd::Refuse, 253, 179, "67 00", 0x69},
        OddRow{
            "shortHeaderBytesLeft", Switches::OddHeader::Shortest, Switches::OddEnd::Refuse,
            Switches::BeyondEnd::BytesLeft, 253, 179, "6C 69", 0x69},
        OddRow{
            "longHeaderRest", Switches::OddHeader::TwoBytes, Switches::OddEnd::Rest,
            Switches::BeyondEnd::Refuse, 252, 180, "", 0x22},
        OddRow{
            "longHeaderRefused", Switches::OddHeader::TwoBytes, Switches::OddEnd::Refuse,
            Switches::BeyondEnd::Refuse, 252, 180, "67 00", 0x22},
        OddRow{
            "longHeaderBytesLeft", Switches::OddHeader::TwoBytes, Switches::OddEnd::Refuse,
            Switches::BeyondEnd::BytesLeft, 252, 180, "6C 22", 0x22}),
    RowName());

} // namespace
