#pragma once

#include <aux/Error.h>
#include <scard/Export.h>
#include <scard/records/Identification.h>
#include <scard/records/TextFields.h>
#include <scard/SCardMeta.h>

#include <QDateTime>
#include <QFile>
#include <QLocale>
#include <QObject>
#include <QString>

#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace scard {

namespace detail {
class CardApplication;
}

/// A tachograph card, or the image of one: the base of every card class.
///
/// An object stands on a connected card (PC/SC handle) or on a download image (file). The card
/// commands work on the card; on an image, selections and dataset reads are answered from its bytes,
/// and what would need the card succeeds without doing anything.
///
/// Operations report failure by their aux::Error; the dataset readers and readSignature() throw it.
/// In a chain of entries added by these commands the innermost failure stands first, and each added
/// entry carries the first entry's id: for a refusal of the card, its status word.
///
/// Threads: none of its own. Every operation runs and blocks on the caller's thread, signals are
/// emitted from inside it. No locks: the host serialises the calls on one object.
class SCARD_EXPORT SCardGeneric : public QObject
{
    Q_OBJECT

  public:
    /// An object on a connected card.
    /// @param cardHandle        PC/SC card handle; stays the caller's
    /// @param downloadTimestamp moment of the download, UTC; file names are made from it
    /// @param region            naming convention of the download file
    SCardGeneric(long cardHandle, QDateTime downloadTimestamp, FilenameRegion region);

    /// An object on a download image. @p image must exist and be open for reading; all its bytes are
    /// read and kept. Never fails: without a readable file the debug stream gets "SCardGeneric() Could
    /// not load file" and every later lookup fails.
    SCardGeneric(QFile& image, QDateTime downloadTimestamp, FilenameRegion region);

    /// Takes over card, image, timestamp, region, file name and what identification found. Progress
    /// starts anew, and card info is not available until readCardInfo() has run on the new object.
    SCardGeneric(const SCardGeneric& other);

    /// An object stays on its card or image.
    SCardGeneric& operator=(const SCardGeneric&) = delete;

    /// Leaves card and file as they are.
    ~SCardGeneric() override;

    /// @name The steps of a download
    /// In slot order. Hosts are compiled against it.
    /// @{

    /// Adds up the bytes of EF payload that the download will move. Here: none.
    virtual aux::Error calcDataToRead();

    /// Reads the card's datasets. Here: identifies the card once more.
    virtual aux::Error read();

    /// Writes the download image to @p file, which the caller has opened. Here: nothing.
    virtual aux::Error saveToFile(QFile& file);

    /// Writes to the card what it records about downloads. Here: nothing.
    virtual aux::Error postDownloadTasks();

    /// Keeps its place in the slot order; the download does not call it.
    virtual aux::Error extraTask();

    /// @}

    /// @name Identification
    /// @{

    /// Reads EF_ICC and EF_IC (a failure of theirs goes to the debug stream only), finds the
    /// generation by selecting the card's applications, and reads type and structure version.
    /// Errors: "read() Identify Card Generation failed" (id of the selection's error), "read() Unknown
    /// Card Type" (0), or the reader's error for EF_Application_Identification.
    aux::Error readCardInfo();

    /// The type that EF_Application_Identification gives; SCardMeta::Reserved before readCardInfo().
    SCardMeta::Type getCardType() const;

    /// True when the card has a second-generation application: its name is selected, or refused with anything
    /// but 6A82. On an image: there is a record of type 02.
    bool is2ndGeneneration() const;

    /// True for a second-generation card of version 2.2 (structure version bytes 01 01).
    bool is2_2Generation() const;

    /// True when the object was built from a file.
    bool isLoadedFromZubo() const;

    /// The download file's name, "CARD_FILENAME_NOT_SET.DDD" until a card class has made one.
    QString getFilename() const;

    /// The moment of the download that the constructor was given.
    QDateTime getDownloadTimestamp() const;

    /// Sets the naming convention for the file name that a card class makes from now on.
    void setFilenameRegion(FilenameRegion region);

    /// Gives the chip's serial number, icSerialNumber of EF_IC read big-endian.
    /// Before a successful readCardInfo(): "getCardSerial(): card info not yet available" (0), and
    /// @p serial is left as it was.
    aux::Error getCardSerial(unsigned int& serial) const;

    /// Emits cardLanguage() with the language of the first two characters at @p language, in any case.
    void emitCardLanguage(const char* language);

