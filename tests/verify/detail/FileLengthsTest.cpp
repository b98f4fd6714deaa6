#include <scardverify/detail/FileLengths.h>

#include <gtest/gtest.h>

#include <map>

namespace {

using namespace scard::verify;
using namespace scard::verify::detail;

using Figures = std::map<unsigned int, int>;

constexpr int driver = 1;
constexpr int workshop = 2;
constexpr int control = 3;
constexpr int company = 4;

/// The EFs with record counts.
struct Counts
{
    QByteArray first;
    QByteArray second;
};

Counts counts(const char* first, const char* second = "")
{
    return {QByteArray::fromHex(first), QByteArray::fromHex(second)};
}

// As many records as most cards have.
const Counts driverG1 = counts("010000 0C 18 35D0 00C8 70");
const Counts driverG2 = counts("010100 0C 18 35D0 00C8 0070 0150 0070 00C8");
const Counts driverV2 = counts("010101 0C 18 35D0 00C8 0070 0150 0070 00C8", "0008 0460 0658 0150 0C00");
const Counts workshopG1 = counts("020000 03 06 01EC 0008 08 FF");
const Counts workshopG2 = counts("020100 03 06 01EC 0008 0008 00FF 0018 0004 0008");
const Counts workshopV2 =
    counts("020101 03 06 01EC 0008 0008 00FF 0018 0004 0008", "0008 0004 0008 0004 0C00");

Figures operator+(Figures figures, const Figures& more)
{
    figures.insert(more.begin(), more.end());
    return figures;
}

/// The lengths of those EFs that the application has.
Figures lengthsOf(const Expected& expected, const Counts& counts)
{
    const auto lengths = fileLengths(expected, counts.first, counts.second);
    Figures figures;
    for (const FileRule& rule : fileRules(expected)) {
        const auto found = lengths.find(rule.fid);
        if (found != lengths.end())
            figures[found->first] = found->second;
    }
    return figures;
}

const Figures chip = {{0x0002, 25}, {0x0005, 8}};
const Figures driverFixed = chip + Figures{{0x0520, 143}, {0x0521, 53}, {0x050E, 4}};
const Figures workshopFixed = chip + Figures{{0x0520, 211}, {0x0509, 2}};

const Figures driverUsageG1 = {{0x0502, 1728}, {0x0503, 1152}, {0x0504, 13780}, {0x0505, 6202},
                               {0x0506, 1121}, {0x0507, 19},   {0x0508, 46},    {0x0522, 280}};
const Figures driverUsageG2 = {{0x0502, 3168}, {0x0503, 1152}, {0x0504, 13780}, {0x0505, 9602},
                               {0x0506, 2354}, {0x0507, 19},   {0x0508, 46},    {0x0522, 562},
                               {0x0523, 2002}, {0x0524, 6050}};
const Figures driverUsageV2 = {{0x0526, 562}, {0x0527, 1682}};
const Figures driverUsageByV2 = {{0x0528, 19042}, {0x0529, 32482}, {0x0530, 1682}};
const Figures workshopUsageG1 = {{0x0502, 432}, {0x0503, 288}, {0x0504, 496}, {0x0505, 250},  {0x0506, 81},
                                 {0x0507, 19},  {0x0508, 46},  {0x0522, 10},  {0x050A, 26778}};
const Figures workshopUsageG2 = {{0x0502, 792}, {0x0503, 288}, {0x0504, 496},  {0x0505, 386},
                                 {0x0506, 170}, {0x0507, 19},  {0x0508, 46},   {0x0522, 22},
                                 {0x0523, 82},  {0x0524, 434}, {0x050A, 45394}};
const Figures workshopUsageV2 = {{0x0526, 42}, {0x0527, 122}, {0x0531, 6887}};
const Figures workshopUsageByV2 = {{0x0528, 70}, {0x0529, 162}, {0x0530, 22}};

TEST(FileLengthsTest, FollowTheCountsOfADriverCard)
{
    EXPECT_EQ(
        lengthsOf({Generation::First, driver, false}, driverG1),
        (driverFixed + driverUsageG1 + Figures{{0x0501, 10}}));
    EXPECT_EQ(
        lengthsOf({Generation::Second, driver, false}, driverG2),
        (driverFixed + driverUsageG2 + Figures{{0x0501, 17}}));
    EXPECT_EQ(
        lengthsOf({Generation::Second, driver, true}, driverV2),
        (driverFixed + driverUsageG2 + driverUsageV2 + driverUsageByV2 +
         Figures{{0x0501, 17}, {0x0525, 10}}));
}

TEST(FileLengthsTest, FollowTheCountsOfAWorkshopCard)
{
    EXPECT_EQ(
        lengthsOf({Generation::First, workshop, false}, workshopG1),
        (workshopFixed + workshopUsageG1 + Figures{{0x0501, 11}}));
    EXPECT_EQ(
        lengthsOf({Generation::Second, workshop, false}, workshopG2),
        (workshopFixed + workshopUsageG2 + Figures{{0x0501, 19}}));
    EXPECT_EQ(
        lengthsOf({Generation::Second, workshop, true}, workshopV2),
        (workshopFixed + workshopUsageG2 + workshopUsageV2 + workshopUsageByV2 +
         Figures{{0x0501, 19}, {0x0525, 10}}));
}

TEST(FileLengthsTest, FollowTheCountsOfAnOfficeCard)
{
    const struct
    {
        int card;
        const char* fewest;
        const char* most;
        unsigned int activities;
        int identification;
    } rows[] = {
        {control, "030000 00E6", "030000 0208", 0x050C, 211},
        {company, "040000 00E6", "040000 0208", 0x050D, 139},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.card);
        const Figures fixed = chip + Figures{{0x0501, 5}, {0x0520, row.identification}};
        const Expected first{Generation::First, row.card, false};
        const Expected second{Generation::Second, row.card, false};
        const Expected version2{Generation::Second, row.card, true};
        EXPECT_EQ(lengthsOf(first, counts(row.fewest)), (fixed + Figures{{row.activities, 10582}}));
        EXPECT_EQ(lengthsOf(first, counts(row.most)), (fixed + Figures{{row.activities, 23922}}));
        EXPECT_EQ(lengthsOf(second, counts(row.most)), (fixed + Figures{{row.activities, 23922}}));
        EXPECT_EQ(
            lengthsOf(version2, counts(row.fewest, "0002 0C00")),
            (fixed + Figures{{row.activities, 10582}, {0x0525, 4}}));
        EXPECT_EQ(lengthsOf(first, {}), fixed);
    }
}

