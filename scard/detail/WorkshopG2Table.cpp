#include <scard/detail/WorkshopG2Table.h>

#include <scard/detail/ApplicationName.h>
#include <scard/detail/TableParts.h>
#include <scard/records/WorkshopCard.h>

namespace scard::detail {

namespace {

EfTable makeWorkshopG2Table()
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
        {efIdentification, {one<WorkshopCard_EF_Identification>()}, isSigned, required},
        {efApplicationIdentification, {one<Application>()}, isSigned, required},
        {efMaCertificate, {certificate}, notSigned, optional},
        {efCardSignCertificate, {certificate}, notSigned, optional},
        {efCaCertificate, {certificate}, notSigned, optional},
        {efLinkCertificate, {certificate}, notSigned, optional},
        {efCardDownloadWorkshop, {number}, isSigned, optional},
        {efCalibrationG2, {number, pointer, records<CalibrationRecord_g2>(calibrations)}, isSigned, required},
        {efEventsData, {records<CardEventRecord>(counts.eventsPerType, eventGroupsG2)}, isSigned, required},
        {efFaultsData, {records<CardFaultRecord>(counts.faultsPerType, faultGroups)}, isSigned, required},
        {efDriverActivityData, {pointer, pointer, activities}, isSigned, required},
        {efVehiclesUsed, {pointer, records<CardVehicleRecord_g2>(counts.vehicles)}, isSigned, required},
        {efPlaces, {pointer, records<PlaceRecord_g2>(counts.places)}, isSigned, required},
        {efCurrentUsage, {one<CardCurrentUse>()}, isSigned, required},
        {efControlActivityData, {one<CardControlActivityDataRecord>()}, isSigned, required},
        {efVehicleUnitsUsed, {pointer, records<CardVehicleUnitsRecord_g2>(counts.vehicleUnits)}, isSigned, required},
        {efGnssPlaces, {pointer, records<GNSSContinousDrivingRecord_g2>(counts.gnssPlaces)}, isSigned, required},
        {efSpecificConditions, {pointer, records<SpecificConditionRecord>(counts.conditions)}, isSigned, required},
    });
    appendRows(table, version2Rows<Application, WorkshopCardApplicationIdentification_g2_2>());
    appendRows(table, {{efCalibrationAddData, {pointer, addData}, isSigned, optional, download, version2_2}});
    // clang-format on
    table.saveOrder = savingOrder(table.rows);
    return table;
}

} // namespace

const EfTable& workshopG2Table()
{
    static const EfTable table = makeWorkshopG2Table();
    return table;
}

} // namespace scard::detail