    /// @}

    /// @name Card commands
    /// Commands of Appendix 2 to the card that is connected. Numbers in brackets are an error's id. Buffers
    /// stay the caller's.
    /// @{

    /// Sends one command and judges the status word; 9000 and 90E4 are success.
    ///
    /// @param send           the command
    /// @param sendLength     its bytes
    /// @param receive        takes the answer, the status word behind the data
    /// @param receivedLength in: bytes at @p receive; out: bytes of data, the status word not counted
    ///
    /// Errors: "ScDataTransfer: no scard reader assigned. Opened from file?" (0); source "SCard",
    /// "ScDataTransfer SCardTransmit() Failed: " and PC/SC's text (0), after removed() was emitted when
    /// the card is gone; "ScDataTransfer: answer without status word" (0); "ScDataTransfer failed" with
    /// the status word as id.
    aux::Error ScDataTransfer(
        unsigned char* send, unsigned long sendLength, unsigned char* receive, unsigned long& receivedLength);

    /// Selects an EF of the current application (SELECT).
    /// @param fid    the EF's number
    /// @param length on an image, which needs both: bytes of the dataset
    /// @param start  its position in the image
    ///
    /// Adds "ScSelectFile Failed: By ID" and the FID in hexadecimal to the card's error.
    aux::Error
    ScSelectFile(unsigned short fid, unsigned int* length = nullptr, unsigned int* start = nullptr);

    /// Selects an application by its name, at most six bytes: FF and "TACHO" in the first generation, FF and
    /// "SMRDT" in the second (SELECT). On an image: as memSelectFile() by name.
    /// Adds "ScSelectFile Failed: By Name" and the name; "ScSelectFile(): No valid scard connection" (0);
    /// "ScSelectFile(): application name too long" (0).
    aux::Error ScSelectFile(const std::string& applicationName);

    /// Reads from the selected EF (READ BINARY). On an image: success, and nothing is received.
    /// @param offset         where in the EF, below 32,768
    /// @param length         bytes to read, 1 to 255
    /// @param buffer         takes the data, and the status word behind them
    /// @param receivedLength in: bytes at @p buffer, two more than the data; out: bytes of data
    ///
    /// Adds "ScReadFile Failed "; "ScReadFile: Received data size does not match exptectation" (0) when
    /// the card gives another length; "ScReadFile(): No valid scard connection" (0).
    aux::Error ScReadFile(
        unsigned short offset, unsigned char length, unsigned char* buffer, unsigned long& receivedLength);

    /// Reads as much as one answer holds from the selected EF, by the command that reaches beyond offset
    /// 32,767 (READ BINARY with odd instruction byte). The header of the answer's data object is removed. On
    /// an image: success, and nothing is received.
    /// @param offset         where in the EF
    /// @param length         not sent
    /// @param buffer         takes the data, what stands around them, and the status word
    /// @param receivedLength in: bytes at @p buffer, six more than the data; out: bytes of data
    ///
    /// Adds "ScReadLargeFile Failed "; "ScReadLargeFile(): No valid scard connection" (0).
    aux::Error ScReadLargeFile(
        unsigned short offset, unsigned char length, unsigned char* buffer, unsigned long& receivedLength);

    /// Writes @p length bytes of @p data at @p offset of the selected EF (UPDATE BINARY). @p receive, of
    /// @p receivedLength bytes, takes the status word; then the length is 0. On an image: success, and
    /// nothing is written.
    ///
    /// Adds "ScWriteFile Failed "; "ScWriteFile(): No valid scard connection" (0).
    aux::Error ScWriteFile(
        unsigned short offset, unsigned char length, const unsigned char* data, unsigned char* receive,
        unsigned long& receivedLength);

    /// Selects the EF @p fid and writes @p data to its start, as many bytes as the low 8 bits of @p length
    /// say. Adds "writeTo() ScSelectFile() Failed: ID " or "writeTo() ScReadFile() Failed: ID " and the FID.
    aux::Error writeTo(unsigned short fid, unsigned short length, const unsigned char* data);

    /// @}

    /// @name Hash and signature
    /// @{

    /// Has the card hash the whole EF that is selected (PERFORM HASH OF FILE). On an image: success.
    /// Adds "ScPerformHashOfFile Failed "; "ScPerformHashOfFile(): No valid scard connection" (0).
    aux::Error ScPerformHashOfFile();

