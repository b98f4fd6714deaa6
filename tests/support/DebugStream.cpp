#include "DebugStream.h"
#include "DebugStreamInternal.h"

#include <mutex>

namespace test {

namespace {

std::mutex mutex; // not Qt's: the thread sanitizer does not see into that one
QStringList debugLines;
QStringList expectedWarnings;
QStringList unexpected;

void collect(QtMsgType type, const QMessageLogContext&, const QString& text)
{
    const std::lock_guard lock(mutex);
    if (type == QtDebugMsg) {
        debugLines.append(text);
        return;
    }
    if (!expectedWarnings.removeOne(text))
        unexpected.append(text);
}

} // namespace

QStringList DebugStream::lines()
{
    const std::lock_guard lock(mutex);
    return debugLines;
}

bool DebugStream::contains(const QString& line)
{
    return lines().contains(line);
}

void DebugStream::clear()
{
    const std::lock_guard lock(mutex);
    debugLines.clear();
}

void DebugStream::expectWarning(const QString& text)
{
    const std::lock_guard lock(mutex);
    expectedWarnings.append(text);
}

void installDebugStream()
{
    qInstallMessageHandler(collect);
}

void beginDebugStream()
{
    const std::lock_guard lock(mutex);
    debugLines.clear();
    expectedWarnings.clear();
    unexpected.clear();
}

QStringList unexpectedMessages()
{
    const std::lock_guard lock(mutex);
    QStringList all = unexpected;
    for (const QString& missing : expectedWarnings)
        all.append(QStringLiteral("expected, but did not come: ") + missing);
    return all;
}

} // namespace test
