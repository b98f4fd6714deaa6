#include "fixtures/ActivityBuffer.h"
#include "fixtures/CardOnImage.h"
#include "fixtures/DriverImage.h"
#include "fixtures/RecordBytes.h"
#include "QtPrinters.h"

#include <scard/SCardDriverG1.h>
#include <support/DebugStream.h>
#include <support/ErrorChain.h>

#include <gmock/gmock.h>

#include <QDate>
#include <QDateTime>

#include <algorithm>
#include <cstdint>
#include <ostream>
#include <random>
#include <set>
#include <tuple>
#include <vector>

// Days and figures of generated buffers, compared with a second decoder that is as simple as can be.

namespace {

using scard::SCardDriverG1;
using test::Bytes;
using test::chain;
using test::lib;

/// Start, duration, driving status, card status, activity, slot.
using Item = std::tuple<unsigned int, unsigned int, unsigned int, unsigned int, unsigned int, unsigned int>;

/// Seconds; work, rest, driving, availability, unknown; items.
using ComparableDay = std::tuple<qint64, int, int, int, int, int, std::vector<Item>>;

struct PlainWord
{
    unsigned int slot;
    unsigned int status;
    unsigned int card;
    unsigned int activity;
    int minute;
};

struct PlainDay
{
    std::uint32_t seconds = 0;
    int work = 0;
    int rest = 0;
    int driving = 0;
    int availability = 0;
    int unknown = 0;
    std::vector<PlainWord> words;

    QDate date() const { return QDateTime::fromSecsSinceEpoch(seconds).date(); }

    ComparableDay comparable() const
    {
        std::vector<Item> items;
        for (std::size_t i = 0; i < words.size(); ++i) {
            const PlainWord& word = words[i];
            const int duration = i + 1 < words.size() ? words[i + 1].minute - word.minute : 0;
            items.emplace_back(
                static_cast<unsigned int>(word.minute), static_cast<unsigned int>(duration + 65536) % 65536,
                word.status, word.card, word.activity, word.slot);
        }
        return {qint64{seconds}, work, rest, driving, availability, unknown, items};
    }
};

struct PlainList
{
    std::vector<PlainDay> days;
    test::Chain failure;
};

/// Decodes EF_Driver_Activity_Data byte by byte.
PlainList decode(const Bytes& payload)
{
    const std::size_t length = payload.size() - 4;
    const auto pointer = [&payload](std::size_t offset) {
        return std::uint64_t{payload[offset]} * 256 + payload[offset + 1];
    };
    const auto byteAt = [&](std::uint64_t position) {
        return std::uint32_t{payload[4 + static_cast<std::size_t>(position % length)]};
    };
    PlainList list;
    std::uint64_t position = pointer(0);
    const std::uint64_t newest = pointer(2);
    for (std::size_t count = 0;; ++count) {
        const std::uint32_t recordLength = byteAt(position + 2) * 256 + byteAt(position + 3);
        if (recordLength > length) {
            list.failure = {lib("buildDailyActivityList: Invalid activityRecordLength", 0)};
            return list;
        }
        PlainDay day;
        for (std::uint64_t i = 4; i < 8; ++i)
            day.seconds = day.seconds * 256 + byteAt(position + i);
        // Every pair of bytes that the record begins.
        for (std::uint64_t offset = 12; offset < recordLength; offset += 2) {
            const std::uint32_t bits = byteAt(position + offset) * 256 + byteAt(position + offset + 1);
            PlainWord word{};
            word.slot = bits / 32768;
            word.status = bits / 16384 % 2;
            word.card = bits / 8192 % 2;
            word.activity = bits / 2048 % 4;
            word.minute = static_cast<int>(bits % 2048);
            const int before = day.words.empty() ? 0 : day.words.back().minute;
            const bool unknown =
                day.words.empty() || (day.words.back().card == 1 && day.words.back().status == 0);
            int* const sums[] = {&day.rest, &day.availability, &day.work, &day.driving};
            *(unknown ? &day.unknown : sums[day.words.back().activity]) += word.minute - before;
            day.words.push_back(word);
        }
        list.days.push_back(day);
        if (position == newest || count >= length / 12)
            return list;
        position += recordLength;
        if (position >= length)
            position -= length;
    }
}

struct Figures
{
    bool found = false;
    std::vector<int> statistics = std::vector<int>(5, 0);
    int ofDay = 540;
    int ofWeek = 3360;
    int extended = 2;
    int reduced = 3;
    int toBreak = 270;

