// A driver card through the real pcscd.
#include "CardBehindPcscd.h"

#include <pcsc/ExpectedDownload.h>
#include <support/DebugStream.h>

#include <gmock/gmock.h>

#include <winscard.h>

#include <algorithm>

namespace {

using namespace test;
using scard::SCardReader;
using testing::AnyOf;
using testing::ElementsAreArray;
using testing::Eq;
using testing::IsEmpty;

using SystemDownloadTest = CardBehindPcscd;

sim::Bytes bytes(const QByteArray& image)
{
    return {image.begin(), image.end()};
}

TEST_F(SystemDownloadTest, GivesTheSameBytesAsInProcess)
{
    insert(driverCard());
    const Download result = download();
    EXPECT_THAT(chain(result.failure), IsEmpty());
    EXPECT_EQ(bytes(result.image), expectedImage(driverCard()));
    EXPECT_THAT(result.progress, ElementsAreArray(expectedProgress(expectedSteps(), 24959)));
    EXPECT_EQ(result.removed, 0);
}

TEST_F(SystemDownloadTest, SendsTheSameCommandsAsInProcess)
{
    insert(driverCard());
    EXPECT_THAT(chain(download().failure), IsEmpty());
    takeOut();
    std::vector<std::string> expected;
    for (const Step& step : expectedSteps())
        expected.push_back(step.command);
    std::vector<std::string> sent;
    for (const sim::Exchange& exchange : card().log())
        sent.push_back(sim::toHex(exchange.command));
    ASSERT_FALSE(sent.empty());
    sent.back().resize(expected.back().size()); // without the time that is written
    EXPECT_THAT(sent, ElementsAreArray(expected));
}

TEST_F(SystemDownloadTest, StampsTheCard)
{
    insert(driverCard());
    const qint64 before = QDateTime::currentSecsSinceEpoch();
    EXPECT_THAT(chain(download().failure), IsEmpty());
    takeOut();
    EXPECT_GE(sim::readU32(*card().file(sim::AidG1, 0x050E), 0), before);
}

TEST_F(SystemDownloadTest, ACardPulledHalfWayIsToldAndNotStampedAndTheNextTryWorks)
{
    for (const std::size_t index : {0u, 6u, 20u, 100u, 165u}) {
        SCOPED_TRACE(index);
        insert(driverCard());
        card().failAt(index, sim::Fault::pulled());
        const Download result = download();
        const Chain failure = chain(result.failure);
        ASSERT_FALSE(failure.empty());
        // Which of these comes depends on how fast pcscd notices; the driver may also pass on an answer of
        // no bytes.
        const auto cause = std::find_if(failure.begin(), failure.end(), [](const Entry& entry) {
            return entry.message.rfind("ScDataTransfer", 0) == 0;
        });
        ASSERT_NE(cause, failure.end());
        const std::string step = "ScDataTransfer SCardTransmit() Failed";
        EXPECT_THAT(
            *cause,
            AnyOf(
                Eq(test::pcsc(step, SCARD_E_NOT_TRANSACTED)), Eq(test::pcsc(step, SCARD_E_NO_SMARTCARD)),
                Eq(test::pcsc(step, SCARD_W_REMOVED_CARD)), Eq(test::pcsc(step, SCARD_W_RESET_CARD)),
                Eq(lib("ScDataTransfer: answer without status word"))));
        EXPECT_FALSE(result.card);
        takeOut();
        const sim::Bytes unstamped = *sim::Card(driverCard()).file(sim::AidG1, 0x050E);
        EXPECT_EQ(*card().file(sim::AidG1, 0x050E), unstamped);

        insertAgain();
        const Download next = download();
        EXPECT_THAT(chain(next.failure), IsEmpty());
        EXPECT_EQ(bytes(next.image), expectedImage(driverCard()));
    }
}

TEST_F(SystemDownloadTest, WithoutACardTheConnectionIsRefused)
{
    EXPECT_THAT(
        chain(download().failure),
        testing::ElementsAre(test::pcsc("open: SCardConnect() Failed", SCARD_E_NO_SMARTCARD)));
}

TEST_F(SystemDownloadTest, AControlCardGivesAnEmptyFile)
{
    insert(sim::makeControlCardG1());
    const Download result = download();
    EXPECT_THAT(chain(result.failure), IsEmpty());
    EXPECT_EQ(result.path, "/tmp/CARD_FILENAME_NOT_SET.DDD");
    EXPECT_EQ(result.image.size(), 0);
}

TEST_F(SystemDownloadTest, ACardOfAnotherKindIsRefused)
{
    sim::CardDescription bankCard = driverCard();
    bankCard.applications.clear();
    insert(bankCard);
    const Chain failure = chain(download().failure);
    ASSERT_EQ(failure.size(), 4u);
    EXPECT_EQ(failure.front(), lib("ScDataTransfer failed", 0x6A82));
    EXPECT_EQ(failure.back(), lib("Failed at reading card information"));
}

} // namespace
