#include <QtPrinters.h>

#include <cli/report/Merged.h>

#include <gtest/gtest.h>

namespace {

using namespace report;

Day day(int date, int drivingEnd)
{
    Day result;
    result.date = QDate(2024, 3, date);
    Period period;
    period.endMinute = drivingEnd;
    period.activity = {3, "driving"};
    result.periods = {period};
    return result;
}

/// One table of two columns, the second one of which only the second generation has.
Table lorries(const std::vector<std::pair<const char*, const char*>>& rows, bool hasVin)
{
    Table table;
    table.key = "lorries";
    table.title = "Lorries";
    table.columns.push_back({"plate", "Plate", Kind::Text, Weight::Main});
    if (hasVin)
        table.columns.push_back({"vin", "VIN", Kind::Text, Weight::Main});
    for (const auto& [plate, vin] : rows) {
        std::vector<Value> row{QString(plate)};
        if (hasVin)
            row.emplace_back(QString(vin));
        table.rows.push_back(row);
    }
    return table;
}

Application application(int generation)
{
    Application result;
    result.name = generation == 1 ? "TACHO" : "SMRDT";
    result.generation = generation;
    return result;
}

FactGroup group(const char* key, const QString& text)
{
    return {key, "Title", {{{"fact", "Fact", Kind::Text, Weight::Main}, Value(text)}}};
}

Merged mergedOf(const std::vector<Application>& applications)
{
    Report report;
    report.applications = applications;
    return merged(report);
}

TEST(MergedTest, IsEmptyWithoutApplications)
{
    const Merged result = mergedOf({});
    EXPECT_TRUE(result.groups.empty());
    EXPECT_TRUE(result.tables.empty());
    EXPECT_FALSE(result.hasDays);
}

TEST(MergedTest, LeavesOneApplicationAsItIs)
{
    Application only = application(1);
    only.hasDays = true;
    only.days = {day(4, 60), day(5, 60)};
    only.tables = {lorries({{"A", ""}}, false)};
    only.groups = {group("card", "Jana")};
    const Merged result = mergedOf({only});
    EXPECT_TRUE(result.hasDays);
    ASSERT_EQ(result.days.size(), 2u);
    EXPECT_EQ(result.days[0].onlyIn, QString());
    ASSERT_EQ(result.tables.size(), 1u);
    EXPECT_EQ(result.tables[0].title, QString("Lorries"));
    EXPECT_EQ(result.groups.size(), 1u);
}

TEST(MergedTest, HasADayOnceThatBothApplicationsTellAlike)
{
    const struct
    {
        const char* name;
        std::vector<Day> first;
        std::vector<Day> second;
        std::vector<std::pair<int, const char*>> days; ///< day of March, and in which application alone
    } rows[] = {
        {"the same", {day(4, 60)}, {day(4, 60)}, {{4, ""}}},
        {"told differently", {day(4, 60)}, {day(4, 61)}, {{4, "SMRDT"}, {4, "TACHO"}}},
        {"only in the first", {day(4, 60)}, {}, {{4, "TACHO"}}},
        {"only in the second", {}, {day(4, 60)}, {{4, "SMRDT"}}},
        {"by date",
         {day(3, 60), day(6, 60)},
         {day(4, 60), day(6, 60)},
         {{3, "TACHO"}, {4, "SMRDT"}, {6, ""}}},
        {"none", {}, {}, {}},
    };
    for (const auto& row : rows) {
        Application first = application(1);
        first.hasDays = true;
        first.days = row.first;
        Application second = application(2);
        second.hasDays = true;
        second.days = row.second;
        std::vector<std::pair<int, std::string>> days;
        for (const MergedDay& merged : mergedOf({first, second}).days)
            days.emplace_back(merged.day.date.day(), merged.onlyIn.toStdString());
        std::vector<std::pair<int, std::string>> expected(row.days.begin(), row.days.end());
        EXPECT_EQ(days, expected) << row.name;
    }
}

TEST(MergedTest, TellsPeriodsApartByAllThatTheyAre)
{
    const struct
    {
        const char* name;
        void (*change)(Period& period);
    } rows[] = {
        {"begin", [](Period& period) { period.beginMinute = 1; }},
        {"end", [](Period& period) { period.endMinute = 61; }},
        {"activity", [](Period& period) { period.activity.number = 2; }},
        {"slot", [](Period& period) { period.slot.number = 1; }},
        {"driving status", [](Period& period) { period.drivingStatus.number = 1; }},
        {"card status", [](Period& period) { period.cardStatus.number = 1; }},
    };
    for (const auto& row : rows) {
        Application first = application(1);
        first.days = {day(4, 60)};
        Application second = application(2);
        second.days = {day(4, 60)};
        row.change(second.days.front().periods.front());
        EXPECT_EQ(mergedOf({first, second}).days.size(), 2u) << row.name;
    }
}

TEST(MergedTest, KeepsRowsOfTheFirstApplicationThatTheSecondLacks)
{
    const struct
    {
        const char* name;
        std::vector<std::pair<const char*, const char*>> first;
        std::vector<std::pair<const char*, const char*>> second;
        std::vector<std::string> left; ///< plates that stand in a table of their own
    } rows[] = {
        {"the second says more", {{"A", ""}}, {{"A", "VIN 1"}}, {}},
        {"another row", {{"A", ""}, {"B", ""}}, {{"A", "VIN 1"}}, {"B"}},
        {"nothing in the second", {{"A", ""}, {"B", ""}}, {}, {"A", "B"}},
        {"nothing in the first", {}, {{"A", "VIN 1"}}, {}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        Application first = application(1);
        first.tables = {lorries(row.first, false)};
        Application second = application(2);
        second.tables = {lorries(row.second, true)};
        const Merged result = mergedOf({first, second});
        ASSERT_EQ(result.tables.size(), row.left.empty() ? 1u : 2u);
        EXPECT_EQ(result.tables[0].rows, second.tables[0].rows);
        if (row.left.empty())
            continue;
        EXPECT_EQ(result.tables[1].title, QString("Lorries, only in application TACHO"));
        std::vector<std::string> left;
        for (const std::vector<Value>& each : result.tables[1].rows)
            left.push_back(textOf(each.front(), Zone::Utc).toStdString());
        EXPECT_EQ(left, row.left);
    }
}

TEST(MergedTest, TakesFactsFromTheLastApplicationThatSaysAny)
{
    const struct
    {
        const char* name;
        std::vector<FactGroup> first;
        std::vector<FactGroup> second;
        std::vector<std::string> texts;
    } rows[] = {
        {"both", {group("card", "old")}, {group("card", "new")}, {"new"}},
        {"the second says nothing", {group("card", "old")}, {group("card", "")}, {"old"}},
        {"the second lacks its EF", {group("card", "old")}, {{"card", "Card", {}}}, {"old"}},
        {"nobody says anything", {group("card", "")}, {group("card", "")}, {}},
        {"different groups", {group("card", "old")}, {group("more", "new")}, {"old", "new"}},
    };
    for (const auto& row : rows) {
        Application first = application(1);
        first.groups = row.first;
        Application second = application(2);
        second.groups = row.second;
        std::vector<std::string> texts;
        for (const FactGroup& each : mergedOf({first, second}).groups)
            texts.push_back(textOf(each.facts.front().value, Zone::Utc).toStdString());
        EXPECT_EQ(texts, row.texts) << row.name;
    }
}

} // namespace
