#pragma once

#include "../ExitCode.h"

#include <scardverify/VerificationReport.h>

#include <QByteArray>
#include <QDateTime>
#include <QString>

#include <vector>

/// A download and what its signatures say.
struct Verification
{
    QDateTime downloadedAt; ///< UTC; null when the name of the file does not say it
    scard::verify::VerificationReport report;

    // Signatures of both applications.
    int expected = 0;  ///< that are there, or should be
    int valid = 0;     ///< that hold
    int unchecked = 0; ///< for which no certificate gives the key

    /// True when each signature holds by the card's own certificates, and these lead to the root key of
    /// their generation where one was given.
    bool holdsByItself(const std::vector<scard::verify::RootKey>& roots) const;
};

/// A file that was verified for its own sake.
struct VerifiedFile
{
    QString path;
    qint64 size = 0; ///< bytes
    QString sha256;  ///< lower-case hexadecimal
    Verification verification;
};

/// Checks the download with the bytes @p bytes.
Verification verificationOf(
    const QString& path, const QByteArray& bytes, const std::vector<scard::verify::RootKey>& roots);

/// How the program ends after it.
ExitCode exitCodeOf(scard::verify::Verdict verdict);

// Words for people, which programs get as they are.

/// "genuine: 32 of 32 signatures hold, up to the root keys that were given"
QString verdictSentence(const Verification& verification);

/// "first generation"
QString applicationName(scard::verify::Generation generation);
