#include "VouchedParts.h"

#include "TestRoots.h"

#include <simulator/VerifyG1.h>
#include <simulator/VerifyG2.h>

#include <algorithm>

namespace fuzz {

namespace {

using sim::Bytes;

constexpr std::size_t headerLength = 5;
constexpr std::uint16_t iccFid = 0x0002;
constexpr std::uint16_t cardFid = 0xC100;
constexpr std::uint16_t cardSignFid = 0xC101;
constexpr std::uint16_t authorityFid = 0xC108;
constexpr std::uint16_t linkFid = 0xC109;
constexpr std::size_t certificateLengthG1 = 194;

struct Record
{
    std::size_t offset = 0;
    std::uint16_t fid = 0;
    std::uint8_t type = 0;
    Bytes payload;

    std::size_t begin() const { return offset + headerLength; }
    std::size_t end() const { return begin() + payload.size(); }
};

std::vector<Record> wholeRecordsOf(const Bytes& image)
{
    std::vector<Record> records;
    for (std::size_t at = 0; image.size() - at >= headerLength;) {
        const std::size_t length = sim::readU16(image, at + 3);
        if (image.size() - at - headerLength < length)
            break;
        records.push_back(
            {at, sim::readU16(image, at), image[at + 2], sim::slice(image, at + headerLength, length)});
        at = records.back().end();
    }
    return records;
}

/// True for the authorisation of one of the equipment types @p types.
bool isMadeOutFor(const Bytes& authorisation, const Bytes& application, const std::set<std::uint8_t>& types)
{
    return authorisation.size() == 7 &&
           std::equal(application.begin(), application.end(), authorisation.begin()) &&
           types.count(authorisation.back()) != 0;
}

/// The certificate in an EF, without what stands behind it; empty when its length cannot be told.
Bytes withoutPadding(const Bytes& payload)
{
    constexpr std::size_t tagLength = 2;
    if (payload.size() < tagLength + 3)
        return {};
    const std::uint8_t form = payload[tagLength];
    const std::size_t length = form == 0x81   ? tagLength + 2 + payload[tagLength + 1]
                               : form == 0x82 ? tagLength + 3 + sim::readU16(payload, tagLength + 1)
                                              : tagLength + 1 + form;
    return length > payload.size() ? Bytes() : sim::slice(payload, 0, length);
}

/// Goes from the roots to the records of one application.
class Application
{
  public:
    /// @param dataType of its data records; its signature records have the next
    Application(const std::vector<Record>& records, std::uint8_t dataType, VouchedParts& parts)
        : m_records(records), m_dataType(dataType), m_parts(parts)
    {}

    void vouchG1();
    void vouchG2();

  private:
    template <typename Visit>
    void eachOf(std::uint16_t fid, Visit visit);
    template <typename Holds>
    void vouchSigned(Holds holds);
    void vouchChip(const std::set<Bytes>& cards);
    void vouch(std::size_t begin, std::size_t end);

