#pragma once

#include <QByteArray>
#include <QString>

namespace scard::verify::detail {

/// What a public key says of a signature.
enum class Check
{
    Holds,
    Fails,
    Unsupported, ///< this OpenSSL has not got the algorithm
};

/// The key of a card or of an authority, of either generation. For one thread at a time.
class PublicKey
{
  public:
    PublicKey() = default;
    virtual ~PublicKey() = default;
    PublicKey(const PublicKey&) = delete;
    PublicKey& operator=(const PublicKey&) = delete;

    /// True when @p signature is that of this key over @p data.
    virtual Check check(const QByteArray& data, const QByteArray& signature) const = 0;

    /// Bytes of each signature of this key.
    virtual int signatureLength() const = 0;

    /// "RSA-1024", "NIST P-256"
    virtual QString algorithm() const = 0;
};

} // namespace scard::verify::detail
