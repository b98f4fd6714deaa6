#pragma once

#include <scard/records/BigEndian.h>
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

struct FullCardNumber
{
    unsigned char cardType;
    unsigned char cardIssuingMemberState; ///< NationNumeric
    unsigned char cardNumber[16];
};
static_assert(sizeof(FullCardNumber) == 18);

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

} // namespace scard
