// The hosts of the README, word for word.
#include "CardBehindPcscd.h"

#include <QFile>
#include <QProcess>

#include <gmock/gmock.h>

namespace {

using namespace test;
using testing::HasSubstr;

class ReadmeHostsTest : public CardBehindPcscd
{};

TEST_F(ReadmeHostsTest, TheHostOfTheReadmeDownloadsACard)
{
    insert(janasCard());
    QProcess process;
    process.start(README_HOST, QStringList());
    ASSERT_TRUE(process.waitForFinished(60000));
    EXPECT_EQ(process.exitCode(), 0);
    EXPECT_THAT(
        process.readAllStandardError().toStdString(),
        testing::AllOf(HasSubstr("Jana, Mustermann"), HasSubstr("J_Mustermann_DF000000123456.DDD")));
}

TEST_F(ReadmeHostsTest, TheSecondHostOfTheReadmeShowsADownload)
{
    insert(janasCard());
    const Download result = download();
    QProcess process;
    process.start(README_SHOW, {result.path});
    ASSERT_TRUE(process.waitForFinished(60000));
    EXPECT_EQ(process.exitCode(), 0);
    EXPECT_THAT(
        process.readAllStandardError().toStdString(),
        testing::AllOf(
            HasSubstr("Jana, Mustermann"), HasSubstr("2024-03-05"), HasSubstr("minutes of driving")));
    QFile::remove(result.path);

    process.start(README_SHOW, {"/tmp/nowhere"});
    ASSERT_TRUE(process.waitForFinished(60000));
    EXPECT_EQ(process.exitCode(), 1);
    EXPECT_THAT(process.readAllStandardError().toStdString(), HasSubstr("no driver card's download"));
}

} // namespace
