// Files of other programs: some leave out certificates, signatures or what they do not know.
#include "Downloads.h"

#include <support/FileRecords.h>
#include <support/Program.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <gmock/gmock.h>

namespace {

using namespace test;
using testing::HasSubstr;

struct Shown
{
    int exitCode;
    std::string err;
    std::string text;
    QJsonObject download;

    QStringList missing() const
    {
        QStringList names;
        for (const QJsonValue& name : download["file"].toObject()["missing_efs"].toArray())
            names << name.toString();
        return names;
    }
};

Shown shown(const QByteArray& file)
{
    const Folder folder;
    const QString path = folder.write("other.ddd", file);
    const Outcome text = run({"show", path}, {{"COLUMNS", "1000"}});
    const Outcome json = run({"show", "--json", path});
    EXPECT_EQ(json.exitCode, text.exitCode);
    EXPECT_EQ(json.err, text.err);
    return {
        text.exitCode, text.err, text.out,
        QJsonDocument::fromJson(QByteArray::fromStdString(json.out))
            .object()["downloads"]
            .toArray()
            .first()
            .toObject()};
}

bool isCertificate(const FileRecord& record)
{
    return record.fid >= 0xC100;
}

bool isSignature(const FileRecord& record)
{
    return record.type % 2 == 1;
}

TEST(OtherProgramsFileTest, NamesWhatMayBeMissing)
{
    const struct
    {
        const char* name;
        const char* card;
        bool (*isLeftOut)(const FileRecord& record);
        QStringList missing;
    } rows[] = {
        {"certificates", "driver", isCertificate, {"EF_Card_Certificate", "EF_CA_Certificate"}},
        {"certificates of both generations",
         "driverV2",
         isCertificate,
         {"EF_Card_Certificate", "EF_CA_Certificate", "EF_MA_Certificate", "EF_Card_Sign_Certificate",
          "EF_CA_Certificate", "EF_Link_Certificate"}},
        {"certificates", "workshop", isCertificate, {"EF_Card_Certificate", "EF_CA_Certificate"}},
        {"signatures", "driverV2", isSignature, {}},
        {"card and chip",
         "driver",
         [](const FileRecord& record) { return record.fid < 0x0100; },
         {"EF_ICC", "EF_IC"}},
        {"the lists of version 2.2",
         "driverV2",
         [](const FileRecord& record) { return record.fid >= 0x0526 && record.fid <= 0x0531; },
         {"EF_Places_Authentication", "EF_GNSS_Places_Authentication", "EF_Border_Crossing",
          "EF_Load_Unload_Operations", "EF_Load_Type_Entries"}},
        {"the lists of version 2.2",
         "workshopV2",
         [](const FileRecord& record) { return record.fid >= 0x0526 && record.fid <= 0x0531; },
         {"EF_Places_Authentication", "EF_GNSS_Places_Authentication", "EF_Border_Crossing",
          "EF_Load_Unload_Operations", "EF_Load_Type_Entries", "EF_Calibration_Add_Data"}},
        {"places and conditions",
         "driver",
         [](const FileRecord& record) { return record.fid == 0x0522 || record.fid == 0x0506; },
         {"EF_Places", "EF_Specific_Conditions"}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.card) + " without " + row.name);
        const CardFile& download = smallDownload(row.card);
        const QByteArray file = without(download.file, row.isLeftOut);
        ASSERT_LT(file.size(), download.file.size());
        const Shown result = shown(file);
        EXPECT_EQ(result.exitCode, 0);
        EXPECT_EQ(result.err, "");
        EXPECT_EQ(result.missing(), row.missing) << result.missing().join(", ").toStdString();
        EXPECT_TRUE(result.download["damage"].isNull());
        if (row.missing.isEmpty())
            EXPECT_THAT(result.text, testing::Not(HasSubstr("Not in the file")));
        else
            EXPECT_THAT(
                result.text,
                HasSubstr(
                    "\nNot in the file, or too short: " + row.missing.join(", ").toStdString() + ".\n"));
    }
}

TEST(OtherProgramsFileTest, ShowsTheSameWithoutSignatures)
{
    for (const CardFile& download : smallDownloads()) {
        const Shown all = shown(download.file);
        const Shown some = shown(without(download.file, isSignature));
        EXPECT_EQ(some.download["applications"], all.download["applications"]) << download.name;
        EXPECT_EQ(some.download["file"].toObject()["signatures"].toInt(), 0);
    }
}

