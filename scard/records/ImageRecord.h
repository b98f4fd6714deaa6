#pragma once

#include <scard/records/BigEndian.h>

#include <cstddef>
#include <cstdint>

// The download image: records one behind the other, each FID (2 bytes), type (1), length (2), payload;
// numbers big-endian; no header, no trailer.

namespace scard {

enum class RecordType : unsigned char
{
    DataG1 = 0x00,
    SignatureG1 = 0x01,
    DataG2 = 0x02,
    SignatureG2 = 0x03,
};

constexpr std::size_t recordHeaderLength = 5;

/// What stands before a record's payload.
struct RecordHeader
{
    std::uint16_t fid;
    RecordType type;      ///< any byte may stand there in files of other programs
    std::uint16_t length; ///< bytes of payload
};

/// The header in the first recordHeaderLength bytes at @p bytes.
constexpr RecordHeader recordHeaderAt(const unsigned char* bytes)
{
    return {
        static_cast<std::uint16_t>(fromBigEndian(bytes, 2)), static_cast<RecordType>(bytes[2]),
        static_cast<std::uint16_t>(fromBigEndian(bytes + 3, 2))};
}

} // namespace scard
