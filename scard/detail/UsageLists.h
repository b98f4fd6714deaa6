#pragma once

#include <scard/detail/Bytes.h>
#include <scard/SCardDriverG1.h>
#include <scard/SCardDriverG2.h>

#include <vector>

// Vehicles, events and faults from an EF's bytes, in the card's order; slots that were never used are left
// out. Events and faults have the same records in both generations, one group behind the other.

namespace scard::detail {

std::vector<SCardDriverG1::_VEHICLE_USAGE_INFO> usedVehiclesG1(const Bytes& ef);
std::vector<SCardDriverG2::_VEHICLE_USAGE_INFO_G2> usedVehiclesG2(const Bytes& ef);
std::vector<SCardDriverG1::_EVENT> events(const Bytes& ef);
std::vector<SCardDriverG1::_FAULT> faults(const Bytes& ef);

} // namespace scard::detail
