#pragma once

#include <scard/records/BigEndian.h>

// Records that every tachograph card has (Annex 1C, Appendix 1 and 2), as the card's bytes.

namespace scard {

struct ExtendedSerialNumber
{
    unsigned char serialNumber[4];
    unsigned char monthYear[2]; ///< BCD, mmyy
    unsigned char type;
    unsigned char manufacturerCode;
};
static_assert(sizeof(ExtendedSerialNumber) == 8);

struct EmbedderIcAssemblerId
{
    unsigned char countryCode[2]; ///< IA5 characters
    unsigned char moduleEmbedder[2];
    unsigned char manufacturerInformation;
};
static_assert(sizeof(EmbedderIcAssemblerId) == 5);

/// EF_ICC (0002): the card.
struct CardIccIdentification
{
    unsigned char clockStop;
    ExtendedSerialNumber cardExtendedSerialNumber;
    unsigned char cardApprovalNumber[8]; ///< IA5 characters
    unsigned char cardPersonaliserID;
    EmbedderIcAssemblerId embedderIcAssemblerId;
    unsigned char icIdentifier[2];
};
static_assert(sizeof(CardIccIdentification) == 25);

/// EF_IC (0005): the chip.
struct CardIcIdentification
{
    unsigned char icSerialNumber[4];
    unsigned char icManufacturingReferences[4];
};
static_assert(sizeof(CardIcIdentification) == 8);

/// The first bytes of EF_Application_Identification (0501), the same on every card.
struct GenericCardApplicationIdentification
{
    unsigned char typeOfTachographCardId; ///< scard::SCardMeta::Type
    unsigned char cardStructureVersion[2];
};
static_assert(sizeof(GenericCardApplicationIdentification) == 3);

/// A card by its number, in records that other cards keep.
struct FullCardNumber
{
    unsigned char cardType;
    unsigned char cardIssuingMemberState; ///< NationNumeric
    unsigned char cardNumber[16];
};
static_assert(sizeof(FullCardNumber) == 18);

/// Number of a card that a workshop, a control body or a company has.
struct OwnerCardNumber
{
    unsigned char ownerIdentification[13];
    unsigned char cardConsecutiveIndex;
    unsigned char cardReplacementIndex;
    unsigned char cardRenewalIndex;
};
static_assert(sizeof(OwnerCardNumber) == 16);

} // namespace scard
