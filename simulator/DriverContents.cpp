#include "DriverContents.h"

#include "DriverFiles.h"
#include "TestPki.h"

namespace sim {

namespace {

constexpr std::size_t VehicleRecordLength = 31;
constexpr std::size_t PlaceRecordLength = 10;
constexpr std::size_t ConditionRecordLength = 5;
constexpr std::size_t ConditionRecords = 56;

Bytes makeApplicationIdentification(const DriverParameters& parameters)
{
    Bytes bytes = {static_cast<std::uint8_t>(Equipment::Driver)};
    appendU16(bytes, 0x0000); // structure version of the first generation
    appendU8(bytes, parameters.eventsPerType);
    appendU8(bytes, parameters.faultsPerType);
    appendU16(bytes, parameters.activityLength);
    appendU16(bytes, parameters.vehicles);
    appendU8(bytes, parameters.places);
    return bytes;
}

Bytes makeVehiclesUsed(const DriverParameters& parameters, const DriverLife& life)
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
        records.push_back(record);
    }
    return cyclicFile(records, parameters.vehicles, VehicleRecordLength);
}

Bytes makePlaces(const DriverParameters& parameters, const DriverLife& life)
{
    std::vector<Bytes> records;
    for (const Place& place : life.places) {
        Bytes record;
        appendU32(record, place.time);
        appendU8(record, static_cast<std::uint32_t>(place.entry));
        appendU8(record, place.nation);
        appendU8(record, place.region);
        appendU24(record, place.odometer);
        records.push_back(record);
    }
    Bytes bytes;
    appendU8(bytes, newestSlot(records, parameters.places));
    appendBytes(bytes, cyclicSlots(records, parameters.places, Bytes(PlaceRecordLength, 0x00)));
    return bytes;
}

/// Has no pointer: the oldest entries give way.
Bytes makeSpecificConditions(const DriverLife& life)
{
    std::vector<Bytes> records;
    for (const SpecificCondition& condition : life.conditions) {
        if (condition.condition == Condition::FerryOrTrainEnd) {
            continue;
        }
        Bytes record;
        appendU32(record, condition.time);
        appendU8(record, static_cast<std::uint32_t>(condition.condition));
        records.push_back(record);
    }
    return cyclicSlots(records, ConditionRecords, Bytes(ConditionRecordLength, 0x00));
}

} // namespace

DriverContents makeDriverContents(const DriverParameters& parameters)
{
    const DriverStory story = makeDriverStory(parameters);
    const Person& person = story.person;
    const DriverLife& life = story.life;

    DriverContents contents;
    contents.icc = makeIcc(parameters, person, "SIM-G1 1");
    contents.ic = makeIc(parameters);
    contents.applicationIdentification = makeApplicationIdentification(parameters);
    contents.cardCertificate = cardCertificateG1(
        parameters.nation, Equipment::Driver, extendedSerialNumber(contents.icc), person.expires);
    contents.caCertificate = caCertificateG1(parameters.nation);
    contents.identification = makeIdentification(parameters, person);
    contents.cardDownload = makeCardDownload(parameters);
    contents.drivingLicenceInfo = makeDrivingLicenceInfo(parameters, person);
    contents.eventsData =
        makeIncidentFile(story.events, parameters.eventsPerType, life.fleet, parameters.codePage);
    contents.faultsData =
        makeIncidentFile(story.faults, parameters.faultsPerType, life.fleet, parameters.codePage);
    contents.driverActivityData = makeActivity(parameters, parameters.activityLength, life.days);
    contents.vehiclesUsed = makeVehiclesUsed(parameters, life);
    contents.places = makePlaces(parameters, life);
    contents.currentUsage = makeCurrentUsage();
    contents.controlActivityData = makeControlActivity(parameters, life);
    contents.specificConditions = makeSpecificConditions(life);
    return contents;
}

} // namespace sim
