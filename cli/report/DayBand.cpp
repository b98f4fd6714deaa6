#include "DayBand.h"

#include <algorithm>
#include <cstddef>

namespace report {

namespace {

/// A stretch of one minute for each minute of the day.
std::vector<Stretch> minutesOf(const Day& day)
{
    std::vector<Stretch> minutes(minutesOfDay);
    for (int minute = 0; minute < minutesOfDay; ++minute)
        minutes[static_cast<std::size_t>(minute)] = {minute, minute + 1, Shade::Unknown, false};
    for (const Period& period : day.periods) {
        const int begin = std::clamp(period.beginMinute, 0, minutesOfDay);
        const int end = std::clamp(period.endMinute, begin, minutesOfDay);
        std::for_each(minutes.begin() + begin, minutes.begin() + end, [&period](Stretch& minute) {
            minute.shade = shadeOf(period);
            minute.isOpen = !period.hasEnd;
        });
    }
    return minutes;
}

/// What fills most of some minutes; of two that fill the same the one with more effort.
Stretch mostOf(std::vector<Stretch>::const_iterator begin, std::vector<Stretch>::const_iterator end)
{
    struct Share
    {
        int minutes = 0;
        Stretch stretch;
    };
    std::array<Share, 2 * shadeCount> shares;
    std::for_each(begin, end, [&shares](const Stretch& minute) {
        Share& share = shares[2 * static_cast<std::size_t>(minute.shade) + (minute.isOpen ? 0 : 1)];
        ++share.minutes;
        share.stretch = minute;
    });
    // The shares stand in the order of effort.
    const auto most =
        std::max_element(shares.rbegin(), shares.rend(), [](const Share& one, const Share& other) {
            return one.minutes < other.minutes;
        });
    return {begin->begin, (end - 1)->end, most->stretch.shade, most->stretch.isOpen};
}

} // namespace

Shade shadeOf(const Period& period)
{
    // Without a card and without an entry by hand nobody knows what the driver did.
    if (period.cardStatus.number == 1 && period.drivingStatus.number == 0)
        return Shade::Unknown;
    switch (period.activity.number) {
    case 0:
        return Shade::Rest;
    case 1:
        return Shade::Availability;
    case 2:
        return Shade::Work;
    default:
        return Shade::Driving;
    }
}

QString shadeName(Shade shade)
{
    const auto* row = std::find_if(
        shadeNames.begin(), shadeNames.end(), [shade](const ShadeName& each) { return each.shade == shade; });
    return QString::fromLatin1(row->name);
}

std::vector<Stretch> stretches(const Day& day)
{
    std::vector<Stretch> result;
    for (const Stretch& minute : minutesOf(day)) {
        if (result.empty() || !result.back().looksLike(minute))
            result.push_back(minute);
        result.back().end = minute.end;
    }
    return result;
}

std::vector<Stretch> band(const Day& day, int cells)
{
    const std::vector<Stretch> minutes = minutesOf(day);
    const int width = minutesOfDay / cells;
    std::vector<Stretch> result;
    result.reserve(static_cast<std::size_t>(cells));
    for (int cell = 0; cell < cells; ++cell)
        result.push_back(mostOf(minutes.begin() + cell * width, minutes.begin() + (cell + 1) * width));
    return result;
}

} // namespace report
