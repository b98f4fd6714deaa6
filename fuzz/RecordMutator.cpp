// Changes downloads by their records: a change of bytes alone would mostly destroy the lengths, and no search
// would come further than to the first EF.
#include <scard/records/ImageRecord.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <random>
#include <vector>

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t maxSize);

namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t headerLength = 5;
constexpr std::size_t longestPayload = 0xFFFF;

struct Record
{
    std::uint8_t fid[2];
    std::uint8_t type;
    Bytes payload;
};

std::vector<Record> recordsOf(const std::uint8_t* data, std::size_t size)
{
    std::vector<Record> records;
    for (std::size_t at = 0; at + headerLength <= size;) {
        const std::size_t length = static_cast<std::size_t>(data[at + 3] << 8 | data[at + 4]);
        const std::size_t begin = at + headerLength;
        const std::size_t end = std::min(size, begin + length);
        records.push_back({{data[at], data[at + 1]}, data[at + 2], Bytes(data + begin, data + end)});
        at = end;
    }
    return records;
}

std::size_t write(const std::vector<Record>& records, std::uint8_t* data, std::size_t maxSize)
{
    std::size_t size = 0;
    for (const Record& record : records) {
        const std::size_t length = record.payload.size();
        if (size + headerLength + length > maxSize)
            break;
        const std::uint8_t header[headerLength] = {
            record.fid[0], record.fid[1], record.type, static_cast<std::uint8_t>(length >> 8),
            static_cast<std::uint8_t>(length & 0xFF)};
        std::copy(std::begin(header), std::end(header), data + size);
        std::copy(record.payload.begin(), record.payload.end(), data + size + headerLength);
        size += headerLength + length;
    }
    return size;
}

void changePayload(Bytes& payload, std::size_t maxSize, std::mt19937& random)
{
    const bool keepsLength = random() % 4 != 0;
    const std::size_t length = payload.size();
    const std::size_t room = keepsLength ? length : std::min({length + 600, maxSize, longestPayload});
    if (room == 0)
        return;
    payload.resize(std::max(room, length));
    const std::size_t changed = LLVMFuzzerMutate(payload.data(), length, room);
    payload.resize(keepsLength ? length : changed);
}

} // namespace

extern "C" std::size_t
LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t maxSize, unsigned int seed)
{
    std::mt19937 random(seed);
    std::vector<Record> records = recordsOf(data, size);
    if (records.empty() || random() % 8 == 0)
        return LLVMFuzzerMutate(data, size, maxSize);
    const std::size_t at = random() % records.size();
    switch (random() % 8) {
    case 0:
        records.erase(records.begin() + static_cast<std::ptrdiff_t>(at));
        break;
    case 1:
        records.insert(
            records.begin() + static_cast<std::ptrdiff_t>(random() % records.size()), Record(records[at]));
        break;
    case 2:
        std::swap(records[at], records[random() % records.size()]);
        break;
    case 3:
        records[at].type = static_cast<std::uint8_t>(random() % 5);
        break;
    default:
        changePayload(records[at].payload, maxSize, random);
    }
    return write(records, data, maxSize);
}

// The first records of one download and the last of another, or the first application of the one and the
// second of the other.
extern "C" std::size_t LLVMFuzzerCustomCrossOver(
    const std::uint8_t* data1, std::size_t size1, const std::uint8_t* data2, std::size_t size2,
    std::uint8_t* out, std::size_t maxOutSize, unsigned int seed)
{
    std::mt19937 random(seed);
    std::vector<Record> records = recordsOf(data1, size1);
    std::vector<Record> others = recordsOf(data2, size2);
    if (random() % 4 == 0) {
        const auto isSecond = [](const Record& record) { return record.type >= 2; };
        records.erase(std::remove_if(records.begin(), records.end(), isSecond), records.end());
        others.erase(std::remove_if(others.begin(), others.end(), std::not_fn(isSecond)), others.end());
    } else {
        records.resize(records.empty() ? 0 : random() % records.size());
        if (!others.empty())
            others.erase(
                others.begin(), others.begin() + static_cast<std::ptrdiff_t>(random() % others.size()));
    }
    records.insert(records.end(), others.begin(), others.end());
    return write(records, out, maxOutSize);
}
