// What the program says to wrong arguments, to files that are no downloads and to output that cannot be
// written.
#include "Downloads.h"

#include <support/Program.h>

#include <gmock/gmock.h>

#include <QFile>

#include <sys/stat.h>

namespace {

using namespace test;
using testing::HasSubstr;

const QString downloadAdvice = "Name a file that a card was downloaded to.\n";

TEST(BadInputTest, NamesTheFileAndWhatIsWrongWithIt)
{
    const Folder folder;
    const QString fifo = folder.path("fifo");
    ASSERT_EQ(mkfifo(fifo.toLocal8Bit().constData(), 0600), 0);
    ASSERT_TRUE(QFile(folder.write("large.ddd", QByteArray())).resize(17 * 1024 * 1024));
    const struct
    {
        QString path;
        int exitCode;
        QString message;
        QString advice;
    } rows[] = {
        {folder.path("nowhere.ddd"), 1, "%1 cannot be read: No such file or directory.", downloadAdvice},
        {folder.path(""), 1, "%1 is a folder.", downloadAdvice},
        {fifo, 1, "%1 is no ordinary file.", downloadAdvice},
        {"/dev/zero", 1, "%1 is no ordinary file.", downloadAdvice},
        {"/proc/self/mem", 1, "%1 cannot be read: Input/output error.", downloadAdvice},
        {folder.write("empty.ddd", QByteArray()), 7, "%1 is empty.",
         "A download of a control card is: what these keep is not read.\n"},
        {folder.write("unit.ddd", QByteArray::fromHex("7631000000000000")), 7,
         "%1 is the download of a vehicle unit, not of a card.",
         "A card's download begins with the bytes 00 02.\n"},
        {folder.path("large.ddd"), 7, "%1 is far too large for a card's download.", downloadAdvice},
    };
    for (const auto& row : rows) {
        const std::string expected =
            QString("scard: %1\n%2").arg(row.message.arg(row.path), row.advice).toStdString();
        for (const QStringList& command :
             {QStringList{"show"}, QStringList{"show", "--json"}, QStringList{"records"}}) {
            const Outcome outcome = run(command + QStringList{row.path});
            EXPECT_EQ(outcome.err, expected);
            EXPECT_EQ(outcome.exitCode, row.exitCode) << expected;
        }
    }
}

TEST(BadInputTest, SaysOfOtherFilesThatTheyAreNoDownload)
{
    const Folder folder;
    const struct
    {
        const char* name;
        QByteArray bytes;
        const char* reason;
    } rows[] = {
        {"text", "Dear driver,\nplease download your card.\n",
         ": it ends inside the data of an unknown EF, 35 of 29216 bytes are there"},
        {"three bytes", QByteArray::fromHex("000200"), ": 3 bytes stand behind its last record"},
        {"the chip alone", QByteArray::fromHex("0002000001ff"), ""},
    };
    for (const auto& row : rows) {
        const QString path = folder.write("other.ddd", row.bytes);
        const Outcome outcome = run({"show", path});
        EXPECT_EQ(outcome.exitCode, 7);
        EXPECT_EQ(outcome.out, "");
        EXPECT_EQ(
            outcome.err, "scard: " + path.toStdString() +
                             " says of no tachograph card that it is its download" + row.reason +
                             ".\nscard records FILE lists what is in it.\n")
            << row.name;
    }
}

TEST(BadInputTest, NamesTheArgumentThatIsWrong)
{
    const Folder folder;
    const QString card = folder.write("card.ddd", smallDownload("driver").file);
    const struct
    {
        QStringList arguments;
        const char* message;
        const char* command;
    } rows[] = {
        {{}, "scard: no command given.", "scard"},
        {{"upload"}, "scard: unknown command \"upload\".", "scard"},
        {{"--json"}, "scard: unknown command \"--json\".", "scard"},
        {{"show"}, "scard show: no file given.", "scard show"},
        {{"show", "--json"}, "scard show: no file given.", "scard show"},
        {{"show", "--colour", card}, "scard show: Unknown option 'colour'.", "scard show"},
        {{"show", "--json", "--csv", "days", card},
         "scard show: --json, --csv and --html exclude each other.",
         "scard show"},
        {{"show", "--json", "--html", "-", card},
         "scard show: --json, --csv and --html exclude each other.",
         "scard show"},
        {{"show", card, "--csv"}, "scard show: Missing value after '--csv'.", "scard show"},
        {{"show", "--html", "", card}, "scard show: --html wants the name of a file.", "scard show"},
        {{"show", "--from", "2024-13-01", card},
         "scard show: \"2024-13-01\" is no date; 2024-03-05 is one.",
         "scard show"},
        {{"show", "--from", "yesterday", card},
         "scard show: \"yesterday\" is no date; 2024-03-05 is one.",
         "scard show"},
        {{"show", "--until", "2024-02-30", card},
         "scard show: \"2024-02-30\" is no date; 2024-03-05 is one.",
         "scard show"},
        {{"show", "--until", "2024-3-5", card},
         "scard show: \"2024-3-5\" is no date; 2024-03-05 is one.",
         "scard show"},
        {{"show", "--until", "2024-03-05 noon", card},
         "scard show: \"2024-03-05 noon\" is no date; 2024-03-05 is one.",
         "scard show"},
        {{"show", "--until", "", card}, "scard show: \"\" is no date; 2024-03-05 is one.", "scard show"},
        {{"show", "--from", "2024-03-05", "--until", "2024-03-04", card},
         "scard show: --until is before --from.",
         "scard show"},
        {{"records"}, "scard records: one file is wanted.", "scard records"},
        {{"records", card, card}, "scard records: one file is wanted.", "scard records"},
        {{"records", "--json", card}, "scard records: Unknown option 'json'.", "scard records"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.arguments.join(' ').toStdString());
        const Outcome outcome = run(row.arguments);
        EXPECT_EQ(outcome.exitCode, 1);
        EXPECT_EQ(outcome.out, "");
        EXPECT_EQ(outcome.err, std::string(row.message) + "\nSee: " + row.command + " --help\n");
    }
}

TEST(BadInputTest, ShowsTheOtherFilesAllTheSame)
{
    const Folder folder;
    const QString card = folder.write("card.ddd", smallDownload("driver").file);
    const QString damaged = folder.write("cut.ddd", smallDownload("driver").file.left(3000));
    const struct
    {
        QString other;
        int exitCode;
        const char* message;
    } rows[] = {{folder.path("nowhere.ddd"), 1, "No such file or directory"}, {damaged, 7, "is damaged: "}};
    for (const auto& row : rows) {
        const Outcome outcome = run({"show", row.other, card});
        EXPECT_EQ(outcome.exitCode, row.exitCode);
        EXPECT_THAT(outcome.out, HasSubstr(run({"show", card}).out));
        EXPECT_THAT(outcome.err, HasSubstr(row.message));
    }
}

TEST(BadInputTest, SaysThatTheOutputCouldNotBeWritten)
{
    const Folder folder;
    const QString small = folder.write("small.ddd", smallDownload("company").file);
    const QString large = folder.write("large.ddd", realDownloads()[2].file);
    const QStringList rows[] = {
        {"show", small},    {"show", "--json", large}, {"show", "--csv", "periods", large},
        {"records", large}, {"show", "--help"},        {"--help"},
        {"--version"}};
    for (const QStringList& arguments : rows) {
        SCOPED_TRACE(arguments.join(' ').toStdString());
        const Outcome outcome = run(arguments, {}, Output::FullDisk);
        EXPECT_EQ(outcome.exitCode, 5);
        EXPECT_EQ(outcome.err, "scard: The output could not be written: No space left on device.\n");
    }
}

TEST(BadInputTest, EndsQuietlyWhenNobodyReadsOn)
{
    const Folder folder;
    const QString small = folder.write("small.ddd", smallDownload("company").file);
    const QString large = folder.write("large.ddd", realDownloads()[2].file);
    const QStringList rows[] = {
        {"show", small},    {"show", "--json", large}, {"show", "--csv", "periods", large},
        {"records", large}, {"show", large},           {"--help"}};
    for (const QStringList& arguments : rows) {
        SCOPED_TRACE(arguments.join(' ').toStdString());
        const Outcome outcome = run(arguments, {}, Output::ClosedPipe);
        EXPECT_EQ(outcome.exitCode, 0);
        EXPECT_EQ(outcome.err, "");
    }
}

TEST(BadInputTest, SaysThatThePageCouldNotBeWritten)
{
    const Folder folder;
    const QString card = folder.write("card.ddd", smallDownload("driver").file);
    const QString page = folder.path("nowhere/page.html");
    const Outcome outcome = run({"show", "--html", page, card});
    EXPECT_EQ(outcome.exitCode, 5);
    EXPECT_EQ(
        outcome.err, "scard: " + page.toStdString() + " could not be written: No such file or directory.\n");
}

TEST(BadInputTest, ExplainsEachCommand)
{
    const struct
    {
        QStringList arguments;
        const char* words;
    } rows[] = {
        {{"--help"}, "\n  records   the records of a download file, also of a damaged one\n"},
        {{"-h"}, "Usage: scard COMMAND [OPTIONS]\n"},
        {{"show", "--help"}, "Usage: scard show [options] FILE...\n"},
        {{"show", "-h"}, "--csv <table>"},
        {{"records", "--help"}, "Usage: scard records [options] FILE\n"},
        {{"doctor", "--help"}, "Usage: scard doctor [options]\n"},
        {{"download", "--help"}, "Usage: scard download [options]\n"},
        {{"watch", "--help"}, "Usage: scard watch [options]\n"},
    };
    for (const auto& row : rows) {
        const Outcome outcome = run(row.arguments);
        EXPECT_EQ(outcome.exitCode, 0);
        EXPECT_EQ(outcome.err, "");
        EXPECT_THAT(outcome.out, HasSubstr(row.words));
    }
    for (const char* option : {"--version", "-v"})
        EXPECT_THAT(run({option}).out, testing::MatchesRegex("scard [0-9]+\\.[0-9]+\\.[0-9]+\n"));
}

} // namespace
