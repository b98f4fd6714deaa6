// The card behind the virtual reader: messages, power, the ends of a connection.

#include "VpcdLink.h"
#include "DriverCard.h"
#include "FakeReader.h"

#include <future>
#include <gtest/gtest.h>
#include <thread>

namespace {

using sim::Bytes;
using sim::fromHex;
using sim::toHex;
using sim::VpcdLink;
using std::chrono::milliseconds;

const Bytes PowerOff = {0x00};
const Bytes PowerOn = {0x01};
const Bytes Reset = {0x02};
const Bytes GetAtr = {0x04};
const Bytes SelectIcc = fromHex("00 A4 02 0C 02 00 02");
const Bytes SelectG1 = fromHex("00 A4 04 0C 06 FF 54 41 43 48 4F");
const Bytes Select0501 = fromHex("00 A4 02 0C 02 05 01");
const Bytes Read10 = fromHex("00 B0 00 00 0A");

sim::CardDescription oneDayCard()
{
    sim::DriverParameters parameters;
    parameters.days = 1;
    return sim::makeDriverCardG1(parameters);
}

/// A card in the fake reader, served by a thread.
class VpcdLinkTest : public testing::Test
{
  protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_link.connect(FakeReader::Patience));
        ASSERT_TRUE(m_reader.acceptCard());
        m_end = std::async(std::launch::async, [this] { return m_link.run(); });
    }

    void TearDown() override { m_link.stop(); }

    std::string ask(const Bytes& message)
    {
        const auto answer = m_reader.ask(message);
        return answer ? toHex(*answer) : "gone";
    }

    sim::Card m_card{oneDayCard()};
    FakeReader m_reader;
    VpcdLink m_link{m_card, "127.0.0.1", m_reader.port()};
    std::future<VpcdLink::End> m_end;
};

TEST_F(VpcdLinkTest, answersTheAtr)
{
    EXPECT_EQ(ask(GetAtr), toHex(sim::DefaultAtr));
}

TEST_F(VpcdLinkTest, answersCommands)
{
    EXPECT_EQ(ask(SelectG1), "90 00");
    EXPECT_EQ(ask(Select0501), "90 00");
    EXPECT_EQ(ask(Read10), "01 00 00 0C 18 35 D0 00 C8 70 90 00");
}

TEST_F(VpcdLinkTest, keepsTheStateOverPollsOfTheAtr)
{
    ask(SelectG1);
    ask(GetAtr);
    EXPECT_EQ(ask(Select0501), "90 00");
    ask(GetAtr);
    EXPECT_EQ(ask(Read10), "01 00 00 0C 18 35 D0 00 C8 70 90 00");
    m_link.stop();
    m_end.wait();
    EXPECT_EQ(m_card.commandCount(), 3u);
}

TEST_F(VpcdLinkTest, resetsTheCardWithPowerAndReset)
{
    for (const Bytes& control : {PowerOff, PowerOn, Reset}) {
        ASSERT_EQ(ask(SelectG1), "90 00");
        ASSERT_EQ(ask(SelectIcc), "6A 82");
        // No answer to these, so the next one is that of the command.
        m_reader.send(control);
        EXPECT_EQ(ask(SelectIcc), "90 00");
    }
}

TEST_F(VpcdLinkTest, takesAMessageInPieces)
{
    for (const std::uint8_t byte : fromHex("00 07 00 A4 02 0C 02 00 02")) {
        m_reader.sendRaw({byte});
    }
    EXPECT_EQ(toHex(m_reader.receive().value_or(Bytes{})), "90 00");
}

TEST_F(VpcdLinkTest, takesSeveralMessagesAtOnce)
{
    m_reader.sendRaw(fromHex("00 01 04 00 07 00 A4 02 0C 02 00 02 00 01 04"));
    EXPECT_EQ(toHex(m_reader.receive().value_or(Bytes{})), toHex(sim::DefaultAtr));
    EXPECT_EQ(toHex(m_reader.receive().value_or(Bytes{})), "90 00");
    EXPECT_EQ(toHex(m_reader.receive().value_or(Bytes{})), toHex(sim::DefaultAtr));
}

TEST_F(VpcdLinkTest, takesTheLargestMessage)
{
    Bytes command = fromHex("00 D6 00 00 FF");
    command.resize(0xFFFF);
    EXPECT_EQ(ask(command), "67 00");
}

TEST_F(VpcdLinkTest, doesNotWaitForDelayedAcknowledgements)
{
    // A delayed acknowledgement takes at least 40 ms, so 100 commands that waited for one would take 4 s.
    ask(SelectG1);
    ask(Select0501);
    const auto begin = std::chrono::steady_clock::now();
    for (int i = 0; i < 100; ++i) {
        ask(Read10);
    }
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(3));
}

TEST_F(VpcdLinkTest, endsWhenItIsStopped)
{
    ask(GetAtr);
    m_link.stop();
    EXPECT_EQ(m_end.get(), VpcdLink::End::Stopped);
    EXPECT_TRUE(m_reader.cardIsGone());
    EXPECT_TRUE(m_link.isStopped());
}

TEST_F(VpcdLinkTest, endsInTheMiddleOfAMessageWhenItIsStopped)
{
    ask(GetAtr);
    m_reader.sendRaw({0x00});
    m_link.stop();
    EXPECT_EQ(m_end.get(), VpcdLink::End::Stopped);
}

TEST_F(VpcdLinkTest, endsWhenTheReaderGoes)
{
    m_reader.hangUp();
    EXPECT_EQ(m_end.get(), VpcdLink::End::ReaderGone);
    EXPECT_FALSE(m_link.isStopped());
}

