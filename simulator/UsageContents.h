// EFs that a card has because it is used in vehicles: those of driver and workshop cards, first generation.
#pragma once

#include "CommonContents.h"
#include "DriverLife.h"

namespace sim {

/// An event or fault.
struct Incident
{
    std::uint8_t code = 0;
    std::uint32_t begin = 0;
    std::uint32_t end = 0;
    std::size_t vehicle = 0;
};

/// Ascending in time within each group.
using IncidentGroups = std::vector<std::vector<Incident>>;

struct IncidentKind
{
    std::vector<std::uint8_t> codes;
    int fewest;
    int most;
    /// Longest duration in seconds.
    int longest;
    bool atInsertion = false;
};

/// A group for each kind.
IncidentGroups makeIncidents(const std::vector<IncidentKind>& kinds, const DriverLife& life, Random& random);
void mergeIncidents(std::vector<Incident>& into, const std::vector<Incident>& others);

/// What happened with the card in a slot.
struct UsageStory
{
    DriverLife life;
    /// As the first generation groups them and with its codes only.
    IncidentGroups events;
    IncidentGroups faults;
};

/// Adds events and faults to a life, which has at least one use of a vehicle.
UsageStory tellUsage(std::uint32_t seed, DriverLife life);

struct UsageParameters
{
    std::uint32_t seed = 1;
    std::uint8_t nation = 0;
    int codePage = 1;
    std::size_t eventsPerType = 0;
    std::size_t faultsPerType = 0;
    std::size_t activityLength = 0;
    std::size_t vehicles = 0;
    std::size_t places = 0;
    std::size_t specificConditions = 0;
    /// Where in the activity buffer the oldest day starts; -1: so that the chain of days runs over its end.
    int wrapPosition = -1;
};

/// From the parameters of a driver or workshop card, which name these alike.
template <typename CardParameters>
UsageParameters usageParameters(const CardParameters& card, std::size_t specificConditions)
{
    UsageParameters usage;
    usage.seed = card.seed;
    usage.nation = card.nation;
    usage.codePage = card.codePage;
    usage.eventsPerType = card.eventsPerType;
    usage.faultsPerType = card.faultsPerType;
    usage.activityLength = card.activityLength;
    usage.vehicles = card.vehicles;
    usage.places = card.places;
    usage.specificConditions = specificConditions;
    return usage;
}

/// One member for each EF, exactly as stored.
struct UsageContents
{
    Bytes eventsData;
    Bytes faultsData;
    Bytes driverActivityData;
    Bytes vehiclesUsed;
    Bytes places;
    Bytes currentUsage;
    Bytes controlActivityData;
    Bytes specificConditions;
};

void addUsageFiles(std::vector<FileDescription>& to, const UsageContents& contents);

/// Throws std::invalid_argument for a count of 0, a buffer too small for one day, a wrap position outside it.
UsageContents makeUsageContents(const UsageParameters& parameters, const UsageStory& story);

// The same in either generation.

/// SpecificConditionRecord
constexpr std::size_t ConditionRecordLength = 5;

/// Throws std::invalid_argument for a count of 0 and a wrap position outside the buffer.
void check(const UsageParameters& parameters);
/// EF_Events_Data or EF_Faults_Data.
Bytes makeIncidentFile(
    const IncidentGroups& groups, std::size_t perGroup, const std::vector<Vehicle>& fleet, int codePage);
/// EF_Driver_Activity_Data.
Bytes makeActivity(const UsageParameters& parameters, const std::vector<Day>& days);
/// EF_Current_Usage, empty: the card lies in a reader, not in a vehicle unit.
Bytes makeCurrentUsage();
Bytes makeControlActivity(const UsageParameters& parameters, const DriverLife& life);

} // namespace sim
