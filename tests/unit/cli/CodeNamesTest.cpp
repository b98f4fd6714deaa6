#include <QtPrinters.h>

#include <cli/CardNames.h>
#include <cli/report/CodeNames.h>

#include <gtest/gtest.h>

namespace {

using namespace report;

TEST(CodeNamesTest, GivesTheNumberWithItsMeaning)
{
    const struct
    {
        const CodeList& list;
        int code;
        const char* name;
    } rows[] = {
        {eventOrFault, 0x03, "time overlap"},
        {eventOrFault, 0x07, "over speeding"},
        {eventOrFault, 0x1C, "inconsistency between motion data and stored driver activity"},
        {eventOrFault, 0x35, "motion sensor fault"},
        {activity, 0, "rest"},
        {activity, 1, "availability"},
        {activity, 2, "work"},
        {activity, 3, "driving"},
        {slot, 1, "co-driver"},
        {cardStatus, 1, "not inserted"},
        {drivingStatusWithCard, 1, "crew"},
        {drivingStatusWithoutCard, 1, "known"},
        {placeEntryType, 0, "begin, time of card insertion or entry"},
        {placeEntryType, 7, "end, time of the satellite position"},
        {specificCondition, 4, "ferry or train crossing, end"},
        {loadOperation, 3, "load and unload"},
        {loadType, 2, "passengers"},
        {positionAuthentication, 1, "authenticated"},
        {calibrationPurpose, 1, "activation"},
        {calibrationPurpose, 6, "time set without calibration"},
        {companyActivity, 4, "locked out"},
        {equipmentType, 1, "driver card"},
        {spanishRegion, 0x11, "País Vasco"},
        {equipmentType, 19, "vehicle unit, signing"},
    };
    for (const auto& row : rows) {
        const Code code = row.list(row.code);
        EXPECT_EQ(code.number, row.code);
        EXPECT_EQ(code.name, QString(row.name));
    }
}

TEST(CodeNamesTest, KeepsANumberThatHasNoMeaning)
{
    const struct
    {
        const CodeList& list;
        int code;
    } rows[] = {
        {eventOrFault, 0x1D},
        {eventOrFault, 0xFF},
        {activity, 4},
        {slot, 2},
        {placeEntryType, 8},
        {specificCondition, 0},
        {loadOperation, 0},
        {loadType, 3},
        {positionAuthentication, 2},
        {calibrationPurpose, 0},
        {calibrationPurpose, 128},
        {companyActivity, 0},
        {equipmentType, 0},
        {equipmentType, 255},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.list(row.code).number, row.code);
        EXPECT_EQ(row.list(row.code).name, QString()) << row.code;
    }
}

TEST(CodeNamesTest, NamesATypeOfCardAsTheTableOfTypesDoes)
{
    const struct
    {
        unsigned int type;
        const char* name;
    } rows[] = {
        {0, "card of type 0"}, {1, "driver card"},        {2, "workshop card"},      {3, "control card"},
        {4, "company card"},   {5, "manufacturing card"}, {6, "vehicle unit"},       {7, "motion sensor"},
        {8, "card of type 8"}, {17, "card of type 17"},   {255, "card of type 255"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(cardTypeName(static_cast<scard::SCardMeta::Type>(row.type)), QString(row.name));
}

TEST(CodeNamesTest, NamesAllThatAControlDid)
{
    const struct
    {
        int bits;
        const char* name;
    } rows[] = {
        {0x00, ""},
        {0x80, "card downloaded"},
        {0x60, "vehicle unit downloaded, printed"},
        {0xF8, "card downloaded, vehicle unit downloaded, printed, displayed, calibration checked"},
        {0x07, ""},
        {0x17, "displayed"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(controlType(row.bits).number, row.bits);
        EXPECT_EQ(controlType(row.bits).name, QString(row.name));
    }
}

} // namespace
