// `scard show --csv`: one table, as RFC 4180 says.
#include "Downloads.h"
#include "ExpectedShow.h"

#include <simulator/DriverCard.h>
#include <support/FileRecords.h>
#include <support/Program.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSet>
#include <QStringList>

#include <gmock/gmock.h>

#include <algorithm>

namespace {

using namespace test;
using testing::ElementsAre;
using testing::HasSubstr;

using Row = std::vector<std::string>;

/// Reads RFC 4180; the test fails where the text is none.
std::vector<Row> parsed(const std::string& text)
{
    std::vector<Row> rows;
    std::size_t position = 0;
    while (position < text.size()) {
        Row row;
        for (bool isLast = false; !isLast;) {
            std::string cell;
            if (text[position] == '"') {
                for (++position; position < text.size(); ++position) {
                    if (text[position] == '"' && text[++position] != '"')
                        break;
                    cell += text[position];
                }
            } else {
                while (position < text.size() && text[position] != ',' && text[position] != '\r') {
                    EXPECT_NE(text[position], '"') << "a quote in a cell without quotes";
                    EXPECT_NE(text[position], '\n') << "a line end in a cell without quotes";
                    cell += text[position++];
                }
            }
            row.push_back(cell);
            isLast = position >= text.size() || text[position] != ',';
            if (!isLast)
                ++position;
        }
        EXPECT_EQ(text.substr(position, 2), "\r\n") << "a line ends with CR and LF, the last one, too";
        position += 2;
        rows.push_back(row);
    }
    return rows;
}

std::vector<Row> table(const QString& name, const QStringList& files)
{
    const Outcome outcome = run(QStringList{"show", "--utc", "--csv", name} + files);
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
    EXPECT_EQ(outcome.err, "");
    return parsed(outcome.out);
}

/// The cells of the column @p title, without the title.
Row column(const std::vector<Row>& rows, const std::string& title)
{
    const auto found = std::find(rows.front().begin(), rows.front().end(), title);
    if (found == rows.front().end()) {
        ADD_FAILURE() << "no column " << title;
        return {};
    }
    const auto index = static_cast<std::size_t>(found - rows.front().begin());
    Row cells;
    for (std::size_t i = 1; i < rows.size(); ++i)
        cells.push_back(rows[i].at(index));
    return cells;
}

TEST(ShowCsvTest, HasAHeaderAndARowForEachEntryOfEachApplication)
{
    const struct
    {
        const char* card;
        const char* table;
        const char* header;
        std::vector<unsigned int> entries; ///< of each application
    } rows[] = {
        {"driver",
         "days",
         "file,application,date,driving_minutes,work_minutes,availability_minutes,rest_minutes,unknown_"
         "minutes",
         {}},
        {"driver",
         "vehicles",
         "file,application,first_use,last_use,registration,odometer_begin_km,odometer_end_km",
         {2}},
        {"driverV2",
         "vehicles",
         "file,application,first_use,last_use,registration,odometer_begin_km,odometer_end_km,vin",
         {2, 2}},
        {"driver",
         "places",
         "file,application,time,entry_type_code,entry_type_name,nation_numeric,nation_alpha,region_code,"
         "region_name,odometer_km",
         {2}},
        {"driverV2",
         "places",
         "file,application,time,entry_type_code,entry_type_name,nation_numeric,nation_alpha,region_code,"
         "region_name,odometer_km,latitude_degrees,longitude_degrees,position_time,position_dilution,"
         "position_authentication_code,position_authentication_name",
         {2, 2}},
        {"driverV2", "load_type_entries", "file,application,time,load_type_code,load_type_name", {0, 2}},
        {"companyG2",
         "company_activities",
         "file,application,time,activity_code,activity_name,card_type_code,card_type_name,card_nation_"
         "numeric,card_nation_alpha,card_number,vehicle_nation_numeric,vehicle_nation_alpha,registration,"
         "download_period_begin,download_period_end",
         {2, 2}},
        {"workshopV2",
         "seals",
         "file,application,calibration_time,vin,equipment_type_code,equipment_type_name,manufacturer_code,"
         "identifier",
         {}},
    };
    const Folder folder;
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.card) + ' ' + row.table);
        const QString path = folder.write("card.ddd", smallDownload(row.card).file);
        const auto actual = table(row.table, {path});
        ASSERT_GE(actual.size(), 2u);
        std::string header;
        for (const std::string& cell : actual.front())
            header += (header.empty() ? "" : ",") + cell;
        EXPECT_EQ(header, row.header);
        for (const Row& each : actual)
            EXPECT_EQ(each.size(), actual.front().size());
        const Row files = column(actual, "file");
        EXPECT_THAT(files, testing::Each(path.toStdString()));
        const Row applications = column(actual, "application");
        for (std::size_t i = 0; i < row.entries.size(); ++i)
            EXPECT_EQ(
                std::count(applications.begin(), applications.end(), i == 0 ? "TACHO" : "SMRDT"),
                static_cast<int>(row.entries[i]));
    }
}

