#include "fixtures/FileContent.h"
#include "QtPrinters.h"

#include <scard/detail/OutputFile.h>
#include <support/ErrorChain.h>

#include <gmock/gmock.h>

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTemporaryFile>
#include <QUuid>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using scard::detail::openInTmp;
using scard::detail::syncToDisk;
using test::contentOf;
using test::writeFile;
using testing::ElementsAre;
using testing::IsEmpty;

/// A name in "/tmp/" that nobody else has; what stands under it goes with this object.
class NameInTmp
{
  public:
    NameInTmp() : m_name(QStringLiteral("unit_tests-") + QUuid::createUuid().toString(QUuid::WithoutBraces))
    {}
    ~NameInTmp() { ::unlink(encodedPath().constData()); }
    NameInTmp(const NameInTmp&) = delete;
    NameInTmp& operator=(const NameInTmp&) = delete;

    QString name() const { return m_name; }
    QString path() const { return QStringLiteral("/tmp/") + m_name; }
    QByteArray encodedPath() const { return QFile::encodeName(path()); }

    bool exists() const
    {
        struct stat status = {};
        return ::lstat(encodedPath().constData(), &status) == 0;
    }

  private:
    QString m_name;
};

TEST(OpenInTmp, CreatesTheFileAndOpensItForWritingOnly)
{
    const NameInTmp name;
    QFile file;

    openInTmp(file, name.name());

    ASSERT_TRUE(file.isOpen());
    EXPECT_TRUE(file.isWritable());
    EXPECT_FALSE(file.isReadable());
    EXPECT_EQ(file.write("abc"), 3);
    file.close();
    EXPECT_EQ(contentOf(name.path()), QByteArray("abc"));
}

TEST(OpenInTmp, WhatIsWrittenIsInTheFileAtOnce)
{
    const NameInTmp name;
    QFile file;
    openInTmp(file, name.name());
    ASSERT_TRUE(file.isOpen());

    EXPECT_EQ(file.write("abc"), 3);

    EXPECT_EQ(contentOf(name.path()), QByteArray("abc"));
}

TEST(OpenInTmp, CutsAnExistingFile)
{
    const NameInTmp name;
    writeFile(name.path(), QByteArray(1000, 'x'));
    QFile file;

    openInTmp(file, name.name());

    ASSERT_TRUE(file.isOpen());
    EXPECT_EQ(contentOf(name.path()), QByteArray());
    EXPECT_EQ(file.write("new"), 3);
    file.close();
    EXPECT_EQ(contentOf(name.path()), QByteArray("new"));
}

TEST(OpenInTmp, TakesNamesBeyondAscii)
{
    const NameInTmp name;
    const QString accented = name.name() + QStringLiteral("_J_M\u00FCller.DDD");
    QFile file;

    openInTmp(file, accented);

    ASSERT_TRUE(file.isOpen());
    EXPECT_TRUE(QFile::remove(QStringLiteral("/tmp/") + accented));
}

TEST(OpenInTmp, RefusesANameWithASeparator)
{
    const QTemporaryDir folder(QStringLiteral("/tmp/unit_tests-XXXXXX"));
    ASSERT_TRUE(folder.isValid());
    const QString folderName = QFileInfo(folder.path()).fileName();
    for (const QString& name :
         {folderName + QStringLiteral("/file"),
          QStringLiteral("../tmp/") + folderName + QStringLiteral("/file"),
          QStringLiteral("/") + folder.filePath(QStringLiteral("file"))}) {
        SCOPED_TRACE(name.toStdString());
        QFile file;

        openInTmp(file, name);

        EXPECT_FALSE(file.isOpen());
        EXPECT_THAT(QDir(folder.path()).entryList(QDir::Files), IsEmpty());
    }
}

TEST(OpenInTmp, RefusesANameWithAZeroByte)
{
    const NameInTmp name;
    QFile file;

    openInTmp(file, name.name() + QChar(u'\0') + QStringLiteral(".DDD"));

    EXPECT_FALSE(file.isOpen());
    EXPECT_FALSE(name.exists());
}

TEST(OpenInTmp, RefusesASymbolicLinkAndLeavesItsTargetAlone)
{
    const QTemporaryDir folder;
    ASSERT_TRUE(folder.isValid());
    const QString target = folder.filePath(QStringLiteral("target"));
    writeFile(target, "precious");
    const NameInTmp name;
    ASSERT_TRUE(QFile::link(target, name.path()));
    QFile file;

    openInTmp(file, name.name());

    EXPECT_FALSE(file.isOpen());
    EXPECT_EQ(contentOf(target), QByteArray("precious"));
    EXPECT_TRUE(QFileInfo(name.path()).isSymLink());
}

