// `scard watch` as it runs at a kiosk.
#include "CardBehindPcscd.h"
#include "CardService.h"

#include <support/ExpectedDriver.h>
#include <support/ExpectedWorkshop.h>
#include <support/PcscPresence.h>
#include <support/RunningProgram.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include <gmock/gmock.h>

#include <csignal>

namespace {

using namespace test;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class WatchCommandTest : public CardBehindPcscd
{
  protected:
    WatchCommandTest() { EXPECT_TRUE(waitForPresence(false)); }

    QString folder() const { return m_folder.path(); }

    QStringList downloads() const { return QDir(folder()).entryList(QDir::Files | QDir::Hidden); }

    static constexpr const char* ready = "scard: Waiting for a card in Simulated reader 00 00.\n";

  private:
    QTemporaryDir m_folder;
};

TEST_F(WatchCommandTest, TellsOfEachCard)
{
    RunningProgram program({"watch"});
    ASSERT_TRUE(program.complains(ready));
    insert(driverCardV2());
    EXPECT_TRUE(program.says("Card in: driver card, second generation, version 2.2\n"));
    takeOut();
    EXPECT_TRUE(program.says("Card out.\n"));
    insert(workshopCard());
    EXPECT_TRUE(program.says("Card in: workshop card, first generation\n"));
    program.sendSignal(SIGTERM);
    EXPECT_EQ(program.finish().exitCode, 0);
}

TEST_F(WatchCommandTest, TellsOfACardAsJson)
{
    RunningProgram program({"watch", "--json"});
    ASSERT_TRUE(program.complains(ready));
    insert(workshopCard());
    ASSERT_TRUE(program.says("\n"));
    program.sendSignal(SIGINT);
    const std::string out = program.finish().out;
    EXPECT_EQ(schemaErrors("card", out), "");
    const QJsonObject json = QJsonDocument::fromJson(QByteArray::fromStdString(out)).object();
    EXPECT_EQ(json["format"].toString(), "scard-card-1");
    EXPECT_EQ(json["exit_code"].toInt(-1), 0);
    EXPECT_EQ(json["card"]["type"]["name"].toString(), "workshop card");
    EXPECT_TRUE(json["seen_at"].toString().endsWith('Z'));
    EXPECT_TRUE(json["failure"].isNull());
}

TEST_F(WatchCommandTest, DownloadsEachCardOnce)
{
    RunningProgram program({"watch", "--download", "--to", folder()});
    ASSERT_TRUE(program.complains(ready));
    for (int i = 1; i <= 10; ++i) {
        insert(driverCard());
        EXPECT_TRUE(program.says("Duration: ", i)) << i;
        takeOut();
        EXPECT_TRUE(program.says("Card out.\n", i)) << i;
    }
    program.sendSignal(SIGTERM);
    const Outcome outcome = program.finish();
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.err, ready);
    EXPECT_EQ(QString::fromStdString(outcome.out).count("Card in: "), 10);
    ASSERT_EQ(downloads().size(), 10) << "those of the same minute have numbers";
    for (const QString& name : downloads())
        EXPECT_EQ(bytes(fileContent(folder() + '/' + name)), expectedDriverImage(driverCard()));
}

TEST_F(WatchCommandTest, ACardInAnotherReaderChangesNothing)
{
    RunningProgram program({"watch", "--download", "--quiet", "--force", "--to", folder(), "--verbose"});
    ASSERT_TRUE(program.complains(ready));
    insert(driverCard());
    ASSERT_TRUE(program.says(".DDD\n"));
    sim::Card other(workshopCard());
    sim::VpcdLink link(other, "127.0.0.1", virtualReaderPort + 1);
    ASSERT_TRUE(link.connect(std::chrono::seconds(10)));
    std::thread server([&link] { link.run(); });
    ASSERT_TRUE(waitForPresence(true, secondVirtualReaderName));
    takeOut();
    insertAgain();
    EXPECT_TRUE(program.says(".DDD\n", 2));
    link.stop();
    server.join();
    program.sendSignal(SIGTERM);
    EXPECT_EQ(QString::fromStdString(program.finish().out).count('\n'), 2);
    EXPECT_EQ(other.commandCount(), 0U);
}

TEST_F(WatchCommandTest, GoesOnAfterACardThatFails)
{
    RunningProgram program({"watch", "--download", "--to", folder()});
    ASSERT_TRUE(program.complains(ready));
    insert(driverCard());
    EXPECT_TRUE(program.says("Duration: "));
    takeOut();
    ASSERT_TRUE(program.says("Card out.\n"));
    card().clearLog();
    card().failAt(100, sim::Fault::pulled());
    insertAgain();
    EXPECT_TRUE(program.complains(" while EF_Driver_Activity_Data was read.\n"));
    EXPECT_TRUE(program.says("Card out.\n", 2));
    takeOut();
    insert(workshopCard());
    EXPECT_TRUE(program.says("Duration: ", 2));
    program.sendSignal(SIGTERM);
    EXPECT_EQ(program.finish().exitCode, 0);
}

TEST_F(WatchCommandTest, DoesNotReadARefusingCardTwice)
{
    RunningProgram program({"watch", "--download", "--to", folder()});
    ASSERT_TRUE(program.complains(ready));
    sim::CardDescription refusing = driverCard();
    refusing.switches.signRefused = 0x6A88;
    insert(refusing);
    EXPECT_TRUE(program.complains("scard: The card refused to sign EF_"));
    takeOut();
    ASSERT_TRUE(program.says("Card out.\n"));
    insert(driverCard());
    EXPECT_TRUE(program.says("Duration: "));
    program.sendSignal(SIGTERM);
    EXPECT_THAT(program.finish().err, Not(HasSubstr("status 6A88).\nscard: The card refused")));
}

