#include "Arguments.h"

#include "Console.h"
#include "LibraryLog.h"

#include <QCommandLineOption>

#include <utility>

Arguments::Arguments(QString command, const QString& description) : m_command(std::move(command))
{
    m_parser.setApplicationDescription(description);
    m_parser.addOption({{QStringLiteral("h"), QStringLiteral("help")}, QStringLiteral("Show this help.")});
    addFlag(
        QStringLiteral("verbose"),
        QStringLiteral("Show on standard error what the library does and each entry of a "
                       "failure. It names people and card numbers."));
}

void Arguments::addFlag(const QString& name, const QString& description)
{
    m_parser.addOption({name, description});
}

void Arguments::addValue(const QString& name, const QString& valueName, const QString& description)
{
    m_parser.addOption({name, description, valueName});
}

void Arguments::addOptionalValue(
    const QString& name, const QString& valueName, const QString& description, const QString& valueWhenBare,
    bool (*isValue)(const QString&))
{
    addValue(name, valueName, description);
    m_optional.append({name, valueWhenBare, isValue});
}

void Arguments::addPositional(const QString& name, const QString& description)
{
    m_parser.addPositionalArgument(name, description);
}

std::optional<ExitCode> Arguments::read(const QStringList& arguments)
{
    QStringList complete{m_command};
    for (int i = 1; i < arguments.size(); ++i) {
        QString argument = arguments.at(i);
        for (const Optional& option : m_optional) {
            if (argument != QLatin1String("--") + option.name)
                continue;
            const bool hasValue = i + 1 < arguments.size() && option.isValue(arguments.at(i + 1));
            argument += QLatin1Char('=') + (hasValue ? arguments.at(++i) : option.valueWhenBare);
        }
        complete << argument;
    }
    if (!m_parser.parse(complete))
        return usageError(m_parser.errorText());
    if (m_parser.isSet(QStringLiteral("help"))) {
        // Qt names the program without the command.
        const QString help = m_parser.helpText();
        out() << "Usage: " << m_command << help.mid(help.indexOf(QLatin1String(" [options]")));
        return finishOutput(exitDone);
    }
    if (m_parser.isSet(QStringLiteral("verbose")))
        LibraryLog::show();
    return std::nullopt;
}

bool Arguments::isSet(const QString& name) const
{
    return m_parser.isSet(name);
}

QString Arguments::value(const QString& name) const
{
    return m_parser.value(name);
}

QStringList Arguments::values(const QString& name) const
{
    return m_parser.values(name);
}

QStringList Arguments::positional() const
{
    return m_parser.positionalArguments();
}

ExitCode Arguments::usageError(const QString& message) const
{
    err() << m_command << ": " << message << "\nSee: " << m_command << " --help" << Qt::endl;
    return exitUsage;
}
