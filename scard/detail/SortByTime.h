#pragma once

#include <QDateTime>

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

namespace scard::detail {

/// Sorts @p items by the times that their member @p time gives, as QDateTime orders them.
///
/// Comparing two local times on different sides of a clock change asks the time-zone database, so each time
/// is converted once and not with every comparison.
template <typename Item>
void sortByTime(std::vector<Item>& items, QDateTime Item::*time)
{
    const auto earlier = [time](const Item& a, const Item& b) { return a.*time < b.*time; };
    if (std::is_sorted(items.begin(), items.end(), earlier))
        return;

    struct Key
    {
        qint64 milliseconds;
        std::size_t index;
    };
    std::vector<Key> order;
    order.reserve(items.size());
    for (const Item& item : items)
        order.push_back({(item.*time).toMSecsSinceEpoch(), order.size()});
    // Where a null time belongs depends on the version of Qt. Stable, for nothing but a merge is safe with
    // times that the zone's history makes contradict each other.
    std::stable_sort(order.begin(), order.end(), [&items, time](const Key& a, const Key& b) {
        const QDateTime& one = items[a.index].*time;
        const QDateTime& other = items[b.index].*time;
        return one.isNull() || other.isNull() ? one < other : a.milliseconds < b.milliseconds;
    });

    std::vector<Item> sorted;
    sorted.reserve(items.size());
    for (const Key& key : order)
        sorted.push_back(std::move(items[key.index]));
    items = std::move(sorted);
}

} // namespace scard::detail
