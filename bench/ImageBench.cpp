// How the time to read an image grows with its size and with the number of EFs that are looked for: a card's
// records behind n bytes of the smallest records, so that each lookup has to pass all of them. The sizes are
// timed in turn within one iteration, so that the ratios hold when the machine's speed drifts.
#include <scard/SCardReader.h>
#include <support/ExpectedCompany.h>
#include <support/ExpectedDriver.h>

#include <benchmark/benchmark.h>

#include <QCoreApplication>
#include <QLoggingCategory>
#include <QTemporaryFile>

#include <algorithm>
#include <array>
#include <chrono>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;
using Seconds = std::chrono::duration<double>;

constexpr int mebibyte = 1024 * 1024;
constexpr std::array<int, 3> factors = {1, 4, 16};

/// An EF that no card has, of no bytes: its record is as small as one can be.
const QByteArray smallestRecord = QByteArray::fromHex("0500000000");

/// An image of about @p bytes bytes in front of @p card.
std::unique_ptr<QTemporaryFile> imageOf(int bytes, const sim::Bytes& card)
{
    auto file = std::make_unique<QTemporaryFile>();
    // The library wants a file that has a name; a temporary one gets it when somebody asks.
    if (!file->open() || file->fileName().isEmpty())
        throw std::runtime_error("no room for the image");
    file->write(smallestRecord.repeated(bytes / smallestRecord.size()));
    file->write(reinterpret_cast<const char*>(card.data()), static_cast<qint64>(card.size()));
    if (!file->flush())
        throw std::runtime_error("no room for the image");
    return file;
}

void check(const aux::Error& failure)
{
    if (!failure.isEmpty())
        throw std::runtime_error(failure.begin()->getMessage().toStdString());
}

Seconds reading(QFile& file)
{
    const auto begin = Clock::now();
    scard::SCardGeneric image(file, QDateTime::currentDateTimeUtc(), scard::RegionDDD);
    check(image.readCardInfo());
    const auto card = scard::SCardReader().generateSpecific(image);
    check(card->read());
    benchmark::DoNotOptimize(card->getFilename());
    return Clock::now() - begin;
}

double median(std::vector<double> values)
{
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

void readingOfLargeImages(benchmark::State& state, const sim::Bytes& card)
{
    std::vector<std::unique_ptr<QTemporaryFile>> files;
    for (const int factor : factors) {
        files.push_back(imageOf(factor * mebibyte, card));
        reading(*files.back()); // once beforehand, not timed
    }
    std::array<std::vector<double>, factors.size()> nanoseconds; // for a byte
    for (auto _ : state) {
        Seconds total{0};
        for (std::size_t i = 0; i < factors.size(); ++i) {
            const Seconds time = reading(*files[i]);
            nanoseconds[i].push_back(1e9 * time.count() / static_cast<double>(files[i]->size()));
            total += time;
        }
        state.SetIterationTime(total.count());
    }
    const double one = median(nanoseconds.front());
    state.counters["ns_per_byte"] = one;
    for (std::size_t i = 1; i < factors.size(); ++i)
        state.counters["per_byte_of_" + std::to_string(factors[i]) + "MiB"] = median(nanoseconds[i]) / one;
}

/// Looks @p lookups times for an EF that is not there, in an image of one mebibyte.
Seconds lookingFor(scard::SCardGeneric& image, int lookups)
{
    const auto begin = Clock::now();
    for (int i = 0; i < lookups; ++i) {
        unsigned int length = 0;
        unsigned int start = 0;
        benchmark::DoNotOptimize(image.memSelectFile(0x0504, &length, &start));
    }
    return Clock::now() - begin;
}

void lookupsOfEfs(benchmark::State& state)
{
    // As many as the first generation's cards have, and their double and fourfold.
    constexpr std::array<int, 3> lookups = {16, 32, 64};
    const auto file = imageOf(mebibyte, {});
    scard::SCardGeneric image(*file, QDateTime::currentDateTimeUtc(), scard::RegionDDD);
    lookingFor(image, 1);
    std::array<std::vector<double>, lookups.size()> microseconds; // for a lookup
    for (auto _ : state) {
        Seconds total{0};
        for (std::size_t i = 0; i < lookups.size(); ++i) {
            const Seconds time = lookingFor(image, lookups[i]);
            microseconds[i].push_back(1e6 * time.count() / lookups[i]);
            total += time;
        }
        state.SetIterationTime(total.count());
    }
    const double one = median(microseconds.front());
    state.counters["us_per_lookup"] = one;
    for (std::size_t i = 1; i < lookups.size(); ++i)
        state.counters["per_lookup_of_" + std::to_string(lookups[i])] = median(microseconds[i]) / one;
}

} // namespace

int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    QLoggingCategory::setFilterRules(QStringLiteral("default.debug=false"));
    benchmark::Initialize(&argc, argv);
    const struct
    {
        const char* name;
        sim::Bytes image;
    } cards[] = {
        {"company_g1", test::expectedCompanyImage(test::companyCard(), 0)},
        {"driver_g1", test::expectedDriverImage(test::driverCard())},
        {"driver_g2v2", test::expectedDriverImageG2(test::driverCardV2())},
    };
    for (const auto& card : cards)
        benchmark::RegisterBenchmark(
            (std::string("readingOfLargeImages/") + card.name).c_str(),
            [&card](benchmark::State& state) { readingOfLargeImages(state, card.image); })
            ->UseManualTime()
            ->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("lookupsOfEfs", lookupsOfEfs)
        ->UseManualTime()
        ->Unit(benchmark::kMillisecond);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
