#pragma once

#include <QDateTime>
#include <QMap>
#include <QString>

/// Finds the download file in "/tmp/" when the download failed: then the library says nothing of it.
///
/// While the card is told of its download, the file is complete and still open in this process. So it is
/// found among the process's own descriptors: unlike the newest file in "/tmp/", that one is nobody else's.
class WrittenFile
{
  public:
    /// Looks from now on, until the object goes.
    WrittenFile();
    ~WrittenFile();
    WrittenFile(const WrittenFile&) = delete;
    WrittenFile& operator=(const WrittenFile&) = delete;

    /// The complete file; empty when the card was not told of anything.
    QString path() const { return m_path; }

    /// The file that was left unfinished: the only download in "/tmp/" that was changed since the start;
    /// empty when there is none, or more than one. Nothing better than a hint for the user.
    QString unfinished() const;

  private:
    void look();

    QDateTime m_start;
    QMap<QString, QString> m_openBefore; ///< what each descriptor stands for
    QString m_path;
};
