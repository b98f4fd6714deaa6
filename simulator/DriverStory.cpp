#include "DriverStory.h"

#include "Nations.h"
#include "Text.h"

#include <algorithm>
#include <utility>

namespace sim {

namespace {

constexpr std::uint32_t PersonStream = 2;
constexpr std::uint32_t DriverSerialStream = 4;
constexpr std::uint32_t ChipStream = 5;

constexpr std::size_t DriverIdLength = 14;
constexpr std::size_t LicenceNumberLength = 16;
constexpr std::size_t DriverConditionRecords = 56;

constexpr int DriverCardYears = 5;
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
    requireLanguage(parameters.language);
}

void appendDate(Bytes& to, const Date& date)
{
    appendU8(to, bcd(date.year / 100));
    appendU8(to, bcd(date.year % 100));
    appendU8(to, bcd(date.month));
    appendU8(to, bcd(date.day));
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
    person.authority = makeAuthority(parameters.nation, parameters.codePage, random);
    person.language = profile.language;
    person.driverIdentification = makeIdentifier(parameters.nation, DriverIdLength, random);
    person.licenceNumber = nationAlpha(parameters.nation) + random.digits(9);
    person.renewal = static_cast<char>('0' + random.below(3));

    const Date newest = dateOf(parameters.lastDay);
    person.birth.year = newest.year - random.between(24, 62);
    person.birth.month = random.between(1, 12);
    person.birth.day = random.between(1, 28);

    person.issued = firstDay - static_cast<std::uint32_t>(random.between(60, 900)) * SecondsPerDay;
    person.expires = endAfterYears(person.issued, DriverCardYears);

    replaceUnlessEmpty(person.surname, parameters.surname);
    replaceUnlessEmpty(person.firstNames, parameters.firstNames);
    replaceUnlessEmpty(person.authority, parameters.authority);
    replaceUnlessEmpty(person.language, parameters.language);
    replaceUnlessEmpty(person.driverIdentification, parameters.driverIdentification);
    return person;
}

} // namespace

DriverStory makeDriverStory(const DriverParameters& parameters)
{
    check(parameters);
    DriverLife life = makeDriverLife(parameters.seed, parameters.nation, parameters.lastDay, parameters.days);
    return {tellUsage(parameters.seed, std::move(life)), makePerson(parameters)};
}

UsageParameters driverUsage(const DriverParameters& parameters)
{
    UsageParameters usage = usageParameters(parameters, DriverConditionRecords);
    usage.wrapPosition = parameters.wrapPosition;
    return usage;
}

MasterContents
makeMasterContents(const DriverParameters& parameters, const Person& person, const std::string& approval)
{
    Random serialRandom(parameters.seed, DriverSerialStream);
    Random chipRandom(parameters.seed, ChipStream);
    MasterContents contents;
    contents.icc =
        makeIcc(makeExtendedSerialNumber(serialRandom.next(), person.issued, Equipment::Driver), approval);
    contents.ic = makeIc(chipRandom.next());
    return contents;
}

Bytes makeIdentification(const DriverParameters& parameters, const Person& person)
{
    // Never replaced.
    const std::string indices = {'0', person.renewal};
    Bytes bytes;
    appendCardIdentification(
        bytes,
        {parameters.nation, makeCardNumber(person.driverIdentification, indices), person.authority,
         person.issued, person.expires},
        parameters.codePage);
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
    appendBytes(bytes, asciiField(person.licenceNumber, LicenceNumberLength));
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
