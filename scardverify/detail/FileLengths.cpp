#include "FileLengths.h"

#include "OtherFids.h"

#include <scard/records/CompanyCard.h>
#include <scard/records/DriverCard.h>
#include <scard/records/Fid.h>
#include <scard/records/Identification.h>
#include <scard/records/WorkshopCard.h>
#include <scard/SCardMeta.h>

namespace scard::verify::detail {

namespace {

// Appendix 2 of Annexes 1B and 1C, the structure of the applications.
constexpr int eventGroupsG1 = 6;
constexpr int eventGroupsG2 = 11;
constexpr int faultGroups = 2;
constexpr int pointerLength = 2; ///< of the newest record
constexpr int driverConditionsG1 = 56;
constexpr int workshopConditionsG1 = 2;
constexpr int controllerActivityLength = 46;
constexpr int controllerIdentificationLength = 211;

using Lengths = std::map<unsigned short, int>;

/// The EF as the record that it is; null when it has another length.
template <typename Record>
const Record* as(const QByteArray& bytes)
{
    return bytes.size() == static_cast<int>(sizeof(Record))
               ? reinterpret_cast<const Record*>(bytes.constData())
               : nullptr;
}

template <typename Record>
constexpr int length = static_cast<int>(sizeof(Record));

/// The EFs of any application.
Lengths chipLengths()
{
    return {{fidIcc, length<CardIccIdentification>}, {fidIc, length<CardIcIdentification>}};
}

/// What driver and workshop cards of both generations have in common.
template <typename Application>
void addRoad(Lengths& lengths, const Application& counts, int eventGroups)
{
    lengths[fidEventsData] = eventGroups * counts.noOfEventsPerType * length<CardEventRecord>;
    lengths[fidFaultsData] = faultGroups * counts.noOfFaultsPerType * length<CardFaultRecord>;
    lengths[fidDriverActivityData] =
        2 * pointerLength + static_cast<int>(counts.activityStructureLength.value());
    lengths[fidCurrentUsage] = length<CardCurrentUse>;
    lengths[fidControlActivityData] = length<CardControlActivityDataRecord>;
}

/// An EF of a pointer and records.
template <typename Record>
int pointed(const UInt16& count)
{
    return pointerLength + static_cast<int>(count.value()) * length<Record>;
}

template <typename Application>
void addFirst(Lengths& lengths, const Application& counts, int conditions)
{
    constexpr int placePointerLength = 1;
    addRoad(lengths, counts, eventGroupsG1);
    lengths[fidVehiclesUsed] = pointed<CardVehicleRecord_g1>(counts.noOfCardVehicleRecords);
    lengths[fidPlaces] = placePointerLength + counts.noOfCardPlaceRecords * length<PlaceRecord_g1>;
    lengths[fidSpecificConditions] = conditions * length<SpecificConditionRecord>;
}

template <typename Application, typename ApplicationV2>
void addSecond(Lengths& lengths, const Application& counts, const ApplicationV2* countsV2)
{
    addRoad(lengths, counts, eventGroupsG2);
    lengths[fidVehiclesUsed] = pointed<CardVehicleRecord_g2>(counts.noOfCardVehicleRecords);
    lengths[fidPlaces] = pointed<PlaceRecord_g2>(counts.noOfCardPlaceRecords);
    lengths[fidSpecificConditions] = pointed<SpecificConditionRecord>(counts.noOfSpecificConditionRecords);
    lengths[fidVehicleUnitsUsed] = pointed<CardVehicleUnitsRecord_g2>(counts.noOfCardVehicleUnitRecords);
    lengths[fidGnssPlaces] = pointed<GNSSContinousDrivingRecord_g2>(counts.noOfGNSSADRecords);
    lengths[fidApplicationIdentificationV2] = length<ApplicationV2>;
    lengths[fidPlacesAuthentication] = pointed<PlaceAuthStatusRecord_g2_2>(counts.noOfCardPlaceRecords);
    lengths[fidGnssPlacesAuthentication] = pointed<GNSSAuthStatusADRecord_g2_2>(counts.noOfGNSSADRecords);
    if (countsV2 == nullptr)
        return;
    lengths[fidBorderCrossings] = pointed<CardBorderCrossingRecord_g2_2>(countsV2->noOfBorderCrossingRecords);
    lengths[fidLoadUnloadOperations] = pointed<CardLoadUnloadRecord_g2_2>(countsV2->noOfLoadUnloadRecords);
    lengths[fidLoadTypeEntries] = pointed<CardLoadTypeEntryRecord_g2_2>(countsV2->noOfLoadTypeEntryRecords);
}

Lengths driverLengths(const Expected& expected, const QByteArray& first, const QByteArray& second)
{
    using First = DriverCardApplicationIdentification_g1;
    using Second = DriverCardApplicationIdentification_g2;
    Lengths lengths = chipLengths();
    lengths[fidIdentification] = length<DriverCard_EF_Identification>;
    lengths[fidDrivingLicenceInfo] = length<CardDrivingLicenceInformation>;
    lengths[fidCardDownload] = length<TimeReal>;
    if (expected.generation == Generation::First) {
        lengths[fidApplicationIdentification] = length<First>;
        if (const auto* counts = as<First>(first))
            addFirst(lengths, *counts, driverConditionsG1);
    } else {
        lengths[fidApplicationIdentification] = length<Second>;
        if (const auto* counts = as<Second>(first))
            addSecond(lengths, *counts, as<DriverCardApplicationIdentification_g2_2>(second));
    }
    return lengths;
}

Lengths workshopLengths(const Expected& expected, const QByteArray& first, const QByteArray& second)
{
    using First = WorkshopCardApplicationIdentification_g1;
    using Second = WorkshopCardApplicationIdentification_g2;
    Lengths lengths = chipLengths();
    lengths[fidIdentification] = length<WorkshopCard_EF_Identification>;
    lengths[fidCardDownloadWorkshop] = length<UInt16>;
    if (expected.generation == Generation::First) {
        constexpr int headLength = 3; // checksum pointer 2, newest record 1
        lengths[fidApplicationIdentification] = length<First>;
        if (const auto* counts = as<First>(first)) {
            addFirst(lengths, *counts, workshopConditionsG1);
            lengths[fidCalibration] =
                headLength + counts->noOfCalibrationRecords * length<CalibrationRecord_g1>;
        }
    } else {
        lengths[fidApplicationIdentification] = length<Second>;
        if (const auto* counts = as<Second>(first)) {
            addSecond(lengths, *counts, as<WorkshopCardApplicationIdentification_g2_2>(second));
            lengths[fidCalibration] =
                pointerLength + pointed<CalibrationRecord_g2>(counts->noOfCalibrationRecords);
            lengths[fidCalibrationAddData] =
                pointed<WorkshopCardCalibrationAddDataRecord_g2_2>(counts->noOfCalibrationRecords);
        }
    }
    return lengths;
}

/// Control and company cards are alike, but for what they keep.
Lengths officeLengths(const Expected& expected, const QByteArray& first)
{
    using Application = CompanyCardApplicationIdentification;
    const bool isCompany = expected.cardType == SCardMeta::CompanyCard;
    Lengths lengths = chipLengths();
    lengths[fidIdentification] =
        isCompany ? length<CompanyCard_EF_Identification> : controllerIdentificationLength;
    lengths[fidApplicationIdentification] = length<Application>;
    lengths[fidApplicationIdentificationV2] = length<CompanyCardApplicationIdentification_g2_v2>;
    if (const auto* counts = as<Application>(first)) {
        lengths[fidCompanyActivityData] = pointed<CompanyActivityRecord>(counts->noOfCompanyActivityRecords);
        lengths[fidControllerActivityData] =
            pointerLength +
            static_cast<int>(counts->noOfCompanyActivityRecords.value()) * controllerActivityLength;
    }
    return lengths;
}

} // namespace

std::map<unsigned short, int>
fileLengths(const Expected& expected, const QByteArray& identification, const QByteArray& identification2)
{
    switch (expected.cardType) {
    case SCardMeta::DriverCard:
        return driverLengths(expected, identification, identification2);
    case SCardMeta::WorkshopCard:
        return workshopLengths(expected, identification, identification2);
    case SCardMeta::ControlCard:
    case SCardMeta::CompanyCard:
        return officeLengths(expected, identification);
    default:
        return chipLengths();
    }
}

} // namespace scard::verify::detail
