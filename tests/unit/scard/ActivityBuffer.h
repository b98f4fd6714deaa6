#pragma once

#include "Image.h"

#include <cstddef>
#include <cstdint>
#include <vector>

// The cyclic buffer of a card's daily activities, byte by byte.

namespace test {

enum Activity : unsigned int
{
    rest,
    available,
    work,
    driving
};

constexpr std::size_t dayHeaderLength = 12;

/// A change made with the card in slot 1, single.
constexpr unsigned int change(Activity activity, unsigned int minute)
{
    return activity << 11 | minute;
}

constexpr unsigned int notInserted = 1U << 13; ///< bit of a change made without the card
constexpr unsigned int known = 1U << 14;       ///< beside it: the holder entered the activity by hand
constexpr unsigned int crew = 1U << 14;        ///< with the card inserted
constexpr unsigned int coDriver = 1U << 15;

/// Lays day records into a buffer, each position taken modulo the buffer's length.
class ActivityBuffer
{
  public:
    explicit ActivityBuffer(std::size_t length, unsigned char fill = 0);

    std::size_t length() const { return m_bytes.size(); }
    bool isEmpty() const { return !m_hasDay; }

    /// The next day begins here.
    ActivityBuffer& at(std::size_t position);

    /// A day behind the one before; it is the newest from now on, and the oldest when it is the first.
    ActivityBuffer& day(std::uint32_t seconds, const std::vector<unsigned int>& words);

    /// A day whose length says @p recordLength; the next day begins that much behind it.
    ActivityBuffer&
    day(std::uint32_t seconds, const std::vector<unsigned int>& words, unsigned int recordLength);

    ActivityBuffer& put(std::size_t position, const Bytes& bytes);
    ActivityBuffer& oldest(unsigned int pointer);
    ActivityBuffer& newest(unsigned int pointer);

    /// EF_Driver_Activity_Data: the two pointers and the buffer.
    Bytes payload() const;

  private:
    Bytes m_bytes;
    std::size_t m_next = 0;
    unsigned int m_oldest = 0;
    unsigned int m_newest = 0;
    bool m_hasDay = false;
};

/// The small driver card with this buffer.
Image imageWith(const ActivityBuffer& buffer);

} // namespace test