    const std::vector<Record>& m_records;
    const std::uint8_t m_dataType;
    VouchedParts& m_parts;
};

void Application::vouchG1()
{
    const Bytes name = {0xFF, 'T', 'A', 'C', 'H', 'O'};
    std::vector<sim::CertificateContentG1> authorities;
    std::vector<sim::PublicKeyG1> keys;
    std::set<Bytes> cards;
    const auto open = [](const Record& record, const sim::PublicKeyG1& issuer) {
        return record.payload.size() < certificateLengthG1
                   ? std::nullopt
                   : sim::verifyCertificateG1(sim::slice(record.payload, 0, certificateLengthG1), issuer);
    };
    eachOf(authorityFid, [&](const Record& record) {
        const auto content = open(record, testRootG1().key);
        if (!content || content->authority != testRootG1().identifier ||
            !isMadeOutFor(content->authorisation, name, {0}))
            return;
        authorities.push_back(*content);
        vouch(record.offset, record.begin() + certificateLengthG1);
    });
    eachOf(cardFid, [&](const Record& record) {
        for (const auto& authority : authorities) {
            const auto content = open(record, authority.key);
            if (!content || content->authority != authority.holder ||
                !isMadeOutFor(content->authorisation, name, {1, 2, 3, 4}))
                continue;
            keys.push_back(content->key);
            cards.insert(content->holder);
            vouch(record.offset, record.begin() + certificateLengthG1);
        }
    });
    vouchChip(cards);
    vouchSigned([&](const Bytes& data, const Bytes& signature) {
        return std::any_of(keys.begin(), keys.end(), [&](const sim::PublicKeyG1& key) {
            return sim::verifySignatureG1(key, data, signature);
        });
    });
}

void Application::vouchG2()
{
    const Bytes name = {0xFF, 'S', 'M', 'R', 'D', 'T'};
    std::vector<TestRootG2> roots = testRootsG2();
    std::vector<sim::CertificateContentG2> authorities;
    std::vector<sim::PublicKeyG2> keys;
    std::set<Bytes> cards;
    const auto take = [&](std::uint16_t fid, const Bytes& issuer, const sim::PublicKeyG2& key,
                          const std::set<std::uint8_t>& types, auto use) {
        eachOf(fid, [&](const Record& record) {
            const Bytes certificate = withoutPadding(record.payload);
            const auto content = sim::verifyCertificateG2(certificate, key);
            if (!content || content->authority != issuer ||
                !isMadeOutFor(content->authorisation, name, types))
                return;
            use(*content);
            vouch(record.offset, record.begin() + certificate.size());
        });
    };
    for (const TestRootG2& root : testRootsG2())
        take(linkFid, root.identifier, root.key, {0x0D}, [&](const sim::CertificateContentG2& content) {
            roots.push_back({content.holder, content.key});
        });
    for (const TestRootG2& root : roots)
        take(authorityFid, root.identifier, root.key, {0x0E}, [&](const sim::CertificateContentG2& content) {
            authorities.push_back(content);
        });
    for (const sim::CertificateContentG2& authority : authorities) {
        take(cardFid, authority.holder, authority.key, {1, 2, 3, 4}, [&](const auto& content) {
            cards.insert(content.holder);
        });
        take(cardSignFid, authority.holder, authority.key, {0x11, 0x12}, [&](const auto& content) {
            keys.push_back(content.key);
            cards.insert(content.holder);
        });
    }
    vouchChip(cards);
    vouchSigned([&](const Bytes& data, const Bytes& signature) {
        return std::any_of(keys.begin(), keys.end(), [&](const sim::PublicKeyG2& key) {
            return sim::verifySignatureG2(key, data, signature);
        });
    });
}

template <typename Visit>
void Application::eachOf(std::uint16_t fid, Visit visit)
{
    for (const Record& record : m_records) {
        if (record.fid == fid && record.type == m_dataType)
            visit(record);
    }
}

/// Each data record whose signature stands directly behind it.
template <typename Holds>
void Application::vouchSigned(Holds holds)
{
    for (std::size_t i = 1; i < m_records.size(); ++i) {
        const Record& data = m_records[i - 1];
        const Record& signature = m_records[i];
        if (data.type != m_dataType || signature.type != m_dataType + 1 || signature.fid != data.fid ||
            !holds(data.payload, signature.payload))
            continue;
        m_parts.records.insert(static_cast<long long>(data.offset));
        vouch(data.offset, signature.end());
    }
}

/// EF_ICC is not signed; its serial number is that of the certificates.
void Application::vouchChip(const std::set<Bytes>& cards)
{
    constexpr std::size_t serialNumberAt = 1;
    constexpr std::size_t serialNumberLength = 8;
    m_parts.cards.insert(cards.begin(), cards.end());
    eachOf(iccFid, [&](const Record& record) {
        if (record.payload.size() >= serialNumberAt + serialNumberLength &&
            cards.count(sim::slice(record.payload, serialNumberAt, serialNumberLength)) != 0)
            vouch(record.begin() + serialNumberAt, record.begin() + serialNumberAt + serialNumberLength);
    });
}

void Application::vouch(std::size_t begin, std::size_t end)
{
    std::fill(
        m_parts.bytes.begin() + static_cast<std::ptrdiff_t>(begin),
        m_parts.bytes.begin() + static_cast<std::ptrdiff_t>(end), true);
}

} // namespace

VouchedParts vouchedPartsOf(const Bytes& image)
{
    VouchedParts parts;
    parts.bytes.resize(image.size());
    const std::vector<Record> records = wholeRecordsOf(image);
    Application(records, 0, parts).vouchG1();
    Application(records, 2, parts).vouchG2();
    return parts;
}

} // namespace fuzz
