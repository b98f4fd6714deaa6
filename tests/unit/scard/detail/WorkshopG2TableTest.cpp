#include "fixtures/EfTableRows.h"
#include "fixtures/Image.h"

#include <scard/detail/CardApplication.h>
#include <scard/detail/WorkshopG2Table.h>

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
    {0x0520, "EF_Identification", "Error reading EF_Identification:", true, false, false, {{211, 1, 1}}},
    {0x0501,
     "EF_Application_Identification",
     "Error reading EF_Application_Identification:",
     true,
     false,
     false,
     {{19, 1, 1}}},
    {0xC100, "EF_MA_Certificate", "Error reading EF_MA_Certificate:", false, true, false, {{1, 0, 1}}},
    {0xC101,
     "EF_Card_Sign_Certificate",
     "Error reading EF_Card_Sign_Certificate:",
     false,
     true,
     false,
     {{1, 0, 1}}},
    {0xC108, "EF_CA_Certificate", "Error reading EF_CA_Certificate:", false, true, false, {{1, 0, 1}}},
    {0xC109, "EF_Link_Certificate", "Error reading EF_Link_Certificate:", false, true, false, {{1, 0, 1}}},
    {0x0509, "EF_Card_Download", "Error reading EF_Card_Download:", true, true, false, {{2, 1, 1}}},
    {0x050A,
     "EF_Calibration",
     "Error reading EF_Calibration:",
     true,
     false,
     false,
     {{2, 1, 1}, {2, 1, 1}, {178, 0, 1}}},
    {0x0502, "EF_EventsData", "Error reading EF_EventsData:", true, false, false, {{24, 0, 11}}},
    {0x0503, "EF_FaultsData", "Error reading EF_FaultsData:", true, false, false, {{24, 0, 2}}},
    {0x0504,
     "EF_Driver_Activity_Data",
     "Error reading EF_Driver_Activity_Data:",
     true,
     false,
     false,
     {{2, 1, 1}, {2, 1, 1}, {1, 0, 1}}},
    {0x0505,
     "EF_Vehicles_Used",
     "Error reading EF_Vehicles_Used:",
     true,
     false,
     false,
     {{2, 1, 1}, {48, 0, 1}}},
    {0x0506, "EF_Places", "Error reading EF_Places:", true, false, false, {{2, 1, 1}, {21, 0, 1}}},
    {0x0507, "EF_Current_Usage", "Error reading EF_Current_Usage:", true, false, false, {{19, 1, 1}}},
    {0x0508,
     "EF_Control_Activity_Data",
     "Error reading EF_Control_Activity_Data:",
     true,
     false,
     false,
     {{46, 1, 1}}},
    {0x0523,
     "EF_Vehicle_Units_Used",
     "Error reading m_EF_Vehicle_Units_Used:",
     true,
     false,
     false,
     {{2, 1, 1}, {10, 0, 1}}},
    {0x0524,
     "EF_GNSS_Places",
     "Error reading m_EF_GNSS_Places:",
     true,
     false,
     false,
     {{2, 1, 1}, {18, 0, 1}}},
    {0x0522,
     "EF_Specific_Conditions",
     "Error reading m_EF_Specitifc_Conditions:",
     true,
     false,
     false,
     {{2, 1, 1}, {5, 0, 1}}},
    {0x0525,
     "EF_Application_Identification_V2",
     "Error reading EF_Application_Identification_V2:",
     true,
     false,
     true,
     {{10, 1, 1}}},
    {0x0526,
     "EF_Places_Authentication",
     "Error reading EF_Places_Authentication:",
     true,
     true,
     true,
     {{2, 1, 1}, {5, 0, 1}}},
    {0x0527,
     "EF_GNSS_Places_Authentication",
     "Error reading EF_GNSS_Places_Authentication:",
     true,
     true,
     true,
     {{2, 1, 1}, {5, 0, 1}}},
    {0x0528,
     "EF_Border_Crossing",
     "Error reading EF_Border_Crossing:",
     true,
     true,
     true,
     {{2, 1, 1}, {17, 0, 1}}},
    {0x0529,
     "EF_Load_Unload_Operations",
     "Error reading EF_Load_Unload_Operations:",
     true,
     true,
     true,
     {{2, 1, 1}, {20, 0, 1}}},
    {0x0530,
     "EF_Load_Type_Entries",
     "Error reading EF_Load_Type_Entries:",
     true,
     true,
     true,
     {{2, 1, 1}, {5, 0, 1}}},
    {0x0531,
     "EF_Calibration_Add_Data",
     "Error reading EF_Calibration_Add_Data:",
     true,
     true,
     true,
     {{2, 1, 1}, {27, 0, 1}}},
};