    bool operator==(const Figures& other) const
    {
        return found == other.found && statistics == other.statistics && ofDay == other.ofDay &&
               ofWeek == other.ofWeek && extended == other.extended && reduced == other.reduced &&
               toBreak == other.toBreak;
    }
};

void PrintTo(const Figures& figures, std::ostream* stream)
{
    *stream << (figures.found ? "day" : "no day");
    for (const int minutes : figures.statistics)
        *stream << ' ' << minutes;
    *stream << "; " << figures.ofDay << ' ' << figures.ofWeek << ' ' << figures.extended << ' '
            << figures.reduced << ' ' << figures.toBreak;
}

int breakFigure(const std::vector<PlainDay>& days, QDate date)
{
    int pause = 0;
    int busy = 0;
    for (const PlainDay& day : days) {
        if (day.date() != date)
            continue;
        for (std::size_t behind = day.words.size(); behind-- > 1;) {
            const PlainWord& word = day.words[behind - 1];
            const int minutes = day.words[behind].minute - word.minute;
            if (word.card == 1 && word.status == 0)
                continue;
            if (word.activity == 0)
                pause += minutes;
            if (word.activity == 0 && pause > 44)
                return std::max(270 - busy, 0);
            if (word.activity >= 2)
                busy += minutes;
        }
    }
    return std::max(270 - busy, 0);
}

Figures plainFigures(const std::vector<PlainDay>& days, QDate date)
{
    Figures figures;
    for (const PlainDay& day : days) {
        const int busy = day.work + day.driving;
        if (day.date() == date && !figures.found) {
            figures.found = true;
            figures.statistics = {day.work, day.rest, day.driving, day.availability, day.unknown};
            figures.ofDay = 540 - busy;
        }
        for (int back = 0; back < 7; ++back) {
            if (day.date() != date.addDays(-back))
                continue;
            figures.ofWeek -= busy;
            figures.extended -= busy > 540 ? 1 : 0;
            figures.reduced -= 1440 - busy < 660 ? 1 : 0;
        }
    }
    figures.ofWeek = std::max(figures.ofWeek, 0);
    figures.extended = std::max(figures.extended, 0);
    figures.reduced = std::max(figures.reduced, 0);
    figures.toBreak = breakFigure(days, date);
    return figures;
}

Figures figuresOf(const SCardDriverG1& card, QDate date)
{
    Figures figures;
    std::vector<int>& minutes = figures.statistics;
    minutes.assign(5, -1);
    figures.found = card.getDayStatistics(date, minutes[0], minutes[1], minutes[2], minutes[3], minutes[4]);
    figures.ofDay = card.getRemainingDrivingTimeOfDay(date);
    figures.ofWeek = card.getRemainingDrivingTimeOfWeek(date);
    figures.extended = card.getRemainingExtendedDrivingTimeOfWeek(date);
    figures.reduced = card.getRemainingReducedRestTimeOfWeek(date);
    figures.toBreak = card.getTimeToNextBreak(date);
    return figures;
}

ComparableDay comparable(const SCardDriverG1::_DAILY_ACTIVITIES& day)
{
    std::vector<Item> items;
    for (const auto& item : day.items)
        items.emplace_back(
            item.start, item.duration, item.drivingStatus, item.cardStatus, item.activity, item.slot);
    return {
        day.date.toSecsSinceEpoch(), day.work, day.rest, day.driving, day.availability, day.unknown, items};
}

/// The dates of the list and what lies around them, a few of many.
std::vector<QDate> datesToAsk(const std::vector<PlainDay>& days)
{
    std::set<QDate> dates{QDate(2024, 3, 5)};
    for (std::size_t i = 0; i < days.size() && i < 6; ++i)
        for (const int offset : {-1, 0, 1, 6, 7})
            dates.insert(days[i].date().addDays(offset));
    return {dates.begin(), dates.end()};
}

test::Image imageWith(const Bytes& payload)
{
    test::Image image;
    image.add(
        0x0501, test::dataG1,
        test::driverApplication(0, 0, static_cast<unsigned int>(payload.size() - 4), 0, 0));
    image.add(0x0520, test::dataG1, test::recordBytes(test::johannes()));
    image.add(0x0502, test::dataG1, {}).add(0x0503, test::dataG1, {}).add(0x0504, test::dataG1, payload);
    return image.add(0x0505, test::dataG1, {0, 0});
}

/// Compares list, failure and figures of one buffer; gives what the buffer holds.
PlainList compare(const Bytes& payload)
{
    test::DebugStream::clear();
    test::CardOnImage<SCardDriverG1> card(imageWith(payload));
    const PlainList expected = decode(payload);
    EXPECT_EQ(chain(card.read()), test::Chain{});
    EXPECT_EQ(chain(card.buildDailyActivityList()), expected.failure);

    for (const QDate date : datesToAsk(expected.days))
        EXPECT_EQ(figuresOf(card, date), plainFigures(expected.days, date)) << date.toString().toStdString();

    std::vector<ComparableDay> expectedDays;
    for (const PlainDay& day : expected.days)
        expectedDays.push_back(day.comparable());
    EXPECT_EQ(card.getDateOfFirstActivity().isNull(), expectedDays.empty());
    EXPECT_EQ(card.getDateOfLastActivity().isNull(), expectedDays.empty());
    if (!expectedDays.empty()) {
        EXPECT_EQ(card.getDateOfFirstActivity().toSecsSinceEpoch(), std::get<0>(expectedDays.front()));
        EXPECT_EQ(card.getDateOfLastActivity().toSecsSinceEpoch(), std::get<0>(expectedDays.back()));
    }

    std::vector<ComparableDay> days;
    for (const auto& day : card.getActivities())
        days.push_back(comparable(day));
    const auto earlier = [](const ComparableDay& left, const ComparableDay& right) {
        return std::get<0>(left) < std::get<0>(right);
    };
    EXPECT_TRUE(std::is_sorted(days.begin(), days.end(), earlier));
    // Days of one time may come in any order.
    std::sort(days.begin(), days.end());
    std::sort(expectedDays.begin(), expectedDays.end());
    EXPECT_EQ(days, expectedDays);
    return expected;
}

class Generator
{
  public:
    explicit Generator(unsigned int seed) : m_random(seed) {}

