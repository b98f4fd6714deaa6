// The program is killed while it downloads: at each command, at each record of the file, and at random
// moments of the reading, of the save and of what follows it. A card that was told of a download has its
// file.
#include "FileFault.h"

#include <pcsc/FullDisk.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <csignal>
#include <ctime>
#include <functional>
#include <iostream>
#include <new>
#include <random>
#include <sys/mman.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace {

using namespace test;
using Clock = std::chrono::steady_clock;
using std::chrono::nanoseconds;

/// The points from which random moments are counted.
enum Point : std::size_t
{
    Begin,        ///< of the download
    AllRead,      ///< the answer of the last command before the save
    FirstOfStamp, ///< the answer of the first command behind the save
    End,          ///< the answer of the last command
    Points
};

/// What outlives the program that is killed: the card, and how far that program was.
struct Survivor
{
    struct Ef
    {
        std::array<std::atomic<std::uint8_t>, 8> content{};
        std::atomic<bool> written{false};
    };

    std::atomic<std::size_t> commands{0};
    std::array<std::atomic<Clock::rep>, Points> reached{};
    std::array<Ef, 2> efs{}; ///< of each application, the one that a download is written to
};

/// A Survivor in memory that parent and child share.
class SharedSurvivor
{
  public:
    SharedSurvivor()
    {
        void* memory =
            ::mmap(nullptr, sizeof(Survivor), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
        if (memory == MAP_FAILED)
            throw std::bad_alloc();
        m_survivor = new (memory) Survivor;
    }

    ~SharedSurvivor() { ::munmap(m_survivor, sizeof(Survivor)); }

    SharedSurvivor(const SharedSurvivor&) = delete;
    SharedSurvivor& operator=(const SharedSurvivor&) = delete;

    Survivor* operator->() const { return m_survivor; }
    Survivor& operator*() const { return *m_survivor; }

  private:
    Survivor* m_survivor;
};

/// When the program is killed; a default one is never reached.
struct Moment
{
    std::size_t command = 0;     ///< with the answer of this command, counted from 1
    rlim_t room = RLIM_INFINITY; ///< when the file would grow beyond this
    Point point = Points;        ///< so long behind a point
    nanoseconds delay{0};
};

[[noreturn]] void die(int = 0)
{
    ::raise(SIGKILL);
    ::_exit(1);
}

/// The system kills this process after a time. It needs no other processor than the one it has, and does not
/// wait for another program's turn.
void dieAfter(nanoseconds delay)
{
    sigevent event{};
    event.sigev_notify = SIGEV_SIGNAL;
    event.sigev_signo = SIGKILL;
    timer_t timer{};
    ::timer_create(CLOCK_MONOTONIC, &event, &timer);
    constexpr long second = 1000000000;
    const auto count = std::max<nanoseconds::rep>(delay.count(), 1); // 0 would stop the timer
    itimerspec once{};
    once.it_value.tv_sec = static_cast<std::time_t>(count / second);
    once.it_value.tv_nsec = static_cast<long>(count % second);
    ::timer_settime(timer, 0, &once, nullptr);
}

/// Where the kills of a test have fallen.
struct Hits
{
    int beforeSave = 0;
    int withinSave = 0;
    int withFileCutShort = 0; ///< of those within the save
    int withinStamp = 0;
    int after = 0;
};

class KilledDownload : public FileFault
{
  protected:
    KilledDownload() { m_survivor = std::make_unique<SharedSurvivor>(); }

    const Survivor& survivor() const { return **m_survivor; }

    /// A program downloads the card and is killed at @p moment, or is not; true when it was.
    bool runAndKill(const Moment& moment)
    {
        m_survivor = std::make_unique<SharedSurvivor>();
        insert(description);
        const pid_t child = ::fork();
        if (child == 0)
            downloadAndDie(moment);
        int status = 0;
        EXPECT_EQ(::waitpid(child, &status, 0), child);
        const bool killed = WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL;
        EXPECT_TRUE(killed || (WIFEXITED(status) && WEXITSTATUS(status) == 0)) << "status " << status;
        return killed;
    }

