#include <scard/detail/WorkshopG1Table.h>

#include <scard/detail/ApplicationName.h>
#include <scard/detail/TableParts.h>
#include <scard/records/WorkshopCard.h>

namespace scard::detail {

namespace {

// Annex 1B, Appendix 2: a size that no count decides.
constexpr std::uint32_t specificConditions = 2;

EfTable makeTable()
{
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

    constexpr auto yes = Signing::Signed;
    constexpr auto no = Signing::Unsigned;
    constexpr auto required = InImage::Required;
    constexpr auto optional = InImage::Optional;

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
        {efIdentification, {one<WorkshopCard_EF_Identification>()}, yes, required},
        {efApplicationIdentification, {one<Application>()}, yes, required},
        {efCardCertificate, {certificate}, no, optional},
        {efCaCertificate, {certificate}, no, optional},
        {efCardDownloadWorkshop, {number}, yes, optional},
        {efCalibrationG1, {number, bytePointer, records<CalibrationRecord_g1>(calibrations)}, yes, required},
        {efEventsData, {records<CardEventRecord>(counts.eventsPerType, eventGroupsG1)}, yes, required},
        {efFaultsData, {records<CardFaultRecord>(counts.faultsPerType, faultGroups)}, yes, required},
        {efDriverActivityData, {pointer, pointer, activities}, yes, required},
        {efVehiclesUsed, {pointer, records<CardVehicleRecord_g1>(counts.vehicles)}, yes, required},
        {efPlaces, {bytePointer, records<PlaceRecord_g1>(counts.places)}, yes, required},
        {efCurrentUsage, {one<CardCurrentUse>()}, yes, required},
        {efControlActivityData, {one<CardControlActivityDataRecord>()}, yes, required},
        {efSpecificConditions, {conditions}, yes, required},
    });
    // clang-format on
    table.saveOrder = {
        fidIcc,
        fidIc,
        fidApplicationIdentification,
        fidCardCertificate,
        fidCaCertificate,
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
        fidSpecificConditions};
    return table;
}

} // namespace

const EfTable& workshopG1Table()
{
    static const EfTable table = makeTable();
    return table;
}

} // namespace scard::detail
