#pragma once

#include "ExitCode.h"

#include <QCommandLineParser>
#include <QString>
#include <QStringList>

#include <optional>

/// The arguments of one command: --help and --verbose are the same everywhere, and so is what a wrong
/// argument gets.
class Arguments
{
  public:
    /// @param command what stands on the command line, "scard show"
    Arguments(QString command, const QString& description);

    /// Takes an option without a value.
    void addFlag(const QString& name, const QString& description);

    /// Takes an option with a value.
    void addValue(const QString& name, const QString& valueName, const QString& description);

    /// Takes an option that may stand without its value and then has @p valueWhenBare. A value is what
    /// @p isValue accepts; anything else is the next argument.
    void addOptionalValue(
        const QString& name, const QString& valueName, const QString& description,
        const QString& valueWhenBare, bool (*isValue)(const QString&));

    /// Takes what stands beside the options.
    void addPositional(const QString& name, const QString& description);

    /// Reads @p arguments, the command's name first. @return how the program ends already: after the help was
    /// printed, or after a wrong argument was named; empty when the command may go on.
    std::optional<ExitCode> read(const QStringList& arguments);

    bool isSet(const QString& name) const;
    QString value(const QString& name) const;

    /// All values of an option that may stand more than once.
    QStringList values(const QString& name) const;

    QStringList positional() const;

    /// Names a wrong argument on standard error.
    ExitCode usageError(const QString& message) const;

  private:
    struct Optional
    {
        QString name;
        QString valueWhenBare;
        bool (*isValue)(const QString&);
    };

    QString m_command;
    QCommandLineParser m_parser;
    QList<Optional> m_optional;
};
