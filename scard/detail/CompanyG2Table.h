#pragma once

#include <scard/detail/EfTable.h>

namespace scard::detail {

/// The second-generation application of company cards, version 2.2 included.
const EfTable& companyG2Table();

} // namespace scard::detail
