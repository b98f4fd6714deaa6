#include <scard/detail/DriverG1Table.h>

#include <scard/detail/ApplicationName.h>
#include <scard/detail/TableParts.h>

namespace scard::detail {

namespace {

EfTable makeDriverG1Table()
{
    // Annex 1B, Appendix 2: a size that no count decides.
    constexpr std::uint32_t specificConditions = 56;

    using Application = DriverCardApplicationIdentification_g1;
    const UsageCounts<Application> counts;

    const Piece certificate = records<unsigned char>(fixedCount(certificateBytesG1));
    const Piece pointer = one<UInt16>();
    const Piece bytePointer = one<unsigned char>();
    const Piece activities = records<unsigned char>(counts.activityLength);
    const Piece conditions = records<SpecificConditionRecord>(fixedCount(specificConditions));

    EfTable table;
    table.applicationName = firstGenerationApplication();
    table.secondGeneration = false;
    table.counts = {
        {fidApplicationIdentification,
         "calcDataToRead(): Error reading SCardDriver G1 EF_Application_Identification:"}};
    table.totalEntry = OwnEntry::Last;
    table.rows = chipRows();
    // Identification first, so that holder, language and file name are known early.
    // clang-format off
    appendRows(table, {
        {efIdentification, {one<DriverCard_EF_Identification>()}, isSigned, required},
        {efApplicationIdentification, {one<Application>()}, isSigned, required},
        {efCardCertificate, {certificate}, notSigned, optional},
        {efCaCertificate, {certificate}, notSigned, optional},
        {efCardDownload, {one<TimeReal>()}, isSigned, optional},
        {efDrivingLicenceInfo, {one<CardDrivingLicenceInformation>()}, isSigned, optional},
        {efEventsData, {records<CardEventRecord>(counts.eventsPerType, eventGroupsG1)}, isSigned, required},
        {efFaultsData, {records<CardFaultRecord>(counts.faultsPerType, faultGroups)}, isSigned, required},
        {efDriverActivityData, {pointer, pointer, activities}, isSigned, required},
        {efVehiclesUsed, {pointer, records<CardVehicleRecord_g1>(counts.vehicles)}, isSigned, required},
        {efPlaces, {bytePointer, records<PlaceRecord_g1>(counts.places)}, isSigned, optional},
        {efCurrentUsage, {one<CardCurrentUse>()}, isSigned, optional},
        {efControlActivityData, {one<CardControlActivityDataRecord>()}, isSigned, optional},
        {efSpecificConditions, {conditions}, isSigned, optional},
    });
    // clang-format on
    table.saveOrder = savingOrder(table.rows);
    return table;
}

} // namespace

const EfTable& driverG1Table()
{
    static const EfTable table = makeDriverG1Table();
    return table;
}

} // namespace scard::detail
