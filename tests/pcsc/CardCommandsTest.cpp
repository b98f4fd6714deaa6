// One command at a time: the bytes that go to the card, and what becomes of its answer.
#include "CardInReader.h"

#include <support/DebugStream.h>
#include <support/ErrorChain.h>

#include <gmock/gmock.h>

#include <array>

namespace {

using namespace test;
using standin::Function;
using testing::ElementsAre;
using testing::IsEmpty;

const std::string tacho("\xFFTACHO", 6);
const std::string smrdt("\xFFSMRDT", 6);

class CardCommandsTest : public CardInReader
{
  protected:
    CardCommandsTest() : generic(connect(), QDateTime::currentDateTimeUtc(), scard::RegionDDD)
    {
        QObject::connect(&generic, &scard::SCardGeneric::removed, [this] { ++removed; });
        DebugStream::clear();
    }

    /// Selects an EF of the first generation without a trace.
    void select(unsigned short fid)
    {
        ASSERT_THAT(chain(generic.ScSelectFile(tacho)), IsEmpty());
        ASSERT_THAT(chain(generic.ScSelectFile(fid)), IsEmpty());
        card().clearLog();
        DebugStream::clear();
    }

    void answerNext(const sim::Bytes& bytes) { card().failAt(card().commandCount(), sim::Fault::raw(bytes)); }

    void refuseNext(unsigned short word) { card().failAt(card().commandCount(), sim::Fault::status(word)); }

    aux::Error transfer()
    {
        std::array<unsigned char, 5> command{0x00, 0x84, 0x00, 0x00, 0x08};
        received = answer.size();
        return generic.ScDataTransfer(command.data(), command.size(), answer.data(), received);
    }

