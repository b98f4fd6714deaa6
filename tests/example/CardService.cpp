#include "CardService.h"

#include <QFile>
#include <QProcess>
#include <QtTest>

#include <csignal>

namespace CardService {

namespace {

const QString socketPath = QStringLiteral("/run/pcscd/pcscd.comm");
const QString pidPath = QStringLiteral("/run/pcscd/pcscd.pid");

} // namespace

bool stop()
{
    QFile file(pidPath);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    ::kill(file.readAll().trimmed().toInt(), SIGTERM);
    return QTest::qWaitFor([] { return !QFile::exists(socketPath) && !QFile::exists(pidPath); });
}

bool start(const char* config)
{
    const bool isStarted = QProcess::startDetached(
        QStringLiteral("sh"), {QStringLiteral("-c"),
                               QStringLiteral("mkdir -p \"$0\"; exec pcscd --foreground --config \"$0\" "
                                              ">>/run/pcscd.log 2>&1"),
                               QString::fromLatin1(config)});
    return isStarted && QTest::qWaitFor([] { return QFile::exists(socketPath); });
}

} // namespace CardService
