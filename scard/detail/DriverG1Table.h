#pragma once

#include <scard/detail/EfTable.h>

namespace scard::detail {

/// The first-generation application of driver cards.
const EfTable& driverG1Table();

} // namespace scard::detail
