// Whole control cards.
#pragma once

#include "CommonContents.h"

namespace sim {

struct ControlParameters
{
    std::uint32_t seed = 1;
    std::uint8_t nation = 0x0D;
    int codePage = 1;
    /// Records of EF_Controller_Activity_Data, 230..520.
    std::uint16_t activityRecords = 230;
    /// TimeReal of the newest control.
    std::uint32_t lastControl = 1709640000; // 2024-03-05 12:00
};

struct ControlParametersG2
{
    /// The control body, its controls and the record count of the first-generation application.
    ControlParameters first;
    /// True: structure version 01 01; false: 01 00.
    bool version2 = false;
    std::uint16_t activityRecords = 230;
    Curve curve = Curve::NistP256;
    /// EF_CardMA_Certificate and EF_CA_Certificate.
    CertificateFiles certificateFiles = CertificateFiles::Exact;
    /// EF_Link_Certificate.
    CertificateFiles linkCertificate = CertificateFiles::Exact;
};

/// A first-generation control card: EF_Identification cannot be read without authentication. Throws
/// std::invalid_argument for parameters no card can have.
CardDescription makeControlCardG1(const ControlParameters& parameters = {});

/// A second-generation control card: the second application has no key for signatures. Throws as the first
/// does.
CardDescription makeControlCardG2(const ControlParametersG2& parameters = {});

} // namespace sim
