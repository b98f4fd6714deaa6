#pragma once

#include <scard/records/ImageRecord.h>

#include <QByteArray>
#include <QString>

#include <vector>

// A download file as records, whatever is in it; what they mean is the library's business.

/// One record, where it stands and how much of it is there.
struct ImageRecord
{
    qint64 offset = 0;            ///< of the header, bytes from the start of the file
    scard::RecordHeader header{}; ///< says how long the payload should be
    qint64 available = 0;         ///< bytes of payload that are there

    bool isWhole() const { return available == header.length; }
    bool isSecondGeneration() const;
    bool isSignature() const;

    /// True for one of the four types that the regulation knows.
    bool hasKnownType() const;

    /// Name of the EF; empty when the number is unknown.
    QString efName() const;
};

/// A number in as many digits as it is written with: "050E".
QString paddedHexadecimal(unsigned int number, int digits);

/// The number of an EF as people write it.
QString fidText(unsigned short fid);

struct ImageFile
{
    QByteArray bytes;
    std::vector<ImageRecord> records; ///< the last may be cut short
    qint64 trailing = 0;              ///< bytes behind the records that are too few for a header

    /// True when the last record is cut short or too few bytes for another one follow.
    bool isCut() const;

    /// Whole signatures of at least one byte.
    int signatures() const;

    /// SHA-256 of the file, lower-case hexadecimal.
    QString sha256() const;
};

/// The records in @p bytes, one behind the other.
ImageFile imageFileOf(const QByteArray& bytes);
