// The program `scard` as a person uses it.
#include "CardBehindPcscd.h"

#include <pcsc/ExpectedCompany.h>
#include <pcsc/ExpectedDriver.h>
#include <pcsc/ExpectedWorkshop.h>
#include <scard/SCardDriverG1.h>
#include <simulator/ControlCard.h>
#include <support/PcscPresence.h>

#include <QFile>
#include <QProcess>
#include <QProcessEnvironment>
#include <QRegularExpression>

#include <gmock/gmock.h>

#include <cstdio>

namespace {

using namespace test;
using testing::HasSubstr;
using testing::Not;

struct Outcome
{
    int exitCode = -1;
    std::string out;
    std::string err;
};

Outcome scardProgram(
    const QStringList& arguments,
    const QProcessEnvironment& environment = QProcessEnvironment::systemEnvironment())
{
    QProcess process;
    process.setProcessEnvironment(environment);
    process.start(SCARD_PROGRAM, arguments);
    EXPECT_TRUE(process.waitForFinished(60000));
    EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
    return {
        process.exitCode(), process.readAllStandardOutput().toStdString(),
        process.readAllStandardError().toStdString()};
}

sim::CardDescription janasCard()
{
    sim::DriverParameters parameters;
    parameters.surname = "Mustermann";
    parameters.firstNames = "Jana";
    parameters.driverIdentification = "DF000000123456";
    parameters.language = "de";
    return sim::makeDriverCardG1(parameters);
}

class HostProgramTest : public CardBehindPcscd
{};

TEST_F(HostProgramTest, DownloadsACardAndSaysWhere)
{
    insert(janasCard());
    const Outcome outcome = scardProgram({"download"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
    EXPECT_EQ(outcome.err, "");
    const QRegularExpression whole(
        R"(^Card: DriverCard\n)"
        R"((Progress: 0 %\n))"
        R"(Language: de\nHolder: Jana, Mustermann\n)"
        R"((Progress: \d+ %\n)+)"
        R"(File: (/tmp/C_\d{8}_\d{4}_J_Mustermann_DF000000123456\.DDD) \(26635 bytes\)\n$)");
    const QRegularExpressionMatch match = whole.match(QString::fromStdString(outcome.out));
    ASSERT_TRUE(match.hasMatch()) << outcome.out;
    const QByteArray image = fileContent(match.captured(3));
    EXPECT_EQ(bytes(image), expectedImage(janasCard()));
}

TEST_F(HostProgramTest, NamesTheFileByTheRegion)
{
    insert(janasCard());
    EXPECT_THAT(scardProgram({"download", "--region", "c1b"}).out, HasSubstr("/tmp/D__DF000000123456"));
    takeOut();
    insertAgain();
    EXPECT_THAT(scardProgram({"download", "--region=tgd"}).out, HasSubstr(".TGD (26635 bytes)"));
}

TEST_F(HostProgramTest, PrintsTheWholeChainCauseFirst)
{
    insert(janasCard());
    card().failAt(20, sim::Fault::status(0x6982));
    const Outcome outcome = scardProgram({"download"});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(
        outcome.err, "The card could not be downloaded:\n"
                     "  libscard: ScDataTransfer failed [6982]\n"
                     "  libscard: ScSelectFile Failed: By IDc100 [6982]\n"
                     "  libscard: readFrom() ScSelectFile() Failed: ID c100 [6982]\n"
                     "  libscard: Failed reading card data\n");
    EXPECT_THAT(outcome.out, Not(HasSubstr("File:")));
}

TEST_F(HostProgramTest, WhatACardCallsItsHolderCannotSteerTheTerminal)
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

TEST_F(HostProgramTest, SaysThatThereIsNoCard)
{
    const Outcome outcome = scardProgram({"download"});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(
        outcome.err, "The card could not be downloaded:\n"
                     "  SCard: open: SCardConnect() Failed: No smart card inserted.\n");
}

TEST_F(HostProgramTest, WaitsForACardOnlyAsLongAsItIsTold)
{
    const Outcome outcome = scardProgram({"download", "--wait", "1"});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(
        outcome.err, "The card could not be downloaded:\n"
                     "  SCard: open: SCardConnect() Failed: No smart card inserted.\n");
}

TEST_F(HostProgramTest, DownloadsACardThatIsPutInWhileItWaits)
{
    ASSERT_TRUE(waitForPresence(false));
    QProcess process;
    process.setReadChannel(QProcess::StandardError);
    process.start(SCARD_PROGRAM, {"download", "--wait", "30", "--verbose"});
    ASSERT_TRUE(process.waitForReadyRead(10000));
    QByteArray err = process.readAllStandardError();
    EXPECT_EQ(err.toStdString(), "SCard init\n");
    insert(janasCard());
    ASSERT_TRUE(process.waitForFinished(60000));
    EXPECT_EQ(process.exitCode(), 0);
    EXPECT_THAT(process.readAllStandardOutput().toStdString(), HasSubstr("(26635 bytes)"));
    EXPECT_THAT(process.readAllStandardError().toStdString(), Not(HasSubstr("removed")));
}

TEST_F(HostProgramTest, TheHostOfTheReadmeDownloadsACard)
{
    insert(janasCard());
    QProcess process;
    process.start(README_HOST, QStringList());
    ASSERT_TRUE(process.waitForFinished(60000));
    EXPECT_EQ(process.exitCode(), 0);
    EXPECT_THAT(
        process.readAllStandardError().toStdString(),
        testing::AllOf(HasSubstr("Jana, Mustermann"), HasSubstr("J_Mustermann_DF000000123456.DDD")));
}

TEST_F(HostProgramTest, TheSecondHostOfTheReadmeShowsADownload)
{
    insert(janasCard());
    const Download result = download();
    QProcess process;
    process.start(README_SHOW, {result.path});
    ASSERT_TRUE(process.waitForFinished(60000));
    EXPECT_EQ(process.exitCode(), 0);
    EXPECT_THAT(
        process.readAllStandardError().toStdString(),
        testing::AllOf(
            HasSubstr("Jana, Mustermann"), HasSubstr("2024-03-05"), HasSubstr("minutes of driving")));
    QFile::remove(result.path);

    process.start(README_SHOW, {"/tmp/nowhere"});
    ASSERT_TRUE(process.waitForFinished(60000));
    EXPECT_EQ(process.exitCode(), 1);
    EXPECT_THAT(process.readAllStandardError().toStdString(), HasSubstr("no driver card's download"));
}

TEST_F(HostProgramTest, SaysThatThereIsNoService)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("PCSCLITE_CSOCK_NAME", "/run/pcscd/nobody.comm");
    const Outcome outcome = scardProgram({"download", "--wait", "3600"}, environment);
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(
        outcome.err, "The card could not be downloaded:\n"
                     "  SCard: init: ScardEstablishContext() Failed!: Service not available.\n");
}

TEST_F(HostProgramTest, ShowsTheLibrarysOwnWordsWhenAsked)
{
    const Outcome outcome = scardProgram({"download", "--verbose"});
    EXPECT_THAT(outcome.err, HasSubstr("SCard init\n"));
    EXPECT_THAT(scardProgram({"download"}).err, Not(HasSubstr("SCard init")));
}

TEST_F(HostProgramTest, RefusesWhatItDoesNotKnow)
{
    const struct
    {
        QStringList arguments;
        const char* message;
    } rows[] = {
        {{}, "scard: no command given."},
        {{"upload"}, "scard: unknown command \"upload\"."},
        {{"download", "twice"}, "scard: unknown command \"download twice\"."},
        {{"download", "--region", "xyz"}, "scard: unknown region \"xyz\"; ddd, c1b or tgd."},
        {{"download", "--wait", "soon"}, "scard: \"soon\" is no number of seconds."},
        {{"download", "--colour"}, "scard: Unknown option 'colour'."},
        {{"download", "--wait", "-1"}, "scard: \"-1\" is no number of seconds."},
        {{"show"}, "scard: unknown command \"show\"."},
        {{"show", "one", "two"}, "scard: unknown command \"show one two\"."},
        {{"show", "one", "--days", "0"}, "scard: \"0\" is no number of days."},
        {{"show", "one", "--days", "all"}, "scard: \"all\" is no number of days."},
    };
    for (const auto& row : rows) {
        const Outcome outcome = scardProgram(row.arguments);
        EXPECT_EQ(outcome.exitCode, 2);
        EXPECT_EQ(outcome.err, std::string(row.message) + "\nSee: scard --help\n");
    }
}

TEST_F(HostProgramTest, ShowsTheLastDaysOfADownload)
{
    sim::DriverParametersG2 parameters;
    parameters.version2 = true;
    parameters.first.surname = "Mustermann";
    parameters.first.firstNames = "Jana";
    insert(sim::makeDriverCardG2(parameters));
    const Download result = download();
    ASSERT_THAT(chain(result.failure), testing::IsEmpty());
    const auto driver = std::dynamic_pointer_cast<scard::SCardDriverG1>(result.card);
    ASSERT_TRUE(driver);

    const Outcome outcome = scardProgram({"show", "--days", "3", result.path});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
    EXPECT_EQ(outcome.err, "");
    std::string expected = "Card: DriverCard, second generation, version 2.2\n"
                           "Holder: Jana, Mustermann\n"
                           "Downloaded before (local time): " +
                           driver->getLastCardDownload().toString("yyyy-MM-dd hh:mm").toStdString() + '\n';
    const auto days = driver->getActivities();
    expected += "Days (UTC): " + std::to_string(days.size()) + ", the last 3:\n" +
                "              driving     work     rest  available  unknown\n";
    for (std::size_t i = days.size() - 3; i < days.size(); ++i) {
        char line[80];
        const auto& day = days[i];
        std::snprintf(
            line, sizeof line, "  %s  %4d:%02d  %4d:%02d  %4d:%02d  %6d:%02d  %4d:%02d\n",
            day.date.toUTC().toString("yyyy-MM-dd").toStdString().c_str(), day.driving / 60, day.driving % 60,
            day.work / 60, day.work % 60, day.rest / 60, day.rest % 60, day.availability / 60,
            day.availability % 60, day.unknown / 60, day.unknown % 60);
        expected += line;
    }
    EXPECT_EQ(outcome.out, expected);
    QFile::remove(result.path);
}

TEST_F(HostProgramTest, ShowsTheLastCalibrationsOfAWorkshopCard)
{
    const struct
    {
        sim::CardDescription card;
        const char* generation;
        const char* before;
    } rows[] = {
        {workshopCard(), "first generation",
         "  2024-03-05 10:33  0SMBSTJKGD2F48622  D HH-LD 057         335890 km  periodic inspection, next "
         "2026-03-05\n"},
        {workshopCardG2({}), "second generation",
         "  2024-03-05 10:33  0SMBSTJKGD2F48622  D HH-LD 057         335890 km  periodic inspection, next "
         "2026-03-05\n"},
    };
    for (const auto& row : rows) {
        insert(row.card);
        const Download result = download();
        takeOut();
        const Outcome outcome = scardProgram({"show", "--days", "2", result.path});
        EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
        EXPECT_EQ(
            outcome.out,
            "Card: WorkshopCard, " + std::string(row.generation) +
                "\n"
                "Holder: Dirk, Wei\xC3\x9F\n"
                "Workshop: Wei\xC3\x9F Tachograph Service, Mill Lane 164\n"
                "Calibrations with this card: 40, since the download before: 7\n"
                "Calibrations (UTC): 40, the last 2:\n" +
                row.before +
                "  2024-03-05 12:00  0SM0DLDH2SSZ57024  D HH-GA 850         866717 km  periodic inspection, "
                "next 2026-03-05\n");
        QFile::remove(result.path);
    }
}

TEST_F(HostProgramTest, ShowsTheLastActivitiesOfACompanyCard)
{
    for (const sim::CardDescription& company : {companyCard(), companyCardG2({})}) {
        insert(company);
        const Download result = download();
        takeOut();
        const Outcome outcome = scardProgram({"show", "--days", "3", result.path});
        EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
        // The file of a second-generation company card is read as one of the first.
        EXPECT_EQ(
            outcome.out, "Card: CompanyCard, first generation\n"
                         "Activities (UTC): 40, the last 3:\n"
                         "  2024-02-23 08:38  card downloaded, card D D179700573583300\n"
                         "  2024-02-29 15:24  card downloaded, card D D716263024756500\n"
                         "  2024-03-05 12:00  locked in, vehicle D HH-CE 280\n");
        QFile::remove(result.path);
    }
}

TEST_F(HostProgramTest, ShowsOfADamagedDownloadWhatThereIs)
{
    insert(driverCardG2());
    const Download result = download();
    QFile file(result.path);
    ASSERT_TRUE(file.resize(60000)); // inside the second application's positions
    EXPECT_EQ(scardProgram({"show", result.path}).exitCode, 0);
    ASSERT_TRUE(file.resize(30000)); // inside its events
    const Outcome outcome = scardProgram({"show", result.path});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_THAT(outcome.out, HasSubstr("Days (UTC): "));
    EXPECT_EQ(
        outcome.err, "scard: " + result.path.toStdString() +
                         " could not be read to its end, EF_EventsData is missing or short:\n"
                         "  libscard: memSelectFile(): Dataset not found\n"
                         "  libscard: readFromMem() memSelectFile() Failed: ID 502\n");
    QFile::remove(result.path);
}

TEST_F(HostProgramTest, ShowsOfADamagedWorkshopDownloadWhatTheFirstApplicationSays)
{
    insert(workshopCardG2({}));
    const Download result = download();
    QFile file(result.path);
    ASSERT_TRUE(file.resize(31700)); // inside the second application's certificates
    const Outcome outcome = scardProgram({"show", "--days", "1", result.path});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_THAT(outcome.out, HasSubstr("Holder: Dirk, Wei\xC3\x9F\n"));
    EXPECT_THAT(outcome.out, HasSubstr("Calibrations with this card: 34, since the download before: 7\n"));
    EXPECT_THAT(outcome.out, HasSubstr("  2024-03-05 12:00  0SM0DLDH2SSZ57024  D HH-GA 850 "));
    EXPECT_THAT(
        outcome.err, HasSubstr("could not be read to its end, EF_Identification is missing or short:\n"));
    ASSERT_TRUE(file.resize(20000)); // inside the first application's calibrations
    EXPECT_THAT(
        scardProgram({"show", result.path}).err,
        HasSubstr("could not be read to its end, EF_Calibration is missing or short:\n"));
    QFile::remove(result.path);
}

TEST_F(HostProgramTest, ShowsACompanysSecondApplicationInAFileOfAnotherProgram)
{
    insert(companyCardG2({}));
    const Download result = download();
    // The records behind the first application, with the type that the regulation asks for.
    QByteArray second = result.image.mid(11304);
    for (int position = 0; position < second.size();) {
        second[position + 2] = '\x02';
        position += 5 + (static_cast<unsigned char>(second.at(position + 3)) << 8 |
                         static_cast<unsigned char>(second.at(position + 4)));
    }
    QFile file("/tmp/other.DDD");
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(second);
    file.close();
    const Outcome outcome = scardProgram({"show", "--days", "1", file.fileName()});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
    EXPECT_THAT(outcome.out, testing::StartsWith("Card: CompanyCard, second generation\nHolder: "));
    EXPECT_THAT(outcome.out, HasSubstr("\n  2024-03-05 12:00  locked in, vehicle D HH-CE 280\n"));
    file.remove();
    QFile::remove(result.path);
}

TEST_F(HostProgramTest, SaysThatAControlCardIsNotShown)
{
    QFile file("/tmp/control.DDD");
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(QByteArray::fromHex("0501000005"
                                   "03000000e6"));
    file.close();
    const Outcome outcome = scardProgram({"show", file.fileName()});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(outcome.out, "Card: ControlCard, first generation\n");
    EXPECT_EQ(outcome.err, "scard: /tmp/control.DDD: cards of this kind are not shown.\n");
    file.remove();
}

TEST_F(HostProgramTest, SaysWhyAFileCannotBeShown)
{
    Outcome outcome = scardProgram({"show", "/tmp/nowhere.DDD"});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(outcome.err, "scard: /tmp/nowhere.DDD: No such file or directory\n");

    outcome = scardProgram({"show", SCARD_PROGRAM});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_THAT(outcome.err, HasSubstr(" is no download of a tachograph card:\n  libscard: "));

    insert(sim::makeControlCardG1());
    const Download result = download();
    outcome = scardProgram({"show", result.path});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_THAT(outcome.err, HasSubstr(" is no download of a tachograph card:\n  libscard: "));
}

TEST_F(HostProgramTest, ExplainsItself)
{
    const Outcome help = scardProgram({"--help"});
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_THAT(help.out, HasSubstr("--region <ddd|c1b|tgd>"));
    EXPECT_THAT(scardProgram({"--version"}).out, testing::MatchesRegex("scard [0-9.]+\n"));
}

} // namespace
