#pragma once

#include <scard/records/BigEndian.h>
#include <scard/records/Identification.h>
#include <scard/records/TextFields.h>

/// @file
/// Records of company cards (Annex 1B and 1C, Appendix 1 and 2), as the card's bytes; the same in both
/// generations.

namespace scard {

/// EF_Application_Identification (0501): how many records the card holds.
struct CompanyCardApplicationIdentification
{
    unsigned char typeOfTachographCardId;  ///< EquipmentType: scard::SCardMeta::Type
    unsigned char cardStructureVersion[2]; ///< 00 00 first generation, 01 00 second, 01 01 version 2.2
    UInt16 noOfCompanyActivityRecords;     ///< records in EF_Company_Activity_Data
};
static_assert(sizeof(CompanyCardApplicationIdentification) == 5);

/// One record of EF_Company_Activity_Data (050D), which is cyclic behind a pointer of two bytes to the newest
/// record (companyActivityRecord).
struct CompanyActivityRecord
{
    unsigned char companyActivityType;    ///< see scard::CompanyActivity; 0 in an empty slot
    TimeReal companyActivityTime;         ///< of the activity
    FullCardNumber cardNumberInformation; ///< of the card that was downloaded; all zero otherwise
    VehicleRegistrationIdentification vehicleRegistrationInformation; ///< downloaded or locked
    TimeReal downloadPeriodBegin; ///< of what was downloaded from the vehicle unit; 0 otherwise
    TimeReal downloadPeriodEnd;   ///< likewise
};
static_assert(sizeof(CompanyActivityRecord) == 46);

/// EF_Identification (0520): the card (CardIdentification, 65 bytes) and the company
/// (CompanyCardHolderIdentification, 74 bytes).
struct CompanyCard_EF_Identification
{
    unsigned char cardIssuingMemberState;         ///< NationNumeric
    OwnerCardNumber cardNumber;                   ///< 16 characters
    Name cardIssuingAuthorityName;                ///< who issued the card
    TimeReal cardIssueDate;                       ///< when it was issued
    TimeReal cardValidityBegin;                   ///< first day of validity
    TimeReal cardExpiryDate;                      ///< last day of validity
    Name companyName;                             ///< the holder
    Address companyAddress;                       ///< of the company
    unsigned char cardHolderPreferredLanguage[2]; ///< two lower-case letters (ISO 639): "de"
};
static_assert(sizeof(CompanyCard_EF_Identification) == 139);

/// EF_Application_Identification_V2 (0525), on cards of version 2.2.
struct CompanyCardApplicationIdentification_g2_v2
{
    UInt16 lengthOfFollowingData;      ///< bytes behind this number: 2
    UInt16 vuConfigurationLengthRange; ///< bytes of EF_VU_Configuration (0540), which is not read
};
static_assert(sizeof(CompanyCardApplicationIdentification_g2_v2) == 4);

} // namespace scard
