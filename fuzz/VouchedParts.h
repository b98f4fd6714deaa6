#pragma once

#include <simulator/Bytes.h>

#include <set>
#include <vector>

namespace fuzz {

/// What of a download the simulated cards' hierarchy of keys vouches for. The verifier's side of the
/// simulator finds it, which shares no code with the library.
struct VouchedParts
{
    std::vector<bool> bytes;     ///< one for each byte of the image
    std::set<long long> records; ///< offsets of data records with a signature that holds
    std::set<sim::Bytes> cards;  ///< extended serial numbers in the certificates that open
};

VouchedParts vouchedPartsOf(const sim::Bytes& image);

} // namespace fuzz
