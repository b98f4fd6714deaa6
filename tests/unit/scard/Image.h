#pragma once

#include <QFile>
#include <QTemporaryDir>

#include <cstddef>
#include <string>
#include <vector>

// Download images made by hand.

namespace test {

using Bytes = std::vector<unsigned char>;

constexpr unsigned char dataG1 = 0x00;
constexpr unsigned char signatureG1 = 0x01;
constexpr unsigned char dataG2 = 0x02;
constexpr unsigned char signatureG2 = 0x03;

/// Of the structure of a second-generation card; the second one is called version 2.2.
enum class Version
{
    first,
    second
};

/// The bytes of @p text.
Bytes bytesOf(const std::string& text);

/// @p count bytes that count up from @p first.
Bytes counted(std::size_t count, unsigned char first = 0);

class Image
{
  public:
    Image& add(unsigned short fid, unsigned char type, const Bytes& payload);

    /// A data record of type @p type and a signature of that generation's length behind it.
    Image& addSigned(unsigned short fid, unsigned char type, const Bytes& payload);

    /// The records of @p other behind those that are there.
    Image& append(const Image& other);

    /// Leaves out every record of an EF.
    Image& without(unsigned short fid);

    /// Gives the data records of an EF another payload.
    Image& replace(unsigned short fid, const Bytes& payload);

    /// The records one behind the other.
    Bytes bytes() const;

  private:
    struct Record
    {
        unsigned short fid;
        unsigned char type;
        Bytes payload;
    };

    std::vector<Record> m_records;
};

/// A temporary file with these bytes, open for reading.
class ImageFile : public QFile
{
  public:
    explicit ImageFile(const Image& image);
    explicit ImageFile(const Bytes& bytes);

  private:
    QTemporaryDir m_folder;
};

} // namespace test
