#pragma once

#include <scard/detail/EfTable.h>

namespace scard::detail {

/// The second-generation application of driver cards, version 2.2 included.
const EfTable& driverG2Table();

} // namespace scard::detail
