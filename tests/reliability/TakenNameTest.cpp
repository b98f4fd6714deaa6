// What stands under the name that a download's file will have, for every kind of card and each way to name a
// file: nothing of it is touched, the card is not told, and the next download works when it is gone.
#include "FileFault.h"

#include <QDir>
#include <QFile>

#include <gmock/gmock.h>

#include <cerrno>
#include <climits>
#include <cstring>
#include <fcntl.h>
#include <functional>
#include <linux/capability.h>
#include <set>
#include <string>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

using namespace test;

/// A name that files may have of "/tmp/elsewhere/", where links lead.
const std::string elsewhere = "/tmp/elsewhere/";

std::string encoded(const QString& path)
{
    return QFile::encodeName(path).toStdString();
}

void writeFile(const std::string& path, const QByteArray& content)
{
    QFile file(QFile::decodeName(path.c_str()));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << path;
    ASSERT_EQ(file.write(content), content.size());
}

/// Everything about a file that somebody else would notice if it changed.
std::string stateOf(const std::string& path)
{
    struct stat status = {};
    if (::lstat(path.c_str(), &status) != 0)
        return std::strerror(errno);
    std::string state = std::to_string(status.st_ino) + " mode " + std::to_string(status.st_mode) +
                        " names " + std::to_string(status.st_nlink) + " owner " +
                        std::to_string(status.st_uid) + " size " + std::to_string(status.st_size) +
                        " changed " + std::to_string(status.st_ctim.tv_sec) + '.' +
                        std::to_string(status.st_ctim.tv_nsec) + ": ";
    if (S_ISREG(status.st_mode)) {
        state += fileContent(QFile::decodeName(path.c_str())).toStdString();
    } else if (S_ISLNK(status.st_mode)) {
        char target[PATH_MAX] = {};
        state.append(target, static_cast<std::size_t>(::readlink(path.c_str(), target, sizeof target)));
    } else if (S_ISDIR(status.st_mode)) {
        const QDir::Filters everything =
            QDir::AllEntries | QDir::System | QDir::Hidden | QDir::NoDotAndDotDot;
        state += QDir(QFile::decodeName(path.c_str())).entryList(everything).join('/').toStdString();
    }
    return state;
}

/// The program has no right over permissions while this object lives, as that of an ordinary user.
class WithoutRightOverPermissions
{
  public:
    WithoutRightOverPermissions()
    {
        EXPECT_EQ(::syscall(SYS_capget, &m_header, m_before), 0);
        __user_cap_data_struct without[_LINUX_CAPABILITY_U32S_3];
        std::memcpy(without, m_before, sizeof m_before);
        without[CAP_TO_INDEX(CAP_DAC_OVERRIDE)].effective &= ~CAP_TO_MASK(CAP_DAC_OVERRIDE);
        EXPECT_EQ(::syscall(SYS_capset, &m_header, without), 0);
    }

    ~WithoutRightOverPermissions() { EXPECT_EQ(::syscall(SYS_capset, &m_header, m_before), 0); }

    WithoutRightOverPermissions(const WithoutRightOverPermissions&) = delete;
    WithoutRightOverPermissions& operator=(const WithoutRightOverPermissions&) = delete;

  private:
    __user_cap_header_struct m_header{_LINUX_CAPABILITY_VERSION_3, 0};
    __user_cap_data_struct m_before[_LINUX_CAPABILITY_U32S_3]{};
};

/// What takes a name, and how it gets there.
struct Obstacle
{
    const char* what;
    std::function<void(const std::string& path)> place;
};

/// A file of another user that everybody may write to. In a user namespace there is no other user to give it
/// to: there it is one of the system's.
void placeForeignFile(const std::string& path)
{
    constexpr uid_t nobody = 65534;
    writeFile(path, "somebody needs this");
    ASSERT_EQ(::chmod(path.c_str(), 0666), 0);
    if (::chown(path.c_str(), nobody, nobody) != 0) {
        ASSERT_EQ(::mount("/etc/passwd", path.c_str(), nullptr, MS_BIND, nullptr), 0) << std::strerror(errno);
    }
    struct stat status = {};
    ASSERT_EQ(::stat(path.c_str(), &status), 0);
    ASSERT_NE(status.st_uid, ::geteuid());
}

void takeAway(const std::string& path)
{
    ::umount2(path.c_str(), UMOUNT_NOFOLLOW); // a file of the system's; all others are no mounts
    ::unlink((path + "/entry").c_str());
    EXPECT_TRUE(::unlink(path.c_str()) == 0 || ::rmdir(path.c_str()) == 0) << path;
}

const std::vector<Obstacle>& refusedObstacles()
{
    static const std::vector<Obstacle> all = {
        {"a directory", [](const std::string& path) { ASSERT_EQ(::mkdir(path.c_str(), 0777), 0); }},
        {"a directory that is not empty",
         [](const std::string& path) {
             ASSERT_EQ(::mkdir(path.c_str(), 0777), 0);
             writeFile(path + "/entry", "somebody needs this");
         }},
        {"a symbolic link to a file",
         [](const std::string& path) {
             ASSERT_EQ(::symlink((elsewhere + "file").c_str(), path.c_str()), 0);
         }},
        {"a symbolic link to nothing",
         [](const std::string& path) {
             ASSERT_EQ(::symlink((elsewhere + "missing").c_str(), path.c_str()), 0);
         }},
        {"a symbolic link to a directory",
         [](const std::string& path) {
             ASSERT_EQ(::symlink((elsewhere + "folder").c_str(), path.c_str()), 0);
         }},
        {"a symbolic link to itself",
         [](const std::string& path) { ASSERT_EQ(::symlink(path.c_str(), path.c_str()), 0); }},
        {"a file of another user", placeForeignFile},
        {"a second name of a file",
         [](const std::string& path) { ASSERT_EQ(::link((elsewhere + "file").c_str(), path.c_str()), 0); }},
        {"a pipe", [](const std::string& path) { ASSERT_EQ(::mkfifo(path.c_str(), 0666), 0); }},
    };
    return all;
}

