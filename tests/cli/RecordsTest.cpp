// `scard records`: what stands in a file, whatever it is.
#include "Downloads.h"

#include <support/FileRecords.h>
#include <support/Program.h>

#include <gmock/gmock.h>

#include <QCryptographicHash>

#include <sstream>

namespace {

using namespace test;
using testing::EndsWith;
using testing::HasSubstr;

constexpr const char* title =
    "  offset  FID   EF                                 record                   bytes\n";

std::string sha256(const QByteArray& file)
{
    return QCryptographicHash::hash(file, QCryptographicHash::Sha256).toHex().toStdString();
}

TEST(RecordsTest, ListsEachRecord)
{
    const QByteArray file = QByteArray::fromHex("000200000161"     // EF_ICC
                                                "0002010000"       // its signature, of no bytes
                                                "c1000000027172"   // the certificate of either generation
                                                "c1000200027172"   //
                                                "0520030003616263" // a signature of the second generation
                                                "c209000001aa"     // an EF that no card uses
                                                "05018100020304"); // a type that there is not
    const Folder folder;
    const Outcome outcome = run({"records", folder.write("card.ddd", file)});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(
        outcome.out,
        std::string(title) +
            "       0  0002  EF_ICC                             data, generation 1           1  whole\n"
            "       6  0002  EF_ICC                             signature, generation 1      0  whole\n"
            "      11  C100  EF_Card_Certificate                data, generation 1           2  whole\n"
            "      18  C100  EF_MA_Certificate                  data, generation 2           2  whole\n"
            "      25  0520  EF_Identification                  signature, generation 2      3  whole\n"
            "      33  C209  unknown EF                         data, generation 1           1  whole\n"
            "      39  0501  EF_Application_Identification      unknown type 81              2  whole\n"
            "7 records, 1 signatures, 46 bytes, 0 behind the last record\n"
            "SHA-256 " +
            sha256(file) + "\n");
}

TEST(RecordsTest, SaysWhereAFileIsCut)
{
    const QByteArray whole = QByteArray::fromHex("0002000001610501000005010000000a");
    const struct
    {
        const char* name;
        int length;
        const char* lastRecord;
        const char* summary;
    } rows[] = {
        {"inside the data", 14, "data, generation 1           5  cut, 3 are there\n",
         "2 records, 0 signatures, 14 bytes, 0 behind the last record\n"},
        {"behind a header", 11, "data, generation 1           5  cut, 0 are there\n",
         "2 records, 0 signatures, 11 bytes, 0 behind the last record\n"},
        {"inside a header", 8, "data, generation 1           1  whole\n",
         "1 records, 0 signatures, 8 bytes, 2 behind the last record\n"},
        {"inside the first header", 4, "bytes\n",
         "0 records, 0 signatures, 4 bytes, 4 behind the last record\n"},
    };
    const Folder folder;
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const QByteArray file = whole.left(row.length);
        const QString path = folder.write("card.ddd", file);
        const Outcome outcome = run({"records", path});
        EXPECT_EQ(outcome.exitCode, 7);
        EXPECT_THAT(
            outcome.out,
            EndsWith(std::string(row.lastRecord) + row.summary + "SHA-256 " + sha256(file) + "\n"));
        EXPECT_EQ(outcome.err, "scard: " + path.toStdString() + " is damaged: it ends inside a record.\n");
    }
}

TEST(RecordsTest, SaysThatAFileHasNoRecordOfACard)
{
    const Folder folder;
    const QString path = folder.write("zeros.ddd", QByteArray(20, '\0'));
    const Outcome outcome = run({"records", path});
    EXPECT_EQ(outcome.exitCode, 7);
    EXPECT_THAT(outcome.out, HasSubstr("4 records, 0 signatures, 20 bytes, 0 behind the last record\n"));
    EXPECT_EQ(outcome.err, "scard: " + path.toStdString() + " has no record of a tachograph card.\n");
}

TEST(RecordsTest, ListsEveryRecordOfEveryKindOfCardByName)
{
    const Folder folder;
    for (const CardFile& download : smallDownloads()) {
        SCOPED_TRACE(download.name);
        const Outcome outcome = run({"records", folder.write("card.ddd", download.file)});
        EXPECT_EQ(outcome.exitCode, 0);
        EXPECT_THAT(outcome.out, testing::Not(HasSubstr("unknown")));
        std::istringstream lines(outcome.out);
        std::string line;
        std::getline(lines, line);
        for (const FileRecord& record : recordsOf(download.file)) {
            ASSERT_TRUE(std::getline(lines, line));
            EXPECT_EQ(std::stoi(line.substr(0, 8)), record.offset);
            EXPECT_EQ(std::stoul(line.substr(10, 4), nullptr, 16), record.fid);
            EXPECT_EQ(line.substr(16, 3), "EF_");
            const std::string kind = record.type % 2 == 0 ? "data" : "signature";
            EXPECT_EQ(line.substr(51, 23).find(kind + ", generation " + (record.type < 2 ? "1" : "2")), 0u)
                << line;
            EXPECT_EQ(std::stoi(line.substr(76)), record.length);
        }
    }
}

} // namespace
