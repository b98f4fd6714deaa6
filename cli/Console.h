#pragma once

#include "ExitCode.h"

#include <aux/Error.h>

#include <QString>
#include <QTextStream>

// What every command of the program prints with.

QTextStream& out();
QTextStream& err();

/// What a card holds, without what would steer the terminal.
QString printable(const QString& text);

/// Prints the failure entry by entry on standard error, when --verbose was given.
void printChain(const aux::Error& failure);

/// Sends what is left of the output on its way. Whoever closed the pipe has seen enough and hears nothing;
/// when the output is lost for another reason, that is said on standard error.
/// @return @p code, or exitNotWritten in place of exitDone when the output was lost
ExitCode finishOutput(ExitCode code);

/// For a program that goes on after a stream was closed: what cannot be written must not pile up.
void dropLostOutput();

/// True when standard output is a terminal.
bool outputIsTerminal();

/// Columns of the terminal; of something else what COLUMNS says, or 80.
int outputColumns();

/// True on a terminal that shows colours, unless NO_COLOR is set.
bool outputHasColours();

/// True when the output can show @p text in the encoding of the locale.
bool outputCanShow(const QString& text);
