// Where a driver's working life takes place: what a second-generation vehicle unit sees beyond times and
// distances. Drawn from choices of its own, so that it adds to a life without changing it.
#pragma once

#include "DriverLife.h"
#include "Nations.h"

#include <optional>

namespace sim {

/// What the satellites say at a moment.
struct Fix
{
    std::uint32_t time = 0;
    /// Unset: nobody knows.
    std::optional<Position> position;
    /// Dilution of precision in tenths.
    std::uint8_t accuracy = 0;
    /// The signals were authenticated.
    bool authenticated = false;
};

/// Accumulated driving has reached a multiple of three hours.
struct DrivingMark
{
    Fix fix;
    std::uint32_t odometer = 0;
};

struct BorderCrossing
{
    std::uint8_t left = 0;
    std::uint8_t entered = 0;
    Fix fix;
    std::uint32_t odometer = 0;
};

/// OperationType
enum class Handling : std::uint8_t
{
    Load = 1,
    Unload = 2,
    Both = 3
};

struct LoadOperation
{
    Handling handling = Handling::Load;
    Fix fix;
    std::uint32_t odometer = 0;
};

/// LoadType
enum class Load : std::uint8_t
{
    Undefined = 0,
    Goods = 1,
    Passengers = 2
};

struct LoadEntry
{
    std::uint32_t time = 0;
    Load load = Load::Undefined;
};

/// First use of another vehicle unit than before.
struct UnitUse
{
    std::uint32_t time = 0;
    std::size_t vehicle = 0;
};

constexpr std::size_t VinLength = 17;

/// What the fleet's vehicles are known by in the second generation.
struct VehicleIdentity
{
    /// VinLength characters.
    std::string vin;
    std::uint8_t unitManufacturer = 0;
    std::uint8_t unitId = 0;
    /// 4 characters.
    std::string unitSoftware;
};

/// Everything in ascending order of time.
struct DriverJourney
{
    /// One for each place of the life.
    std::vector<Fix> placeFixes;
    std::vector<DrivingMark> marks;
    std::vector<BorderCrossing> crossings;
    std::vector<LoadOperation> operations;
    std::vector<LoadEntry> loads;
    std::vector<UnitUse> units;
    /// One for each vehicle of the life.
    std::vector<VehicleIdentity> vehicles;
};

VehicleIdentity makeVehicleIdentity(Random& random);

/// `nation` is the home of the life.
DriverJourney makeDriverJourney(std::uint32_t seed, std::uint8_t nation, const DriverLife& life);

} // namespace sim
