// `scard download` as a person uses it.
#include "CardBehindPcscd.h"
#include "CardService.h"

#include <simulator/ControlCard.h>
#include <simulator/TestPki.h>
#include <simulator/TestPkiG2.h>
#include <support/ExpectedDriver.h>
#include <support/PcscPresence.h>
#include <support/RunningProgram.h>

#include <QCryptographicHash>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <gmock/gmock.h>

#include <csignal>
#include <set>

namespace {

using namespace test;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

QJsonObject jsonOf(const Outcome& outcome)
{
    EXPECT_EQ(outcome.out.find('\n'), outcome.out.size() - 1) << outcome.out;
    EXPECT_EQ(schemaErrors("download", outcome.out), "");
    return QJsonDocument::fromJson(QByteArray::fromStdString(outcome.out)).object();
}

std::vector<std::string> namesIn(const QString& folder)
{
    std::vector<std::string> all;
    for (const QString& name : QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot))
        all.push_back(name.toStdString());
    return all;
}

class DownloadCommandTest : public CardBehindPcscd
{
  protected:
    ~DownloadCommandTest() override
    {
        for (const QFileInfo& file : QDir("/tmp").entryInfoList({"*.DDD", "*.C1B", "*.TGD"}, QDir::Files))
            QFile::remove(file.filePath());
    }

    /// Puts the card in with a line so slow that its download takes some seconds.
    void insertSlowly(const sim::CardDescription& description)
    {
        insert(description);
        takeOut();
        card().setByteDelay(sim::byteTimeAtBitRate(60000));
        insertAgain();
    }

    QString folder() const { return m_folder.path(); }

    /// Writes a file into the folder and gives its path.
    QString written(const QString& name, const sim::Bytes& bytes) const
    {
        QFile file(QDir(folder()).filePath(name));
        file.open(QIODevice::WriteOnly);
        file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<qint64>(bytes.size()));
        return file.fileName();
    }

  private:
    QTemporaryDir m_folder;
};

