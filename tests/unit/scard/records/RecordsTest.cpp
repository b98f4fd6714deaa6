#include <scard/records/CompanyCard.h>
#include <scard/records/DriverCard.h>
#include <scard/records/Identification.h>
#include <scard/records/TextFields.h>
#include <scard/records/WorkshopCard.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <type_traits>

// Where each field of a card's records lies, and how long it is.

namespace {

using namespace scard;

/// A record stands anywhere in the card's bytes and is copied byte for byte.
template <typename Record>
void expectPlainBytes(std::size_t size)
{
    EXPECT_EQ(sizeof(Record), size);
    EXPECT_EQ(alignof(Record), 1U);
    EXPECT_TRUE(std::is_trivially_copyable_v<Record>);
    EXPECT_TRUE(std::is_standard_layout_v<Record>);
}

#define EXPECT_FIELD(Record, field, offset, size)                                                            \
    do {                                                                                                     \
        EXPECT_EQ(offsetof(Record, field), std::size_t{offset}) << #field;                                   \
        EXPECT_EQ(sizeof(Record::field), std::size_t{size}) << #field;                                       \
    } while (false)

TEST(Records, CardIccIdentification)
{
    expectPlainBytes<CardIccIdentification>(25);
    EXPECT_FIELD(CardIccIdentification, clockStop, 0, 1);
    EXPECT_FIELD(CardIccIdentification, cardExtendedSerialNumber, 1, 8);
    EXPECT_FIELD(CardIccIdentification, cardApprovalNumber, 9, 8);
    EXPECT_FIELD(CardIccIdentification, cardPersonaliserID, 17, 1);
    EXPECT_FIELD(CardIccIdentification, embedderIcAssemblerId, 18, 5);
    EXPECT_FIELD(CardIccIdentification, icIdentifier, 23, 2);

    expectPlainBytes<ExtendedSerialNumber>(8);
    EXPECT_FIELD(ExtendedSerialNumber, serialNumber, 0, 4);
    EXPECT_FIELD(ExtendedSerialNumber, monthYear, 4, 2);
    EXPECT_FIELD(ExtendedSerialNumber, type, 6, 1);
    EXPECT_FIELD(ExtendedSerialNumber, manufacturerCode, 7, 1);

    expectPlainBytes<EmbedderIcAssemblerId>(5);
    EXPECT_FIELD(EmbedderIcAssemblerId, countryCode, 0, 2);
    EXPECT_FIELD(EmbedderIcAssemblerId, moduleEmbedder, 2, 2);
    EXPECT_FIELD(EmbedderIcAssemblerId, manufacturerInformation, 4, 1);
}

TEST(Records, CardIcIdentification)
{
    expectPlainBytes<CardIcIdentification>(8);
    EXPECT_FIELD(CardIcIdentification, icSerialNumber, 0, 4);
    EXPECT_FIELD(CardIcIdentification, icManufacturingReferences, 4, 4);
}

TEST(Records, GenericCardApplicationIdentification)
{
    expectPlainBytes<GenericCardApplicationIdentification>(3);
    EXPECT_FIELD(GenericCardApplicationIdentification, typeOfTachographCardId, 0, 1);
    EXPECT_FIELD(GenericCardApplicationIdentification, cardStructureVersion, 1, 2);
}

TEST(Records, TextFields)
{
    expectPlainBytes<Name>(36);
    EXPECT_FIELD(Name, codePage, 0, 1);
    EXPECT_FIELD(Name, name, 1, 35);

    expectPlainBytes<Address>(36);
    EXPECT_FIELD(Address, codePage, 0, 1);
    EXPECT_FIELD(Address, address, 1, 35);

    expectPlainBytes<VehicleRegistrationNumber>(14);
    EXPECT_FIELD(VehicleRegistrationNumber, codePage, 0, 1);
    EXPECT_FIELD(VehicleRegistrationNumber, vehicleRegNumber, 1, 13);

    expectPlainBytes<VehicleRegistrationIdentification>(15);
    EXPECT_FIELD(VehicleRegistrationIdentification, vehicleRegistrationNation, 0, 1);
    EXPECT_FIELD(VehicleRegistrationIdentification, vehicleRegistrationNumber, 1, 14);
}

TEST(Records, DriverCardApplicationIdentification)
{
    expectPlainBytes<DriverCardApplicationIdentification_g1>(10);
    EXPECT_FIELD(DriverCardApplicationIdentification_g1, typeOfTachographCardId, 0, 1);
    EXPECT_FIELD(DriverCardApplicationIdentification_g1, cardStructureVersion, 1, 2);
    EXPECT_FIELD(DriverCardApplicationIdentification_g1, noOfEventsPerType, 3, 1);
    EXPECT_FIELD(DriverCardApplicationIdentification_g1, noOfFaultsPerType, 4, 1);
    EXPECT_FIELD(DriverCardApplicationIdentification_g1, activityStructureLength, 5, 2);
    EXPECT_FIELD(DriverCardApplicationIdentification_g1, noOfCardVehicleRecords, 7, 2);
    EXPECT_FIELD(DriverCardApplicationIdentification_g1, noOfCardPlaceRecords, 9, 1);
}

TEST(Records, DriverCardIdentification)
{
    expectPlainBytes<DriverCard_EF_Identification>(143);
    EXPECT_FIELD(DriverCard_EF_Identification, cardIssuingMemberState, 0, 1);
    EXPECT_FIELD(DriverCard_EF_Identification, cardNumber, 1, 16);
    EXPECT_FIELD(DriverCard_EF_Identification, cardIssuingAuthorityName, 17, 36);
    EXPECT_FIELD(DriverCard_EF_Identification, cardIssueDate, 53, 4);
    EXPECT_FIELD(DriverCard_EF_Identification, cardValidityBegin, 57, 4);
    EXPECT_FIELD(DriverCard_EF_Identification, cardExpiryDate, 61, 4);
    EXPECT_FIELD(DriverCard_EF_Identification, holderSurname, 65, 36);
    EXPECT_FIELD(DriverCard_EF_Identification, holderFirstNames, 101, 36);
    EXPECT_FIELD(DriverCard_EF_Identification, cardHolderBirthDate, 137, 4);
    EXPECT_FIELD(DriverCard_EF_Identification, cardHolderPreferredLanguage, 141, 2);

    expectPlainBytes<DriverCardNumber>(16);
    EXPECT_FIELD(DriverCardNumber, driverIdentification, 0, 14);
    EXPECT_FIELD(DriverCardNumber, cardReplacementIndex, 14, 1);
    EXPECT_FIELD(DriverCardNumber, cardRenewalIndex, 15, 1);
}

TEST(Records, CardDrivingLicenceInformation)
{
    expectPlainBytes<CardDrivingLicenceInformation>(53);
    EXPECT_FIELD(CardDrivingLicenceInformation, drivingLicenceIssuingAuthority, 0, 36);
    EXPECT_FIELD(CardDrivingLicenceInformation, drivingLicenceIssuingNation, 36, 1);
    EXPECT_FIELD(CardDrivingLicenceInformation, drivingLicenceNumber, 37, 16);
}

TEST(Records, EventsAndFaultsHaveOneLayout)
{
    expectPlainBytes<CardEventRecord>(24);
    EXPECT_FIELD(CardEventRecord, eventType, 0, 1);
    EXPECT_FIELD(CardEventRecord, beginTime, 1, 4);
    EXPECT_FIELD(CardEventRecord, endTime, 5, 4);
    EXPECT_FIELD(CardEventRecord, vehicleRegistration, 9, 15);

    expectPlainBytes<CardFaultRecord>(24);
    EXPECT_FIELD(CardFaultRecord, faultType, 0, 1);
    EXPECT_FIELD(CardFaultRecord, beginTime, 1, 4);
    EXPECT_FIELD(CardFaultRecord, endTime, 5, 4);
    EXPECT_FIELD(CardFaultRecord, vehicleRegistration, 9, 15);
}

TEST(Records, CardVehicleRecord)
{
    expectPlainBytes<CardVehicleRecord_g1>(31);
    EXPECT_FIELD(CardVehicleRecord_g1, vehicleOdometerBegin, 0, 3);
    EXPECT_FIELD(CardVehicleRecord_g1, vehicleOdometerEnd, 3, 3);
    EXPECT_FIELD(CardVehicleRecord_g1, vehicleFirstUse, 6, 4);
    EXPECT_FIELD(CardVehicleRecord_g1, vehicleLastUse, 10, 4);
    EXPECT_FIELD(CardVehicleRecord_g1, vehicleRegistration, 14, 15);
    EXPECT_FIELD(CardVehicleRecord_g1, vuDataBlockCounter, 29, 2);
}

TEST(Records, PlaceRecord)
{
    expectPlainBytes<PlaceRecord_g1>(10);
    EXPECT_FIELD(PlaceRecord_g1, entryTime, 0, 4);
    EXPECT_FIELD(PlaceRecord_g1, entryTypeDailyWorkPeriod, 4, 1);
    EXPECT_FIELD(PlaceRecord_g1, dailyWorkPeriodCountry, 5, 1);
    EXPECT_FIELD(PlaceRecord_g1, dailyWorkPeriodRegion, 6, 1);
    EXPECT_FIELD(PlaceRecord_g1, vehicleOdometerValue, 7, 3);
}

TEST(Records, CardCurrentUse)
{
    expectPlainBytes<CardCurrentUse>(19);
    EXPECT_FIELD(CardCurrentUse, sessionOpenTime, 0, 4);
    EXPECT_FIELD(CardCurrentUse, sessionOpenVehicle, 4, 15);
}

TEST(Records, CardControlActivityDataRecord)
{
    expectPlainBytes<CardControlActivityDataRecord>(46);
    EXPECT_FIELD(CardControlActivityDataRecord, controlType, 0, 1);
    EXPECT_FIELD(CardControlActivityDataRecord, controlTime, 1, 4);
    EXPECT_FIELD(CardControlActivityDataRecord, controlCardNumber, 5, 18);
    EXPECT_FIELD(CardControlActivityDataRecord, controlVehicleRegistration, 23, 15);
    EXPECT_FIELD(CardControlActivityDataRecord, controlDownloadPeriodBegin, 38, 4);
    EXPECT_FIELD(CardControlActivityDataRecord, controlDownloadPeriodEnd, 42, 4);

    expectPlainBytes<FullCardNumber>(18);
    EXPECT_FIELD(FullCardNumber, cardType, 0, 1);
    EXPECT_FIELD(FullCardNumber, cardIssuingMemberState, 1, 1);
    EXPECT_FIELD(FullCardNumber, cardNumber, 2, 16);
}

TEST(Records, SpecificConditionRecord)
{
    expectPlainBytes<SpecificConditionRecord>(5);
    EXPECT_FIELD(SpecificConditionRecord, entryTime, 0, 4);
    EXPECT_FIELD(SpecificConditionRecord, specificConditionType, 4, 1);
}

TEST(Records, DriverCardApplicationIdentificationG2)
{
    expectPlainBytes<DriverCardApplicationIdentification_g2>(17);
    EXPECT_FIELD(DriverCardApplicationIdentification_g2, typeOfTachographCardId, 0, 1);
    EXPECT_FIELD(DriverCardApplicationIdentification_g2, cardStructureVersion, 1, 2);
    EXPECT_FIELD(DriverCardApplicationIdentification_g2, noOfEventsPerType, 3, 1);
    EXPECT_FIELD(DriverCardApplicationIdentification_g2, noOfFaultsPerType, 4, 1);
    EXPECT_FIELD(DriverCardApplicationIdentification_g2, activityStructureLength, 5, 2);
    EXPECT_FIELD(DriverCardApplicationIdentification_g2, noOfCardVehicleRecords, 7, 2);
    EXPECT_FIELD(DriverCardApplicationIdentification_g2, noOfCardPlaceRecords, 9, 2);
    EXPECT_FIELD(DriverCardApplicationIdentification_g2, noOfGNSSADRecords, 11, 2);
    EXPECT_FIELD(DriverCardApplicationIdentification_g2, noOfSpecificConditionRecords, 13, 2);
    EXPECT_FIELD(DriverCardApplicationIdentification_g2, noOfCardVehicleUnitRecords, 15, 2);
}

TEST(Records, DriverCardApplicationIdentificationOfVersion22)
{
    expectPlainBytes<DriverCardApplicationIdentification_g2_2>(10);
    EXPECT_FIELD(DriverCardApplicationIdentification_g2_2, lengthOfFollowingData, 0, 2);
    EXPECT_FIELD(DriverCardApplicationIdentification_g2_2, noOfBorderCrossingRecords, 2, 2);
    EXPECT_FIELD(DriverCardApplicationIdentification_g2_2, noOfLoadUnloadRecords, 4, 2);
    EXPECT_FIELD(DriverCardApplicationIdentification_g2_2, noOfLoadTypeEntryRecords, 6, 2);
    EXPECT_FIELD(DriverCardApplicationIdentification_g2_2, vuConfigurationLengthRange, 8, 2);
}

TEST(Records, CardVehicleRecordG2)
{
    expectPlainBytes<CardVehicleRecord_g2>(48);
    EXPECT_FIELD(CardVehicleRecord_g2, vehicleOdometerBegin, 0, 3);
    EXPECT_FIELD(CardVehicleRecord_g2, vehicleOdometerEnd, 3, 3);
    EXPECT_FIELD(CardVehicleRecord_g2, vehicleFirstUse, 6, 4);
    EXPECT_FIELD(CardVehicleRecord_g2, vehicleLastUse, 10, 4);
    EXPECT_FIELD(CardVehicleRecord_g2, vehicleRegistration, 14, 15);
    EXPECT_FIELD(CardVehicleRecord_g2, vuDataBlockCounter, 29, 2);
    EXPECT_FIELD(CardVehicleRecord_g2, vehicleIdentificationNumber, 31, 17);
}

TEST(Records, GnssPlaceRecord)
{
    expectPlainBytes<GNSSPlaceRecord>(11);
    EXPECT_FIELD(GNSSPlaceRecord, timeStamp, 0, 4);
    EXPECT_FIELD(GNSSPlaceRecord, gnssAccuracy, 4, 1);
    EXPECT_FIELD(GNSSPlaceRecord, latitude, 5, 3);
    EXPECT_FIELD(GNSSPlaceRecord, longitude, 8, 3);
}

TEST(Records, GnssPlaceAuthRecord)
{
    expectPlainBytes<GNSSPlaceAuthRecord>(12);
    EXPECT_FIELD(GNSSPlaceAuthRecord, gnssPlaceRecord, 0, 11);
    EXPECT_FIELD(GNSSPlaceAuthRecord, authenticationStatus, 11, 1);
}

TEST(Records, PlaceRecordG2)
{
    expectPlainBytes<PlaceRecord_g2>(21);
    EXPECT_FIELD(PlaceRecord_g2, entryTime, 0, 4);
    EXPECT_FIELD(PlaceRecord_g2, entryTypeDailyWorkPeriod, 4, 1);
    EXPECT_FIELD(PlaceRecord_g2, dailyWorkPeriodCountry, 5, 1);
    EXPECT_FIELD(PlaceRecord_g2, dailyWorkPeriodRegion, 6, 1);
    EXPECT_FIELD(PlaceRecord_g2, vehicleOdometerValue, 7, 3);
    EXPECT_FIELD(PlaceRecord_g2, entryGNSSPlaceRecord, 10, 11);
}

TEST(Records, CardVehicleUnitsRecord)
{
    expectPlainBytes<CardVehicleUnitsRecord_g2>(10);
    EXPECT_FIELD(CardVehicleUnitsRecord_g2, timeStamp, 0, 4);
    EXPECT_FIELD(CardVehicleUnitsRecord_g2, manufacturerCode, 4, 1);
    EXPECT_FIELD(CardVehicleUnitsRecord_g2, deviceID, 5, 1);
    EXPECT_FIELD(CardVehicleUnitsRecord_g2, vuSoftwareVersion, 6, 4);
}

TEST(Records, GnssContinousDrivingRecord)
{
    expectPlainBytes<GNSSContinousDrivingRecord_g2>(18);
    EXPECT_FIELD(GNSSContinousDrivingRecord_g2, timeStamp, 0, 4);
    EXPECT_FIELD(GNSSContinousDrivingRecord_g2, gnssPlaceRecord, 4, 11);
    EXPECT_FIELD(GNSSContinousDrivingRecord_g2, vehicleOdometerValue, 15, 3);
}

TEST(Records, PlaceAuthStatusRecord)
{
    expectPlainBytes<PlaceAuthStatusRecord_g2_2>(5);
    EXPECT_FIELD(PlaceAuthStatusRecord_g2_2, entryTime, 0, 4);
    EXPECT_FIELD(PlaceAuthStatusRecord_g2_2, authenticationStatus, 4, 1);
}

TEST(Records, GnssAuthStatusRecord)
{
    expectPlainBytes<GNSSAuthStatusADRecord_g2_2>(5);
    EXPECT_FIELD(GNSSAuthStatusADRecord_g2_2, timeStamp, 0, 4);
    EXPECT_FIELD(GNSSAuthStatusADRecord_g2_2, authenticationStatus, 4, 1);
}

TEST(Records, CardBorderCrossingRecord)
{
    expectPlainBytes<CardBorderCrossingRecord_g2_2>(17);
    EXPECT_FIELD(CardBorderCrossingRecord_g2_2, countryLeft, 0, 1);
    EXPECT_FIELD(CardBorderCrossingRecord_g2_2, countryEntered, 1, 1);
    EXPECT_FIELD(CardBorderCrossingRecord_g2_2, gnssPlaceAuthRecord, 2, 12);
    EXPECT_FIELD(CardBorderCrossingRecord_g2_2, vehicleOdometerValue, 14, 3);
}

TEST(Records, CardLoadUnloadRecord)
{
    expectPlainBytes<CardLoadUnloadRecord_g2_2>(20);
    EXPECT_FIELD(CardLoadUnloadRecord_g2_2, timeStamp, 0, 4);
    EXPECT_FIELD(CardLoadUnloadRecord_g2_2, operationType, 4, 1);
    EXPECT_FIELD(CardLoadUnloadRecord_g2_2, gnssPlaceAuthRecord, 5, 12);
    EXPECT_FIELD(CardLoadUnloadRecord_g2_2, vehicleOdometerValue, 17, 3);
}

TEST(Records, CardLoadTypeEntryRecord)
{
    expectPlainBytes<CardLoadTypeEntryRecord_g2_2>(5);
    EXPECT_FIELD(CardLoadTypeEntryRecord_g2_2, timeStamp, 0, 4);
    EXPECT_FIELD(CardLoadTypeEntryRecord_g2_2, loadTypeEntered, 4, 1);
}

TEST(Records, OwnerCardNumber)
{
    expectPlainBytes<OwnerCardNumber>(16);
    EXPECT_FIELD(OwnerCardNumber, ownerIdentification, 0, 13);
    EXPECT_FIELD(OwnerCardNumber, cardConsecutiveIndex, 13, 1);
    EXPECT_FIELD(OwnerCardNumber, cardReplacementIndex, 14, 1);
    EXPECT_FIELD(OwnerCardNumber, cardRenewalIndex, 15, 1);
}

TEST(Records, WorkshopCardApplicationIdentification)
{
    expectPlainBytes<WorkshopCardApplicationIdentification_g1>(11);
    EXPECT_FIELD(WorkshopCardApplicationIdentification_g1, typeOfTachographCardId, 0, 1);
    EXPECT_FIELD(WorkshopCardApplicationIdentification_g1, cardStructureVersion, 1, 2);
    EXPECT_FIELD(WorkshopCardApplicationIdentification_g1, noOfEventsPerType, 3, 1);
    EXPECT_FIELD(WorkshopCardApplicationIdentification_g1, noOfFaultsPerType, 4, 1);
    EXPECT_FIELD(WorkshopCardApplicationIdentification_g1, activityStructureLength, 5, 2);
    EXPECT_FIELD(WorkshopCardApplicationIdentification_g1, noOfCardVehicleRecords, 7, 2);
    EXPECT_FIELD(WorkshopCardApplicationIdentification_g1, noOfCardPlaceRecords, 9, 1);
    EXPECT_FIELD(WorkshopCardApplicationIdentification_g1, noOfCalibrationRecords, 10, 1);
}

TEST(Records, WorkshopCardIdentification)
{
    expectPlainBytes<WorkshopCard_EF_Identification>(211);
    EXPECT_FIELD(WorkshopCard_EF_Identification, cardIssuingMemberState, 0, 1);
    EXPECT_FIELD(WorkshopCard_EF_Identification, cardNumber, 1, 16);
    EXPECT_FIELD(WorkshopCard_EF_Identification, cardIssuingAuthorityName, 17, 36);
    EXPECT_FIELD(WorkshopCard_EF_Identification, cardIssueDate, 53, 4);
    EXPECT_FIELD(WorkshopCard_EF_Identification, cardValidityBegin, 57, 4);
    EXPECT_FIELD(WorkshopCard_EF_Identification, cardExpiryDate, 61, 4);
    EXPECT_FIELD(WorkshopCard_EF_Identification, workshopName, 65, 36);
    EXPECT_FIELD(WorkshopCard_EF_Identification, workshopAddress, 101, 36);
    EXPECT_FIELD(WorkshopCard_EF_Identification, holderSurname, 137, 36);
    EXPECT_FIELD(WorkshopCard_EF_Identification, holderFirstNames, 173, 36);
    EXPECT_FIELD(WorkshopCard_EF_Identification, cardHolderPreferredLanguage, 209, 2);
}

TEST(Records, CalibrationRecord)
{
    expectPlainBytes<CalibrationRecord_g1>(105);
    EXPECT_FIELD(CalibrationRecord_g1, calibrationPurpose, 0, 1);
    EXPECT_FIELD(CalibrationRecord_g1, vehicleIdentificationNumber, 1, 17);
    EXPECT_FIELD(CalibrationRecord_g1, vehicleRegistration, 18, 15);
    EXPECT_FIELD(CalibrationRecord_g1, wVehicleCharacteristicConstant, 33, 2);
    EXPECT_FIELD(CalibrationRecord_g1, kConstantOfRecordingEquipment, 35, 2);
    EXPECT_FIELD(CalibrationRecord_g1, lTyreCircumference, 37, 2);
    EXPECT_FIELD(CalibrationRecord_g1, tyreSize, 39, 15);
    EXPECT_FIELD(CalibrationRecord_g1, authorisedSpeed, 54, 1);
    EXPECT_FIELD(CalibrationRecord_g1, oldOdometerValue, 55, 3);
    EXPECT_FIELD(CalibrationRecord_g1, newOdometerValue, 58, 3);
    EXPECT_FIELD(CalibrationRecord_g1, oldTimeValue, 61, 4);
    EXPECT_FIELD(CalibrationRecord_g1, newTimeValue, 65, 4);
    EXPECT_FIELD(CalibrationRecord_g1, nextCalibrationDate, 69, 4);
    EXPECT_FIELD(CalibrationRecord_g1, vuPartNumber, 73, 16);
    EXPECT_FIELD(CalibrationRecord_g1, vuSerialNumber, 89, 8);
    EXPECT_FIELD(CalibrationRecord_g1, sensorSerialNumber, 97, 8);
}

TEST(Records, WorkshopCardApplicationIdentificationG2)
{
    expectPlainBytes<WorkshopCardApplicationIdentification_g2>(19);
    EXPECT_FIELD(WorkshopCardApplicationIdentification_g2, typeOfTachographCardId, 0, 1);
    EXPECT_FIELD(WorkshopCardApplicationIdentification_g2, cardStructureVersion, 1, 2);
    EXPECT_FIELD(WorkshopCardApplicationIdentification_g2, noOfEventsPerType, 3, 1);
    EXPECT_FIELD(WorkshopCardApplicationIdentification_g2, noOfFaultsPerType, 4, 1);
    EXPECT_FIELD(WorkshopCardApplicationIdentification_g2, activityStructureLength, 5, 2);
    EXPECT_FIELD(WorkshopCardApplicationIdentification_g2, noOfCardVehicleRecords, 7, 2);
    EXPECT_FIELD(WorkshopCardApplicationIdentification_g2, noOfCardPlaceRecords, 9, 2);
    EXPECT_FIELD(WorkshopCardApplicationIdentification_g2, noOfCalibrationRecords, 11, 2);
    EXPECT_FIELD(WorkshopCardApplicationIdentification_g2, noOfGNSSADRecords, 13, 2);
    EXPECT_FIELD(WorkshopCardApplicationIdentification_g2, noOfSpecificConditionRecords, 15, 2);
    EXPECT_FIELD(WorkshopCardApplicationIdentification_g2, noOfCardVehicleUnitRecords, 17, 2);
}

TEST(Records, WorkshopCardApplicationIdentificationOfVersion22)
{
    expectPlainBytes<WorkshopCardApplicationIdentification_g2_2>(10);
    EXPECT_FIELD(WorkshopCardApplicationIdentification_g2_2, lengthOfFollowingData, 0, 2);
    EXPECT_FIELD(WorkshopCardApplicationIdentification_g2_2, noOfBorderCrossingRecords, 2, 2);
    EXPECT_FIELD(WorkshopCardApplicationIdentification_g2_2, noOfLoadUnloadRecords, 4, 2);
    EXPECT_FIELD(WorkshopCardApplicationIdentification_g2_2, noOfLoadTypeEntryRecords, 6, 2);
    EXPECT_FIELD(WorkshopCardApplicationIdentification_g2_2, vuConfigurationLengthRange, 8, 2);
}

TEST(Records, CalibrationRecordG2)
{
    expectPlainBytes<CalibrationRecord_g2>(178);
    EXPECT_FIELD(CalibrationRecord_g2, firstGeneration, 0, 105);
    EXPECT_FIELD(CalibrationRecord_g2, sensorGNSSSerialNumber, 105, 8);
    EXPECT_FIELD(CalibrationRecord_g2, rcmSerialNumber, 113, 8);
    EXPECT_FIELD(CalibrationRecord_g2, vuAbility, 121, 1);
    EXPECT_FIELD(CalibrationRecord_g2, noOfSealRecords, 122, 1);
    EXPECT_FIELD(CalibrationRecord_g2, sealRecords, 123, 55);

    expectPlainBytes<SealRecord>(11);
    EXPECT_FIELD(SealRecord, equipmentType, 0, 1);
    EXPECT_FIELD(SealRecord, sealManufacturerCode, 1, 2);
    EXPECT_FIELD(SealRecord, sealIdentifier, 3, 8);
}

TEST(Records, WorkshopCardCalibrationAddDataRecord)
{
    expectPlainBytes<WorkshopCardCalibrationAddDataRecord_g2_2>(27);
    EXPECT_FIELD(WorkshopCardCalibrationAddDataRecord_g2_2, oldTimeValue, 0, 4);
    EXPECT_FIELD(WorkshopCardCalibrationAddDataRecord_g2_2, vehicleIdentificationNumber, 4, 17);
    EXPECT_FIELD(WorkshopCardCalibrationAddDataRecord_g2_2, byDefaultLoadType, 21, 1);
    EXPECT_FIELD(WorkshopCardCalibrationAddDataRecord_g2_2, calibrationCountry, 22, 1);
    EXPECT_FIELD(WorkshopCardCalibrationAddDataRecord_g2_2, calibrationCountryTimestamp, 23, 4);
}

TEST(Records, CompanyCardApplicationIdentification)
{
    expectPlainBytes<CompanyCardApplicationIdentification>(5);
    EXPECT_FIELD(CompanyCardApplicationIdentification, typeOfTachographCardId, 0, 1);
    EXPECT_FIELD(CompanyCardApplicationIdentification, cardStructureVersion, 1, 2);
    EXPECT_FIELD(CompanyCardApplicationIdentification, noOfCompanyActivityRecords, 3, 2);

    expectPlainBytes<CompanyCardApplicationIdentification_g2_v2>(4);
    EXPECT_FIELD(CompanyCardApplicationIdentification_g2_v2, lengthOfFollowingData, 0, 2);
    EXPECT_FIELD(CompanyCardApplicationIdentification_g2_v2, vuConfigurationLengthRange, 2, 2);
}

TEST(Records, CompanyActivityRecord)
{
    expectPlainBytes<CompanyActivityRecord>(46);
    EXPECT_FIELD(CompanyActivityRecord, companyActivityType, 0, 1);
    EXPECT_FIELD(CompanyActivityRecord, companyActivityTime, 1, 4);
    EXPECT_FIELD(CompanyActivityRecord, cardNumberInformation, 5, 18);
    EXPECT_FIELD(CompanyActivityRecord, vehicleRegistrationInformation, 23, 15);
    EXPECT_FIELD(CompanyActivityRecord, downloadPeriodBegin, 38, 4);
    EXPECT_FIELD(CompanyActivityRecord, downloadPeriodEnd, 42, 4);
}

TEST(Records, CompanyCardIdentification)
{
    expectPlainBytes<CompanyCard_EF_Identification>(139);
    EXPECT_FIELD(CompanyCard_EF_Identification, cardIssuingMemberState, 0, 1);
    EXPECT_FIELD(CompanyCard_EF_Identification, cardNumber, 1, 16);
    EXPECT_FIELD(CompanyCard_EF_Identification, cardIssuingAuthorityName, 17, 36);
    EXPECT_FIELD(CompanyCard_EF_Identification, cardIssueDate, 53, 4);
    EXPECT_FIELD(CompanyCard_EF_Identification, cardValidityBegin, 57, 4);
    EXPECT_FIELD(CompanyCard_EF_Identification, cardExpiryDate, 61, 4);
    EXPECT_FIELD(CompanyCard_EF_Identification, companyName, 65, 36);
    EXPECT_FIELD(CompanyCard_EF_Identification, companyAddress, 101, 36);
    EXPECT_FIELD(CompanyCard_EF_Identification, cardHolderPreferredLanguage, 137, 2);
}

} // namespace
