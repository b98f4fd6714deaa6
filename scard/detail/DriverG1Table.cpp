#include <scard/detail/DriverG1Table.h>

#include <scard/detail/ApplicationName.h>
#include <scard/detail/TableParts.h>

namespace scard::detail {

namespace {

// Annex 1B, Appendix 2: a size that no count decides.
constexpr std::uint32_t specificConditions = 56;

EfTable makeTable()
{
    using Application = DriverCardApplicationIdentification_g1;
    const UsageCounts<Application> counts;

    const Piece certificate = records<unsigned char>(fixedCount(certificateBytesG1));
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
         "calcDataToRead(): Error reading SCardDriver G1 EF_Application_Identification:"}};
    table.totalEntry = OwnEntry::Last;
    table.rows = chipRows();
    // Identification first, so that holder, language and file name are known early.
    // clang-format off
    appendRows(table, {
        {efIdentification, {one<DriverCard_EF_Identification>()}, yes, required},
        {efApplicationIdentification, {one<Application>()}, yes, required},
        {efCardCertificate, {certificate}, no, optional},
        {efCaCertificate, {certificate}, no, optional},
        {efCardDownload, {one<TimeReal>()}, yes, optional},
        {efDrivingLicenceInfo, {one<CardDrivingLicenceInformation>()}, yes, optional},
        {efEventsData, {records<CardEventRecord>(counts.eventsPerType, eventGroupsG1)}, yes, required},
        {efFaultsData, {records<CardFaultRecord>(counts.faultsPerType, faultGroups)}, yes, required},
        {efDriverActivityData, {pointer, pointer, activities}, yes, required},
        {efVehiclesUsed, {pointer, records<CardVehicleRecord_g1>(counts.vehicles)}, yes, required},
        {efPlaces, {bytePointer, records<PlaceRecord_g1>(counts.places)}, yes, optional},
        {efCurrentUsage, {one<CardCurrentUse>()}, yes, optional},
        {efControlActivityData, {one<CardControlActivityDataRecord>()}, yes, optional},
        {efSpecificConditions, {conditions}, yes, optional},
    });
    // clang-format on
    table.saveOrder = {
        fidIcc,
        fidIc,
        fidApplicationIdentification,
        fidCardCertificate,
        fidCaCertificate,
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
        fidSpecificConditions};
    return table;
}

} // namespace

const EfTable& driverG1Table()
{
    static const EfTable table = makeTable();
    return table;
}

} // namespace scard::detail
