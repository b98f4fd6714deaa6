#include "RootKeys.h"

#include "../Console.h"

#include <QFile>
#include <QFileInfo>

namespace RootKeys {

namespace {

const auto rootOption = QStringLiteral("root");

/// A root certificate has some 340 bytes at most.
constexpr qint64 largestFileBytes = 4096;

/// @return why there is none, in one sentence without its end; empty when there is one
QString readKey(const QString& path, std::vector<scard::verify::RootKey>& roots)
{
    const QFileInfo info(path);
    if (info.exists() && !info.isFile())
        return info.isDir() ? QStringLiteral("it is a folder") : QStringLiteral("it is no ordinary file");
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return file.errorString();
    const scard::verify::RootKeyResult result = scard::verify::readRootKey(file.read(largestFileBytes));
    if (result.key)
        roots.push_back(*result.key);
    return result.reason;
}

} // namespace

void add(Arguments& arguments)
{
    arguments.addValue(
        rootOption, QStringLiteral("KEYFILE"),
        QStringLiteral(
            "File with the root key of a generation, as its authority publishes it: 144 bytes, or a "
            "certificate signed with its own key. May be given more than once."));
}

bool anyGiven(const Arguments& arguments)
{
    return arguments.isSet(rootOption);
}

std::optional<ExitCode> read(const Arguments& arguments, std::vector<scard::verify::RootKey>& roots)
{
    for (const QString& path : arguments.values(rootOption)) {
        if (path.isEmpty())
            return arguments.usageError(QStringLiteral("--root needs a file."));
        const QString reason = readKey(path, roots);
        if (reason.isEmpty())
            continue;
        err() << "scard: " << printable(path) << " gives no root key: " << printable(reason)
              << ".\nName the file as the authority publishes it." << Qt::endl;
        return exitUsage;
    }
    return std::nullopt;
}

} // namespace RootKeys
