#include "HookCommand.h"

#include "../Console.h"
#include "../StopSignal.h"

#include <QProcess>
#include <QProcessEnvironment>

#include <csignal>
#include <unistd.h>
#include <utility>

namespace {

constexpr int sliceMs = 200;
constexpr int graceMs = 5000;

/// A process group of its own: what the shell started ends with the shell.
class GroupProcess : public QProcess
{
  public:
    void signalAll(int number) { ::kill(static_cast<pid_t>(-processId()), number); }

  protected:
    void setupChildProcess() override { ::setpgid(0, 0); }
};

/// Waits for the end of the command; of one that has to end it waits a little less.
void waitForEnd(GroupProcess& process)
{
    while (!process.waitForFinished(sliceMs) && process.state() != QProcess::NotRunning) {
        if (!StopSignal::requested())
            continue;
        process.signalAll(SIGTERM);
        if (!process.waitForFinished(graceMs) && process.state() != QProcess::NotRunning)
            process.signalAll(SIGKILL);
    }
}

void tellFailure(const QProcess& process)
{
    if (process.error() == QProcess::FailedToStart)
        err() << "scard: The command could not be started: " << process.errorString() << '.' << Qt::endl;
    else if (process.exitStatus() == QProcess::CrashExit)
        err() << "scard: The command was ended by a signal." << Qt::endl;
    else if (process.exitCode() != 0)
        err() << "scard: The command ended with exit code " << process.exitCode() << '.' << Qt::endl;
}

} // namespace

HookCommand::HookCommand(QString command) : m_command(std::move(command)) {}

void HookCommand::run(const QString& file, int exitCode, const QString& cardType) const
{
    if (m_command.isEmpty())
        return;
    if (StopSignal::requested()) {
        err() << "scard: The command was not run for the last card: the program was asked to end."
              << Qt::endl;
        return;
    }
    out().flush();
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("SCARD_FILE"), file);
    environment.insert(QStringLiteral("SCARD_EXIT_CODE"), QString::number(exitCode));
    environment.insert(QStringLiteral("SCARD_CARD_TYPE"), cardType);

    GroupProcess process;
    process.setProcessEnvironment(environment);
    process.setProcessChannelMode(QProcess::ForwardedChannels);
    process.setStandardInputFile(QProcess::nullDevice());
    process.start(
        QStringLiteral("/bin/sh"), {QStringLiteral("-c"), m_command, QStringLiteral("scard"), file});
    waitForEnd(process);
    tellFailure(process);
}
