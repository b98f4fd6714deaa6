#include "UsageContents.h"

#include "TimeReal.h"

#include <algorithm>
#include <tuple>

namespace sim {

namespace {

using namespace rights;

// Annex 1B, Appendix 2: the same on driver and workshop cards.
constexpr FileRow<UsageContents> UsageFiles[] = {
    {0x0502, &UsageContents::eventsData, Always, Secure, true},
    {0x0503, &UsageContents::faultsData, Always, Secure, true},
    {0x0504, &UsageContents::driverActivityData, Always, Secure, true},
    {0x0505, &UsageContents::vehiclesUsed, Always, Secure, true},
    {0x0506, &UsageContents::places, Always, Secure, true},
    {0x0507, &UsageContents::currentUsage, Always, Secure, true},
    {0x0508, &UsageContents::controlActivityData, Always, Secure, true},
    {0x0522, &UsageContents::specificConditions, Always, Secure, true},
};

constexpr std::uint32_t EventStream = 3;
constexpr std::uint32_t FaultStream = 4;
constexpr std::uint32_t ControlStream = 5;
constexpr std::uint32_t LayoutStream = 6;

constexpr std::size_t VehicleRecordLength = 31;
constexpr std::size_t PlaceRecordLength = 10;
/// Lengths, date, presence counter and distance before the words of a day.
constexpr std::size_t DayHeaderLength = 12;

std::size_t recordLength(const Day& day)
{
    return DayHeaderLength + 2 * day.words.size();
}

bool isBefore(const Incident& first, const Incident& second)
{
    return std::tie(first.begin, first.code, first.end, first.vehicle) <
           std::tie(second.begin, second.code, second.end, second.vehicle);
}

Bytes makeVehiclesUsed(const UsageParameters& parameters, const DriverLife& life)
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

Bytes makePlaces(const UsageParameters& parameters, const DriverLife& life)
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
Bytes makeSpecificConditions(const UsageParameters& parameters, const DriverLife& life)
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
    return cyclicSlots(records, parameters.specificConditions, Bytes(ConditionRecordLength, 0x00));
}

} // namespace

void addUsageFiles(std::vector<FileDescription>& to, const UsageContents& contents)
{
    addFiles(to, UsageFiles, contents);
}

IncidentGroups makeIncidents(const std::vector<IncidentKind>& kinds, const DriverLife& life, Random& random)
{
    IncidentGroups groups;
    for (const IncidentKind& kind : kinds) {
        std::vector<Incident> group;
        for (int left = random.between(kind.fewest, kind.most); left > 0; --left) {
            const VehicleUse& use = random.pick(life.uses);
            Incident incident;
            incident.begin = use.begin + (kind.atInsertion ? 0 : random.below(use.end - use.begin + 1));
            const std::uint32_t length = random.below(static_cast<std::uint32_t>(kind.longest) + 1);
            incident.code = random.pick(kind.codes);
            incident.end = std::min(incident.begin + length, use.end);
            incident.vehicle = use.vehicle;
            group.push_back(incident);
        }
        std::sort(group.begin(), group.end(), isBefore);
        groups.push_back(group);
    }
    return groups;
}

void mergeIncidents(std::vector<Incident>& into, const std::vector<Incident>& others)
{
    into.insert(into.end(), others.begin(), others.end());
    std::sort(into.begin(), into.end(), isBefore);
}

UsageStory tellUsage(std::uint32_t seed, DriverLife life)
{
    static const std::vector<IncidentKind> events = {
        {{0x03}, 0, 1, 900},                              // time overlap
        {{0x05}, 0, 2, 0, true},                          // card insertion while driving
        {{0x06}, 0, 1, 0, true},                          // last use not correctly closed
        {{0x08}, 1, 3, 240},                              // power supply interruption
        {{0x09}, 0, 2, 120},                              // motion data error
        {{0x11, 0x12, 0x15, 0x17, 0x21, 0x24}, 0, 1, 60}, // security breach attempts
    };
    static const std::vector<IncidentKind> faults = {
        {{0x31, 0x32, 0x33, 0x34, 0x35}, 1, 4, 3600}, // recording equipment
        {{0x40}, 0, 1, 30},                           // card
    };
    UsageStory story;
    story.life = std::move(life);
    Random eventRandom(seed, EventStream);
    story.events = makeIncidents(events, story.life, eventRandom);
    Random faultRandom(seed, FaultStream);
    story.faults = makeIncidents(faults, story.life, faultRandom);
    return story;
}

Bytes makeIncidentFile(
    const IncidentGroups& groups, std::size_t perGroup, const std::vector<Vehicle>& fleet, int codePage)
{
    Bytes empty(9, 0x00);
    appendNoRegistration(empty);

    Bytes bytes;
    for (const std::vector<Incident>& group : groups) {
        std::vector<Bytes> records;
        for (const Incident& incident : group) {
            Bytes record = {incident.code};
            appendU32(record, incident.begin);
            appendU32(record, incident.end);
            appendRegistration(record, fleet[incident.vehicle], codePage);
            records.push_back(record);
        }
        appendBytes(bytes, cyclicSlots(records, perGroup, empty));
    }
    return bytes;
}

