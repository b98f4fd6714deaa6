#include "DriverContentsG2.h"

#include "CardDescription.h"
#include "DriverFiles.h"
#include "DriverJourney.h"
#include "TestPki.h"
#include "TestPkiG2.h"
#include "Text.h"

namespace sim {

namespace {

constexpr std::uint32_t EventStreamG2 = 35;
constexpr std::uint32_t EventStreamVersion2 = 36;
constexpr std::uint32_t FaultStreamG2 = 37;
constexpr std::uint32_t FaultStreamVersion2 = 38;

constexpr std::size_t VehicleRecordLength = 48;
constexpr std::size_t PlaceRecordLength = 21;
constexpr std::size_t ConditionRecordLength = 5;
constexpr std::size_t VehicleUnitRecordLength = 10;
constexpr std::size_t GnssRecordLength = 18;
constexpr std::size_t AuthenticationRecordLength = 5;
constexpr std::size_t CrossingRecordLength = 17;
constexpr std::size_t OperationRecordLength = 20;
constexpr std::size_t LoadRecordLength = 5;

constexpr std::size_t VinLength = 17;
constexpr std::size_t SoftwareVersionLength = 4;
constexpr std::uint16_t VuConfigurationLength = 3072;
constexpr std::size_t SmallestCertificate = 204;
constexpr std::size_t LargestCertificate = 341;

constexpr std::uint32_t UnknownCoordinate = 0x7FFFFF;
constexpr std::uint8_t UnknownAccuracy = 0xFF;

void check(const DriverParametersG2& parameters)
{
    requireParameter(
        parameters.eventsPerType > 0 && parameters.faultsPerType > 0 && parameters.vehicles > 0 &&
            parameters.places > 0 && parameters.gnssPlaces > 0 && parameters.specificConditions > 0 &&
            parameters.vehicleUnits > 0,
        "a record count of 0");
    requireParameter(
        !parameters.version2 || (parameters.borderCrossings > 0 && parameters.loadUnloadOperations > 0 &&
                                 parameters.loadTypeEntries > 0),
        "a record count of 0 in version 2");
    requireParameter(
        parameters.first.wrapPosition < static_cast<int>(parameters.activityLength),
        "the wrap position is not in the activity buffer of the second generation");
}

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

/// Both applications under EF_DIR: an object 61 with an identifier 4F for each.
Bytes makeDir()
{
    Bytes bytes;
    for (const Bytes& aid : {AidG1, AidG2}) {
        const auto length = static_cast<std::uint32_t>(aid.size());
        appendU8(bytes, 0x61);
        appendU8(bytes, length + 2);
        appendU8(bytes, 0x4F);
        appendU8(bytes, length);
        appendBytes(bytes, aid);
    }
    return bytes;
}

Bytes makeApplicationIdentification(const DriverParametersG2& parameters)
{
    Bytes bytes = {static_cast<std::uint8_t>(Equipment::Driver)};
    appendU16(bytes, parameters.version2 ? 0x0101 : 0x0100);
    appendU8(bytes, parameters.eventsPerType);
    appendU8(bytes, parameters.faultsPerType);
    appendU16(bytes, parameters.activityLength);
    appendU16(bytes, parameters.vehicles);
    appendU16(bytes, parameters.places);
    appendU16(bytes, parameters.gnssPlaces);
    appendU16(bytes, parameters.specificConditions);
    appendU16(bytes, parameters.vehicleUnits);
    return bytes;
}

Bytes makeApplicationIdentificationV2(const DriverParametersG2& parameters)
{
    Bytes counts;
    appendU16(counts, parameters.borderCrossings);
    appendU16(counts, parameters.loadUnloadOperations);
    appendU16(counts, parameters.loadTypeEntries);
    appendU16(counts, VuConfigurationLength);
    Bytes bytes;
    appendU16(bytes, static_cast<std::uint32_t>(counts.size()));
    appendBytes(bytes, counts);
    return bytes;
}

Bytes certificateFile(Bytes certificate, CertificateFiles form)
{
    switch (form) {
    case CertificateFiles::Exact:
        break;
    case CertificateFiles::Padded:
        certificate.resize(LargestCertificate, 0x00);
        break;
    case CertificateFiles::Empty:
        return Bytes(SmallestCertificate, 0x00);
    case CertificateFiles::Missing:
        return {};
    }
    return certificate;
}

/// What the first generation knows and, in groups of their own or among the security breaches, what it does
/// not.
IncidentGroups makeEvents(const DriverParametersG2& parameters, const DriverStory& story)
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

