#pragma once

#include <QString>

namespace scard::verify {

/// How much a finding weighs. From RootUnknown on it decides the verdict, the heaviest of all findings wins.
enum class Severity
{
    Note,        ///< good to know: a padded certificate file
    Warning,     ///< needs a look, proves nothing: a certificate that had expired
    RootUnknown, ///< the chain ends at a root key that was not given
    Unproven,    ///< something that a proof needs is not in the file, or cannot be judged
    Altered,     ///< something does not fit what a card wrote
};

/// What was found. The numbers never change, new ones are added at the end.
enum class FindingCode
{
    // The file as a whole
    NoApplication = 1,          ///< no record of a card's application; Unproven
    FileCut = 2,                ///< ends inside a record, or bytes stand behind the last one; Unproven
    UnknownRecordType = 3,      ///< none of the four types; Unproven
    TooManyRecords = 4,         ///< more than any card has; nothing was looked at; Unproven
    ApplicationsOfTwoCards = 5, ///< the first application is of one card, the second of another; Altered

    // Records
    UnexpectedRecord = 10,     ///< an EF that a card of this kind does not keep, without signature; Unproven
    RepeatedRecord = 11,       ///< an EF stands in the application twice; Unproven
    RecordMissing = 12,        ///< an EF that every card of this kind keeps and signs; Unproven
    ApplicationNotSigned = 13, ///< a card of this kind has no key to sign the application with; Unproven
    UnknownSignedRecord = 14,  ///< an EF that is not known here, but signed by the card; Unproven
    RecordTooShort = 15,       ///< fewer bytes than the EF has by its record counts; Altered
    RecordTooLong = 16,        ///< more bytes than the EF has by its record counts; Unproven

    // Signatures
    SignatureMissing = 20,     ///< Unproven
    SignatureInvalid = 21,     ///< data or signature was changed; Altered
    SignatureLength = 22,      ///< not as long as a signature of the card's key; Altered
    SignatureWithoutData = 23, ///< the data record of its EF does not stand before it; Altered
    SignatureUnsupported = 24, ///< the algorithm is not at hand; Unproven

    // Certificates
    CertificateMissing = 30,         ///< not in the file, or filled with 00 or FF; Unproven
    CertificateUnreadable = 31,      ///< not shaped as a certificate; Altered
    CertificateInvalid = 32,         ///< not signed by the key of its issuer; Altered
    CertificateOfGeneration = 33,    ///< of the other generation; Altered
    CertificateOfAnotherIssuer = 34, ///< names another Member State than the one in the file; Altered
    CertificateOfAnotherCard = 35,   ///< names another card than EF_ICC or the other certificate; Altered
    CertificateForAnotherUse = 36,   ///< its authorisation is not the one that belongs there; Altered
    CertificateUnsupported = 37,     ///< a profile, curve or key that is not known here; Unproven
    CertificateExpired = 38,         ///< before the download; Warning
    CertificateNotYetValid = 39,     ///< at the download; Warning
    CertificatePadded = 40,          ///< bytes stand behind it in its EF; Note
    LinkCertificateNotChecked = 41,  ///< the key of the root before was not given; Note
    SerialNumberUnknown = 42,        ///< EF_ICC is missing or was not read: nothing to compare; Warning
    RootKeyUnknown = 43,             ///< RootUnknown
};

/// One thing that is worth knowing about a download, or that does not hold.
struct Finding
{
    FindingCode code;       ///< for programs
    Severity severity;      ///< what it means for the verdict
    unsigned short fid = 0; ///< the EF that it is about; 0 when it is about more
    long long offset = -1;  ///< bytes from the start of the image to the record's header; -1: of no record
    QString text;           ///< one sentence for people, in English
};

} // namespace scard::verify
