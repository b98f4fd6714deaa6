#include "Curve.h"

namespace sim {

const std::vector<CurveDescription>& curves()
{
    static const std::vector<CurveDescription> all = {
        {Curve::NistP256,
         "nist-p256",
         {0x2A, 0x86, 0x48, 0xCE, 0x3D, 0x03, 0x01, 0x07},
         32,
         32,
         "prime256v1",
         "SHA256"},
        {Curve::BrainpoolP256r1,
         "brainpool-p256r1",
         {0x2B, 0x24, 0x03, 0x03, 0x02, 0x08, 0x01, 0x01, 0x07},
         32,
         32,
         "brainpoolP256r1",
         "SHA256"},
        {Curve::NistP384, "nist-p384", {0x2B, 0x81, 0x04, 0x00, 0x22}, 48, 48, "secp384r1", "SHA384"},
        {Curve::BrainpoolP384r1,
         "brainpool-p384r1",
         {0x2B, 0x24, 0x03, 0x03, 0x02, 0x08, 0x01, 0x01, 0x0B},
         48,
         48,
         "brainpoolP384r1",
         "SHA384"},
        {Curve::BrainpoolP512r1,
         "brainpool-p512r1",
         {0x2B, 0x24, 0x03, 0x03, 0x02, 0x08, 0x01, 0x01, 0x0D},
         64,
         64,
         "brainpoolP512r1",
         "SHA512"},
        {Curve::NistP521, "nist-p521", {0x2B, 0x81, 0x04, 0x00, 0x23}, 66, 64, "secp521r1", "SHA512"},
    };
    return all;
}

const CurveDescription& describe(Curve curve)
{
    return curves().at(static_cast<std::size_t>(curve));
}

Curve curveOf(std::string_view name)
{
    for (const CurveDescription& row : curves()) {
        if (name == row.name) {
            return row.curve;
        }
    }
    throw std::invalid_argument("unknown curve: '" + std::string(name) + "'");
}

} // namespace sim
