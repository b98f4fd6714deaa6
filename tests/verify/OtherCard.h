#pragma once

#include "Image.h"

#include <simulator/EcKey.h>
#include <simulator/RsaKey.h>

// All simulated cards share the key of each generation. Real ones do not.

namespace test {

/// A key of the first generation that the simulator does not have.
const sim::RsaKey& otherRsaKey();

/// A key of the second generation that the simulator does not have.
const sim::EcKey& otherEcKey();

/// Extended serial number of the card of otherCard().
QByteArray otherSerialNumber();

/// The download of a second card with the same data: its certificates, of the same issuer, tell keys and a
/// serial number of its own, and its keys signed the data. The second generation on NIST P-256.
Image otherCard(Image image);

} // namespace test
