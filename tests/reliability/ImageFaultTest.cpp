// A download's file that ends anywhere, or that lacks a record: what is whole is read, and what is not is
// named.
#include "ImageReading.h"

#include <support/Answers.h>
#include <support/FileRecords.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <set>
#include <sstream>

namespace {

using namespace test;

/// The lines of an answer that an EF decides, and whether these are there only with it.
struct AnswerOfEf
{
    unsigned int fid;
    const char* name;
    bool isList;
};

const AnswerOfEf answersOfEfs[] = {
    {0x0506, "place", true},     {0x0507, "use", false},     {0x0508, "control", false},
    {0x0509, "counters", false}, {0x0521, "licence", false}, {0x0522, "condition", true},
    {0x0523, "unit", true},      {0x0524, "gnss", true},     {0x0526, "place", false},
    {0x0527, "gnss", false},     {0x0528, "border", true},   {0x0529, "load", true},
    {0x0530, "loadtype", true},  {0x0531, "more", true},
};

std::string linesBut(const std::string& answers, const std::set<std::string>& names)
{
    std::istringstream lines(answers);
    std::string rest;
    for (std::string line; std::getline(lines, line);) {
        if (names.count(line.substr(0, line.find(' '))) == 0)
            rest += line + '\n';
    }
    return rest;
}

/// @p part must say what @p whole says, but for what the EFs decide that are not there.
void expectPart(const std::string& part, const std::string& whole, const Selection& left, unsigned int type)
{
    std::set<std::string> changed;
    for (const AnswerOfEf& each : answersOfEfs) {
        if (left.efs.count({each.fid, type}) > 0)
            continue;
        changed.insert(each.name);
        if (each.isList) {
            EXPECT_EQ(countOf(part, each.name), 0);
        }
    }
    EXPECT_EQ(linesBut(part, changed), linesBut(whole, changed));
}

bool hasNeeded(const CardFile& download, const Selection& left, bool isSecond)
{
    const auto needed = neededEfs(download, isSecond);
    return std::all_of(needed.begin(), needed.end(), [&left, isSecond](unsigned int fid) {
        return left.efs.count({fid, isSecond ? 2 : 0}) > 0;
    });
}

/// The whole records at the start of @p file in its first @p length bytes.
QByteArray wholeRecords(const QByteArray& file, int length)
{
    int end = 0;
    for (const FileRecord& each : recordsOf(file)) {
        if (each.end() <= length)
            end = each.end();
    }
    return file.left(end);
}

Chain failureOfPrefix(const CardFile& download, int length)
{
    constexpr int header = 5;
    if (length < header)
        return noApplication(true);
    const auto failure = expectedFailure(
        download, selectionOf(download.file), selectionOf(wholeRecords(download.file, length)));
    EXPECT_TRUE(failure);
    return failure.value_or(Chain{});
}

class ImagePrefixTest : public testing::TestWithParam<CardFile>
{
  protected:
    ImageReader reader;
};

TEST_P(ImagePrefixTest, EveryLengthIsReadOrTheFirstEfThatIsNotWholeIsNamed)
{
    const CardFile& download = GetParam();
    for (int length = 0; length < download.file.size(); ++length)
        EXPECT_EQ(
            withoutRequested(reader.failureOf(download.file.left(length))), failureOfPrefix(download, length))
            << length;
    EXPECT_THAT(reader.failureOf(download.file), testing::IsEmpty());
}

TEST_P(ImagePrefixTest, ARecordThatIsCutIsAsIfItWereNotThere)
{
    const CardFile& download = GetParam();
    for (const FileRecord& each : recordsOf(download.file)) {
        const Reading before = reader.read(download.file.left(each.offset));
        for (const int length : {each.offset + 2, each.begin(), (each.begin() + each.end()) / 2}) {
            if (each.offset > 0 && length < each.end()) {
                EXPECT_EQ(reader.read(download.file.left(length)), before) << length;
            }
        }
    }
}

TEST_P(ImagePrefixTest, WhatIsWholeAnswersAsInTheWholeFile)
{
    const CardFile& download = GetParam();
    const Reading good = reader.read(download.file);
    ASSERT_TRUE(good.isWhole());
    for (const FileRecord& each : recordsOf(download.file)) {
        SCOPED_TRACE(each.end());
        const QByteArray part = download.file.left(each.end());
        const Selection left = selectionOf(part);
        const Reading reading = reader.read(part);
        if (reading.card.empty())
            continue;
        // A company card's first application is read behind its second one.
        const bool isFirstRead = reading.failure.empty() || !isCompany(download);
        if (isFirstRead && hasNeeded(download, left, false))
            expectPart(reading.first, good.first, left, 0);
        if (reading.isWhole() && left.hasSecond())
            expectPart(reading.second, good.second, left, 2);
    }
}

TEST_P(ImagePrefixTest, AnEfMayBeMissingUnlessTheApplicationNeedsIt)
{
    const CardFile& download = GetParam();
    const auto records = recordsOf(download.file);
    const bool isSecond = selectionOf(download.file).hasSecond();
    for (std::size_t i = 0; i < records.size(); ++i) {
        const FileRecord& each = records[i];
        const QByteArray rest = withoutRecord(download.file, i);
        const bool isStillThere = selectionOf(rest).efs.count({each.fid, each.type}) > 0;
        const auto needed = neededEfs(download, isSecond);
        const bool isNeeded = each.type == (isSecond ? 2U : 0U) &&
                              std::find(needed.begin(), needed.end(), each.fid) != needed.end();
        const Chain failure = reader.failureOf(rest);
        if (!isNeeded || isStillThere)
            EXPECT_THAT(failure, testing::IsEmpty()) << each.fid << ' ' << each.type;
        else
            EXPECT_THAT(
                Chain(failure.begin(), failure.begin() + 2), testing::ContainerEq(missingEf(each.fid)))
                << each.fid;
    }
}

INSTANTIATE_TEST_SUITE_P(SmallCards, ImagePrefixTest, testing::ValuesIn(smallDownloads()), nameOf);

class RealImagePrefixTest : public ImagePrefixTest
{};

TEST_P(RealImagePrefixTest, OneByteTooFewIsNotTheRecord)
{
    const CardFile& download = GetParam();
    for (const FileRecord& each : recordsOf(download.file)) {
        for (const int length : {each.end() - 1, each.end()})
            EXPECT_EQ(
                withoutRequested(reader.failureOf(download.file.left(length))),
                failureOfPrefix(download, length))
                << length;
    }
}

INSTANTIATE_TEST_SUITE_P(RealCards, RealImagePrefixTest, testing::ValuesIn(realDownloads()), nameOf);

} // namespace
