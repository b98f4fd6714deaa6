#include "FinishedFile.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <QTemporaryFile>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace FinishedFile {

namespace {

QString reasonOf(int error)
{
    return QString::fromLocal8Bit(std::strerror(error));
}

QString hiddenTemplate(const QString& folder)
{
    return QDir(folder).filePath(QStringLiteral(".scard-XXXXXX"));
}

/// The rights that a new file gets here; a temporary one is for its owner alone.
mode_t usualMode()
{
    constexpr mode_t plainFile = 0666;
    const mode_t mask = ::umask(0);
    ::umask(mask);
    return plainFile & ~mask;
}

/// EINVAL and EROFS: a kind of file that has nothing to wait for.
bool syncToDisk(int descriptor)
{
    int result = 0;
    do {
        result = ::fsync(descriptor);
    } while (result != 0 && errno == EINTR);
    return result == 0 || errno == EINVAL || errno == EROFS;
}

/// The new name is on the disk too before the old one goes.
void syncFolder(const QString& folder)
{
    const int descriptor = ::open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0)
        return;
    syncToDisk(descriptor);
    ::close(descriptor);
}

/// Past Qt, which keeps the reason of a failed write to itself.
bool writeAll(int descriptor, const QByteArray& bytes)
{
    for (int written = 0; written < bytes.size();) {
        const ssize_t count = ::write(
            descriptor, bytes.constData() + written, static_cast<std::size_t>(bytes.size() - written));
        if (count < 0 && errno != EINTR)
            return false;
        written += static_cast<int>(std::max<ssize_t>(count, 0));
    }
    return true;
}

QByteArray sha256Of(QIODevice& device)
{
    QCryptographicHash hash(QCryptographicHash::Sha256);
    hash.addData(&device);
    return hash.result();
}

/// @return why not, empty when @p copy has all of @p source and is on the disk
QString copyTo(QTemporaryFile& copy, const QString& source)
{
    constexpr qint64 chunkBytes = 65536;
    QFile file(source);
    if (!file.open(QIODevice::ReadOnly))
        return file.errorString();
    QCryptographicHash hash(QCryptographicHash::Sha256);
    while (!file.atEnd()) {
        const QByteArray chunk = file.read(chunkBytes);
        if (chunk.isEmpty())
            return file.errorString();
        hash.addData(chunk);
        if (!writeAll(copy.handle(), chunk))
            return reasonOf(errno);
    }
    if (::fchmod(copy.handle(), usualMode()) != 0 || !syncToDisk(copy.handle()))
        return reasonOf(errno);
    copy.seek(0);
    if (sha256Of(copy) != hash.result())
        return QStringLiteral("what was written differs from what was read");
    return {};
}

QString numbered(const QString& name, int number)
{
    if (number == 1)
        return name;
    const int ending = name.lastIndexOf(QLatin1Char('.'));
    return name.left(ending) + QLatin1Char('_') + QString::number(number) + name.mid(ending);
}

/// @return why not, empty when @p copy stands under @p path
QString replace(QTemporaryFile& copy, const QString& path)
{
    const QByteArray hidden = QFile::encodeName(copy.fileName());
    if (std::rename(hidden.constData(), QFile::encodeName(path).constData()) != 0)
        return reasonOf(errno);
    return {};
}

struct Named
{
    QString path;
    QString failure;    ///< why not; empty when the file has the name
    bool taken = false; ///< another file has it
};

/// Gives @p copy its name. Qt's rename never replaces another file.
Named giveName(QTemporaryFile& copy, const QDir& folder, const QString& name, Existing existing)
{
    if (existing == Existing::Replaced) {
        const QString path = folder.filePath(name);
        return {path, replace(copy, path), false};
    }
    constexpr int mostNumbers = 9999;
    for (int number = 1; number <= mostNumbers; ++number) {
        const QString path = folder.filePath(numbered(name, number));
        if (copy.rename(path))
            return {path, {}, false};
        if (!QFileInfo::exists(path) && !QFileInfo(path).isSymLink())
            return {path, copy.errorString(), false};
        if (existing == Existing::Refused)
            break;
    }
    return {folder.filePath(name), {}, true};
}

Placed notPlaced(const QString& source, const QString& folder, const QString& reason)
{
    return {source, QStringLiteral("The download could not be brought to %1: %2.").arg(folder, reason)};
}

bool isSameFolder(const QString& one, const QString& two)
{
    return QFileInfo(one).canonicalFilePath() == QFileInfo(two).canonicalFilePath();
}

QString endingOf(scard::FilenameRegion region)
{
    switch (region) {
    case scard::RegionC1B:
        return QStringLiteral(".C1B");
    case scard::RegionTGD:
        return QStringLiteral(".TGD");
    case scard::RegionDDD:
        break;
    }
    return QStringLiteral(".DDD");
}

} // namespace

QString whyNoFolder(const QString& folder)
{
    const QFileInfo info(folder);
    if (!info.exists())
        return QStringLiteral("There is no folder %1.").arg(folder);
    if (!info.isDir())
        return QStringLiteral("%1 is not a folder.").arg(folder);
    QTemporaryFile probe(hiddenTemplate(folder));
    if (!probe.open())
        return QStringLiteral("No file can be made in %1: %2.").arg(folder, probe.errorString());
    return {};
}

Placed place(const QString& source, const QString& folder, const QString& name, Existing existing)
{
    const QFileInfo sourceInfo(source);
    if (name == sourceInfo.fileName() && isSameFolder(sourceInfo.path(), folder))
        return {source, {}};

    QTemporaryFile copy(hiddenTemplate(folder));
    // With a name from the start: a file without one could try a single name only.
    if (!copy.open() || copy.fileName().isEmpty())
        return notPlaced(source, folder, copy.errorString());
    const QString reason = copyTo(copy, source);
    if (!reason.isEmpty())
        return notPlaced(source, folder, reason);
    const Named named = giveName(copy, QDir(folder), name, existing);
    if (named.taken)
        return {source, QStringLiteral("%1 exists already; --force replaces it.").arg(named.path)};
    if (!named.failure.isEmpty())
        return notPlaced(source, folder, named.failure);
    copy.setAutoRemove(false);
    syncFolder(folder);
    QFile::remove(source);
    return {named.path, {}};
}

bool isNameless(const QString& name)
{
    return name == QLatin1String("CARD_FILENAME_NOT_SET.DDD");
}

QString nameFor(const QDateTime& time, const QString& chipSerial, scard::FilenameRegion region)
{
    // In the digits 0 to 9, whatever digits the machine's language uses.
    const QString timeText = QLocale::c().toString(time.toUTC(), QStringLiteral("yyyyMMdd_HHmmss"));
    const QString serial = chipSerial.isEmpty() ? QStringLiteral("UNKNOWN") : chipSerial;
    return QStringLiteral("CARD_") + timeText + QLatin1Char('_') + serial + endingOf(region);
}

} // namespace FinishedFile
