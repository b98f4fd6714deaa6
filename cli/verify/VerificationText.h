#pragma once

#include "Verification.h"

#include <QTextStream>

/// For people: the verdict in one line, then chain and records of each application, then the reasons.
void writeVerification(QTextStream& stream, const VerifiedFile& file);

/// The reasons alone, one a line.
void writeReasons(QTextStream& stream, const Verification& verification);
