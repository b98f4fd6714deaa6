#include "RunningProgram.h"

#include <gtest/gtest.h>

#include <QDeadlineTimer>
#include <QFile>

#include <csignal>

namespace test {

namespace {

constexpr std::chrono::seconds patience{20};

int countOf(const std::string& stream, const std::string& text)
{
    int count = 0;
    for (std::size_t at = stream.find(text); at != std::string::npos;
         at = stream.find(text, at + text.size()))
        ++count;
    return count;
}

} // namespace

Outcome scardProgram(const QStringList& arguments, const QProcessEnvironment& environment)
{
    QProcess process;
    process.setProcessEnvironment(environment);
    return runIn(process, SCARD_PROGRAM, arguments);
}

RunningProgram::RunningProgram(const QStringList& arguments, const QProcessEnvironment& environment)
{
    m_process.setProcessEnvironment(environment);
    m_process.start(SCARD_PROGRAM, arguments);
    EXPECT_TRUE(m_process.waitForStarted());
}

RunningProgram::~RunningProgram()
{
    if (!isRunning())
        return;
    m_process.kill();
    m_process.waitForFinished();
}

bool RunningProgram::says(const std::string& text, int times)
{
    return waitFor(m_out, text, times);
}

bool RunningProgram::complains(const std::string& text, int times)
{
    return waitFor(m_err, text, times);
}

void RunningProgram::closeOutput()
{
    m_process.closeReadChannel(QProcess::StandardOutput);
}

void RunningProgram::sendSignal(int number)
{
    ::kill(static_cast<pid_t>(m_process.processId()), number);
}

bool RunningProgram::isRunning()
{
    collect(0);
    return m_process.state() != QProcess::NotRunning;
}

bool RunningProgram::runsOnFor(std::chrono::milliseconds time)
{
    const QDeadlineTimer end(time);
    while (!end.hasExpired() && isRunning())
        collect(100);
    return isRunning();
}

double RunningProgram::processorTime() const
{
    constexpr double nanosecondsPerMillisecond = 1e6;
    QFile file(QString("/proc/%1/schedstat").arg(m_process.processId()));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    return file.readAll().split(' ').front().toDouble() / nanosecondsPerMillisecond;
}

Outcome RunningProgram::finish()
{
    const QDeadlineTimer end(patience);
    while (isRunning() && !end.hasExpired())
        collect(100);
    EXPECT_FALSE(isRunning());
    const bool exited = m_process.exitStatus() == QProcess::NormalExit;
    return {exited ? m_process.exitCode() : -1, m_out, m_err};
}

bool RunningProgram::waitFor(const std::string& stream, const std::string& text, int times)
{
    const QDeadlineTimer end(patience);
    while (countOf(stream, text) < times && !end.hasExpired()) {
        const bool running = isRunning();
        if (!running && countOf(stream, text) < times)
            return false;
        collect(50);
    }
    return countOf(stream, text) >= times;
}

void RunningProgram::collect(int milliseconds)
{
    if (m_process.state() != QProcess::NotRunning)
        m_process.waitForFinished(milliseconds);
    m_out += m_process.readAllStandardOutput().toStdString();
    m_err += m_process.readAllStandardError().toStdString();
}

} // namespace test
