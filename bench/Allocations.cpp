// Counts by standing in front of the C library's allocator, which Qt's containers and operator new both use.
#include "Allocations.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>

#include <malloc.h>

extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* memory, std::size_t size);
void __libc_free(void* memory);
}

namespace {

thread_local std::size_t allocationCount = 0;
thread_local std::int64_t liveBytes = 0;
thread_local std::int64_t peakBytes = 0;
thread_local std::size_t totalBytes = 0;

void* counted(void* memory)
{
    if (memory) {
        ++allocationCount;
        totalBytes += malloc_usable_size(memory);
        liveBytes += static_cast<std::int64_t>(malloc_usable_size(memory));
        peakBytes = std::max(peakBytes, liveBytes);
    }
    return memory;
}

void discounted(void* memory)
{
    if (memory)
        liveBytes -= static_cast<std::int64_t>(malloc_usable_size(memory));
}

} // namespace

extern "C" {

void* malloc(std::size_t size)
{
    return counted(__libc_malloc(size));
}

void* calloc(std::size_t count, std::size_t size)
{
    return counted(__libc_calloc(count, size));
}

void* realloc(void* memory, std::size_t size)
{
    discounted(memory);
    return counted(__libc_realloc(memory, size));
}

void free(void* memory)
{
    discounted(memory);
    __libc_free(memory);
}
}

namespace bench {

void Allocations::start()
{
    allocationCount = 0;
    liveBytes = 0;
    peakBytes = 0;
    totalBytes = 0;
}

Allocations Allocations::taken()
{
    return {allocationCount, static_cast<std::size_t>(peakBytes), totalBytes};
}

} // namespace bench