    /// The card was told of the download only if the file is whole, and the next download of the card as it
    /// is now is whole, too, over whatever the killed program has left.
    void expectToldOnlyOfWholeFile()
    {
        if (isTold()) {
            EXPECT_TRUE(hasWholeFile());
        }
        sim::CardDescription now = description;
        for (std::size_t i = 0; i < now.applications.size(); ++i) {
            const Survivor::Ef& ef = survivor().efs.at(i);
            for (sim::FileDescription& file : now.applications[i].files)
                if (file.fid == kind.writtenFid && ef.written)
                    std::copy_n(ef.content.begin(), file.content.size(), file.content.begin());
        }
        expectWholeAndStamped(downloadOf(now), kind.image(now, 0));
        removeDownloads();
    }

    bool isTold() const { return survivor().efs[0].written || survivor().efs[1].written; }

    static sim::Bytes leftFile()
    {
        const QStringList files = downloads();
        EXPECT_LE(files.size(), 1);
        return files.isEmpty() ? sim::Bytes() : bytes(fileContent(files.front()));
    }

    bool hasWholeFile() const { return leftFile() == image; }

    void count(bool killed, Hits& hits) const
    {
        if (!killed || survivor().commands == kind.steps.size()) {
            ++hits.after;
        } else if (survivor().commands > commandsBeforeStamp()) {
            ++hits.withinStamp;
        } else if (downloads().isEmpty()) {
            ++hits.beforeSave;
        } else {
            ++hits.withinSave;
            if (!hasWholeFile())
                ++hits.withFileCutShort;
        }
    }

    /// Time from each point to the next in a download that nobody kills: the middle of several.
    std::array<nanoseconds, Points> durations()
    {
        constexpr std::size_t runs = 7;
        std::array<std::vector<nanoseconds>, Points> measured;
        for (std::size_t run = 0; run < runs; ++run) {
            EXPECT_FALSE(runAndKill({}));
            EXPECT_EQ(survivor().commands, kind.steps.size());
            EXPECT_TRUE(isTold() && hasWholeFile());
            removeDownloads();
            for (std::size_t point = Begin; point < End; ++point)
                measured.at(point).emplace_back(
                    survivor().reached.at(point + 1) - survivor().reached.at(point));
        }
        std::array<nanoseconds, Points> middle{};
        for (std::size_t point = Begin; point < End; ++point) {
            std::sort(measured.at(point).begin(), measured.at(point).end());
            middle.at(point) = measured.at(point).at(runs / 2);
        }
        return middle;
    }

  private:
    /// The whole life of the program.
    [[noreturn]] void downloadAndDie(const Moment& moment)
    {
        std::unique_ptr<FileSizeLimit> limit;
        if (moment.room != RLIM_INFINITY) {
            limit = std::make_unique<FileSizeLimit>(moment.room);
            std::signal(SIGXFSZ, die);
        }
        pcsc().afterTransmit(
            [this, &moment](const sim::Bytes& command, const sim::Bytes&) { afterCommand(command, moment); });
        reach(Begin, moment);
        ::_exit(host.download().failure.isEmpty() ? 0 : 2);
    }

    void afterCommand(const sim::Bytes& command, const Moment& moment)
    {
        constexpr std::uint8_t updateBinary = 0xD6;
        Survivor& shared = **m_survivor;
        if (command.at(1) == updateBinary)
            keepWhatIsWritten();
        const std::size_t commands = ++shared.commands;
        if (commands == moment.command)
            die();
        if (commands == commandsBeforeStamp())
            reach(AllRead, moment);
        if (commands <= commandsBeforeStamp())
            return;
        if (commands == commandsBeforeStamp() + 1)
            reach(FirstOfStamp, moment);
        // The answer takes its time on the line.
        std::this_thread::sleep_for(std::chrono::microseconds(100));
        if (commands == kind.steps.size())
            reach(End, moment);
    }

    void keepWhatIsWritten()
    {
        const std::vector<bool> changed = written();
        for (std::size_t i = 0; i < changed.size(); ++i) {
            if (!changed[i])
                continue;
            Survivor::Ef& ef = (*m_survivor)->efs.at(i);
            const sim::Bytes& content = *card().file(description.applications[i].aid, kind.writtenFid);
            std::copy(content.begin(), content.end(), ef.content.begin());
            ef.written = true;
        }
    }

