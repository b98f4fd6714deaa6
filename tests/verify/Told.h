#pragma once

#include "Image.h"

#include <scardverify/VerificationReport.h>

#include <iosfwd>
#include <string>
#include <vector>

// What a verification found, in a form that tests compare and show.

namespace test {

/// A finding as a row of a test.
struct Told
{
    scard::verify::FindingCode code;
    scard::verify::Severity severity;
    unsigned int fid;
    long long offset;
    std::string text;

    bool operator==(const Told& other) const;
};

void PrintTo(const Told& told, std::ostream* stream);

/// All findings: those of the file, then those of each application.
std::vector<Told> toldOf(const scard::verify::VerificationReport& report);

constexpr unsigned int noRecord = 0xFFFFFFFF;

/// A finding as a test expects it.
struct Expected
{
    scard::verify::FindingCode code;
    scard::verify::Severity severity;
    unsigned int fid;
    unsigned int type; ///< of the record that it is about, or noRecord
    std::string text;
    int occurrence = 0; ///< 1: about the second such record
};

/// Verifies @p image with all roots of the simulated cards: the verdict and all findings, in their order.
void expectTold(
    const Image& image, scard::verify::Verdict verdict, const std::vector<Expected>& expected,
    const QDateTime& downloadedAt = {});

std::vector<Expected> operator+(std::vector<Expected> some, const std::vector<Expected>& others);

/// That no signature of a generation in @p image holds, in the order of the file.
std::vector<Expected> invalidSignatures(const Image& image, unsigned int dataType);

/// Their codes.
std::vector<scard::verify::FindingCode> codesOf(const scard::verify::VerificationReport& report);

/// Their sentences.
std::vector<std::string> textsOf(const scard::verify::VerificationReport& report);

} // namespace test

namespace scard::verify {

void PrintTo(Verdict verdict, std::ostream* stream);
void PrintTo(FindingCode code, std::ostream* stream);

} // namespace scard::verify
