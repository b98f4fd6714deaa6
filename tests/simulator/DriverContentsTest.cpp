// The contents of a driver card, read back byte by byte with nothing of the code that wrote them.

#include "Card.h"
#include "ControlCard.h"
#include "DriverCard.h"
#include "ReadBack.h"
#include "RowName.h"
#include "TestPki.h"
#include "VerifyG1.h"

#include <algorithm>
#include <array>
#include <functional>
#include <gtest/gtest.h>
#include <initializer_list>
#include <map>
#include <numeric>

namespace {

using sim::Bytes;
using sim::DriverContents;
using sim::DriverParameters;
using sim::makeDriverContents;
using sim::readU16;
using sim::readU32;
using sim::slice;
using sim::toHex;

struct UseRecord
{
    std::uint32_t odometerBegin = 0;
    std::uint32_t odometerEnd = 0;
    std::uint32_t begin = 0;
    std::uint32_t end = 0;
    Bytes registration;
    int counter = 0;
};

UseRecord useAt(const Bytes& file, std::size_t index)
{
    const std::size_t offset = 2 + 31 * index;
    UseRecord use;
    use.odometerBegin = readU24(file, offset);
    use.odometerEnd = readU24(file, offset + 3);
    use.begin = readU32(file, offset + 6);
    use.end = readU32(file, offset + 10);
    use.registration = slice(file, offset + 14, 15);
    use.counter = readBcd(file, offset + 29);
    return use;
}

/// From the oldest to the newest record in use.
std::vector<UseRecord> uses(const Bytes& file)
{
    const std::size_t slots = (file.size() - 2) / 31;
    std::vector<UseRecord> all;
    for (std::size_t i = 1; i <= slots; ++i) {
        const UseRecord use = useAt(file, (readU16(file, 0) + i) % slots);
        if (use.end != 0) {
            all.push_back(use);
        }
    }
    return all;
}

struct PlaceRecord
{
    std::uint32_t time = 0;
    int entry = 0;
    int country = 0;
    int region = 0;
    std::uint32_t odometer = 0;
};

std::vector<PlaceRecord> places(const Bytes& file)
{
    const std::size_t slots = (file.size() - 1) / 10;
    std::vector<PlaceRecord> all;
    for (std::size_t i = 1; i <= slots; ++i) {
        const std::size_t offset = 1 + 10 * ((file.at(0) + i) % slots);
        PlaceRecord place;
        place.time = readU32(file, offset);
        place.entry = file.at(offset + 4);
        place.country = file.at(offset + 5);
        place.region = file.at(offset + 6);
        place.odometer = readU24(file, offset + 7);
        if (place.time != 0) {
            all.push_back(place);
        }
    }
    return all;
}

/// Periods with the card in a slot, as the words of the days tell them, in minutes since 1970.
std::vector<std::pair<std::uint32_t, std::uint32_t>> insertions(const std::vector<DayRecord>& days)
{
    std::vector<std::pair<std::uint32_t, std::uint32_t>> all;
    for (const DayRecord& day : days) {
        bool inserted = false;
        for (const std::uint16_t word : day.words) {
            const std::uint32_t time = day.date / 60 + static_cast<std::uint32_t>(minuteOf(word));
            if (isInserted(word) && !inserted) {
                all.emplace_back(time, 0);
            } else if (!isInserted(word) && inserted) {
                all.back().second = time;
            }
            inserted = isInserted(word);
        }
        if (inserted) {
            all.back().second = day.date / 60 + 1439;
        }
    }
    return all;
}

DriverParameters seeded(std::uint32_t seed)
{
    DriverParameters parameters;
    parameters.seed = seed;
    return parameters;
}

Bytes everything(const DriverContents& contents)
{
    Bytes all;
    for (const Bytes* file :
         {&contents.icc, &contents.ic, &contents.applicationIdentification, &contents.cardCertificate,
          &contents.caCertificate, &contents.identification, &contents.cardDownload,
          &contents.drivingLicenceInfo, &contents.eventsData, &contents.faultsData,
          &contents.driverActivityData, &contents.vehiclesUsed, &contents.places, &contents.currentUsage,
          &contents.controlActivityData, &contents.specificConditions}) {
        sim::appendBytes(all, *file);
    }
    return all;
}

TEST(DriverContentsSizes, areThoseOfTheLargestCard)
{
    const DriverContents contents = makeDriverContents({});
    EXPECT_EQ(contents.icc.size(), 25u);
    EXPECT_EQ(contents.ic.size(), 8u);
    EXPECT_EQ(contents.applicationIdentification.size(), 10u);
    EXPECT_EQ(contents.cardCertificate.size(), 194u);
    EXPECT_EQ(contents.caCertificate.size(), 194u);
    EXPECT_EQ(contents.identification.size(), 143u);
    EXPECT_EQ(contents.cardDownload.size(), 4u);
    EXPECT_EQ(contents.drivingLicenceInfo.size(), 53u);
    EXPECT_EQ(contents.eventsData.size(), 1728u);
    EXPECT_EQ(contents.faultsData.size(), 1152u);
    EXPECT_EQ(contents.driverActivityData.size(), 13780u);
    EXPECT_EQ(contents.vehiclesUsed.size(), 6202u);
    EXPECT_EQ(contents.places.size(), 1121u);
    EXPECT_EQ(contents.currentUsage.size(), 19u);
    EXPECT_EQ(contents.controlActivityData.size(), 46u);
    EXPECT_EQ(contents.specificConditions.size(), 280u);
    EXPECT_EQ(everything(contents).size(), 24959u);
}

TEST(DriverContentsSizes, followTheRecordCounts)
{
    DriverParameters parameters;
    parameters.eventsPerType = 6;
    parameters.faultsPerType = 12;
    parameters.activityLength = 5544;
    parameters.vehicles = 84;
    parameters.places = 85;
    const DriverContents contents = makeDriverContents(parameters);
    EXPECT_EQ(toHex(contents.applicationIdentification), "01 00 00 06 0C 15 A8 00 54 55");
    EXPECT_EQ(contents.eventsData.size(), 6u * 6 * 24);
    EXPECT_EQ(contents.faultsData.size(), 2u * 12 * 24);
    EXPECT_EQ(contents.driverActivityData.size(), 5548u);
    EXPECT_EQ(contents.vehiclesUsed.size(), 2u + 84 * 31);
    EXPECT_EQ(contents.places.size(), 1u + 85 * 10);
}

TEST(DriverContentsSeed, givesTheSameBytesAgain)
{
    EXPECT_EQ(everything(makeDriverContents(seeded(7))), everything(makeDriverContents(seeded(7))));
}

TEST(DriverContentsSeed, givesTheSameBytesOnEveryMachine)
{
    // Known digest of the default card; a changed generator changes it.
    EXPECT_EQ(
        toHex(sim::sha1(everything(makeDriverContents({})))),
        "97 4A BC DE 89 2A 1A 3B 32 6C F9 E7 46 C9 B9 89 CE 92 97 42");
}

TEST(DriverContentsSeed, givesAnotherDriverForAnotherNumber)
{
    const DriverContents first = makeDriverContents(seeded(1));
    const DriverContents second = makeDriverContents(seeded(2));
    EXPECT_NE(first.icc, second.icc);
    EXPECT_NE(first.ic, second.ic);
    EXPECT_NE(first.identification, second.identification);
    EXPECT_NE(first.cardCertificate, second.cardCertificate);
    EXPECT_NE(first.driverActivityData, second.driverActivityData);
    EXPECT_NE(first.vehiclesUsed, second.vehiclesUsed);
    EXPECT_NE(first.places, second.places);
}

TEST(DriverContentsSeed, keepsTheDriverWhenOnlyTheCountsChange)
{
    DriverParameters parameters;
    parameters.eventsPerType = 6;
    parameters.vehicles = 84;
    const DriverContents usual = makeDriverContents({});
    const DriverContents changed = makeDriverContents(parameters);
    EXPECT_EQ(changed.identification, usual.identification);
    EXPECT_EQ(changed.driverActivityData, usual.driverActivityData);
}

struct LifeRow
{
    const char* name;
    DriverParameters parameters;
};

void PrintTo(const LifeRow& row, std::ostream* out)
{
    *out << row.name;
}

LifeRow life(
    const char* name, std::uint32_t seed, int days, std::uint16_t activityLength = 13776,
    std::uint8_t nation = 0x0D)
{
    LifeRow row{name, seeded(seed)};
    row.parameters.days = days;
    row.parameters.activityLength = activityLength;
    row.parameters.nation = nation;
    return row;
}

/// The rules that hold for every driver's life.
class DriverLife : public testing::TestWithParam<LifeRow>
{
  protected:
    DriverContents m_contents = makeDriverContents(GetParam().parameters);
    std::vector<DayRecord> m_days = walk(m_contents.driverActivityData);
};

TEST_P(DriverLife, isAnUnbrokenChainOfDaysUpToTheLast)
{
    ASSERT_FALSE(m_days.empty());
    EXPECT_EQ(m_days.front().previousLength, 0u);
    EXPECT_EQ(m_days.back().date, GetParam().parameters.lastDay);
    EXPECT_EQ(m_days.back().position, readU16(m_contents.driverActivityData, 2));
    for (std::size_t i = 1; i < m_days.size(); ++i) {
        EXPECT_EQ(m_days[i].previousLength, m_days[i - 1].length);
        EXPECT_EQ(m_days[i].date, m_days[i - 1].date + SecondsPerDay);
    }
    std::size_t used = 0;
    for (const DayRecord& day : m_days) {
        EXPECT_EQ(day.length, 12 + 2 * day.words.size());
        used += day.length;
    }
    EXPECT_LE(used, GetParam().parameters.activityLength);
    EXPECT_LE(m_days.size(), static_cast<std::size_t>(GetParam().parameters.days));
}

TEST_P(DriverLife, runsOverTheEndOfTheBuffer)
{
    const DayRecord& newest = m_days.back();
    const std::size_t end = (newest.position + newest.length) % GetParam().parameters.activityLength;
    EXPECT_LE(end, m_days.front().position);
    EXPECT_GT(end, 0u);
}

TEST_P(DriverLife, hasWordsInAscendingOrderFromMidnightOn)
{
    for (const DayRecord& day : m_days) {
        ASSERT_FALSE(day.words.empty());
        EXPECT_EQ(minuteOf(day.words.front()), 0);
        for (std::size_t i = 1; i < day.words.size(); ++i) {
            EXPECT_LT(minuteOf(day.words[i - 1]), minuteOf(day.words[i]));
            EXPECT_LT(minuteOf(day.words[i]), 1440);
            EXPECT_NE(day.words[i - 1] & 0xF800, day.words[i] & 0xF800) << "a word without a change";
        }
    }
}

TEST_P(DriverLife, countsTheDaysOfPresence)
{
    int before = -1;
    for (const DayRecord& day : m_days) {
        ASSERT_GE(day.presence, 0);
        const bool used = std::any_of(day.words.begin(), day.words.end(), isInserted);
        EXPECT_EQ(day.words.size() == 1, !used);
        if (before >= 0) {
            EXPECT_EQ(day.presence, used ? (before + 1) % 10000 : before);
        }
        before = day.presence;
    }
}

TEST_P(DriverLife, continuesEachDayInTheStateOfTheDayBefore)
{
    for (std::size_t i = 1; i < m_days.size(); ++i) {
        const std::uint16_t evening = m_days[i - 1].words.back();
        const std::uint16_t midnight = m_days[i].words.front();
        EXPECT_EQ(isInserted(evening), isInserted(midnight));
        EXPECT_EQ(midnight & 0x1800, 0) << "rest at midnight";
    }
}

TEST_P(DriverLife, endsWithTheCardWithdrawn)
{
    EXPECT_FALSE(isInserted(m_days.back().words.back()));
    EXPECT_GT(m_days.back().words.size(), 1u);
    EXPECT_EQ(toHex(m_contents.currentUsage), "00 00 00 00 00 00 20 20 20 20 20 20 20 20 20 20 20 20 20");
}

TEST_P(DriverLife, isLegal)
{
    for (const DayRecord& day : m_days) {
        int driving = 0;
        int sinceBreak = 0;
        for (std::size_t i = 0; i < day.words.size(); ++i) {
            const int end = i + 1 < day.words.size() ? minuteOf(day.words[i + 1]) : 1440;
            const int length = end - minuteOf(day.words[i]);
            const std::uint16_t what = day.words[i];
            if (isDriving(what)) {
                driving += length;
                sinceBreak += length;
            } else if (length >= 45 && (what & 0x1000) == 0) {
                // Rest, or available in a moving vehicle of two drivers.
                sinceBreak = 0;
            }
            EXPECT_LE(sinceBreak, 270) << "on " << day.date;
        }
        EXPECT_LE(driving, 9 * 60) << "on " << day.date;
    }
}

TEST_P(DriverLife, restsElevenHoursBetweenTwoDaysOfWork)
{
    std::uint32_t workEnd = 0;
    for (const DayRecord& day : m_days) {
        for (std::size_t i = 0; i < day.words.size(); ++i) {
            const bool works = isInserted(day.words[i]) && (day.words[i] & 0x1800) != 0;
            if (!works) {
                continue;
            }
            const std::uint32_t begin = day.date / 60 + static_cast<std::uint32_t>(minuteOf(day.words[i]));
            if (workEnd != 0 && workEnd < day.date / 60) {
                EXPECT_GE(begin - workEnd, 660u) << "on " << day.date;
            }
            ASSERT_LT(i + 1, day.words.size());
            workEnd = day.date / 60 + static_cast<std::uint32_t>(minuteOf(day.words[i + 1]));
        }
    }
}

TEST_P(DriverLife, hasAVehicleForEachInsertionOfTheDays)
{
    const auto wanted = insertions(m_days);
    std::vector<UseRecord> had = uses(m_contents.vehiclesUsed);
    // Vehicles may be remembered longer than activities, and the other way round.
    const std::size_t common = std::min(wanted.size(), had.size());
    ASSERT_GT(common, 0u);
    for (std::size_t i = 1; i <= common; ++i) {
        const UseRecord& use = had[had.size() - i];
        EXPECT_EQ(use.begin / 60, wanted[wanted.size() - i].first);
        EXPECT_EQ(use.end / 60, wanted[wanted.size() - i].second);
    }
}

TEST_P(DriverLife, addsUpTheOdometersToTheDistanceOfTheDay)
{
    const std::vector<UseRecord> had = uses(m_contents.vehiclesUsed);
    // The oldest day of the vehicles may have lost a record.
    const std::uint32_t first = had.front().begin / SecondsPerDay * SecondsPerDay + SecondsPerDay;
    for (const DayRecord& day : m_days) {
        if (day.date < first && had.size() == GetParam().parameters.vehicles) {
            continue;
        }
        std::uint32_t distance = 0;
        for (const UseRecord& use : had) {
            if (use.begin >= day.date && use.begin < day.date + SecondsPerDay) {
                distance += use.odometerEnd - use.odometerBegin;
            }
        }
        EXPECT_EQ(day.distance, distance);
    }
}

TEST_P(DriverLife, hasVehiclesWhoseOdometersAndCountersGrow)
{
    std::map<Bytes, UseRecord> last;
    std::uint32_t before = 0;
    for (const UseRecord& use : uses(m_contents.vehiclesUsed)) {
        EXPECT_GE(use.begin, before);
        EXPECT_GT(use.end, use.begin);
        EXPECT_GE(use.odometerEnd, use.odometerBegin);
        EXPECT_GE(use.counter, 0);
        EXPECT_EQ(use.registration.at(0), GetParam().parameters.nation);
        EXPECT_EQ(use.registration.at(1), GetParam().parameters.codePage);
        before = use.end;
        const auto known = last.find(use.registration);
        if (known != last.end()) {
            EXPECT_GE(use.odometerBegin, known->second.odometerEnd);
            EXPECT_GE((use.counter - known->second.counter + 10000) % 10000, 0);
            EXPECT_LE((use.counter - known->second.counter + 10000) % 10000, 1);
        }
        last[use.registration] = use;
    }
    EXPECT_LE(last.size(), 5u);
}

TEST_P(DriverLife, beginsAndEndsEachDayOfWorkAtAPlace)
{
    std::map<std::uint32_t, std::vector<PlaceRecord>> byDay;
    std::uint32_t before = 0;
    for (const PlaceRecord& place : places(m_contents.places)) {
        EXPECT_GE(place.time, before);
        before = place.time;
        byDay[place.time / SecondsPerDay * SecondsPerDay].push_back(place);
    }
    // The oldest day of the places may have lost a record.
    const std::uint32_t first = byDay.begin()->first;
    std::size_t compared = 0;
    for (const DayRecord& day : m_days) {
        if (day.date <= first && byDay.size() > 1) {
            continue;
        }
        const auto entries = byDay.find(day.date);
        if (day.words.size() == 1) {
            EXPECT_EQ(entries, byDay.end());
            continue;
        }
        ASSERT_NE(entries, byDay.end());
        ASSERT_EQ(entries->second.size(), 2u);
        const PlaceRecord& begin = entries->second[0];
        const PlaceRecord& end = entries->second[1];
        EXPECT_TRUE(begin.entry == 0 || begin.entry == 2);
        EXPECT_TRUE(end.entry == 1 || end.entry == 3);
        EXPECT_NE(begin.country, 0);
        EXPECT_EQ(begin.region != 0, begin.country == 0x0F);
        EXPECT_LE(begin.region, 0x11);
        ++compared;
    }
    EXPECT_TRUE(compared > 0 || m_days.size() < 3);
}

INSTANTIATE_TEST_SUITE_P(
    All, DriverLife,
    testing::Values(
        life("oneDay", 1, 1), life("twoDays", 3, 2), life("twoMonths", 1, 60), life("anotherDriver", 2, 60),
        life("aThirdDriver", 3, 60), life("aFourthDriver", 4, 60), life("aFrenchDriver", 11, 60, 13776, 0x11),
        life("aDriverFromAnywhere", 12, 60, 13776, 0x31), life("aYear", 5, 365), life("twoYears", 6, 800),
        life("aYearInASmallBuffer", 7, 365, 5544), life("aBufferOfAFewDays", 8, 60, 700),
        life("aBufferOfAnOddLength", 9, 365, 5001)),
    RowName());

TEST(DriverLives, showAllThatADriverDoes)
{
    // Over some drivers every kind of day occurs.
    bool crew = false;
    bool overnight = false;
    bool free = false;
    bool byHand = false;
    bool unknown = false;
    bool twoVehicles = false;
    bool abroad = false;
    std::size_t conditions = 0;
    for (std::uint32_t seed = 1; seed <= 10; ++seed) {
        const DriverContents contents = makeDriverContents(seeded(seed));
        for (const DayRecord& day : walk(contents.driverActivityData)) {
            free |= day.words.size() == 1;
            overnight |= isInserted(day.words.front());
            byHand |= day.words.front() == 0x6000;
            unknown |= day.words.front() == 0x2000;
            for (const std::uint16_t word : day.words) {
                crew |= isInserted(word) && (word & 0xC000) == 0xC000;
            }
        }
        const std::vector<UseRecord> had = uses(contents.vehiclesUsed);
        for (std::size_t i = 1; i < had.size(); ++i) {
            twoVehicles |= had[i].begin / SecondsPerDay == had[i - 1].begin / SecondsPerDay &&
                           had[i].registration != had[i - 1].registration;
        }
        for (const PlaceRecord& place : places(contents.places)) {
            abroad |= place.country != 0x0D;
        }
        for (std::size_t i = 0; i < 56; ++i) {
            const std::uint8_t type = contents.specificConditions.at(i * 5 + 4);
            EXPECT_LE(type, 3);
            EXPECT_EQ(type == 0, readU32(contents.specificConditions, i * 5) == 0);
            conditions += type != 0 ? 1 : 0;
        }
    }
    EXPECT_TRUE(crew);
    EXPECT_TRUE(overnight);
    EXPECT_TRUE(free);
    EXPECT_TRUE(byHand);
    EXPECT_TRUE(unknown);
    EXPECT_TRUE(twoVehicles);
    EXPECT_TRUE(abroad);
    EXPECT_GT(conditions, 0u);
}

TEST(ActivityBuffer, startsWhereItIsTold)
{
    for (const int position : {0, 1, 100, 13775}) {
        DriverParameters parameters;
        parameters.wrapPosition = position;
        const DriverContents contents = makeDriverContents(parameters);
        EXPECT_EQ(readU16(contents.driverActivityData, 0), position);
        const auto days = walk(contents.driverActivityData);
        EXPECT_EQ(days.size(), 60u);
        EXPECT_EQ(days.back().date, parameters.lastDay);
    }
}

TEST(ActivityBuffer, keepsTheNewestDaysThatFit)
{
    DriverParameters parameters;
    parameters.days = 365;
    parameters.wrapPosition = 0;
    parameters.activityLength = 60000;
    const auto all = walk(makeDriverContents(parameters).driverActivityData);
    ASSERT_EQ(all.size(), 365u);
    parameters.activityLength = 5544;
    const auto kept = walk(makeDriverContents(parameters).driverActivityData);
    ASSERT_LT(kept.size(), all.size());
    ASSERT_GT(kept.size(), 10u);
    std::size_t used = 0;
    for (std::size_t i = 1; i <= kept.size(); ++i) {
        EXPECT_EQ(kept[kept.size() - i].date, all[all.size() - i].date);
        EXPECT_EQ(kept[kept.size() - i].words, all[all.size() - i].words);
        used += kept[kept.size() - i].length;
    }
    // The next older one would not have fitted.
    EXPECT_GT(used + all[all.size() - kept.size() - 1].length, 5544u);
}

TEST(CyclicRecords, leaveFreeSlotsEmptyBehindTheNewest)
{
    const DriverContents contents = makeDriverContents({});
    const std::size_t newest = readU16(contents.vehiclesUsed, 0);
    ASSERT_LT(newest + 1, 200u);
    for (std::size_t i = 0; i < 200; ++i) {
        EXPECT_EQ(useAt(contents.vehiclesUsed, i).end == 0, i > newest) << i;
    }
    EXPECT_EQ(slice(contents.vehiclesUsed, 2 + 31 * 199, 31), Bytes(31, 0x00));
}

TEST(CyclicRecords, runOverTheEndWhenTheyAreFull)
{
    DriverParameters parameters;
    parameters.days = 365;
    parameters.vehicles = 84;
    parameters.places = 84;
    const DriverContents contents = makeDriverContents(parameters);
    const std::size_t newest = readU16(contents.vehiclesUsed, 0);
    ASSERT_LT(newest, 83u);
    EXPECT_EQ(uses(contents.vehiclesUsed).size(), 84u);
    EXPECT_GT(useAt(contents.vehiclesUsed, newest).begin, useAt(contents.vehiclesUsed, newest + 1).begin);
    EXPECT_EQ(places(contents.places).size(), 84u);
    // The newest record is that of the newest day.
    EXPECT_EQ(useAt(contents.vehiclesUsed, newest).end / SecondsPerDay, parameters.lastDay / SecondsPerDay);
    EXPECT_EQ(places(contents.places).back().time / SecondsPerDay, parameters.lastDay / SecondsPerDay);
}

TEST(EventsAndFaults, standInTheirGroupsWithTheirCodes)
{
    const std::array<std::vector<int>, 6> eventCodes = {
        {{0x03}, {0x05}, {0x06}, {0x08}, {0x09}, {0x11, 0x12, 0x15, 0x17, 0x21, 0x24}}};
    const std::array<std::vector<int>, 2> faultCodes = {{{0x31, 0x32, 0x33, 0x34, 0x35}, {0x40}}};
    const Bytes emptyRecord =
        sim::fromHex("00 00 00 00 00 00 00 00 00 00 00 20 20 20 20 20 20 20 20 20 20 20 20 20");
    std::map<int, int> seen;

    const auto check = [&](const Bytes& file, const auto& groups, std::size_t perGroup,
                           const Bytes& vehicles) {
        const std::vector<UseRecord> had = uses(vehicles);
        for (std::size_t slot = 0; slot < groups.size() * perGroup; ++slot) {
            const Bytes record = slice(file, slot * 24, 24);
            if (record == emptyRecord) {
                continue;
            }
            const auto& codes = groups[slot / perGroup];
            ++seen[record.at(0)];
            EXPECT_NE(std::find(codes.begin(), codes.end(), record.at(0)), codes.end()) << "slot " << slot;
            const std::uint32_t begin = readU32(record, 1);
            const std::uint32_t end = readU32(record, 5);
            EXPECT_LE(begin, end);
            EXPECT_TRUE(std::any_of(
                had.begin(), had.end(),
                [&](const UseRecord& use) {
                    return use.begin <= begin && end <= use.end && use.registration == slice(record, 9, 15);
                }))
                << "no such use of a vehicle, slot " << slot;
        }
    };
    for (std::uint32_t seed = 1; seed <= 12; ++seed) {
        const DriverContents contents = makeDriverContents(seeded(seed));
        check(contents.eventsData, eventCodes, 12, contents.vehiclesUsed);
        check(contents.faultsData, faultCodes, 24, contents.vehiclesUsed);
    }
    for (const int code : {0x03, 0x05, 0x06, 0x08, 0x09, 0x40}) {
        EXPECT_GT(seen[code], 0) << "code " << code;
    }
}

TEST(Identification, isLaidOutAsTheRegulationSays)
{
    DriverParameters parameters;
    parameters.nation = 0x28;
    parameters.codePage = 2;
    parameters.surname = "Żółć";
    parameters.firstNames = "Łucja";
    parameters.authority = "Urząd";
    parameters.driverIdentification = "PL123";
    parameters.language = "pl";
    const Bytes file = makeDriverContents(parameters).identification;
    const auto text = [&](std::size_t offset, std::size_t length) {
        return std::string(
            file.begin() + static_cast<std::ptrdiff_t>(offset),
            file.begin() + static_cast<std::ptrdiff_t>(offset + length));
    };
    const auto name = [&](const std::string& latin2) {
        return "\x02" + latin2 + std::string(35 - latin2.size(), ' ');
    };
    EXPECT_EQ(file.at(0), 0x28);
    EXPECT_EQ(text(1, 14), "PL123         ");
    EXPECT_EQ(text(15, 1), "0");
    EXPECT_GE(file.at(16), '0');
    EXPECT_LE(file.at(16), '2');
    EXPECT_EQ(
        text(17, 36), name("Urz\xB1"
                           "d"));
    const std::uint32_t issued = readU32(file, 53);
    EXPECT_EQ(readU32(file, 57), issued);
    EXPECT_LT(issued, parameters.lastDay - 60 * SecondsPerDay);
    EXPECT_GT(readU32(file, 61), parameters.lastDay);
    EXPECT_EQ(text(65, 36), name("\xAF\xF3\xB3\xE6"));
    EXPECT_EQ(text(101, 36), name("\xA3ucja"));
    EXPECT_EQ(readBcd(file, 137) / 100, 19);
    EXPECT_GE(readBcd(file, 139), 101);
    EXPECT_LE(readBcd(file, 139), 1231);
    EXPECT_EQ(text(141, 2), "pl");
}

TEST(Identification, hasNamesInTheLettersOfTheNation)
{
    DriverParameters parameters;
    parameters.nation = 0x17;
    parameters.codePage = 7;
    const Bytes greek = makeDriverContents(parameters).identification;
    EXPECT_EQ(greek.at(65), 7);
    EXPECT_GE(greek.at(66), 0xB6);
    EXPECT_EQ(slice(greek, 141, 2), (Bytes{'e', 'l'}));
    // No Greek letters in this code page: a name in ASCII.
    parameters.codePage = 1;
    const Bytes latin = makeDriverContents(parameters).identification;
    EXPECT_EQ(latin.at(65), 1);
    EXPECT_LT(latin.at(66), 0x80);
    EXPECT_GE(latin.at(66), 'A');
}

TEST(Identification, isWrittenInEveryCodePageForEveryNation)
{
    for (int codePage = 1; codePage <= 16; ++codePage) {
        if (codePage == 12) {
            continue;
        }
        for (const int nation : {0x00, 0x01, 0x07, 0x0D, 0x15, 0x17, 0x20, 0x28, 0x39, 0x80, 0xFD}) {
            DriverParameters parameters;
            parameters.days = 1;
            parameters.codePage = codePage;
            parameters.nation = static_cast<std::uint8_t>(nation);
            const Bytes file = makeDriverContents(parameters).identification;
            EXPECT_EQ(file.size(), 143u);
            EXPECT_EQ(file.at(0), nation);
            EXPECT_EQ(file.at(17), codePage);
        }
    }
}

TEST(SmallFiles, areLaidOutAsTheRegulationSays)
{
    DriverParameters parameters;
    parameters.lastDownload = 0x01020304;
    const DriverContents contents = makeDriverContents(parameters);
    EXPECT_EQ(toHex(contents.applicationIdentification), "01 00 00 0C 18 35 D0 00 C8 70");
    EXPECT_EQ(toHex(contents.cardDownload), "01 02 03 04");
    EXPECT_EQ(contents.icc.at(7), 1) << "type of a driver card in the serial number";
    EXPECT_GE(readBcd(contents.icc, 5), 100);
    EXPECT_LE(readBcd(contents.icc, 5), 1299);

    const Bytes& licence = contents.drivingLicenceInfo;
    EXPECT_EQ(slice(licence, 0, 36), slice(contents.identification, 17, 36));
    EXPECT_EQ(licence.at(36), 0x0D);
    EXPECT_NE(licence.at(37), ' ');

    const Bytes& control = contents.controlActivityData;
    const std::uint32_t time = readU32(control, 1);
    const std::vector<UseRecord> had = uses(contents.vehiclesUsed);
    EXPECT_TRUE(std::any_of(had.begin(), had.end(), [&](const UseRecord& use) {
        return use.begin <= time && time <= use.end && use.registration == slice(control, 23, 15);
    }));
    EXPECT_EQ(control.at(5), 3) << "a control card";
    EXPECT_EQ((control.at(0) & 0x40) != 0, readU32(control, 38) != 0);
    EXPECT_EQ((control.at(0) & 0x40) != 0, readU32(control, 42) == time);
}

TEST(CardDownload, isFourWeeksBeforeTheNewestDayUnlessItIsSet)
{
    const DriverParameters parameters;
    EXPECT_EQ(
        readU32(makeDriverContents(parameters).cardDownload, 0) / SecondsPerDay,
        parameters.lastDay / SecondsPerDay - 28);
    DriverParameters never;
    never.lastDownload = 0;
    EXPECT_EQ(readU32(makeDriverContents(never).cardDownload, 0), 0u);
}

TEST(DriverParameterChecks, refuseWhatNoCardCanHave)
{
    const auto refused = [](const char* what, void (*spoil)(DriverParameters&)) {
        DriverParameters parameters;
        spoil(parameters);
        EXPECT_THROW(makeDriverContents(parameters), std::invalid_argument) << what;
    };
    refused("no days", [](DriverParameters& p) { p.days = 0; });
    refused("too many days", [](DriverParameters& p) { p.days = 801; });
    refused("half a day", [](DriverParameters& p) { p.lastDay += 43200; });
    refused("before the tachograph", [](DriverParameters& p) { p.lastDay = 0; });
    refused("no events", [](DriverParameters& p) { p.eventsPerType = 0; });
    refused("no faults", [](DriverParameters& p) { p.faultsPerType = 0; });
    refused("no vehicles", [](DriverParameters& p) { p.vehicles = 0; });
    refused("no places", [](DriverParameters& p) { p.places = 0; });
    refused("no buffer", [](DriverParameters& p) { p.activityLength = 0; });
    refused("a buffer below a day", [](DriverParameters& p) { p.activityLength = 20; });
    refused("a start behind the buffer", [](DriverParameters& p) { p.wrapPosition = 13776; });
    refused("a start before the buffer", [](DriverParameters& p) { p.wrapPosition = -2; });
    refused("part 12", [](DriverParameters& p) { p.codePage = 12; });
    refused("letters of another part", [](DriverParameters& p) { p.surname = "Łoś"; });
    refused("a long name", [](DriverParameters& p) { p.firstNames = std::string(36, 'x'); });
    refused("a long number", [](DriverParameters& p) { p.driverIdentification = std::string(15, '1'); });
    refused("a long language", [](DriverParameters& p) { p.language = "deu"; });
    refused("a language in capitals", [](DriverParameters& p) { p.language = "DE"; });
}

/// Whole cards, through commands.
class WholeCard : public testing::Test
{
  protected:
    static Bytes ask(sim::Card& card, const std::string& command)
    {
        return card.transmit(sim::fromHex(command)).value_or(Bytes{});
    }

