// `scard show` for people.
#include "Downloads.h"
#include "ExpectedShow.h"

#include <support/FileRecords.h>
#include <support/Program.h>

#include <gmock/gmock.h>

#include <sstream>

namespace {

using namespace test;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

constexpr std::uint32_t march4 = 1709510400; // 2024-03-04
constexpr std::uint32_t march5 = march4 + 86400;
constexpr std::size_t bufferLength = 600; // of the small cards

std::uint16_t change(unsigned int state, unsigned int hour, unsigned int minute = 0)
{
    return static_cast<std::uint16_t>(state | (60 * hour + minute));
}

/// A day of work; the last rest has no end yet.
ActivityDay longDay(std::uint32_t date)
{
    using namespace sim::activity;
    return {
        date,
        {change(Rest, 0), change(Work, 6), change(Driving, 7), change(Rest, 11, 30), change(Driving, 12, 15),
         change(Available, 16), change(Rest, 17)}};
}

/// A day that begins without the card.
ActivityDay shortDay(std::uint32_t date)
{
    using namespace sim::activity;
    return {
        date,
        {change(NotInserted, 0), change(Driving, 8), change(NotInserted | CrewOrKnown, 9),
         change(NotInserted, 10)}};
}

QByteArray driverWithDays(const std::vector<ActivityDay>& days)
{
    sim::CardDescription card = smallDownload("driver").card;
    contentOf(card, 0, 0x0504) = activityFile(days, bufferLength);
    return downloadOf(card);
}

QByteArray driverG2WithDays(const std::vector<ActivityDay>& first, const std::vector<ActivityDay>& second)
{
    sim::CardDescription card = smallDownload("driverG2").card;
    contentOf(card, 0, 0x0504) = activityFile(first, bufferLength);
    contentOf(card, 1, 0x0504) = activityFile(second, bufferLength);
    return downloadOf(card);
}

std::string
shown(const QByteArray& file, const QStringList& arguments = {}, const Environment& environment = {})
{
    const Folder folder;
    const Outcome outcome =
        run(QStringList{"show"} + arguments + QStringList{folder.write("card.ddd", file)}, environment);
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.err, "");
    return outcome.out;
}

/// The lines from the one that begins with @p begin to the next empty one.
std::string section(const std::string& text, const std::string& begin)
{
    const std::size_t at = ("\n" + text).find("\n" + begin);
    if (at == std::string::npos)
        return "no section " + begin + " in:\n" + text;
    const std::size_t end = text.find("\n\n", at);
    return text.substr(at, end == std::string::npos ? end : end + 1 - at);
}

/// Columns that a line of UTF-8 takes.
int widthOf(const std::string& line)
{
    return QString::fromStdString(line).size();
}

TEST(ShowTextTest, DrawsADayAndItsSums)
{
    EXPECT_EQ(
        section(shown(driverWithDays({longDay(march4), shortDay(march5)})), "Days"),
        "Days (00:00 to 24:00 UTC): 2\n"
        "  blank unknown, \u00B7 rest, \u2591 availability, \u2592 work, \u2588 driving\n"
        "           0  3  6  9  12 15 18 21   drive   work  avail   rest  unkn.\n"
        "2024-03-04 "
        "\u00B7\u00B7\u00B7\u00B7\u00B7\u00B7\u2592\u2588\u2588\u2588\u2588\u2588\u2588\u2588\u2588\u2588"
        "\u2591\u00B7\u00B7\u00B7\u00B7\u00B7\u00B7\u00B7   8:15   1:00   1:00   6:45   0:00\n"
        "2024-03-05         \u2588\u00B7                 1:00   0:00   0:00   1:00   8:00\n"
        "The last change of a day is drawn to midnight and counts in no sum: the card\n"
        "does not say how long it lasts.\n");
}

TEST(ShowTextTest, DrawsLettersWhereTheLocaleHasNoBlocks)
{
    EXPECT_EQ(
        section(shown(driverWithDays({longDay(march4)}), {}, {{"LC_ALL", "C"}}), "Days"),
        "Days (00:00 to 24:00 UTC): 1\n"
        "  blank unknown, . rest, a availability, w work, D driving\n"
        "           0  3  6  9  12 15 18 21   drive   work  avail   rest  unkn.\n"
        "2024-03-04 ......wDDDDDDDDDa.......   8:15   1:00   1:00   6:45   0:00\n"
        "The last change of a day is drawn to midnight and counts in no sum: the card\n"
        "does not say how long it lasts.\n");
}

