#pragma once

#include <scardverify/Export.h>
#include <scardverify/Finding.h>
#include <scardverify/RootKey.h>

#include <QByteArray>
#include <QDateTime>
#include <QString>

#include <optional>
#include <vector>

namespace scard::verify {

/// What is proven of a download, or of one of its applications.
enum class Verdict
{
    Genuine,     ///< each signature holds, and each chain ends at a root key that was given
    RootUnknown, ///< nothing speaks against it, but a chain ends at a root key that was not given
    Unproven,    ///< a signature, a certificate or a record is missing or cannot be judged
    Altered,     ///< something does not fit what a card wrote
};

/// What came of the signature behind a data record.
enum class SignatureVerdict
{
    NotSigned,     ///< none is expected, and none is there: EF_ICC, EF_IC, certificates
    Valid,         ///< it is that of the card's key over the record's bytes
    Invalid,       ///< it is not
    Missing,       ///< it should be there, and is not or has no bytes
    Unsupported,   ///< its algorithm is not at hand
    NoCertificate, ///< no certificate could be had that gives the card's key: a finding says why
};

/// One data record, with the signature behind it.
struct RecordReport
{
    long long offset = 0;                                     ///< bytes, of its header in the image
    unsigned short fid = 0;                                   ///< its EF: scard::efName() has the name
    unsigned short length = 0;                                ///< bytes of payload
    unsigned short signatureLength = 0;                       ///< bytes; 0 when there is none
    SignatureVerdict signature = SignatureVerdict::NotSigned; ///< whether it holds
};

/// What came of a certificate.
enum class CertificateVerdict
{
    Trusted,    ///< the root key itself, which was given
    Valid,      ///< signed by the key of its issuer
    NotChecked, ///< the key of its issuer is not known
    Invalid,    ///< not signed by the key of its issuer, or no certificate
    Missing,    ///< not in the file; of a root key: no certificate names it
};

/// Whose key a certificate tells.
enum class CertificateRole
{
    Root,        ///< of the European authority
    Link,        ///< the same, certified by the root before: EF_Link_Certificate
    MemberState, ///< of the authority that issues cards: EF_CA_Certificate
    Card,        ///< of the card; in the second generation for mutual authentication alone
    CardSign,    ///< of the card, for signatures; second generation
};

/// A link of the chain from the root key to the card. What cannot be known is empty or null: a certificate of
/// the first generation opens with the key of its issuer only.
struct CertificateReport
{
    CertificateRole role = CertificateRole::Root;             ///< its place in the chain
    CertificateVerdict verdict = CertificateVerdict::Missing; ///< whether it holds
    unsigned short fid = 0;                                   ///< its EF; 0 for the root key
    QByteArray holder; ///< key identifier, 8 bytes; of a card its extended serial number
    QByteArray issuer; ///< key identifier of who signed it, 8 bytes
    QByteArray
        authorisation;    ///< 7 bytes: application name 6, equipment type 1; empty for a root of 144 bytes
    QString algorithm;    ///< of the key that it tells: "RSA-1024", "brainpoolP256r1"
    QDateTime validFrom;  ///< UTC; null in the first generation
    QDateTime validUntil; ///< UTC; null when it has no end
};

/// One application of the card.
struct ApplicationReport
{
    Generation generation = Generation::First; ///< which of the two
    Verdict verdict = Verdict::Unproven;       ///< of the chain, the records and what is missing
    int cardType = 0; ///< scard::SCardMeta::Type as the application identification has it; 0 when not known
    std::vector<CertificateReport> chain; ///< root first; what a card of this kind does not have is left out
    std::vector<RecordReport> records;    ///< in the order of the file
    std::vector<Finding> findings;        ///< in the order in which they were found

    /// Records with this verdict.
    SCARDVERIFY_EXPORT int count(SignatureVerdict signature) const;

    /// Records that are signed or should be.
    SCARDVERIFY_EXPORT int signedRecords() const;

    /// True when there are signatures and each of them holds by the card's own certificate, whoever vouches
    /// for that.
    SCARDVERIFY_EXPORT bool signaturesHold() const;
};

/// Bytes that nothing which holds vouches for: they could be others.
struct UncoveredPart
{
    long long offset = 0;                      ///< bytes, in the image
    long long length = 0;                      ///< bytes
    unsigned short fid = 0;                    ///< the EF that they belong to
    Generation generation = Generation::First; ///< of the application that they belong to
};

/// All that the signatures of a download say.
///
/// What they cannot say: a record that was replaced, together with its signature, by that of an earlier
/// download of the same card is genuine, too, and so is a file without one of the card's two applications.
/// Signatures carry no time and no name of the EF.
struct VerificationReport
{
    Verdict verdict = Verdict::Unproven; ///< the worst of the applications and of what is wrong with the file
    std::vector<ApplicationReport> applications; ///< the first generation's first
    std::vector<Finding> findings;               ///< about the file as a whole
    std::vector<UncoveredPart> uncovered;        ///< in the order of the file, records' headers included
};

} // namespace scard::verify
