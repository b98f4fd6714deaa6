// EFs and fields that cards of every kind have (Annex 1B and 1C, Appendices 1 and 2), and the pieces that
// records are made of.
#pragma once

#include "CardFiles.h"
#include "Curve.h"
#include "DriverLife.h"
#include "Random.h"
#include "TestPki.h"
#include "TestPkiG2.h"

namespace sim {

/// How the EFs of the certificates are filled.
enum class CertificateFiles
{
    Exact,  ///< the certificate
    Padded, ///< the certificate, then 00 up to the size of the largest one
    Empty,  ///< 00, as many as the smallest certificate has bytes
    Missing ///< there is no such EF
};

/// EFs of the MF.
struct MasterContents
{
    Bytes icc;
    Bytes ic;
    /// Empty on a card of the first generation.
    Bytes dir;
};

/// EFs of the first-generation application on cards of every kind.
struct ApplicationContents
{
    Bytes applicationIdentification;
    Bytes cardCertificate;
    Bytes caCertificate;
};

/// EFs of the second-generation application on cards of every kind.
struct ApplicationContentsG2
{
    Bytes applicationIdentification;
    Bytes cardMaCertificate;
    /// Only where the card signs: driver and workshop cards.
    Bytes cardSignCertificate;
    Bytes caCertificate;
    Bytes linkCertificate;

    // Version 2.
    Bytes applicationIdentificationV2;
    Bytes vuConfiguration;
};

/// A card with its MF and no application yet.
CardDescription cardWith(const MasterContents& contents);
/// Adds the first-generation application with its key: the EFs that cards of every kind have, then `others`.
void addApplicationG1(
    CardDescription& to, const ApplicationContents& contents, std::vector<FileDescription> others);
/// Adds the second-generation application likewise, its EFs in the order of their short identifiers; on a
/// control or company card it has no key. The odd READ BINARY works on such a card.
void addApplicationG2(
    CardDescription& to, const ApplicationContentsG2& contents, std::vector<FileDescription> others,
    Curve curve, Equipment equipment);

// Between these the newest entry of a workshop or company card may lie.
constexpr std::uint32_t EarliestTime = 946684800; // 2000-01-01
constexpr std::uint32_t LatestTime = 3786912000;  // 2090-01-01

/// Throws std::invalid_argument with `what` unless it holds.
void requireParameter(bool holds, const char* what);
/// Throws std::invalid_argument unless it is empty or two lower-case letters.
void requireLanguage(const std::string& language);

/// 0..9999 in two bytes of decimal digits.
void appendCounter(Bytes& to, int counter);
/// VehicleRegistrationIdentification. Plates are ASCII, which every code page has.
void appendRegistration(Bytes& to, const Vehicle& vehicle, int codePage);
void appendNoRegistration(Bytes& to);
/// The 16 characters of a card number: `holder` blank padded, then the indices.
std::string makeCardNumber(std::string holder, const std::string& indices);
/// FullCardNumber
void appendFullCardNumber(Bytes& to, Equipment equipment, std::uint8_t nation, const std::string& number);

/// The records that a cyclic EF of `slots` still holds, at their places; `empty` fills the others. Before the
/// first of them, `gone` records have been stored and given way.
Bytes cyclicSlots(
    const std::vector<Bytes>& records, std::size_t slots, const Bytes& empty, std::size_t gone = 0);
/// Index of the newest record among them.
std::uint32_t newestSlot(const std::vector<Bytes>& records, std::size_t slots);
/// That index in two bytes, then the slots; free ones are filled with `empty`.
Bytes cyclicFile(const std::vector<Bytes>& records, std::size_t slots, const Bytes& empty);
/// The same; free slots are all 00.
Bytes cyclicFile(const std::vector<Bytes>& records, std::size_t slots, std::size_t recordLength);

/// One of the names that the code page can write.
std::string
pickName(const std::vector<std::string>& names, int codePage, const std::string& otherwise, Random& random);
void replaceUnlessEmpty(std::string& chosen, const std::string& wanted);
/// Characters of a card number before the indices on all cards but the driver's.
constexpr std::size_t OwnerLength = 13;
/// The nation's letters, filled up with digits.
std::string makeIdentifier(std::uint8_t nation, std::size_t length, Random& random);

/// Of an undertaking: somebody's name and his trade, and where it is.
std::string makeFirmName(std::uint8_t nation, const std::string& trade, int codePage, Random& random);
std::string makeFirmAddress(Random& random);
/// Of the nation that issues a card.
std::string makeAuthority(std::uint8_t nation, int codePage, Random& random);

/// 00:00 of the working day before.
std::uint32_t workingDayBefore(std::uint32_t time);
/// The last second before the same day some years later.
std::uint32_t endAfterYears(std::uint32_t begin, int years);

/// The 8 bytes of EF_ICC that name the card's keys.
Bytes makeExtendedSerialNumber(std::uint32_t serial, std::uint32_t issued, Equipment equipment);
/// `approval` is the approval number of the card, 8 characters.
Bytes makeIcc(const Bytes& extendedSerialNumber, const std::string& approval);
Bytes extendedSerialNumber(const Bytes& icc);
Bytes makeIc(std::uint32_t serial);
/// Both applications under EF_DIR: an object 61 with an identifier 4F for each.
Bytes makeDir();

/// The first 65 bytes of EF_Identification.
struct CardIdentification
{
    std::uint8_t nation = 0;
    /// 16 characters.
    std::string number;
    std::string authority;
    /// TimeReal
    std::uint32_t issued = 0;
    std::uint32_t expires = 0;
};
void appendCardIdentification(Bytes& to, const CardIdentification& card, int codePage);

constexpr std::uint16_t StructureVersionG1 = 0x0000;
constexpr std::uint16_t structureVersionG2(bool version2)
{
    return version2 ? 0x0101 : 0x0100;
}

/// `form` is that of all certificates but the link, which has `link`.
void fillCertificatesG2(
    ApplicationContentsG2& contents, Curve curve, CertificateFiles form, CertificateFiles link,
    const CardHolder& holder);

/// EF_Application_Identification_V2: the length of what follows, then `counts` and the length of
/// EF_VU_Configuration, which is filled, too.
void fillVersion2(ApplicationContentsG2& contents, const std::vector<std::uint16_t>& counts);

} // namespace sim