    void reach(Point point, const Moment& moment)
    {
        (*m_survivor)->reached.at(point) = Clock::now().time_since_epoch().count();
        if (point == moment.point)
            dieAfter(moment.delay);
    }

    std::unique_ptr<SharedSurvivor> m_survivor;
};

TEST_P(KilledDownload, AtEachCommandTheCardIsToldOfAWholeFileOnly)
{
    const auto firstUpdate = static_cast<std::size_t>(
        std::find_if(
            kind.steps.begin(), kind.steps.end(),
            [](const Step& step) { return step.kind == Kind::Update; }) -
        kind.steps.begin());
    for (std::size_t command = 1; command <= kind.steps.size(); ++command) {
#ifdef SCARD_SANITIZED
        // Several times slower, and nothing but reading happens before.
        if (command + 10 < commandsBeforeStamp() && command % 10 != 0)
            continue;
#endif
        SCOPED_TRACE(testing::Message() << command << ' ' << kind.steps[command - 1].command);
        Moment moment;
        moment.command = command;
        EXPECT_TRUE(runAndKill(moment));
        EXPECT_EQ(survivor().commands, command);
        EXPECT_EQ(isTold(), command > firstUpdate);
        if (command > commandsBeforeStamp()) {
            EXPECT_TRUE(hasWholeFile());
        } else {
            EXPECT_TRUE(downloads().isEmpty());
        }
        expectToldOnlyOfWholeFile();
    }
}

TEST_P(KilledDownload, AtEachRecordOfTheFileTheCardIsToldNothing)
{
    for (const std::size_t room : placesToStop()) {
        SCOPED_TRACE(testing::Message() << "room " << room);
        Moment moment;
        moment.room = room;
        EXPECT_TRUE(runAndKill(moment));
        EXPECT_FALSE(isTold());
        expectCutFile(room);
        expectToldOnlyOfWholeFile();
    }
}

TEST_P(KilledDownload, AtRandomMomentsTheCardIsToldOfAWholeFileOnly)
{
    // Of a download's time nearly all is reading; most kills belong where something can be half done.
    const struct
    {
        Point point;
        int kills;
        int Hits::*wanted; ///< more kills follow until one of these is among them
    } rows[] = {
#ifdef SCARD_SANITIZED
        {Begin, 2, &Hits::beforeSave},
        {AllRead, 8, &Hits::withFileCutShort},
        {FirstOfStamp, 5, &Hits::withinStamp},
#else
        {Begin, 10, &Hits::beforeSave},
        {AllRead, 40, &Hits::withFileCutShort},
        {FirstOfStamp, 25, &Hits::withinStamp},
#endif
    };
    const std::array<nanoseconds, Points> lasting = durations();
    std::mt19937 random(20240305);
    Hits hits;
    for (const auto& row : rows) {
        std::uniform_int_distribution<nanoseconds::rep> delays(0, lasting.at(row.point).count());
        const int atMost = 20 * row.kills;
        for (int kill = 0; kill < row.kills || (hits.*row.wanted == 0 && kill < atMost); ++kill) {
            Moment moment;
            moment.point = row.point;
            moment.delay = nanoseconds(delays(random));
            SCOPED_TRACE(testing::Message() << moment.delay.count() << " ns behind point " << row.point);
            const bool killed = runAndKill(moment);
            count(killed, hits);
            expectToldOnlyOfWholeFile();
        }
    }
    std::cout << kind.name << ": killed " << hits.beforeSave << " times before the save, " << hits.withinSave
              << " within (" << hits.withFileCutShort << " with the file cut short), " << hits.withinStamp
              << " within the stamp, " << hits.after << " after it" << std::endl;
    RecordProperty("BeforeSave", hits.beforeSave);
    RecordProperty("WithinSave", hits.withinSave);
    RecordProperty("WithFileCutShort", hits.withFileCutShort);
    RecordProperty("WithinStamp", hits.withinStamp);
    RecordProperty("After", hits.after);
    // Or nothing was searched.
    EXPECT_GT(hits.withFileCutShort, 0);
    EXPECT_GT(hits.withinStamp, 0);
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, KilledDownload, testing::Values(driverKind(), driverV2Kind(), workshopKind(), workshopV2Kind()),
    nameOfKind);

} // namespace