    /// Has the card sign its last hash (PSO: COMPUTE DIGITAL SIGNATURE): @p signature receives 128 bytes in
    /// the first generation, 64 in the second, and on an image or on nothing 256 zero bytes. Adds
    /// "ScComputeHashOfFile Failed "; "ScPerformHashOfFile(): No valid scard connection" (0).
    aux::Error ScComputeSignature(bool secondGeneration, std::vector<unsigned char>& signature);

    /// Hash and signature of the EF that is selected.
    /// @param  fid              for the error texts
    /// @param  secondGeneration which application is selected
    /// @return the signature, as ScComputeSignature() gives it
    /// @throws aux::Error with "readHash() ScPerformHashOfFile() Failed: ID" or "readHash()
    /// ScComputeHashOfFile() Failed: ID" and the FID added.
    std::vector<unsigned char> readSignature(unsigned short fid, bool secondGeneration);

    /// @}

    /// @name Download image
    /// Its layout is in scard/records/ImageRecord.h.
    /// @{

    /// Appends a data record to @p file and hands it to the system before it returns. The record's FID is
    /// @p fid, its type the generation's, its payload @p data: at most 65,535 bytes, for the length in the
    /// header has 16 bits. Errors, id 0: "writeDatasetToFile(): File not opened", "writeDatasetToFile(): no
    /// valid data", "writeDatasetToFile() write failed: " and the reason.
    aux::Error writeDatasetToFile(
        QFile& file, unsigned short fid, bool secondGeneration, std::vector<unsigned char> data);

    /// Appends the signature record of the EF @p fid behind its data record in @p file; an empty signature
    /// makes a record of length 0, a closed file swallows it. Error, id 0: "writeSignatureToFile() write
    /// failed: " and the reason.
    aux::Error writeSignatureToFile(
        QFile& file, unsigned short fid, bool secondGeneration, std::vector<unsigned char> signature);

    /// Finds the dataset of the EF @p fid in the image, in the application that is selected: @p length takes
    /// its bytes, @p start its position. Errors, id 0: "memSelectFile(): invalid arguments",
    /// "memSelectFile(): ddd file buffer not mapped", "memSelectFile(): Dataset not found".
    aux::Error memSelectFile(unsigned short fid, unsigned int* length, unsigned int* start);

    /// Succeeds when the image holds data of the named application's generation.
    /// Errors, id 27266 (6A82): "memSelectFile(): Not enough data", "memSelectFile(): Dataset not found".
    aux::Error memSelectFile(const std::string& applicationName);

    /// @}

    /// @name Dataset readers
    /// A record type is a packed structure of the card's bytes, as those in scard/records/.
    /// @{

    /// Selects an EF and reads blocks of records; from the image when there is one instead of a card. An EF
    /// of 32,768 bytes and more is read by ScReadLargeFile().
    /// @tparam Record        what one record is
    /// @param  fid           the EF
    /// @param  n             records in a block
    /// @param  m             blocks
    /// @param  offset        byte of the EF at which the first one begins
    /// @param  countProgress the bytes count towards progress()
    /// @return               the blocks, each with its records
    /// @throws aux::Error with "readFrom() ScSelectFile() Failed: ID ", "readFrom() ScReadFile() Failed:
    /// ID " or "readFrom() ScReadLargeFile() Failed: ID " and the FID added; "readFrom() dataset exceeds
    /// 65535 bytes: ID ", "readFrom() answer passes 65535 bytes: ID " or "readFrom() no data received: ID "
    /// and the FID (0).
    template <typename Record>
    std::vector<std::vector<Record>>
    readFrom(unsigned short fid, std::uint32_t n, unsigned short m, unsigned short offset, bool countProgress)
    {
        return split<Record>(readBytesFrom(fid, byteCount<Record>(n, m), offset, countProgress, true), n, m);
    }

    /// One record at byte @p offset of the EF @p fid, counted or not; throws as above.
    template <typename Record>
    Record readFrom(unsigned short fid, unsigned short offset, bool countProgress)
    {
        return split<Record>(readBytesFrom(fid, sizeof(Record), offset, countProgress, false), 1, 1)[0][0];
    }

