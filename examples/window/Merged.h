#pragma once

#include <map>
#include <vector>

/// The lists of a card's two applications as one, by @p key: a record of the second application, and of the
/// first what only that one has, for a first-generation vehicle unit writes into no other.
template <typename Item, typename Key>
std::vector<Item> merged(const std::vector<Item>& first, const std::vector<Item>& second, Key key)
{
    std::map<decltype(key(first.front())), Item> items;
    for (const Item& item : second)
        items.emplace(key(item), item);
    for (const Item& item : first)
        items.emplace(key(item), item); // does nothing where there is one
    std::vector<Item> all;
    for (const auto& [unused, item] : items)
        all.push_back(item);
    return all;
}
