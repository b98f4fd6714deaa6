// Several threads verify at once.
#include "Image.h"
#include "Roots.h"
#include "Told.h"

#include <cli/Downloads.h>
#include <scardverify/VerifyImage.h>

#include <gtest/gtest.h>

#include <thread>

namespace {

using namespace scard::verify;
using namespace test;

/// What every thread must find.
struct Outcome
{
    Verdict verdict;
    std::vector<Told> told;
    std::size_t uncovered;

    bool operator==(const Outcome& other) const
    {
        return verdict == other.verdict && told == other.told && uncovered == other.uncovered;
    }
};

std::vector<Outcome> outcomesOf(const std::vector<QByteArray>& files, const std::vector<RootKey>& keys)
{
    std::vector<Outcome> outcomes;
    for (const QByteArray& file : files) {
        const VerificationReport report = verifyImage(file, keys);
        outcomes.push_back({report.verdict, toldOf(report), report.uncovered.size()});
    }
    return outcomes;
}

TEST(ThreadTest, FindsTheSameInEachThread)
{
    std::vector<QByteArray> files;
    for (const CardFile& download : smallDownloads()) {
        files.push_back(download.file);
        Image image(download.file);
        image.payload(0x0501, dataG1)[0] = '\x09';
        files.push_back(image.bytes());
    }
    // The keys are shared, as a host would share them.
    const std::vector<RootKey>& keys = allRoots();
    constexpr std::size_t count = 4;
    std::vector<std::vector<Outcome>> outcomes(count);
    std::vector<std::thread> threads;
    for (std::vector<Outcome>& each : outcomes)
        threads.emplace_back([&] { each = outcomesOf(files, keys); });
    for (std::thread& thread : threads)
        thread.join();
    const std::vector<Outcome> alone = outcomesOf(files, keys);
    ASSERT_EQ(alone.size(), files.size());
    for (const std::vector<Outcome>& each : outcomes)
        EXPECT_TRUE(each == alone);
}

} // namespace