TEST_F(VpcdLinkTest, endsWhenTheReaderGoesInTheMiddleOfAMessage)
{
    m_reader.sendRaw(fromHex("00 07 00 A4"));
    m_reader.hangUp();
    EXPECT_EQ(m_end.get(), VpcdLink::End::ReaderGone);
}

TEST_F(VpcdLinkTest, endsOnAnEmptyMessage)
{
    m_reader.sendRaw({0x00, 0x00});
    EXPECT_EQ(m_end.get(), VpcdLink::End::ReaderGone);
}

TEST_F(VpcdLinkTest, endsOnAnUnknownControl)
{
    m_reader.send({0x7F});
    EXPECT_EQ(m_end.get(), VpcdLink::End::ReaderGone);
}

TEST_F(VpcdLinkTest, takesThePulledCardOut)
{
    ask(GetAtr);
    m_card.pull();
    EXPECT_EQ(ask(GetAtr), "gone");
    EXPECT_EQ(m_end.get(), VpcdLink::End::CardPulled);
}

TEST_F(VpcdLinkTest, servesTheCardAgainWhenItIsPutBack)
{
    m_card.pull();
    EXPECT_EQ(ask(GetAtr), "gone");
    ASSERT_EQ(m_end.get(), VpcdLink::End::CardPulled);
    m_card.insert();
    ASSERT_TRUE(m_link.connect(FakeReader::Patience));
    ASSERT_TRUE(m_reader.acceptCard());
    m_end = std::async(std::launch::async, [this] { return m_link.run(); });
    EXPECT_EQ(ask(GetAtr), toHex(sim::DefaultAtr));
}

/// A link that no thread serves yet.
class VpcdLinkBefore : public testing::Test
{
  protected:
    sim::Card m_card{oneDayCard()};
    FakeReader m_reader;
    VpcdLink m_link{m_card, "127.0.0.1", m_reader.port()};
};

TEST_F(VpcdLinkBefore, takesTheCardOutWithTheCommandThatPullsIt)
{
    m_card.failAt(1, sim::Fault::pulled());
    ASSERT_TRUE(m_link.connect(FakeReader::Patience));
    ASSERT_TRUE(m_reader.acceptCard());
    auto end = std::async(std::launch::async, [this] { return m_link.run(); });
    EXPECT_EQ(toHex(m_reader.ask(SelectG1).value_or(Bytes{})), "90 00");
    EXPECT_FALSE(m_reader.ask(Select0501));
    EXPECT_EQ(end.get(), VpcdLink::End::CardPulled);
}

TEST_F(VpcdLinkBefore, passesStrangeAnswersOn)
{
    m_card.failAt(0, sim::Fault::raw({0x90}));
    m_card.failAt(1, sim::Fault::raw({}));
    ASSERT_TRUE(m_link.connect(FakeReader::Patience));
    ASSERT_TRUE(m_reader.acceptCard());
    auto end = std::async(std::launch::async, [this] { return m_link.run(); });
    EXPECT_EQ(m_reader.ask(SelectG1), Bytes{0x90});
    EXPECT_EQ(m_reader.ask(SelectG1), Bytes{});
    m_link.stop();
    EXPECT_EQ(end.get(), VpcdLink::End::Stopped);
}

TEST_F(VpcdLinkBefore, endsWithAnAnswerThatNoMessageHolds)
{
    m_card.failAt(0, sim::Fault::raw(Bytes(0x10000)));
    ASSERT_TRUE(m_link.connect(FakeReader::Patience));
    ASSERT_TRUE(m_reader.acceptCard());
    auto end = std::async(std::launch::async, [this] { return m_link.run(); });
    EXPECT_FALSE(m_reader.ask(SelectG1));
    EXPECT_EQ(end.get(), VpcdLink::End::ReaderGone);
}

TEST_F(VpcdLinkBefore, givesUpOnAnUnknownHost)
{
    VpcdLink link(m_card, "no host has blanks", 1);
    EXPECT_FALSE(link.connect(milliseconds(1)));
}

TEST_F(VpcdLinkBefore, remembersAStopThatCameBeforeItRan)
{
    ASSERT_TRUE(m_link.connect(FakeReader::Patience));
    m_link.stop();
    EXPECT_EQ(m_link.run(), VpcdLink::End::Stopped);
}

/// A link to a reader that does not listen.
class VpcdLinkAlone : public testing::Test
{
  protected:
    sim::Card m_card{oneDayCard()};
    FakeReader m_reader{FakeReader::Start::Deaf};
    VpcdLink m_link{m_card, "127.0.0.1", m_reader.port()};
};

TEST_F(VpcdLinkAlone, givesUp)
{
    EXPECT_FALSE(m_link.connect(milliseconds(60)));
    EXPECT_FALSE(m_link.isStopped());
    EXPECT_EQ(m_link.run(), VpcdLink::End::ReaderGone);
}

TEST_F(VpcdLinkAlone, stopsWaiting)
{
    auto connected = std::async(std::launch::async, [this] { return m_link.connect(std::chrono::hours(1)); });
    m_link.stop();
    EXPECT_FALSE(connected.get());
}

TEST_F(VpcdLinkAlone, waitsForAReaderThatComesLater)
{
    auto connected = std::async(std::launch::async, [this] { return m_link.connect(FakeReader::Patience); });
    EXPECT_EQ(connected.wait_for(milliseconds(50)), std::future_status::timeout);
    m_reader.listen();
    EXPECT_TRUE(connected.get());
}

} // namespace
