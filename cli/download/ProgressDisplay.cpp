#include "ProgressDisplay.h"

#include "../Console.h"
#include "../LibraryLog.h"

#include <chrono>

namespace {

constexpr int stepPercent = 10;
constexpr qint64 msPerSecond = 1000;

/// Where there is no bar, an EF that takes long is named this often.
constexpr qint64 efLineSeconds = 30;

} // namespace

ProgressDisplay::ProgressDisplay(Style style) : m_style(style) {}

ProgressDisplay::~ProgressDisplay()
{
    end();
}

void ProgressDisplay::begin()
{
    end();
    if (m_style == Style::Silent)
        return;
    m_running = true;
    m_percent = -1;
    m_lastLinePercent = -1;
    m_lastEfLineSeconds = 0;
    m_ef.clear();
    m_elapsed.start();
    m_efElapsed.start();
    m_sinceProgress.start();
    LibraryLog::setEfListener([this](const QString& ef) { setEf(ef); });
    m_clock = std::thread([this] { keepTime(); });
}

void ProgressDisplay::setPercent(int percent)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (!m_running)
        return;
    const bool changed = percent != m_percent;
    m_percent = percent;
    m_sinceProgress.start();
    if (m_style == Style::Bar) {
        if (changed)
            draw();
        return;
    }
    const int step = shownPercent(percent) / stepPercent * stepPercent;
    if (step == m_lastLinePercent)
        return;
    m_lastLinePercent = step;
    out() << "Progress: " << step << " %" << Qt::endl;
}

void ProgressDisplay::printLine(const QString& line)
{
    if (m_style == Style::Silent)
        return;
    const std::lock_guard<std::mutex> lock(m_mutex);
    erase();
    out() << line << Qt::endl;
    draw();
}

void ProgressDisplay::end()
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (!m_running)
            return;
        m_running = false;
        erase();
        out().flush();
    }
    LibraryLog::setEfListener({});
    m_ended.notify_all();
    m_clock.join();
}

void ProgressDisplay::setEf(const QString& ef)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_ef = ef;
    m_efElapsed.start();
    m_lastEfLineSeconds = 0;
    draw();
}

void ProgressDisplay::keepTime()
{
    std::unique_lock<std::mutex> lock(m_mutex);
    while (!m_ended.wait_for(lock, std::chrono::seconds(1), [this] { return !m_running; }))
        tick();
}

void ProgressDisplay::tick()
{
    if (m_style == Style::Bar) {
        draw();
        return;
    }
    const qint64 seconds = m_efElapsed.elapsed() / msPerSecond / efLineSeconds * efLineSeconds;
    if (seconds == m_lastEfLineSeconds || m_ef.isEmpty())
        return;
    m_lastEfLineSeconds = seconds;
    out() << m_ef << " is being read for " << seconds << " s" << Qt::endl;
}

void ProgressDisplay::draw()
{
    if (m_style != Style::Bar || !m_running || m_percent < 0)
        return;
    // The last column stays free: some terminals begin a new line behind it.
    const QString line = progressLine(state(), outputColumns() - 1);
    out() << '\r' << line.leftJustified(m_drawn) << Qt::flush;
    m_drawn = static_cast<int>(line.size());
}

void ProgressDisplay::erase()
{
    if (m_drawn > 0)
        out() << '\r' << QString(m_drawn, QLatin1Char(' ')) << '\r';
    m_drawn = 0;
}

ProgressState ProgressDisplay::state() const
{
    return {m_percent, m_ef, m_elapsed.elapsed(), m_efElapsed.elapsed(), m_sinceProgress.elapsed()};
}
