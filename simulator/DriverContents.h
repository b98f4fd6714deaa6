// Contents of a first-generation driver card (Annex 1B, Appendices 1 and 2): a driver's months, made from a
// seed. The same parameters give the same bytes on every machine.
#pragma once

#include "UsageContents.h"

#include <optional>
#include <string>

namespace sim {

struct DriverParameters
{
    std::uint32_t seed = 1;
    /// NationNumeric of the issuing state.
    std::uint8_t nation = 0x0D;
    /// Part of ISO 8859 (1..16 without 12) in which all text fields are written.
    int codePage = 1;

    // The record counts of EF_Application_Identification.
    std::uint8_t eventsPerType = 12;
    std::uint8_t faultsPerType = 24;
    std::uint16_t activityLength = 13776;
    std::uint16_t vehicles = 200;
    std::uint8_t places = 112;

    /// Calendar days up to and including `lastDay`, 1..800. The activity buffer keeps the newest of them that
    /// fit.
    int days = 60;
    /// TimeReal of the newest day, 00:00 UTC; always a day of work.
    std::uint32_t lastDay = 1709596800; // 2024-03-05
    /// Byte position in the activity buffer at which the oldest day starts; -1: so that the chain of days
    /// runs over the end of the buffer.
    int wrapPosition = -1;

    // UTF-8; empty: chosen to fit nation and code page.
    std::string surname;
    std::string firstNames;
    std::string authority;
    /// 14 characters of the card number; shorter ones are blank padded; empty: generated.
    std::string driverIdentification;
    /// Two lower-case letters; empty: that of the nation.
    std::string language;
    /// TimeReal in EF_Card_Download; unset: four weeks before the newest day.
    std::optional<std::uint32_t> lastDownload;
};

/// One member for each EF, exactly as stored.
struct DriverContents : MasterContents, ApplicationContents, UsageContents
{
    Bytes identification;
    Bytes cardDownload;
    Bytes drivingLicenceInfo;
};

/// Throws std::invalid_argument for parameters no card can have (days out of range, a text the code page does
/// not know, a buffer too small for one day, a wrap position outside the buffer, a count of 0).
DriverContents makeDriverContents(const DriverParameters& parameters);

} // namespace sim
