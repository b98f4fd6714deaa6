#pragma once

#include <scard/records/BigEndian.h>
#include <scard/records/Identification.h>
#include <scard/records/TextFields.h>

// Records of workshop cards (Annex 1B and 1C, Appendix 1 and 2), as the card's bytes. Their events, faults,
// vehicles and the like are those of driver cards.

namespace scard {

/// EF_Application_Identification (0501) of the first generation: how many records the card holds.
struct WorkshopCardApplicationIdentification_g1
{
    unsigned char typeOfTachographCardId;
    unsigned char cardStructureVersion[2];
    unsigned char noOfEventsPerType;
    unsigned char noOfFaultsPerType;
    UInt16 activityStructureLength; ///< bytes of the cyclic activity buffer
    UInt16 noOfCardVehicleRecords;
    unsigned char noOfCardPlaceRecords;
    unsigned char noOfCalibrationRecords;
};
static_assert(sizeof(WorkshopCardApplicationIdentification_g1) == 11);

/// EF_Identification (0520): the card (65 bytes), the workshop and the holder (146 bytes).
struct WorkshopCard_EF_Identification
{
    unsigned char cardIssuingMemberState; ///< NationNumeric
    OwnerCardNumber cardNumber;
    Name cardIssuingAuthorityName;
    TimeReal cardIssueDate;
    TimeReal cardValidityBegin;
    TimeReal cardExpiryDate;
    Name workshopName;
    Address workshopAddress;
    Name holderSurname;
    Name holderFirstNames;
    unsigned char cardHolderPreferredLanguage[2];
};
static_assert(sizeof(WorkshopCard_EF_Identification) == 211);

struct CalibrationRecord_g1
{
    unsigned char calibrationPurpose;
    unsigned char vehicleIdentificationNumber[17];
    VehicleRegistrationIdentification vehicleRegistration;
    UInt16 wVehicleCharacteristicConstant;
    UInt16 kConstantOfRecordingEquipment;
    UInt16 lTyreCircumference; ///< 1/8 mm
    unsigned char tyreSize[15];
    unsigned char authorisedSpeed; ///< km/h
    OdometerShort oldOdometerValue;
    OdometerShort newOdometerValue;
    TimeReal oldTimeValue;
    TimeReal newTimeValue;
    TimeReal nextCalibrationDate;
    unsigned char vuPartNumber[16];
    ExtendedSerialNumber vuSerialNumber;
    ExtendedSerialNumber sensorSerialNumber;
};
static_assert(sizeof(CalibrationRecord_g1) == 105);

// Records that only second-generation applications have.

/// EF_Application_Identification (0501) of the second generation.
struct WorkshopCardApplicationIdentification_g2
{
    unsigned char typeOfTachographCardId;
    unsigned char cardStructureVersion[2];
    unsigned char noOfEventsPerType;
    unsigned char noOfFaultsPerType;
    UInt16 activityStructureLength; ///< bytes of the cyclic activity buffer
    UInt16 noOfCardVehicleRecords;
    UInt16 noOfCardPlaceRecords;
    UInt16 noOfCalibrationRecords;
    UInt16 noOfGNSSADRecords;
    UInt16 noOfSpecificConditionRecords;
    UInt16 noOfCardVehicleUnitRecords;
};
static_assert(sizeof(WorkshopCardApplicationIdentification_g2) == 19);

struct SealRecord
{
    unsigned char equipmentType; ///< what is sealed
    unsigned char sealManufacturerCode[2];
    unsigned char sealIdentifier[8];
};
static_assert(sizeof(SealRecord) == 11);

struct CalibrationRecord_g2
{
    CalibrationRecord_g1 firstGeneration; ///< begins like the record of the first generation
    ExtendedSerialNumber sensorGNSSSerialNumber;
    ExtendedSerialNumber rcmSerialNumber;
    unsigned char vuAbility; ///< bit 0 set: cards of the first generation are not supported
    unsigned char noOfSealRecords;
    SealRecord sealRecords[5];
};
static_assert(sizeof(CalibrationRecord_g2) == 178);

// Records that only cards of version 2.2 have.

/// EF_Application_Identification_V2 (0525).
struct WorkshopCardApplicationIdentification_g2_2
{
    UInt16 lengthOfFollowingData;
    UInt16 noOfBorderCrossingRecords;
    UInt16 noOfLoadUnloadRecords;
    UInt16 noOfLoadTypeEntryRecords;
    UInt16 vuConfigurationLengthRange;
};
static_assert(sizeof(WorkshopCardApplicationIdentification_g2_2) == 10);

/// EF_Calibration_Add_Data (0531): more about the calibration with the same old time and vehicle.
struct WorkshopCardCalibrationAddDataRecord_g2_2
{
    TimeReal oldTimeValue;
    unsigned char vehicleIdentificationNumber[17];
    unsigned char byDefaultLoadType;
    unsigned char calibrationCountry; ///< NationNumeric
    TimeReal calibrationCountryTimestamp;
};
static_assert(sizeof(WorkshopCardCalibrationAddDataRecord_g2_2) == 27);

} // namespace scard
