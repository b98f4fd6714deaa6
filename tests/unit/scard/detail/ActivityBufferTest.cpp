#include <scard/detail/ActivityBuffer.h>
#include <support/ErrorChain.h>

#include <gmock/gmock.h>

namespace {

using namespace scard::detail;
using test::chain;
using test::lib;
using testing::ElementsAre;
using testing::IsEmpty;
using Bytes = std::vector<unsigned char>;

struct Walk
{
    test::Chain failure;
    std::vector<Day> days;
};

Walk walk(const Bytes& ef, std::uint32_t structureLength)
{
    Walk result;
    result.failure = chain(readDays(ef, structureLength, result.days));
    return result;
}

std::vector<int> starts(const Day& day)
{
    std::vector<int> minutes;
    for (const auto& item : day.items)
        minutes.push_back(item.start);
    return minutes;
}

// One day: 2024-03-05, driving from 00:00, rest from 08:00.
const Bytes oneDay = {0x00, 0x00, 0x00, 0x00,                                     // oldest, newest
                      0x00, 0x00, 0x00, 0x10, 0x65, 0xE6, 0x60, 0x80, 0x00, 0x01, // header
                      0x00, 0x0A, 0x18, 0x00, 0x01, 0xE0};

TEST(ActivityBuffer, ReadsADay)
{
    const Walk result = walk(oneDay, 16);
    EXPECT_THAT(result.failure, IsEmpty());
    ASSERT_EQ(result.days.size(), 1u);
    const Day& day = result.days.front();
    EXPECT_EQ(day.date.toSecsSinceEpoch(), 0x65E66080);
    EXPECT_EQ(day.date.timeSpec(), Qt::LocalTime);
    EXPECT_EQ(day.driving, 480);
    EXPECT_EQ(day.rest + day.work + day.availability + day.unknown, 0);
    ASSERT_EQ(day.items.size(), 2u);
    EXPECT_EQ(day.items[0].duration, 480);
    EXPECT_EQ(day.items[1].duration, 0);
}

TEST(ActivityBuffer, EachBitOfAChangeHasItsField)
{
    const struct
    {
        unsigned char high;
        unsigned char low;
        std::uint32_t slot, drivingStatus, cardStatus, activity;
        std::uint16_t start;
    } rows[] = {
        {0x00, 0x00, 0, 0, 0, 0, 0},   {0x80, 0x00, 1, 0, 0, 0, 0},    {0x40, 0x00, 0, 1, 0, 0, 0},
        {0x20, 0x00, 0, 0, 1, 0, 0},   {0x08, 0x00, 0, 0, 0, 1, 0},    {0x10, 0x00, 0, 0, 0, 2, 0},
        {0x18, 0x00, 0, 0, 0, 3, 0},   {0x07, 0xFF, 0, 0, 0, 0, 2047}, {0x11, 0x68, 0, 0, 0, 2, 360},
        {0xCA, 0x58, 1, 1, 0, 1, 600}, {0x33, 0xED, 0, 0, 1, 2, 1005}, {0xFF, 0xFF, 1, 1, 1, 3, 2047},
        {0x60, 0x00, 0, 1, 1, 0, 0},
    };
    for (const auto& row : rows) {
        Bytes ef = oneDay;
        ef[16] = row.high;
        ef[17] = row.low;
        const Walk result = walk(ef, 16);
        ASSERT_EQ(result.days.size(), 1u);
        const auto& item = result.days.front().items.front();
        EXPECT_EQ(item.slot, row.slot);
        EXPECT_EQ(item.drivingStatus, row.drivingStatus);
        EXPECT_EQ(item.cardStatus, row.cardStatus);
        EXPECT_EQ(item.activity, row.activity);
        EXPECT_EQ(item.start, row.start);
    }
}

TEST(ActivityBuffer, ARecordMayStandAnywhereInTheCycle)
{
    for (std::uint32_t position = 0; position < 16; ++position) {
        SCOPED_TRACE(position);
        Bytes ef = oneDay;
        ef[1] = ef[3] = static_cast<unsigned char>(position);
        for (std::uint32_t i = 0; i < 16; ++i)
            ef[4 + (position + i) % 16] = oneDay[4 + i];
        const Walk result = walk(ef, 16);
        EXPECT_THAT(result.failure, IsEmpty());
        ASSERT_EQ(result.days.size(), 1u);
        EXPECT_EQ(result.days.front().date.toSecsSinceEpoch(), 0x65E66080);
        EXPECT_EQ(result.days.front().driving, 480);
    }
}

TEST(ActivityBuffer, BytesBehindTheCycleAreNotPartOfIt)
{
    Bytes ef = oneDay;
    ef.insert(ef.end(), 100, 0xFF);
    const Walk result = walk(ef, 16);
    EXPECT_THAT(result.failure, IsEmpty());
    EXPECT_EQ(result.days.size(), 1u);
}

TEST(ActivityBuffer, ALengthOfOddBytesReadsOneMoreChangeAroundTheCycle)
{
    Bytes ef = oneDay;
    ef[7] = 0x0F; // the change at position 14 is cut in its middle
    const Walk result = walk(ef, 16);
    ASSERT_EQ(result.days.size(), 1u);
    EXPECT_THAT(starts(result.days.front()), ElementsAre(0, 480));
}

TEST(ActivityBuffer, WithoutAWholeCycleTheListStaysAsItWas)
{
    std::vector<Day> days(3);
    for (const std::size_t size : {0u, 1u, 4u, 19u}) {
        const Bytes ef(oneDay.begin(), oneDay.begin() + static_cast<std::ptrdiff_t>(size));
        EXPECT_THAT(
            chain(readDays(ef, 16, days)),
            ElementsAre(lib("buildDailyActivityList: Invalid activityStructureLength")));
        EXPECT_EQ(days.size(), 3u);
    }
}

TEST(ActivityBuffer, ACycleOfNoBytesHasNoDays)
{
    for (const Bytes& ef : {Bytes{}, Bytes{0, 1, 0, 2}, oneDay}) {
        std::vector<Day> days(3);
        EXPECT_THAT(chain(readDays(ef, 0, days)), IsEmpty());
        EXPECT_THAT(days, testing::SizeIs(0));
    }
}

TEST(ActivityBuffer, ARecordLongerThanTheCycleEndsTheWalkBehindTheDaysBefore)
{
    Bytes ef(4 + 40);
    ef[3] = 28;     // newest
    ef[4 + 3] = 14; // first record, then one that is too long
    ef[4 + 14 + 2] = 0x00;
    ef[4 + 14 + 3] = 41;
    const Walk result = walk(ef, 40);
    EXPECT_THAT(result.failure, ElementsAre(lib("buildDailyActivityList: Invalid activityRecordLength")));
    EXPECT_EQ(result.days.size(), 1u);
}

TEST(ActivityBuffer, AChainThatNeverMeetsTheNewestDayEndsWithTheDaysThatFit)
{
    const struct
    {
        const char* name;
        std::uint32_t length;
        unsigned char record;
        unsigned char newest;
    } rows[] = {
        {"a record of no bytes", 120, 0, 60},
        {"records of a header's part", 120, 5, 61},
        {"a newest day inside a record", 120, 12, 61},
        {"a newest day behind the cycle", 120, 12, 200},
        {"a cycle of a byte", 1, 0, 60},
        {"a cycle of less than a header", 11, 0, 60},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        Bytes ef(4 + row.length);
        ef[3] = row.newest;
        if (row.record > 0)
            for (std::size_t position = 0; position + 4 <= row.length; position += row.record)
                ef[4 + position + 3] = row.record;
        const Walk result = walk(ef, row.length);
        EXPECT_THAT(result.failure, IsEmpty());
        EXPECT_EQ(result.days.size(), row.length / 12 + 1);
    }
}

TEST(ActivityBuffer, RecordsThatOverlapEndTheWalkAtTheMostPeriods)
{
    // Every number in the cycle is the length of a record that fills nearly all of it.
    constexpr std::uint32_t length = 65535;
    Bytes ef(4 + length, 0xFE);
    ef[0] = ef[1] = 0;
    ef[2] = ef[3] = 0xFF; // no such position
    const Walk result = walk(ef, length);
    EXPECT_THAT(result.failure, IsEmpty());
    std::size_t periods = 0;
    for (const Day& day : result.days)
        periods += day.items.size();
    EXPECT_GE(periods, 1048576u);
    EXPECT_LT(periods - result.days.back().items.size(), 1048576u);
    EXPECT_LT(result.days.size(), length / 12);
}

} // namespace
