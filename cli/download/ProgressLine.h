#pragma once

#include <QString>

/// What a download that is running looks like at one moment.
struct ProgressState
{
    int percent = 0;      ///< can pass 100
    QString ef;           ///< that is being read; empty before the first
    qint64 elapsedMs = 0; ///< since the download began
    qint64 efMs = 0;      ///< since the EF began
    qint64 quietMs = 0;   ///< since something was read last
};

/// One line for it, of at most @p columns characters.
QString progressLine(const ProgressState& state, int columns);

/// "0:31", "12:05"
QString minutesAndSeconds(qint64 milliseconds);

/// The percentage as it is shown: 0 to 100.
int shownPercent(int percent);
