#pragma once

#include "DriverImage.h"
#include "Image.h"

#include <scard/records/DriverCard.h>

// A small driver card of the second generation, as a download image: the first-generation application of
// the small driver card, then the second one with counts and a holder of its own.

namespace test {

// Counts of the second application.
constexpr unsigned char smallG2Events = 3;
constexpr unsigned char smallG2Faults = 2;
constexpr unsigned char smallG2ActivityBytes = 40;
constexpr unsigned char smallG2Vehicles = 3;
constexpr unsigned char smallG2Places = 4;
constexpr unsigned char smallG2GnssPlaces = 5;
constexpr unsigned char smallG2Conditions = 6;
constexpr unsigned char smallG2VehicleUnits = 2;
constexpr unsigned char smallG2Crossings = 3;
constexpr unsigned char smallG2Loads = 2;
constexpr unsigned char smallG2LoadTypes = 4;

/// Johanna Musterfrau, French, card fr000000654321.
scard::DriverCard_EF_Identification johanna();

/// EF_Application_Identification of the second application with these activity bytes.
Bytes driverApplicationG2(Version version, unsigned int activityBytes = smallG2ActivityBytes);

/// Every record of the second application in the order in which downloads are written.
Image secondApplication(Version version, unsigned int seconds = 0x66000000);

/// Both applications.
Image smallDriverImageG2(Version version);

} // namespace test
