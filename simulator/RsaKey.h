// RSA private keys of 1024 bits as first-generation cards and their issuers hold them.
#pragma once

#include "Signer.h"

#include <memory>
#include <string>

using EVP_PKEY = struct evp_pkey_st;

namespace sim {

/// Immutable; one key may be used by several threads.
class RsaKey
{
  public:
    /// Bytes of modulus, signature and encryption block.
    static constexpr std::size_t Length = 128;
    /// Bytes in which certificates and key blobs write the public exponent.
    static constexpr std::size_t ExponentLength = 8;

    /// Throws std::runtime_error when the text is no RSA-1024 private key.
    explicit RsaKey(const std::string& pem);

    const Bytes& modulus() const { return m_modulus; }
    const Bytes& exponent() const { return m_exponent; }

    /// block ^ d mod n, for signatures with message recovery; `block` has 128 bytes and is below n.
    Bytes privateOperation(const Bytes& block) const;
    /// PKCS#1 v1.5 signature over a SHA-1 digest.
    Bytes signDigest(const Bytes& sha1) const;

  private:
    std::shared_ptr<EVP_PKEY> m_key;
    Bytes m_modulus;
    Bytes m_exponent;
};

/// Signs EFs as a first-generation card does: SHA-1, RSA-1024, PKCS#1 v1.5 (Annex 1B, Appendix 11).
class RsaSigner : public Signer
{
  public:
    explicit RsaSigner(RsaKey key);

    Bytes hash(const Bytes& fileContent) const override;
    Bytes signHash(const Bytes& hash) const override;
    std::size_t signatureLength() const override { return RsaKey::Length; }

  private:
    RsaKey m_key;
};

Bytes sha1(const Bytes& data);

} // namespace sim
