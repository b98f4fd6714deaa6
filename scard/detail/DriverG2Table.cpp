#include <scard/detail/DriverG2Table.h>

#include <scard/detail/ApplicationName.h>
#include <scard/detail/TableParts.h>

namespace scard::detail {

namespace {

EfTable makeDriverG2Table()
{
    using Application = DriverCardApplicationIdentification_g2;
    const UsageCountsG2<Application> counts;

    const Piece certificate = records<unsigned char>(certificateLength());
    const Piece pointer = one<UInt16>();
    const Piece activities = records<unsigned char>(counts.activityLength);

    EfTable table;
    table.applicationName = secondGenerationApplication();
    table.secondGeneration = true;
    table.counts = {
        {fidApplicationIdentification,
         "calcDataToRead(): Error reading SCardDriver G2 EF_Application_Identification:"},
        {fidApplicationIdentificationV2,
         "calcDataToRead(): Error reading SCardDriver G2 EF_Application_Identification_V2:"}};
    table.rows = chipRows();
    // clang-format off
    appendRows(table, {
        {efIdentification, {one<DriverCard_EF_Identification>()}, isSigned, required},
        {efApplicationIdentification, {one<Application>()}, isSigned, required},
        {efMaCertificate, {certificate}, notSigned, optional},
        {efCardSignCertificate, {certificate}, notSigned, optional},
        {efCaCertificate, {certificate}, notSigned, optional},
        {efLinkCertificate, {certificate}, notSigned, optional},
        {efCardDownload, {one<TimeReal>()}, isSigned, optional},
        {efDrivingLicenceInfo, {one<CardDrivingLicenceInformation>()}, isSigned, optional},
        {efEventsData, {records<CardEventRecord>(counts.eventsPerType, eventGroupsG2)}, isSigned, required},
        {efFaultsData, {records<CardFaultRecord>(counts.faultsPerType, faultGroups)}, isSigned, required},
        {efDriverActivityData, {pointer, pointer, activities}, isSigned, required},
        {efVehiclesUsed, {pointer, records<CardVehicleRecord_g2>(counts.vehicles)}, isSigned, required},
        {efPlaces, {pointer, records<PlaceRecord_g2>(counts.places)}, isSigned, optional},
        {efCurrentUsage, {one<CardCurrentUse>()}, isSigned, optional},
        {efControlActivityData, {one<CardControlActivityDataRecord>()}, isSigned, optional},
        {efSpecificConditions, {pointer, records<SpecificConditionRecord>(counts.conditions)}, isSigned, optional},
        {efVehicleUnitsUsed, {pointer, records<CardVehicleUnitsRecord_g2>(counts.vehicleUnits)}, isSigned, optional},
        {efGnssPlaces, {pointer, records<GNSSContinousDrivingRecord_g2>(counts.gnssPlaces)}, isSigned, optional},
    });
    // clang-format on
    appendRows(table, version2Rows<Application, DriverCardApplicationIdentification_g2_2>());
    table.saveOrder = savingOrder(table.rows);
    return table;
}

} // namespace

const EfTable& driverG2Table()
{
    static const EfTable table = makeDriverG2Table();
    return table;
}

} // namespace scard::detail
