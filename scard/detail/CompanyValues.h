#pragma once

#include <scard/CompanyCardValues.h>
#include <scard/detail/Bytes.h>

#include <vector>

namespace scard::detail {

/// What EF_Company_Activity_Data of either generation says, by time, slots that were never used left out;
/// nothing of an EF that was not read.
std::vector<CompanyActivity> companyActivities(const Bytes& ef);

} // namespace scard::detail
