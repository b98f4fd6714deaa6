#include "Value.h"

#include <QJsonObject>

#include <cstdlib>

namespace report {

namespace {

/// Six decimals of a degree are a tenth of a metre.
constexpr int degreeDecimals = 6;

QDateTime inZone(const QDateTime& time, Zone zone)
{
    return zone == Zone::Utc ? time.toUTC() : time.toLocalTime();
}

QString decimalText(double number)
{
    return QString::number(number, 'f', degreeDecimals);
}

/// A code or a nation in an object: its number never gets lost, its words may be missing.
QJsonObject
numberAndWords(const QString& numberKey, int number, const QString& wordsKey, const QString& words)
{
    return {{numberKey, number}, {wordsKey, words.isEmpty() ? QJsonValue() : QJsonValue(words)}};
}

struct Text
{
    Zone zone;

    QString operator()(std::monostate) const { return QString(); }
    QString operator()(const QString& text) const { return text; }
    QString operator()(qint64 number) const { return QString::number(number); }
    QString operator()(double number) const { return decimalText(number); }
    QString operator()(bool flag) const { return flag ? QStringLiteral("yes") : QStringLiteral("no"); }
    QString operator()(const QDateTime& time) const
    {
        return inZone(time, zone).toString(QStringLiteral("yyyy-MM-dd hh:mm"));
    }
    QString operator()(const CardDay& day) const
    {
        return day.time.toUTC().toString(QStringLiteral("yyyy-MM-dd"));
    }
    QString operator()(const Minutes& minutes) const { return hoursAndMinutes(minutes.count); }
    QString operator()(const Code& code) const
    {
        if (code.name.isEmpty() && code.number != 0)
            return QStringLiteral("code %1").arg(code.number);
        return code.name;
    }
    QString operator()(const Country& country) const
    {
        const scard::Nation& nation = country.nation;
        if (nation.alpha.isEmpty() && nation.numeric != 0)
            return QStringLiteral("nation %1").arg(nation.numeric);
        return nation.alpha;
    }
};

struct Json
{
    Zone zone;

    QJsonValue operator()(std::monostate) const { return QJsonValue(); }
    QJsonValue operator()(const QString& text) const { return text; }
    QJsonValue operator()(qint64 number) const { return number; }
    QJsonValue operator()(double number) const { return number; }
    QJsonValue operator()(bool flag) const { return flag; }
    QJsonValue operator()(const QDateTime& time) const { return isoTime(time, zone); }
    QJsonValue operator()(const CardDay& day) const { return isoTime(day.time, Zone::Utc); }
    QJsonValue operator()(const Minutes& minutes) const { return minutes.count; }
    QJsonValue operator()(const Code& code) const
    {
        return numberAndWords(QStringLiteral("code"), code.number, QStringLiteral("name"), code.name);
    }
    QJsonValue operator()(const Country& country) const
    {
        return numberAndWords(
            QStringLiteral("numeric"), country.nation.numeric, QStringLiteral("alpha"), country.nation.alpha);
    }
};

struct Csv
{
    Zone zone;

    QStringList operator()(const QDateTime& time) const { return {isoTime(time, zone)}; }
    QStringList operator()(const CardDay& day) const { return {isoTime(day.time, Zone::Utc)}; }
    QStringList operator()(const Minutes& minutes) const { return {QString::number(minutes.count)}; }
    QStringList operator()(const Code& code) const { return {QString::number(code.number), code.name}; }
    QStringList operator()(const Country& country) const
    {
        return {QString::number(country.nation.numeric), country.nation.alpha};
    }
    template <typename T>
    QStringList operator()(const T& other) const
    {
        return {Text{zone}(other)};
    }
};

} // namespace

bool isEmpty(const Value& value)
{
    return textOf(value, Zone::Utc).isEmpty();
}

QString textOf(const Value& value, Zone zone)
{
    return std::visit(Text{zone}, value);
}

QJsonValue jsonOf(const Value& value, Zone zone)
{
    return std::visit(Json{zone}, value);
}

QStringList csvOf(const Value& value, Kind kind, Zone zone)
{
    if (std::holds_alternative<std::monostate>(value)) {
        QStringList cells;
        for (int i = 0; i < csvSuffixes(kind).size(); ++i)
            cells << QString();
        return cells;
    }
    return std::visit(Csv{zone}, value);
}

QStringList csvSuffixes(Kind kind)
{
    switch (kind) {
    case Kind::Code:
        return {QStringLiteral("_code"), QStringLiteral("_name")};
    case Kind::Country:
        return {QStringLiteral("_numeric"), QStringLiteral("_alpha")};
    default:
        return {QString()};
    }
}

QString isoTime(const QDateTime& time, Zone zone)
{
    if (zone == Zone::Utc)
        return time.toUTC().toString(Qt::ISODate);
    // Qt leaves the offset of local time out.
    return time.toOffsetFromUtc(time.toLocalTime().offsetFromUtc()).toString(Qt::ISODate);
}

QString hoursAndMinutes(int minutes)
{
    const QString sign = minutes < 0 ? QStringLiteral("-") : QString();
    minutes = std::abs(minutes);
    return sign + QStringLiteral("%1:%2").arg(minutes / 60).arg(minutes % 60, 2, 10, QLatin1Char('0'));
}

} // namespace report
