// Whole company cards.
#pragma once

#include "CommonContents.h"

#include <array>
#include <optional>

namespace sim {

struct CompanyParameters
{
    std::uint32_t seed = 1;
    /// NationNumeric of the issuing state.
    std::uint8_t nation = 0x0D;
    /// Part of ISO 8859 (1..16 without 12) in which all text fields are written.
    int codePage = 1;
    /// Records of EF_Company_Activity_Data, 230..520; may be 0.
    std::uint16_t activityRecords = 230;
    /// TimeReal of the newest activity.
    std::uint32_t lastActivity = 1709640000; // 2024-03-05 12:00

    // UTF-8; empty: chosen to fit nation and code page.
    std::string companyName;
    std::string companyAddress;
    /// Two lower-case letters; empty: that of the nation.
    std::string language;
    /// 13 characters of the card number; shorter ones are blank padded; empty: generated.
    std::string ownerIdentification;
    /// Consecutive, replacement and renewal index.
    std::string indices = "000";
    /// cardExtendedSerialNumber; unset: generated.
    std::optional<std::array<std::uint8_t, 8>> serial;
};

struct CompanyParametersG2
{
    /// The company, its activities and the record count of the first-generation application.
    CompanyParameters first;
    /// True: structure version 01 01; false: 01 00.
    bool version2 = false;
    std::uint16_t activityRecords = 230;
    Curve curve = Curve::NistP256;
    /// EF_CardMA_Certificate and EF_CA_Certificate.
    CertificateFiles certificateFiles = CertificateFiles::Exact;
    /// EF_Link_Certificate.
    CertificateFiles linkCertificate = CertificateFiles::Exact;
};

/// A first-generation company card: EF_Identification cannot be read without authentication. Throws
/// std::invalid_argument for parameters no card can have.
CardDescription makeCompanyCardG1(const CompanyParameters& parameters = {});

/// A second-generation company card: the second application has no key for signatures. Throws as the first
/// does.
CardDescription makeCompanyCardG2(const CompanyParametersG2& parameters = {});

} // namespace sim
