#include <scardverify/detail/FileRules.h>

#include <gtest/gtest.h>

#include <map>
#include <set>

namespace {

using namespace scard::verify;
using namespace scard::verify::detail;

using Fids = std::set<unsigned int>;

constexpr int driver = 1;
constexpr int workshop = 2;
constexpr int control = 3;
constexpr int company = 4;

Fids fidsOf(const Expected& expected, Protection protection)
{
    Fids fids;
    for (const FileRule& rule : fileRules(expected)) {
        if (rule.protection == protection)
            fids.insert(rule.fid);
    }
    return fids;
}

Fids requiredOf(const Expected& expected)
{
    Fids fids;
    for (const FileRule& rule : fileRules(expected)) {
        if (rule.isRequired)
            fids.insert(rule.fid);
    }
    return fids;
}

Fids operator+(Fids fids, const Fids& more)
{
    fids.insert(more.begin(), more.end());
    return fids;
}

const Fids chip = {0x0002, 0x0005, 0x0006, 0x2F00, 0x2F01};
const Fids usage = {0x0502, 0x0503, 0x0504, 0x0505, 0x0506, 0x0507, 0x0508, 0x0522};
const Fids usageG2 = {0x0523, 0x0524};
const Fids version2 = {0x0525, 0x0526, 0x0527, 0x0528, 0x0529, 0x0530};

TEST(FileRulesTest, HasTheSignedEfsOfEachApplication)
{
    const struct
    {
        const char* name;
        Expected expected;
        Fids required;
        Fids optional;
        Fids download; ///< signed or not
        Fids withKeys; ///< readable with keys only
    } rows[] = {
        {"driver",
         {Generation::First, driver, false},
         usage + Fids{0x0501, 0x0520, 0x0521},
         {},
         {0x050E},
         {}},
        {"driver G2",
         {Generation::Second, driver, false},
         usage + usageG2 + Fids{0x0501, 0x0520, 0x0521},
         {},
         {0x050E},
         {}},
        {"driver 2.2",
         {Generation::Second, driver, true},
         usage + usageG2 + version2 + Fids{0x0501, 0x0520, 0x0521},
         {},
         {0x050E},
         {0x0540}},
        {"workshop",
         {Generation::First, workshop, false},
         usage + Fids{0x0501, 0x0520, 0x050A},
         {},
         {0x0509},
         {0x050B}},
        {"workshop G2",
         {Generation::Second, workshop, false},
         usage + usageG2 + Fids{0x0501, 0x0520, 0x050A},
         {},
         {0x0509},
         {0x050B}},
        {"workshop 2.2",
         {Generation::Second, workshop, true},
         usage + usageG2 + version2 + Fids{0x0501, 0x0520, 0x050A, 0x0531},
         {},
         {0x0509},
         {0x050B, 0x0540}},
        {"control", {Generation::First, control, false}, {0x0501, 0x050C}, {0x0520}, {}, {}},
        {"company", {Generation::First, company, false}, {0x0501, 0x050D}, {0x0520}, {}, {}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(fidsOf(row.expected, Protection::Signature), row.required + row.optional);
        EXPECT_EQ(requiredOf(row.expected), row.required);
        EXPECT_EQ(fidsOf(row.expected, Protection::OptionalSignature), row.download);
        EXPECT_EQ(fidsOf(row.expected, Protection::None), chip + row.withKeys);
        EXPECT_TRUE(row.expected.isSigned());
    }
}

TEST(FileRulesTest, HasNothingSignedInTheSecondApplicationOfAnOffice)
{
    const struct
    {
        Expected expected;
        Fids required;
        Fids withKeys;
    } rows[] = {
        {{Generation::Second, control, false}, {0x0501, 0x050C, 0x0520}, {}},
        {{Generation::Second, company, false}, {0x0501, 0x050D, 0x0520}, {}},
        {{Generation::Second, company, true}, {0x0501, 0x0525, 0x050D, 0x0520}, {0x0540}},
    };
    for (const auto& row : rows) {
        EXPECT_FALSE(row.expected.isSigned());
        EXPECT_EQ(requiredOf(row.expected), row.required);
        EXPECT_EQ(fidsOf(row.expected, Protection::None), chip + row.required + row.withKeys);
        EXPECT_EQ(fidsOf(row.expected, Protection::OptionalSignature), Fids());
        EXPECT_EQ(fidsOf(row.expected, Protection::Signature), Fids());
        EXPECT_EQ(fidsOf(row.expected, Protection::Certificate), (Fids{0xC100, 0xC108, 0xC109}));
    }
}

TEST(FileRulesTest, HasTheCertificatesOfEachGeneration)
{
    for (const int card : {driver, workshop}) {
        EXPECT_EQ(fidsOf({Generation::First, card, false}, Protection::Certificate), (Fids{0xC100, 0xC108}));
        EXPECT_EQ(
            fidsOf({Generation::Second, card, true}, Protection::Certificate),
            (Fids{0xC100, 0xC101, 0xC108, 0xC109}));
    }
}

TEST(FileRulesTest, RequiresNothingOfACardThatIsNotKnown)
{
    const Expected first{Generation::First, 0, false};
    const Expected second{Generation::Second, 0, false};
    EXPECT_EQ(requiredOf(first), Fids());
    EXPECT_EQ(requiredOf(second), Fids());
    EXPECT_TRUE(first.isSigned());
    EXPECT_TRUE(second.isSigned());
    const Fids ofAll = usage + Fids{0x0501, 0x0520, 0x0521, 0x050A, 0x050C, 0x050D};
    const Fids downloads = {0x050E, 0x0509};
    EXPECT_EQ(fidsOf(first, Protection::Signature), ofAll);
    EXPECT_EQ(fidsOf(second, Protection::Signature), ofAll + usageG2 + version2 + Fids{0x0531});
    EXPECT_EQ(fidsOf(first, Protection::OptionalSignature), downloads);
    EXPECT_EQ(fidsOf(second, Protection::OptionalSignature), downloads);
    EXPECT_EQ(fidsOf(first, Protection::None), chip + Fids{0x050B});
    EXPECT_EQ(fidsOf(second, Protection::None), (chip + Fids{0x050B, 0x0540}));
}

TEST(FileRulesTest, HasOneRuleForEachEf)
{
    for (int card = driver; card <= company; ++card) {
        for (const Generation generation : {Generation::First, Generation::Second}) {
            for (const bool isVersion2 : {false, true}) {
                std::map<unsigned int, int> counts;
                for (const FileRule& rule : fileRules({generation, card, isVersion2}))
                    ++counts[rule.fid];
                for (const auto& [fid, count] : counts)
                    EXPECT_EQ(count, 1) << fid << " of card " << card;
            }
        }
    }
}

} // namespace
