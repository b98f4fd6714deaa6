#include "WorkshopContents.h"

#include "Nations.h"
#include "Text.h"
#include "TimeReal.h"
#include "WorkshopLife.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace sim {

namespace {

constexpr std::uint32_t WorkshopStream = 51;
constexpr std::uint32_t WorkshopSerialStream = 52;
constexpr std::uint32_t SensorStream = 53;
constexpr std::uint32_t IssueStream = 54;

constexpr std::size_t WorkshopConditionRecords = 2;
constexpr std::size_t MostCalibrations = 368;
constexpr int MostUsedCalibrations = 0xFFFF;
constexpr int WorkshopCardYears = 1;

constexpr std::size_t CalibrationLength = 105;
constexpr std::size_t CalibrationLengthG2 = 178;
constexpr std::size_t AddDataLength = 27;
constexpr std::size_t TyreSizeLength = 15;
constexpr std::size_t PartNumberLength = 16;
constexpr std::size_t SealRecords = 5;
constexpr std::size_t SealLength = 11;
constexpr std::size_t SensorDataLength = 16;
constexpr std::size_t LongestSensorDataG2 = 102;

void check(const WorkshopParameters& parameters)
{
    constexpr std::uint32_t Earliest = 6 * 3600;
    constexpr std::uint32_t Latest = 20 * 3600;
    const std::uint32_t timeOfDay = parameters.lastCalibration % SecondsPerDay;
    requireParameter(
        parameters.lastCalibration >= EarliestTime && parameters.lastCalibration <= LatestTime,
        "the newest calibration is out of range");
    requireParameter(
        timeOfDay >= Earliest && timeOfDay <= Latest, "the newest calibration is not in working hours");
    requireParameter(
        parameters.usedCalibrations >= 0 && parameters.usedCalibrations <= MostUsedCalibrations,
        "a number of calibrations that cannot be counted");
    requireParameter(parameters.indices.size() == 3, "a card number has three indices");
    requireLanguage(parameters.language);
}

UsageParameters workshopUsage(const WorkshopParameters& parameters)
{
    return usageParameters(parameters, WorkshopConditionRecords);
}

/// The part of CalibrationRecord that both generations have.
Bytes calibrationRecord(const Calibration& calibration, int codePage)
{
    Bytes record;
    appendU8(record, static_cast<std::uint32_t>(calibration.purpose));
    appendBytes(record, asciiField(calibration.identity.vin, VinLength));
    appendRegistration(record, calibration.vehicle, codePage);
    appendU16(record, calibration.characteristic);
    appendU16(record, calibration.constant);
    appendU16(record, calibration.tyreCircumference);
    appendBytes(record, asciiField(calibration.tyreSize, TyreSizeLength));
    appendU8(record, calibration.speed);
    appendU24(record, calibration.oldOdometer);
    appendU24(record, calibration.newOdometer);
    appendU32(record, calibration.oldTime);
    appendU32(record, calibration.newTime);
    appendU32(record, calibration.next);
    appendBytes(record, asciiField(calibration.unitPartNumber, PartNumberLength));
    appendBytes(record, calibration.unitSerial);
    appendBytes(record, calibration.sensorSerial);
    return record;
}

Bytes calibrationRecordG2(const Calibration& calibration, int codePage)
{
    Bytes record = calibrationRecord(calibration, codePage);
    appendBytes(record, calibration.gnssSerial);
    appendBytes(record, calibration.remoteSerial);
    appendU8(record, calibration.ability);
    appendU8(record, static_cast<std::uint32_t>(calibration.seals.size()));
    for (const Seal& seal : calibration.seals) {
        appendU8(record, static_cast<std::uint32_t>(seal.equipment));
        appendBytes(record, asciiField(seal.manufacturer, 2));
        appendBytes(record, asciiField(seal.identifier, 8));
    }
    appendBytes(record, Bytes((SealRecords - calibration.seals.size()) * SealLength, 0x00));
    return record;
}

/// WorkshopCardCalibrationAddDataRecord
Bytes addDataRecord(const Calibration& calibration)
{
    Bytes record;
    appendU32(record, calibration.oldTime);
    appendBytes(record, asciiField(calibration.identity.vin, VinLength));
    appendU8(record, static_cast<std::uint32_t>(calibration.load));
    appendU8(record, calibration.country);
    appendU32(record, calibration.positionTime);
    return record;
}

/// The calibrations that an application still has of all that were made, and their places.
class CalibrationRing
{
  public:
    /// `calibrations` are the newest of `total`, oldest first; as many as the slots hold or more.
    CalibrationRing(std::vector<Calibration> calibrations, std::size_t total, std::size_t slots)
        : m_calibrations(std::move(calibrations)), m_total(total), m_slots(slots)
    {
        const auto kept = static_cast<std::ptrdiff_t>(std::min(total, slots));
        m_calibrations.erase(m_calibrations.begin(), m_calibrations.end() - kept);
    }

