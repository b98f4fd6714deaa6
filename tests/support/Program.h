#pragma once

#include "ProgramRun.h"

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

// The program `scard` as a person starts it.

namespace test {

/// Where the program's output goes.
enum class Output
{
    Pipe,       ///< to be looked at
    ClosedPipe, ///< nobody reads it any more
    FullDisk,
};

/// Variables that are set beside those of the test; those that change the look are not taken over.
using Environment = QMap<QString, QString>;

Outcome run(const QStringList& arguments, const Environment& environment = {}, Output output = Output::Pipe);

/// Runs the program on a terminal.
Outcome runOnTerminal(const QStringList& arguments, const Environment& environment = {});

/// A folder that goes when the test ends.
class Folder
{
  public:
    /// Writes a file and gives its path.
    QString write(const QString& name, const QByteArray& bytes) const;

    QString path(const QString& name) const;

  private:
    QTemporaryDir m_folder;
};

} // namespace test
