#include "Console.h"
#include "DownloadCommand.h"
#include "ShowCommand.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QLoggingCategory>
#include <QMap>

namespace {

constexpr int exitUsage = 2;

int usageError(const QString& message)
{
    err() << message << "\nSee: scard --help" << Qt::endl;
    return exitUsage;
}

} // namespace

int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("scard"));
    QCoreApplication::setApplicationVersion(QStringLiteral(SCARD_VERSION));

    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Downloads a digital tachograph card, and shows what a download holds.\n\n"
                       "  scard download    the card in the first reader, into a file under /tmp/\n"
                       "  scard show FILE   whose card it is, and the last of what is on it"));
    const QCommandLineOption helpOption = parser.addHelpOption();
    const QCommandLineOption versionOption = parser.addVersionOption();
    parser.addPositionalArgument(QStringLiteral("command"), QStringLiteral("download or show FILE"));
    const QCommandLineOption regionOption(
        QStringLiteral("region"), QStringLiteral("Naming of the file: ddd, c1b or tgd."),
        QStringLiteral("ddd|c1b|tgd"), QStringLiteral("ddd"));
    const QCommandLineOption waitOption(
        QStringLiteral("wait"), QStringLiteral("Wait so many seconds for a card to be put in."),
        QStringLiteral("seconds"), QStringLiteral("0"));
    const QCommandLineOption daysOption(
        QStringLiteral("days"), QStringLiteral("Show so many days, calibrations or activities."),
        QStringLiteral("number"), QStringLiteral("7"));
    const QCommandLineOption verboseOption(
        QStringLiteral("verbose"), QStringLiteral("Show what the library does, on standard error."));
    parser.addOption(regionOption);
    parser.addOption(waitOption);
    parser.addOption(daysOption);
    parser.addOption(verboseOption);
    if (!parser.parse(QCoreApplication::arguments()))
        return usageError(QStringLiteral("scard: ") + parser.errorText());
    if (parser.isSet(versionOption))
        parser.showVersion();
    if (parser.isSet(helpOption))
        parser.showHelp();

    const QStringList arguments = parser.positionalArguments();
    if (arguments.isEmpty())
        return usageError(QStringLiteral("scard: no command given."));
    if (!parser.isSet(verboseOption))
        QLoggingCategory::setFilterRules(QStringLiteral("default.debug=false"));

    if (arguments.front() == QLatin1String("show") && arguments.size() == 2) {
        bool daysIsNumber = false;
        const int days = parser.value(daysOption).toInt(&daysIsNumber);
        if (!daysIsNumber || days < 1)
            return usageError(
                QStringLiteral("scard: \"%1\" is no number of days.").arg(parser.value(daysOption)));
        return showDownload(arguments.back(), days);
    }
    if (arguments != QStringList{QStringLiteral("download")})
        return usageError(
            QStringLiteral("scard: unknown command \"%1\".").arg(arguments.join(QLatin1Char(' '))));

    const QMap<QString, scard::FilenameRegion> regions{
        {QStringLiteral("ddd"), scard::RegionDDD},
        {QStringLiteral("c1b"), scard::RegionC1B},
        {QStringLiteral("tgd"), scard::RegionTGD}};
    const QString region = parser.value(regionOption).toLower();
    if (!regions.contains(region))
        return usageError(
            QStringLiteral("scard: unknown region \"%1\"; ddd, c1b or tgd.").arg(parser.value(regionOption)));

    bool waitIsNumber = false;
    const int waitSeconds = parser.value(waitOption).toInt(&waitIsNumber);
    if (!waitIsNumber || waitSeconds < 0)
        return usageError(
            QStringLiteral("scard: \"%1\" is no number of seconds.").arg(parser.value(waitOption)));

    return downloadCard(regions.value(region), waitSeconds);
}
