#include "Curve.h"

#include <algorithm>
#include <array>

namespace scard::verify::detail {

const Curve* curveOf(const QByteArray& oid)
{
    static const std::array<Curve, 6> curves = {{
        {"NIST P-256", QByteArray::fromHex("2A8648CE3D030107"), "prime256v1", "SHA256", 32},
        {"brainpoolP256r1", QByteArray::fromHex("2B2403030208010107"), "brainpoolP256r1", "SHA256", 32},
        {"NIST P-384", QByteArray::fromHex("2B81040022"), "secp384r1", "SHA384", 48},
        {"brainpoolP384r1", QByteArray::fromHex("2B240303020801010B"), "brainpoolP384r1", "SHA384", 48},
        {"brainpoolP512r1", QByteArray::fromHex("2B240303020801010D"), "brainpoolP512r1", "SHA512", 64},
        {"NIST P-521", QByteArray::fromHex("2B81040023"), "secp521r1", "SHA512", 66},
    }};
    const auto* curve =
        std::find_if(curves.begin(), curves.end(), [&oid](const Curve& each) { return each.oid == oid; });
    return curve == curves.end() ? nullptr : curve;
}

} // namespace scard::verify::detail
