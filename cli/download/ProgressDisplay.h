#pragma once

#include "ProgressLine.h"

#include <QElapsedTimer>
#include <QString>

#include <condition_variable>
#include <mutex>
#include <thread>

/// Shows on standard output how far a download is. A thread of its own keeps the clock: a broken reader can
/// hold one command for minutes, and the user must see where.
class ProgressDisplay
{
  public:
    enum class Style
    {
        Silent,
        Lines, ///< one line for each ten percent
        Bar,   ///< one line of the terminal, drawn again and again
    };

    explicit ProgressDisplay(Style style);
    ~ProgressDisplay();
    ProgressDisplay(const ProgressDisplay&) = delete;
    ProgressDisplay& operator=(const ProgressDisplay&) = delete;

    /// A download begins. The EF that is read is learnt from the library's debug stream.
    void begin();

    void setPercent(int percent);

    /// Prints a line; in front of the bar, which stays the last line.
    void printLine(const QString& line);

    /// The download has ended: the bar goes away.
    void end();

  private:
    void setEf(const QString& ef);
    void keepTime();
    void tick();
    void draw();
    void erase();
    ProgressState state() const;

    const Style m_style;
    std::mutex m_mutex;
    std::condition_variable m_ended;
    std::thread m_clock;
    bool m_running = false;
    QElapsedTimer m_elapsed;
    QElapsedTimer m_efElapsed;
    QElapsedTimer m_sinceProgress;
    QString m_ef;
    int m_percent = -1;
    int m_lastLinePercent = -1;
    qint64 m_lastEfLineSeconds = 0;
    int m_drawn = 0; ///< characters of the bar on the terminal
};
