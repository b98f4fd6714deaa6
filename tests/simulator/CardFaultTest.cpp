// What a test can do to a card: faults at a chosen command, pulling, the log, delays, a look into its files.

#include "Card.h"
#include "DriverCard.h"
#include "RowName.h"

#include <gtest/gtest.h>

namespace {

using sim::Bytes;
using sim::Card;
using sim::Fault;
using sim::fromHex;
using sim::toHex;

const Bytes SelectIcc = fromHex("00 A4 02 0C 02 00 02");
const Bytes Read4 = fromHex("00 B0 00 00 04");

sim::CardDescription smallCard()
{
    sim::CardDescription card;
    card.atr = sim::DefaultAtr;
    sim::FileDescription icc;
    icc.fid = 0x0002;
    icc.content = fromHex("01 02 03 04 05");
    card.masterFiles = {icc};
    return card;
}

std::string ask(Card& card, const Bytes& command)
{
    const auto answer = card.transmit(command);
    return answer ? toHex(*answer) : "pulled";
}

struct FaultRow
{
    const char* name;
    Fault fault;
    const char* answer;
};

void PrintTo(const FaultRow& row, std::ostream* out)
{
    *out << row.answer;
}

class CardFault : public testing::TestWithParam<FaultRow>
{};

TEST_P(CardFault, changesOneAnswerOnly)
{
    Card card(smallCard());
    card.failAt(2, GetParam().fault);
    EXPECT_EQ(ask(card, SelectIcc), "90 00");
    EXPECT_EQ(ask(card, Read4), "01 02 03 04 90 00");
    EXPECT_EQ(ask(card, Read4), GetParam().answer);
    EXPECT_EQ(ask(card, Read4), "01 02 03 04 90 00");
}

INSTANTIATE_TEST_SUITE_P(
    All, CardFault,
    testing::Values(
        FaultRow{"aStatusWord", Fault::status(0x6400), "64 00"},
        FaultRow{"dataCutShort", Fault::shortAnswer(1), "01 90 00"},
        FaultRow{"noDataAtAll", Fault::shortAnswer(0), "90 00"},
        FaultRow{"dataTooLong", Fault::longAnswer(2), "01 02 03 04 EE EE 90 00"},
        FaultRow{"oneByte", Fault::raw({0x90}), "90"}, FaultRow{"nothing", Fault::raw({}), ""},
        FaultRow{"anyBytes", Fault::raw(fromHex("DE AD BE EF")), "DE AD BE EF"}),
    RowName());

TEST(CardFaults, aStatusWordKeepsTheCommandFromBeingExecuted)
{
    Card card(smallCard());
    card.failAt(0, Fault::status(0x9000));
    EXPECT_EQ(ask(card, SelectIcc), "90 00");
    EXPECT_EQ(ask(card, Read4), "69 86");
}

TEST(CardFaults, aShortAnswerLetsTheCommandBeExecuted)
{
    Card card(smallCard());
    card.failAt(0, Fault::shortAnswer(0));
    EXPECT_EQ(ask(card, SelectIcc), "90 00");
    EXPECT_EQ(ask(card, Read4), "01 02 03 04 90 00");
}

TEST(CardFaults, aChangedAnswerKeepsItsLengthAndStatusWord)
{
    Card card(smallCard());
    card.failAt(0, Fault::changedAnswer());
    card.failAt(1, Fault::changedAnswer());
    EXPECT_EQ(ask(card, SelectIcc), "90 00");
    EXPECT_EQ(ask(card, Read4), "00 02 03 04 90 00");
    EXPECT_EQ(ask(card, Read4), "01 02 03 04 90 00");
}

TEST(CardFaults, aCutBehindTheDataChangesNothing)
{
    Card card(smallCard());
    card.failAt(1, Fault::shortAnswer(4));
    ask(card, SelectIcc);
    EXPECT_EQ(ask(card, Read4), "01 02 03 04 90 00");
}

TEST(CardFaults, theLaterOfTwoAtOneCommandHolds)
{
    Card card(smallCard());
    card.failAt(0, Fault::status(0x6400));
    card.failAt(0, Fault::status(0x6500));
    EXPECT_EQ(ask(card, SelectIcc), "65 00");
}

TEST(CardFaults, canBeTakenBack)
{
    Card card(smallCard());
    card.failAt(0, Fault::status(0x6400));
    card.clearFaults();
    EXPECT_EQ(ask(card, SelectIcc), "90 00");
}

TEST(CardFaults, countFromTheLastClearedLog)
{
    Card card(smallCard());
    ask(card, SelectIcc);
    card.clearLog();
    card.failAt(1, Fault::status(0x6400));
    EXPECT_EQ(ask(card, SelectIcc), "90 00");
    EXPECT_EQ(ask(card, SelectIcc), "64 00");
}

TEST(CardFaults, stayArmedWhenTheLogIsCleared)
{
    Card card(smallCard());
    card.failAt(0, Fault::status(0x6400));
    card.clearLog();
    EXPECT_EQ(ask(card, SelectIcc), "64 00");
}

TEST(PulledCard, answersNothingUntilItIsInserted)
{
    Card card(smallCard());
    card.failAt(1, Fault::pulled());
    EXPECT_EQ(ask(card, SelectIcc), "90 00");
    EXPECT_EQ(ask(card, Read4), "pulled");
    EXPECT_FALSE(card.isInserted());
    EXPECT_EQ(ask(card, Read4), "pulled");
    card.insert();
    EXPECT_TRUE(card.isInserted());
    // It comes back as after power on.
    EXPECT_EQ(ask(card, Read4), "69 86");
    EXPECT_EQ(ask(card, SelectIcc), "90 00");
    EXPECT_EQ(ask(card, Read4), "01 02 03 04 90 00");
}

TEST(PulledCard, countsOnlyTheCommandItWasPulledWith)
{
    Card card(smallCard());
    card.failAt(0, Fault::pulled());
    ask(card, SelectIcc);
    ask(card, SelectIcc);
    EXPECT_EQ(card.commandCount(), 1u);
    ASSERT_EQ(card.log().size(), 1u);
    EXPECT_TRUE(card.log().front().answer.empty());
}

TEST(PulledCard, canBePulledByHand)
{
    Card card(smallCard());
    card.pull();
    EXPECT_FALSE(card.isInserted());
    EXPECT_EQ(ask(card, SelectIcc), "pulled");
    EXPECT_EQ(card.commandCount(), 0u);
}

TEST(CardLog, holdsCommandsAndAnswersInOrder)
{
    Card card(smallCard());
    ask(card, SelectIcc);
    ask(card, Read4);
    ASSERT_EQ(card.log().size(), 2u);
    EXPECT_EQ(card.log()[0].command, SelectIcc);
    EXPECT_EQ(toHex(card.log()[0].answer), "90 00");
    EXPECT_EQ(card.log()[1].command, Read4);
    EXPECT_EQ(toHex(card.log()[1].answer), "01 02 03 04 90 00");
    card.clearLog();
    EXPECT_TRUE(card.log().empty());
    EXPECT_EQ(card.commandCount(), 0u);
}

TEST(CardLog, switchedOffStillCounts)
{
    Card card(smallCard());
    card.setLogging(false);
    ask(card, SelectIcc);
    ask(card, Read4);
    EXPECT_TRUE(card.log().empty());
    EXPECT_EQ(card.commandCount(), 2u);
    card.setLogging(true);
    ask(card, Read4);
    EXPECT_EQ(card.log().size(), 1u);
    EXPECT_EQ(card.commandCount(), 3u);
}

TEST(CardFiles, areSeenAndReplacedWhateverTheirRights)
{
    Card card(smallCard());
    ASSERT_NE(card.file(sim::MasterFile, 0x0002), nullptr);
    EXPECT_EQ(toHex(*card.file(sim::MasterFile, 0x0002)), "01 02 03 04 05");
    card.setFile(sim::MasterFile, 0x0002, fromHex("AA BB CC DD EE FF"));
    ask(card, SelectIcc);
    EXPECT_EQ(ask(card, fromHex("00 B0 00 00 06")), "AA BB CC DD EE FF 90 00");
}

TEST(CardFiles, thatDoNotExistAreNeitherSeenNorReplaced)
{
    Card card(smallCard());
    EXPECT_EQ(card.file(sim::MasterFile, 0x0005), nullptr);
    EXPECT_EQ(card.file(sim::AidG1, 0x0002), nullptr);
    EXPECT_THROW(card.setFile(sim::AidG1, 0x0002, {}), std::invalid_argument);
}

TEST(CardFiles, thatShrinkUnderTheReaderStayWithinTheirEnd)
{
    Card card(smallCard());
    ask(card, SelectIcc);
    card.setFile(sim::MasterFile, 0x0002, fromHex("AA"));
    EXPECT_EQ(ask(card, Read4), "67 00");
    EXPECT_EQ(ask(card, fromHex("00 B0 00 02 01")), "6B 00");
}

TEST(ByteTime, followsTheInterfaceByteAndTheClock)
{
    using std::chrono::nanoseconds;
    // 11.5 bit times of 16, 32, 64, 31 and 372 clocks.
    EXPECT_EQ(sim::byteTime(0x96), nanoseconds(46000));
    EXPECT_EQ(sim::byteTime(0x95), nanoseconds(92000));
    EXPECT_EQ(sim::byteTime(0x94), nanoseconds(184000));
    EXPECT_EQ(sim::byteTime(0x18), nanoseconds(89125));
    EXPECT_EQ(sim::byteTime(0x11), nanoseconds(1069500));
    EXPECT_EQ(sim::byteTime(0x95, 2.0e6), nanoseconds(184000));
    EXPECT_EQ(sim::byteTimeAtBitRate(125000), nanoseconds(92000));
}

TEST(ByteTime, refusesReservedValues)
{
    EXPECT_THROW(sim::byteTime(0x75), std::invalid_argument);
    EXPECT_THROW(sim::byteTime(0xF5), std::invalid_argument);
    EXPECT_THROW(sim::byteTime(0x90), std::invalid_argument);
    EXPECT_THROW(sim::byteTime(0x9A), std::invalid_argument);
    EXPECT_THROW(sim::byteTimeAtBitRate(0), std::invalid_argument);
}

TEST(ByteTime, isSpentForEachByteOfAnExchange)
{
    Card card(smallCard());
    card.setByteDelay(std::chrono::milliseconds(1));
    const auto begin = std::chrono::steady_clock::now();
    ask(card, SelectIcc);
    const auto spent = std::chrono::steady_clock::now() - begin;
    // 7 bytes there, 2 back, two block frames of 4.
    EXPECT_GE(spent, std::chrono::milliseconds(17));
}

} // namespace
