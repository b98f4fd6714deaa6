#pragma once

#include "Curve.h"
#include "OpenSsl.h"
#include "PublicKey.h"

#include <memory>

namespace scard::verify::detail {

/// A key of the second generation: a point of one of the six curves.
class EcPublicKey : public PublicKey
{
  public:
    /// @param point uncompressed: 04, x, y
    /// @return null for what is no point of the curve
    static std::unique_ptr<EcPublicKey> make(const Curve& curve, const QByteArray& point);

    /// False for a curve that this OpenSSL has not got.
    static bool isAvailable(const Curve& curve);

    /// ECDSA in plain form: r and s, each as long as a coordinate, with the SHA-2 of the key's size.
    Check check(const QByteArray& data, const QByteArray& signature) const override;
    int signatureLength() const override { return m_curve.signatureLength(); }
    QString algorithm() const override;

  private:
    EcPublicKey(const Curve& curve, Key key);

    const Curve& m_curve;
    Key m_key;
    Digest m_digest;
    KeyContext m_verifying; ///< null when this OpenSSL does not check with such keys
};

} // namespace scard::verify::detail
