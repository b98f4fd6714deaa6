// Files of millions of the smallest records: reading ends, in bounded memory.
#include "ImageReading.h"

#include <support/Program.h>

#include <QTemporaryDir>

#include <gmock/gmock.h>

#include <algorithm>
#include <fstream>
#include <ostream>
#include <string>

namespace {

using namespace test;

constexpr qint64 mebibyte = 1024 * 1024;
#ifdef SCARD_SANITIZED
// Several times slower, and each byte of memory takes more than one.
constexpr qint64 largeBytes = 8 * mebibyte;
constexpr qint64 paddingBytes = 1 * mebibyte;
#else
constexpr qint64 largeBytes = 64 * mebibyte;
constexpr qint64 paddingBytes = 8 * mebibyte;
#endif

/// The process's resident memory: what it has now, and the most that it had since restart().
class ResidentMemory
{
  public:
    /// @return false where the system does not forget its highest value
    bool restart()
    {
        std::ofstream control("/proc/self/clear_refs");
        control << "5" << std::flush;
        m_before = bytes("VmRSS:");
        // Within the slack of the system's own counters.
        return control.good() && bytes("VmHWM:") - m_before < 4 * mebibyte;
    }

    qint64 growth() const { return bytes("VmHWM:") - m_before; }

  private:
    static qint64 bytes(const std::string& name)
    {
        std::ifstream status("/proc/self/status");
        std::string word;
        qint64 kibibytes = 0;
        while (status >> word) {
            if (word == name) {
                status >> kibibytes;
                break;
            }
        }
        return kibibytes * 1024;
    }

    qint64 m_before = 0;
};

/// Writes as many times @p record as have room in @p bytes, and never holds more than a piece of them.
void writeRecords(QFile& file, const QByteArray& record, qint64 bytes)
{
    constexpr int recordsInPiece = 100000;
    const QByteArray piece = record.repeated(recordsInPiece);
    for (qint64 left = bytes / record.size(); left > 0; left -= recordsInPiece)
        ASSERT_GT(
            file.write(piece.left(static_cast<int>(std::min<qint64>(left, recordsInPiece) * record.size()))),
            0);
    ASSERT_TRUE(file.flush());
}

struct Smallest
{
    const char* name;
    unsigned int fid;
    unsigned int type;
    Chain failure;
};

void PrintTo(const Smallest& row, std::ostream* stream)
{
    *stream << row.name;
}

class LargeImageTest : public testing::TestWithParam<Smallest>
{
  protected:
    void SetUp() override
    {
        ASSERT_TRUE(large.open());
        ASSERT_FALSE(large.fileName().isEmpty());
    }

    ImageReader reader;
    QTemporaryFile large;
};

TEST_P(LargeImageTest, IsRefusedInNoMoreMemoryThanTwiceItsSize)
{
    const Smallest& row = GetParam();
    writeRecords(large, recordHeader(row.fid, row.type, 0), largeBytes);

    ResidentMemory memory;
    ASSERT_TRUE(memory.restart());
    const Reading reading = ImageReader::readFile(large);
    const qint64 growth = memory.growth();

    EXPECT_EQ(withoutRequested(reading.failure), row.failure);
    EXPECT_EQ(reading.card, "");
    EXPECT_LE(growth, 2 * largeBytes + 4 * mebibyte);
    EXPECT_GE(growth, largeBytes / 2) << "the measure does not see what a reading takes";
}

INSTANTIATE_TEST_SUITE_P(
    FiveByteRecords, LargeImageTest,
    testing::Values(
        Smallest{"UnknownEf", 0x0500, 0, missingEf(0x0501)},
        Smallest{"UnknownEfOfTheSecondGeneration", 0x0500, 2, missingEf(0x0501)},
        Smallest{"UnknownType", 0x0501, 0x81, noApplication(false)},
        Smallest{"Signatures", 0x0501, 1, noApplication(false)},
        Smallest{"EmptyChip", 0x0002, 0, missingEf(0x0501)},
        Smallest{"EmptyApplicationIdentification", 0x0501, 0, shortEf(0)},
        Smallest{"EmptyApplicationIdentificationOfTheSecondGeneration", 0x0501, 2, shortEf(0)},
        Smallest{"OtherEmptyEf", 0x0504, 2, missingEf(0x0501)}),
    [](const testing::TestParamInfo<Smallest>& row) { return row.param.name; });

TEST(LargeImageOfACardTest, IsReadBehindMillionsOfOtherRecords)
{
    ImageReader reader;
    const QByteArray& file = smallDownload("driverV2").file;
    QTemporaryFile large;
    ASSERT_TRUE(large.open());
    ASSERT_FALSE(large.fileName().isEmpty());
    writeRecords(large, recordHeader(0x0500, 0, 0), paddingBytes);
    large.write(file);
    ASSERT_TRUE(large.flush());
    const Reading good = reader.read(file);

    ResidentMemory memory;
    ASSERT_TRUE(memory.restart());
    const Reading reading = ImageReader::readFile(large);

    EXPECT_LE(memory.growth(), 2 * paddingBytes + 4 * mebibyte);
    EXPECT_EQ(reading, good);
}

TEST(LargeFileProgramTest, AFileFarLargerThanACardsIsRefused)
{
    const QTemporaryDir folder;
    QFile large(folder.filePath("large.ddd"));
    ASSERT_TRUE(large.open(QIODevice::WriteOnly));
    ASSERT_TRUE(large.resize(64 * mebibyte)); // empty records of EF 0000, which take no room on the disk
    for (const QStringList& command : {QStringList{"show"}, QStringList{"records"}}) {
        const Outcome outcome = run(command + QStringList{large.fileName()});
        EXPECT_EQ(outcome.exitCode, 7);
        EXPECT_EQ(outcome.out, "");
        EXPECT_EQ(
            outcome.err, "scard: " + large.fileName().toStdString() +
                             " is far too large for a card's download.\n"
                             "Name a file that a card was downloaded to.\n");
    }
}

TEST(LargeFileProgramTest, MillionsOfRecordsOfNoCardAreNoDownload)
{
    constexpr qint64 greatestThatIsRead = 16 * mebibyte;
    const QTemporaryDir folder;
    QFile large(folder.filePath("large.ddd"));
    ASSERT_TRUE(large.open(QIODevice::WriteOnly));
    writeRecords(large, recordHeader(0x0500, 0, 0), std::min(greatestThatIsRead, largeBytes));
    const Outcome outcome = run({"show", large.fileName()});
    EXPECT_EQ(outcome.exitCode, 7);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(
        outcome.err, "scard: " + large.fileName().toStdString() +
                         " says of no tachograph card that it is its download.\n"
                         "scard records FILE lists what is in it.\n");
}

TEST(LargeFileProgramTest, ThousandsOfRecordsAreListed)
{
    constexpr qint64 records = 20000;
    const QTemporaryDir folder;
    QFile file(folder.filePath("many.ddd"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    writeRecords(file, recordHeader(0x0500, 0, 0), records * 5);
    const Outcome outcome = run({"records", file.fileName()});
    EXPECT_EQ(outcome.exitCode, 7);
    EXPECT_THAT(
        outcome.out,
        testing::HasSubstr("\n20000 records, 0 signatures, 100000 bytes, 0 behind the last record\n"));
    constexpr qint64 headline = 1;
    constexpr qint64 lastLines = 2;
    EXPECT_EQ(std::count(outcome.out.begin(), outcome.out.end(), '\n'), headline + records + lastLines);
    EXPECT_EQ(
        outcome.err, "scard: " + file.fileName().toStdString() + " has no record of a tachograph card.\n");
}

} // namespace
