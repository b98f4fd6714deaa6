#include "fixtures/Image.h"
#include "QtPrinters.h"

#include <scard/records/DriverCard.h>
#include <scard/SCardGeneric.h>
#include <support/DebugStream.h>
#include <support/ErrorChain.h>

#include <gmock/gmock.h>

#include <QTemporaryDir>
#include <QTemporaryFile>

#include <array>
#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <string>

// An object on a download image: card commands, lookups and dataset readers; and the writers of images.

namespace {

using scard::RegionDDD;
using scard::SCardGeneric;
using scard::SpecificConditionRecord;
using test::Bytes;
using test::chain;
using test::Image;
using test::ImageFile;
using test::lib;
using test::thrown;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

const std::string tacho("\xFFTACHO");
const std::string smrdt("\xFFSMRDT");

class ImageCard : public SCardGeneric
{
  public:
    explicit ImageCard(const Image& image) : ImageCard(ImageFile(image)) {}
    explicit ImageCard(const Bytes& bytes) : ImageCard(ImageFile(bytes)) {}

    using SCardGeneric::addDataToRead;

  private:
    explicit ImageCard(ImageFile&& file) : SCardGeneric(file, QDateTime(), RegionDDD) {}
};

/// A first-generation image whose EF 0502 holds 31 bytes that count up from 0.
Image countingImage()
{
    return Image()
        .add(0x0005, test::dataG1, test::counted(8))
        .add(0x0502, test::dataG1, test::counted(31))
        .add(0x0502, test::signatureG1, test::counted(128));
}

/// The five bytes of a record.
Bytes bytesOf(const SpecificConditionRecord& record)
{
    Bytes bytes(sizeof record);
    std::memcpy(bytes.data(), &record, sizeof record);
    return bytes;
}

// Card commands

class SCardGenericOnImage : public testing::Test
{
  protected:
    ImageCard card{countingImage()};
    std::array<unsigned char, 32> buffer{};
    unsigned long received = buffer.size();
};

TEST_F(SCardGenericOnImage, ReadSucceedsWithoutData)
{
    EXPECT_THAT(chain(card.ScReadFile(0, 10, buffer.data(), received)), IsEmpty());
    EXPECT_EQ(received, 0U);
    EXPECT_THAT(buffer, Each(0));
}

TEST_F(SCardGenericOnImage, LargeReadSucceedsWithoutData)
{
    EXPECT_THAT(chain(card.ScReadLargeFile(0, 10, buffer.data(), received)), IsEmpty());
    EXPECT_EQ(received, 0U);
    EXPECT_THAT(buffer, Each(0));
}

TEST_F(SCardGenericOnImage, WriteSucceedsWithoutDoingAnything)
{
    const unsigned char data[] = {0xAA, 0xBB};
    EXPECT_THAT(chain(card.ScWriteFile(0, 2, data, buffer.data(), received)), IsEmpty());
    EXPECT_EQ(received, 0U);
    EXPECT_EQ((card.readFromMem<unsigned char>(0x0502, 1)), 1);
}

TEST_F(SCardGenericOnImage, HashSucceeds)
{
    EXPECT_THAT(chain(card.ScPerformHashOfFile()), IsEmpty());
}

TEST_F(SCardGenericOnImage, SignatureSucceedsWith256ZeroBytes)
{
    for (const bool secondGeneration : {false, true}) {
        std::vector<unsigned char> signature{1, 2, 3};
        EXPECT_THAT(chain(card.ScComputeSignature(secondGeneration, signature)), IsEmpty());
        EXPECT_EQ(signature, Bytes(256));
        EXPECT_EQ(card.readSignature(0x0520, secondGeneration), Bytes(256));
    }
}

TEST_F(SCardGenericOnImage, TransferHasNoReader)
{
    std::array<unsigned char, 4> command{0x80, 0x2A, 0x90, 0x00};
    EXPECT_THAT(
        chain(card.ScDataTransfer(command.data(), command.size(), buffer.data(), received)),
        ElementsAre(lib("ScDataTransfer: no scard reader assigned. Opened from file?", 0)));
}

TEST_F(SCardGenericOnImage, SelectByFidIsAnsweredFromTheImage)
{
    unsigned int length = 0;
    unsigned int start = 0;
    EXPECT_THAT(chain(card.ScSelectFile(0x0502, &length, &start)), IsEmpty());
    EXPECT_EQ(length, 31U);
    EXPECT_EQ(start, 18U);

    EXPECT_THAT(
        chain(card.ScSelectFile(0x0503, &length, &start)),
        ElementsAre(lib("memSelectFile(): Dataset not found", 0)));
    EXPECT_EQ(length, 0U);
    EXPECT_EQ(start, 0U);
    EXPECT_THAT(test::DebugStream::lines(), IsEmpty());
}

TEST_F(SCardGenericOnImage, SelectByFidNeedsBothOutValues)
{
    unsigned int value = 4711;
    const test::Chain expected{lib("memSelectFile(): invalid arguments", 0)};
    EXPECT_EQ(chain(card.ScSelectFile(0x0502, nullptr, nullptr)), expected);
    EXPECT_EQ(chain(card.ScSelectFile(0x0502, &value, nullptr)), expected);
    EXPECT_EQ(chain(card.ScSelectFile(0x0502, nullptr, &value)), expected);
    EXPECT_EQ(chain(card.memSelectFile(0x0502, &value, nullptr)), expected);
    EXPECT_EQ(chain(card.memSelectFile(0x0502, nullptr, &value)), expected);
    EXPECT_EQ(value, 4711U);
}

TEST_F(SCardGenericOnImage, SelectByNameIsAnsweredFromTheImage)
{
    EXPECT_THAT(chain(card.ScSelectFile(tacho)), IsEmpty());
    EXPECT_THAT(
        chain(card.ScSelectFile(smrdt)), ElementsAre(lib("memSelectFile(): Dataset not found", 27266)));
    EXPECT_THAT(test::DebugStream::lines(), IsEmpty());
}

TEST_F(SCardGenericOnImage, TheSelectedNameDecidesTheGenerationEvenWhenItIsNotThere)
{
    unsigned int length = 0;
    unsigned int start = 0;
    card.ScSelectFile(smrdt);
    EXPECT_THAT(
        chain(card.memSelectFile(0x0502, &length, &start)),
        ElementsAre(lib("memSelectFile(): Dataset not found", 0)));

    card.ScSelectFile(tacho);
    EXPECT_THAT(chain(card.memSelectFile(0x0502, &length, &start)), IsEmpty());
    EXPECT_EQ(length, 31U);
}

TEST_F(SCardGenericOnImage, LookingAnApplicationUpDoesNotSelectIt)
{
    unsigned int length = 0;
    unsigned int start = 0;
    card.memSelectFile(smrdt);

    EXPECT_THAT(chain(card.memSelectFile(0x0502, &length, &start)), IsEmpty());
}

TEST_F(SCardGenericOnImage, WriteToNeedsTheEf)
{
    const unsigned char data[] = {1, 2, 3, 4};
    EXPECT_THAT(chain(card.writeTo(0x0502, 4, data)), IsEmpty());
    EXPECT_THAT(
        chain(card.writeTo(0x050E, 4, data)),
        ElementsAre(
            lib("memSelectFile(): Dataset not found", 0), lib("writeTo() ScSelectFile() Failed: ID 50e", 0)));
}

TEST(SCardGenericOnImageOfBothGenerations, TheSameFidIsFoundInTheSelectedGeneration)
{
    ImageCard card(Image().add(0x0501, test::dataG1, {1, 0, 0}).add(0x0501, test::dataG2, {4, 1, 1}));

    EXPECT_EQ((card.readFrom<unsigned char>(0x0501, 0, false)), 1);

    ASSERT_THAT(chain(card.ScSelectFile(smrdt)), IsEmpty());
    EXPECT_EQ((card.readFrom<unsigned char>(0x0501, 0, false)), 4);

    ASSERT_THAT(chain(card.ScSelectFile(tacho)), IsEmpty());
    EXPECT_EQ((card.readFrom<unsigned char>(0x0501, 0, false)), 1);
}

TEST(SCardGenericOnTinyImage, ZeroToFourBytesHoldNothing)
{
    for (std::size_t size = 0; size < 5; ++size) {
        SCOPED_TRACE(size);
        ImageCard card(Bytes(size, 0x00));
        unsigned int length = 1;
        unsigned int start = 1;
        EXPECT_THAT(
            chain(card.memSelectFile(0x0000, &length, &start)),
            ElementsAre(lib("memSelectFile(): Dataset not found", 0)));
        EXPECT_EQ(length, 0U);
        EXPECT_EQ(start, 0U);
        for (const std::string& name : {tacho, smrdt})
            EXPECT_THAT(
                chain(card.ScSelectFile(name)), ElementsAre(lib("memSelectFile(): Not enough data", 27266)));
    }
}

// Dataset readers

TEST_F(SCardGenericOnImage, ARecordIsTheBytesFromTheOffsetOn)
{
    EXPECT_EQ(bytesOf(card.readFrom<SpecificConditionRecord>(0x0502, 0, true)), test::counted(5, 0));
    EXPECT_EQ(bytesOf(card.readFrom<SpecificConditionRecord>(0x0502, 26, true)), test::counted(5, 26));
    EXPECT_EQ(bytesOf(card.readFromMem<SpecificConditionRecord>(0x0502, 7)), test::counted(5, 7));
}

TEST_F(SCardGenericOnImage, AnArrayIsBlocksOfRecords)
{
    for (const bool mem : {false, true}) {
        const auto blocks = mem ? card.readFromMem<SpecificConditionRecord>(0x0502, 3, 2, 1)
                                : card.readFrom<SpecificConditionRecord>(0x0502, 3, 2, 1, true);
        ASSERT_THAT(blocks, ElementsAre(SizeIs(3), SizeIs(3)));
        unsigned char first = 1;
        for (const auto& block : blocks)
            for (const SpecificConditionRecord& record : block) {
                EXPECT_EQ(bytesOf(record), test::counted(5, first));
                first = static_cast<unsigned char>(first + 5);
            }
    }
}

TEST_F(SCardGenericOnImage, NoBlocksGiveAnEmptyResult)
{
    EXPECT_THAT((card.readFrom<SpecificConditionRecord>(0x0502, 3, 0, 0, true)), IsEmpty());
    EXPECT_THAT((card.readFromMem<SpecificConditionRecord>(0x0502, 3, 0, 31)), IsEmpty());
}

TEST_F(SCardGenericOnImage, NoBlocksStillNeedTheEf)
{
    EXPECT_THAT(
        thrown([&] { card.readFrom<SpecificConditionRecord>(0x0503, 3, 0, 0, true); }),
        ElementsAre(
            lib("memSelectFile(): Dataset not found", 0),
            lib("readFromMem() memSelectFile() Failed: ID 503", 0)));
    EXPECT_THAT(
        thrown([&] { card.readFrom<SpecificConditionRecord>(0x0502, 3, 0, 32, true); }),
        ElementsAre(lib("readFromMem() invalid dataset size:31requested:0", 6700)));
}

TEST_F(SCardGenericOnImage, BlocksOfNoRecordsAreEmpty)
{
    EXPECT_THAT(
        (card.readFrom<SpecificConditionRecord>(0x0502, 0, 3, 0, true)),
        ElementsAre(IsEmpty(), IsEmpty(), IsEmpty()));
}

TEST_F(SCardGenericOnImage, AMissingEfIsNamed)
{
    const test::Chain expected{
        lib("memSelectFile(): Dataset not found", 0),
        lib("readFromMem() memSelectFile() Failed: ID c100", 0)};

    EXPECT_EQ(thrown([&] { card.readFrom<unsigned char>(0xC100, 194, 1, 0, true); }), expected);
    EXPECT_EQ(thrown([&] { card.readFrom<unsigned char>(0xC100, 0, true); }), expected);
    EXPECT_EQ(thrown([&] { card.readFromMem<unsigned char>(0xC100, 194, 1, 0); }), expected);
    EXPECT_EQ(thrown([&] { card.readFromMem<unsigned char>(0xC100, 0); }), expected);
}

TEST_F(SCardGenericOnImage, OneByteTooFewIsRefused)
{
    const struct
    {
        const char* name;
        std::uint32_t n;
        unsigned short m;
        unsigned short offset;
        const char* text;
    } rows[] = {
        {"32 of 31 bytes", 32, 1, 0, "readFromMem() invalid dataset size:31requested:32"},
        {"in blocks", 16, 2, 0, "readFromMem() invalid dataset size:31requested:32"},
        {"by the offset", 31, 1, 1, "readFromMem() invalid dataset size:31requested:31"},
        {"offset at the end", 1, 1, 31, "readFromMem() invalid dataset size:31requested:1"},
        {"more than 16 bits hold", 0x10001, 1, 0, "readFromMem() invalid dataset size:31requested:65537"},
        {"more than 32 bits hold", 0xFFFFFFFF, 2, 0,
         "readFromMem() invalid dataset size:31requested:8589934590"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const test::Chain expected{lib(row.text, 6700)};
        EXPECT_EQ(
            thrown([&] { card.readFrom<unsigned char>(0x0502, row.n, row.m, row.offset, true); }), expected);
        EXPECT_EQ(
            thrown([&] { card.readFromMem<unsigned char>(0x0502, row.n, row.m, row.offset); }), expected);
    }
}

TEST_F(SCardGenericOnImage, ASingleRecordThatEndsBeyondTheEfIsRefused)
{
    const test::Chain expected{lib("readFromMem() invalid dataset size:31requested:5", 6700)};

    EXPECT_EQ(thrown([&] { card.readFrom<SpecificConditionRecord>(0x0502, 27, true); }), expected);
    EXPECT_EQ(thrown([&] { card.readFromMem<SpecificConditionRecord>(0x0502, 27); }), expected);
}

TEST_F(SCardGenericOnImage, ALargeDatasetIsReadToItsLastByte)
{
    ImageCard large(Image().add(0x0504, test::dataG1, test::counted(65535)));

    const auto blocks = large.readFrom<unsigned char>(0x0504, 65535, 1, 0, true);

    ASSERT_THAT(blocks, ElementsAre(SizeIs(65535)));
    EXPECT_EQ(blocks[0], test::counted(65535));
}

TEST_F(SCardGenericOnImage, ImageReadsDoNotMoveTheProgress)
{
    int emissions = 0;
    QObject::connect(&card, &SCardGeneric::progress, [&] { ++emissions; });
    card.addDataToRead(100);

    card.readFrom<unsigned char>(0x0502, 31, 1, 0, true);
    card.readFrom<unsigned char>(0x0502, 0, true);

    EXPECT_EQ(emissions, 0);
    card.emitProgress();
    EXPECT_EQ(emissions, 1);
    EXPECT_THAT(
        test::DebugStream::lines(), ElementsAre(QStringLiteral("=== Progress: 0 dataToRead: 100%:0")));
}

// Writers

class SCardGenericWriters : public testing::Test
{
  protected:
    void SetUp() override
    {
        ASSERT_TRUE(folder.isValid());
        file.setFileName(folder.filePath(QStringLiteral("written.DDD")));
    }

    Bytes written() const
    {
        QFile reader(file.fileName());
        EXPECT_TRUE(reader.open(QIODevice::ReadOnly));
        const QByteArray content = reader.readAll();
        return {content.begin(), content.end()};
    }

    QTemporaryDir folder;
    QFile file;
    SCardGeneric card{0, QDateTime(), RegionDDD};
};

TEST_F(SCardGenericWriters, RecordsCarryTheTypeOfGenerationAndKind)
{
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));

