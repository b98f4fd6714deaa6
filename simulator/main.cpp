// scard-simcard: a simulated tachograph card in the virtual reader of a pcscd.

#include "CompanyCard.h"
#include "ControlCard.h"
#include "DriverCard.h"
#include "TestPki.h"
#include "TestPkiG2.h"
#include "TimeReal.h"
#include "VpcdLink.h"
#include "WorkshopCard.h"

#include <charconv>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
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
  --change-at N          the first byte that command N answers arrives changed

Root keys
  --write-roots DIR      write the root keys of the simulated cards into the folder,
                         root-g1.bin and root-g2-CURVE.bin, and end

  --help                 this text
)";

constexpr int ExitUsage = 2;

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
    std::optional<std::filesystem::path> rootsFolder;
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

void setSurname(Settings& settings, const std::string& value)
{
    settings.cards.driver.first.surname = value;
    settings.cards.workshop.first.surname = value;
}

void setFirstNames(Settings& settings, const std::string& value)
{
    settings.cards.driver.first.firstNames = value;
    settings.cards.workshop.first.firstNames = value;
}

void setFirm(Settings& settings, const std::string& value)
{
    settings.cards.workshop.first.workshopName = value;
    settings.cards.company.first.companyName = value;
}

void setCalibrations(Settings& settings, const std::string& value)
{
    settings.cards.workshop.first.calibrations = number<std::uint8_t>(value);
    settings.cards.workshop.calibrations = settings.cards.workshop.first.calibrations;
}

void setCertificates(Settings& settings, const std::string& value)
{
    const sim::CertificateFiles form = certificateFiles(value);
    settings.cards.ofEachKind([form](auto& card) {
        card.certificateFiles = form;
        card.linkCertificate = form;
    });
}

void addRefusal(Settings& settings, const std::string& value)
{
    const std::size_t colon = value.find(':');
    if (colon == std::string::npos) {
        throw std::invalid_argument("not a command number and a status word: '" + value + "'");
    }
    settings.faults.emplace_back(
        number<std::uint32_t>(value.substr(0, colon)),
        sim::Fault::status(number<std::uint16_t>(value.substr(colon + 1), 16)));
}

using Value = const std::string&;

struct Option
{
    const char* name;
    void (*set)(Settings& to, Value value);
    int argument = required_argument;
};

// In the order of the usage text.
constexpr Option Options[] = {
    {"host", [](Settings& to, Value value) { to.host = value; }},
    {"port", [](Settings& to, Value value) { to.port = number<std::uint16_t>(value); }},
    {"connect-timeout",
     [](Settings& to, Value value) {
         to.connectTimeout = std::chrono::seconds(number<std::uint16_t>(value));
     }},
    {"bit-rate", [](Settings& to, Value value) { to.bitRate = number<std::uint32_t>(value); }},
    {"kind", [](Settings& to, Value value) { to.kind = value; }},
    {"seed",
     [](Settings& to, Value value) {
         to.cards.ofEachKind([&](auto& card) { card.first.seed = number<std::uint32_t>(value); });
     }},
    {"nation",
     [](Settings& to, Value value) {
         to.cards.ofEachKind([&](auto& card) { card.first.nation = number<std::uint8_t>(value, 16); });
     }},
    {"code-page",
     [](Settings& to, Value value) {
         to.cards.ofEachKind([&](auto& card) { card.first.codePage = number<std::uint8_t>(value); });
     }},
    {"last-day", [](Settings& to, Value value) { setLastDay(to.cards, day(value)); }},
    {"refuse-hash", [](Settings& to, Value value) { to.hashRefused = number<std::uint16_t>(value, 16); }},
    {"refuse-sign", [](Settings& to, Value value) { to.signRefused = number<std::uint16_t>(value, 16); }},
    {"events",
     [](Settings& to, Value value) {
         to.cards.ofEachUsed([&](auto& card) { card.eventsPerType = number<std::uint8_t>(value); });
     }},
    {"faults",
     [](Settings& to, Value value) {
         to.cards.ofEachUsed([&](auto& card) { card.faultsPerType = number<std::uint8_t>(value); });
     }},
    {"activity",
     [](Settings& to, Value value) {
         to.cards.ofEachUsed([&](auto& card) { card.activityLength = number<std::uint16_t>(value); });
     }},
    {"vehicles",
     [](Settings& to, Value value) {
         to.cards.ofEachUsed([&](auto& card) { card.vehicles = number<std::uint16_t>(value); });
     }},
    {"places",
     [](Settings& to, Value value) {
         to.cards.ofEachUsed([&](auto& card) { card.places = number<std::uint8_t>(value); });
     }},
    {"surname", setSurname},
    {"first-names", setFirstNames},
    {"days", [](Settings& to, Value value) { to.cards.driver.first.days = number<std::uint16_t>(value); }},
    {"calibrations", setCalibrations},
    {"used-calibrations",
     [](Settings& to, Value value) {
         to.cards.workshop.first.usedCalibrations = number<std::uint16_t>(value);
     }},
    {"firm", setFirm},
    {"activities",
     [](Settings& to, Value value) {
         to.cards.ofEachOffice([&](auto& card) { card.activityRecords = number<std::uint16_t>(value); });
     }},
    {"curve",
     [](Settings& to, Value value) {
         to.cards.ofEachKind([&](auto& card) { card.curve = sim::curveOf(value); });
     }},
    {"certificates", setCertificates},
    {"pull-at",
     [](Settings& to, Value value) {
         to.faults.emplace_back(number<std::uint32_t>(value), sim::Fault::pulled());
     }},
    {"fail-at", addRefusal},
    {"change-at",
     [](Settings& to, Value value) {
         to.faults.emplace_back(number<std::uint32_t>(value), sim::Fault::changedAnswer());
     }},
    {"write-roots", [](Settings& to, Value value) { to.rootsFolder = value; }},
    {"help", [](Settings& to, Value) { to.help = true; }, no_argument},
};

Settings parse(int argc, char** argv)
{
    constexpr int Known = 1;
    std::vector<option> options;
    for (const Option& each : Options) {
        options.push_back({each.name, each.argument, nullptr, Known});
    }
    options.push_back({});

    Settings settings;
    while (true) {
        int index = 0;
        const int found = ::getopt_long(argc, argv, "", options.data(), &index);
        if (found == -1) {
            break;
        }
        if (found != Known) {
            throw std::invalid_argument("see --help");
        }
        Options[index].set(settings, optarg != nullptr ? optarg : "");
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

void writeFile(const std::filesystem::path& path, const sim::Bytes& bytes)
{
    std::ofstream file(path, std::ios::binary);
    file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    file.close();
    if (!file) {
        throw std::runtime_error("cannot write " + path.string());
    }
}

int writeRoots(const std::filesystem::path& folder)
{
    writeFile(folder / "root-g1.bin", sim::rootKeyG1());
    for (const sim::CurveDescription& row : sim::curves()) {
        writeFile(folder / ("root-g2-" + std::string(row.name) + ".bin"), sim::rootCertificateG2(row.curve));
    }
    return EXIT_SUCCESS;
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
        return settings.rootsFolder ? writeRoots(*settings.rootsFolder) : serve(settings);
    } catch (const std::invalid_argument& error) {
        std::cerr << "scard-simcard: " << error.what() << '\n';
        return ExitUsage;
    } catch (const std::exception& error) {
        std::cerr << "scard-simcard: " << error.what() << '\n';
        return EXIT_FAILURE;
    }
}
