#include "Findings.h"

#include <scard/ElementaryFile.h>

#include <algorithm>

namespace scard::verify::detail {

Severity severityOf(FindingCode code)
{
    switch (code) {
    case FindingCode::CertificatePadded:
    case FindingCode::LinkCertificateNotChecked:
        return Severity::Note;
    case FindingCode::CertificateExpired:
    case FindingCode::CertificateNotYetValid:
    case FindingCode::SerialNumberUnknown:
        return Severity::Warning;
    case FindingCode::RootKeyUnknown:
        return Severity::RootUnknown;
    case FindingCode::NoApplication:
    case FindingCode::FileCut:
    case FindingCode::UnknownRecordType:
    case FindingCode::TooManyRecords:
    case FindingCode::UnexpectedRecord:
    case FindingCode::RepeatedRecord:
    case FindingCode::RecordMissing:
    case FindingCode::ApplicationNotSigned:
    case FindingCode::UnknownSignedRecord:
    case FindingCode::RecordTooLong:
    case FindingCode::SignatureMissing:
    case FindingCode::SignatureUnsupported:
    case FindingCode::CertificateMissing:
    case FindingCode::CertificateUnsupported:
        return Severity::Unproven;
    case FindingCode::ApplicationsOfTwoCards:
    case FindingCode::RecordTooShort:
    case FindingCode::SignatureInvalid:
    case FindingCode::SignatureLength:
    case FindingCode::SignatureWithoutData:
    case FindingCode::CertificateUnreadable:
    case FindingCode::CertificateInvalid:
    case FindingCode::CertificateOfGeneration:
    case FindingCode::CertificateOfAnotherIssuer:
    case FindingCode::CertificateOfAnotherCard:
    case FindingCode::CertificateForAnotherUse:
        break;
    }
    return Severity::Altered;
}

void Findings::add(FindingCode code, const QString& text, unsigned short fid, long long offset)
{
    m_list.push_back({code, severityOf(code), fid, offset, text});
}

Verdict Findings::verdict() const
{
    Severity heaviest = Severity::Note;
    for (const Finding& finding : m_list)
        heaviest = std::max(heaviest, finding.severity);
    switch (heaviest) {
    case Severity::Note:
    case Severity::Warning:
        return Verdict::Genuine;
    case Severity::RootUnknown:
        return Verdict::RootUnknown;
    case Severity::Unproven:
        return Verdict::Unproven;
    case Severity::Altered:
        break;
    }
    return Verdict::Altered;
}

QString hexadecimal(unsigned number, int digits)
{
    return QString::number(number, 16).toUpper().rightJustified(digits, QLatin1Char('0'));
}

QString efText(unsigned short fid, Generation generation)
{
    QString name = scard::efName(fid, generation == Generation::Second);
    if (!name.isEmpty())
        return name;
    return QStringLiteral("EF ") + hexadecimal(fid, 4);
}

QString generationText(Generation generation)
{
    return generation == Generation::First ? QStringLiteral("the first generation")
                                           : QStringLiteral("the second generation");
}

} // namespace scard::verify::detail
