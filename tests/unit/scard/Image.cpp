#include "Image.h"

#include <algorithm>

namespace test {

Bytes bytesOf(const std::string& text)
{
    return {text.begin(), text.end()};
}

Bytes counted(std::size_t count, unsigned char first)
{
    Bytes bytes(count);
    for (std::size_t i = 0; i < count; ++i)
        bytes[i] = static_cast<unsigned char>((first + i) & 0xFF);
    return bytes;
}

Image& Image::add(unsigned short fid, unsigned char type, const Bytes& payload)
{
    m_records.push_back({fid, type, payload});
    return *this;
}

Image& Image::addSigned(unsigned short fid, unsigned char type, const Bytes& payload)
{
    add(fid, type, payload);
    return type == dataG1 ? add(fid, signatureG1, Bytes(128, 0x5A)) : add(fid, signatureG2, Bytes(64, 0xA5));
}

Image& Image::append(const Image& other)
{
    m_records.insert(m_records.end(), other.m_records.begin(), other.m_records.end());
    return *this;
}

Image& Image::without(unsigned short fid)
{
    m_records.erase(
        std::remove_if(
            m_records.begin(), m_records.end(), [fid](const Record& record) { return record.fid == fid; }),
        m_records.end());
    return *this;
}

Image& Image::replace(unsigned short fid, const Bytes& payload)
{
    for (Record& record : m_records)
        if (record.fid == fid && (record.type == dataG1 || record.type == dataG2))
            record.payload = payload;
    return *this;
}

Bytes Image::bytes() const
{
    Bytes bytes;
    for (const Record& record : m_records) {
        const std::size_t length = record.payload.size();
        for (const std::size_t byte :
             {std::size_t{record.fid} >> 8, std::size_t{record.fid}, std::size_t{record.type}, length >> 8,
              length})
            bytes.push_back(static_cast<unsigned char>(byte & 0xFF));
        bytes.insert(bytes.end(), record.payload.begin(), record.payload.end());
    }
    return bytes;
}

ImageFile::ImageFile(const Image& image) : ImageFile(image.bytes()) {}

ImageFile::ImageFile(const Bytes& bytes)
{
    setFileName(m_folder.filePath(QStringLiteral("image.DDD")));
    if (open(QIODevice::WriteOnly)) {
        write(reinterpret_cast<const char*>(bytes.data()), static_cast<qint64>(bytes.size()));
        close();
    }
    open(QIODevice::ReadOnly);
}

} // namespace test
