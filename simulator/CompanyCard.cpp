#include "CompanyCard.h"

#include "Nations.h"
#include "OfficeCard.h"
#include "Text.h"
#include "TimeReal.h"

#include <algorithm>

namespace sim {

namespace {

constexpr std::uint32_t CompanyStream = 64;
constexpr std::uint32_t ActivityStream = 65;
constexpr std::uint32_t CompanySerialStream = 66;

constexpr std::uint16_t CompanyActivityData = 0x050D;
constexpr int CompanyCardYears = 5;

/// CompanyActivityType
enum class CompanyActivity : std::uint8_t
{
    CardDownload = 1,
    VuDownload = 2,
    LockIn = 3,
    LockOut = 4
};

/// In office hours of working days, up to and including the newest.
std::vector<std::uint32_t> makeTimes(std::uint32_t newest, Random& random)
{
    constexpr std::size_t Activities = 40;
    constexpr std::uint32_t Opening = 6 * 3600;
    constexpr std::uint32_t Closing = 16 * 3600;

    std::vector<std::uint32_t> times = {newest};
    while (times.size() < Activities) {
        std::uint32_t day = workingDayBefore(times.back());
        for (int pause = random.between(0, 3); pause > 0; --pause) {
            day = workingDayBefore(day);
        }
        times.push_back(day + Opening + random.below(Closing - Opening));
    }
    std::reverse(times.begin(), times.end());
    return times;
}

/// What a company does with its card: it claims vehicles and collects data of those and of its drivers.
class Company
{
  public:
    Company(const CompanyParameters& parameters, Random& random) : m_parameters(parameters), m_random(random)
    {
        for (int i = m_random.between(4, 7); i > 0; --i) {
            m_drivers.push_back(makeIdentifier(parameters.nation, 14, m_random) + "00");
        }
    }

    OfficeActivity act(std::uint32_t time)
    {
        switch (choose()) {
        case CompanyActivity::CardDownload:
            return downloadCard(time);
        case CompanyActivity::VuDownload:
            return ofVehicle(CompanyActivity::VuDownload, time, m_random.pick(m_vehicles));
        case CompanyActivity::LockIn:
            return lockIn(time);
        case CompanyActivity::LockOut:
            break;
        }
        return lockOut(time);
    }

  private:
    CompanyActivity choose()
    {
        constexpr std::size_t Fewest = 2;
        const int choice = m_random.between(0, 99);
        if (m_vehicles.size() < Fewest || choice < 10) {
            return CompanyActivity::LockIn;
        }
        if (choice < 17) {
            return CompanyActivity::LockOut;
        }
        return choice < 60 ? CompanyActivity::CardDownload : CompanyActivity::VuDownload;
    }

    void fillPeriod(OfficeActivity& activity)
    {
        activity.periodEnd = activity.time;
        activity.periodBegin =
            activity.time - static_cast<std::uint32_t>(m_random.between(20, 90)) * SecondsPerDay;
    }

    OfficeActivity downloadCard(std::uint32_t time)
    {
        OfficeActivity activity;
        activity.type = static_cast<std::uint8_t>(CompanyActivity::CardDownload);
        activity.time = time;
        activity.driverCard = m_random.pick(m_drivers);
        fillPeriod(activity);
        return activity;
    }

    OfficeActivity ofVehicle(CompanyActivity type, std::uint32_t time, const Vehicle& vehicle)
    {
        OfficeActivity activity;
        activity.type = static_cast<std::uint8_t>(type);
        activity.time = time;
        activity.vehicle = vehicle;
        if (type == CompanyActivity::VuDownload) {
            fillPeriod(activity);
        }
        return activity;
    }

    OfficeActivity lockIn(std::uint32_t time)
    {
        Vehicle vehicle;
        vehicle.nation = m_parameters.nation;
        vehicle.plate = makePlate(nationProfile(m_parameters.nation).plate, m_random);
        m_vehicles.push_back(vehicle);
        return ofVehicle(CompanyActivity::LockIn, time, vehicle);
    }