TEST(ShowTextTest, DrawsFinerWhereThereIsRoom)
{
    const struct
    {
        const char* columns;
        const char* lines;
    } rows[] = {
        {"40", "2024-03-04 ......wDDDDDDDDDa.......\n   8:15   1:00   1:00   6:45   0:00\n"},
        {"69", "2024-03-04 ......wDDDDDDDDDa.......\n   8:15   1:00   1:00   6:45   0:00\n"},
        {"70", "2024-03-04 ......wDDDDDDDDDa.......   8:15   1:00   1:00   6:45   0:00\n"},
        {"80", "2024-03-04 ......wDDDDDDDDDa.......   8:15   1:00   1:00   6:45   0:00\n"},
        {"94",
         "2024-03-04 ............wwDDDDDDDDD.DDDDDDDDaa..............   8:15   1:00   1:00   6:45   0:00\n"},
        {"120", "2024-03-04 ..................wwwDDDDDDDDDDDDDD..DDDDDDDDDDDaaa.....................   8:15  "
                " 1:00   1:00   6:45   0:00\n"},
        {"142", "2024-03-04 "
                "........................wwwwDDDDDDDDDDDDDDDDDD...DDDDDDDDDDDDDDDaaaa........................"
                "....   8:15   1:00   1:00   6:45   0:00\n"},
    };
    for (const auto& row : rows) {
        EXPECT_THAT(
            shown(driverWithDays({longDay(march4)}), {}, {{"LC_ALL", "C"}, {"COLUMNS", row.columns}}),
            HasSubstr(row.lines))
            << row.columns;
    }
}

TEST(ShowTextTest, KeepsWithinTheColumns)
{
    const Folder folder;
    for (const CardFile& download : smallDownloads()) {
        for (const int columns : {70, 80, 120}) {
            std::istringstream lines(shown(download.file, {}, {{"COLUMNS", QString::number(columns)}}));
            for (std::string line; std::getline(lines, line);) {
                // The name of the file and the hash are what they are.
                const bool isOneWord = line.find("card.ddd") != std::string::npos || line.size() == 4 + 64;
                EXPECT_TRUE(isOneWord || widthOf(line) <= columns)
                    << download.name << ", " << columns << ": " << line;
            }
        }
    }
}

TEST(ShowTextTest, SaysOnceWhatBothApplicationsSay)
{
    const std::string days =
        section(shown(driverG2WithDays({longDay(march4)}, {longDay(march4)}), {}, {{"LC_ALL", "C"}}), "Days");
    EXPECT_THAT(days, StartsWith("Days (00:00 to 24:00 UTC): 1\n"));
    EXPECT_THAT(days, Not(HasSubstr("only in application")));
}

TEST(ShowTextTest, SaysWhichApplicationAloneHasADay)
{
    EXPECT_EQ(
        section(
            shown(
                driverG2WithDays(
                    {longDay(march4 - 86400), longDay(march4), longDay(march5)},
                    {longDay(march4), shortDay(march5)}),
                {}, {{"LC_ALL", "C"}}),
            "Days"),
        "Days (00:00 to 24:00 UTC): 4\n"
        "  blank unknown, . rest, a availability, w work, D driving\n"
        "           0  3  6  9  12 15 18 21   drive   work  avail   rest  unkn.\n"
        "2024-03-03 ......wDDDDDDDDDa.......   8:15   1:00   1:00   6:45   0:00\n"
        "    (so only in application TACHO)\n"
        "2024-03-04 ......wDDDDDDDDDa.......   8:15   1:00   1:00   6:45   0:00\n"
        "2024-03-05         D.                 1:00   0:00   0:00   1:00   8:00\n"
        "    (so only in application SMRDT)\n"
        "2024-03-05 ......wDDDDDDDDDa.......   8:15   1:00   1:00   6:45   0:00\n"
        "    (so only in application TACHO)\n"
        "The last change of a day is drawn to midnight and counts in no sum: the card\n"
        "does not say how long it lasts.\n");
}

TEST(ShowTextTest, ShowsARowThatTheSecondApplicationLacksUnderItsOwnHeading)
{
    sim::CardDescription card = smallDownload("driverG2").card;
    contentOf(card, 0, 0x0505)[2 + 6 + 8 + 2] = 'X'; // a letter of the first plate
    const std::string text = shown(downloadOf(card));
    EXPECT_THAT(text, HasSubstr("\nVehicles (local time): 2\n"));
    EXPECT_THAT(text, HasSubstr("\nVehicles, only in application TACHO (local time): 1\n"));
    EXPECT_THAT(shown(smallDownload("driverG2").file), Not(HasSubstr("Vehicles, only in application")));
}

