#include "Merged.h"

#include <algorithm>
#include <utility>

namespace report {

namespace {

bool sameDay(const Day& one, const Day& other)
{
    const auto samePeriod = [](const Period& a, const Period& b) {
        return a.beginMinute == b.beginMinute && a.endMinute == b.endMinute && a.activity == b.activity &&
               a.slot == b.slot && a.drivingStatus == b.drivingStatus && a.cardStatus == b.cardStatus;
    };
    return one.date == other.date && std::equal(
                                         one.periods.begin(), one.periods.end(), other.periods.begin(),
                                         other.periods.end(), samePeriod);
}

std::vector<MergedDay> mergedDays(const Application& first, const Application& second)
{
    std::vector<MergedDay> days;
    for (const Day& day : second.days) {
        const bool inBoth = std::any_of(
            first.days.begin(), first.days.end(), [&](const Day& other) { return sameDay(day, other); });
        days.push_back({day, inBoth ? QString() : second.name});
    }
    for (const Day& day : first.days) {
        const bool inBoth = std::any_of(
            second.days.begin(), second.days.end(), [&](const Day& other) { return sameDay(day, other); });
        if (!inBoth)
            days.push_back({day, first.name});
    }
    std::stable_sort(days.begin(), days.end(), [](const MergedDay& one, const MergedDay& other) {
        return one.day.date < other.day.date;
    });
    return days;
}

/// For each column of @p table the one of the same key in @p other, or -1.
std::vector<int> sameColumns(const Table& table, const Table& other)
{
    std::vector<int> indexes;
    for (const Column& column : table.columns) {
        const auto found = std::find_if(other.columns.begin(), other.columns.end(), [&](const Column& each) {
            return each.key == column.key;
        });
        indexes.push_back(
            found == other.columns.end() ? -1 : static_cast<int>(found - other.columns.begin()));
    }
    return indexes;
}

/// The rows of @p one that @p other does not have, as far as they have the same columns.
Table onlyIn(const Table& one, const Table& other, const QString& application)
{
    const std::vector<int> columns = sameColumns(one, other);
    const auto isSameRow = [&](const std::vector<Value>& row, const std::vector<Value>& otherRow) {
        for (std::size_t i = 0; i < row.size(); ++i) {
            if (columns[i] >= 0 && !(row[i] == otherRow[static_cast<std::size_t>(columns[i])]))
                return false;
        }
        return true;
    };
    Table rest = one;
    rest.title += QStringLiteral(", ") + onlyInText(application);
    rest.rows.clear();
    for (const std::vector<Value>& row : one.rows) {
        const bool inBoth =
            std::any_of(other.rows.begin(), other.rows.end(), [&](const std::vector<Value>& otherRow) {
                return isSameRow(row, otherRow);
            });
        if (!inBoth)
            rest.rows.push_back(row);
    }
    return rest;
}

std::vector<Table> mergedTables(const Application& first, const Application& second)
{
    std::vector<Table> tables;
    for (const Table& table : second.tables) {
        tables.push_back(table);
        for (const Table& before : first.tables) {
            if (before.key != table.key)
                continue;
            Table rest = onlyIn(before, table, first.name);
            if (!rest.rows.empty())
                tables.push_back(std::move(rest));
        }
    }
    return tables;
}

/// Each group from the last application that says anything in it.
std::vector<FactGroup> mergedGroups(const std::vector<Application>& applications)
{
    std::vector<FactGroup> groups;
    for (const Application& application : applications) {
        for (const FactGroup& group : application.groups) {
            if (!saysSomething(group))
                continue;
            const auto before = std::find_if(
                groups.begin(), groups.end(), [&](const FactGroup& each) { return each.key == group.key; });
            if (before == groups.end())
                groups.push_back(group);
            else
                *before = group;
        }
    }
    return groups;
}

} // namespace

bool saysSomething(const FactGroup& group)
{
    return std::any_of(
        group.facts.begin(), group.facts.end(), [](const Fact& fact) { return !isEmpty(fact.value); });
}

Merged merged(const Report& report)
{
    Merged result;
    result.groups = mergedGroups(report.applications);
    if (report.applications.empty())
        return result;
    const Application& first = report.applications.front();
    result.hasDays = first.hasDays;
    if (report.applications.size() == 1) {
        for (const Day& day : first.days)
            result.days.push_back({day, QString()});
        result.tables = first.tables;
        return result;
    }
    const Application& second = report.applications.back();
    result.days = mergedDays(first, second);
    result.tables = mergedTables(first, second);
    return result;
}

} // namespace report