class TakenName : public FileFault
{
  protected:
    TakenName()
    {
        EXPECT_EQ(::mkdir(elsewhere.c_str(), 0777), 0);
        EXPECT_EQ(::mkdir((elsewhere + "folder").c_str(), 0777), 0);
        writeFile(elsewhere + "file", "somebody needs this");
    }

    ~TakenName() override { QDir(QFile::decodeName(elsewhere.c_str())).removeRecursively(); }

    /// The regions by which files of this kind have names of their own.
    std::vector<scard::FilenameRegion> regions() const
    {
        if (kind.isCompany())
            return {scard::RegionDDD};
        return {scard::RegionDDD, scard::RegionC1B, scard::RegionTGD};
    }

    /// The file's path in a region, "%1" in place of the minute.
    QString pathIn(scard::FilenameRegion region)
    {
        const Download known = downloadFresh(region);
        EXPECT_TRUE(known.card);
        removeDownloads();
        const QString minute = minuteOf(known.card->getDownloadTimestamp(), region);
        EXPECT_EQ(known.path.count(minute), 1) << known.path.toStdString();
        return QString(known.path).replace(minute, QStringLiteral("%1"));
    }

    /// The paths that a download that starts now may get: this minute's and the next one's.
    static std::vector<std::string> coming(const QString& path, scard::FilenameRegion region)
    {
        const QDateTime now = QDateTime::currentDateTimeUtc();
        return {
            encoded(path.arg(minuteOf(now, region))), encoded(path.arg(minuteOf(now.addSecs(60), region)))};
    }

    /// The names, and where links from them lead.
    static std::vector<std::string> statesOf(const std::vector<std::string>& paths)
    {
        std::vector<std::string> states;
        for (const std::string& path : paths)
            states.push_back(stateOf(path));
        for (const char* target : {"", "file", "folder", "missing"})
            states.push_back(stateOf(elsewhere + target));
        return states;
    }

    void expectRefused(const QString& path, scard::FilenameRegion region, const Obstacle& obstacle)
    {
        SCOPED_TRACE(obstacle.what);
        const std::vector<std::string> names = coming(path, region);
        for (const std::string& name : names)
            obstacle.place(name);
        const std::vector<std::string> before = statesOf(names);

        expectFailed(downloadFresh(region), errorOfNoFile());
        EXPECT_EQ(statesOf(names), before);

        for (const std::string& name : names)
            takeAway(name);
        expectNextDownloadToWork(region);
        removeDownloads();
    }

    /// An older file of our own under each name.
    void expectReplaced(
        const QString& path, scard::FilenameRegion region, const QByteArray& older, mode_t permissions)
    {
        SCOPED_TRACE(testing::Message() << older.size() << " bytes, permissions " << permissions);
        for (const std::string& name : coming(path, region)) {
            writeFile(name, older);
            ASSERT_EQ(::chmod(name.c_str(), permissions), 0);
        }
        const int filesBefore = downloads().size();
        expectNextDownloadToWork(region);
        EXPECT_EQ(downloads().size(), filesBefore);
        removeDownloads();
    }

  private:
    static QString minuteOf(const QDateTime& time, scard::FilenameRegion region)
    {
        return time.toString(region == scard::RegionC1B ? "yyMMddhhmm" : "yyyyMMdd_hhmm");
    }
};

TEST_P(TakenName, WhatIsNotAPlainFileOfOursEndsTheDownloadAndIsNotTouched)
{
    for (const scard::FilenameRegion region : regions()) {
        const QString path = pathIn(region);
        SCOPED_TRACE(path.toStdString());
        for (const Obstacle& obstacle : refusedObstacles())
            expectRefused(path, region, obstacle);
    }
}

TEST_P(TakenName, AFileThatMayNotBeWrittenToEndsTheDownloadAndIsNotTouched)
{
    for (const scard::FilenameRegion region : regions()) {
        const QString path = pathIn(region);
        SCOPED_TRACE(path.toStdString());
        const WithoutRightOverPermissions ordinaryUser;
        expectRefused(path, region, {"a file without write permission", [](const std::string& name) {
                                         writeFile(name, "somebody needs this");
                                         ASSERT_EQ(::chmod(name.c_str(), 0444), 0);
                                     }});
    }
}

TEST_P(TakenName, AnOlderFileOfOursIsReplacedWhole)
{
    const int size = static_cast<int>(image.size());
    for (const scard::FilenameRegion region : regions()) {
        const QString path = pathIn(region);
        SCOPED_TRACE(path.toStdString());
        for (const int olderSize : {0, 10, size - 1, size, size + 1, 3 * size})
            expectReplaced(path, region, QByteArray(olderSize, 'x'), 0644);
        // Permissions do not bind an administrator, as whom the launcher runs this.
        expectReplaced(path, region, QByteArray(3 * size, 'x'), 0444);
    }
}

INSTANTIATE_TEST_SUITE_P(Kinds, TakenName, testing::ValuesIn(allKinds()), nameOfKind);

} // namespace
