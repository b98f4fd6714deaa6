#include "fixtures/FileContent.h"
#include "QtPrinters.h"

#include <cli/download/FinishedFile.h>

#include <gmock/gmock.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <sys/stat.h>

namespace {

using FinishedFile::Existing;
using FinishedFile::Placed;
using test::contentOf;
using test::writeFile;
using testing::ElementsAre;
using testing::IsEmpty;

class FinishedFileTest : public testing::Test
{
  protected:
    /// A download of some bytes in the folder that stands for "/tmp/".
    QString finished(const QByteArray& content = "download")
    {
        const QString path = m_source.filePath("C_1.DDD");
        writeFile(path, content);
        return path;
    }

    QString folder() const { return m_folder.path(); }
    QString inFolder(const char* name) const { return m_folder.filePath(QString::fromLatin1(name)); }

    /// All names in the folder, the hidden ones too.
    std::vector<std::string> names() const
    {
        std::vector<std::string> all;
        for (const QString& name :
             QDir(folder()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot))
            all.push_back(name.toStdString());
        return all;
    }

  private:
    QTemporaryDir m_source;
    QTemporaryDir m_folder;
};

TEST_F(FinishedFileTest, ComesCompleteAndLeavesNothingBehind)
{
    const QByteArray content(200000, 'x');
    const QString source = finished(content);
    const Placed placed = FinishedFile::place(source, folder(), "C_1.DDD", Existing::Refused);
    EXPECT_EQ(placed.failure, QString());
    EXPECT_EQ(placed.path, inFolder("C_1.DDD"));
    EXPECT_EQ(contentOf(placed.path), content);
    EXPECT_THAT(names(), ElementsAre("C_1.DDD"));
    EXPECT_FALSE(QFile::exists(source));
}

TEST_F(FinishedFileTest, AnEmptyDownloadComesToo)
{
    const Placed placed = FinishedFile::place(finished(""), folder(), "C_1.DDD", Existing::Refused);
    EXPECT_EQ(placed.failure, QString());
    EXPECT_EQ(QFileInfo(placed.path).size(), 0);
}

TEST_F(FinishedFileTest, HasTheRightsOfAPlainFile)
{
    const mode_t before = ::umask(027);
    const Placed placed = FinishedFile::place(finished(), folder(), "C_1.DDD", Existing::Refused);
    ::umask(before);
    struct stat status = {};
    ASSERT_EQ(::stat(QFile::encodeName(placed.path).constData(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0640U);
}

TEST_F(FinishedFileTest, NeverReplacesAFileUnasked)
{
    writeFile(inFolder("C_1.DDD"), "older");
    const QString source = finished();
    const Placed placed = FinishedFile::place(source, folder(), "C_1.DDD", Existing::Refused);
    EXPECT_EQ(placed.failure, inFolder("C_1.DDD") + " exists already; --force replaces it.");
    EXPECT_EQ(placed.path, source);
    EXPECT_EQ(contentOf(source), "download");
    EXPECT_EQ(contentOf(inFolder("C_1.DDD")), "older");
    EXPECT_THAT(names(), ElementsAre("C_1.DDD"));
}

TEST_F(FinishedFileTest, ALinkToNowhereIsNotReplacedEither)
{
    ASSERT_TRUE(QFile::link(inFolder("nowhere"), inFolder("C_1.DDD")));
    const QString source = finished();
    const Placed placed = FinishedFile::place(source, folder(), "C_1.DDD", Existing::Refused);
    EXPECT_EQ(placed.failure, inFolder("C_1.DDD") + " exists already; --force replaces it.");
    EXPECT_TRUE(QFile::exists(source));
}

TEST_F(FinishedFileTest, ReplacesAFileWhenAsked)
{
    writeFile(inFolder("C_1.DDD"), "older");
    const Placed placed = FinishedFile::place(finished(), folder(), "C_1.DDD", Existing::Replaced);
    EXPECT_EQ(placed.failure, QString());
    EXPECT_EQ(contentOf(inFolder("C_1.DDD")), "download");
    EXPECT_THAT(names(), ElementsAre("C_1.DDD"));
}

TEST_F(FinishedFileTest, AFolderOfThatNameStays)
{
    ASSERT_TRUE(QDir(folder()).mkdir("C_1.DDD"));
    const QString source = finished();
    const Placed placed = FinishedFile::place(source, folder(), "C_1.DDD", Existing::Replaced);
    EXPECT_EQ(
        placed.failure, QString("The download could not be brought to %1: Is a directory.").arg(folder()));
    EXPECT_EQ(placed.path, source);
    EXPECT_THAT(names(), ElementsAre("C_1.DDD"));
    EXPECT_TRUE(QFile::exists(source));
}

TEST_F(FinishedFileTest, ANumberKeepsTwoOfTheSameNameApart)
{
    for (const char* const expected : {"C.DDD", "C_2.DDD", "C_3.DDD"}) {
        const Placed placed = FinishedFile::place(finished(expected), folder(), "C.DDD", Existing::Kept);
        EXPECT_EQ(placed.failure, QString());
        EXPECT_EQ(placed.path, inFolder(expected));
        EXPECT_EQ(contentOf(placed.path), expected);
    }
    EXPECT_THAT(names(), ElementsAre("C.DDD", "C_2.DDD", "C_3.DDD"));
}

TEST_F(FinishedFileTest, StaysWhereItIsWhenThatIsTheFolder)
{
    const QString source = finished();
    const Placed placed = FinishedFile::place(source, QFileInfo(source).path(), "C_1.DDD", Existing::Refused);
    EXPECT_EQ(placed.failure, QString());
    EXPECT_EQ(placed.path, source);
    EXPECT_EQ(contentOf(source), "download");
}

TEST_F(FinishedFileTest, AFolderThatWentAwayLeavesTheDownloadWhereItIs)
{
    const QString source = finished();
    const Placed placed = FinishedFile::place(source, inFolder("gone"), "C_1.DDD", Existing::Refused);
    EXPECT_TRUE(placed.failure.contains("could not be brought to " + inFolder("gone")))
        << placed.failure.toStdString();
    EXPECT_EQ(placed.path, source);
    EXPECT_EQ(contentOf(source), "download");
}

TEST_F(FinishedFileTest, TriesTheFolderBeforehand)
{
    writeFile(inFolder("file"), "");
    EXPECT_EQ(FinishedFile::whyNoFolder(inFolder("gone")), "There is no folder " + inFolder("gone") + ".");
    EXPECT_EQ(FinishedFile::whyNoFolder(inFolder("file")), inFolder("file") + " is not a folder.");
    EXPECT_EQ(FinishedFile::whyNoFolder(folder()), QString());
    EXPECT_THAT(names(), ElementsAre("file"));
    EXPECT_TRUE(FinishedFile::whyNoFolder("/proc").startsWith("No file can be made in /proc: "));
}

TEST(FinishedFileName, TellsNamelessDownloadsApart)
{
    const QDateTime time(QDate(2026, 11, 21), QTime(20, 47, 5), Qt::UTC);
    EXPECT_EQ(FinishedFile::nameFor(time, "0A1B2C3D", scard::RegionDDD), "CARD_20261121_204705_0A1B2C3D.DDD");
    EXPECT_EQ(FinishedFile::nameFor(time, "0A1B2C3D", scard::RegionC1B), "CARD_20261121_204705_0A1B2C3D.C1B");
    EXPECT_EQ(FinishedFile::nameFor(time, "", scard::RegionTGD), "CARD_20261121_204705_UNKNOWN.TGD");
    EXPECT_TRUE(FinishedFile::isNameless("CARD_FILENAME_NOT_SET.DDD"));
    EXPECT_FALSE(FinishedFile::isNameless("C_1.DDD"));
}

} // namespace
