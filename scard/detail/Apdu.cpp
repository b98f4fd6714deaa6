#include <scard/detail/Apdu.h>

#include <algorithm>

namespace scard::detail {

namespace {

constexpr unsigned char high(unsigned short number)
{
    return static_cast<unsigned char>(number >> 8);
}
constexpr unsigned char low(unsigned short number)
{
    return static_cast<unsigned char>(number & 0xFF);
}

} // namespace

std::array<unsigned char, 7> selectByFid(unsigned short fid)
{
    return {0x00, 0xA4, 0x02, 0x0C, 0x02, high(fid), low(fid)};
}

ShortCommand selectByName(const char* name, std::size_t length)
{
    ShortCommand command{{0x00, 0xA4, 0x04, 0x0C, static_cast<unsigned char>(length)}, 5 + length};
    std::copy_n(name, length, command.bytes.begin() + 5);
    return command;
}

std::array<unsigned char, 5> readBinary(unsigned short offset, unsigned char length)
{
    return {0x00, 0xB0, high(offset), low(offset), length};
}

ShortCommand readBinaryOdd(unsigned short offset)
{
    if (offset <= 0xFF)
        return {{0x00, 0xB1, 0x00, 0x00, 0x03, 0x54, 0x01, low(offset), 0x00}, 9};
    return {{0x00, 0xB1, 0x00, 0x00, 0x04, 0x54, 0x02, high(offset), low(offset), 0x00}, 10};
}

std::vector<unsigned char>
updateBinary(unsigned short offset, unsigned char length, const unsigned char* data)
{
    const std::array<unsigned char, 5> header{0x00, 0xD6, high(offset), low(offset), length};
    std::vector<unsigned char> command(header.size() + length);
    std::copy(header.begin(), header.end(), command.begin());
    std::copy_n(data, length, command.begin() + header.size());
    return command;
}

std::array<unsigned char, 4> performHashOfFile()
{
    return {0x80, 0x2A, 0x90, 0x00};
}

std::array<unsigned char, 5> computeDigitalSignature(unsigned char signatureLength)
{
    return {0x00, 0x2A, 0x9E, 0x9A, signatureLength};
}

std::size_t dataObjectHeaderLength(const unsigned char* answer, std::size_t length)
{
    constexpr unsigned char discretionaryData = 0x53;
    std::size_t header = 2;
    if (length >= 2 && answer[0] == discretionaryData) {
        if (answer[1] == 0x82)
            header = 4;
        else if (answer[1] == 0x81)
            header = 3;
    }
    return std::min(header, length);
}

} // namespace scard::detail
