#include "CertificateG1.h"
#include "CertificateG2.h"
#include "ChainBuilder.h"

#include <scard/records/Fid.h>

namespace scard::verify::detail {

namespace {

class ChainG1 : private ChainBuilder
{
  public:
    using ChainBuilder::ChainBuilder;

    Chain check();

  private:
    /// A root key, and what comes of a certificate with it.
    struct Root
    {
        const TrustedRoot* trusted = nullptr;
        OpenedG1 opened;
    };

    const DataRecord* findShaped(CertificateReport& report);
    void openMemberState();
    Root rootOf(const DataRecord& record) const;
    void takeMemberState(const Root& root, const DataRecord& record);
    void openCard();
    bool take(CertificateReport& report, const DataRecord& record, const OpenedG1& opened);

    CertificateReport m_root = reportOf(CertificateRole::Root, 0);
    CertificateReport m_memberState = reportOf(CertificateRole::MemberState, fidCaCertificate);
    CertificateReport m_card = reportOf(CertificateRole::Card, fidCardCertificate);
    std::shared_ptr<const RsaPublicKey> m_memberStateKey;
};

Chain ChainG1::check()
{
    openMemberState();
    openCard();
    m_chain.certificates = {m_root, m_memberState, m_card};
    return std::move(m_chain);
}

/// The EF of @p report when it may hold a certificate of this generation.
const DataRecord* ChainG1::findShaped(CertificateReport& report)
{
    const DataRecord* record = find(report);
    if (record == nullptr)
        return nullptr;
    if (parseCertificateG2(record->payload)) {
        fail(
            report, FindingCode::CertificateOfGeneration,
            QStringLiteral("%1 holds a certificate of the second generation among records of the first.")
                .arg(nameOf(report)));
        return nullptr;
    }
    if (record->payload.size() < CertificateG1::length) {
        fail(
            report, FindingCode::CertificateUnreadable,
            QStringLiteral("%1 is too short for a certificate, which has 194 bytes.").arg(nameOf(report)));
        return nullptr;
    }
    report.verdict = CertificateVerdict::NotChecked;
    report.issuer = issuerBehind(record->payload);
    return record;
}

void ChainG1::openMemberState()
{
    const DataRecord* record = findShaped(m_memberState);
    if (record == nullptr)
        return;
    const Root root = rootOf(*record);
    if (root.trusted != nullptr) {
        takeMemberState(root, *record);
        return;
    }
    // Each root is Europe's: what another nation issued is a card's certificate, or none.
    constexpr char europe = '\xFD';
    if (m_memberState.issuer.front() != europe) {
        fail(
            m_memberState, FindingCode::CertificateForAnotherUse,
            QStringLiteral("%1 was not issued by a root, but by %2.")
                .arg(nameOf(m_memberState), keyIdentifierText(m_memberState.issuer)));
        return;
    }
    m_root.verdict = CertificateVerdict::NotChecked;
    m_root.holder = m_memberState.issuer;
    m_findings.add(
        FindingCode::RootKeyUnknown,
        QStringLiteral(
            "The root key %1 of the first generation was not given; its certificates cannot be opened "
            "without it.")
            .arg(keyIdentifierText(m_root.holder)));
}

/// The root key that opens a certificate, whatever it is called: the identifier in clear is outside the
/// signature. Of several the one that it names; if none opens it, the one that it names in clear.
ChainG1::Root ChainG1::rootOf(const DataRecord& record) const
{
    Root found{trustedRoot(issuerBehind(record.payload)), {}};
    for (const TrustedRoot& each : m_request.roots) {
        if (!each.rsaKey)
            continue;
        OpenedG1 opened = openCertificateG1(record.payload, *each.rsaKey);
        const bool isNamed = opened.content.issuer == each.root.keyIdentifier;
        if (opened.check == Check::Holds && (isNamed || found.opened.check != Check::Holds))
            found = {&each, std::move(opened)};
        else if (&each == found.trusted)
            found.opened = std::move(opened);
    }
    return found;
}

void ChainG1::takeMemberState(const Root& root, const DataRecord& record)
{
    m_root = reportOf(*root.trusted);
    const OpenedG1& opened = root.opened;
    if (opened.check == Check::Fails)
        failSignature(m_memberState);
    if (!take(m_memberState, record, opened))
        return;
    if (opened.content.issuer != root.trusted->root.keyIdentifier)
        fail(
            m_memberState, FindingCode::CertificateInvalid,
            QStringLiteral("%1 names another root key than the one that it was signed with.")
                .arg(nameOf(m_memberState)));
    checkUse(m_memberState, {0});
    m_memberStateKey = opened.content.key;
}

void ChainG1::openCard()
{
    const DataRecord* record = findShaped(m_card);
    if (record == nullptr || !m_memberStateKey)
        return;
    const OpenedG1 opened = openCertificateG1(record->payload, *m_memberStateKey);
    if (opened.check == Check::Fails && m_card.issuer == m_memberState.holder)
        failSignature(m_card);
    const bool isTaken = take(m_card, *record, opened);
    if (m_card.issuer != m_memberState.holder)
        failIssuer(m_card, m_memberState.holder);
    if (!isTaken)
        return;
    checkUse(m_card, cardTypes());
    m_chain.cardKey = opened.content.key;
    m_chain.card = opened.content.holder;
}

/// What an opened certificate says, and whether it fits what stands behind it in clear.
/// @return false when it was not opened
bool ChainG1::take(CertificateReport& report, const DataRecord& record, const OpenedG1& opened)
{
    constexpr int knownProfile = 1;
    const CertificateG1& content = opened.content;
    if (opened.check == Check::Unsupported)
        tell(
            report, FindingCode::CertificateUnsupported,
            QStringLiteral("%1: this machine cannot open certificates of RSA-1024 with SHA-1.")
                .arg(nameOf(report)));
    if (opened.check != Check::Holds)
        return false;
    report.issuer = content.issuer;
    report.holder = content.holder;
    report.authorisation = content.authorisation;
    report.validUntil = content.validUntil;
    accept(report, record, CertificateG1::length);
    if (content.issuer != issuerBehind(record.payload))
        fail(
            report, FindingCode::CertificateInvalid,
            QStringLiteral("%1 names another issuer at its end than the one that signed it.")
                .arg(nameOf(report)));
    if (content.key)
        report.algorithm = content.key->algorithm();
    if (!content.key || content.profile != knownProfile)
        tell(
            report, FindingCode::CertificateUnsupported,
            QStringLiteral("%1 has a profile or a key that is not known here.").arg(nameOf(report)));
    return true;
}

} // namespace

Chain checkChainG1(const ChainRequest& request, Findings& findings)
{
    return ChainG1(request, findings).check();
}

} // namespace scard::verify::detail
