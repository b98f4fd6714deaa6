// Whole cards: contents, access rights and keys put together.
#pragma once

#include "CardDescription.h"
#include "DriverContents.h"
#include "DriverContentsG2.h"

namespace sim {

/// T=0 then T=1, TA1 = 95, IFSC 254, historical bytes "SIMTC".
inline const Bytes DefaultAtr = {0x3B, 0x95, 0x95, 0x80, 0x31, 0xFE, 0x45,
                                 0x53, 0x49, 0x4D, 0x54, 0x43, 0x4A};

/// A first-generation driver card. Throws as makeDriverContents() does.
CardDescription makeDriverCardG1(const DriverParameters& parameters = {});

/// A second-generation driver card: the first-generation application, then the second. The odd READ BINARY
/// works. Throws as makeDriverContentsG2() does.
CardDescription makeDriverCardG2(const DriverParametersG2& parameters = {});

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

/// A first-generation control card: EF_Identification cannot be read without authentication.
CardDescription makeControlCardG1(const ControlParameters& parameters = {});

} // namespace sim
