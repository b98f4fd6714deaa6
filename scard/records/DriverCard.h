#pragma once

#include <scard/records/BigEndian.h>
#include <scard/records/Identification.h>
#include <scard/records/TextFields.h>

/// @file
/// Records of driver cards (Annex 1C, Appendix 1 and 2), as the card's bytes. Workshop cards have the same
/// where they are used in vehicles. Times and numbers are in the card's byte order, see scard::BigEndian.

namespace scard {

/// EF_Application_Identification (0501) of the first generation: how many records the card holds.
struct DriverCardApplicationIdentification_g1
{
    unsigned char typeOfTachographCardId;  ///< EquipmentType: scard::SCardMeta::Type
    unsigned char cardStructureVersion[2]; ///< 00 00 first generation, 01 00 second, 01 01 version 2.2
    unsigned char noOfEventsPerType;       ///< records of each kind of event in EF_EventsData
    unsigned char noOfFaultsPerType;       ///< records of each kind of fault in EF_FaultsData
    UInt16 activityStructureLength;        ///< bytes of the cyclic activity buffer
    UInt16 noOfCardVehicleRecords;         ///< records in EF_Vehicles_Used
    unsigned char noOfCardPlaceRecords;    ///< records in EF_Places
};
static_assert(sizeof(DriverCardApplicationIdentification_g1) == 10);

/// A driver card's number, 16 IA5 characters (CardNumber).
struct DriverCardNumber
{
    unsigned char driverIdentification[14]; ///< IA5 characters, filled with blanks
    unsigned char cardReplacementIndex;     ///< 0 on the first card, then 1 to 9 and A to Z
    unsigned char cardRenewalIndex;         ///< likewise
};
static_assert(sizeof(DriverCardNumber) == 16);

/// EF_Identification (0520): the card (CardIdentification, 65 bytes) and its holder
/// (DriverCardHolderIdentification, 78 bytes).
struct DriverCard_EF_Identification
{
    unsigned char cardIssuingMemberState;         ///< NationNumeric
    DriverCardNumber cardNumber;                  ///< 16 characters
    Name cardIssuingAuthorityName;                ///< who issued the card
    TimeReal cardIssueDate;                       ///< when it was issued
    TimeReal cardValidityBegin;                   ///< first day of validity
    TimeReal cardExpiryDate;                      ///< last day of validity
    Name holderSurname;                           ///< of the driver
    Name holderFirstNames;                        ///< of the driver; may be blank
    unsigned char cardHolderBirthDate[4];         ///< BCD, yyyymmdd
    unsigned char cardHolderPreferredLanguage[2]; ///< two lower-case letters (ISO 639): "de"
};
static_assert(sizeof(DriverCard_EF_Identification) == 143);

/// EF_Driving_License_Info (0521): the holder's driving licence.
struct CardDrivingLicenceInformation
{
    Name drivingLicenceIssuingAuthority;       ///< who issued the licence
    unsigned char drivingLicenceIssuingNation; ///< NationNumeric
    unsigned char drivingLicenceNumber[16];    ///< IA5 characters, filled with blanks
};
static_assert(sizeof(CardDrivingLicenceInformation) == 53);

/// One record of EF_EventsData (0502): six groups in the first generation, eleven in the second, each of
/// noOfEventsPerType records.
struct CardEventRecord
{
    unsigned char eventType;                               ///< EventFaultType; 0 in an empty slot
    TimeReal beginTime;                                    ///< when it began
    TimeReal endTime;                                      ///< when it ended
    VehicleRegistrationIdentification vehicleRegistration; ///< of the vehicle
};
static_assert(sizeof(CardEventRecord) == 24);

/// One record of EF_FaultsData (0503): two groups, recording equipment and card, each of noOfFaultsPerType
/// records.
struct CardFaultRecord
{
    unsigned char faultType;                               ///< EventFaultType; 0 in an empty slot
    TimeReal beginTime;                                    ///< when it began
    TimeReal endTime;                                      ///< when it ended
    VehicleRegistrationIdentification vehicleRegistration; ///< of the vehicle
};
static_assert(sizeof(CardFaultRecord) == 24);

/// One record of EF_Vehicles_Used (0505) of the first generation (CardVehicleRecord): a vehicle on one day,
/// or for a part of it. The EF is cyclic behind a pointer of two bytes.
struct CardVehicleRecord_g1
{
    OdometerShort vehicleOdometerBegin; ///< at the first use
    OdometerShort vehicleOdometerEnd;   ///< at the last use
    TimeReal vehicleFirstUse;           ///< card inserted, or 00:00 of the day
    TimeReal vehicleLastUse;            ///< card withdrawn, or 23:59 of the day; 0 in an empty slot
    VehicleRegistrationIdentification vehicleRegistration; ///< of the vehicle
    unsigned char vuDataBlockCounter[2]; ///< BCD, 0 to 9999: which download of the vehicle unit has this use
};
static_assert(sizeof(CardVehicleRecord_g1) == 31);

/// One record of EF_Places (0506) of the first generation (PlaceRecord). The EF is cyclic behind a pointer of
/// one byte.
struct PlaceRecord_g1
{
    TimeReal entryTime;                     ///< of the entry; 0 in an empty slot
    unsigned char entryTypeDailyWorkPeriod; ///< even begins a period, odd ends one
    unsigned char dailyWorkPeriodCountry;   ///< NationNumeric
    unsigned char dailyWorkPeriodRegion;    ///< RegionNumeric, of Spain only
    OdometerShort vehicleOdometerValue;     ///< at that time
};
static_assert(sizeof(PlaceRecord_g1) == 10);

/// EF_Current_Usage (0507): the vehicle that the card is in.
struct CardCurrentUse
{
    TimeReal sessionOpenTime;                             ///< card inserted; 0 when it is in no vehicle
    VehicleRegistrationIdentification sessionOpenVehicle; ///< the vehicle; number blank when it is in none
};
static_assert(sizeof(CardCurrentUse) == 19);

/// EF_Control_Activity_Data (0508): the last control of the driver.
struct CardControlActivityDataRecord
{
    unsigned char controlType;                                    ///< bits, see scard::ControlActivity
    TimeReal controlTime;                                         ///< of the control; 0 when there was none
    FullCardNumber controlCardNumber;                             ///< of the control card
    VehicleRegistrationIdentification controlVehicleRegistration; ///< where the control took place
    TimeReal controlDownloadPeriodBegin;                          ///< of what was downloaded; 0 otherwise
    TimeReal controlDownloadPeriodEnd;                            ///< likewise
};
static_assert(sizeof(CardControlActivityDataRecord) == 46);

/// One record of EF_Specific_Conditions (0522). The second generation has a pointer of two bytes before the
/// records, the first has none.
struct SpecificConditionRecord
{
    TimeReal entryTime;                  ///< of the entry; 0 in an empty slot
    unsigned char specificConditionType; ///< see scard::SpecificCondition
};
static_assert(sizeof(SpecificConditionRecord) == 5);

// Records that only second-generation applications have.

/// EF_Application_Identification (0501) of the second generation.
struct DriverCardApplicationIdentification_g2
{
    unsigned char typeOfTachographCardId;  ///< EquipmentType: scard::SCardMeta::Type
    unsigned char cardStructureVersion[2]; ///< 00 00 first generation, 01 00 second, 01 01 version 2.2
    unsigned char noOfEventsPerType;       ///< records of each kind of event in EF_EventsData
    unsigned char noOfFaultsPerType;       ///< records of each kind of fault in EF_FaultsData
    UInt16 activityStructureLength;        ///< bytes of the cyclic activity buffer
    UInt16 noOfCardVehicleRecords;         ///< records in EF_Vehicles_Used
    UInt16 noOfCardPlaceRecords;           ///< records in EF_Places
    UInt16 noOfGNSSADRecords;              ///< records in EF_GNSS_Places
    UInt16 noOfSpecificConditionRecords;   ///< records in EF_Specific_Conditions
    UInt16 noOfCardVehicleUnitRecords;     ///< records in EF_Vehicle_Units_Used
};
static_assert(sizeof(DriverCardApplicationIdentification_g2) == 17);

/// EF_Application_Identification_V2 (0525), on cards of version 2.2.
struct DriverCardApplicationIdentification_g2_2
{
    UInt16 lengthOfFollowingData;      ///< bytes behind this number: 8
    UInt16 noOfBorderCrossingRecords;  ///< records in EF_Border_Crossing
    UInt16 noOfLoadUnloadRecords;      ///< records in EF_Load_Unload_Operations
    UInt16 noOfLoadTypeEntryRecords;   ///< records in EF_Load_Type_Entries
    UInt16 vuConfigurationLengthRange; ///< bytes of EF_VU_Configuration (0540), which is not read
};
static_assert(sizeof(DriverCardApplicationIdentification_g2_2) == 10);

/// One record of EF_Vehicles_Used (0505) of the second generation (CardVehicleRecord).
struct CardVehicleRecord_g2
{
    OdometerShort vehicleOdometerBegin; ///< at the first use
    OdometerShort vehicleOdometerEnd;   ///< at the last use
    TimeReal vehicleFirstUse;           ///< card inserted, or 00:00 of the day
    TimeReal vehicleLastUse;            ///< card withdrawn, or 23:59 of the day; 0 in an empty slot
    VehicleRegistrationIdentification vehicleRegistration; ///< of the vehicle
    unsigned char vuDataBlockCounter[2]; ///< BCD, 0 to 9999: which download of the vehicle unit has this use
    unsigned char vehicleIdentificationNumber[17]; ///< IA5 characters, filled with blanks
};
static_assert(sizeof(CardVehicleRecord_g2) == 48);

/// A position by satellite navigation (GNSSPlaceRecord), part of other records.
struct GNSSPlaceRecord
{
    TimeReal timeStamp;         ///< when the position was taken; 0 when there is none
    unsigned char gnssAccuracy; ///< dilution of precision x 10; FF when not known
    unsigned char latitude[3];  ///< signed, degrees and minutes: DDMM.M x 10; 7FFFFF when not known
    unsigned char longitude[3]; ///< signed, DDDMM.M x 10; 7FFFFF when not known
};
static_assert(sizeof(GNSSPlaceRecord) == 11);

/// The same with its authentication (GNSSPlaceAuthRecord), on cards of version 2.2.
struct GNSSPlaceAuthRecord
{
    GNSSPlaceRecord gnssPlaceRecord;    ///< the position
    unsigned char authenticationStatus; ///< 0 not authenticated, 1 authenticated
};
static_assert(sizeof(GNSSPlaceAuthRecord) == 12);

/// One record of EF_Places (0506) of the second generation (PlaceRecord). The EF is cyclic behind a pointer
/// of two bytes, as all that follow.
struct PlaceRecord_g2
{
    TimeReal entryTime;                     ///< of the entry; 0 in an empty slot
    unsigned char entryTypeDailyWorkPeriod; ///< even begins a period, odd ends one
    unsigned char dailyWorkPeriodCountry;   ///< NationNumeric
    unsigned char dailyWorkPeriodRegion;    ///< RegionNumeric, of Spain only
    OdometerShort vehicleOdometerValue;     ///< at that time
    GNSSPlaceRecord entryGNSSPlaceRecord;   ///< where the entry was made
};
static_assert(sizeof(PlaceRecord_g2) == 21);

/// One record of EF_Vehicle_Units_Used (0523) (CardVehicleUnitRecord).
struct CardVehicleUnitsRecord_g2
{
    TimeReal timeStamp;                 ///< first insertion of the period of use; 0 in an empty slot
    unsigned char manufacturerCode;     ///< ManufacturerCode of the vehicle unit's maker
    unsigned char deviceID;             ///< the maker's type of the vehicle unit
    unsigned char vuSoftwareVersion[4]; ///< IA5 characters
};
static_assert(sizeof(CardVehicleUnitsRecord_g2) == 10);

/// One record of EF_GNSS_Places (0524) (GNSSAccumulatedDrivingRecord): where the driver was when the
/// accumulated driving reached a multiple of three hours.
struct GNSSContinousDrivingRecord_g2
{
    TimeReal timeStamp;                 ///< when the driving reached it; 0 in an empty slot
    GNSSPlaceRecord gnssPlaceRecord;    ///< the position
    OdometerShort vehicleOdometerValue; ///< at that time
};
static_assert(sizeof(GNSSContinousDrivingRecord_g2) == 18);

/// One record of EF_Places_Authentication (0526) (PlaceAuthStatusRecord).
struct PlaceAuthStatusRecord_g2_2
{
    TimeReal entryTime;                 ///< that of the place it belongs to; 0 in an empty slot
    unsigned char authenticationStatus; ///< 0 not authenticated, 1 authenticated
};
static_assert(sizeof(PlaceAuthStatusRecord_g2_2) == 5);

/// One record of EF_GNSS_Places_Authentication (0527) (GNSSAuthStatusADRecord).
struct GNSSAuthStatusADRecord_g2_2
{
    TimeReal timeStamp;                 ///< that of the place it belongs to; 0 in an empty slot
    unsigned char authenticationStatus; ///< 0 not authenticated, 1 authenticated
};
static_assert(sizeof(GNSSAuthStatusADRecord_g2_2) == 5);

/// One record of EF_Border_Crossing (0528) (CardBorderCrossingRecord).
struct CardBorderCrossingRecord_g2_2
{
    unsigned char countryLeft;               ///< NationNumeric; 0 when the card was put in in another country
    unsigned char countryEntered;            ///< NationNumeric; FF when it cannot be told
    GNSSPlaceAuthRecord gnssPlaceAuthRecord; ///< where and when; its time is 0 in an empty slot
    OdometerShort vehicleOdometerValue;      ///< at that time
};
static_assert(sizeof(CardBorderCrossingRecord_g2_2) == 17);

/// One record of EF_Load_Unload_Operations (0529) (CardLoadUnloadRecord).
struct CardLoadUnloadRecord_g2_2
{
    TimeReal timeStamp;                      ///< of the record; 0 in an empty slot
    unsigned char operationType;             ///< 1 load, 2 unload, 3 both
    GNSSPlaceAuthRecord gnssPlaceAuthRecord; ///< where, and whether it can be trusted
    OdometerShort vehicleOdometerValue;      ///< at that time
};
static_assert(sizeof(CardLoadUnloadRecord_g2_2) == 20);

/// One record of EF_Load_Type_Entries (0530) (CardLoadTypeEntryRecord).
struct CardLoadTypeEntryRecord_g2_2
{
    TimeReal timeStamp;            ///< of the record; 0 in an empty slot
    unsigned char loadTypeEntered; ///< 0 undefined, 1 goods, 2 passengers
};
static_assert(sizeof(CardLoadTypeEntryRecord_g2_2) == 5);

} // namespace scard
