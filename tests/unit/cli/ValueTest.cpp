#include <QtPrinters.h>

#include <cli/report/Value.h>
#include <fixtures/LocalZone.h>

#include <QJsonDocument>
#include <QJsonObject>

#include <gtest/gtest.h>

namespace {

using namespace report;

const QDateTime noon = QDateTime::fromSecsSinceEpoch(1709640000); // 2024-03-05 12:00 UTC

TEST(ValueTest, LooksAsEachOutputWantsIt)
{
    const struct
    {
        const char* name;
        Value value;
        Kind kind;
        QString text;
        QJsonValue json;
        QStringList csv;
    } rows[] = {
        {"nothing", Value(), Kind::Text, "", QJsonValue(), {""}},
        {"no code", Value(), Kind::Code, "", QJsonValue(), {"", ""}},
        {"no nation", Value(), Kind::Country, "", QJsonValue(), {"", ""}},
        {"no minutes", Value(), Kind::Minutes, "", QJsonValue(), {""}},
        {"text", QString("HH-A 1"), Kind::Text, "HH-A 1", "HH-A 1", {"HH-A 1"}},
        {"empty text", QString(), Kind::Text, "", "", {""}},
        {"number", qint64{-4294967295}, Kind::Number, "-4294967295", -4294967295.0, {"-4294967295"}},
        {"zero", qint64{0}, Kind::Number, "0", 0, {"0"}},
        {"decimal", 49.9233331, Kind::Decimal, "49.923333", 49.9233331, {"49.923333"}},
        {"flag", true, Kind::Flag, "yes", true, {"yes"}},
        {"flag that is not set", false, Kind::Flag, "no", false, {"no"}},
        {"moment", noon, Kind::Time, "2024-03-05 12:00", "2024-03-05T12:00:00Z", {"2024-03-05T12:00:00Z"}},
        {"day", CardDay{noon}, Kind::Day, "2024-03-05", "2024-03-05T12:00:00Z", {"2024-03-05T12:00:00Z"}},
        {"minutes", Minutes{270}, Kind::Minutes, "4:30", 270, {"270"}},
        {"minutes too many", Minutes{-15}, Kind::Minutes, "-0:15", -15, {"-15"}},
        {"code",
         Code{3, "driving"},
         Kind::Code,
         "driving",
         QJsonObject{{"code", 3}, {"name", "driving"}},
         {"3", "driving"}},
        {"code without a name",
         Code{200, ""},
         Kind::Code,
         "code 200",
         QJsonObject{{"code", 200}, {"name", QJsonValue()}},
         {"200", ""}},
        {"code of 0 without a name",
         Code{0, ""},
         Kind::Code,
         "",
         QJsonObject{{"code", 0}, {"name", QJsonValue()}},
         {"0", ""}},
        {"code of 0 with a name",
         Code{0, "rest"},
         Kind::Code,
         "rest",
         QJsonObject{{"code", 0}, {"name", "rest"}},
         {"0", "rest"}},
        {"nation",
         Country{{13, "D"}},
         Kind::Country,
         "D",
         QJsonObject{{"numeric", 13}, {"alpha", "D"}},
         {"13", "D"}},
        {"nation that is not assigned",
         Country{{200, ""}},
         Kind::Country,
         "nation 200",
         QJsonObject{{"numeric", 200}, {"alpha", QJsonValue()}},
         {"200", ""}},
        {"nation of 0",
         Country{{0, ""}},
         Kind::Country,
         "",
         QJsonObject{{"numeric", 0}, {"alpha", QJsonValue()}},
         {"0", ""}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(textOf(row.value, Zone::Utc), row.text);
        EXPECT_EQ(isEmpty(row.value), row.text.isEmpty());
        EXPECT_EQ(jsonOf(row.value, Zone::Utc), row.json);
        EXPECT_EQ(csvOf(row.value, row.kind, Zone::Utc), row.csv);
        EXPECT_EQ(csvSuffixes(row.kind).size(), row.csv.size());
    }
}

TEST(ValueTest, NamesTheCellsOfAKind)
{
    const struct
    {
        Kind kind;
        QStringList suffixes;
    } rows[] = {
        {Kind::Text, {""}},
        {Kind::Number, {""}},
        {Kind::Decimal, {""}},
        {Kind::Flag, {""}},
        {Kind::Time, {""}},
        {Kind::Day, {""}},
        {Kind::Minutes, {""}},
        {Kind::Code, {"_code", "_name"}},
        {Kind::Country, {"_numeric", "_alpha"}},
    };
    for (const auto& row : rows)
        EXPECT_EQ(csvSuffixes(row.kind), row.suffixes);
}

TEST(ValueTest, WritesMomentsWithTheOffsetOfTheirZoneAndDay)
{
    const qint64 summer = 1720180800; // 2024-07-05 12:00 UTC
    const qint64 winter = noon.toSecsSinceEpoch();
    const qint64 lastOfSummer = 1729990799; // 2024-10-27 00:59:59 UTC, a second before the clocks go back
    const qint64 firstOfWinter = 1729990800;
    const struct
    {
        const char* zone;
        qint64 time;
        const char* iso;
        const char* text;
    } rows[] = {
        {"UTC", winter, "2024-03-05T12:00:00Z", "2024-03-05 12:00"},
        {"Europe/Berlin", winter, "2024-03-05T13:00:00+01:00", "2024-03-05 13:00"},
        {"Europe/Berlin", summer, "2024-07-05T14:00:00+02:00", "2024-07-05 14:00"},
        {"Europe/Berlin", lastOfSummer, "2024-10-27T02:59:59+02:00", "2024-10-27 02:59"},
        {"Europe/Berlin", firstOfWinter, "2024-10-27T02:00:00+01:00", "2024-10-27 02:00"},
        {"America/New_York", winter, "2024-03-05T07:00:00-05:00", "2024-03-05 07:00"},
        {"America/New_York", summer, "2024-07-05T08:00:00-04:00", "2024-07-05 08:00"},
        {"Asia/Kolkata", winter, "2024-03-05T17:30:00+05:30", "2024-03-05 17:30"},
        {"Atlantic/Azores", winter, "2024-03-05T11:00:00-01:00", "2024-03-05 11:00"},
        {"Atlantic/Azores", summer, "2024-07-05T12:00:00Z", "2024-07-05 12:00"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.iso);
        const test::LocalZone zone(row.zone);
        const QDateTime time = QDateTime::fromSecsSinceEpoch(row.time);
        EXPECT_EQ(isoTime(time, Zone::Local), QString(row.iso));
        EXPECT_EQ(textOf(time, Zone::Local), QString(row.text));
        EXPECT_EQ(jsonOf(time, Zone::Local), QJsonValue(row.iso));
        EXPECT_EQ(csvOf(time, Kind::Time, Zone::Local), QStringList(row.iso));
        const QString utc = QDateTime::fromSecsSinceEpoch(row.time, Qt::UTC).toString(Qt::ISODate);
        EXPECT_EQ(isoTime(time, Zone::Utc), utc);
        EXPECT_EQ(jsonOf(CardDay{time}, Zone::Local), QJsonValue(utc)) << "days are those of UTC";
        EXPECT_EQ(csvOf(CardDay{time}, Kind::Day, Zone::Local), QStringList(utc));
    }
}

TEST(ValueTest, TakesWhatTheLibraryGives)
{
    EXPECT_EQ(toValue(QDateTime()), Value()) << "a time that is not known";
    EXPECT_EQ(toValue(CardDay{}), Value());
    EXPECT_EQ(toValue(std::optional<int>()), Value());
    EXPECT_EQ(toValue(std::optional<double>(1.5)), Value(1.5));
    EXPECT_EQ(toValue(quint32{4294967295}), Value(qint64{4294967295}));
    EXPECT_EQ(toValue(scard::Nation{13, "D"}), Value(Country{{13, "D"}}));
    EXPECT_EQ(toValue(QString("")), Value(QString("")));
}

} // namespace