    OfficeActivity lockOut(std::uint32_t time)
    {
        const auto index = m_random.below(static_cast<std::uint32_t>(m_vehicles.size()));
        const Vehicle vehicle = m_vehicles[index];
        m_vehicles.erase(m_vehicles.begin() + index);
        return ofVehicle(CompanyActivity::LockOut, time, vehicle);
    }

    const CompanyParameters& m_parameters;
    Random& m_random;
    std::vector<std::string> m_drivers;
    /// Locked in.
    std::vector<Vehicle> m_vehicles;
};

Bytes makeIdentification(const CompanyParameters& parameters, CardIdentification card)
{
    Random random(parameters.seed, CompanyStream);
    const int codePage = parameters.codePage;
    card.authority = makeAuthority(parameters.nation, codePage, random);
    std::string company = makeFirmName(parameters.nation, "Transport", codePage, random);
    std::string address = makeFirmAddress(random);
    std::string owner = makeIdentifier(parameters.nation, OwnerLength, random);
    std::string language = nationProfile(parameters.nation).language;
    replaceUnlessEmpty(company, parameters.companyName);
    replaceUnlessEmpty(address, parameters.companyAddress);
    replaceUnlessEmpty(owner, parameters.ownerIdentification);
    replaceUnlessEmpty(language, parameters.language);

    card.number = makeCardNumber(owner, parameters.indices);
    Bytes bytes;
    appendCardIdentification(bytes, card, codePage);
    for (const std::string& text : {company, address}) {
        appendBytes(bytes, textField(text, codePage, NameLength));
    }
    appendBytes(bytes, asciiField(language, 2));
    return bytes;
}

OfficeStory makeCompanyStory(const CompanyParameters& parameters)
{
    requireParameter(
        parameters.lastActivity >= EarliestTime && parameters.lastActivity <= LatestTime,
        "the newest activity is out of range");
    requireParameter(parameters.indices.size() == 3, "a card number has three indices");
    requireLanguage(parameters.language);
    Random activityRandom(parameters.seed, ActivityStream);
    Random serialRandom(parameters.seed, CompanySerialStream);
    const std::vector<std::uint32_t> times = makeTimes(parameters.lastActivity, activityRandom);

    OfficeStory story;
    story.equipment = Equipment::Company;
    story.activityFid = CompanyActivityData;
    story.nation = parameters.nation;
    story.issued = times.front() - times.front() % SecondsPerDay -
                   static_cast<std::uint32_t>(serialRandom.between(10, 900)) * SecondsPerDay;
    story.expires = endAfterYears(story.issued, CompanyCardYears);
    story.extendedSerialNumber =
        makeExtendedSerialNumber(serialRandom.next(), story.issued, Equipment::Company);
    story.chipSerial = serialRandom.next();
    if (parameters.serial) {
        story.extendedSerialNumber.assign(parameters.serial->begin(), parameters.serial->end());
    }
    story.identification =
        makeIdentification(parameters, {parameters.nation, {}, {}, story.issued, story.expires});

    Company company(parameters, activityRandom);
    for (const std::uint32_t time : times) {
        story.activities.push_back(
            officeActivityRecord(company.act(time), parameters.nation, parameters.codePage));
    }
    return story;
}

} // namespace

CardDescription makeCompanyCardG1(const CompanyParameters& parameters)
{
    return makeOfficeCardG1(makeCompanyStory(parameters), parameters.activityRecords);
}

CardDescription makeCompanyCardG2(const CompanyParametersG2& parameters)
{
    return makeOfficeCardG2(
        makeCompanyStory(parameters.first), parameters.first.activityRecords,
        {parameters.version2, parameters.activityRecords, parameters.curve, parameters.certificateFiles,
         parameters.linkCertificate});
}

} // namespace sim
