#pragma once

#include "Image.h"
#include "RecordBytes.h"

#include <scard/records/WorkshopCard.h>

// A small workshop card as a download image: the first-generation application, and for a card of the second
// generation a second one with counts and a holder of its own.

namespace test {

// Counts of the first application.
constexpr unsigned char smallWorkshopEvents = 2;
constexpr unsigned char smallWorkshopFaults = 1;
constexpr unsigned char smallWorkshopActivityBytes = 20;
constexpr unsigned char smallWorkshopVehicles = 2;
constexpr unsigned char smallWorkshopPlaces = 3;
constexpr unsigned char smallWorkshopCalibrations = 2;

// Counts of the second application.
constexpr unsigned char smallWorkshopEventsG2 = 3;
constexpr unsigned char smallWorkshopFaultsG2 = 2;
constexpr unsigned char smallWorkshopActivityBytesG2 = 40;
constexpr unsigned char smallWorkshopVehiclesG2 = 3;
constexpr unsigned char smallWorkshopPlacesG2 = 4;
constexpr unsigned char smallWorkshopCalibrationsG2 = 3;
constexpr unsigned char smallWorkshopGnssPlaces = 5;
constexpr unsigned char smallWorkshopConditions = 6;
constexpr unsigned char smallWorkshopVehicleUnits = 2;
constexpr unsigned char smallWorkshopCrossings = 3;
constexpr unsigned char smallWorkshopLoads = 2;
constexpr unsigned char smallWorkshopLoadTypes = 4;

/// Petra Musterfrau of a German workshop, card dw00000001234 with the indices 2, 0 and 1.
scard::WorkshopCard_EF_Identification petra();

/// Pierre Exemple of a French workshop, card fw00000004321 with the indices 0, 0 and 0.
scard::WorkshopCard_EF_Identification pierre();

/// EF_Application_Identification of the first application with these counts.
Bytes workshopApplication(
    std::uint32_t events, std::uint32_t faults, std::uint32_t activityBytes, std::uint32_t vehicles,
    std::uint32_t places, std::uint32_t calibrations);

/// EF_Application_Identification of the second application of the small card.
Bytes workshopApplicationG2(Version version);

/// Every record of the first application in the order in which downloads are written.
Image smallWorkshopImage(const scard::WorkshopCard_EF_Identification& identification = petra());

/// Every record of the second application in the order in which downloads are written.
Image secondWorkshopApplication(Version version);

/// Both applications.
Image smallWorkshopImageG2(Version version);

} // namespace test
