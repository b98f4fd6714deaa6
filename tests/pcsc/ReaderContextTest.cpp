// The PC/SC side of the reader object: context, readers, presence of a card, connection.
#include "CardInReader.h"

#include <support/DebugStream.h>
#include <support/ErrorChain.h>

#include <gmock/gmock.h>

#include <reader.h>

namespace {

using namespace test;
using scard::SCardReader;
using standin::Function;
using testing::ElementsAre;
using testing::IsEmpty;

class ReaderContextTest : public CardInReader
{
  protected:
    ReaderContextTest()
    {
        QObject::connect(&reader, &SCardReader::present, [this](bool isPresent) {
            seen.emplace_back(isPresent ? "present(true)" : "present(false)");
        });
        QObject::connect(&reader, &SCardReader::removed, [this] { seen.emplace_back("removed()"); });
    }

    /// What monitor() says since the last time.
    std::vector<std::string> monitor(unsigned int timeoutMs = 0)
    {
        seen.clear();
        EXPECT_THAT(chain(reader.monitor(timeoutMs)), IsEmpty());
        return seen;
    }

    const standin::Call& lastCall() const { return pcsc().calls().back(); }

    SCardReader reader;
    std::vector<std::string> seen;
};

TEST_F(ReaderContextTest, InitEstablishesListsAndFrees)
{
    EXPECT_THAT(chain(reader.init()), IsEmpty());
    ASSERT_EQ(pcsc().calls().size(), 3u);
    EXPECT_EQ(pcsc().calls()[0].function, Function::EstablishContext);
    EXPECT_EQ(pcsc().calls()[0].scope, DWORD{SCARD_SCOPE_SYSTEM});
    EXPECT_EQ(pcsc().calls()[1].function, Function::ListReaders);
    EXPECT_EQ(pcsc().calls()[1].capacity, SCARD_AUTOALLOCATE);
    EXPECT_EQ(pcsc().calls()[2].function, Function::FreeMemory);
    EXPECT_THAT(DebugStream::lines(), ElementsAre("SCard init"));
    EXPECT_EQ(pcsc().listsNotFreed(), 0u);
}

TEST_F(ReaderContextTest, InitReportsAServiceThatIsNotThere)
{
    pcsc().failCall(Function::EstablishContext, 0, SCARD_E_NO_SERVICE);
    EXPECT_THAT(
        chain(reader.init()),
        ElementsAre(test::pcsc("init: ScardEstablishContext() Failed!", SCARD_E_NO_SERVICE)));
    EXPECT_EQ(pcsc().calls().size(), 1u);
}

TEST_F(ReaderContextTest, InitReportsAFailedListingAndKeepsTheContext)
{
    pcsc().failCall(Function::ListReaders, 0, SCARD_E_NO_MEMORY);
    EXPECT_THAT(
        chain(reader.init()), ElementsAre(test::pcsc("init: SCardListReaders() Failed", SCARD_E_NO_MEMORY)));
    EXPECT_EQ(pcsc().openContexts(), 1u);
    EXPECT_THAT(chain(reader.uninit()), IsEmpty());
    EXPECT_EQ(pcsc().openContexts(), 0u);
}

TEST_F(ReaderContextTest, WithoutReaderTheListingFails)
{
    pcsc().removeReader(virtualReaderName);
    EXPECT_THAT(
        chain(reader.init()),
        ElementsAre(test::pcsc("init: SCardListReaders() Failed", SCARD_E_NO_READERS_AVAILABLE)));
}

TEST_F(ReaderContextTest, AListingThatNamesNobodyIsNoReader)
{
    pcsc().listNobody(true);
    EXPECT_THAT(chain(reader.init()), ElementsAre(lib("init: No USB CCID reader found")));
}

TEST_F(ReaderContextTest, AListThatCannotBeFreedDoesNotMatter)
{
    pcsc().failCall(Function::FreeMemory, 0, SCARD_F_INTERNAL_ERROR);
    EXPECT_THAT(chain(reader.init()), IsEmpty());
    pcsc().reset();
}

TEST_F(ReaderContextTest, OpenConnectsToTheFirstListedReader)
{
    pcsc().addReader("Another reader");
    reader.init();
    DebugStream::clear();
    EXPECT_THAT(chain(reader.open()), IsEmpty());

    const std::size_t calls = pcsc().calls().size();
    const standin::Call& connectCall = pcsc().calls()[calls - 2];
    EXPECT_EQ(connectCall.function, Function::Connect);
    EXPECT_EQ(connectCall.reader, virtualReaderName);
    EXPECT_EQ(connectCall.shareMode, DWORD{SCARD_SHARE_SHARED});
    EXPECT_EQ(connectCall.protocols, DWORD{SCARD_PROTOCOL_T0 | SCARD_PROTOCOL_T1});
    EXPECT_EQ(lastCall().function, Function::Status);
    EXPECT_EQ(lastCall().capacity, 128u);
    EXPECT_EQ(lastCall().atrCapacity, 33u);
    EXPECT_THAT(
        DebugStream::lines(),
        ElementsAre(
            "SCard open",
            QStringLiteral("Reader: %1 Length: %2").arg(virtualReaderName).arg(sizeof virtualReaderName)));
}

TEST_F(ReaderContextTest, MonitorWatchesEachReaderAndTheirArrival)
{
    pcsc().addReader("Another reader");
    reader.init();
    monitor();
    EXPECT_THAT(
        lastCall().watched, ElementsAre(virtualReaderName, "Another reader", "\\\\?PnP?\\Notification"));
}

TEST_F(ReaderContextTest, MonitorPassesItsTimeoutUnchanged)
{
    reader.init();
    for (const unsigned int timeoutMs : {0u, 1u, 1500u, 0xFFFFFFFFu}) {
        monitor(timeoutMs);
        EXPECT_EQ(lastCall().timeoutMs, DWORD{timeoutMs});
    }
}

TEST_F(ReaderContextTest, OpenWithoutCardFails)
{
    pcsc().remove(virtualReaderName);
    reader.init();
    EXPECT_THAT(
        chain(reader.open()), ElementsAre(test::pcsc("open: SCardConnect() Failed", SCARD_E_NO_SMARTCARD)));
    EXPECT_THAT(
        chain(reader.read(scard::RegionDDD)), ElementsAre(lib("No SCardReader Connection established")));
}

TEST_F(ReaderContextTest, OpenWithoutInitFails)
{
    const Chain failure = chain(reader.open());
    ASSERT_EQ(failure.size(), 1u);
    EXPECT_EQ(failure[0], test::pcsc("open: SCardConnect() Failed", SCARD_E_INVALID_HANDLE));
}

TEST_F(ReaderContextTest, OpenReportsAStatusThatCannotBeRead)
{
    reader.init();
    pcsc().failCall(Function::Status, 0, SCARD_W_UNPOWERED_CARD);
    EXPECT_THAT(
        chain(reader.open()), ElementsAre(test::pcsc("open: SCardStatus() Failed", SCARD_W_UNPOWERED_CARD)));
}

TEST_F(ReaderContextTest, CloseLeavesTheCardAsItIs)
{
    reader.init();
    reader.open();
    DebugStream::clear();
    EXPECT_THAT(chain(reader.close()), IsEmpty());
    EXPECT_EQ(lastCall().function, Function::Disconnect);
    EXPECT_EQ(lastCall().disposition, DWORD{SCARD_LEAVE_CARD});
    EXPECT_EQ(pcsc().connectedCards(), 0u);
    EXPECT_THAT(DebugStream::lines(), ElementsAre("SCard close"));
    EXPECT_THAT(
        chain(reader.close()),
        ElementsAre(test::pcsc("close: SCardDisconnect() Failed", SCARD_E_INVALID_HANDLE)));
}

TEST_F(ReaderContextTest, UninitReleasesTheContext)
{
    reader.init();
    DebugStream::clear();
    EXPECT_THAT(chain(reader.uninit()), IsEmpty());
    EXPECT_EQ(pcsc().openContexts(), 0u);
    EXPECT_THAT(DebugStream::lines(), ElementsAre("SCard uninit"));
    EXPECT_THAT(
        chain(reader.uninit()),
        ElementsAre(test::pcsc("uninit: SCardReleaseContext() Failed", SCARD_E_INVALID_HANDLE)));
}

TEST_F(ReaderContextTest, InsertionAndRemovalAreToldOnce)
{
    pcsc().remove(virtualReaderName);
    reader.init();
    EXPECT_THAT(monitor(), ElementsAre("present(false)", "removed()"));
    EXPECT_THAT(monitor(), IsEmpty());
    pcsc().insert(virtualReaderName, card());
    EXPECT_THAT(monitor(), ElementsAre("present(true)"));
    EXPECT_THAT(monitor(), IsEmpty());
    pcsc().remove(virtualReaderName);
    EXPECT_THAT(monitor(), ElementsAre("present(false)", "removed()"));
    EXPECT_THAT(monitor(), IsEmpty());
    EXPECT_TRUE(DebugStream::contains("SCard init"));
    EXPECT_EQ(DebugStream::lines().size(), 1); // monitor() is silent there
}

TEST_F(ReaderContextTest, AnInsertionEndsTheWait)
{
    pcsc().remove(virtualReaderName);
    reader.init();
    monitor();
    pcsc().whileWaiting([this] { pcsc().insert(virtualReaderName, card()); });
    EXPECT_THAT(monitor(60000), ElementsAre("present(true)"));
}

TEST_F(ReaderContextTest, ATimeoutTellsNothing)
{
    reader.init();
    monitor();
    EXPECT_THAT(monitor(20), IsEmpty());
}

TEST_F(ReaderContextTest, ASecondReaderThatIsPluggedInLooksLikeARemoval)
{
    reader.init();
    monitor();
    pcsc().whileWaiting([] { pcsc().addReader("Another reader"); });
    EXPECT_THAT(monitor(60000), ElementsAre("present(false)", "removed()"));
    EXPECT_THAT(monitor(), IsEmpty());
}

TEST_F(ReaderContextTest, AReaderThatIsUnpluggedDoesNotStopTheHost)
{
    reader.init();
    monitor();
    pcsc().removeReader(virtualReaderName);
    // PC/SC says so at once and leaves the event states as they were.
    EXPECT_THAT(chain(reader.monitor(60000)), IsEmpty());
}

TEST_F(ReaderContextTest, MonitorBeforeInitTellsNothing)
{
    EXPECT_THAT(monitor(), IsEmpty());
}

TEST_F(ReaderContextTest, AReceiverMayInitialiseAgainDuringMonitor)
{
    reader.init();
    QObject::connect(&reader, &SCardReader::present, [this](bool) { reader.init(); });
    EXPECT_THAT(monitor(), ElementsAre("present(true)"));
    QObject::disconnect(&reader, &SCardReader::present, nullptr, nullptr);
    monitor();
    EXPECT_EQ(lastCall().watched.size(), 4u);
}

} // namespace
