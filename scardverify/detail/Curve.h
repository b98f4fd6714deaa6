#pragma once

#include <QByteArray>

namespace scard::verify::detail {

/// A curve of the second generation and what goes with it (Annex 1C, Appendix 11, standardised domain
/// parameters and hash algorithms).
struct Curve
{
    const char* name;       ///< as people call it
    QByteArray oid;         ///< content of the object identifier
    const char* groupName;  ///< OpenSSL's
    const char* digestName; ///< OpenSSL's, the SHA-2 that goes with keys of this size
    int fieldLength;        ///< bytes of a coordinate

    int signatureLength() const { return 2 * fieldLength; }
    int pointLength() const { return 1 + 2 * fieldLength; }
};

/// The curve with the object identifier @p oid; null for one that no card uses.
const Curve* curveOf(const QByteArray& oid);

} // namespace scard::verify::detail
