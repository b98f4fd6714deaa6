// A thousand of everything in one process, as in a program that runs for weeks: nothing of it piles up.
#include <pcsc/CardInReader.h>
#include <pcsc/FullDisk.h>
#include <support/Answers.h>
#include <support/CardKind.h>
#include <support/DebugStream.h>

#include <QDir>
#include <QTemporaryDir>

#include <gmock/gmock.h>

#include <iostream>
#include <malloc.h>
#include <random>

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define WITH_ADDRESS_SANITIZER
#endif
#elif defined(__SANITIZE_ADDRESS__)
#define WITH_ADDRESS_SANITIZER
#endif

#ifdef WITH_ADDRESS_SANITIZER
#include <sanitizer/allocator_interface.h>
#include <sanitizer/asan_interface.h>

// Freed memory counts as in use for as long as it is in quarantine.
extern "C" const char* __asan_default_options()
{
    return "quarantine_size_mb=0:thread_local_quarantine_size_kb=0";
}
#endif

namespace {

using namespace test;
using standin::Function;
using testing::IsEmpty;

constexpr int rounds = 1000;
constexpr int roundsToSettle = 100; ///< caches of Qt and of the allocator are full by then
constexpr int roundsBetweenLooks = 100;
constexpr int roundsPerFault = 10;
constexpr int noise = 1024; ///< bytes
constexpr unsigned int seed = 20240305;

/// Bytes that are allocated and not freed. What the allocator keeps for the thread counts as in use, so it
/// must be told to keep nothing.
long long bytesInUse()
{
#ifdef WITH_ADDRESS_SANITIZER
    return static_cast<long long>(__sanitizer_get_current_allocated_bytes());
#else
    ::malloc_trim(0);
    const struct mallinfo2 info = ::mallinfo2();
    return static_cast<long long>(info.uordblks + info.hblkhd);
#endif
}

int entriesOf(const char* folder)
{
    const QDir::Filters all = QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot;
    return static_cast<int>(QDir(folder).entryList(all).size());
}

/// What the process holds at one moment.
struct Held
{
    long long bytes;
    int descriptors;
    int threads;
};

Held held()
{
    DebugStream::clear();
    const int descriptors = entriesOf("/proc/self/fd");
    const int threads = entriesOf("/proc/self/task");
    return {bytesInUse(), descriptors, threads};
}

void print(const char* what, const std::vector<Held>& looks)
{
    std::cout << "in use after " << roundsToSettle << " / " << rounds << ' ' << what << ": "
              << looks.front().bytes << " / " << looks.back().bytes << " bytes, descriptors "
              << looks.front().descriptors << " / " << looks.back().descriptors << ", threads "
              << looks.front().threads << " / " << looks.back().threads << "; growth at each look:";
    for (const Held& look : looks)
        std::cout << ' ' << look.bytes - looks.front().bytes;
    std::cout << std::endl;
}

/// The process holds the same at each look: also a growth of two bytes a round is seen.
void expectNoGrowth(const std::vector<Held>& looks)
{
    ASSERT_EQ(looks.size(), 1u + (rounds - roundsToSettle) / roundsBetweenLooks);
    for (const Held& look : looks) {
        EXPECT_LE(look.bytes, looks.front().bytes + noise);
        EXPECT_EQ(look.descriptors, looks.front().descriptors);
        EXPECT_EQ(look.threads, looks.front().threads);
    }
}

/// Everything that is known of a card.
std::string everythingOf(scard::SCardGeneric& card)
{
    std::string all;
    if (auto* driver = dynamic_cast<scard::SCardDriverG1*>(&card))
        all = identityOf(*driver) + answersOf(*driver);
    if (const auto* driver = dynamic_cast<const scard::SCardDriverG2*>(&card))
        all += secondAnswersOf(*driver);
    if (const auto* workshop = dynamic_cast<const scard::SCardWorkshopG1*>(&card))
        all = answersOf(*workshop);
    if (const auto* workshop = dynamic_cast<const scard::SCardWorkshopG2*>(&card))
        all += secondAnswersOf(*workshop);
    if (const auto* company = dynamic_cast<const scard::SCardCompanyG1*>(&card))
        all = answersOf(*company);
    if (const auto* company = dynamic_cast<const scard::SCardCompanyG2*>(&card))
        all += secondAnswersOf(*company);
    return all;
}

/// All that is known from a file; empty when it is no card's.
std::string everythingInFile(const QString& path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    scard::SCardGeneric image(file, QDateTime::fromSecsSinceEpoch(0, Qt::UTC), scard::RegionDDD);
    if (!image.readCardInfo().isEmpty())
        return {};
    const std::shared_ptr<scard::SCardGeneric> card = scard::SCardReader().generateSpecific(image);
    card->read();
    return everythingOf(*card);
}

void write(const QString& path, const sim::Bytes& content, std::size_t length)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    ASSERT_EQ(
        file.write(reinterpret_cast<const char*>(content.data()), static_cast<qint64>(length)),
        static_cast<qint64>(length));
}

