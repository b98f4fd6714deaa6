#pragma once

#include "Image.h"
#include "RecordBytes.h"

#include <scard/records/DriverCard.h>

// A small driver card of the first generation, as a download image.

namespace test {

// Counts of the small card.
constexpr unsigned char smallCardEvents = 2;
constexpr unsigned char smallCardFaults = 1;
constexpr unsigned char smallCardActivityBytes = 20;
constexpr unsigned char smallCardVehicles = 2;
constexpr unsigned char smallCardPlaces = 3;

/// Johannes Mustermann, German, card df000000123456 with the indices 0 and 1.
scard::DriverCard_EF_Identification johannes();

/// EF_Application_Identification with these counts.
Bytes driverApplication(
    unsigned int events, unsigned int faults, unsigned int activityBytes, unsigned int vehicles,
    unsigned int places);

/// Every record of the small card in the order in which downloads are written; @p seconds is the time
/// in EF_Card_Download.
Image smallDriverImage(
    const scard::DriverCard_EF_Identification& identification = johannes(),
    unsigned int seconds = 0x65E66080);

} // namespace test
