#include "DriverContentsG2.h"

#include "DriverStory.h"

namespace sim {

namespace {

Bytes makeApplicationIdentification(const DriverParametersG2& parameters)
{
    Bytes bytes = {static_cast<std::uint8_t>(Equipment::Driver)};
    appendU16(bytes, structureVersionG2(parameters.version2));
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

} // namespace

DriverContentsG2 makeDriverContentsG2(const DriverParametersG2& parameters)
{
    const DriverParameters& first = parameters.first;
    const UsageParametersG2 usage = usageParametersG2(driverUsage(first), parameters);
    const DriverStory story = makeDriverStory(first);
    const DriverJourney journey = makeDriverJourney(first.seed, first.nation, story.life);

    DriverContentsG2 contents;
    contents.first = makeDriverContents(first);
    static_cast<MasterContents&>(contents.first) = makeMasterContents(first, story.person, "SIM-G2 1");
    contents.first.dir = makeDir();

    static_cast<UsageContentsG2&>(contents) = makeUsageContentsG2(usage, story, journey);
    contents.applicationIdentification = makeApplicationIdentification(parameters);
    fillCertificatesG2(
        contents, parameters.curve, parameters.certificateFiles, parameters.linkCertificate,
        {first.nation, extendedSerialNumber(contents.first.icc), story.person.issued, story.person.expires});
    contents.identification = contents.first.identification;
    contents.cardDownload = contents.first.cardDownload;
    contents.drivingLicenceInfo = contents.first.drivingLicenceInfo;
    if (parameters.version2) {
        fillVersion2(
            contents,
            {parameters.borderCrossings, parameters.loadUnloadOperations, parameters.loadTypeEntries});
    }
    return contents;
}

} // namespace sim
