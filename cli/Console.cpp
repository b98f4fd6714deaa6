#include "Console.h"

#include <cstdio>

QTextStream& out()
{
    static QTextStream stream(stdout);
    return stream;
}

QTextStream& err()
{
    static QTextStream stream(stderr);
    return stream;
}

QString printable(QString text)
{
    for (QChar& letter : text) {
        if (!letter.isPrint())
            letter = QLatin1Char('?');
    }
    return text;
}

void printFailure(const QString& what, const aux::Error& failure)
{
    err() << what << ":\n";
    for (const aux::ErrorData& entry : failure) {
        err() << "  " << entry.getSource() << ": " << entry.getMessage();
        if (entry.getId() != 0)
            err() << " [" << QString::number(entry.getId(), 16).toUpper() << ']';
        err() << '\n';
    }
    err().flush();
}
