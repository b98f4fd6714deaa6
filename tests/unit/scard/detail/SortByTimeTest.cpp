#include <scard/detail/SortByTime.h>

#include <gmock/gmock.h>

#include <random>

namespace {

using scard::detail::sortByTime;
using testing::ElementsAre;

struct Item
{
    QDateTime time;
    int number = 0;
};

std::vector<int> sortedNumbers(std::vector<Item> items)
{
    sortByTime(items, &Item::time);
    std::vector<int> numbers;
    for (const Item& item : items)
        numbers.push_back(item.number);
    return numbers;
}

Item at(qint64 seconds, int number)
{
    return {QDateTime::fromSecsSinceEpoch(seconds, Qt::LocalTime), number};
}

TEST(SortByTime, PutsTheEarliestFirst)
{
    EXPECT_THAT(sortedNumbers({at(300, 3), at(100, 1), at(200, 2)}), ElementsAre(1, 2, 3));
    EXPECT_THAT(sortedNumbers({at(100, 1), at(200, 2), at(300, 3)}), ElementsAre(1, 2, 3));
    EXPECT_THAT(sortedNumbers({at(100, 1)}), ElementsAre(1));
    EXPECT_THAT(sortedNumbers({}), testing::IsEmpty());
}

TEST(SortByTime, GoesByTheMomentWhenTheClockIsPutBack)
{
    // 2024-10-27 and 2024-11-03, 01:00 UTC and around: an hour of the clock that is there twice in Europe,
    // and in America.
    for (const qint64 change : {1729990800, 1730613600}) {
        std::vector<Item> items;
        for (int i = 0; i < 12; ++i)
            items.push_back(at(change + 900 * ((i * 5) % 12 - 6), (i * 5) % 12));
        EXPECT_THAT(sortedNumbers(items), ElementsAre(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11));
    }
}

TEST(SortByTime, PutsANullTimeWhereQtPutsIt)
{
    std::vector<Item> items{at(1700000000, 1), {QDateTime(), 2}, at(1600000000, 3), {QDateTime(), 4}};
    sortByTime(items, &Item::time);
    EXPECT_TRUE(std::is_sorted(
        items.begin(), items.end(), [](const Item& a, const Item& b) { return a.time < b.time; }));
    EXPECT_EQ(items.size(), 4u);
}

TEST(SortByTime, KeepsEveryItemWhateverTheZonesHistory)
{
    std::mt19937 random(7);
    std::vector<Item> items;
    for (int i = 0; i < 2000; ++i)
        items.push_back(at(static_cast<qint64>(random()), i));
    const std::vector<int> numbers = sortedNumbers(items);
    std::vector<qint64> seconds;
    for (const int number : numbers)
        seconds.push_back(items[static_cast<std::size_t>(number)].time.toSecsSinceEpoch());
    EXPECT_TRUE(std::is_sorted(seconds.begin(), seconds.end()));
    std::vector<int> all = numbers;
    std::sort(all.begin(), all.end());
    for (int i = 0; i < 2000; ++i)
        EXPECT_EQ(all[static_cast<std::size_t>(i)], i);
}

} // namespace
