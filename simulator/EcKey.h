// Private keys on elliptic curves as second-generation cards and their issuers hold them.
#pragma once

#include "Curve.h"
#include "Signer.h"

#include <memory>

using BIGNUM = struct bignum_st;
using EC_GROUP = struct ec_group_st;

namespace sim {

/// Immutable; one key may be used by several threads.
class EcKey
{
  public:
    /// `secret` is the private number, big-endian; throws std::invalid_argument when it is 0 or not below the
    /// order of the curve.
    EcKey(Curve curve, const Bytes& secret);

    /// The key that a label stands for: the same on every machine, and no secret.
    static EcKey fromLabel(Curve curve, const std::string& label);

    Curve curve() const { return m_curve; }
    /// 04, x, y
    const Bytes& publicPoint() const { return m_publicPoint; }

    /// r and s, each padded to the length of a coordinate. The random number of ECDSA is derived from key and
    /// digest (RFC 6979), so the same digest always has the same signature. Takes digests of SHA-256, SHA-384
    /// and SHA-512; throws std::invalid_argument for one of another length.
    Bytes signDigest(const Bytes& digest) const;
    /// Signs the digest that goes with the curve.
    Bytes sign(const Bytes& data) const;

  private:
    Curve m_curve;
    std::shared_ptr<const EC_GROUP> m_group;
    std::shared_ptr<const BIGNUM> m_secret;
    Bytes m_publicPoint;
};

/// Signs EFs as a second-generation card does: SHA-2 of the curve's size, ECDSA in plain format (Annex 1C,
/// Appendix 11).
class EcSigner : public Signer
{
  public:
    explicit EcSigner(EcKey key);

    Bytes hash(const Bytes& fileContent) const override;
    Bytes signHash(const Bytes& hash) const override;
    std::size_t signatureLength() const override;

  private:
    EcKey m_key;
};

/// The SHA-2 digest that goes with the curve.
Bytes sha2(Curve curve, const Bytes& data);

} // namespace sim
