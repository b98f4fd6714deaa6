#include "Day.h"

#include <QStringList>

QString hoursAndMinutes(int minutes)
{
    constexpr int hour = 60;
    return QStringLiteral("%1:%2").arg(minutes / hour).arg(minutes % hour, 2, 10, QLatin1Char('0'));
}

QString changesOf(const Day& day)
{
    QStringList lines;
    for (const Stretch& stretch : day.stretches)
        lines << hoursAndMinutes(stretch.begin).rightJustified(5, QLatin1Char('0')) + QLatin1Char(' ') +
                     activityName(stretch.activity);
    return lines.join(QLatin1Char('\n'));
}
