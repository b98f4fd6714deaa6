#include "QtPrinters.h"

#include <cli/download/ProgressLine.h>

#include <gmock/gmock.h>

namespace {

ProgressState at(int percent, qint64 elapsedMs, qint64 efMs = 100, qint64 quietMs = 100)
{
    return {percent, "EF_Places", elapsedMs, efMs, quietMs};
}

TEST(ProgressLine, HasABarWhereThereIsRoom)
{
    EXPECT_EQ(progressLine(at(50, 12000), 79), "[########........]  50 %  0:12  about 0:12 left  EF_Places");
    EXPECT_EQ(progressLine(at(50, 12000), 59), "[####....]  50 %  0:12  about 0:12 left  EF_Places");
}

TEST(ProgressLine, EstimatesNothingFromTheFirstPercents)
{
    EXPECT_EQ(progressLine(at(2, 1000), 40), "  2 %  0:01  EF_Places");
    EXPECT_EQ(progressLine(at(3, 1000), 40), "  3 %  0:01  about 0:32 left  EF_Places");
}

TEST(ProgressLine, FitsANarrowTerminal)
{
    EXPECT_EQ(progressLine(at(50, 12000), 38), " 50 %  about 0:12 left  EF_Places");
    EXPECT_EQ(progressLine(at(50, 12000), 30), " 50 %  0:12  about 0:12 left");
    for (int columns = 0; columns <= 120; ++columns) {
        for (const ProgressState& state : {at(0, 0), at(50, 12000), at(99, 754000, 31000, 31000), at(130, 1)})
            EXPECT_LE(progressLine(state, columns).size(), columns);
    }
}

TEST(ProgressLine, SaysForHowLongAnEfIsBeingRead)
{
    EXPECT_EQ(progressLine(at(50, 43000, 31000), 54), " 50 %  0:43  about 0:43 left  EF_Places for 0:31");
    EXPECT_EQ(progressLine(at(50, 43000, 4999), 54), " 50 %  0:43  about 0:43 left  EF_Places");
}

TEST(ProgressLine, EstimatesNothingWhileTheReaderIsQuiet)
{
    EXPECT_EQ(progressLine(at(50, 43000, 31000, 30000), 54), " 50 %  0:43  EF_Places for 0:31");
}

TEST(ProgressLine, EndsAtAHundredPercent)
{
    EXPECT_EQ(progressLine(at(117, 5000), 40), "100 %  0:05  EF_Places");
    EXPECT_EQ(shownPercent(117), 100);
    EXPECT_EQ(shownPercent(-1), 0);
}

TEST(ProgressLine, CountsMinutes)
{
    EXPECT_EQ(minutesAndSeconds(0), "0:00");
    EXPECT_EQ(minutesAndSeconds(59999), "0:59");
    EXPECT_EQ(minutesAndSeconds(725000), "12:05");
}

} // namespace
