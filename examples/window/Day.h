#pragma once

#include "Activity.h"

#include <QDate>
#include <QString>

#include <array>
#include <vector>

constexpr int minutesOfDay = 24 * 60;

/// A part of a day in which the driver does the same.
struct Stretch
{
    int begin = 0; ///< minute of the day
    int end = 0;
    Activity activity = Activity::Unknown;
    bool isOpen = false; ///< the day's last: the card does not know its end, it is in no sum
};

/// One day of a driver, from 00:00 to 24:00 UTC.
struct Day
{
    QDate date;
    std::vector<Stretch> stretches; ///< where two overlap, the later one holds
    std::array<int, activityCount> sums{};

    int& sum(Activity activity) { return sums[static_cast<std::size_t>(activity)]; }
    int sum(Activity activity) const { return sums[static_cast<std::size_t>(activity)]; }
};

/// As "7:05".
QString hoursAndMinutes(int minutes);

/// What the driver did from when on, a line for each change.
QString changesOf(const Day& day);
