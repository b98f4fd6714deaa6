#include "CertificateG1.h"
#include "CertificateG2.h"
#include "ChainBuilder.h"

#include <scard/records/Fid.h>

#include <algorithm>

namespace scard::verify::detail {

namespace {

// Equipment types in the certificates of this generation (Annex 1C, Appendix 1, EquipmentType).
constexpr int rootType = 0x0D;
constexpr int memberStateType = 0x0E;
constexpr int signing = 0x10; ///< added to the type of a card

/// A certificate of the file, with what is found out about it.
struct Link
{
    CertificateReport report;
    const DataRecord* record = nullptr;
    std::optional<CertificateG2> certificate;
    bool isKeyNeeded = true;

    bool isValid() const { return report.verdict == CertificateVerdict::Valid; }
};

class ChainG2 : private ChainBuilder
{
  public:
    using ChainBuilder::ChainBuilder;

    Chain check();

  private:
    bool isThere(const Link& link) const;
    void read(Link& link);
    void keyIsNone(Link& link);
    void checkSignature(Link& link, const CertificateG2& issuer);
    void checkLink();
    void checkMemberState();
    void checkOfMemberState(Link& link, const std::vector<int>& types);
    const TrustedRoot* rootOf(const CertificateG2& certificate) const;
    void rootIsUnknown();

