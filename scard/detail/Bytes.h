#pragma once

#include <vector>

namespace scard::detail {

/// An EF as it was read; empty when it was not.
using Bytes = std::vector<unsigned char>;

} // namespace scard::detail
