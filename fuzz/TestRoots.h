#pragma once

#include <simulator/VerifyG1.h>
#include <simulator/VerifyG2.h>

#include <vector>

// The roots of the simulated cards' keys, as the simulator's verifiers take them.

namespace fuzz {

struct TestRootG1
{
    sim::Bytes identifier; ///< 8 bytes
    sim::PublicKeyG1 key;
};

struct TestRootG2
{
    sim::Bytes identifier; ///< 8 bytes
    sim::PublicKeyG2 key;
};

/// Their files, as an authority publishes them: the first generation's, then root and previous root of some
/// curves.
const std::vector<sim::Bytes>& testRootFiles();

const TestRootG1& testRootG1();
const std::vector<TestRootG2>& testRootsG2();

} // namespace fuzz
