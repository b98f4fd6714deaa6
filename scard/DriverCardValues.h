#pragma once

#include <scard/Nation.h>

#include <QDateTime>
#include <QString>

#include <cstdint>
#include <optional>

/// @file
/// What the records of a driver card say, as values for the host. Times are local; a null QDateTime stands
/// for a time that the card does not know (stored as 0 or FFFFFFFF). Codes are those of the tachograph data
/// dictionary (Annex 1C, Appendix 1).

namespace scard {

/// A position by satellite navigation (GNSSPlaceRecord). Without one every field is empty.
struct GnssPosition
{
    QDateTime time;                          ///< when it was taken; null when there is none
    std::optional<int> accuracy;             ///< dilution of precision × 10
    std::optional<double> latitude;          ///< degrees, north of the equator positive
    std::optional<double> longitude;         ///< degrees, east of Greenwich positive
    std::optional<int> authenticationStatus; ///< 0 not authenticated, 1 authenticated; version 2.2 only
};

/// Where a daily work period began or ended (PlaceRecord).
struct Place
{
    QDateTime time;             ///< of the entry
    int entryType = 0;          ///< EntryTypeDailyWorkPeriod: even numbers begin a period, odd ones end it
    Nation nation;              ///< the country
    int region = 0;             ///< RegionNumeric, of Spain only
    std::uint32_t odometer = 0; ///< km
    GnssPosition position;      ///< empty in the first generation
};

/// A condition under which other rules hold, from this time on (SpecificConditionRecord).
struct SpecificCondition
{
    QDateTime time; ///< of the entry
    int type = 0;   ///< 1 and 2 out of scope begins and ends, 3 and 4 ferry or train begins and ends
};

/// A vehicle unit that the card was in (CardVehicleUnitRecord).
struct VehicleUnit
{
    QDateTime time;           ///< first insertion of the period of use
    int manufacturerCode = 0; ///< of the vehicle unit's maker
    int deviceId = 0;         ///< the maker's type of the vehicle unit
    QString softwareVersion;  ///< trimmed
};

/// Where the driver was when the accumulated driving reached a multiple of three hours
/// (GNSSAccumulatedDrivingRecord).
struct GnssPlace
{
    QDateTime time;             ///< when it did
    GnssPosition position;      ///< where
    std::uint32_t odometer = 0; ///< km
};

/// The vehicle went from one country into another (CardBorderCrossingRecord).
struct BorderCrossing
{
    Nation left;                ///< 0 when the card was put in in another country than it was withdrawn in
    Nation entered;             ///< 255 (WLD) when it cannot be told
    GnssPosition position;      ///< its time is that of the crossing
    std::uint32_t odometer = 0; ///< km
};

/// Goods were loaded or unloaded (CardLoadUnloadRecord).
struct LoadUnloadOperation
{
    QDateTime time;             ///< of the operation
    int operation = 0;          ///< 1 load, 2 unload, 3 both
    GnssPosition position;      ///< where
    std::uint32_t odometer = 0; ///< km
};

/// What the vehicle carries from this time on (CardLoadTypeEntryRecord).
struct LoadTypeEntry
{
    QDateTime time;   ///< of the entry
    int loadType = 0; ///< 0 undefined, 1 goods, 2 passengers
};

/// The vehicle that the card was in when it was read (CardCurrentUse).
struct CurrentUse
{
    QDateTime begin;      ///< when it was put in; null when it was in none
    Nation nation;        ///< where the vehicle is registered
    QString registration; ///< trimmed
};

/// The last control of the driver (CardControlActivityDataRecord).
struct ControlActivity
{
    int controlType = 0;  ///< bits: 0x80 card downloaded, 0x40 vehicle unit downloaded, 0x20 printed,
                          ///< 0x10 displayed, 0x08 calibration checked
    QDateTime time;       ///< null when there was none
    int cardType = 0;     ///< of the control card, scard::SCardMeta::Type
    Nation cardNation;    ///< that issued the control card
    QString cardNumber;   ///< 16 characters, trimmed
    Nation vehicleNation; ///< where the vehicle is registered
    QString registration; ///< trimmed
    QDateTime downloadPeriodBegin; ///< of what the controller downloaded
    QDateTime downloadPeriodEnd;   ///< likewise
};

/// The holder's driving licence (CardDrivingLicenceInformation).
struct DrivingLicence
{
    QString issuingAuthority; ///< trimmed
    Nation issuingNation;     ///< that issued it
    QString number;           ///< trimmed
};

} // namespace scard
