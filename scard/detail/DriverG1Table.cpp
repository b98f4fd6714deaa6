#include <scard/detail/DriverG1Table.h>

#include <scard/detail/ApplicationName.h>
#include <scard/detail/Fid.h>
#include <scard/records/DriverCard.h>
#include <scard/records/Identification.h>

namespace scard::detail {

namespace {

// Annex 1B, Appendix 2: sizes that no count decides.
constexpr std::uint32_t certificateLength = 194;
constexpr unsigned short eventGroups = 6;
constexpr unsigned short faultGroups = 2;
constexpr std::uint32_t specificConditions = 56;

template <typename Record>
Piece one()
{
    return {sizeof(Record), fixedCount(1), 1};
}

EfTable makeTable()
{
    using Application = DriverCardApplicationIdentification_g1;
    constexpr unsigned short id = fidApplicationIdentification;
    const RecordCount eventsPerType = SCARD_COUNT_FIELD(id, Application, noOfEventsPerType);
    const RecordCount faultsPerType = SCARD_COUNT_FIELD(id, Application, noOfFaultsPerType);
    const RecordCount activityLength = SCARD_COUNT_FIELD(id, Application, activityStructureLength);
    const RecordCount vehicles = SCARD_COUNT_FIELD(id, Application, noOfCardVehicleRecords);
    const RecordCount places = SCARD_COUNT_FIELD(id, Application, noOfCardPlaceRecords);

    const Piece certificate{1, fixedCount(certificateLength), 1};
    const Piece pointer = one<UInt16>();
    const Piece bytePointer{1, fixedCount(1), 1};
    const Piece conditions{sizeof(SpecificConditionRecord), fixedCount(specificConditions), 1};

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
        {0x0002, "EF_ICC", "", {one<CardIccIdentification>()}, no, optional, ReadAt::Identification},
        {0x0005, "EF_IC", "", {one<CardIcIdentification>()}, no, optional, ReadAt::Identification},
        {0x0520, "EF_Identification", "Error reading EF_Identification:", {one<DriverCard_EF_Identification>()}, yes, required},
        {0x0501, "EF_Application_Identification", "Error reading EF_Application_Identification:", {one<Application>()}, yes, required},
        {0xC100, "EF_Card_Certificate", "Error reading EF_Card_Certificate:", {certificate}, no, optional},
        {0xC108, "EF_CA_Certificate", "Error reading EF_CA_Certificate:", {certificate}, no, optional},
        {0x050E, "EF_Card_Download", "Error reading EF_Card_Download:", {one<TimeReal>()}, yes, optional},
        {0x0521, "EF_Driving_License_Info", "Error reading EF_Driving_License_Info:", {one<CardDrivingLicenceInformation>()}, yes, optional},
        {0x0502, "EF_EventsData", "Error reading EF_EventsData:", {{sizeof(CardEventRecord), eventsPerType, eventGroups}}, yes, required},
        {0x0503, "EF_FaultsData", "Error reading EF_FaultsData:", {{sizeof(CardFaultRecord), faultsPerType, faultGroups}}, yes, required},
        {0x0504, "EF_Driver_Activity_Data", "Error reading EF_Driver_Activity_Data:", {pointer, pointer, {1, activityLength, 1}}, yes, required},
        {0x0505, "EF_Vehicles_Used", "Error reading EF_Vehicles_Used:", {pointer, {sizeof(CardVehicleRecord_g1), vehicles, 1}}, yes, required},
        {0x0506, "EF_Places", "Error reading EF_Places:", {bytePointer, {sizeof(PlaceRecord_g1), places, 1}}, yes, optional},
        {0x0507, "EF_Current_Usage", "Error reading EF_Current_Usage:", {one<CardCurrentUse>()}, yes, optional},
        {0x0508, "EF_Control_Activity_Data", "Error reading EF_Control_Activity_Data:", {one<CardControlActivityDataRecord>()}, yes, optional},
        {0x0522, "EF_Specific_Conditions", "Error reading m_EF_Specitifc_Conditions:", {conditions}, yes, optional},
    };
    // clang-format on
    table.saveOrder = {0x0002, 0x0005, 0x0501, 0xC100, 0xC108, 0x0520, 0x050E, 0x0521,
                       0x0502, 0x0503, 0x0504, 0x0505, 0x0506, 0x0507, 0x0508, 0x0522};
    return table;
}

} // namespace

const EfTable& driverG1Table()
{
    static const EfTable table = makeTable();
    return table;
}

} // namespace scard::detail
