#include "ChainBuilder.h"

#include <scard/SCardMeta.h>

#include <algorithm>

namespace scard::verify::detail {

namespace {

QString dayText(const QDateTime& time)
{
    return time.date().toString(Qt::ISODate);
}

QByteArray applicationName(Generation generation)
{
    return {generation == Generation::First ? "\xFFTACHO" : "\xFFSMRDT", 6};
}

/// What a certificate is for, by its equipment type (Annex 1C, Appendix 1, EquipmentType).
QString useText(int type, Generation generation)
{
    static const std::map<int, QString> cards = {
        {0x01, QStringLiteral("a driver card")},
        {0x02, QStringLiteral("a workshop card")},
        {0x03, QStringLiteral("a control card")},
        {0x04, QStringLiteral("a company card")}};
    static const std::map<int, QString> others = {
        {0x00, QStringLiteral("a Member State")},
        {0x06, QStringLiteral("a vehicle unit")},
        {0x0D, QStringLiteral("a root")},
        {0x0E, QStringLiteral("a Member State")},
        {0x11, QStringLiteral("the signatures of a driver card")},
        {0x12, QStringLiteral("the signatures of a workshop card")},
        {0x13, QStringLiteral("the signatures of a vehicle unit")}};
    if (const auto card = cards.find(type); card != cards.end())
        return generation == Generation::First
                   ? card->second
                   : QStringLiteral("the mutual authentication of ") + card->second;
    const auto other = others.find(type);
    return other == others.end() ? QStringLiteral("equipment of type %1").arg(type) : other->second;
}

} // namespace

bool isBlank(const QByteArray& payload)
{
    return payload.isEmpty() || payload == QByteArray(payload.size(), '\0') ||
           payload == QByteArray(payload.size(), '\xFF');
}

const DataRecord* ChainBuilder::find(const CertificateReport& report)
{
    const DataRecord* record = m_request.application.find(report.fid);
    if (record != nullptr && !isBlank(record->payload))
        return record;
    tell(
        report, FindingCode::CertificateMissing,
        (record == nullptr ? QStringLiteral("%1 is not in the file.")
                           : QStringLiteral("%1 holds no certificate."))
            .arg(nameOf(report)));
    return nullptr;
}

void ChainBuilder::tell(const CertificateReport& report, FindingCode code, const QString& text)
{
    const DataRecord* record = m_request.application.find(report.fid);
    m_findings.add(code, text, report.fid, record == nullptr ? -1 : record->offset);
}

void ChainBuilder::fail(CertificateReport& report, FindingCode code, const QString& text)
{
    report.verdict = CertificateVerdict::Invalid;
    m_chain.covered.erase(report.fid);
    tell(report, code, text);
}

void ChainBuilder::failSignature(CertificateReport& report)
{
    const bool isOfCard = report.role == CertificateRole::Card || report.role == CertificateRole::CardSign;
    fail(
        report, FindingCode::CertificateInvalid,
        QStringLiteral("%1 was changed, or was not signed with the %2.")
            .arg(
                nameOf(report), isOfCard ? QStringLiteral("key in EF_CA_Certificate")
                                         : QStringLiteral("root key that it names")));
}

void ChainBuilder::failIssuer(CertificateReport& report, const QByteArray& memberState)
{
    fail(
        report, FindingCode::CertificateOfAnotherIssuer,
        QStringLiteral("%1 was issued by %2, EF_CA_Certificate is that of %3.")
            .arg(nameOf(report), keyIdentifierText(report.issuer), keyIdentifierText(memberState)));
}

void ChainBuilder::accept(CertificateReport& report, const DataRecord& record, int length)
{
    report.verdict = CertificateVerdict::Valid;
    const int padding = record.payload.size() - length;
    m_chain.covered[record.fid] = {{length, padding}};
    if (padding > 0)
        tell(
            report, FindingCode::CertificatePadded,
            QStringLiteral("%1 holds %2 bytes behind its certificate, which nothing vouches for.")
                .arg(nameOf(report))
                .arg(padding));
    checkDates(report);
}

void ChainBuilder::checkUse(const CertificateReport& report, const std::vector<int>& types)
{
    const int type = static_cast<unsigned char>(report.authorisation.back());
    const bool isOfApplication = report.authorisation.startsWith(applicationName(generation()));
    if (isOfApplication && std::find(types.begin(), types.end(), type) != types.end())
        return;
    const QString made =
        isOfApplication ? useText(type, generation()) : QStringLiteral("another application");
    tell(
        report, FindingCode::CertificateForAnotherUse,
        QStringLiteral("%1 holds a certificate for %2, not for %3.")
            .arg(nameOf(report), made, useText(types.front(), generation())));
}

std::vector<int> ChainBuilder::cardTypes() const
{
    if (m_request.expected.cardType != 0)
        return {m_request.expected.cardType};
    return {SCardMeta::DriverCard, SCardMeta::WorkshopCard, SCardMeta::ControlCard, SCardMeta::CompanyCard};
}

void ChainBuilder::checkDates(const CertificateReport& report)
{
    const QDateTime downloaded = m_request.downloadedAt.toUTC();
    if (!downloaded.isValid())
        return;
    const auto warn = [&](FindingCode code, const QString& text, const QDateTime& limit) {
        tell(report, code, text.arg(nameOf(report), dayText(limit), dayText(downloaded)));
    };
    if (report.validUntil.isValid() && report.validUntil < downloaded)
        warn(
            FindingCode::CertificateExpired,
            QStringLiteral("%1: the certificate was valid until %2, the card was downloaded on %3."),
            report.validUntil);
    if (report.validFrom.isValid() && report.validFrom > downloaded)
        warn(
            FindingCode::CertificateNotYetValid,
            QStringLiteral("%1: the certificate is valid from %2, the card was downloaded on %3."),
            report.validFrom);
}

const TrustedRoot* ChainBuilder::trustedRoot(const QByteArray& keyIdentifier) const
{
    const auto root =
        std::find_if(m_request.roots.begin(), m_request.roots.end(), [&](const TrustedRoot& each) {
            return each.root.generation == generation() && each.root.keyIdentifier == keyIdentifier;
        });
    return root == m_request.roots.end() ? nullptr : &*root;
}

CertificateReport ChainBuilder::reportOf(CertificateRole role, unsigned short fid)
{
    CertificateReport report;
    report.role = role;
    report.fid = fid;
    return report;
}

CertificateReport ChainBuilder::reportOf(const TrustedRoot& trusted)
{
    const RootKey& root = trusted.root;
    CertificateReport report = reportOf(CertificateRole::Root, 0);
    report.verdict = CertificateVerdict::Trusted;
    report.holder = root.keyIdentifier;
    report.issuer = root.keyIdentifier;
    report.algorithm = root.algorithm;
    if (trusted.certificate)
        report.authorisation = trusted.certificate->authorisation;
    report.validFrom = root.validFrom;
    report.validUntil = root.validUntil;
    return report;
}

QString ChainBuilder::nameOf(const CertificateReport& report) const
{
    return report.fid == 0 ? QStringLiteral("The root key") : efText(report.fid, generation());
}

} // namespace scard::verify::detail
