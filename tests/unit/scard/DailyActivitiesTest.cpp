#include "fixtures/ActivityBuffer.h"
#include "fixtures/CardOnImage.h"
#include "fixtures/DriverImage.h"
#include "fixtures/LocalZone.h"
#include "fixtures/RecordBytes.h"
#include "QtPrinters.h"

#include <scard/SCardDriverG1.h>
#include <support/ErrorChain.h>

#include <gmock/gmock.h>

#include <QDate>
#include <QDateTime>

#include <array>
#include <cstdint>
#include <ctime>
#include <tuple>
#include <vector>

// The list of a driver's days, made from the card's cyclic buffer.

namespace {

using scard::SCardDriverG1;
using test::ActivityBuffer;
using test::available;
using test::chain;
using test::change;
using test::coDriver;
using test::crew;
using test::driving;
using test::known;
using test::lib;
using test::notInserted;
using test::rest;
using test::work;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

using Day = SCardDriverG1::_DAILY_ACTIVITIES;

/// Start, duration, driving status, card status, activity, slot.
using Item = std::tuple<unsigned int, unsigned int, unsigned int, unsigned int, unsigned int, unsigned int>;

/// Work, rest, driving, availability, unknown.
using Minutes = std::tuple<int, int, int, int, int>;

constexpr std::uint32_t march5 = 0x65E66080; // 2024-03-05 00:00 UTC
constexpr std::uint32_t secondsPerDay = 86400;
constexpr std::uint32_t march6 = march5 + secondsPerDay;
constexpr std::uint32_t march7 = march6 + secondsPerDay;

const test::Chain invalidRecordLength{lib("buildDailyActivityList: Invalid activityRecordLength", 0)};
const test::Chain invalidStructureLength{lib("buildDailyActivityList: Invalid activityStructureLength", 0)};

/// A driver card with this buffer, read.
class ActivityCard : public test::CardOnImage<SCardDriverG1>
{
  public:
    explicit ActivityCard(const ActivityBuffer& buffer) : CardOnImage(test::imageWith(buffer))
    {
        EXPECT_THAT(chain(read()), IsEmpty());
    }
};

std::vector<Item> itemsOf(const Day& day)
{
    std::vector<Item> items;
    for (const auto& item : day.items)
        items.emplace_back(
            item.start, item.duration, item.drivingStatus, item.cardStatus, item.activity, item.slot);
    return items;
}

Minutes minutesOf(const Day& day)
{
    return {day.work, day.rest, day.driving, day.availability, day.unknown};
}

std::vector<qint64> datesOf(const std::vector<Day>& days)
{
    std::vector<qint64> dates;
    for (const Day& day : days)
        dates.push_back(day.date.toSecsSinceEpoch());
    return dates;
}

/// The single day of a buffer that holds these words and nothing else.
Day dayOf(const std::vector<unsigned int>& words)
{
    ActivityBuffer buffer(test::dayHeaderLength + 2 * words.size());
    ActivityCard card(buffer.day(march5, words));
    EXPECT_THAT(chain(card.buildDailyActivityList()), IsEmpty());
    const std::vector<Day> days = card.getActivities();
    EXPECT_THAT(days, SizeIs(1));
    return days.empty() ? Day{} : days.front();
}

QDate localDate(std::uint32_t seconds)
{
    const auto systemTime = static_cast<std::time_t>(seconds);
    std::tm local{};
    EXPECT_NE(::localtime_r(&systemTime, &local), nullptr);
    return QDate(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday);
}

bool hasDay(const SCardDriverG1& card, QDate date)
{
    int ignored = 0;
    return card.getDayStatistics(date, ignored, ignored, ignored, ignored, ignored);
}

// Change words

TEST(ActivityWords, AnOrdinaryDayIsDecodedAsTheCardMeansIt)
{
    const Day day = dayOf({0x2000, 0x1168, 0x19A4, 0x02B2, 0x1ADF, 0x33ED});

    EXPECT_THAT(
        itemsOf(day), ElementsAre(
                          Item(0, 360, 0, 1, 0, 0), Item(360, 60, 0, 0, 2, 0), Item(420, 270, 0, 0, 3, 0),
                          Item(690, 45, 0, 0, 0, 0), Item(735, 270, 0, 0, 3, 0), Item(1005, 0, 0, 1, 2, 0)));
    EXPECT_EQ(minutesOf(day), Minutes(60, 45, 540, 0, 360));
}

TEST(ActivityWords, EachBitHasItsMeaning)
{
    const struct
    {
        const char* name;
        unsigned int word;
        Item expected;
    } rows[] = {
        {"rest at midnight", 0x0000, Item(0, 0, 0, 0, 0, 0)},
        {"co-driver", 0x8000, Item(0, 0, 0, 0, 0, 1)},
        {"crew", 0x4000, Item(0, 0, 1, 0, 0, 0)},
        {"not inserted", 0x2000, Item(0, 0, 0, 1, 0, 0)},
        {"not inserted, entered by hand", 0x6000, Item(0, 0, 1, 1, 0, 0)},
        {"availability", 0x0800, Item(0, 0, 0, 0, 1, 0)},
        {"work", 0x1000, Item(0, 0, 0, 0, 2, 0)},
        {"driving", 0x1800, Item(0, 0, 0, 0, 3, 0)},
        {"the first minute", 0x0001, Item(1, 0, 0, 0, 0, 0)},
        {"highest bit of the minute", 0x0400, Item(1024, 0, 0, 0, 0, 0)},
        {"last minute of a day", 0x059F, Item(1439, 0, 0, 0, 0, 0)},
        {"co-driver in a crew, available at ten", 0xCA58, Item(600, 0, 1, 0, 1, 1)},
        {"all bits", 0xFFFF, Item(2047, 0, 1, 1, 3, 1)},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_THAT(itemsOf(dayOf({row.word})), ElementsAre(row.expected));
    }
}

TEST(ActivityWords, ASingleChangeHasNoDuration)
{
    const Day day = dayOf({change(driving, 300)});

    EXPECT_THAT(itemsOf(day), ElementsAre(Item(300, 0, 0, 0, 3, 0)));
    EXPECT_EQ(minutesOf(day), Minutes(0, 0, 0, 0, 300));
}

TEST(ActivityWords, SeveralChangesAtOneMinuteLastNoMinutes)
{
    const Day day = dayOf({change(rest, 0), change(work, 60), change(driving, 60), change(rest, 90)});

    EXPECT_THAT(
        itemsOf(day), ElementsAre(
                          Item(0, 60, 0, 0, 0, 0), Item(60, 0, 0, 0, 2, 0), Item(60, 30, 0, 0, 3, 0),
                          Item(90, 0, 0, 0, 0, 0)));
    EXPECT_EQ(minutesOf(day), Minutes(0, 60, 30, 0, 0));
}

TEST(ActivityWords, TimesThatRunBackwardsMakeNegativeMinutesAndDurationsOfSixteenBits)
{
    const Day day = dayOf({change(driving, 600), change(rest, 540), change(work, 570), change(rest, 0)});

    EXPECT_THAT(
        itemsOf(day), ElementsAre(
                          Item(600, 65476, 0, 0, 3, 0), Item(540, 30, 0, 0, 0, 0),
                          Item(570, 64966, 0, 0, 2, 0), Item(0, 0, 0, 0, 0, 0)));
    EXPECT_EQ(minutesOf(day), Minutes(-570, 30, -60, 0, 600));
}

// Minutes of a day

TEST(ActivityMinutes, CountForTheActivityThatTheyFollow)
{
    const struct
    {
        const char* name;
        unsigned int first;
        Minutes expected;
    } rows[] = {
        {"rest, single", change(rest, 0), Minutes(0, 100, 0, 0, 0)},
        {"availability, single", change(available, 0), Minutes(0, 0, 0, 100, 0)},
        {"work, single", change(work, 0), Minutes(100, 0, 0, 0, 0)},
        {"driving, single", change(driving, 0), Minutes(0, 0, 100, 0, 0)},
        {"rest, crew", change(rest, 0) | crew, Minutes(0, 100, 0, 0, 0)},
        {"availability, crew", change(available, 0) | crew, Minutes(0, 0, 0, 100, 0)},
        {"work, crew", change(work, 0) | crew, Minutes(100, 0, 0, 0, 0)},
        {"driving, crew", change(driving, 0) | crew, Minutes(0, 0, 100, 0, 0)},
        {"driving, co-driver", change(driving, 0) | coDriver, Minutes(0, 0, 100, 0, 0)},
        {"rest by hand", change(rest, 0) | notInserted | known, Minutes(0, 100, 0, 0, 0)},
        {"availability by hand", change(available, 0) | notInserted | known, Minutes(0, 0, 0, 100, 0)},
        {"work by hand", change(work, 0) | notInserted | known, Minutes(100, 0, 0, 0, 0)},
        {"driving by hand", change(driving, 0) | notInserted | known, Minutes(0, 0, 100, 0, 0)},
        {"unknown, rest", change(rest, 0) | notInserted, Minutes(0, 0, 0, 0, 100)},
        {"unknown, availability", change(available, 0) | notInserted, Minutes(0, 0, 0, 0, 100)},
        {"unknown, work", change(work, 0) | notInserted, Minutes(0, 0, 0, 0, 100)},
        {"unknown, driving", change(driving, 0) | notInserted, Minutes(0, 0, 0, 0, 100)},
        {"unknown, co-driver", change(work, 0) | notInserted | coDriver, Minutes(0, 0, 0, 0, 100)},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(minutesOf(dayOf({row.first, change(work, 100)})), row.expected);
    }
}

TEST(ActivityMinutes, TheFirstChangeIsPrecededByUnknownTime)
{
    EXPECT_EQ(minutesOf(dayOf({change(driving, 30), change(rest, 90)})), Minutes(0, 0, 60, 0, 30));
}

TEST(ActivityMinutes, TheLastPeriodCountsNowhere)
{
    const Day day = dayOf({change(driving, 0), change(rest, 480)});

    EXPECT_EQ(minutesOf(day), Minutes(0, 0, 480, 0, 0));
    EXPECT_THAT(itemsOf(day), ElementsAre(Item(0, 480, 0, 0, 3, 0), Item(480, 0, 0, 0, 0, 0)));
}

TEST(ActivityMinutes, ADayOfSingleMinutesFillsAnActivityFileOfOneDay)
{
    std::vector<unsigned int> words;
    for (unsigned int minute = 0; minute < 1440; ++minute)
        words.push_back(change(minute % 2 == 0 ? driving : work, minute));

    const Day day = dayOf(words);

    EXPECT_THAT(day.items, SizeIs(1440));
    EXPECT_EQ(minutesOf(day), Minutes(719, 0, 720, 0, 0));
}

// The walk over the buffer

TEST(ActivityWalk, TakesTheDaysFromTheOldestToTheNewest)
{
    ActivityBuffer buffer(100);
    buffer.at(10)
        .day(march5, {change(rest, 0), change(work, 60)})
        .day(march6, {change(rest, 0)})
        .day(march7, {change(rest, 0), change(driving, 20), change(rest, 30)});
    ActivityCard card(buffer);

    EXPECT_EQ(card.getDateOfFirstActivity().toSecsSinceEpoch(), qint64{march5});
    EXPECT_EQ(card.getDateOfLastActivity().toSecsSinceEpoch(), qint64{march7});
    const std::vector<Day> days = card.getActivities();
    EXPECT_THAT(datesOf(days), ElementsAre(march5, march6, march7));
    EXPECT_THAT(
        days, ElementsAre(
                  testing::Field(&Day::items, SizeIs(2)), testing::Field(&Day::items, SizeIs(1)),
                  testing::Field(&Day::items, SizeIs(3))));
}

TEST(ActivityWalk, DoesNotDependOnWhereTheDaysLie)
{
    const std::vector<unsigned int> words{0x2000, 0x1168, 0x19A4, 0x02B2, 0x1ADF, 0x33ED};
    constexpr std::size_t length = 45;
    for (std::size_t position = 0; position < length; ++position) {
        SCOPED_TRACE(position);
        ActivityBuffer buffer(length, 0xEE);
        ActivityCard card(buffer.at(position).day(march5, words).day(march6, {0x0000, 0x1801}));

        const std::vector<Day> days = card.getActivities();

        ASSERT_THAT(datesOf(days), ElementsAre(march5, march6));
        EXPECT_EQ(minutesOf(days[0]), Minutes(60, 45, 540, 0, 360));
        EXPECT_THAT(days[0].items, SizeIs(6));
        EXPECT_THAT(itemsOf(days[1]), ElementsAre(Item(0, 1, 0, 0, 0, 0), Item(1, 0, 0, 0, 3, 0)));
    }
}

TEST(ActivityWalk, ADayThreeBytesBeforeTheEndHasItsLengthOnBothSidesOfTheWrap)
{
    // Position 17: length in 19 and 0, date in 1 to 4, words from 9 on.
    test::Bytes payload{0, 17, 0, 17};
    const test::Bytes buffer{0x10, 0x65, 0xE6, 0x60, 0x80, 0,    0,    0,    0,    0x18,
                             0x00, 0x19, 0x2C, 0xEE, 0xEE, 0xEE, 0xEE, 0xBB, 0xBB, 0x00};
    payload.insert(payload.end(), buffer.begin(), buffer.end());
    test::CardOnImage<SCardDriverG1> card(test::smallDriverImage().replace(0x0504, payload));
    ASSERT_THAT(chain(card.read()), IsEmpty());

    const std::vector<Day> days = card.getActivities();

    ASSERT_THAT(datesOf(days), ElementsAre(march5));
    EXPECT_THAT(itemsOf(days[0]), ElementsAre(Item(0, 300, 0, 0, 3, 0), Item(300, 0, 0, 0, 3, 0)));
}

TEST(ActivityWalk, AWordMayBeSplitByTheWrap)
{
    // Position 7 of 20: the first word lies in 19 and 0.
    ActivityBuffer buffer(20, 0xEE);
    ActivityCard card(buffer.at(7).day(march5, {0xCA58, 0x1ADF}));

    const std::vector<Day> days = card.getActivities();

    ASSERT_THAT(days, SizeIs(1));
    EXPECT_THAT(itemsOf(days[0]), ElementsAre(Item(600, 135, 1, 0, 1, 1), Item(735, 0, 0, 0, 3, 0)));
}

TEST(ActivityWalk, OldestAndNewestInOnePlaceAreOneDay)
{
    ActivityBuffer buffer(60);
    buffer.at(40).day(march5, {change(rest, 0)}).day(march6, {change(rest, 0)}).newest(40);

    EXPECT_THAT(datesOf(ActivityCard(buffer).getActivities()), ElementsAre(march5));
}

TEST(ActivityWalk, ADayThatEndsWithTheBufferIsFollowedByTheOneAtItsStart)
{
    ActivityBuffer buffer(28);
    buffer.at(14).day(march5, {change(rest, 0)}).day(march6, {change(work, 0)});

    EXPECT_THAT(datesOf(ActivityCard(buffer).getActivities()), ElementsAre(march5, march6));
}

TEST(ActivityWalk, ADayMayFillTheWholeBuffer)
{
    ActivityBuffer buffer(20);
    ActivityCard card(buffer.at(5).day(march5, {0x0000, 0x1801, 0x0002, 0x1003}));

    EXPECT_THAT(chain(card.buildDailyActivityList()), IsEmpty());
    ASSERT_THAT(card.getActivities(), SizeIs(1));
    EXPECT_THAT(card.getActivities()[0].items, SizeIs(4));
}

TEST(ActivityWalk, ADayWithoutChangesStaysInTheList)
{
    ActivityBuffer buffer(60);
    ActivityCard card(buffer.day(march5, {}).day(march6, {change(work, 0)}));

    const std::vector<Day> days = card.getActivities();

    ASSERT_THAT(datesOf(days), ElementsAre(march5, march6));
    EXPECT_THAT(days[0].items, IsEmpty());
    EXPECT_EQ(minutesOf(days[0]), Minutes(0, 0, 0, 0, 0));
}

TEST(ActivityWalk, ADayShorterThanItsHeaderHasNoChanges)
{
    for (unsigned int recordLength = 1; recordLength < 12; ++recordLength) {
        SCOPED_TRACE(recordLength);
        ActivityBuffer buffer(60);
        ActivityCard card(buffer.day(march5, {change(work, 7)}, recordLength));

        const std::vector<Day> days = card.getActivities();

        ASSERT_THAT(datesOf(days), ElementsAre(march5));
        EXPECT_THAT(days[0].items, IsEmpty());
    }
}

TEST(ActivityWalk, TheNextDayMayBeginInsideTheHeaderOfADay)
{
    // The second day's unused length stands where the first one's unused counter would.
    for (const unsigned int recordLength : {8U, 9U, 11U}) {
        SCOPED_TRACE(recordLength);
        ActivityBuffer buffer(60);
        buffer.day(march5, {}, recordLength).day(march6, {change(work, 7)});
        ActivityCard card(buffer);

        const std::vector<Day> days = card.getActivities();

        ASSERT_THAT(datesOf(days), ElementsAre(march5, march6));
        EXPECT_THAT(days[0].items, IsEmpty());
        EXPECT_THAT(itemsOf(days[1]), ElementsAre(Item(7, 0, 0, 0, 2, 0)));
    }
}

TEST(ActivityWalk, TheLastByteOfAnOddLengthIsTheHighByteOfOneMoreChange)
{
    ActivityBuffer buffer(60);
    buffer.day(march5, {0x0000}, 15).put(14, {0x19}).day(march6, {change(work, 9)});
    buffer.put(15, {0xA4}); // where the next day's unused length begins
    ActivityCard card(buffer);

    const std::vector<Day> days = card.getActivities();

    ASSERT_THAT(datesOf(days), ElementsAre(march5, march6));
    EXPECT_THAT(itemsOf(days[0]), ElementsAre(Item(0, 420, 0, 0, 0, 0), Item(420, 0, 0, 0, 3, 0)));
    EXPECT_THAT(itemsOf(days[1]), ElementsAre(Item(9, 0, 0, 0, 2, 0)));
}

TEST(ActivityWalk, OneByteBehindTheHeaderIsOneChange)
{
    ActivityBuffer buffer(60);
    ActivityCard card(buffer.day(march5, {}, 13).put(12, {0x0A, 0x58}));

    ASSERT_THAT(card.getActivities(), SizeIs(1));
    EXPECT_THAT(itemsOf(card.getActivities()[0]), ElementsAre(Item(600, 0, 0, 0, 1, 0)));
}

TEST(ActivityWalk, TheLowByteOfTheLastChangeOfAnOddLengthMayLieBehindTheWrap)
{
    ActivityBuffer buffer(40);
    ActivityCard card(buffer.at(25).day(march5, {0x0000}, 15).put(39, {0x1A, 0xDF}));

    ASSERT_THAT(card.getActivities(), SizeIs(1));
    EXPECT_THAT(
        itemsOf(card.getActivities()[0]), ElementsAre(Item(0, 735, 0, 0, 0, 0), Item(735, 0, 0, 0, 3, 0)));
}

TEST(ActivityWalk, AnOddLengthOfTheWholeBufferTakesItsLastByteFromItsOwnStart)
{
    ActivityBuffer buffer(15);
    ActivityCard card(buffer.day(march5, {0x0000}, 15).put(14, {0x18, 0x05}));

    EXPECT_THAT(chain(card.buildDailyActivityList()), IsEmpty());
    ASSERT_THAT(card.getActivities(), SizeIs(1));
    EXPECT_THAT(
        itemsOf(card.getActivities()[0]), ElementsAre(Item(0, 5, 0, 0, 0, 0), Item(5, 0, 0, 0, 3, 0)));
}

TEST(ActivityWalk, AChainThatDoesNotAdvanceEndsAfterAsManyDaysAsFit)
{
    for (const std::size_t length : {12U, 23U, 24U, 60U, 71U}) {
        SCOPED_TRACE(length);
        ActivityBuffer buffer(length);
        ActivityCard card(buffer.put(4, test::timeReal(march5)).oldest(0).newest(1));

        EXPECT_THAT(chain(card.buildDailyActivityList()), IsEmpty());

        const std::vector<Day> days = card.getActivities();
        EXPECT_THAT(datesOf(days), testing::AllOf(SizeIs(length / 12 + 1), Each(qint64{march5})));
        for (const Day& day : days)
            EXPECT_THAT(day.items, IsEmpty());
    }
}

TEST(ActivityWalk, ABufferShorterThanAHeaderIsReadAroundItsEnd)
{
    // Bytes 2 and 3 of 5 are the length, 4, 0, 1 and 2 the date.
    test::Bytes payload{0, 0, 0, 1, 0x12, 0x34, 0x00, 0x05, 0x65};
    test::CardOnImage<SCardDriverG1> card(test::smallDriverImage()
                                              .replace(0x0501, test::driverApplication(2, 1, 5, 2, 3))
                                              .replace(0x0504, payload));
    ASSERT_THAT(chain(card.read()), IsEmpty());

    EXPECT_THAT(chain(card.buildDailyActivityList()), IsEmpty());

    EXPECT_THAT(datesOf(card.getActivities()), ElementsAre(0x65123400));
}

TEST(ActivityWalk, AChainThatNeverMeetsTheNewestDayEndsAfterAsManyDaysAsFit)
{
    ActivityBuffer buffer(30);
    buffer.day(march5, {change(rest, 0)}, 15).day(march6, {change(rest, 0)}, 15).newest(1);
    ActivityCard card(buffer);

    EXPECT_THAT(chain(card.buildDailyActivityList()), IsEmpty());

    EXPECT_THAT(datesOf(card.getActivities()), ElementsAre(march5, march5, march6));
}

TEST(ActivityWalk, ALengthBeyondTheBufferFailsAndTheDaysBeforeStay)
{
    ActivityBuffer buffer(40);
    buffer.day(march5, {change(driving, 0), change(rest, 70)}).day(march6, {}, 41);
    ActivityCard card(buffer);

    EXPECT_EQ(chain(card.buildDailyActivityList()), invalidRecordLength);

    const std::vector<Day> days = card.getActivities();
    ASSERT_THAT(datesOf(days), ElementsAre(march5));
    EXPECT_EQ(minutesOf(days[0]), Minutes(0, 0, 70, 0, 0));
}

TEST(ActivityWalk, ALengthBeyondTheBufferInTheOldestDayLeavesNoDays)
{
    for (const unsigned int recordLength : {41U, 0x7FFFU, 0x8000U, 0xFFFFU}) {
        SCOPED_TRACE(recordLength);
        ActivityBuffer buffer(40);
        ActivityCard card(buffer.day(march5, {}, recordLength));

        EXPECT_EQ(chain(card.buildDailyActivityList()), invalidRecordLength);

        EXPECT_THAT(card.getActivities(), IsEmpty());
    }
}

TEST(ActivityWalk, AFailureDoesNotStopTheReading)
{
    ActivityBuffer buffer(40);
    buffer.day(march5, {}, 41);
    test::Bytes events(test::smallCardEvents * 6 * 24);
    test::put(events, 0, test::eventRecord(3, march5, march6));
    test::CardOnImage<SCardDriverG1> card(test::imageWith(buffer).replace(0x0502, events));

    EXPECT_THAT(chain(card.read()), IsEmpty());

    EXPECT_THAT(card.getActivities(), IsEmpty());
    EXPECT_THAT(card.getEvents(), SizeIs(1));
}

TEST(ActivityWalk, APointerBehindTheBufferIsTakenRoundIt)
{
    ActivityBuffer buffer(60);
    buffer.at(5).day(march5, {change(rest, 0)}).day(march6, {change(rest, 0)}).day(march7, {change(rest, 0)});

    EXPECT_THAT(
        datesOf(ActivityCard(buffer.oldest(65)).getActivities()), ElementsAre(march5, march6, march7));
    EXPECT_THAT(datesOf(ActivityCard(buffer.oldest(65).newest(65)).getActivities()), ElementsAre(march5));
}

TEST(ActivityWalk, APointerToTheEndOfTheBufferIsItsStart)
{
    ActivityBuffer buffer(60);
    buffer.day(march5, {change(rest, 0)}).day(march6, {change(rest, 0)}).oldest(60);

    EXPECT_THAT(datesOf(ActivityCard(buffer).getActivities()), ElementsAre(march5, march6));
}

TEST(ActivityWalk, ANewestPointerBehindTheBufferIsNeverMet)
{
    ActivityBuffer buffer(28);
    buffer.day(march5, {change(rest, 0)}).day(march6, {change(rest, 0)}).newest(28);
    ActivityCard card(buffer);

    EXPECT_THAT(chain(card.buildDailyActivityList()), IsEmpty());

    EXPECT_THAT(datesOf(card.getActivities()), ElementsAre(march5, march5, march6));
}

TEST(ActivityWalk, AFarPointerComesDownByOneBufferADay)
{
    // 56, 42, 28: two lengths behind the start it does not meet 14 before the days are full.
    ActivityBuffer buffer(28);
    buffer.day(march5, {change(rest, 0)}).day(march6, {change(rest, 0)}).oldest(56);

    EXPECT_THAT(datesOf(ActivityCard(buffer).getActivities()), ElementsAre(march5, march5, march6));
}

TEST(ActivityWalk, TheHighestPointerIsTakenRoundTheBuffer)
{
    // 65535 is 15 in a buffer of 28.
    ActivityBuffer buffer(28);
    buffer.at(15).day(march5, {change(rest, 0)}, 28).oldest(0xFFFF).newest(0xFFFF);

    EXPECT_THAT(datesOf(ActivityCard(buffer).getActivities()), ElementsAre(march5));
}

TEST(ActivityWalk, ABufferOfNoBytesHasNoDays)
{
    for (const unsigned int pointer : {0U, 1U, 0xFFFFU}) {
        SCOPED_TRACE(pointer);
        test::CardOnImage<SCardDriverG1> card(
            test::smallDriverImage()
                .replace(0x0501, test::driverApplication(2, 1, 0, 2, 3))
                .replace(0x0504, test::joined({test::number(pointer, 2), test::number(0, 2)})));
        ASSERT_THAT(chain(card.read()), IsEmpty());

        EXPECT_THAT(chain(card.buildDailyActivityList()), IsEmpty());
        EXPECT_THAT(card.getActivities(), IsEmpty());
    }
}

TEST(ActivityWalk, ABlankObjectHasNoDays)
{
    SCardDriverG1 card;

    EXPECT_THAT(chain(card.buildDailyActivityList()), IsEmpty());
    EXPECT_THAT(card.getActivities(), IsEmpty());
}

TEST(ActivityWalk, ALengthWithoutItsBytesFails)
{
    test::CardOnImage<SCardDriverG1> counted(test::smallDriverImage());
    ASSERT_THAT(chain(counted.calcDataToRead()), IsEmpty());
    EXPECT_EQ(chain(counted.buildDailyActivityList()), invalidStructureLength);
    EXPECT_THAT(counted.getActivities(), IsEmpty());

    test::CardOnImage<SCardDriverG1> damaged(test::smallDriverImage().without(0x0504));
    ASSERT_FALSE(damaged.read().isEmpty());
    EXPECT_EQ(chain(damaged.buildDailyActivityList()), invalidStructureLength);
    EXPECT_THAT(damaged.getActivities(), IsEmpty());
}

TEST(ActivityWalk, TheLargestBufferOfAnImageIsRead)
{
    // An EF of an image holds 65535 bytes, four of them pointers.
    ActivityBuffer buffer(65531);
    buffer.at(65520).day(march5, {change(rest, 0), change(driving, 5)}).day(march6, {change(work, 0)});

    EXPECT_THAT(datesOf(ActivityCard(buffer).getActivities()), ElementsAre(march5, march6));
}

TEST(ActivityWalk, TheListEndsWithTheDayThatReachesItsLimit)
{
    // One day that follows itself; 64 times 16384 periods are the limit exactly.
    const struct
    {
        std::size_t words;
        std::size_t days;
    } rows[] = {{16385, 64}, {16384, 64}, {16383, 65}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.words);
        ActivityBuffer buffer(test::dayHeaderLength + 2 * row.words);
        ActivityCard card(buffer.day(march5, {}, static_cast<unsigned int>(buffer.length())).newest(1));

        EXPECT_THAT(chain(card.buildDailyActivityList()), IsEmpty());

        const std::vector<Day> days = card.getActivities();
        EXPECT_THAT(days, SizeIs(row.days));
        EXPECT_THAT(days, Each(testing::Field(&Day::items, SizeIs(row.words))));
    }
}

