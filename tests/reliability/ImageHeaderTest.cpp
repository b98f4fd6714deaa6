// A download's file in which one byte of a record's header has another value.
#include "ImageReading.h"

#include <support/FileRecords.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <map>
#include <set>
#include <utility>

namespace {

using namespace test;

#ifdef SCARD_SANITIZED
// Several times slower: each header sees a seventh of the values, another one than the next.
constexpr int valueStep = 7;
#else
constexpr int valueStep = 1;
#endif

constexpr int lengthOffset = 3;

unsigned int byteAt(const QByteArray& bytes, int at)
{
    return static_cast<unsigned char>(bytes.at(at));
}

QByteArray withByte(QByteArray bytes, int at, unsigned int value)
{
    bytes[at] = static_cast<char>(value);
    return bytes;
}

/// The records of @p all that a reading can ask for.
Selection knownPart(const Selection& all)
{
    Selection known;
    for (const unsigned int type : {0u, 2u}) {
        if (all.types.count(type) > 0)
            known.types.insert(type);
        for (const unsigned int fid : knownEfs()) {
            const auto found = all.efs.find({fid, type});
            if (found != all.efs.end())
                known.efs.insert(*found);
        }
    }
    return known;
}

bool isKnown(const FileRecord& record)
{
    const auto& efs = knownEfs();
    return record.type <= 3 && std::find(efs.begin(), efs.end(), record.fid) != efs.end();
}

class ImageHeaderTest : public testing::TestWithParam<CardFile>
{
  protected:
    ImageReader reader;
};

TEST_P(ImageHeaderTest, ARecordOfAnUnknownNumberOrTypeIsAsIfItWereNotThere)
{
    const CardFile& download = GetParam();
    const Reading good = reader.read(download.file);
    ASSERT_TRUE(good.isWhole());
    const auto records = recordsOf(download.file);
    for (std::size_t i = 0; i < records.size(); ++i) {
        const int offset = records[i].offset;
        const Reading rest = reader.read(withoutRecord(download.file, i));
        if (records[i].type % 2 == 1) {
            EXPECT_EQ(rest, good) << "a signature was missed: " << offset;
        }
        for (int byte = 0; byte < lengthOffset; ++byte) {
            for (const unsigned int value : {0x81U, 0xFFU}) {
                const QByteArray changed = withByte(download.file, offset + byte, value);
                ASSERT_FALSE(isKnown(recordsOf(changed)[i]));
                EXPECT_EQ(reader.read(changed), rest) << offset + byte << ' ' << value;
            }
        }
    }
}

TEST_P(ImageHeaderTest, AChangeInTheSecondApplicationLeavesTheAnswersOfTheFirst)
{
    const CardFile& download = GetParam();
    const Reading good = reader.read(download.file);
    int compared = 0;
    for (const FileRecord& each : recordsOf(download.file)) {
        if (each.type < 2)
            continue;
        for (int at = each.offset; at < each.begin(); ++at) {
            for (const unsigned int bit : {0x01U, 0x02U, 0x80U}) {
                const unsigned int value = byteAt(download.file, at) ^ bit;
                const Reading reading = reader.read(withByte(download.file, at, value));
                // A company card's first application is read behind its second one.
                if (reading.card.empty() || (isCompany(download) && !reading.failure.empty()))
                    continue;
                EXPECT_EQ(reading.first, good.first) << at << ' ' << value;
                ++compared;
            }
        }
    }
    EXPECT_EQ(compared > 0, selectionOf(download.file).hasSecond());
}

TEST_P(ImageHeaderTest, AnotherNumberInTheFirstApplicationLeavesTheAnswersOfTheSecond)
{
    const CardFile& download = GetParam();
    const Reading good = reader.read(download.file);
    if (good.second.empty())
        return; // a card of the first generation
    for (const FileRecord& each : recordsOf(download.file)) {
        if (each.type > 1)
            continue;
        for (const int at : {each.offset, each.offset + 1}) {
            for (const unsigned int bit : {0x01U, 0x80U}) {
                const unsigned int value = byteAt(download.file, at) ^ bit;
                const Reading reading = reader.read(withByte(download.file, at, value));
                EXPECT_THAT(reading.failure, testing::IsEmpty()) << at << ' ' << value;
                EXPECT_EQ(reading.second, good.second) << at << ' ' << value;
            }
        }
    }
}

TEST_P(ImageHeaderTest, ALengthBehindTheEndLeavesTheRecordsBefore)
{
    const CardFile& download = GetParam();
    const auto records = recordsOf(download.file);
    for (std::size_t i = 0; i < records.size(); ++i) {
        const FileRecord& each = records[i];
        QByteArray changed = download.file;
        put(changed, each.offset, recordHeader(each.fid, each.type, 0xFFFF));
        reader.failureOf(changed);
        Selection taken = reader.takenFrom(changed);
        const Selection before = knownPart(selectionOf(download.file.left(each.offset)));
        for (const auto& ef : before.efs)
            EXPECT_TRUE(taken.efs[ef.first] == ef.second) << each.offset;
        const Taken record = taken.efs[EfKey{each.fid, each.type}];
        EXPECT_NE(record.start, each.begin()) << each.offset;
    }
}

INSTANTIATE_TEST_SUITE_P(SmallCards, ImageHeaderTest, testing::ValuesIn(smallDownloads()), nameOf);

/// Those with the most records: what they have, the others have too.
class EveryHeaderByteTest : public ImageHeaderTest
{};

TEST_P(EveryHeaderByteTest, EveryOtherValueEndsAsTheRulesSay)
{
    const CardFile& download = GetParam();
    const Selection good = selectionOf(download.file);
    int changes = 0;
    int notForetold = 0;
    int first = 0;
    for (const FileRecord& each : recordsOf(download.file)) {
        // Which records are taken decides what is read: each choice is read once.
        std::map<std::pair<std::set<unsigned int>, std::map<EfKey, Taken>>, Chain> read;
        for (int at = each.offset; at < each.begin(); ++at) {
            first = (first + 1) % valueStep;
            for (auto value = static_cast<unsigned int>(first); value < 256; value += valueStep) {
                if (value == byteAt(download.file, at))
                    continue;
                SCOPED_TRACE(testing::Message() << "byte " << at << " is " << value);
                const QByteArray changed = withByte(download.file, at, value);
                const Selection left = selectionOf(changed);
                const Selection taken = reader.takenFrom(changed);
                const Selection expected = knownPart(left);
                ASSERT_EQ(taken.types, expected.types);
                ASSERT_TRUE(taken.efs == expected.efs);
                ++changes;
                const std::pair choice(taken.types, taken.efs);
                auto known = read.find(choice);
                if (known == read.end())
                    known = read.insert({choice, withoutRequested(reader.failureOf(changed))}).first;
                const auto foretold = expectedFailure(download, good, left);
                if (foretold) {
                    ASSERT_EQ(known->second, *foretold);
                } else {
                    ++notForetold;
                }
            }
        }
    }
    EXPECT_LT(notForetold, changes / 20);
}

INSTANTIATE_TEST_SUITE_P(
    SmallCards, EveryHeaderByteTest,
    testing::Values(
        smallDownload("driver"), smallDownload("driverV2"), smallDownload("workshop"),
        smallDownload("workshopV2"), smallDownload("company"), smallDownload("companyV2"),
        smallDownload("companyG2AsOneApplication")),
    nameOf);

} // namespace