    /// The blocks from the image only: @p m of @p n records of the EF @p fid, from its byte @p offset on.
    /// @throws aux::Error with "readFromMem() memSelectFile() Failed: ID " and the FID added; "readFromMem()
    /// invalid dataset size:…requested:…" or "readFromMem() data access error \@offs:… buffer size:…" (6700).
    template <typename Record>
    std::vector<std::vector<Record>>
    readFromMem(unsigned short fid, std::uint32_t n, unsigned short m, unsigned short offset)
    {
        return split<Record>(readBytesFromMem(fid, byteCount<Record>(n, m), offset), n, m);
    }

    /// One record at byte @p offset of the EF @p fid in the image; throws as above.
    template <typename Record>
    Record readFromMem(unsigned short fid, unsigned short offset)
    {
        return split<Record>(readBytesFromMem(fid, sizeof(Record), offset), 1, 1)[0][0];
    }

    /// Emits progress() with bytes read × 100 / bytes to read, truncated and not clamped; nothing
    /// while there is nothing to read.
    void emitProgress();

    /// @}

    /// @name Text fields
    /// Decoded by their part of ISO/IEC 8859, the blanks that fill the field left in place; decoding stops at
    /// a zero byte. What names no part is taken as part 1. Any thread may ask.
    /// @{

    /// The text of a name.
    static QString textfieldToString(Name field);

    /// The text of an address.
    static QString textfieldToString(Address field);

    /// The text of a registration number.
    static QString textfieldToString(VehicleRegistrationNumber field);

    /// @}

  Q_SIGNALS:
    /// Percentage of the download; can pass 100 when the card's counts say less than it holds.
    void progress(int percent);

    /// The card was pulled during a command. The command's error says so too, and decides.
    void removed();

    /// Language that the holder prefers, as soon as EF_Identification is read.
    void cardLanguage(QLocale language);

    /// First names, ", ", surname, as soon as EF_Identification is read; of a second-generation company card
    /// the company's name.
    void cardHolderName(QString name);

    /// Declared for the host; the library never emits it.
    void lastCardDownload(QDateTime time);

  protected:
    /// True on a connected card, false on an image or on nothing.
    bool hasCard() const;

    /// True when an image was loaded and there is no card.
    bool hasImageOnly() const;

    /// EF_ICC as readCardInfo() read it; all zero when the card did not give it.
    const CardIccIdentification& iccIdentification() const;

    /// EF_IC, likewise.
    const CardIcIdentification& icIdentification() const;

    /// The naming convention that was set last.
    FilenameRegion filenameRegion() const;

    /// Sets what getFilename() gives: a name without a folder.
    void setFilename(const QString& filename);

    /// Adds @p bytes to what progress() counts as the whole.
    void addDataToRead(std::uint32_t bytes);

    /// Counts EF_ICC and EF_IC, which the identification read, as moved.
    void countIdentification();

    /// True after a successful readCardInfo() of this object.
    bool hasCardInfo() const;

    /// True once a card class has read all that its image needs.
    bool isDataValid() const;

    /// Sets that; without it saveToFile() is refused.
    void setDataValid(bool valid);

  private:
    friend class detail::CardApplication;

    template <typename Record>
    static constexpr unsigned long long byteCount(std::uint32_t n, unsigned short m)
    {
        return static_cast<unsigned long long>(n) * m * sizeof(Record);
    }

    template <typename Record>
    static std::vector<std::vector<Record>>
    split(std::vector<unsigned char> bytes, std::uint32_t n, unsigned short m)
    {
        static_assert(std::is_trivially_copyable_v<Record>, "a record is the card's bytes");
        std::vector<std::vector<Record>> blocks(m);
        if constexpr (std::is_same_v<Record, unsigned char>) {
            if (m == 1) { // a whole EF as bytes: no second copy of it
                blocks[0] = std::move(bytes);
                return blocks;
            }
        }
        const std::size_t blockSize = n * sizeof(Record);
        for (std::size_t i = 0; i < m; ++i) {
            blocks[i].resize(n);
            if (n > 0)
                std::memcpy(blocks[i].data(), bytes.data() + i * blockSize, blockSize);
        }
        return blocks;
    }

    std::vector<unsigned char> readBytesFrom(
        unsigned short fid, unsigned long long total, unsigned short offset, bool countProgress,
        bool mayBeLarge);
    std::vector<unsigned char>
    readBytesFromMem(unsigned short fid, unsigned long long total, unsigned short offset);

    struct Private;
    std::unique_ptr<Private> d;
};

} // namespace scard
