#pragma once

#include <QString>

/// `scard show`: whose card a download is of, and the driver's last days, the workshop's last calibrations or
/// the company's last activities.
/// @param newest how many of them, at least 1
/// @return the program's exit code: 0 when all could be read, 1 else
int showDownload(const QString& path, int newest);
