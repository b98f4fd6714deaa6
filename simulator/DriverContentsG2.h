// Contents of a second-generation driver card (Annex 1C, Appendices 1 and 2), version 1 or 2: both its
// applications tell the same driver's months. The same parameters give the same bytes on every machine.
#pragma once

#include "DriverContents.h"
#include "UsageContentsG2.h"

namespace sim {

struct DriverParametersG2
{
    /// The driver, his days and the record counts of the first-generation application.
    DriverParameters first;
    /// True: structure version 01 01 with the EFs that came with it; false: 01 00.
    bool version2 = false;

    // The record counts of EF_Application_Identification and EF_Application_Identification_V2.
    std::uint8_t eventsPerType = 12;
    std::uint8_t faultsPerType = 24;
    std::uint16_t activityLength = 13776;
    std::uint16_t vehicles = 200;
    std::uint16_t places = 112;
    std::uint16_t gnssPlaces = 336;
    std::uint16_t specificConditions = 112;
    std::uint16_t vehicleUnits = 200;
    std::uint16_t borderCrossings = 1120;
    std::uint16_t loadUnloadOperations = 1624;
    std::uint16_t loadTypeEntries = 336;

    /// Of all keys and certificates of the application.
    Curve curve = Curve::NistP256;
    /// EF_CardMA_Certificate, EF_CardSignCertificate and EF_CA_Certificate.
    CertificateFiles certificateFiles = CertificateFiles::Exact;
    /// EF_Link_Certificate.
    CertificateFiles linkCertificate = CertificateFiles::Exact;
};

/// One member for each EF, exactly as stored; one that the card does not have is empty.
struct DriverContentsG2 : ApplicationContentsG2, UsageContentsG2
{
    /// EFs of the MF and of the first-generation application.
    DriverContents first;

    Bytes identification;
    Bytes cardDownload;
    Bytes drivingLicenceInfo;
};

/// Throws as makeDriverContents() does.
DriverContentsG2 makeDriverContentsG2(const DriverParametersG2& parameters);

} // namespace sim
