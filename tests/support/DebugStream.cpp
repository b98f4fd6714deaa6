#include "DebugStream.h"
#include "DebugStreamInternal.h"

#include <QMutex>
#include <QMutexLocker>

namespace test {

namespace {

QMutex mutex;
QStringList debugLines;
QStringList expectedWarnings;
QStringList unexpected;

void collect(QtMsgType type, const QMessageLogContext&, const QString& text)
{
    const QMutexLocker lock(&mutex);
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
    const QMutexLocker lock(&mutex);
    return debugLines;
}

bool DebugStream::contains(const QString& line)
{
    return lines().contains(line);
}

void DebugStream::clear()
{
    const QMutexLocker lock(&mutex);
    debugLines.clear();
}

void DebugStream::expectWarning(const QString& text)
{
    const QMutexLocker lock(&mutex);
    expectedWarnings.append(text);
}

void installDebugStream()
{
    qInstallMessageHandler(collect);
}

void beginDebugStream()
{
    const QMutexLocker lock(&mutex);
    debugLines.clear();
    expectedWarnings.clear();
    unexpected.clear();
}

QStringList unexpectedMessages()
{
    const QMutexLocker lock(&mutex);
    QStringList all = unexpected;
    for (const QString& missing : expectedWarnings)
        all.append(QStringLiteral("expected, but did not come: ") + missing);
    return all;
}

} // namespace test