class LongRunTest : public CardInReader
{
  protected:
    LongRunTest()
    {
#ifndef WITH_ADDRESS_SANITIZER
        EXPECT_STREQ(std::getenv("GLIBC_TUNABLES"), "glibc.malloc.tcache_count=0");
#endif
        pcsc().setRecording(false);
        for (const CardKind& kind : kinds)
            images.push_back(kind.image(kind.card, 0));
    }

    void expectDownload(std::size_t number)
    {
        const Download result = host.download();
        EXPECT_THAT(chain(result.failure), IsEmpty());
        EXPECT_THAT(chain(result.closeFailure), IsEmpty());
        EXPECT_TRUE(bytes(result.image) == images[number]) << kinds[number].name;
        EXPECT_TRUE(QFile::remove(result.path));
    }

    /// A download with the next fault in turn.
    void expectFailedDownload(std::size_t number)
    {
        const std::size_t step = anyStepThatEnds(kinds[number]);
        std::unique_ptr<FileSizeLimit> disk;
        switch (faults++ % 4) {
        case 0:
            card().failAt(step, sim::Fault::pulled());
            break;
        case 1:
            card().failAt(step, sim::Fault::status(0x6985));
            break;
        case 2:
            pcsc().failCall(Function::Transmit, step, SCARD_E_NOT_TRANSACTED);
            break;
        default:
            disk = std::make_unique<FileSizeLimit>(below(images[number].size()));
        }
        const Download result = host.download();
        disk.reset();
        EXPECT_FALSE(result.failure.isEmpty()) << kinds[number].name << ", command " << step;
        EXPECT_FALSE(result.card);
        removeDownloads();
    }

    /// What is held between two downloads, with the same card in the reader at each look.
    Held heldBetweenDownloads()
    {
        insert(kinds.front().card);
        pcsc().clearCalls();
        EXPECT_EQ(pcsc().connectedCards(), 0u);
        EXPECT_EQ(pcsc().openContexts(), 1u);
        EXPECT_EQ(pcsc().listsNotFreed(), 0u);
        EXPECT_THAT(downloads(), IsEmpty());
        return held();
    }

    std::size_t below(std::size_t end)
    {
        return std::uniform_int_distribution<std::size_t>(0, end - 1)(random);
    }

    const std::vector<CardKind> kinds = {driverKind(),   driverG2Kind(),   driverV2Kind(),
                                         workshopKind(), workshopG2Kind(), workshopV2Kind(),
                                         companyKind(),  companyG2Kind(),  companyV2Kind()};
    std::vector<sim::Bytes> images;
    Host host;