    std::size_t total() const { return m_total; }
    std::size_t newest() const { return m_calibrations.empty() ? 0 : (m_total - 1) % m_slots; }

    template <typename Record>
    Bytes slots(Record record, std::size_t recordLength) const
    {
        std::vector<Bytes> records;
        std::transform(m_calibrations.begin(), m_calibrations.end(), std::back_inserter(records), record);
        return cyclicSlots(records, m_slots, Bytes(recordLength, 0x00), m_total - records.size());
    }

  private:
    std::vector<Calibration> m_calibrations;
    std::size_t m_total;
    std::size_t m_slots;
};

Bytes makeCalibration(const CalibrationRing& ring, int codePage)
{
    Bytes bytes;
    appendU16(bytes, static_cast<std::uint32_t>(ring.total()));
    appendU8(bytes, static_cast<std::uint32_t>(ring.newest()));
    const auto record = [codePage](const Calibration& one) { return calibrationRecord(one, codePage); };
    appendBytes(bytes, ring.slots(record, CalibrationLength));
    return bytes;
}

Bytes makeCalibrationG2(const CalibrationRing& ring, int codePage)
{
    Bytes bytes;
    appendU16(bytes, static_cast<std::uint32_t>(ring.total()));
    appendU16(bytes, static_cast<std::uint32_t>(ring.newest()));
    const auto record = [codePage](const Calibration& one) { return calibrationRecordG2(one, codePage); };
    appendBytes(bytes, ring.slots(record, CalibrationLengthG2));
    return bytes;
}

Bytes makeCalibrationAddData(const CalibrationRing& ring)
{
    Bytes bytes;
    appendU16(bytes, static_cast<std::uint32_t>(ring.newest()));
    appendBytes(bytes, ring.slots(addDataRecord, AddDataLength));
    return bytes;
}

/// Those whose purpose the first generation knows.
std::vector<Calibration> ofFirstGeneration(const std::vector<Calibration>& calibrations)
{
    std::vector<Calibration> known;
    std::copy_if(
        calibrations.begin(), calibrations.end(), std::back_inserter(known),
        [](const Calibration& calibration) { return isOfFirstGeneration(calibration.purpose); });
    return known;
}

Bytes makeIdentification(const WorkshopParameters& parameters, std::uint32_t issued, std::uint32_t expires)
{
    Random random(parameters.seed, WorkshopStream);
    const NationProfile profile = nationProfile(parameters.nation);
    const int codePage = parameters.codePage;
    CardIdentification card;
    card.nation = parameters.nation;
    card.issued = issued;
    card.expires = expires;
    card.authority = makeAuthority(parameters.nation, codePage, random);
    std::string workshop = makeFirmName(parameters.nation, "Tachograph Service", codePage, random);
    std::string address = makeFirmAddress(random);
    std::string surname = pickName(profile.surnames, codePage, "Martin", random);
    std::string firstNames = pickName(profile.firstNames, codePage, "Peter", random);
    std::string owner = makeIdentifier(parameters.nation, OwnerLength, random);
    std::string language = profile.language;
    replaceUnlessEmpty(workshop, parameters.workshopName);
    replaceUnlessEmpty(address, parameters.workshopAddress);
    replaceUnlessEmpty(surname, parameters.surname);
    replaceUnlessEmpty(firstNames, parameters.firstNames);
    replaceUnlessEmpty(owner, parameters.ownerIdentification);
    replaceUnlessEmpty(language, parameters.language);

    card.number = makeCardNumber(owner, parameters.indices);
    Bytes bytes;
    appendCardIdentification(bytes, card, codePage);
    for (const std::string& text : {workshop, address, surname, firstNames}) {
        appendBytes(bytes, textField(text, codePage, NameLength));
    }
    appendBytes(bytes, asciiField(language, 2));
    return bytes;
}

/// Opaque: nobody without keys sees it.
Bytes makeSensorInstallationData(std::uint32_t seed, std::size_t length)
{
    Random random(seed, SensorStream);
    Bytes bytes;
    while (bytes.size() < length) {
        appendU8(bytes, random.next());
    }
    return bytes;
}

/// What both applications rest on.
struct WorkshopStory
{
    std::vector<Calibration> calibrations;
    std::vector<VehicleIdentity> identities;
    UsageStory usage;
    /// TimeReal
    std::uint32_t issued = 0;
    std::uint32_t expires = 0;
};

WorkshopStory makeWorkshopStory(
    const WorkshopParameters& parameters, std::size_t calibrations, std::size_t firstGenerationCalibrations)
{
    WorkshopLife life = makeWorkshopLife(
        parameters.seed, parameters.nation,
        {parameters.lastCalibration, calibrations, firstGenerationCalibrations});
    Random random(parameters.seed, IssueStream);
    const std::uint32_t oldest = life.calibrations.front().newTime;

    WorkshopStory story;
    story.issued =
        oldest - oldest % SecondsPerDay - static_cast<std::uint32_t>(random.between(3, 20)) * SecondsPerDay;
    story.expires = endAfterYears(story.issued, WorkshopCardYears);
    story.calibrations = std::move(life.calibrations);
    story.identities = std::move(life.identities);
    story.usage = tellUsage(parameters.seed, std::move(life.usage));
    return story;
}

Bytes makeApplicationIdentification(const WorkshopParameters& parameters)
{
    Bytes bytes = {static_cast<std::uint8_t>(Equipment::Workshop)};
    appendU16(bytes, StructureVersionG1);
    appendU8(bytes, parameters.eventsPerType);
    appendU8(bytes, parameters.faultsPerType);
    appendU16(bytes, parameters.activityLength);
    appendU16(bytes, parameters.vehicles);
    appendU8(bytes, parameters.places);
    appendU8(bytes, parameters.calibrations);
    return bytes;
}

Bytes makeApplicationIdentificationG2(const WorkshopParametersG2& parameters)
{
    Bytes bytes = {static_cast<std::uint8_t>(Equipment::Workshop)};
    appendU16(bytes, structureVersionG2(parameters.version2));
    appendU8(bytes, parameters.eventsPerType);
    appendU8(bytes, parameters.faultsPerType);
    appendU16(bytes, parameters.activityLength);
    appendU16(bytes, parameters.vehicles);
    appendU16(bytes, parameters.places);
    appendU16(bytes, parameters.calibrations);
    appendU16(bytes, parameters.gnssPlaces);
    appendU16(bytes, parameters.specificConditions);
    appendU16(bytes, parameters.vehicleUnits);
    return bytes;
}

WorkshopContents makeFirstApplication(
    const WorkshopParameters& parameters, const WorkshopStory& story, const CalibrationRing& ring,
    const std::string& approval)
{
    Random serials(parameters.seed, WorkshopSerialStream);
    WorkshopContents contents;
    contents.icc =
        makeIcc(makeExtendedSerialNumber(serials.next(), story.issued, Equipment::Workshop), approval);
    contents.ic = makeIc(serials.next());
    static_cast<UsageContents&>(contents) = makeUsageContents(workshopUsage(parameters), story.usage);
    contents.applicationIdentification = makeApplicationIdentification(parameters);
    contents.cardCertificate = cardCertificateG1(
        parameters.nation, Equipment::Workshop, extendedSerialNumber(contents.icc), story.expires);
    contents.caCertificate = caCertificateG1(parameters.nation);
    contents.identification = makeIdentification(parameters, story.issued, story.expires);
    appendU16(contents.cardDownload, parameters.calibrationsSinceDownload);
    contents.calibration = makeCalibration(ring, parameters.codePage);
    contents.sensorInstallationData = makeSensorInstallationData(parameters.seed, SensorDataLength);
    return contents;
}

} // namespace