    scard::SCardGeneric generic;
    std::array<unsigned char, 300> answer{};
    unsigned long received = 0;
    int removed = 0;
};

TEST_F(CardCommandsTest, TransferGivesTheDataWithoutTheStatusWord)
{
    answerNext({0x01, 0x02, 0x03, 0x90, 0x00});
    EXPECT_THAT(chain(transfer()), IsEmpty());
    EXPECT_EQ(received, 3u);
    EXPECT_EQ(answer[2], 0x03);
    EXPECT_THAT(commands(), ElementsAre("00 84 00 00 08"));
    EXPECT_EQ(pcsc().calls().back().protocols, DWORD{SCARD_PROTOCOL_T1});
    EXPECT_EQ(pcsc().calls().back().capacity, 300u);
}

TEST_F(CardCommandsTest, StatusWord90E4IsSuccessLike9000)
{
    answerNext({0x07, 0x90, 0xE4});
    EXPECT_THAT(chain(transfer()), IsEmpty());
    EXPECT_EQ(received, 1u);
}

TEST_F(CardCommandsTest, EachOtherStatusWordIsTheErrorsId)
{
    for (const unsigned int word :
         {0x6281u, 0x6282u, 0x6300u, 0x63C4u, 0x6400u, 0x6500u, 0x6581u, 0x6688u, 0x6700u,
          0x6881u, 0x6882u, 0x6883u, 0x6900u, 0x6982u, 0x6983u, 0x6985u, 0x6986u, 0x6987u,
          0x6988u, 0x6A80u, 0x6A81u, 0x6A82u, 0x6A86u, 0x6A87u, 0x6A88u, 0x6B00u, 0x6C05u,
          0x6D00u, 0x6E00u, 0x6F00u, 0x6110u, 0x9001u, 0x90E3u}) {
        SCOPED_TRACE(word);
        DebugStream::clear();
        refuseNext(static_cast<unsigned short>(word));
        EXPECT_THAT(chain(transfer()), ElementsAre(lib("ScDataTransfer failed", word)));
        EXPECT_EQ(received, 0u);
        EXPECT_THAT(
            DebugStream::lines(),
            ElementsAre(QStringLiteral("ScDataTransfer: Status: ") + QString::number(word, 16)));
    }
    EXPECT_EQ(removed, 0);
}

TEST_F(CardCommandsTest, AnAnswerOfLessThanTwoBytesIsAnError)
{
    for (const sim::Bytes& bytes : {sim::Bytes{}, sim::Bytes{0x90}}) {
        answerNext(bytes);
        EXPECT_THAT(chain(transfer()), ElementsAre(lib("ScDataTransfer: answer without status word")));
        EXPECT_EQ(received, 0u);
    }
}

TEST_F(CardCommandsTest, ARemovedCardIsToldBySignalAndError)
{
    card().pull();
    EXPECT_THAT(
        chain(transfer()),
        ElementsAre(test::pcsc("ScDataTransfer SCardTransmit() Failed", SCARD_W_REMOVED_CARD)));
    EXPECT_EQ(removed, 1);
}

TEST_F(CardCommandsTest, OtherFailuresOfTheReaderAreNoRemoval)
{
    for (const LONG code :
         {SCARD_E_NOT_TRANSACTED, SCARD_E_NO_SMARTCARD, SCARD_W_RESET_CARD, SCARD_E_NO_SERVICE,
          SCARD_E_INVALID_HANDLE, SCARD_E_PROTO_MISMATCH, SCARD_E_INSUFFICIENT_BUFFER, SCARD_F_COMM_ERROR,
          SCARD_E_READER_UNAVAILABLE}) {
        pcsc().failCall(Function::Transmit, pcsc().count(Function::Transmit), code);
        EXPECT_THAT(
            chain(transfer()), ElementsAre(test::pcsc("ScDataTransfer SCardTransmit() Failed", code)));
        EXPECT_EQ(received, 0u);
    }
    EXPECT_EQ(removed, 0);
}

TEST_F(CardCommandsTest, SelectByFid)
{
    generic.ScSelectFile(tacho);
    EXPECT_THAT(chain(generic.ScSelectFile(0x0502)), IsEmpty());
    EXPECT_EQ(commands().back(), "00 A4 02 0C 02 05 02");
    EXPECT_EQ(pcsc().calls().back().capacity, 32u);
    EXPECT_TRUE(DebugStream::contains("ScSelectFile: ID: 502"));
}

TEST_F(CardCommandsTest, SelectByFidRefused)
{
    EXPECT_THAT(
        chain(generic.ScSelectFile(0x0502)),
        ElementsAre(lib("ScDataTransfer failed", 0x6A82), lib("ScSelectFile Failed: By ID502", 0x6A82)));
}

TEST_F(CardCommandsTest, SelectByName)
{
    EXPECT_THAT(chain(generic.ScSelectFile(tacho)), IsEmpty());
    EXPECT_THAT(commands(), ElementsAre("00 A4 04 0C 06 FF 54 41 43 48 4F"));
    EXPECT_TRUE(DebugStream::contains(QStringLiteral("ScSelectFile: Name: \u00FFTACHO")));
    EXPECT_EQ(pcsc().calls().back().capacity, 32u);
}

TEST_F(CardCommandsTest, SelectByNameRefused)
{
    EXPECT_THAT(
        chain(generic.ScSelectFile(smrdt)),
        ElementsAre(
            lib("ScDataTransfer failed", 0x6A82), lib("ScSelectFile Failed: By Name\xC3\xBFSMRDT", 0x6A82)));
    EXPECT_THAT(commands(), ElementsAre("00 A4 04 0C 06 FF 53 4D 52 44 54"));
}

TEST_F(CardCommandsTest, AShorterNameIsSentWithItsLength)
{
    generic.ScSelectFile(std::string("AB"));
    EXPECT_THAT(commands(), ElementsAre("00 A4 04 0C 02 41 42"));
}

TEST_F(CardCommandsTest, ANameOfMoreThanSixBytesIsNotSent)
{
    EXPECT_THAT(
        chain(generic.ScSelectFile(std::string("TACHOGRAPH"))),
        ElementsAre(lib("ScSelectFile(): application name too long")));
    EXPECT_THAT(commands(), IsEmpty());
}

TEST_F(CardCommandsTest, ReadBinary)
{
    select(0x0520);
    received = answer.size();
    EXPECT_THAT(chain(generic.ScReadFile(0x0002, 100, answer.data(), received)), IsEmpty());
    EXPECT_EQ(received, 100u);
    EXPECT_THAT(commands(), ElementsAre("00 B0 00 02 64"));
    EXPECT_EQ(answer[0], (*card().file(sim::AidG1, 0x0520))[2]);
    EXPECT_EQ(pcsc().calls().back().capacity, 300u);
}

TEST_F(CardCommandsTest, ReadBinaryThatGivesLessThanAskedFails)
{
    select(0x0520);
    card().failAt(0, sim::Fault::shortAnswer(99));
    received = answer.size();
    EXPECT_THAT(
        chain(generic.ScReadFile(0, 100, answer.data(), received)),
        ElementsAre(lib("ScReadFile: Received data size does not match exptectation")));
    EXPECT_EQ(received, 99u);
}

TEST_F(CardCommandsTest, ReadBinaryThatGivesMoreThanAskedFails)
{
    select(0x0520);
    card().failAt(0, sim::Fault::longAnswer(3));
    received = answer.size();
    EXPECT_THAT(
        chain(generic.ScReadFile(0, 100, answer.data(), received)),
        ElementsAre(lib("ScReadFile: Received data size does not match exptectation")));
    EXPECT_EQ(received, 103u);
}

TEST_F(CardCommandsTest, ReadBinaryRefused)
{
    received = answer.size();
    EXPECT_THAT(
        chain(generic.ScReadFile(0x1234, 1, answer.data(), received)),
        ElementsAre(lib("ScDataTransfer failed", 0x6986), lib("ScReadFile Failed ", 0x6986)));
    EXPECT_THAT(commands(), ElementsAre("00 B0 12 34 01"));
}

TEST_F(CardCommandsTest, LargeReadSendsTheShortestOffset)
{
    const struct
    {
        unsigned short offset;
        const char* command;
    } rows[] = {
        {0, "00 B1 00 00 03 54 01 00 00"},
        {255, "00 B1 00 00 03 54 01 FF 00"},
        {256, "00 B1 00 00 04 54 02 01 00 00"},
        {0xFFFF, "00 B1 00 00 04 54 02 FF FF 00"},
    };
    for (const auto& row : rows) {
        card().clearLog();
        received = answer.size();
        generic.ScReadLargeFile(row.offset, 200, answer.data(), received);
        EXPECT_THAT(commands(), ElementsAre(row.command));
    }
}

TEST_F(CardCommandsTest, LargeReadStripsTheHeaderOfTheDataObject)
{
    const struct
    {
        const char* what;
        sim::Bytes answer;
        sim::Bytes data;
    } rows[] = {
        {"one byte of length", {0x53, 0x02, 0xAA, 0xBB, 0x90, 0x00}, {0xAA, 0xBB}},
        {"two bytes of length", {0x53, 0x81, 0x02, 0xAA, 0xBB, 0x90, 0x00}, {0xAA, 0xBB}},
        {"three bytes of length", {0x53, 0x82, 0x00, 0x02, 0xAA, 0xBB, 0x90, 0x00}, {0xAA, 0xBB}},
        {"another tag loses two bytes all the same", {0x11, 0x22, 0x33, 0x90, 0x00}, {0x33}},
        {"a length that lies is not looked at", {0x53, 0x7F, 0xAA, 0x90, 0x00}, {0xAA}},
        {"a header cut short", {0x53, 0x82, 0x01, 0x90, 0x00}, {}},
        {"one byte only", {0x53, 0x90, 0x00}, {}},
        {"nothing at all", {0x90, 0x00}, {}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        answerNext(row.answer);
        received = answer.size();
        EXPECT_THAT(chain(generic.ScReadLargeFile(0, 255, answer.data(), received)), IsEmpty());
        EXPECT_EQ(sim::Bytes(answer.data(), answer.data() + received), row.data);
    }
}

TEST_F(CardCommandsTest, LargeReadRefused)
{
    refuseNext(0x6D00);
    received = answer.size();
    EXPECT_THAT(
        chain(generic.ScReadLargeFile(0, 255, answer.data(), received)),
        ElementsAre(lib("ScDataTransfer failed", 0x6D00), lib("ScReadLargeFile Failed ", 0x6D00)));
}

TEST_F(CardCommandsTest, UpdateBinary)
{
    select(0x050E);
    const std::array<unsigned char, 4> data{0x65, 0xE6, 0x60, 0x80};
    received = answer.size();
    EXPECT_THAT(chain(generic.ScWriteFile(0, 4, data.data(), answer.data(), received)), IsEmpty());
    EXPECT_EQ(received, 0u);
    EXPECT_THAT(commands(), ElementsAre("00 D6 00 00 04 65 E6 60 80"));
    EXPECT_EQ(*card().file(sim::AidG1, 0x050E), (sim::Bytes{0x65, 0xE6, 0x60, 0x80}));
}

TEST_F(CardCommandsTest, UpdateBinaryRefused)
{
    select(0x0520);
    const unsigned char data = 0;
    received = answer.size();
    EXPECT_THAT(
        chain(generic.ScWriteFile(0x0203, 1, &data, answer.data(), received)),
        ElementsAre(lib("ScDataTransfer failed", 0x6982), lib("ScWriteFile Failed ", 0x6982)));
    EXPECT_THAT(commands(), ElementsAre("00 D6 02 03 01 00"));
}

TEST_F(CardCommandsTest, WriteToSelectsAndWritesAtTheStart)
{
    generic.ScSelectFile(tacho);
    card().clearLog();
    const std::array<unsigned char, 4> data{1, 2, 3, 4};
    EXPECT_THAT(chain(generic.writeTo(0x050E, 4, data.data())), IsEmpty());
    EXPECT_THAT(commands(), ElementsAre("00 A4 02 0C 02 05 0E", "00 D6 00 00 04 01 02 03 04"));
    EXPECT_EQ(pcsc().calls().back().capacity, 8u);
}

TEST_F(CardCommandsTest, WriteToWritesTheLengthModulo256)
{
    generic.ScSelectFile(tacho);
    card().clearLog();
    const std::vector<unsigned char> data(300, 0x5A);
    generic.writeTo(0x050E, 300, data.data());
    ASSERT_EQ(commands().size(), 2u);
    EXPECT_EQ(card().log()[1].command.size(), 5u + 44u);
    EXPECT_EQ(card().log()[1].command[4], 44);
}

TEST_F(CardCommandsTest, WriteToAnEfThatIsNotThere)
{
    const unsigned char data = 0;
    EXPECT_THAT(
        chain(generic.writeTo(0x050E, 1, &data)),
        ElementsAre(
            lib("ScDataTransfer failed", 0x6A82), lib("ScSelectFile Failed: By ID50e", 0x6A82),
            lib("writeTo() ScSelectFile() Failed: ID 50e", 0x6A82)));
}

TEST_F(CardCommandsTest, WriteToAnEfThatCannotBeWritten)
{
    generic.ScSelectFile(tacho);
    const unsigned char data = 0;
    EXPECT_THAT(
        chain(generic.writeTo(0x0501, 1, &data)),
        ElementsAre(
            lib("ScDataTransfer failed", 0x6982), lib("ScWriteFile Failed ", 0x6982),
            lib("writeTo() ScReadFile() Failed: ID 501", 0x6982)));
}

} // namespace