    EXPECT_THAT(chain(card.writeDatasetToFile(file, 0x0520, false, {0xA1})), IsEmpty());
    EXPECT_THAT(chain(card.writeSignatureToFile(file, 0x0520, false, {0xA2, 0xA3})), IsEmpty());
    EXPECT_THAT(chain(card.writeDatasetToFile(file, 0x0524, true, {0xB1})), IsEmpty());
    EXPECT_THAT(chain(card.writeSignatureToFile(file, 0x0524, true, {0xB2})), IsEmpty());

    EXPECT_THAT(
        written(), ElementsAre(
                       0x05, 0x20, 0x00, 0x00, 0x01, 0xA1, 0x05, 0x20, 0x01, 0x00, 0x02, 0xA2, 0xA3, 0x05,
                       0x24, 0x02, 0x00, 0x01, 0xB1, 0x05, 0x24, 0x03, 0x00, 0x01, 0xB2));
}

TEST_F(SCardGenericWriters, DataNeedsAnOpenFile)
{
    EXPECT_THAT(
        chain(card.writeDatasetToFile(file, 0x0520, false, {1})),
        ElementsAre(lib("writeDatasetToFile(): File not opened", 0)));
    EXPECT_THAT(
        chain(card.writeDatasetToFile(file, 0x0520, false, {})),
        ElementsAre(lib("writeDatasetToFile(): File not opened", 0)));
}

