#include <scard/detail/ErrorBuilder.h>
#include <support/ErrorChain.h>

#include <gmock/gmock.h>

namespace {

using namespace scard::detail;
using test::chain;
using test::lib;
using testing::ElementsAre;

TEST(ErrorBuilder, ALibraryErrorHasOneEntryOfTheLibrary)
{
    EXPECT_THAT(chain(libraryError(QStringLiteral("failed"), 0x6982)), ElementsAre(lib("failed", 0x6982)));
}

TEST(ErrorBuilder, ALibraryErrorWithoutIdHasTheIdZero)
{
    EXPECT_THAT(chain(libraryError(QStringLiteral("failed"))), ElementsAre(lib("failed", 0)));
}

TEST(ErrorBuilder, TheFirstIdIsThatOfTheInnermostFailure)
{
    EXPECT_EQ(firstId(aux::Error()), 0U);
    EXPECT_EQ(firstId(libraryError(QStringLiteral("a"), 27266)), 27266U);

    aux::Error failure = libraryError(QStringLiteral("a"), 27266);
    failure << libraryError(QStringLiteral("b"), 5);
    EXPECT_EQ(firstId(failure), 27266U);
}

TEST(ErrorBuilder, AStepsEntryStandsBehindWithTheFirstEntrysId)
{
    aux::Error lower = libraryError(QStringLiteral("transfer"), 0x6A82);
    lower << libraryError(QStringLiteral("select"), 7);

    EXPECT_THAT(
        chain(withStep(lower, QStringLiteral("read"))),
        ElementsAre(lib("transfer", 0x6A82), lib("select", 7), lib("read", 0x6A82)));
}

TEST(ErrorBuilder, ALeadingStepStandsFirstWithTheFirstEntrysId)
{
    aux::Error lower = libraryError(QStringLiteral("transfer"), 0x6A82);
    lower << libraryError(QStringLiteral("select"), 7);

    EXPECT_THAT(
        chain(ledByStep(QStringLiteral("read"), lower)),
        ElementsAre(lib("read", 0x6A82), lib("transfer", 0x6A82), lib("select", 7)));
}

TEST(ErrorBuilder, FidsAreLowerCaseHexadecimalWithoutLeadingZeros)
{
    EXPECT_EQ(hexFid(0x0502), QStringLiteral("502"));
    EXPECT_EQ(hexFid(0x050E), QStringLiteral("50e"));
    EXPECT_EQ(hexFid(0xC100), QStringLiteral("c100"));
    EXPECT_EQ(hexFid(0x0002), QStringLiteral("2"));
    EXPECT_EQ(hexFid(0xFFFF), QStringLiteral("ffff"));
}

} // namespace