    Random random(parameters.first.seed, EventStreamG2);
    const IncidentGroups news = makeIncidents(added, story.life, random);
    IncidentGroups groups(story.events.begin(), story.events.end() - 1);
    groups.insert(groups.end(), news.begin(), news.end() - 1);
    groups.push_back(story.events.back());
    mergeIncidents(groups.back(), news.back());
    if (parameters.version2) {
        Random random2(parameters.first.seed, EventStreamVersion2);
        mergeIncidents(groups.back(), makeIncidents(addedInVersion2, story.life, random2).front());
    }
    return groups;
}

IncidentGroups makeFaults(const DriverParametersG2& parameters, const DriverStory& story)
{
    static const std::vector<IncidentKind> added = {{{0x36, 0x37, 0x38, 0x39}, 0, 3, 3600}};
    static const std::vector<IncidentKind> addedInVersion2 = {{{0x3A}, 0, 2, 1800}};

    IncidentGroups groups = story.faults;
    Random random(parameters.first.seed, FaultStreamG2);
    mergeIncidents(groups.front(), makeIncidents(added, story.life, random).front());
    if (parameters.version2) {
        Random random2(parameters.first.seed, FaultStreamVersion2);
        mergeIncidents(groups.front(), makeIncidents(addedInVersion2, story.life, random2).front());
    }
    return groups;
}

Bytes makeVehiclesUsed(
    const DriverParametersG2& parameters, const DriverLife& life, const DriverJourney& journey)
{
    std::vector<Bytes> records;
    for (const VehicleUse& use : life.uses) {
        Bytes record;
        appendU24(record, use.odometerBegin);
        appendU24(record, use.odometerEnd);
        appendU32(record, use.begin);
        appendU32(record, use.end);
        appendRegistration(record, life.fleet[use.vehicle], parameters.first.codePage);
        appendCounter(record, use.blockCounter);
        appendBytes(record, asciiField(journey.vehicles[use.vehicle].vin, VinLength));
        records.push_back(record);
    }
    return cyclicFile(records, parameters.vehicles, VehicleRecordLength);
}

Bytes makePlaces(const DriverParametersG2& parameters, const DriverLife& life, const DriverJourney& journey)
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
    return cyclicFile(records, parameters.places, PlaceRecordLength);
}

Bytes makeSpecificConditions(const DriverParametersG2& parameters, const DriverLife& life)
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

Bytes makeVehicleUnitsUsed(const DriverParametersG2& parameters, const DriverJourney& journey)
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

Bytes makeGnssPlaces(const DriverParametersG2& parameters, const DriverJourney& journey)
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
    const DriverParametersG2& parameters, const DriverLife& life, const DriverJourney& journey)
{
    std::vector<Bytes> records;
    for (std::size_t i = 0; i < life.places.size(); ++i) {
        records.push_back(authenticationRecord(life.places[i].time, journey.placeFixes[i]));
    }
    return cyclicFile(records, parameters.places, AuthenticationRecordLength);
}

Bytes makeGnssPlacesAuthentication(const DriverParametersG2& parameters, const DriverJourney& journey)
{
    std::vector<Bytes> records;
    for (const DrivingMark& mark : journey.marks) {
        records.push_back(authenticationRecord(mark.fix.time, mark.fix));
    }
    return cyclicFile(records, parameters.gnssPlaces, AuthenticationRecordLength);
}