TEST_F(SCardGenericWriters, EmptyDataIsRefusedAndNothingIsWritten)
{
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));

    EXPECT_THAT(
        chain(card.writeDatasetToFile(file, 0x0520, false, {})),
        ElementsAre(lib("writeDatasetToFile(): no valid data", 0)));

    EXPECT_THAT(written(), IsEmpty());
}

TEST_F(SCardGenericWriters, AnEmptySignatureIsARecordOfLengthZero)
{
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));

    EXPECT_THAT(chain(card.writeSignatureToFile(file, 0x0520, false, {})), IsEmpty());
    EXPECT_THAT(chain(card.writeSignatureToFile(file, 0x0520, true, {})), IsEmpty());

    EXPECT_THAT(written(), ElementsAre(0x05, 0x20, 0x01, 0x00, 0x00, 0x05, 0x20, 0x03, 0x00, 0x00));
}

TEST_F(SCardGenericWriters, ASignatureDoesNotAskWhetherTheFileIsOpen)
{
    EXPECT_THAT(chain(card.writeSignatureToFile(file, 0x0520, false, {1, 2, 3})), IsEmpty());

    EXPECT_FALSE(file.exists());
}

TEST_F(SCardGenericWriters, MoreThan65535BytesAreWrittenWhole)
{
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    const Bytes payload = test::counted(65836);

    EXPECT_THAT(chain(card.writeDatasetToFile(file, 0x0504, true, payload)), IsEmpty());
    EXPECT_THAT(chain(card.writeSignatureToFile(file, 0x0504, true, payload)), IsEmpty());

    Bytes expected{0x05, 0x04, 0x02, 0x01, 0x2C};
    expected.insert(expected.end(), payload.begin(), payload.end());
    const Bytes signature{0x05, 0x04, 0x03, 0x01, 0x2C};
    expected.insert(expected.end(), signature.begin(), signature.end());
    expected.insert(expected.end(), payload.begin(), payload.end());
    EXPECT_EQ(written(), expected);
}

