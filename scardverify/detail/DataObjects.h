#pragma once

#include <QByteArray>

#include <optional>

namespace scard::verify::detail {

/// Takes data objects (tag, length, value, as DER has them) off the front of bytes.
class DataObjects
{
  public:
    explicit DataObjects(QByteArray bytes) : m_bytes(std::move(bytes)) {}

    /// The value of the next object. Null, and nothing taken, when it has another tag, a length that is not
    /// in its shortest form, or runs beyond the end.
    std::optional<QByteArray> take(const QByteArray& tag);

    /// The same, of one length.
    std::optional<QByteArray> take(const QByteArray& tag, int length);

    /// What was taken so far, tags and lengths included.
    QByteArray taken() const { return m_bytes.left(m_position); }

    bool atEnd() const { return m_position == m_bytes.size(); }

  private:
    QByteArray m_bytes;
    int m_position = 0;
};

} // namespace scard::verify::detail
