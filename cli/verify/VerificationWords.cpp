#include "VerificationWords.h"

#include <algorithm>
#include <iterator>

using namespace scard::verify;

namespace {

template <typename Enumeration>
struct Row
{
    Enumeration value;
    Word word;
};

constexpr Row<Verdict> verdicts[] = {
    {Verdict::Genuine, {"genuine", "genuine"}},
    {Verdict::RootUnknown, {"root_unknown", "root unknown"}},
    {Verdict::Unproven, {"unproven", "unproven"}},
    {Verdict::Altered, {"altered", "altered"}},
};

constexpr Row<SignatureVerdict> signatureVerdicts[] = {
    {SignatureVerdict::NotSigned, {"not_signed", "none needed"}},
    {SignatureVerdict::Valid, {"valid", "holds"}},
    {SignatureVerdict::Invalid, {"invalid", "DOES NOT HOLD"}},
    {SignatureVerdict::Missing, {"missing", "MISSING"}},
    {SignatureVerdict::Unsupported, {"unsupported", "not supported"}},
    {SignatureVerdict::NoCertificate, {"no_certificate", "cannot be checked"}},
};

constexpr Row<CertificateVerdict> certificateVerdicts[] = {
    {CertificateVerdict::Trusted, {"trusted", "given"}},
    {CertificateVerdict::Valid, {"valid", "holds"}},
    {CertificateVerdict::NotChecked, {"not_checked", "not checked"}},
    {CertificateVerdict::Invalid, {"invalid", "DOES NOT HOLD"}},
    {CertificateVerdict::Missing, {"missing", "MISSING"}},
};

constexpr Row<CertificateRole> roles[] = {
    {CertificateRole::Root, {"root", "root"}},
    {CertificateRole::Link, {"link", "root, by the one before"}},
    {CertificateRole::MemberState, {"member_state", "Member State"}},
    {CertificateRole::Card, {"card", "card"}},
    {CertificateRole::CardSign, {"card_sign", "card, for signatures"}},
};

constexpr Row<Severity> severities[] = {
    {Severity::Note, {"note", "note"}},
    {Severity::Warning, {"warning", "warning"}},
    {Severity::RootUnknown, {"root_unknown", "root unknown"}},
    {Severity::Unproven, {"unproven", "unproven"}},
    {Severity::Altered, {"altered", "altered"}},
};

struct FindingKey
{
    FindingCode code;
    const char* key;
};

constexpr FindingKey findingKeys[] = {
    {FindingCode::NoApplication, "no_application"},
    {FindingCode::FileCut, "file_cut"},
    {FindingCode::UnknownRecordType, "unknown_record_type"},
    {FindingCode::TooManyRecords, "too_many_records"},
    {FindingCode::ApplicationsOfTwoCards, "applications_of_two_cards"},
    {FindingCode::UnexpectedRecord, "unexpected_record"},
    {FindingCode::RepeatedRecord, "repeated_record"},
    {FindingCode::RecordMissing, "record_missing"},
    {FindingCode::ApplicationNotSigned, "application_not_signed"},
    {FindingCode::UnknownSignedRecord, "unknown_signed_record"},
    {FindingCode::RecordTooShort, "record_too_short"},
    {FindingCode::RecordTooLong, "record_too_long"},
    {FindingCode::SignatureMissing, "signature_missing"},
    {FindingCode::SignatureInvalid, "signature_invalid"},
    {FindingCode::SignatureLength, "signature_length"},
    {FindingCode::SignatureWithoutData, "signature_without_data"},
    {FindingCode::SignatureUnsupported, "signature_unsupported"},
    {FindingCode::CertificateMissing, "certificate_missing"},
    {FindingCode::CertificateUnreadable, "certificate_unreadable"},
    {FindingCode::CertificateInvalid, "certificate_invalid"},
    {FindingCode::CertificateOfGeneration, "certificate_of_other_generation"},
    {FindingCode::CertificateOfAnotherIssuer, "certificate_of_another_issuer"},
    {FindingCode::CertificateOfAnotherCard, "certificate_of_another_card"},
    {FindingCode::CertificateForAnotherUse, "certificate_for_another_use"},
    {FindingCode::CertificateUnsupported, "certificate_unsupported"},
    {FindingCode::CertificateExpired, "certificate_expired"},
    {FindingCode::CertificateNotYetValid, "certificate_not_yet_valid"},
    {FindingCode::CertificatePadded, "certificate_padded"},
    {FindingCode::LinkCertificateNotChecked, "link_certificate_not_checked"},
    {FindingCode::SerialNumberUnknown, "serial_number_unknown"},
    {FindingCode::RootKeyUnknown, "root_key_unknown"},
};

/// The tables have a row for each value.
template <typename Enumeration, std::size_t Rows>
Word find(const Row<Enumeration> (&rows)[Rows], Enumeration value)
{
    return std::find_if(
               std::begin(rows), std::end(rows),
               [value](const Row<Enumeration>& row) { return row.value == value; })
        ->word;
}

} // namespace

Word wordFor(Verdict verdict)
{
    return find(verdicts, verdict);
}

Word wordFor(SignatureVerdict verdict)
{
    return find(signatureVerdicts, verdict);
}

Word wordFor(CertificateVerdict verdict)
{
    return find(certificateVerdicts, verdict);
}

Word wordFor(CertificateRole role)
{
    return find(roles, role);
}

Word wordFor(Severity severity)
{
    return find(severities, severity);
}

const char* findingKey(FindingCode code)
{
    return std::find_if(
               std::begin(findingKeys), std::end(findingKeys),
               [code](const FindingKey& row) { return row.code == code; })
        ->key;
}