WorkshopContents makeWorkshopContents(const WorkshopParameters& parameters)
{
    check(parameters);
    const auto total = static_cast<std::size_t>(parameters.usedCalibrations);
    const std::size_t slots = parameters.calibrations;
    const WorkshopStory story = makeWorkshopStory(parameters, 0, std::min(total, slots));
    const CalibrationRing ring(ofFirstGeneration(story.calibrations), total, slots);
    return makeFirstApplication(parameters, story, ring, "SIM-G1 2");
}

WorkshopContentsG2 makeWorkshopContentsG2(const WorkshopParametersG2& parameters)
{
    const WorkshopParameters& first = parameters.first;
    const UsageParametersG2 usage = usageParametersG2(workshopUsage(first), parameters);
    check(first);
    requireParameter(parameters.calibrations <= MostCalibrations, "a file of calibrations too large to read");

    const auto total = static_cast<std::size_t>(first.usedCalibrations);
    const std::size_t slots = parameters.calibrations;
    const WorkshopStory story =
        makeWorkshopStory(first, std::min(total, slots), std::min<std::size_t>(total, first.calibrations));
    // Those made with this card; what was done before is not told.
    std::vector<Calibration> made = story.calibrations;
    made.erase(made.begin(), made.end() - static_cast<std::ptrdiff_t>(std::min(total, made.size())));
    const std::vector<Calibration> known = ofFirstGeneration(made);
    const CalibrationRing ring(made, total, slots);
    const CalibrationRing firstRing(known, total - (made.size() - known.size()), first.calibrations);

    WorkshopContentsG2 contents;
    contents.first = makeFirstApplication(first, story, firstRing, "SIM-G2 2");
    contents.first.dir = makeDir();

    DriverJourney journey = makeDriverJourney(first.seed, first.nation, story.usage.life);
    journey.vehicles = story.identities;
    static_cast<UsageContentsG2&>(contents) = makeUsageContentsG2(usage, story.usage, journey);
    contents.applicationIdentification = makeApplicationIdentificationG2(parameters);
    fillCertificatesG2(
        contents, parameters.curve, parameters.certificateFiles, parameters.linkCertificate,
        {first.nation, extendedSerialNumber(contents.first.icc), story.issued, story.expires,
         Equipment::Workshop});
    contents.identification = contents.first.identification;
    contents.cardDownload = contents.first.cardDownload;
    contents.calibration = makeCalibrationG2(ring, first.codePage);
    contents.sensorInstallationData = makeSensorInstallationData(first.seed, LongestSensorDataG2);
    if (parameters.version2) {
        contents.calibrationAddData = makeCalibrationAddData(ring);
        fillVersion2(
            contents,
            {parameters.borderCrossings, parameters.loadUnloadOperations, parameters.loadTypeEntries});
    }
    return contents;
}

} // namespace sim
