#include "ImageFile.h"

#include <scard/ElementaryFile.h>

#include <QCryptographicHash>

#include <algorithm>

using scard::RecordType;

bool ImageRecord::isSecondGeneration() const
{
    return header.type == RecordType::DataG2 || header.type == RecordType::SignatureG2;
}

bool ImageRecord::isSignature() const
{
    return header.type == RecordType::SignatureG1 || header.type == RecordType::SignatureG2;
}

bool ImageRecord::hasKnownType() const
{
    return isSignature() || header.type == RecordType::DataG1 || header.type == RecordType::DataG2;
}

QString ImageRecord::efName() const
{
    return scard::efName(header.fid, isSecondGeneration());
}

bool ImageFile::isCut() const
{
    return trailing > 0 || (!records.empty() && !records.back().isWhole());
}

int ImageFile::signatures() const
{
    return static_cast<int>(std::count_if(records.begin(), records.end(), [](const ImageRecord& record) {
        return record.isSignature() && record.isWhole() && record.available > 0;
    }));
}

QString ImageFile::sha256() const
{
    return QString::fromLatin1(QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex());
}

QString paddedHexadecimal(unsigned int number, int digits)
{
    return QString::number(number, 16).toUpper().rightJustified(digits, QLatin1Char('0'));
}

QString fidText(unsigned short fid)
{
    return paddedHexadecimal(fid, 4);
}

ImageFile imageFileOf(const QByteArray& bytes)
{
    ImageFile file;
    file.bytes = bytes;
    const auto* data = reinterpret_cast<const unsigned char*>(bytes.constData());
    const auto size = static_cast<std::size_t>(bytes.size());
    const std::size_t end = scard::visitRecords(data, size, [&file](const scard::RecordPlace& place) {
        file.records.push_back(
            {static_cast<qint64>(place.offset), place.header, static_cast<qint64>(place.available)});
    });
    file.trailing = static_cast<qint64>(size - end);
    return file;
}
