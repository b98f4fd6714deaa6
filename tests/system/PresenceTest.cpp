// What monitor() tells of the virtual reader.
#include "CardBehindPcscd.h"

#include <support/DebugStream.h>
#include <support/ErrorChain.h>
#include <support/PcscPresence.h>

#include <gmock/gmock.h>

#include <QDeadlineTimer>
#include <QElapsedTimer>

#include <chrono>

namespace {

using namespace test;
using scard::SCardReader;
using testing::ElementsAre;
using testing::IsEmpty;

class SystemPresenceTest : public CardBehindPcscd
{
  protected:
    SystemPresenceTest()
    {
        QObject::connect(&reader, &SCardReader::present, [this](bool present) {
            seen.emplace_back(present ? "present(true)" : "present(false)");
        });
        QObject::connect(&reader, &SCardReader::removed, [this] { seen.emplace_back("removed()"); });
    }

    /// What monitor() says until something is said, ten seconds at most.
    std::vector<std::string> nextChange()
    {
        seen.clear();
        const QDeadlineTimer end(std::chrono::seconds{10});
        while (seen.empty() && !end.hasExpired())
            reader.monitor(500);
        return seen;
    }

    SCardReader reader;
    std::vector<std::string> seen;
};

TEST_F(SystemPresenceTest, InsertionAndRemovalOfACard)
{
    ASSERT_TRUE(waitForPresence(false));
    ASSERT_THAT(chain(reader.init()), IsEmpty());
    reader.monitor(0);
    // Two slots, both empty.
    EXPECT_THAT(seen, ElementsAre("present(false)", "removed()", "present(false)", "removed()"));

    seen.clear();
    reader.monitor(0);
    EXPECT_THAT(seen, IsEmpty());

    insert(sim::makeDriverCardG1());
    EXPECT_THAT(nextChange(), ElementsAre("present(true)"));
    takeOut();
    EXPECT_THAT(nextChange(), ElementsAre("present(false)", "removed()"));
    reader.uninit();
}

TEST_F(SystemPresenceTest, ATimeoutComesBackInTime)
{
    ASSERT_TRUE(waitForPresence(false));
    ASSERT_THAT(chain(reader.init()), IsEmpty());
    reader.monitor(0);
    seen.clear();
    QElapsedTimer elapsed;
    elapsed.start();
    reader.monitor(200);
    EXPECT_GE(elapsed.elapsed(), 190);
    EXPECT_THAT(seen, IsEmpty());
    reader.uninit();
}

TEST_F(SystemPresenceTest, TheFirstListedReaderIsConnected)
{
    insert(sim::makeDriverCardG1());
    ASSERT_THAT(chain(reader.init()), IsEmpty());
    DebugStream::clear();
    ASSERT_THAT(chain(reader.open()), IsEmpty());
    EXPECT_THAT(DebugStream::lines(), ElementsAre("SCard open", "Reader: Simulated reader 00 00 Length: 23"));
    EXPECT_THAT(chain(reader.close()), IsEmpty());
    EXPECT_THAT(chain(reader.uninit()), IsEmpty());
}

} // namespace
