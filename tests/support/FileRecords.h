#pragma once

#include <simulator/Bytes.h>

#include <QByteArray>

#include <cstddef>
#include <vector>

// The records of a download's file.

namespace test {

/// A record by the places of its bytes, counted as the bytes of the file are.
template <typename Place>
struct RecordExtent
{
    Place offset = 0; ///< of the header
    unsigned int fid = 0;
    unsigned int type = 0;
    Place length = 0; ///< of the payload

    Place begin() const { return offset + 5; } ///< of the payload
    Place end() const { return begin() + length; }
};

using FileRecord = RecordExtent<int>;

/// The records in their order; the last one may be cut, a cut header is left out.
std::vector<FileRecord> recordsOf(const QByteArray& file);
std::vector<RecordExtent<std::size_t>> recordsOf(const sim::Bytes& file);

/// The record of @p fid and @p type; the test fails when there is none.
FileRecord recordOf(const QByteArray& file, unsigned int fid, unsigned int type = 0);
RecordExtent<std::size_t> recordOf(const sim::Bytes& file, unsigned int fid, unsigned int type = 0);

/// @p file without the records that @p isUnwanted accepts.
template <typename Predicate>
QByteArray without(const QByteArray& file, Predicate isUnwanted)
{
    QByteArray rest;
    for (const FileRecord& record : recordsOf(file)) {
        if (!isUnwanted(record))
            rest += file.mid(record.offset, record.end() - record.offset);
    }
    return rest;
}

} // namespace test