TEST(WorkshopG2Table, IsTheApplicationOfItsGeneration)
{
    EXPECT_EQ(workshopG2Table().applicationName, std::string("\xFFSMRDT"));
    EXPECT_TRUE(workshopG2Table().secondGeneration);
}

TEST(WorkshopG2Table, TheDownloadReadsEveryEfInItsOrder)
{
    test::expectRows(workshopG2Table(), expectedRows);
}

TEST(WorkshopG2Table, IdentificationHasReadCardAndChip)
{
    test::expectIdentificationRows(workshopG2Table());
}

TEST(WorkshopG2Table, SavesInTheOrderOfTheDownloadImage)
{
    EXPECT_THAT(
        workshopG2Table().saveOrder,
        ElementsAre(
            0x0002, 0x0005, 0x0501, 0xC100, 0xC101, 0xC108, 0xC109, 0x0520, 0x0509, 0x050A, 0x0502, 0x0503,
            0x0504, 0x0505, 0x0506, 0x0507, 0x0508, 0x0523, 0x0524, 0x0522, 0x0525, 0x0526, 0x0527, 0x0528,
            0x0529, 0x0530, 0x0531));
}

TEST(WorkshopG2Table, EverySavedEfIsReadOnce)
{
    test::expectEverySavedEfIsReadOnce(workshopG2Table());
}

TEST(WorkshopG2Table, CertificatesOfTheSecondGenerationSayTheirLengthThemselves)
{
    EXPECT_THAT(test::certificatesOf(workshopG2Table()), ElementsAre(0xC100, 0xC101, 0xC108, 0xC109));
}

TEST(WorkshopG2Table, TheCountsComeFromTheIdentificationOfTheApplication)
{
    const std::vector<CountsEf>& counts = workshopG2Table().counts;
    ASSERT_EQ(counts.size(), 2U);
    EXPECT_EQ(counts[0].fid, 0x0501);
    EXPECT_STREQ(
        counts[0].failureText,
        "calcDataToRead(): Error reading SCardWorkshop G2 EF_Application_Identification:");
    EXPECT_EQ(counts[1].fid, 0x0525);
    EXPECT_STREQ(
        counts[1].failureText,
        "calcDataToRead(): Error reading SCardWorkshop G2 EF_Application_Identification_V2:");
}

TEST(WorkshopG2Table, TheStepStandsBeforeWhatMadeItFail)
{
    EXPECT_EQ(workshopG2Table().totalEntry, OwnEntry::First);
    EXPECT_EQ(workshopG2Table().stepEntry, OwnEntry::First);
    EXPECT_EQ(workshopG2Table().efFailure, EfFailure::ReadersOnly);
}

const Bytes noRecords(19, 0);
const Bytes noRecordsV2(10, 0);

/// What the table adds up by these identification EFs; nothing answers for the certificates.
std::uint32_t total(OnCards onCards, const Bytes& identification, const Bytes& identificationV2 = noRecordsV2)
{
    CardApplication application(workshopG2Table());
    application.keep(0x0501, identification);
    application.keep(0x0525, identificationV2);
    scard::SCardGeneric noCard(0, QDateTime(), scard::RegionDDD);
    return application.dataToRead(noCard, onCards);
}

