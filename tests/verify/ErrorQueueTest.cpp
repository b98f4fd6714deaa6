// OpenSSL keeps the errors of each thread in a queue, which is the host's.
#include "Image.h"
#include "Roots.h"

#include <cli/Downloads.h>
#include <scardverify/VerifyImage.h>

#include <gtest/gtest.h>

#include <openssl/err.h>

namespace {

using namespace scard::verify;
using namespace test;

class ErrorQueueTest : public testing::Test
{
  protected:
    void SetUp() override { ERR_clear_error(); }
    void TearDown() override { ERR_clear_error(); }

    static void putErrors(int count)
    {
        for (int i = 1; i <= count; ++i)
            ERR_raise(ERR_LIB_USER, i);
    }

    /// The reasons of the errors in the queue, which is empty then.
    static std::vector<int> takeErrors()
    {
        std::vector<int> reasons;
        while (const unsigned long error = ERR_get_error())
            reasons.push_back(ERR_GET_REASON(error));
        return reasons;
    }

    /// A download none of whose signatures holds: each of them leaves errors.
    static QByteArray brokenFile()
    {
        Image image(smallDownload("driverV2").file);
        for (Record& record : image.records) {
            if (record.type % 2 == 1)
                record.payload.fill('\x01');
        }
        return image.bytes();
    }
};

TEST_F(ErrorQueueTest, StaysEmpty)
{
    verifyImage(smallDownload("driverV2").file, allRoots());
    EXPECT_EQ(takeErrors(), std::vector<int>());
    verifyImage(brokenFile(), allRoots());
    EXPECT_EQ(takeErrors(), std::vector<int>());
    readRootKey("x");
    readRootKey(QByteArray(144, '\xFF'));
    EXPECT_EQ(takeErrors(), std::vector<int>());
}

TEST_F(ErrorQueueTest, KeepsTheErrorsOfTheHost)
{
    putErrors(3);
    verifyImage(smallDownload("driverV2").file, allRoots());
    readRootKey(QByteArray(144, '\xFF'));
    EXPECT_EQ(takeErrors(), (std::vector<int>{1, 2, 3}));
}

TEST_F(ErrorQueueTest, KeepsTheErrorsOfTheHostWhenMoreCameThanItHolds)
{
    putErrors(3);
    verifyImage(brokenFile(), allRoots());
    EXPECT_EQ(takeErrors(), (std::vector<int>{1, 2, 3}));
}

TEST_F(ErrorQueueTest, KeepsTheMarksOfTheHost)
{
    putErrors(2);
    ERR_set_mark();
    ERR_raise(ERR_LIB_USER, 7);
    verifyImage(smallDownload("driver").file, roots());
    ERR_pop_to_mark();
    EXPECT_EQ(takeErrors(), (std::vector<int>{1, 2}));
}

} // namespace
