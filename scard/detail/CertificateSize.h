#pragma once

#include <scard/SCardGeneric.h>

#include <array>

namespace scard::detail {

/// The first bytes of a certificate EF, which say how long the certificate is.
using CertificateHeader = std::array<unsigned char, 5>;

/// Bytes of a certificate by its tag 7F21 and the BER length behind it; 204, the usual length, for an EF
/// that starts with something else. A length that no EF can have counts as 65,535.
unsigned short certificateSize(const CertificateHeader& header);

/// The same for a certificate EF of the selected application; 0 and a line on the debug stream when its
/// first bytes cannot be read.
unsigned short get2ndGenCertificateSize(SCardGeneric& card, unsigned short fid);

} // namespace scard::detail