TEST(WorkshopG2Table, FixedSizesAddUpTo52And296)
{
    EXPECT_EQ(total(OnCards::All, noRecords), 52U + 296U);
}

TEST(WorkshopG2Table, EachCountHasItsWeight)
{
    const struct
    {
        std::size_t lowByte;
        unsigned int weight;
    } rows[] = {
        {3, 264},  // events per type
        {4, 48},   // faults per type
        {6, 1},    // activity bytes
        {8, 48},   // vehicles
        {10, 21},  // places
        {12, 178}, // calibrations
        {14, 18},  // GNSS places
        {16, 5},   // specific conditions
        {18, 10},  // vehicle units
    };
    for (const auto& row : rows) {
        EXPECT_EQ(total(OnCards::All, withByte(noRecords, row.lowByte, 1)), 348U + row.weight) << row.lowByte;
        if (row.lowByte > 4) {
            const std::uint32_t high = total(OnCards::All, withByte(noRecords, row.lowByte - 1, 1));
            EXPECT_EQ(high, 348U + 256U * row.weight) << row.lowByte;
        }
    }
}

TEST(WorkshopG2Table, TheFixedSizesOfVersion22AddUpTo22)
{
    EXPECT_EQ(total(OnCards::Version2_2, noRecords), 22U);
}

TEST(WorkshopG2Table, EachCountHasItsWeightInVersion22)
{
    const auto v2 = OnCards::Version2_2;
    EXPECT_EQ(total(v2, noRecords, withByte(noRecordsV2, 3, 1)), 22U + 17U);
    EXPECT_EQ(total(v2, noRecords, withByte(noRecordsV2, 2, 1)), 22U + 256U * 17U);
    EXPECT_EQ(total(v2, noRecords, withByte(noRecordsV2, 5, 1)), 22U + 20U);
    EXPECT_EQ(total(v2, noRecords, withByte(noRecordsV2, 4, 1)), 22U + 256U * 20U);
    EXPECT_EQ(total(v2, noRecords, withByte(noRecordsV2, 7, 1)), 22U + 5U);
    EXPECT_EQ(total(v2, noRecords, withByte(noRecordsV2, 6, 1)), 22U + 256U * 5U);
    // Places and GNSS places have a record of authentication each, calibrations one of further data.
    EXPECT_EQ(total(v2, withByte(noRecords, 10, 1)), 22U + 5U);
    EXPECT_EQ(total(v2, withByte(noRecords, 14, 1)), 22U + 5U);
    EXPECT_EQ(total(v2, withByte(noRecords, 12, 1)), 22U + 27U);
    EXPECT_EQ(total(v2, withByte(noRecords, 11, 1)), 22U + 256U * 27U);
    for (const std::size_t other : std::vector<std::size_t>{3, 4, 6, 8, 16, 18})
        EXPECT_EQ(total(v2, withByte(noRecords, other, 1)), 22U) << other;
    // The length of what follows, and of the settings that are not read, count nothing.
    EXPECT_EQ(total(v2, noRecords, withByte(withByte(noRecordsV2, 1, 8), 9, 9)), 22U);
}

TEST(WorkshopG2Table, ThreeCalibrationsCountInBothFiles)
{
    const Bytes three = withByte(noRecords, 12, 3);
    EXPECT_EQ(total(OnCards::All, three), 348U + 534U);
    EXPECT_EQ(total(OnCards::Version2_2, three), 22U + 81U);
}

TEST(WorkshopG2Table, TheGreatestCountsDoNotOverflow)
{
    const Bytes all(19, 0xFF);
    EXPECT_EQ(
        total(OnCards::All, all),
        348U + (264U + 48U) * 255U + (1U + 48U + 21U + 178U + 18U + 5U + 10U) * 65535U);
    EXPECT_EQ(
        total(OnCards::Version2_2, all, Bytes(10, 0xFF)), 22U + (17U + 20U + 27U + 5U + 5U + 5U) * 65535U);
}

} // namespace
