#include <scard/SCardGeneric.h>

#include <scard/detail/Apdu.h>
#include <scard/detail/ApplicationName.h>
#include <scard/detail/ErrorBuilder.h>
#include <scard/detail/ImageRecord.h>
#include <scard/detail/PcscError.h>
#include <scard/detail/RecordWriter.h>
#include <scard/detail/TextField.h>
#include <scard/records/Fid.h>

#include <QByteArray>
#include <QDebug>

#include <winscard.h>

#include <algorithm>
#include <array>
#include <utility>

namespace scard {

using detail::hexFid;
using detail::libraryError;
using detail::withStep;

namespace {

/// Room for the answer to a command that returns no data.
constexpr std::size_t statusAnswerCapacity = 32;
/// Room for the answer to the write that writeTo() sends.
constexpr std::size_t writeAnswerCapacity = 8;
/// Room for a signature and its status word.
constexpr std::size_t signatureCapacity = 256;
constexpr unsigned char signatureLengthG1 = 0x80;
constexpr unsigned char signatureLengthG2 = 0x40;

/// Most bytes that are asked for with one READ BINARY.
constexpr unsigned long long readChunk = 255;
/// READ BINARY reaches offsets below this; larger datasets need the odd instruction byte.
constexpr unsigned long long largeReadThreshold = 32768;
/// Positions inside an EF are 16-bit numbers.
constexpr unsigned long long largestDataset = 0xFFFF;
/// Bytes of a dataset's buffer beyond the data: the status word and a data object header of up to three
/// bytes in the last answer. A card that spends four on the header of that answer is refused by the reader.
constexpr std::size_t spareBytes = 5;

/// A command whose answer is its status word alone.
aux::Error sendForStatus(SCardGeneric& card, unsigned char* command, std::size_t length)
{
    std::array<unsigned char, statusAnswerCapacity> answer{};
    unsigned long received = answer.size();
    return card.ScDataTransfer(command, length, answer.data(), received);
}

} // namespace

struct Q_DECL_HIDDEN SCardGeneric::Private
{
    Private(long handle, QDateTime timestamp, FilenameRegion filenameRegion)
        : region(filenameRegion), downloadTimestamp(std::move(timestamp)), cardHandle(handle)
    {}

    // These belong to one object's own dialogue; a copy starts anew.
    std::uint32_t bytesRead = 0;
    std::uint32_t bytesToRead = 0;
    bool cardInfoAvailable = false;
    bool dataValid = false;

    FilenameRegion region;
    QDateTime downloadTimestamp;
    QString filename = QStringLiteral("CARD_FILENAME_NOT_SET.DDD");
    SCardMeta::Type cardType = SCardMeta::Reserved;
    bool secondGeneration = false;
    std::int32_t cardStructureVersion = 0;
    bool loadedFromImage = false;
    CardIccIdentification icc{};
    CardIcIdentification ic{};
    long cardHandle;
    QByteArray image;
    bool imagePresent = false;
    bool secondGenerationSelected = false;

    /// Reads EF_ICC and EF_IC; what cannot be read is only told.
    void readChip(SCardGeneric& card);

    /// Selects the application of the newer generation, and keeps which one it is.
    aux::Error selectGeneration(SCardGeneric& card);

    bool hasCard() const { return cardHandle != 0; }
    bool hasImageOnly() const { return !hasCard() && imagePresent; }

    /// What a card command gives without a card: nothing on an image, else an error.
    aux::Error withoutCard(const char* command) const
    {
        if (imagePresent)
            return {};
        return libraryError(QLatin1String(command) + QStringLiteral("(): No valid scard connection"));
    }

