#pragma once

#include <QByteArray>
#include <QDate>
#include <QDateTime>
#include <QLocale>
#include <QString>
#include <QTime>

#include <ostream>

// How a failed comparison shows Qt's values. In the global namespace, where Qt's types are.

inline void PrintTo(const QString& text, std::ostream* stream)
{
    *stream << '"' << text.toStdString() << '"';
}

inline void PrintTo(const QByteArray& bytes, std::ostream* stream)
{
    *stream << '"' << bytes.toPercentEncoding().toStdString() << '"';
}

inline void PrintTo(const QLocale& locale, std::ostream* stream)
{
    *stream << locale.name().toStdString();
}

inline void PrintTo(const QDate& date, std::ostream* stream)
{
    *stream << date.toString(Qt::ISODate).toStdString();
}

inline void PrintTo(const QTime& time, std::ostream* stream)
{
    *stream << time.toString(Qt::ISODateWithMs).toStdString();
}

inline void PrintTo(const QDateTime& time, std::ostream* stream)
{
    *stream << time.toString(Qt::ISODateWithMs).toStdString();
}
