#pragma once

#include "DownloadScript.h"

// The download of a driver card.

namespace test {

/// The driver cards that the tests use, generated once.
const sim::CardDescription& driverCard();
const sim::CardDescription& driverCardG2();
const sim::CardDescription& driverCardV2(); ///< second generation, version 2.2

/// The record counts that decide how long a download is.
struct DriverCounts
{
    unsigned int events = 12;
    unsigned int faults = 24;
    unsigned int activityLength = 13776;
    unsigned int vehicles = 200;
    unsigned int places = 112;
};

/// The same for a second-generation application.
struct DriverCountsG2
{
    unsigned int events = 12;
    unsigned int faults = 24;
    unsigned int activityLength = 13776;
    unsigned int vehicles = 200;
    unsigned int places = 112;
    unsigned int gnssPlaces = 336;
    unsigned int specificConditions = 112;
    unsigned int vehicleUnits = 200;
    unsigned int certificateLength = 204; ///< of each of the four

    bool version2 = false;
    unsigned int borderCrossings = 1120;
    unsigned int loadUnloadOperations = 1624;
    unsigned int loadTypeEntries = 336;
};

std::vector<Step> expectedDriverSteps(const DriverCounts& counts = {});

/// Of a second-generation card, which holds a first-generation application beside its own.
std::vector<Step> expectedDriverStepsG2(const DriverCountsG2& counts, const DriverCounts& first = {});

/// The whole error of a download that ends at @p step because of @p cause.
Chain expectedDriverChain(const Step& step, const Entry& cause);
Chain expectedDriverChainG2(const Step& step, const Entry& cause);

/// The image of @p card, its records in order, the signatures made with the card's keys.
sim::Bytes expectedDriverImage(const sim::CardDescription& card);

/// The same of a second-generation card whose first application could be read up to the EF @p firstNotRead;
/// 0 for the whole. EFs that are read later than that one are missing, too.
sim::Bytes expectedDriverImageG2(const sim::CardDescription& card, unsigned int firstNotRead = 0);

} // namespace test
