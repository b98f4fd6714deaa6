#include <scard/detail/ActivityBuffer.h>

#include <scard/detail/ErrorBuilder.h>
#include <scard/records/BigEndian.h>

#include <cstddef>

namespace scard::detail {

namespace {

// CardActivityDailyRecord: where its fields lie.
constexpr std::uint32_t lengthOffset = 2;
constexpr std::uint32_t dateOffset = 4;
constexpr std::uint32_t headerLength = 12;

constexpr std::size_t pointersLength = 4;

/// Most periods that a list takes. No card that fits its own buffer comes near; records that overlap each
/// other could ask for gigabytes.
constexpr std::size_t mostPeriods = 1048576;

/// What the time before a change counted as.
constexpr unsigned int unknownState = 3;

class CyclicBuffer
{
  public:
    CyclicBuffer(const unsigned char* bytes, std::uint32_t length) : m_bytes(bytes), m_length(length) {}

    std::uint32_t number(std::uint32_t position, std::uint32_t count) const
    {
        std::uint32_t value = 0;
        for (std::uint32_t i = 0; i < count; ++i)
            value = (value << 8) | m_bytes[(position + i) % m_length];
        return value;
    }

  private:
    const unsigned char* m_bytes;
    std::uint32_t m_length;
};

/// ActivityChangeInfo: bits 15 slot, 14 driving status, 13 card status, 12 and 11 activity, the rest the
/// minute of the day.
SCardDriverG1::_DAILY_ITEM readChange(std::uint32_t word)
{
    SCardDriverG1::_DAILY_ITEM item{};
    item.start = static_cast<std::uint16_t>(word & 0x7FF);
    item.slot = (word >> 15) & 1;
    item.drivingStatus = (word >> 14) & 1;
    item.cardStatus = (word >> 13) & 1;
    item.activity = (word >> 11) & 3;
    return item;
}

unsigned int stateOf(const SCardDriverG1::_DAILY_ITEM& item)
{
    if (item.cardStatus == 0)
        return item.drivingStatus;
    return item.drivingStatus == 1 ? 2 : unknownState;
}

int& counterOf(Day& day, std::uint32_t activity)
{
    int* const counters[] = {&day.rest, &day.availability, &day.work, &day.driving};
    return *counters[activity];
}

Day readDay(const CyclicBuffer& buffer, std::uint32_t position, std::uint32_t length)
{
    Day day;
    day.date = QDateTime::fromSecsSinceEpoch(buffer.number(position + dateOffset, 4), Qt::LocalTime);
    if (length <= headerLength)
        return day;

    // The byte that an odd length leaves over is the first of one more change.
    const std::uint32_t changes = (length - headerLength + 1) / 2;
    day.items.reserve(changes);
    for (std::uint32_t i = 0; i < changes; ++i) {
        const auto item = readChange(buffer.number(position + headerLength + 2 * i, 2));
        const bool first = day.items.empty();
        const int minutes = item.start - (first ? 0 : day.items.back().start);
        if (first || stateOf(day.items.back()) == unknownState)
            day.unknown += minutes;
        else
            counterOf(day, day.items.back().activity) += minutes;
        if (!first)
            day.items.back().duration = static_cast<std::uint16_t>(minutes & 0xFFFF);
        day.items.push_back(item);
    }
    return day;
}

} // namespace

aux::Error readDays(const Bytes& ef, std::uint32_t structureLength, std::vector<Day>& days)
{
    const std::size_t held = ef.size() < pointersLength ? 0 : ef.size() - pointersLength;
    if (structureLength > held)
        return libraryError(QStringLiteral("buildDailyActivityList: Invalid activityStructureLength"));
    days.clear();
    if (structureLength == 0)
        return {};

    const CyclicBuffer buffer(ef.data() + pointersLength, structureLength);
    std::uint32_t position = fromBigEndian(ef.data(), 2);
    const std::uint32_t newest = fromBigEndian(ef.data() + 2, 2);
    const std::uint32_t dayLimit = structureLength / headerLength;
    std::size_t periods = 0;
    for (std::uint32_t count = 0;; ++count) {
        const std::uint32_t length = buffer.number(position + lengthOffset, 2);
        if (length > structureLength)
            return libraryError(QStringLiteral("buildDailyActivityList: Invalid activityRecordLength"));
        days.push_back(readDay(buffer, position, length));
        periods += days.back().items.size();
        if (position == newest || count >= dayLimit || periods >= mostPeriods)
            return {};
        position += length;
        if (position >= structureLength)
            position -= structureLength;
    }
}

} // namespace scard::detail
