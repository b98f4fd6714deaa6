#include "CommonContents.h"

#include "Nations.h"
#include "Text.h"
#include "TimeReal.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace sim {

namespace {

using namespace rights;

constexpr FileRow<MasterContents> MasterFiles[] = {
    {0x0002, &MasterContents::icc, Always, Never, false},
    {0x0005, &MasterContents::ic, Always, Never, false},
    {0x2F00, &MasterContents::dir, Always, Never, false, 30},
};

constexpr FileRow<ApplicationContents> ApplicationFiles[] = {
    {0x0501, &ApplicationContents::applicationIdentification, Always, Never, true},
    {0xC100, &ApplicationContents::cardCertificate, Always, Never, true},
    {0xC108, &ApplicationContents::caCertificate, Always, Never, true},
};

constexpr FileRow<ApplicationContentsG2> ApplicationFilesG2[] = {
    {0x0501, &ApplicationContentsG2::applicationIdentification, Always, Never, true, 1},
    {0xC100, &ApplicationContentsG2::cardMaCertificate, Always, Never, true, 2},
    {0xC101, &ApplicationContentsG2::cardSignCertificate, Always, Never, true, 3},
    {0xC108, &ApplicationContentsG2::caCertificate, Always, Never, true, 4},
    {0xC109, &ApplicationContentsG2::linkCertificate, Always, Never, true, 5},
    {0x0525, &ApplicationContentsG2::applicationIdentificationV2, Always, Never, true, 22},
    {0x0540, &ApplicationContentsG2::vuConfiguration, Secure, Secure, false, 30},
};

constexpr std::size_t CardNumberLength = 16;
constexpr std::uint16_t VuConfigurationLength = 3072;
constexpr std::size_t SmallestCertificate = 204;
constexpr std::size_t LargestCertificate = 341;

Bytes certificateFile(Bytes certificate, CertificateFiles form)
{
    switch (form) {
    case CertificateFiles::Exact:
        break;
    case CertificateFiles::Padded:
        certificate.resize(LargestCertificate, 0x00);
        break;
    case CertificateFiles::Empty:
        return Bytes(SmallestCertificate, 0x00);
    case CertificateFiles::Missing:
        return {};
    }
    return certificate;
}

} // namespace

CardDescription cardWith(const MasterContents& contents)
{
    CardDescription card;
    card.atr = DefaultAtr;
    addFiles(card.masterFiles, MasterFiles, contents);
    return card;
}

void addApplicationG1(
    CardDescription& to, const ApplicationContents& contents, std::vector<FileDescription> others)
{
    std::vector<FileDescription> files;
    addFiles(files, ApplicationFiles, contents);
    std::move(others.begin(), others.end(), std::back_inserter(files));
    to.applications.push_back({AidG1, std::move(files), cardSignerG1()});
}

void addApplicationG2(
    CardDescription& to, const ApplicationContentsG2& contents, std::vector<FileDescription> others,
    Curve curve, Equipment equipment)
{
    std::vector<FileDescription> files = std::move(others);
    addFiles(files, ApplicationFilesG2, contents);
    std::sort(files.begin(), files.end(), [](const FileDescription& one, const FileDescription& other) {
        return one.sfid < other.sfid;
    });
    to.applications.push_back({AidG2, std::move(files), signsG2(equipment) ? cardSignerG2(curve) : nullptr});
    to.switches.oddReadRefused.reset();
}

void requireParameter(bool holds, const char* what)
{
    if (!holds) {
        throw std::invalid_argument(what);
    }
}