TEST(ShowCsvTest, LeavesTheCellsOfAColumnEmptyThatAnApplicationDoesNotHave)
{
    const Folder folder;
    const auto rows = table("vehicles", {folder.write("card.ddd", smallDownload("driverV2").file)});
    const Row vins = column(rows, "vin");
    const Row applications = column(rows, "application");
    for (std::size_t i = 0; i < vins.size(); ++i)
        EXPECT_EQ(vins[i].empty(), applications[i] == "TACHO") << i;
}

TEST(ShowCsvTest, PutsFilesOfDifferentKindsIntoOneTable)
{
    const Folder folder;
    const QString one = folder.write("one.ddd", smallDownload("driver").file);
    const QString company = folder.write("company.ddd", smallDownload("company").file);
    const QString two = folder.write("two.ddd", smallDownload("driverG2").file);
    const auto rows = table("vehicles", {one, company, two});
    EXPECT_THAT(
        column(rows, "file"), ElementsAre(
                                  one.toStdString(), one.toStdString(), two.toStdString(), two.toStdString(),
                                  two.toStdString(), two.toStdString()));
    EXPECT_THAT(
        column(rows, "application"), ElementsAre("TACHO", "TACHO", "TACHO", "TACHO", "SMRDT", "SMRDT"));
}

TEST(ShowCsvTest, WritesCodesNationsAndTimesForPrograms)
{
    sim::CardDescription card = smallDownload("driver").card;
    contentOf(card, 0, 0x0504) = activityFile(
        {{1709596800, {sim::activity::Rest, sim::activity::Work | 360, sim::activity::NotInserted | 1020}}},
        600);
    const Folder folder;
    const auto rows = table("periods", {folder.write("card.ddd", downloadOf(card))});
    ASSERT_EQ(rows.size(), 4u);
    EXPECT_THAT(
        Row(rows[0].begin() + 1, rows[0].end()),
        ElementsAre(
            "application", "date", "begin", "end", "duration_minutes", "activity_code", "activity_name",
            "slot_code", "slot_name", "driving_status_code", "driving_status_name", "card_status_code",
            "card_status_name"));
    EXPECT_THAT(
        Row(rows[2].begin() + 1, rows[2].end()),
        ElementsAre(
            "TACHO", "2024-03-05", "2024-03-05T06:00:00Z", "2024-03-05T17:00:00Z", "660", "2", "work", "0",
            "driver", "0", "single", "0", "inserted"));
    EXPECT_THAT(
        Row(rows[3].begin() + 1, rows[3].end()),
        ElementsAre(
            "TACHO", "2024-03-05", "2024-03-05T17:00:00Z", "", "", "0", "rest", "0", "driver", "0", "unknown",
            "1", "not inserted"));
}

TEST(ShowCsvTest, QuotesWhatWouldEndACell)
{
    const struct
    {
        const char* name;
        QByteArray plate;
        const char* raw;
        const char* cell;
    } rows[] = {
        {"comma", "A,B          ", "\"A,B\"", "A,B"},
        {"quote", "A\"B\"         ", "\"A\"\"B\"\"\"", "A\"B\""},
        {"line feed", "A\nB          ", "\"A\nB\"", "A\nB"},
        {"carriage return", "A\rB          ", "\"A\rB\"", "A\rB"},
        {"semicolon and apostrophe", "A;'B         ", ",A;'B,", "A;'B"},
        {"letters beyond ASCII", "\xC4-\xDF 1       ", ",\xC3\x84-\xC3\x9F 1,", "\xC3\x84-\xC3\x9F 1"},
    };
    const Folder folder;
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        QByteArray file = smallDownload("driver").file;
        const FileRecord vehicles = recordOf(file, 0x0505);
        const int firstPlate = vehicles.begin() + 2 + 16;
        put(file, firstPlate, row.plate);
        const QString path = folder.write("card.ddd", file);
        EXPECT_THAT(run({"show", "--csv", "vehicles", path}).out, HasSubstr(row.raw));
        EXPECT_THAT(column(table("vehicles", {path}), "registration"), testing::Contains(row.cell));
    }
}

