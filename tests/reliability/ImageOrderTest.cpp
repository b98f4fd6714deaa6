// A download's file with its records in another order, more than once, or with other things between them.
#include "ImageReading.h"

#include <support/FileRecords.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <map>
#include <random>

namespace {

using namespace test;

EfKey keyOf(const QByteArray& recordBytes)
{
    const FileRecord record = recordsOf(recordBytes).front();
    return {record.fid, record.type};
}

/// The records of @p file in an order that @p seed decides. Of one EF and type they keep their order.
QByteArray shuffled(const QByteArray& file, unsigned int seed)
{
    std::vector<QByteArray> records = recordBytes(file);
    std::map<EfKey, std::vector<QByteArray>> inOrder;
    for (const QByteArray& each : records)
        inOrder[keyOf(each)].push_back(each);
    std::mt19937 random(seed);
    // std::shuffle() gives each standard library its own order.
    for (std::size_t i = records.size() - 1; i > 0; --i)
        std::swap(records[i], records[random() % (i + 1)]);
    std::map<EfKey, std::size_t> next;
    for (QByteArray& each : records) {
        const EfKey key = keyOf(each);
        each = inOrder[key][next[key]++];
    }
    return joined(records);
}

/// The records of @p file with @p between before, between and behind them.
QByteArray withBetween(const QByteArray& file, const QByteArray& between)
{
    QByteArray result = between;
    for (const QByteArray& each : recordBytes(file))
        result += each + between;
    return result;
}

/// @p file with another last byte in the data of each EF that says neither how long others are nor itself.
QByteArray withOtherData(const QByteArray& file)
{
    QByteArray changed = file;
    for (const FileRecord& each : recordsOf(file)) {
        const bool isCount = each.fid == 0x0501 || each.fid == 0x0525 || each.fid >= 0xC100;
        if (each.type % 2 == 0 && !isCount && each.length > 0)
            changed[each.end() - 1] = static_cast<char>(changed.at(each.end() - 1) ^ 0x01);
    }
    return changed;
}

class ImageOrderTest : public testing::TestWithParam<CardFile>
{
  protected:
    void SetUp() override
    {
        good = reader.read(file);
        ASSERT_TRUE(good.isWhole());
    }

