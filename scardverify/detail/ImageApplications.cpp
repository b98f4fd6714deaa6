#include "ImageApplications.h"

#include "CertificateG2.h"
#include "FileRules.h"

#include <scard/records/Fid.h>
#include <scard/records/ImageRecord.h>
#include <scard/SCardMeta.h>

#include <algorithm>
#include <array>

namespace scard::verify::detail {

namespace {

/// Takes the records of an image one by one.
class Sorter
{
  public:
    explicit Sorter(const QByteArray& image) : m_image(image) {}

    void take(const RecordPlace& place);

    ImageApplications result(std::size_t end);

  private:
    void passOver(const RecordPlace& place, FindingCode code, const QString& text);
    void takeData(std::vector<ImageApplication>& parts, Generation generation, const DataRecord& record);
    void takeSignature(std::vector<ImageApplication>& parts, Generation generation, const DataRecord& record);

    const QByteArray& m_image;
    /// Of the first generation's types. A company card's download has both applications in them, one behind
    /// the other: a part begins where an EF comes again.
    std::vector<ImageApplication> m_first;
    std::vector<ImageApplication> m_second; ///< one part at most
    DataRecord* m_last = nullptr;           ///< the data record that a signature may follow
    ImageApplications m_result;
};

Generation generationOf(RecordType type)
{
    return type == RecordType::DataG2 || type == RecordType::SignatureG2 ? Generation::Second
                                                                         : Generation::First;
}

void Sorter::take(const RecordPlace& place)
{
    const QByteArray payload =
        QByteArray::fromRawData(m_image.constData() + place.begin(), static_cast<int>(place.available));
    const DataRecord record{static_cast<long long>(place.offset), place.header.fid, payload, {}, -1};
    if (!place.isWhole()) {
        passOver(
            place, FindingCode::FileCut,
            QStringLiteral("The file ends inside a record of %1: %2 of %3 bytes are there.")
                .arg(efText(place.header.fid, generationOf(place.header.type)))
                .arg(place.available)
                .arg(place.header.length));
        return;
    }
    switch (place.header.type) {
    case RecordType::DataG1:
        takeData(m_first, Generation::First, record);
        return;
    case RecordType::SignatureG1:
        takeSignature(m_first, Generation::First, record);
        return;
    case RecordType::DataG2:
        takeData(m_second, Generation::Second, record);
        return;
    case RecordType::SignatureG2:
        takeSignature(m_second, Generation::Second, record);
        return;
    }
    passOver(
        place, FindingCode::UnknownRecordType,
        QStringLiteral("A record of %1 has the type %2, which stands for nothing.")
            .arg(
                efText(record.fid, Generation::First),
                hexadecimal(static_cast<unsigned>(place.header.type), 2)));
}

/// A record that belongs to no application.
void Sorter::passOver(const RecordPlace& place, FindingCode code, const QString& text)
{
    const auto offset = static_cast<long long>(place.offset);
    m_last = nullptr;
    m_result.findings.add(code, text, place.header.fid, offset);
    m_result.uncovered.push_back(
        {offset, static_cast<long long>(recordHeaderLength + place.available), place.header.fid,
         generationOf(place.header.type)});
}

void Sorter::takeData(std::vector<ImageApplication>& parts, Generation generation, const DataRecord& record)
{
    const bool comesAgain =
        generation == Generation::First && !parts.empty() && parts.back().find(record.fid) != nullptr;
    if (parts.empty() || comesAgain)
        parts.push_back({generation, {}, {}});
    parts.back().records.push_back(record);
    m_last = &parts.back().records.back();
}

void Sorter::takeSignature(
    std::vector<ImageApplication>& parts, Generation generation, const DataRecord& record)
{
    if (parts.empty())
        parts.push_back({generation, {}, {}});
    ImageApplication& part = parts.back();
    const bool fits = m_last != nullptr && !part.records.empty() && m_last == &part.records.back() &&
                      m_last->fid == record.fid;
    if (fits) {
        m_last->signature = record.payload;
        m_last->signatureOffset = record.offset;
    } else {
        part.looseSignatures.push_back(
            {record.offset, record.fid, static_cast<unsigned short>(record.payload.size())});
    }
    m_last = nullptr;
}

/// True for the second application of a company card, whose records carry the first generation's types.
bool isSecondOfCompany(const ImageApplication& part)
{
    const DataRecord* application = part.find(fidApplicationIdentification);
    const DataRecord* certificate = part.find(fidCardCertificate);
    return application != nullptr && !application->payload.isEmpty() &&
           application->payload.front() == static_cast<char>(SCardMeta::CompanyCard) &&
           certificate != nullptr && parseCertificateG2(certificate->payload).has_value();
}

/// True when nothing of an application is there but the EFs outside both.
bool isChipAlone(const ImageApplication& application)
{
    const auto isOutside = [](const DataRecord& record) { return isOfChip(record.fid); };
    return application.looseSignatures.empty() &&
           std::all_of(application.records.begin(), application.records.end(), isOutside);
}

void append(ImageApplication& to, const ImageApplication& part)
{
    to.records.insert(to.records.end(), part.records.begin(), part.records.end());
    to.looseSignatures.insert(
        to.looseSignatures.end(), part.looseSignatures.begin(), part.looseSignatures.end());
}

ImageApplications Sorter::result(std::size_t end)
{
    const auto size = static_cast<std::size_t>(m_image.size());
    if (end < size) {
        m_result.findings.add(
            FindingCode::FileCut,
            QStringLiteral("Behind the last record stand %1 of the 5 bytes that another begins with.")
                .arg(size - end),
            0, static_cast<long long>(end));
        m_result.uncovered.push_back(
            {static_cast<long long>(end), static_cast<long long>(size - end), 0, Generation::First});
    }
    std::array<ImageApplication, 2> applications;
    applications[1].generation = Generation::Second;
    for (const ImageApplication& part : m_first)
        append(applications[isSecondOfCompany(part) ? 1 : 0], part);
    for (const ImageApplication& part : m_second)
        append(applications[1], part);
    // A download of the second application alone has the chip's EFs with the first generation's type.
    if (isChipAlone(applications[0]) && !applications[1].records.empty()) {
        append(applications[1], applications[0]);
        applications[0] = {};
    }
    for (ImageApplication& application : applications) {
        std::sort(
            application.records.begin(), application.records.end(),
            [](const DataRecord& one, const DataRecord& other) { return one.offset < other.offset; });
        if (!application.records.empty() || !application.looseSignatures.empty())
            m_result.applications.push_back(std::move(application));
    }
    return std::move(m_result);
}

} // namespace

const DataRecord* ImageApplication::find(unsigned short fid) const
{
    const auto record = std::find_if(
        records.begin(), records.end(), [fid](const DataRecord& each) { return each.fid == fid; });
    return record == records.end() ? nullptr : &*record;
}

ImageApplications applicationsOf(const QByteArray& image)
{
    Sorter sorter(image);
    const std::size_t end = visitRecords(
        reinterpret_cast<const unsigned char*>(image.constData()), static_cast<std::size_t>(image.size()),
        [&sorter](const RecordPlace& place) { sorter.take(place); });
    return sorter.result(end);
}

} // namespace scard::verify::detail
