#pragma once

#include "ExitCode.h"

#include <QStringList>

// The commands of the program. Each gets its arguments with its own name first, and reads its input, prints
// and ends as the manual page says.

ExitCode runDoctor(const QStringList& arguments);
ExitCode runDownload(const QStringList& arguments);
ExitCode runWatch(const QStringList& arguments);
ExitCode runShow(const QStringList& arguments);
ExitCode runVerify(const QStringList& arguments);
ExitCode runRecords(const QStringList& arguments);
