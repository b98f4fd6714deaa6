#include <scardverify/detail/TimeReal.h>

#include <gtest/gtest.h>

namespace {

using scard::verify::detail::timeOf;

QDateTime time(const char* hex)
{
    return timeOf(QByteArray::fromHex(hex));
}

TEST(TimeRealTest, CountsSecondsInUtc)
{
    EXPECT_EQ(time("00000000"), QDateTime(QDate(1970, 1, 1), QTime(0, 0), Qt::UTC));
    EXPECT_EQ(time("65E66080"), QDateTime(QDate(2024, 3, 5), QTime(0, 0), Qt::UTC));
    EXPECT_EQ(time("65E66080").timeSpec(), Qt::UTC);
}

TEST(TimeRealTest, GoesBeyondTheEndOfSignedNumbers)
{
    EXPECT_EQ(time("80000000"), QDateTime(QDate(2038, 1, 19), QTime(3, 14, 8), Qt::UTC));
    EXPECT_EQ(time("FFFFFFFE"), QDateTime(QDate(2106, 2, 7), QTime(6, 28, 14), Qt::UTC));
}

TEST(TimeRealTest, IsNoneWhenAllBitsAreSet)
{
    EXPECT_TRUE(time("FFFFFFFF").isNull());
}

} // namespace
