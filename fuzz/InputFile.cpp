#include "InputFile.h"

#include "Target.h"

namespace fuzz {

InputFile::InputFile(const std::uint8_t* data, std::size_t size)
{
    const auto length = static_cast<qint64>(size);
    const bool isWritten = m_file.open() &&
                           m_file.write(reinterpret_cast<const char*>(data), length) == length &&
                           m_file.flush() && m_file.seek(0);
    expect(isWritten, "there is room for a file");
    // Without a name it does not exist, as QFile sees it.
    expect(QFile::exists(m_file.fileName()) && m_file.exists(), "the file has a name");
}

} // namespace fuzz