TEST_F(DownloadCommandTest, DownloadsACardAndSaysWhere)
{
    insert(janasCard());
    const Outcome outcome = scardProgram({"download"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
    EXPECT_EQ(outcome.err, "");
    const QRegularExpression whole(R"(^Card: driver card, first generation\n)"
                                   R"(Progress: 0 %\n)"
                                   R"(Language: de\nHolder: Jana, Mustermann\n)"
                                   R"((Progress: \d+0 %\n)+)"
                                   R"(File: (/tmp/C_\d{8}_\d{4}_J_Mustermann_DF000000123456\.DDD)\n)"
                                   R"(Size: 26635 bytes\n)"
                                   R"(SHA-256: [0-9a-f]{64}\n)"
                                   R"(Signatures: 12\n)"
                                   R"(Duration: \d+\.\d s\n$)");
    const QRegularExpressionMatch match = whole.match(QString::fromStdString(outcome.out));
    ASSERT_TRUE(match.hasMatch()) << outcome.out;
    EXPECT_EQ(bytes(fileContent(match.captured(2))), expectedDriverImage(janasCard()));
}

TEST_F(DownloadCommandTest, NamesTheFileByTheRegion)
{
    insert(janasCard());
    EXPECT_THAT(
        scardProgram({"download", "--quiet", "--region", "c1b"}).out, StartsWith("/tmp/D__DF000000123456"));
    takeOut();
    insertAgain();
    EXPECT_THAT(scardProgram({"download", "--quiet", "--region=tgd"}).out, testing::EndsWith(".TGD\n"));
}

TEST_F(DownloadCommandTest, TellsTheResultAsJson)
{
    insert(janasCard());
    const Outcome outcome = scardProgram({"download", "--json", "--to", folder()});
    const QJsonObject json = jsonOf(outcome);
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(json["format"].toString(), "scard-download-1");
    EXPECT_EQ(json["exit_code"].toInt(-1), 0);
    EXPECT_EQ(json["card"]["type"]["code"].toInt(), 1);
    EXPECT_EQ(json["card"]["type"]["name"].toString(), "driver card");
    EXPECT_EQ(json["card"]["generation"]["code"].toInt(), 1);
    EXPECT_TRUE(json["card"]["version"].isNull());
    EXPECT_EQ(json["card"]["chip_serial_number"].toString().size(), 8);
    EXPECT_EQ(json["holder"].toString(), "Jana, Mustermann");
    EXPECT_EQ(json["language"].toString(), "de");
    EXPECT_EQ(json["size_bytes"].toInt(), 26635);
    EXPECT_EQ(json["signatures"].toInt(), 12);
    EXPECT_TRUE(json["duration_seconds"].isDouble());
    EXPECT_TRUE(json["downloaded_at"].toString().endsWith('Z'));
    EXPECT_TRUE(json["failure"].isNull());
    const QByteArray image = fileContent(json["file"].toString());
    EXPECT_EQ(bytes(image), expectedDriverImage(janasCard()));
    EXPECT_EQ(
        json["sha256"].toString().toLatin1(),
        QCryptographicHash::hash(image, QCryptographicHash::Sha256).toHex());
}

TEST_F(DownloadCommandTest, TellsAFailureAsJsonAndAsASentence)
{
    insert(janasCard());
    card().failAt(20, sim::Fault::status(0x6982));
    const Outcome outcome = scardProgram({"download", "--json"});
    const QJsonObject json = jsonOf(outcome);
    EXPECT_EQ(outcome.exitCode, 4);
    EXPECT_THAT(
        outcome.err, StartsWith("scard: The card refused to give EF_Card_Certificate (status 6982).\n"));
    EXPECT_EQ(json["exit_code"].toInt(), 4);
    EXPECT_EQ(json["holder"].toString(), "Jana, Mustermann");
    EXPECT_TRUE(json["file"].isNull());
    EXPECT_TRUE(json["sha256"].isNull());
    EXPECT_TRUE(json["downloaded_at"].isNull());
    EXPECT_EQ(json["failure"]["ef"].toString(), "EF_Card_Certificate");
    EXPECT_EQ(
        json["failure"]["message"].toString(), "The card refused to give EF_Card_Certificate (status 6982).");
    EXPECT_EQ(json["failure"]["entries"][0]["message"].toString(), "ScDataTransfer failed");
    EXPECT_EQ(json["failure"]["entries"][0]["id"].toInt(), 0x6982);
    EXPECT_EQ(json["failure"]["entries"][0]["id_hex"].toString(), "6982");
}

TEST_F(DownloadCommandTest, PrintsTheEntriesOfAFailureOnlyWhenAsked)
{
    insert(janasCard());
    card().failAt(20, sim::Fault::status(0x6982));
    Outcome outcome = scardProgram({"download"});
    EXPECT_THAT(outcome.err, Not(HasSubstr("libscard")));
    EXPECT_THAT(outcome.out, Not(HasSubstr("File:")));
    takeOut();
    card().clearLog();
    card().failAt(20, sim::Fault::status(0x6982));
    insertAgain();
    outcome = scardProgram({"download", "--verbose"});
    EXPECT_EQ(outcome.exitCode, 4);
    EXPECT_THAT(
        outcome.err, HasSubstr("  libscard: ScDataTransfer failed [6982]\n"
                               "  libscard: ScSelectFile Failed: By IDc100 [6982]\n"
                               "  libscard: readFrom() ScSelectFile() Failed: ID c100 [6982]\n"
                               "  libscard: Failed reading card data\n"));
}

TEST_F(DownloadCommandTest, SaysThatTheCardWasPulled)
{
    insert(janasCard());
    card().failAt(100, sim::Fault::pulled());
    const Outcome outcome = scardProgram({"download", "--quiet", "--to", folder()});
    EXPECT_EQ(outcome.exitCode, 4);
    EXPECT_EQ(outcome.out, "");
    EXPECT_THAT(outcome.err, HasSubstr(" while EF_Driver_Activity_Data was read.\n"));
    EXPECT_THAT(namesIn(folder()), IsEmpty());
}

TEST_F(DownloadCommandTest, SaysWhatACardOfTwoApplicationsDidNotGive)
{
    insert(driverCardG2());
    card().failAt(60, sim::Fault::status(0x6982));
    const Outcome outcome = scardProgram({"download", "--json"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_THAT(outcome.err, StartsWith("scard: The card did not give EF_"));
    EXPECT_EQ(jsonOf(outcome)["unread_efs"].toArray().size(), 1);
}

TEST_F(DownloadCommandTest, ACardThatStaysInGivesEverythingOnceMore)
{
    insert(janasCard());
    for (int i = 0; i < 2; ++i) {
        const Outcome outcome = scardProgram({"download", "--quiet", "--force", "--to", folder()});
        EXPECT_EQ(outcome.exitCode, 0);
        EXPECT_EQ(outcome.err, "");
        constexpr int chipLength = 43; // EF_ICC and EF_IC
        const QByteArray image = fileContent(QString::fromStdString(outcome.out).trimmed());
        ASSERT_EQ(image.size(), 26635);
        const auto expected = expectedDriverImage(janasCard());
        EXPECT_TRUE(std::equal(expected.begin(), expected.begin() + chipLength, bytes(image).begin())) << i;
    }
}

TEST_F(DownloadCommandTest, WhatACardCallsItsHolderCannotSteerTheTerminal)
{
    sim::CardDescription card = janasCard();
    for (sim::FileDescription& file : card.applications.front().files) {
        if (file.fid == 0x0520)
            file.content[101 + 1 + 1] = 0x1B; // the second letter of the first names
    }
    insert(card);
    const Outcome outcome = scardProgram({"download"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_THAT(outcome.out, HasSubstr("Holder: J?na, Mustermann\n"));
}

TEST_F(DownloadCommandTest, ChecksTheSignaturesOfTheFinishedFileWhenAsked)
{
    insert(janasCard());
    const QString root = written("root1", sim::rootKeyG1());
    Outcome outcome = scardProgram({"download", "--verify", "--root", root, "--to", folder()});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.err, "");
    EXPECT_THAT(
        outcome.out, HasSubstr("Verified: genuine: 12 of 12 signatures of the first generation hold, up to "
                               "the root keys that were given\n"));

    // Without the root key the first generation's certificates do not open.
    outcome = scardProgram({"download", "--verify", "--force", "--to", folder()});
    EXPECT_EQ(outcome.exitCode, 8);
    EXPECT_THAT(
        outcome.out, HasSubstr("Verified: root unknown: 0 of 12 signatures of the first generation hold, 12 "
                               "cannot be checked, "));
    EXPECT_THAT(
        outcome.err, StartsWith("scard: Not all of the file could be checked by its signatures:\n"
                                "  root unknown  first generation: The root key FD 45 43 20 00 54 4B 01 "));
}

TEST_F(DownloadCommandTest, TheCertificatesOfASecondGenerationCardAreEnough)
{
    insert(driverCardG2());
    const QString root = written("root1", sim::rootKeyG1());
    const Outcome outcome = scardProgram({"download", "--verify", "--root", root, "--to", folder()});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.err, "");
    EXPECT_THAT(
        outcome.out,
        HasSubstr("Verified: root unknown: 26 of 26 signatures hold, a root key was not given\n"));
}

TEST_F(DownloadCommandTest, ARootKeyThatWasGivenMustFit)
{
    insert(driverCardG2());
    const QString first = written("root1", sim::rootKeyG1());
    const QString other = written("other", sim::previousRootCertificateG2(sim::Curve::NistP384));
    const Outcome outcome =
        scardProgram({"download", "--verify", "--root", first, "--root", other, "--to", folder()});
    EXPECT_EQ(outcome.exitCode, 8);
    EXPECT_THAT(
        outcome.err, StartsWith("scard: Not all of the file could be checked by its signatures:\n"
                                "  root unknown  second generation: The root key "));
}

TEST_F(DownloadCommandTest, TellsOfAChangedFileAlsoWhenTheCardCouldNotBeTold)
{
    sim::CardDescription description = janasCard();
    description.switches.writesFail = true;
    insert(description);
    card().failAt(100, sim::Fault::changedAnswer());
    const QString root = written("root1", sim::rootKeyG1());
    const Outcome outcome = scardProgram({"download", "--verify", "--root", root, "--to", folder()});
    EXPECT_EQ(outcome.exitCode, 9);
    EXPECT_THAT(outcome.err, HasSubstr("The file is not what its signatures say:\n"));
    EXPECT_THAT(outcome.err, HasSubstr("could not be told"));
}

TEST_F(DownloadCommandTest, SaysThatWhatArrivedIsNotWhatTheCardSigned)
{
    insert(janasCard());
    card().failAt(100, sim::Fault::changedAnswer());
    const QString root = written("root1", sim::rootKeyG1());
    const Outcome outcome =
        scardProgram({"download", "--json", "--verify", "--root", root, "--to", folder()});
    EXPECT_EQ(outcome.exitCode, 9);
    EXPECT_THAT(
        outcome.err,
        StartsWith(
            "scard: The file is not what its signatures say:\n"
            "  altered       first generation: EF_Driver_Activity_Data: the signature does not hold. "));
    EXPECT_THAT(
        outcome.err, testing::EndsWith("Download the card once more; when it stays so, keep both files.\n"));
    const QJsonObject json = jsonOf(outcome);
    EXPECT_EQ(json["exit_code"].toInt(), 9);
    EXPECT_EQ(json["verification"]["verdict"].toString(), "altered");
    EXPECT_EQ(json["verification"]["signatures"]["valid"].toInt(), 11);
    EXPECT_TRUE(json["failure"].isNull());
    EXPECT_THAT(namesIn(folder()), testing::SizeIs(2)); // the download and the key
}

TEST_F(DownloadCommandTest, BringsTheFileIntoTheFolder)
{
    insert(janasCard());
    const Outcome outcome = scardProgram({"download", "--quiet", "--to", folder()});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
    const QString path = QString::fromStdString(outcome.out).trimmed();
    EXPECT_EQ(QFileInfo(path).path(), folder());
    EXPECT_EQ(bytes(fileContent(path)), expectedDriverImage(janasCard()));
    EXPECT_FALSE(QFile::exists("/tmp/" + QFileInfo(path).fileName()));
    EXPECT_EQ(namesIn(folder()).size(), 1U);
}

TEST_F(DownloadCommandTest, AnExistingFileStaysUnlessForced)
{
    // The name has the minute: files of this one and of the next.
    const QDateTime now = QDateTime::currentDateTimeUtc();
    for (const QDateTime& minute : {now, now.addSecs(60)}) {
        QFile older(folder() + "/C_" + minute.toString("yyyyMMdd_hhmm") + "_J_Mustermann_DF000000123456.DDD");
        ASSERT_TRUE(older.open(QIODevice::WriteOnly));
    }
    insert(janasCard());
    Outcome outcome = scardProgram({"download", "--quiet", "--to", folder()});
    EXPECT_EQ(outcome.exitCode, 5);
    const QString kept = QString::fromStdString(outcome.out).trimmed();
    const QString path = folder() + '/' + QFileInfo(kept).fileName();
    EXPECT_THAT(outcome.out, StartsWith("/tmp/C_"));
    EXPECT_EQ(
        outcome.err, "scard: " + path.toStdString() +
                         " exists already; --force replaces it.\nThe complete download is " +
                         kept.toStdString() + ".\n");
    EXPECT_EQ(bytes(fileContent(kept)), expectedDriverImage(janasCard()));
    EXPECT_EQ(QFileInfo(path).size(), 0);

    takeOut();
    insertAgain();
    outcome = scardProgram({"download", "--quiet", "--force", "--to", folder()});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(QFileInfo(QString::fromStdString(outcome.out).trimmed()).size(), 26635);
}

TEST_F(DownloadCommandTest, TouchesNoCardWhenTheFolderCannotBeUsed)
{
    insert(janasCard());
    const Outcome outcome = scardProgram({"download", "--to", folder() + "/gone"});
    EXPECT_EQ(outcome.exitCode, 5);
    EXPECT_EQ(outcome.out, "");
    EXPECT_THAT(outcome.err, HasSubstr("scard: There is no folder " + folder().toStdString() + "/gone.\n"));
    takeOut();
    EXPECT_EQ(card().commandCount(), 0U);
}

TEST_F(DownloadCommandTest, ControlCardsDoNotReplaceEachOther)
{
    std::set<std::string> paths;
    for (int i = 0; i < 3; ++i) {
        insert(sim::makeControlCardG1());
        const Outcome outcome = scardProgram({"download", "--quiet", "--force", "--to", folder()});
        EXPECT_EQ(outcome.exitCode, 0);
        EXPECT_EQ(outcome.err, "");
        EXPECT_THAT(
            outcome.out, testing::ContainsRegex("/CARD_[0-9]{8}_[0-9]{6}_[0-9A-F]{8}(_[23])?\\.DDD\n$"));
        paths.insert(outcome.out);
    }
    EXPECT_EQ(paths.size(), 3U);
    EXPECT_EQ(namesIn(folder()).size(), 3U);
}

TEST_F(DownloadCommandTest, BringsTheFileOfACardThatCouldNotBeTold)
{
    // The last command of a download tells the card.
    insert(janasCard());
    ASSERT_EQ(scardProgram({"download", "--quiet"}).exitCode, 0);
    takeOut();
    const std::size_t commands = card().commandCount();
    insert(janasCard());
    card().failAt(commands - 1, sim::Fault::status(0x6581));
    const Outcome outcome = scardProgram({"download", "--json", "--to", folder()});
    const QJsonObject json = jsonOf(outcome);
    EXPECT_EQ(outcome.exitCode, 6);
    EXPECT_THAT(
        outcome.err,
        StartsWith("scard: The download is complete, but the card could not be told of it: the card "
                   "refused to change EF_Card_Download (status 6581).\n"));
    EXPECT_EQ(QFileInfo(json["file"].toString()).path(), folder());
    EXPECT_EQ(bytes(fileContent(json["file"].toString())), expectedDriverImage(janasCard()));
    EXPECT_EQ(json["exit_code"].toInt(), 6);
    EXPECT_FALSE(json["card"]["chip_serial_number"].isNull());
}

TEST_F(DownloadCommandTest, SaysWhatIsLeftOfAFileThatFoundNoRoom)
{
    insert(janasCard());
    // A limit on the size of files acts like a disk that is full.
    QProcess process;
    process.start("sh", {"-c", "trap '' XFSZ; ulimit -f 8; exec \"$0\" download --quiet", SCARD_PROGRAM});
    ASSERT_TRUE(process.waitForFinished(60000));
    EXPECT_EQ(process.exitCode(), 5);
    EXPECT_EQ(process.readAllStandardOutput().toStdString(), "");
    EXPECT_THAT(
        process.readAllStandardError().toStdString(),
        testing::ContainsRegex(
            "^scard: The download could not be written to /tmp/: File too large\\.\n"
            "The card was not told of a download\\..* "
            "/tmp/C_[0-9_]+_J_Mustermann_DF000000123456\\.DDD is not complete and must not be "
            "used\\.\n$"));
}

TEST_F(DownloadCommandTest, SaysThatThereIsNoCard)
{
    ASSERT_TRUE(waitForPresence(false));
    const Outcome outcome = scardProgram({"download"});
    EXPECT_EQ(outcome.exitCode, 3);
    EXPECT_EQ(
        outcome.err, "scard: There is no card in the reader.\n"
                     "Put the card into the first reader, chip first; \"scard doctor\" names the reader.\n");
}

TEST_F(DownloadCommandTest, WaitsForACardOnlyAsLongAsItIsTold)
{
    ASSERT_TRUE(waitForPresence(false));
    EXPECT_EQ(scardProgram({"download", "--wait", "1"}).exitCode, 3);
}

TEST_F(DownloadCommandTest, DownloadsACardThatIsPutInWhileItWaits)
{
    ASSERT_TRUE(waitForPresence(false));
    RunningProgram program({"download", "--wait", "--verbose"});
    ASSERT_TRUE(program.complains("SCard init\n"));
    insert(janasCard());
    const Outcome outcome = program.finish();
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_THAT(outcome.out, HasSubstr("Size: 26635 bytes\n"));
}

TEST_F(DownloadCommandTest, SaysThatThereIsNoServiceInsteadOfWaiting)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("PCSCLITE_CSOCK_NAME", "/run/pcscd/nobody.comm");
    const Outcome outcome = scardProgram({"download", "--wait"}, environment);
    EXPECT_EQ(outcome.exitCode, 2);
    EXPECT_EQ(
        outcome.err, "scard: The card service of this machine does not answer.\n"
                     "Is pcscd installed and running? \"systemctl start pcscd.socket\" starts it.\n");
}

TEST_F(DownloadCommandTest, EndsWhenTheServiceStopsWhileItWaits)
{
    ASSERT_TRUE(waitForPresence(false));
    RunningProgram program({"download", "--wait", "--verbose"});
    ASSERT_TRUE(program.complains("SCard init\n"));
    CardService service;
    service.stop();
    EXPECT_EQ(program.finish().exitCode, 2);
}

TEST_F(DownloadCommandTest, StopsBySignalWhileItWaits)
{
    ASSERT_TRUE(waitForPresence(false));
    RunningProgram program({"download", "--wait", "--verbose"});
    ASSERT_TRUE(program.complains("SCard init\n"));
    program.sendSignal(SIGTERM);
    EXPECT_EQ(program.finish().exitCode, -1);
}

TEST_F(DownloadCommandTest, StopsBySignalWhileItReads)
{
    insertSlowly(janasCard());
    RunningProgram program({"download", "--to", folder()});
    ASSERT_TRUE(program.says("Progress: 0 %\n"));
    program.sendSignal(SIGINT);
    const Outcome outcome = program.finish();
    EXPECT_EQ(outcome.exitCode, -1);
    EXPECT_EQ(
        outcome.err,
        "scard: Stopped while the card was read: there is no file, and the card was not told of a "
        "download.\n");
    EXPECT_THAT(namesIn(folder()), IsEmpty());
    EXPECT_THAT(QDir("/tmp").entryList({"*.DDD"}), IsEmpty());
}

TEST_F(DownloadCommandTest, AClosedOutputDoesNotEndADownload)
{
    insert(janasCard());
    QProcess process;
    process.start("sh", {"-c", "\"$0\" download --to \"$1\" >&-", SCARD_PROGRAM, folder()});
    ASSERT_TRUE(process.waitForFinished(60000));
    EXPECT_EQ(process.exitCode(), 0);
    ASSERT_EQ(namesIn(folder()).size(), 1U);
    EXPECT_EQ(
        bytes(fileContent(folder() + '/' + QString::fromStdString(namesIn(folder()).front()))),
        expectedDriverImage(janasCard()));
}

TEST_F(DownloadCommandTest, ShowsTheLibrarysOwnWordsWhenAsked)
{
    EXPECT_THAT(scardProgram({"download", "--verbose"}).err, HasSubstr("SCard init\n"));
    EXPECT_THAT(scardProgram({"download"}).err, Not(HasSubstr("SCard init")));
}

TEST_F(DownloadCommandTest, RefusesWhatItDoesNotKnow)
{
    const struct
    {
        QStringList arguments;
        const char* message;
    } rows[] = {
        {{"download", "twice"}, "unexpected argument \"twice\"."},
        {{"download", "--region", "xyz"}, "unknown region \"xyz\"; ddd, c1b or tgd."},
        {{"download", "--wait", "soon"}, "\"soon\" is no number of seconds."},
        {{"download", "--wait", "-1"}, "\"-1\" is no number of seconds."},
        {{"download", "--colour"}, "Unknown option 'colour'."},
        {{"download", "--json", "--quiet"}, "--quiet and --json exclude each other."},
        {{"download", "--force"}, "--force needs --to."},
        {{"download", "--to", ""}, "--to needs a folder."},
        {{"download", "--root", "key"}, "--root needs --verify."},
    };
    for (const auto& row : rows) {
        const Outcome outcome = scardProgram(row.arguments);
        EXPECT_EQ(outcome.exitCode, 1) << row.message;
        EXPECT_EQ(
            outcome.err, std::string("scard download: ") + row.message + "\nSee: scard download --help\n");
    }
}

TEST_F(DownloadCommandTest, ExplainsItself)
{
    const Outcome help = scardProgram({"download", "--help"});
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_THAT(help.out, StartsWith("Usage: scard download [options]\n"));
    EXPECT_THAT(help.out, HasSubstr("--region <ddd|c1b|tgd>"));
}

} // namespace
