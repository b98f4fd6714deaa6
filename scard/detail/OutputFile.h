#pragma once

#include <aux/Error.h>

#include <QFile>
#include <QString>

#include <sys/stat.h>
#include <sys/types.h>

namespace scard::detail {

/// Opens "/tmp/" + @p name for writing in @p file, or leaves it closed.
///
/// The name comes from the card and "/tmp/" is everybody's, so nothing is opened that could lie outside
/// it or be somebody else's: a name with a path separator, a symbolic link, a file with a second name, a
/// file of another user, anything but a plain file.
void openInTmp(QFile& file, const QString& name);

/// A plain file that only @p user owns and that has no second name elsewhere.
bool isOwnPlainFile(const struct stat& status, uid_t user);

/// Waits until what was written to @p file is on the disk; nothing to wait for on a closed file.
/// Error, id 0: "saveToFile() sync failed: " and the reason.
aux::Error syncToDisk(QFile& file);

} // namespace scard::detail
