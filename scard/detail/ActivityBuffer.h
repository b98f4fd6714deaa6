#pragma once

#include <aux/Error.h>
#include <scard/detail/Bytes.h>
#include <scard/SCardDriverG1.h>

#include <cstdint>
#include <vector>

// EF_Driver_Activity_Data (Annex 1C, Appendix 1, CardDriverActivity): two pointers, then a cyclic buffer of
// one record a day. A record, and even a number in it, may run over the buffer's end to its start.

namespace scard::detail {

using Day = SCardDriverG1::_DAILY_ACTIVITIES;

/// Fills @p days with the days of the EF's bytes @p ef, oldest first; @p structureLength is the length of
/// the cyclic buffer, in bytes, that the card announces. However the pointers and lengths lie, the walk
/// stays inside the buffer and ends. Errors as SCardDriverG1::buildDailyActivityList().
aux::Error readDays(const Bytes& ef, std::uint32_t structureLength, std::vector<Day>& days);

} // namespace scard::detail
