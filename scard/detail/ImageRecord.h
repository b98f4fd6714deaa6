#pragma once

#include <aux/Error.h>
#include <scard/records/ImageRecord.h>

#include <array>
#include <cstddef>
#include <string>
#include <vector>

// The records of a download image: making, finding and copying them.

namespace scard::detail {

/// Id of a request that does not fit the dataset in the image.
constexpr unsigned int imageDatasetErrorId = 6700;

/// Bytes of an image; @c bytes is null when there is none.
struct ImageView
{
    const unsigned char* bytes = nullptr;
    std::size_t size = 0;
};

/// Where the payload of a record lies in an image.
struct Extent
{
    unsigned int start = 0;
    unsigned int length = 0;
};

RecordType dataType(bool secondGeneration);
RecordType signatureType(bool secondGeneration);

/// The header of a record; a length above 65,535 is cut to its low 16 bits.
std::array<unsigned char, recordHeaderLength>
recordHeader(unsigned short fid, RecordType type, std::size_t payloadLength);

/// Finds the first record with @p fid and @p type that lies wholly within the image.
/// Not found: @p found is zero and the error "memSelectFile(): Dataset not found" has id 0.
aux::Error findDataset(ImageView image, unsigned short fid, RecordType type, Extent& found);

/// Succeeds when the image holds a whole data record of the named application's generation.
/// Its errors for a missing record have the id 27266 (6A82, file not found), as a card would answer.
aux::Error findApplication(ImageView image, const std::string& applicationName);

/// Copies @p requested bytes from @p offset of the dataset at @p dataset.
/// @throws aux::Error with id 6700 when they are not all inside the dataset and the image.
std::vector<unsigned char>
copyFromDataset(ImageView image, Extent dataset, unsigned short offset, unsigned long long requested);

} // namespace scard::detail
