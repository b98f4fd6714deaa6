// From the bytes of a version 2.2 driver card's image to all answers, against a bare pass that walks the same
// records once, converts the same times and keeps nothing. Each iteration times both, so that the ratio
// holds when the machine's speed drifts.
#include "Allocations.h"

#include <scard/SCardDriverG2.h>
#include <scard/SCardReader.h>
#include <simulator/DriverCard.h>
#include <support/ExpectedDriver.h>

#include <benchmark/benchmark.h>

#include <QCoreApplication>
#include <QFile>
#include <QLoggingCategory>
#include <QTemporaryFile>

#include <algorithm>
#include <chrono>
#include <stdexcept>

namespace {

using Clock = std::chrono::steady_clock;
using Seconds = std::chrono::duration<double>;

/// Where the times of an EF's records lie, and what tells an unused slot: a number that is zero.
struct TimesOfEf
{
    unsigned int type; ///< of the image's record
    unsigned int fid;
    std::size_t begin;
    std::size_t recordSize;
    std::vector<std::size_t> times;
    std::size_t usedOffset;
    std::size_t usedLength;
};

const std::vector<TimesOfEf>& timesOfEfs()
{
    static const std::vector<TimesOfEf> rows = {
        {0, 0x050E, 0, 4, {0}, 0, 4},          {0, 0x0502, 0, 24, {1, 5}, 0, 1},
        {0, 0x0503, 0, 24, {1, 5}, 0, 1},      {0, 0x0505, 2, 31, {6, 10}, 10, 4},
        {0, 0x0506, 1, 10, {0}, 0, 4},         {0, 0x0507, 0, 19, {0}, 0, 4},
        {0, 0x0508, 0, 46, {1, 38, 42}, 1, 4}, {0, 0x0522, 0, 5, {0}, 0, 4},
        {2, 0x050E, 0, 4, {0}, 0, 4},          {2, 0x0502, 0, 24, {1, 5}, 0, 1},
        {2, 0x0503, 0, 24, {1, 5}, 0, 1},      {2, 0x0505, 2, 48, {6, 10}, 10, 4},
        {2, 0x0506, 2, 21, {0, 10}, 0, 4},     {2, 0x0507, 0, 19, {0}, 0, 4},
        {2, 0x0508, 0, 46, {1, 38, 42}, 1, 4}, {2, 0x0522, 2, 5, {0}, 0, 4},
        {2, 0x0523, 2, 10, {0}, 0, 4},         {2, 0x0524, 2, 18, {0, 4}, 0, 4},
        {2, 0x0528, 2, 17, {2}, 2, 4},         {2, 0x0529, 2, 20, {0, 5}, 0, 4},
        {2, 0x0530, 2, 5, {0}, 0, 4},
    };
    return rows;
}

std::uint32_t number(const unsigned char* bytes, std::size_t count)
{
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < count; ++i)
        value = (value << 8) | bytes[i];
    return value;
}

void convert(std::uint32_t seconds)
{
    QDateTime time = QDateTime::fromSecsSinceEpoch(seconds, Qt::LocalTime);
    benchmark::DoNotOptimize(time);
}

/// @return days met
int walkDays(const unsigned char* ef, std::size_t length)
{
    const unsigned char* buffer = ef + 4;
    const std::size_t size = length - 4;
    const auto at = [buffer, size](std::size_t position) { return buffer[position % size]; };
    const std::size_t newest = number(ef + 2, 2);
    int days = 0;
    for (std::size_t position = number(ef, 2);; ++days) {
        const std::size_t record = 256u * at(position + 2) + at(position + 3);
        convert(
            (std::uint32_t{at(position + 4)} << 24) | (std::uint32_t{at(position + 5)} << 16) |
            (std::uint32_t{at(position + 6)} << 8) | at(position + 7));
        unsigned int minutes = 0;
        for (std::size_t word = 12; word < record; word += 2)
            minutes += (256u * at(position + word) + at(position + word + 1)) & 0x7FF;
        benchmark::DoNotOptimize(minutes);
        if (position == newest)
            return days + 1;
        position = (position + record) % size;
    }
}

struct BarePass
{
    Seconds time{0};
    int days = 0;
    int conversions = 0;
};

BarePass barePass(const sim::Bytes& image)
{
    BarePass pass;
    const auto begin = Clock::now();
    for (std::size_t position = 0; position + 5 <= image.size();) {
        const unsigned int fid = number(&image[position], 2);
        const unsigned int type = image[position + 2];
        const std::size_t length = number(&image[position + 3], 2);
        const unsigned char* payload = &image[position + 5];
        if (fid == 0x0504 && type % 2 == 0) {
            pass.days = walkDays(payload, length);
            pass.conversions += pass.days;
        }
        for (const TimesOfEf& row : timesOfEfs()) {
            if (row.fid != fid || row.type != type)
                continue;
            for (std::size_t record = row.begin; record + row.recordSize <= length;
                 record += row.recordSize) {
                if (number(payload + record + row.usedOffset, row.usedLength) == 0)
                    continue;
                for (const std::size_t time : row.times) {
                    convert(number(payload + record + time, 4));
                    ++pass.conversions;
                }
            }
        }
        position += 5 + length;
    }
    pass.time = Clock::now() - begin;
    return pass;
}

void check(const aux::Error& failure)
{
    if (!failure.isEmpty())
        throw std::runtime_error(failure.begin()->getMessage().toStdString());
}

