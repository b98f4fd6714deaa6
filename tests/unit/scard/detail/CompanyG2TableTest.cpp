#include "fixtures/EfTableRows.h"
#include "fixtures/Image.h"

#include <scard/detail/CardApplication.h>
#include <scard/detail/CompanyG2Table.h>

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace {

using namespace scard::detail;
using test::Bytes;
using test::withByte;
using testing::ElementsAre;

// In reading order.
const std::vector<test::ExpectedRow> expectedRows = {
    {0x0520, "EF_Identification", "Error reading EF_Identification:", false, false, false, {{139, 1, 1}}},
    {0x0501,
     "EF_Application_Identification",
     "Error reading EF_Application_Identification:",
     false,
     false,
     false,
     {{5, 1, 1}}},
    {0xC100, "EF_MA_Certificate", "Error reading EF_MA_Certificate:", false, false, false, {{1, 0, 1}}},
    {0xC108, "EF_CA_Certificate", "Error reading EF_CA_Certificate:", false, false, false, {{1, 0, 1}}},
    {0xC109, "EF_Link_Certificate", "Error reading EF_Link_Certificate:", false, false, false, {{1, 0, 1}}},
    {0x050D,
     "EF_Company_Activity_Data",
     "Error reading EF_Company_Activity:",
     false,
     false,
     false,
     {{2, 1, 1}, {46, 0, 1}}},
    {0x0525,
     "EF_Application_Identification_V2",
     "Error reading EF_Application_Identification_V2:",
     false,
     false,
     true,
     {{4, 1, 1}}},
};

TEST(CompanyG2Table, IsTheSecondApplicationSavedAsTheFirstGenerationsData)
{
    EXPECT_EQ(companyG2Table().applicationName, std::string("\xFFSMRDT"));
    EXPECT_FALSE(companyG2Table().secondGeneration);
}

TEST(CompanyG2Table, TheDownloadReadsEveryEfInItsOrder)
{
    test::expectRows(companyG2Table(), expectedRows);
}

TEST(CompanyG2Table, IdentificationHasReadCardAndChip)
{
    test::expectIdentificationRows(companyG2Table());
}

TEST(CompanyG2Table, SavesInTheOrderOfTheDownloadImage)
{
    EXPECT_THAT(
        companyG2Table().saveOrder,
        ElementsAre(0x0002, 0x0005, 0x0501, 0xC100, 0xC108, 0xC109, 0x0520, 0x050D, 0x0525));
}

TEST(CompanyG2Table, EverySavedEfIsReadOnce)
{
    test::expectEverySavedEfIsReadOnce(companyG2Table());
}

TEST(CompanyG2Table, CertificatesOfTheSecondGenerationSayTheirLengthThemselves)
{
    EXPECT_THAT(test::certificatesOf(companyG2Table()), ElementsAre(0xC100, 0xC108, 0xC109));
}

TEST(CompanyG2Table, TheCountsComeFromTheIdentificationOfTheApplication)
{
    const std::vector<CountsEf>& counts = companyG2Table().counts;
    ASSERT_EQ(counts.size(), 2U);
    EXPECT_EQ(counts[0].fid, 0x0501);
    EXPECT_STREQ(
        counts[0].failureText,
        "calcDataToRead(): Error reading SCardCompany G2 EF_Application_Identification:");
    EXPECT_EQ(counts[1].fid, 0x0525);
    EXPECT_STREQ(
        counts[1].failureText,
        "calcDataToRead(): Error reading SCardCompany G2 EF_Application_Identification_V2:");
}

TEST(CompanyG2Table, TheStepStandsBehindWhatMadeItFail)
{
    EXPECT_EQ(companyG2Table().totalEntry, OwnEntry::Last);
    EXPECT_EQ(companyG2Table().stepEntry, OwnEntry::Last);
    EXPECT_EQ(companyG2Table().efFailure, EfFailure::RowsText);
}

const Bytes noRecords(5, 0);

/// What the table adds up by this identification EF; nothing answers for the certificates.
std::uint32_t total(OnCards onCards, const Bytes& identification)
{
    CardApplication application(companyG2Table());
    application.keep(0x0501, identification);
    scard::SCardGeneric noCard(0, QDateTime(), scard::RegionDDD);
    return application.dataToRead(noCard, onCards);
}

TEST(CompanyG2Table, FixedSizesAddUpTo38And141)
{
    EXPECT_EQ(total(OnCards::All, noRecords), 38U + 141U);
}

TEST(CompanyG2Table, AnActivityHas46Bytes)
{
    EXPECT_EQ(total(OnCards::All, withByte(noRecords, 4, 1)), 179U + 46U);
    EXPECT_EQ(total(OnCards::All, withByte(noRecords, 3, 1)), 179U + 256U * 46U);
    EXPECT_EQ(total(OnCards::All, Bytes(5, 0xFF)), 179U + 65535U * 46U);
}

TEST(CompanyG2Table, Version22HasFourBytesMore)
{
    EXPECT_EQ(total(OnCards::Version2_2, noRecords), 4U);
    EXPECT_EQ(total(OnCards::Version2_2, Bytes(5, 0xFF)), 4U);
}

} // namespace
