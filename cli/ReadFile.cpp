#include "ReadFile.h"

#include <QFile>
#include <QFileInfo>

namespace {

/// The largest card holds about 125 kB. A file far beyond that is not one, and is not worth the memory.
constexpr qint64 largestFileBytes = 16 * 1024 * 1024;

/// What every download of a vehicle unit begins with.
constexpr char vehicleUnitMark = 0x76;

FileBytes unusable(ExitCode code, const QString& message, const QString& advice)
{
    return {QByteArray(), code, message, advice};
}

} // namespace

FileBytes readFile(const QString& path)
{
    const QFileInfo info(path);
    const QString advice = QStringLiteral("Name a file that a card was downloaded to.");
    if (info.exists() && !info.isFile())
        return unusable(
            exitUsage,
            info.isDir() ? QStringLiteral("%1 is a folder.").arg(path)
                         : QStringLiteral("%1 is no ordinary file.").arg(path),
            advice);
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return unusable(
            exitUsage, QStringLiteral("%1 cannot be read: %2.").arg(path, file.errorString()), advice);
    if (file.size() > largestFileBytes)
        return unusable(
            exitDamagedFile, QStringLiteral("%1 is far too large for a card's download.").arg(path), advice);
    const QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError)
        return unusable(
            exitUsage, QStringLiteral("%1 cannot be read: %2.").arg(path, file.errorString()), advice);
    if (bytes.isEmpty())
        return unusable(
            exitDamagedFile, QStringLiteral("%1 is empty.").arg(path),
            QStringLiteral("A download of a control card is: what these keep is not read."));
    if (bytes.front() == vehicleUnitMark)
        return unusable(
            exitDamagedFile, QStringLiteral("%1 is the download of a vehicle unit, not of a card.").arg(path),
            QStringLiteral("A card's download begins with the bytes 00 02."));
    return {bytes, exitDone, QString(), QString()};
}
