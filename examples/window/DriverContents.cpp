#include "DriverContents.h"

#include "EventNames.h"
#include "Merged.h"

#include <scard/SCardDriverG2.h>

#include <algorithm>
#include <map>
#include <tuple>

namespace {

using Driver = scard::SCardDriverG1;

Activity activityOf(const Driver::_DAILY_ITEM& item)
{
    // Without a card and without an entry by hand nobody knows what the driver did.
    if (item.cardStatus == 1 && item.drivingStatus == 0)
        return Activity::Unknown;
    constexpr Activity byCode[] = {Activity::Rest, Activity::Availability, Activity::Work, Activity::Driving};
    return byCode[item.activity];
}

Day dayOf(const Driver::_DAILY_ACTIVITIES& activities)
{
    Day day;
    day.date = activities.date.toUTC().date(); // the local date is another one west of Greenwich
    day.sum(Activity::Driving) = activities.driving;
    day.sum(Activity::Work) = activities.work;
    day.sum(Activity::Availability) = activities.availability;
    day.sum(Activity::Rest) = activities.rest;
    day.sum(Activity::Unknown) = activities.unknown;

    for (const Driver::_DAILY_ITEM& item : activities.items) {
        const int begin = std::min<int>(item.start, minutesOfDay);
        if (!day.stretches.empty())
            day.stretches.back().end = std::max(begin, day.stretches.back().begin);
        day.stretches.push_back({begin, minutesOfDay, activityOf(item), false});
    }
    if (!day.stretches.empty())
        day.stretches.back().isOpen = true;
    return day;
}

/// Of a day that both applications have, the one that knows more of it.
std::vector<Day> daysOf(
    const std::vector<Driver::_DAILY_ACTIVITIES>& first, const std::vector<Driver::_DAILY_ACTIVITIES>& second)
{
    std::map<QDate, Day> byDate;
    for (const auto* list : {&second, &first}) {
        for (const Driver::_DAILY_ACTIVITIES& activities : *list) {
            const Day day = dayOf(activities);
            const auto [place, isNew] = byDate.emplace(day.date, day);
            if (!isNew && day.sum(Activity::Unknown) < place->second.sum(Activity::Unknown))
                place->second = day;
        }
    }
    std::vector<Day> days;
    std::for_each(byDate.rbegin(), byDate.rend(), [&days](const auto& each) { days.push_back(each.second); });
    return days;
}

TextTable vehicles(const std::vector<Driver::_VEHICLE_USAGE_INFO>& items)
{
    TextTable table{
        QStringLiteral("vehicles"),
        CardContents::tr("Vehicles"),
        {CardContents::tr("From (UTC)"), CardContents::tr("To (UTC)"), CardContents::tr("Registration"),
         CardContents::tr("km"), CardContents::tr("to km")},
        {}};
    for (auto item = items.rbegin(); item != items.rend(); ++item)
        table.rows.push_back(
            {timeText(item->firstUse), timeText(item->lastUse), item->registration,
             QString::number(item->odometerBegin), QString::number(item->odometerEnd)});
    return table;
}

/// Events and faults have the same fields.
template <typename Item>
TextTable incidents(const QString& name, const QString& title, const std::vector<Item>& items)
{
    TextTable table{
        name,
        title,
        {CardContents::tr("From (UTC)"), CardContents::tr("To (UTC)"), CardContents::tr("What"),
         CardContents::tr("Registration")},
        {}};
    for (auto item = items.rbegin(); item != items.rend(); ++item)
        table.rows.push_back(
            {timeText(item->begin), timeText(item->end), eventName(item->type), item->registration});
    return table;
}

template <typename Item>
std::vector<Item> mergedIncidents(const std::vector<Item>& first, const std::vector<Item>& second)
{
    return merged(first, second, [](const Item& item) {
        return std::make_tuple(item.begin, item.end, item.type, item.registration);
    });
}

} // namespace

CardContents driverContents(scard::SCardDriverG1& driver)
{
    std::vector<Driver::_DAILY_ACTIVITIES> days;
    std::vector<Driver::_VEHICLE_USAGE_INFO> used;
    std::vector<Driver::_EVENT> events;
    std::vector<Driver::_FAULT> faults;
    // The getters without G2 in their names answer from the first application, on every card.
    if (const auto* second = dynamic_cast<const scard::SCardDriverG2*>(&driver)) {
        days = second->getActivitiesG2();
        for (const auto& each : second->getVehiclesUsedG2())
            used.push_back(each);
        events = second->getEventsG2();
        faults = second->getFaultsG2();
    }

    CardContents contents;
    contents.hasDays = true;
    contents.days = daysOf(driver.getActivities(), days);
    contents.tables = {
        vehicles(merged(
            driver.getVehiclesUsed(), used,
            [](const Driver::_VEHICLE_USAGE_INFO& item) {
                return std::make_tuple(item.firstUse, item.registration);
            })),
        incidents(
            QStringLiteral("events"), CardContents::tr("Events"),
            mergedIncidents(driver.getEvents(), events)),
        incidents(
            QStringLiteral("faults"), CardContents::tr("Faults"),
            mergedIncidents(driver.getFaults(), faults)),
    };
    return contents;
}
