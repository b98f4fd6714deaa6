#pragma once

#include <scardverify/VerificationReport.h>

// What the enumerations of a report are called.

struct Word
{
    const char* key;  ///< for programs, snake_case; stays as it is for ever
    const char* text; ///< for people
};

Word wordFor(scard::verify::Verdict verdict);
Word wordFor(scard::verify::SignatureVerdict verdict);
Word wordFor(scard::verify::CertificateVerdict verdict);
Word wordFor(scard::verify::CertificateRole role);
Word wordFor(scard::verify::Severity severity);

/// The key of a finding, which has a sentence of its own.
const char* findingKey(scard::verify::FindingCode code);
