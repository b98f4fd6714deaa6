#include <scard/detail/Apdu.h>

#include <gmock/gmock.h>

#include <numeric>
#include <string>
#include <vector>

namespace {

using namespace scard::detail;
using testing::ElementsAre;
using testing::ElementsAreArray;

using Bytes = std::vector<unsigned char>;

Bytes sent(const ShortCommand& command)
{
    EXPECT_LE(command.length, command.bytes.size());
    const std::size_t length = std::min(command.length, command.bytes.size());
    return {command.bytes.data(), command.bytes.data() + length};
}

TEST(Apdu, SelectByFid)
{
    EXPECT_THAT(selectByFid(0x0502), ElementsAre(0x00, 0xA4, 0x02, 0x0C, 0x02, 0x05, 0x02));
    EXPECT_THAT(selectByFid(0xC100), ElementsAre(0x00, 0xA4, 0x02, 0x0C, 0x02, 0xC1, 0x00));
    EXPECT_THAT(selectByFid(0xFFFE), ElementsAre(0x00, 0xA4, 0x02, 0x0C, 0x02, 0xFF, 0xFE));
}

TEST(Apdu, SelectByNameCarriesTheNamesLength)
{
    const std::string tacho("\xFFTACHO");
    EXPECT_THAT(
        sent(selectByName(tacho.data(), tacho.size())),
        ElementsAre(0x00, 0xA4, 0x04, 0x0C, 0x06, 0xFF, 0x54, 0x41, 0x43, 0x48, 0x4F));

    const std::string smrdt("\xFFSMRDT");
    EXPECT_THAT(
        sent(selectByName(smrdt.data(), smrdt.size())),
        ElementsAre(0x00, 0xA4, 0x04, 0x0C, 0x06, 0xFF, 0x53, 0x4D, 0x52, 0x44, 0x54));

    EXPECT_THAT(sent(selectByName("ABC", 3)), ElementsAre(0x00, 0xA4, 0x04, 0x0C, 0x03, 0x41, 0x42, 0x43));
    EXPECT_THAT(sent(selectByName("", 0)), ElementsAre(0x00, 0xA4, 0x04, 0x0C, 0x00));
}

TEST(Apdu, ReadBinaryCarriesOffsetAndLength)
{
    EXPECT_THAT(readBinary(0, 255), ElementsAre(0x00, 0xB0, 0x00, 0x00, 0xFF));
    EXPECT_THAT(readBinary(0x7EFF, 1), ElementsAre(0x00, 0xB0, 0x7E, 0xFF, 0x01));
    EXPECT_THAT(readBinary(0x0102, 0), ElementsAre(0x00, 0xB0, 0x01, 0x02, 0x00));
}

TEST(Apdu, OddReadBinaryHasAnOffsetObjectOfOneByteUpTo255)
{
    EXPECT_THAT(sent(readBinaryOdd(0)), ElementsAre(0x00, 0xB1, 0x00, 0x00, 0x03, 0x54, 0x01, 0x00, 0x00));
    EXPECT_THAT(sent(readBinaryOdd(255)), ElementsAre(0x00, 0xB1, 0x00, 0x00, 0x03, 0x54, 0x01, 0xFF, 0x00));
}

TEST(Apdu, OddReadBinaryHasAnOffsetObjectOfTwoBytesFrom256)
{
    EXPECT_THAT(
        sent(readBinaryOdd(256)), ElementsAre(0x00, 0xB1, 0x00, 0x00, 0x04, 0x54, 0x02, 0x01, 0x00, 0x00));
    EXPECT_THAT(
        sent(readBinaryOdd(0x8000)), ElementsAre(0x00, 0xB1, 0x00, 0x00, 0x04, 0x54, 0x02, 0x80, 0x00, 0x00));
    EXPECT_THAT(
        sent(readBinaryOdd(0xFFFE)), ElementsAre(0x00, 0xB1, 0x00, 0x00, 0x04, 0x54, 0x02, 0xFF, 0xFE, 0x00));
}

TEST(Apdu, UpdateBinaryCarriesTheData)
{
    const Bytes stamp{0x65, 0xE6, 0x60, 0x80};
    EXPECT_THAT(
        updateBinary(0, 4, stamp.data()), ElementsAre(0x00, 0xD6, 0x00, 0x00, 0x04, 0x65, 0xE6, 0x60, 0x80));
    EXPECT_THAT(updateBinary(0x1234, 1, stamp.data()), ElementsAre(0x00, 0xD6, 0x12, 0x34, 0x01, 0x65));
    EXPECT_THAT(updateBinary(0x1234, 0, stamp.data()), ElementsAre(0x00, 0xD6, 0x12, 0x34, 0x00));
}

TEST(Apdu, UpdateBinaryCarriesUpTo255Bytes)
{
    Bytes data(255);
    std::iota(data.begin(), data.end(), static_cast<unsigned char>(1));
    Bytes expected{0x00, 0xD6, 0x00, 0x00, 0xFF};
    expected.insert(expected.end(), data.begin(), data.end());

    EXPECT_THAT(updateBinary(0, 255, data.data()), ElementsAreArray(expected));
}

TEST(Apdu, PerformHashOfFileHasNoLengthBytes)
{
    EXPECT_THAT(performHashOfFile(), ElementsAre(0x80, 0x2A, 0x90, 0x00));
}

TEST(Apdu, ComputeDigitalSignatureAsksForTheExactLength)
{
    EXPECT_THAT(computeDigitalSignature(0x80), ElementsAre(0x00, 0x2A, 0x9E, 0x9A, 0x80));
    EXPECT_THAT(computeDigitalSignature(0x40), ElementsAre(0x00, 0x2A, 0x9E, 0x9A, 0x40));
}

TEST(Apdu, StatusWordsHaveTheirValues)
{
    EXPECT_EQ(statusSuccess, 0x9000);
    EXPECT_EQ(statusSuccessAlternative, 0x90E4);
    EXPECT_EQ(statusFileNotFound, 27266);
    EXPECT_EQ(statusWordLength, 2U);
}

TEST(Apdu, DataObjectHeaderIsMeasuredByItsFirstTwoBytes)
{
    const struct
    {
        const char* name;
        Bytes answer;
        std::size_t expected;
    } rows[] = {
        {"length in two further bytes", {0x53, 0x82, 0x00, 0x02, 0xAA, 0xBB}, 4},
        {"length in one further byte", {0x53, 0x81, 0x02, 0xAA, 0xBB}, 3},
        {"length in the byte itself", {0x53, 0x02, 0xAA, 0xBB}, 2},
        {"longest length in the byte itself", {0x53, 0x7F, 0xAA, 0xBB, 0xCC}, 2},
        {"length byte 80", {0x53, 0x80, 0xAA, 0xBB, 0xCC}, 2},
        {"length byte 83", {0x53, 0x83, 0xAA, 0xBB, 0xCC, 0xDD}, 2},
        {"another tag", {0x54, 0x02, 0xAA, 0xBB}, 2},
        {"another tag before 82", {0x52, 0x82, 0x00, 0x02, 0xAA, 0xBB}, 2},
        {"another tag before 81", {0x00, 0x81, 0x02, 0xAA}, 2},
        {"wrong length inside does not matter", {0x53, 0x82, 0xFF, 0xFF, 0xAA}, 4},
        {"header and nothing else, four bytes", {0x53, 0x82, 0x00, 0x00}, 4},
        {"header and nothing else, three bytes", {0x53, 0x81, 0x00}, 3},
        {"header and nothing else, two bytes", {0x53, 0x00}, 2},
        {"cut inside a header of four bytes", {0x53, 0x82, 0x00}, 3},
        {"cut behind the second byte, four wanted", {0x53, 0x82}, 2},
        {"cut behind the second byte, three wanted", {0x53, 0x81}, 2},
        {"one byte, the tag", {0x53}, 1},
        {"one byte, another", {0x00}, 1},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(dataObjectHeaderLength(row.answer.data(), row.answer.size()), row.expected);
    }
}

TEST(Apdu, AnEmptyAnswerHasNoDataObjectHeader)
{
    EXPECT_EQ(dataObjectHeaderLength(nullptr, 0), 0U);
}

} // namespace
