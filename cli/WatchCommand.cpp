#include "Commands.h"
#include "Console.h"
#include "download/DownloadArguments.h"
#include "StopSignal.h"
#include "watch/CardWatch.h"

namespace {

const auto downloadOption = QStringLiteral("download");
const auto commandOption = QStringLiteral("exec");

} // namespace

ExitCode runWatch(const QStringList& arguments)
{
    Arguments given(
        QStringLiteral("scard watch"),
        QStringLiteral(
            "Tells of each card that is put into the first reader, or downloads it, until it is stopped "
            "by SIGINT or SIGTERM. Waits for readers and for the card service."));
    given.addFlag(
        downloadOption,
        QStringLiteral(
            "Download each card; --region, --to, --force, --quiet, --verify and --root belong to it."));
    DownloadArguments::add(given);
    given.addValue(
        commandOption, QStringLiteral("COMMAND"),
        QStringLiteral(
            "Run COMMAND in a shell after each card, also after a failure. Its $1 and SCARD_FILE are the "
            "finished file or empty; SCARD_EXIT_CODE is what \"scard download\" would end with, "
            "SCARD_CARD_TYPE is \"driver card\" or the like."));
    if (const std::optional<ExitCode> end = given.read(arguments))
        return *end;
    WatchOptions options;
    options.downloads = given.isSet(downloadOption);
    options.command = given.value(commandOption);
    if (!options.downloads && DownloadArguments::anyGiven(given))
        return given.usageError(
            QStringLiteral("--region, --to, --force, --quiet, --verify and --root need --download."));
    if (const std::optional<ExitCode> end = DownloadArguments::read(given, options.download, options.style))
        return *end;

    // Nobody is there to give another name: a download of the same minute gets a number.
    if (options.download.existing == FinishedFile::Existing::Refused)
        options.download.existing = FinishedFile::Existing::Kept;

    StopSignal::install();
    CardWatch(options).run();
    return finishOutput(exitDone);
}
