#pragma once

#include <scard/detail/ImageRecord.h>

#include <QFile>
#include <QString>

#include <vector>

namespace scard::detail {

/// Appends one record to @p file and hands it to the system, so that a full disk shows itself here
/// and not after the card has been told that it was downloaded.
/// @return the reason when the file layer failed, null when all is written. A closed file takes nothing.
QString
appendRecord(QFile& file, unsigned short fid, RecordType type, const std::vector<unsigned char>& payload);

} // namespace scard::detail