  private:
    /// A command that a download cannot do without; what becomes of the first of two applications does not
    /// end it.
    std::size_t anyStepThatEnds(const CardKind& kind)
    {
        for (;;) {
            const std::size_t index = below(kind.steps.size());
            const Step& step = kind.steps[index];
            const bool isFirstOfTwo =
                kind.secondGeneration && step.phase == Phase::Reading && step.generation == 1;
            if (!step.tolerated && !isFirstOfTwo)
                return index;
        }
    }

    std::mt19937 random{seed};
    int faults = 0;
};

TEST_F(LongRunTest, AThousandDownloadsLeaveNothingBehind)
{
    std::vector<Held> looks;
    looks.reserve(rounds);
    for (int round = 1; round <= rounds; ++round) {
        SCOPED_TRACE(round);
        const std::size_t number = static_cast<std::size_t>(round) % kinds.size();
        insert(kinds[number].card);
        pcsc().clearCalls();
        if (round % roundsPerFault == 0)
            expectFailedDownload(number);
        else
            expectDownload(number);
        DebugStream::clear();
        if (round >= roundsToSettle && round % roundsBetweenLooks == 0)
            looks.push_back(heldBetweenDownloads());
    }
    print("downloads", looks);
    expectNoGrowth(looks);
}

TEST_F(LongRunTest, AThousandFilesLeaveNothingBehind)
{
    const QTemporaryDir folder;
    std::vector<QString> paths;
    std::vector<std::string> answers;
    for (std::size_t number = 0; number < kinds.size(); ++number) {
        paths.push_back(folder.filePath(kinds[number].name));
        write(paths.back(), images[number], images[number].size());
        answers.push_back(everythingInFile(paths.back()));
        EXPECT_NE(answers.back(), "");
    }

    const QString cut = folder.filePath("cut");
    std::vector<Held> looks;
    looks.reserve(rounds);
    for (int round = 1; round <= rounds; ++round) {
        SCOPED_TRACE(round);
        const std::size_t number = static_cast<std::size_t>(round) % kinds.size();
        if (round % roundsPerFault == 0) {
            write(cut, images[number], below(images[number].size()));
            everythingInFile(cut);
        } else {
            EXPECT_TRUE(everythingInFile(paths[number]) == answers[number]) << kinds[number].name;
        }
        DebugStream::clear();
        if (round >= roundsToSettle && round % roundsBetweenLooks == 0)
            looks.push_back(held());
    }
    print("files", looks);
    expectNoGrowth(looks);
}

TEST_F(LongRunTest, AThousandReaderObjectsKeepTheReadersNamesAndNothingElse)
{
    // What the names cost by themselves, the allocator's share included.
    std::vector<std::unique_ptr<char, decltype(&std::free)>> copies;
    copies.reserve(rounds);
    const long long beforeCopies = bytesInUse();
    for (int copy = 0; copy < rounds - roundsToSettle; ++copy)
        copies.emplace_back(::strdup(virtualReaderName), &std::free);
    const long long costOfNames = bytesInUse() - beforeCopies;
    copies.clear();
    ASSERT_GE(costOfNames, static_cast<long long>(sizeof virtualReaderName) * (rounds - roundsToSettle));

    std::vector<Held> looks;
    looks.reserve(rounds);
    for (int round = 1; round <= rounds; ++round) {
        scard::SCardReader reader;
        EXPECT_THAT(chain(reader.init()), IsEmpty());
        EXPECT_THAT(chain(reader.uninit()), IsEmpty());
        EXPECT_EQ(pcsc().openContexts(), 0u);
        EXPECT_EQ(pcsc().listsNotFreed(), 0u);
        DebugStream::clear();
        if (round == roundsToSettle || round == rounds)
            looks.push_back(held());
    }
    print("reader objects", looks);
    std::cout << "of which the readers' names are " << costOfNames << std::endl;
    EXPECT_LE(looks.back().bytes - looks.front().bytes, costOfNames + noise);
    EXPECT_EQ(looks.back().descriptors, looks.front().descriptors);
    EXPECT_EQ(looks.back().threads, looks.front().threads);
}

} // namespace
