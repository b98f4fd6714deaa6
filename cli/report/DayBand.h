#pragma once

#include "Report.h"

#include <QString>

#include <array>
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

/// A shade as the views name it, and what of a day is drawn in it.
struct ShadeName
{
    Shade shade;
    const char* name;
    const char* heading;
    const char* shortHeading; ///< on a terminal
    int Day::*sum;
};

/// As people read them: what weighs most first.
constexpr std::array<ShadeName, shadeCount> shadeNames{{
    {Shade::Driving, "driving", "Driving", "drive", &Day::driving},
    {Shade::Work, "work", "Work", "work", &Day::work},
    {Shade::Availability, "availability", "Available", "avail", &Day::availability},
    {Shade::Rest, "rest", "Rest", "rest", &Day::rest},
    {Shade::Unknown, "unknown", "Unknown", "unkn.", &Day::unknown},
}};

QString shadeName(Shade shade);

} // namespace report
