// The verifier's side of the first-generation keys: opens certificates and checks signatures with public keys
// only. It shares no code with the issuing side, so each proves the other.
#pragma once

#include "Bytes.h"

#include <optional>

namespace sim {

struct PublicKeyG1
{
    Bytes modulus;
    Bytes exponent;
};

struct CertificateContentG1
{
    std::uint8_t profile = 0;
    /// Key identifier of the issuer (CAR).
    Bytes authority;
    /// Application and equipment type of the holder (CHA).
    Bytes authorisation;
    std::uint32_t endOfValidity = 0;
    /// Key identifier of the holder (CHR).
    Bytes holder;
    PublicKeyG1 key;
};

/// The key behind the 8 bytes of identifier in the 144-byte root key; nullopt for another length.
std::optional<PublicKeyG1> publicKeyFromRootG1(const Bytes& rootKey);

/// Opens a 194-byte certificate with its issuer's key: nullopt when length, padding, hash or the two copies
/// of the issuer's identifier do not fit. Dates are left to the caller.
std::optional<CertificateContentG1> verifyCertificateG1(const Bytes& certificate, const PublicKeyG1& issuer);

/// True when `signature` is the PKCS#1 v1.5 signature with SHA-1 over `data`.
bool verifySignatureG1(const PublicKeyG1& key, const Bytes& data, const Bytes& signature);

} // namespace sim
