#include "Program.h"

#include <QFile>
#include <QProcess>
#include <QProcessEnvironment>

#include <gtest/gtest.h>

#include <unistd.h>

namespace test {

namespace {

/// A process whose output nobody reads, from before it begins.
class ProcessWithoutReader : public QProcess
{
  protected:
    void setupChildProcess() override
    {
        int ends[2];
        if (pipe(ends) != 0)
            _exit(126);
        ::close(ends[0]);
        dup2(ends[1], STDOUT_FILENO);
        ::close(ends[1]);
    }
};

QProcessEnvironment environmentWith(const Environment& more)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char* name : {"COLUMNS", "LINES", "NO_COLOR"})
        environment.remove(QString::fromLatin1(name));
    environment.insert(QStringLiteral("TERM"), QStringLiteral("xterm"));
    for (auto each = more.begin(); each != more.end(); ++each)
        environment.insert(each.key(), each.value());
    return environment;
}

QString quoted(QString word)
{
    return QLatin1Char('\'') + word.replace(QLatin1Char('\''), QLatin1String("'\\''")) + QLatin1Char('\'');
}

} // namespace

Outcome run(const QStringList& arguments, const Environment& environment, Output output)
{
    QProcess reader;
    ProcessWithoutReader alone;
    QProcess& process = output == Output::ClosedPipe ? alone : reader;
    process.setProcessEnvironment(environmentWith(environment));
    if (output == Output::FullDisk)
        process.setStandardOutputFile(QStringLiteral("/dev/full"));
    return runIn(process, QStringLiteral(SCARD_PROGRAM), arguments);
}

Outcome runOnTerminal(const QStringList& arguments, const Environment& environment)
{
    QString command = quoted(QStringLiteral(SCARD_PROGRAM));
    for (const QString& argument : arguments)
        command += QLatin1Char(' ') + quoted(argument);
    QProcess process;
    process.setProcessEnvironment(environmentWith(environment));
    Outcome outcome =
        runIn(process, QStringLiteral("script"), {"--quiet", "--return", "--command", command, "/dev/null"});
    // A terminal's line ends.
    outcome.out = QString::fromStdString(outcome.out).remove(QLatin1Char('\r')).toStdString();
    return outcome;
}

QString Folder::write(const QString& name, const QByteArray& bytes) const
{
    QFile file(path(name));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    EXPECT_EQ(file.write(bytes), bytes.size());
    return file.fileName();
}

QString Folder::path(const QString& name) const
{
    EXPECT_TRUE(m_folder.isValid());
    return m_folder.filePath(name);
}

} // namespace test
