// What control and company cards have in common: they belong to a body, are not used in a slot and keep a
// list of what was done with them (Annex 1B and 1C, Appendix 2).
#pragma once

#include "CommonContents.h"

namespace sim {

/// What a control or company card tells in either of its applications.
struct OfficeStory
{
    Equipment equipment = Equipment::Control;
    /// FID of EF_Controller_Activity_Data or EF_Company_Activity_Data.
    std::uint16_t activityFid = 0;
    std::uint8_t nation = 0;
    Bytes extendedSerialNumber;
    std::uint32_t chipSerial = 0;
    /// TimeReal
    std::uint32_t issued = 0;
    std::uint32_t expires = 0;
    Bytes identification;
    /// Oldest first.
    std::vector<Bytes> activities;
};

/// One entry of the list of activities.
struct OfficeActivity
{
    /// controlType or companyActivityType.
    std::uint8_t type = 0;
    std::uint32_t time = 0;
    /// The driver card concerned, 16 characters; empty: none.
    std::string driverCard;
    /// The vehicle concerned; without a plate: none.
    Vehicle vehicle;
    /// Of the data downloaded; 0: nothing was.
    std::uint32_t periodBegin = 0;
    std::uint32_t periodEnd = 0;
};
Bytes officeActivityRecord(const OfficeActivity& activity, std::uint8_t nation, int codePage);

struct OfficeParametersG2
{
    bool version2 = false;
    std::uint16_t activityRecords = 0;
    Curve curve = Curve::NistP256;
    CertificateFiles certificateFiles = CertificateFiles::Exact;
    CertificateFiles linkCertificate = CertificateFiles::Exact;
};

/// EF_Identification cannot be read without authentication.
CardDescription makeOfficeCardG1(const OfficeStory& story, std::uint16_t activityRecords);
/// Both applications; the second has no key for signatures, and its EF_Identification can be read.
CardDescription makeOfficeCardG2(
    const OfficeStory& story, std::uint16_t activityRecords, const OfficeParametersG2& parameters);

} // namespace sim
