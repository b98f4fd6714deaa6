#include "Image.h"

#include <cli/Downloads.h>
#include <simulator/TestPki.h>
#include <simulator/TestPkiG2.h>
#include <support/DownloadScript.h>
#include <support/FileRecords.h>

#include <algorithm>
#include <stdexcept>

namespace test {

QByteArray Record::bytes() const
{
    sim::Bytes header;
    sim::appendU16(header, fid);
    sim::appendU8(header, type);
    sim::appendU16(header, static_cast<std::uint32_t>(payload.size()));
    return arrayOf(header) + payload;
}

Image::Image(const QByteArray& file)
{
    for (const FileRecord& record : recordsOf(file))
        records.push_back({record.fid, record.type, file.mid(record.begin(), record.length)});
}

QByteArray Image::bytes() const
{
    QByteArray all;
    for (const Record& record : records)
        all += record.bytes();
    return all;
}

std::vector<Record>::iterator Image::find(unsigned int fid, unsigned int type)
{
    const auto found = std::find_if(records.begin(), records.end(), [&](const Record& record) {
        return record.fid == fid && record.type == type;
    });
    if (found == records.end())
        throw std::invalid_argument("the download has no such record");
    return found;
}

QByteArray& Image::payload(unsigned int fid, unsigned int type)
{
    return find(fid, type)->payload;
}

const QByteArray& Image::payload(unsigned int fid, unsigned int type) const
{
    return const_cast<Image*>(this)->payload(fid, type);
}

long long Image::offsetOf(unsigned int fid, unsigned int type, int occurrence) const
{
    long long offset = 0;
    int before = 0;
    for (const Record& record : records) {
        if (record.fid == fid && record.type == type && before++ == occurrence)
            return offset;
        offset += record.bytes().size();
    }
    throw std::invalid_argument("the download has no such record");
}

Image& Image::remove(unsigned int fid, unsigned int type)
{
    records.erase(find(fid, type));
    return *this;
}

Image& Image::removeEf(unsigned int fid, unsigned int dataType)
{
    return remove(fid, dataType).remove(fid, dataType + 1);
}

Image& Image::append(const Record& record)
{
    records.push_back(record);
    return *this;
}

Image& Image::insertBehind(unsigned int fid, unsigned int type, const Record& record)
{
    records.insert(find(fid, type) + 1, record);
    return *this;
}

Image& Image::sign(unsigned int fid, unsigned int dataType)
{
    payload(fid, dataType + 1) = cardSignature(payload(fid, dataType), dataType);
    return *this;
}

Image driver()
{
    return Image(smallDownload("driver").file);
}

Image driverV2()
{
    return Image(smallDownload("driverV2").file);
}

Image secondAlone()
{
    return Image(secondOf(smallDownload("driverV2").file));
}

QByteArray secondOf(const QByteArray& file)
{
    return without(file, [](const FileRecord& record) { return record.type < dataG2; });
}

QByteArray cardSignature(const QByteArray& data, unsigned int dataType)
{
    const auto signer = dataType == dataG1 ? sim::cardSignerG1() : sim::cardSignerG2(sim::Curve::NistP256);
    return arrayOf(signer->sign(test::bytes(data)));
}

QByteArray arrayOf(const sim::Bytes& bytes)
{
    return {reinterpret_cast<const char*>(bytes.data()), static_cast<int>(bytes.size())};
}

QByteArray with(QByteArray bytes, int offset, const QByteArray& others)
{
    return bytes.replace(offset, others.size(), others);
}

} // namespace test