Bytes makeActivity(const UsageParameters& parameters, const std::vector<Day>& days)
{
    const std::size_t capacity = parameters.activityLength;
    std::size_t used = 0;
    auto oldest = days.end();
    while (oldest != days.begin() && used + recordLength(*(oldest - 1)) <= capacity) {
        --oldest;
        used += recordLength(*oldest);
    }
    requireParameter(oldest != days.end(), "the activity buffer is too small for the newest day");

    auto start = static_cast<std::size_t>(parameters.wrapPosition);
    if (parameters.wrapPosition < 0) {
        Random random(parameters.seed, LayoutStream);
        const int length = static_cast<int>(used);
        start = capacity - static_cast<std::size_t>(random.between(length / 4, length * 3 / 4));
    }

    Bytes chain;
    std::size_t newest = 0;
    std::size_t previousLength = 0;
    for (auto day = oldest; day != days.end(); ++day) {
        newest = chain.size();
        appendU16(chain, static_cast<std::uint32_t>(previousLength));
        previousLength = recordLength(*day);
        appendU16(chain, static_cast<std::uint32_t>(previousLength));
        appendU32(chain, day->date);
        appendCounter(chain, day->presence);
        appendU16(chain, day->distance);
        for (const std::uint16_t word : day->words) {
            appendU16(chain, word);
        }
    }

    Bytes bytes;
    appendU16(bytes, static_cast<std::uint32_t>(start));
    appendU16(bytes, static_cast<std::uint32_t>((start + newest) % capacity));
    Bytes buffer(capacity, 0x00);
    for (std::size_t i = 0; i < chain.size(); ++i) {
        buffer[(start + i) % capacity] = chain[i];
    }
    appendBytes(bytes, buffer);
    return bytes;
}

Bytes makeCurrentUsage()
{
    Bytes bytes;
    appendU32(bytes, 0);
    appendNoRegistration(bytes);
    return bytes;
}

Bytes makeControlActivity(const UsageParameters& parameters, const DriverLife& life)
{
    constexpr std::uint8_t VuDownload = 0x40;
    constexpr std::uint8_t Printing = 0x20;
    constexpr std::uint32_t PeriodDays = 28;

    Random random(parameters.seed, ControlStream);
    const auto count = static_cast<std::uint32_t>(life.uses.size());
    // One of the newer half of the uses.
    const VehicleUse& use = life.uses[count / 2 + random.below(count - count / 2)];
    const std::uint32_t time = use.begin + random.below(use.end - use.begin + 1);
    const bool downloaded = random.chance(50);

    Bytes bytes = {downloaded ? std::uint8_t{VuDownload | Printing} : Printing};
    appendU32(bytes, time);
    const std::string body = makeIdentifier(parameters.nation, OwnerLength, random);
    // Consecutive, replacement and renewal index.
    appendFullCardNumber(bytes, Equipment::Control, parameters.nation, makeCardNumber(body, "100"));
    appendRegistration(bytes, life.fleet[use.vehicle], parameters.codePage);
    appendU32(bytes, downloaded ? time - PeriodDays * SecondsPerDay : 0);
    appendU32(bytes, downloaded ? time : 0);
    return bytes;
}

void check(const UsageParameters& parameters)
{
    requireParameter(
        parameters.eventsPerType > 0 && parameters.faultsPerType > 0 && parameters.vehicles > 0 &&
            parameters.places > 0 && parameters.specificConditions > 0,
        "a record count of 0");
    requireParameter(
        parameters.wrapPosition >= -1 &&
            parameters.wrapPosition < static_cast<int>(parameters.activityLength),
        "the wrap position is not in the activity buffer");
}

UsageContents makeUsageContents(const UsageParameters& parameters, const UsageStory& story)
{
    check(parameters);
    const DriverLife& life = story.life;
    UsageContents contents;
    contents.eventsData =
        makeIncidentFile(story.events, parameters.eventsPerType, life.fleet, parameters.codePage);
    contents.faultsData =
        makeIncidentFile(story.faults, parameters.faultsPerType, life.fleet, parameters.codePage);
    contents.driverActivityData = makeActivity(parameters, life.days);
    contents.vehiclesUsed = makeVehiclesUsed(parameters, life);
    contents.places = makePlaces(parameters, life);
    contents.currentUsage = makeCurrentUsage();
    contents.controlActivityData = makeControlActivity(parameters, life);
    contents.specificConditions = makeSpecificConditions(parameters, life);
    return contents;
}

} // namespace sim
