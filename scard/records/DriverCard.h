#pragma once

#include <scard/records/BigEndian.h>
#include <scard/records/Identification.h>
#include <scard/records/TextFields.h>

// Records of driver cards (Annex 1C, Appendix 1 and 2), as the card's bytes.

namespace scard {

/// EF_Application_Identification (0501) of the first generation: how many records the card holds.
struct DriverCardApplicationIdentification_g1
{
    unsigned char typeOfTachographCardId;
    unsigned char cardStructureVersion[2];
    unsigned char noOfEventsPerType;
    unsigned char noOfFaultsPerType;
    UInt16 activityStructureLength; ///< bytes of the cyclic activity buffer
    UInt16 noOfCardVehicleRecords;
    unsigned char noOfCardPlaceRecords;
};
static_assert(sizeof(DriverCardApplicationIdentification_g1) == 10);

struct DriverCardNumber
{
    unsigned char driverIdentification[14];
    unsigned char cardReplacementIndex;
    unsigned char cardRenewalIndex;
};
static_assert(sizeof(DriverCardNumber) == 16);

/// EF_Identification (0520): the card (65 bytes) and its holder (78 bytes).
struct DriverCard_EF_Identification
{
    unsigned char cardIssuingMemberState; ///< NationNumeric
    DriverCardNumber cardNumber;
    Name cardIssuingAuthorityName;
    TimeReal cardIssueDate;
    TimeReal cardValidityBegin;
    TimeReal cardExpiryDate;
    Name holderSurname;
    Name holderFirstNames;
    unsigned char cardHolderBirthDate[4]; ///< BCD, yyyymmdd
    unsigned char cardHolderPreferredLanguage[2];
};
static_assert(sizeof(DriverCard_EF_Identification) == 143);

struct CardDrivingLicenceInformation
{
    Name drivingLicenceIssuingAuthority;
    unsigned char drivingLicenceIssuingNation; ///< NationNumeric
    unsigned char drivingLicenceNumber[16];
};
static_assert(sizeof(CardDrivingLicenceInformation) == 53);

struct CardEventRecord
{
    unsigned char eventType; ///< 0 in an empty slot
    TimeReal beginTime;
    TimeReal endTime;
    VehicleRegistrationIdentification vehicleRegistration;
};
static_assert(sizeof(CardEventRecord) == 24);

struct CardFaultRecord
{
    unsigned char faultType; ///< 0 in an empty slot
    TimeReal beginTime;
    TimeReal endTime;
    VehicleRegistrationIdentification vehicleRegistration;
};
static_assert(sizeof(CardFaultRecord) == 24);

struct CardVehicleRecord_g1
{
    OdometerShort vehicleOdometerBegin;
    OdometerShort vehicleOdometerEnd;
    TimeReal vehicleFirstUse;
    TimeReal vehicleLastUse; ///< 0 in an empty slot
    VehicleRegistrationIdentification vehicleRegistration;
    unsigned char vuDataBlockCounter[2]; ///< BCD
};
static_assert(sizeof(CardVehicleRecord_g1) == 31);

struct PlaceRecord_g1
{
    TimeReal entryTime;
    unsigned char entryTypeDailyWorkPeriod;
    unsigned char dailyWorkPeriodCountry; ///< NationNumeric
    unsigned char dailyWorkPeriodRegion;
    OdometerShort vehicleOdometerValue;
};
static_assert(sizeof(PlaceRecord_g1) == 10);

struct CardCurrentUse
{
    TimeReal sessionOpenTime;
    VehicleRegistrationIdentification sessionOpenVehicle;
};
static_assert(sizeof(CardCurrentUse) == 19);

struct CardControlActivityDataRecord
{
    unsigned char controlType;
    TimeReal controlTime;
    FullCardNumber controlCardNumber;
    VehicleRegistrationIdentification controlVehicleRegistration;
    TimeReal controlDownloadPeriodBegin;
    TimeReal controlDownloadPeriodEnd;
};
static_assert(sizeof(CardControlActivityDataRecord) == 46);

struct SpecificConditionRecord
{
    TimeReal entryTime;
    unsigned char specificConditionType;
};
static_assert(sizeof(SpecificConditionRecord) == 5);

// Records that only second-generation applications have.

/// EF_Application_Identification (0501) of the second generation.
struct DriverCardApplicationIdentification_g2
{
    unsigned char typeOfTachographCardId;
    unsigned char cardStructureVersion[2];
    unsigned char noOfEventsPerType;
    unsigned char noOfFaultsPerType;
    UInt16 activityStructureLength; ///< bytes of the cyclic activity buffer
    UInt16 noOfCardVehicleRecords;
    UInt16 noOfCardPlaceRecords;
    UInt16 noOfGNSSADRecords;
    UInt16 noOfSpecificConditionRecords;
    UInt16 noOfCardVehicleUnitRecords;
};
static_assert(sizeof(DriverCardApplicationIdentification_g2) == 17);

/// EF_Application_Identification_V2 (0525), on cards of version 2.2.
struct DriverCardApplicationIdentification_g2_2
{
    UInt16 lengthOfFollowingData;
    UInt16 noOfBorderCrossingRecords;
    UInt16 noOfLoadUnloadRecords;
    UInt16 noOfLoadTypeEntryRecords;
    UInt16 vuConfigurationLengthRange;
};
static_assert(sizeof(DriverCardApplicationIdentification_g2_2) == 10);

struct CardVehicleRecord_g2
{
    OdometerShort vehicleOdometerBegin;
    OdometerShort vehicleOdometerEnd;
    TimeReal vehicleFirstUse;
    TimeReal vehicleLastUse; ///< 0 in an empty slot
    VehicleRegistrationIdentification vehicleRegistration;
    unsigned char vuDataBlockCounter[2]; ///< BCD
    unsigned char vehicleIdentificationNumber[17];
};
static_assert(sizeof(CardVehicleRecord_g2) == 48);

struct GNSSPlaceRecord
{
    TimeReal timeStamp;
    unsigned char gnssAccuracy; ///< dilution of precision x 10; FF when not known
    unsigned char latitude[3];  ///< signed, degrees and minutes: DDMM.M x 10; 7FFFFF when not known
    unsigned char longitude[3]; ///< signed, DDDMM.M x 10; 7FFFFF when not known
};
static_assert(sizeof(GNSSPlaceRecord) == 11);

struct GNSSPlaceAuthRecord
{
    GNSSPlaceRecord gnssPlaceRecord;
    unsigned char authenticationStatus; ///< 0 not authenticated, 1 authenticated
};
static_assert(sizeof(GNSSPlaceAuthRecord) == 12);

struct PlaceRecord_g2
{
    TimeReal entryTime;
    unsigned char entryTypeDailyWorkPeriod;
    unsigned char dailyWorkPeriodCountry; ///< NationNumeric
    unsigned char dailyWorkPeriodRegion;
    OdometerShort vehicleOdometerValue;
    GNSSPlaceRecord entryGNSSPlaceRecord;
};
static_assert(sizeof(PlaceRecord_g2) == 21);

struct CardVehicleUnitsRecord_g2
{
    TimeReal timeStamp;
    unsigned char manufacturerCode;
    unsigned char deviceID;
    unsigned char vuSoftwareVersion[4]; ///< IA5 characters
};
static_assert(sizeof(CardVehicleUnitsRecord_g2) == 10);

struct GNSSContinousDrivingRecord_g2
{
    TimeReal timeStamp;
    GNSSPlaceRecord gnssPlaceRecord;
    OdometerShort vehicleOdometerValue;
};
static_assert(sizeof(GNSSContinousDrivingRecord_g2) == 18);

struct PlaceAuthStatusRecord_g2_2
{
    TimeReal entryTime; ///< that of the place it belongs to
    unsigned char authenticationStatus;
};
static_assert(sizeof(PlaceAuthStatusRecord_g2_2) == 5);

struct GNSSAuthStatusADRecord_g2_2
{
    TimeReal timeStamp; ///< that of the place it belongs to
    unsigned char authenticationStatus;
};
static_assert(sizeof(GNSSAuthStatusADRecord_g2_2) == 5);

struct CardBorderCrossingRecord_g2_2
{
    unsigned char countryLeft;    ///< NationNumeric
    unsigned char countryEntered; ///< NationNumeric
    GNSSPlaceAuthRecord gnssPlaceAuthRecord;
    OdometerShort vehicleOdometerValue;
};
static_assert(sizeof(CardBorderCrossingRecord_g2_2) == 17);

struct CardLoadUnloadRecord_g2_2
{
    TimeReal timeStamp;
    unsigned char operationType; ///< 1 load, 2 unload, 3 both
    GNSSPlaceAuthRecord gnssPlaceAuthRecord;
    OdometerShort vehicleOdometerValue;
};
static_assert(sizeof(CardLoadUnloadRecord_g2_2) == 20);

struct CardLoadTypeEntryRecord_g2_2
{
    TimeReal timeStamp;
    unsigned char loadTypeEntered; ///< 0 undefined, 1 goods, 2 passengers
};
static_assert(sizeof(CardLoadTypeEntryRecord_g2_2) == 5);

} // namespace scard
