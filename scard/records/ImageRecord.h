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

/// Where a record lies in an image.
struct RecordPlace
{
    std::size_t offset;    ///< of the header, bytes from the start of the image
    RecordHeader header;   ///< says how long the payload should be
    std::size_t available; ///< bytes of payload that are there: fewer when the image ends inside it

    /// Of the payload.
    constexpr std::size_t begin() const { return offset + recordHeaderLength; }

    /// True when all of the payload is there.
    constexpr bool isWhole() const { return available == header.length; }
};

/// Calls @p visit with the RecordPlace of each record of an image, in order. The last may be cut.
/// @param bytes the image
/// @param size  its bytes
/// @param visit what is called
/// @return where the records end: what stands behind is too short for a header
template <typename Visit>
std::size_t visitRecords(const unsigned char* bytes, std::size_t size, Visit visit)
{
    std::size_t position = 0;
    while (size - position >= recordHeaderLength) {
        RecordPlace place{position, recordHeaderAt(bytes + position), 0};
        const std::size_t left = size - place.begin();
        place.available = left < place.header.length ? left : place.header.length;
        position = place.begin() + place.available;
        visit(place);
    }
    return position;
}

} // namespace scard
