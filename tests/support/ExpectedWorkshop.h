#pragma once

#include "DownloadScript.h"

// The download of a workshop card.

namespace test {

/// The record counts that decide how long a download is.
struct WorkshopCounts
{
    unsigned int events = 3;
    unsigned int faults = 6;
    unsigned int activityLength = 492;
    unsigned int vehicles = 8;
    unsigned int places = 8;
    unsigned int calibrations = 255;
};

/// The same for a second-generation application.
struct WorkshopCountsG2 : WorkshopCounts
{
    unsigned int gnssPlaces = 24;
    unsigned int specificConditions = 4;
    unsigned int vehicleUnits = 8;
    unsigned int certificateLength = 204; ///< of each of the four

    bool version2 = false;
    unsigned int borderCrossings = 4;
    unsigned int loadUnloadOperations = 8;
    unsigned int loadTypeEntries = 4;
};

/// Cards of these counts.
sim::CardDescription workshopCard(const WorkshopCounts& counts = {});
sim::CardDescription workshopCardG2(const WorkshopCountsG2& counts, const WorkshopCounts& first = {});

std::vector<Step> expectedWorkshopSteps(const WorkshopCounts& counts = {});

/// Of a second-generation card, which holds a first-generation application beside its own.
std::vector<Step> expectedWorkshopStepsG2(const WorkshopCountsG2& counts, const WorkshopCounts& first = {});

/// The whole error of a download that ends at @p step because of @p cause.
Chain expectedWorkshopChain(const Step& step, const Entry& cause);
Chain expectedWorkshopChainG2(const Step& step, const Entry& cause);

/// The image of @p card, its records in order, the signatures made with the card's keys; of the first
/// application as much as was read before the EF @p firstNotRead, 0 for the whole.
sim::Bytes expectedWorkshopImage(const sim::CardDescription& card, unsigned int firstNotRead = 0);
sim::Bytes expectedWorkshopImageG2(const sim::CardDescription& card, unsigned int firstNotRead = 0);

} // namespace test
