#pragma once

#include "ProgramRun.h"

#include <QProcess>
#include <QProcessEnvironment>
#include <QString>
#include <QStringList>

#include <chrono>
#include <string>

namespace test {

/// Runs `scard` to its end.
Outcome scardProgram(
    const QStringList& arguments,
    const QProcessEnvironment& environment = QProcessEnvironment::systemEnvironment());

/// `scard` while it runs. Ends with the object.
class RunningProgram
{
  public:
    explicit RunningProgram(
        const QStringList& arguments,
        const QProcessEnvironment& environment = QProcessEnvironment::systemEnvironment());
    ~RunningProgram();
    RunningProgram(const RunningProgram&) = delete;
    RunningProgram& operator=(const RunningProgram&) = delete;

    /// Waits until @p text stands @p times times in the output; false after twenty seconds, or when the
    /// program ends without it.
    bool says(const std::string& text, int times = 1);
    bool complains(const std::string& text, int times = 1);

    void closeOutput();
    void sendSignal(int number);
    bool isRunning();

    /// Lets it run; false when it ends meanwhile.
    bool runsOnFor(std::chrono::milliseconds time);

    /// Processor time so far, milliseconds.
    double processorTime() const;

    /// Waits for its end, twenty seconds at most.
    Outcome finish();

  private:
    bool waitFor(const std::string& stream, const std::string& text, int times);
    void collect(int milliseconds);

    QProcess m_process;
    std::string m_out;
    std::string m_err;
};

} // namespace test
