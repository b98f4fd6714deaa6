#include <scard/detail/WorkshopG1Table.h>

#include <scard/detail/ApplicationName.h>
#include <scard/detail/TableParts.h>
#include <scard/records/WorkshopCard.h>

namespace scard::detail {

namespace {

EfTable makeWorkshopG1Table()
{
    // Annex 1B, Appendix 2: a size that no count decides.
    constexpr std::uint32_t specificConditions = 2;

    using Application = WorkshopCardApplicationIdentification_g1;
    const UsageCounts<Application> counts;
    const RecordCount calibrations =
        SCARD_COUNT_FIELD(fidApplicationIdentification, Application, noOfCalibrationRecords);

    const Piece certificate = records<unsigned char>(fixedCount(certificateBytesG1));
    const Piece number = one<UInt16>();
    const Piece pointer = one<UInt16>();
    const Piece bytePointer = one<unsigned char>();
    const Piece activities = records<unsigned char>(counts.activityLength);
    const Piece conditions = records<SpecificConditionRecord>(fixedCount(specificConditions));

    EfTable table;
    table.applicationName = firstGenerationApplication();
    table.secondGeneration = false;
    table.counts = {
        {fidApplicationIdentification,
         "calcDataToRead(): Error reading SCardWorkshop G1 EF_Application_Identification:"}};
    table.readingText = "read Tachograph";
    table.rows = chipRows();
    // clang-format off
    appendRows(table, {
        {efIdentification, {one<WorkshopCard_EF_Identification>()}, isSigned, required},
        {efApplicationIdentification, {one<Application>()}, isSigned, required},
        {efCardCertificate, {certificate}, notSigned, optional},
        {efCaCertificate, {certificate}, notSigned, optional},
        {efCardDownloadWorkshop, {number}, isSigned, optional},
        {efCalibrationG1, {number, bytePointer, records<CalibrationRecord_g1>(calibrations)}, isSigned, required},
        {efEventsData, {records<CardEventRecord>(counts.eventsPerType, eventGroupsG1)}, isSigned, required},
        {efFaultsData, {records<CardFaultRecord>(counts.faultsPerType, faultGroups)}, isSigned, required},
        {efDriverActivityData, {pointer, pointer, activities}, isSigned, required},
        {efVehiclesUsed, {pointer, records<CardVehicleRecord_g1>(counts.vehicles)}, isSigned, required},
        {efPlaces, {bytePointer, records<PlaceRecord_g1>(counts.places)}, isSigned, required},
        {efCurrentUsage, {one<CardCurrentUse>()}, isSigned, required},
        {efControlActivityData, {one<CardControlActivityDataRecord>()}, isSigned, required},
        {efSpecificConditions, {conditions}, isSigned, required},
    });
    // clang-format on
    table.saveOrder = savingOrder(table.rows);
    return table;
}

} // namespace

const EfTable& workshopG1Table()
{
    static const EfTable table = makeWorkshopG1Table();
    return table;
}

} // namespace scard::detail
