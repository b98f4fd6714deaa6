#include <scard/detail/DriverG1Table.h>

#include <scard/detail/ApplicationName.h>
#include <scard/detail/Fid.h>
#include <scard/records/DriverCard.h>
#include <scard/records/Identification.h>

namespace scard::detail {

namespace {

// Annex 1B, Appendix 2: sizes that no count decides.
constexpr std::uint32_t certificateBytes = 194;
constexpr unsigned short eventGroups = 6;
constexpr unsigned short faultGroups = 2;
constexpr std::uint32_t specificConditions = 56;

EfTable makeTable()
{
    using Application = DriverCardApplicationIdentification_g1;
    constexpr unsigned short id = fidApplicationIdentification;
    const RecordCount eventsPerType = SCARD_COUNT_FIELD(id, Application, noOfEventsPerType);
    const RecordCount faultsPerType = SCARD_COUNT_FIELD(id, Application, noOfFaultsPerType);
    const RecordCount activityLength = SCARD_COUNT_FIELD(id, Application, activityStructureLength);
    const RecordCount vehicles = SCARD_COUNT_FIELD(id, Application, noOfCardVehicleRecords);
    const RecordCount places = SCARD_COUNT_FIELD(id, Application, noOfCardPlaceRecords);

    const Piece certificate = records<unsigned char>(fixedCount(certificateBytes));
    const Piece pointer = one<UInt16>();
    const Piece bytePointer = one<unsigned char>();
    const Piece activities = records<unsigned char>(activityLength);
    const Piece conditions = records<SpecificConditionRecord>(fixedCount(specificConditions));

    constexpr auto yes = Signing::Signed;
    constexpr auto no = Signing::Unsigned;
    constexpr auto required = InImage::Required;
    constexpr auto optional = InImage::Optional;

    EfTable table;
    table.applicationName = firstGenerationApplication();
    table.secondGeneration = false;
    // Identification first, so that holder, language and file name are known early. The failure text of
    // the last row is spelled as it always was: people search their logs for it.
    // clang-format off
    table.rows = {
        {fidIcc, "EF_ICC", "", {one<CardIccIdentification>()}, no, optional, ReadAt::Identification},
        {fidIc, "EF_IC", "", {one<CardIcIdentification>()}, no, optional, ReadAt::Identification},
        {fidIdentification, "EF_Identification", "Error reading EF_Identification:", {one<DriverCard_EF_Identification>()}, yes, required},
        {fidApplicationIdentification, "EF_Application_Identification", "Error reading EF_Application_Identification:", {one<Application>()}, yes, required},
        {fidCardCertificate, "EF_Card_Certificate", "Error reading EF_Card_Certificate:", {certificate}, no, optional},
        {fidCaCertificate, "EF_CA_Certificate", "Error reading EF_CA_Certificate:", {certificate}, no, optional},
        {fidCardDownload, "EF_Card_Download", "Error reading EF_Card_Download:", {one<TimeReal>()}, yes, optional},
        {fidDrivingLicenceInfo, "EF_Driving_License_Info", "Error reading EF_Driving_License_Info:", {one<CardDrivingLicenceInformation>()}, yes, optional},
        {fidEventsData, "EF_EventsData", "Error reading EF_EventsData:", {records<CardEventRecord>(eventsPerType, eventGroups)}, yes, required},
        {fidFaultsData, "EF_FaultsData", "Error reading EF_FaultsData:", {records<CardFaultRecord>(faultsPerType, faultGroups)}, yes, required},
        {fidDriverActivityData, "EF_Driver_Activity_Data", "Error reading EF_Driver_Activity_Data:", {pointer, pointer, activities}, yes, required},
        {fidVehiclesUsed, "EF_Vehicles_Used", "Error reading EF_Vehicles_Used:", {pointer, records<CardVehicleRecord_g1>(vehicles)}, yes, required},
        {fidPlaces, "EF_Places", "Error reading EF_Places:", {bytePointer, records<PlaceRecord_g1>(places)}, yes, optional},
        {fidCurrentUsage, "EF_Current_Usage", "Error reading EF_Current_Usage:", {one<CardCurrentUse>()}, yes, optional},
        {fidControlActivityData, "EF_Control_Activity_Data", "Error reading EF_Control_Activity_Data:", {one<CardControlActivityDataRecord>()}, yes, optional},
        {fidSpecificConditions, "EF_Specific_Conditions", "Error reading m_EF_Specitifc_Conditions:", {conditions}, yes, optional},
    };
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
