#include <scard/detail/WorkshopG2Table.h>

#include <scard/detail/ApplicationName.h>
#include <scard/detail/TableParts.h>
#include <scard/records/WorkshopCard.h>

namespace scard::detail {

namespace {

EfTable makeTable()
{
    using Application = WorkshopCardApplicationIdentification_g2;
    const UsageCountsG2<Application> counts;
    const RecordCount calibrations =
        SCARD_COUNT_FIELD(fidApplicationIdentification, Application, noOfCalibrationRecords);

    const Piece certificate = records<unsigned char>(certificateLength());
    const Piece number = one<UInt16>();
    const Piece pointer = one<UInt16>();
    const Piece activities = records<unsigned char>(counts.activityLength);
    const Piece addData = records<WorkshopCardCalibrationAddDataRecord_g2_2>(calibrations);

    constexpr auto yes = Signing::Signed;
    constexpr auto no = Signing::Unsigned;
    constexpr auto required = InImage::Required;
    constexpr auto optional = InImage::Optional;
    constexpr auto download = ReadAt::Download;
    constexpr auto v2 = OnCards::Version2_2;

    EfTable table;
    table.applicationName = secondGenerationApplication();
    table.secondGeneration = true;
    table.counts = {
        {fidApplicationIdentification,
         "calcDataToRead(): Error reading SCardWorkshop G2 EF_Application_Identification:"},
        {fidApplicationIdentificationV2,
         "calcDataToRead(): Error reading SCardWorkshop G2 EF_Application_Identification_V2:"}};
    table.readingText = "read Tachograph";
    table.rows = chipRows();
    // Specific conditions come last before version 2.2: another order than on driver cards.
    // clang-format off
    appendRows(table, {
        {efIdentification, {one<WorkshopCard_EF_Identification>()}, yes, required},
        {efApplicationIdentification, {one<Application>()}, yes, required},
        {efMaCertificate, {certificate}, no, optional},
        {efCardSignCertificate, {certificate}, no, optional},
        {efCaCertificate, {certificate}, no, optional},
        {efLinkCertificate, {certificate}, no, optional},
        {efCardDownloadWorkshop, {number}, yes, optional},
        {efCalibrationG2, {number, pointer, records<CalibrationRecord_g2>(calibrations)}, yes, required},
        {efEventsData, {records<CardEventRecord>(counts.eventsPerType, eventGroupsG2)}, yes, required},
        {efFaultsData, {records<CardFaultRecord>(counts.faultsPerType, faultGroups)}, yes, required},
        {efDriverActivityData, {pointer, pointer, activities}, yes, required},
        {efVehiclesUsed, {pointer, records<CardVehicleRecord_g2>(counts.vehicles)}, yes, required},
        {efPlaces, {pointer, records<PlaceRecord_g2>(counts.places)}, yes, required},
        {efCurrentUsage, {one<CardCurrentUse>()}, yes, required},
        {efControlActivityData, {one<CardControlActivityDataRecord>()}, yes, required},
        {efVehicleUnitsUsed, {pointer, records<CardVehicleUnitsRecord_g2>(counts.vehicleUnits)}, yes, required},
        {efGnssPlaces, {pointer, records<GNSSContinousDrivingRecord_g2>(counts.gnssPlaces)}, yes, required},
        {efSpecificConditions, {pointer, records<SpecificConditionRecord>(counts.conditions)}, yes, required},
    });
    appendRows(table, version2Rows<Application, WorkshopCardApplicationIdentification_g2_2>());
    appendRows(table, {{efCalibrationAddData, {pointer, addData}, yes, optional, download, v2}});
    // clang-format on
    table.saveOrder = {
        fidIcc,
        fidIc,
        fidApplicationIdentification,
        fidCardCertificate,
        fidCardSignCertificate,
        fidCaCertificate,
        fidLinkCertificate,
        fidIdentification,
        fidCardDownloadWorkshop,
        fidCalibration,
        fidEventsData,
        fidFaultsData,
        fidDriverActivityData,
        fidVehiclesUsed,
        fidPlaces,
        fidCurrentUsage,
        fidControlActivityData,
        fidVehicleUnitsUsed,
        fidGnssPlaces,
        fidSpecificConditions,
        fidApplicationIdentificationV2,
        fidPlacesAuthentication,
        fidGnssPlacesAuthentication,
        fidBorderCrossings,
        fidLoadUnloadOperations,
        fidLoadTypeEntries,
        fidCalibrationAddData};
    return table;
}

} // namespace

const EfTable& workshopG2Table()
{
    static const EfTable table = makeTable();
    return table;
}

} // namespace scard::detail
