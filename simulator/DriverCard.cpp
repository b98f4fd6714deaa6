#include "DriverCard.h"

#include "Nations.h"
#include "Random.h"
#include "TestPki.h"
#include "TestPkiG2.h"
#include "Text.h"
#include "TimeReal.h"

#include <algorithm>
#include <utility>

namespace sim {

namespace {

/// An EF as a row: where its content comes from and who may do what. All EFs may be selected without keys.
template <typename Contents>
struct FileRow
{
    std::uint16_t fid;
    Bytes Contents::*content;
    Access read;
    Access update;
    bool hashable;
    std::uint8_t sfid = 0;
};

/// An EF without content is not on the card.
template <typename Contents, std::size_t Rows>
std::vector<FileDescription> filesFrom(const FileRow<Contents> (&rows)[Rows], const Contents& contents)
{
    std::vector<FileDescription> files;
    for (const FileRow<Contents>& row : rows) {
        const Bytes& content = contents.*row.content;
        if (content.empty()) {
            continue;
        }
        FileDescription file;
        file.fid = row.fid;
        file.sfid = row.sfid;
        file.content = content;
        file.read = row.read;
        file.update = row.update;
        file.hashable = row.hashable;
        files.push_back(std::move(file));
    }
    return files;
}

template <typename Contents, std::size_t MasterRows, std::size_t Rows>
CardDescription cardFrom(
    const FileRow<Contents> (&masterRows)[MasterRows], const FileRow<Contents> (&rows)[Rows],
    const Contents& contents)
{
    CardDescription card;
    card.atr = DefaultAtr;
    card.masterFiles = filesFrom(masterRows, contents);
    card.applications.push_back({AidG1, filesFrom(rows, contents), cardSignerG1()});
    return card;
}

constexpr Access Always = Access::Always;
constexpr Access Never = Access::Never;
constexpr Access Secure = Access::SecureMessaging;
constexpr Access Authenticated = Access::ExternalAuthentication;

// Annex 1B, Appendix 2: file structure of the driver card.
constexpr FileRow<DriverContents> DriverMasterFiles[] = {
    {0x0002, &DriverContents::icc, Always, Never, false},
    {0x0005, &DriverContents::ic, Always, Never, false},
};

constexpr FileRow<DriverContents> DriverFiles[] = {
    {0x0501, &DriverContents::applicationIdentification, Always, Never, true},
    {0xC100, &DriverContents::cardCertificate, Always, Never, true},
    {0xC108, &DriverContents::caCertificate, Always, Never, true},
    {0x0520, &DriverContents::identification, Always, Never, true},
    {0x050E, &DriverContents::cardDownload, Always, Always, true},
    {0x0521, &DriverContents::drivingLicenceInfo, Always, Never, true},
    {0x0502, &DriverContents::eventsData, Always, Secure, true},
    {0x0503, &DriverContents::faultsData, Always, Secure, true},
    {0x0504, &DriverContents::driverActivityData, Always, Secure, true},
    {0x0505, &DriverContents::vehiclesUsed, Always, Secure, true},
    {0x0506, &DriverContents::places, Always, Secure, true},
    {0x0507, &DriverContents::currentUsage, Always, Secure, true},
    {0x0508, &DriverContents::controlActivityData, Always, Secure, true},
    {0x0522, &DriverContents::specificConditions, Always, Secure, true},
};

// Annex 1C, Appendix 2: file structure of the driver card.
constexpr FileRow<DriverContentsG2> DriverMasterFilesG2[] = {
    {0x2F00, &DriverContentsG2::dir, Always, Never, false, 30},
};

constexpr FileRow<DriverContentsG2> DriverFilesG2[] = {
    {0x0501, &DriverContentsG2::applicationIdentification, Always, Never, true, 1},
    {0xC100, &DriverContentsG2::cardMaCertificate, Always, Never, true, 2},
    {0xC101, &DriverContentsG2::cardSignCertificate, Always, Never, true, 3},
    {0xC108, &DriverContentsG2::caCertificate, Always, Never, true, 4},
    {0xC109, &DriverContentsG2::linkCertificate, Always, Never, true, 5},
    {0x0520, &DriverContentsG2::identification, Always, Never, true, 6},
    {0x050E, &DriverContentsG2::cardDownload, Always, Always, true, 7},
    {0x0521, &DriverContentsG2::drivingLicenceInfo, Always, Never, true, 10},
    {0x0502, &DriverContentsG2::eventsData, Always, Secure, true, 12},
    {0x0503, &DriverContentsG2::faultsData, Always, Secure, true, 13},
    {0x0504, &DriverContentsG2::driverActivityData, Always, Secure, true, 14},
    {0x0505, &DriverContentsG2::vehiclesUsed, Always, Secure, true, 15},
    {0x0506, &DriverContentsG2::places, Always, Secure, true, 16},
    {0x0507, &DriverContentsG2::currentUsage, Always, Secure, true, 17},
    {0x0508, &DriverContentsG2::controlActivityData, Always, Secure, true, 18},
    {0x0522, &DriverContentsG2::specificConditions, Always, Secure, true, 19},
    {0x0523, &DriverContentsG2::vehicleUnitsUsed, Always, Secure, true, 20},
    {0x0524, &DriverContentsG2::gnssPlaces, Always, Secure, true, 21},
    {0x0525, &DriverContentsG2::applicationIdentificationV2, Always, Never, true, 22},
    {0x0526, &DriverContentsG2::placesAuthentication, Always, Secure, true, 23},
    {0x0527, &DriverContentsG2::gnssPlacesAuthentication, Always, Secure, true, 24},
    {0x0528, &DriverContentsG2::borderCrossings, Always, Secure, true, 25},
    {0x0529, &DriverContentsG2::loadUnloadOperations, Always, Secure, true, 26},
    {0x0530, &DriverContentsG2::loadTypeEntries, Always, Secure, true, 27},
    {0x0540, &DriverContentsG2::vuConfiguration, Secure, Secure, false, 30},
};

struct ControlContents
{
    Bytes icc;
    Bytes ic;
    Bytes applicationIdentification;
    Bytes cardCertificate;
    Bytes caCertificate;
    Bytes identification;
    Bytes controllerActivityData;
};

// Annex 1B, Appendix 2: file structure of the control card.
constexpr FileRow<ControlContents> ControlMasterFiles[] = {
    {0x0002, &ControlContents::icc, Always, Never, false},
    {0x0005, &ControlContents::ic, Always, Never, false},
};

constexpr FileRow<ControlContents> ControlFiles[] = {
    {0x0501, &ControlContents::applicationIdentification, Always, Never, true},
    {0xC100, &ControlContents::cardCertificate, Always, Never, true},
    {0xC108, &ControlContents::caCertificate, Always, Never, true},
    {0x0520, &ControlContents::identification, Authenticated, Never, false},
    {0x050C, &ControlContents::controllerActivityData, Always, Secure, true},
};

constexpr std::uint32_t ControlStream = 16;
constexpr std::size_t CardNumberLength = 16;

/// One control after the other, up to some days apart, the last at `lastControl`.
Bytes makeControllerActivity(const ControlParameters& parameters, Random& random)
{
    constexpr std::uint32_t Used = 40;
    constexpr std::uint32_t LongestPause = 3 * SecondsPerDay;
    const std::uint32_t used = std::min<std::uint32_t>(Used, parameters.activityRecords);

    Bytes bytes;
    appendU16(bytes, used - 1);
    for (std::uint32_t left = used; left-- > 0;) {
        const std::uint32_t before = left * LongestPause + (left > 0 ? random.below(LongestPause) : 0);
        const std::uint32_t time = parameters.lastControl - before;
        const bool ofCard = random.chance(70);
        appendU8(bytes, ofCard ? 0x80 : 0x60); // card download; VU download and printing
        appendU32(bytes, time);
        if (ofCard) {
            appendU8(bytes, static_cast<std::uint32_t>(Equipment::Driver));
            appendU8(bytes, parameters.nation);
            appendBytes(bytes, asciiField(random.digits(14) + "00", CardNumberLength));
        } else {
            bytes.insert(bytes.end(), 18, 0x00);
        }
        appendU8(bytes, parameters.nation);
        appendBytes(bytes, textField("SIM " + random.digits(4), parameters.codePage, PlateLength));
        appendU32(bytes, time - 28 * SecondsPerDay);
        appendU32(bytes, time);
    }
    for (std::uint32_t i = used; i < parameters.activityRecords; ++i) {
        bytes.insert(bytes.end(), 1 + 4 + 18 + 1, 0x00);
        appendBytes(bytes, emptyTextField(PlateLength));
        bytes.insert(bytes.end(), 4 + 4, 0x00);
    }
    return bytes;
}

ControlContents makeControlContents(const ControlParameters& parameters)
{
    if (parameters.activityRecords == 0 || parameters.lastControl < 946684800) { // 2000-01-01
        throw std::invalid_argument("no control card has such parameters");
    }
    Random random(parameters.seed, ControlStream);
    const NationProfile profile = nationProfile(parameters.nation);
    const std::string authority =
        encodeText(profile.authority, parameters.codePage) ? profile.authority : "Control Authority";
    const std::uint32_t issued = parameters.lastControl / SecondsPerDay * SecondsPerDay - 300 * SecondsPerDay;
    const std::uint32_t expires = issued + 2 * 365 * SecondsPerDay - 1;
    const auto type = static_cast<std::uint32_t>(Equipment::Control);

    Bytes serial;
    appendU32(serial, random.next());
    const Date made = dateOf(issued);
    appendU8(serial, bcd(made.month));
    appendU8(serial, bcd(made.year % 100));
    appendU8(serial, type);
    appendU8(serial, 0x54); // manufacturer: no real one

    ControlContents contents;
    appendU8(contents.icc, 0x01); // clock stop allowed
    appendBytes(contents.icc, serial);
    appendBytes(contents.icc, asciiField("SIM-G1 3", 8));
    appendBytes(contents.icc, {0x4B, 'X', 'X', 0x00, 0x01, 0x00, 0x53, 0x43});
    appendU32(contents.ic, random.next());
    appendU32(contents.ic, 0x53494D31);

    appendU8(contents.applicationIdentification, type);
    appendU16(contents.applicationIdentification, 0x0000);
    appendU16(contents.applicationIdentification, parameters.activityRecords);

    contents.cardCertificate = cardCertificateG1(parameters.nation, Equipment::Control, serial, expires);
    contents.caCertificate = caCertificateG1(parameters.nation);

    Bytes& identification = contents.identification;
    appendU8(identification, parameters.nation);
    appendBytes(identification, asciiField(random.digits(13) + "100", CardNumberLength));
    appendBytes(identification, textField(authority, parameters.codePage, NameLength));
    appendU32(identification, issued);
    appendU32(identification, issued);
    appendU32(identification, expires);
    appendBytes(identification, textField("Road Police", parameters.codePage, NameLength));
    appendBytes(identification, textField("Station Road 1", parameters.codePage, NameLength));
    appendBytes(identification, textField("Road Police", parameters.codePage, NameLength));
    appendBytes(identification, textField("", parameters.codePage, NameLength));
    appendBytes(identification, asciiField(profile.language, 2));

    contents.controllerActivityData = makeControllerActivity(parameters, random);
    return contents;
}

} // namespace

CardDescription makeDriverCardG1(const DriverParameters& parameters)
{
    return cardFrom(DriverMasterFiles, DriverFiles, makeDriverContents(parameters));
}

CardDescription makeDriverCardG2(const DriverParametersG2& parameters)
{
    const DriverContentsG2 contents = makeDriverContentsG2(parameters);
    CardDescription card = cardFrom(DriverMasterFiles, DriverFiles, contents.first);
    for (FileDescription& file : filesFrom(DriverMasterFilesG2, contents)) {
        card.masterFiles.push_back(std::move(file));
    }
    card.applications.push_back({AidG2, filesFrom(DriverFilesG2, contents), cardSignerG2(parameters.curve)});
    card.switches.oddReadRefused.reset();
    return card;
}

CardDescription makeControlCardG1(const ControlParameters& parameters)
{
    return cardFrom(ControlMasterFiles, ControlFiles, makeControlContents(parameters));
}

} // namespace sim
