#pragma once

#include <scard/records/BigEndian.h>

/// @file
/// Text fields of the tachograph data dictionary (Annex 1C, Appendix 1): one byte that names the part of
/// ISO/IEC 8859 (1 to 16), then a fixed number of characters, filled up with blanks.
/// SCardGeneric::textfieldToString() decodes them.

namespace scard {

/// A name of up to 35 characters (Name).
struct Name
{
    unsigned char codePage; ///< part of ISO/IEC 8859; 0 in a field that was never written
    unsigned char name[35]; ///< filled with blanks
};
static_assert(sizeof(Name) == 36);

/// An address of up to 35 characters (Address).
struct Address
{
    unsigned char codePage;    ///< part of ISO/IEC 8859; 0 in a field that was never written
    unsigned char address[35]; ///< filled with blanks
};
static_assert(sizeof(Address) == 36);

/// A registration number of up to 13 characters (VehicleRegistrationNumber).
struct VehicleRegistrationNumber
{
    unsigned char codePage;             ///< part of ISO/IEC 8859; 0 in a field that was never written
    unsigned char vehicleRegNumber[13]; ///< filled with blanks
};
static_assert(sizeof(VehicleRegistrationNumber) == 14);

/// A vehicle by its registration (VehicleRegistrationIdentification).
struct VehicleRegistrationIdentification
{
    unsigned char vehicleRegistrationNation;             ///< NationNumeric
    VehicleRegistrationNumber vehicleRegistrationNumber; ///< as on the plate
};
static_assert(sizeof(VehicleRegistrationIdentification) == 15);

} // namespace scard
