#pragma once

#include <QTemporaryFile>

#include <cstddef>
#include <cstdint>

namespace fuzz {

/// A file of these bytes, as long as this object lives.
class InputFile
{
  public:
    InputFile(const std::uint8_t* data, std::size_t size);

    QString path() const { return m_file.fileName(); }

    /// Open for reading.
    QFile& opened() { return m_file; }

  private:
    QTemporaryFile m_file;
};

} // namespace fuzz
