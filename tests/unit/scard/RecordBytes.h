#pragma once

#include "Image.h"

#include <scard/records/TextFields.h>

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string>

// Records of cards put together from literal values.

namespace test {

constexpr std::uint32_t notKnown = 0xFFFFFFFF;

/// The low @p count bytes of @p value, first byte highest.
Bytes number(std::uint32_t value, std::size_t count);

/// A time, four bytes.
Bytes timeReal(std::uint32_t seconds);

/// @p text, filled up with blanks or cut.
Bytes field(const std::string& text, std::size_t length);

/// A name field, filled up with blanks.
scard::Name nameField(unsigned char codePage, const std::string& text);

/// The bytes of a record.
template <typename Record>
Bytes recordBytes(const Record& record)
{
    const auto* first = reinterpret_cast<const unsigned char*>(&record);
    return {first, first + sizeof record};
}

/// A certificate of the second generation of @p length bytes, its own length by the encoding that fits.
Bytes certificate(std::size_t length);

/// Pieces one behind the other.
Bytes joined(std::initializer_list<Bytes> pieces);

/// A vehicle registration, 15 bytes.
Bytes registration(unsigned char nation, unsigned char codePage, const std::string& text);

/// An event or a fault, 24 bytes.
Bytes eventRecord(
    unsigned char type, std::uint32_t begin, std::uint32_t end,
    const Bytes& vehicle = registration(0x0D, 1, "B AB 1234"));

/// A vehicle of the first generation, 31 bytes.
Bytes vehicleRecord(
    std::uint32_t odometerBegin, std::uint32_t odometerEnd, std::uint32_t firstUse, std::uint32_t lastUse,
    const Bytes& vehicle = registration(0x0D, 1, "B AB 1234"));

/// An EF of @p size zeros with @p record at @p offset.
Bytes efWith(std::size_t size, std::size_t offset, const Bytes& record);

/// Puts @p record into @p ef at @p offset.
void put(Bytes& ef, std::size_t offset, const Bytes& record);

} // namespace test
