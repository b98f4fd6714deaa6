#pragma once

#include <scard/detail/RecordFields.h>

#include <algorithm>
#include <cstddef>
#include <vector>

namespace scard::detail {

/// What stands before the records of a cyclic EF: the number of the newest.
constexpr std::size_t pointerBytes = sizeof(UInt16);

/// The records of an EF from byte @p offset on that @p isUsed accepts, by the time that @p timeOf gives, each
/// made an item by @p convert.
template <typename Item, typename Record, typename IsUsed, typename TimeOf, typename Convert>
std::vector<Item>
usedByTime(const Bytes& ef, std::size_t offset, IsUsed isUsed, TimeOf timeOf, Convert convert)
{
    std::vector<Record> used;
    forEachRecord<Record>(ef, offset, [&](const Record& record) {
        if (isUsed(record))
            used.push_back(record);
    });
    std::stable_sort(used.begin(), used.end(), [&timeOf](const Record& a, const Record& b) {
        return timeOf(a).value() < timeOf(b).value();
    });
    std::vector<Item> items;
    items.reserve(used.size());
    for (const Record& record : used)
        items.push_back(convert(record));
    return items;
}

/// The same where a slot was never used if its time is 0.
template <typename Item, typename Record, typename TimeOf, typename Convert>
std::vector<Item> byTime(const Bytes& ef, std::size_t offset, TimeOf timeOf, Convert convert)
{
    const auto isUsed = [&timeOf](const Record& record) { return timeOf(record).value() != 0; };
    return usedByTime<Item, Record>(ef, offset, isUsed, timeOf, convert);
}

/// The same where the time is a field of its own.
template <typename Item, typename Record, typename Convert>
std::vector<Item> byTime(const Bytes& ef, std::size_t offset, TimeReal Record::*time, Convert convert)
{
    const auto timeOf = [time](const Record& record) { return record.*time; };
    return byTime<Item, Record>(ef, offset, timeOf, convert);
}

} // namespace scard::detail
