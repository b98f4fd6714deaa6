#include "scard/DriverImage.h"

#include <scard/detail/CardApplication.h>
#include <scard/detail/DriverG1Table.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <string>
#include <vector>

namespace {

using namespace scard::detail;
using testing::ElementsAre;

struct ExpectedRow
{
    unsigned short fid;
    const char* name;
    const char* failureText;
    bool isSigned;
    bool optionalInImage;
};

// In reading order.
const ExpectedRow expectedRows[] = {
    {0x0520, "EF_Identification", "Error reading EF_Identification:", true, false},
    {0x0501, "EF_Application_Identification", "Error reading EF_Application_Identification:", true, false},
    {0xC100, "EF_Card_Certificate", "Error reading EF_Card_Certificate:", false, true},
    {0xC108, "EF_CA_Certificate", "Error reading EF_CA_Certificate:", false, true},
    {0x050E, "EF_Card_Download", "Error reading EF_Card_Download:", true, true},
    {0x0521, "EF_Driving_License_Info", "Error reading EF_Driving_License_Info:", true, true},
    {0x0502, "EF_EventsData", "Error reading EF_EventsData:", true, false},
    {0x0503, "EF_FaultsData", "Error reading EF_FaultsData:", true, false},
    {0x0504, "EF_Driver_Activity_Data", "Error reading EF_Driver_Activity_Data:", true, false},
    {0x0505, "EF_Vehicles_Used", "Error reading EF_Vehicles_Used:", true, false},
    {0x0506, "EF_Places", "Error reading EF_Places:", true, true},
    {0x0507, "EF_Current_Usage", "Error reading EF_Current_Usage:", true, true},
    {0x0508, "EF_Control_Activity_Data", "Error reading EF_Control_Activity_Data:", true, true},
    {0x0522, "EF_Specific_Conditions", "Error reading m_EF_Specitifc_Conditions:", true, true},
};

std::vector<EfRow> rowsReadAt(ReadAt when)
{
    std::vector<EfRow> rows;
    for (const EfRow& row : driverG1Table().rows)
        if (row.readAt == when)
            rows.push_back(row);
    return rows;
}

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
    const std::vector<EfRow> rows = rowsReadAt(ReadAt::Download);
    ASSERT_EQ(rows.size(), std::size(expectedRows));
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const ExpectedRow& expected = expectedRows[i];
        SCOPED_TRACE(expected.name);
        EXPECT_EQ(rows[i].fid, expected.fid);
        EXPECT_STREQ(rows[i].name, expected.name);
        EXPECT_STREQ(rows[i].failureText, expected.failureText);
        EXPECT_EQ(rows[i].signing == Signing::Signed, expected.isSigned);
        EXPECT_EQ(rows[i].inImage == InImage::Optional, expected.optionalInImage);
    }
}

TEST(DriverG1Table, IdentificationHasReadCardAndChip)
{
    const std::vector<EfRow> rows = rowsReadAt(ReadAt::Identification);
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_EQ(rows[0].fid, 0x0002);
    EXPECT_STREQ(rows[0].name, "EF_ICC");
    EXPECT_EQ(rows[0].signing, Signing::Unsigned);
    EXPECT_EQ(rows[1].fid, 0x0005);
    EXPECT_STREQ(rows[1].name, "EF_IC");
    EXPECT_EQ(rows[1].signing, Signing::Unsigned);
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
    std::vector<unsigned short> read;
    for (const EfRow& row : driverG1Table().rows)
        read.push_back(row.fid);
    EXPECT_THAT(driverG1Table().saveOrder, testing::UnorderedElementsAreArray(read));
}

struct ExpectedPieces
{
    unsigned short fid;
    // Record size, fixed count (0 when the card counts), groups.
    std::vector<std::vector<std::size_t>> pieces;
};

TEST(DriverG1Table, EachEfHasItsPieces)
{
    const ExpectedPieces expectedPieces[] = {
        {0x0002, {{25, 1, 1}}},
        {0x0005, {{8, 1, 1}}},
        {0x0520, {{143, 1, 1}}},
        {0x0501, {{10, 1, 1}}},
        {0xC100, {{1, 194, 1}}},
        {0xC108, {{1, 194, 1}}},
        {0x050E, {{4, 1, 1}}},
        {0x0521, {{53, 1, 1}}},
        {0x0502, {{24, 0, 6}}},
        {0x0503, {{24, 0, 2}}},
        {0x0504, {{2, 1, 1}, {2, 1, 1}, {1, 0, 1}}},
        {0x0505, {{2, 1, 1}, {31, 0, 1}}},
        {0x0506, {{1, 1, 1}, {10, 0, 1}}},
        {0x0507, {{19, 1, 1}}},
        {0x0508, {{46, 1, 1}}},
        {0x0522, {{5, 56, 1}}},
    };
    for (const ExpectedPieces& expected : expectedPieces) {
        SCOPED_TRACE(expected.fid);
        const auto& rows = driverG1Table().rows;
        const auto row = std::find_if(
            rows.begin(), rows.end(), [&](const EfRow& each) { return each.fid == expected.fid; });
        ASSERT_NE(row, rows.end());
        std::vector<std::vector<std::size_t>> pieces;
        for (const Piece& piece : row->pieces) {
            EXPECT_EQ(piece.count.fid, piece.count.from == RecordCount::From::Field ? 0x0501 : 0);
            pieces.push_back({piece.recordSize, piece.count.number, piece.groups});
        }
        EXPECT_EQ(pieces, expected.pieces);
    }
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
