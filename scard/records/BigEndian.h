#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

/// @file
/// Numbers in the card's byte order.

namespace scard {

/// The number that @p count bytes (1 to 4) at @p bytes hold, first byte highest: the card's byte order.
constexpr std::uint32_t fromBigEndian(const unsigned char* bytes, std::size_t count)
{
    std::uint32_t number = 0;
    for (std::size_t i = 0; i < count; ++i)
        number = (number << 8) | bytes[i];
    return number;
}

/// The low @p Count bytes of @p number, first byte highest.
/// @tparam Count 1 to 4
/// @param  number what is converted
template <std::size_t Count>
constexpr std::array<unsigned char, Count> toBigEndian(std::uint32_t number)
{
    static_assert(Count >= 1 && Count <= 4, "a card number has one to four bytes");
    std::array<unsigned char, Count> bytes{};
    for (std::size_t i = Count; i-- > 0; number >>= 8)
        bytes[i] = static_cast<unsigned char>(number & 0xFF);
    return bytes;
}

/// An unsigned number inside a record: the card's bytes, converted only where it is used.
/// @tparam Count bytes, 1 to 4
template <std::size_t Count>
struct BigEndian
{
    unsigned char bytes[Count]; ///< as the card stores them, first byte highest

    /// The number.
    constexpr std::uint32_t value() const { return fromBigEndian(bytes, Count); }
};

/// A number of two bytes.
using UInt16 = BigEndian<2>;

/// Kilometres, 24 bits (OdometerShort): 0 to 9,999,999.
using OdometerShort = BigEndian<3>;

/// Seconds since 1970-01-01 00:00 UTC (TimeReal). 0 in records never used, FFFFFFFF for "not known".
using TimeReal = BigEndian<4>;

} // namespace scard