TEST(ShowTextTest, SaysWhoseCardItIs)
{
    sim::DriverParameters parameters;
    parameters.surname = "Mustermann";
    parameters.firstNames = "Jana";
    parameters.authority = "Kraftfahrt-Bundesamt";
    parameters.driverIdentification = "DF000000123456";
    parameters.language = "de";
    const QByteArray file = driverFile(parameters);
    const std::string text = shown(file, {"--utc"});
    EXPECT_THAT(
        text, HasSubstr("\n  Kind                driver card\n  Generation          first generation\n"));
    EXPECT_THAT(text, HasSubstr("26635 bytes, 28 records, 12 signatures\n"));
    EXPECT_THAT(
        section(text, "Card\n"), StartsWith("Card\n"
                                            "  Surname      Mustermann\n"
                                            "  First names  Jana\n"
                                            "  Born         "));
    EXPECT_THAT(
        section(text, "Card\n"), HasSubstr("  Language     de\n"
                                           "  Card number  DF00000012345602\n"
                                           "  Issued in    D\n"
                                           "  Issued by    Kraftfahrt-Bundesamt\n"));
    EXPECT_EQ(section(text, "Download\n"), "Download\n  Downloaded before  2024-02-06 17:00\n");
    EXPECT_THAT(text, Not(HasSubstr("Vehicle at the download"))) << "the card was in no vehicle";
}

TEST(ShowTextTest, ShowsMomentsInLocalTimeUnlessUtcIsWanted)
{
    const QByteArray file = smallDownload("company").file;
    const FileRecord activities = recordOf(file, 0x050D);
    const auto* bytes = reinterpret_cast<const unsigned char*>(file.constData()) + activities.begin() + 2 + 1;
    const std::uint32_t time = sim::readU32(sim::Bytes(bytes, bytes + 4), 0);
    for (const Zone zone : {Zone::Local, Zone::Utc}) {
        const std::string moment = isoTime(time, zone).toString().left(16).replace('T', ' ').toStdString();
        const std::string text = shown(file, zone == Zone::Utc ? QStringList{"--utc"} : QStringList());
        EXPECT_THAT(text, HasSubstr("\n  " + moment + "  "));
        EXPECT_THAT(
            text, HasSubstr(zone == Zone::Utc ? "Activities (UTC): 2\n" : "Activities (local time): 2\n"));
    }
}

TEST(ShowTextTest, LeavesOutWhatIsNotInTheRange)
{
    const QByteArray file = driverWithDays({longDay(march4 - 86400), longDay(march4), shortDay(march5)});
    const std::string text =
        shown(file, {"--from", "2024-03-04", "--until", "2024-03-04"}, {{"LC_ALL", "C"}});
    EXPECT_THAT(section(text, "Days"), StartsWith("Days (00:00 to 24:00 UTC): 1\n"));
    EXPECT_THAT(text, HasSubstr("\n2024-03-04 "));
    EXPECT_THAT(text, AllOf(Not(HasSubstr("\n2024-03-03 ")), Not(HasSubstr("\n2024-03-05 "))));
    EXPECT_THAT(text, HasSubstr("\nRemaining times by the end of 2024-03-04\n"));
    const std::string nothing = shown(file, {"--from", "2030-01-01"});
    EXPECT_THAT(nothing, HasSubstr("\nDays (00:00 to 24:00 UTC): 0\n"));
    EXPECT_THAT(nothing, Not(HasSubstr("Remaining times")));
}

TEST(ShowTextTest, PutsTheRuleBesideEachFigure)
{
    EXPECT_EQ(
        section(shown(driverWithDays({longDay(march4)})), "Remaining"),
        "Remaining times by the end of 2024-03-04\n"
        "  Driving left on this day: -0:15 (9:00 less driving and work of the day)\n"
        "  Driving left in these seven days: 46:45 (56:00 less driving and work of the\n"
        "      day and the six before it)\n"
        "  Days of more than 9:00 left: 1 (2 less the days of these seven with more than\n"
        "      9:00 of driving and work)\n"
        "  Short rests left: 3 (3 less the days of these seven that leave less than 11:00\n"
        "      beside driving and work)\n"
        "  Driving left before a break: 0:45 (4:30 less driving and work of the day since\n"
        "      breaks of 45 minutes in sum)\n"
        "These are simple remaining times by the rule beside each, reckoned from what is\n"
        "on the card; they are no legal verdict.\n");
}

TEST(ShowTextTest, ShowsTheCountersOfAWorkshopCard)
{
    EXPECT_EQ(
        section(shown(realDownloads()[5].file), "Counters"), "Counters\n"
                                                             "  Calibrations with this card         40\n"
                                                             "  Of these since the download before  7\n");
}

