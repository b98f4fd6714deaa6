#include "fixtures/EfTableRows.h"
#include "fixtures/Image.h"

#include <scard/detail/CardApplication.h>
#include <scard/detail/CompanyG1Table.h>

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace {

using namespace scard::detail;
using test::Bytes;
using test::withByte;
using testing::ElementsAre;
using testing::IsEmpty;

// In reading order.
const std::vector<test::ExpectedRow> expectedRows = {
    {0x0501,
     "EF_Application_Identification",
     "Error reading EF_Application_Identification:",
     true,
     false,
     false,
     {{5, 1, 1}}},
    {0xC100, "EF_Card_Certificate", "Error reading EF_Card_Certificate:", false, false, false, {{1, 194, 1}}},
    {0xC108, "EF_CA_Certificate", "Error reading EF_CA_Certificate:", false, false, false, {{1, 194, 1}}},
    {0x050D,
     "EF_Company_Activity_Data",
     "Error reading EF_Company_Activity:",
     true,
     false,
     false,
     {{2, 1, 1}, {46, 0, 1}}},
};

TEST(CompanyG1Table, IsTheApplicationOfItsGeneration)
{
    EXPECT_EQ(companyG1Table().applicationName, std::string("\xFFTACHO"));
    EXPECT_FALSE(companyG1Table().secondGeneration);
}

TEST(CompanyG1Table, TheDownloadReadsEveryEfInItsOrder)
{
    test::expectRows(companyG1Table(), expectedRows);
}

TEST(CompanyG1Table, IdentificationHasReadCardAndChip)
{
    test::expectIdentificationRows(companyG1Table());
}

TEST(CompanyG1Table, SavesInTheOrderOfTheDownloadImage)
{
    EXPECT_THAT(companyG1Table().saveOrder, ElementsAre(0x0002, 0x0005, 0x0501, 0xC100, 0xC108, 0x050D));
}

TEST(CompanyG1Table, EverySavedEfIsReadOnce)
{
    test::expectEverySavedEfIsReadOnce(companyG1Table());
}

TEST(CompanyG1Table, CertificatesOfTheSecondGenerationSayTheirLengthThemselves)
{
    EXPECT_THAT(test::certificatesOf(companyG1Table()), IsEmpty());
}

TEST(CompanyG1Table, TheCountsComeFromTheIdentificationOfTheApplication)
{
    const std::vector<CountsEf>& counts = companyG1Table().counts;
    ASSERT_EQ(counts.size(), 1U);
    EXPECT_EQ(counts[0].fid, 0x0501);
    EXPECT_STREQ(
        counts[0].failureText,
        "calcDataToRead(): Error reading SCardCompany G1 EF_Application_Identification:");
}

TEST(CompanyG1Table, TheStepStandsBehindWhatMadeItFail)
{
    EXPECT_EQ(companyG1Table().totalEntry, OwnEntry::Last);
    EXPECT_EQ(companyG1Table().stepEntry, OwnEntry::Last);
    EXPECT_EQ(companyG1Table().efFailure, EfFailure::RowsText);
}

const Bytes noRecords(5, 0);

/// What the table adds up by this identification EF.
std::uint32_t total(const Bytes& identification)
{
    CardApplication application(companyG1Table());
    application.keep(0x0501, identification);
    scard::SCardGeneric noCard(0, QDateTime(), scard::RegionDDD);
    return application.dataToRead(noCard, OnCards::All);
}

TEST(CompanyG1Table, FixedSizesAddUpTo428)
{
    EXPECT_EQ(total(noRecords), 428U);
    EXPECT_EQ(total(withByte(withByte(noRecords, 0, 4), 1, 1)), 428U);
}

TEST(CompanyG1Table, AnActivityHas46Bytes)
{
    EXPECT_EQ(total(withByte(noRecords, 4, 1)), 428U + 46U);
    EXPECT_EQ(total(withByte(noRecords, 3, 1)), 428U + 256U * 46U);
    EXPECT_EQ(total(withByte(noRecords, 4, 230)), 11008U);
    EXPECT_EQ(total(Bytes(5, 0xFF)), 428U + 65535U * 46U);
}

} // namespace
