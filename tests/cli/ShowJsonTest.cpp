// `scard show --json` against the bytes that the cards are made of.
#include "Downloads.h"
#include "ExpectedShow.h"

#include <support/FileRecords.h>
#include <support/Program.h>

#include <QCryptographicHash>
#include <QDateTime>
#include <QJsonDocument>

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using namespace test;

QJsonObject parsed(const std::string& out)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(QByteArray::fromStdString(out), &error);
    EXPECT_EQ(error.error, QJsonParseError::NoError) << error.errorString().toStdString();
    return document.object();
}

/// The only download in the output.
QJsonObject shown(const QStringList& arguments)
{
    const Outcome outcome = run(QStringList{"show", "--json"} + arguments);
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
    EXPECT_EQ(outcome.err, "");
    const QJsonArray downloads = parsed(outcome.out)["downloads"].toArray();
    EXPECT_EQ(downloads.size(), 1);
    return downloads.first().toObject();
}

std::string text(const QJsonValue& value)
{
    return QJsonDocument(QJsonArray{value}).toJson().toStdString();
}

/// What two values differ in, as "key: this, not that"; empty for equal ones.
std::string difference(const QJsonValue& actual, const QJsonValue& expected, const QString& key = "")
{
    if (actual == expected)
        return std::string();
    if (actual.isObject() && expected.isObject()) {
        for (const QString& each : expected.toObject().keys() + actual.toObject().keys()) {
            const std::string inside =
                difference(actual.toObject()[each], expected.toObject()[each], key + "." + each);
            if (!inside.empty())
                return inside;
        }
    }
    if (actual.isArray() && expected.isArray() && actual.toArray().size() == expected.toArray().size()) {
        for (int i = 0; i < actual.toArray().size(); ++i) {
            const std::string inside =
                difference(actual.toArray()[i], expected.toArray()[i], key + QString("[%1]").arg(i));
            if (!inside.empty())
                return inside;
        }
    }
    return key.toStdString() + ": " + text(actual) + ", not " + text(expected);
}

/// Fails where a list is not by its time.
void expectByTime(const QJsonValue& value)
{
    static const char* const timeKeys[] = {"first_use", "begin", "calibration_time", "date"};
    if (value.isObject()) {
        for (const QJsonValue& each : value.toObject())
            expectByTime(each);
        return;
    }
    QDateTime before;
    for (const QJsonValue& each : value.toArray()) {
        expectByTime(each);
        const QJsonObject row = each.toObject();
        QString key = row.contains("load_type") || row.contains("time") ? "time" : "old_time";
        for (const char* other : timeKeys) {
            if (row.contains(other))
                key = other;
        }
        const QDateTime time = QDateTime::fromString(row[key].toString(), Qt::ISODate);
        EXPECT_FALSE(before.isValid() && time.isValid() && time < before) << text(each);
        before = time;
    }
}

int countOf(const QByteArray& file, bool signaturesOnly)
{
    const auto all = recordsOf(file);
    return static_cast<int>(std::count_if(all.begin(), all.end(), [signaturesOnly](const FileRecord& record) {
        return !signaturesOnly || (record.type % 2 == 1 && record.length > 0);
    }));
}

TEST(ShowJsonTest, SaysOfEveryKindOfCardExactlyWhatItWasMadeOf)
{
    const Folder folder;
    for (const CardFile& download : realDownloads()) {
        SCOPED_TRACE(download.name);
        const QString path = folder.write("card.ddd", download.file);
        for (const Zone zone : {Zone::Local, Zone::Utc}) {
            const QJsonObject actual =
                shown(zone == Zone::Utc ? QStringList{"--utc", path} : QStringList{path});
            EXPECT_EQ(
                difference(
                    comparable(actual["applications"]), comparable(expectedApplications(download, zone))),
                "");
            EXPECT_EQ(difference(comparable(actual["card"]), expectedCard(download)), "");
            expectByTime(actual["applications"]);
        }
    }
}

/// Overwrites bytes of @p content from @p offset on.
void overwrite(sim::Bytes& content, std::size_t offset, const std::string& hexadecimal)
{
    const sim::Bytes bytes = sim::fromHex(hexadecimal);
    std::copy(bytes.begin(), bytes.end(), content.begin() + static_cast<std::ptrdiff_t>(offset));
}

