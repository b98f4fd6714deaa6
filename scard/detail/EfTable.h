#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

// The description of a card application: one row an EF. What a download adds up, reads and saves
// follows from the rows; a new EF is a new row, a new kind of card is a new table.

namespace scard::detail {

/// How many records a piece of an EF has: a fixed number, what an identification EF of the same
/// application says, or what the EF says itself.
struct RecordCount
{
    enum class From
    {
        Number,
        Field,
        CertificateHeader
    };

    From from = From::Number;
    std::uint32_t number = 0;
    unsigned short fid = 0;      ///< EF of the field
    std::size_t fieldOffset = 0; ///< bytes from the start of that EF
    std::size_t fieldLength = 0; ///< bytes of the big-endian number
};

constexpr RecordCount fixedCount(std::uint32_t number)
{
    return {RecordCount::From::Number, number, 0, 0, 0};
}

constexpr RecordCount countField(unsigned short fid, std::size_t offset, std::size_t length)
{
    return {RecordCount::From::Field, 0, fid, offset, length};
}

/// As many bytes as the certificate at the start of the EF announces.
constexpr RecordCount certificateLength()
{
    return {RecordCount::From::CertificateHeader, 0, 0, 0, 0};
}

/// The count that a field of an identification record gives.
#define SCARD_COUNT_FIELD(fid, Record, field)                                                                \
    ::scard::detail::countField(fid, offsetof(Record, field), sizeof(Record::field))

/// Records of one size that stand one behind the other. Pieces of an EF follow each other from its start.
struct Piece
{
    std::size_t recordSize = 1; ///< bytes
    RecordCount count;          ///< records in a group
    unsigned short groups = 1;
};

template <typename Record>
constexpr Piece records(RecordCount count, unsigned short groups = 1)
{
    return {sizeof(Record), count, groups};
}

template <typename Record>
constexpr Piece one()
{
    return records<Record>(fixedCount(1));
}

enum class Signing
{
    Unsigned,
    Signed
};

/// What a failed read means for an object on an image; on a card every failure ends the download.
enum class InImage
{
    Required,
    Optional
};

/// When the bytes of an EF come to the object.
enum class ReadAt
{
    Identification,
    Download
};

/// Which cards of the table's generation have the EF.
enum class OnCards
{
    All,
    Version2_2
};

/// An EF by its number and by the words for it.
struct EfName
{
    unsigned short fid;
    const char* name;        ///< as the debug stream gets it
    const char* failureText; ///< words before a failure; none for an EF that the identification reads
};

struct EfRow : EfName
{
    std::vector<Piece> pieces;
    Signing signing = Signing::Unsigned;
    InImage inImage = InImage::Required;
    ReadAt readAt = ReadAt::Download;
    OnCards onCards = OnCards::All;
};

/// An EF whose record counts the total needs.
struct CountsEf
{
    unsigned short fid;
    const char* failureText; ///< of the total's entry when it cannot be read
};

/// Where a step's own entry stands among the entries of what made it fail.
enum class OwnEntry
{
    First,
    Last
};

/// What the error of a failed EF says; the debug stream has the row's text in either case.
enum class EfFailure
{
    ReadersOnly, ///< the dataset reader's entries as they are
    RowsText     ///< the row's text behind them
};

struct EfTable
{
    std::string applicationName;
    bool secondGeneration = false;         ///< of signatures and of the image's record types
    std::vector<EfRow> rows;               ///< in reading order
    std::vector<unsigned short> saveOrder; ///< FIDs in the order of the download image
    std::vector<CountsEf> counts;          ///< in reading order
    const char* readingText = nullptr;     ///< of the debug stream when reading begins
    OwnEntry totalEntry = OwnEntry::First; ///< of calcDataToRead()
    OwnEntry stepEntry = OwnEntry::First;  ///< of read() and saveToFile()
    EfFailure efFailure = EfFailure::ReadersOnly;
};

} // namespace scard::detail
