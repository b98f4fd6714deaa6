#pragma once

#include <QDateTime>
#include <QString>

/// When the download @p path was made (UTC), as the names of download files say it in each region; null for
/// another name. The bytes of a download do not say it, and the date of a file is often that of a copy.
QDateTime timeInName(const QString& path);
