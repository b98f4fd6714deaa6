// TimeReal (seconds since 1970-01-01 00:00 UTC, four bytes) and the calendar behind it.
#pragma once

#include <cstdint>

namespace sim {

constexpr std::uint32_t SecondsPerMinute = 60;
constexpr std::uint32_t SecondsPerDay = 86400;
constexpr int MinutesPerDay = 1440;

struct Date
{
    int year = 1970;
    /// 1..12 and 1..31.
    int month = 1;
    int day = 1;
};

Date dateOf(std::uint32_t time);
/// 00:00 of a date from 1970-01-01 to 2106-02-06; throws std::invalid_argument for any other.
std::uint32_t timeOf(const Date& date);
/// 0 = Monday .. 6 = Sunday.
int weekdayOf(std::uint32_t time);

/// A number below 100 as two decimal digits in a byte.
constexpr std::uint8_t bcd(int value)
{
    return static_cast<std::uint8_t>((value / 10) << 4 | value % 10);
}

} // namespace sim
