#include "Commands.h"
#include "Console.h"
#include "LibraryLog.h"

#include <QCoreApplication>

#include <algorithm>
#include <csignal>
#include <fcntl.h>
#include <iterator>
#include <unistd.h>

namespace {

struct Command
{
    const char* name;
    ExitCode (*run)(const QStringList& arguments);
    const char* description;
};

constexpr Command commands[] = {
    {"doctor", runDoctor, "what is wrong when no card can be read"},
    {"download", runDownload, "the card in the first reader, into a file"},
    {"watch", runWatch, "each card that is put in, until it is stopped"},
    {"show", runShow, "what is on a download: text, JSON, CSV, HTML"},
    {"verify", runVerify, "whether a download is genuine"},
    {"records", runRecords, "the records of a download file, also of a damaged one"},
};

void printHelp(QTextStream& stream)
{
    stream << "Usage: scard COMMAND [OPTIONS]\n\n"
              "Downloads a digital tachograph card, and shows what a download holds.\n\n"
              "Commands:\n";
    for (const Command& command : commands)
        stream << "  " << QString::fromLatin1(command.name).leftJustified(10) << command.description << '\n';
    stream << "\nOptions:\n"
              "  -h, --help     this help; scard COMMAND --help says more\n"
              "  -v, --version  the version\n";
}

ExitCode usageError(const QString& message)
{
    err() << "scard: " << message << "\nSee: scard --help" << Qt::endl;
    return exitUsage;
}

/// A standard stream that was closed would be the next file that is opened: the output would go into it.
void openStandardStreams()
{
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (::fcntl(descriptor, F_GETFD) < 0)
            ::open("/dev/null", O_RDWR);
    }
}

} // namespace

int main(int argc, char* argv[])
{
    openStandardStreams();
    const QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("scard"));
    // Without TZ the C library looks at the zone's file anew for each of thousands of times.
    if (!qEnvironmentVariableIsSet("TZ"))
        qputenv("TZ", ":/etc/localtime");
    LibraryLog::install();
    // A reader of the output that goes away must not end a download half-way.
    std::signal(SIGPIPE, SIG_IGN);

    const QStringList arguments = QCoreApplication::arguments().mid(1);
    if (arguments.isEmpty())
        return usageError(QStringLiteral("no command given."));
    const QString& first = arguments.front();
    if (first == QLatin1String("--help") || first == QLatin1String("-h")) {
        printHelp(out());
        return finishOutput(exitDone);
    }
    if (first == QLatin1String("--version") || first == QLatin1String("-v")) {
        out() << "scard " SCARD_VERSION "\n";
        return finishOutput(exitDone);
    }
    const auto* command = std::find_if(std::begin(commands), std::end(commands), [&](const Command& each) {
        return first == QLatin1String(each.name);
    });
    if (command == std::end(commands))
        return usageError(QStringLiteral("unknown command \"%1\".").arg(first));
    return command->run(arguments);
}
