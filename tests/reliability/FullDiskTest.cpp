// Downloads to a "/tmp/" without room, for every kind of card: they end, say exactly which record found none,
// tell the card nothing, and work as soon as there is room.
#include "FileFault.h"
#include "SmallDisk.h"

#include <pcsc/FullDisk.h>

#include <QDir>
#include <QFile>

#include <gmock/gmock.h>

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace {

using namespace test;
using testing::IsEmpty;

constexpr char noSpace[] = "No space left on device";

class FullDisk : public FileFault
{
  protected:
    /// What the test says of it may be longer than the limit, and go to a file.
    Download downloadWithRoom(std::size_t room)
    {
        const FileSizeLimit limit(room);
        return downloadFresh();
    }

    static std::size_t pageSize() { return static_cast<std::size_t>(::sysconf(_SC_PAGESIZE)); }

    /// Creates an empty file, or says why that does not work.
    static int createFile(const QString& path)
    {
        const int descriptor =
            ::open(QFile::encodeName(path).constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
        if (descriptor < 0)
            return errno;
        ::close(descriptor);
        return 0;
    }
};

TEST_P(FullDisk, AFileThatCannotGrowEndsTheDownloadWhereverItStops)
{
    for (const std::size_t room : placesToStop()) {
        SCOPED_TRACE(testing::Message() << "room " << room);
        expectFailed(downloadWithRoom(room), errorOfRoom(room, "File too large"));
        expectCutFile(room);
        expectNextDownloadToWork();
        removeDownloads();
    }
}

TEST_P(FullDisk, RoomForExactlyTheFileIsEnough)
{
    expectWholeAndStamped(downloadWithRoom(image.size()), image);
}

TEST_P(FullDisk, ADiskWithTooFewPagesEndsTheDownloadAndWorksWithMore)
{
    for (std::size_t pages = 0; pages * pageSize() < image.size(); ++pages) {
        SCOPED_TRACE(testing::Message() << pages << " pages");
        // A size of nothing would mean a disk without limit, so a page is there and taken.
        SmallDisk disk("size=" + std::to_string((pages + 1) * pageSize()));
        ASSERT_TRUE(disk.isMounted());
        QFile filler("/tmp/filler");
        ASSERT_TRUE(filler.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
        ASSERT_EQ(
            filler.write(QByteArray(static_cast<int>(pageSize()), 'x')), static_cast<qint64>(pageSize()));
        filler.close();

        expectFailed(downloadFresh(), errorOfRoom(pages * pageSize(), noSpace));
        expectCutFile(pages * pageSize());

        disk.setRoom("size=1m");
        expectNextDownloadToWork();
    }
}

TEST_P(FullDisk, ADiskThatTakesNoMoreFilesEndsTheDownloadWithoutOne)
{
    const SmallDisk disk("size=1m,nr_inodes=20");
    ASSERT_TRUE(disk.isMounted());
    const QString filler = QStringLiteral("/tmp/filler%1");
    int fillers = 0;
    int reason = 0;
    while (fillers < 1000 && (reason = createFile(filler.arg(fillers))) == 0)
        ++fillers;
    ASSERT_EQ(reason, ENOSPC);

    expectFailed(downloadFresh(), errorOfNoFile());
    EXPECT_THAT(downloads(), IsEmpty());

    ASSERT_TRUE(QFile::remove(filler.arg(0)));
    expectNextDownloadToWork();
}

TEST_P(FullDisk, ADiskThatIsNotWrittenToEndsTheDownloadAndKeepsAnOlderFile)
{
    SmallDisk disk("size=1m");
    ASSERT_TRUE(disk.isMounted());
    for (const bool olderFile : {false, true}) {
        SCOPED_TRACE(olderFile ? "with an older file" : "empty");
        QStringList older;
        if (olderFile)
            older.append(downloadFresh().path);
        disk.setReadOnly(true);

        expectFailed(downloadFresh(), errorOfNoFile());
        EXPECT_EQ(downloads(), older);
        if (olderFile) {
            EXPECT_EQ(bytes(fileContent(older.front())), image);
        }

        disk.setReadOnly(false);
        expectNextDownloadToWork();
        removeDownloads();
    }
}

INSTANTIATE_TEST_SUITE_P(Kinds, FullDisk, testing::ValuesIn(allKinds()), nameOfKind);

} // namespace
