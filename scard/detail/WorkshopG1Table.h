#pragma once

#include <scard/detail/EfTable.h>

namespace scard::detail {

/// The first-generation application of workshop cards.
const EfTable& workshopG1Table();

} // namespace scard::detail
