#pragma once

#include <stdexcept>

namespace sim {

/// Throws std::runtime_error with `what` unless the cryptographic library has done it.
inline void require(bool done, const char* what)
{
    if (!done) {
        throw std::runtime_error(what);
    }
}

} // namespace sim
