#include "fixtures/Image.h"

#include <scard/detail/ApplicationName.h>
#include <scard/detail/ImageRecord.h>
#include <support/ErrorChain.h>

#include <gmock/gmock.h>

#include <limits>
#include <string>

namespace {

using namespace scard::detail;
using scard::recordHeaderLength;
using scard::RecordType;
using test::Bytes;
using test::chain;
using test::Image;
using test::lib;
using test::thrown;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr unsigned int fileNotFound = 27266;

ImageView view(const Bytes& bytes)
{
    return {bytes.data(), bytes.size()};
}

const std::string& tacho()
{
    return firstGenerationApplication();
}
const std::string& smrdt()
{
    return secondGenerationApplication();
}

struct Found
{
    test::Chain failure;
    unsigned int start;
    unsigned int length;
};

Found find(const Bytes& bytes, unsigned short fid, RecordType type)
{
    Extent extent{0xDEAD, 0xBEEF};
    const aux::Error failure = findDataset(view(bytes), fid, type, extent);
    return {chain(failure), extent.start, extent.length};
}

void expectAt(const Found& found, unsigned int start, unsigned int length)
{
    EXPECT_THAT(found.failure, IsEmpty());
    EXPECT_EQ(found.start, start);
    EXPECT_EQ(found.length, length);
}

void expectMissing(const Found& found)
{
    EXPECT_THAT(found.failure, ElementsAre(lib("memSelectFile(): Dataset not found", 0)));
    EXPECT_EQ(found.start, 0U);
    EXPECT_EQ(found.length, 0U);
}

TEST(ApplicationName, IsFfAndFiveLetters)
{
    EXPECT_EQ(tacho(), std::string("\xFF\x54\x41\x43\x48\x4F", 6));
    EXPECT_EQ(smrdt(), std::string("\xFF\x53\x4D\x52\x44\x54", 6));
}

TEST(ImageRecord, TypesFollowGenerationAndKind)
{
    EXPECT_EQ(static_cast<int>(dataType(false)), 0x00);
    EXPECT_EQ(static_cast<int>(signatureType(false)), 0x01);
    EXPECT_EQ(static_cast<int>(dataType(true)), 0x02);
    EXPECT_EQ(static_cast<int>(signatureType(true)), 0x03);
}

TEST(ImageRecord, HeaderIsFidTypeAndLengthBigEndian)
{
    EXPECT_THAT(recordHeader(0x0520, RecordType::DataG1, 143), ElementsAre(0x05, 0x20, 0x00, 0x00, 0x8F));
    EXPECT_THAT(
        recordHeader(0xC108, RecordType::SignatureG2, 0x1234), ElementsAre(0xC1, 0x08, 0x03, 0x12, 0x34));
    EXPECT_THAT(recordHeader(0x0002, RecordType::DataG2, 0), ElementsAre(0x00, 0x02, 0x02, 0x00, 0x00));
}

TEST(ImageRecord, HeaderHoldsTheLowSixteenBitsOfTheLength)
{
    EXPECT_THAT(recordHeader(0x0504, RecordType::DataG1, 65535), ElementsAre(0x05, 0x04, 0x00, 0xFF, 0xFF));
    EXPECT_THAT(recordHeader(0x0504, RecordType::DataG1, 65536), ElementsAre(0x05, 0x04, 0x00, 0x00, 0x00));
    EXPECT_THAT(recordHeader(0x0504, RecordType::DataG1, 65836), ElementsAre(0x05, 0x04, 0x00, 0x01, 0x2C));
}

TEST(FindDataset, WithoutAnImageSaysSo)
{
    Extent extent{1, 2};
    EXPECT_THAT(
        chain(findDataset({}, 0x0501, RecordType::DataG1, extent)),
        ElementsAre(lib("memSelectFile(): ddd file buffer not mapped", 0)));
}

TEST(FindDataset, AnImageShorterThanAHeaderHoldsNothing)
{
    const Bytes whole{0x00, 0x00, 0x00, 0x00, 0x00};
    for (std::size_t size = 0; size < whole.size(); ++size) {
        SCOPED_TRACE(size);
        // The capacity keeps the pointer of the image of no bytes from being null.
        Bytes bytes;
        bytes.reserve(8);
        bytes.assign(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
        expectMissing(find(bytes, 0x0000, RecordType::DataG1));
    }
}

TEST(FindDataset, GivesPositionAndLengthOfThePayload)
{
    const Bytes bytes = Image()
                            .add(0x0002, test::dataG1, test::counted(25))
                            .add(0x0005, test::dataG1, test::counted(8))
                            .add(0x0501, test::dataG1, test::counted(300))
                            .bytes();

    expectAt(find(bytes, 0x0002, RecordType::DataG1), 5, 25);
    expectAt(find(bytes, 0x0005, RecordType::DataG1), 35, 8);
    expectAt(find(bytes, 0x0501, RecordType::DataG1), 48, 300);
    expectMissing(find(bytes, 0x0520, RecordType::DataG1));
}

TEST(FindDataset, TakesTheFirstOfSeveralMatches)
{
    const Bytes bytes = Image().add(0x0501, test::dataG1, {1}).add(0x0501, test::dataG1, {2, 3}).bytes();

    expectAt(find(bytes, 0x0501, RecordType::DataG1), 5, 1);
}

TEST(FindDataset, KeepsTheGenerationsApart)
{
    const Bytes bytes = Image()
                            .add(0x0501, test::dataG2, {1, 2, 3})
                            .add(0x0501, test::dataG1, {4, 5})
                            .add(0x0524, test::dataG2, {6})
                            .bytes();

    expectAt(find(bytes, 0x0501, RecordType::DataG2), 5, 3);
    expectAt(find(bytes, 0x0501, RecordType::DataG1), 13, 2);
    expectMissing(find(bytes, 0x0524, RecordType::DataG1));
}

TEST(FindDataset, PassesSignaturesAndUnknownTypes)
{
    const Bytes bytes = Image()
                            .add(0x0501, test::signatureG1, {1})
                            .add(0x0501, test::signatureG2, {2})
                            .add(0x0501, 0x81, {3})
                            .add(0x0501, test::dataG1, {4})
                            .bytes();

    expectAt(find(bytes, 0x0501, RecordType::DataG1), 23, 1);
    expectMissing(find(bytes, 0x0501, RecordType::DataG2));
}

TEST(FindDataset, FindsARecordOfLengthZeroAtTheVeryEnd)
{
    const Bytes bytes = Image().add(0x0002, test::dataG1, {1, 2}).add(0x0505, test::dataG1, {}).bytes();

    expectAt(find(bytes, 0x0505, RecordType::DataG1), 12, 0);
    EXPECT_EQ(bytes.size(), 12U);
}

TEST(FindDataset, FindsARecordOfTheGreatestLength)
{
    const Bytes bytes =
        Image().add(0x0504, test::dataG1, Bytes(65535)).add(0x0505, test::dataG1, {1}).bytes();

    expectAt(find(bytes, 0x0504, RecordType::DataG1), 5, 65535);
    expectAt(find(bytes, 0x0505, RecordType::DataG1), 65545, 1);
}

TEST(FindDataset, ARecordThatEndsOneByteBeyondTheImageIsNotFound)
{
    Bytes bytes = Image().add(0x0501, test::dataG1, {1, 2, 3}).bytes();
    bytes.pop_back();
    bytes.shrink_to_fit();

    expectMissing(find(bytes, 0x0501, RecordType::DataG1));
}

TEST(FindDataset, BytesBehindTheLastRecordThatAreNoHeaderEndTheSearch)
{
    for (std::size_t rest = 1; rest < recordHeaderLength; ++rest) {
        SCOPED_TRACE(rest);
        Bytes bytes = Image().add(0x0002, test::dataG1, {1}).bytes();
        bytes.insert(bytes.end(), rest, 0x05);
        bytes.shrink_to_fit();
        expectAt(find(bytes, 0x0002, RecordType::DataG1), 5, 1);
        expectMissing(find(bytes, 0x0505, RecordType::DataG1));
    }
}

TEST(FindDataset, OnlyTheHeaderOfATruncatedRecordIsPassed)
{
    Bytes bytes{0x05, 0x02, 0x00, 0xFF, 0xFF};
    const Bytes behind = Image().add(0x0503, test::dataG1, {0xAA, 0xBB}).bytes();
    bytes.insert(bytes.end(), behind.begin(), behind.end());

    expectMissing(find(bytes, 0x0502, RecordType::DataG1));
    expectAt(find(bytes, 0x0503, RecordType::DataG1), 10, 2);
}

TEST(FindDataset, SeveralTruncatedRecordsArePassedHeaderByHeader)
{
    Bytes bytes;
    for (int i = 0; i < 3; ++i)
        bytes.insert(bytes.end(), {0x05, 0x02, 0x00, 0x40, 0x00});
    const Bytes behind = Image().add(0x0502, test::dataG1, {0xAA}).bytes();
    bytes.insert(bytes.end(), behind.begin(), behind.end());

    expectAt(find(bytes, 0x0502, RecordType::DataG1), 20, 1);
}

TEST(FindDataset, ARecordThatTheScanDoesNotLandOnIsNotFound)
{
    // Two bytes of the truncated record stand before the whole one, so its header is never met.
    Bytes bytes{0x05, 0x02, 0x00, 0xFF, 0xFF, 0x00, 0x00};
    const Bytes behind = Image().add(0x0503, test::dataG1, {0xAA, 0xBB}).bytes();
    bytes.insert(bytes.end(), behind.begin(), behind.end());

    expectMissing(find(bytes, 0x0503, RecordType::DataG1));
}

TEST(FindApplication, AnImageShorterThanAHeaderHasNotEnoughData)
{
    for (std::size_t size = 0; size < recordHeaderLength; ++size) {
        SCOPED_TRACE(size);
        Bytes bytes;
        bytes.reserve(8);
        bytes.assign(size, 0);
        for (const std::string& name : {tacho(), smrdt()})
            EXPECT_THAT(
                chain(findApplication(view(bytes), name)),
                ElementsAre(lib("memSelectFile(): Not enough data", fileNotFound)));
    }
}

TEST(FindApplication, WithoutAnImageThereIsNotEnoughData)
{
    EXPECT_THAT(
        chain(findApplication({}, tacho())),
        ElementsAre(lib("memSelectFile(): Not enough data", fileNotFound)));
}

TEST(FindApplication, ASizeWithoutBytesIsNoImage)
{
    EXPECT_THAT(
        chain(findApplication({nullptr, 100}, tacho())),
        ElementsAre(lib("memSelectFile(): ddd file buffer not mapped", 0)));
}

TEST(FindApplication, LooksForADataRecordOfTheGeneration)
{
    const struct
    {
        const char* name;
        Image image;
        bool first;
        bool second;
    } rows[] = {
        {"first generation", Image().add(0x0501, test::dataG1, {1}), true, false},
        {"second generation", Image().add(0x0501, test::dataG2, {1}), false, true},
        {"both", Image().add(0x0002, test::dataG1, {1}).add(0x0501, test::dataG2, {1}), true, true},
        {"any FID will do", Image().add(0xFFFF, test::dataG1, {1}), true, false},
        {"no payload", Image().add(0x0002, test::dataG2, {}), false, true},
        {"signatures only", Image().add(0x0501, test::signatureG1, {1}).add(0x0501, test::signatureG2, {1}),
         false, false},
        {"other types only", Image().add(0x0501, 0x80, {1}).add(0x0501, 0x82, {1}), false, false},
        {"behind other records", Image().add(0x0501, test::signatureG1, {1, 2}).add(0x0505, test::dataG2, {}),
         false, true},
    };
    const aux::Error success;
    const test::Chain missing{lib("memSelectFile(): Dataset not found", fileNotFound)};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const Bytes bytes = row.image.bytes();
        EXPECT_EQ(chain(findApplication(view(bytes), tacho())), row.first ? test::Chain() : missing);
        EXPECT_EQ(chain(findApplication(view(bytes), smrdt())), row.second ? test::Chain() : missing);
    }
}

TEST(FindApplication, ATruncatedRecordDoesNotCount)
{
    const Bytes alone{0x05, 0x01, 0x00, 0x00, 0x02, 0xAA};
    EXPECT_THAT(
        chain(findApplication(view(alone), tacho())),
        ElementsAre(lib("memSelectFile(): Dataset not found", fileNotFound)));

    const Bytes beforeAWhole{0x05, 0x01, 0x02, 0xFF, 0xFF, 0x05, 0x02, 0x00, 0x00, 0x00};
    EXPECT_THAT(chain(findApplication(view(beforeAWhole), tacho())), IsEmpty());
    EXPECT_THAT(
        chain(findApplication(view(beforeAWhole), smrdt())),
        ElementsAre(lib("memSelectFile(): Dataset not found", fileNotFound)));
}

TEST(FindApplication, EveryNameButTheSecondGenerationsMeansTheFirst)
{
    const Bytes first = Image().add(0x0501, test::dataG1, {1}).bytes();
    const Bytes second = Image().add(0x0501, test::dataG2, {1}).bytes();
    for (const std::string& name : {std::string(), std::string("SMRDT"), std::string("\xFFSMRDTX")}) {
        SCOPED_TRACE(name);
        EXPECT_THAT(chain(findApplication(view(first), name)), IsEmpty());
        EXPECT_THAT(
            chain(findApplication(view(second), name)),
            ElementsAre(lib("memSelectFile(): Dataset not found", fileNotFound)));
    }
}

TEST(CopyFromDataset, CopiesTheBytesFromTheOffsetOn)
{
    const Bytes bytes = test::counted(20);
    const Extent dataset{5, 10};

    EXPECT_THAT(copyFromDataset(view(bytes), dataset, 0, 3), ElementsAre(5, 6, 7));
    EXPECT_THAT(copyFromDataset(view(bytes), dataset, 8, 2), ElementsAre(13, 14));
    EXPECT_EQ(copyFromDataset(view(bytes), dataset, 0, 10), test::counted(10, 5));
}

TEST(CopyFromDataset, CopiesNothingWhenNothingIsRequested)
{
    const Bytes bytes = test::counted(20);

    EXPECT_THAT(copyFromDataset(view(bytes), {5, 10}, 0, 0), IsEmpty());
    EXPECT_THAT(copyFromDataset(view(bytes), {5, 10}, 10, 0), IsEmpty());
    EXPECT_THAT(copyFromDataset(view(bytes), {20, 0}, 0, 0), IsEmpty());
}

TEST(CopyFromDataset, ARequestBeyondTheDatasetIsRefused)
{
    const Bytes bytes = test::counted(40);
    const struct
    {
        const char* name;
        unsigned short offset;
        unsigned long long requested;
        const char* text;
    } rows[] = {
        {"one byte too many", 0, 11, "readFromMem() invalid dataset size:10requested:11"},
        {"one byte too many behind an offset", 4, 7, "readFromMem() invalid dataset size:10requested:7"},
        {"offset beyond the dataset", 11, 0, "readFromMem() invalid dataset size:10requested:0"},
        {"greatest offset", 0xFFFF, 1, "readFromMem() invalid dataset size:10requested:1"},
        {"more than 32 bits hold", 0, 0x100000001,
         "readFromMem() invalid dataset size:10requested:4294967297"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_THAT(
            thrown([&] {
                copyFromDataset(view(bytes), {5, 10}, row.offset, row.requested);
            }),
            ElementsAre(lib(row.text, 6700)));
    }
}

TEST(CopyFromDataset, AnExtentThatLiesDoesNotLeadBeyondTheImage)
{
    const Bytes bytes = test::counted(20);
    const unsigned int greatest = std::numeric_limits<unsigned int>::max();
    const struct
    {
        const char* name;
        Extent dataset;
        unsigned short offset;
        unsigned long long requested;
        const char* text;
    } rows[] = {
        {"one byte beyond", {15, 6}, 0, 6, "readFromMem() data access error @offs:21 buffer size:20"},
        {"one byte beyond behind an offset",
         {15, 6},
         5,
         1,
         "readFromMem() data access error @offs:21 buffer size:20"},
        {"start behind the end", {30, 4}, 0, 4, "readFromMem() data access error @offs:34 buffer size:20"},
        {"start at the greatest number",
         {greatest, 4},
         0,
         4,
         "readFromMem() data access error @offs:4294967299 buffer size:20"},
        {"start and offset pass 32 bits",
         {greatest, 4},
         2,
         1,
         "readFromMem() data access error @offs:4294967298 buffer size:20"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_THAT(
            thrown([&] { copyFromDataset(view(bytes), row.dataset, row.offset, row.requested); }),
            ElementsAre(lib(row.text, 6700)));
    }
}

TEST(CopyFromDataset, WithoutAnImageThereIsNothingToCopy)
{
    EXPECT_THAT(
        thrown([] {
            copyFromDataset({}, {0, 4}, 0, 4);
        }),
        ElementsAre(lib("readFromMem() data access error @offs:4 buffer size:0", 6700)));
}

} // namespace
