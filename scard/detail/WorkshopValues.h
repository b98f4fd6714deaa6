#pragma once

#include <scard/detail/Bytes.h>
#include <scard/WorkshopCardValues.h>

#include <vector>

// The value types of a workshop card from an EF's bytes. Lists come by time; slots that were never used are
// left out, and of an EF that was not read nothing comes.

namespace scard::detail {

/// @p calibration: EF_Calibration, @p cardDownload: EF_Card_Download, of either generation.
CalibrationCounters calibrationCounters(const Bytes& calibration, const Bytes& cardDownload);

/// By the time after the calibration.
std::vector<Calibration> calibrationsG1(const Bytes& ef);
std::vector<Calibration> calibrationsG2(const Bytes& ef);

/// By the time before the calibration.
std::vector<CalibrationAddData> calibrationAddData(const Bytes& ef);

} // namespace scard::detail
