#pragma once

#include <QByteArray>
#include <QProcess>
#include <QString>
#include <QStringList>

#include <string>

// Programs that tests start.

namespace test {

/// How a program ended, and what it said.
struct Outcome
{
    int exitCode = -1; ///< -1 when a signal ended it
    std::string out;
    std::string err;
};

/// Runs a program to its end in @p process, which may be set up before.
Outcome runIn(QProcess& process, const QString& program, const QStringList& arguments);

/// The same in a process of its own.
Outcome runProgram(const QString& program, const QStringList& arguments);

/// Holds files with JSON against docs/schema/NAME.schema.json. @return what is wrong; empty when nothing is
std::string schemaErrors(const QString& name, const QStringList& jsonFiles);

/// The same for one JSON text.
std::string schemaErrors(const QString& name, const std::string& json);

} // namespace test
