#include "OfficeCard.h"

#include <utility>

namespace sim {

namespace {

using namespace rights;

struct OfficeContents : MasterContents, ApplicationContents
{
    Bytes identification;
    Bytes activityData;
};

struct OfficeContentsG2 : ApplicationContentsG2
{
    Bytes identification;
    Bytes activityData;
};

constexpr std::size_t FullCardNumberLength = 18;

Bytes makeActivityData(const OfficeStory& story, std::uint16_t slots)
{
    return cyclicFile(story.activities, slots, officeActivityRecord({}, 0, 0));
}

Bytes makeApplicationIdentification(Equipment equipment, std::uint16_t version, std::uint16_t slots)
{
    Bytes bytes = {static_cast<std::uint8_t>(equipment)};
    appendU16(bytes, version);
    appendU16(bytes, slots);
    return bytes;
}

/// "SIM-G1 3" on a control card of the first generation.
std::string approval(char generation, Equipment equipment)
{
    return std::string("SIM-G") + generation + ' ' + static_cast<char>('0' + static_cast<int>(equipment));
}

CardDescription makeFirstApplication(const OfficeStory& story, std::uint16_t slots, MasterContents master)
{
    OfficeContents contents;
    static_cast<MasterContents&>(contents) = std::move(master);
    contents.applicationIdentification =
        makeApplicationIdentification(story.equipment, StructureVersionG1, slots);
    contents.cardCertificate =
        cardCertificateG1(story.nation, story.equipment, story.extendedSerialNumber, story.expires);
    contents.caCertificate = caCertificateG1(story.nation);
    contents.identification = story.identification;
    contents.activityData = makeActivityData(story, slots);

    const FileRow<OfficeContents> rows[] = {
        {0x0520, &OfficeContents::identification, Authenticated, Never, false},
        {story.activityFid, &OfficeContents::activityData, Always, Secure, true},
    };
    std::vector<FileDescription> files;
    addFiles(files, rows, contents);
    CardDescription card = cardWith(contents);
    addApplicationG1(card, contents, std::move(files));
    return card;
}

MasterContents makeMasterContents(const OfficeStory& story, char generation)
{
    MasterContents master;
    master.icc = makeIcc(story.extendedSerialNumber, approval(generation, story.equipment));
    master.ic = makeIc(story.chipSerial);
    return master;
}

} // namespace

Bytes officeActivityRecord(const OfficeActivity& activity, std::uint8_t nation, int codePage)
{
    Bytes bytes = {activity.type};
    appendU32(bytes, activity.time);
    if (activity.driverCard.empty()) {
        appendBytes(bytes, Bytes(FullCardNumberLength, 0x00));
    } else {
        appendFullCardNumber(bytes, Equipment::Driver, nation, activity.driverCard);
    }
    if (activity.vehicle.plate.empty()) {
        appendNoRegistration(bytes);
    } else {
        appendRegistration(bytes, activity.vehicle, codePage);
    }
    appendU32(bytes, activity.periodBegin);
    appendU32(bytes, activity.periodEnd);
    return bytes;
}

CardDescription makeOfficeCardG1(const OfficeStory& story, std::uint16_t activityRecords)
{
    return makeFirstApplication(story, activityRecords, makeMasterContents(story, '1'));
}

CardDescription makeOfficeCardG2(
    const OfficeStory& story, std::uint16_t activityRecords, const OfficeParametersG2& parameters)
{
    OfficeContentsG2 contents;
    const std::uint16_t slots = parameters.activityRecords;
    contents.applicationIdentification =
        makeApplicationIdentification(story.equipment, structureVersionG2(parameters.version2), slots);
    fillCertificatesG2(
        contents, parameters.curve, parameters.certificateFiles, parameters.linkCertificate,
        {story.nation, story.extendedSerialNumber, story.issued, story.expires, story.equipment});
    contents.identification = story.identification;
    contents.activityData = makeActivityData(story, slots);
    if (parameters.version2) {
        fillVersion2(contents, {});
    }

    const FileRow<OfficeContentsG2> rows[] = {
        {0x0520, &OfficeContentsG2::identification, Always, Never, true, 6},
        {story.activityFid, &OfficeContentsG2::activityData, Always, Secure, true, 14},
    };
    std::vector<FileDescription> files;
    addFiles(files, rows, contents);
    MasterContents master = makeMasterContents(story, '2');
    master.dir = makeDir();
    CardDescription card = makeFirstApplication(story, activityRecords, std::move(master));
    addApplicationG2(card, contents, std::move(files), parameters.curve, story.equipment);
    return card;
}

} // namespace sim
