#pragma once

#include <scard/detail/Bytes.h>
#include <scard/DriverCardValues.h>
#include <scard/records/DriverCard.h>

#include <vector>

// The value types of a driver card from an EF's bytes. Lists come by time; slots that were never used are
// left out, and of an EF that was not read nothing comes.

namespace scard::detail {

std::vector<Place> placesG1(const Bytes& ef);

/// @p authentication: EF_Places_Authentication, whose records carry the time of the place they belong to.
std::vector<Place> placesG2(const Bytes& ef, const Bytes& authentication);

/// Specific conditions stand alone in the first generation, behind a pointer in the second.
std::vector<SpecificCondition> specificConditionsG1(const Bytes& ef);
std::vector<SpecificCondition> specificConditionsG2(const Bytes& ef);

std::vector<VehicleUnit> vehicleUnits(const Bytes& ef);

/// @p authentication: EF_GNSS_Places_Authentication.
std::vector<GnssPlace> gnssPlaces(const Bytes& ef, const Bytes& authentication);

std::vector<BorderCrossing> borderCrossings(const Bytes& ef);
std::vector<LoadUnloadOperation> loadUnloadOperations(const Bytes& ef);
std::vector<LoadTypeEntry> loadTypeEntries(const Bytes& ef);

CurrentUse currentUse(const CardCurrentUse& record);
ControlActivity controlActivity(const CardControlActivityDataRecord& record);
DrivingLicence drivingLicence(const CardDrivingLicenceInformation& record);

} // namespace scard::detail
