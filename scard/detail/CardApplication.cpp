#include <scard/detail/CardApplication.h>

#include <scard/detail/CertificateSize.h>
#include <scard/detail/ErrorBuilder.h>
#include <scard/records/BigEndian.h>
#include <scard/records/Fid.h>

#include <QDebug>

#include <algorithm>
#include <utility>

namespace scard::detail {

namespace {

constexpr std::size_t largestRecord = 0xFFFF;

bool isOnCard(const EfRow& row, const SCardGeneric& card)
{
    return row.onCards == OnCards::All || card.is2_2Generation();
}

aux::Error withOwnEntry(OwnEntry place, const QString& text, aux::Error lower)
{
    return place == OwnEntry::First ? ledByStep(text, std::move(lower)) : withStep(std::move(lower), text);
}

} // namespace

void discard(const char* text, const aux::Error& firstFailure)
{
    if (!firstFailure.isEmpty())
        qDebug().noquote() << text << firstFailure;
}

CardApplication::CardApplication(const EfTable& table) : m_table(&table) {}

aux::Error CardApplication::calcDataToRead(SCardGeneric& card)
{
    aux::Error failure = card.ScSelectFile(m_table->applicationName);
    if (!failure.isEmpty())
        return totalFailed(m_table->counts.front(), std::move(failure));
    return addUp(card);
}

aux::Error CardApplication::addUp(SCardGeneric& card)
{
    for (const CountsEf& ef : m_table->counts) {
        const EfRow& row = rowOf(ef.fid);
        if (!isOnCard(row, card))
            continue;
        try {
            readCounts(card, ef.fid);
        } catch (const aux::Error& failure) {
            return totalFailed(ef, failure);
        }
        card.addDataToRead(dataToRead(card, row.onCards));
    }
    return {};
}

std::uint32_t CardApplication::dataToRead(SCardGeneric& card, OnCards onCards) const
{
    unsigned long long total = 0;
    for (const EfRow& row : m_table->rows) {
        if (row.onCards != onCards)
            continue;
        for (const Piece& piece : row.pieces)
            total += length(card, row, piece);
    }
    return static_cast<std::uint32_t>(total & 0xFFFFFFFF);
}

aux::Error CardApplication::select(SCardGeneric& card) const
{
    aux::Error failure = card.ScSelectFile(m_table->applicationName);
    if (failure.isEmpty())
        return {};
    return withOwnEntry(
        m_table->stepEntry, QStringLiteral("read() Select DF_Tachograph failed"), std::move(failure));
}

void CardApplication::clear()
{
    m_datasets.clear();
}

aux::Error CardApplication::read(SCardGeneric& card, const AfterEf& afterEf)
{
    card.setDataValid(false);
    clear();
    keep(fidIcc, bytesOf(card.iccIdentification()));
    keep(fidIc, bytesOf(card.icIdentification()));

    aux::Error failure = select(card);
    if (failure.isEmpty()) {
        if (m_table->readingText)
            qDebug().noquote() << m_table->readingText;
        failure = readRows(card, afterEf);
    }
    card.setDataValid(failure.isEmpty());
    return failure;
}

aux::Error CardApplication::save(SCardGeneric& card, QFile& file) const
{
    aux::Error failure = whyNotSaved(card, file);
    if (!failure.isEmpty())
        return failure;
    failure = write(card, file);
    if (failure.isEmpty())
        return {};
    return withOwnEntry(m_table->stepEntry, QStringLiteral("saveToFile() Failed"), std::move(failure));
}

aux::Error CardApplication::saveBehind(const Step& saveFirst, SCardGeneric& card, QFile& file) const
{
    aux::Error failure = whyNotSaved(card, file);
    if (!failure.isEmpty())
        return failure;
    file.unsetError();
    const aux::Error firstFailure = saveFirst();
    discard("saveToFile() first application failed:", firstFailure);
    const bool recordTorn = !firstFailure.isEmpty() && file.error() != QFileDevice::NoError;

    failure = save(card, file);
    // The card must not be told of a file in which a torn record hides the others.
    return failure.isEmpty() && recordTorn ? firstFailure : failure;
}

void CardApplication::keep(unsigned short fid, std::vector<unsigned char> bytes)
{
    m_datasets[fid].bytes = std::move(bytes);
}

aux::Error CardApplication::readRows(SCardGeneric& card, const AfterEf& afterEf)
{
    for (const EfRow& row : m_table->rows) {
        if (row.readAt == ReadAt::Identification || !isOnCard(row, card))
            continue;
        qDebug().noquote().nospace() << '\n' << row.name;
        try {
            readEf(card, row);
        } catch (const aux::Error& failure) {
            qDebug().noquote() << row.failureText << failure;
            if (!card.hasCard() && row.inImage == InImage::Optional)
                continue;
            if (m_table->efFailure == EfFailure::RowsText)
                return withStep(failure, QLatin1String(row.failureText));
            return failure;
        }
        afterEf(row.fid);
    }
    return {};
}

aux::Error CardApplication::write(SCardGeneric& card, QFile& file) const
{
    for (const unsigned short fid : m_table->saveOrder) {
        const EfRow& row = rowOf(fid);
        if (!isOnCard(row, card))
            continue;
        aux::Error failure = card.writeDatasetToFile(file, fid, m_table->secondGeneration, bytes(fid));
        if (failure.isEmpty() && row.signing == Signing::Signed)
            failure =
                card.writeSignatureToFile(file, fid, m_table->secondGeneration, m_datasets.at(fid).signature);
        if (!failure.isEmpty())
            return failure;
    }
    return {};
}

bool CardApplication::has(unsigned short fid) const
{
    return m_datasets.count(fid) > 0;
}

bool CardApplication::hasRequired(const SCardGeneric& card) const
{
    return std::all_of(m_table->rows.begin(), m_table->rows.end(), [this, &card](const EfRow& row) {
        return row.inImage == InImage::Optional || !isOnCard(row, card) || has(row.fid);
    });
}

const std::vector<unsigned char>& CardApplication::bytes(unsigned short fid) const
{
    static const std::vector<unsigned char> none;
    const auto dataset = m_datasets.find(fid);
    return dataset == m_datasets.end() ? none : dataset->second.bytes;
}

aux::Error CardApplication::writeBack(SCardGeneric& card, const Step& task) const
{
    if (card.hasImageOnly())
        return {};
    aux::Error failure = select(card);
    return failure.isEmpty() ? task() : failure;
}

aux::Error CardApplication::recordDownload(
    SCardGeneric& card, unsigned short fid, const std::vector<unsigned char>& bytes)
{
    if (!card.isDataValid())
        return libraryError(QStringLiteral("updateLastCardDownload(): no valid data"));
    aux::Error failure = card.writeTo(fid, static_cast<unsigned short>(bytes.size()), bytes.data());
    if (failure.isEmpty())
        return {};
    // The driver card's file, whichever was written: hosts know the text.
    return ledByStep(
        QStringLiteral("updateLastCardDownload() writeTo() Failed: ID ") + hexFid(fidCardDownload),
        std::move(failure));
}

aux::Error CardApplication::whyNotSaved(const SCardGeneric& card, const QFile& file)
{
    if (!file.isOpen())
        return libraryError(QStringLiteral("saveToFile(): File not opened"));
    if (!card.isDataValid())
        return libraryError(QStringLiteral("saveToFile(): no valid data"));
    if (!card.hasCard())
        return libraryError(QStringLiteral("saveToFile(): not allowed on data read from file "));
    return {};
}

const EfRow& CardApplication::rowOf(unsigned short fid) const
{
    return *std::find_if(
        m_table->rows.begin(), m_table->rows.end(), [fid](const EfRow& row) { return row.fid == fid; });
}

aux::Error CardApplication::totalFailed(const CountsEf& ef, aux::Error failure) const
{
    const QString text = QLatin1String(ef.failureText);
    qDebug().noquote() << text << failure;
    return withOwnEntry(m_table->totalEntry, text, std::move(failure));
}

void CardApplication::readCounts(SCardGeneric& card, unsigned short fid)
{
    const EfRow& row = rowOf(fid);
    const auto rowLength = static_cast<std::uint32_t>(length(card, row, row.pieces.front()));
    keep(fid, card.readFrom<unsigned char>(fid, rowLength, 1, 0, false).front());
}

std::uint32_t CardApplication::count(SCardGeneric& card, const EfRow& row, const RecordCount& count) const
{
    switch (count.from) {
    case RecordCount::From::Number:
        return count.number;
    case RecordCount::From::CertificateHeader:
        return get2ndGenCertificateSize(card, row.fid);
    case RecordCount::From::Field:
        break;
    }
    const std::vector<unsigned char>& source = bytes(count.fid);
    if (source.size() < count.fieldOffset + count.fieldLength)
        return 0;
    return fromBigEndian(source.data() + count.fieldOffset, count.fieldLength);
}

unsigned long long CardApplication::length(SCardGeneric& card, const EfRow& row, const Piece& piece) const
{
    return static_cast<unsigned long long>(piece.recordSize) * count(card, row, piece.count) * piece.groups;
}

void CardApplication::readEf(SCardGeneric& card, const EfRow& row)
{
    Dataset dataset;
    for (const Piece& piece : row.pieces) {
        const auto offset = static_cast<unsigned short>(dataset.bytes.size());
        const auto pieceLength = static_cast<std::uint32_t>(length(card, row, piece));
        // The length of a record has two bytes: a longer one would hide all behind it.
        if (card.hasCard() && offset > 0 && dataset.bytes.size() + std::size_t{pieceLength} > largestRecord)
            throw libraryError(
                QStringLiteral("readFrom() dataset exceeds 65535 bytes: ID ") + hexFid(row.fid));
        std::vector<std::vector<unsigned char>> read =
            card.readFrom<unsigned char>(row.fid, pieceLength, 1, offset, true);
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
