// A driver card through the real pcscd.
#include "CardBehindPcscd.h"

#include <simulator/ControlCard.h>
#include <support/Answers.h>
#include <support/DebugStream.h>
#include <support/ExpectedDriver.h>
#include <support/LoadedAgain.h>

#include <QFile>

#include <gmock/gmock.h>

#include <winscard.h>

#include <algorithm>

namespace {

using namespace test;
using testing::AnyOf;
using testing::ElementsAreArray;
using testing::Eq;
using testing::IsEmpty;

class SystemDownloadTest : public CardBehindPcscd
{};

TEST_F(SystemDownloadTest, GivesTheSameBytesAsInProcess)
{
    insert(driverCard());
    const Download result = download();
    EXPECT_THAT(chain(result.failure), IsEmpty());
    EXPECT_EQ(bytes(result.image), expectedDriverImage(driverCard()));
    EXPECT_THAT(result.progress, ElementsAreArray(expectedProgress(expectedDriverSteps(), 24959)));
    EXPECT_EQ(result.removed, 0);
}

TEST_F(SystemDownloadTest, SendsTheSameCommandsAsInProcess)
{
    insert(driverCard());
    EXPECT_THAT(chain(download().failure), IsEmpty());
    takeOut();
    EXPECT_THAT(withoutStampTimes(commandsOf(card())), ElementsAreArray(commandsOf(expectedDriverSteps())));
}

TEST_F(SystemDownloadTest, ASecondGenerationCardGivesTheSameBytesAsInProcess)
{
    insert(driverCardG2());
    const Download result = download();
    EXPECT_THAT(chain(result.failure), IsEmpty());
    EXPECT_EQ(bytes(result.image), expectedDriverImageG2(driverCardG2()));
    EXPECT_THAT(result.progress, ElementsAreArray(expectedProgress(expectedDriverStepsG2({}), 64760, 33)));
    EXPECT_EQ(result.removed, 0);
}

TEST_F(SystemDownloadTest, ACardOfVersion22GivesTheSameBytesByTheSameCommandsAndIsStampedTwice)
{
    insert(driverCardV2());
    const qint64 before = QDateTime::currentSecsSinceEpoch();
    const Download result = download();
    EXPECT_THAT(chain(result.failure), IsEmpty());
    EXPECT_EQ(bytes(result.image), expectedDriverImageG2(driverCardV2()));
    DriverCountsG2 counts;
    counts.version2 = true;
    const std::vector<Step> steps = expectedDriverStepsG2(counts);
    EXPECT_THAT(result.progress, ElementsAreArray(expectedProgress(steps, 120220, 33)));
    takeOut();
    EXPECT_THAT(withoutStampTimes(commandsOf(card())), ElementsAreArray(commandsOf(steps)));
    EXPECT_GE(sim::readU32(*card().file(sim::AidG1, 0x050E), 0), before);
    EXPECT_GE(sim::readU32(*card().file(sim::AidG2, 0x050E), 0), before);
}

TEST_F(SystemDownloadTest, TheFileAnswersAsTheCardDid)
{
    for (const sim::CardDescription& description : {driverCard(), driverCardG2(), driverCardV2()}) {
        insert(description);
        const Download result = download();
        takeOut();
        const auto fromCard = std::dynamic_pointer_cast<scard::SCardDriverG1>(result.card);
        ASSERT_TRUE(fromCard);

        const auto fromImage = loadedAgain<scard::SCardDriverG1>(result);
        ASSERT_TRUE(fromImage);
        EXPECT_EQ(identityOf(*fromImage), identityOf(*fromCard));
        EXPECT_EQ(answersOf(*fromImage), answersOf(*fromCard));

        const auto secondFromCard = std::dynamic_pointer_cast<scard::SCardDriverG2>(fromCard);
        const auto secondFromImage = std::dynamic_pointer_cast<scard::SCardDriverG2>(fromImage);
        EXPECT_EQ(secondFromCard != nullptr, description.applications.size() == 2);
        ASSERT_EQ(secondFromCard != nullptr, secondFromImage != nullptr);
        if (secondFromCard) {
            EXPECT_EQ(secondAnswersOf(*secondFromImage), secondAnswersOf(*secondFromCard));
        }
        QFile::remove(result.path);
    }
}

TEST_F(SystemDownloadTest, ADamagedFirstApplicationDoesNotStopTheSecond)
{
    insert(driverCardG2());
    card().failAt(30, sim::Fault::status(sim::sw::IntegrityError));
    const std::vector<Step> steps = expectedDriverStepsG2({});
    ASSERT_EQ(steps.at(30).generation, 1u);
    const Download result = download();
    EXPECT_THAT(chain(result.failure), IsEmpty());
    EXPECT_EQ(bytes(result.image), expectedDriverImageG2(driverCardG2(), steps.at(30).fid));
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
        EXPECT_EQ(bytes(next.image), expectedDriverImage(driverCard()));
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
