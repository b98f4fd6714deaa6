#include <scard/detail/DriverG2Table.h>

#include <scard/detail/ApplicationName.h>
#include <scard/detail/TableParts.h>

namespace scard::detail {

namespace {

EfTable makeTable()
{
    using Application = DriverCardApplicationIdentification_g2;
    const UsageCountsG2<Application> counts;

    const Piece certificate = records<unsigned char>(certificateLength());
    const Piece pointer = one<UInt16>();
    const Piece activities = records<unsigned char>(counts.activityLength);

    constexpr auto yes = Signing::Signed;
    constexpr auto no = Signing::Unsigned;
    constexpr auto required = InImage::Required;
    constexpr auto optional = InImage::Optional;

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
        {efIdentification, {one<DriverCard_EF_Identification>()}, yes, required},
        {efApplicationIdentification, {one<Application>()}, yes, required},
        {efMaCertificate, {certificate}, no, optional},
        {efCardSignCertificate, {certificate}, no, optional},
        {efCaCertificate, {certificate}, no, optional},
        {efLinkCertificate, {certificate}, no, optional},
        {efCardDownload, {one<TimeReal>()}, yes, optional},
        {efDrivingLicenceInfo, {one<CardDrivingLicenceInformation>()}, yes, optional},
        {efEventsData, {records<CardEventRecord>(counts.eventsPerType, eventGroupsG2)}, yes, required},
        {efFaultsData, {records<CardFaultRecord>(counts.faultsPerType, faultGroups)}, yes, required},
        {efDriverActivityData, {pointer, pointer, activities}, yes, required},
        {efVehiclesUsed, {pointer, records<CardVehicleRecord_g2>(counts.vehicles)}, yes, required},
        {efPlaces, {pointer, records<PlaceRecord_g2>(counts.places)}, yes, optional},
        {efCurrentUsage, {one<CardCurrentUse>()}, yes, optional},
        {efControlActivityData, {one<CardControlActivityDataRecord>()}, yes, optional},
        {efSpecificConditions, {pointer, records<SpecificConditionRecord>(counts.conditions)}, yes, optional},
        {efVehicleUnitsUsed, {pointer, records<CardVehicleUnitsRecord_g2>(counts.vehicleUnits)}, yes, optional},
        {efGnssPlaces, {pointer, records<GNSSContinousDrivingRecord_g2>(counts.gnssPlaces)}, yes, optional},
    });
    // clang-format on
    appendRows(table, version2Rows<Application, DriverCardApplicationIdentification_g2_2>());
    table.saveOrder = {
        fidIcc,
        fidIc,
        fidApplicationIdentification,
        fidCardCertificate,
        fidCardSignCertificate,
        fidCaCertificate,
        fidLinkCertificate,
        fidIdentification,
        fidCardDownload,
        fidDrivingLicenceInfo,
        fidEventsData,
        fidFaultsData,
        fidDriverActivityData,
        fidVehiclesUsed,
        fidPlaces,
        fidCurrentUsage,
        fidControlActivityData,
        fidSpecificConditions,
        fidVehicleUnitsUsed,
        fidGnssPlaces,
        fidApplicationIdentificationV2,
        fidPlacesAuthentication,
        fidGnssPlacesAuthentication,
        fidBorderCrossings,
        fidLoadUnloadOperations,
        fidLoadTypeEntries};
    return table;
}

} // namespace

const EfTable& driverG2Table()
{
    static const EfTable table = makeTable();
    return table;
}

} // namespace scard::detail
