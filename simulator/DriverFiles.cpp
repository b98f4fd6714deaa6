#include "DriverFiles.h"

#include "Nations.h"
#include "TestPki.h"
#include "Text.h"

#include <algorithm>
#include <tuple>
#include <utility>

namespace sim {

namespace {

constexpr std::uint32_t PersonStream = 2;
constexpr std::uint32_t EventStream = 3;
constexpr std::uint32_t LayoutStream = 4;

constexpr std::size_t DriverIdLength = 14;
constexpr std::size_t CardNumberLength = 16;
/// Lengths, date, presence counter and distance before the words of a day.
constexpr std::size_t DayHeaderLength = 12;

constexpr int YearsOfValidity = 5;
/// So that the card is valid on all of them.
constexpr int MostDays = 800;
constexpr std::uint32_t EarliestDay = 631152000; // 1990-01-01
constexpr std::uint32_t LatestDay = 3786912000;  // 2090-01-01

void check(const DriverParameters& parameters)
{
    requireParameter(parameters.days >= 1 && parameters.days <= MostDays, "days out of range");
    requireParameter(parameters.lastDay % SecondsPerDay == 0, "the newest day is not a whole day");
    requireParameter(
        parameters.lastDay >= EarliestDay && parameters.lastDay <= LatestDay,
        "the newest day is out of range");
    requireParameter(
        parameters.eventsPerType > 0 && parameters.faultsPerType > 0 && parameters.vehicles > 0 &&
            parameters.places > 0,
        "a record count of 0");
    requireParameter(
        parameters.wrapPosition >= -1 &&
            parameters.wrapPosition < static_cast<int>(parameters.activityLength),
        "the wrap position is not in the activity buffer");
    requireParameter(
        parameters.language.empty() ||
            (parameters.language.size() == 2 && std::all_of(
                                                    parameters.language.begin(), parameters.language.end(),
                                                    [](char c) { return c >= 'a' && c <= 'z'; })),
        "a language is two lower-case letters");
}

void appendDate(Bytes& to, const Date& date)
{
    appendU8(to, bcd(date.year / 100));
    appendU8(to, bcd(date.year % 100));
    appendU8(to, bcd(date.month));
    appendU8(to, bcd(date.day));
}

void appendNoRegistration(Bytes& to)
{
    appendU8(to, 0);
    appendBytes(to, emptyTextField(PlateLength));
}

/// One of the names that the code page can write.
std::string
pickName(const std::vector<std::string>& names, int codePage, const std::string& otherwise, Random& random)
{
    std::vector<std::string> possible;
    std::copy_if(
        names.begin(), names.end(), std::back_inserter(possible),
        [codePage](const std::string& name) { return encodeText(name, codePage).has_value(); });
    const std::uint32_t choice = random.next();
    return possible.empty() ? otherwise : possible[choice % possible.size()];
}

Person makePerson(const DriverParameters& parameters)
{
    Random random(parameters.seed, PersonStream);
    const NationProfile profile = nationProfile(parameters.nation);
    const std::uint32_t firstDay =
        parameters.lastDay - static_cast<std::uint32_t>(parameters.days - 1) * SecondsPerDay;

    Person person;
    person.surname = pickName(profile.surnames, parameters.codePage, "Martin", random);
    person.firstNames = pickName(profile.firstNames, parameters.codePage, "Peter", random);
    person.authority = pickName({profile.authority}, parameters.codePage, "Card Issuing Authority", random);
    person.language = profile.language;
    // The nation's letters, filled up with digits.
    const std::string alpha = nationAlpha(parameters.nation);
    person.driverIdentification = alpha + random.digits(DriverIdLength - alpha.size());
    person.licenceNumber = alpha + random.digits(9);
    person.renewal = static_cast<char>('0' + random.below(3));

    const Date newest = dateOf(parameters.lastDay);
    person.birth.year = newest.year - random.between(24, 62);
    person.birth.month = random.between(1, 12);
    person.birth.day = random.between(1, 28);

    person.issued = firstDay - static_cast<std::uint32_t>(random.between(60, 900)) * SecondsPerDay;
    Date expiry = dateOf(person.issued);
    expiry.year += YearsOfValidity;
    expiry.day = std::min(expiry.day, 28);
    person.expires = timeOf(expiry) - 1;

    const auto replace = [](std::string& chosen, const std::string& wanted) {
        if (!wanted.empty()) {
            chosen = wanted;
        }
    };
    replace(person.surname, parameters.surname);
    replace(person.firstNames, parameters.firstNames);
    replace(person.authority, parameters.authority);
    replace(person.language, parameters.language);
    replace(person.driverIdentification, parameters.driverIdentification);
    return person;
}

std::size_t recordLength(const Day& day)
{
    return DayHeaderLength + 2 * day.words.size();
}

bool isBefore(const Incident& first, const Incident& second)
{
    return std::tie(first.begin, first.code, first.end, first.vehicle) <
           std::tie(second.begin, second.code, second.end, second.vehicle);
}

} // namespace

void requireParameter(bool holds, const char* what)
{
    if (!holds) {
        throw std::invalid_argument(what);
    }
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

DriverStory makeDriverStory(const DriverParameters& parameters)
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
    check(parameters);
    DriverStory story;
    story.person = makePerson(parameters);
    story.life = makeDriverLife(parameters.seed, parameters.nation, parameters.lastDay, parameters.days);
    Random eventRandom(parameters.seed, EventStream);
    story.events = makeIncidents(events, story.life, eventRandom);
    Random faultRandom(parameters.seed, EventStream + 1);
    story.faults = makeIncidents(faults, story.life, faultRandom);
    return story;
}

void appendCounter(Bytes& to, int counter)
{
    appendU8(to, bcd(counter / 100));
    appendU8(to, bcd(counter % 100));
}

void appendRegistration(Bytes& to, const Vehicle& vehicle, int codePage)
{
    appendU8(to, vehicle.nation);
    appendBytes(to, textField(vehicle.plate, codePage, PlateLength));
}

Bytes cyclicSlots(const std::vector<Bytes>& records, std::size_t slots, const Bytes& empty)
{
    std::vector<const Bytes*> content(slots, &empty);
    for (std::size_t i = 0; i < records.size(); ++i) {
        content[i % slots] = &records[i];
    }
    Bytes bytes;
    for (const Bytes* record : content) {
        appendBytes(bytes, *record);
    }
    return bytes;
}

std::uint32_t newestSlot(const std::vector<Bytes>& records, std::size_t slots)
{
    return records.empty() ? 0 : static_cast<std::uint32_t>((records.size() - 1) % slots);
}

Bytes cyclicFile(const std::vector<Bytes>& records, std::size_t slots, std::size_t recordLength)
{
    Bytes bytes;
    appendU16(bytes, newestSlot(records, slots));
    appendBytes(bytes, cyclicSlots(records, slots, Bytes(recordLength, 0x00)));
    return bytes;
}

Bytes makeIcc(const DriverParameters& parameters, const Person& person, const std::string& approval)
{
    Random random(parameters.seed, LayoutStream);
    const Date made = dateOf(person.issued);
    Bytes icc = {0x01}; // clock stop allowed
    appendU32(icc, random.next());
    appendU8(icc, bcd(made.month));
    appendU8(icc, bcd(made.year % 100));
    appendU8(icc, static_cast<std::uint32_t>(Equipment::Driver));
    appendU8(icc, 0x54); // manufacturer: no real one
    appendBytes(icc, asciiField(approval, 8));
    appendU8(icc, 0x4B); // personaliser
    appendBytes(icc, asciiField("XX", 2));
    appendU16(icc, 0x0001); // module embedder
    appendU8(icc, 0x00);
    appendU16(icc, 0x5343); // IC identifier
    return icc;
}

Bytes extendedSerialNumber(const Bytes& icc)
{
    return slice(icc, 1, 8);
}

Bytes makeIc(const DriverParameters& parameters)
{
    Random random(parameters.seed, LayoutStream + 1);
    Bytes ic;
    appendU32(ic, random.next());
    appendU32(ic, 0x53494D31); // manufacturing references
    return ic;
}

Bytes makeIdentification(const DriverParameters& parameters, const Person& person)
{
    Bytes bytes = {parameters.nation};
    appendBytes(bytes, asciiField(person.driverIdentification, DriverIdLength));
    appendU8(bytes, '0'); // never replaced
    appendU8(bytes, static_cast<std::uint8_t>(person.renewal));
    appendBytes(bytes, textField(person.authority, parameters.codePage, NameLength));
    appendU32(bytes, person.issued);
    appendU32(bytes, person.issued);
    appendU32(bytes, person.expires);
    appendBytes(bytes, textField(person.surname, parameters.codePage, NameLength));
    appendBytes(bytes, textField(person.firstNames, parameters.codePage, NameLength));
    appendDate(bytes, person.birth);
    appendBytes(bytes, asciiField(person.language, 2));
    return bytes;
}

Bytes makeDrivingLicenceInfo(const DriverParameters& parameters, const Person& person)
{
    Bytes bytes = textField(person.authority, parameters.codePage, NameLength);
    appendU8(bytes, parameters.nation);
    appendBytes(bytes, asciiField(person.licenceNumber, CardNumberLength));
    return bytes;
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

Bytes makeActivity(const DriverParameters& parameters, std::size_t capacity, const std::vector<Day>& days)
{
    std::size_t used = 0;
    auto oldest = days.end();
    while (oldest != days.begin() && used + recordLength(*(oldest - 1)) <= capacity) {
        --oldest;
        used += recordLength(*oldest);
    }
    requireParameter(oldest != days.end(), "the activity buffer is too small for the newest day");

    std::size_t start = static_cast<std::size_t>(parameters.wrapPosition);
    if (parameters.wrapPosition < 0) {
        Random random(parameters.seed, LayoutStream + 2);
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

Bytes makeControlActivity(const DriverParameters& parameters, const DriverLife& life)
{
    constexpr std::uint8_t VuDownload = 0x40;
    constexpr std::uint8_t Printing = 0x20;
    constexpr std::uint32_t PeriodDays = 28;

    Random random(parameters.seed, EventStream + 2);
    const auto count = static_cast<std::uint32_t>(life.uses.size());
    // One of the newer half of the uses.
    const VehicleUse& use = life.uses[count / 2 + random.below(count - count / 2)];
    const std::uint32_t time = use.begin + random.below(use.end - use.begin + 1);
    const bool downloaded = random.chance(50);

    Bytes bytes = {downloaded ? std::uint8_t{VuDownload | Printing} : Printing};
    appendU32(bytes, time);
    appendU8(bytes, static_cast<std::uint32_t>(Equipment::Control));
    appendU8(bytes, parameters.nation);
    const std::string alpha = nationAlpha(parameters.nation);
    // Owner, then consecutive, replacement and renewal index.
    appendBytes(bytes, asciiField(alpha + random.digits(13 - alpha.size()) + "100", CardNumberLength));
    appendRegistration(bytes, life.fleet[use.vehicle], parameters.codePage);
    appendU32(bytes, downloaded ? time - PeriodDays * SecondsPerDay : 0);
    appendU32(bytes, downloaded ? time : 0);
    return bytes;
}

Bytes makeCardDownload(const DriverParameters& parameters)
{
    Bytes bytes;
    const std::uint32_t fourWeeksBefore = parameters.lastDay - 28 * SecondsPerDay + 17 * 3600;
    appendU32(bytes, parameters.lastDownload.value_or(fourWeeksBefore));
    return bytes;
}

} // namespace sim
