#include "TimeReal.h"

#include <stdexcept>

namespace sim {

namespace {

constexpr int FirstYear = 1970;
constexpr int LastYear = 2106;

bool isLeap(int year)
{
    return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
}

int daysOfYear(int year)
{
    return isLeap(year) ? 366 : 365;
}

int daysOfMonth(int year, int month)
{
    static constexpr int Days[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return month == 2 && isLeap(year) ? 29 : Days[month - 1];
}

} // namespace

Date dateOf(std::uint32_t time)
{
    int days = static_cast<int>(time / SecondsPerDay);
    Date date;
    while (days >= daysOfYear(date.year)) {
        days -= daysOfYear(date.year++);
    }
    while (days >= daysOfMonth(date.year, date.month)) {
        days -= daysOfMonth(date.year, date.month++);
    }
    date.day = days + 1;
    return date;
}

std::uint32_t timeOf(const Date& date)
{
    if (date.year < FirstYear || date.year > LastYear || date.month < 1 || date.month > 12 || date.day < 1 ||
        date.day > daysOfMonth(date.year, date.month)) {
        throw std::invalid_argument("no such date");
    }
    std::uint32_t days = static_cast<std::uint32_t>(date.day) - 1;
    for (int year = FirstYear; year < date.year; ++year) {
        days += static_cast<std::uint32_t>(daysOfYear(year));
    }
    for (int month = 1; month < date.month; ++month) {
        days += static_cast<std::uint32_t>(daysOfMonth(date.year, month));
    }
    if (days >= UINT32_MAX / SecondsPerDay) {
        throw std::invalid_argument("a date beyond four bytes of seconds");
    }
    return days * SecondsPerDay;
}

int weekdayOf(std::uint32_t time)
{
    // 1970-01-01 was a Thursday.
    return static_cast<int>((time / SecondsPerDay + 3) % 7);
}

} // namespace sim
