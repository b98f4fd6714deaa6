#include "fixtures/EfTableRows.h"
#include "fixtures/Image.h"

#include <scard/detail/CardApplication.h>
#include <scard/detail/DriverG2Table.h>

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
    {0x0520, "EF_Identification", "Error reading EF_Identification:", true, false, false, {{143, 1, 1}}},
    {0x0501,
     "EF_Application_Identification",
     "Error reading EF_Application_Identification:",
     true,
     false,
     false,
     {{17, 1, 1}}},
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
    {0x050E, "EF_Card_Download", "Error reading EF_Card_Download:", true, true, false, {{4, 1, 1}}},
    {0x0521,
     "EF_Driving_License_Info",
     "Error reading EF_Driving_License_Info:",
     true,
     true,
     false,
     {{53, 1, 1}}},
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
    {0x0506, "EF_Places", "Error reading EF_Places:", true, true, false, {{2, 1, 1}, {21, 0, 1}}},
    {0x0507, "EF_Current_Usage", "Error reading EF_Current_Usage:", true, true, false, {{19, 1, 1}}},
    {0x0508,
     "EF_Control_Activity_Data",
     "Error reading EF_Control_Activity_Data:",
     true,
     true,
     false,
     {{46, 1, 1}}},
    {0x0522,
     "EF_Specific_Conditions",
     "Error reading m_EF_Specitifc_Conditions:",
     true,
     true,
     false,
     {{2, 1, 1}, {5, 0, 1}}},
    {0x0523,
     "EF_Vehicle_Units_Used",
     "Error reading m_EF_Vehicle_Units_Used:",
     true,
     true,
     false,
     {{2, 1, 1}, {10, 0, 1}}},
    {0x0524, "EF_GNSS_Places", "Error reading m_EF_GNSS_Places:", true, true, false, {{2, 1, 1}, {18, 0, 1}}},
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
};

const Bytes noRecords(17, 0);
const Bytes noRecordsV2(10, 0);

/// What the table adds up by these identification EFs; nothing answers for the certificates.
std::uint32_t total(OnCards onCards, const Bytes& identification, const Bytes& identificationV2 = noRecordsV2)
{
    CardApplication application(driverG2Table());
    application.keep(0x0501, identification);
    application.keep(0x0525, identificationV2);
    scard::SCardGeneric noCard(0, QDateTime(), scard::RegionDDD);
    return application.dataToRead(noCard, onCards);
}

TEST(DriverG2Table, IsTheSecondGenerationsApplication)
{
    EXPECT_EQ(driverG2Table().applicationName, std::string("\xFFSMRDT"));
    EXPECT_TRUE(driverG2Table().secondGeneration);
}

TEST(DriverG2Table, TheDownloadReadsEveryEfInItsOrder)
{
    test::expectRows(driverG2Table(), expectedRows);
}

TEST(DriverG2Table, IdentificationHasReadCardAndChip)
{
    test::expectIdentificationRows(driverG2Table());
}

TEST(DriverG2Table, SavesInTheOrderOfTheDownloadImage)
{
    EXPECT_THAT(
        driverG2Table().saveOrder, ElementsAre(
                                       0x0002, 0x0005, 0x0501, 0xC100, 0xC101, 0xC108, 0xC109, 0x0520, 0x050E,
                                       0x0521, 0x0502, 0x0503, 0x0504, 0x0505, 0x0506, 0x0507, 0x0508, 0x0522,
                                       0x0523, 0x0524, 0x0525, 0x0526, 0x0527, 0x0528, 0x0529, 0x0530));
}

TEST(DriverG2Table, EverySavedEfIsReadOnce)
{
    test::expectEverySavedEfIsReadOnce(driverG2Table());
}

TEST(DriverG2Table, OnlyTheFourCertificatesSayTheirLengthThemselves)
{
    EXPECT_THAT(test::certificatesOf(driverG2Table()), ElementsAre(0xC100, 0xC101, 0xC108, 0xC109));
}

TEST(DriverG2Table, FixedSizesAddUpTo50And279)
{
    EXPECT_EQ(total(OnCards::All, noRecords), 50U + 279U);
}

TEST(DriverG2Table, EachCountHasItsWeight)
{
    const struct
    {
        std::size_t lowByte;
        unsigned int weight;
    } rows[] = {
        {3, 264}, // events per type
        {4, 48},  // faults per type
        {6, 1},   // activity bytes
        {8, 48},  // vehicles
        {10, 21}, // places
        {12, 18}, // GNSS places
        {14, 5},  // specific conditions
        {16, 10}, // vehicle units
    };
    for (const auto& row : rows) {
        EXPECT_EQ(total(OnCards::All, withByte(noRecords, row.lowByte, 1)), 329U + row.weight) << row.lowByte;
        if (row.lowByte > 4) {
            const std::uint32_t high = total(OnCards::All, withByte(noRecords, row.lowByte - 1, 1));
            EXPECT_EQ(high, 329U + 256U * row.weight) << row.lowByte;
        }
    }
}

TEST(DriverG2Table, TheFixedSizesOfVersion22AddUpTo20)
{
    EXPECT_EQ(total(OnCards::Version2_2, noRecords), 20U);
}

TEST(DriverG2Table, EachCountHasItsWeightInVersion22)
{
    const auto v2 = OnCards::Version2_2;
    EXPECT_EQ(total(v2, noRecords, withByte(noRecordsV2, 3, 1)), 20U + 17U);
    EXPECT_EQ(total(v2, noRecords, withByte(noRecordsV2, 5, 1)), 20U + 20U);
    EXPECT_EQ(total(v2, noRecords, withByte(noRecordsV2, 7, 1)), 20U + 5U);
    EXPECT_EQ(total(v2, noRecords, withByte(noRecordsV2, 2, 1)), 20U + 256U * 17U);
    // Places and GNSS places have a record of authentication each.
    EXPECT_EQ(total(v2, withByte(noRecords, 10, 1)), 20U + 5U);
    EXPECT_EQ(total(v2, withByte(noRecords, 12, 1)), 20U + 5U);
    // The length of what follows, and of the settings that are not read, count nothing.
    EXPECT_EQ(total(v2, noRecords, withByte(withByte(noRecordsV2, 1, 8), 9, 9)), 20U);
}

TEST(DriverG2Table, TheGreatestCountsDoNotOverflow)
{
    const Bytes all(17, 0xFF);
    EXPECT_EQ(
        total(OnCards::All, all), 329U + (264U + 48U) * 255U + (1U + 48U + 21U + 18U + 5U + 10U) * 65535U);
    EXPECT_EQ(total(OnCards::Version2_2, all, Bytes(10, 0xFF)), 20U + (17U + 20U + 5U + 5U + 5U) * 65535U);
}

} // namespace
