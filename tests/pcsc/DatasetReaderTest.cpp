// Typed datasets from the card: chunks, the large read, progress, and cards that do not play by the rules.
#include "CardInReader.h"

#include <scard/records/DriverCard.h>
#include <support/DebugStream.h>
#include <support/ErrorChain.h>

#include <gmock/gmock.h>

namespace {

using namespace test;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr unsigned short fid = 0x050A;

/// Gives the progress arithmetic a total without a card class.
class CardWithTotal : public scard::SCardGeneric
{
  public:
    using SCardGeneric::addDataToRead;
    using SCardGeneric::SCardGeneric;
};

/// A card with one EF of the first generation, byte i holding i / 7.
class DatasetReaderTest : public CardInReader
{
  protected:
    void useFile(std::size_t length, const std::function<void(sim::Switches&)>& change = {})
    {
        content.resize(length);
        for (std::size_t i = 0; i < length; ++i)
            content[i] = static_cast<std::uint8_t>(i / 7);
        sim::FileDescription file;
        file.fid = fid;
        file.content = content;
        sim::ApplicationDescription application;
        application.aid = sim::AidG1;
        application.files = {file};
        sim::CardDescription description;
        description.atr = sim::DefaultAtr;
        description.applications = {application};
        description.switches.oddReadRefused.reset();
        if (change)
            change(description.switches);
        insert(description);
        generic =
            std::make_unique<CardWithTotal>(connect(), QDateTime::currentDateTimeUtc(), scard::RegionDDD);
        QObject::connect(generic.get(), &scard::SCardGeneric::progress, [this](int percent) {
            progress.push_back(percent);
        });
        generic->ScSelectFile(std::string("\xFFTACHO", 6));
        card().clearLog();
        DebugStream::clear();
    }

    std::vector<unsigned char>
    read(std::uint32_t length, unsigned short offset = 0, bool countProgress = false)
    {
        return generic->readFrom<unsigned char>(fid, length, 1, offset, countProgress).at(0);
    }

    sim::Bytes part(std::size_t offset, std::size_t length) const
    {
        return sim::slice(content, offset, length);
    }

    std::size_t readsByOddInstruction() const
    {
        std::size_t count = 0;
        for (const std::string& command : commands())
            count += command.rfind("00 B1", 0) == 0;
        return count;
    }

