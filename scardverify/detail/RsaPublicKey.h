#pragma once

#include "OpenSsl.h"
#include "PublicKey.h"

#include <memory>

namespace scard::verify::detail {

/// A key of the first generation: RSA with a modulus of 1024 bits.
class RsaPublicKey : public PublicKey
{
  public:
    static constexpr int modulusLength = 128; ///< bytes
    static constexpr int exponentLength = 8;  ///< bytes

    /// @return null for numbers that no key has
    static std::unique_ptr<RsaPublicKey> make(const QByteArray& modulus, const QByteArray& exponent);

    /// PKCS#1 v1.5 with SHA-1.
    Check check(const QByteArray& data, const QByteArray& signature) const override;
    int signatureLength() const override { return modulusLength; }
    QString algorithm() const override;

    /// False when a policy of the machine forbids the bare public operation.
    bool canOpen() const;

    /// What was signed, as a block of modulusLength bytes: the bare public operation. Empty for a number that
    /// is too large.
    QByteArray open(const QByteArray& signature) const;

    /// SHA-1, which goes with the keys of this generation; empty when a policy of the machine forbids it.
    QByteArray digest(const QByteArray& data) const { return digestOf(m_digest, data); }

  private:
    explicit RsaPublicKey(Key key);

    Key m_key;
    Digest m_digest;
    mutable KeyContext m_verifying; ///< made when it is first needed, as the next
    mutable KeyContext m_opening;
};

} // namespace scard::verify::detail
