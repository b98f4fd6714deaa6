#pragma once

#include <scardverify/RootKey.h>

#include <vector>

namespace scard::verify::detail {

/// What vouches for an EF.
enum class Protection
{
    None,              ///< nothing: the chip's EFs, which lie outside both applications
    Signature,         ///< that of the card behind it
    OptionalSignature, ///< the same, but not every program asks the card for it
    Certificate,       ///< it is a certificate, and has the signature of its issuer in it
};

/// An EF in the download of a card.
struct FileRule
{
    unsigned short fid;
    Protection protection;
    bool isRequired; ///< every card has it, and every download should
};

/// Which EFs to expect: of which card, in which application.
struct Expected
{
    Generation generation = Generation::First;
    int cardType = 0;        ///< EquipmentType, 1 to 4; 0 when it is not known
    bool isVersion2 = false; ///< structure version 01 01 or later

    /// False for the second application of control and company cards, which have no key for it.
    bool isSigned() const;
};

/// True for the chip's EFs, which every card has outside both applications.
bool isOfChip(unsigned short fid);

/// The EFs that such an application has. When the type of the card is not known, those of all cards, none of
/// them required.
std::vector<FileRule> fileRules(const Expected& expected);

} // namespace scard::verify::detail
