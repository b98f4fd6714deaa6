// A download for each finding that there is.
#include "AlgorithmPolicy.h"
#include "Certificates.h"
#include "Image.h"
#include "OtherCard.h"
#include "Roots.h"
#include "Told.h"

#include <cli/Downloads.h>
#include <scardverify/detail/Findings.h>
#include <scardverify/VerifyImage.h>

#include <gmock/gmock.h>

#include <optional>

namespace {

using namespace scard::verify;
using namespace test;
using testing::Contains;

/// What leads to a finding.
struct Example
{
    QByteArray file;
    Severity severity;
    std::vector<RootKey> roots = allRoots();
    QDateTime downloadedAt = {};
    Refused refused = Refused::Nothing;
};

QByteArray withCertificate(unsigned int fid, const QByteArray& certificate)
{
    Image image = secondAlone();
    image.payload(fid, dataG2) = certificate;
    return image.bytes();
}

QByteArray withFlippedByte(unsigned int fid, unsigned int type)
{
    Image image = driver();
    QByteArray& payload = image.payload(fid, type);
    payload[20] = static_cast<char>(payload.at(20) ^ 0x01);
    return image.bytes();
}

/// Something else in an EF, signed by the card.
QByteArray withSigned(unsigned int fid, const QByteArray& payload)
{
    Image image = driver();
    image.payload(fid, dataG1) = payload;
    return image.sign(fid, dataG1).bytes();
}

QByteArray ofManyRecords()
{
    Image image = driver();
    while (image.records.size() <= 1000)
        image.append({0x0505, dataG1, {}});
    return image.bytes();
}

/// No default: the compiler asks for an example of each code that is added. None for numbers between them.
std::optional<Example> exampleOf(FindingCode code)
{
    const QByteArray file = driver().bytes();
    const QByteArray signing = secondAlone().payload(0xC101, dataG2);
    const QDateTime longAgo(QDate(2000, 1, 1), QTime(0, 0), Qt::UTC);
    switch (code) {
    case FindingCode::NoApplication:
        return Example{{}, Severity::Unproven};
    case FindingCode::FileCut:
        return Example{file + 'x', Severity::Unproven};
    case FindingCode::UnknownRecordType:
        return Example{driver().append({0x0505, 0x04, {}}).bytes(), Severity::Unproven};
    case FindingCode::TooManyRecords:
        return Example{ofManyRecords(), Severity::Unproven};
    case FindingCode::ApplicationsOfTwoCards:
        return Example{file + secondOf(otherCard(driverV2()).bytes()), Severity::Altered};
    case FindingCode::UnexpectedRecord:
        return Example{driver().append({0x0599, dataG1, {}}).bytes(), Severity::Unproven};
    case FindingCode::RepeatedRecord:
        return Example{driver().append({0x0002, dataG1, {}}).bytes(), Severity::Unproven};
    case FindingCode::RecordMissing:
        return Example{driver().removeEf(0x0505, dataG1).bytes(), Severity::Unproven};
    case FindingCode::ApplicationNotSigned:
        return Example{smallDownload("companyG2").file, Severity::Unproven};
    case FindingCode::UnknownSignedRecord:
        return Example{
            driver()
                .append({0x0599, dataG1, "abc"})
                .append({0x0599, signatureG1, cardSignature("abc", dataG1)})
                .bytes(),
            Severity::Unproven};
    case FindingCode::RecordTooShort:
        return Example{withSigned(0x0506, "abcd"), Severity::Altered};
    case FindingCode::RecordTooLong:
        return Example{withSigned(0x050E, "abcde"), Severity::Unproven};
    case FindingCode::SignatureMissing:
        return Example{driver().remove(0x0505, signatureG1).bytes(), Severity::Unproven};
    case FindingCode::SignatureInvalid:
        return Example{withFlippedByte(0x0505, dataG1), Severity::Altered};
    case FindingCode::SignatureLength:
        return Example{
            driver().append({0x0599, dataG1, {}}).append({0x0599, signatureG1, "x"}).bytes(),
            Severity::Altered};
    case FindingCode::SignatureWithoutData:
        return Example{driver().remove(0x0505, dataG1).bytes(), Severity::Altered};
    case FindingCode::SignatureUnsupported:
        return Example{file, Severity::Unproven, allRoots(), {}, Refused::Sha1Signatures};
    case FindingCode::CertificateMissing:
        return Example{driver().remove(0xC100, dataG1).bytes(), Severity::Unproven};
    case FindingCode::CertificateUnreadable:
        return Example{withCertificate(0xC101, "x"), Severity::Altered};
    case FindingCode::CertificateInvalid:
        return Example{withFlippedByte(0xC108, dataG1), Severity::Altered};
    case FindingCode::CertificateOfGeneration:
        return Example{withCertificate(0xC101, driver().payload(0xC100, dataG1)), Severity::Altered};
    case FindingCode::CertificateOfAnotherIssuer:
        return Example{
            withCertificate(0xC101, with(signing, placesG2::issuer, QByteArray(8, '\x01'))),
            Severity::Altered};
    case FindingCode::CertificateOfAnotherCard:
        return Example{
            withCertificate(0xC101, otherCard(secondAlone()).payload(0xC101, dataG2)), Severity::Altered};
    case FindingCode::CertificateForAnotherUse:
        return Example{withCertificate(0xC101, secondAlone().payload(0xC100, dataG2)), Severity::Altered};
    case FindingCode::CertificateUnsupported:
        return Example{
            withCertificate(0xC101, with(signing, placesG2::curve, QByteArray(8, '\x01'))),
            Severity::Unproven};
    case FindingCode::CertificateExpired:
        return Example{file, Severity::Warning, allRoots(), longAgo.addYears(99)};
    case FindingCode::CertificateNotYetValid:
        return Example{secondAlone().bytes(), Severity::Warning, allRoots(), longAgo};
    case FindingCode::CertificatePadded:
        return Example{withCertificate(0xC101, signing + '\0'), Severity::Note};
    case FindingCode::LinkCertificateNotChecked:
        return Example{secondAlone().bytes(), Severity::Note, roots()};
    case FindingCode::SerialNumberUnknown:
        return Example{driver().remove(0x0002, dataG1).bytes(), Severity::Warning};
    case FindingCode::RootKeyUnknown:
        return Example{file, Severity::RootUnknown, {}};
    }
    return std::nullopt;
}

constexpr int codes = 100;

TEST(FindingCodeTest, EachIsFound)
{
    int found = 0;
    for (int number = 0; number < codes; ++number) {
        const auto code = static_cast<FindingCode>(number);
        const std::optional<Example> example = exampleOf(code);
        if (!example)
            continue;
        SCOPED_TRACE(number);
        const AlgorithmPolicy policy(example->refused);
        const VerificationReport report = verifyImage(example->file, example->roots, example->downloadedAt);
        EXPECT_THAT(codesOf(report), Contains(code));
        for (const Told& each : toldOf(report)) {
            EXPECT_NE(each.text, "");
            EXPECT_EQ(each.text.find('%'), std::string::npos) << each.text;
            EXPECT_TRUE(each.code != code || each.severity == example->severity);
        }
        ++found;
    }
    EXPECT_EQ(found, 31);
}

TEST(FindingCodeTest, TheHeaviestDecidesTheVerdict)
{
    const struct
    {
        Severity severity;
        Verdict verdict;
    } rows[] = {
        {Severity::Note, Verdict::Genuine},
        {Severity::Warning, Verdict::Genuine},
        {Severity::RootUnknown, Verdict::RootUnknown},
        {Severity::Unproven, Verdict::Unproven},
        {Severity::Altered, Verdict::Altered},
    };
    for (int first = 0; first < codes; ++first) {
        const auto code = static_cast<FindingCode>(first);
        if (!exampleOf(code))
            continue;
        detail::Findings findings;
        EXPECT_EQ(findings.verdict(), Verdict::Genuine);
        findings.add(FindingCode::CertificatePadded, "a note");
        findings.add(code, "this");
        findings.add(FindingCode::CertificateExpired, "a warning");
        const auto row = std::find_if(std::begin(rows), std::end(rows), [&](const auto& each) {
            return each.severity == detail::severityOf(code);
        });
        ASSERT_NE(row, std::end(rows));
        EXPECT_EQ(findings.verdict(), row->verdict);
        EXPECT_EQ(exampleOf(code)->severity, row->severity);
    }
}

TEST(FindingCodeTest, EachApplicationHasItsOwnVerdictAndTheFileTheWorst)
{
    Image image = driverV2();
    image.remove(0x0505, signatureG1);
    const VerificationReport report = verifyImage(image.bytes(), rootsIn({rootFileG1()}));
    ASSERT_EQ(report.applications.size(), 2U);
    EXPECT_EQ(report.applications[0].verdict, Verdict::Unproven);
    EXPECT_EQ(report.applications[1].verdict, Verdict::RootUnknown);
    EXPECT_EQ(report.verdict, Verdict::Unproven);
}

} // namespace
