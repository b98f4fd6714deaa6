#pragma once

#include "Chain.h"

namespace scard::verify::detail {

/// True for an EF that no certificate was ever written to: it is filled with one byte.
bool isBlank(const QByteArray& payload);

/// What the chains of both generations have in common.
class ChainBuilder
{
  public:
    ChainBuilder(const ChainRequest& request, Findings& findings) : m_request(request), m_findings(findings)
    {}

  protected:
    ~ChainBuilder() = default;

    /// Of a certificate that is still to be looked for.
    static CertificateReport reportOf(CertificateRole role, unsigned short fid);

    /// The EF of @p report. When it is missing or blank: null, and a finding.
    const DataRecord* find(const CertificateReport& report);

    /// Finds something about the certificate of @p report.
    void tell(const CertificateReport& report, FindingCode code, const QString& text);

    /// The same, and the certificate does not hold.
    void fail(CertificateReport& report, FindingCode code, const QString& text);

    /// Its signature is not that of who should have issued it.
    void failSignature(CertificateReport& report);

    /// The authority with the key identifier @p memberState did not issue it.
    void failIssuer(CertificateReport& report, const QByteArray& memberState);

    /// The certificate of @p report, the first @p length bytes of @p record, was signed by its issuer.
    void accept(CertificateReport& report, const DataRecord& record, int length);

    /// Finds what is wrong with the use that a certificate is for.
    /// @param types equipment types that may stand in it
    void checkUse(const CertificateReport& report, const std::vector<int>& types);

    /// Equipment types that the card may have: one, when the application identification says it.
    std::vector<int> cardTypes() const;

    void checkDates(const CertificateReport& report);

    /// The first root key with an identifier that the user gave; null when there is none.
    const TrustedRoot* trustedRoot(const QByteArray& keyIdentifier) const;

    /// Of the root of the chain, which the user trusts.
    static CertificateReport reportOf(const TrustedRoot& trusted);

    Generation generation() const { return m_request.application.generation; }
    QString nameOf(const CertificateReport& report) const;

    const ChainRequest& m_request;
    Findings& m_findings;
    Chain m_chain;
};

} // namespace scard::verify::detail
