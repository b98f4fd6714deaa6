#pragma once

#include "EcPublicKey.h"

#include <QDateTime>

#include <memory>
#include <optional>

namespace scard::verify::detail {

/// A card-verifiable certificate of the second generation (Annex 1C, Appendix 11).
struct CertificateG2
{
    int length = 0;           ///< bytes of the whole, without what stands behind it in its EF
    int profile = 0;          ///< 0
    QByteArray issuer;        ///< key identifier (CAR)
    int issuerAt = 0;         ///< where that stands in the whole
    QByteArray authorisation; ///< application name and equipment type (CHA)
    QByteArray holder;        ///< key identifier (CHR)
    QDateTime validFrom;
    QDateTime validUntil;         ///< null when it has no end
    const Curve* curve = nullptr; ///< null for one that is not known here
    QByteArray point;             ///< uncompressed
    QByteArray signedPart;
    QByteArray signature;

    /// False for a profile or a curve that is not known here.
    bool isKnown() const { return profile == 0 && curve != nullptr; }

    /// The key that it tells, made when it is first asked for; null when the curve is not known or the point
    /// is not on it.
    const std::shared_ptr<const EcPublicKey>& key() const;

  private:
    mutable std::shared_ptr<const EcPublicKey> m_key;
};

/// The certificate at the front of @p file; null for anything else.
std::optional<CertificateG2> parseCertificateG2(const QByteArray& file);

} // namespace scard::verify::detail