TEST_F(WatchCommandTest, WaitsForAServiceThatIsNotThereYet)
{
    CardService service;
    service.stop();
    RunningProgram program({"watch"});
    EXPECT_TRUE(program.complains(
        "scard: Waiting for a reader: The card service of this machine does not answer.\n"));
    service.start(CardService::Readers::None);
    EXPECT_TRUE(program.complains("scard: Waiting for a reader: There is no card reader.\n"));
    service.stop();
    service.start();
    EXPECT_TRUE(program.complains(ready));
    insert(driverCard());
    EXPECT_TRUE(program.says("Card in: driver card, first generation\n"));
}

TEST_F(WatchCommandTest, OutlivesTheServiceAndItsReaders)
{
    CardService service;
    RunningProgram program({"watch"});
    for (int i = 1; i <= 3; ++i) {
        ASSERT_TRUE(program.complains(ready, i)) << i;
        insert(driverCard());
        EXPECT_TRUE(program.says("Card in: driver card, first generation\n", i)) << i;
        service.stop();
        ASSERT_TRUE(program.complains("does not answer.\n", i)) << i;
        EXPECT_TRUE(program.says("Card out.\n", i)) << i;
        takeOut();
        service.start();
    }
    EXPECT_TRUE(program.complains(ready, 4));
    program.sendSignal(SIGTERM);
    EXPECT_EQ(program.finish().exitCode, 0);
}

TEST_F(WatchCommandTest, CostsNextToNothingWithoutAService)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("PCSCLITE_CSOCK_NAME", "/run/pcscd/nobody.comm");
    RunningProgram program({"watch"}, environment);
    ASSERT_TRUE(program.complains("scard: Waiting for a reader"));
    const double before = program.processorTime();
    EXPECT_TRUE(program.runsOnFor(std::chrono::seconds(5)));
    EXPECT_LT(
        program.processorTime() - before, 100); // milliseconds; a loop that spins takes all five seconds
}

TEST_F(WatchCommandTest, RunsTheCommandAfterEachCard)
{
    RunningProgram program(
        {"watch", "--download", "--quiet", "--to", folder(), "--exec",
         "echo \"[$0] [$1] [$SCARD_FILE] $SCARD_EXIT_CODE $SCARD_CARD_TYPE\"; exit 3"});
    ASSERT_TRUE(program.complains(ready));
    insert(driverCard());
    ASSERT_TRUE(program.says("] 0 driver card\n"));
    EXPECT_TRUE(program.complains("scard: The command ended with exit code 3.\n"));
    const std::string path = (folder() + '/' + downloads().value(0)).toStdString();
    EXPECT_TRUE(program.says("[scard] [" + path + "] [" + path + "] 0 driver card\n"));
    takeOut();
    sim::CardDescription refusing = workshopCard();
    refusing.switches.signRefused = 0x6A88;
    insert(refusing);
    EXPECT_TRUE(program.says("[scard] [] [] 4 workshop card\n"));
}

TEST_F(WatchCommandTest, EndsTheCommandWhenItIsStopped)
{
    RunningProgram program({"watch", "--exec", "echo begun; sleep 1000; echo gone on"});
    ASSERT_TRUE(program.complains(ready));
    insert(driverCard());
    ASSERT_TRUE(program.says("begun\n"));
    program.sendSignal(SIGTERM);
    const Outcome outcome = program.finish();
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_THAT(outcome.out, Not(HasSubstr("gone on")));
}

TEST_F(WatchCommandTest, StopsWhileItReadsAndWritesNothing)
{
    insert(driverCard());
    takeOut();
    ASSERT_TRUE(waitForPresence(false));
    card().clearLog();
    card().setByteDelay(sim::byteTimeAtBitRate(60000));
    RunningProgram program({"watch", "--download", "--to", folder()});
    ASSERT_TRUE(program.complains(ready));
    insertAgain();
    ASSERT_TRUE(program.says("Progress: 0 %\n"));
    program.sendSignal(SIGTERM);
    const Outcome outcome = program.finish();
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_THAT(outcome.err, HasSubstr("scard: Stopped while the card was read"));
    EXPECT_THAT(downloads(), IsEmpty());
}

TEST_F(WatchCommandTest, GoesOnWithoutAnybodyListening)
{
    RunningProgram program({"watch", "--download", "--force", "--to", folder(), "--exec", "echo done >&2"});
    program.closeOutput();
    ASSERT_TRUE(program.complains(ready));
    for (int i = 1; i <= 2; ++i) {
        insert(driverCard());
        EXPECT_TRUE(program.complains("done\n", i));
        takeOut();
    }
    program.sendSignal(SIGTERM);
    EXPECT_EQ(program.finish().exitCode, 0);
}

TEST_F(WatchCommandTest, RefusesWhatBelongsToDownloads)
{
    for (const QStringList& arguments :
         {QStringList{"watch", "--to", "/tmp"},
          {"watch", "--region", "ddd"},
          {"watch", "--force"},
          {"watch", "--quiet"},
          {"watch", "--verify"},
          {"watch", "--root", "key"}}) {
        const Outcome outcome = scardProgram(arguments);
        EXPECT_EQ(outcome.exitCode, 1);
        EXPECT_EQ(
            outcome.err,
            "scard watch: --region, --to, --force, --quiet, --verify and --root need --download.\n"
            "See: scard watch --help\n");
    }
    EXPECT_EQ(scardProgram({"watch", "me"}).exitCode, 1);
}

} // namespace
