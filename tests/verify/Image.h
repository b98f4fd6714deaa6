#pragma once

#include <simulator/Bytes.h>

#include <QByteArray>

#include <vector>

// A download as a list of records, to be changed.

namespace test {

// The third byte of a record's header.
constexpr unsigned int dataG1 = 0;
constexpr unsigned int signatureG1 = 1;
constexpr unsigned int dataG2 = 2;
constexpr unsigned int signatureG2 = 3;

struct Record
{
    unsigned int fid = 0;
    unsigned int type = dataG1;
    QByteArray payload;

    QByteArray bytes() const;
};

/// The records of a download's file. What asks for a record throws when there is none.
class Image
{
  public:
    explicit Image(const QByteArray& file);

    QByteArray bytes() const;

    QByteArray& payload(unsigned int fid, unsigned int type);
    const QByteArray& payload(unsigned int fid, unsigned int type) const;

    /// Of the header of the first such record, or of a later one.
    long long offsetOf(unsigned int fid, unsigned int type, int occurrence = 0) const;

    Image& remove(unsigned int fid, unsigned int type);

    /// The EF of a generation: data and signature.
    Image& removeEf(unsigned int fid, unsigned int dataType);

    /// Behind the last record.
    Image& append(const Record& record);

    Image& insertBehind(unsigned int fid, unsigned int type, const Record& record);

    /// Signs what now stands in an EF with the key of the simulated cards (second generation: NIST P-256).
    Image& sign(unsigned int fid, unsigned int dataType);

    std::vector<Record> records;

  private:
    std::vector<Record>::iterator find(unsigned int fid, unsigned int type);
};

/// Small driver cards: of the first generation, and of version 2.2 with both applications.
Image driver();
Image driverV2();

/// The second application of driverV2() alone, which is a whole download, too.
Image secondAlone();

/// The records of the second generation alone.
QByteArray secondOf(const QByteArray& file);

/// The signature of the simulated cards' key over @p data.
QByteArray cardSignature(const QByteArray& data, unsigned int dataType);

/// As the image has them.
QByteArray arrayOf(const sim::Bytes& bytes);

/// @p bytes with others at @p offset.
QByteArray with(QByteArray bytes, int offset, const QByteArray& others);

} // namespace test
