#include "UsageContentsG2.h"

#include "Text.h"

namespace sim {

namespace {

using namespace rights;

// Annex 1C, Appendix 2: the same on driver and workshop cards.
constexpr FileRow<UsageContentsG2> UsageFilesG2[] = {
    {0x0502, &UsageContentsG2::eventsData, Always, Secure, true, 12},
    {0x0503, &UsageContentsG2::faultsData, Always, Secure, true, 13},
    {0x0504, &UsageContentsG2::driverActivityData, Always, Secure, true, 14},
    {0x0505, &UsageContentsG2::vehiclesUsed, Always, Secure, true, 15},
    {0x0506, &UsageContentsG2::places, Always, Secure, true, 16},
    {0x0507, &UsageContentsG2::currentUsage, Always, Secure, true, 17},
    {0x0508, &UsageContentsG2::controlActivityData, Always, Secure, true, 18},
    {0x0522, &UsageContentsG2::specificConditions, Always, Secure, true, 19},
    {0x0523, &UsageContentsG2::vehicleUnitsUsed, Always, Secure, true, 20},
    {0x0524, &UsageContentsG2::gnssPlaces, Always, Secure, true, 21},
    {0x0526, &UsageContentsG2::placesAuthentication, Always, Secure, true, 23},
    {0x0527, &UsageContentsG2::gnssPlacesAuthentication, Always, Secure, true, 24},
    {0x0528, &UsageContentsG2::borderCrossings, Always, Secure, true, 25},
    {0x0529, &UsageContentsG2::loadUnloadOperations, Always, Secure, true, 26},
    {0x0530, &UsageContentsG2::loadTypeEntries, Always, Secure, true, 27},
};

constexpr std::uint32_t EventStreamG2 = 35;
constexpr std::uint32_t EventStreamVersion2 = 36;
constexpr std::uint32_t FaultStreamG2 = 37;
constexpr std::uint32_t FaultStreamVersion2 = 38;

constexpr std::size_t VehicleRecordLengthG2 = 48;
constexpr std::size_t PlaceRecordLengthG2 = 21;
constexpr std::size_t VehicleUnitRecordLength = 10;
constexpr std::size_t GnssRecordLength = 18;
constexpr std::size_t AuthenticationRecordLength = 5;
constexpr std::size_t CrossingRecordLength = 17;
constexpr std::size_t OperationRecordLength = 20;
constexpr std::size_t LoadRecordLength = 5;

constexpr std::size_t SoftwareVersionLength = 4;
constexpr std::uint32_t UnknownCoordinate = 0x7FFFFF;
constexpr std::uint8_t UnknownAccuracy = 0xFF;

/// GeoCoordinates: degrees and minutes as +-DDMM.M or +-DDDMM.M, times 10, in two's complement.
void appendCoordinate(Bytes& to, int tenthsOfMinute)
{
    const int magnitude = tenthsOfMinute < 0 ? -tenthsOfMinute : tenthsOfMinute;
    const int digits = magnitude / 600 * 1000 + magnitude % 600;
    appendU24(to, static_cast<std::uint32_t>(tenthsOfMinute < 0 ? -digits : digits));
}

/// GNSSPlaceRecord
void appendFix(Bytes& to, const Fix& fix)
{
    appendU32(to, fix.time);
    if (fix.position) {
        appendU8(to, fix.accuracy);
        appendCoordinate(to, fix.position->latitude);
        appendCoordinate(to, fix.position->longitude);
    } else {
        appendU8(to, UnknownAccuracy);
        appendU24(to, UnknownCoordinate);
        appendU24(to, UnknownCoordinate);
    }
}

/// PositionAuthenticationStatus
std::uint8_t statusOf(const Fix& fix)
{
    return fix.authenticated ? 1 : 0;
}

/// GNSSPlaceAuthRecord
void appendAuthenticatedFix(Bytes& to, const Fix& fix)
{
    appendFix(to, fix);
    appendU8(to, statusOf(fix));
}

/// What the first generation knows and, in groups of their own or among the security breaches, what it does
/// not.
IncidentGroups makeEvents(const UsageParametersG2& parameters, const UsageStory& story)
{
    static const std::vector<IncidentKind> added = {
        {{0x0A}, 0, 2, 90},             // vehicle motion conflict
        {{0x0B}, 0, 2, 0},              // time conflict
        {{0x0C}, 0, 2, 600},            // communication with the remote communication facility
        {{0x0D}, 1, 4, 5400},           // no position
        {{0x0E}, 0, 2, 900},            // communication with the external GNSS facility
        {{0x19, 0x1A, 0x1B}, 0, 2, 60}, // security breach attempts
    };
    static const std::vector<IncidentKind> addedInVersion2 = {{{0x1C}, 0, 2, 120}};

    Random random(parameters.seed, EventStreamG2);
    const IncidentGroups news = makeIncidents(added, story.life, random);
    IncidentGroups groups(story.events.begin(), story.events.end() - 1);
    groups.insert(groups.end(), news.begin(), news.end() - 1);
    groups.push_back(story.events.back());
    mergeIncidents(groups.back(), news.back());
    if (parameters.version2) {
        Random random2(parameters.seed, EventStreamVersion2);
        mergeIncidents(groups.back(), makeIncidents(addedInVersion2, story.life, random2).front());
    }
    return groups;
}

IncidentGroups makeFaults(const UsageParametersG2& parameters, const UsageStory& story)
{
    static const std::vector<IncidentKind> added = {{{0x36, 0x37, 0x38, 0x39}, 0, 3, 3600}};
    static const std::vector<IncidentKind> addedInVersion2 = {{{0x3A}, 0, 2, 1800}};

    IncidentGroups groups = story.faults;
    Random random(parameters.seed, FaultStreamG2);
    mergeIncidents(groups.front(), makeIncidents(added, story.life, random).front());
    if (parameters.version2) {
        Random random2(parameters.seed, FaultStreamVersion2);
        mergeIncidents(groups.front(), makeIncidents(addedInVersion2, story.life, random2).front());
    }
    return groups;
}

Bytes makeVehiclesUsed(
    const UsageParametersG2& parameters, const DriverLife& life, const DriverJourney& journey)
{
    std::vector<Bytes> records;
    for (const VehicleUse& use : life.uses) {
        Bytes record;
        appendU24(record, use.odometerBegin);
        appendU24(record, use.odometerEnd);
        appendU32(record, use.begin);
        appendU32(record, use.end);
        appendRegistration(record, life.fleet[use.vehicle], parameters.codePage);
        appendCounter(record, use.blockCounter);
        appendBytes(record, asciiField(journey.vehicles[use.vehicle].vin, VinLength));
        records.push_back(record);
    }
    return cyclicFile(records, parameters.vehicles, VehicleRecordLengthG2);
}

Bytes makePlaces(const UsageParametersG2& parameters, const DriverLife& life, const DriverJourney& journey)
{
    std::vector<Bytes> records;
    for (std::size_t i = 0; i < life.places.size(); ++i) {
        const Place& place = life.places[i];
        Bytes record;
        appendU32(record, place.time);
        appendU8(record, static_cast<std::uint32_t>(place.entry));
        appendU8(record, place.nation);
        appendU8(record, place.region);
        appendU24(record, place.odometer);
        appendFix(record, journey.placeFixes[i]);
        records.push_back(record);
    }
    return cyclicFile(records, parameters.places, PlaceRecordLengthG2);
}

Bytes makeSpecificConditions(const UsageParametersG2& parameters, const DriverLife& life)
{
    std::vector<Bytes> records;
    for (const SpecificCondition& condition : life.conditions) {
        Bytes record;
        appendU32(record, condition.time);
        appendU8(record, static_cast<std::uint32_t>(condition.condition));
        records.push_back(record);
    }
    return cyclicFile(records, parameters.specificConditions, ConditionRecordLength);
}

Bytes makeVehicleUnitsUsed(const UsageParametersG2& parameters, const DriverJourney& journey)
{
    std::vector<Bytes> records;
    for (const UnitUse& use : journey.units) {
        const VehicleIdentity& identity = journey.vehicles[use.vehicle];
        Bytes record;
        appendU32(record, use.time);
        appendU8(record, identity.unitManufacturer);
        appendU8(record, identity.unitId);
        appendBytes(record, asciiField(identity.unitSoftware, SoftwareVersionLength));
        records.push_back(record);
    }
    return cyclicFile(records, parameters.vehicleUnits, VehicleUnitRecordLength);
}

Bytes makeGnssPlaces(const UsageParametersG2& parameters, const DriverJourney& journey)
{
    std::vector<Bytes> records;
    for (const DrivingMark& mark : journey.marks) {
        Bytes record;
        appendU32(record, mark.fix.time);
        appendFix(record, mark.fix);
        appendU24(record, mark.odometer);
        records.push_back(record);
    }
    return cyclicFile(records, parameters.gnssPlaces, GnssRecordLength);
}

/// The time stamp of the record it belongs to, and the status of its position.
Bytes authenticationRecord(std::uint32_t time, const Fix& fix)
{
    Bytes record;
    appendU32(record, time);
    appendU8(record, statusOf(fix));
    return record;
}

Bytes makePlacesAuthentication(
    const UsageParametersG2& parameters, const DriverLife& life, const DriverJourney& journey)
{
    std::vector<Bytes> records;
    for (std::size_t i = 0; i < life.places.size(); ++i) {
        records.push_back(authenticationRecord(life.places[i].time, journey.placeFixes[i]));
    }
    return cyclicFile(records, parameters.places, AuthenticationRecordLength);
}

Bytes makeGnssPlacesAuthentication(const UsageParametersG2& parameters, const DriverJourney& journey)
{
    std::vector<Bytes> records;
    for (const DrivingMark& mark : journey.marks) {
        records.push_back(authenticationRecord(mark.fix.time, mark.fix));
    }
    return cyclicFile(records, parameters.gnssPlaces, AuthenticationRecordLength);
}

Bytes makeBorderCrossings(const UsageParametersG2& parameters, const DriverJourney& journey)
{
    std::vector<Bytes> records;
    for (const BorderCrossing& crossing : journey.crossings) {
        Bytes record = {crossing.left, crossing.entered};
        appendAuthenticatedFix(record, crossing.fix);
        appendU24(record, crossing.odometer);
        records.push_back(record);
    }
    return cyclicFile(records, parameters.borderCrossings, CrossingRecordLength);
}

Bytes makeLoadUnloadOperations(const UsageParametersG2& parameters, const DriverJourney& journey)
{
    std::vector<Bytes> records;
    for (const LoadOperation& operation : journey.operations) {
        Bytes record;
        appendU32(record, operation.fix.time);
        appendU8(record, static_cast<std::uint32_t>(operation.handling));
        appendAuthenticatedFix(record, operation.fix);
        appendU24(record, operation.odometer);
        records.push_back(record);
    }
    return cyclicFile(records, parameters.loadUnloadOperations, OperationRecordLength);
}

Bytes makeLoadTypeEntries(const UsageParametersG2& parameters, const DriverJourney& journey)
{
    std::vector<Bytes> records;
    for (const LoadEntry& entry : journey.loads) {
        Bytes record;
        appendU32(record, entry.time);
        appendU8(record, static_cast<std::uint32_t>(entry.load));
        records.push_back(record);
    }
    return cyclicFile(records, parameters.loadTypeEntries, LoadRecordLength);
}

void fillVersion2(
    UsageContentsG2& contents, const UsageParametersG2& parameters, const DriverLife& life,
    const DriverJourney& journey)
{
    contents.placesAuthentication = makePlacesAuthentication(parameters, life, journey);
    contents.gnssPlacesAuthentication = makeGnssPlacesAuthentication(parameters, journey);
    contents.borderCrossings = makeBorderCrossings(parameters, journey);
    contents.loadUnloadOperations = makeLoadUnloadOperations(parameters, journey);
    contents.loadTypeEntries = makeLoadTypeEntries(parameters, journey);
}

void check(const UsageParametersG2& parameters)
{
    sim::check(static_cast<const UsageParameters&>(parameters));
    requireParameter(
        parameters.gnssPlaces > 0 && parameters.vehicleUnits > 0,
        "a record count of 0 in the second generation");
    requireParameter(
        !parameters.version2 || (parameters.borderCrossings > 0 && parameters.loadUnloadOperations > 0 &&
                                 parameters.loadTypeEntries > 0),
        "a record count of 0 in version 2");
}

} // namespace

void addUsageFilesG2(std::vector<FileDescription>& to, const UsageContentsG2& contents)
{
    addFiles(to, UsageFilesG2, contents);
}

UsageContentsG2 makeUsageContentsG2(
    const UsageParametersG2& parameters, const UsageStory& story, const DriverJourney& journey)
{
    check(parameters);
    const DriverLife& life = story.life;
    UsageContentsG2 contents;
    contents.eventsData = makeIncidentFile(
        makeEvents(parameters, story), parameters.eventsPerType, life.fleet, parameters.codePage);
    contents.faultsData = makeIncidentFile(
        makeFaults(parameters, story), parameters.faultsPerType, life.fleet, parameters.codePage);
    contents.driverActivityData = makeActivity(parameters, life.days);
    contents.vehiclesUsed = makeVehiclesUsed(parameters, life, journey);
    contents.places = makePlaces(parameters, life, journey);
    contents.currentUsage = makeCurrentUsage();
    contents.controlActivityData = makeControlActivity(parameters, life);
    contents.specificConditions = makeSpecificConditions(parameters, life);
    contents.vehicleUnitsUsed = makeVehicleUnitsUsed(parameters, journey);
    contents.gnssPlaces = makeGnssPlaces(parameters, journey);
    if (parameters.version2) {
        fillVersion2(contents, parameters, life, journey);
    }
    return contents;
}

} // namespace sim