    detail::ImageView imageView() const
    {
        if (!imagePresent)
            return {};
        return {
            reinterpret_cast<const unsigned char*>(image.constData()),
            static_cast<std::size_t>(image.size())};
    }
};

SCardGeneric::SCardGeneric(long cardHandle, QDateTime downloadTimestamp, FilenameRegion region)
    : d(std::make_unique<Private>(cardHandle, std::move(downloadTimestamp), region))
{}

SCardGeneric::SCardGeneric(QFile& image, QDateTime downloadTimestamp, FilenameRegion region)
    : SCardGeneric(0L, std::move(downloadTimestamp), region)
{
    d->loadedFromImage = true;
    if (!image.exists() || !image.isReadable()) {
        qDebug().noquote() << libraryError(QStringLiteral("SCardGeneric() Could not load file"));
        return;
    }
    if (!image.isSequential())
        image.seek(0); // all its bytes, wherever the caller left it
    d->image = image.readAll();
    d->imagePresent = true;
}

SCardGeneric::SCardGeneric(const SCardGeneric& other) : QObject(), d(std::make_unique<Private>(*other.d))
{
    d->bytesRead = 0;
    d->bytesToRead = 0;
    d->cardInfoAvailable = false;
    d->dataValid = false;
}

SCardGeneric::~SCardGeneric() = default;

// Download steps

aux::Error SCardGeneric::calcDataToRead()
{
    d->bytesRead = 0; // a second download with the same object reports from 0 again
    d->bytesToRead = 0;
    return {};
}

aux::Error SCardGeneric::read()
{
    return readCardInfo();
}

aux::Error SCardGeneric::saveToFile(QFile&)
{
    return {};
}

aux::Error SCardGeneric::postDownloadTasks()
{
    return {};
}

aux::Error SCardGeneric::extraTask()
{
    return {};
}

// Identification

void SCardGeneric::Private::readChip(SCardGeneric& card)
{
    qDebug().noquote() << "\nEF_ICC";
    try {
        icc = card.readFrom<CardIccIdentification>(fidIcc, 0, false);
    } catch (const aux::Error& failure) {
        qDebug().noquote() << "Error reading EF_ICC:" << failure;
    }
    qDebug().noquote() << "\nEF_IC";
    try {
        ic = card.readFrom<CardIcIdentification>(fidIc, 0, false);
    } catch (const aux::Error& failure) {
        qDebug().noquote() << "Error reading EF_IC:" << failure;
    }
}

aux::Error SCardGeneric::Private::selectGeneration(SCardGeneric& card)
{
    // Only a clean "file not found" leads to the first generation: a card that refuses the second
    // generation's name for another reason still has that application.
    aux::Error selection = card.ScSelectFile(detail::secondGenerationApplication());
    secondGeneration = detail::firstId(selection) != detail::statusFileNotFound;
    if (secondGeneration)
        return {};
    selection = card.ScSelectFile(detail::firstGenerationApplication());
    if (selection.isEmpty())
        return {};
    return withStep(std::move(selection), QStringLiteral("read() Identify Card Generation failed"));
}

aux::Error SCardGeneric::readCardInfo()
{
    d->cardInfoAvailable = false;
    d->bytesRead = 0;
    d->bytesToRead = 0;

    d->readChip(*this);
    aux::Error selection = d->selectGeneration(*this);
    if (!selection.isEmpty())
        return selection;

    GenericCardApplicationIdentification application{};
    try {
        application = readFrom<GenericCardApplicationIdentification>(fidApplicationIdentification, 0, false);
    } catch (const aux::Error& failure) {
        qDebug().noquote() << "Error reading Generic EF_Application_Identification (Card Type):" << failure;
        return failure;
    }

    d->cardType = static_cast<SCardMeta::Type>(application.typeOfTachographCardId);
    // Low byte first, the reverse of the card's byte order: so the version 01 01 is the first above 256.
    d->cardStructureVersion = application.cardStructureVersion[0] + 256 * application.cardStructureVersion[1];

    switch (d->cardType) {
    case SCardMeta::DriverCard:
        qDebug() << "Card Type: Driver Card";
        break;
    case SCardMeta::WorkshopCard:
        qDebug() << "Card Type: Workshop Card";
        break;
    case SCardMeta::ControlCard:
        qDebug() << "Card Type: Control Card";
        break;
    case SCardMeta::CompanyCard:
        qDebug() << "Card Type: Company Card";
        break;
    default:
        qDebug().nospace() << "Card Type: Unknown Card: " << int{application.typeOfTachographCardId};
        return libraryError(QStringLiteral("read() Unknown Card Type"));
    }
    qDebug().nospace() << "Card Structure Version: " << d->cardStructureVersion;
    qDebug().nospace() << "Card Generation: "
                       << (d->secondGeneration ? "second generation" : "first generation");

    d->cardInfoAvailable = true;
    d->bytesRead = 0;
    d->bytesToRead = 0;
    return {};
}

SCardMeta::Type SCardGeneric::getCardType() const
{
    return d->cardType;
}

bool SCardGeneric::is2ndGeneneration() const
{
    return d->secondGeneration;
}

bool SCardGeneric::is2_2Generation() const
{
    return d->secondGeneration && d->cardStructureVersion > 256;
}

bool SCardGeneric::isLoadedFromZubo() const
{
    return d->loadedFromImage;
}

QString SCardGeneric::getFilename() const
{
    return d->filename;
}

QDateTime SCardGeneric::getDownloadTimestamp() const
{
    return d->downloadTimestamp;
}

void SCardGeneric::setFilenameRegion(FilenameRegion region)
{
    d->region = region;
}

aux::Error SCardGeneric::getCardSerial(unsigned int& serial) const
{
    if (!d->cardInfoAvailable)
        return libraryError(QStringLiteral("getCardSerial(): card info not yet available"));
    serial = fromBigEndian(d->ic.icSerialNumber, sizeof d->ic.icSerialNumber);
    return {};
}

void SCardGeneric::emitCardLanguage(const char* language)
{
    constexpr uint languageCodeLength = 2;
    const uint length = qstrnlen(language, languageCodeLength);
    Q_EMIT cardLanguage(QLocale(QString::fromLatin1(language, static_cast<int>(length)).toLower()));
}

// Card commands

aux::Error SCardGeneric::ScDataTransfer(
    unsigned char* send, unsigned long sendLength, unsigned char* receive, unsigned long& receivedLength)
{
    if (!d->hasCard()) {
        receivedLength = 0;
        return libraryError(QStringLiteral("ScDataTransfer: no scard reader assigned. Opened from file?"));
    }

    const LONG code =
        SCardTransmit(d->cardHandle, SCARD_PCI_T1, send, sendLength, nullptr, receive, &receivedLength);
    if (code != SCARD_S_SUCCESS) {
        receivedLength = 0;
        if (code == SCARD_W_REMOVED_CARD)
            Q_EMIT removed();
        return detail::pcscError(QStringLiteral("ScDataTransfer SCardTransmit() Failed"), code);
    }
    if (receivedLength < detail::statusWordLength) {
        receivedLength = 0;
        return libraryError(QStringLiteral("ScDataTransfer: answer without status word"));
    }

    receivedLength -= detail::statusWordLength;
    const auto statusWord =
        static_cast<unsigned short>(fromBigEndian(receive + receivedLength, detail::statusWordLength));
    if (statusWord == detail::statusSuccess || statusWord == detail::statusSuccessAlternative)
        return {};
    qDebug().noquote().nospace() << "ScDataTransfer: Status: " << QString::number(statusWord, 16);
    return libraryError(QStringLiteral("ScDataTransfer failed"), statusWord);
}

aux::Error SCardGeneric::ScSelectFile(unsigned short fid, unsigned int* length, unsigned int* start)
{
    if (d->hasImageOnly())
        return memSelectFile(fid, length, start);

    qDebug().noquote().nospace() << "ScSelectFile: ID: " << hexFid(fid);
    auto command = detail::selectByFid(fid);
    aux::Error failure = sendForStatus(*this, command.data(), command.size());
    if (failure.isEmpty())
        return {};
    return withStep(std::move(failure), QStringLiteral("ScSelectFile Failed: By ID") + hexFid(fid));
}

aux::Error SCardGeneric::ScSelectFile(const std::string& applicationName)
{
    d->secondGenerationSelected = applicationName == detail::secondGenerationApplication();
    if (d->hasImageOnly())
        return memSelectFile(applicationName);
    if (!d->hasCard())
        return libraryError(QStringLiteral("ScSelectFile(): No valid scard connection"));
    if (applicationName.size() > detail::applicationNameLength)
        return libraryError(QStringLiteral("ScSelectFile(): application name too long"));

    const QString nameText =
        QString::fromLatin1(applicationName.data(), static_cast<int>(applicationName.size()));
    qDebug().noquote().nospace() << "ScSelectFile: Name: " << nameText;
    auto command = detail::selectByName(applicationName.data(), applicationName.size());
    aux::Error failure = sendForStatus(*this, command.bytes.data(), command.length);
    if (failure.isEmpty())
        return {};
    return withStep(std::move(failure), QStringLiteral("ScSelectFile Failed: By Name") + nameText);
}

aux::Error SCardGeneric::ScReadFile(
    unsigned short offset, unsigned char length, unsigned char* buffer, unsigned long& receivedLength)
{
    if (!d->hasCard()) {
        receivedLength = 0;
        return d->withoutCard("ScReadFile");
    }
    auto command = detail::readBinary(offset, length);
    aux::Error failure = ScDataTransfer(command.data(), command.size(), buffer, receivedLength);
    if (!failure.isEmpty())
        return withStep(std::move(failure), QStringLiteral("ScReadFile Failed "));
    if (receivedLength != length)
        return libraryError(QStringLiteral("ScReadFile: Received data size does not match exptectation"));
    return {};
}

aux::Error SCardGeneric::ScReadLargeFile(
    unsigned short offset, unsigned char, unsigned char* buffer, unsigned long& receivedLength)
{
    if (!d->hasCard()) {
        receivedLength = 0;
        return d->withoutCard("ScReadLargeFile");
    }
    auto command = detail::readBinaryOdd(offset);
    aux::Error failure = ScDataTransfer(command.bytes.data(), command.length, buffer, receivedLength);
    if (!failure.isEmpty())
        return withStep(std::move(failure), QStringLiteral("ScReadLargeFile Failed "));
    const std::size_t header = detail::dataObjectHeaderLength(buffer, receivedLength);
    std::copy(buffer + header, buffer + receivedLength, buffer);
    receivedLength -= header;
    return {};
}

aux::Error SCardGeneric::ScWriteFile(
    unsigned short offset, unsigned char length, const unsigned char* data, unsigned char* receive,
    unsigned long& receivedLength)
{
    if (!d->hasCard()) {
        receivedLength = 0;
        return d->withoutCard("ScWriteFile");
    }
    auto command = detail::updateBinary(offset, length, data);
    aux::Error failure = ScDataTransfer(command.data(), command.size(), receive, receivedLength);
    if (failure.isEmpty())
        return {};
    return withStep(std::move(failure), QStringLiteral("ScWriteFile Failed "));
}

aux::Error SCardGeneric::writeTo(unsigned short fid, unsigned short length, const unsigned char* data)
{
    unsigned int datasetLength = 0;
    unsigned int datasetStart = 0;
    aux::Error failure = ScSelectFile(fid, &datasetLength, &datasetStart);
    if (!failure.isEmpty())
        return withStep(
            std::move(failure), QStringLiteral("writeTo() ScSelectFile() Failed: ID ") + hexFid(fid));

    std::array<unsigned char, writeAnswerCapacity> answer{};
    unsigned long received = answer.size();
    failure = ScWriteFile(0, static_cast<unsigned char>(length & 0xFF), data, answer.data(), received);
    if (failure.isEmpty())
        return {};
    return withStep(std::move(failure), QStringLiteral("writeTo() ScReadFile() Failed: ID ") + hexFid(fid));
}

// Hash and signature

aux::Error SCardGeneric::ScPerformHashOfFile()
{
    if (!d->hasCard())
        return d->withoutCard("ScPerformHashOfFile");
    auto command = detail::performHashOfFile();
    aux::Error failure = sendForStatus(*this, command.data(), command.size());
    if (failure.isEmpty())
        return {};
    return withStep(std::move(failure), QStringLiteral("ScPerformHashOfFile Failed "));
}

aux::Error SCardGeneric::ScComputeSignature(bool secondGeneration, std::vector<unsigned char>& signature)
{
    std::vector<unsigned char> answer(signatureCapacity);
    if (!d->hasCard()) {
        signature = std::move(answer);
        return d->withoutCard("ScPerformHashOfFile");
    }
    auto command = detail::computeDigitalSignature(secondGeneration ? signatureLengthG2 : signatureLengthG1);
    unsigned long received = answer.size();
    aux::Error failure = ScDataTransfer(command.data(), command.size(), answer.data(), received);
    if (!failure.isEmpty())
        return withStep(std::move(failure), QStringLiteral("ScComputeHashOfFile Failed "));
    answer.resize(received);
    signature = std::move(answer);
    return {};
}

std::vector<unsigned char> SCardGeneric::readSignature(unsigned short fid, bool secondGeneration)
{
    std::vector<unsigned char> signature;
    aux::Error failure = ScPerformHashOfFile();
    if (!failure.isEmpty())
        throw withStep(
            std::move(failure), QStringLiteral("readHash() ScPerformHashOfFile() Failed: ID") + hexFid(fid));
    failure = ScComputeSignature(secondGeneration, signature);
    if (!failure.isEmpty())
        throw withStep(
            std::move(failure), QStringLiteral("readHash() ScComputeHashOfFile() Failed: ID") + hexFid(fid));
    return signature;
}

// Download image

aux::Error SCardGeneric::writeDatasetToFile(
    // NOLINTNEXTLINE(performance-unnecessary-value-param): hosts are compiled against this signature
    QFile& file, unsigned short fid, bool secondGeneration, std::vector<unsigned char> data)
{
    if (!file.isOpen())
        return libraryError(QStringLiteral("writeDatasetToFile(): File not opened"));
    if (data.empty())
        return libraryError(QStringLiteral("writeDatasetToFile(): no valid data"));
    const QString reason = detail::appendRecord(file, fid, detail::dataType(secondGeneration), data);
    if (!reason.isNull())
        return libraryError(QStringLiteral("writeDatasetToFile() write failed: ") + reason);
    return {};
}

aux::Error SCardGeneric::writeSignatureToFile(
    // NOLINTNEXTLINE(performance-unnecessary-value-param): hosts are compiled against this signature
    QFile& file, unsigned short fid, bool secondGeneration, std::vector<unsigned char> signature)
{
    const QString reason =
        detail::appendRecord(file, fid, detail::signatureType(secondGeneration), signature);
    if (!reason.isNull())
        return libraryError(QStringLiteral("writeSignatureToFile() write failed: ") + reason);
    return {};
}

aux::Error SCardGeneric::memSelectFile(unsigned short fid, unsigned int* length, unsigned int* start)
{
    if (!length || !start)
        return libraryError(QStringLiteral("memSelectFile(): invalid arguments"));
    detail::Extent found;
    aux::Error failure =
        detail::findDataset(d->imageView(), fid, detail::dataType(d->secondGenerationSelected), found);
    *length = found.length;
    *start = found.start;
    return failure;
}

aux::Error SCardGeneric::memSelectFile(const std::string& applicationName)
{
    return detail::findApplication(d->imageView(), applicationName);
}

// Dataset readers and progress

std::vector<unsigned char> SCardGeneric::readBytesFrom(
    unsigned short fid, unsigned long long total, unsigned short offset, bool countProgress, bool mayBeLarge)
{
    if (d->hasImageOnly())
        return readBytesFromMem(fid, total, offset);

    aux::Error failure = ScSelectFile(fid);
    if (!failure.isEmpty())
        throw withStep(
            std::move(failure), QStringLiteral("readFrom() ScSelectFile() Failed: ID ") + hexFid(fid));
    if (total > largestDataset)
        throw libraryError(QStringLiteral("readFrom() dataset exceeds 65535 bytes: ID ") + hexFid(fid));

    const bool large = mayBeLarge && total >= largeReadThreshold;
    std::vector<unsigned char> buffer(static_cast<std::size_t>(total) + spareBytes);
    for (unsigned long long position = 0; position < total;) {
        const auto chunk = static_cast<unsigned char>(std::min(total - position, readChunk));
        const auto efOffset = static_cast<unsigned short>((position + offset) & 0xFFFF);
        unsigned char* target = buffer.data() + position;
        auto received = static_cast<unsigned long>(buffer.size() - position);
        failure = large ? ScReadLargeFile(efOffset, chunk, target, received)
                        : ScReadFile(efOffset, chunk, target, received);
        if (!failure.isEmpty())
            throw withStep(
                std::move(failure), (large ? QStringLiteral("readFrom() ScReadLargeFile() Failed: ID ")
                                           : QStringLiteral("readFrom() ScReadFile() Failed: ID ")) +
                                        hexFid(fid));
        if (received == 0)
            throw libraryError(QStringLiteral("readFrom() no data received: ID ") + hexFid(fid));
        if (countProgress) {
            d->bytesRead += static_cast<std::uint32_t>(received);
            emitProgress();
        }
        position += received;
        if (position > largestDataset)
            throw libraryError(QStringLiteral("readFrom() answer passes 65535 bytes: ID ") + hexFid(fid));
    }
    buffer.resize(static_cast<std::size_t>(total));
    return buffer;
}

std::vector<unsigned char>
SCardGeneric::readBytesFromMem(unsigned short fid, unsigned long long total, unsigned short offset)
{
    detail::Extent dataset;
    aux::Error failure = memSelectFile(fid, &dataset.length, &dataset.start);
    if (!failure.isEmpty())
        throw withStep(
            std::move(failure), QStringLiteral("readFromMem() memSelectFile() Failed: ID ") + hexFid(fid));
    return detail::copyFromDataset(d->imageView(), dataset, offset, total);
}

void SCardGeneric::emitProgress()
{
    if (d->bytesToRead == 0)
        return;
    const std::uint32_t percent = static_cast<std::uint32_t>(100U * d->bytesRead) / d->bytesToRead;
    qDebug().noquote().nospace() << "=== Progress: " << d->bytesRead << " dataToRead: " << d->bytesToRead
                                 << "%:" << percent;
    Q_EMIT progress(static_cast<int>(percent));
}

// Text fields

QString SCardGeneric::textfieldToString(Name field)
{
    return detail::decodeText(field.codePage, field.name, sizeof field.name);
}

QString SCardGeneric::textfieldToString(Address field)
{
    return detail::decodeText(field.codePage, field.address, sizeof field.address);
}

QString SCardGeneric::textfieldToString(VehicleRegistrationNumber field)
{
    return detail::decodeText(field.codePage, field.vehicleRegNumber, sizeof field.vehicleRegNumber);
}

// For the card classes

bool SCardGeneric::hasCard() const
{
    return d->hasCard();
}

bool SCardGeneric::hasImageOnly() const
{
    return d->hasImageOnly();
}

const CardIccIdentification& SCardGeneric::iccIdentification() const
{
    return d->icc;
}

const CardIcIdentification& SCardGeneric::icIdentification() const
{
    return d->ic;
}

FilenameRegion SCardGeneric::filenameRegion() const
{
    return d->region;
}

void SCardGeneric::setFilename(const QString& filename)
{
    d->filename = filename;
}

void SCardGeneric::addDataToRead(std::uint32_t bytes)
{
    d->bytesToRead += bytes;
}

void SCardGeneric::countIdentification()
{
    d->bytesRead += sizeof(CardIccIdentification) + sizeof(CardIcIdentification);
}

bool SCardGeneric::hasCardInfo() const
{
    return d->cardInfoAvailable;
}

bool SCardGeneric::isDataValid() const
{
    return d->dataValid;
}

void SCardGeneric::setDataValid(bool valid)
{
    d->dataValid = valid;
}

} // namespace scard
