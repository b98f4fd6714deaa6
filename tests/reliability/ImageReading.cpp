#include "ImageReading.h"

#include <scard/SCardReader.h>
#include <support/Answers.h>
#include <support/FileRecords.h>

#include <QLoggingCategory>

#include <algorithm>
#include <set>
#include <stdexcept>
#include <utility>

namespace test {

namespace {

/// File names are made from it.
QDateTime downloadMoment()
{
    return QDateTime(QDate(2024, 3, 5), QTime(14, 7), Qt::UTC);
}

template <typename First, typename Second, typename AskHolder>
bool ask(scard::SCardGeneric& card, const char* name, Reading& reading, AskHolder askHolder)
{
    auto* first = dynamic_cast<First*>(&card);
    if (!first)
        return false;
    reading.card = name;
    reading.holder = askHolder(*first);
    reading.first = answersOf(*first);
    if (const auto* second = dynamic_cast<Second*>(&card)) {
        reading.card += " of the second generation";
        reading.second = secondAnswersOf(*second);
    }
    return true;
}

} // namespace

bool Reading::operator==(const Reading& other) const
{
    return failure == other.failure && card == other.card && holder == other.holder && first == other.first &&
           second == other.second;
}

void PrintTo(const Reading& reading, std::ostream* stream)
{
    *stream << testing::PrintToString(reading.failure) << '\n'
            << reading.card << '\n'
            << reading.holder << reading.first << reading.second;
}

ImageReader::ImageReader()
{
    // The library wants a file that has a name; a temporary one gets it when somebody asks.
    if (!m_file.open() || m_file.fileName().isEmpty())
        throw std::runtime_error("no room for an image");
    QLoggingCategory::setFilterRules(QStringLiteral("default.debug=false"));
}

ImageReader::~ImageReader()
{
    QLoggingCategory::setFilterRules(QString());
}

void ImageReader::put(const QByteArray& image)
{
    const bool isWritten = m_file.seek(0) && m_file.write(image) == image.size() && m_file.flush();
    if (!isWritten || (m_file.size() != image.size() && !m_file.resize(image.size())))
        throw std::runtime_error("the image cannot be written");
}

Reading ImageReader::read(const QByteArray& image)
{
    put(image);
    return readFile(m_file);
}

Chain ImageReader::failureOf(const QByteArray& image)
{
    put(image);
    scard::SCardGeneric card(m_file, downloadMoment(), scard::RegionDDD);
    Chain failure = chain(card.readCardInfo());
    if (failure.empty())
        failure = chain(scard::SCardReader().generateSpecific(card)->read());
    return failure;
}

Selection ImageReader::takenFrom(const QByteArray& image)
{
    put(image);
    scard::SCardGeneric card(m_file, downloadMoment(), scard::RegionDDD);
    Selection selection;
    for (const unsigned int type : {0u, 2u}) {
        const std::string application = type == 0 ? "\xFFTACHO" : "\xFFSMRDT";
        if (card.ScSelectFile(application).isEmpty())
            selection.types.insert(type);
        for (const unsigned int fid : knownEfs()) {
            unsigned int length = 0;
            unsigned int start = 0;
            if (card.memSelectFile(static_cast<unsigned short>(fid), &length, &start).isEmpty())
                selection.efs[{fid, type}] = {static_cast<int>(start), static_cast<int>(length)};
        }
    }
    return selection;
}

Reading ImageReader::readFile(QFile& file)
{
    Reading reading;
    scard::SCardGeneric image(file, downloadMoment(), scard::RegionDDD);
    reading.failure = chain(image.readCardInfo());
    if (!reading.failure.empty())
        return reading;
    const std::shared_ptr<scard::SCardGeneric> card = scard::SCardReader().generateSpecific(image);
    reading.card = "card of another kind";
    reading.failure = chain(card->read());
    using namespace scard;
    const auto nobody = [](const auto&) { return std::string(); };
    ask<SCardDriverG1, SCardDriverG2>(
        *card, "driver card", reading, [](SCardDriverG1& driver) { return identityOf(driver); }) ||
        ask<SCardWorkshopG1, SCardWorkshopG2>(*card, "workshop card", reading, nobody) ||
        ask<SCardCompanyG1, SCardCompanyG2>(*card, "company card", reading, nobody);
    return reading;
}

std::string nameOf(const testing::TestParamInfo<CardFile>& row)
{
    std::string name = row.param.name;
    std::replace(name.begin(), name.end(), ' ', '_');
    return name;
}

QByteArray recordHeader(unsigned int fid, unsigned int type, int length)
{
    QByteArray header;
    for (const unsigned int byte :
         {fid >> 8, fid, type, static_cast<unsigned int>(length) >> 8, static_cast<unsigned int>(length)})
        header.append(static_cast<char>(byte & 0xFF));
    return header;
}

QByteArray record(unsigned int fid, unsigned int type, const QByteArray& payload)
{
    return recordHeader(fid, type, payload.size()) + payload;
}

std::vector<QByteArray> recordBytes(const QByteArray& file)
{
    std::vector<QByteArray> records;
    for (const FileRecord& each : recordsOf(file))
        records.push_back(file.mid(each.offset, each.end() - each.offset));
    return records;
}

QByteArray joined(const std::vector<QByteArray>& records)
{
    QByteArray file;
    for (const QByteArray& each : records)
        file += each;
    return file;
}

QByteArray firstOfEach(const QByteArray& file)
{
    std::set<std::pair<unsigned int, unsigned int>> seen;
    return without(file, [&seen](const FileRecord& each) {
        return !seen.insert({each.fid, each.type}).second;
    });
}

QByteArray withoutRecord(const QByteArray& file, std::size_t index)
{
    std::vector<QByteArray> records = recordBytes(file);
    records.erase(records.begin() + static_cast<std::ptrdiff_t>(index));
    return joined(records);
}

} // namespace test
