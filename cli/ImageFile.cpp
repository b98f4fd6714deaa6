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

ImageFile imageFileOf(const QByteArray& bytes)
{
    ImageFile file;
    file.bytes = bytes;
    const qint64 headerLength = scard::recordHeaderLength;
    const auto* data = reinterpret_cast<const unsigned char*>(bytes.constData());
    qint64 position = 0;
    while (bytes.size() - position >= headerLength) {
        ImageRecord record;
        record.offset = position;
        record.header = scard::recordHeaderAt(data + position);
        position += headerLength;
        record.available = std::min<qint64>(record.header.length, bytes.size() - position);
        position += record.available;
        file.records.push_back(record);
    }
    file.trailing = bytes.size() - position;
    return file;
}
