#pragma once

#include <scardverify/Export.h>

#include <QByteArray>
#include <QDateTime>
#include <QString>

#include <optional>

namespace scard::verify {

/// Which of the two applications of a card, and with it which algorithms (Annex 1C, Appendix 11).
enum class Generation
{
    First = 1,  ///< RSA, SHA-1
    Second = 2, ///< elliptic curves, SHA-2
};

/// A public key that the user trusts: that of the European root authority.
///
/// None comes with the library. The authority publishes two kinds of files, and both are taken as they are:
/// of the first generation 144 bytes (key identifier 8, modulus 128, exponent 8, numbers big-endian); of the
/// second a certificate that is signed with its own key.
struct RootKey
{
    Generation generation = Generation::First; ///< whose certificates it opens
    QByteArray keyIdentifier;                  ///< 8 bytes; certificates name their issuer by it
    QByteArray bytes;                          ///< the file
    QString algorithm;                         ///< "RSA-1024", "NIST P-256"
    QDateTime validFrom;                       ///< UTC; null in the first generation
    QDateTime validUntil;                      ///< UTC; null in the first generation
};

/// A root key, or why there is none.
struct RootKeyResult
{
    std::optional<RootKey> key; ///< nothing when the bytes are no root key
    QString reason;             ///< one sentence; empty when there is a key
};

/// Reads the bytes of a root key's file. Certificates of the second generation are checked: signed with their
/// own key, and made out to a root. Any thread may ask.
SCARDVERIFY_EXPORT RootKeyResult readRootKey(const QByteArray& bytes);

/// Key identifier as people compare it: "FD 45 43 20 01 FF FF 01".
SCARDVERIFY_EXPORT QString keyIdentifierText(const QByteArray& keyIdentifier);

} // namespace scard::verify
