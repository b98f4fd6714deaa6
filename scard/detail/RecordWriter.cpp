#include <scard/detail/RecordWriter.h>

#include <exception>

namespace scard::detail {

namespace {

/// A disk that has room for a part says why only when it is asked to take the rest, so the rest is
/// offered until all is taken or nothing more is.
bool writeAll(QFile& file, const unsigned char* bytes, std::size_t count)
{
    const char* next = reinterpret_cast<const char*>(bytes);
    for (auto left = static_cast<qint64>(count); left > 0;) {
        const qint64 written = file.write(next, left);
        if (written <= 0)
            return false;
        next += written;
        left -= written;
    }
    return true;
}

bool flushAll(QFile& file)
{
    for (qint64 left = file.bytesToWrite(); !file.flush() || file.bytesToWrite() > 0;) {
        const qint64 leftNow = file.bytesToWrite();
        if (leftNow >= left)
            return false;
        left = leftNow;
    }
    return true;
}

} // namespace

QString
appendRecord(QFile& file, unsigned short fid, RecordType type, const std::vector<unsigned char>& payload)
{
    if (!file.isOpen())
        return {};
    try {
        const auto header = recordHeader(fid, type, payload.size());
        if (writeAll(file, header.data(), header.size()) && writeAll(file, payload.data(), payload.size()) &&
            flushAll(file))
            return {};
        return file.errorString();
    } catch (const std::exception& exception) {
        return QString::fromLocal8Bit(exception.what());
    }
}

} // namespace scard::detail
