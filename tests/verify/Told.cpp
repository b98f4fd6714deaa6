#include "Told.h"

#include "Roots.h"

#include <scard/ElementaryFile.h>
#include <scardverify/VerifyImage.h>

#include <gmock/gmock.h>

#include <ostream>
#include <tuple>

namespace test {

namespace verify = scard::verify;

bool Told::operator==(const Told& other) const
{
    return std::tie(code, severity, fid, offset, text) ==
           std::tie(other.code, other.severity, other.fid, other.offset, other.text);
}

void PrintTo(const Told& told, std::ostream* stream)
{
    *stream << "code " << static_cast<int>(told.code) << ", severity " << static_cast<int>(told.severity)
            << ", EF " << std::hex << told.fid << std::dec << ", at " << told.offset << ": " << told.text;
}

std::vector<Told> toldOf(const verify::VerificationReport& report)
{
    std::vector<Told> told;
    const auto take = [&told](const std::vector<verify::Finding>& findings) {
        for (const verify::Finding& each : findings)
            told.push_back({each.code, each.severity, each.fid, each.offset, each.text.toStdString()});
    };
    take(report.findings);
    for (const verify::ApplicationReport& application : report.applications)
        take(application.findings);
    return told;
}

void expectTold(
    const Image& image, verify::Verdict verdict, const std::vector<Expected>& expected,
    const QDateTime& downloadedAt)
{
    const verify::VerificationReport report = verify::verifyImage(image.bytes(), allRoots(), downloadedAt);
    EXPECT_EQ(report.verdict, verdict);
    std::vector<Told> told;
    for (const Expected& each : expected) {
        const long long offset =
            each.type == noRecord ? -1 : image.offsetOf(each.fid, each.type, each.occurrence);
        told.push_back({each.code, each.severity, each.fid, offset, each.text});
    }
    EXPECT_THAT(toldOf(report), testing::ElementsAreArray(told));
}

std::vector<Expected> operator+(std::vector<Expected> some, const std::vector<Expected>& others)
{
    some.insert(some.end(), others.begin(), others.end());
    return some;
}

std::vector<Expected> invalidSignatures(const Image& image, unsigned int dataType)
{
    std::vector<Expected> expected;
    for (const Record& record : image.records) {
        if (record.type != dataType + 1)
            continue;
        const QString name = scard::efName(static_cast<unsigned short>(record.fid), dataType == dataG2);
        expected.push_back(
            {verify::FindingCode::SignatureInvalid, verify::Severity::Altered, record.fid, dataType,
             name.toStdString() +
                 ": the signature does not hold. Data or signature was changed, or they are of two cards."});
    }
    return expected;
}

std::vector<verify::FindingCode> codesOf(const verify::VerificationReport& report)
{
    std::vector<verify::FindingCode> codes;
    for (const Told& each : toldOf(report))
        codes.push_back(each.code);
    return codes;
}

std::vector<std::string> textsOf(const verify::VerificationReport& report)
{
    std::vector<std::string> texts;
    for (const Told& each : toldOf(report))
        texts.push_back(each.text);
    return texts;
}

} // namespace test

namespace scard::verify {

void PrintTo(Verdict verdict, std::ostream* stream)
{
    const char* const names[] = {"Genuine", "RootUnknown", "Unproven", "Altered"};
    *stream << names[static_cast<int>(verdict)];
}

void PrintTo(FindingCode code, std::ostream* stream)
{
    *stream << "code " << static_cast<int>(code);
}

} // namespace scard::verify