TEST(ShowTextTest, WhatACardSaysCannotSteerTheTerminal)
{
    const Folder folder;
    QByteArray file = smallDownload("driver").file;
    const FileRecord identification = recordOf(file, 0x0520);
    put(file, identification.begin() + 65 + 1, "Mu\x1B[2Jster\x9B\x07\n          ");
    put(file, recordOf(file, 0x0505).begin() + 2 + 16, "A\x1B]0;x\x07  ");
    const std::string text = shown(file);
    EXPECT_THAT(text, HasSubstr("\n  Surname      Mu?[2Jster??\n"));
    EXPECT_THAT(text, HasSubstr("  A?]0;x?  "));
    for (const char letter : text)
        EXPECT_TRUE(letter == '\n' || static_cast<unsigned char>(letter) >= 0x20) << static_cast<int>(letter);

    const QString path = folder.write("a\x1B[1mb.ddd", smallDownload("company").file);
    EXPECT_THAT(run({"show", path}).out, HasSubstr("a?[1mb.ddd\n"));
}

TEST(ShowTextTest, UsesNoColoursBesideATerminal)
{
    EXPECT_THAT(shown(smallDownload("driver").file), Not(HasSubstr("\x1B")));
}

TEST(ShowTextTest, UsesColoursOnATerminalUnlessTheyAreUnwanted)
{
    const Folder folder;
    const QString path = folder.write("card.ddd", driverWithDays({longDay(march4)}));
    const Outcome coloured = runOnTerminal({"show", path}, {{"LC_ALL", "C"}});
    EXPECT_EQ(coloured.exitCode, 0);
    EXPECT_THAT(coloured.out, HasSubstr("\n\x1B[1mDays (00:00 to 24:00 UTC): 1\x1B[0m\n"));
    EXPECT_THAT(
        coloured.out, HasSubstr("2024-03-04 "
                                "\x1B[0m\x1B[36m......\x1B[0m\x1B[34;1mw\x1B[0m\x1B[31mDDDDDDDDD\x1B[0m\x1B["
                                "33ma\x1B[0m\x1B[36m\x1B[2m.......\x1B[0m   8:15"));
    const struct
    {
        const char* name;
        Environment environment;
    } rows[] = {
        {"NO_COLOR", {{"LC_ALL", "C"}, {"NO_COLOR", "1"}}},
        {"a terminal that knows none", {{"LC_ALL", "C"}, {"TERM", "dumb"}}},
    };
    const std::string plain = run({"show", path}, {{"LC_ALL", "C"}}).out;
    for (const auto& row : rows)
        EXPECT_EQ(runOnTerminal({"show", path}, row.environment).out, plain) << row.name;
    EXPECT_THAT(runOnTerminal({"show", path}, {{"LC_ALL", "C"}, {"NO_COLOR", ""}}).out, HasSubstr("\x1B[1m"))
        << "an empty NO_COLOR says nothing";
}

TEST(ShowTextTest, ShowsOneFileBehindTheOther)
{
    const Folder folder;
    const QString one = folder.write("one.ddd", smallDownload("company").file);
    const QString two = folder.write("two.ddd", smallDownload("driver").file);
    const std::string text = run({"show", one, two}).out;
    EXPECT_EQ(text, run({"show", one}).out + run({"show", two}).out);
}

TEST(ShowTextTest, SaysThatOtherKindsOfCardsAreNotRead)
{
    const Folder folder;
    const QString path = folder.write("control.ddd", QByteArray::fromHex("050100000503000000e6"));
    const Outcome outcome = run({"show", path});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
    EXPECT_THAT(outcome.out, HasSubstr("control card\n"));
    EXPECT_THAT(
        outcome.out,
        HasSubstr(
            "\nWhat cards of this kind keep is not read; scard records FILE lists the file's\nrecords.\n"));
}

TEST(ShowTextTest, SaysWhyThereAreNoFigures)
{
    const Folder folder;
    const QByteArray file =
        without(smallDownload("driverV2").file, [](const FileRecord& record) { return record.type < 2; });
    const Outcome outcome = run({"show", folder.write("card.ddd", file)});
    EXPECT_THAT(outcome.out, HasSubstr("Days (00:00 to 24:00 UTC): "));
    EXPECT_THAT(outcome.out, testing::Not(HasSubstr("Remaining times by")));
    EXPECT_THAT(
        outcome.out,
        HasSubstr("\nRemaining times cannot be reckoned: the days of the first application are not in\n"
                  "the file.\n"));
}

} // namespace
