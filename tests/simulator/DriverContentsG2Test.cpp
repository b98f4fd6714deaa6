// The contents of a second-generation driver card, read back byte by byte with nothing of the code that wrote
// them.

#include "DriverCard.h"
#include "EcKey.h"
#include "ReadBack.h"
#include "RowName.h"

#include <algorithm>
#include <array>
#include <gtest/gtest.h>
#include <map>
#include <set>

namespace {

using sim::Bytes;
using sim::CertificateFiles;
using sim::Curve;
using sim::DriverContentsG2;
using sim::DriverParametersG2;
using sim::fromHex;
using sim::makeDriverContentsG2;
using sim::readU16;
using sim::readU32;
using sim::slice;
using sim::toHex;

constexpr std::uint8_t Germany = 0x0D;

DriverParametersG2 version1(std::uint32_t seed = 1)
{
    DriverParametersG2 parameters;
    parameters.first.seed = seed;
    return parameters;
}

DriverParametersG2 version2(std::uint32_t seed = 1)
{
    DriverParametersG2 parameters = version1(seed);
    parameters.version2 = true;
    return parameters;
}

std::map<std::uint16_t, std::size_t> sizesOf(const std::vector<sim::FileDescription>& files)
{
    std::map<std::uint16_t, std::size_t> sizes;
    for (const sim::FileDescription& file : files) {
        sizes[file.fid] = file.content.size();
    }
    return sizes;
}

/// The used records of a cyclic EF with a pointer of two bytes, from the oldest to the newest; `time` is the
/// place of the time stamp in a record.
std::vector<Bytes> records(const Bytes& file, std::size_t length, std::size_t time = 0)
{
    const std::size_t slots = (file.size() - 2) / length;
    EXPECT_EQ(file.size(), 2 + slots * length);
    EXPECT_LT(readU16(file, 0), slots);
    std::vector<Bytes> all;
    for (std::size_t i = 1; i <= slots; ++i) {
        const Bytes record = slice(file, 2 + length * ((readU16(file, 0) + i) % slots), length);
        if (readU32(record, time) != 0) {
            all.push_back(record);
        } else {
            EXPECT_EQ(record, Bytes(length, 0x00)) << "a free slot";
        }
    }
    return all;
}

/// Degrees times 60 000 from the digits +-DDDMM.M times 10; nothing when the minutes are none.
std::optional<int> coordinate(const Bytes& record, std::size_t offset)
{
    int value = static_cast<int>(readU24(record, offset));
    if (value >= 0x800000) {
        value -= 0x1000000;
    }
    const int sign = value < 0 ? -1 : 1;
    const int digits = sign * value;
    if (digits % 1000 >= 600) {
        return std::nullopt;
    }
    return sign * (digits / 1000 * 60000 + digits % 1000 * 100);
}

/// GNSSPlaceRecord at `offset`: somewhere in Europe, with a time and an accuracy.
void expectPlace(const Bytes& record, std::size_t offset)
{
    EXPECT_NE(readU32(record, offset), 0u);
    EXPECT_GE(record.at(offset + 4), 1);
    EXPECT_LE(record.at(offset + 4), 100);
    const auto latitude = coordinate(record, offset + 5);
    const auto longitude = coordinate(record, offset + 8);
    ASSERT_TRUE(latitude && longitude) << toHex(record);
    EXPECT_GE(*latitude, 34 * 60000);
    EXPECT_LE(*latitude, 70 * 60000);
    EXPECT_GE(*longitude, -25 * 60000);
    EXPECT_LE(*longitude, 45 * 60000);
}

/// Whether the card is in a slot at a moment, as the days tell.
bool inserted(const std::vector<DayRecord>& days, std::uint32_t time)
{
    for (const DayRecord& day : days) {
        if (time < day.date || time >= day.date + SecondsPerDay) {
            continue;
        }
        const int minute = static_cast<int>((time - day.date) / 60);
        std::uint16_t status = day.words.front();
        for (const std::uint16_t word : day.words) {
            if (minuteOf(word) <= minute) {
                status = word;
            }
        }
        return isInserted(status);
    }
    return false;
}

/// Periods of use of EF_Vehicles_Used.
struct Use
{
    std::uint32_t odometerBegin = 0;
    std::uint32_t odometerEnd = 0;
    std::uint32_t begin = 0;
    std::uint32_t end = 0;
};

std::vector<Use> usesOf(const DriverContentsG2& contents)
{
    std::vector<Use> uses;
    for (const Bytes& record : records(contents.vehiclesUsed, 48, 6)) {
        uses.push_back({readU24(record, 0), readU24(record, 3), readU32(record, 6), readU32(record, 10)});
    }
    return uses;
}

/// True when a vehicle was in use at the time and had that odometer value then.
bool fits(const std::vector<Use>& uses, std::uint32_t time, std::uint32_t odometer)
{
    return std::any_of(uses.begin(), uses.end(), [&](const Use& use) {
        return use.begin <= time && time <= use.end && use.odometerBegin <= odometer &&
               odometer <= use.odometerEnd;
    });
}

using Sizes = std::map<std::uint16_t, std::size_t>;

const Sizes SizesOfVersion1 = {
    {0x0501, 17},   {0xC100, 204}, {0xC101, 204},  {0xC108, 204},  {0xC109, 204},   {0x0520, 143},
    {0x050E, 4},    {0x0521, 53},  {0x0502, 3168}, {0x0503, 1152}, {0x0504, 13780}, {0x0505, 9602},
    {0x0506, 2354}, {0x0507, 19},  {0x0508, 46},   {0x0522, 562},  {0x0523, 2002},  {0x0524, 6050},
};
const Sizes SizesAddedByVersion2 = {
    {0x0525, 10},    {0x0526, 562},  {0x0527, 1682}, {0x0528, 19042},
    {0x0529, 32482}, {0x0530, 1682}, {0x0540, 3072},
};
const Sizes SizesOfFirstGeneration = {
    {0x0501, 10},   {0xC100, 194},  {0xC108, 194},  {0x0520, 143},   {0x050E, 4},
    {0x0521, 53},   {0x0502, 1728}, {0x0503, 1152}, {0x0504, 13780}, {0x0505, 6202},
    {0x0506, 1121}, {0x0507, 19},   {0x0508, 46},   {0x0522, 280},
};
const Sizes SizesInTheMasterFile = {{0x0002, 25}, {0x0005, 8}, {0x2F00, 20}};

TEST(DriverCardG2Sizes, areThoseOfTheLargestCards)
{
    for (const bool newer : {false, true}) {
        const sim::CardDescription card = sim::makeDriverCardG2(newer ? version2() : version1());
        Sizes second = SizesOfVersion1;
        if (newer) {
            second.insert(SizesAddedByVersion2.begin(), SizesAddedByVersion2.end());
        }
        EXPECT_EQ(sizesOf(card.masterFiles), SizesInTheMasterFile);
        ASSERT_EQ(card.applications.size(), 2u);
        EXPECT_EQ(card.applications[0].aid, sim::AidG1);
        EXPECT_EQ(sizesOf(card.applications[0].files), SizesOfFirstGeneration);
        EXPECT_EQ(card.applications[1].aid, sim::AidG2);
        EXPECT_EQ(sizesOf(card.applications[1].files), second);
    }
}

TEST(DriverCardG2Sizes, addUpToKnownTotals)
{
    // Certificates of 205, 205, 205 and 204 bytes; with EF_ICC and EF_IC, without EF_VU_Configuration.
    const auto total = [](DriverParametersG2 parameters) {
        parameters.curve = Curve::BrainpoolP256r1;
        parameters.linkCertificate = CertificateFiles::Empty;
        std::size_t sum = 25 + 8;
        for (const auto& [fid, size] : sizesOf(sim::makeDriverCardG2(parameters).applications.at(1).files)) {
            sum += fid == 0x0540 ? 0 : size;
        }
        return sum;
    };
    EXPECT_EQ(total(version1()), 39804u);
    EXPECT_EQ(total(version2()), 95264u);
}

TEST(DriverCardG2Sizes, followTheRecordCounts)
{
    DriverParametersG2 parameters = version2();
    parameters.eventsPerType = 6;
    parameters.faultsPerType = 13;
    parameters.activityLength = 5544;
    parameters.vehicles = 84;
    parameters.places = 300;
    parameters.gnssPlaces = 252;
    parameters.specificConditions = 56;
    parameters.vehicleUnits = 85;
    parameters.borderCrossings = 11;
    parameters.loadUnloadOperations = 16;
    parameters.loadTypeEntries = 33;
    const DriverContentsG2 contents = makeDriverContentsG2(parameters);
    EXPECT_EQ(
        toHex(contents.applicationIdentification), "01 01 01 06 0D 15 A8 00 54 01 2C 00 FC 00 38 00 55");
    EXPECT_EQ(toHex(contents.applicationIdentificationV2), "00 08 00 0B 00 10 00 21 0C 00");
    EXPECT_EQ(contents.eventsData.size(), 11u * 6 * 24);
    EXPECT_EQ(contents.faultsData.size(), 2u * 13 * 24);
    EXPECT_EQ(contents.driverActivityData.size(), 5548u);
    EXPECT_EQ(contents.vehiclesUsed.size(), 2u + 84 * 48);
    EXPECT_EQ(contents.places.size(), 2u + 300 * 21);
    EXPECT_EQ(contents.gnssPlaces.size(), 2u + 252 * 18);
    EXPECT_EQ(contents.specificConditions.size(), 2u + 56 * 5);
    EXPECT_EQ(contents.vehicleUnitsUsed.size(), 2u + 85 * 10);
    EXPECT_EQ(contents.placesAuthentication.size(), 2u + 300 * 5);
    EXPECT_EQ(contents.gnssPlacesAuthentication.size(), 2u + 252 * 5);
    EXPECT_EQ(contents.borderCrossings.size(), 2u + 11 * 17);
    EXPECT_EQ(contents.loadUnloadOperations.size(), 2u + 16 * 20);
    EXPECT_EQ(contents.loadTypeEntries.size(), 2u + 33 * 5);
    EXPECT_EQ(contents.first.vehiclesUsed.size(), 6202u) << "the first generation keeps its counts";
}

TEST(DriverCardG2Identification, namesItsVersion)
{
    EXPECT_EQ(
        toHex(makeDriverContentsG2(version1()).applicationIdentification),
        "01 01 00 0C 18 35 D0 00 C8 00 70 01 50 00 70 00 C8");
    EXPECT_EQ(
        toHex(makeDriverContentsG2(version2()).applicationIdentification),
        "01 01 01 0C 18 35 D0 00 C8 00 70 01 50 00 70 00 C8");
    EXPECT_EQ(
        toHex(makeDriverContentsG2(version2()).applicationIdentificationV2), "00 08 04 60 06 58 01 50 0C 00");
    EXPECT_EQ(
        toHex(makeDriverContentsG2(version1()).first.applicationIdentification),
        "01 00 00 0C 18 35 D0 00 C8 70");
    EXPECT_EQ(
        toHex(makeDriverContentsG2(version1()).first.dir),
        "61 08 4F 06 FF 54 41 43 48 4F 61 08 4F 06 FF 53 4D 52 44 54");
}

TEST(DriverCardG2Seed, givesTheSameBytesAgain)
{
    EXPECT_EQ(everything(sim::makeDriverCardG2(version2(7))), everything(sim::makeDriverCardG2(version2(7))));
}

TEST(DriverCardG2Seed, givesTheSameBytesOnEveryMachine)
{
    // Known digests of the default cards; a changed generator changes them.
    const auto digest = [](const DriverParametersG2& parameters) {
        return toHex(slice(sim::sha2(Curve::NistP256, everything(sim::makeDriverCardG2(parameters))), 0, 8));
    };
    EXPECT_EQ(digest(version1()), "CE 13 B5 34 8A F6 91 C7");
    EXPECT_EQ(digest(version2()), "21 01 74 35 E2 6B A4 D2");
}

TEST(DriverCardG2Seed, givesAnotherDriverForAnotherNumber)
{
    const DriverContentsG2 first = makeDriverContentsG2(version2(1));
    const DriverContentsG2 second = makeDriverContentsG2(version2(2));
    using File = Bytes DriverContentsG2::*;
    for (const File file : std::initializer_list<File>{
             &DriverContentsG2::cardMaCertificate, &DriverContentsG2::cardSignCertificate,
             &DriverContentsG2::identification, &DriverContentsG2::drivingLicenceInfo,
             &DriverContentsG2::eventsData, &DriverContentsG2::faultsData,
             &DriverContentsG2::driverActivityData, &DriverContentsG2::vehiclesUsed,
             &DriverContentsG2::places, &DriverContentsG2::vehicleUnitsUsed, &DriverContentsG2::gnssPlaces,
             &DriverContentsG2::placesAuthentication, &DriverContentsG2::gnssPlacesAuthentication,
             &DriverContentsG2::borderCrossings, &DriverContentsG2::loadUnloadOperations,
             &DriverContentsG2::loadTypeEntries}) {
        EXPECT_NE(first.*file, second.*file);
    }
}

TEST(DriverCardG2Seed, givesBothVersionsTheSameStory)
{
    const DriverContentsG2 older = makeDriverContentsG2(version1());
    const DriverContentsG2 newer = makeDriverContentsG2(version2());
    EXPECT_EQ(older.driverActivityData, newer.driverActivityData);
    EXPECT_EQ(older.vehiclesUsed, newer.vehiclesUsed);
    EXPECT_EQ(older.places, newer.places);
    EXPECT_EQ(older.gnssPlaces, newer.gnssPlaces);
    EXPECT_TRUE(older.borderCrossings.empty());
}

struct StoryRow
{
    const char* name;
    DriverParametersG2 parameters;
};

void PrintTo(const StoryRow& row, std::ostream* out)
{
    *out << row.name;
}

StoryRow story(const char* name, std::uint32_t seed, int days, std::uint8_t nation = Germany)
{
    StoryRow row{name, version2(seed)};
    row.parameters.first.days = days;
    row.parameters.first.nation = nation;
    return row;
}

StoryRow smallStory()
{
    StoryRow row = story("ofACardThatIsTooSmall", 9, 365);
    row.parameters.activityLength = 5545;
    row.parameters.vehicles = 84;
    row.parameters.places = 84;
    row.parameters.gnssPlaces = 100;
    row.parameters.specificConditions = 3;
    row.parameters.vehicleUnits = 10;
    row.parameters.borderCrossings = 7;
    row.parameters.loadUnloadOperations = 20;
    row.parameters.loadTypeEntries = 5;
    return row;
}

/// The rules that hold for every driver, and the agreement of both applications.
class DriverG2 : public testing::TestWithParam<StoryRow>
{
  protected:
    DriverParametersG2 m_parameters = GetParam().parameters;
    DriverContentsG2 m_contents = makeDriverContentsG2(m_parameters);
    std::vector<DayRecord> m_days = walk(m_contents.driverActivityData);
    std::vector<Use> m_uses = usesOf(m_contents);

