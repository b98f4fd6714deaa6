#include "ActivityBuffer.h"

#include "DriverImage.h"
#include "RecordBytes.h"

namespace test {

ActivityBuffer::ActivityBuffer(std::size_t length, unsigned char fill) : m_bytes(length, fill) {}

ActivityBuffer& ActivityBuffer::at(std::size_t position)
{
    m_next = position;
    return *this;
}

ActivityBuffer& ActivityBuffer::day(std::uint32_t seconds, const std::vector<unsigned int>& words)
{
    return day(seconds, words, static_cast<unsigned int>(dayHeaderLength + 2 * words.size()));
}

ActivityBuffer&
ActivityBuffer::day(std::uint32_t seconds, const std::vector<unsigned int>& words, unsigned int recordLength)
{
    // Lengths, counter and distance that are not used must not matter.
    put(m_next, joined({{0xAA, 0xAA}, number(recordLength, 2), timeReal(seconds), {0x99, 0x98, 0x7F, 0xFE}}));
    for (std::size_t i = 0; i < words.size(); ++i)
        put(m_next + dayHeaderLength + 2 * i, number(words[i], 2));
    newest(static_cast<unsigned int>(m_next));
    if (!m_hasDay)
        oldest(m_newest);
    m_hasDay = true;
    m_next = (m_next + recordLength) % m_bytes.size();
    return *this;
}

ActivityBuffer& ActivityBuffer::put(std::size_t position, const Bytes& bytes)
{
    for (std::size_t i = 0; i < bytes.size(); ++i)
        m_bytes[(position + i) % m_bytes.size()] = bytes[i];
    return *this;
}

ActivityBuffer& ActivityBuffer::oldest(unsigned int pointer)
{
    m_oldest = pointer;
    return *this;
}

ActivityBuffer& ActivityBuffer::newest(unsigned int pointer)
{
    m_newest = pointer;
    return *this;
}

Bytes ActivityBuffer::payload() const
{
    return joined({number(m_oldest, 2), number(m_newest, 2), m_bytes});
}

Image imageWith(const ActivityBuffer& buffer)
{
    return smallDriverImage()
        .replace(
            0x0501, driverApplication(
                        smallCardEvents, smallCardFaults, static_cast<unsigned int>(buffer.length()),
                        smallCardVehicles, smallCardPlaces))
        .replace(0x0504, buffer.payload());
}

} // namespace test
