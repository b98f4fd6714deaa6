#pragma once

#include <cstddef>
#include <cstdint>

// A target takes any bytes at all. libFuzzer calls it while it searches, fuzz_replay_… with inputs from
// files.

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace fuzz {

/// Ends the process with @p promise on the standard error when it is not kept.
void expect(bool kept, const char* promise);

/// What the library says goes nowhere, as in most hosts; the texts are made all the same.
void discardDebugStream();

} // namespace fuzz
