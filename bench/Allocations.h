#pragma once

#include <cstddef>

namespace bench {

/// What one thread's work took from the heap between two calls of start().
struct Allocations
{
    std::size_t count = 0; ///< allocations
    std::size_t peak = 0;  ///< most bytes at one time, beyond what was there at the start
    std::size_t total = 0; ///< bytes of all allocations together

    static void start();
    static Allocations taken();
};

} // namespace bench
