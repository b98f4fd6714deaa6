#include "Verification.h"

#include "../CardNames.h"
#include "DownloadTime.h"
#include "VerificationWords.h"

#include <scardverify/VerifyImage.h>

#include <algorithm>

using scard::verify::ApplicationReport;
using scard::verify::SignatureVerdict;
using scard::verify::Verdict;

bool Verification::holdsByItself(const std::vector<scard::verify::RootKey>& roots) const
{
    const auto isGiven = [&roots](scard::verify::Generation generation) {
        return std::any_of(roots.begin(), roots.end(), [generation](const scard::verify::RootKey& root) {
            return root.generation == generation;
        });
    };
    const auto holds = [&isGiven](const ApplicationReport& each) {
        return each.signaturesHold() && (each.verdict == Verdict::Genuine || !isGiven(each.generation));
    };
    return report.verdict <= Verdict::RootUnknown &&
           std::all_of(report.applications.begin(), report.applications.end(), holds);
}

Verification
verificationOf(const QString& path, const QByteArray& bytes, const std::vector<scard::verify::RootKey>& roots)
{
    Verification verification;
    verification.downloadedAt = timeInName(path);
    verification.report = scard::verify::verifyImage(bytes, roots, verification.downloadedAt);
    for (const ApplicationReport& each : verification.report.applications) {
        verification.expected += each.signedRecords();
        verification.valid += each.count(SignatureVerdict::Valid);
        verification.unchecked += each.count(SignatureVerdict::NoCertificate);
    }
    return verification;
}

ExitCode exitCodeOf(Verdict verdict)
{
    switch (verdict) {
    case Verdict::Genuine:
        return exitDone;
    case Verdict::RootUnknown:
    case Verdict::Unproven:
        return exitUnproven;
    case Verdict::Altered:
        break;
    }
    return exitAltered;
}

QString verdictSentence(const Verification& verification)
{
    // Nothing in one application tells whether the card has another, so what was seen is named.
    const auto& applications = verification.report.applications;
    const QString covered = applications.size() == 1 ? QStringLiteral(" of the ") +
                                                           applicationName(applications.front().generation)
                                                     : QString();
    QString text =
        QString::fromLatin1(wordFor(verification.report.verdict).text) +
        QStringLiteral(": %1 of %2 signatures%3 hold")
            .arg(QString::number(verification.valid), QString::number(verification.expected), covered);
    if (verification.unchecked > 0)
        text += QStringLiteral(", %1 cannot be checked").arg(verification.unchecked);
    if (verification.report.verdict == Verdict::Genuine)
        text += QStringLiteral(", up to the root keys that were given");
    if (verification.report.verdict == Verdict::RootUnknown)
        text += QStringLiteral(", a root key was not given");
    return text;
}

QString applicationName(scard::verify::Generation generation)
{
    return generationName(generation == scard::verify::Generation::Second, false);
}
