// The signing key of a card application, in the two steps a card takes: PERFORM HASH OF FILE, then
// PSO COMPUTE DIGITAL SIGNATURE.
#pragma once

#include "Bytes.h"

namespace sim {

/// Immutable, so one signer may serve several cards and threads.
class Signer
{
  public:
    virtual ~Signer() = default;

    /// What PERFORM HASH OF FILE stores: the digest of the whole data area of an EF.
    virtual Bytes hash(const Bytes& fileContent) const = 0;
    /// The signature over a stored digest.
    virtual Bytes signHash(const Bytes& hash) const = 0;
    /// Bytes of each signature; the Le that the signature command needs.
    virtual std::size_t signatureLength() const = 0;

    Bytes sign(const Bytes& fileContent) const { return signHash(hash(fileContent)); }
};

} // namespace sim
