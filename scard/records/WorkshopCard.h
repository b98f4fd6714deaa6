#pragma once

#include <scard/records/BigEndian.h>
#include <scard/records/Identification.h>
#include <scard/records/TextFields.h>

/// @file
/// Records of workshop cards (Annex 1B and 1C, Appendix 1 and 2), as the card's bytes. Their events, faults,
/// vehicles and the like are those of driver cards.

namespace scard {

/// EF_Application_Identification (0501) of the first generation: how many records the card holds.
struct WorkshopCardApplicationIdentification_g1
{
    unsigned char typeOfTachographCardId;  ///< EquipmentType: scard::SCardMeta::Type
    unsigned char cardStructureVersion[2]; ///< 00 00 first generation, 01 00 second, 01 01 version 2.2
    unsigned char noOfEventsPerType;       ///< records of each kind of event in EF_EventsData
    unsigned char noOfFaultsPerType;       ///< records of each kind of fault in EF_FaultsData
    UInt16 activityStructureLength;        ///< bytes of the cyclic activity buffer
    UInt16 noOfCardVehicleRecords;         ///< records in EF_Vehicles_Used
    unsigned char noOfCardPlaceRecords;    ///< records in EF_Places
    unsigned char noOfCalibrationRecords;  ///< records in EF_Calibration
};
static_assert(sizeof(WorkshopCardApplicationIdentification_g1) == 11);

/// EF_Identification (0520): the card (CardIdentification, 65 bytes), the workshop and the holder
/// (WorkshopCardHolderIdentification, 146 bytes).
struct WorkshopCard_EF_Identification
{
    unsigned char cardIssuingMemberState;         ///< NationNumeric
    OwnerCardNumber cardNumber;                   ///< 16 characters
    Name cardIssuingAuthorityName;                ///< who issued the card
    TimeReal cardIssueDate;                       ///< when it was issued
    TimeReal cardValidityBegin;                   ///< first day of validity
    TimeReal cardExpiryDate;                      ///< last day of validity
    Name workshopName;                            ///< of the workshop
    Address workshopAddress;                      ///< of the workshop
    Name holderSurname;                           ///< of the card's holder, or the workshop's name once more
    Name holderFirstNames;                        ///< of the holder; may be blank
    unsigned char cardHolderPreferredLanguage[2]; ///< two lower-case letters (ISO 639): "de"
};
static_assert(sizeof(WorkshopCard_EF_Identification) == 211);

/// One record of EF_Calibration (050A) of the first generation (WorkshopCardCalibrationRecord). Before the
/// records stand the number of all calibrations (two bytes) and a pointer of one byte to the newest record.
struct CalibrationRecord_g1
{
    unsigned char calibrationPurpose; ///< CalibrationPurpose, see scard::Calibration; 0 in an empty slot
    unsigned char vehicleIdentificationNumber[17];         ///< IA5 characters, filled with blanks
    VehicleRegistrationIdentification vehicleRegistration; ///< of the vehicle
    UInt16 wVehicleCharacteristicConstant;                 ///< w, pulses/km
    UInt16 kConstantOfRecordingEquipment;                  ///< k, pulses/km
    UInt16 lTyreCircumference;                             ///< l, in 1/8 mm
    unsigned char tyreSize[15];                            ///< IA5 characters, filled with blanks
    unsigned char authorisedSpeed;                         ///< km/h
    OdometerShort oldOdometerValue;                        ///< before the calibration
    OdometerShort newOdometerValue;                        ///< after it
    TimeReal oldTimeValue;                                 ///< before the calibration
    TimeReal newTimeValue;                                 ///< after it
    TimeReal nextCalibrationDate;                          ///< when the next one is due
    unsigned char vuPartNumber[16];                        ///< IA5 characters, filled with blanks
    ExtendedSerialNumber vuSerialNumber;                   ///< of the vehicle unit
    ExtendedSerialNumber sensorSerialNumber;               ///< of the motion sensor
};
static_assert(sizeof(CalibrationRecord_g1) == 105);

// Records that only second-generation applications have.

/// EF_Application_Identification (0501) of the second generation.
struct WorkshopCardApplicationIdentification_g2
{
    unsigned char typeOfTachographCardId;  ///< EquipmentType: scard::SCardMeta::Type
    unsigned char cardStructureVersion[2]; ///< 00 00 first generation, 01 00 second, 01 01 version 2.2
    unsigned char noOfEventsPerType;       ///< records of each kind of event in EF_EventsData
    unsigned char noOfFaultsPerType;       ///< records of each kind of fault in EF_FaultsData
    UInt16 activityStructureLength;        ///< bytes of the cyclic activity buffer
    UInt16 noOfCardVehicleRecords;         ///< records in EF_Vehicles_Used
    UInt16 noOfCardPlaceRecords;           ///< records in EF_Places
    UInt16 noOfCalibrationRecords;         ///< records in EF_Calibration
    UInt16 noOfGNSSADRecords;              ///< records in EF_GNSS_Places
    UInt16 noOfSpecificConditionRecords;   ///< records in EF_Specific_Conditions
    UInt16 noOfCardVehicleUnitRecords;     ///< records in EF_Vehicle_Units_Used
};
static_assert(sizeof(WorkshopCardApplicationIdentification_g2) == 19);

/// A seal on the vehicle (SealRecord), part of the calibration.
struct SealRecord
{
    unsigned char equipmentType;           ///< EquipmentType of what is sealed
    unsigned char sealManufacturerCode[2]; ///< IA5 characters
    unsigned char sealIdentifier[8];       ///< IA5 characters
};
static_assert(sizeof(SealRecord) == 11);

/// One record of EF_Calibration (050A) of the second generation (WorkshopCardCalibrationRecord). The pointer
/// before the records has two bytes.
struct CalibrationRecord_g2
{
    CalibrationRecord_g1 firstGeneration;        ///< begins like the record of the first generation
    ExtendedSerialNumber sensorGNSSSerialNumber; ///< of the external satellite receiver
    ExtendedSerialNumber rcmSerialNumber;        ///< of the remote communication module
    unsigned char vuAbility;       ///< bit 0 set: cards of the first generation are not supported
    unsigned char noOfSealRecords; ///< how many of sealRecords say something, 0 to 5
    SealRecord sealRecords[5];     ///< what stands behind that number is not defined
};
static_assert(sizeof(CalibrationRecord_g2) == 178);

// Records that only cards of version 2.2 have.

/// EF_Application_Identification_V2 (0525), on cards of version 2.2.
struct WorkshopCardApplicationIdentification_g2_2
{
    UInt16 lengthOfFollowingData;      ///< bytes behind this number: 8
    UInt16 noOfBorderCrossingRecords;  ///< records in EF_Border_Crossing
    UInt16 noOfLoadUnloadRecords;      ///< records in EF_Load_Unload_Operations
    UInt16 noOfLoadTypeEntryRecords;   ///< records in EF_Load_Type_Entries
    UInt16 vuConfigurationLengthRange; ///< bytes of EF_VU_Configuration (0540), which is not read
};
static_assert(sizeof(WorkshopCardApplicationIdentification_g2_2) == 10);

/// One record of EF_Calibration_Add_Data (0531), on cards of version 2.2: more about the calibration with the
/// same old time and vehicle (WorkshopCardCalibrationAddDataRecord).
struct WorkshopCardCalibrationAddDataRecord_g2_2
{
    TimeReal oldTimeValue;                         ///< that of the calibration; 0 in an empty slot
    unsigned char vehicleIdentificationNumber[17]; ///< IA5 characters, filled with blanks
    unsigned char byDefaultLoadType;               ///< 0 undefined, 1 goods, 2 passengers
    unsigned char calibrationCountry;              ///< NationNumeric
    TimeReal calibrationCountryTimestamp;          ///< of the position from which the country is known
};
static_assert(sizeof(WorkshopCardCalibrationAddDataRecord_g2_2) == 27);

} // namespace scard
