#include <cli/report/DayBand.h>

#include <gtest/gtest.h>

#include <ostream>

namespace report {

bool operator==(const Stretch& one, const Stretch& other)
{
    return one.begin == other.begin && one.end == other.end && one.looksLike(other);
}

void PrintTo(const Stretch& stretch, std::ostream* stream)
{
    *stream << stretch.begin << " to " << stretch.end << ' ' << shadeName(stretch.shade).toStdString()
            << (stretch.isOpen ? ", open" : "");
}

} // namespace report

namespace {

using namespace report;

constexpr bool open = true;

/// A period with the card in the driver's slot.
Period period(int begin, int end, int activity)
{
    Period result;
    result.beginMinute = begin;
    result.endMinute = end;
    result.activity = {activity, QString()};
    return result;
}

Period withoutCard(Period period, bool isKnown)
{
    period.cardStatus = {1, QString()};
    period.drivingStatus = {isKnown ? 1 : 0, QString()};
    return period;
}

Period last(Period period)
{
    period.hasEnd = false;
    return period;
}

Day day(const std::vector<Period>& periods)
{
    Day result;
    result.periods = periods;
    return result;
}

enum Activity
{
    Rest,
    Available,
    Work,
    Drive
};

TEST(DayBandTest, DividesTheDayIntoStretches)
{
    const struct
    {
        const char* name;
        std::vector<Period> periods;
        std::vector<Stretch> stretches;
    } rows[] = {
        {"a day without a change", {}, {{0, 1440, Shade::Unknown, false}}},
        {"changes one behind the other",
         {period(0, 360, Rest), period(360, 600, Drive), last(period(600, 1440, Work))},
         {{0, 360, Shade::Rest, false}, {360, 600, Shade::Driving, false}, {600, 1440, Shade::Work, open}}},
        {"a first change later in the day",
         {period(480, 500, Available)},
         {{0, 480, Shade::Unknown, false},
          {480, 500, Shade::Availability, false},
          {500, 1440, Shade::Unknown, false}}},
        {"periods of the same look",
         {period(0, 700, Rest), period(700, 1440, Rest)},
         {{0, 1440, Shade::Rest, false}}},
        {"the end of a rest that is open",
         {period(0, 700, Rest), last(period(700, 1440, Rest))},
         {{0, 700, Shade::Rest, false}, {700, 1440, Shade::Rest, open}}},
        {"periods that lie over each other",
         {period(0, 900, Rest), period(600, 1440, Drive), period(700, 800, Work)},
         {{0, 600, Shade::Rest, false},
          {600, 700, Shade::Driving, false},
          {700, 800, Shade::Work, false},
          {800, 1440, Shade::Driving, false}}},
        {"a change whose time lies before the one before it",
         {period(600, 600 + 65536 - 100, Drive), period(500, 1440, Work)},
         {{0, 500, Shade::Unknown, false}, {500, 1440, Shade::Work, false}}},
        {"a period that ends before it begins",
         {period(600, 500, Drive), period(500, 1440, Work)},
         {{0, 500, Shade::Unknown, false}, {500, 1440, Shade::Work, false}}},
        {"a period of no minute",
         {period(0, 600, Rest), period(600, 600, Drive), period(600, 1440, Rest)},
         {{0, 1440, Shade::Rest, false}}},
        {"a change behind the end of the day",
         {period(0, 1500, Rest), last(period(1500, 1500, Drive))},
         {{0, 1440, Shade::Rest, false}}},
        {"all the numbers that a minute can have",
         {period(2047, 2047 + 65535, Drive)},
         {{0, 1440, Shade::Unknown, false}}},
    };
    for (const auto& row : rows)
        EXPECT_EQ(stretches(day(row.periods)), row.stretches) << row.name;
}

TEST(DayBandTest, ShowsWhatNobodyKnowsAsUnknown)
{
    const struct
    {
        const char* name;
        Period period;
        Shade shade;
    } rows[] = {
        {"rest with the card", period(0, 1, Rest), Shade::Rest},
        {"availability with the card", period(0, 1, Available), Shade::Availability},
        {"work with the card", period(0, 1, Work), Shade::Work},
        {"driving with the card", period(0, 1, Drive), Shade::Driving},
        {"no card and no entry", withoutCard(period(0, 1, Rest), false), Shade::Unknown},
        {"no card, driving and no entry", withoutCard(period(0, 1, Drive), false), Shade::Unknown},
        {"no card, rest entered", withoutCard(period(0, 1, Rest), true), Shade::Rest},
        {"no card, work entered", withoutCard(period(0, 1, Work), true), Shade::Work},
    };
    for (const auto& row : rows)
        EXPECT_EQ(shadeOf(row.period), row.shade) << row.name;
}

TEST(DayBandTest, ShowsInEachCellWhatFillsMostOfIt)
{
    const struct
    {
        const char* name;
        std::vector<Period> firstHour;
        Shade shade;
        bool isOpen;
    } rows[] = {
        {"one thing", {period(0, 60, Work)}, Shade::Work, false},
        {"the longest of three",
         {period(0, 15, Drive), period(15, 40, Rest), period(40, 60, Work)},
         Shade::Rest,
         false},
        {"parts of one thing count together",
         {period(0, 16, Rest), period(16, 41, Work), period(41, 60, Rest)},
         Shade::Rest,
         false},
        {"driving and rest the same", {period(0, 30, Rest), period(30, 60, Drive)}, Shade::Driving, false},
        {"work and driving the same", {period(0, 30, Drive), period(30, 60, Work)}, Shade::Driving, false},
        {"availability and work the same",
         {period(0, 30, Available), period(30, 60, Work)},
         Shade::Work,
         false},
        {"rest and unknown the same", {period(0, 30, Rest)}, Shade::Rest, false},
        {"mostly unknown", {period(0, 29, Rest)}, Shade::Unknown, false},
        {"mostly open", {period(0, 29, Rest), last(period(29, 1440, Rest))}, Shade::Rest, open},
        {"nothing", {}, Shade::Unknown, false},
    };
    for (const auto& row : rows) {
        const std::vector<Stretch> cells = band(day(row.firstHour), 24);
        ASSERT_EQ(cells.size(), 24u) << row.name;
        EXPECT_EQ(cells.front(), (Stretch{0, 60, row.shade, row.isOpen})) << row.name;
    }
}

TEST(DayBandTest, CoversTheWholeDayInAnyNumberOfCells)
{
    const Day busy = day(
        {period(0, 361, Rest), period(361, 605, Drive), period(605, 650, Rest),
         last(period(650, 1440, Work))});
    for (const int count : {1, 24, 48, 72, 96, 1440}) {
        const std::vector<Stretch> cells = band(busy, count);
        ASSERT_EQ(cells.size(), static_cast<std::size_t>(count));
        int position = 0;
        for (const Stretch& cell : cells) {
            EXPECT_EQ(cell.begin, position);
            EXPECT_EQ(cell.end, position + 1440 / count);
            position = cell.end;
        }
    }
    const std::vector<Stretch> minutes = band(busy, 1440);
    for (const Stretch& stretch : stretches(busy)) {
        for (int minute = stretch.begin; minute < stretch.end; ++minute)
            EXPECT_TRUE(minutes[static_cast<std::size_t>(minute)].looksLike(stretch)) << minute;
    }
}

TEST(DayBandTest, HasAWordForEachShade)
{
    const struct
    {
        Shade shade;
        const char* name;
    } rows[] = {
        {Shade::Unknown, "unknown"}, {Shade::Rest, "rest"},       {Shade::Availability, "availability"},
        {Shade::Work, "work"},       {Shade::Driving, "driving"},
    };
    EXPECT_EQ(std::size(rows), static_cast<std::size_t>(shadeCount));
    for (const auto& row : rows)
        EXPECT_EQ(shadeName(row.shade).toStdString(), row.name);
}

} // namespace
