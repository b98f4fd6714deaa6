// The elliptic curves of the second generation and what goes with each (Annex 1C, Appendix 11).
#pragma once

#include "Bytes.h"

namespace sim {

enum class Curve
{
    NistP256,
    BrainpoolP256r1,
    NistP384,
    BrainpoolP384r1,
    BrainpoolP512r1,
    NistP521
};

struct CurveDescription
{
    Curve curve;
    /// "nist-p256"
    const char* name;
    /// Content of the object identifier, without tag and length.
    Bytes oid;
    /// Bytes of a coordinate; a signature has two, an uncompressed point one more than two.
    std::size_t fieldLength;
    /// Bytes of the SHA-2 digest that goes with a key of this size.
    std::size_t digestLength;
    /// OpenSSL's names of curve and digest.
    const char* groupName;
    const char* digestName;

    std::size_t signatureLength() const { return 2 * fieldLength; }
    std::size_t pointLength() const { return 1 + 2 * fieldLength; }
};

/// One row for each curve, in the order of the enumeration.
const std::vector<CurveDescription>& curves();
const CurveDescription& describe(Curve curve);
/// Throws std::invalid_argument for a name that is none.
Curve curveOf(std::string_view name);

} // namespace sim
