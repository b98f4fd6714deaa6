#include <scard/detail/DrivingTime.h>

#include <algorithm>
#include <cstdint>

namespace scard::detail {

namespace {

// Minutes, from the rules on driving and rest times (Regulation (EC) 561/2006).
constexpr int drivingOfDay = 540;
constexpr int drivingOfWeek = 3360;
constexpr int shortestFullRest = 660;
constexpr int drivingUntilBreak = 270;
constexpr int longestTooShortBreak = 44;
constexpr int minutesOfDay = 1440;

constexpr int extendedDays = 2;
constexpr int reducedRests = 3;
constexpr int daysOfWeek = 7;

constexpr std::uint32_t restActivity = 0;
constexpr std::uint32_t availabilityActivity = 1;

int busy(const Day& day)
{
    return day.work + day.driving;
}

/// @p start less what each of the seven days that end with @p date uses up; at least 0.
template <typename Use>
int leftOfWeek(const DayList& days, QDate date, int start, Use use)
{
    std::int64_t left = start;
    days.forEach(date.addDays(1 - daysOfWeek), date, [&](const Day& day) { left -= use(day); });
    return static_cast<int>(std::max<std::int64_t>(left, 0));
}

} // namespace

int remainingDrivingTimeOfDay(const DayList& days, QDate date)
{
    const Day* found = days.first(date);
    return found ? drivingOfDay - busy(*found) : drivingOfDay;
}

int remainingDrivingTimeOfWeek(const DayList& days, QDate date)
{
    return leftOfWeek(days, date, drivingOfWeek, busy);
}

int remainingExtendedDrivingTimeOfWeek(const DayList& days, QDate date)
{
    return leftOfWeek(
        days, date, extendedDays, [](const Day& day) { return busy(day) > drivingOfDay ? 1 : 0; });
}

int remainingReducedRestTimeOfWeek(const DayList& days, QDate date)
{
    return leftOfWeek(days, date, reducedRests, [](const Day& day) {
        return minutesOfDay - busy(day) < shortestFullRest ? 1 : 0;
    });
}

int timeToNextBreak(const DayList& days, QDate date)
{
    std::int64_t breaks = 0;
    std::int64_t work = 0;
    days.forEach(date, date, [&](const Day& day) {
        // Backwards from the last period that has an end; the breaks need not adjoin each other.
        for (std::size_t i = day.items.size(); i-- > 1 && breaks <= longestTooShortBreak;) {
            const auto& item = day.items[i - 1];
            const bool unknown = item.cardStatus == 1 && item.drivingStatus == 0;
            if (unknown || item.activity == availabilityActivity)
                continue;
            const int minutes = day.items[i].start - item.start;
            (item.activity == restActivity ? breaks : work) += minutes;
        }
    });
    return static_cast<int>(std::max<std::int64_t>(drivingUntilBreak - work, 0));
}

} // namespace scard::detail
