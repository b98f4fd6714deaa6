#include "fixtures/DriverImage.h"
#include "fixtures/EfTableRows.h"

#include <scard/detail/CardApplication.h>
#include <scard/detail/DriverG1Table.h>

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace {

using namespace scard::detail;
using testing::ElementsAre;

// In reading order.
// clang-format off
const std::vector<test::ExpectedRow> expectedRows = {
    {0x0520, "EF_Identification", "Error reading EF_Identification:", true, false, false, {{143, 1, 1}}},
    {0x0501, "EF_Application_Identification", "Error reading EF_Application_Identification:", true, false, false, {{10, 1, 1}}},
    {0xC100, "EF_Card_Certificate", "Error reading EF_Card_Certificate:", false, true, false, {{1, 194, 1}}},
    {0xC108, "EF_CA_Certificate", "Error reading EF_CA_Certificate:", false, true, false, {{1, 194, 1}}},
    {0x050E, "EF_Card_Download", "Error reading EF_Card_Download:", true, true, false, {{4, 1, 1}}},
    {0x0521, "EF_Driving_License_Info", "Error reading EF_Driving_License_Info:", true, true, false, {{53, 1, 1}}},
    {0x0502, "EF_EventsData", "Error reading EF_EventsData:", true, false, false, {{24, 0, 6}}},
    {0x0503, "EF_FaultsData", "Error reading EF_FaultsData:", true, false, false, {{24, 0, 2}}},
    {0x0504, "EF_Driver_Activity_Data", "Error reading EF_Driver_Activity_Data:", true, false, false, {{2, 1, 1}, {2, 1, 1}, {1, 0, 1}}},
    {0x0505, "EF_Vehicles_Used", "Error reading EF_Vehicles_Used:", true, false, false, {{2, 1, 1}, {31, 0, 1}}},
    {0x0506, "EF_Places", "Error reading EF_Places:", true, true, false, {{1, 1, 1}, {10, 0, 1}}},
    {0x0507, "EF_Current_Usage", "Error reading EF_Current_Usage:", true, true, false, {{19, 1, 1}}},
    {0x0508, "EF_Control_Activity_Data", "Error reading EF_Control_Activity_Data:", true, true, false, {{46, 1, 1}}},
    {0x0522, "EF_Specific_Conditions", "Error reading m_EF_Specitifc_Conditions:", true, true, false, {{5, 56, 1}}},
};
// clang-format on

std::uint32_t total(
    unsigned int events, unsigned int faults, unsigned int activityBytes, unsigned int vehicles,
    unsigned int places)
{
    CardApplication application(driverG1Table());
    application.keep(0x0501, test::driverApplication(events, faults, activityBytes, vehicles, places));
    scard::SCardGeneric noCard(0, QDateTime(), scard::RegionDDD);
    return application.dataToRead(noCard, OnCards::All);
}

TEST(DriverG1Table, IsTheFirstGenerationsApplication)
{
    EXPECT_EQ(driverG1Table().applicationName, std::string("\xFFTACHO"));
    EXPECT_FALSE(driverG1Table().secondGeneration);
}

TEST(DriverG1Table, TheDownloadReadsEveryEfInItsOrder)
{
    test::expectRows(driverG1Table(), expectedRows);
}

TEST(DriverG1Table, IdentificationHasReadCardAndChip)
{
    test::expectIdentificationRows(driverG1Table());
}

TEST(DriverG1Table, SavesInTheOrderOfTheDownloadImage)
{
    EXPECT_THAT(
        driverG1Table().saveOrder, ElementsAre(
                                       0x0002, 0x0005, 0x0501, 0xC100, 0xC108, 0x0520, 0x050E, 0x0521, 0x0502,
                                       0x0503, 0x0504, 0x0505, 0x0506, 0x0507, 0x0508, 0x0522));
}

TEST(DriverG1Table, EverySavedEfIsReadOnce)
{
    test::expectEverySavedEfIsReadOnce(driverG1Table());
}

TEST(DriverG1Table, FixedSizesAddUpTo983)
{
    EXPECT_EQ(total(0, 0, 0, 0, 0), 983U);
}

TEST(DriverG1Table, EachCountHasItsWeight)
{
    EXPECT_EQ(total(1, 0, 0, 0, 0), 983U + 144);
    EXPECT_EQ(total(0, 1, 0, 0, 0), 983U + 48);
    EXPECT_EQ(total(0, 0, 1, 0, 0), 983U + 1);
    EXPECT_EQ(total(0, 0, 0, 1, 0), 983U + 31);
    EXPECT_EQ(total(0, 0, 0, 0, 1), 983U + 10);
}

TEST(DriverG1Table, CountsOfTwoBytesAreBigEndian)
{
    EXPECT_EQ(total(0, 0, 0x0102, 0, 0), 983U + 258);
    EXPECT_EQ(total(0, 0, 0, 0x0102, 0), 983U + 31 * 258);
}

TEST(DriverG1Table, TheUsualCardHas28183Bytes)
{
    EXPECT_EQ(total(12, 24, 13776, 304, 112), 28183U);
}

TEST(DriverG1Table, TheGreatestCountsDoNotOverflow)
{
    EXPECT_EQ(
        total(0xFF, 0xFF, 0xFFFF, 0xFFFF, 0xFF),
        983U + 144U * 255U + 48U * 255U + 65535U + 31U * 65535U + 10U * 255U);
}

} // namespace
