#pragma once

#include "Report.h"

#include <QString>

#include <vector>

namespace report {

/// What a driver does, as a day is drawn.
enum class Shade
{
    Unknown,
    Rest,
    Availability,
    Work,
    Driving,
};

constexpr int shadeCount = 5;

/// A stretch of a day that is drawn alike.
struct Stretch
{
    int begin = 0; ///< minute of the day
    int end = 0;
    Shade shade = Shade::Unknown;
    bool isOpen = false; ///< behind the day's last change, whose end the card does not know: paler, in no sum

    bool looksLike(const Stretch& other) const { return shade == other.shade && isOpen == other.isOpen; }
};

/// The day as stretches from 0 to minutesOfDay. Of periods that lie over each other the later one holds.
std::vector<Stretch> stretches(const Day& day);

/// The day in @p cells equal pieces, each with what fills most of it; @p cells divides the minutes of a day.
std::vector<Stretch> band(const Day& day, int cells);

Shade shadeOf(const Period& period);
QString shadeName(Shade shade);

} // namespace report