TEST(OtherProgramsFileTest, SaysThatAnApplicationLacksWhatItMustHave)
{
    const struct
    {
        const char* name;
        const char* card;
        unsigned int fid;
        unsigned int type;
        const char* ef;
    } rows[] = {
        {"events of the only application", "driver", 0x0502, 0, "EF_EventsData"},
        {"events of the second application", "driverG2", 0x0502, 2, "EF_EventsData"},
        {"activities of the first application", "driverG2", 0x0504, 0, "EF_Driver_Activity_Data"},
        {"calibrations of the first application", "workshopV2", 0x050A, 0, "EF_Calibration"},
        {"the counts of version 2.2", "driverV2", 0x0525, 2, "EF_Application_Identification_V2"},
        {"the counts of version 2.2", "workshopV2", 0x0525, 2, "EF_Application_Identification_V2"},
        {"activities of a company's first application", "companyG2", 0x050D, 0, "EF_Company_Activity_Data"},
        {"activities of a company", "company", 0x050D, 0, "EF_Company_Activity_Data"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const auto isLeftOut = [&row](const FileRecord& record) {
            return record.fid == row.fid && record.type == row.type;
        };
        const Shown result = shown(without(smallDownload(row.card).file, isLeftOut));
        EXPECT_EQ(result.exitCode, 7);
        EXPECT_THAT(result.err, HasSubstr(std::string(" is damaged: ") + row.ef + " is missing or short.\n"));
        EXPECT_EQ(result.download["damage"].toObject()["ef"].toString().toStdString(), row.ef);
        EXPECT_TRUE(result.missing().contains(row.ef));
    }
}

TEST(OtherProgramsFileTest, NamesTheFirstOfAllThatAnUpdateOfTheCardsBrought)
{
    const Shown result = shown(without(smallDownload("driverV2").file, [](const FileRecord& record) {
        return record.fid >= 0x0525 && record.fid <= 0x0531;
    }));
    EXPECT_EQ(result.exitCode, 7);
    EXPECT_THAT(
        result.err, HasSubstr(" is damaged: EF_Application_Identification_V2 is missing or short.\n"));
}

TEST(OtherProgramsFileTest, ShowsTheListsThatStandBesideWhatIsMissing)
{
    const struct
    {
        const char* name;
        const char* card;
        unsigned int fid;
        unsigned int type;
        int application;
        QStringList keys;
    } rows[] = {
        {"the counts of version 2.2",
         "driverV2",
         0x0525,
         2,
         1,
         {"days", "vehicles", "events", "faults", "specific_conditions"}},
        {"the vehicles of the only application", "driver", 0x0505, 0, 0, {"days", "events", "faults"}},
        {"the vehicles of the first application", "driverG2", 0x0505, 0, 0, {"days", "events", "faults"}},
        {"the second application's activities", "companyG2", 0x050D, 2, 0, {"company_activities"}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const QByteArray& file = smallDownload(row.card).file;
        const auto isLeftOut = [&row](const FileRecord& record) {
            return record.fid == row.fid && record.type == row.type;
        };
        const auto applicationOf = [&row](const Shown& shown) {
            return shown.download["applications"].toArray()[row.application].toObject();
        };
        const QJsonObject part = applicationOf(shown(without(file, isLeftOut)));
        const QJsonObject whole = applicationOf(shown(file));
        for (const QString& key : row.keys) {
            EXPECT_FALSE(whole[key].toArray().isEmpty()) << key.toStdString();
            EXPECT_EQ(part[key], whole[key]) << key.toStdString();
        }
    }
}

TEST(OtherProgramsFileTest, GivesNullWhereAnEfOfTheCardIsMissing)
{
    const struct
    {
        const char* card;
        unsigned int fid;
        const char* key;
    } rows[] = {
        {"driver", 0x0520, "identification"},
        {"driver", 0x050E, "download"},
        {"workshop", 0x0520, "identification"},
        {"company", 0x0520, "identification"},
    };
    for (const auto& row : rows) {
        const Shown result = shown(without(smallDownload(row.card).file, [&row](const FileRecord& record) {
            return record.fid == row.fid;
        }));
        const QJsonObject application = result.download["applications"].toArray().first().toObject();
        EXPECT_TRUE(application.contains(row.key)) << row.card;
        EXPECT_TRUE(application[row.key].isNull()) << row.card;
    }
}

TEST(OtherProgramsFileTest, ReadsACardWhoseSecondApplicationStandsAlone)
{
    const QByteArray file =
        without(smallDownload("companyG2").file, [](const FileRecord& record) { return record.type < 2; });
    const Shown result = shown(file);
    EXPECT_EQ(result.exitCode, 0) << result.err;
    const QJsonArray applications = result.download["applications"].toArray();
    ASSERT_EQ(applications.size(), 2);
    EXPECT_EQ(applications[1].toObject()["company_activities"].toArray().size(), 2);
    EXPECT_THAT(result.text, HasSubstr("second generation\n"));
}

} // namespace
