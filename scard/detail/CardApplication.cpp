#include <scard/detail/CardApplication.h>

#include <scard/records/BigEndian.h>

#include <QDebug>

#include <algorithm>
#include <utility>

namespace scard::detail {

CardApplication::CardApplication(const EfTable& table) : m_table(&table) {}

std::uint32_t CardApplication::dataToRead() const
{
    unsigned long long total = 0;
    for (const EfRow& row : m_table->rows)
        for (const Piece& piece : row.pieces)
            total += length(piece);
    return static_cast<std::uint32_t>(total & 0xFFFFFFFF);
}

void CardApplication::clear()
{
    m_datasets.clear();
}

void CardApplication::keep(unsigned short fid, std::vector<unsigned char> bytes)
{
    m_datasets[fid].bytes = std::move(bytes);
}

aux::Error
CardApplication::read(SCardGeneric& card, bool onImage, const std::function<void(unsigned short)>& afterEf)
{
    for (const EfRow& row : m_table->rows) {
        if (row.readAt == ReadAt::Identification)
            continue;
        qDebug().noquote().nospace() << '\n' << row.name;
        try {
            readEf(card, row);
        } catch (const aux::Error& failure) {
            qDebug().noquote() << row.failureText << failure;
            if (onImage && row.inImage == InImage::Optional)
                continue;
            return failure;
        }
        afterEf(row.fid);
    }
    return {};
}

aux::Error CardApplication::save(SCardGeneric& card, QFile& file) const
{
    for (const unsigned short fid : m_table->saveOrder) {
        const auto row = std::find_if(
            m_table->rows.begin(), m_table->rows.end(), [fid](const EfRow& each) { return each.fid == fid; });
        aux::Error failure = card.writeDatasetToFile(file, fid, m_table->secondGeneration, bytes(fid));
        if (failure.isEmpty() && row->signing == Signing::Signed)
            failure =
                card.writeSignatureToFile(file, fid, m_table->secondGeneration, m_datasets.at(fid).signature);
        if (!failure.isEmpty())
            return failure;
    }
    return {};
}

const std::vector<unsigned char>& CardApplication::bytes(unsigned short fid) const
{
    static const std::vector<unsigned char> none;
    const auto dataset = m_datasets.find(fid);
    return dataset == m_datasets.end() ? none : dataset->second.bytes;
}

std::uint32_t CardApplication::count(const RecordCount& count) const
{
    if (count.fid == 0)
        return count.fixed;
    const std::vector<unsigned char>& source = bytes(count.fid);
    if (source.size() < count.fieldOffset + count.fieldLength)
        return 0;
    return fromBigEndian(source.data() + count.fieldOffset, count.fieldLength);
}

unsigned long long CardApplication::length(const Piece& piece) const
{
    return static_cast<unsigned long long>(piece.recordSize) * count(piece.count) * piece.groups;
}

void CardApplication::readEf(SCardGeneric& card, const EfRow& row)
{
    Dataset dataset;
    for (const Piece& piece : row.pieces) {
        const auto offset = static_cast<unsigned short>(dataset.bytes.size());
        std::vector<std::vector<unsigned char>> read =
            card.readFrom<unsigned char>(row.fid, static_cast<std::uint32_t>(length(piece)), 1, offset, true);
        if (dataset.bytes.empty())
            dataset.bytes = std::move(read.front());
        else
            dataset.bytes.insert(dataset.bytes.end(), read.front().begin(), read.front().end());
    }
    if (row.signing == Signing::Signed)
        dataset.signature = card.readSignature(row.fid, m_table->secondGeneration);
    m_datasets[row.fid] = std::move(dataset);
}

} // namespace scard::detail
