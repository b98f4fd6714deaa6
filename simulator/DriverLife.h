// The working life behind a driver card: days on the road, vehicles, places. Told in the card's terms but not
// yet in its bytes, so that all EFs are written from one story and agree with each other.
#pragma once

#include "Random.h"

namespace sim {

/// Bits of ActivityChangeInfo (Annex 1B, Appendix 1): slot, crew or known, not inserted, activity, minute.
namespace activity {
constexpr std::uint16_t CoDriverSlot = 0x8000;
/// Card inserted: driving as a crew. Card not inserted: the activity is known (entered by hand).
constexpr std::uint16_t CrewOrKnown = 0x4000;
constexpr std::uint16_t NotInserted = 0x2000;
constexpr std::uint16_t Rest = 0x0000;
constexpr std::uint16_t Available = 0x0800;
constexpr std::uint16_t Work = 0x1000;
constexpr std::uint16_t Driving = 0x1800;
constexpr std::uint16_t ActivityMask = 0x1800;
constexpr std::uint16_t MinuteMask = 0x07FF;
} // namespace activity

struct Vehicle
{
    std::uint8_t nation = 0;
    std::string plate;
    /// km
    std::uint32_t odometer = 0;
    /// Insertions and withdrawals of cards the vehicle unit has counted, 0..9999.
    int blockCounter = 0;
    /// 00:00 of the driver's last day with it, 0 = never.
    std::uint32_t lastDay = 0;
};

/// A period of use of a vehicle on one day.
struct VehicleUse
{
    std::uint32_t begin = 0;
    std::uint32_t end = 0;
    std::uint32_t odometerBegin = 0;
    std::uint32_t odometerEnd = 0;
    std::size_t vehicle = 0;
    int blockCounter = 0;
};

/// EntryTypeDailyWorkPeriod
enum class PlaceEntry : std::uint8_t
{
    Begin = 0,
    End = 1,
    BeginByHand = 2,
    EndByHand = 3
};

struct Place
{
    std::uint32_t time = 0;
    PlaceEntry entry = PlaceEntry::Begin;
    std::uint8_t nation = 0;
    std::uint8_t region = 0;
    std::uint32_t odometer = 0;
};

/// SpecificConditionType
enum class Condition : std::uint8_t
{
    OutOfScopeBegin = 1,
    OutOfScopeEnd = 2,
    /// In the second generation only the beginning.
    FerryOrTrain = 3,
    /// Second generation only.
    FerryOrTrainEnd = 4
};

struct SpecificCondition
{
    std::uint32_t time = 0;
    Condition condition = Condition::FerryOrTrain;
};

/// The vehicle moves with the card inserted.
struct Stretch
{
    std::uint32_t begin = 0;
    std::uint32_t end = 0;
    std::uint32_t odometerBegin = 0;
    std::uint32_t odometerEnd = 0;
    /// The card's driver drives; false: the other one of a crew does.
    bool atWheel = true;
};

/// Work beside the standing vehicle, at a customer's or the depot.
struct Stop
{
    std::uint32_t begin = 0;
    std::uint32_t end = 0;
    std::uint32_t odometer = 0;
};

struct Day
{
    /// 00:00 UTC
    std::uint32_t date = 0;
    /// Days with the card inserted, 0..9999.
    int presence = 0;
    /// km
    std::uint32_t distance = 0;
    /// ActivityChangeInfo, ascending; the first is the status at 00:00.
    std::vector<std::uint16_t> words;
};

/// Everything in ascending order of time.
struct DriverLife
{
    std::vector<Day> days;
    std::vector<VehicleUse> uses;
    std::vector<Place> places;
    std::vector<SpecificCondition> conditions;
    std::vector<Stretch> stretches;
    std::vector<Stop> stops;
    std::vector<Vehicle> fleet;
};

/// '@' in the pattern becomes a letter, '#' a digit.
std::string makePlate(const std::string& pattern, Random& random);
/// RegionNumeric; 00 where the nation has none.
std::uint8_t makeRegion(std::uint8_t nation, Random& random);

/// `days` calendar days up to `lastDay`, which is worked and ends with the card withdrawn.
DriverLife makeDriverLife(std::uint32_t seed, std::uint8_t nation, std::uint32_t lastDay, int days);

} // namespace sim
