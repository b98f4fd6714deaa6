#include "fixtures/ActivityBuffer.h"
#include "fixtures/CardOnImage.h"
#include "fixtures/LocalZone.h"
#include "QtPrinters.h"

#include <scard/SCardDriverG1.h>
#include <support/ErrorChain.h>

#include <gmock/gmock.h>

#include <QDate>
#include <QDateTime>

#include <cstdint>
#include <tuple>
#include <vector>

// What a driver card says about a day and about the times that remain.

namespace {

using scard::SCardDriverG1;
using test::ActivityBuffer;
using test::available;
using test::chain;
using test::change;
using test::crew;
using test::driving;
using test::known;
using test::notInserted;
using test::rest;
using test::work;
using testing::IsEmpty;
using testing::SizeIs;

using Words = std::vector<unsigned int>;

/// Found, work, rest, driving, availability, unknown.
using Statistics = std::tuple<bool, int, int, int, int, int>;

const QDate tuesday(2024, 3, 5);

struct DayOfCard
{
    QDate date;
    Words words;
};

/// Noon by UTC has the same date in every zone that the tests run in.
std::uint32_t noon(QDate date)
{
    return static_cast<std::uint32_t>(QDateTime(date, QTime(12, 0), Qt::UTC).toSecsSinceEpoch());
}

ActivityBuffer bufferOf(const std::vector<DayOfCard>& days)
{
    ActivityBuffer buffer(2000);
    for (const DayOfCard& day : days)
        buffer.day(noon(day.date), day.words);
    return buffer;
}

/// A driver card with these days, read.
class DaysCard : public test::CardOnImage<SCardDriverG1>
{
  public:
    explicit DaysCard(const std::vector<DayOfCard>& days) : CardOnImage(test::imageWith(bufferOf(days)))
    {
        EXPECT_THAT(chain(read()), IsEmpty());
    }
};

/// A day that begins with @p minutes of driving.
DayOfCard drivingDay(QDate date, unsigned int minutes)
{
    return {date, {change(driving, 0), change(rest, minutes)}};
}

Statistics statisticsOf(const SCardDriverG1& card, QDate date)
{
    int minutes[] = {71, 72, 73, 74, 75};
    const bool found =
        card.getDayStatistics(date, minutes[0], minutes[1], minutes[2], minutes[3], minutes[4]);
    return {found, minutes[0], minutes[1], minutes[2], minutes[3], minutes[4]};
}

const Statistics noDay{false, 0, 0, 0, 0, 0};

// The start values

void expectStartValues(const SCardDriverG1& card, QDate date)
{
    EXPECT_EQ(statisticsOf(card, date), noDay);
    EXPECT_EQ(card.getRemainingDrivingTimeOfDay(date), 540);
    EXPECT_EQ(card.getRemainingDrivingTimeOfWeek(date), 3360);
    EXPECT_EQ(card.getRemainingExtendedDrivingTimeOfWeek(date), 2);
    EXPECT_EQ(card.getRemainingReducedRestTimeOfWeek(date), 3);
    EXPECT_EQ(card.getTimeToNextBreak(date), 270);
}

TEST(DrivingTimes, OfACardThatWasNotReadAreTheStartValues)
{
    const SCardDriverG1 card;

    expectStartValues(card, tuesday);
    expectStartValues(card, QDate());
    EXPECT_TRUE(card.getDateOfFirstActivity().isNull());
    EXPECT_TRUE(card.getDateOfLastActivity().isNull());
}

TEST(DrivingTimes, OfADayThatIsNotInTheListAreTheStartValues)
{
    const DaysCard card({drivingDay(tuesday, 800)});

    expectStartValues(card, tuesday.addDays(-1));
    expectStartValues(card, tuesday.addDays(7));
    expectStartValues(card, tuesday.addYears(-1));
}

TEST(DrivingTimes, OfNoDateAreTheStartValues)
{
    expectStartValues(DaysCard({drivingDay(tuesday, 800), drivingDay(QDate(1970, 1, 2), 800)}), QDate());
}

TEST(DrivingTimes, OfADayWithoutChangesAreTheStartValues)
{
    const DaysCard card({{tuesday, {}}});

    EXPECT_EQ(statisticsOf(card, tuesday), Statistics(true, 0, 0, 0, 0, 0));
    EXPECT_EQ(card.getRemainingDrivingTimeOfDay(tuesday), 540);
    EXPECT_EQ(card.getRemainingDrivingTimeOfWeek(tuesday), 3360);
    EXPECT_EQ(card.getTimeToNextBreak(tuesday), 270);
}

// Statistics of a day

TEST(DayStatistics, AreTheDaysFiveSumsInTheirOrder)
{
    const DaysCard card({
        {tuesday.addDays(-1), {change(work, 0), change(rest, 5)}},
        {tuesday,
         {change(rest, 1), change(work, 3), change(driving, 7), change(available, 15), change(rest, 31)}},
    });

    EXPECT_EQ(statisticsOf(card, tuesday), Statistics(true, 4, 2, 8, 16, 1));
    EXPECT_EQ(statisticsOf(card, tuesday.addDays(-1)), Statistics(true, 5, 0, 0, 0, 0));
}

TEST(DayStatistics, OfADateThatIsNotThereAreZero)
{
    EXPECT_EQ(statisticsOf(DaysCard({drivingDay(tuesday, 100)}), tuesday.addDays(1)), noDay);
}

TEST(DayStatistics, OfADateThatIsThereTwiceAreThoseOfTheFirst)
{
    const DaysCard card({drivingDay(tuesday, 100), drivingDay(tuesday, 200)});

    EXPECT_EQ(statisticsOf(card, tuesday), Statistics(true, 0, 0, 100, 0, 0));
    EXPECT_EQ(card.getRemainingDrivingTimeOfDay(tuesday), 440);
}

TEST(DayStatistics, FollowTheOrderOfTheListWhenItWasSorted)
{
    ActivityBuffer buffer(60);
    buffer.day(noon(tuesday) + 60, {change(work, 0), change(rest, 1)});
    buffer.day(noon(tuesday), {change(work, 0), change(rest, 2)});
    test::CardOnImage<SCardDriverG1> card(test::imageWith(buffer));
    ASSERT_THAT(chain(card.read()), IsEmpty());
    EXPECT_EQ(statisticsOf(card, tuesday), Statistics(true, 1, 0, 0, 0, 0));

    EXPECT_THAT(card.getActivities(), SizeIs(2));

    EXPECT_EQ(statisticsOf(card, tuesday), Statistics(true, 2, 0, 0, 0, 0));
}

// The day

TEST(RemainingDrivingOfDay, IsNineHoursLessWorkAndDrivingAndMayBeNegative)
{
    const struct
    {
        const char* name;
        Words words;
        int expected;
    } rows[] = {
        {"nothing", {change(rest, 0)}, 540},
        {"work counts", {change(work, 0), change(rest, 100)}, 440},
        {"driving counts", {change(driving, 0), change(rest, 100)}, 440},
        {"both count", {change(work, 0), change(driving, 100), change(rest, 250)}, 290},
        {"rest and availability do not", {change(rest, 0), change(available, 600), change(rest, 1200)}, 540},
        {"unknown time does not", {change(work, 0) | notInserted, change(rest, 1200)}, 540},
        {"one minute left", {change(driving, 0), change(rest, 539)}, 1},
        {"none left", {change(driving, 0), change(rest, 540)}, 0},
        {"one minute too much", {change(driving, 0), change(rest, 541)}, -1},
        {"ten hours", {change(driving, 0), change(rest, 600)}, -60},
        {"the whole day", {change(driving, 0), change(rest, 1439)}, -899},
        {"times that run backwards", {change(driving, 600), change(rest, 540)}, 600},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const DaysCard card({drivingDay(tuesday.addDays(-1), 77), {tuesday, row.words}});
        EXPECT_EQ(card.getRemainingDrivingTimeOfDay(tuesday), row.expected);
    }
}

// The seven days

TEST(RemainingOfWeek, SevenDaysEndWithTheDate)
{
    const DaysCard card({drivingDay(tuesday, 800)});
    const auto figures = [&card](int days) {
        const QDate date = tuesday.addDays(days);
        return std::make_tuple(
            card.getRemainingDrivingTimeOfWeek(date), card.getRemainingExtendedDrivingTimeOfWeek(date),
            card.getRemainingReducedRestTimeOfWeek(date));
    };

    EXPECT_EQ(figures(-1), std::make_tuple(3360, 2, 3));
    for (int days = 0; days < 7; ++days) {
        SCOPED_TRACE(days);
        EXPECT_EQ(figures(days), std::make_tuple(2560, 1, 2));
    }
    EXPECT_EQ(figures(7), std::make_tuple(3360, 2, 3));
}

TEST(RemainingOfWeek, TakesTheDaysOfTheWindowWhereverTheyAreInTheList)
{
    const DaysCard card({
        drivingDay(tuesday.addDays(1), 1),
        drivingDay(tuesday, 10),
        drivingDay(tuesday.addDays(-7), 1000),
        drivingDay(tuesday.addDays(-6), 100),
        drivingDay(tuesday.addDays(-3), 30),
    });

    EXPECT_EQ(card.getRemainingDrivingTimeOfWeek(tuesday), 3360 - 140);
}

TEST(RemainingOfWeek, GoesOverAChangeOfTheClocks)
{
    const struct
    {
        const char* zone;
        QDate change;
    } rows[] = {
        {"Europe/Berlin", QDate(2024, 3, 31)},
        {"Europe/Berlin", QDate(2024, 10, 27)},
        {"America/New_York", QDate(2024, 3, 10)},
        {"America/New_York", QDate(2024, 11, 3)},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.zone);
        const test::LocalZone zone(row.zone);
        const DaysCard card({drivingDay(row.change.addDays(-1), 100), drivingDay(row.change, 200)});
        EXPECT_EQ(card.getRemainingDrivingTimeOfWeek(row.change.addDays(5)), 3060);
        EXPECT_EQ(card.getRemainingDrivingTimeOfWeek(row.change.addDays(6)), 3160);
        EXPECT_EQ(card.getRemainingDrivingTimeOfWeek(row.change.addDays(7)), 3360);
    }
}

