#include <scard/detail/ImageRecord.h>

#include <scard/detail/Apdu.h>
#include <scard/detail/ApplicationName.h>
#include <scard/detail/ErrorBuilder.h>
#include <scard/records/BigEndian.h>

#include <QString>

namespace scard::detail {

namespace {

/// Visits the records of the image that lie wholly within it, until @p visit says true.
/// Of a record that ends beyond the image only the header is passed, so that a record cut short does
/// not hide what stands behind it.
template <typename Visitor>
bool anyRecord(ImageView image, Visitor visit)
{
    std::size_t position = 0;
    while (position + recordHeaderLength <= image.size) {
        const RecordHeader header = recordHeaderAt(image.bytes + position);
        const std::size_t payload = position + recordHeaderLength;
        if (payload + header.length > image.size) {
            position = payload;
            continue;
        }
        if (visit(header.fid, header.type, Extent{static_cast<unsigned int>(payload), header.length}))
            return true;
        position = payload + header.length;
    }
    return false;
}

} // namespace

RecordType dataType(bool secondGeneration)
{
    return secondGeneration ? RecordType::DataG2 : RecordType::DataG1;
}

RecordType signatureType(bool secondGeneration)
{
    return secondGeneration ? RecordType::SignatureG2 : RecordType::SignatureG1;
}

std::array<unsigned char, recordHeaderLength>
recordHeader(unsigned short fid, RecordType type, std::size_t payloadLength)
{
    const auto fidBytes = toBigEndian<2>(fid);
    const auto lengthBytes = toBigEndian<2>(static_cast<std::uint32_t>(payloadLength & 0xFFFF));
    return {fidBytes[0], fidBytes[1], static_cast<unsigned char>(type), lengthBytes[0], lengthBytes[1]};
}

aux::Error findDataset(ImageView image, unsigned short fid, RecordType type, Extent& found)
{
    found = Extent{};
    if (!image.bytes)
        return libraryError(QStringLiteral("memSelectFile(): ddd file buffer not mapped"));
    const bool present =
        anyRecord(image, [&](unsigned short recordFid, RecordType recordType, Extent payload) {
            if (recordFid != fid || recordType != type)
                return false;
            found = payload;
            return true;
        });
    if (!present)
        return libraryError(QStringLiteral("memSelectFile(): Dataset not found"));
    return {};
}

aux::Error findApplication(ImageView image, const std::string& applicationName)
{
    if (image.size < recordHeaderLength)
        return libraryError(QStringLiteral("memSelectFile(): Not enough data"), statusFileNotFound);
    if (!image.bytes)
        return libraryError(QStringLiteral("memSelectFile(): ddd file buffer not mapped"));
    const RecordType wanted = dataType(applicationName == secondGenerationApplication());
    const bool present =
        anyRecord(image, [&](unsigned short, RecordType recordType, Extent) { return recordType == wanted; });
    if (!present)
        return libraryError(QStringLiteral("memSelectFile(): Dataset not found"), statusFileNotFound);
    return {};
}

std::vector<unsigned char>
copyFromDataset(ImageView image, Extent dataset, unsigned short offset, unsigned long long requested)
{
    if (offset + requested > dataset.length)
        throw libraryError(
            QStringLiteral("readFromMem() invalid dataset size:%1requested:%2")
                .arg(dataset.length)
                .arg(requested),
            imageDatasetErrorId);
    const unsigned long long start = static_cast<unsigned long long>(dataset.start) + offset;
    const unsigned long long end = start + requested;
    if (end > image.size)
        throw libraryError(
            QStringLiteral("readFromMem() data access error @offs:%1 buffer size:%2")
                .arg(end)
                .arg(image.size),
            imageDatasetErrorId);
    return {image.bytes + start, image.bytes + end};
}

} // namespace scard::detail