    /// From @p least to @p most, the same with every standard library.
    unsigned int between(unsigned int least, unsigned int most)
    {
        return least + static_cast<unsigned int>(m_random() % (most - least + 1));
    }

    bool oneIn(unsigned int count) { return between(1, count) == 1; }

    /// A day as a vehicle unit writes it: changes ascend in time.
    std::vector<unsigned int> words()
    {
        std::vector<unsigned int> words;
        const unsigned int most = oneIn(10) ? 200 : 12;
        unsigned int minute = oneIn(4) ? between(0, 300) : 0;
        for (unsigned int left = between(0, most); left > 0 && minute < 1440; --left) {
            words.push_back(between(0, 31) << 11 | minute);
            minute += between(0, 1440 / most);
        }
        return words;
    }

    /// Days one behind the other from any position on, as many as fit.
    Bytes validBuffer()
    {
        const unsigned int length = between(40, 900);
        test::ActivityBuffer buffer(length, static_cast<unsigned char>(between(0, 255)));
        buffer.at(between(0, length - 1));
        std::uint32_t seconds = between(1700000000, 1720000000) / 86400 * 86400;
        for (std::size_t used = 0;;) {
            const std::vector<unsigned int> day = words();
            used += test::dayHeaderLength + 2 * day.size();
            if (used > length && buffer.isEmpty())
                buffer.day(seconds, {});
            if (used > length)
                break;
            buffer.day(seconds, day);
            seconds += 86400 * (oneIn(8) ? between(0, 9) : 1);
        }
        return buffer.payload();
    }