TEST(ShowJsonTest, SaysWhatSimulatedCardsAreNeverMadeOf)
{
    const struct
    {
        const char* name;
        unsigned int fid;
        std::size_t offset;
        const char* content;
    } rows[] = {
        {"a vehicle that the card is in", 0x0507, 0, "65E70540 0D 01 48482D41 2031"},
        {"times that nobody knows", 0x0508, 1, "FFFFFFFF"},
        {"no control", 0x0508, 0, "00 00000000"},
        {"an event that has no end yet", 0x0502, 0, "07 65E70540 FFFFFFFF"},
        {"a code and a nation without a name", 0x0506, 2 + 4, "FE C8 05"},
        {"south and west", 0x0506, 2 + 10, "65E70540 0A FF7D0F FFF2B3"},
        {"a place without a position", 0x0506, 2 + 10, "00000000"},
        {"a position that is not known", 0x0506, 2 + 10, "65E70540 FF 7FFFFF 7FFFFF"},
        {"a driver whose card was never downloaded", 0x050E, 0, "00000000"},
        {"no licence", 0x0521, 1,
         "2020202020202020202020202020202020202020202020202020202020202020202020 00"},
    };
    const Folder folder;
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        sim::CardDescription card = smallDownload("driverV2").card;
        overwrite(contentOf(card, 1, row.fid), row.offset, row.content);
        const CardFile download{row.name, card, downloadOf(card)};
        const QString path = folder.write("card.ddd", download.file);
        EXPECT_EQ(
            difference(
                comparable(shown({path})["applications"]),
                comparable(expectedApplications(download, Zone::Local))),
            "");
    }
}

TEST(ShowJsonTest, KeepsDaysWhoseChangesAreNotInOrder)
{
    using namespace sim::activity;
    const struct
    {
        const char* name;
        std::vector<std::uint16_t> changes;
    } rows[] = {
        {"a later time first", {Rest, Driving | 600, Work | 540, Rest | 700}},
        {"the same time twice", {Rest, Driving | 600, Work | 600, Rest | 700}},
        {"a minute behind the day", {Rest, Driving | 1500, Rest | 2047}},
        {"a day without a change", {}},
        {"the co-driver, and entries by hand",
         {NotInserted | CrewOrKnown | Work, CoDriverSlot | CrewOrKnown | Available | 60, NotInserted | 90}},
    };
    const Folder folder;
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        sim::CardDescription card = smallDownload("driver").card;
        contentOf(card, 0, 0x0504) = activityFile({{1709596800, row.changes}}, 600);
        const CardFile download{row.name, card, downloadOf(card)};
        EXPECT_EQ(
            difference(
                comparable(shown({folder.write("card.ddd", download.file)})["applications"]),
                comparable(expectedApplications(download, Zone::Local))),
            "");
    }
}

TEST(ShowJsonTest, SaysWhatFileItIs)
{
    const Folder folder;
    for (const CardFile& download : realDownloads()) {
        const QString path = folder.write("card.ddd", download.file);
        const QJsonObject expected{
            {"path", path},
            {"size_bytes", download.file.size()},
            {"sha256", QString::fromLatin1(
                           QCryptographicHash::hash(download.file, QCryptographicHash::Sha256).toHex())},
            {"records", countOf(download.file, false)},
            {"signatures", countOf(download.file, true)},
            {"is_cut", false},
            {"missing_efs", QJsonArray()}};
        const QJsonObject actual = shown({path});
        EXPECT_EQ(difference(actual["file"], expected), "") << download.name;
        EXPECT_TRUE(actual["damage"].isNull()) << download.name;
    }
}

TEST(ShowJsonTest, ReckonsTheFiguresOfADriverFromTheDaysThatAreShown)
{
    const Folder folder;
    const struct
    {
        const char* name;
        QStringList arguments;
    } rows[] = {
        {"all days", {}},
        {"until a day", {"--until", "2024-02-09"}},
        {"until a day on which nothing was done", {"--until", "2024-02-11"}},
    };
    const QString path = folder.write("card.ddd", realDownloads().front().file);
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const QJsonObject actual = shown(row.arguments + QStringList{path});
        QJsonObject figures = actual["figures"].toObject();
        const QJsonObject rules = figures.take("rules").toObject();
        EXPECT_EQ(
            figures.take("note").toString(), "These are simple remaining times by the rule beside each, "
                                             "reckoned from what is on the card; they are no legal verdict.");
        EXPECT_EQ(rules.size(), 5);
        EXPECT_TRUE(figures.take("time_to_next_break_minutes").isDouble());
        const QJsonArray days = actual["applications"].toArray().first().toObject()["days"].toArray();
        EXPECT_EQ(difference(figures, expectedFigures(days)), "");
    }
}

TEST(ShowJsonTest, HasFiguresOfDriverCardsOnly)
{
    const Folder folder;
    for (const CardFile& download : realDownloads()) {
        const bool isDriver = QByteArray(download.name).startsWith("driver");
        EXPECT_EQ(shown({folder.write("card.ddd", download.file)})["figures"].isObject(), isDriver)
            << download.name;
    }
    const QString path = folder.write("card.ddd", realDownloads().front().file);
    EXPECT_TRUE(shown({"--from", "2030-01-01", path})["figures"].isNull()) << "no day is shown";
}

