#include "RecordBytes.h"

#include <algorithm>

namespace test {

Bytes number(std::uint32_t value, std::size_t count)
{
    Bytes bytes(count);
    for (std::size_t i = count; i-- > 0; value >>= 8)
        bytes[i] = static_cast<unsigned char>(value & 0xFF);
    return bytes;
}

Bytes timeReal(std::uint32_t seconds)
{
    return number(seconds, 4);
}

Bytes field(const std::string& text, std::size_t length)
{
    Bytes bytes = bytesOf(text);
    bytes.resize(length, ' ');
    return bytes;
}

Bytes joined(std::initializer_list<Bytes> pieces)
{
    Bytes bytes;
    for (const Bytes& piece : pieces)
        bytes.insert(bytes.end(), piece.begin(), piece.end());
    return bytes;
}

Bytes registration(unsigned char nation, unsigned char codePage, const std::string& text)
{
    return joined({{nation, codePage}, field(text, 13)});
}

Bytes eventRecord(unsigned char type, std::uint32_t begin, std::uint32_t end, const Bytes& vehicle)
{
    return joined({{type}, timeReal(begin), timeReal(end), vehicle});
}

Bytes vehicleRecord(
    std::uint32_t odometerBegin, std::uint32_t odometerEnd, std::uint32_t firstUse, std::uint32_t lastUse,
    const Bytes& vehicle)
{
    return joined(
        {number(odometerBegin, 3), number(odometerEnd, 3), timeReal(firstUse), timeReal(lastUse), vehicle,
         number(0x0123, 2)});
}

Bytes efWith(std::size_t size, std::size_t offset, const Bytes& record)
{
    Bytes ef(size);
    put(ef, offset, record);
    return ef;
}

void put(Bytes& ef, std::size_t offset, const Bytes& record)
{
    std::copy(record.begin(), record.end(), ef.begin() + static_cast<std::ptrdiff_t>(offset));
}

} // namespace test
