#pragma once

#include <simulator/EcKey.h>
#include <simulator/RsaKey.h>

#include <QByteArray>

// Certificates of the simulated cards that say something else, signed again.

namespace test {

/// Where the fields stand in a certificate of the second generation with a key on NIST P-256.
namespace placesG2 {
constexpr int bodyLength = 7; ///< the last byte of it
constexpr int profile = 11;
constexpr int issuer = 14;
constexpr int authorisation = 25;
constexpr int equipment = 31; ///< the last byte of the authorisation
constexpr int curve = 37;     ///< object identifier
constexpr int point = 47;
constexpr int holder = 115;
constexpr int validFrom = 126;
constexpr int validUntil = 133;
constexpr int signature = 140;
constexpr int length = 204;
} // namespace placesG2

/// Where they stand in the content of a certificate of the first generation.
namespace placesG1 {
constexpr int profile = 0;
constexpr int issuer = 1;
constexpr int authorisation = 9;
constexpr int equipment = 15;
constexpr int validUntil = 16;
constexpr int holder = 20;
constexpr int modulus = 28;
constexpr int exponent = 156;
} // namespace placesG1

/// The content (164 bytes) of a certificate that @p issuer signed.
QByteArray contentG1(const QByteArray& certificate, const sim::RsaKey& issuer);

/// The certificate with @p content, signed by @p issuer.
QByteArray certificateG1(const QByteArray& content, const sim::RsaKey& issuer);

/// @p certificate with @p field at @p place of its content, signed again by its issuer.
QByteArray
changedG1(const QByteArray& certificate, const sim::RsaKey& issuer, int place, const QByteArray& field);

/// @p certificate, which has a key and an issuer on NIST P-256, with @p field at @p place, signed again.
QByteArray
changedG2(const QByteArray& certificate, const sim::EcKey& issuer, int place, const QByteArray& field);

// The keys on NIST P-256 that sign certificates.
const sim::EcKey& previousRootKeyG2();
const sim::EcKey& rootKeyG2();
const sim::EcKey& memberStateKeyG2();

/// TimeReal
QByteArray timeReal(int year, int month, int day);

} // namespace test
