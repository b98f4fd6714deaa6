// The verifier's side of the second-generation keys: opens certificates and checks signatures with public
// keys only. It shares nothing with the issuing side but the table of curves, so each proves the other.
#pragma once

#include "Curve.h"

#include <optional>

namespace sim {

struct PublicKeyG2
{
    Curve curve = Curve::NistP256;
    /// 04, x, y
    Bytes point;
};

struct CertificateContentG2
{
    std::uint8_t profile = 0;
    /// Key identifier of the issuer (CAR).
    Bytes authority;
    /// Application and equipment type of the holder (CHA).
    Bytes authorisation;
    PublicKeyG2 key;
    /// Key identifier of the holder (CHR).
    Bytes holder;
    /// TimeReal
    std::uint32_t effective = 0;
    std::uint32_t expires = 0;
};

/// Opens a certificate with its issuer's key: nullopt when an object is missing, in the wrong place, not in
/// its shortest form or followed by anything, when the curve is unknown or the signature is not the issuer's.
/// Dates are left to the caller.
std::optional<CertificateContentG2> verifyCertificateG2(const Bytes& certificate, const PublicKeyG2& issuer);

/// The key of a root certificate, which must be signed with that key, name itself as its issuer and be that
/// of a root; else nullopt.
std::optional<PublicKeyG2> publicKeyFromRootCertificateG2(const Bytes& certificate);

/// True when `signature` is r and s of an ECDSA signature over `data` with the SHA-2 of the key's size.
bool verifySignatureG2(const PublicKeyG2& key, const Bytes& data, const Bytes& signature);

} // namespace sim