    CertificateReport m_root = reportOf(CertificateRole::Root, 0);
    Link m_link{reportOf(CertificateRole::Link, fidLinkCertificate), nullptr, std::nullopt};
    Link m_memberState{reportOf(CertificateRole::MemberState, fidCaCertificate), nullptr, std::nullopt};
    Link m_card{reportOf(CertificateRole::Card, fidCardCertificate), nullptr, std::nullopt, false};
    Link m_cardSign{reportOf(CertificateRole::CardSign, fidCardSignCertificate), nullptr, std::nullopt};
};

Chain ChainG2::check()
{
    read(m_memberState);
    // Not every program downloads it: no signature in a download hangs on it.
    if (isThere(m_card))
        read(m_card);
    if (m_request.expected.isSigned())
        read(m_cardSign);
    checkLink();
    if (m_memberState.certificate)
        checkMemberState();
    std::vector<int> types = cardTypes();
    checkOfMemberState(m_card, types);
    for (int& type : types)
        type += signing;
    checkOfMemberState(m_cardSign, types);

    m_chain.certificates = {m_root};
    if (m_link.record != nullptr)
        m_chain.certificates.push_back(m_link.report);
    m_chain.certificates.push_back(m_memberState.report);
    if (m_card.record != nullptr)
        m_chain.certificates.push_back(m_card.report);
    if (m_request.expected.isSigned())
        m_chain.certificates.push_back(m_cardSign.report);
    if (m_cardSign.certificate)
        m_chain.cardKey = m_cardSign.certificate->key();
    return std::move(m_chain);
}

bool ChainG2::isThere(const Link& link) const
{
    const DataRecord* record = m_request.application.find(link.report.fid);
    return record != nullptr && !isBlank(record->payload);
}

/// Takes the certificate out of its EF.
void ChainG2::read(Link& link)
{
    link.record = find(link.report);
    if (link.record == nullptr)
        return;
    link.certificate = parseCertificateG2(link.record->payload);
    if (!link.certificate) {
        const bool isG1 = link.record->payload.size() == CertificateG1::length;
        fail(
            link.report, isG1 ? FindingCode::CertificateOfGeneration : FindingCode::CertificateUnreadable,
            (isG1 ? QStringLiteral(
                        "%1 holds a certificate of the first generation among records of the second.")
                  : QStringLiteral("%1 holds nothing that can be read as a certificate."))
                .arg(nameOf(link.report)));
        return;
    }
    const CertificateG2& certificate = *link.certificate;
    link.report.verdict = CertificateVerdict::NotChecked;
    link.report.holder = certificate.holder;
    link.report.issuer = certificate.issuer;
    link.report.authorisation = certificate.authorisation;
    link.report.validFrom = certificate.validFrom;
    link.report.validUntil = certificate.validUntil;
    if (certificate.curve != nullptr)
        link.report.algorithm = QString::fromLatin1(certificate.curve->name);
    if (!certificate.isKnown())
        tell(
            link.report, FindingCode::CertificateUnsupported,
            QStringLiteral("%1 has a profile or a curve that is not known here.").arg(nameOf(link.report)));
    else if (link.isKeyNeeded && certificate.key() == nullptr)
        keyIsNone(link);
}

void ChainG2::keyIsNone(Link& link)
{
    if (EcPublicKey::isAvailable(*link.certificate->curve))
        fail(
            link.report, FindingCode::CertificateUnreadable,
            QStringLiteral("%1 tells a key that is none.").arg(nameOf(link.report)));
    else
        tell(
            link.report, FindingCode::CertificateUnsupported,
            QStringLiteral("%1: this machine has not got the curve %2.")
                .arg(nameOf(link.report), link.report.algorithm));
}

/// Checks the signature of a certificate with the key of its issuer.
void ChainG2::checkSignature(Link& link, const CertificateG2& issuer)
{
    const CertificateG2& certificate = *link.certificate;
    if (issuer.key() == nullptr || link.report.verdict == CertificateVerdict::Invalid)
        return;
    switch (issuer.key()->check(certificate.signedPart, certificate.signature)) {
    case Check::Holds:
        accept(link.report, *link.record, certificate.length);
        break;
    case Check::Fails:
        failSignature(link.report);
        break;
    case Check::Unsupported:
        tell(
            link.report, FindingCode::CertificateUnsupported,
            QStringLiteral("%1: this machine cannot check %2.")
                .arg(nameOf(link.report), issuer.key()->algorithm()));
        break;
    }
}

/// A card that was issued under a newer root carries its key, certified by the root before.
void ChainG2::checkLink()
{
    // Under the first of all roots there is nothing to link, and the EF is empty.
    if (!isThere(m_link))
        return;
    read(m_link);
    if (!m_link.certificate)
        return;
    checkUse(m_link.report, {rootType});
    const TrustedRoot* before = rootOf(*m_link.certificate);
    if (before != nullptr) {
        checkSignature(m_link, *before->certificate);
        // With another name there it would be the link from another root, and would not be checked.
        if (m_link.isValid())
            m_chain.covered[m_link.report.fid].push_back(
                {m_link.certificate->issuerAt, m_link.certificate->issuer.size()});
        return;
    }
    const auto isSameRoot = [this](const TrustedRoot& each) {
        return each.certificate && each.root.keyIdentifier == m_link.certificate->holder;
    };
    const auto isSameKey = [&](const TrustedRoot& each) {
        return isSameRoot(each) && each.certificate->point == m_link.certificate->point;
    };
    const auto& roots = m_request.roots;
    if (std::any_of(roots.begin(), roots.end(), isSameRoot) &&
        std::none_of(roots.begin(), roots.end(), isSameKey)) {
        fail(
            m_link.report, FindingCode::CertificateInvalid,
            QStringLiteral("%1 tells another key of the root than the one that was given.")
                .arg(nameOf(m_link.report)));
        return;
    }
    tell(
        m_link.report, FindingCode::LinkCertificateNotChecked,
        QStringLiteral("%1 was not checked: the root key before, %2, was not given.")
            .arg(nameOf(m_link.report), keyIdentifierText(m_link.certificate->issuer)));
}

/// The root key that a certificate was signed with. If none was, the one that it names.
const TrustedRoot* ChainG2::rootOf(const CertificateG2& certificate) const
{
    const TrustedRoot* named = trustedRoot(certificate.issuer);
    const auto signs = [&certificate, this](const TrustedRoot& each) {
        return each.root.generation == generation() && each.root.keyIdentifier == certificate.issuer &&
               each.certificate->key()->check(certificate.signedPart, certificate.signature) == Check::Holds;
    };
    const auto& roots = m_request.roots;
    const auto others = std::count_if(roots.begin(), roots.end(), [&certificate](const TrustedRoot& each) {
        return each.root.keyIdentifier == certificate.issuer;
    });
    if (others < 2)
        return named;
    const auto signer = std::find_if(roots.begin(), roots.end(), signs);
    return signer == roots.end() ? named : &*signer;
}

void ChainG2::checkMemberState()
{
    const QByteArray& issuer = m_memberState.certificate->issuer;
    const TrustedRoot* root = rootOf(*m_memberState.certificate);
    const bool isLinked = m_link.isValid() && m_link.certificate->holder == issuer;
    m_root.verdict = CertificateVerdict::NotChecked;
    m_root.holder = issuer;
    checkUse(m_memberState.report, {memberStateType});
    if (root == nullptr && !isLinked) {
        rootIsUnknown();
        return;
    }
    m_root = reportOf(root != nullptr ? *root : *rootOf(*m_link.certificate));
    checkDates(m_root);
    checkSignature(m_memberState, root != nullptr ? *root->certificate : *m_link.certificate);
}

void ChainG2::rootIsUnknown()
{
    const QByteArray& wanted = m_root.holder;
    QString text = QStringLiteral("The root key %1 of the second generation was not given.")
                       .arg(keyIdentifierText(wanted));
    if (m_link.certificate && m_link.certificate->holder == wanted)
        text += QStringLiteral(
                    " EF_Link_Certificate leads to it from %1, which would do as well if it is a root's.")
                    .arg(keyIdentifierText(m_link.certificate->issuer));
    else if (m_link.certificate && m_link.certificate->issuer == wanted)
        text +=
            QStringLiteral(
                " EF_Link_Certificate leads from it to %1, but a newer root does not vouch for the older.")
                .arg(keyIdentifierText(m_link.certificate->holder));
    m_findings.add(FindingCode::RootKeyUnknown, text);
}

/// Checks a certificate of the card.
void ChainG2::checkOfMemberState(Link& link, const std::vector<int>& types)
{
    if (!link.certificate)
        return;
    checkUse(link.report, types);
    if (!m_chain.card.isEmpty() && m_chain.card != link.certificate->holder)
        tell(
            link.report, FindingCode::CertificateOfAnotherCard,
            QStringLiteral("%1 is of the card %2, EF_MA_Certificate is of the card %3.")
                .arg(
                    nameOf(link.report), keyIdentifierText(link.certificate->holder),
                    keyIdentifierText(m_chain.card)));
    m_chain.card = link.certificate->holder;
    if (!m_memberState.certificate)
        return;
    if (link.certificate->issuer != m_memberState.certificate->holder)
        failIssuer(link.report, m_memberState.certificate->holder);
    else
        checkSignature(link, *m_memberState.certificate);
}

} // namespace

Chain checkChainG2(const ChainRequest& request, Findings& findings)
{
    return ChainG2(request, findings).check();
}

} // namespace scard::verify::detail
