#pragma once

#include <scard/records/BigEndian.h>

// Text fields of the tachograph data dictionary (Annex 1C, Appendix 1): one byte that names the part
// of ISO/IEC 8859 (1 to 16), then a fixed number of characters, filled up with blanks.

namespace scard {

struct Name
{
    unsigned char codePage;
    unsigned char name[35];
};
static_assert(sizeof(Name) == 36);

struct Address
{
    unsigned char codePage;
    unsigned char address[35];
};
static_assert(sizeof(Address) == 36);

struct VehicleRegistrationNumber
{
    unsigned char codePage;
    unsigned char vehicleRegNumber[13];
};
static_assert(sizeof(VehicleRegistrationNumber) == 14);

struct VehicleRegistrationIdentification
{
    unsigned char vehicleRegistrationNation; ///< NationNumeric
    VehicleRegistrationNumber vehicleRegistrationNumber;
};
static_assert(sizeof(VehicleRegistrationIdentification) == 15);

} // namespace scard