TEST(FileLengthsTest, FollowTheFewestRecordsToo)
{
    const Figures first = lengthsOf({Generation::First, driver, false}, counts("010000 06 0C 15A8 0054 54"));
    EXPECT_EQ(
        first, (driverFixed + Figures{
                                  {0x0501, 10},
                                  {0x0502, 864},
                                  {0x0503, 576},
                                  {0x0504, 5548},
                                  {0x0505, 2606},
                                  {0x0506, 841},
                                  {0x0507, 19},
                                  {0x0508, 46},
                                  {0x0522, 280}}));
    const Figures calibrations =
        lengthsOf({Generation::First, workshop, false}, counts("020000 03 06 00C6 0004 06 58"));
    EXPECT_EQ(calibrations.at(0x050A), 9243);
}

TEST(FileLengthsTest, AreThoseThatNeedNoCountsWithoutThem)
{
    EXPECT_EQ(lengthsOf({Generation::First, driver, false}, {}), (driverFixed + Figures{{0x0501, 10}}));
    EXPECT_EQ(lengthsOf({Generation::First, workshop, false}, {}), (workshopFixed + Figures{{0x0501, 11}}));
    EXPECT_EQ(lengthsOf({Generation::Second, driver, false}, {}), (driverFixed + Figures{{0x0501, 17}}));
    EXPECT_EQ(lengthsOf({Generation::Second, workshop, false}, {}), (workshopFixed + Figures{{0x0501, 19}}));
}

TEST(FileLengthsTest, OfVersion2NeedItsCounts)
{
    EXPECT_EQ(
        lengthsOf({Generation::Second, driver, true}, {driverV2.first, {}}),
        (driverFixed + driverUsageG2 + driverUsageV2 + Figures{{0x0501, 17}, {0x0525, 10}}));
    EXPECT_EQ(
        lengthsOf({Generation::Second, workshop, true}, {workshopV2.first, {}}),
        (workshopFixed + workshopUsageG2 + workshopUsageV2 + Figures{{0x0501, 19}, {0x0525, 10}}));
}

TEST(FileLengthsTest, TakeNoCountsFromAnEfOfAnotherLength)
{
    const Expected expected{Generation::First, driver, false};
    const Figures fixed = driverFixed + Figures{{0x0501, 10}};
    EXPECT_EQ(lengthsOf(expected, {driverG1.first.left(9), {}}), fixed);
    EXPECT_EQ(lengthsOf(expected, {driverG1.first + '\0', {}}), fixed);
    EXPECT_EQ(lengthsOf(expected, driverG2), fixed);
    const Expected version2{Generation::Second, driver, true};
    const auto lengths = lengthsOf(version2, {driverV2.first, driverV2.second.left(9)});
    EXPECT_EQ(lengths.count(0x0526), 1U);
    EXPECT_EQ(lengths.count(0x0528), 0U);
}

TEST(FileLengthsTest, AreThoseOfTheChipOnACardThatIsNotKnown)
{
    EXPECT_EQ(lengthsOf({Generation::First, 0, false}, driverG1), chip);
    EXPECT_EQ(lengthsOf({Generation::Second, 0, true}, driverV2), chip);
}

TEST(FileLengthsTest, AreKnownOfEachEfThatTheCardSigns)
{
    const struct
    {
        Expected expected;
        Counts counts;
    } rows[] = {
        {{Generation::First, driver, false}, driverG1},
        {{Generation::Second, driver, false}, driverG2},
        {{Generation::Second, driver, true}, driverV2},
        {{Generation::First, workshop, false}, workshopG1},
        {{Generation::Second, workshop, false}, workshopG2},
        {{Generation::Second, workshop, true}, workshopV2},
        {{Generation::First, control, false}, counts("030000 00E6")},
        {{Generation::First, company, false}, counts("040000 00E6")},
    };
    for (const auto& row : rows) {
        const Figures lengths = lengthsOf(row.expected, row.counts);
        for (const FileRule& rule : fileRules(row.expected)) {
            if (rule.protection == Protection::Signature ||
                rule.protection == Protection::OptionalSignature) {
                EXPECT_EQ(lengths.count(rule.fid), 1U) << rule.fid;
            }
        }
    }
}

} // namespace
