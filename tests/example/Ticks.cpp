#include "Ticks.h"

Ticks::Ticks()
{
    constexpr int everyMs = 10;
    QObject::connect(&m_timer, &QTimer::timeout, [this] {
        ++m_count;
        m_longestGapMs = qMax(m_longestGapMs, m_sinceLast.restart());
    });
    m_sinceLast.start();
    m_timer.start(everyMs);
}
