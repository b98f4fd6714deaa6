#pragma once

#include <scardverify/VerificationReport.h>

#include <vector>

namespace scard::verify::detail {

/// What was found so far, and what it makes of the verdict.
class Findings
{
  public:
    /// @param fid    the EF that it is about; 0 when it is about more
    /// @param offset of the record's header in the image; -1 when it is about no record that is there
    void add(FindingCode code, const QString& text, unsigned short fid = 0, long long offset = -1);

    /// What the heaviest finding leaves.
    Verdict verdict() const;

    const std::vector<Finding>& list() const { return m_list; }

  private:
    std::vector<Finding> m_list;
};

/// How much a finding weighs.
Severity severityOf(FindingCode code);

/// "0599"
QString hexadecimal(unsigned number, int digits);

/// "EF_Places"; "EF 0599" for one that no card has.
QString efText(unsigned short fid, Generation generation);

/// "the first generation"
QString generationText(Generation generation);

} // namespace scard::verify::detail
