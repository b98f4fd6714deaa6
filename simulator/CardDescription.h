// A card as data: its files, rights, keys and the ways it may differ from other cards. Another kind of card
// is another description, not another class.
#pragma once

#include "Bytes.h"
#include "Signer.h"

#include <map>
#include <memory>
#include <optional>
#include <set>
#include <vector>

namespace sim {

/// AID of the first-generation application, "TACHO" behind FF.
inline const Bytes AidG1 = {0xFF, 0x54, 0x41, 0x43, 0x48, 0x4F};
/// AID of the second-generation application, "SMRDT" behind FF.
inline const Bytes AidG2 = {0xFF, 0x53, 0x4D, 0x52, 0x44, 0x54};
/// Stands for the MF where an application is asked for: the MF has no AID.
inline const Bytes MasterFile = {};

/// Status words of a tachograph card (Annex 1B, Appendix 2).
namespace sw {
constexpr std::uint16_t Ok = 0x9000;
constexpr std::uint16_t IntegrityError = 0x6281;
constexpr std::uint16_t AttributesCorrupted = 0x6400;
constexpr std::uint16_t WriteFailed = 0x6581;
constexpr std::uint16_t WrongLength = 0x6700;
constexpr std::uint16_t SecurityNotSatisfied = 0x6982;
constexpr std::uint16_t ConditionsNotSatisfied = 0x6985;
constexpr std::uint16_t NoCurrentFile = 0x6986;
constexpr std::uint16_t WrongData = 0x6A80;
constexpr std::uint16_t FileNotFound = 0x6A82;
constexpr std::uint16_t WrongParameters = 0x6A86;
constexpr std::uint16_t ReferenceNotFound = 0x6A88;
constexpr std::uint16_t WrongOffset = 0x6B00;
/// 6Cxx: wrong Le, xx bytes are left.
constexpr std::uint16_t WrongLe = 0x6C00;
constexpr std::uint16_t InstructionUnknown = 0x6D00;
constexpr std::uint16_t ClassUnknown = 0x6E00;
} // namespace sw

/// What a command needs. The simulated reader has no keys, so everything but Always answers 6982.
enum class Access
{
    Always,
    Never,
    SecureMessaging,
    ExternalAuthentication
};

struct FileDescription
{
    std::uint16_t fid = 0;
    /// Short EF identifier 1..30, 0 = none.
    std::uint8_t sfid = 0;
    Bytes content;
    Access select = Access::Always;
    Access read = Access::Always;
    Access update = Access::Never;
    /// False: PERFORM HASH OF FILE answers 6985.
    bool hashable = false;
};

struct ApplicationDescription
{
    Bytes aid;
    std::vector<FileDescription> files;
    /// Null: the application has no signing key, PERFORM HASH OF FILE answers 6985.
    std::shared_ptr<const Signer> signer;
};

/// Where cards of different makers differ, or fail.
struct Switches
{
    /// Reading beyond the end of an EF.
    enum class BeyondEnd
    {
        Refuse,    ///< 6700
        BytesLeft, ///< 6Cxx, xx = the Le that would have worked
    };
    /// Header of the answer object 53 of the odd READ BINARY.
    enum class OddHeader
    {
        Shortest, ///< DER: one byte up to 7F, 81 xx above
        TwoBytes, ///< always 82 xx xx
    };
    /// The odd READ BINARY with Le = 00 when less than a full answer is left.
    enum class OddEnd
    {
        Rest,   ///< returns what is left
        Refuse, ///< answers as `beyondEnd` says
    };

    /// Every success answers this word; 90E4 is seen in the field.
    std::uint16_t successWord = sw::Ok;
    BeyondEnd beyondEnd = BeyondEnd::Refuse;
    /// SELECT of an AID answers this word whether or not the application exists; an AID that is neither here
    /// nor on the card answers 6A82. A success word is not allowed here.
    std::map<Bytes, std::uint16_t> selectAidRefused;
    /// SELECT of the MF by 3F00 (not part of the regulation): empty = works, else refused with this word.
    std::optional<std::uint16_t> selectMasterFileRefused;
    /// READ BINARY with the odd instruction B1: empty = works. First-generation cards do not have it.
    std::optional<std::uint16_t> oddReadRefused = sw::InstructionUnknown;
    OddHeader oddHeader = OddHeader::Shortest;
    OddEnd oddEnd = OddEnd::Rest;
    /// FIDs whose content is read with 6281 (integrity error of the stored data) instead of success.
    std::set<std::uint16_t> integrityErrors;
    /// UPDATE BINARY that would succeed answers 6581 and changes nothing.
    bool writesFail = false;
    /// PERFORM HASH OF FILE: empty = supported. Control and company cards may lack it (6D00, 6985, 6982).
    std::optional<std::uint16_t> hashRefused;
    /// PSO COMPUTE DIGITAL SIGNATURE: empty = supported.
    std::optional<std::uint16_t> signRefused;
    /// True: the signature command with Le = 00 returns the whole signature instead of 6700.
    bool signatureWithLeZero = false;
};

struct CardDescription
{
    Bytes atr;
    std::vector<FileDescription> masterFiles;
    std::vector<ApplicationDescription> applications;
    Switches switches;
};

} // namespace sim
