#pragma once

#include <scard/SCardMeta.h>

#include <QDateTime>
#include <QString>

/// Brings finished downloads from "/tmp/" into the folder that the user wants them in.
namespace FinishedFile {

/// What happens to a file that stands in the folder under the same name.
enum class Existing
{
    Refused,  ///< it stays, and the download is not brought
    Replaced, ///< it is replaced
    Kept,     ///< it stays, and the download gets a number behind its name
};

struct Placed
{
    QString path;    ///< where the complete download is now, also after a failure
    QString failure; ///< one sentence; empty when the download is where it should be
};

/// Tries whether files can be made in @p folder. @return why not, in one sentence; empty when they can
QString whyNoFolder(const QString& folder);

/// Moves the file @p source to @p name in @p folder: copied, compared, on the disk before it has its name,
/// and only then removed from where it was. After a failure it is still there, and nothing of it is in @p
/// folder.
Placed place(const QString& source, const QString& folder, const QString& name, Existing existing);

/// True for the name that all downloads of cards without a name of their own share.
bool isNameless(const QString& name);

/// A name for such a download: its time, the chip's serial number ("UNKNOWN" when empty), and the ending of
/// the region.
QString nameFor(const QDateTime& time, const QString& chipSerial, scard::FilenameRegion region);

} // namespace FinishedFile
