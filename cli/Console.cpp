#include "Console.h"

#include "LibraryLog.h"

#include <QFile>
#include <QTextCodec>

#include <langinfo.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cstdio>

namespace {

/// A standard stream of the program; what it cannot write it says instead of keeping it.
QFile& standardFile(int descriptor)
{
    static QFile outFile;
    static QFile errFile;
    QFile& file = descriptor == STDOUT_FILENO ? outFile : errFile;
    if (!file.isOpen())
        file.open(descriptor, QIODevice::WriteOnly);
    return file;
}

/// True when standard output is a pipe whose other end is closed.
bool nobodyReads()
{
    pollfd output{STDOUT_FILENO, POLLOUT, 0};
    return poll(&output, 1, 0) == 1 && (output.revents & POLLERR) != 0;
}

} // namespace

QTextStream& out()
{
    static QTextStream stream(&standardFile(STDOUT_FILENO));
    return stream;
}

QTextStream& err()
{
    static QTextStream stream(&standardFile(STDERR_FILENO));
    return stream;
}

QString printable(const QString& text)
{
    QString result;
    for (const uint letter : text.toUcs4())
        result += QChar::isPrint(letter) ? QString::fromUcs4(&letter, 1) : QStringLiteral("?");
    return result;
}

void printChain(const aux::Error& failure)
{
    if (!LibraryLog::isShown())
        return;
    for (const aux::ErrorData& entry : failure) {
        err() << "  " << entry.getSource() << ": " << entry.getMessage();
        if (entry.getId() != 0)
            err() << " [" << QString::number(entry.getId(), 16).toUpper() << ']';
        err() << '\n';
    }
    err().flush();
}

ExitCode finishOutput(ExitCode code)
{
    out().flush();
    QFile& file = standardFile(STDOUT_FILENO);
    file.flush();
    if (out().status() == QTextStream::Ok && file.error() == QFileDevice::NoError)
        return code;
    if (nobodyReads())
        return code;
    err() << "scard: The output could not be written: " << file.errorString() << '.' << Qt::endl;
    return code == exitDone ? exitNotWritten : code;
}

void dropLostOutput()
{
    static QFile nowhere(QStringLiteral("/dev/null"));
    for (QTextStream* stream : {&out(), &err()}) {
        stream->flush();
        if (stream->status() == QTextStream::Ok)
            continue;
        if (nowhere.isOpen() || nowhere.open(QIODevice::WriteOnly))
            stream->setDevice(&nowhere);
    }
}

bool outputIsTerminal()
{
    return isatty(STDOUT_FILENO) == 1;
}

int outputColumns()
{
    constexpr int usual = 80;
    winsize size{};
    if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0)
        return size.ws_col;
    const int wanted = qEnvironmentVariableIntValue("COLUMNS");
    return wanted > 0 ? wanted : usual;
}

bool outputHasColours()
{
    return outputIsTerminal() && qEnvironmentVariableIsEmpty("NO_COLOR") && qgetenv("TERM") != "dumb";
}

bool outputCanShow(const QString& text)
{
    // Qt takes ASCII for UTF-8.
    const QTextCodec* codec = QTextCodec::codecForName(nl_langinfo(CODESET));
    return codec != nullptr && codec->canEncode(text);
}
