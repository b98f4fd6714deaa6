#pragma once

#include "Value.h"

#include <QString>

#include <functional>
#include <optional>
#include <type_traits>
#include <utility>
#include <vector>

namespace report {

/// Where a column or a fact is shown: every output has all of them, but a page for people has room for some.
enum class Weight
{
    Main,
    Detail, ///< not in the text view, in small print on the HTML page
};

struct Column
{
    QString key; ///< snake_case with the unit at its end; stays as it is for ever
    QString title;
    Kind kind = Kind::Text;
    Weight weight = Weight::Main;
};

/// A list of things of one kind that a card keeps, by time.
struct Table
{
    QString key;
    QString title;
    std::vector<Column> columns;
    std::vector<std::vector<Value>> rows; ///< as many values as columns
    int begin = -1;                       ///< the column that says when a row's matter begins
    int end = -1;                         ///< and ends; the same for a moment
};

/// A column of a table and how its value is taken from an item of the library.
template <typename Item>
struct Field
{
    Column column;
    std::function<Value(const Item& item)> value;
};

template <typename Item>
using Fields = std::vector<Field<Item>>;

/// A field by what @p get takes from an item, of a type that KindOf knows.
template <typename Item, typename Get>
Field<Item> field(const char* key, const char* title, Get get, Weight weight = Weight::Main)
{
    using Result = std::decay_t<std::invoke_result_t<Get, const Item&>>;
    return {
        {QString::fromLatin1(key), QString::fromLatin1(title), KindOf<Result>::kind, weight},
        [get](const Item& item) { return toValue(Result(get(item))); }};
}

/// A table with a row for each item.
/// @param begin,end keys of the columns that say when a row's matter begins and ends; the same for a moment
template <typename Item>
Table makeTable(
    const char* key, const char* title, const std::vector<Item>& items, const Fields<Item>& fields,
    const char* begin, const char* end)
{
    Table table;
    table.key = QString::fromLatin1(key);
    table.title = QString::fromLatin1(title);
    for (const Field<Item>& each : fields) {
        const int index = static_cast<int>(table.columns.size());
        if (each.column.key == QLatin1String(begin))
            table.begin = index;
        if (each.column.key == QLatin1String(end))
            table.end = index;
        table.columns.push_back(each.column);
    }
    for (const Item& item : items) {
        std::vector<Value> row;
        for (const Field<Item>& each : fields)
            row.push_back(each.value(item));
        table.rows.push_back(std::move(row));
    }
    return table;
}

/// One thing that a card says of itself.
struct Fact
{
    Column column;
    Value value;
};

/// Facts that belong together: the identification, the driving licence.
struct FactGroup
{
    QString key;
    QString title;
    std::vector<Fact> facts;
};

/// Adds what the card does not say itself; without a key, for only the views for people have it.
inline void appendFact(FactGroup& group, const char* title, const QString& text)
{
    group.facts.push_back({{QString(), QString::fromLatin1(title), Kind::Text, Weight::Main}, Value(text)});
}

template <typename Item>
FactGroup makeFacts(const char* key, const char* title, const Item& item, const Fields<Item>& fields)
{
    FactGroup group{QString::fromLatin1(key), QString::fromLatin1(title), {}};
    for (const Field<Item>& each : fields)
        group.facts.push_back({each.column, each.value(item)});
    return group;
}

/// The same of an EF that may be missing: then the group has no facts.
template <typename Item>
FactGroup
makeFacts(const char* key, const char* title, const std::optional<Item>& item, const Fields<Item>& fields)
{
    if (!item)
        return {QString::fromLatin1(key), QString::fromLatin1(title), {}};
    return makeFacts(key, title, *item, fields);
}

} // namespace report
