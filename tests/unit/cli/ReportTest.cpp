#include <QtPrinters.h>

#include <cli/report/CardFields.h>
#include <cli/report/Report.h>
#include <fixtures/LocalZone.h>

#include <gtest/gtest.h>

namespace {

using namespace report;

QDateTime moment(int day, int hour)
{
    return QDateTime(QDate(2024, 3, day), QTime(hour, 0), Qt::UTC).toLocalTime();
}

/// A report of three days, and of three stays of which the last has no end.
Report threeDays(Zone zone)
{
    Report report;
    report.zone = zone;
    Application application;
    for (const int date : {4, 5, 6}) {
        Day day;
        day.date = QDate(2024, 3, date);
        application.days.push_back(day);
    }
    Table stays;
    stays.key = "stays";
    stays.columns = {
        {"begin", "From", Kind::Time, Weight::Main},
        {"end", "To", Kind::Time, Weight::Main},
        {"number", "Number", Kind::Number, Weight::Main}};
    stays.begin = 0;
    stays.end = 1;
    stays.rows = {
        {moment(3, 23), moment(4, 1), qint64{1}},
        {moment(5, 2), moment(5, 22), qint64{2}},
        {moment(6, 2), Value(), qint64{3}},
        {Value(), moment(4, 12), qint64{4}},
        {Value(), Value(), qint64{5}}};
    Table timeless = stays;
    timeless.key = "timeless";
    timeless.begin = -1;
    timeless.end = -1;
    application.tables = {stays, timeless};
    report.applications = {application};
    return report;
}

std::vector<qint64> numbers(const Table& table)
{
    std::vector<qint64> result;
    for (const std::vector<Value>& row : table.rows)
        result.push_back(std::get<qint64>(row.back()));
    return result;
}

TEST(ReportTest, LeavesOnlyWhatTouchesTheRange)
{
    const struct
    {
        const char* name;
        const char* zone; ///< empty for UTC
        QDate from;
        QDate until;
        std::vector<int> days;
        std::vector<qint64> stays;
    } rows[] = {
        {"no limit", "", {}, {}, {4, 5, 6}, {1, 2, 3, 4, 5}},
        {"from the day on which something ends", "", {2024, 3, 4}, {}, {4, 5, 6}, {1, 2, 3, 4, 5}},
        {"from the day behind", "", {2024, 3, 5}, {}, {5, 6}, {2, 3, 5}},
        {"until the day on which something begins", "", {}, {2024, 3, 3}, {}, {1, 4, 5}},
        {"one day", "", {2024, 3, 5}, {2024, 3, 5}, {5}, {2, 5}},
        {"behind everything", "", {2030, 1, 1}, {}, {}, {3, 5}},
        {"before everything", "", {}, {2020, 1, 1}, {}, {4, 5}},
        {"a zone in which it ended the day before",
         "America/New_York",
         {2024, 3, 4},
         {},
         {4, 5, 6},
         {2, 3, 4, 5}},
        {"a zone in which it began the day behind", "Asia/Kolkata", {}, {2024, 3, 3}, {}, {4, 5}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const bool isUtc = *row.zone == '\0';
        const test::LocalZone zone(isUtc ? "America/New_York" : row.zone);
        Report report = threeDays(isUtc ? Zone::Utc : Zone::Local);
        limit(report, {row.from, row.until});
        std::vector<int> days;
        for (const Day& day : report.applications.front().days)
            days.push_back(day.date.day());
        EXPECT_EQ(days, row.days);
        EXPECT_EQ(numbers(report.applications.front().tables[0]), row.stays);
        EXPECT_EQ(numbers(report.applications.front().tables[1]).size(), 5u) << "what has no time stays";
        EXPECT_EQ(report.range.from, row.from);
        EXPECT_EQ(report.range.until, row.until);
    }
}

TEST(ReportTest, MakesATableOfTheDaysAndOneOfTheirPeriods)
{
    Application application;
    Day day;
    day.date = QDate(2024, 3, 5);
    day.driving = 60;
    day.work = 1;
    day.availability = 2;
    day.rest = 3;
    day.unknown = 4;
    Period driving;
    driving.beginMinute = 480;
    driving.endMinute = 540;
    driving.activity = {3, "driving"};
    Period rest;
    rest.beginMinute = 540;
    rest.endMinute = 1440;
    rest.hasEnd = false;
    day.periods = {driving, rest};
    application.days = {day};

    const std::vector<std::vector<Value>> days{
        {QString("2024-03-05"), Minutes{60}, Minutes{1}, Minutes{2}, Minutes{3}, Minutes{4}}};
    EXPECT_EQ(dayTable(application.days).rows, days);

    const Table periods = periodTable(application.days);
    ASSERT_EQ(periods.rows.size(), 2u);
    const auto text = [&periods](std::size_t row, std::size_t column) {
        return textOf(periods.rows[row][column], Zone::Utc).toStdString();
    };
    EXPECT_EQ(text(0, 0), "2024-03-05");
    EXPECT_EQ(text(0, 1), "2024-03-05 08:00");
    EXPECT_EQ(text(0, 2), "2024-03-05 09:00");
    EXPECT_EQ(text(0, 3), "1:00");
    EXPECT_EQ(text(0, 4), "driving");
    EXPECT_EQ(text(1, 1), "2024-03-05 09:00");
    EXPECT_EQ(text(1, 2), "") << "the card does not say how long the last one lasts";
    EXPECT_EQ(text(1, 3), "");
}

TEST(ReportTest, ReadsCharactersUpToTheFirstZero)
{
    const struct
    {
        unsigned char bytes[4];
        const char* text;
    } rows[] = {
        {{'A', 'B', 'C', 'D'}, "ABCD"}, {{' ', 'A', 'B', ' '}, "AB"}, {{'A', 0, 'C', 'D'}, "A"},
        {{0, 'B', 'C', 'D'}, ""},       {{'A', ' ', 0, 0}, "A"},      {{0xC4, 0, 0, 0}, "\u00C4"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(characters(row.bytes), QString::fromUtf8(row.text));
}

} // namespace
