// docs/schema/show.schema.json describes what `scard show --json` prints.
#include "Downloads.h"

#include <support/Program.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <gmock/gmock.h>

#include <functional>

namespace {

using namespace test;
using testing::HasSubstr;

/// Writes what the program prints of @p arguments.
QString shown(const Folder& folder, const QString& name, const QStringList& arguments)
{
    const Outcome outcome = run(QStringList{"show", "--json"} + arguments);
    return folder.write(name, QByteArray::fromStdString(outcome.out));
}

TEST(SchemaTest, HoldsForEveryKindOfCardAndForDamagedFiles)
{
    const Folder folder;
    QStringList outputs;
    QStringList files;
    for (const CardFile& download : smallDownloads()) {
        const QString name = QString::fromLatin1(download.name);
        files << folder.write(name + ".ddd", download.file);
        outputs << shown(folder, name + ".json", {files.back()});
        outputs << shown(folder, name + "-limited.json", {"--utc", "--from", "2024-03-05", files.back()});
        outputs << shown(folder, name + "-until.json", {"--until", "1999-12-31", files.back()});
        for (const int part : {3, 5, 8}) {
            const QString cut =
                folder.write(name + "-cut.ddd", download.file.left(download.file.size() * part / 9));
            outputs << shown(folder, QString("%1-cut%2.json").arg(name).arg(part), {cut});
        }
    }
    outputs << shown(folder, "all.json", files);
    outputs << shown(folder, "none.json", {folder.path("nowhere.ddd")});
    outputs << shown(
        folder, "control.json", {folder.write("control.ddd", QByteArray::fromHex("050100000503000000e6"))});
    EXPECT_EQ(schemaErrors("show", outputs), "");
}

using Change = std::function<void(QJsonObject& root)>;

/// A change of the first download.
Change ofDownload(const std::function<void(QJsonObject& download)>& change)
{
    return [change](QJsonObject& root) {
        QJsonArray downloads = root["downloads"].toArray();
        QJsonObject first = downloads.first().toObject();
        change(first);
        downloads[0] = first;
        root["downloads"] = downloads;
    };
}

/// A change of the last application.
Change ofApplication(const std::function<void(QJsonObject& application)>& change)
{
    return ofDownload([change](QJsonObject& download) {
        QJsonArray applications = download["applications"].toArray();
        QJsonObject last = applications.last().toObject();
        change(last);
        applications[applications.size() - 1] = last;
        download["applications"] = applications;
    });
}

/// A change of the first row of a list in the last application.
Change ofRow(const QString& key, const std::function<void(QJsonObject& row)>& change)
{
    return ofApplication([key, change](QJsonObject& application) {
        QJsonArray rows = application[key].toArray();
        QJsonObject first = rows.first().toObject();
        change(first);
        rows[0] = first;
        application[key] = rows;
    });
}

TEST(SchemaTest, FindsWhatIsNotAsDescribed)
{
    const struct
    {
        const char* name;
        const char* card;
        Change change;
    } rows[] = {
        {"nothing is left out of the file", "driverV2",
         ofDownload([](QJsonObject& download) { download.remove("damage"); })},
        {"nothing is added to the root", "driverV2", [](QJsonObject& root) { root["more"] = 1; }},
        {"the format has a name", "driverV2", [](QJsonObject& root) { root["format"] = "scard-show-2"; }},
        {"a renamed list", "driverV2", ofApplication([](QJsonObject& application) {
             application["lorries"] = application.take("vehicles");
         })},
        {"a renamed key of a row", "driverV2",
         ofRow("vehicles", [](QJsonObject& row) { row["odometer_km"] = row.take("odometer_end_km"); })},
        {"a list of another kind of card", "workshopV2",
         ofApplication([](QJsonObject& application) { application["vehicles"] = QJsonArray(); })},
        {"an application that is none", "companyG2",
         ofApplication([](QJsonObject& application) { application["application"] = "TACHOG2"; })},
        {"an application too few", "driverG2", ofDownload([](QJsonObject& download) {
             QJsonArray applications = download["applications"].toArray();
             applications.removeLast();
             download["applications"] = applications;
         })},
        {"applications of another kind of card", "driverG2", ofDownload([](QJsonObject& download) {
             QJsonObject card = download["card"].toObject();
             card["type"] = QJsonObject{{"code", 4}, {"name", "company card"}};
             download["card"] = card;
         })},
        {"a time without its offset", "companyG2",
         ofRow("company_activities", [](QJsonObject& row) { row["time"] = "2024-03-05T12:00:00"; })},
        {"a time that is none", "companyG2",
         ofRow("company_activities", [](QJsonObject& row) { row["time"] = "2024-13-05T12:00:00Z"; })},
        {"a code without its number", "workshopV2",
         ofRow("calibrations", [](QJsonObject& row) { row["purpose"] = "activation"; })},
        {"a nation as text", "workshopV2",
         ofRow("calibrations", [](QJsonObject& row) { row["vehicle_nation"] = "D"; })},
        {"a latitude off the globe", "driverV2",
         ofRow("gnss_places", [](QJsonObject& row) { row["latitude_degrees"] = 90.1; })},
        {"figures of a company card", "companyG2",
         ofDownload([](QJsonObject& download) { download["figures"] = QJsonObject(); })},
    };
    const Folder folder;
    QStringList changed;
    for (const auto& row : rows) {
        const QString card = folder.write("card.ddd", smallDownload(row.card).file);
        const Outcome outcome = run({"show", "--json", card});
        QJsonObject root = QJsonDocument::fromJson(QByteArray::fromStdString(outcome.out)).object();
        const QJsonObject before = root;
        row.change(root);
        EXPECT_NE(root, before) << row.name;
        changed << folder.write(QString::fromLatin1(row.name) + ".json", QJsonDocument(root).toJson());
    }
    const std::string errors = schemaErrors("show", changed);
    for (const QString& path : changed)
        EXPECT_THAT(errors, HasSubstr(path.toStdString() + ": "));
}

QJsonObject schema(const QString& name)
{
    QFile file(QFileInfo(SHOW_SCHEMA).dir().filePath(name));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << file.fileName().toStdString();
    return QJsonDocument::fromJson(file.readAll()).object();
}

QJsonObject definition(const QJsonObject& schema, const char* name)
{
    return schema["$defs"].toObject()[QLatin1String(name)].toObject();
}

TEST(SchemaTest, SaysTheSameOfACardAndOfAFailureEverywhere)
{
    const QJsonObject card = schema("card.schema.json");
    const QJsonObject download = schema("download.schema.json");
    ASSERT_FALSE(definition(card, "card").isEmpty());
    EXPECT_EQ(card["$defs"], download["$defs"]);

    const auto entryKeys = [](const QJsonObject& failure) {
        const QJsonObject entries = failure["properties"].toObject()["entries"].toObject();
        return entries["items"].toObject()["required"].toArray();
    };
    const QJsonArray keys = entryKeys(definition(download, "failure"));
    ASSERT_FALSE(keys.isEmpty());
    EXPECT_EQ(entryKeys(definition(schema("show.schema.json"), "damage")), keys);
}

TEST(SchemaTest, DescribesEveryKey)
{
    const Outcome outcome = runProgram(
        "/usr/bin/python3",
        {"-c",
         "import json, sys\n"
         "def look(value, path):\n"
         "    if isinstance(value, list):\n"
         "        for index, each in enumerate(value): look(each, path + [str(index)])\n"
         "    if not isinstance(value, dict): return\n"
         "    properties = value.get('properties', {})\n"
         "    for key, schema in properties.items():\n"
         "        if value.get('type') == 'object' and not schema.get('description'):\n"
         "            print('/'.join(path), key, 'is not described')\n"
         "    if value.get('type') == 'object':\n"
         "        if value.get('additionalProperties') is not False: print(path, 'is open')\n"
         "        if set(value.get('required', [])) != set(properties): print(path, 'leaves out')\n"
         "    for key, each in value.items(): look(each, path + [key])\n"
         "look(json.load(open(sys.argv[1])), [])\n",
         SHOW_SCHEMA});
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
}

} // namespace
