#include "ApplicationCheck.h"

#include "Chain.h"
#include "ChainBuilder.h"
#include "FileLengths.h"
#include "FileRules.h"

#include <scard/records/BigEndian.h>
#include <scard/records/Fid.h>
#include <scard/records/Identification.h>
#include <scard/records/ImageRecord.h>
#include <scard/SCardMeta.h>

#include <algorithm>
#include <cstddef>
#include <set>

namespace scard::verify::detail {

namespace {

constexpr long long headerLength = recordHeaderLength;
constexpr int serialNumberAt = offsetof(CardIccIdentification, cardExtendedSerialNumber);
constexpr int serialNumberLength = sizeof(ExtendedSerialNumber);

/// What the application identification says of the card, which decides what to expect.
Expected expectedOf(const ImageApplication& application)
{
    Expected expected;
    expected.generation = application.generation;
    const DataRecord* record = application.find(fidApplicationIdentification);
    if (record == nullptr ||
        record->payload.size() < static_cast<int>(sizeof(GenericCardApplicationIdentification)))
        return expected;
    const auto* bytes = reinterpret_cast<const unsigned char*>(record->payload.constData());
    const unsigned type = bytes[0];
    if (type >= SCardMeta::DriverCard && type <= SCardMeta::CompanyCard)
        expected.cardType = static_cast<int>(type);
    constexpr unsigned version2 = 0x0101;
    expected.isVersion2 = fromBigEndian(bytes + 1, 2) >= version2;
    return expected;
}

class Checker
{
  public:
    Checker(
        const ImageApplications& image, std::size_t index, const std::vector<TrustedRoot>& roots,
        const QDateTime& downloadedAt)
        : m_image(image), m_application(image.applications[index]), m_expected(expectedOf(m_application)),
          m_rules(fileRules(m_expected)), m_request{m_application, m_expected, roots, downloadedAt}
    {}

    CheckedApplication check();

  private:
    void checkCard();
    void checkRecord(const DataRecord& record);
    SignatureVerdict checkSignature(const DataRecord& record);
    void checkUnknown(const DataRecord& record, SignatureVerdict signature);
    void checkLengths();
    QByteArray countsIn(unsigned short fid) const;
    void checkCompleteness();
    void addUncovered(const DataRecord& record, SignatureVerdict signature);
    void addUncovered(long long offset, long long length, unsigned short fid);
    void add(FindingCode code, const QString& text, const DataRecord& record);
    const FileRule* rule(unsigned short fid) const;
    const DataRecord* chip() const;
    QByteArray serialNumber(const DataRecord* record) const;
    Verdict verdict() const;

