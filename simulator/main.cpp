// scard-simcard: a simulated tachograph card in the virtual reader of a pcscd.

#include "CompanyCard.h"
#include "ControlCard.h"
#include "DriverCard.h"
#include "TimeReal.h"
#include "VpcdLink.h"
#include "WorkshopCard.h"

#include <charconv>
#include <csignal>
#include <cstdlib>
#include <getopt.h>
#include <iostream>
#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace {

constexpr const char* Usage = R"(Usage: scard-simcard [options]

Puts a simulated tachograph card into a virtual reader (vpcd) and serves it until
it is interrupted or the reader goes away.

Reader
  --host HOST            host of the reader driver (127.0.0.1)
  --port N               port of the reader driver (36865)
  --connect-timeout S    seconds to wait for the reader (10)
  --bit-rate N           line speed in bits per second (no delay)

Card
  --kind KIND            driver-g1, driver-g2, driver-g2v2, or the same with
                         workshop, control or company (driver-g1)
  --seed N               another holder and other contents (1)
  --nation HEX           issuing nation, NationNumeric (0D)
  --code-page N          part of ISO 8859 of all texts (1)
  --last-day YYYY-MM-DD  the newest day of which the card tells (2024-03-05)
  --refuse-hash SW       PERFORM HASH OF FILE answers the status word (hexadecimal)
  --refuse-sign SW       the same for COMPUTE DIGITAL SIGNATURE

Driver and workshop cards (the counts hold for each application; in brackets those
of the driver card, then those of the workshop card)
  --events N             events per type (12, 3)
  --faults N             faults per type (24, 6)
  --activity N           bytes of the activity buffer (13776, 492)
  --vehicles N           vehicle records (200, 8)
  --places N             place records (112, 8)
  --surname S            names in UTF-8 (chosen to fit the nation)
  --first-names S

Driver cards
  --days N               days in the driver's life (60)

Workshop cards
  --calibrations N       calibration records of each application (255)
  --used-calibrations N  calibrations made so far (40)

Workshop and company cards
  --firm S               name in UTF-8 (chosen to fit the nation)

Control and company cards
  --activities N         activity records of each application (230)

Second generation
  --curve NAME           nist-p256, brainpool-p256r1, nist-p384, brainpool-p384r1,
                         brainpool-p512r1 or nist-p521 (nist-p256)
  --certificates FORM    exact, padded, empty or missing (exact)

Faults
  --pull-at N            the card is pulled with command N, counted from 0
  --fail-at N:SW         command N answers the status word SW (hexadecimal)

  --help                 this text
)";

constexpr int ExitUsage = 2;

enum Option : int
{
    Host = 1,
    Port,
    ConnectTimeout,
    BitRate,
    Kind,
    Seed,
    Nation,
    CodePage,
    LastDay,
    RefuseHash,
    RefuseSign,
    Events,
    Faults,
    Activity,
    Vehicles,
    Places,
    Surname,
    FirstNames,
    Days,
    Calibrations,
    UsedCalibrations,
    Firm,
    Activities,
    CurveName,
    Certificates,
    PullAt,
    FailAt,
    Help,
};

constexpr option Options[] = {
    {"host", required_argument, nullptr, Host},
    {"port", required_argument, nullptr, Port},
    {"connect-timeout", required_argument, nullptr, ConnectTimeout},
    {"bit-rate", required_argument, nullptr, BitRate},
    {"kind", required_argument, nullptr, Kind},
    {"seed", required_argument, nullptr, Seed},
    {"nation", required_argument, nullptr, Nation},
    {"code-page", required_argument, nullptr, CodePage},
    {"last-day", required_argument, nullptr, LastDay},
    {"refuse-hash", required_argument, nullptr, RefuseHash},
    {"refuse-sign", required_argument, nullptr, RefuseSign},
    {"events", required_argument, nullptr, Events},
    {"faults", required_argument, nullptr, Faults},
    {"activity", required_argument, nullptr, Activity},
    {"vehicles", required_argument, nullptr, Vehicles},
    {"places", required_argument, nullptr, Places},
    {"surname", required_argument, nullptr, Surname},
    {"first-names", required_argument, nullptr, FirstNames},
    {"days", required_argument, nullptr, Days},
    {"calibrations", required_argument, nullptr, Calibrations},
    {"used-calibrations", required_argument, nullptr, UsedCalibrations},
    {"firm", required_argument, nullptr, Firm},
    {"activities", required_argument, nullptr, Activities},
    {"curve", required_argument, nullptr, CurveName},
    {"certificates", required_argument, nullptr, Certificates},
    {"pull-at", required_argument, nullptr, PullAt},
    {"fail-at", required_argument, nullptr, FailAt},
    {"help", no_argument, nullptr, Help},
    {nullptr, 0, nullptr, 0},
};

