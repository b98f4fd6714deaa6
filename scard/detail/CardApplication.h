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

/// The EFs of one application of a card, and the three walks over their table: what the download will
/// move, reading, saving.
class CardApplication
{
  public:
    explicit CardApplication(const EfTable& table);

    /// Bytes of the rows that belong to @p onCards, by the counts of the identification EFs kept so far; a
    /// certificate's header is read from @p card.
    std::uint32_t dataToRead(SCardGeneric& card, OnCards onCards) const;

    /// Selects the application by its name. Error: "read() Select DF_Tachograph failed", the same words for
    /// both generations, with the selection's entries behind it.
    aux::Error select(SCardGeneric& card) const;

    /// Forgets what was read.
    void clear();

    /// Keeps the bytes of an EF that was read outside the table's walk.
    void keep(unsigned short fid, std::vector<unsigned char> bytes);

    /// Reads and keeps an identification EF of the selected application, whose counts the total needs. The
    /// reader's error is returned as it is.
    template <typename Record>
    aux::Error readCounts(SCardGeneric& card, unsigned short fid)
    {
        try {
            keep(fid, bytesOf(card.readFrom<Record>(fid, 0, false)));
            return {};
        } catch (const aux::Error& failure) {
            return failure;
        }
    }

    /// Reads the rows in their order from @p card, on which the application is selected; @p afterEf is
    /// called with the FID behind each EF that was read. A failure goes to the debug stream behind the
    /// row's text and ends the walk, unless @p onImage and the row is optional there. Rows of version 2.2
    /// are passed on other cards, here and in save().
    aux::Error read(SCardGeneric& card, bool onImage, const std::function<void(unsigned short)>& afterEf);

    /// Writes the EFs in saving order, each with its signature behind it, as far as its row is signed.
    /// The first failed write ends the walk and is returned as it is.
    aux::Error save(SCardGeneric& card, QFile& file) const;

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
    std::uint32_t count(SCardGeneric& card, const EfRow& row, const RecordCount& count) const;
    unsigned long long length(SCardGeneric& card, const EfRow& row, const Piece& piece) const;
    void readEf(SCardGeneric& card, const EfRow& row);

    const EfTable* m_table; ///< lives as long as the program
    std::map<unsigned short, Dataset> m_datasets;
};

} // namespace scard::detail
