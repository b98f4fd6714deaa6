// EF_Driver_Activity_Data: the walk of the buffer, the list of days, and each day found by its date.
#include "Target.h"

#include <scard/detail/DayList.h>

namespace {

using scard::detail::Day;

void expectBounds(const std::vector<Day>& days, std::size_t size)
{
    // A record of a day has at least 12 bytes; its changes may be read again for another day.
    constexpr std::size_t header = 12;
    constexpr std::size_t mostPeriods = 1048576 + 65536;
    fuzz::expect(days.size() <= size / header + 1, "there are no more days than have room");
    std::size_t periods = 0;
    for (const Day& day : days)
        periods += day.items.size();
    fuzz::expect(periods <= mostPeriods, "the periods of all days are bounded");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::discardDebugStream();
    constexpr std::size_t announcedLength = 2;
    if (size < announcedLength)
        return 0;
    const auto length = static_cast<std::uint32_t>(data[0] << 8 | data[1]);
    const scard::detail::Bytes ef(data + announcedLength, data + size);

    scard::detail::DayList days;
    days.build(ef, length);
    expectBounds(days.days(), ef.size());
    days.sort();
    for (const Day& day : days.days()) {
        const QDate date = day.date.date();
        fuzz::expect(days.first(date) != nullptr, "each day of the list is found by its date");
    }
    return 0;
}
