#pragma once

#include <aux/Error.h>

#include <QString>
#include <QTextStream>

// What every command of the program prints with.

QTextStream& out();
QTextStream& err();

/// What a card holds, without what would steer the terminal.
QString printable(QString text);

/// Prints on standard error what could not be done, then the failure entry by entry.
void printFailure(const QString& what, const aux::Error& failure);