/// The whole text as a number from 0 to what T holds.
template <typename T>
T number(const std::string& text, int base = 10)
{
    std::uint64_t value = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value, base);
    if (text.empty() || stop != end || error != std::errc() ||
        value > static_cast<std::uint64_t>(std::numeric_limits<T>::max())) {
        throw std::invalid_argument("not a number or too large: '" + text + "'");
    }
    return static_cast<T>(value);
}

std::uint32_t day(const std::string& text)
{
    const std::size_t first = text.find('-');
    const std::size_t second = text.find('-', first == std::string::npos ? first : first + 1);
    if (second == std::string::npos) {
        throw std::invalid_argument("not a date: '" + text + "'");
    }
    sim::Date date;
    date.year = number<std::uint16_t>(text.substr(0, first));
    date.month = number<std::uint16_t>(text.substr(first + 1, second - first - 1));
    date.day = number<std::uint16_t>(text.substr(second + 1));
    return sim::timeOf(date);
}

sim::CertificateFiles certificateFiles(const std::string& text)
{
    static constexpr std::pair<const char*, sim::CertificateFiles> Forms[] = {
        {"exact", sim::CertificateFiles::Exact},
        {"padded", sim::CertificateFiles::Padded},
        {"empty", sim::CertificateFiles::Empty},
        {"missing", sim::CertificateFiles::Missing},
    };
    for (const auto& [name, form] : Forms) {
        if (text == name) {
            return form;
        }
    }
    throw std::invalid_argument("unknown form of certificates: '" + text + "'");
}

/// What the options say of a card of each kind. A first-generation card takes the first part.
struct Cards
{
    sim::DriverParametersG2 driver;
    sim::WorkshopParametersG2 workshop;
    sim::ControlParametersG2 control;
    sim::CompanyParametersG2 company;

    template <typename Change>
    void ofEachKind(Change change)
    {
        change(driver);
        change(workshop);
        change(control);
        change(company);
    }

    /// Both applications of the cards that are used in vehicles.
    template <typename Change>
    void ofEachUsed(Change change)
    {
        change(driver.first);
        change(driver);
        change(workshop.first);
        change(workshop);
    }

    /// Both applications of the cards that are not.
    template <typename Change>
    void ofEachOffice(Change change)
    {
        change(control.first);
        change(control);
        change(company.first);
        change(company);
    }
};

template <typename Parameters>
Parameters asVersion2(Parameters parameters)
{
    parameters.version2 = true;
    return parameters;
}

struct CardKind
{
    const char* name;
    sim::CardDescription (*make)(const Cards& cards);
};

