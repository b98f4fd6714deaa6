#pragma once

#include <scard/records/DriverCard.h>

#include <QString>

namespace scard::detail {

/// First names, ", ", surname, both trimmed.
QString holderName(const DriverCard_EF_Identification& identification);

} // namespace scard::detail