    const ImageApplications& m_image;
    const ImageApplication& m_application;
    const Expected m_expected;
    const std::vector<FileRule> m_rules;
    const ChainRequest m_request;
    Findings m_findings;
    Chain m_chain;
    bool m_isCardCompared = false;
    std::set<unsigned short> m_seen;
    CheckedApplication m_result;
};

CheckedApplication Checker::check()
{
    const bool isFirst = m_application.generation == Generation::First;
    m_chain = isFirst ? checkChainG1(m_request, m_findings) : checkChainG2(m_request, m_findings);
    checkCard();
    for (const DataRecord& record : m_application.records)
        checkRecord(record);
    for (const LooseSignature& signature : m_application.looseSignatures) {
        m_findings.add(
            FindingCode::SignatureWithoutData,
            QStringLiteral("A signature of %1 stands behind no data of it.")
                .arg(efText(signature.fid, m_application.generation)),
            signature.fid, signature.offset);
        addUncovered(signature.offset, headerLength + signature.length, signature.fid);
    }
    checkLengths();
    checkCompleteness();

    ApplicationReport& report = m_result.report;
    report.generation = m_application.generation;
    report.cardType = m_expected.cardType;
    report.chain = m_chain.certificates;
    report.findings = m_findings.list();
    report.verdict = verdict();
    return std::move(m_result);
}

/// The chip outside both applications: many programs store it with the first one only.
const DataRecord* Checker::chip() const
{
    if (const DataRecord* own = m_application.find(fidIcc))
        return own;
    for (const ImageApplication& each : m_image.applications) {
        if (const DataRecord* other = each.find(fidIcc))
            return other;
    }
    return nullptr;
}

/// The serial number in EF_ICC; empty when it was not read.
QByteArray Checker::serialNumber(const DataRecord* record) const
{
    if (record == nullptr)
        return {};
    const QByteArray number = record->payload.mid(serialNumberAt, serialNumberLength);
    return number.size() < serialNumberLength || isBlank(number) ? QByteArray() : number;
}

/// Whether the certificates are those of the card that the file is of.
void Checker::checkCard()
{
    m_result.card = m_chain.card.isEmpty() ? serialNumber(m_application.find(fidIcc)) : m_chain.card;
    if (m_chain.card.isEmpty())
        return;
    const DataRecord* record = chip();
    const QByteArray number = serialNumber(record);
    if (number.isEmpty()) {
        m_findings.add(
            FindingCode::SerialNumberUnknown,
            QStringLiteral("EF_ICC does not say the card's serial number; the certificates are of %1.")
                .arg(keyIdentifierText(m_chain.card)),
            fidIcc);
        return;
    }
    m_isCardCompared = number == m_chain.card && record == m_application.find(fidIcc);
    if (number != m_chain.card)
        m_findings.add(
            FindingCode::CertificateOfAnotherCard,
            QStringLiteral("The certificates of %1 are of the card %2, EF_ICC is of the card %3.")
                .arg(
                    generationText(m_application.generation), keyIdentifierText(m_chain.card),
                    keyIdentifierText(number)),
            fidIcc, record->offset);
}

void Checker::checkRecord(const DataRecord& record)
{
    const SignatureVerdict signature = checkSignature(record);
    m_result.report.records.push_back(
        {record.offset, record.fid, static_cast<unsigned short>(record.payload.size()),
         static_cast<unsigned short>(record.signature.size()), signature});
    if (rule(record.fid) == nullptr)
        checkUnknown(record, signature);
    if (!m_seen.insert(record.fid).second)
        add(FindingCode::RepeatedRecord, QStringLiteral("%1 stands in the file more than once."), record);
    addUncovered(record, signature);
}

SignatureVerdict Checker::checkSignature(const DataRecord& record)
{
    const FileRule* known = rule(record.fid);
    if (record.signature.isEmpty()) {
        if (known == nullptr || known->protection != Protection::Signature)
            return SignatureVerdict::NotSigned;
        add(FindingCode::SignatureMissing, QStringLiteral("%1 has no signature."), record);
        return SignatureVerdict::Missing;
    }
    if (!m_chain.cardKey)
        return SignatureVerdict::NoCertificate;
    if (record.signature.size() != m_chain.cardKey->signatureLength()) {
        add(FindingCode::SignatureLength,
            QStringLiteral("%1 has a signature of %2 bytes, one of %3 has %4.")
                .arg(
                    QStringLiteral("%1"), QString::number(record.signature.size()),
                    m_chain.cardKey->algorithm(), QString::number(m_chain.cardKey->signatureLength())),
            record);
        return SignatureVerdict::Invalid;
    }
    switch (m_chain.cardKey->check(record.payload, record.signature)) {
    case Check::Holds:
        return SignatureVerdict::Valid;
    case Check::Fails:
        break;
    case Check::Unsupported:
        add(FindingCode::SignatureUnsupported,
            QStringLiteral("%1: this machine cannot check signatures of %2.")
                .arg(QStringLiteral("%1"), m_chain.cardKey->algorithm()),
            record);
        return SignatureVerdict::Unsupported;
    }
    add(FindingCode::SignatureInvalid,
        QStringLiteral(
            "%1: the signature does not hold. Data or signature was changed, or they are of two cards."),
        record);
    return SignatureVerdict::Invalid;
}

void Checker::checkUnknown(const DataRecord& record, SignatureVerdict signature)
{
    if (signature == SignatureVerdict::NotSigned)
        add(FindingCode::UnexpectedRecord,
            QStringLiteral("%1 is no EF of this application, and is not signed."), record);
    else if (signature == SignatureVerdict::Valid)
        add(FindingCode::UnknownSignedRecord,
            QStringLiteral("%1 is no known EF of this application; the card signed it."), record);
}

/// An EF with record counts; empty when it was changed, for then everything would seem of a wrong length.
QByteArray Checker::countsIn(unsigned short fid) const
{
    const DataRecord* record = m_application.find(fid);
    const auto& reports = m_result.report.records;
    const auto report = std::find_if(reports.begin(), reports.end(), [record](const RecordReport& each) {
        return record != nullptr && each.offset == record->offset;
    });
    const bool isUsable = report != reports.end() && report->signature != SignatureVerdict::Invalid &&
                          report->signature != SignatureVerdict::Missing;
    return isUsable ? record->payload : QByteArray();
}

/// A signature does not say of which EF it is: what was signed as another one has another length.
void Checker::checkLengths()
{
    const auto lengths = fileLengths(
        m_expected, countsIn(fidApplicationIdentification), countsIn(fidApplicationIdentificationV2));
    for (const RecordReport& each : m_result.report.records) {
        const auto wanted = lengths.find(each.fid);
        const FileRule* known = rule(each.fid);
        if (known == nullptr || wanted == lengths.end() || wanted->second == each.length ||
            each.signature == SignatureVerdict::Invalid)
            continue;
        const bool isShort = each.length < wanted->second;
        // What is missing of an EF that nobody signs was not taken from another.
        if (isShort && known->protection == Protection::None)
            continue;
        m_findings.add(
            isShort ? FindingCode::RecordTooShort : FindingCode::RecordTooLong,
            QStringLiteral("%1 has %2 bytes; on this card it has %3.")
                .arg(
                    efText(each.fid, m_application.generation), QString::number(each.length),
                    QString::number(wanted->second)),
            each.fid, each.offset);
    }
}

void Checker::checkCompleteness()
{
    for (const FileRule& each : m_rules) {
        if (each.isRequired && m_application.find(each.fid) == nullptr)
            m_findings.add(
                FindingCode::RecordMissing,
                QStringLiteral("%1 is not in the file; every card of this kind has it.")
                    .arg(efText(each.fid, m_application.generation)),
                each.fid);
    }
    if (m_expected.cardType == 0)
        m_findings.add(
            FindingCode::RecordMissing,
            QStringLiteral("EF_Application_Identification does not say what kind of card it is."),
            fidApplicationIdentification);
    if (!m_expected.isSigned())
        m_findings.add(
            FindingCode::ApplicationNotSigned,
            QStringLiteral("Cards of this kind have no key to sign their second application with."));
}

/// Notes what of a record, and of the signature behind it, nothing vouches for.
void Checker::addUncovered(const DataRecord& record, SignatureVerdict signature)
{
    if (signature == SignatureVerdict::Valid)
        return;
    if (record.signatureOffset >= 0)
        addUncovered(record.signatureOffset, headerLength + record.signature.size(), record.fid);
    const long long begin = record.offset + headerLength;
    const long long end = begin + record.payload.size();
    const auto certificate = m_chain.covered.find(record.fid);
    const bool isRead = &record == m_application.find(record.fid);
    if (certificate != m_chain.covered.end() && isRead) {
        for (const Stretch& each : certificate->second)
            addUncovered(begin + each.begin, each.length, record.fid);
    } else if (record.fid == fidIcc && isRead && m_isCardCompared) {
        const long long behind = begin + serialNumberAt + serialNumberLength;
        addUncovered(record.offset, headerLength + serialNumberAt, record.fid);
        addUncovered(behind, end - behind, record.fid);
    } else {
        addUncovered(record.offset, end - record.offset, record.fid);
    }
}

void Checker::addUncovered(long long offset, long long length, unsigned short fid)
{
    if (length > 0)
        m_result.uncovered.push_back({offset, length, fid, m_application.generation});
}

/// @param text with %1 for the name of the EF
void Checker::add(FindingCode code, const QString& text, const DataRecord& record)
{
    m_findings.add(code, text.arg(efText(record.fid, m_application.generation)), record.fid, record.offset);
}

const FileRule* Checker::rule(unsigned short fid) const
{
    const auto found =
        std::find_if(m_rules.begin(), m_rules.end(), [fid](const FileRule& each) { return each.fid == fid; });
    return found == m_rules.end() ? nullptr : &*found;
}

/// Nothing is genuine only because nothing was found: the chain and each signature must hold.
Verdict Checker::verdict() const
{
    const ApplicationReport& report = m_result.report;
    const Verdict found = m_findings.verdict();
    const bool holds =
        std::all_of(report.chain.begin(), report.chain.end(), [](const CertificateReport& each) {
            return each.verdict == CertificateVerdict::Trusted || each.verdict == CertificateVerdict::Valid ||
                   each.role == CertificateRole::Link;
        });
    if (found == Verdict::Genuine && !(holds && report.signaturesHold()))
        return Verdict::Unproven;
    return found;
}

} // namespace

CheckedApplication checkApplication(
    const ImageApplications& image, std::size_t index, const std::vector<TrustedRoot>& roots,
    const QDateTime& downloadedAt)
{
    return Checker(image, index, roots, downloadedAt).check();
}

} // namespace scard::verify::detail
