#pragma once

#include <aux/Error.h>
#include <scard/detail/EfTable.h>
#include <scard/SCardGeneric.h>

#include <QFile>

#include <cstdint>
#include <cstring>
#include <functional>
#include <map>
#include <vector>

namespace scard::detail {

/// One EF as it was read: the card's bytes, once, and the card's signature over them.
struct Dataset
{
    std::vector<unsigned char> bytes;
    std::vector<unsigned char> signature;
};

/// The bytes of a record, to be kept or written.
template <typename Record>
std::vector<unsigned char> bytesOf(const Record& record)
{
    const auto* first = reinterpret_cast<const unsigned char*>(&record);
    return {first, first + sizeof record};
}

/// Called with the FID of an EF that was read.
using AfterEf = std::function<void(unsigned short fid)>;

/// A step of a card class.
using Step = std::function<aux::Error()>;

/// What became of the first application does not decide for the second: the debug stream gets it, behind
/// @p text.
void discard(const char* text, const aux::Error& firstFailure);

/// The EFs of one application of a card, and what the steps of a download do with them: the same for all
/// kinds of cards, by the rows of their tables.
class CardApplication
{
  public:
    explicit CardApplication(const EfTable& table);

    /// Selects the application and adds up what the download will move, as addUp() does. A failed selection
    /// counts as a failure of the first counting EF: what is selected then has other counts.
    aux::Error calcDataToRead(SCardGeneric& card);

    /// Reads the counting EFs of the selected application and adds the bytes of all its rows to the total of
    /// @p card. Error: the text of the counting EF, where the table puts it, and the reader's entries; the
    /// debug stream gets it, too.
    aux::Error addUp(SCardGeneric& card);

    /// Selects the application by its name. Error: "read() Select DF_Tachograph failed", the same words for
    /// both generations and all steps, where the table puts them, and the selection's entries.
    aux::Error select(SCardGeneric& card) const;

    /// Forgets what was read.
    void clear();

    /// Forgets what was read, takes EF_ICC and EF_IC from the identification of @p card, selects the
    /// application and reads the rows in their order. The data are valid when no row has failed. A failure
    /// goes to the debug stream behind the row's text and ends the walk, unless @p card is an image and the
    /// row is optional there. Rows of version 2.2 are passed on other cards, here and in write().
    aux::Error read(SCardGeneric& card, const AfterEf& afterEf);

    /// Writes the image of this application. Errors, id 0: "saveToFile(): File not opened", "saveToFile(): no
    /// valid data", "saveToFile(): not allowed on data read from file " or "saveToFile() Failed", where the
    /// table puts it, and the writer's entries.
    aux::Error save(SCardGeneric& card, QFile& file) const;

    /// The same behind what @p saveFirst writes of the first application, as far as that was read. Its error
    /// counts only when the disk took a record in part: behind such a record nobody finds the others.
    aux::Error saveBehind(const Step& saveFirst, SCardGeneric& card, QFile& file) const;

    /// Selects the application and does @p task, which writes to it; nothing on an image. Error: select()'s,
    /// or the task's.
    aux::Error writeBack(SCardGeneric& card, const Step& task) const;

    /// Writes what the card keeps of a download to the start of an EF of the selected application. Errors, of
    /// every kind of card: "updateLastCardDownload(): no valid data" (0), "updateLastCardDownload() writeTo()
    /// Failed: ID 50e" with the write's id and its entries behind it.
    static aux::Error
    recordDownload(SCardGeneric& card, unsigned short fid, const std::vector<unsigned char>& bytes);

    /// Writes the EFs in saving order, each with its signature behind it, as far as its row is signed.
    /// The first failed write ends the walk and is returned as it is.
    aux::Error write(SCardGeneric& card, QFile& file) const;

    /// Bytes of the rows that belong to @p onCards, by the counts of the identification EFs kept so far; a
    /// certificate's header is read from @p card.
    std::uint32_t dataToRead(SCardGeneric& card, OnCards onCards) const;

    /// Keeps the bytes of an EF that was read outside the table's walk.
    void keep(unsigned short fid, std::vector<unsigned char> bytes);

    /// True when the EF was read or kept.
    bool has(unsigned short fid) const;

    /// True when every EF was read that an image of @p card must have.
    bool hasRequired(const SCardGeneric& card) const;

    /// The EF's bytes; empty when it was not read.
    const std::vector<unsigned char>& bytes(unsigned short fid) const;

    /// The record at the start of an EF; all zero when it was not read.
    template <typename Record>
    Record record(unsigned short fid) const
    {
        Record record{};
        const std::vector<unsigned char>& source = bytes(fid);
        if (source.size() >= sizeof record)
            std::memcpy(&record, source.data(), sizeof record);
        return record;
    }

  private:
    static aux::Error whyNotSaved(const SCardGeneric& card, const QFile& file);
    const EfRow& rowOf(unsigned short fid) const;
    std::uint32_t count(SCardGeneric& card, const EfRow& row, const RecordCount& count) const;
    unsigned long long length(SCardGeneric& card, const EfRow& row, const Piece& piece) const;
    aux::Error totalFailed(const CountsEf& ef, aux::Error failure) const;
    void readCounts(SCardGeneric& card, unsigned short fid);
    aux::Error readRows(SCardGeneric& card, const AfterEf& afterEf);
    void readEf(SCardGeneric& card, const EfRow& row);

    const EfTable* m_table; ///< lives as long as the program
    std::map<unsigned short, Dataset> m_datasets;
};

} // namespace scard::detail
