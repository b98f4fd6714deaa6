#pragma once

#include <scard/detail/DayList.h>

#include <QDate>

// The simple remaining-time figures of a day. Each is what SCardDriverG1's operation of that name gives.

namespace scard::detail {

int remainingDrivingTimeOfDay(const DayList& days, QDate date);
int remainingDrivingTimeOfWeek(const DayList& days, QDate date);
int remainingExtendedDrivingTimeOfWeek(const DayList& days, QDate date);
int remainingReducedRestTimeOfWeek(const DayList& days, QDate date);
int timeToNextBreak(const DayList& days, QDate date);

} // namespace scard::detail
