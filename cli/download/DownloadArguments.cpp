#include "DownloadArguments.h"

#include "../Console.h"
#include "../LibraryLog.h"
#include "../verify/RootKeys.h"
#include "FinishedFile.h"

#include <QDir>

#include <algorithm>
#include <iterator>

namespace DownloadArguments {

namespace {

struct RegionName
{
    const char* name;
    scard::FilenameRegion region;
};

constexpr RegionName regionNames[] = {
    {"ddd", scard::RegionDDD},
    {"c1b", scard::RegionC1B},
    {"tgd", scard::RegionTGD},
};

std::optional<ExitCode> readRegion(const Arguments& arguments, scard::FilenameRegion& region)
{
    if (!arguments.isSet(QStringLiteral("region")))
        return std::nullopt;
    const QString wanted = arguments.value(QStringLiteral("region"));
    const auto* row =
        std::find_if(std::begin(regionNames), std::end(regionNames), [&wanted](const RegionName& each) {
            return wanted == QLatin1String(each.name);
        });
    if (row == std::end(regionNames))
        return arguments.usageError(QStringLiteral("unknown region \"%1\"; ddd, c1b or tgd.").arg(wanted));
    region = row->region;
    return std::nullopt;
}

std::optional<ExitCode> readStyle(const Arguments& arguments, ReportStyle& style)
{
    const bool json = arguments.isSet(QStringLiteral("json"));
    const bool quiet = arguments.isSet(QStringLiteral("quiet"));
    if (json && quiet)
        return arguments.usageError(QStringLiteral("--quiet and --json exclude each other."));
    style = json ? ReportStyle::Json : quiet ? ReportStyle::Quiet : ReportStyle::Text;
    return std::nullopt;
}

/// Before the card is touched: it would be told of a download that does not reach its place.
std::optional<ExitCode> readFolder(const Arguments& arguments, QString& folder)
{
    if (!arguments.isSet(QStringLiteral("to"))) {
        if (arguments.isSet(QStringLiteral("force")))
            return arguments.usageError(QStringLiteral("--force needs --to."));
        return std::nullopt;
    }
    const QString wanted = arguments.value(QStringLiteral("to"));
    if (wanted.isEmpty())
        return arguments.usageError(QStringLiteral("--to needs a folder."));
    const QString failure = FinishedFile::whyNoFolder(wanted);
    if (!failure.isEmpty()) {
        err() << "scard: " << failure << "\nThe card was not touched. Name a folder that can be written to."
              << Qt::endl;
        return exitNotWritten;
    }
    folder = QDir(wanted).absolutePath();
    return std::nullopt;
}

} // namespace

void add(Arguments& arguments)
{
    arguments.addValue(
        QStringLiteral("region"), QStringLiteral("ddd|c1b|tgd"),
        QStringLiteral("How the file is named: ddd (the default), c1b in France, tgd in Spain."));
    arguments.addValue(
        QStringLiteral("to"), QStringLiteral("DIR"),
        QStringLiteral(
            "Folder for the finished file; without it the file stays in /tmp/. The file appears there "
            "complete or not at all."));
    arguments.addFlag(QStringLiteral("force"), QStringLiteral("Replace a file of the same name in DIR."));
    arguments.addFlag(
        QStringLiteral("verify"),
        QStringLiteral("Check the signatures in the finished file, by the certificates of the card."));
    RootKeys::add(arguments);
    arguments.addFlag(QStringLiteral("json"), QStringLiteral("Print the result as one line of JSON."));
    arguments.addFlag(
        QStringLiteral("quiet"), QStringLiteral("Print the path of the finished file and nothing else."));
}

bool anyGiven(const Arguments& arguments)
{
    const QString names[] = {
        QStringLiteral("region"), QStringLiteral("to"), QStringLiteral("force"), QStringLiteral("quiet"),
        QStringLiteral("verify")};
    return RootKeys::anyGiven(arguments) ||
           std::any_of(std::begin(names), std::end(names), [&arguments](const QString& name) {
               return arguments.isSet(name);
           });
}

std::optional<ExitCode> read(const Arguments& arguments, DownloadOptions& options, ReportStyle& style)
{
    const QStringList beside = arguments.positional();
    if (!beside.isEmpty())
        return arguments.usageError(QStringLiteral("unexpected argument \"%1\".").arg(beside.front()));
    if (arguments.isSet(QStringLiteral("force")))
        options.existing = FinishedFile::Existing::Replaced;
    std::optional<ExitCode> end = readRegion(arguments, options.region);
    if (!end)
        end = readStyle(arguments, style);
    options.verifies = arguments.isSet(QStringLiteral("verify"));
    if (!end && RootKeys::anyGiven(arguments) && !options.verifies)
        end = arguments.usageError(QStringLiteral("--root needs --verify."));
    if (!end)
        end = RootKeys::read(arguments, options.roots);
    if (!end)
        end = readFolder(arguments, options.folder);
    return end;
}

ProgressDisplay::Style progressStyle(ReportStyle style)
{
    if (style != ReportStyle::Text)
        return ProgressDisplay::Style::Silent;
    // The debug stream would tear the bar.
    return outputIsTerminal() && !LibraryLog::isShown() ? ProgressDisplay::Style::Bar
                                                        : ProgressDisplay::Style::Lines;
}

} // namespace DownloadArguments
