// How long a person waits for `scard show` of a full version 2.2 card, as a whole process, beside a start of
// the same program that shows nothing. Each iteration times both.
#include <simulator/DriverCard.h>
#include <support/ExpectedDriver.h>

#include <benchmark/benchmark.h>

#include <QCoreApplication>
#include <QProcess>
#include <QTemporaryFile>

#include <chrono>
#include <stdexcept>

namespace {

using Clock = std::chrono::steady_clock;
using Seconds = std::chrono::duration<double>;

/// A driver card of version 2.2 whose activity buffer is full.
const QString& downloadPath()
{
    static QTemporaryFile file;
    if (!file.isOpen()) {
        sim::DriverParametersG2 parameters;
        parameters.version2 = true;
        parameters.first.days = 400;
        const std::vector<unsigned char> image =
            test::expectedDriverImageG2(sim::makeDriverCardG2(parameters));
        const auto size = static_cast<qint64>(image.size());
        if (!file.open() || file.write(reinterpret_cast<const char*>(image.data()), size) != size ||
            !file.flush())
            throw std::runtime_error("the download could not be written");
    }
    static const QString path = file.fileName();
    return path;
}

double secondsOf(const QStringList& arguments)
{
    QProcess process;
    process.setStandardOutputFile(QProcess::nullDevice());
    const Clock::time_point begin = Clock::now();
    process.start(QStringLiteral(SCARD_PROGRAM), arguments);
    if (!process.waitForFinished() || process.exitCode() != 0)
        throw std::runtime_error("the program failed");
    return Seconds(Clock::now() - begin).count();
}

void show(benchmark::State& state, const QStringList& options)
{
    const QStringList arguments = QStringList{QStringLiteral("show"), downloadPath()} + options;
    double bare = 0;
    double shown = 0;
    for (auto _ : state) {
        bare += secondsOf({QStringLiteral("--version")});
        const double seconds = secondsOf(arguments);
        state.SetIterationTime(seconds);
        shown += seconds;
    }
    state.counters["ms_start_alone"] = 1000 * bare / static_cast<double>(state.iterations());
    state.counters["ratio"] = shown / bare;
}

BENCHMARK_CAPTURE(show, text, QStringList())->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(show, json, QStringList{QStringLiteral("--json")})
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(show, csv, QStringList{QStringLiteral("--csv"), QStringLiteral("periods")})
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(show, html, QStringList{QStringLiteral("--html"), QStringLiteral("-")})
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
