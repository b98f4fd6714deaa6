#include "WrittenFile.h"

#include "../LibraryLog.h"

#include <QDir>
#include <QFileInfo>

#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr char descriptorFolder[] = "/proc/self/fd";
constexpr char downloadFolder[] = "/tmp";

/// Numbers of the process's descriptors, and what they stand for: a number alone is soon another file's.
QMap<QString, QString> openFiles()
{
    const QDir folder(QString::fromLatin1(descriptorFolder));
    QMap<QString, QString> files;
    for (const QFileInfo& each : folder.entryInfoList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot))
        files.insert(each.fileName(), each.symLinkTarget());
    return files;
}

bool isOpenForWritingOnly(const QString& descriptor)
{
    const int flags = ::fcntl(descriptor.toInt(), F_GETFL);
    return flags >= 0 && (flags & O_ACCMODE) == O_WRONLY;
}

} // namespace

WrittenFile::WrittenFile() : m_start(QDateTime::currentDateTimeUtc()), m_openBefore(openFiles())
{
    LibraryLog::setSelectionListener([this] { look(); });
}

WrittenFile::~WrittenFile()
{
    LibraryLog::setSelectionListener({});
}

QString WrittenFile::unfinished() const
{
    // The clock of files lags a little behind.
    constexpr int lagMs = -100;
    const QStringList endings{QStringLiteral("*.DDD"), QStringLiteral("*.C1B"), QStringLiteral("*.TGD")};
    QStringList changed;
    for (const QFileInfo& file :
         QDir(QString::fromLatin1(downloadFolder)).entryInfoList(endings, QDir::Files)) {
        if (file.ownerId() == ::geteuid() && file.lastModified() >= m_start.addMSecs(lagMs))
            changed << file.filePath();
    }
    return changed.size() == 1 ? changed.front() : QString();
}

void WrittenFile::look()
{
    const QString folder = QFileInfo(QString::fromLatin1(downloadFolder)).canonicalFilePath();
    const QMap<QString, QString> files = openFiles();
    for (auto each = files.begin(); each != files.end(); ++each) {
        if (m_openBefore.value(each.key()) == each.value() || !isOpenForWritingOnly(each.key()))
            continue;
        const QFileInfo file(each.value());
        if (file.path() == folder && file.isFile())
            m_path = QString::fromLatin1(downloadFolder) + QLatin1Char('/') + file.fileName();
    }
}