TEST(ActivityWalk, OverlappingDaysEndAtTheLimitToo)
{
    // Every length is FEFE, 32633 periods a day; the next day begins 253 bytes before.
    ActivityBuffer buffer(65531, 0xFE);
    ActivityCard card(buffer.oldest(0).newest(1));

    EXPECT_THAT(chain(card.buildDailyActivityList()), IsEmpty());
    EXPECT_THAT(card.getActivities(), SizeIs(33));
}

TEST(ActivityWalk, BuildingAgainDoesNotDoubleTheDays)
{
    ActivityBuffer buffer(40);
    ActivityCard card(buffer.day(march5, {change(rest, 0)}).day(march6, {change(rest, 0)}));

    EXPECT_THAT(chain(card.buildDailyActivityList()), IsEmpty());
    EXPECT_THAT(card.getActivities(), SizeIs(2));
    EXPECT_THAT(chain(card.read()), IsEmpty());
    EXPECT_THAT(card.getActivities(), SizeIs(2));
}

// Order and dates

TEST(ActivityDates, TheListIsInTheCardsOrderUntilItIsAskedFor)
{
    ActivityBuffer buffer(60);
    buffer.day(march7, {change(rest, 0)}).day(march5, {change(rest, 0)}).day(march6, {change(rest, 0)});
    ActivityCard card(buffer);
    EXPECT_EQ(card.getDateOfFirstActivity().toSecsSinceEpoch(), qint64{march7});
    EXPECT_EQ(card.getDateOfLastActivity().toSecsSinceEpoch(), qint64{march6});

    EXPECT_THAT(datesOf(card.getActivities()), ElementsAre(march5, march6, march7));

    EXPECT_EQ(card.getDateOfFirstActivity().toSecsSinceEpoch(), qint64{march5});
    EXPECT_EQ(card.getDateOfLastActivity().toSecsSinceEpoch(), qint64{march7});
}