    /// What the vehicles remember: earlier odometer values cannot be checked.
    bool isRemembered(std::uint32_t time) const { return time >= m_uses.front().begin; }
};

TEST_P(DriverG2, hasTheSameDaysInBothApplications)
{
    const std::vector<DayRecord> firstDays = walk(m_contents.first.driverActivityData);
    const std::size_t common = std::min(firstDays.size(), m_days.size());
    ASSERT_GT(common, 0u);
    for (std::size_t i = 1; i <= common; ++i) {
        const DayRecord& first = firstDays[firstDays.size() - i];
        const DayRecord& second = m_days[m_days.size() - i];
        EXPECT_EQ(first.date, second.date);
        EXPECT_EQ(first.presence, second.presence);
        EXPECT_EQ(first.distance, second.distance);
        EXPECT_EQ(first.words, second.words);
    }
    EXPECT_EQ(m_days.back().date, m_parameters.first.lastDay);
    EXPECT_EQ(m_days.back().position, readU16(m_contents.driverActivityData, 2));
    EXPECT_EQ(m_days.front().previousLength, 0u);
    for (std::size_t i = 1; i < m_days.size(); ++i) {
        EXPECT_EQ(m_days[i].previousLength, m_days[i - 1].length);
        EXPECT_EQ(m_days[i].date, m_days[i - 1].date + SecondsPerDay);
    }
    const DayRecord& newest = m_days.back();
    EXPECT_LE((newest.position + newest.length) % m_parameters.activityLength, m_days.front().position)
        << "the chain does not run over the end";
}

TEST_P(DriverG2, hasTheSameVehiclesInBothApplicationsAndNamesThem)
{
    const std::vector<Bytes> first = records(m_contents.first.vehiclesUsed, 31, 6);
    const std::vector<Bytes> second = records(m_contents.vehiclesUsed, 48, 6);
    const std::size_t common = std::min(first.size(), second.size());
    ASSERT_GT(common, 0u);
    std::map<Bytes, std::set<Bytes>> vins;
    for (std::size_t i = 1; i <= common; ++i) {
        const Bytes& record = second[second.size() - i];
        EXPECT_EQ(slice(record, 0, 31), first[first.size() - i]);
        const Bytes vin = slice(record, 31, 17);
        for (const std::uint8_t character : vin) {
            EXPECT_TRUE(std::isdigit(character) || std::isupper(character));
            EXPECT_TRUE(character != 'I' && character != 'O' && character != 'Q');
        }
        vins[slice(record, 14, 15)].insert(vin);
    }
    std::set<Bytes> all;
    for (const auto& [registration, numbers] : vins) {
        EXPECT_EQ(numbers.size(), 1u);
        all.insert(*numbers.begin());
    }
    EXPECT_EQ(all.size(), vins.size());
}

TEST_P(DriverG2, hasTheSamePlacesInBothApplicationsAndLocatesThem)
{
    const Bytes& file = m_contents.first.places;
    const std::size_t slots = (file.size() - 1) / 10;
    const std::vector<Bytes> second = records(m_contents.places, 21);
    ASSERT_FALSE(second.empty());
    for (std::size_t i = 0; i < std::min(slots, second.size()); ++i) {
        const Bytes& record = second[second.size() - 1 - i];
        const std::size_t slot = (file.at(0) + slots - i) % slots;
        EXPECT_EQ(slice(record, 0, 10), slice(file, 1 + 10 * slot, 10));
        expectPlace(record, 10);
        // By hand the begin is entered later than it was.
        const std::uint32_t position = readU32(record, 10);
        if (record.at(4) == 2) {
            EXPECT_GT(position, readU32(record, 0));
            EXPECT_LT(position, readU32(record, 0) + 3600);
        } else {
            EXPECT_EQ(position, readU32(record, 0));
        }
    }
}

TEST_P(DriverG2, staysWhereItIsOvernight)
{
    const std::vector<Bytes> all = records(m_contents.places, 21);
    for (std::size_t i = 1; i < all.size(); ++i) {
        const bool begins = all[i].at(4) % 2 == 0;
        if (begins) {
            EXPECT_EQ(slice(all[i], 15, 6), slice(all[i - 1], 15, 6));
            EXPECT_EQ(all[i].at(5), all[i - 1].at(5));
        }
    }
}

TEST_P(DriverG2, hasTheSameEventsAndFaultsInBothApplications)
{
    const std::array<std::size_t, 6> groups = {0, 1, 2, 3, 4, 10};
    const std::size_t perGroup = m_parameters.eventsPerType;
    const auto expectAmong = [](const Bytes& record, const Bytes& file, std::size_t begin, std::size_t end) {
        bool found = readU32(record, 1) == 0;
        for (std::size_t slot = begin; slot < end; ++slot) {
            found |= slice(file, 24 * slot, 24) == record;
        }
        EXPECT_TRUE(found) << toHex(record);
    };
    for (std::size_t slot = 0; slot < 6u * m_parameters.first.eventsPerType; ++slot) {
        const Bytes record = slice(m_contents.first.eventsData, 24 * slot, 24);
        const std::size_t group = groups.at(slot / m_parameters.first.eventsPerType);
        expectAmong(record, m_contents.eventsData, group * perGroup, (group + 1) * perGroup);
    }
    for (std::size_t slot = 0; slot < 2u * m_parameters.first.faultsPerType; ++slot) {
        const Bytes record = slice(m_contents.first.faultsData, 24 * slot, 24);
        const std::size_t group = slot / m_parameters.first.faultsPerType;
        expectAmong(
            record, m_contents.faultsData, group * m_parameters.faultsPerType,
            (group + 1) * m_parameters.faultsPerType);
    }
}

TEST_P(DriverG2, tellsTheSameOfTheDriverInBothApplications)
{
    EXPECT_EQ(m_contents.identification, m_contents.first.identification);
    EXPECT_EQ(m_contents.drivingLicenceInfo, m_contents.first.drivingLicenceInfo);
    EXPECT_EQ(m_contents.cardDownload, m_contents.first.cardDownload);
    EXPECT_EQ(m_contents.currentUsage, m_contents.first.currentUsage);
    EXPECT_EQ(m_contents.controlActivityData, m_contents.first.controlActivityData);
}

TEST_P(DriverG2, endsEveryFerryOnlyInTheSecondGeneration)
{
    const std::vector<Bytes> conditions = records(m_contents.specificConditions, 5);
    std::vector<Bytes> known;
    for (std::size_t i = 0; i < conditions.size(); ++i) {
        const std::uint8_t type = conditions[i].at(4);
        EXPECT_GE(type, 1);
        EXPECT_LE(type, 4);
        if (i > 0) {
            EXPECT_GE(readU32(conditions[i], 0), readU32(conditions[i - 1], 0));
            EXPECT_EQ(conditions[i - 1].at(4) == 3, type == 4);
            EXPECT_EQ(conditions[i - 1].at(4) == 1, type == 2);
        }
        if (type != 4) {
            known.push_back(conditions[i]);
        }
    }
    std::vector<Bytes> first;
    for (std::size_t i = 0; i < 56; ++i) {
        const Bytes record = slice(m_contents.first.specificConditions, 5 * i, 5);
        EXPECT_LE(record.at(4), 3);
        if (record.at(4) != 0) {
            first.push_back(record);
        }
    }
    // Without a pointer the first generation has its newest entry anywhere.
    std::sort(first.begin(), first.end());
    const std::size_t common = std::min(first.size(), known.size());
    for (std::size_t i = 1; i <= common; ++i) {
        EXPECT_EQ(first[first.size() - i], known[known.size() - i]);
    }
}

TEST_P(DriverG2, recordsTheVehicleUnitsInTurn)
{
    const std::vector<Bytes> vehicles = records(m_contents.vehiclesUsed, 48, 6);
    std::vector<std::uint32_t> changes;
    for (std::size_t i = 1; i < vehicles.size(); ++i) {
        if (slice(vehicles[i], 31, 17) != slice(vehicles[i - 1], 31, 17)) {
            changes.push_back(readU32(vehicles[i], 6));
        }
    }
    const std::vector<Bytes> units = records(m_contents.vehicleUnitsUsed, 10);
    ASSERT_FALSE(units.empty());
    const std::size_t common = std::min(units.size(), changes.size());
    for (std::size_t i = 1; i <= common; ++i) {
        const Bytes& unit = units[units.size() - i];
        EXPECT_EQ(readU32(unit, 0), changes[changes.size() - i]);
        EXPECT_NE(unit.at(4), 0);
        EXPECT_TRUE(std::all_of(unit.begin() + 6, unit.end(), [](std::uint8_t c) { return c > ' '; }));
    }
}

TEST_P(DriverG2, marksEveryThreeHoursOfDriving)
{
    const std::vector<Bytes> marks = records(m_contents.gnssPlaces, 18);
    const auto drivenUntil = [&](std::uint32_t time) {
        std::uint32_t driven = 0;
        for (const DayRecord& day : m_days) {
            for (std::size_t i = 0; i < day.words.size(); ++i) {
                const int endMinute = i + 1 < day.words.size() ? minuteOf(day.words[i + 1]) : 1440;
                const std::uint32_t begin =
                    day.date + static_cast<std::uint32_t>(minuteOf(day.words[i])) * 60;
                const std::uint32_t end = day.date + static_cast<std::uint32_t>(endMinute) * 60;
                if (isDriving(day.words[i]) && begin < time) {
                    driven += std::min(end, time) - begin;
                }
            }
        }
        return driven;
    };
    std::uint32_t before = 0;
    for (const Bytes& mark : marks) {
        const std::uint32_t time = readU32(mark, 0);
        EXPECT_EQ(readU32(mark, 4), time);
        expectPlace(mark, 4);
        if (isRemembered(time)) {
            EXPECT_TRUE(fits(m_uses, time, readU24(mark, 15))) << time;
        }
        if (before >= m_days.front().date) {
            EXPECT_EQ(drivenUntil(time) - drivenUntil(before), 3u * 3600);
        }
        before = time;
    }
    EXPECT_TRUE(!marks.empty() || m_parameters.first.days < 3);
}

TEST_P(DriverG2, recordsTheBordersBetweenItsPlaces)
{
    const std::vector<Bytes> crossings = records(m_contents.borderCrossings, 17, 2);
    std::size_t found = crossings.size();
    const std::vector<Bytes> all = records(m_contents.places, 21);
    // Backwards, because either file may have forgotten its oldest records.
    for (std::size_t i = all.size(); i-- > 1 && found > 0;) {
        const std::uint8_t from = all[i - 1].at(5);
        const std::uint8_t to = all[i].at(5);
        if (from == to) {
            continue;
        }
        const std::uint32_t begin = readU32(all[i - 1], 0);
        std::uint8_t entered = to;
        while (found > 0 && readU32(crossings[found - 1], 2) > begin) {
            const Bytes& crossing = crossings[--found];
            EXPECT_LT(readU32(crossing, 2), readU32(all[i], 0));
            EXPECT_EQ(crossing.at(1), entered);
            EXPECT_NE(crossing.at(0), entered);
            entered = crossing.at(0);
        }
        EXPECT_TRUE(entered == from || found == 0);
    }
    for (const Bytes& crossing : crossings) {
        const std::uint32_t time = readU32(crossing, 2);
        expectPlace(crossing, 2);
        EXPECT_LE(crossing.at(13), 1);
        if (isRemembered(time)) {
            EXPECT_TRUE(fits(m_uses, time, readU24(crossing, 14))) << time;
        }
    }
    // Each crossing lies between two of the places, as far back as these go.
    EXPECT_TRUE(found == 0 || readU32(crossings[found - 1], 2) < readU32(all.front(), 0));
}

TEST_P(DriverG2, loadsOnceOrTwiceADay)
{
    std::map<std::uint32_t, int> perDay;
    std::uint32_t before = 0;
    const std::vector<Bytes> operations = records(m_contents.loadUnloadOperations, 20);
    for (const Bytes& operation : operations) {
        const std::uint32_t time = readU32(operation, 0);
        EXPECT_GT(time, before);
        before = time;
        EXPECT_GE(operation.at(4), 1);
        EXPECT_LE(operation.at(4), 3);
        EXPECT_EQ(readU32(operation, 5), time);
        expectPlace(operation, 5);
        EXPECT_LE(operation.at(16), 1);
        if (isRemembered(time)) {
            EXPECT_TRUE(fits(m_uses, time, readU24(operation, 17))) << time;
        }
        EXPECT_TRUE(time < m_days.front().date || inserted(m_days, time)) << time;
        ++perDay[time / SecondsPerDay * SecondsPerDay];
    }
    ASSERT_FALSE(perDay.empty());
    for (const DayRecord& day : m_days) {
        if (day.date <= perDay.begin()->first) {
            continue;
        }
        const int count = perDay.count(day.date) != 0 ? perDay[day.date] : 0;
        const bool worked = day.words.size() > 1;
        EXPECT_GE(count, worked ? 1 : 0) << day.date;
        EXPECT_LE(count, worked ? 2 : 0) << day.date;
    }
}

TEST_P(DriverG2, entersItsLoadsWithTheCardInserted)
{
    std::uint32_t before = 0;
    for (const Bytes& entry : records(m_contents.loadTypeEntries, 5)) {
        const std::uint32_t time = readU32(entry, 0);
        EXPECT_GT(time, before);
        before = time;
        EXPECT_LE(entry.at(4), 2);
        EXPECT_TRUE(time < m_days.front().date || inserted(m_days, time)) << time;
    }
}

TEST_P(DriverG2, authenticatesEveryPositionUnderTheSameTimeAndSlot)
{
    const auto compare = [](const Bytes& file, std::size_t length, const Bytes& authentication) {
        ASSERT_EQ((file.size() - 2) / length, (authentication.size() - 2) / 5);
        EXPECT_EQ(readU16(file, 0), readU16(authentication, 0));
        for (std::size_t i = 0; i < (file.size() - 2) / length; ++i) {
            EXPECT_EQ(readU32(file, 2 + length * i), readU32(authentication, 2 + 5 * i)) << "slot " << i;
            EXPECT_LE(authentication.at(2 + 5 * i + 4), 1);
        }
    };
    compare(m_contents.places, 21, m_contents.placesAuthentication);
    compare(m_contents.gnssPlaces, 18, m_contents.gnssPlacesAuthentication);
}

TEST_P(DriverG2, pointsToTheNewestRecordOfEachFile)
{
    const auto check = [](const Bytes& file, std::size_t length, std::size_t time) {
        const std::size_t slots = (file.size() - 2) / length;
        std::size_t newest = 0;
        for (std::size_t i = 0; i < slots; ++i) {
            if (readU32(file, 2 + length * i + time) >= readU32(file, 2 + length * newest + time)) {
                newest = readU32(file, 2 + length * i + time) != 0 ? i : newest;
            }
        }
        EXPECT_EQ(readU16(file, 0), newest);
    };
    check(m_contents.vehiclesUsed, 48, 6);
    check(m_contents.places, 21, 0);
    check(m_contents.specificConditions, 5, 0);
    check(m_contents.vehicleUnitsUsed, 10, 0);
    check(m_contents.gnssPlaces, 18, 0);
    check(m_contents.borderCrossings, 17, 2);
    check(m_contents.loadUnloadOperations, 20, 0);
    check(m_contents.loadTypeEntries, 5, 0);
}

INSTANTIATE_TEST_SUITE_P(
    All, DriverG2,
    testing::Values(
        story("ofOneDay", 1, 1), story("ofTwoDays", 3, 2), story("ofTwoMonths", 1, 60),
        story("ofAnotherDriver", 2, 60), story("ofAFrenchDriver", 11, 60, 0x11),
        story("ofASpanishDriver", 12, 60, 0x0F), story("ofABritishDriver", 13, 60, 0x15),
        story("ofADriverWithoutNeighbours", 14, 60, 0x31), story("ofAYear", 5, 365),
        story("ofTwoYears", 6, 800), smallStory()),
    RowName());

TEST(DriversOfTheSecondGeneration, showAllThatTheyDo)
{
    // Over some drivers every kind of record occurs.
    std::set<int> handlings;
    std::set<int> loads;
    std::set<int> conditions;
    std::set<int> statuses;
    std::size_t crossings = 0;
    bool transit = false;
    for (std::uint32_t seed = 1; seed <= 12; ++seed) {
        const DriverContentsG2 contents = makeDriverContentsG2(version2(seed));
        for (const Bytes& record : records(contents.loadUnloadOperations, 20)) {
            handlings.insert(record.at(4));
            statuses.insert(record.at(16));
        }
        for (const Bytes& record : records(contents.loadTypeEntries, 5)) {
            loads.insert(record.at(4));
        }
        for (const Bytes& record : records(contents.specificConditions, 5)) {
            conditions.insert(record.at(4));
        }
        std::uint32_t before = 0;
        for (const Bytes& record : records(contents.borderCrossings, 17, 2)) {
            ++crossings;
            transit |= readU32(record, 2) / SecondsPerDay == before;
            before = readU32(record, 2) / SecondsPerDay;
        }
    }
    EXPECT_EQ(handlings, (std::set<int>{1, 2, 3}));
    EXPECT_EQ(loads, (std::set<int>{0, 1, 2}));
    EXPECT_EQ(conditions, (std::set<int>{1, 2, 3, 4}));
    EXPECT_EQ(statuses, (std::set<int>{0, 1}));
    EXPECT_GT(crossings, 12u * 12);
    EXPECT_TRUE(transit) << "two borders on one day";
}

TEST(DriversOfTheSecondGeneration, haveNoPositionWhereTheNationHasNone)
{
    DriverParametersG2 parameters = version2();
    parameters.first.nation = 0xFF;
    const DriverContentsG2 contents = makeDriverContentsG2(parameters);
    const std::vector<Bytes> places = records(contents.places, 21);
    ASSERT_FALSE(places.empty());
    for (const Bytes& place : places) {
        EXPECT_NE(readU32(place, 10), 0u);
        EXPECT_EQ(toHex(slice(place, 14, 7)), "FF 7F FF FF 7F FF FF");
    }
    EXPECT_TRUE(records(contents.borderCrossings, 17, 2).empty());
}

TEST(DriversOfTheSecondGeneration, areFoundInTheWestToo)
{
    DriverParametersG2 parameters = version2();
    parameters.first.nation = 0x27; // Lisbon, 38 43 N, 9 08 W
    const Bytes record = records(makeDriverContentsG2(parameters).places, 21).at(0);
    EXPECT_NEAR(coordinate(record, 15).value_or(0), 38 * 60000 + 43 * 1000, 20 * 1000);
    EXPECT_NEAR(coordinate(record, 18).value_or(0), -9 * 60000 - 8 * 1000, 20 * 1000);
}

TEST(EventsAndFaultsG2, standInTheirGroupsWithTheirCodes)
{
    const std::array<std::set<int>, 11> eventCodes = {
        {{0x03},
         {0x05},
         {0x06},
         {0x08},
         {0x09},
         {0x0A},
         {0x0B},
         {0x0C},
         {0x0D},
         {0x0E},
         {0x11, 0x12, 0x15, 0x17, 0x19, 0x1A, 0x1B, 0x1C, 0x21, 0x24}}};
    const std::array<std::set<int>, 2> faultCodes = {
        {{0x31, 0x32, 0x33, 0x34, 0x35, 0x36, 0x37, 0x38, 0x39, 0x3A}, {0x40}}};
    const std::set<int> ofVersion2 = {0x1C, 0x3A};
    const std::set<int> ofFirst = {0x03, 0x05, 0x06, 0x08, 0x09, 0x11, 0x12, 0x15, 0x17,
                                   0x21, 0x24, 0x31, 0x32, 0x33, 0x34, 0x35, 0x40};
    const Bytes emptyRecord =
        fromHex("00 00 00 00 00 00 00 00 00 00 00 20 20 20 20 20 20 20 20 20 20 20 20 20");
    std::set<int> seen;

    const auto check = [&](const Bytes& file, const auto& groups, std::size_t perGroup,
                           const std::vector<Use>& uses, std::set<int>& codes) {
        for (std::size_t slot = 0; slot < groups.size() * perGroup; ++slot) {
            const Bytes record = slice(file, slot * 24, 24);
            if (record == emptyRecord) {
                continue;
            }
            const int code = record.at(0);
            codes.insert(code);
            EXPECT_EQ(groups[slot / perGroup].count(code), 1u) << "slot " << slot;
            const std::uint32_t begin = readU32(record, 1);
            const std::uint32_t end = readU32(record, 5);
            EXPECT_LE(begin, end);
            EXPECT_TRUE(std::any_of(
                uses.begin(), uses.end(),
                [&](const Use& use) { return use.begin <= begin && end <= use.end; }))
                << "slot " << slot;
            if (slot % perGroup != 0) {
                EXPECT_GE(begin, readU32(file, (slot - 1) * 24 + 1)) << "slot " << slot;
            }
        }
    };
    for (std::uint32_t seed = 1; seed <= 30; ++seed) {
        for (const bool newer : {false, true}) {
            const DriverContentsG2 contents = makeDriverContentsG2(newer ? version2(seed) : version1(seed));
            const std::vector<Use> uses = usesOf(contents);
            std::set<int> codes;
            check(contents.eventsData, eventCodes, 12, uses, codes);
            check(contents.faultsData, faultCodes, 24, uses, codes);
            for (const int code : codes) {
                EXPECT_TRUE(newer || ofVersion2.count(code) == 0) << "code " << code;
            }
            seen.insert(codes.begin(), codes.end());
            for (std::size_t slot = 0; slot < 6 * 12; ++slot) {
                const int code = contents.first.eventsData.at(24 * slot);
                EXPECT_TRUE(code == 0 || ofFirst.count(code) == 1) << "code " << code;
            }
            for (std::size_t slot = 0; slot < 2 * 24; ++slot) {
                const int code = contents.first.faultsData.at(24 * slot);
                EXPECT_TRUE(code == 0 || ofFirst.count(code) == 1) << "code " << code;
            }
        }
    }
    for (const int code : {0x03, 0x05, 0x06, 0x08, 0x09, 0x0A, 0x0B, 0x0C, 0x0D, 0x0E,
                           0x19, 0x1A, 0x1B, 0x1C, 0x36, 0x37, 0x38, 0x39, 0x3A, 0x40}) {
        EXPECT_EQ(seen.count(code), 1u) << "code " << code;
    }
}

TEST(DriverParameterChecksG2, refuseWhatNoCardCanHave)
{
    const auto refused = [](const char* what, void (*spoil)(DriverParametersG2&)) {
        DriverParametersG2 parameters = version2();
        spoil(parameters);
        EXPECT_THROW(sim::makeDriverCardG2(parameters), std::invalid_argument) << what;
    };
    refused("no days", [](DriverParametersG2& p) { p.first.days = 0; });
    refused("no events", [](DriverParametersG2& p) { p.eventsPerType = 0; });
    refused("no faults", [](DriverParametersG2& p) { p.faultsPerType = 0; });
    refused("a buffer below a day", [](DriverParametersG2& p) { p.activityLength = 20; });
    refused("no vehicles", [](DriverParametersG2& p) { p.vehicles = 0; });
    refused("no places", [](DriverParametersG2& p) { p.places = 0; });
    refused("no GNSS places", [](DriverParametersG2& p) { p.gnssPlaces = 0; });
    refused("no conditions", [](DriverParametersG2& p) { p.specificConditions = 0; });
    refused("no vehicle units", [](DriverParametersG2& p) { p.vehicleUnits = 0; });
    refused("no border crossings", [](DriverParametersG2& p) { p.borderCrossings = 0; });
    refused("no operations", [](DriverParametersG2& p) { p.loadUnloadOperations = 0; });
    refused("no load types", [](DriverParametersG2& p) { p.loadTypeEntries = 0; });
    refused("a start behind the smaller buffer", [](DriverParametersG2& p) {
        p.activityLength = 5544;
        p.first.wrapPosition = 6000;
    });
    DriverParametersG2 older = version1();
    older.borderCrossings = 0;
    EXPECT_EQ(sim::makeDriverCardG2(older).applications.size(), 2u) << "no such file in version 1";
}

} // namespace
