// A whole download against a bare loop that sends the same commands through the same channel and does nothing
// else. Each iteration times both, so that the ratio holds when the machine's speed drifts.
#include "Allocations.h"
#include "Channel.h"

#include <scard/SCardReader.h>
#include <simulator/Card.h>
#include <simulator/DriverCard.h>
#include <support/ExpectedDriver.h>
#include <support/PcscPresence.h>

#include <benchmark/benchmark.h>

#include <QCoreApplication>
#include <QFile>
#include <QLoggingCategory>

#include <winscard.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstring>
#include <stdexcept>
#include <string>

namespace {

using Clock = std::chrono::steady_clock;
using Seconds = std::chrono::duration<double>;

/// Bytes on the line of a fast card take this long; the library's own time should vanish beside it.
constexpr double fastLineSecondsPerCommand = 0.013;

void discard(QtMsgType, const QMessageLogContext&, const QString&) {}

enum class DebugStream
{
    Discarded,
    Off
};

/// A connection to the card, freshly reset.
class Connection
{
  public:
    Connection()
    {
        check(SCardEstablishContext(SCARD_SCOPE_SYSTEM, nullptr, nullptr, &m_context));
        DWORD protocol = 0;
        check(SCardConnect(
            m_context, test::virtualReaderName, SCARD_SHARE_SHARED, SCARD_PROTOCOL_T1, &m_handle, &protocol));
    }

    ~Connection()
    {
        SCardDisconnect(m_handle, SCARD_RESET_CARD);
        SCardReleaseContext(m_context);
    }

    void send(const sim::Bytes& command)
    {
        std::array<unsigned char, 300> answer;
        DWORD length = answer.size();
        check(SCardTransmit(
            m_handle, SCARD_PCI_T1, command.data(), command.size(), nullptr, answer.data(), &length));
        benchmark::DoNotOptimize(answer);
    }

  private:
    static void check(LONG code)
    {
        if (code != SCARD_S_SUCCESS)
            throw std::runtime_error(pcsc_stringify_error(code));
    }

    SCARDCONTEXT m_context = 0;
    SCARDHANDLE m_handle = 0;
};

std::vector<sim::Bytes> allCommands()
{
    std::vector<sim::Bytes> commands;
    for (const test::Step& step : test::expectedDriverSteps())
        commands.push_back(sim::fromHex(step.command));
    sim::appendU32(commands.back(), 1700000000);
    return commands;
}

Seconds bareLoop(const std::vector<sim::Bytes>& commands)
{
    {
        const Connection reset;
    }
    Connection connection;
    const auto begin = Clock::now();
    for (const sim::Bytes& command : commands)
        connection.send(command);
    return Clock::now() - begin;
}

Seconds download()
{
    {
        const Connection reset;
    } // the card starts from its master file, as the bare loop's does
    scard::SCardReader reader;
    QString path;
    QObject::connect(
        &reader, &scard::SCardReader::readDone,
        [&path](const std::shared_ptr<scard::SCardGeneric>& card) { path = "/tmp/" + card->getFilename(); });
    aux::Error failure = reader.init();
    if (failure.isEmpty())
        failure = reader.open();
    const auto begin = Clock::now();
    if (failure.isEmpty())
        failure = reader.read(scard::RegionDDD);
    const Seconds time = Clock::now() - begin;
    reader.close();
    reader.uninit();
    if (!failure.isEmpty())
        throw std::runtime_error(failure.begin()->getMessage().toStdString());
    QFile::remove(path);
    return time;
}

void downloadAgainstBareLoop(benchmark::State& state, DebugStream debugStream)
{
    qInstallMessageHandler(discard);
    QLoggingCategory::setFilterRules(
        debugStream == DebugStream::Off ? QStringLiteral("default.debug=false") : QString());

    sim::Card card(sim::makeDriverCardG1());
    card.setLogging(false);
    bench::putIntoReader(card);
    const std::vector<sim::Bytes> commands = allCommands();

    // Once beforehand, not timed: commands and memory.
    bareLoop(commands);
    bench::Allocations::start();
    bareLoop(commands);
    const bench::Allocations bareMemory = bench::Allocations::taken();
    const std::size_t commandsBefore = card.commandCount();
    bench::Allocations::start();
    download();
    const bench::Allocations memory = bench::Allocations::taken();
    const std::size_t commandCount = card.commandCount() - commandsBefore;

    Seconds bareTotal{0};
    Seconds downloadTotal{0};
    std::vector<double> ratios;
    for (auto _ : state) {
        const Seconds bare = bareLoop(commands);
        const Seconds whole = download();
        bareTotal += bare;
        downloadTotal += whole;
        ratios.push_back(whole / bare);
        state.SetIterationTime(whole.count());
    }
    std::nth_element(
        ratios.begin(), ratios.begin() + static_cast<std::ptrdiff_t>(ratios.size() / 2), ratios.end());

    const double runs = static_cast<double>(state.iterations());
    const double ownPerCommand =
        (downloadTotal - bareTotal).count() / runs / static_cast<double>(commands.size());
    state.counters["bare_ms"] = 1000 * bareTotal.count() / runs;
    state.counters["download_ms"] = 1000 * downloadTotal.count() / runs;
    state.counters["ratio"] = ratios[ratios.size() / 2];
    state.counters["own_us_per_command"] = 1e6 * ownPerCommand;
    state.counters["own_percent_of_13ms"] = 100 * ownPerCommand / fastLineSecondsPerCommand;
    state.counters["commands"] = static_cast<double>(commandCount);
    state.counters["fewest_commands"] = static_cast<double>(commands.size());
    state.counters["allocations"] = static_cast<double>(memory.count) - static_cast<double>(bareMemory.count);
    state.counters["peak_bytes"] = static_cast<double>(memory.peak) - static_cast<double>(bareMemory.peak);
    state.SetLabel(bench::channelName());
    bench::takeOut();
}

BENCHMARK_CAPTURE(downloadAgainstBareLoop, debugStreamDiscarded, DebugStream::Discarded)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(downloadAgainstBareLoop, debugStreamOff, DebugStream::Off)
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
