#pragma once

#include <QElapsedTimer>
#include <QTimer>

/// A clock in the thread of the window: how long was the window dead at most?
class Ticks
{
  public:
    Ticks();

    int count() const { return m_count; }
    qint64 longestGapMs() const { return m_longestGapMs; }

  private:
    QTimer m_timer;
    QElapsedTimer m_sinceLast;
    int m_count = 0;
    qint64 m_longestGapMs = 0;
};
