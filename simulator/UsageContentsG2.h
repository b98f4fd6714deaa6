// EFs that a card has because it is used in vehicles: those of driver and workshop cards, second generation.
#pragma once

#include "DriverJourney.h"
#include "UsageContents.h"

namespace sim {

/// The counts of the base are those of the second generation here.
struct UsageParametersG2 : UsageParameters
{
    bool version2 = false;
    std::size_t gnssPlaces = 0;
    std::size_t vehicleUnits = 0;
    std::size_t borderCrossings = 0;
    std::size_t loadUnloadOperations = 0;
    std::size_t loadTypeEntries = 0;
};

/// `first` with the counts of the second generation, which are named alike on driver and workshop cards.
template <typename CardParameters>
UsageParametersG2 usageParametersG2(const UsageParameters& first, const CardParameters& card)
{
    UsageParametersG2 usage;
    static_cast<UsageParameters&>(usage) = first;
    usage.eventsPerType = card.eventsPerType;
    usage.faultsPerType = card.faultsPerType;
    usage.activityLength = card.activityLength;
    usage.vehicles = card.vehicles;
    usage.places = card.places;
    usage.specificConditions = card.specificConditions;
    usage.version2 = card.version2;
    usage.gnssPlaces = card.gnssPlaces;
    usage.vehicleUnits = card.vehicleUnits;
    usage.borderCrossings = card.borderCrossings;
    usage.loadUnloadOperations = card.loadUnloadOperations;
    usage.loadTypeEntries = card.loadTypeEntries;
    return usage;
}

/// One member for each EF, exactly as stored; one that the card does not have is empty.
struct UsageContentsG2 : UsageContents
{
    Bytes vehicleUnitsUsed;
    Bytes gnssPlaces;

    // Version 2.
    Bytes placesAuthentication;
    Bytes gnssPlacesAuthentication;
    Bytes borderCrossings;
    Bytes loadUnloadOperations;
    Bytes loadTypeEntries;
};

void addUsageFilesG2(std::vector<FileDescription>& to, const UsageContentsG2& contents);

/// Throws as makeUsageContents() does.
UsageContentsG2 makeUsageContentsG2(
    const UsageParametersG2& parameters, const UsageStory& story, const DriverJourney& journey);

} // namespace sim
