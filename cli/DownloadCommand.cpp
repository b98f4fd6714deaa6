#include "Commands.h"
#include "Console.h"
#include "download/DownloadArguments.h"
#include "reader/ReaderWait.h"
#include "StopSignal.h"

#include <QDeadlineTimer>

#include <chrono>

namespace {

const auto waitOption = QStringLiteral("wait");
const auto withoutLimit = QStringLiteral("forever");

/// Numbers and words, but not the option that follows.
bool isWaitValue(const QString& text)
{
    bool isNumber = false;
    text.toDouble(&isNumber);
    return isNumber || !text.startsWith(QLatin1Char('-'));
}

std::optional<ExitCode> readWait(const Arguments& arguments, QDeadlineTimer& end)
{
    end = QDeadlineTimer(0);
    if (!arguments.isSet(waitOption))
        return std::nullopt;
    const QString text = arguments.value(waitOption);
    if (text == withoutLimit) {
        end = QDeadlineTimer(QDeadlineTimer::Forever);
        return std::nullopt;
    }
    bool isNumber = false;
    const uint seconds = text.toUInt(&isNumber);
    if (!isNumber)
        return arguments.usageError(QStringLiteral("\"%1\" is no number of seconds.").arg(text));
    end = QDeadlineTimer(std::chrono::seconds(seconds));
    return std::nullopt;
}

[[noreturn]] void endBySignal()
{
    out().flush();
    StopSignal::endProgram();
}

/// Waits until the first reader has a card, the time is over or the reader is lost: opening will then say
/// what is wrong.
void waitForCard(scard::SCardReader& reader, const QDeadlineTimer& end)
{
    ReaderWait wait(reader);
    const auto hasCard = [&wait] {
        const ReaderSurvey& survey = wait.survey();
        return !survey.readers.empty() && survey.readers.front().hasCard();
    };
    while (!hasCard() && !wait.isLost() && !end.hasExpired()) {
        wait.wait();
        if (StopSignal::requested()) {
            reader.uninit();
            endBySignal();
        }
    }
}

DownloadResult noReader(const aux::Error& failure)
{
    DownloadResult result;
    result.failure = cardFailureOf(failure);
    result.code = result.failure->code;
    return result;
}

DownloadResult download(const DownloadOptions& options, ReportStyle style, const QDeadlineTimer& end)
{
    scard::SCardReader reader;
    const aux::Error failure = reader.init();
    if (!failure.isEmpty()) {
        reader.uninit();
        return noReader(failure);
    }
    if (!end.hasExpired())
        waitForCard(reader, end);
    ProgressDisplay display(DownloadArguments::progressStyle(style));
    return CardDownload(options, display, QStringLiteral("Card"), endBySignal).run(reader);
}

} // namespace

ExitCode runDownload(const QStringList& arguments)
{
    Arguments given(
        QStringLiteral("scard download"),
        QStringLiteral("Downloads the card in the first reader into a file, and tells the card of it."));
    DownloadArguments::add(given);
    given.addOptionalValue(
        waitOption, QStringLiteral("SECONDS"),
        QStringLiteral("Wait for a card to be put in; without SECONDS as long as it takes."), withoutLimit,
        isWaitValue);
    if (const std::optional<ExitCode> end = given.read(arguments))
        return *end;
    QDeadlineTimer waitEnd;
    if (const std::optional<ExitCode> end = readWait(given, waitEnd))
        return *end;
    DownloadOptions options;
    ReportStyle style = ReportStyle::Text;
    if (const std::optional<ExitCode> end = DownloadArguments::read(given, options, style))
        return *end;

    StopSignal::install();
    const DownloadResult result = download(options, style, waitEnd);
    printDownload(result, style);
    return finishOutput(result.code);
}
