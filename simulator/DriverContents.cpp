#include "DriverContents.h"

#include "DriverStory.h"

namespace sim {

namespace {

Bytes makeApplicationIdentification(const DriverParameters& parameters)
{
    Bytes bytes = {static_cast<std::uint8_t>(Equipment::Driver)};
    appendU16(bytes, StructureVersionG1);
    appendU8(bytes, parameters.eventsPerType);
    appendU8(bytes, parameters.faultsPerType);
    appendU16(bytes, parameters.activityLength);
    appendU16(bytes, parameters.vehicles);
    appendU8(bytes, parameters.places);
    return bytes;
}

} // namespace

DriverContents makeDriverContents(const DriverParameters& parameters)
{
    const DriverStory story = makeDriverStory(parameters);
    const Person& person = story.person;

    DriverContents contents;
    static_cast<MasterContents&>(contents) = makeMasterContents(parameters, person, "SIM-G1 1");
    static_cast<UsageContents&>(contents) = makeUsageContents(driverUsage(parameters), story);
    contents.applicationIdentification = makeApplicationIdentification(parameters);
    contents.cardCertificate = cardCertificateG1(
        parameters.nation, Equipment::Driver, extendedSerialNumber(contents.icc), person.expires);
    contents.caCertificate = caCertificateG1(parameters.nation);
    contents.identification = makeIdentification(parameters, person);
    contents.cardDownload = makeCardDownload(parameters);
    contents.drivingLicenceInfo = makeDrivingLicenceInfo(parameters, person);
    return contents;
}

} // namespace sim