    const CardFile& download = GetParam();
    const QByteArray& file = download.file;
    const bool isSecond = selectionOf(file).hasSecond();
    ImageReader reader;
    Reading good;
};

TEST_P(ImageOrderTest, TheOrderOfDifferentRecordsDoesNotMatter)
{
    for (unsigned int seed = 1; seed <= 12; ++seed) {
        const QByteArray other = shuffled(file, seed);
        ASSERT_NE(other, file);
        EXPECT_EQ(reader.read(other), good) << "seed " << seed;
    }
}

TEST_P(ImageOrderTest, RecordsInReverseAnswerTheSameUnlessTwoAreOfOneEf)
{
    std::vector<QByteArray> records = recordBytes(file);
    std::reverse(records.begin(), records.end());
    const QByteArray reversed = joined(records);
    const Reading reading = reader.read(reversed);
    if (!download.isOneApplication) {
        EXPECT_EQ(reading, good);
        return;
    }
    // What is first now are the records of the card's second application.
    EXPECT_TRUE(reading.isWhole());
    EXPECT_EQ(reading, reader.read(firstOfEach(reversed)));
}

TEST_P(ImageOrderTest, TheApplicationsMayBeMixed)
{
    std::vector<QByteArray> first;
    std::vector<QByteArray> second;
    for (const QByteArray& each : recordBytes(file))
        (keyOf(each).second < 2 ? first : second).push_back(each);
    QByteArray mixed;
    for (std::size_t i = 0; i < std::max(first.size(), second.size()); ++i)
        mixed += second.size() > i ? second[i] + first.at(std::min(i, first.size() - 1)) : first[i];
    EXPECT_EQ(reader.read(mixed), good);
    EXPECT_EQ(reader.read(joined(second) + joined(first)), good);
}

TEST_P(ImageOrderTest, ARepeatedRecordChangesNothing)
{
    QByteArray twice;
    for (const QByteArray& each : recordBytes(file))
        twice += each + each;
    EXPECT_EQ(reader.read(twice), good);
    EXPECT_EQ(reader.read(file + file), good);
}

TEST_P(ImageOrderTest, TheFirstOfTwoDifferentRecordsCounts)
{
    const QByteArray other = withOtherData(file);
    const Reading otherReading = reader.read(other);
    ASSERT_TRUE(otherReading.isWhole());
    ASSERT_FALSE(otherReading == good);
    EXPECT_EQ(reader.read(file + other), good);
    EXPECT_EQ(reader.read(other + file), otherReading);
}

TEST_P(ImageOrderTest, UnknownRecordsBetweenAreNotSeen)
{
    const QByteArray payload = QByteArray::fromHex("050102000301010104");
    QByteArray unknown;
    for (const unsigned int fid : {0x0000U, 0x0500U, 0x7631U, 0xFFFFU})
        unknown += record(fid, 0, payload) + record(fid, 1, payload) + record(fid, 3, payload);
    for (const unsigned int fid : knownEfs()) {
        for (const unsigned int type : {0x04U, 0x80U, 0x81U, 0x82U, 0xFFU})
            unknown += record(fid, type, payload);
    }
    if (isSecond)
        unknown += record(0x0500, 2, payload);
    EXPECT_EQ(reader.read(withBetween(file, unknown)), good);
}

TEST_P(ImageOrderTest, ARecordOfTheSecondGenerationMakesTheCardOne)
{
    const Reading reading = reader.read(file + record(0x0500, 2, "?"));
    if (isSecond)
        EXPECT_EQ(reading, good);
    else
        EXPECT_EQ(reading.failure, missingEf(0x0501));
}

TEST_P(ImageOrderTest, EmptyRecordsBetweenAreNotSeenUnlessTheyAreTheFirstOfTheirEf)
{
    for (const unsigned int fid : {0x0000U, 0x0500U, 0xFFFFU})
        EXPECT_EQ(reader.read(withBetween(file, record(fid, isSecond ? 2 : 0, {}))), good) << fid;
    QByteArray behind;
    QByteArray behindAll = file;
    for (const QByteArray& each : recordBytes(file)) {
        const EfKey key = keyOf(each);
        behind += each + record(key.first, key.second, {});
        behindAll += record(key.first, key.second, {});
    }
    EXPECT_EQ(reader.read(behind), good);
    EXPECT_EQ(reader.read(behindAll), good);
}

TEST_P(ImageOrderTest, AnEmptyRecordBeforeTheGoodOneIsNamed)
{
    const unsigned int type = isSecond ? 2 : 0;
    const auto needed = neededEfs(download, isSecond);
    for (const auto& ef : selectionOf(file).efs) {
        const EfKey key = ef.first;
        const Chain failure = withoutRequested(reader.failureOf(record(key.first, key.second, {}) + file));
        const bool isNeeded =
            key.second == type && std::find(needed.begin(), needed.end(), key.first) != needed.end();
        // A certificate of the second generation says itself how long it is.
        const bool saysItsLength = isSecond && key.first >= 0xC100;
        if (isNeeded && !saysItsLength)
            EXPECT_EQ((Chain{failure.at(0)}), shortEf(0)) << key.first;
        else
            EXPECT_THAT(failure, testing::IsEmpty()) << key.first << ' ' << key.second;
    }
}

TEST_P(ImageOrderTest, RecordsOfTheGreatestLengthBetweenAreNotSeen)
{
    constexpr int greatest = 0xFFFF;
    ASSERT_LT(file.size(), greatest);
    const QByteArray payload(greatest, '\x05');
    const unsigned int type = isSecond ? 2 : 0;
    EXPECT_EQ(reader.read(withBetween(file, record(0x0500, type, payload))), good);
    EXPECT_EQ(reader.read(file + recordHeader(0x0501, type, greatest) + payload), good);
    // Without their data they end behind the file.
    EXPECT_EQ(reader.read(withBetween(file, recordHeader(0x0501, type, greatest))), good);
}

INSTANTIATE_TEST_SUITE_P(SmallCards, ImageOrderTest, testing::ValuesIn(smallDownloads()), nameOf);

class RealImageOrderTest : public ImageOrderTest
{};

TEST_P(RealImageOrderTest, TheOrderOfDifferentRecordsDoesNotMatter)
{
    for (unsigned int seed = 1; seed <= 2; ++seed)
        EXPECT_EQ(reader.read(shuffled(file, seed)), good) << "seed " << seed;
}

TEST_P(RealImageOrderTest, ARepeatedRecordChangesNothing)
{
    EXPECT_EQ(reader.read(file + file), good);
}

INSTANTIATE_TEST_SUITE_P(RealCards, RealImageOrderTest, testing::ValuesIn(realDownloads()), nameOf);

} // namespace