TEST(ActivityDates, BuildingAgainBringsTheCardsOrderBack)
{
    ActivityBuffer buffer(60);
    ActivityCard card(buffer.day(march6, {change(rest, 0)}).day(march5, {change(rest, 0)}));
    EXPECT_THAT(datesOf(card.getActivities()), ElementsAre(march5, march6));

    EXPECT_THAT(chain(card.buildDailyActivityList()), IsEmpty());

    EXPECT_EQ(card.getDateOfFirstActivity().toSecsSinceEpoch(), qint64{march6});
}

TEST(ActivityDates, AreUnsignedSecondsSinceTheEpoch)
{
    for (const std::uint32_t seconds : {0U, 1U, march5, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFFU}) {
        SCOPED_TRACE(seconds);
        ActivityBuffer buffer(20);
        ActivityCard card(buffer.day(seconds, {change(rest, 0)}));

        const std::vector<Day> days = card.getActivities();

        EXPECT_THAT(datesOf(days), ElementsAre(qint64{seconds}));
        EXPECT_EQ(card.getDateOfFirstActivity().toSecsSinceEpoch(), qint64{seconds});
    }
}

TEST(ActivityDates, AreInLocalTime)
{
    for (std::uint32_t seconds = march5; seconds < march6; seconds += 3600) {
        SCOPED_TRACE(seconds);
        ActivityBuffer buffer(20);
        ActivityCard card(buffer.day(seconds, {change(rest, 0)}));

        EXPECT_EQ(card.getDateOfFirstActivity().timeSpec(), Qt::LocalTime);
        EXPECT_EQ(card.getDateOfFirstActivity().date(), localDate(seconds));
        EXPECT_TRUE(hasDay(card, localDate(seconds)));
        EXPECT_FALSE(hasDay(card, localDate(seconds).addDays(1)));
        EXPECT_FALSE(hasDay(card, localDate(seconds).addDays(-1)));
    }
}