    static std::string hex(std::uint16_t number)
    {
        Bytes bytes;
        sim::appendU16(bytes, number);
        return toHex(bytes);
    }
};

TEST_F(WholeCard, readsSignsAndVerifiesEveryFileOfADriverCard)
{
    sim::Card card(sim::makeDriverCardG1());
    EXPECT_EQ(toHex(card.atr()), "3B 95 95 80 31 FE 45 53 49 4D 54 43 4A");
    EXPECT_EQ(std::accumulate(card.atr().begin() + 1, card.atr().end(), 0, std::bit_xor<>()), 0);

    const Bytes* icc = card.file(sim::MasterFile, 0x0002);
    const Bytes* authorityFile = card.file(sim::AidG1, 0xC108);
    const Bytes* cardFile = card.file(sim::AidG1, 0xC100);
    ASSERT_TRUE(icc && authorityFile && cardFile);
    const auto authority =
        sim::verifyCertificateG1(*authorityFile, *sim::publicKeyFromRootG1(sim::rootKeyG1()));
    ASSERT_TRUE(authority);
    const auto certificate = sim::verifyCertificateG1(*cardFile, authority->key);
    ASSERT_TRUE(certificate);
    EXPECT_EQ(certificate->authority, authority->holder);
    EXPECT_EQ(toHex(certificate->authorisation), "FF 54 41 43 48 4F 01");
    EXPECT_EQ(certificate->holder, slice(*icc, 1, 8));
    EXPECT_EQ(certificate->endOfValidity, readU32(*card.file(sim::AidG1, 0x0520), 61));

    ASSERT_EQ(toHex(ask(card, "00 A4 04 0C 06 FF 54 41 43 48 4F")), "90 00");
    for (const std::uint16_t fid : std::initializer_list<std::uint16_t>{
             0x0501, 0x0520, 0x050E, 0x0521, 0x0502, 0x0503, 0x0504, 0x0505, 0x0506, 0x0507, 0x0508,
             0x0522}) {
        ASSERT_EQ(toHex(ask(card, "00 A4 02 0C 02 " + hex(fid))), "90 00") << fid;
        const Bytes* stored = card.file(sim::AidG1, fid);
        ASSERT_TRUE(stored);
        Bytes read;
        while (read.size() < stored->size()) {
            const std::size_t length = std::min<std::size_t>(255, stored->size() - read.size());
            const Bytes answer =
                ask(card, "00 B0 " + hex(static_cast<std::uint16_t>(read.size())) + " " +
                              toHex({static_cast<std::uint8_t>(length)}));
            ASSERT_EQ(answer.size(), length + 2);
            sim::appendBytes(read, slice(answer, 0, length));
        }
        EXPECT_EQ(read, *stored);
        ASSERT_EQ(toHex(ask(card, "80 2A 90 00")), "90 00") << fid;
        const Bytes signature = ask(card, "00 2A 9E 9A 80");
        ASSERT_EQ(signature.size(), 130u);
        EXPECT_TRUE(sim::verifySignatureG1(certificate->key, read, slice(signature, 0, 128))) << fid;
    }
}

TEST_F(WholeCard, letsOnlyTheCardDownloadOfADriverCardBeWritten)
{
    sim::Card card(sim::makeDriverCardG1());
    ask(card, "00 A4 04 0C 06 FF 54 41 43 48 4F");
    for (const std::uint16_t fid : std::initializer_list<std::uint16_t>{
             0x0501, 0xC100, 0xC108, 0x0520, 0x0521, 0x0502, 0x0503, 0x0504, 0x0505, 0x0506, 0x0507, 0x0508,
             0x0522}) {
        ask(card, "00 A4 02 0C 02 " + hex(fid));
        EXPECT_EQ(toHex(ask(card, "00 D6 00 00 01 00")), "69 82") << fid;
    }
    ask(card, "00 A4 02 0C 02 05 0E");
    EXPECT_EQ(toHex(ask(card, "00 D6 00 00 04 65 E6 60 80")), "90 00");
    EXPECT_EQ(toHex(*card.file(sim::AidG1, 0x050E)), "65 E6 60 80");
}

TEST_F(WholeCard, hasNeitherASecondGenerationNorShortIdentifiersOnAFirstGenerationCard)
{
    sim::Card card(sim::makeDriverCardG1());
    EXPECT_EQ(toHex(ask(card, "00 A4 04 0C 06 FF 53 4D 52 44 54")), "6A 82");
    EXPECT_EQ(toHex(ask(card, "00 B0 9E 00 01")), "6A 82");
    ask(card, "00 A4 04 0C 06 FF 54 41 43 48 4F");
    EXPECT_EQ(toHex(ask(card, "00 B0 81 00 01")), "6A 82");
}

TEST_F(WholeCard, identifiesAControlCardAndGuardsItsHolder)
{
    sim::ControlParameters parameters;
    parameters.activityRecords = 231;
    sim::Card card(sim::makeControlCardG1(parameters));
    ask(card, "00 A4 04 0C 06 FF 54 41 43 48 4F");
    ask(card, "00 A4 02 0C 02 05 01");
    EXPECT_EQ(toHex(ask(card, "00 B0 00 00 05")), "03 00 00 00 E7 90 00");
    EXPECT_EQ(toHex(ask(card, "00 A4 02 0C 02 05 20")), "90 00");
    EXPECT_EQ(toHex(ask(card, "00 B0 00 00 01")), "69 82");
    EXPECT_EQ(card.file(sim::AidG1, 0x0520)->size(), 211u);
    EXPECT_EQ(card.file(sim::AidG1, 0x050C)->size(), 2u + 231 * 46);

    const auto authority =
        sim::verifyCertificateG1(*card.file(sim::AidG1, 0xC108), *sim::publicKeyFromRootG1(sim::rootKeyG1()));
    ASSERT_TRUE(authority);
    const auto certificate = sim::verifyCertificateG1(*card.file(sim::AidG1, 0xC100), authority->key);
    ASSERT_TRUE(certificate);
    EXPECT_EQ(toHex(certificate->authorisation), "FF 54 41 43 48 4F 03");
    EXPECT_EQ(certificate->holder, slice(*card.file(sim::MasterFile, 0x0002), 1, 8));
}

TEST_F(WholeCard, fillsTheControlsInAscendingOrder)
{
    const sim::ControlParameters parameters;
    const sim::Card card(sim::makeControlCardG1(parameters));
    const Bytes& file = *card.file(sim::AidG1, 0x050C);
    const std::size_t newest = readU16(file, 0);
    ASSERT_LT(newest, 230u);
    for (std::size_t i = 1; i <= newest; ++i) {
        EXPECT_LT(readU32(file, 2 + 46 * (i - 1) + 1), readU32(file, 2 + 46 * i + 1));
    }
    EXPECT_EQ(readU32(file, 2 + 46 * newest + 1), parameters.lastControl);
    EXPECT_EQ(readU32(file, 2 + 46 * (newest + 1) + 1), 0u);
}

TEST_F(WholeCard, refusesImpossibleControlCards)
{
    sim::ControlParameters parameters;
    parameters.activityRecords = 0;
    EXPECT_THROW(sim::makeControlCardG1(parameters), std::invalid_argument);
    parameters = {};
    parameters.lastControl = 0;
    EXPECT_THROW(sim::makeControlCardG1(parameters), std::invalid_argument);
}

} // namespace
