#include "DriverContents.h"

#include "DriverLife.h"
#include "Nations.h"
#include "Random.h"
#include "TestPki.h"
#include "Text.h"
#include "TimeReal.h"

#include <algorithm>
#include <utility>

namespace sim {

namespace {

constexpr std::uint32_t PersonStream = 2;
constexpr std::uint32_t EventStream = 3;
constexpr std::uint32_t LayoutStream = 4;

constexpr std::size_t DriverIdLength = 14;
constexpr std::size_t CardNumberLength = 16;
constexpr std::size_t VehicleRecordLength = 31;
constexpr std::size_t PlaceRecordLength = 10;
constexpr std::size_t ConditionRecordLength = 5;
constexpr std::size_t ConditionRecords = 56;
/// Lengths, date, presence counter and distance before the words of a day.
constexpr std::size_t DayHeaderLength = 12;
constexpr std::size_t ExtendedSerialNumberOffset = 1;
constexpr std::size_t ExtendedSerialNumberLength = 8;

constexpr int YearsOfValidity = 5;
/// So that the card is valid on all of them.
constexpr int MostDays = 800;
constexpr std::uint32_t EarliestDay = 631152000; // 1990-01-01
constexpr std::uint32_t LatestDay = 3786912000;  // 2090-01-01

void requireParameter(bool holds, const char* what)
{
    if (!holds) {
        throw std::invalid_argument(what);
    }
}

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

void appendCounter(Bytes& to, int counter)
{
    appendU8(to, bcd(counter / 100));
    appendU8(to, bcd(counter % 100));
}

/// VehicleRegistrationIdentification. Plates are ASCII, which every code page has.
void appendRegistration(Bytes& to, const Vehicle& vehicle, int codePage)
{
    appendU8(to, vehicle.nation);
    appendBytes(to, textField(vehicle.plate, codePage, PlateLength));
}

void appendNoRegistration(Bytes& to)
{
    appendU8(to, 0);
    appendBytes(to, emptyTextField(PlateLength));
}

/// The records that a cyclic EF of `slots` still holds, at their places; `newest` becomes the index of the
/// last one.
Bytes cyclicRecords(
    const std::vector<Bytes>& records, std::size_t slots, const Bytes& empty, std::size_t& newest)
{
    std::vector<const Bytes*> content(slots, &empty);
    newest = 0;
    for (std::size_t i = 0; i < records.size(); ++i) {
        newest = i % slots;
        content[newest] = &records[i];
    }
    Bytes bytes;
    for (const Bytes* record : content) {
        appendBytes(bytes, *record);
    }
    return bytes;
}

/// Who the card belongs to.
struct Person
{
    std::string surname;
    std::string firstNames;
    std::string authority;
    std::string language;
    std::string driverIdentification;
    std::string licenceNumber;
    Date birth;
    /// TimeReal
    std::uint32_t issued = 0;
    std::uint32_t expires = 0;
    char renewal = '0';
};

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

Bytes makeIcc(const DriverParameters& parameters, const Person& person)
{
    Random random(parameters.seed, LayoutStream);
    const Date made = dateOf(person.issued);
    Bytes icc = {0x01}; // clock stop allowed
    appendU32(icc, random.next());
    appendU8(icc, bcd(made.month));
    appendU8(icc, bcd(made.year % 100));
    appendU8(icc, static_cast<std::uint32_t>(Equipment::Driver));
    appendU8(icc, 0x54); // manufacturer: no real one
    appendBytes(icc, asciiField("SIM-G1 1", 8));
    appendU8(icc, 0x4B); // personaliser
    appendBytes(icc, asciiField("XX", 2));
    appendU16(icc, 0x0001); // module embedder
    appendU8(icc, 0x00);
    appendU16(icc, 0x5343); // IC identifier
    return icc;
}

Bytes makeIc(const DriverParameters& parameters)
{
    Random random(parameters.seed, LayoutStream + 1);
    Bytes ic;
    appendU32(ic, random.next());
    appendU32(ic, 0x53494D31); // manufacturing references
    return ic;
}

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

struct EventKind
{
    std::vector<std::uint8_t> codes;
    int fewest;
    int most;
    /// Longest duration in seconds.
    int longest;
    bool atInsertion = false;
};

/// Events or faults of the life's vehicles, a group of `perGroup` records for each kind.
Bytes makeIncidents(
    const std::vector<EventKind>& kinds, std::size_t perGroup, const DriverLife& life, int codePage,
    Random& random)
{
    Bytes empty(9, 0x00);
    appendNoRegistration(empty);

    Bytes bytes;
    for (const EventKind& kind : kinds) {
        std::vector<std::pair<std::uint32_t, Bytes>> records;
        for (int left = random.between(kind.fewest, kind.most); left > 0; --left) {
            const VehicleUse& use = random.pick(life.uses);
            const std::uint32_t begin =
                use.begin + (kind.atInsertion ? 0 : random.below(use.end - use.begin + 1));
            const std::uint32_t length = random.below(static_cast<std::uint32_t>(kind.longest) + 1);
            Bytes record = {random.pick(kind.codes)};
            appendU32(record, begin);
            appendU32(record, std::min(begin + length, use.end));
            appendRegistration(record, life.fleet[use.vehicle], codePage);
            records.emplace_back(begin, record);
        }
        std::sort(records.begin(), records.end());
        std::vector<Bytes> sorted;
        for (const auto& [time, record] : records) {
            sorted.push_back(record);
        }
        std::size_t newest = 0;
        appendBytes(bytes, cyclicRecords(sorted, perGroup, empty, newest));
    }
    return bytes;
}

Bytes makeEvents(const DriverParameters& parameters, const DriverLife& life)
{
    static const std::vector<EventKind> kinds = {
        {{0x03}, 0, 1, 900},                              // time overlap
        {{0x05}, 0, 2, 0, true},                          // card insertion while driving
        {{0x06}, 0, 1, 0, true},                          // last use not correctly closed
        {{0x08}, 1, 3, 240},                              // power supply interruption
        {{0x09}, 0, 2, 120},                              // motion data error
        {{0x11, 0x12, 0x15, 0x17, 0x21, 0x24}, 0, 1, 60}, // security breach attempts
    };
    Random random(parameters.seed, EventStream);
    return makeIncidents(kinds, parameters.eventsPerType, life, parameters.codePage, random);
}

Bytes makeFaults(const DriverParameters& parameters, const DriverLife& life)
{
    static const std::vector<EventKind> kinds = {
        {{0x31, 0x32, 0x33, 0x34, 0x35}, 1, 4, 3600}, // recording equipment
        {{0x40}, 0, 1, 30},                           // card
    };
    Random random(parameters.seed, EventStream + 1);
    return makeIncidents(kinds, parameters.faultsPerType, life, parameters.codePage, random);
}

std::size_t recordLength(const Day& day)
{
    return DayHeaderLength + 2 * day.words.size();
}

Bytes makeActivity(const DriverParameters& parameters, const std::vector<Day>& days)
{
    const std::size_t capacity = parameters.activityLength;
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
    std::size_t newest = 0;
    const Bytes content =
        cyclicRecords(records, parameters.vehicles, Bytes(VehicleRecordLength, 0x00), newest);
    Bytes bytes;
    appendU16(bytes, static_cast<std::uint32_t>(newest));
    appendBytes(bytes, content);
    return bytes;
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
    std::size_t newest = 0;
    const Bytes content = cyclicRecords(records, parameters.places, Bytes(PlaceRecordLength, 0x00), newest);
    Bytes bytes;
    appendU8(bytes, static_cast<std::uint32_t>(newest));
    appendBytes(bytes, content);
    return bytes;
}

/// Empty: the card lies in a reader, not in a vehicle unit.
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

/// Has no pointer: the oldest entries give way.
Bytes makeSpecificConditions(const DriverLife& life)
{
    std::vector<Bytes> records;
    for (const SpecificCondition& condition : life.conditions) {
        Bytes record;
        appendU32(record, condition.time);
        appendU8(record, static_cast<std::uint32_t>(condition.condition));
        records.push_back(record);
    }
    std::size_t newest = 0;
    return cyclicRecords(records, ConditionRecords, Bytes(ConditionRecordLength, 0x00), newest);
}

Bytes makeCardDownload(const DriverParameters& parameters)
{
    Bytes bytes;
    const std::uint32_t fourWeeksBefore = parameters.lastDay - 28 * SecondsPerDay + 17 * 3600;
    appendU32(bytes, parameters.lastDownload.value_or(fourWeeksBefore));
    return bytes;
}

} // namespace

DriverContents makeDriverContents(const DriverParameters& parameters)
{
    check(parameters);
    const Person person = makePerson(parameters);
    const DriverLife life =
        makeDriverLife(parameters.seed, parameters.nation, parameters.lastDay, parameters.days);

    DriverContents contents;
    contents.icc = makeIcc(parameters, person);
    contents.ic = makeIc(parameters);
    contents.applicationIdentification = makeApplicationIdentification(parameters);
    contents.cardCertificate = cardCertificateG1(
        parameters.nation, Equipment::Driver,
        slice(contents.icc, ExtendedSerialNumberOffset, ExtendedSerialNumberLength), person.expires);
    contents.caCertificate = caCertificateG1(parameters.nation);
    contents.identification = makeIdentification(parameters, person);
    contents.cardDownload = makeCardDownload(parameters);
    contents.drivingLicenceInfo = makeDrivingLicenceInfo(parameters, person);
    contents.eventsData = makeEvents(parameters, life);
    contents.faultsData = makeFaults(parameters, life);
    contents.driverActivityData = makeActivity(parameters, life.days);
    contents.vehiclesUsed = makeVehiclesUsed(parameters, life);
    contents.places = makePlaces(parameters, life);
    contents.currentUsage = makeCurrentUsage();
    contents.controlActivityData = makeControlActivity(parameters, life);
    contents.specificConditions = makeSpecificConditions(life);
    return contents;
}

} // namespace sim
