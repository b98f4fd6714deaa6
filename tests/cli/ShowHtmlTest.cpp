// `scard show --html`: a page that needs nothing beside itself.
#include "Downloads.h"

#include <support/FileRecords.h>
#include <support/Program.h>

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <gmock/gmock.h>

#include <sys/stat.h>

namespace {

using namespace test;
using testing::HasSubstr;
using testing::Not;

std::string content(const QString& path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
    return file.readAll().toStdString();
}

/// The text of the page that the program makes of @p files; fails when it is not well-formed.
std::string textOfPage(const QStringList& arguments)
{
    const Folder folder;
    const QString page = folder.path("page.html");
    const Outcome shown = run(QStringList{"show", "--html", page} + arguments);
    EXPECT_EQ(shown.out, "");
    const Outcome checked = runProgram("/usr/bin/python3", {CHECK_HTML, page});
    EXPECT_EQ(checked.err, "");
    EXPECT_EQ(checked.exitCode, 0);
    const std::string source = content(page);
    EXPECT_EQ(source.find("://"), std::string::npos) << "something from elsewhere";
    EXPECT_EQ(source.find("<script"), std::string::npos);
    return checked.out;
}

QString hoursAndMinutes(int minutes)
{
    return QString("%1:%2").arg(minutes / 60).arg(minutes % 60, 2, 10, QLatin1Char('0'));
}

TEST(ShowHtmlTest, IsAWholePageForEveryKindOfCard)
{
    const Folder folder;
    QStringList files;
    for (const CardFile& download : smallDownloads()) {
        files << folder.write(QString::fromLatin1(download.name) + ".ddd", download.file);
        const std::string text = textOfPage({files.back()});
        EXPECT_THAT(text, HasSubstr(std::string(download.name) + ".ddd")) << download.name;
        EXPECT_THAT(text, HasSubstr(" card")) << download.name;
    }
    const std::string all = textOfPage(files);
    for (const CardFile& download : smallDownloads())
        EXPECT_THAT(all, HasSubstr(std::string(download.name) + ".ddd"));
}

TEST(ShowHtmlTest, ShowsEachDayWithItsSumsTheLegendAndTheFigures)
{
    const Folder folder;
    const QString path = folder.write("card.ddd", realDownloads().front().file);
    const std::string text = textOfPage({path});
    const QJsonObject download =
        QJsonDocument::fromJson(QByteArray::fromStdString(run({"show", "--json", path}).out))
            .object()["downloads"]
            .toArray()
            .first()
            .toObject();
    const QJsonArray days = download["applications"].toArray().first().toObject()["days"].toArray();
    ASSERT_EQ(days.size(), 60);
    std::size_t position = 0;
    for (int i = 0; i < days.size(); ++i) {
        const QJsonObject day = days[i].toObject();
        const std::string date = day["date"].toString().toStdString();
        position = text.find(date, position);
        ASSERT_NE(position, std::string::npos) << date;
        const std::string next = days[i + 1].toObject()["date"].toString("Remaining times").toStdString();
        const std::string line = text.substr(position, text.find(next, position) - position);
        for (const char* key : {"driving_minutes", "work_minutes", "rest_minutes"}) {
            const int minutes = day[key].toInt();
            const bool isThere = line.find(hoursAndMinutes(minutes).toStdString()) != std::string::npos;
            EXPECT_TRUE(minutes == 0 || isThere) << line << ' ' << key;
        }
    }
    for (const char* word : {"rest", "availability", "work", "driving", "unknown"})
        EXPECT_THAT(text, HasSubstr(word));
    EXPECT_THAT(
        text, HasSubstr("These are simple remaining times by the rule beside each, reckoned from what is on "
                        "the card; they are no legal verdict."));
}

TEST(ShowHtmlTest, EscapesWhatACardSays)
{
    const struct
    {
        const char* name;
        QByteArray surname;
        const char* text;
        const char* notInSource;
    } rows[] = {
        {"a script", "<script>alert(1)</script>", "<script>alert(1)</script>", "<script"},
        {"an entity", "A&lt;B", "A&lt;B", "A&lt;B"},
        {"quotes", "\"O'Neil\" onload=x", "\"O'Neil\" onload=x", "\"O'Neil\" onload"},
        {"control characters", "A\x1B[2J\x07Z", "[2J", "\x1B"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const Folder folder;
        QByteArray file = smallDownload("driver").file;
        put(file, recordOf(file, 0x0520).begin() + 65 + 1, row.surname.leftJustified(35, ' '));
        const QString path = folder.write("card.ddd", file);
        EXPECT_THAT(textOfPage({path}), HasSubstr(row.text));
        EXPECT_THAT(run({"show", "--html", "-", path}).out, Not(HasSubstr(row.notInSource)));
    }
}

TEST(ShowHtmlTest, EscapesTheNameOfTheFile)
{
    const Folder folder;
    const QString path = folder.write("a<b>&\".ddd", smallDownload("company").file);
    EXPECT_THAT(textOfPage({path}), HasSubstr("a<b>&\".ddd"));
}

TEST(ShowHtmlTest, SaysWhatIsDamaged)
{
    const Folder folder;
    const QString path = folder.write("cut.ddd", smallDownload("driver").file.left(2000));
    const std::string message = run({"show", path}).err;
    EXPECT_THAT(textOfPage({path}), HasSubstr(message.substr(7, message.find('\n') - 7)));
}

TEST(ShowHtmlTest, IsTheSameOnStandardOutput)
{
    const Folder folder;
    const QString path = folder.write("card.ddd", smallDownload("driverV2").file);
    const QString page = folder.path("page.html");
    EXPECT_EQ(run({"show", "--html", page, path}).exitCode, 0);
    const Outcome outcome = run({"show", "--html", "-", path}, {{"LC_ALL", "C"}});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.out, content(page)) << "UTF-8 whatever the locale says";
}

TEST(ShowHtmlTest, TakesThePlaceOfAPageOnly)
{
    const Folder folder;
    const QByteArray download = smallDownload("driver").file;
    const QString card = folder.write("card.ddd", download);
    const QString letter = folder.write("letter.txt", "Dear Jana,");
    const QString pipe = folder.path("pipe");
    ASSERT_EQ(::mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    const struct
    {
        QString page;
        const char* reason;
    } rows[] = {
        {card, " exists and is no page; it is left as it is."},
        {letter, " exists and is no page; it is left as it is."},
        {pipe, " is no ordinary file."},
        {folder.path(""), " is no ordinary file."},
    };
    for (const auto& row : rows) {
        const Outcome outcome = run({"show", "--html", row.page, card});
        EXPECT_EQ(outcome.exitCode, 5);
        EXPECT_EQ(
            outcome.err,
            "scard: " + row.page.toStdString() + row.reason + "\nName another file for the page.\n");
    }
    EXPECT_EQ(content(card), download.toStdString());
    EXPECT_EQ(content(letter), "Dear Jana,");

    const QString page = folder.write("page.html", "");
    EXPECT_EQ(run({"show", "--html", page, card}).exitCode, 0) << "an empty file";
    EXPECT_EQ(run({"show", "--html", page, card, card}).exitCode, 0) << "an older page";
}

TEST(ShowHtmlTest, LeavesThePageAsItWasWhenThereIsNothingToShow)
{
    const Folder folder;
    const QString page = folder.write("page.html", "before");
    EXPECT_EQ(run({"show", "--html", page, folder.path("nowhere.ddd")}).exitCode, 1);
    EXPECT_EQ(content(page), "before");
}

} // namespace
