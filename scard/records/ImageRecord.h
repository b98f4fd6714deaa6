#pragma once

#include <scard/records/BigEndian.h>

#include <cstddef>
#include <cstdint>

/// @file
/// The download image (Annex 1C, Appendix 7): records one behind the other, each FID (2 bytes), type (1),
/// length (2), payload; numbers big-endian; no header, no trailer.

namespace scard {

/// What a record's payload is: the third byte of its header.
enum class RecordType : unsigned char
{
    DataG1 = 0x00,      ///< an EF's bytes, first generation; EF_ICC and EF_IC, too
    SignatureG1 = 0x01, ///< the signature over the data record of the same EF before it, RSA, 128 bytes
    DataG2 = 0x02,      ///< an EF's bytes, second generation
    SignatureG2 = 0x03, ///< the signature, ECDSA, 64 bytes
};

/// Bytes of a record's header.
constexpr std::size_t recordHeaderLength = 5;

/// What stands before a record's payload.
struct RecordHeader
{
    std::uint16_t fid;    ///< the EF, see Fid.h
    RecordType type;      ///< any byte may stand there in files of other programs
    std::uint16_t length; ///< bytes of payload, 0 to 65,535
};

/// The header in the first recordHeaderLength bytes at @p bytes.
constexpr RecordHeader recordHeaderAt(const unsigned char* bytes)
{
    return {
        static_cast<std::uint16_t>(fromBigEndian(bytes, 2)), static_cast<RecordType>(bytes[2]),
        static_cast<std::uint16_t>(fromBigEndian(bytes + 3, 2))};
}

} // namespace scard