    /// Anything: short lengths, pointers behind the buffer, days that overlap, times that run backwards.
    Bytes hostileBuffer()
    {
        const unsigned int length = oneIn(20) ? between(1, 700) : between(1, 150);
        Bytes payload(4 + length);
        for (unsigned char& byte : payload)
            byte = static_cast<unsigned char>(between(0, 255));
        const unsigned int highest = oneIn(6) ? 0xFFFF : oneIn(4) ? 3 * length : length;
        test::put(payload, 0, test::number(between(0, highest), 2));
        test::put(payload, 2, test::number(between(0, highest), 2));
        if (oneIn(2)) // high bytes of lengths are zero more often than not
            for (unsigned char& byte : payload)
                if (oneIn(2))
                    byte = 0;
        if (oneIn(2)) {
            // A chain whose lengths lead from day to day.
            std::uint32_t position = static_cast<std::uint32_t>(payload[0]) * 256 + payload[1];
            const std::uint32_t start = position;
            std::uint32_t seconds = 1700000000;
            for (unsigned int days = between(1, 12); days > 0; --days) {
                const unsigned int recordLength = between(0, length + length / 60);
                const Bytes header = test::joined({test::number(recordLength, 2), test::timeReal(seconds)});
                for (std::size_t i = 0; i < header.size(); ++i)
                    payload[4 + (position + 2 + i) % length] = header[i];
                if (!oneIn(3))
                    test::put(payload, 2, test::number(position, 2));
                position += recordLength;
                position -= position >= length ? length : 0;
                seconds += between(0, 3) * 40000;
            }
            test::put(payload, 0, test::number(start, 2));
        }
        return payload;
    }

  private:
    std::mt19937 m_random;
};

TEST(GeneratedActivityBuffers, OfOrderlyDaysAreDecodedAndTheirMinutesAddUp)
{
    Generator generator(20240305);
    std::size_t days = 0;
    for (int i = 0; i < 1500; ++i) {
        SCOPED_TRACE(i);
        const PlainList list = compare(generator.validBuffer());

        EXPECT_EQ(list.failure, test::Chain{});
        days += list.days.size();
        for (const PlainDay& day : list.days) {
            const int lastChange = day.words.empty() ? 0 : day.words.back().minute;
            EXPECT_EQ(day.work + day.rest + day.driving + day.availability + day.unknown, lastChange);
        }
        if (testing::Test::HasFailure())
            return;
    }
    EXPECT_GT(days, 10000U);
}

TEST(GeneratedActivityBuffers, OfAnyBytesAreDecodedOrRefused)
{
    Generator generator(4711);
    std::size_t refused = 0;
    std::size_t periods = 0;
    for (int i = 0; i < 2500; ++i) {
        SCOPED_TRACE(i);
        const PlainList list = compare(generator.hostileBuffer());

        refused += list.failure.empty() ? 0 : 1;
        for (const PlainDay& day : list.days)
            periods += day.words.size();
        if (testing::Test::HasFailure())
            return;
    }
    EXPECT_GT(refused, 500U);
    EXPECT_LT(refused, 2000U);
    EXPECT_GT(periods, 50000U);
}

} // namespace
