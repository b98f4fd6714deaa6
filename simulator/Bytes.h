// Byte strings as they travel on a card's line: big-endian, one element a byte.
#pragma once

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace sim {

using Bytes = std::vector<std::uint8_t>;

inline void appendU8(Bytes& to, std::uint32_t value)
{
    to.push_back(static_cast<std::uint8_t>(value & 0xFF));
}

inline void appendU16(Bytes& to, std::uint32_t value)
{
    appendU8(to, value >> 8);
    appendU8(to, value);
}

inline void appendU24(Bytes& to, std::uint32_t value)
{
    appendU8(to, value >> 16);
    appendU16(to, value);
}

inline void appendU32(Bytes& to, std::uint32_t value)
{
    appendU16(to, value >> 16);
    appendU16(to, value);
}

inline void appendBytes(Bytes& to, const Bytes& from)
{
    to.insert(to.end(), from.begin(), from.end());
}

/// Big-endian number of two bytes; throws std::out_of_range beyond the end.
inline std::uint16_t readU16(const Bytes& from, std::size_t offset)
{
    return static_cast<std::uint16_t>(from.at(offset) << 8 | from.at(offset + 1));
}

/// Big-endian number of four bytes; throws std::out_of_range beyond the end.
inline std::uint32_t readU32(const Bytes& from, std::size_t offset)
{
    return static_cast<std::uint32_t>(readU16(from, offset)) << 16 | readU16(from, offset + 2);
}

/// A copy of `length` bytes from `offset` on; throws std::out_of_range beyond the end.
inline Bytes slice(const Bytes& from, std::size_t offset, std::size_t length)
{
    if (offset > from.size() || length > from.size() - offset) {
        throw std::out_of_range("slice beyond the end");
    }
    const auto first = from.begin() + static_cast<Bytes::difference_type>(offset);
    return Bytes(first, first + static_cast<Bytes::difference_type>(length));
}

/// "00 A4 04 0C": upper case, a blank between bytes.
inline std::string toHex(const Bytes& bytes)
{
    static constexpr char Digits[] = "0123456789ABCDEF";
    std::string text;
    for (const std::uint8_t byte : bytes) {
        if (!text.empty()) {
            text += ' ';
        }
        text += Digits[byte >> 4];
        text += Digits[byte & 0x0F];
    }
    return text;
}

/// Reads hexadecimal digits in either case, blanks anywhere; throws std::invalid_argument on anything else.
inline Bytes fromHex(std::string_view text)
{
    Bytes bytes;
    bool half = false;
    for (const char c : text) {
        std::uint32_t digit = 0;
        if (c == ' ') {
            continue;
        }
        if (c >= '0' && c <= '9') {
            digit = static_cast<std::uint32_t>(c - '0');
        } else if (c >= 'A' && c <= 'F') {
            digit = static_cast<std::uint32_t>(c - 'A') + 10;
        } else if (c >= 'a' && c <= 'f') {
            digit = static_cast<std::uint32_t>(c - 'a') + 10;
        } else {
            throw std::invalid_argument("not a hexadecimal digit");
        }
        if (half) {
            bytes.back() = static_cast<std::uint8_t>(bytes.back() * 16U + digit);
        } else {
            appendU8(bytes, digit);
        }
        half = !half;
    }
    if (half) {
        throw std::invalid_argument("odd number of hexadecimal digits");
    }
    return bytes;
}

} // namespace sim
