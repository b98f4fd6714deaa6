#include "FileRecords.h"

#include <gtest/gtest.h>

namespace test {

namespace {

template <typename Place, typename File>
std::vector<RecordExtent<Place>> extentsOf(const File& file)
{
    std::vector<RecordExtent<Place>> records;
    const auto number = [&file](Place at) {
        return static_cast<unsigned int>(
            static_cast<unsigned char>(file[at]) << 8 | static_cast<unsigned char>(file[at + 1]));
    };
    const Place size = file.size();
    for (Place at = 0; at + 5 <= size; at = records.back().end())
        records.push_back(
            {at, number(at), static_cast<unsigned char>(file[at + 2]), static_cast<Place>(number(at + 3))});
    return records;
}

template <typename Place, typename File>
RecordExtent<Place> extentOf(const File& file, unsigned int fid, unsigned int type)
{
    for (const RecordExtent<Place>& record : extentsOf<Place>(file)) {
        if (record.fid == fid && record.type == type)
            return record;
    }
    ADD_FAILURE() << "no record of this EF";
    return {};
}

} // namespace

std::vector<FileRecord> recordsOf(const QByteArray& file)
{
    return extentsOf<int>(file);
}

std::vector<RecordExtent<std::size_t>> recordsOf(const sim::Bytes& file)
{
    return extentsOf<std::size_t>(file);
}

FileRecord recordOf(const QByteArray& file, unsigned int fid, unsigned int type)
{
    return extentOf<int>(file, fid, type);
}

RecordExtent<std::size_t> recordOf(const sim::Bytes& file, unsigned int fid, unsigned int type)
{
    return extentOf<std::size_t>(file, fid, type);
}

} // namespace test