void requireLanguage(const std::string& language)
{
    const bool lowerCase =
        std::all_of(language.begin(), language.end(), [](char c) { return c >= 'a' && c <= 'z'; });
    requireParameter(
        language.empty() || (language.size() == 2 && lowerCase), "a language is two lower-case letters");
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

void appendNoRegistration(Bytes& to)
{
    appendU8(to, 0);
    appendBytes(to, emptyTextField(PlateLength));
}

std::string makeCardNumber(std::string holder, const std::string& indices)
{
    requireParameter(holder.size() + indices.size() <= CardNumberLength, "a card number too long");
    holder.resize(CardNumberLength - indices.size(), ' ');
    return holder + indices;
}

void appendFullCardNumber(Bytes& to, Equipment equipment, std::uint8_t nation, const std::string& number)
{
    appendU8(to, static_cast<std::uint32_t>(equipment));
    appendU8(to, nation);
    appendBytes(to, asciiField(number, CardNumberLength));
}

Bytes cyclicSlots(const std::vector<Bytes>& records, std::size_t slots, const Bytes& empty, std::size_t gone)
{
    std::vector<const Bytes*> content(slots, &empty);
    for (std::size_t i = 0; i < records.size() && slots > 0; ++i) {
        content[(gone + i) % slots] = &records[i];
    }
    Bytes bytes;
    for (const Bytes* record : content) {
        appendBytes(bytes, *record);
    }
    return bytes;
}

std::uint32_t newestSlot(const std::vector<Bytes>& records, std::size_t slots)
{
    return records.empty() || slots == 0 ? 0 : static_cast<std::uint32_t>((records.size() - 1) % slots);
}

Bytes cyclicFile(const std::vector<Bytes>& records, std::size_t slots, const Bytes& empty)
{
    Bytes bytes;
    appendU16(bytes, newestSlot(records, slots));
    appendBytes(bytes, cyclicSlots(records, slots, empty));
    return bytes;
}

Bytes cyclicFile(const std::vector<Bytes>& records, std::size_t slots, std::size_t recordLength)
{
    return cyclicFile(records, slots, Bytes(recordLength, 0x00));
}

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

void replaceUnlessEmpty(std::string& chosen, const std::string& wanted)
{
    if (!wanted.empty()) {
        chosen = wanted;
    }
}

std::string makeIdentifier(std::uint8_t nation, std::size_t length, Random& random)
{
    const std::string alpha = nationAlpha(nation);
    return alpha + random.digits(length - alpha.size());
}

std::string makeFirmName(std::uint8_t nation, const std::string& trade, int codePage, Random& random)
{
    return pickName(nationProfile(nation).surnames, codePage, "Martin", random) + " " + trade;
}

std::string makeFirmAddress(Random& random)
{
    static const std::vector<std::string> streets = {"Harbour Road", "Mill Lane", "Depot Street"};
    const std::string& street = random.pick(streets);
    return street + " " + std::to_string(random.between(1, 180));
}

std::string makeAuthority(std::uint8_t nation, int codePage, Random& random)
{
    return pickName({nationProfile(nation).authority}, codePage, "Card Issuing Authority", random);
}

std::uint32_t workingDayBefore(std::uint32_t time)
{
    constexpr int Saturday = 5;
    std::uint32_t day = time - time % SecondsPerDay - SecondsPerDay;
    while (weekdayOf(day) >= Saturday) {
        day -= SecondsPerDay;
    }
    return day;
}

std::uint32_t endAfterYears(std::uint32_t begin, int years)
{
    Date end = dateOf(begin);
    end.year += years;
    end.day = std::min(end.day, 28);
    return timeOf(end) - 1;
}

Bytes makeExtendedSerialNumber(std::uint32_t serial, std::uint32_t issued, Equipment equipment)
{
    const Date made = dateOf(issued);
    Bytes bytes;
    appendU32(bytes, serial);
    appendU8(bytes, bcd(made.month));
    appendU8(bytes, bcd(made.year % 100));
    appendU8(bytes, static_cast<std::uint32_t>(equipment));
    appendU8(bytes, 0x54); // manufacturer: no real one
    return bytes;
}

Bytes makeIcc(const Bytes& extendedSerialNumber, const std::string& approval)
{
    Bytes icc;
    appendU8(icc, 0x01); // clock stop allowed
    appendBytes(icc, extendedSerialNumber);
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

Bytes makeIc(std::uint32_t serial)
{
    Bytes ic;
    appendU32(ic, serial);
    appendU32(ic, 0x53494D31); // manufacturing references
    return ic;
}

Bytes makeDir()
{
    Bytes bytes;
    for (const Bytes& aid : {AidG1, AidG2}) {
        const auto length = static_cast<std::uint32_t>(aid.size());
        appendU8(bytes, 0x61);
        appendU8(bytes, length + 2);
        appendU8(bytes, 0x4F);
        appendU8(bytes, length);
        appendBytes(bytes, aid);
    }
    return bytes;
}

void appendCardIdentification(Bytes& to, const CardIdentification& card, int codePage)
{
    appendU8(to, card.nation);
    appendBytes(to, asciiField(card.number, CardNumberLength));
    appendBytes(to, textField(card.authority, codePage, NameLength));
    appendU32(to, card.issued);
    appendU32(to, card.issued);
    appendU32(to, card.expires);
}

void fillCertificatesG2(
    ApplicationContentsG2& contents, Curve curve, CertificateFiles form, CertificateFiles link,
    const CardHolder& holder)
{
    contents.cardMaCertificate = certificateFile(cardMaCertificateG2(curve, holder), form);
    if (signsG2(holder.equipment)) {
        contents.cardSignCertificate = certificateFile(cardSignCertificateG2(curve, holder), form);
    }
    const int year = dateOf(holder.issued).year;
    contents.caCertificate = certificateFile(caCertificateG2(curve, holder.nation, year), form);
    contents.linkCertificate = certificateFile(linkCertificateG2(curve), link);
}

void fillVersion2(ApplicationContentsG2& contents, const std::vector<std::uint16_t>& counts)
{
    Bytes following;
    for (const std::uint16_t count : counts) {
        appendU16(following, count);
    }
    appendU16(following, VuConfigurationLength);
    appendU16(contents.applicationIdentificationV2, static_cast<std::uint32_t>(following.size()));
    appendBytes(contents.applicationIdentificationV2, following);
    contents.vuConfiguration = Bytes(VuConfigurationLength, 0x00);
}

} // namespace sim
