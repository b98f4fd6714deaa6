#pragma once

#include <scard/Nation.h>

#include <QDateTime>
#include <QJsonValue>
#include <QString>
#include <QStringList>

#include <optional>
#include <type_traits>
#include <variant>

// One thing that a card says, and how it looks in each kind of output.

namespace report {

/// A number of the data dictionary with its meaning in words; without words when it has none.
struct Code
{
    int number = 0;
    QString name;

    bool operator==(const Code& other) const { return number == other.number; }
};

/// A moment that stands for a day of the card's calendar (UTC): issue, expiry.
struct CardDay
{
    QDateTime time;

    bool operator==(const CardDay& other) const { return time == other.time; }
};

/// Minutes, shown as hours and minutes.
struct Minutes
{
    int count = 0;

    bool operator==(const Minutes& other) const { return count == other.count; }
};

/// A nation that can be compared.
struct Country
{
    scard::Nation nation;

    bool operator==(const Country& other) const { return nation.numeric == other.nation.numeric; }
};

/// What a column holds: it stays known where every value of it is missing.
enum class Kind
{
    Text,
    Number,
    Decimal,
    Flag,
    Time,
    Day,
    Minutes,
    Code,
    Country,
};

/// True for what stands below each other digit by digit.
constexpr bool isNumeric(Kind kind)
{
    return kind == Kind::Number || kind == Kind::Decimal || kind == Kind::Minutes;
}

/// The first alternative stands for what the card does not know.
using Value =
    std::variant<std::monostate, QString, qint64, double, bool, QDateTime, CardDay, Minutes, Code, Country>;

/// In which zone moments are shown. The card itself knows UTC only.
enum class Zone
{
    Local,
    Utc,
};

template <typename T>
struct KindOf;
template <typename T>
struct KindOf<std::optional<T>> : KindOf<T>
{};
// clang-format off
template <> struct KindOf<QString> { static constexpr Kind kind = Kind::Text; };
template <> struct KindOf<qint64> { static constexpr Kind kind = Kind::Number; };
template <> struct KindOf<int> { static constexpr Kind kind = Kind::Number; };
template <> struct KindOf<quint32> { static constexpr Kind kind = Kind::Number; };
template <> struct KindOf<double> { static constexpr Kind kind = Kind::Decimal; };
template <> struct KindOf<bool> { static constexpr Kind kind = Kind::Flag; };
template <> struct KindOf<QDateTime> { static constexpr Kind kind = Kind::Time; };
template <> struct KindOf<CardDay> { static constexpr Kind kind = Kind::Day; };
template <> struct KindOf<Minutes> { static constexpr Kind kind = Kind::Minutes; };
template <> struct KindOf<Code> { static constexpr Kind kind = Kind::Code; };
template <> struct KindOf<scard::Nation> { static constexpr Kind kind = Kind::Country; };
// clang-format on

template <typename T>
Value toValue(const T& item)
{
    if constexpr (KindOf<T>::kind == Kind::Number)
        return static_cast<qint64>(item);
    else if constexpr (std::is_same_v<T, scard::Nation>)
        return Country{item};
    else if constexpr (std::is_same_v<T, QDateTime>)
        return item.isNull() ? Value() : Value(item);
    else if constexpr (std::is_same_v<T, CardDay>)
        return item.time.isNull() ? Value() : Value(item);
    else
        return item;
}

template <typename T>
Value toValue(const std::optional<T>& item)
{
    return item ? toValue(*item) : Value();
}

/// True for what says nothing to a person: not known, empty text, a code or nation of 0 that has no name.
bool isEmpty(const Value& value);

/// For people: a code by its name, a nation by its letters, nothing for what is not known.
QString textOf(const Value& value, Zone zone);

/// For programs: ISO 8601 with offset, codes and nations as objects of number and name, null.
QJsonValue jsonOf(const Value& value, Zone zone);

/// For a spreadsheet: as many cells as csvSuffixes() of the kind.
QStringList csvOf(const Value& value, Kind kind, Zone zone);

/// What the column's key is followed by for each of its cells.
QStringList csvSuffixes(Kind kind);

/// A moment in ISO 8601 with its offset from UTC.
QString isoTime(const QDateTime& time, Zone zone);

/// Minutes as hours and minutes: "4:30".
QString hoursAndMinutes(int minutes);

} // namespace report
