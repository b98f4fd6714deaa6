#pragma once

#include "ImageRules.h"

#include <gtest/gtest.h>

#include <QByteArray>
#include <QTemporaryFile>

#include <iosfwd>
#include <string>
#include <vector>

// A download's file read the way a host reads it, and the ways to put its records together anew.

namespace test {

/// What came of reading an image: the error of identification or of read(), and all that the card's object
/// answers, also behind an error.
struct Reading
{
    Chain failure;
    std::string card;   ///< the object's class; empty when the image was not identified
    std::string holder; ///< who and what the card is
    std::string first;  ///< answers from the first application
    std::string second; ///< answers from the second application

    bool isWhole() const { return !card.empty() && failure.empty(); }
    bool operator==(const Reading& other) const;
};

void PrintTo(const Reading& reading, std::ostream* stream);

/// Reads images from a file that it keeps, without the debug stream, which would take most of the time.
class ImageReader
{
  public:
    ImageReader();
    ~ImageReader();
    ImageReader(const ImageReader&) = delete;
    ImageReader& operator=(const ImageReader&) = delete;

    Reading read(const QByteArray& image);

    /// The same without the answers: the error alone.
    Chain failureOf(const QByteArray& image);

    /// What the library takes from the image for the known EFs of both applications.
    Selection takenFrom(const QByteArray& image);

    /// Reads what stands in @p file, which is open.
    static Reading readFile(QFile& file);

  private:
    void put(const QByteArray& image);

    QTemporaryFile m_file;
};

/// The last part of a test's name.
std::string nameOf(const testing::TestParamInfo<CardFile>& row);

/// A record of its own.
QByteArray record(unsigned int fid, unsigned int type, const QByteArray& payload);

/// The header of a record that announces @p length bytes.
QByteArray recordHeader(unsigned int fid, unsigned int type, int length);

/// The records of @p file, each as its bytes.
std::vector<QByteArray> recordBytes(const QByteArray& file);

/// The records one behind the other.
QByteArray joined(const std::vector<QByteArray>& records);

/// The records of @p file that a reading takes: of each EF and type the first.
QByteArray firstOfEach(const QByteArray& file);

/// @p file without its record number @p index.
QByteArray withoutRecord(const QByteArray& file, std::size_t index);

} // namespace test