Bytes makeBorderCrossings(const DriverParametersG2& parameters, const DriverJourney& journey)
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

Bytes makeLoadUnloadOperations(const DriverParametersG2& parameters, const DriverJourney& journey)
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

Bytes makeLoadTypeEntries(const DriverParametersG2& parameters, const DriverJourney& journey)
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

void fillCertificates(DriverContentsG2& contents, const DriverParametersG2& parameters, const Person& person)
{
    const Curve curve = parameters.curve;
    const DriverCardHolder holder = {
        parameters.first.nation, extendedSerialNumber(contents.first.icc), person.issued, person.expires};
    const auto fill = [&](const Bytes& certificate) {
        return certificateFile(certificate, parameters.certificateFiles);
    };
    contents.cardMaCertificate = fill(cardMaCertificateG2(curve, holder));
    contents.cardSignCertificate = fill(cardSignCertificateG2(curve, holder));
    contents.caCertificate = fill(caCertificateG2(curve, holder.nation, dateOf(person.issued).year));
    contents.linkCertificate = certificateFile(linkCertificateG2(curve), parameters.linkCertificate);
}

void fillVersion2(
    DriverContentsG2& contents, const DriverParametersG2& parameters, const DriverLife& life,
    const DriverJourney& journey)
{
    contents.applicationIdentificationV2 = makeApplicationIdentificationV2(parameters);
    contents.placesAuthentication = makePlacesAuthentication(parameters, life, journey);
    contents.gnssPlacesAuthentication = makeGnssPlacesAuthentication(parameters, journey);
    contents.borderCrossings = makeBorderCrossings(parameters, journey);
    contents.loadUnloadOperations = makeLoadUnloadOperations(parameters, journey);
    contents.loadTypeEntries = makeLoadTypeEntries(parameters, journey);
    contents.vuConfiguration = Bytes(VuConfigurationLength, 0x00);
}

} // namespace

DriverContentsG2 makeDriverContentsG2(const DriverParametersG2& parameters)
{
    check(parameters);
    const DriverParameters& first = parameters.first;
    const DriverStory story = makeDriverStory(first);
    const DriverLife& life = story.life;
    const DriverJourney journey = makeDriverJourney(first.seed, first.nation, life);

    DriverContentsG2 contents;
    contents.first = makeDriverContents(first);
    contents.first.icc = makeIcc(first, story.person, "SIM-G2 1");
    contents.dir = makeDir();

    contents.applicationIdentification = makeApplicationIdentification(parameters);
    fillCertificates(contents, parameters, story.person);
    contents.identification = contents.first.identification;
    contents.cardDownload = contents.first.cardDownload;
    contents.drivingLicenceInfo = contents.first.drivingLicenceInfo;
    contents.eventsData =
        makeIncidentFile(makeEvents(parameters, story), parameters.eventsPerType, life.fleet, first.codePage);
    contents.faultsData =
        makeIncidentFile(makeFaults(parameters, story), parameters.faultsPerType, life.fleet, first.codePage);
    contents.driverActivityData = makeActivity(first, parameters.activityLength, life.days);
    contents.vehiclesUsed = makeVehiclesUsed(parameters, life, journey);
    contents.places = makePlaces(parameters, life, journey);
    contents.currentUsage = contents.first.currentUsage;
    contents.controlActivityData = contents.first.controlActivityData;
    contents.specificConditions = makeSpecificConditions(parameters, life);
    contents.vehicleUnitsUsed = makeVehicleUnitsUsed(parameters, journey);
    contents.gnssPlaces = makeGnssPlaces(parameters, journey);
    if (parameters.version2) {
        fillVersion2(contents, parameters, life, journey);
    }
    return contents;
}

} // namespace sim
