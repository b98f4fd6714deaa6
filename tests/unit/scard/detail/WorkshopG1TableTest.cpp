#include "fixtures/EfTableRows.h"
#include "fixtures/Image.h"

#include <scard/detail/CardApplication.h>
#include <scard/detail/WorkshopG1Table.h>

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
    {0x0520, "EF_Identification", "Error reading EF_Identification:", true, false, false, {{211, 1, 1}}},
    {0x0501,
     "EF_Application_Identification",
     "Error reading EF_Application_Identification:",
     true,
     false,
     false,
     {{11, 1, 1}}},
    {0xC100, "EF_Card_Certificate", "Error reading EF_Card_Certificate:", false, true, false, {{1, 194, 1}}},
    {0xC108, "EF_CA_Certificate", "Error reading EF_CA_Certificate:", false, true, false, {{1, 194, 1}}},
    {0x0509, "EF_Card_Download", "Error reading EF_Card_Download:", true, true, false, {{2, 1, 1}}},
    {0x050A,
     "EF_Calibration",
     "Error reading nEF_Calibration:",
     true,
     false,
     false,
     {{2, 1, 1}, {1, 1, 1}, {105, 0, 1}}},
    {0x0502, "EF_EventsData", "Error reading EF_EventsData:", true, false, false, {{24, 0, 6}}},
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
     {{2, 1, 1}, {31, 0, 1}}},
    {0x0506, "EF_Places", "Error reading EF_Places:", true, false, false, {{1, 1, 1}, {10, 0, 1}}},
    {0x0507, "EF_Current_Usage", "Error reading EF_Current_Usage:", true, false, false, {{19, 1, 1}}},
    {0x0508,
     "EF_Control_Activity_Data",
     "Error reading EF_Control_Activity_Data:",
     true,
     false,
     false,
     {{46, 1, 1}}},
    {0x0522,
     "EF_Specific_Conditions",
     "Error reading m_EF_Specitifc_Conditions:",
     true,
     false,
     false,
     {{5, 2, 1}}},
};

TEST(WorkshopG1Table, IsTheApplicationOfItsGeneration)
{
    EXPECT_EQ(workshopG1Table().applicationName, std::string("\xFFTACHO"));
    EXPECT_FALSE(workshopG1Table().secondGeneration);
}

TEST(WorkshopG1Table, TheDownloadReadsEveryEfInItsOrder)
{
    test::expectRows(workshopG1Table(), expectedRows);
}

TEST(WorkshopG1Table, IdentificationHasReadCardAndChip)
{
    test::expectIdentificationRows(workshopG1Table());
}

TEST(WorkshopG1Table, SavesInTheOrderOfTheDownloadImage)
{
    EXPECT_THAT(
        workshopG1Table().saveOrder, ElementsAre(
                                         0x0002, 0x0005, 0x0501, 0xC100, 0xC108, 0x0520, 0x0509, 0x050A,
                                         0x0502, 0x0503, 0x0504, 0x0505, 0x0506, 0x0507, 0x0508, 0x0522));
}

TEST(WorkshopG1Table, EverySavedEfIsReadOnce)
{
    test::expectEverySavedEfIsReadOnce(workshopG1Table());
}

TEST(WorkshopG1Table, CertificatesOfTheSecondGenerationSayTheirLengthThemselves)
{
    EXPECT_THAT(test::certificatesOf(workshopG1Table()), IsEmpty());
}

TEST(WorkshopG1Table, TheCountsComeFromTheIdentificationOfTheApplication)
{
    const std::vector<CountsEf>& counts = workshopG1Table().counts;
    ASSERT_EQ(counts.size(), 1U);
    EXPECT_EQ(counts[0].fid, 0x0501);
    EXPECT_STREQ(
        counts[0].failureText,
        "calcDataToRead(): Error reading SCardWorkshop G1 EF_Application_Identification:");
}

TEST(WorkshopG1Table, TheStepStandsBeforeWhatMadeItFail)
{
    EXPECT_EQ(workshopG1Table().totalEntry, OwnEntry::First);
    EXPECT_EQ(workshopG1Table().stepEntry, OwnEntry::First);
    EXPECT_EQ(workshopG1Table().efFailure, EfFailure::ReadersOnly);
}

const Bytes noRecords(11, 0);

/// What the table adds up by this identification EF.
std::uint32_t total(const Bytes& identification)
{
    CardApplication application(workshopG1Table());
    application.keep(0x0501, identification);
    scard::SCardGeneric noCard(0, QDateTime(), scard::RegionDDD);
    return application.dataToRead(noCard, OnCards::All);
}

TEST(WorkshopG1Table, FixedSizesAddUpTo730)
{
    EXPECT_EQ(total(noRecords), 730U);
}

TEST(WorkshopG1Table, EachCountHasItsWeight)
{
    const struct
    {
        std::size_t index;
        unsigned int weight;
    } rows[] = {
        {0, 0},                   // type
        {1, 0},                   // version
        {2, 0},    {3, 144},      // events per type
        {4, 48},                  // faults per type
        {5, 256},                 // activity bytes
        {6, 1},    {7, 256 * 31}, // vehicles
        {8, 31},   {9, 10},       // places
        {10, 105},                // calibrations
    };
    for (const auto& row : rows)
        EXPECT_EQ(total(withByte(noRecords, row.index, 1)), 730U + row.weight) << row.index;
}

TEST(WorkshopG1Table, TheUsualCardHas29045Bytes)
{
    EXPECT_EQ(total({0x02, 0x00, 0x00, 3, 6, 0x01, 0xEC, 0x00, 0x08, 8, 0xFF}), 29045U);
}

TEST(WorkshopG1Table, TheGreatestCountsDoNotOverflow)
{
    EXPECT_EQ(total(Bytes(11, 0xFF)), 730U + (144U + 48U + 10U + 105U) * 255U + (1U + 31U) * 65535U);
}

TEST(WorkshopG1Table, NoRowIsOfVersion22)
{
    CardApplication application(workshopG1Table());
    application.keep(0x0501, Bytes(11, 0xFF));
    scard::SCardGeneric noCard(0, QDateTime(), scard::RegionDDD);
    EXPECT_EQ(application.dataToRead(noCard, OnCards::Version2_2), 0U);
}

} // namespace