TEST(ShowCsvTest, IsUtf8WhateverTheLocaleSays)
{
    QByteArray file = smallDownload("driver").file;
    put(file, recordOf(file, 0x0505).begin() + 2 + 16, "\xC4\xDC");
    const Folder folder;
    const QString path = folder.write("card.ddd", file);
    const std::string expected = run({"show", "--csv", "vehicles", path}).out;
    EXPECT_THAT(expected, HasSubstr("\xC3\x84\xC3\x9C"));
    EXPECT_EQ(run({"show", "--csv", "vehicles", path}, {{"LC_ALL", "C"}}).out, expected);
}

constexpr const char* tables =
    "days, periods, vehicles, events, faults, places, specific_conditions, vehicle_units, gnss_places, "
    "border_crossings, load_unload_operations, load_type_entries, calibrations, seals, "
    "calibration_additions, company_activities";

TEST(ShowCsvTest, NamesTheTablesToWhoeverAsksForAnother)
{
    const Folder folder;
    const QString path = folder.write("card.ddd", smallDownload("driver").file);
    for (const QString& name : {QString("lorries"), QString(""), QString("Days")}) {
        const Outcome outcome = run({"show", "--csv", name, path});
        EXPECT_EQ(outcome.exitCode, 1);
        EXPECT_EQ(outcome.out, "");
        EXPECT_EQ(
            outcome.err, "scard show: there is no table \"" + name.toStdString() + "\"; " + tables +
                             ".\nSee: scard show --help\n");
    }
}

TEST(ShowCsvTest, SaysThatACardDoesNotKeepATable)
{
    const Folder folder;
    const struct
    {
        const char* card;
        const char* table;
    } rows[] = {
        {"driver", "calibrations"}, {"driver", "gnss_places"}, {"workshop", "seals"},
        {"workshopV2", "days"},     {"company", "vehicles"},
    };
    for (const auto& row : rows) {
        const Outcome outcome =
            run({"show", "--csv", row.table, folder.write("card.ddd", smallDownload(row.card).file)});
        EXPECT_EQ(outcome.exitCode, 1) << row.table;
        EXPECT_EQ(outcome.out, "");
        EXPECT_EQ(
            outcome.err, std::string("scard: no card of this kind keeps the table ") + row.table + ".\n");
    }
}

TEST(ShowCsvTest, HasTheHeaderAloneWhereTheRangeLeavesNothing)
{
    const Folder folder;
    const QString path = folder.write("card.ddd", smallDownload("driver").file);
    const Outcome outcome = run({"show", "--csv", "days", "--from", "2030-01-01", path});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(parsed(outcome.out).size(), 1u);
}

TEST(ShowCsvTest, OffersEveryListOfTheJson)
{
    const Folder folder;
    QSet<QString> lists;
    for (const CardFile& download : smallDownloads()) {
        const QString path = folder.write("card.ddd", download.file);
        const QByteArray json = QByteArray::fromStdString(run({"show", "--json", path}).out);
        const QJsonObject report =
            QJsonDocument::fromJson(json).object()["downloads"].toArray().first().toObject();
        for (const QJsonValue& each : report["applications"].toArray()) {
            const QJsonObject application = each.toObject();
            for (const QString& key : application.keys()) {
                if (application[key].isArray())
                    lists << key;
            }
            if (application["days"].toArray().first().toObject()["periods"].isArray())
                lists << "periods";
        }
    }
    const QStringList offered = QString(tables).split(", ");
    EXPECT_EQ(lists, QSet<QString>(offered.begin(), offered.end()));
}

TEST(ShowCsvTest, OffersEveryTableOfItsHelp)
{
    const std::string help = run({"show", "--help"}).out;
    const Folder folder;
    QStringList files;
    for (const CardFile& download : smallDownloads())
        files << folder.write(QString::fromLatin1(download.name), download.file);
    for (const QString& name : QString(tables).split(", ")) {
        EXPECT_THAT(help, HasSubstr(name.toStdString()));
        const Outcome outcome = run(QStringList{"show", "--csv", name} + files);
        EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
        EXPECT_GE(parsed(outcome.out).size(), 2u) << name.toStdString();
    }
}

} // namespace