TEST(ShowJsonTest, ReadsTextsByTheirPartOfIso8859)
{
    const struct
    {
        std::uint8_t nation;
        int codePage;
        const char* surname;
        const char* firstNames;
    } rows[] = {
        {0x0D, 1, "M\u00FC\u00DFig", "J\u00FCrgen"},
        {0x28, 2, "\u017B\u00F3\u0142\u0107", "\u0141ucja"},
        {0x19, 7, "\u03A0\u03B1\u03C0\u03C0\u03AC\u03C2", "\u0393\u03B9\u03CE\u03C1\u03B3\u03BF\u03C2"},
        {0x2A, 5, "\u0418\u0432\u0430\u043D\u043E\u0432", "\u041F\u0451\u0442\u0440"},
        {0x0E, 15, "\u0160\u017Eipt\u20AC", "Anu"},
    };
    const Folder folder;
    for (const auto& row : rows) {
        sim::DriverParameters parameters;
        parameters.nation = row.nation;
        parameters.codePage = row.codePage;
        parameters.surname = row.surname;
        parameters.firstNames = row.firstNames;
        const QString path = folder.write("card.ddd", driverFile(parameters));
        const QJsonObject card =
            shown({path})["applications"].toArray().first().toObject()["identification"].toObject();
        EXPECT_EQ(card["surname"].toString().toStdString(), row.surname);
        EXPECT_EQ(card["first_names"].toString().toStdString(), row.firstNames);
        const Outcome page = run({"show", path});
        EXPECT_NE(page.out.find(row.surname), std::string::npos) << row.surname;
    }
}

TEST(ShowJsonTest, KeepsTheOrderOfTheCommandLine)
{
    const Folder folder;
    const QString one = folder.write("one.ddd", smallDownload("companyG2").file);
    const QString two = folder.write("two.ddd", smallDownload("driver").file);
    const Outcome outcome = run({"show", two, "--json", folder.path("nowhere.ddd"), one});
    EXPECT_EQ(outcome.exitCode, 1);
    QStringList paths;
    for (const QJsonValue& each : parsed(outcome.out)["downloads"].toArray())
        paths << each.toObject()["file"].toObject()["path"].toString();
    EXPECT_EQ(paths, (QStringList{two, one}));
    EXPECT_EQ(
        outcome.err, "scard: " + folder.path("nowhere.ddd").toStdString() +
                         " cannot be read: No such file or directory.\n"
                         "Name a file that a card was downloaded to.\n");
}

/// A row's or a day's time, whatever its key is.
QString timeOf(const QJsonObject& row)
{
    for (const char* key : {"date", "first_use", "begin", "time"}) {
        if (row.contains(key))
            return row[key].toString();
    }
    return row["calibration_time"].toString();
}

TEST(ShowJsonTest, LimitsDaysAndRowsToTheRange)
{
    const Folder folder;
    const struct
    {
        const char* from;
        const char* until;
    } rows[] = {
        {"2024-02-01", "2024-02-14"},
        {"2024-02-14", "2024-02-14"},
        {"2024-02-20", nullptr},
        {nullptr, "2024-01-20"}};
    const QString path = folder.write("card.ddd", realDownloads()[2].file);
    const QJsonArray whole = shown({path})["applications"].toArray();
    for (const auto& row : rows) {
        QStringList arguments{path};
        if (row.from)
            arguments << "--from" << row.from;
        if (row.until)
            arguments << "--until" << row.until;
        SCOPED_TRACE(arguments.join(' ').toStdString());
        const QJsonObject limited = shown(arguments);
        EXPECT_EQ(limited["range"].toObject()["from"].toString(), QString(row.from));
        EXPECT_EQ(limited["range"].toObject()["until"].toString(), QString(row.until));
        for (int i = 0; i < whole.size(); ++i) {
            const QJsonObject all = whole[i].toObject();
            const QJsonObject some = limited["applications"].toArray()[i].toObject();
            for (const QString& key : all.keys()) {
                if (!all[key].isArray()) {
                    EXPECT_EQ(difference(some[key], all[key], key), "") << "facts have no time";
                    continue;
                }
                QJsonArray expected;
                for (const QJsonValue& each : all[key].toArray()) {
                    const QJsonObject item = each.toObject();
                    const QString end = key == "vehicles"      ? item["last_use"].toString()
                                        : item.contains("end") ? item["end"].toString()
                                                               : timeOf(item);
                    const bool isBefore = row.from && end.left(10) < QString(row.from);
                    const bool isBehind = row.until && timeOf(item).left(10) > QString(row.until);
                    if (!isBefore && !isBehind)
                        expected.append(each);
                }
                EXPECT_EQ(difference(some[key], expected, key), "");
            }
        }
    }
}

} // namespace
