#include "fixtures/Image.h"
#include "QtPrinters.h"

#include <scard/detail/RecordWriter.h>

#include <gmock/gmock.h>

#include <QTemporaryDir>
#include <QTemporaryFile>

#include <algorithm>
#include <cerrno>
#include <stdexcept>

namespace {

using namespace scard::detail;
using scard::RecordType;
using test::Bytes;

Bytes contentOf(const QString& path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray content = file.readAll();
    return {content.begin(), content.end()};
}

class RecordWriter : public testing::Test
{
  protected:
    void SetUp() override
    {
        ASSERT_TRUE(folder.isValid());
        path = folder.filePath(QStringLiteral("records"));
        file.setFileName(path);
    }

    QTemporaryDir folder;
    QString path;
    QFile file;
};

TEST_F(RecordWriter, WritesHeaderAndPayload)
{
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));

    EXPECT_TRUE(appendRecord(file, 0xC108, RecordType::SignatureG2, {0xAA, 0x00, 0xBB}).isNull());

    EXPECT_EQ(contentOf(path), (Bytes{0xC1, 0x08, 0x03, 0x00, 0x03, 0xAA, 0x00, 0xBB}));
}

TEST_F(RecordWriter, AppendsBehindWhatIsThere)
{
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));

    EXPECT_TRUE(appendRecord(file, 0x0002, RecordType::DataG1, {0x01}).isNull());
    EXPECT_TRUE(appendRecord(file, 0x0005, RecordType::DataG2, {0x02}).isNull());

    EXPECT_EQ(
        contentOf(path), (Bytes{0x00, 0x02, 0x00, 0x00, 0x01, 0x01, 0x00, 0x05, 0x02, 0x00, 0x01, 0x02}));
}

TEST_F(RecordWriter, AnEmptyPayloadMakesARecordOfFiveBytes)
{
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));

    EXPECT_TRUE(appendRecord(file, 0x0520, RecordType::SignatureG1, {}).isNull());

    EXPECT_EQ(contentOf(path), (Bytes{0x05, 0x20, 0x01, 0x00, 0x00}));
}

TEST_F(RecordWriter, APayloadThatTheLengthFieldCannotHoldIsWrittenWhole)
{
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    const Bytes payload = test::counted(65836);

    EXPECT_TRUE(appendRecord(file, 0x0504, RecordType::DataG1, payload).isNull());

    Bytes expected{0x05, 0x04, 0x00, 0x01, 0x2C};
    expected.insert(expected.end(), payload.begin(), payload.end());
    EXPECT_EQ(contentOf(path), expected);
}

TEST_F(RecordWriter, AClosedFileTakesNothing)
{
    EXPECT_TRUE(appendRecord(file, 0x0520, RecordType::DataG1, {1, 2, 3}).isNull());

    EXPECT_FALSE(file.exists());
}

TEST(RecordWriterFailure, AFullDiskShowsItselfAtOnce)
{
    QFile full(QStringLiteral("/dev/full"));
    ASSERT_TRUE(full.open(QIODevice::WriteOnly));

    EXPECT_EQ(appendRecord(full, 0x0520, RecordType::DataG1, {1, 2, 3}), qt_error_string(ENOSPC));
}

TEST(RecordWriterFailure, AFullDiskShowsItselfForALargeRecordToo)
{
    QFile full(QStringLiteral("/dev/full"));
    ASSERT_TRUE(full.open(QIODevice::WriteOnly));

    EXPECT_EQ(appendRecord(full, 0x0504, RecordType::DataG1, Bytes(60000)), qt_error_string(ENOSPC));
}

class ThrowingFile : public QTemporaryFile
{
  public:
    explicit ThrowingFile(const char* text) : m_text(text) {}

  protected:
    qint64 writeData(const char*, qint64) override { throw std::runtime_error(m_text); }

  private:
    const char* m_text;
};

TEST(RecordWriterFailure, AnExceptionOfTheFileLayerIsTheReason)
{
    ThrowingFile file("disk on fire");
    ASSERT_TRUE(file.open());

    EXPECT_EQ(appendRecord(file, 0x0520, RecordType::DataG1, {1}), QStringLiteral("disk on fire"));
}

TEST(RecordWriterFailure, AnExceptionWithoutWordsIsAFailureToo)
{
    ThrowingFile file("");
    ASSERT_TRUE(file.open());

    const QString reason = appendRecord(file, 0x0520, RecordType::DataG1, {1});

    EXPECT_FALSE(reason.isNull());
    EXPECT_EQ(reason, QString());
}

/// Takes a few bytes at a time, until there is no more room.
class NarrowFile : public QTemporaryFile
{
  public:
    NarrowFile(qint64 atOnce, qint64 room) : m_atOnce(atOnce), m_room(room) {}

    Bytes taken;

  protected:
    qint64 writeData(const char* data, qint64 length) override
    {
        const qint64 count = std::min({length, m_atOnce, m_room});
        if (count == 0) {
            setErrorString(QStringLiteral("no more room"));
            return -1;
        }
        taken.insert(taken.end(), data, data + count);
        m_room -= count;
        return count;
    }

  private:
    qint64 m_atOnce;
    qint64 m_room;
};

TEST(RecordWriterFailure, AFileThatTakesAFewBytesAtATimeGetsThemAll)
{
    for (const qint64 atOnce : {1, 2, 3, 7}) {
        SCOPED_TRACE(atOnce);
        NarrowFile file(atOnce, 100);
        ASSERT_TRUE(file.open());

        EXPECT_TRUE(appendRecord(file, 0x0520, RecordType::DataG1, {0xAA, 0xBB, 0xCC, 0xDD}).isNull());

        EXPECT_EQ(file.taken, (Bytes{0x05, 0x20, 0x00, 0x00, 0x04, 0xAA, 0xBB, 0xCC, 0xDD}));
    }
}

TEST(RecordWriterFailure, AFileWithRoomForAPartIsAFailureAndGivesItsReason)
{
    for (qint64 room = 0; room < 9; ++room) {
        SCOPED_TRACE(room);
        NarrowFile file(100, room);
        ASSERT_TRUE(file.open());

        EXPECT_EQ(
            appendRecord(file, 0x0520, RecordType::DataG1, {0xAA, 0xBB, 0xCC, 0xDD}),
            QStringLiteral("no more room"));

        EXPECT_EQ(file.taken.size(), static_cast<std::size_t>(room));
    }
}

class StubbornFile : public QTemporaryFile
{
  protected:
    qint64 writeData(const char*, qint64) override { return 0; }
};

TEST(RecordWriterFailure, AFileThatTakesNothingIsAFailureAndNoEndlessLoop)
{
    StubbornFile file;
    ASSERT_TRUE(file.open());

    EXPECT_FALSE(appendRecord(file, 0x0520, RecordType::DataG1, {1, 2}).isNull());
}

} // namespace
