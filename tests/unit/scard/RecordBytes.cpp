#include "RecordBytes.h"

#include <algorithm>
#include <cstring>

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

scard::Name nameField(unsigned char codePage, const std::string& text)
{
    scard::Name field{};
    field.codePage = codePage;
    std::fill(std::begin(field.name), std::end(field.name), static_cast<unsigned char>(' '));
    std::memcpy(field.name, text.data(), std::min(text.size(), sizeof field.name));
    return field;
}

Bytes certificate(std::size_t length)
{
    Bytes bytes = counted(length);
    if (length < 131)
        put(bytes, 0, joined({{0x7F, 0x21}, number(static_cast<std::uint32_t>(length - 3), 1)}));
    else if (length < 260)
        put(bytes, 0, joined({{0x7F, 0x21, 0x81}, number(static_cast<std::uint32_t>(length - 4), 1)}));
    else
        put(bytes, 0, joined({{0x7F, 0x21, 0x82}, number(static_cast<std::uint32_t>(length - 5), 2)}));
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
