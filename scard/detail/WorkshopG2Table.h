#pragma once

#include <scard/detail/EfTable.h>

namespace scard::detail {

/// The second-generation application of workshop cards, version 2.2 included.
const EfTable& workshopG2Table();

} // namespace scard::detail