constexpr CardKind CardKinds[] = {
    {"driver-g1", [](const Cards& cards) { return sim::makeDriverCardG1(cards.driver.first); }},
    {"driver-g2", [](const Cards& cards) { return sim::makeDriverCardG2(cards.driver); }},
    {"driver-g2v2", [](const Cards& cards) { return sim::makeDriverCardG2(asVersion2(cards.driver)); }},
    {"workshop-g1", [](const Cards& cards) { return sim::makeWorkshopCardG1(cards.workshop.first); }},
    {"workshop-g2", [](const Cards& cards) { return sim::makeWorkshopCardG2(cards.workshop); }},
    {"workshop-g2v2", [](const Cards& cards) { return sim::makeWorkshopCardG2(asVersion2(cards.workshop)); }},
    {"control-g1", [](const Cards& cards) { return sim::makeControlCardG1(cards.control.first); }},
    {"control-g2", [](const Cards& cards) { return sim::makeControlCardG2(cards.control); }},
    {"control-g2v2", [](const Cards& cards) { return sim::makeControlCardG2(asVersion2(cards.control)); }},
    {"company-g1", [](const Cards& cards) { return sim::makeCompanyCardG1(cards.company.first); }},
    {"company-g2", [](const Cards& cards) { return sim::makeCompanyCardG2(cards.company); }},
    {"company-g2v2", [](const Cards& cards) { return sim::makeCompanyCardG2(asVersion2(cards.company)); }},
};

struct Settings
{
    std::string host = "127.0.0.1";
    std::uint16_t port = 36865;
    std::chrono::seconds connectTimeout{10};
    std::optional<double> bitRate;
    std::string kind = "driver-g1";
    Cards cards;
    std::optional<std::uint16_t> hashRefused;
    std::optional<std::uint16_t> signRefused;
    std::vector<std::pair<std::size_t, sim::Fault>> faults;
    bool help = false;
};

void setLastDay(Cards& cards, std::uint32_t midnight)
{
    const std::uint32_t noon = midnight + sim::SecondsPerDay / 2;
    cards.driver.first.lastDay = midnight;
    cards.workshop.first.lastCalibration = noon;
    cards.control.first.lastControl = noon;
    cards.company.first.lastActivity = noon;
}

void apply(int option, const std::string& value, Settings& settings)
{
    Cards& cards = settings.cards;
    switch (option) {
    case Host:
        settings.host = value;
        break;
    case Port:
        settings.port = number<std::uint16_t>(value);
        break;
    case ConnectTimeout:
        settings.connectTimeout = std::chrono::seconds(number<std::uint16_t>(value));
        break;
    case BitRate:
        settings.bitRate = number<std::uint32_t>(value);
        break;
    case Kind:
        settings.kind = value;
        break;
    case Seed:
        cards.ofEachKind([&](auto& card) { card.first.seed = number<std::uint32_t>(value); });
        break;
    case Nation:
        cards.ofEachKind([&](auto& card) { card.first.nation = number<std::uint8_t>(value, 16); });
        break;
    case CodePage:
        cards.ofEachKind([&](auto& card) { card.first.codePage = number<std::uint8_t>(value); });
        break;
    case LastDay:
        setLastDay(cards, day(value));
        break;
    case RefuseHash:
        settings.hashRefused = number<std::uint16_t>(value, 16);
        break;
    case RefuseSign:
        settings.signRefused = number<std::uint16_t>(value, 16);
        break;
    case Events:
        cards.ofEachUsed([&](auto& card) { card.eventsPerType = number<std::uint8_t>(value); });
        break;
    case Faults:
        cards.ofEachUsed([&](auto& card) { card.faultsPerType = number<std::uint8_t>(value); });
        break;
    case Activity:
        cards.ofEachUsed([&](auto& card) { card.activityLength = number<std::uint16_t>(value); });
        break;
    case Vehicles:
        cards.ofEachUsed([&](auto& card) { card.vehicles = number<std::uint16_t>(value); });
        break;
    case Places:
        cards.ofEachUsed([&](auto& card) { card.places = number<std::uint8_t>(value); });
        break;
    case Surname:
        cards.driver.first.surname = value;
        cards.workshop.first.surname = value;
        break;
    case FirstNames:
        cards.driver.first.firstNames = value;
        cards.workshop.first.firstNames = value;
        break;
    case Days:
        cards.driver.first.days = number<std::uint16_t>(value);
        break;
    case Calibrations:
        cards.workshop.first.calibrations = number<std::uint8_t>(value);
        cards.workshop.calibrations = cards.workshop.first.calibrations;
        break;
    case UsedCalibrations:
        cards.workshop.first.usedCalibrations = number<std::uint16_t>(value);
        break;
    case Firm:
        cards.workshop.first.workshopName = value;
        cards.company.first.companyName = value;
        break;
    case Activities:
        cards.ofEachOffice([&](auto& card) { card.activityRecords = number<std::uint16_t>(value); });
        break;
    case CurveName:
        cards.ofEachKind([&](auto& card) { card.curve = sim::curveOf(value); });
        break;
    case Certificates:
        cards.ofEachKind([&](auto& card) {
            card.certificateFiles = certificateFiles(value);
            card.linkCertificate = card.certificateFiles;
        });
        break;
    case PullAt:
        settings.faults.emplace_back(number<std::uint32_t>(value), sim::Fault::pulled());
        break;
    case FailAt: {
        const std::size_t colon = value.find(':');
        if (colon == std::string::npos) {
            throw std::invalid_argument("not a command number and a status word: '" + value + "'");
        }
        settings.faults.emplace_back(
            number<std::uint32_t>(value.substr(0, colon)),
            sim::Fault::status(number<std::uint16_t>(value.substr(colon + 1), 16)));
        break;
    }
    case Help:
        settings.help = true;
        break;
    default:
        throw std::invalid_argument("see --help");
    }
}