template <typename List>
void use(List&& list)
{
    benchmark::DoNotOptimize(list.data());
}

Seconds allAnswers(const QString& path)
{
    const auto begin = Clock::now();
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw std::runtime_error("no image");
    scard::SCardGeneric image(file, QDateTime::currentDateTimeUtc(), scard::RegionDDD);
    check(image.readCardInfo());
    const auto card =
        std::dynamic_pointer_cast<scard::SCardDriverG2>(scard::SCardReader().generateSpecific(image));
    check(card->read());

    benchmark::DoNotOptimize(card->getCardHolderName());
    benchmark::DoNotOptimize(card->getCardIdentification());
    benchmark::DoNotOptimize(card->getLastCardDownload());
    const auto days = card->getActivities();
    use(card->getVehiclesUsed());
    use(card->getEvents());
    use(card->getFaults());
    use(card->getPlaces());
    use(card->getSpecificConditions());
    use(card->getActivitiesG2());
    use(card->getVehiclesUsedG2());
    use(card->getEventsG2());
    use(card->getFaultsG2());
    use(card->getPlacesG2());
    use(card->getSpecificConditionsG2());
    use(card->getVehicleUnits());
    use(card->getGnssPlaces());
    use(card->getBorderCrossings());
    use(card->getLoadUnloadOperations());
    use(card->getLoadTypeEntries());
    benchmark::DoNotOptimize(card->getCurrentUse());
    benchmark::DoNotOptimize(card->getControlActivity());
    benchmark::DoNotOptimize(card->getDrivingLicence());
    benchmark::DoNotOptimize(card->getCurrentUseG2());
    benchmark::DoNotOptimize(card->getControlActivityG2());
    benchmark::DoNotOptimize(card->getDrivingLicenceG2());
    for (const auto& day : days) {
        const QDate date = day.date.date();
        int minutes[5];
        card->getDayStatistics(date, minutes[0], minutes[1], minutes[2], minutes[3], minutes[4]);
        benchmark::DoNotOptimize(minutes);
        benchmark::DoNotOptimize(card->getRemainingDrivingTimeOfDay(date));
        benchmark::DoNotOptimize(card->getRemainingDrivingTimeOfWeek(date));
        benchmark::DoNotOptimize(card->getRemainingExtendedDrivingTimeOfWeek(date));
        benchmark::DoNotOptimize(card->getRemainingReducedRestTimeOfWeek(date));
        benchmark::DoNotOptimize(card->getTimeToNextBreak(date));
    }
    return Clock::now() - begin;
}

sim::Bytes imageOf(int days)
{
    // A real card's buffer holds some 150 days; one that holds more shows how the cost grows.
    constexpr int usualDays = 60;
    constexpr int bytesOfBusyDay = 150;
    sim::DriverParametersG2 parameters;
    parameters.version2 = true;
    parameters.first.days = days;
    if (days > usualDays)
        parameters.activityLength = static_cast<std::uint16_t>(std::min(days * bytesOfBusyDay, 65535));
    parameters.first.activityLength = parameters.activityLength;
    return test::expectedDriverImageG2(sim::makeDriverCardG2(parameters));
}

void answersAgainstBarePass(benchmark::State& state)
{
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    QLoggingCategory::setFilterRules(QStringLiteral("default.debug=false"));
    const sim::Bytes image = imageOf(static_cast<int>(state.range(0)));
    QTemporaryFile file;
    if (!file.open())
        throw std::runtime_error("no room for the image");
    file.write(reinterpret_cast<const char*>(image.data()), static_cast<qint64>(image.size()));
    file.close();
    const QString path = file.fileName();

    // Once beforehand, not timed.
    const BarePass bare = barePass(image);
    allAnswers(path);
    bench::Allocations::start();
    allAnswers(path);
    const bench::Allocations memory = bench::Allocations::taken();

    Seconds bareTotal{0};
    Seconds total{0};
    std::vector<double> ratios;
    for (auto _ : state) {
        const Seconds bareTime = barePass(image).time;
        const Seconds time = allAnswers(path);
        bareTotal += bareTime;
        total += time;
        ratios.push_back(time / bareTime);
        state.SetIterationTime(time.count());
    }
    std::nth_element(
        ratios.begin(), ratios.begin() + static_cast<std::ptrdiff_t>(ratios.size() / 2), ratios.end());

    const double runs = static_cast<double>(state.iterations());
    state.counters["bare_ms"] = 1000 * bareTotal.count() / runs;
    state.counters["answers_ms"] = 1000 * total.count() / runs;
    state.counters["ratio"] = ratios[ratios.size() / 2];
    state.counters["days"] = bare.days;
    state.counters["times"] = bare.conversions;
    state.counters["bare_us_per_time"] = 1e6 * bareTotal.count() / runs / bare.conversions;
    state.counters["answers_us_per_time"] = 1e6 * total.count() / runs / bare.conversions;
    state.counters["image_bytes"] = static_cast<double>(image.size());
    state.counters["allocations"] = static_cast<double>(memory.count);
    state.counters["peak_bytes"] = static_cast<double>(memory.peak);
}

BENCHMARK(answersAgainstBarePass)
    ->Arg(10)
    ->Arg(25)
    ->Arg(50)
    ->Arg(60)
    ->Arg(100)
    ->Arg(200)
    ->Arg(400)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
