// Contents of a workshop card of either generation (Annex 1B and 1C, Appendices 1 and 2): a fitter's
// calibrations and test drives, made from a seed. The same parameters give the same bytes on every machine.
#pragma once

#include "UsageContentsG2.h"

namespace sim {

struct WorkshopParameters
{
    std::uint32_t seed = 1;
    /// NationNumeric of the issuing state.
    std::uint8_t nation = 0x0D;
    /// Part of ISO 8859 (1..16 without 12) in which all text fields are written.
    int codePage = 1;

    // The record counts of EF_Application_Identification; only that of the calibrations may be 0.
    std::uint8_t eventsPerType = 3;
    std::uint8_t faultsPerType = 6;
    std::uint16_t activityLength = 492;
    std::uint16_t vehicles = 8;
    std::uint8_t places = 8;
    std::uint8_t calibrations = 255;

    /// Calibrations made with the card so far, 0..65535; more than it has records: the oldest gave way. On a
    /// second-generation card some of them have a purpose that its first-generation application does not
    /// know, does not store and does not count.
    int usedCalibrations = 40;
    /// TimeReal of the newest, between 06:00 and 20:00; both generations know its purpose.
    std::uint32_t lastCalibration = 1709640000; // 2024-03-05 12:00
    std::uint16_t calibrationsSinceDownload = 7;

    // UTF-8; empty: chosen to fit nation and code page.
    std::string workshopName;
    std::string workshopAddress;
    std::string surname;
    /// A blank for a card that names no person.
    std::string firstNames;
    /// Two lower-case letters; empty: that of the nation.
    std::string language;
    /// 13 characters of the card number; shorter ones are blank padded; empty: generated.
    std::string ownerIdentification;
    /// Consecutive, replacement and renewal index.
    std::string indices = "000";
};

struct WorkshopParametersG2
{
    /// The workshop, its calibrations and the record counts of the first-generation application.
    WorkshopParameters first;
    /// True: structure version 01 01 with the EFs that came with it; false: 01 00.
    bool version2 = false;

    // The record counts of EF_Application_Identification and EF_Application_Identification_V2; only that of
    // the calibrations may be 0.
    std::uint8_t eventsPerType = 3;
    std::uint8_t faultsPerType = 6;
    std::uint16_t activityLength = 492;
    std::uint16_t vehicles = 8;
    std::uint16_t places = 8;
    /// At most 368, or the end of the file is out of reach.
    std::uint16_t calibrations = 255;
    std::uint16_t gnssPlaces = 24;
    std::uint16_t specificConditions = 4;
    std::uint16_t vehicleUnits = 8;
    std::uint16_t borderCrossings = 4;
    std::uint16_t loadUnloadOperations = 8;
    std::uint16_t loadTypeEntries = 4;

    /// Of all keys and certificates of the application.
    Curve curve = Curve::NistP256;
    /// EF_CardMA_Certificate, EF_CardSignCertificate and EF_CA_Certificate.
    CertificateFiles certificateFiles = CertificateFiles::Exact;
    /// EF_Link_Certificate.
    CertificateFiles linkCertificate = CertificateFiles::Exact;
};

/// EFs of the workshop card alone, which both applications have; one member for each, exactly as stored.
struct WorkshopFiles
{
    Bytes identification;
    Bytes cardDownload;
    Bytes calibration;
    Bytes sensorInstallationData;
};

struct WorkshopContents : MasterContents, ApplicationContents, UsageContents, WorkshopFiles
{};

/// An EF that the card does not have is empty.
struct WorkshopContentsG2 : ApplicationContentsG2, UsageContentsG2, WorkshopFiles
{
    /// EFs of the MF and of the first-generation application.
    WorkshopContents first;
    /// Version 2.
    Bytes calibrationAddData;
};

/// Throws std::invalid_argument for parameters no card can have (a text the code page does not know, a buffer
/// too small for one day, a count of 0, a number of calibrations or a time out of range).
WorkshopContents makeWorkshopContents(const WorkshopParameters& parameters);
/// Throws likewise.
WorkshopContentsG2 makeWorkshopContentsG2(const WorkshopParametersG2& parameters);

} // namespace sim
