// The contents of a workshop card, read back byte by byte with nothing of the code that wrote them.

#include "ReadBack.h"
#include "RowName.h"
#include "WorkshopCard.h"

#include <algorithm>
#include <functional>
#include <gtest/gtest.h>
#include <set>

namespace {

using sim::Bytes;
using sim::makeWorkshopContents;
using sim::makeWorkshopContentsG2;
using sim::readU16;
using sim::readU32;
using sim::slice;
using sim::toHex;
using sim::WorkshopContents;
using sim::WorkshopContentsG2;
using sim::WorkshopParameters;
using sim::WorkshopParametersG2;

/// EF_Calibration of either generation.
struct CalibrationFile
{
    std::size_t total = 0;
    std::size_t newest = 0;
    std::vector<Bytes> slots;
};

CalibrationFile calibrationFile(const Bytes& file, std::size_t header, std::size_t recordLength)
{
    CalibrationFile read;
    read.total = readU16(file, 0);
    read.newest = header == 3 ? file.at(2) : readU16(file, 2);
    EXPECT_EQ((file.size() - header) % recordLength, 0u);
    for (std::size_t offset = header; offset < file.size(); offset += recordLength) {
        read.slots.push_back(slice(file, offset, recordLength));
    }
    return read;
}

CalibrationFile firstGeneration(const Bytes& file)
{
    return calibrationFile(file, 3, 105);
}

CalibrationFile secondGeneration(const Bytes& file)
{
    return calibrationFile(file, 4, 178);
}

/// From the oldest to the newest record in use.
std::vector<Bytes> used(const CalibrationFile& file)
{
    std::vector<Bytes> all;
    for (std::size_t i = 1; i <= file.slots.size(); ++i) {
        const Bytes& record = file.slots[(file.newest + i) % file.slots.size()];
        if (record != Bytes(record.size(), 0x00)) {
            all.push_back(record);
        }
    }
    return all;
}

std::uint32_t newTime(const Bytes& record)
{
    return readU32(record, 65);
}

bool isKnownToTheFirstGeneration(const Bytes& record)
{
    return record.at(0) >= 1 && record.at(0) <= 4;
}

std::vector<Bytes> knownToTheFirstGeneration(const std::vector<Bytes>& records)
{
    std::vector<Bytes> known;
    for (const Bytes& record : records) {
        if (isKnownToTheFirstGeneration(record)) {
            known.push_back(slice(record, 0, 105));
        }
    }
    return known;
}

struct WorkshopRow
{
    const char* name;
    WorkshopParametersG2 parameters;
};

void PrintTo(const WorkshopRow& row, std::ostream* out)
{
    *out << row.name;
}

WorkshopRow row(const char* name, const std::function<void(WorkshopParametersG2&)>& change)
{
    WorkshopRow made = {name, {}};
    made.parameters.version2 = true;
    change(made.parameters);
    return made;
}

void setUsed(WorkshopParametersG2& parameters, int used, std::uint8_t slots)
{
    parameters.first.usedCalibrations = used;
    parameters.first.calibrations = slots;
    parameters.calibrations = slots;
}

class Workshop : public testing::TestWithParam<WorkshopRow>
{
  protected:
    WorkshopParametersG2 m_parameters = GetParam().parameters;
    WorkshopContentsG2 m_contents = makeWorkshopContentsG2(m_parameters);
    std::size_t m_total = static_cast<std::size_t>(m_parameters.first.usedCalibrations);
};

TEST_P(Workshop, countsItsCalibrationsAndKeepsTheNewest)
{
    const CalibrationFile file = secondGeneration(m_contents.calibration);
    const std::size_t slots = m_parameters.calibrations;
    ASSERT_EQ(file.slots.size(), slots);
    EXPECT_EQ(file.total, m_total);
    const std::vector<Bytes> records = slots == 0 ? std::vector<Bytes>() : used(file);
    ASSERT_EQ(records.size(), std::min(m_total, slots));
    EXPECT_EQ(file.newest, records.empty() ? 0 : (m_total - 1) % slots);
    if (!records.empty()) {
        EXPECT_EQ(newTime(records.back()), m_parameters.first.lastCalibration);
        EXPECT_EQ(records.back(), file.slots.at(file.newest));
    }
    for (std::size_t i = 1; i < records.size(); ++i) {
        EXPECT_LT(newTime(records[i - 1]), newTime(records[i]));
    }
}

TEST_P(Workshop, tellsBothApplicationsTheSameCalibrations)
{
    const CalibrationFile first = firstGeneration(m_contents.first.calibration);
    const CalibrationFile second = secondGeneration(m_contents.calibration);
    const std::size_t slots = m_parameters.first.calibrations;
    ASSERT_EQ(first.slots.size(), slots);
    if (slots == 0) {
        EXPECT_EQ(toHex(slice(m_contents.first.calibration, 2, 1)), "00");
        return;
    }
    EXPECT_LE(first.total, second.total);
    const std::vector<Bytes> firstRecords = used(first);
    EXPECT_EQ(firstRecords.size(), std::min(first.total, slots));
    EXPECT_EQ(first.newest, first.total == 0 ? 0 : (first.total - 1) % slots);
    EXPECT_TRUE(std::all_of(firstRecords.begin(), firstRecords.end(), isKnownToTheFirstGeneration));

    // From the newest back as far as both reach.
    const std::vector<Bytes> known = knownToTheFirstGeneration(used(second));
    const std::size_t common = std::min(known.size(), firstRecords.size());
    EXPECT_TRUE(std::equal(
        known.end() - static_cast<std::ptrdiff_t>(common), known.end(),
        firstRecords.end() - static_cast<std::ptrdiff_t>(common)));
    EXPECT_EQ(common == 0, m_total == 0);
    if (m_total <= m_parameters.calibrations) {
        EXPECT_EQ(first.total, known.size()) << "what it does not know it does not count";
    }
}

TEST_P(Workshop, calibratesInWorkingHours)
{
    for (const Bytes& record : used(secondGeneration(m_contents.calibration))) {
        const std::uint32_t time = newTime(record);
        const std::uint32_t weekday = (time / SecondsPerDay + 3) % 7;
        const std::uint32_t hour = time % SecondsPerDay / 3600;
        EXPECT_LT(weekday, 5u) << time;
        EXPECT_GE(hour, 6u) << time;
        EXPECT_LT(hour, 18u) << time;
        EXPECT_GE(time, readU32(m_contents.identification, 57)) << "the card was not issued yet";
        EXPECT_LE(time, readU32(m_contents.identification, 61)) << "the card has expired";
    }
}

TEST_P(Workshop, writesDownPlausibleVehicles)
{
    std::set<std::string> vins;
    std::set<int> purposes;
    const std::vector<Bytes> records = used(secondGeneration(m_contents.calibration));
    for (const Bytes& record : records) {
        const int purpose = record.at(0);
        EXPECT_TRUE(purpose >= 1 && purpose <= 6);
        purposes.insert(purpose);
        const std::string vin = textOf(record, 1, 17);
        EXPECT_EQ(vin.substr(0, 3), "0SM");
        EXPECT_EQ(vin.find_first_not_of("0123456789ABCDEFGHJKLMNPRSTUVWXYZ"), std::string::npos);
        vins.insert(vin);
        EXPECT_EQ(record.at(19), m_parameters.first.codePage);
        EXPECT_NE(textOf(record, 20, 13), std::string(13, ' '));

        const int characteristic = readU16(record, 33);
        EXPECT_NEAR(characteristic, 8000, 400);
        EXPECT_NEAR(readU16(record, 35), characteristic, 15);
        EXPECT_NEAR(readU16(record, 37) / 8.0, 3100, 320);
        EXPECT_NE(textOf(record, 39, 15).find(" R 22.5"), std::string::npos);
        EXPECT_GE(record.at(54), 85);
        EXPECT_LE(record.at(54), 90);

        EXPECT_LE(readU24(record, 55), readU24(record, 58));
        EXPECT_LE(readU24(record, 58), 999999u);
        const auto off = std::abs(
            static_cast<std::int64_t>(readU32(record, 61)) - static_cast<std::int64_t>(newTime(record)));
        EXPECT_GT(off, 0);
        EXPECT_LE(off, purpose == 6 ? 1500 : 90);
        const std::uint32_t next = readU32(record, 69);
        EXPECT_EQ(next % SecondsPerDay, 0u);
        EXPECT_GT(next, newTime(record));
        if (purpose <= 4) {
            EXPECT_NEAR((next - newTime(record)) / 86400.0, 730, 5);
        }
        EXPECT_EQ(textOf(record, 73, 4), "SIM-");
        EXPECT_EQ(record.at(95), 6) << "a vehicle unit";
        EXPECT_EQ(record.at(103), 7) << "a motion sensor";
        EXPECT_EQ(record.at(111), 8) << "a GNSS facility";
        EXPECT_EQ(record.at(119), 9) << "a remote module";
        EXPECT_LE(record.at(121), 1);
    }
    EXPECT_EQ(vins.size(), records.size());
    if (records.size() >= 200) {
        EXPECT_EQ(purposes.size(), 6u);
    }
}

TEST_P(Workshop, leavesUnusedSealsEmpty)
{
    std::set<int> counts;
    for (const Bytes& record : used(secondGeneration(m_contents.calibration))) {
        const std::size_t seals = record.at(122);
        ASSERT_LE(seals, 5u);
        counts.insert(static_cast<int>(seals));
        for (std::size_t i = 0; i < 5; ++i) {
            const Bytes seal = slice(record, 123 + 11 * i, 11);
            EXPECT_EQ(seal == Bytes(11, 0x00), i >= seals);
            if (i < seals) {
                EXPECT_NE(seal.at(0), 0);
                EXPECT_EQ(textOf(seal, 1, 10).find_first_not_of("SM0123456789"), std::string::npos);
            }
        }
    }
    if (m_total >= 40 && m_parameters.calibrations >= 40) {
        EXPECT_EQ(counts.size(), 6u);
    }
}

TEST_P(Workshop, addsDataToTheCalibrationInTheSameSlot)
{
    const Bytes& file = m_contents.calibrationAddData;
    if (!m_parameters.version2) {
        EXPECT_TRUE(file.empty());
        return;
    }
    const CalibrationFile calibrations = secondGeneration(m_contents.calibration);
    ASSERT_EQ(file.size(), 2 + 27 * calibrations.slots.size());
    EXPECT_EQ(readU16(file, 0), calibrations.newest);
    for (std::size_t i = 0; i < calibrations.slots.size(); ++i) {
        const Bytes added = slice(file, 2 + 27 * i, 27);
        const Bytes& calibration = calibrations.slots[i];
        EXPECT_EQ(slice(added, 0, 4), slice(calibration, 61, 4));
        EXPECT_EQ(slice(added, 4, 17), slice(calibration, 1, 17));
        if (calibration.at(0) == 0) {
            EXPECT_EQ(added, Bytes(27, 0x00));
            continue;
        }
        EXPECT_TRUE(added.at(21) == 1 || added.at(21) == 2);
        EXPECT_EQ(added.at(22), m_parameters.first.nation);
        EXPECT_LT(readU32(added, 23), newTime(calibration));
        EXPECT_GE(readU32(added, 23) + 120, newTime(calibration));
    }
}

TEST_P(Workshop, drivesTheVehiclesItHasCalibrated)
{
    const CalibrationFile file = secondGeneration(m_contents.calibration);
    const std::vector<Bytes> records = file.slots.empty() ? std::vector<Bytes>() : used(file);
    const Bytes& vehicles = m_contents.vehiclesUsed;
    const std::size_t slots = m_parameters.vehicles;
    ASSERT_EQ(vehicles.size(), 2 + 48 * slots);
    const std::size_t newest = readU16(vehicles, 0);
    std::uint32_t later = 0xFFFFFFFF;
    for (std::size_t i = 0; i < slots; ++i) {
        const Bytes use = slice(vehicles, 2 + 48 * ((newest + slots - i) % slots), 48);
        const std::uint32_t begin = readU32(use, 6);
        const std::uint32_t end = readU32(use, 10);
        EXPECT_LT(begin, end);
        EXPECT_LT(end, later);
        later = begin;
        if (i < records.size()) {
            const Bytes& record = records[records.size() - 1 - i];
            EXPECT_EQ(slice(use, 31, 17), slice(record, 1, 17));
            EXPECT_EQ(slice(use, 14, 15), slice(record, 18, 15));
            EXPECT_GT(newTime(record), begin);
            EXPECT_LT(newTime(record), end);
            EXPECT_EQ(readU24(use, 0), readU24(record, 58));
            EXPECT_EQ(readU24(use, 3) > readU24(use, 0), isKnownToTheFirstGeneration(record));
        }
    }
}

TEST_P(Workshop, tellsItsDaysInBothApplications)
{
    for (const Bytes* file : {&m_contents.driverActivityData, &m_contents.first.driverActivityData}) {
        const std::vector<DayRecord> days = walk(*file);
        ASSERT_FALSE(days.empty());
        EXPECT_EQ(days.front().previousLength, 0u);
        EXPECT_EQ(
            days.back().date,
            m_parameters.first.lastCalibration - m_parameters.first.lastCalibration % SecondsPerDay);
        bool hasDriven = false;
        for (std::size_t i = 0; i < days.size(); ++i) {
            const DayRecord& day = days[i];
            if (i > 0) {
                EXPECT_EQ(day.date, days[i - 1].date + SecondsPerDay);
                EXPECT_EQ(day.previousLength, days[i - 1].length);
                EXPECT_EQ(day.presence - days[i - 1].presence, day.words.size() > 1 ? 1 : 0);
            }
            ASSERT_FALSE(day.words.empty());
            EXPECT_EQ(minuteOf(day.words.front()), 0);
            EXPECT_TRUE(std::is_sorted(
                day.words.begin(), day.words.end(),
                [](std::uint16_t one, std::uint16_t other) { return minuteOf(one) < minuteOf(other); }));
            EXPECT_LT(minuteOf(day.words.back()), 1440);
            EXPECT_FALSE(isInserted(day.words.back()));
            const bool drives = std::any_of(day.words.begin(), day.words.end(), isDriving);
            EXPECT_EQ(drives, day.distance > 0);
            EXPECT_LT(day.distance, 200u);
            hasDriven = hasDriven || drives;
        }
        EXPECT_TRUE(hasDriven);
    }
}

TEST_P(Workshop, fillsTheOtherFilesOfItsTestDrives)
{
    const Bytes& places = m_contents.places;
    const std::size_t slots = m_parameters.places;
    ASSERT_EQ(places.size(), 2 + 21 * slots);
    for (std::size_t i = 0; i < slots; ++i) {
        const Bytes record = slice(places, 2 + 21 * i, 21);
        EXPECT_LE(readU32(record, 0), m_parameters.first.lastCalibration + SecondsPerDay);
        EXPECT_NE(readU32(record, 0), 0u);
        EXPECT_LE(record.at(4), 1);
        EXPECT_EQ(record.at(5), m_parameters.first.nation);
        EXPECT_EQ(readU32(record, 10), readU32(record, 0)) << "the time of its position";
    }
    EXPECT_EQ(m_contents.first.places.size(), 1 + 10 * std::size_t{m_parameters.first.places});
    EXPECT_EQ(m_contents.first.specificConditions.size(), 10u);
    EXPECT_EQ(m_contents.vehicleUnitsUsed.size(), 2 + 10 * std::size_t{m_parameters.vehicleUnits});
    EXPECT_NE(readU32(m_contents.vehicleUnitsUsed, 2), 0u);
    EXPECT_EQ(m_contents.currentUsage, m_contents.first.currentUsage);
    EXPECT_EQ(m_contents.controlActivityData, m_contents.first.controlActivityData);
    EXPECT_EQ(m_contents.identification, m_contents.first.identification);
    EXPECT_EQ(m_contents.cardDownload, m_contents.first.cardDownload);
}

INSTANTIATE_TEST_SUITE_P(
    All, Workshop,
    testing::Values(
        row("default", [](WorkshopParametersG2&) {}),
        row("version1", [](WorkshopParametersG2& p) { p.version2 = false; }),
        row("newCard", [](WorkshopParametersG2& p) { setUsed(p, 0, 255); }),
        row("firstCalibration", [](WorkshopParametersG2& p) { setUsed(p, 1, 255); }),
        row("noRecords", [](WorkshopParametersG2& p) { setUsed(p, 40, 0); }),
        row("fullRing", [](WorkshopParametersG2& p) { setUsed(p, 255, 255); }),
        row("wrappedOnce", [](WorkshopParametersG2& p) { setUsed(p, 256, 255); }),
        row("wrappedOften", [](WorkshopParametersG2& p) { setUsed(p, 65535, 88); }),
        row("countsThatDiffer",
            [](WorkshopParametersG2& p) {
                setUsed(p, 300, 88);
                p.calibrations = 255;
            }),
        row("smallestFiles",
            [](WorkshopParametersG2& p) {
                setUsed(p, 100, 88);
                p.activityLength = 198;
                p.vehicles = 4;
                p.places = 6;
                p.vehicleUnits = 4;
            }),
        row("anotherNationAndDay",
            [](WorkshopParametersG2& p) {
                p.first.nation = 0x28;
                p.first.codePage = 2;
                p.first.seed = 11;
                p.first.lastCalibration = 1718714096; // 2024-06-18 12:34:56
            })),
    RowName());

TEST(WorkshopIdentification, hasTheFieldsOfTheRegulation)
{
    WorkshopParameters parameters;
    parameters.nation = 0x28;
    parameters.codePage = 2;
    parameters.workshopName = "Łódź Service";
    parameters.workshopAddress = "ul. Długa 3";
    parameters.surname = "Wójcik";
    parameters.firstNames = " ";
    parameters.language = "pl";
    parameters.ownerIdentification = "PL12345";
    parameters.indices = "a1Z";
    const Bytes identification = makeWorkshopContents(parameters).identification;
    ASSERT_EQ(identification.size(), 211u);
    EXPECT_EQ(identification.at(0), 0x28);
    EXPECT_EQ(textOf(identification, 1, 16), "PL12345      a1Z");
    EXPECT_EQ(readU32(identification, 53), readU32(identification, 57));
    // ISO 8859-2.
    EXPECT_EQ(toHex(slice(identification, 65, 6)), "02 A3 F3 64 BC 20");
    EXPECT_EQ(textOf(identification, 71, 30), "Service" + std::string(23, ' '));
    EXPECT_EQ(textOf(identification, 102, 7), "ul. D\xB3u");
    EXPECT_EQ(textOf(identification, 138, 35), "W\xF3jcik" + std::string(29, ' '));
    EXPECT_EQ(toHex(slice(identification, 173, 1)), "02");
    EXPECT_EQ(textOf(identification, 174, 35), std::string(35, ' '));
    EXPECT_EQ(textOf(identification, 209, 2), "pl");
}

TEST(WorkshopIdentification, isInventedWhereNothingIsAskedFor)
{
    for (const std::uint8_t nation : {std::uint8_t{0x0D}, std::uint8_t{0x17}, std::uint8_t{0x39}}) {
        WorkshopParameters parameters;
        parameters.nation = nation;
        parameters.codePage = nation == 0x17 ? 7 : 1;
        const Bytes identification = makeWorkshopContents(parameters).identification;
        for (const std::size_t offset : {17u, 65u, 101u, 137u, 173u}) {
            EXPECT_EQ(identification.at(offset), parameters.codePage);
            EXPECT_NE(slice(identification, offset + 1, 35), Bytes(35, 0x20));
        }
        EXPECT_EQ(textOf(identification, 14, 3), "000");
    }
}

TEST(WorkshopCounts, areThoseOfTheApplicationIdentification)
{
    WorkshopParametersG2 parameters;
    EXPECT_EQ(
        toHex(makeWorkshopContents(parameters.first).applicationIdentification),
        "02 00 00 03 06 01 EC 00 08 08 FF");
    EXPECT_EQ(
        toHex(makeWorkshopContentsG2(parameters).applicationIdentification),
        "02 01 00 03 06 01 EC 00 08 00 08 00 FF 00 18 00 04 00 08");
    parameters.version2 = true;
    parameters.calibrations = 300;
    const WorkshopContentsG2 contents = makeWorkshopContentsG2(parameters);
    EXPECT_EQ(
        toHex(contents.applicationIdentification),
        "02 01 01 03 06 01 EC 00 08 00 08 01 2C 00 18 00 04 00 08");
    EXPECT_EQ(toHex(contents.applicationIdentificationV2), "00 08 00 04 00 08 00 04 0C 00");
    EXPECT_EQ(contents.calibration.size(), 4u + 178 * 300);
    EXPECT_EQ(toHex(contents.cardDownload), "00 07");
}

TEST(WorkshopOfTheFirstGeneration, countsOnlyWhatItKnows)
{
    WorkshopParameters parameters;
    parameters.usedCalibrations = 400;
    const CalibrationFile file = firstGeneration(makeWorkshopContents(parameters).calibration);
    EXPECT_EQ(file.total, 400u);
    EXPECT_EQ(file.newest, 399u % 255);
    const std::vector<Bytes> records = used(file);
    ASSERT_EQ(records.size(), 255u);
    EXPECT_EQ(newTime(records.back()), parameters.lastCalibration);
    std::set<int> purposes;
    for (const Bytes& record : records) {
        purposes.insert(record.at(0));
    }
    EXPECT_EQ(purposes, (std::set<int>{1, 2, 3, 4}));
}

TEST(WorkshopOfTheFirstGeneration, tellsTheSameWhateverItStillKeeps)
{
    WorkshopParameters parameters;
    const std::vector<Bytes> many = used(firstGeneration(makeWorkshopContents(parameters).calibration));
    parameters.usedCalibrations = 12;
    const WorkshopContents contents = makeWorkshopContents(parameters);
    const std::vector<Bytes> few = used(firstGeneration(contents.calibration));
    ASSERT_EQ(few.size(), 12u);
    EXPECT_TRUE(std::equal(few.begin(), few.end(), many.end() - 12));
}

WorkshopParametersG2 ofSeed(std::uint32_t seed)
{
    WorkshopParametersG2 parameters;
    parameters.version2 = true;
    parameters.first.seed = seed;
    return parameters;
}

TEST(WorkshopSeed, givesTheSameBytesEachTime)
{
    EXPECT_EQ(everything(sim::makeWorkshopCardG2(ofSeed(7))), everything(sim::makeWorkshopCardG2(ofSeed(7))));
}

TEST(WorkshopSeed, givesAnotherWorkshopForAnotherNumber)
{
    const WorkshopContentsG2 first = makeWorkshopContentsG2(ofSeed(1));
    const WorkshopContentsG2 second = makeWorkshopContentsG2(ofSeed(2));
    EXPECT_NE(first.first.icc, second.first.icc);
    EXPECT_NE(first.first.ic, second.first.ic);
    EXPECT_NE(first.identification, second.identification);
    EXPECT_NE(first.calibration, second.calibration);
    EXPECT_NE(first.calibrationAddData, second.calibrationAddData);
    EXPECT_NE(first.sensorInstallationData, second.sensorInstallationData);
    EXPECT_NE(first.driverActivityData, second.driverActivityData);
    EXPECT_NE(first.vehiclesUsed, second.vehiclesUsed);
    EXPECT_NE(first.eventsData, second.eventsData);
}

TEST(WorkshopParametersThatNoCardHas, areRefused)
{
    const auto refused = [](const char* what, const std::function<void(WorkshopParametersG2&)>& change) {
        WorkshopParametersG2 parameters = ofSeed(1);
        change(parameters);
        EXPECT_THROW(makeWorkshopContentsG2(parameters), std::invalid_argument) << what;
    };
    const auto refusedByBoth = [&](const char* what, const std::function<void(WorkshopParameters&)>& change) {
        refused(what, [&](WorkshopParametersG2& p) { change(p.first); });
        WorkshopParameters parameters;
        change(parameters);
        EXPECT_THROW(makeWorkshopContents(parameters), std::invalid_argument) << what;
    };
    refusedByBoth("no events", [](WorkshopParameters& p) { p.eventsPerType = 0; });
    refusedByBoth("no faults", [](WorkshopParameters& p) { p.faultsPerType = 0; });
    refusedByBoth("no vehicles", [](WorkshopParameters& p) { p.vehicles = 0; });
    refusedByBoth("no places", [](WorkshopParameters& p) { p.places = 0; });
    refusedByBoth("no room for a day", [](WorkshopParameters& p) { p.activityLength = 20; });
    refusedByBoth("no room at all", [](WorkshopParameters& p) { p.activityLength = 0; });
    refusedByBoth("fewer than none", [](WorkshopParameters& p) { p.usedCalibrations = -1; });
    refusedByBoth("too many to count", [](WorkshopParameters& p) { p.usedCalibrations = 65536; });
    refusedByBoth("a calibration at night", [](WorkshopParameters& p) { p.lastCalibration = 1709596800; });
    refusedByBoth(
        "a calibration in the last century", [](WorkshopParameters& p) { p.lastCalibration = 43200; });
    refusedByBoth("a language in capitals", [](WorkshopParameters& p) { p.language = "DE"; });
    refusedByBoth("a long language", [](WorkshopParameters& p) { p.language = "deu"; });
    refusedByBoth("two indices", [](WorkshopParameters& p) { p.indices = "00"; });
    refusedByBoth("a long owner", [](WorkshopParameters& p) { p.ownerIdentification = "12345678901234"; });
    refusedByBoth("a name of another code page", [](WorkshopParameters& p) { p.workshopName = "Łódź"; });
    refusedByBoth("a long name", [](WorkshopParameters& p) { p.workshopName = std::string(36, 'x'); });
    refusedByBoth("an unknown code page", [](WorkshopParameters& p) { p.codePage = 12; });
    refused("no places", [](WorkshopParametersG2& p) { p.places = 0; });
    refused("no GNSS places", [](WorkshopParametersG2& p) { p.gnssPlaces = 0; });
    refused("no conditions", [](WorkshopParametersG2& p) { p.specificConditions = 0; });
    refused("no vehicle units", [](WorkshopParametersG2& p) { p.vehicleUnits = 0; });
    refused("no crossings", [](WorkshopParametersG2& p) { p.borderCrossings = 0; });
    refused("no operations", [](WorkshopParametersG2& p) { p.loadUnloadOperations = 0; });
    refused("no entries", [](WorkshopParametersG2& p) { p.loadTypeEntries = 0; });
    refused("too many calibrations", [](WorkshopParametersG2& p) { p.calibrations = 369; });
}

} // namespace
