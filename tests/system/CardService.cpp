#include "CardService.h"

#include <gtest/gtest.h>

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QThread>

#include <cerrno>
#include <chrono>
#include <csignal>

namespace test {

namespace {

const char* const socketPath = "/run/pcscd/pcscd.comm";
const char* const pidPath = "/run/pcscd/pcscd.pid";

template <typename Condition>
bool waitUntil(Condition condition)
{
    const QDeadlineTimer end(std::chrono::seconds{10});
    while (!condition() && !end.hasExpired())
        QThread::msleep(20);
    return condition();
}

int servicePid()
{
    QFile file(pidPath);
    return file.open(QIODevice::ReadOnly) ? file.readAll().trimmed().toInt() : 0;
}

} // namespace

CardService::~CardService()
{
    if (m_asFound)
        return;
    stop();
    start();
}

void CardService::stop()
{
    m_asFound = false;
    const int pid = servicePid();
    if (pid == 0)
        return;
    ASSERT_EQ(::kill(pid, SIGTERM), 0);
    ASSERT_TRUE(waitUntil([] { return !QFile::exists(socketPath) && !QFile::exists(pidPath); }));
}

void CardService::start(Readers readers)
{
    QDir().mkpath("/run/no-readers");
    const QString config = readers == Readers::Virtual ? "/run/readers" : "/run/no-readers";
    ASSERT_TRUE(QProcess::startDetached(
        "sh", {"-c", "exec pcscd --foreground --config \"$0\" >>/run/pcscd.log 2>&1", config}));
    ASSERT_TRUE(waitUntil([] { return QFile::exists(socketPath); }));
}

} // namespace test
