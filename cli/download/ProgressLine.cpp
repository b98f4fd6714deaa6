#include "ProgressLine.h"

#include <QStringList>

#include <algorithm>

namespace {

constexpr int wholePercent = 100;

/// An estimate from less than this would jump about.
constexpr int leastPercentOfAnEstimate = 3;

/// An EF that takes longer is shown with its own time; a reader that is quiet for longer makes every estimate
/// wrong.
constexpr qint64 longMs = 5000;

/// A bar for each width of the terminal: one that came and went with the text would flicker.
struct BarRow
{
    int columns;
    int length;
};
constexpr BarRow bars[] = {{100, 30}, {75, 16}, {55, 8}};

QString timeLeft(const ProgressState& state, int percent)
{
    if (percent < leastPercentOfAnEstimate || percent >= wholePercent)
        return {};
    const qint64 left = state.elapsedMs * (wholePercent - percent) / percent;
    return QStringLiteral("  about %1 left").arg(minutesAndSeconds(left));
}

QString efText(const ProgressState& state)
{
    if (state.ef.isEmpty())
        return {};
    if (state.efMs < longMs)
        return QStringLiteral("  ") + state.ef;
    return QStringLiteral("  %1 for %2").arg(state.ef, minutesAndSeconds(state.efMs));
}

/// "[####....] "; empty where there is no room for it.
QString bar(int percent, int columns)
{
    for (const BarRow& row : bars) {
        if (columns < row.columns)
            continue;
        const int filled = row.length * percent / wholePercent;
        return QLatin1Char('[') + QString(filled, QLatin1Char('#')) +
               QString(row.length - filled, QLatin1Char('.')) + QStringLiteral("] ");
    }
    return {};
}

} // namespace

QString progressLine(const ProgressState& state, int columns)
{
    const int percent = shownPercent(state.percent);
    const QString front = bar(percent, columns) + QStringLiteral("%1 %").arg(percent, 3);
    const QString elapsed = QStringLiteral("  ") + minutesAndSeconds(state.elapsedMs);
    const QString left = timeLeft(state, percent);
    const QString ef = efText(state);
    // The first that fits.
    const QStringList texts =
        state.quietMs >= longMs ? QStringList{elapsed + ef, ef, elapsed}
                                : QStringList{elapsed + left + ef, left + ef, elapsed + left, left, elapsed};
    for (const QString& text : texts) {
        if (front.size() + text.size() <= columns)
            return front + text;
    }
    return front.left(std::max(columns, 0));
}

QString minutesAndSeconds(qint64 milliseconds)
{
    constexpr qint64 second = 1000;
    constexpr qint64 minute = 60;
    const qint64 seconds = milliseconds / second;
    return QStringLiteral("%1:%2").arg(seconds / minute).arg(seconds % minute, 2, 10, QLatin1Char('0'));
}

int shownPercent(int percent)
{
    return std::clamp(percent, 0, wholePercent);
}