Settings parse(int argc, char** argv)
{
    Settings settings;
    while (true) {
        const int option = ::getopt_long(argc, argv, "", Options, nullptr);
        if (option == -1) {
            break;
        }
        apply(option, optarg ? optarg : "", settings);
    }
    if (optind < argc) {
        throw std::invalid_argument(std::string("unexpected argument: '") + argv[optind] + "'");
    }
    return settings;
}

sim::CardDescription describe(const Settings& settings)
{
    for (const CardKind& kind : CardKinds) {
        if (settings.kind == kind.name) {
            sim::CardDescription card = kind.make(settings.cards);
            card.switches.hashRefused = settings.hashRefused;
            card.switches.signRefused = settings.signRefused;
            return card;
        }
    }
    throw std::invalid_argument("unknown kind of card: '" + settings.kind + "'");
}

sim::VpcdLink* servedLink = nullptr;

extern "C" void onSignal(int)
{
    servedLink->stop();
}

int serve(const Settings& settings)
{
    sim::Card card(describe(settings));
    card.setLogging(false);
    for (const auto& [index, fault] : settings.faults) {
        card.failAt(index, fault);
    }
    if (settings.bitRate) {
        card.setByteDelay(sim::byteTimeAtBitRate(*settings.bitRate));
    }

    sim::VpcdLink link(card, settings.host, settings.port);
    servedLink = &link;
    struct sigaction action = {};
    action.sa_handler = onSignal;
    ::sigaction(SIGINT, &action, nullptr);
    ::sigaction(SIGTERM, &action, nullptr);

    if (!link.connect(settings.connectTimeout)) {
        if (link.isStopped()) {
            return EXIT_SUCCESS;
        }
        std::cerr << "scard-simcard: no reader at " << settings.host << ':' << settings.port << '\n';
        return EXIT_FAILURE;
    }
    std::cout << "Card of kind " << settings.kind << " is in the reader at " << settings.host << ':'
              << settings.port << std::endl;
    link.run();
    // The handler must not meet a link that is gone.
    action.sa_handler = SIG_IGN;
    ::sigaction(SIGINT, &action, nullptr);
    ::sigaction(SIGTERM, &action, nullptr);
    return EXIT_SUCCESS;
}

} // namespace

int main(int argc, char** argv)
{
    Settings settings;
    try {
        settings = parse(argc, argv);
        if (settings.help) {
            std::cout << Usage;
            return EXIT_SUCCESS;
        }
        return serve(settings);
    } catch (const std::invalid_argument& error) {
        std::cerr << "scard-simcard: " << error.what() << '\n';
        return ExitUsage;
    } catch (const std::exception& error) {
        std::cerr << "scard-simcard: " << error.what() << '\n';
        return EXIT_FAILURE;
    }
}
