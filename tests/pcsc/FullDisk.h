#pragma once

#include <QFile>

#include <csignal>
#include <sys/resource.h>

// Disks without room, for one process: a limit to the size of its files.

namespace test {

/// No file of this process can grow beyond so many bytes while this object lives.
class FileSizeLimit
{
  public:
    explicit FileSizeLimit(rlim_t bytes)
    {
        std::signal(SIGXFSZ, SIG_IGN); // the write fails instead
        ::getrlimit(RLIMIT_FSIZE, &m_before);
        rlimit limit = m_before;
        limit.rlim_cur = bytes;
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }

    ~FileSizeLimit() { ::setrlimit(RLIMIT_FSIZE, &m_before); }

    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

  private:
    rlimit m_before{};
};

/// Has no room from a size on until a write has failed for that, as a disk that was full for a moment.
class MomentWithoutRoom : public QFile
{
  public:
    MomentWithoutRoom(const QString& name, qint64 room) : QFile(name), m_room(room) {}

  protected:
    qint64 writeData(const char* data, qint64 length) override
    {
        if (m_over)
            return QFile::writeData(data, length);
        const FileSizeLimit limit(static_cast<rlim_t>(m_room));
        const qint64 written = QFile::writeData(data, length);
        m_over = written < 0;
        return written;
    }

  private:
    qint64 m_room;
    bool m_over = false;
};

} // namespace test