    sim::Bytes content;
    std::unique_ptr<CardWithTotal> generic;
    std::vector<int> progress;
};

TEST_F(DatasetReaderTest, ThreeHundredBytesAreReadAs255And45)
{
    useFile(300);
    EXPECT_EQ(read(300), content);
    EXPECT_THAT(commands(), ElementsAre("00 A4 02 0C 02 05 0A", "00 B0 00 00 FF", "00 B0 00 FF 2D"));
}

TEST_F(DatasetReaderTest, BuffersHoldWhatIsLeftAndFiveBytesMore)
{
    useFile(300);
    read(300);
    const auto& calls = pcsc().calls();
    EXPECT_EQ(calls[calls.size() - 2].capacity, 305u);
    EXPECT_EQ(calls.back().capacity, 50u);
}

TEST_F(DatasetReaderTest, AnOffsetMovesEachChunk)
{
    useFile(400);
    EXPECT_EQ(read(300, 3), part(3, 300));
    EXPECT_THAT(commands(), ElementsAre("00 A4 02 0C 02 05 0A", "00 B0 00 03 FF", "00 B0 01 02 2D"));
}

TEST_F(DatasetReaderTest, AnEmptyDatasetIsSelectedAndNotRead)
{
    useFile(10);
    EXPECT_THAT(read(0), IsEmpty());
    EXPECT_THAT(commands(), ElementsAre("00 A4 02 0C 02 05 0A"));
}

TEST_F(DatasetReaderTest, NoBlocksGiveAnEmptyResultAfterSelecting)
{
    useFile(10);
    EXPECT_THAT((generic->readFrom<scard::CardEventRecord>(fid, 12, 0, 0, false)), IsEmpty());
    EXPECT_THAT(commands(), ElementsAre("00 A4 02 0C 02 05 0A"));
}

TEST_F(DatasetReaderTest, RecordsFallIntoBlocks)
{
    useFile(6 * 5);
    const auto blocks = generic->readFrom<scard::SpecificConditionRecord>(fid, 2, 3, 0, false);
    ASSERT_THAT(blocks, SizeIs(3));
    for (std::size_t block = 0; block < 3; ++block) {
        ASSERT_THAT(blocks[block], SizeIs(2));
        for (std::size_t record = 0; record < 2; ++record) {
            const std::size_t position = (block * 2 + record) * 5;
            EXPECT_EQ(blocks[block][record].entryTime.bytes[0], content[position]);
            EXPECT_EQ(blocks[block][record].specificConditionType, content[position + 4]);
        }
    }
}

TEST_F(DatasetReaderTest, OneRecordAtAnOffset)
{
    useFile(40);
    const auto record = generic->readFrom<scard::CardEventRecord>(fid, 14, false);
    EXPECT_EQ(record.eventType, content[14]);
    EXPECT_THAT(commands(), ElementsAre("00 A4 02 0C 02 05 0A", "00 B0 00 0E 18"));
}

TEST_F(DatasetReaderTest, OneByteBelow32768TheOrdinaryReadIsUsed)
{
    useFile(32767);
    EXPECT_EQ(read(32767), content);
    EXPECT_EQ(readsByOddInstruction(), 0u);
    EXPECT_THAT(commands(), SizeIs(1 + 129));
}

TEST_F(DatasetReaderTest, From32768OnTheLargeReadIsUsed)
{
    useFile(32768);
    EXPECT_EQ(read(32768), content);
    EXPECT_EQ(readsByOddInstruction(), commands().size() - 1);
    EXPECT_EQ(commands()[1], "00 B1 00 00 03 54 01 00 00");
    EXPECT_EQ(commands()[2], "00 B1 00 00 03 54 01 FD 00"); // an answer holds 253 bytes
    EXPECT_EQ(commands()[3], "00 B1 00 00 04 54 02 01 FA 00");
}

TEST_F(DatasetReaderTest, TheLargeReadReaches65535Bytes)
{
    useFile(65535);
    EXPECT_EQ(read(65535), content);
}

TEST_F(DatasetReaderTest, ALargeReadThatIsRefusedAtTheEndNamesTheFid)
{
    useFile(40000, [](sim::Switches& switches) { switches.oddEnd = sim::Switches::OddEnd::Refuse; });
    const Chain failure = thrown([this] { read(40000); });
    EXPECT_THAT(
        failure, ElementsAre(
                     lib("ScDataTransfer failed", 0x6700), lib("ScReadLargeFile Failed ", 0x6700),
                     lib("readFrom() ScReadLargeFile() Failed: ID 50a", 0x6700)));
}

TEST_F(DatasetReaderTest, ALastAnswerWithALongHeaderDoesNotFitTheBuffer)
{
    useFile(40000, [](sim::Switches& switches) { switches.oddHeader = sim::Switches::OddHeader::TwoBytes; });
    const Chain failure = thrown([this] { read(40000); });
    ASSERT_THAT(failure, SizeIs(3));
    EXPECT_EQ(failure[0], test::pcsc("ScDataTransfer SCardTransmit() Failed", SCARD_E_INSUFFICIENT_BUFFER));
    EXPECT_EQ(commands().back(), "00 B1 00 00 04 54 02 9B 88 00"); // the 159th answer of 252 bytes
}

TEST_F(DatasetReaderTest, ACardWithoutTheLargeReadIsToldWithTheFid)
{
    useFile(40000, [](sim::Switches& switches) { switches.oddReadRefused = 0x6D00; });
    EXPECT_THAT(
        thrown([this] { read(40000); }),
        ElementsAre(
            lib("ScDataTransfer failed", 0x6D00), lib("ScReadLargeFile Failed ", 0x6D00),
            lib("readFrom() ScReadLargeFile() Failed: ID 50a", 0x6D00)));
}

TEST_F(DatasetReaderTest, ALargeReadWithoutDataEndsTheDownload)
{
    useFile(40000);
    for (const sim::Bytes& answer : {sim::Bytes{0x90, 0x00}, sim::Bytes{0x53, 0x00, 0x90, 0x00}}) {
        card().clearLog();
        card().failAt(2, sim::Fault::raw(answer));
        EXPECT_THAT(thrown([this] { read(40000); }), ElementsAre(lib("readFrom() no data received: ID 50a")));
        EXPECT_THAT(commands(), SizeIs(3));
    }
}

TEST_F(DatasetReaderTest, AReadWithoutDataEndsTheDownload)
{
    useFile(300);
    card().failAt(1, sim::Fault::raw({0x90, 0x00}));
    EXPECT_THAT(
        thrown([this] { read(300); }), ElementsAre(
                                           lib("ScReadFile: Received data size does not match exptectation"),
                                           lib("readFrom() ScReadFile() Failed: ID 50a")));
}

TEST_F(DatasetReaderTest, ADatasetThatAPositionCannotReachIsRefused)
{
    useFile(10);
    for (const std::uint32_t length : {65536u, 0x80000000u, 0xFFFFFFFFu}) {
        EXPECT_THAT(
            thrown([&] { read(length); }),
            ElementsAre(lib("readFrom() dataset exceeds 65535 bytes: ID 50a")));
    }
    EXPECT_THAT(
        thrown([&] { generic->readFrom<scard::CardEventRecord>(fid, 0xFFFFFFFF, 0xFFFF, 0, false); }),
        ElementsAre(lib("readFrom() dataset exceeds 65535 bytes: ID 50a")));
    EXPECT_THAT(commands(), Each("00 A4 02 0C 02 05 0A"));
}

TEST_F(DatasetReaderTest, AnAnswerThatPassesTheLastPositionIsRefused)
{
    useFile(65535);
    // 259 answers of 253 bytes leave 8; the last one brings 9.
    sim::Bytes answer{0x53, 0x09};
    answer.resize(2 + 9);
    sim::appendU16(answer, 0x9000);
    card().failAt(1 + 259, sim::Fault::raw(answer));
    EXPECT_THAT(
        thrown([this] { read(65535); }), ElementsAre(lib("readFrom() answer passes 65535 bytes: ID 50a")));
}

TEST_F(DatasetReaderTest, AnAnswerLongerThanTheBufferIsRefusedByTheReader)
{
    useFile(40000);
    const std::size_t last = 1 + 40000 / 253;
    card().failAt(last, sim::Fault::longAnswer(10));
    const Chain failure = thrown([this] { read(40000); });
    ASSERT_THAT(failure, SizeIs(3));
    EXPECT_EQ(failure[0], test::pcsc("ScDataTransfer SCardTransmit() Failed", SCARD_E_INSUFFICIENT_BUFFER));
    EXPECT_EQ(failure[2], lib("readFrom() ScReadLargeFile() Failed: ID 50a"));
}

TEST_F(DatasetReaderTest, ASlowCardGivesOneByteAtATimeAndStillEnds)
{
    useFile(32768);
    std::size_t index = 1;
    for (; index <= 100; ++index)
        card().failAt(index, sim::Fault::raw({0x53, 0x01, 0x5A, 0x90, 0x00}));
    const std::vector<unsigned char> data = read(32768);
    EXPECT_EQ(data[99], 0x5A);
    EXPECT_EQ(sim::Bytes(data.begin() + 100, data.end()), part(100, 32668));
}

TEST_F(DatasetReaderTest, ARefusedSelectNamesTheFid)
{
    useFile(10);
    EXPECT_THAT(
        thrown([this] { generic->readFrom<unsigned char>(0x0504, 1, 1, 0, false); }),
        ElementsAre(
            lib("ScDataTransfer failed", 0x6A82), lib("ScSelectFile Failed: By ID504", 0x6A82),
            lib("readFrom() ScSelectFile() Failed: ID 504", 0x6A82)));
}

TEST_F(DatasetReaderTest, ProgressCountsWhatArrives)
{
    useFile(600);
    generic->addDataToRead(600);
    read(600, 0, true);
    EXPECT_THAT(progress, ElementsAre(42, 85, 100));
    EXPECT_TRUE(DebugStream::contains("=== Progress: 255 dataToRead: 600%:42"));
}

TEST_F(DatasetReaderTest, ProgressIsNotClamped)
{
    useFile(600);
    generic->addDataToRead(200);
    read(600, 0, true);
    EXPECT_THAT(progress, ElementsAre(127, 255, 300));
}

TEST_F(DatasetReaderTest, ReadsThatDoNotCountGiveNoProgress)
{
    useFile(600);
    generic->addDataToRead(600);
    read(600, 0, false);
    EXPECT_THAT(progress, IsEmpty());
}

TEST_F(DatasetReaderTest, WithNothingToReadThereIsNoProgress)
{
    useFile(600);
    read(600, 0, true);
    EXPECT_THAT(progress, IsEmpty());
    EXPECT_FALSE(DebugStream::lines().join('\n').contains("Progress"));
}

TEST_F(DatasetReaderTest, ANewTotalStartsTheProgressAgain)
{
    useFile(600);
    generic->addDataToRead(600);
    read(600, 0, true);
    progress.clear();
    generic->calcDataToRead();
    generic->addDataToRead(600);
    read(600, 0, true);
    EXPECT_THAT(progress, ElementsAre(42, 85, 100));
}

} // namespace
