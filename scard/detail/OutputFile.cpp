#include <scard/detail/OutputFile.h>

#include <scard/detail/ErrorBuilder.h>

#include <QByteArray>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace scard::detail {

bool isOwnPlainFile(const struct stat& status, uid_t user)
{
    return S_ISREG(status.st_mode) && status.st_nlink == 1 && status.st_uid == user;
}

void openInTmp(QFile& file, const QString& name)
{
    const QString path = QStringLiteral("/tmp/") + name;
    file.setFileName(path);

    const QByteArray encodedName = QFile::encodeName(name);
    if (encodedName.contains('/') || encodedName.contains('\0'))
        return;

    // Not blocking, for a pipe that nobody reads must not hold the download for ever.
    const int descriptor = ::open(
        QFile::encodeName(path).constData(), O_WRONLY | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, 0666);
    if (descriptor < 0)
        return;
    struct stat status = {};
    const bool ours = ::fstat(descriptor, &status) == 0 && isOwnPlainFile(status, ::geteuid());
    // Unbuffered: each record goes to the system at once, and needs no room of its own on the way.
    if (!ours || ::ftruncate(descriptor, 0) != 0 ||
        !file.open(descriptor, QIODevice::WriteOnly | QIODevice::Unbuffered, QFileDevice::AutoCloseHandle))
        ::close(descriptor);
}

aux::Error syncToDisk(QFile& file)
{
    if (!file.isOpen())
        return {};
    int result = 0;
    do {
        result = ::fsync(file.handle());
    } while (result != 0 && errno == EINTR);
    // EINVAL and EROFS: a kind of file that has nothing to wait for.
    if (result == 0 || errno == EINVAL || errno == EROFS)
        return {};
    return libraryError(
        QStringLiteral("saveToFile() sync failed: ") + QString::fromLocal8Bit(std::strerror(errno)));
}

} // namespace scard::detail
