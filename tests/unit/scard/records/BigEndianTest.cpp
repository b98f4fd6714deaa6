#include <scard/records/BigEndian.h>

#include <gmock/gmock.h>

namespace {

using namespace scard;
using testing::ElementsAre;

TEST(BigEndian, TheFirstByteIsTheHighest)
{
    const unsigned char bytes[] = {0xFE, 0xDC, 0xBA, 0x98};

    EXPECT_EQ(fromBigEndian(bytes, 0), 0U);
    EXPECT_EQ(fromBigEndian(bytes, 1), 0xFEU);
    EXPECT_EQ(fromBigEndian(bytes, 2), 0xFEDCU);
    EXPECT_EQ(fromBigEndian(bytes, 3), 0xFEDCBAU);
    EXPECT_EQ(fromBigEndian(bytes, 4), 0xFEDCBA98U);
}

TEST(BigEndian, NumbersAreCutToTheirBytes)
{
    EXPECT_THAT(toBigEndian<1>(0xFEDCBA98), ElementsAre(0x98));
    EXPECT_THAT(toBigEndian<2>(0xFEDCBA98), ElementsAre(0xBA, 0x98));
    EXPECT_THAT(toBigEndian<3>(0xFEDCBA98), ElementsAre(0xDC, 0xBA, 0x98));
    EXPECT_THAT(toBigEndian<4>(0xFEDCBA98), ElementsAre(0xFE, 0xDC, 0xBA, 0x98));
    EXPECT_THAT(toBigEndian<4>(5), ElementsAre(0, 0, 0, 5));
}

TEST(BigEndian, FieldsOfRecordsGiveTheirValue)
{
    EXPECT_EQ((UInt16{{0x35, 0xD0}}).value(), 13776U);
    EXPECT_EQ((OdometerShort{{0x98, 0x96, 0x7F}}).value(), 9999999U);
    EXPECT_EQ((TimeReal{{0x65, 0xE6, 0x60, 0x80}}).value(), 1709596800U);
    EXPECT_EQ((TimeReal{{0xFF, 0xFF, 0xFF, 0xFF}}).value(), 0xFFFFFFFFU);
}

TEST(BigEndian, FieldsTakeNoMoreThanTheirBytes)
{
    EXPECT_EQ(sizeof(UInt16), 2U);
    EXPECT_EQ(sizeof(OdometerShort), 3U);
    EXPECT_EQ(sizeof(TimeReal), 4U);
    EXPECT_EQ(alignof(TimeReal), 1U);
}

} // namespace
