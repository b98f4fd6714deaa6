// A download that ends anywhere: what can be read is shown, and what is missing is named.
#include "Downloads.h"

#include <cli/LibraryLog.h>
#include <cli/report/ReadReport.h>
#include <scard/ElementaryFile.h>
#include <support/FileRecords.h>
#include <support/Program.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <gmock/gmock.h>

#include <algorithm>
#include <set>

namespace {

using namespace test;
using report::Report;
using report::Table;
using report::Value;
using testing::HasSubstr;

/// The program's own handling of the debug stream, as long as the object lives.
class OwnLog
{
  public:
    OwnLog() : m_before(qInstallMessageHandler(nullptr)) { LibraryLog::install(); }
    ~OwnLog() { qInstallMessageHandler(m_before); }
    OwnLog(const OwnLog&) = delete;
    OwnLog& operator=(const OwnLog&) = delete;

  private:
    QtMessageHandler m_before;
};

/// EFs that the library must find in an application to call its image complete.
std::set<unsigned int> neededEfs(const std::string& card, bool isSecond)
{
    std::set<unsigned int> efs;
    if (card.find("driver") == 0)
        efs = {0x0501, 0x0502, 0x0503, 0x0504, 0x0505, 0x0520};
    if (card.find("workshop") == 0)
        efs = {0x0501, 0x0502, 0x0503, 0x0504, 0x0505, 0x0506, 0x0507, 0x0508, 0x050A, 0x0520, 0x0522};
    if (card.find("workshop") == 0 && isSecond)
        efs.insert({0x0523, 0x0524});
    if (card.find("V2") != std::string::npos && isSecond)
        efs.insert(0x0525);
    return efs;
}

bool isKnown(const Value& value)
{
    return !std::holds_alternative<std::monostate>(value);
}

/// True when @p part says nothing that @p whole does not say in the same place.
bool saysNoMore(const std::vector<Value>& part, const std::vector<Value>& whole)
{
    for (std::size_t i = 0; i < part.size(); ++i) {
        if (isKnown(part[i]) && !(part[i] == whole[i]))
            return false;
    }
    return part.size() == whole.size();
}

void expectPartOf(const Table& part, const Table& whole)
{
    ASSERT_EQ(part.key, whole.key);
    EXPECT_LE(part.rows.size(), whole.rows.size());
    for (const std::vector<Value>& row : part.rows)
        EXPECT_TRUE(std::any_of(whole.rows.begin(), whole.rows.end(), [&row](const std::vector<Value>& each) {
            return saysNoMore(row, each);
        })) << part.key.toStdString();
}

void expectPartOf(const report::FactGroup& part, const report::FactGroup& whole)
{
    ASSERT_EQ(part.key, whole.key);
    for (std::size_t i = 0; i < part.facts.size(); ++i) {
        const Value& value = part.facts[i].value;
        EXPECT_TRUE(report::isEmpty(value) || value == whole.facts.at(i).value)
            << part.facts[i].column.key.toStdString();
    }
}

/// What is shown of a part of a file is part of what is shown of the whole.
void expectPartOf(const Report& part, const Report& whole)
{
    ASSERT_LE(part.applications.size(), whole.applications.size());
    for (std::size_t i = 0; i < part.applications.size(); ++i) {
        const report::Application& some = part.applications[i];
        const report::Application& all = whole.applications[i];
        EXPECT_EQ(some.name, all.name);
        ASSERT_EQ(some.groups.size(), all.groups.size());
        for (std::size_t j = 0; j < some.groups.size(); ++j)
            expectPartOf(some.groups[j], all.groups[j]);
        ASSERT_EQ(some.tables.size(), all.tables.size());
        for (std::size_t j = 0; j < some.tables.size(); ++j)
            expectPartOf(some.tables[j], all.tables[j]);
        expectPartOf(report::dayTable(some.days), report::dayTable(all.days));
        expectPartOf(report::periodTable(some.days), report::periodTable(all.days));
    }
}

/// Name of the EF of which the first @p length bytes of @p file have the header and not all data; empty when
/// there is none.
std::string cutEf(const QByteArray& file, int length)
{
    for (const FileRecord& record : recordsOf(file)) {
        if (record.begin() <= length && length < record.end())
            return scard::efName(static_cast<unsigned short>(record.fid), record.type >= 2).toStdString();
    }
    return std::string();
}

bool isBoundary(const QByteArray& file, int length)
{
    const auto all = recordsOf(file);
    return std::any_of(
        all.begin(), all.end(), [length](const FileRecord& record) { return record.end() == length; });
}

/// True when the first @p length bytes, whole records, hold all that the library wants.
bool isEnough(const CardFile& download, int length)
{
    const std::string name = download.name;
    const QByteArray part = download.file.left(length);
    const auto records = recordsOf(part);
    const bool isSecond = std::any_of(
        records.begin(), records.end(), [](const FileRecord& record) { return record.type == 2; });
    std::set<unsigned int> needed = neededEfs(name, isSecond);
    if (needed.empty()) // of a company card everything
        for (const FileRecord& record : recordsOf(download.file)) {
            const bool ofChip = record.fid < 0x0100;
            if (!ofChip && record.type == (isSecond ? 2u : 0u))
                needed.insert(record.fid);
        }
    for (const FileRecord& record : records) {
        if (record.type == (isSecond ? 2u : 0u))
            needed.erase(record.fid);
    }
    return needed.empty();
}

/// The lengths at and around the records' ends, and others in between.
std::set<int> lengthsOf(const QByteArray& file, int step)
{
    std::set<int> lengths;
    for (int length = 0; length < file.size(); length += step)
        lengths.insert(length);
    for (const FileRecord& record : recordsOf(file)) {
        for (const int length :
             {record.offset + 1, record.begin() - 1, record.begin(), record.begin() + 1, record.end() - 1,
              record.end()})
            lengths.insert(std::min(length, file.size()));
    }
    return lengths;
}

class CutFileTest : public testing::TestWithParam<const char*>
{};

TEST_P(CutFileTest, ShowsAPartOfTheWholeAndSaysWhatIsMissing)
{
    const OwnLog log;
    const Folder folder;
    const CardFile& download = smallDownload(GetParam());
    const auto wholeResult =
        report::readReport(folder.write("whole.ddd", download.file), {}, report::Zone::Utc);
    ASSERT_TRUE(wholeResult.report);
    ASSERT_EQ(wholeResult.code, exitDone);
    for (const int length : lengthsOf(download.file, 97)) {
        SCOPED_TRACE(length);
        const QString path = folder.write("cut.ddd", download.file.left(length));
        const report::ReadResult result = report::readReport(path, {}, report::Zone::Utc);
        const bool isComplete = isBoundary(download.file, length) && isEnough(download, length);
        EXPECT_EQ(result.code, isComplete ? exitDone : exitDamagedFile);
        EXPECT_EQ(result.message.isEmpty(), isComplete) << result.message.toStdString();
        EXPECT_EQ(result.advice.isEmpty(), isComplete);
        EXPECT_THAT(result.message.toStdString(), HasSubstr(cutEf(download.file, length)));
        if (result.report) {
            EXPECT_EQ(result.report->damage.has_value(), !isComplete);
            EXPECT_EQ(result.report->size, length);
            EXPECT_EQ(result.report->isCut, !isBoundary(download.file, length));
            expectPartOf(*result.report, *wholeResult.report);
        }
    }
}

TEST_P(CutFileTest, ShowsTheFirstApplicationWhereTheSecondOneIsCut)
{
    const OwnLog log;
    const Folder folder;
    const CardFile& download = smallDownload(GetParam());
    const auto records = recordsOf(download.file);
    const auto second = std::find_if(records.begin(), records.end(), [](const FileRecord& record) {
        return record.type == 2 && record.fid == 0x0501;
    });
    if (second == records.end())
        return; // a card of the first generation
    const auto whole = report::readReport(folder.write("whole.ddd", download.file), {}, report::Zone::Utc);
    ASSERT_TRUE(whole.report);
    const int startOfSecond = recordOf(download.file, 0x0002, 2).offset;
    for (const int length :
         {startOfSecond + 7, second->offset, second->begin() + 1, second->end(), second->end() + 7}) {
        SCOPED_TRACE(length);
        const auto cut =
            report::readReport(folder.write("cut.ddd", download.file.left(length)), {}, report::Zone::Utc);
        EXPECT_EQ(cut.code, exitDamagedFile);
        ASSERT_TRUE(cut.report);
        for (std::size_t i = 0; i < whole.report->applications.front().tables.size(); ++i)
            EXPECT_EQ(
                cut.report->applications.front().tables[i].rows,
                whole.report->applications.front().tables[i].rows);
    }
}

INSTANTIATE_TEST_SUITE_P(
    EveryKind, CutFileTest, testing::Values("driver", "driverV2", "workshopV2", "company", "companyG2"),
    [](const testing::TestParamInfo<const char*>& row) { return row.param; });

TEST(CutFileProgramTest, SaysOnStandardErrorWhatIsMissing)
{
    const Folder folder;
    const QByteArray& file = smallDownload("driverV2").file;
    const FileRecord events = recordOf(file, 0x0502, 2);
    const FileRecord start = recordOf(file, 0x0005, 2);
    const FileRecord activities = recordOf(file, 0x0504);
    const FileRecord signature = recordOf(file, 0x0505, 1);
    const struct
    {
        const char* name;
        int length;
        QString message;
    } rows[] = {
        {"inside the data of the second application", events.begin() + 100,
         QString("it ends inside the data of EF_EventsData, 100 of %1 bytes are there; EF_EventsData is "
                 "missing or short.")
             .arg(events.length)},
        {"behind the data before", events.offset, "EF_EventsData is missing or short."},
        {"inside a header of the second application", events.offset + 3,
         "3 bytes stand behind its last record; EF_EventsData is missing or short."},
        {"between the second application and what says which card it is", start.end(),
         "its second application does not say what card it is of."},
        {"inside the data of the first application", activities.begin() + 1,
         QString("it ends inside the data of EF_Driver_Activity_Data, 1 of %1 bytes are there; "
                 "EF_Driver_Activity_Data is missing or short.")
             .arg(activities.length)},
        {"inside a signature", signature.begin() + 10,
         "it ends inside the signature of EF_Vehicles_Used, 10 of 128 bytes are there."},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const QString path = folder.write("cut.ddd", file.left(row.length));
        const Outcome outcome = run({"show", path});
        EXPECT_EQ(outcome.exitCode, 7);
        EXPECT_EQ(
            outcome.err, ("scard: " + path + " is damaged: " + row.message +
                          "\nWhat could be read is shown. Download the card again while it can be had.\n")
                             .toStdString());
        EXPECT_THAT(outcome.out, HasSubstr("driver card\n"));
        const Outcome verbose = run({"show", "--verbose", path});
        EXPECT_EQ(verbose.exitCode, 7);
        EXPECT_EQ(verbose.out, outcome.out);
    }
}

TEST(CutFileProgramTest, SaysTheSameInJson)
{
    const Folder folder;
    const QByteArray& file = smallDownload("driverV2").file;
    const FileRecord events = recordOf(file, 0x0502, 2);
    const struct
    {
        int length;
        bool isCut;
    } rows[] = {{events.begin() + 100, true}, {events.offset + 3, true}, {events.offset, false}};
    for (const auto& row : rows) {
        const QString path = folder.write("cut.ddd", file.left(row.length));
        const Outcome outcome = run({"show", "--json", path});
        EXPECT_EQ(outcome.exitCode, 7);
        const QJsonObject download = QJsonDocument::fromJson(QByteArray::fromStdString(outcome.out))
                                         .object()["downloads"]
                                         .toArray()
                                         .first()
                                         .toObject();
        EXPECT_EQ(download["file"].toObject()["is_cut"].toBool(!row.isCut), row.isCut);
        const QJsonObject damage = download["damage"].toObject();
        EXPECT_EQ(
            outcome.err, "scard: " + damage["message"].toString().toStdString() +
                             "\nWhat could be read is shown. Download the card again while it can be had.\n");
        EXPECT_EQ(damage["ef"].toString().toStdString(), "EF_EventsData");
        const QJsonArray entries = damage["entries"].toArray();
        ASSERT_FALSE(entries.isEmpty());
        EXPECT_EQ(
            entries.first().toObject()["message"].toString().toStdString(),
            "memSelectFile(): Dataset not found");
        EXPECT_EQ(entries.first().toObject()["source"].toString().toStdString(), "libscard");
        EXPECT_EQ(entries.first().toObject()["id_hex"].toString().toStdString(), "0");
    }
}

TEST(CutFileProgramTest, NeverFailsInAnotherWay)
{
    const Folder folder;
    const QByteArray& file = smallDownload("workshopV2").file;
    for (int part = 0; part < 24; ++part) {
        const QString path = folder.write("cut.ddd", file.left(file.size() * part / 24));
        for (const QStringList& format :
             {QStringList{}, QStringList{"--json"}, QStringList{"--csv", "calibrations"}}) {
            const Outcome outcome = run(QStringList{"show", path} + format);
            EXPECT_EQ(outcome.exitCode, 7) << part;
            EXPECT_THAT(outcome.err, HasSubstr("scard: " + path.toStdString() + " ")) << part;
        }
    }
}

} // namespace
