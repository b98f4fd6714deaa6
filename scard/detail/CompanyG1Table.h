#pragma once

#include <scard/detail/EfTable.h>

namespace scard::detail {

/// The first-generation application of company cards.
const EfTable& companyG1Table();

} // namespace scard::detail
