#pragma once

#include <array>
#include <cstddef>
#include <vector>

// Command APDUs of tachograph cards (ISO 7816-4, Appendix 2) as bytes, and what is inside an answer.

namespace scard::detail {

/// Success of a command.
constexpr unsigned short statusSuccess = 0x9000;
/// Success as some cards say it; the data is good.
constexpr unsigned short statusSuccessAlternative = 0x90E4;
/// File or application not found.
constexpr unsigned short statusFileNotFound = 0x6A82;

/// Bytes of the status word at the end of each answer.
constexpr unsigned long statusWordLength = 2;

/// A command whose length depends on its arguments.
struct ShortCommand
{
    std::array<unsigned char, 11> bytes{};
    std::size_t length = 0;
};

/// SELECT of an EF under the current DF.
std::array<unsigned char, 7> selectByFid(unsigned short fid);

/// SELECT of an application; @p name holds @p length bytes, at most six.
ShortCommand selectByName(const char* name, std::size_t length);

/// READ BINARY of @p length bytes; 0 asks for 256.
std::array<unsigned char, 5> readBinary(unsigned short offset, unsigned char length);

/// READ BINARY with odd instruction byte: the offset travels in a data object, which also reaches
/// offsets of 32,768 and more. The card returns as much as one answer holds.
ShortCommand readBinaryOdd(unsigned short offset);

/// UPDATE BINARY with the @p length bytes at @p data.
std::vector<unsigned char>
updateBinary(unsigned short offset, unsigned char length, const unsigned char* data);

/// PERFORM HASH OF FILE: the card hashes the whole EF that is selected.
std::array<unsigned char, 4> performHashOfFile();

/// PSO: COMPUTE DIGITAL SIGNATURE over the last hash.
std::array<unsigned char, 5> computeDigitalSignature(unsigned char signatureLength);

/// How many bytes stand before the data in an answer to READ BINARY with odd instruction byte
/// (tag 53 and the length field); never more than @p length.
std::size_t dataObjectHeaderLength(const unsigned char* answer, std::size_t length);

} // namespace scard::detail
