#include "ProgramRun.h"

#include <QTemporaryFile>

#include <gtest/gtest.h>

namespace test {

Outcome runIn(QProcess& process, const QString& program, const QStringList& arguments)
{
    constexpr int longestRunMs = 60000;
    process.start(program, arguments);
    process.closeWriteChannel();
    EXPECT_TRUE(process.waitForFinished(longestRunMs)) << program.toStdString();
    Outcome outcome;
    if (process.exitStatus() == QProcess::NormalExit)
        outcome.exitCode = process.exitCode();
    outcome.out = process.readAllStandardOutput().toStdString();
    outcome.err = process.readAllStandardError().toStdString();
    return outcome;
}

Outcome runProgram(const QString& program, const QStringList& arguments)
{
    QProcess process;
    return runIn(process, program, arguments);
}

std::string schemaErrors(const QString& name, const QStringList& jsonFiles)
{
    const QString schema = QStringLiteral(SCHEMA_FOLDER "/%1.schema.json").arg(name);
    // Not the first python3 of the path: the packages belong to the system's.
    const Outcome outcome = runProgram(
        QStringLiteral("/usr/bin/python3"), QStringList{QStringLiteral(VALIDATE_JSON), schema} + jsonFiles);
    const std::string said = outcome.out + outcome.err;
    return said.empty() && outcome.exitCode != 0 ? "the validator failed" : said;
}

std::string schemaErrors(const QString& name, const std::string& json)
{
    QTemporaryFile file;
    EXPECT_TRUE(file.open());
    file.write(QByteArray::fromStdString(json));
    file.close();
    return schemaErrors(name, QStringList{file.fileName()});
}

} // namespace test