TEST(OpenInTmp, RefusesASymbolicLinkToNothingAndDoesNotCreateItsTarget)
{
    const QTemporaryDir folder;
    ASSERT_TRUE(folder.isValid());
    const QString target = folder.filePath(QStringLiteral("target"));
    const NameInTmp name;
    ASSERT_TRUE(QFile::link(target, name.path()));
    QFile file;

    openInTmp(file, name.name());

    EXPECT_FALSE(file.isOpen());
    EXPECT_FALSE(QFile::exists(target));
}

TEST(OpenInTmp, RefusesDirectories)
{
    const QTemporaryDir folder(QStringLiteral("/tmp/unit_tests-XXXXXX"));
    ASSERT_TRUE(folder.isValid());
    for (const QString& name :
         {QFileInfo(folder.path()).fileName(), QString(), QStringLiteral("."), QStringLiteral("..")}) {
        SCOPED_TRACE(name.toStdString());
        QFile file;

        openInTmp(file, name);

        EXPECT_FALSE(file.isOpen());
    }
}

TEST(OpenInTmp, RefusesAPipeThatNobodyReadsWithoutWaiting)
{
    const NameInTmp name;
    ASSERT_EQ(::mkfifo(name.encodedPath().constData(), 0600), 0);
    QFile file;

    openInTmp(file, name.name());

    EXPECT_FALSE(file.isOpen());
}

TEST(OpenInTmp, RefusesAPipeThatSomebodyReads)
{
    const NameInTmp name;
    ASSERT_EQ(::mkfifo(name.encodedPath().constData(), 0600), 0);
    const int reader = ::open(name.encodedPath().constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    ASSERT_GE(reader, 0);
    QFile file;

    openInTmp(file, name.name());

    EXPECT_FALSE(file.isOpen());
    ::close(reader);
}

TEST(OpenInTmp, RefusesAFileWithASecondNameAndLeavesItAlone)
{
    const NameInTmp name;
    const NameInTmp secondName;
    QFile existing(secondName.path());
    ASSERT_TRUE(existing.open(QIODevice::WriteOnly));
    existing.write("somebody needs this");
    existing.close();
    ASSERT_EQ(::link(secondName.encodedPath().constData(), name.encodedPath().constData()), 0);

    QFile file;
    openInTmp(file, name.name());

    EXPECT_FALSE(file.isOpen());
    EXPECT_EQ(QFileInfo(secondName.path()).size(), 19);
}

TEST(IsOwnPlainFile, WantsAPlainFileOfTheUserWithOneName)
{
    constexpr uid_t user = 1000;
    const struct
    {
        const char* what;
        mode_t mode;
        nlink_t names;
        uid_t owner;
        bool own;
    } rows[] = {
        {"the user's own file", S_IFREG | 0600, 1, user, true},
        {"another user's file", S_IFREG | 0666, 1, user + 1, false},
        {"the administrator's file", S_IFREG | 0666, 1, 0, false},
        {"a file with a second name", S_IFREG | 0600, 2, user, false},
        {"a directory", S_IFDIR | 0700, 1, user, false},
        {"a pipe", S_IFIFO | 0600, 1, user, false},
        {"a device", S_IFCHR | 0600, 1, user, false},
        {"a socket", S_IFSOCK | 0600, 1, user, false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        struct stat status = {};
        status.st_mode = row.mode;
        status.st_nlink = row.names;
        status.st_uid = row.owner;
        EXPECT_EQ(scard::detail::isOwnPlainFile(status, user), row.own);
    }
}

TEST(OpenInTmp, LeavesTheFileClosedWhenTheNameIsTooLong)
{
    QFile file;

    openInTmp(file, QString(300, QLatin1Char('x')));

    EXPECT_FALSE(file.isOpen());
}

TEST(SyncToDisk, SucceedsOnAWrittenFile)
{
    QTemporaryFile file;
    ASSERT_TRUE(file.open());
    ASSERT_EQ(file.write("abc"), 3);

    EXPECT_TRUE(syncToDisk(file).isEmpty());
}

TEST(SyncToDisk, HasNothingToWaitForOnAClosedFile)
{
    QFile file;

    EXPECT_TRUE(syncToDisk(file).isEmpty());
}

TEST(SyncToDisk, HasNothingToWaitForOnADevice)
{
    QFile file(QStringLiteral("/dev/null"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));

    EXPECT_TRUE(syncToDisk(file).isEmpty());
}

TEST(SyncToDisk, TellsTheReasonOfAFailure)
{
    const int descriptor = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
    ASSERT_GE(descriptor, 0);
    QFile file;
    ASSERT_TRUE(file.open(descriptor, QIODevice::WriteOnly, QFileDevice::DontCloseHandle));
    ASSERT_EQ(::close(descriptor), 0);

    EXPECT_THAT(
        test::chain(syncToDisk(file)),
        ElementsAre(test::lib(std::string("saveToFile() sync failed: ") + std::strerror(EBADF), 0)));
}

} // namespace
