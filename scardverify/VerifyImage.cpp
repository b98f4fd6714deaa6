#include <scardverify/VerifyImage.h>

#include <scardverify/detail/ApplicationCheck.h>

#include <scard/records/ImageRecord.h>

#include <algorithm>

namespace scard::verify {

namespace {

using detail::CheckedApplication;
using detail::ImageApplications;

/// No card has more than some sixty, in both applications; each costs the time of a signature.
constexpr int mostRecords = 1000;

int recordsIn(const QByteArray& image)
{
    int count = 0;
    visitRecords(
        reinterpret_cast<const unsigned char*>(image.constData()), static_cast<std::size_t>(image.size()),
        [&count](const RecordPlace&) { ++count; });
    return count;
}

VerificationReport refused(FindingCode code, const QString& text)
{
    detail::Findings findings;
    findings.add(code, text);
    return {findings.verdict(), {}, findings.list(), {}};
}

/// In the order of the file, data and signature of an EF as one part.
std::vector<UncoveredPart> joined(std::vector<UncoveredPart> parts)
{
    std::sort(parts.begin(), parts.end(), [](const UncoveredPart& one, const UncoveredPart& other) {
        return one.offset < other.offset;
    });
    std::vector<UncoveredPart> result;
    for (const UncoveredPart& each : parts) {
        const bool isNext = !result.empty() && result.back().fid == each.fid &&
                            result.back().generation == each.generation &&
                            result.back().offset + result.back().length == each.offset;
        if (isNext)
            result.back().length += each.length;
        else
            result.push_back(each);
    }
    return result;
}

/// Both applications of a file are of one card.
void compareCards(const std::vector<CheckedApplication>& applications, detail::Findings& findings)
{
    if (applications.size() < 2)
        return;
    const CheckedApplication& first = applications[0];
    const CheckedApplication& second = applications[1];
    const int firstType = first.report.cardType;
    const int secondType = second.report.cardType;
    if (!first.card.isEmpty() && !second.card.isEmpty() && first.card != second.card)
        findings.add(
            FindingCode::ApplicationsOfTwoCards,
            QStringLiteral("The first application is of the card %1, the second of the card %2.")
                .arg(keyIdentifierText(first.card), keyIdentifierText(second.card)));
    else if (firstType != 0 && secondType != 0 && firstType != secondType)
        findings.add(
            FindingCode::ApplicationsOfTwoCards,
            QStringLiteral("The first application is of a card of type %1, the second of one of type %2.")
                .arg(firstType)
                .arg(secondType));
}

VerificationReport
reportOf(const ImageApplications& image, const std::vector<RootKey>& roots, const QDateTime& downloadedAt)
{
    const std::vector<detail::TrustedRoot> trusted = detail::trustedRoots(roots);
    std::vector<CheckedApplication> checked;
    for (std::size_t i = 0; i < image.applications.size(); ++i)
        checked.push_back(detail::checkApplication(image, i, trusted, downloadedAt));
    detail::Findings findings = image.findings;
    compareCards(checked, findings);

    VerificationReport report;
    report.verdict = findings.verdict();
    report.findings = findings.list();
    report.uncovered = image.uncovered;
    for (CheckedApplication& each : checked) {
        report.verdict = std::max(report.verdict, each.report.verdict);
        report.uncovered.insert(report.uncovered.end(), each.uncovered.begin(), each.uncovered.end());
        report.applications.push_back(std::move(each.report));
    }
    report.uncovered = joined(std::move(report.uncovered));
    return report;
}

} // namespace

VerificationReport
verifyImage(const QByteArray& image, const std::vector<RootKey>& roots, const QDateTime& downloadedAt)
{
    if (const int count = recordsIn(image); count > mostRecords) {
        VerificationReport report = refused(
            FindingCode::TooManyRecords,
            QStringLiteral("The file has %1 records, no card has as many; none was looked at.").arg(count));
        report.uncovered = {{0, image.size(), 0, Generation::First}};
        return report;
    }
    const ImageApplications sorted = detail::applicationsOf(image);
    if (sorted.applications.empty()) {
        VerificationReport report = refused(
            FindingCode::NoApplication, QStringLiteral("The file has no record of a card's application."));
        report.findings.insert(
            report.findings.end(), sorted.findings.list().begin(), sorted.findings.list().end());
        report.uncovered = sorted.uncovered;
        return report;
    }
    return reportOf(sorted, roots, downloadedAt);
}

} // namespace scard::verify
