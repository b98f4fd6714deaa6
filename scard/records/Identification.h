#pragma once

#include <scard/records/BigEndian.h>

/// @file
/// Records that every tachograph card has (Annex 1C, Appendix 1 and 2), as the card's bytes.

namespace scard {

/// Serial number of a card or of a piece of equipment (ExtendedSerialNumber).
struct ExtendedSerialNumber
{
    unsigned char serialNumber[4];  ///< unsigned number, first byte highest; unique for maker, type and month
    unsigned char monthYear[2];     ///< of manufacture: BCD, mmyy
    unsigned char type;             ///< the maker's type of the equipment
    unsigned char manufacturerCode; ///< ManufacturerCode
};
static_assert(sizeof(ExtendedSerialNumber) == 8);

/// Who put the chip into the card (EmbedderIcAssemblerId).
struct EmbedderIcAssemblerId
{
    unsigned char countryCode[2];          ///< IA5 characters
    unsigned char moduleEmbedder[2];       ///< IA5 characters or a number, the embedder decides
    unsigned char manufacturerInformation; ///< the embedder's own
};
static_assert(sizeof(EmbedderIcAssemblerId) == 5);

/// EF_ICC (0002): the card (CardIccIdentification). It lies outside both applications.
struct CardIccIdentification
{
    unsigned char clockStop;                       ///< how the chip's clock may stop
    ExtendedSerialNumber cardExtendedSerialNumber; ///< of the card; the certificates name it too
    unsigned char cardApprovalNumber[8];           ///< of the type approval: IA5 characters
    unsigned char cardPersonaliserID;              ///< ManufacturerCode of who wrote the holder onto the card
    EmbedderIcAssemblerId embedderIcAssemblerId;   ///< who put the chip in
    unsigned char icIdentifier[2];                 ///< the chip's type
};
static_assert(sizeof(CardIccIdentification) == 25);

/// EF_IC (0005): the chip (CardChipIdentification). It lies outside both applications.
struct CardIcIdentification
{
    unsigned char icSerialNumber[4]; ///< unsigned number, first byte highest: SCardGeneric::getCardSerial()
    unsigned char icManufacturingReferences[4]; ///< the chip maker's own
};
static_assert(sizeof(CardIcIdentification) == 8);

/// The first bytes of EF_Application_Identification (0501), the same on every card.
struct GenericCardApplicationIdentification
{
    unsigned char typeOfTachographCardId;  ///< EquipmentType: scard::SCardMeta::Type
    unsigned char cardStructureVersion[2]; ///< 00 00 first generation, 01 00 second, 01 01 version 2.2
};
static_assert(sizeof(GenericCardApplicationIdentification) == 3);

/// A card by its number, in records that other cards keep (FullCardNumber).
struct FullCardNumber
{
    unsigned char cardType;               ///< EquipmentType: scard::SCardMeta::Type
    unsigned char cardIssuingMemberState; ///< NationNumeric
    unsigned char cardNumber[16];         ///< IA5 characters: DriverCardNumber or OwnerCardNumber
};
static_assert(sizeof(FullCardNumber) == 18);

/// Number of a card that a workshop, a control body or a company has, 16 IA5 characters (CardNumber).
struct OwnerCardNumber
{
    unsigned char ownerIdentification[13]; ///< of the workshop, the control body or the company
    unsigned char cardConsecutiveIndex;    ///< which of its cards: 0 to 9, A to Z, a to z
    unsigned char cardReplacementIndex;    ///< 0 on the first card, then 1 to 9 and A to Z
    unsigned char cardRenewalIndex;        ///< likewise
};
static_assert(sizeof(OwnerCardNumber) == 16);

} // namespace scard
