#include "DataObjects.h"

#include <scard/records/BigEndian.h>

namespace scard::verify::detail {

namespace {

/// The length at the front of @p bytes, and how many bytes it takes.
struct Length
{
    int value = 0;
    int bytes = 0;
};

/// Lengths have one byte up to 7F, or as many as the low bits of the first byte say.
std::optional<Length> lengthAt(const QByteArray& bytes, int position)
{
    constexpr int longForm = 0x80;
    const auto* data = reinterpret_cast<const unsigned char*>(bytes.constData()) + position;
    const int left = bytes.size() - position;
    if (left < 1)
        return std::nullopt;
    if (data[0] < longForm)
        return Length{data[0], 1};
    const int count = data[0] - longForm;
    if (count < 1 || count > 2 || left < 1 + count)
        return std::nullopt;
    const auto value = static_cast<int>(fromBigEndian(data + 1, static_cast<std::size_t>(count)));
    const int smallest = count == 1 ? longForm : 0x100;
    return value < smallest ? std::nullopt : std::make_optional(Length{value, 1 + count});
}

} // namespace

std::optional<QByteArray> DataObjects::take(const QByteArray& tag)
{
    if (m_bytes.mid(m_position, tag.size()) != tag)
        return std::nullopt;
    const int position = m_position + tag.size();
    const std::optional<Length> length = lengthAt(m_bytes, position);
    if (!length || length->value > m_bytes.size() - position - length->bytes)
        return std::nullopt;
    m_position = position + length->bytes + length->value;
    return m_bytes.mid(position + length->bytes, length->value);
}

std::optional<QByteArray> DataObjects::take(const QByteArray& tag, int length)
{
    const int before = m_position;
    std::optional<QByteArray> value = take(tag);
    if (value && value->size() == length)
        return value;
    m_position = before;
    return std::nullopt;
}

} // namespace scard::verify::detail