TEST(RemainingDrivingOfWeek, Is56HoursLessWorkAndDrivingAndNotNegative)
{
    const struct
    {
        const char* name;
        unsigned int eachOfFour;
        unsigned int fifth;
        int expected;
    } rows[] = {
        {"one minute left", 700, 559, 1},
        {"none left", 700, 560, 0},
        {"one minute too much", 700, 561, 0},
        {"far too much", 1400, 1400, 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        std::vector<DayOfCard> days;
        for (int day = 0; day < 4; ++day)
            days.push_back(drivingDay(tuesday.addDays(-day), row.eachOfFour));
        days.push_back(
            {tuesday.addDays(-4), {change(work, 0), change(driving, 50), change(rest, row.fifth)}});
        EXPECT_EQ(DaysCard(days).getRemainingDrivingTimeOfWeek(tuesday), row.expected);
    }
}

TEST(RemainingDrivingOfWeek, CountsEachDayOfOneDate)
{
    EXPECT_EQ(
        DaysCard({drivingDay(tuesday, 100), drivingDay(tuesday, 200)}).getRemainingDrivingTimeOfWeek(tuesday),
        3060);
}

TEST(RemainingDrivingOfWeek, TimesThatRunBackwardsGiveTimeBack)
{
    const DaysCard card({{tuesday, {change(driving, 600), change(rest, 540)}}});

    EXPECT_EQ(card.getRemainingDrivingTimeOfWeek(tuesday), 3420);
}

TEST(RemainingExtendedDriving, IsTwoLessTheDaysOfMoreThanNineHoursAndNotNegative)
{
    const struct
    {
        const char* name;
        std::vector<unsigned int> minutes;
        int expected;
    } rows[] = {
        {"nine hours", {540}, 2},
        {"a minute more", {541}, 1},
        {"ten hours", {600}, 1},
        {"two days", {541, 540, 541}, 0},
        {"three days", {541, 541, 541}, 0},
        {"seven days", {600, 600, 600, 600, 600, 600, 600}, 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        std::vector<DayOfCard> days;
        for (const unsigned int minutes : row.minutes)
            days.push_back(drivingDay(tuesday.addDays(-static_cast<int>(days.size())), minutes));
        EXPECT_EQ(DaysCard(days).getRemainingExtendedDrivingTimeOfWeek(tuesday), row.expected);
    }
}

TEST(RemainingExtendedDriving, WorkAndDrivingCountTogether)
{
    const DaysCard card({{tuesday, {change(work, 0), change(driving, 300), change(rest, 541)}}});
    EXPECT_EQ(card.getRemainingExtendedDrivingTimeOfWeek(tuesday), 1);

    const DaysCard other({{tuesday, {change(available, 0), change(driving, 300), change(rest, 841)}}});
    EXPECT_EQ(other.getRemainingExtendedDrivingTimeOfWeek(tuesday), 1);

    const DaysCard rested({{tuesday, {change(available, 0), change(driving, 301), change(rest, 841)}}});
    EXPECT_EQ(rested.getRemainingExtendedDrivingTimeOfWeek(tuesday), 2);
}

TEST(RemainingReducedRest, IsThreeLessTheDaysThatLeaveLessThanElevenHoursAndNotNegative)
{
    const struct
    {
        const char* name;
        std::vector<unsigned int> minutes;
        int expected;
    } rows[] = {
        {"661 minutes left", {779}, 3},       {"660 minutes left", {780}, 3},
        {"659 minutes left", {781}, 2},       {"ten hours of driving", {600}, 3},
        {"800 minutes of driving", {800}, 2}, {"two of three days", {781, 780, 781}, 1},
        {"three days", {781, 781, 781}, 0},   {"four days", {781, 781, 781, 781}, 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        std::vector<DayOfCard> days;
        for (const unsigned int minutes : row.minutes)
            days.push_back(drivingDay(tuesday.addDays(-static_cast<int>(days.size())), minutes));
        EXPECT_EQ(DaysCard(days).getRemainingReducedRestTimeOfWeek(tuesday), row.expected);
    }
}

TEST(RemainingReducedRest, WorkAndDrivingCountTogether)
{
    const DaysCard card({{tuesday, {change(work, 0), change(driving, 300), change(rest, 781)}}});
    EXPECT_EQ(card.getRemainingReducedRestTimeOfWeek(tuesday), 2);

    // All of it unknown or available: nothing is held against the rest.
    const DaysCard other({{tuesday, {change(available, 600), change(rest, 1439)}}});
    EXPECT_EQ(other.getRemainingReducedRestTimeOfWeek(tuesday), 3);
}

// The next break

int timeToNextBreak(const Words& words)
{
    return DaysCard({{tuesday, words}}).getTimeToNextBreak(tuesday);
}

TEST(TimeToNextBreak, IsFourAndAHalfHoursLessWhatWasDoneSinceTheLastBreak)
{
    const struct
    {
        const char* name;
        Words words;
        int expected;
    } rows[] = {
        {"no change", {}, 270},
        {"one change", {change(driving, 0)}, 270},
        {"driving", {change(driving, 0), change(rest, 100)}, 170},
        {"work", {change(work, 0), change(rest, 100)}, 170},
        {"availability", {change(available, 0), change(rest, 100)}, 270},
        {"a crew's driving", {change(driving, 0) | crew, change(rest, 100)}, 170},
        {"the last period has no end", {change(work, 0), change(driving, 100), change(driving, 110)}, 160},
        {"the time before the first change is nothing", {change(driving, 200), change(rest, 230)}, 240},
        {"one minute left", {change(driving, 0), change(rest, 269)}, 1},
        {"none left", {change(driving, 0), change(rest, 270)}, 0},
        {"one minute too much", {change(driving, 0), change(rest, 271)}, 0},
        {"far too much", {change(driving, 0), change(rest, 1439)}, 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(timeToNextBreak(row.words), row.expected);
    }
}

TEST(TimeToNextBreak, ABreakOfMoreThan44MinutesEndsTheSearch)
{
    const struct
    {
        const char* name;
        unsigned int breakMinutes;
        int expected;
    } rows[] = {
        {"44 minutes", 44, 270 - 100 - 30},
        {"45 minutes", 45, 270 - 30},
        {"46 minutes", 46, 270 - 30},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const unsigned int end = 100 + row.breakMinutes;
        EXPECT_EQ(
            timeToNextBreak(
                {change(work, 0), change(rest, 100), change(driving, end), change(rest, end + 30)}),
            row.expected);
    }
}

TEST(TimeToNextBreak, RestsAddUpWhateverLiesBetweenThem)
{
    const struct
    {
        const char* name;
        unsigned int secondBreak;
        int expected;
    } rows[] = {
        {"44 minutes in all", 29, 270 - 100 - 50 - 20},
        {"45 minutes in all", 30, 270 - 50 - 20},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const unsigned int second = 165 + row.secondBreak;
        EXPECT_EQ(
            timeToNextBreak(
                {change(work, 0), change(rest, 100), change(driving, 115), change(rest, 165),
                 change(driving, second), change(available, second + 20)}),
            row.expected);
    }
}

TEST(TimeToNextBreak, TheLastPeriodIsNoBreakYet)
{
    EXPECT_EQ(timeToNextBreak({change(driving, 0), change(rest, 60)}), 210);
    EXPECT_EQ(timeToNextBreak({change(driving, 0), change(rest, 60), change(rest, 160)}), 270);
}

TEST(TimeToNextBreak, UnknownTimeWithoutTheCardIsPassed)
{
    const unsigned int unknownRest = change(rest, 100) | notInserted;
    const unsigned int unknownDriving = change(driving, 100) | notInserted;
    EXPECT_EQ(timeToNextBreak({change(work, 0), unknownRest, change(driving, 400), change(rest, 430)}), 140);
    EXPECT_EQ(timeToNextBreak({change(work, 0), unknownDriving, change(rest, 130), change(rest, 140)}), 170);
}

TEST(TimeToNextBreak, TimeEnteredByHandCounts)
{
    const unsigned int restByHand = change(rest, 100) | notInserted | known;
    const unsigned int workByHand = change(work, 100) | notInserted | known;
    EXPECT_EQ(timeToNextBreak({change(work, 0), restByHand, change(driving, 400), change(rest, 430)}), 240);
    EXPECT_EQ(timeToNextBreak({change(work, 0), workByHand, change(rest, 130), change(rest, 140)}), 140);
}

TEST(TimeToNextBreak, OtherDaysDoNotCount)
{
    const DaysCard card(
        {drivingDay(tuesday.addDays(-1), 100), drivingDay(tuesday, 20), drivingDay(tuesday.addDays(1), 3)});

    EXPECT_EQ(card.getTimeToNextBreak(tuesday), 250);
    EXPECT_EQ(card.getTimeToNextBreak(tuesday.addDays(1)), 267);
}

TEST(TimeToNextBreak, DaysOfOneDateShareTheirSums)
{
    const DayOfCard shortBreak{tuesday, {change(driving, 0), change(rest, 10), change(driving, 40)}};
    const DayOfCard otherBreak{tuesday, {change(work, 0), change(rest, 7), change(driving, 22)}};

    EXPECT_EQ(DaysCard({shortBreak, drivingDay(tuesday, 100)}).getTimeToNextBreak(tuesday), 160);
    // 30 and 15 minutes of break: what lies before the second of them does not count.
    EXPECT_EQ(DaysCard({shortBreak, otherBreak}).getTimeToNextBreak(tuesday), 260);
    EXPECT_EQ(DaysCard({otherBreak, shortBreak}).getTimeToNextBreak(tuesday), 263);
}

TEST(TimeToNextBreak, ABreakThatIsLongEnoughEndsTheSearchInFurtherDaysToo)
{
    const DayOfCard longBreak{tuesday, {change(rest, 0), change(driving, 60), change(rest, 90)}};

    EXPECT_EQ(DaysCard({longBreak, drivingDay(tuesday, 100)}).getTimeToNextBreak(tuesday), 240);
    EXPECT_EQ(DaysCard({drivingDay(tuesday, 100), longBreak}).getTimeToNextBreak(tuesday), 140);
}

TEST(TimeToNextBreak, TimesThatRunBackwardsGiveTimeBack)
{
    EXPECT_EQ(timeToNextBreak({change(driving, 600), change(rest, 540)}), 330);
    EXPECT_EQ(
        timeToNextBreak({change(driving, 0), change(rest, 100), change(work, 40), change(rest, 50)}), 160);
}

} // namespace
