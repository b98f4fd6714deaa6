// The signatures of a download, with and without root keys and the day of the download; and root keys.
#include "Target.h"
#include "TestRoots.h"
#include "VouchedParts.h"

#include <scardverify/VerifyImage.h>
#include <simulator/TestPkiG2.h>

#include <QStringList>

#include <algorithm>
#include <cstddef>

namespace {

using namespace scard::verify;

constexpr long long headerLength = 5;

QByteArray toQt(const sim::Bytes& bytes)
{
    return {reinterpret_cast<const char*>(bytes.data()), static_cast<int>(bytes.size())};
}

sim::Bytes fromQt(const QByteArray& bytes)
{
    return {bytes.begin(), bytes.end()};
}

const std::vector<RootKey>& roots()
{
    static const std::vector<RootKey> keys = [] {
        std::vector<RootKey> read;
        for (const sim::Bytes& file : fuzz::testRootFiles()) {
            const RootKeyResult result = readRootKey(toQt(file));
            fuzz::expect(result.key.has_value(), "the test roots can be read");
            read.push_back(*result.key);
        }
        return read;
    }();
    return keys;
}

/// After the most of the test certificates have ended.
QDateTime downloadTime()
{
    return {QDate(2031, 3, 5), QTime(14, 7), Qt::UTC};
}

bool isAboutDates(const Finding& finding)
{
    return finding.code == FindingCode::CertificateExpired ||
           finding.code == FindingCode::CertificateNotYetValid;
}

// A report as text, so that two of them can be compared. What dates tell is left out where it is not wanted.
enum class Dates
{
    Told,
    LeftOut
};

QString numbers(std::initializer_list<long long> values)
{
    QStringList texts;
    for (const long long value : values)
        texts.append(QString::number(value));
    return texts.join(QLatin1Char(' '));
}

void append(QStringList& lines, const std::vector<Finding>& findings, Dates dates)
{
    for (const Finding& each : findings) {
        if (dates == Dates::Told || !isAboutDates(each))
            lines << numbers(
                         {static_cast<int>(each.code), static_cast<int>(each.severity), each.fid,
                          each.offset})
                  << each.text;
    }
}

QStringList linesOf(const RootKey& key)
{
    return {numbers({static_cast<int>(key.generation)}), keyIdentifierText(key.keyIdentifier),
            QString::fromLatin1(key.bytes.toHex()),      key.algorithm,
            key.validFrom.toString(Qt::ISODate),         key.validUntil.toString(Qt::ISODate)};
}

QStringList linesOf(const VerificationReport& report, Dates dates = Dates::Told)
{
    QStringList lines{numbers({static_cast<int>(report.verdict)})};
    for (const ApplicationReport& application : report.applications) {
        lines << numbers(
            {static_cast<int>(application.generation), static_cast<int>(application.verdict),
             application.cardType});
        for (const CertificateReport& each : application.chain)
            lines << numbers({static_cast<int>(each.role), static_cast<int>(each.verdict), each.fid})
                  << keyIdentifierText(each.holder) << keyIdentifierText(each.issuer)
                  << keyIdentifierText(each.authorisation) << each.algorithm
                  << each.validFrom.toString(Qt::ISODate) << each.validUntil.toString(Qt::ISODate);
        for (const RecordReport& each : application.records)
            lines << numbers(
                {each.offset, each.fid, each.length, each.signatureLength, static_cast<int>(each.signature)});
        append(lines, application.findings, dates);
    }
    append(lines, report.findings, dates);
    for (const UncoveredPart& each : report.uncovered)
        lines << numbers({each.offset, each.length, each.fid, static_cast<int>(each.generation)});
    return lines;
}

/// What the heaviest finding leaves.
Verdict heaviestOf(const std::vector<Finding>& findings)
{
    Verdict verdict = Verdict::Genuine;
    for (const Finding& each : findings) {
        if (each.severity == Severity::Altered)
            verdict = Verdict::Altered;
        else if (each.severity == Severity::Unproven)
            verdict = std::max(verdict, Verdict::Unproven);
        else if (each.severity == Severity::RootUnknown)
            verdict = std::max(verdict, Verdict::RootUnknown);
    }
    return verdict;
}

void expectFindings(const std::vector<Finding>& findings, long long size)
{
    for (const Finding& each : findings) {
        fuzz::expect(!each.text.isEmpty() && each.text.endsWith(QLatin1Char('.')), "a finding is a sentence");
        fuzz::expect(!each.text.contains(QLatin1Char('%')), "a finding's sentence is filled in");
        fuzz::expect(each.offset >= -1 && each.offset < size, "a finding's record is in the image");
    }
}

void expectCertificate(const CertificateReport& certificate)
{
    const bool holds = certificate.verdict == CertificateVerdict::Valid;
    const auto isIdentifier = [](const QByteArray& bytes) { return bytes.isEmpty() || bytes.size() == 8; };
    fuzz::expect(
        isIdentifier(certificate.holder) && isIdentifier(certificate.issuer),
        "a key identifier has eight bytes");
    fuzz::expect(
        !holds || (!certificate.holder.isEmpty() && !certificate.issuer.isEmpty()),
        "of a certificate that holds it is known whose it is and who signed it");
    fuzz::expect(
        !holds || certificate.authorisation.size() == 7,
        "of a certificate that holds it is known what it is for");
    fuzz::expect(
        certificate.role != CertificateRole::Root || certificate.fid == 0, "the root key is in no EF");
}

void expectRecords(const ApplicationReport& application, long long size)
{
    long long end = 0;
    for (const RecordReport& each : application.records) {
        fuzz::expect(each.offset >= end, "records stand in the order of the file");
        end = each.offset + headerLength + each.length;
        if (each.signatureLength > 0)
            end += headerLength + each.signatureLength;
        fuzz::expect(end <= size, "a record lies in the image");
        fuzz::expect(
            each.signature != SignatureVerdict::Valid || each.signatureLength > 0,
            "no signature, nothing that holds");
    }
    fuzz::expect(
        application.count(SignatureVerdict::NoCertificate) == 0 ||
            heaviestOf(application.findings) != Verdict::Genuine,
        "it is said why signatures cannot be checked");
}

void expectApplication(const ApplicationReport& application, long long size)
{
    fuzz::expect(application.verdict == heaviestOf(application.findings), "the heaviest finding decides");
    expectFindings(application.findings, size);
    expectRecords(application, size);
    for (const CertificateReport& each : application.chain)
        expectCertificate(each);
    if (application.verdict != Verdict::Genuine)
        return;
    fuzz::expect(application.signaturesHold(), "in what is genuine each signature holds");
    fuzz::expect(
        !application.chain.empty() && application.chain.front().role == CertificateRole::Root &&
            application.chain.front().verdict == CertificateVerdict::Trusted,
        "what is genuine has a root that was given");
    for (const CertificateReport& each : application.chain)
        fuzz::expect(
            each.verdict == CertificateVerdict::Valid || each.verdict == CertificateVerdict::Trusted ||
                each.role == CertificateRole::Link,
            "what is genuine has a chain that holds");
}

void expectUncovered(const std::vector<UncoveredPart>& parts, long long size)
{
    long long end = 0;
    for (const UncoveredPart& each : parts) {
        fuzz::expect(each.length > 0, "what is uncovered has bytes");
        fuzz::expect(each.offset >= end, "uncovered parts stand in the order of the file, each once");
        end = each.offset + each.length;
    }
    fuzz::expect(end <= size, "uncovered parts lie in the image");
}

void expectReport(const VerificationReport& report, long long size)
{
    Verdict worst = heaviestOf(report.findings);
    for (const ApplicationReport& each : report.applications) {
        expectApplication(each, size);
        worst = std::max(worst, each.verdict);
    }
    fuzz::expect(report.verdict == worst, "the worst decides");
    fuzz::expect(
        report.verdict != Verdict::Genuine || !report.applications.empty(),
        "nothing is genuine in which nothing was found");
    expectFindings(report.findings, size);
    expectUncovered(report.uncovered, size);
}

/// What the library says of genuine parts, the simulator's verifiers say, too.
void expectVouched(const VerificationReport& report, const QByteArray& image)
{
    if (std::none_of(report.applications.begin(), report.applications.end(), [](const auto& each) {
            return each.verdict == Verdict::Genuine;
        }))
        return;
    fuzz::VouchedParts vouched = fuzz::vouchedPartsOf(fromQt(image));
    for (const ApplicationReport& application : report.applications) {
        for (const RecordReport& record : application.records)
            fuzz::expect(
                application.verdict != Verdict::Genuine || record.signature != SignatureVerdict::Valid ||
                    vouched.records.count(record.offset) != 0,
                "a signature that holds in a genuine application holds for others, too");
    }
    if (report.verdict != Verdict::Genuine)
        return;
    fuzz::expect(vouched.cards.size() == 1, "a genuine download is that of one card");
    for (const UncoveredPart& each : report.uncovered)
        std::fill_n(vouched.bytes.begin() + static_cast<std::ptrdiff_t>(each.offset), each.length, true);
    fuzz::expect(
        std::find(vouched.bytes.begin(), vouched.bytes.end(), false) == vouched.bytes.end(),
        "each byte of a genuine download is vouched for, or told to be uncovered");
}

/// A number that the image alone decides.
unsigned choiceBy(const QByteArray& image)
{
    constexpr unsigned prime = 16777619;
    unsigned choice = 2166136261;
    for (const char byte : image)
        choice = (choice ^ static_cast<unsigned char>(byte)) * prime;
    return choice;
}

/// Changes one of the bits that are vouched for.
void expectChangeIsSeen(const VerificationReport& report, const QByteArray& image, unsigned choice)
{
    std::vector<int> covered;
    auto part = report.uncovered.begin();
    for (int at = 0; at < image.size(); ++at) {
        while (part != report.uncovered.end() && part->offset + part->length <= at)
            ++part;
        if (part == report.uncovered.end() || at < part->offset)
            covered.push_back(at);
    }
    const int at = covered[choice % covered.size()];
    const auto bit = static_cast<unsigned char>(1U << (choice >> 29));
    QByteArray changed = image;
    changed[at] = static_cast<char>(static_cast<unsigned char>(changed[at]) ^ bit);
    fuzz::expect(
        verifyImage(changed, roots()).verdict != Verdict::Genuine,
        "no bit that is vouched for can be another in a genuine download");
}

void expectSameAgain(const VerificationReport& report, const QByteArray& image)
{
    fuzz::expect(
        linesOf(verifyImage(image, roots())) == linesOf(report), "the same image has the same report");
}

void expectDatesAlone(const VerificationReport& report, const QByteArray& image)
{
    const VerificationReport dated = verifyImage(image, roots(), downloadTime());
    expectReport(dated, image.size());
    fuzz::expect(
        linesOf(dated, Dates::LeftOut) == linesOf(report), "a time of the download adds what dates tell");
}

void expectNothingByItself(const VerificationReport& report, const QByteArray& image)
{
    const VerificationReport rootless = verifyImage(image, {});
    expectReport(rootless, image.size());
    fuzz::expect(rootless.verdict != Verdict::Genuine, "nothing is genuine by itself");
    fuzz::expect(
        report.verdict != Verdict::Genuine || rootless.verdict == Verdict::RootUnknown,
        "what lacks the root alone says so");
}

/// Signatures take most of the time: of the questions that need all of them again, each image is asked one.
void checkImage(const QByteArray& image)
{
    const VerificationReport report = verifyImage(image, roots());
    expectReport(report, image.size());
    expectVouched(report, image);
    const unsigned choice = choiceBy(image);
    switch (choice % 4) {
    case 0:
        expectDatesAlone(report, image);
        return;
    case 1:
        expectNothingByItself(report, image);
        return;
    case 2:
        if (report.verdict == Verdict::Genuine) {
            expectChangeIsSeen(report, image, choice / 4);
            return;
        }
    }
    expectSameAgain(report, image);
}

/// The certificates of a card, without anything else.
const QByteArray& certificatesOfCard()
{
    static const QByteArray image = [] {
        constexpr std::uint8_t nation = 0x0D;
        constexpr std::uint32_t issued = 1577836800; // 2020-01-01
        constexpr std::uint32_t expires = issued + 5 * 365 * 86400;
        const sim::Curve curve = sim::Curve::NistP256;
        sim::CardHolder holder;
        holder.nation = nation;
        holder.serialNumber = {0, 0, 0, 1, 0x01, 0x20, 0x01, 0x4B};
        holder.issued = issued;
        holder.expires = expires;
        sim::Bytes bytes;
        const auto add = [&bytes](std::uint32_t fid, std::uint32_t type, const sim::Bytes& certificate) {
            sim::appendU16(bytes, fid);
            sim::appendU8(bytes, type);
            sim::appendU16(bytes, static_cast<std::uint32_t>(certificate.size()));
            sim::appendBytes(bytes, certificate);
        };
        add(0xC100, 0, sim::cardCertificateG1(nation, sim::Equipment::Driver, holder.serialNumber, expires));
        add(0xC108, 0, sim::caCertificateG1(nation));
        add(0xC100, 2, sim::cardMaCertificateG2(curve, holder));
        add(0xC101, 2, sim::cardSignCertificateG2(curve, holder));
        add(0xC108, 2, sim::caCertificateG2(curve, nation, 2020));
        add(0xC109, 2, sim::linkCertificateG2(curve));
        return toQt(bytes);
    }();
    return image;
}

/// True when @p bytes hold the public key of one of the test roots.
bool holdsTestRoot(const QByteArray& bytes)
{
    const auto& second = fuzz::testRootsG2();
    return bytes.contains(toQt(fuzz::testRootG1().key.modulus)) ||
           std::any_of(second.begin(), second.end(), [&bytes](const fuzz::TestRootG2& root) {
               return bytes.contains(toQt(root.key.point));
           });
}

/// No other root vouches for the test certificates.
void expectTrustInTestRootsAlone(const RootKey& root)
{
    const VerificationReport report = verifyImage(certificatesOfCard(), {root});
    expectReport(report, certificatesOfCard().size());
    const bool isTestRoot = holdsTestRoot(root.bytes);
    for (const ApplicationReport& application : report.applications) {
        for (const CertificateReport& each : application.chain) {
            const bool isBelowRoot =
                each.role == CertificateRole::MemberState || each.role == CertificateRole::Link;
            fuzz::expect(
                isTestRoot || !isBelowRoot || each.verdict != CertificateVerdict::Valid,
                "a certificate holds by the key that signed it alone");
        }
    }
}

void checkRootKey(const QByteArray& bytes)
{
    const RootKeyResult result = readRootKey(bytes);
    fuzz::expect(
        result.key.has_value() == result.reason.isEmpty(), "it is said why something is no root key");
    if (result.key) {
        const RootKey& key = *result.key;
        fuzz::expect(bytes.startsWith(key.bytes), "a root key keeps its bytes");
        fuzz::expect(
            key.keyIdentifier.size() == 8 && !key.algorithm.isEmpty(),
            "of a root key it is known what it is called and what it is");
        const RootKeyResult again = readRootKey(key.bytes);
        fuzz::expect(
            again.key && linesOf(*again.key) == linesOf(key), "a root key is the same the second time");
    }
    // Hosts may have root keys from elsewhere.
    constexpr int longestRoot = 400;
    for (const Generation generation : {Generation::First, Generation::Second}) {
        RootKey root;
        root.generation = generation;
        root.bytes = bytes;
        if (bytes.size() <= longestRoot)
            expectTrustInTestRootsAlone(root);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::discardDebugStream();
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<int>(size));
    checkImage(bytes);
    checkRootKey(bytes);
    return 0;
}
