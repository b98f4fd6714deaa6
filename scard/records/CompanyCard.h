#pragma once

#include <scard/records/BigEndian.h>
#include <scard/records/Identification.h>
#include <scard/records/TextFields.h>

// Records of company cards (Annex 1B and 1C, Appendix 1 and 2), as the card's bytes; the same in both
// generations.

namespace scard {

/// EF_Application_Identification (0501): how many records the card holds.
struct CompanyCardApplicationIdentification
{
    unsigned char typeOfTachographCardId;
    unsigned char cardStructureVersion[2];
    UInt16 noOfCompanyActivityRecords;
};
static_assert(sizeof(CompanyCardApplicationIdentification) == 5);

struct CompanyActivityRecord
{
    unsigned char companyActivityType; ///< 0 in an empty slot
    TimeReal companyActivityTime;
    FullCardNumber cardNumberInformation; ///< of the card that was downloaded
    VehicleRegistrationIdentification vehicleRegistrationInformation;
    TimeReal downloadPeriodBegin;
    TimeReal downloadPeriodEnd;
};
static_assert(sizeof(CompanyActivityRecord) == 46);

/// EF_Identification (0520): the card (65 bytes) and the company (74 bytes).
struct CompanyCard_EF_Identification
{
    unsigned char cardIssuingMemberState; ///< NationNumeric
    OwnerCardNumber cardNumber;
    Name cardIssuingAuthorityName;
    TimeReal cardIssueDate;
    TimeReal cardValidityBegin;
    TimeReal cardExpiryDate;
    Name companyName;
    Address companyAddress;
    unsigned char cardHolderPreferredLanguage[2];
};
static_assert(sizeof(CompanyCard_EF_Identification) == 139);

/// EF_Application_Identification_V2 (0525), on cards of version 2.2.
struct CompanyCardApplicationIdentification_g2_v2
{
    UInt16 lengthOfFollowingData;
    UInt16 vuConfigurationLengthRange;
};
static_assert(sizeof(CompanyCardApplicationIdentification_g2_v2) == 4);

} // namespace scard
