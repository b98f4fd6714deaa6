#include <scard/detail/DriverG2Table.h>

#include <scard/detail/ApplicationName.h>
#include <scard/detail/Fid.h>
#include <scard/records/DriverCard.h>
#include <scard/records/Identification.h>

namespace scard::detail {

namespace {

// Annex 1C, Appendix 2: kinds of events and faults, each with as many records as the card says.
constexpr unsigned short eventGroups = 11;
constexpr unsigned short faultGroups = 2;

EfTable makeTable()
{
    using Application = DriverCardApplicationIdentification_g2;
    using ApplicationV2 = DriverCardApplicationIdentification_g2_2;
    constexpr unsigned short id = fidApplicationIdentification;
    constexpr unsigned short idV2 = fidApplicationIdentificationV2;
    const RecordCount eventsPerType = SCARD_COUNT_FIELD(id, Application, noOfEventsPerType);
    const RecordCount faultsPerType = SCARD_COUNT_FIELD(id, Application, noOfFaultsPerType);
    const RecordCount activityLength = SCARD_COUNT_FIELD(id, Application, activityStructureLength);
    const RecordCount vehicles = SCARD_COUNT_FIELD(id, Application, noOfCardVehicleRecords);
    const RecordCount places = SCARD_COUNT_FIELD(id, Application, noOfCardPlaceRecords);
    const RecordCount gnssPlaces = SCARD_COUNT_FIELD(id, Application, noOfGNSSADRecords);
    const RecordCount conditions = SCARD_COUNT_FIELD(id, Application, noOfSpecificConditionRecords);
    const RecordCount vehicleUnits = SCARD_COUNT_FIELD(id, Application, noOfCardVehicleUnitRecords);
    const RecordCount crossings = SCARD_COUNT_FIELD(idV2, ApplicationV2, noOfBorderCrossingRecords);
    const RecordCount operations = SCARD_COUNT_FIELD(idV2, ApplicationV2, noOfLoadUnloadRecords);
    const RecordCount loadTypes = SCARD_COUNT_FIELD(idV2, ApplicationV2, noOfLoadTypeEntryRecords);

    const Piece certificate = records<unsigned char>(certificateLength());
    const Piece pointer = one<UInt16>();
    const Piece activities = records<unsigned char>(activityLength);

    constexpr auto yes = Signing::Signed;
    constexpr auto no = Signing::Unsigned;
    constexpr auto required = InImage::Required;
    constexpr auto optional = InImage::Optional;
    constexpr auto download = ReadAt::Download;
    constexpr auto v2 = OnCards::Version2_2;

    EfTable table;
    table.applicationName = secondGenerationApplication();
    table.secondGeneration = true;
    // Names and failure texts are spelled as they always were: people search their logs for them.
    // clang-format off
    table.rows = {
        {fidIcc, "EF_ICC", "", {one<CardIccIdentification>()}, no, optional, ReadAt::Identification},
        {fidIc, "EF_IC", "", {one<CardIcIdentification>()}, no, optional, ReadAt::Identification},
        {fidIdentification, "EF_Identification", "Error reading EF_Identification:", {one<DriverCard_EF_Identification>()}, yes, required},
        {fidApplicationIdentification, "EF_Application_Identification", "Error reading EF_Application_Identification:", {one<Application>()}, yes, required},
        {fidCardCertificate, "EF_MA_Certificate", "Error reading EF_MA_Certificate:", {certificate}, no, optional},
        {fidCardSignCertificate, "EF_Card_Sign_Certificate", "Error reading EF_Card_Sign_Certificate:", {certificate}, no, optional},
        {fidCaCertificate, "EF_CA_Certificate", "Error reading EF_CA_Certificate:", {certificate}, no, optional},
        {fidLinkCertificate, "EF_Link_Certificate", "Error reading EF_Link_Certificate:", {certificate}, no, optional},
        {fidCardDownload, "EF_Card_Download", "Error reading EF_Card_Download:", {one<TimeReal>()}, yes, optional},
        {fidDrivingLicenceInfo, "EF_Driving_License_Info", "Error reading EF_Driving_License_Info:", {one<CardDrivingLicenceInformation>()}, yes, optional},
        {fidEventsData, "EF_EventsData", "Error reading EF_EventsData:", {records<CardEventRecord>(eventsPerType, eventGroups)}, yes, required},
        {fidFaultsData, "EF_FaultsData", "Error reading EF_FaultsData:", {records<CardFaultRecord>(faultsPerType, faultGroups)}, yes, required},
        {fidDriverActivityData, "EF_Driver_Activity_Data", "Error reading EF_Driver_Activity_Data:", {pointer, pointer, activities}, yes, required},
        {fidVehiclesUsed, "EF_Vehicles_Used", "Error reading EF_Vehicles_Used:", {pointer, records<CardVehicleRecord_g2>(vehicles)}, yes, required},
        {fidPlaces, "EF_Places", "Error reading EF_Places:", {pointer, records<PlaceRecord_g2>(places)}, yes, optional},
        {fidCurrentUsage, "EF_Current_Usage", "Error reading EF_Current_Usage:", {one<CardCurrentUse>()}, yes, optional},
        {fidControlActivityData, "EF_Control_Activity_Data", "Error reading EF_Control_Activity_Data:", {one<CardControlActivityDataRecord>()}, yes, optional},
        {fidSpecificConditions, "EF_Specific_Conditions", "Error reading m_EF_Specitifc_Conditions:", {pointer, records<SpecificConditionRecord>(conditions)}, yes, optional},
        {fidVehicleUnitsUsed, "EF_Vehicle_Units_Used", "Error reading m_EF_Vehicle_Units_Used:", {pointer, records<CardVehicleUnitsRecord_g2>(vehicleUnits)}, yes, optional},
        {fidGnssPlaces, "EF_GNSS_Places", "Error reading m_EF_GNSS_Places:", {pointer, records<GNSSContinousDrivingRecord_g2>(gnssPlaces)}, yes, optional},
        {fidApplicationIdentificationV2, "EF_Application_Identification_V2", "Error reading EF_Application_Identification_V2:", {one<ApplicationV2>()}, yes, required, download, v2},
        {fidPlacesAuthentication, "EF_Places_Authentication", "Error reading EF_Places_Authentication:", {pointer, records<PlaceAuthStatusRecord_g2_2>(places)}, yes, optional, download, v2},
        {fidGnssPlacesAuthentication, "EF_GNSS_Places_Authentication", "Error reading EF_GNSS_Places_Authentication:", {pointer, records<GNSSAuthStatusADRecord_g2_2>(gnssPlaces)}, yes, optional, download, v2},
        {fidBorderCrossings, "EF_Border_Crossing", "Error reading EF_Border_Crossing:", {pointer, records<CardBorderCrossingRecord_g2_2>(crossings)}, yes, optional, download, v2},
        {fidLoadUnloadOperations, "EF_Load_Unload_Operations", "Error reading EF_Load_Unload_Operations:", {pointer, records<CardLoadUnloadRecord_g2_2>(operations)}, yes, optional, download, v2},
        {fidLoadTypeEntries, "EF_Load_Type_Entries", "Error reading EF_Load_Type_Entries:", {pointer, records<CardLoadTypeEntryRecord_g2_2>(loadTypes)}, yes, optional, download, v2},
    };
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