TEST_F(SCardGenericWriters, WhatIsWrittenCanBeLoaded)
{
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    ASSERT_TRUE(card.writeDatasetToFile(file, 0x0502, true, test::counted(300)).isEmpty());
    ASSERT_TRUE(card.writeSignatureToFile(file, 0x0502, true, test::counted(64)).isEmpty());
    ASSERT_TRUE(card.writeDatasetToFile(file, 0x0503, true, test::counted(65535)).isEmpty());

    SCardGeneric loaded(file, QDateTime(), RegionDDD);

    ASSERT_THAT(chain(loaded.ScSelectFile(smrdt)), IsEmpty());
    EXPECT_EQ((loaded.readFrom<unsigned char>(0x0502, 300, 1, 0, false)[0]), test::counted(300));
    EXPECT_EQ((loaded.readFrom<unsigned char>(0x0503, 65535, 1, 0, false)[0]), test::counted(65535));
}

class ThrowingFile : public QTemporaryFile
{
  protected:
    qint64 writeData(const char*, qint64) override { throw std::runtime_error("disk on fire"); }
};

TEST_F(SCardGenericWriters, AnExceptionOfTheFileLayerBecomesAnError)
{
    ThrowingFile throwing;
    ASSERT_TRUE(throwing.open());

    EXPECT_THAT(
        chain(card.writeDatasetToFile(throwing, 0x0520, false, {1})),
        ElementsAre(lib("writeDatasetToFile() write failed: disk on fire", 0)));
    EXPECT_THAT(
        chain(card.writeSignatureToFile(throwing, 0x0520, false, {1})),
        ElementsAre(lib("writeSignatureToFile() write failed: disk on fire", 0)));
}

TEST_F(SCardGenericWriters, AFullDiskBecomesAnError)
{
    QFile full(QStringLiteral("/dev/full"));
    ASSERT_TRUE(full.open(QIODevice::WriteOnly));
    const std::string reason = qt_error_string(ENOSPC).toStdString();

    EXPECT_THAT(
        chain(card.writeDatasetToFile(full, 0x0520, false, {1})),
        ElementsAre(lib("writeDatasetToFile() write failed: " + reason, 0)));
    EXPECT_THAT(
        chain(card.writeSignatureToFile(full, 0x0520, false, {1})),
        ElementsAre(lib("writeSignatureToFile() write failed: " + reason, 0)));
}

} // namespace