TEST(ActivityDates, WestOfGreenwichADayStampedMidnightIsThePreviousOne)
{
    const struct
    {
        const char* zone;
        QDate expected;
    } rows[] = {
        {"UTC", QDate(2024, 3, 5)},
        {"Europe/Berlin", QDate(2024, 3, 5)},
        {"America/New_York", QDate(2024, 3, 4)},
        {"Atlantic/Azores", QDate(2024, 3, 4)},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.zone);
        const test::LocalZone zone(row.zone);
        ActivityBuffer buffer(20);
        ActivityCard card(buffer.day(march5, {change(rest, 0)}));

        EXPECT_EQ(card.getDateOfFirstActivity().date(), row.expected);
        EXPECT_TRUE(hasDay(card, row.expected));
        EXPECT_FALSE(hasDay(card, row.expected.addDays(1)));
        EXPECT_FALSE(hasDay(card, row.expected.addDays(-1)));
    }
}

TEST(ActivityDates, DaysOf23And25HoursHaveTheMinutesOfTheCard)
{
    const struct
    {
        const char* zone;
        QDate day;
    } rows[] = {
        {"Europe/Berlin", QDate(2024, 3, 31)},    {"Europe/Berlin", QDate(2024, 10, 27)},
        {"America/New_York", QDate(2024, 3, 10)}, {"America/New_York", QDate(2024, 11, 3)},
        {"Europe/Berlin", QDate(2024, 7, 1)},
    };
    for (const auto& row : rows) {
        for (const int hour : {6, 12, 18}) {
            SCOPED_TRACE(row.zone + (' ' + row.day.toString(Qt::ISODate).toStdString()));
            const test::LocalZone zone(row.zone);
            const qint64 seconds = QDateTime(row.day, QTime(hour, 0), Qt::UTC).toSecsSinceEpoch();
            ActivityBuffer buffer(40);
            ActivityCard card(buffer.day(
                static_cast<std::uint32_t>(seconds),
                {change(rest, 0), change(work, 60), change(driving, 180), change(rest, 1439)}));

            std::array<int, 5> minutes{};
            EXPECT_TRUE(
                card.getDayStatistics(row.day, minutes[0], minutes[1], minutes[2], minutes[3], minutes[4]));
            EXPECT_THAT(minutes, ElementsAre(120, 60, 1259, 0, 0));
            EXPECT_THAT(datesOf(card.getActivities()), ElementsAre(seconds));
        }
    }
}

TEST(ActivityDates, OfTwoDaysWithOneDateTheFirstAnswers)
{
    ActivityBuffer buffer(60);
    buffer.day(march5, {change(work, 0), change(rest, 10)}).day(march5, {change(work, 0), change(rest, 20)});
    ActivityCard card(buffer);

    std::array<int, 5> minutes{};
    EXPECT_TRUE(
        card.getDayStatistics(localDate(march5), minutes[0], minutes[1], minutes[2], minutes[3], minutes[4]));
    EXPECT_THAT(minutes, ElementsAre(10, 0, 0, 0, 0));
    EXPECT_THAT(datesOf(card.getActivities()), ElementsAre(march5, march5));
}

} // namespace
