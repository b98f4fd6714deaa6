// The working life behind a workshop card: vehicles that are brought, calibrated and driven for a test.
#pragma once

#include "DriverJourney.h"
#include "TestPki.h"

namespace sim {

/// CalibrationPurpose
enum class CalibrationPurpose : std::uint8_t
{
    Activation = 1,
    FirstInstallation = 2,
    Installation = 3,
    PeriodicInspection = 4,
    // Second generation only.
    RegistrationEntry = 5,
    TimeAdjustment = 6
};

bool isOfFirstGeneration(CalibrationPurpose purpose);

struct Seal
{
    Equipment equipment = Equipment::VehicleUnit;
    /// 2 and 8 characters.
    std::string manufacturer;
    std::string identifier;
};

struct Calibration
{
    CalibrationPurpose purpose = CalibrationPurpose::PeriodicInspection;
    Vehicle vehicle;
    VehicleIdentity identity;
    /// w and k, impulses per km.
    std::uint16_t characteristic = 0;
    std::uint16_t constant = 0;
    /// In eighths of a millimetre.
    std::uint16_t tyreCircumference = 0;
    std::string tyreSize;
    /// km/h
    std::uint8_t speed = 0;
    std::uint32_t oldOdometer = 0;
    std::uint32_t newOdometer = 0;
    std::uint32_t oldTime = 0;
    std::uint32_t newTime = 0;
    std::uint32_t next = 0;
    /// 16 characters.
    std::string unitPartNumber;
    /// Extended serial numbers, 8 bytes each.
    Bytes unitSerial;
    Bytes sensorSerial;
    Bytes gnssSerial;
    Bytes remoteSerial;
    /// Bit 0: cards of the first generation are not accepted.
    std::uint8_t ability = 0;
    /// At most five.
    std::vector<Seal> seals;

    // Version 2.
    Load load = Load::Undefined;
    std::uint8_t country = 0;
    std::uint32_t positionTime = 0;
};

struct WorkshopLife
{
    /// Oldest first; all that are needed and perhaps some more.
    std::vector<Calibration> calibrations;
    /// The newest visits in the terms of a driver's life; each vehicle of the fleet was brought once.
    DriverLife usage;
    /// One for each vehicle of the fleet.
    std::vector<VehicleIdentity> identities;
};

struct WorkshopNeeds
{
    /// TimeReal, 06:00 to 20:00.
    std::uint32_t lastCalibration = 0;
    /// Newest calibrations that the card still has, whatever their purpose.
    std::size_t calibrations = 0;
    /// Newest calibrations of the first generation's purposes.
    std::size_t firstGenerationCalibrations = 0;
};

/// More needs lead further into the past and change nothing else.
WorkshopLife makeWorkshopLife(std::uint32_t seed, std::uint8_t nation, const WorkshopNeeds& needs);

} // namespace sim
