// The command rules of the card: what each command answers in which state.

#include "Card.h"
#include "RowName.h"
#include "TestPki.h"
#include "VerifyG1.h"

#include <gtest/gtest.h>

namespace {

using sim::Access;
using sim::Bytes;
using sim::Card;
using sim::fromHex;
using sim::Switches;
using sim::toHex;

constexpr std::size_t LargeFile = 600;

Bytes counting(std::size_t length)
{
    Bytes bytes;
    for (std::size_t i = 0; i < length; ++i) {
        bytes.push_back(static_cast<std::uint8_t>(i * 7 % 251));
    }
    return bytes;
}

sim::FileDescription file(std::uint16_t fid, std::uint8_t sfid, Bytes content)
{
    sim::FileDescription description;
    description.fid = fid;
    description.sfid = sfid;
    description.content = std::move(content);
    description.hashable = true;
    return description;
}

/// A card with one EF for each rule, in both an application with and one without a key.
sim::CardDescription smallCard()
{
    sim::CardDescription card;
    card.atr = fromHex("3B 00");
    card.masterFiles = {file(0x0002, 0, counting(25)), file(0x2F00, 30, counting(20))};

    sim::FileDescription writable = file(0x050E, 7, fromHex("11 22 33 44"));
    writable.update = Access::Always;
    sim::FileDescription secret = file(0x0520, 6, counting(10));
    secret.read = Access::ExternalAuthentication;
    secret.update = Access::Never;
    sim::FileDescription hidden = file(0x050B, 11, counting(10));
    hidden.select = Access::SecureMessaging;
    sim::FileDescription unsignedFile = file(0x0540, 0, counting(10));
    unsignedFile.hashable = false;
    sim::FileDescription large = file(0x0504, 13, counting(LargeFile));
    large.update = Access::SecureMessaging;
    card.applications.push_back(
        {sim::AidG1,
         {file(0x0501, 1, counting(10)), writable, secret, hidden, unsignedFile, large},
         sim::cardSignerG1()});
    card.applications.push_back({fromHex("F0 01 02"), {file(0x0501, 1, counting(3))}, nullptr});
    return card;
}

const char* const SelectG1 = "00 A4 04 0C 06 FF 54 41 43 48 4F";
const char* const SelectOther = "00 A4 04 0C 03 F0 01 02";
const char* const SelectG2 = "00 A4 04 0C 06 FF 53 4D 52 44 54";
const char* const SelectMf = "00 A4 00 0C 02 3F 00";
const char* const SelectIcc = "00 A4 02 0C 02 00 02";
const char* const Select0501 = "00 A4 02 0C 02 05 01";
const char* const SelectWritable = "00 A4 02 0C 02 05 0E";
const char* const SelectSecret = "00 A4 02 0C 02 05 20";
const char* const SelectHidden = "00 A4 02 0C 02 05 0B";
const char* const SelectUnsigned = "00 A4 02 0C 02 05 40";
const char* const SelectLarge = "00 A4 02 0C 02 05 04";
const char* const Hash = "80 2A 90 00";
const char* const Sign = "00 2A 9E 9A 80";

/// The answer in hexadecimal; "pulled" when there is none.
std::string ask(Card& card, const std::string& command)
{
    const auto answer = card.transmit(fromHex(command));
    return answer ? toHex(*answer) : "pulled";
}

std::string statusOf(const std::string& answer)
{
    return answer.size() < 5 ? answer : answer.substr(answer.size() - 5);
}

/// Only the status word.
std::string status(Card& card, const std::string& command)
{
    return statusOf(ask(card, command));
}

std::string data(std::size_t offset, std::size_t length)
{
    return toHex(sim::slice(counting(LargeFile), offset, length));
}

struct Rule
{
    const char* name;
    /// Commands before, all of which must succeed.
    std::vector<std::string> before;
    std::string command;
    std::string answer;
};

void PrintTo(const Rule& rule, std::ostream* out)
{
    *out << rule.command << " -> " << rule.answer;
}

class CardRule : public testing::TestWithParam<Rule>
{};

TEST_P(CardRule, holds)
{
    Card card(smallCard());
    for (const std::string& command : GetParam().before) {
        ASSERT_EQ(status(card, command), "90 00") << command;
    }
    EXPECT_EQ(ask(card, GetParam().command), GetParam().answer);
}

INSTANTIATE_TEST_SUITE_P(
    Select, CardRule,
    testing::Values(
        Rule{"theApplicationIsFoundByItsAid", {}, SelectG1, "90 00"},
        Rule{"anApplicationIsFoundFromInsideAnother", {SelectOther}, SelectG1, "90 00"},
        Rule{"anUnknownAidIsNotFound", {}, SelectG2, "6A 82"},
        Rule{"aTruncatedAidIsNotFound", {}, "00 A4 04 0C 05 FF 54 41 43 48", "6A 82"},
        Rule{"anAidWithLeIsRefused", {}, "00 A4 04 0C 06 FF 54 41 43 48 4F 00", "67 00"},
        Rule{"anAidWithAnAnswerWantedIsRefused", {}, "00 A4 04 00 06 FF 54 41 43 48 4F", "6A 86"},
        Rule{"anAidShorterThanItsLcIsRefused", {}, "00 A4 04 0C 06 FF 54 41 43 48", "67 00"},
        Rule{"anAidLongerThanItsLcIsRefused", {}, "00 A4 04 0C 05 FF 54 41 43 48 4F 00", "67 00"},
        Rule{"noAidAtAllIsRefused", {}, "00 A4 04 0C", "67 00"},
        Rule{"aFileOfTheMasterFileIsFoundAfterReset", {}, SelectIcc, "90 00"},
        Rule{"aFileOfTheMasterFileIsNotFoundInAnApplication", {SelectG1}, SelectIcc, "6A 82"},
        Rule{"aFileOfTheApplicationIsNotFoundInTheMasterFile", {}, Select0501, "6A 82"},
        Rule{"aFileOfTheApplicationIsFoundInIt", {SelectG1}, Select0501, "90 00"},
        Rule{"anAbsentFileIsNotFound", {SelectG1}, "00 A4 02 0C 02 05 09", "6A 82"},
        Rule{"aFileWithLeIsRefused", {SelectG1}, "00 A4 02 0C 02 05 01 00", "67 00"},
        Rule{"aFileWithThreeBytesOfIdentifierIsRefused", {SelectG1}, "00 A4 02 0C 03 05 01 00", "67 00"},
        Rule{"aFileWithOneByteOfIdentifierIsRefused", {SelectG1}, "00 A4 02 0C 01 05", "67 00"},
        Rule{"aFileWithAnotherP2IsRefused", {SelectG1}, "00 A4 02 00 02 05 01", "6A 86"},
        Rule{"aFileThatNeedsSecureMessagingIsRefused", {SelectG1}, SelectHidden, "69 82"},
        Rule{"anotherP1IsRefused", {}, "00 A4 08 0C 02 05 01", "6A 86"},
        Rule{"theMasterFileIsFound", {SelectG1}, SelectMf, "90 00"},
        Rule{"theMasterFileHasNoOtherIdentifier", {SelectG1}, "00 A4 00 0C 02 05 00", "6A 82"},
        Rule{"theMasterFileNeedsTwoBytes", {}, "00 A4 00 0C 01 3F", "67 00"}),
    RowName());

INSTANTIATE_TEST_SUITE_P(
    ReadBinary, CardRule,
    testing::Values(
        Rule{"withoutAnyFileIsRefused", {}, "00 B0 00 00 01", "69 86"},
        Rule{"afterTheSelectionOfAnApplicationIsRefused", {SelectG1}, "00 B0 00 00 01", "69 86"},
        Rule{
            "theSelectionOfTheApplicationDropsTheFile",
            {SelectG1, Select0501, SelectG1},
            "00 B0 00 00 01",
            "69 86"},
        Rule{
            "theSelectionOfTheMasterFileDropsTheFile",
            {SelectG1, Select0501, SelectMf},
            "00 B0 00 00 01",
            "69 86"},
        Rule{"theFirstByteIsRead", {SelectG1, SelectLarge}, "00 B0 00 00 01", data(0, 1) + " 90 00"},
        Rule{
            "anOffsetOfTwoBytesIsRead", {SelectG1, SelectLarge}, "00 B0 01 02 03", data(0x102, 3) + " 90 00"},
        Rule{"leZeroMeans256Bytes", {SelectG1, SelectLarge}, "00 B0 00 00 00", data(0, 256) + " 90 00"},
        Rule{
            "leZeroUpToTheLastByteWorks",
            {SelectG1, SelectLarge},
            "00 B0 01 58 00",
            data(344, 256) + " 90 00"},
        Rule{"leZeroOneByteTooFarIsRefused", {SelectG1, SelectLarge}, "00 B0 01 59 00", "67 00"},
        Rule{"leZeroOfASmallFileIsRefused", {SelectG1, Select0501}, "00 B0 00 00 00", "67 00"},
        Rule{"theLastByteIsRead", {SelectG1, SelectLarge}, "00 B0 02 57 01", data(599, 1) + " 90 00"},
        Rule{"oneByteBeyondTheEndIsRefused", {SelectG1, SelectLarge}, "00 B0 02 57 02", "67 00"},
        Rule{"anOffsetAtTheEndIsRefused", {SelectG1, SelectLarge}, "00 B0 02 58 01", "67 00"},
        Rule{"anOffsetBehindTheEndIsRefused", {SelectG1, SelectLarge}, "00 B0 02 59 01", "6B 00"},
        Rule{"theLargestOffsetIsRefused", {SelectG1, SelectLarge}, "00 B0 7F FF 01", "6B 00"},
        Rule{"aFileThatNeedsAuthenticationIsRefused", {SelectG1, SelectSecret}, "00 B0 00 00 01", "69 82"},
        Rule{"withoutLeIsRefused", {SelectG1, Select0501}, "00 B0 00 00", "67 00"},
        Rule{"withDataIsRefused", {SelectG1, Select0501}, "00 B0 00 00 01 00", "67 00"},
        Rule{"withAnExtendedLeIsRefused", {SelectG1, Select0501}, "00 B0 00 00 00 00 01", "67 00"},
        Rule{"aShortIdentifierFindsItsFile", {SelectG1}, "00 B0 8D 05 02", data(5, 2) + " 90 00"},
        Rule{"aShortIdentifierWorksInTheMasterFile", {}, "00 B0 9E 00 02", data(0, 2) + " 90 00"},
        Rule{
            "aShortIdentifierMakesItsFileCurrent",
            {SelectG1, "00 B0 8D 00 01"},
            "00 B0 02 00 01",
            data(512, 1) + " 90 00"},
        Rule{"anUnknownShortIdentifierIsRefused", {SelectG1}, "00 B0 82 00 01", "6A 82"},
        Rule{"shortIdentifierZeroIsNoFile", {SelectG1, SelectUnsigned}, "00 B0 80 00 01", "6A 82"},
        Rule{"aShortIdentifierWithReservedBitsIsRefused", {SelectG1}, "00 B0 A1 00 01", "6A 86"},
        Rule{"aShortIdentifierNeedsTheSelectRight", {SelectG1}, "00 B0 8B 00 01", "69 82"},
        Rule{"aShortIdentifierNeedsTheReadRight", {SelectG1}, "00 B0 86 00 01", "69 82"},
        Rule{
            "aFirstGenerationCardHasNoOddForm",
            {SelectG1, SelectLarge},
            "00 B1 00 00 03 54 01 00 00",
            "6D 00"}),
    RowName());

INSTANTIATE_TEST_SUITE_P(
    UpdateBinary, CardRule,
    testing::Values(
        Rule{"withoutAnyFileIsRefused", {SelectG1}, "00 D6 00 00 01 AA", "69 86"},
        Rule{"ofAWritableFileWorks", {SelectG1, SelectWritable}, "00 D6 00 00 04 AA BB CC DD", "90 00"},
        Rule{
            "isReadBack",
            {SelectG1, SelectWritable, "00 D6 00 01 02 AA BB"},
            "00 B0 00 00 04",
            "11 AA BB 44 90 00"},
        Rule{
            "byShortIdentifierWorks",
            {SelectG1, "00 D6 87 02 02 AA BB"},
            "00 B0 00 00 04",
            "11 22 AA BB 90 00"},
        Rule{"byAnUnknownShortIdentifierIsRefused", {SelectG1}, "00 D6 82 00 01 AA", "6A 82"},
        Rule{"beyondTheEndIsRefused", {SelectG1, SelectWritable}, "00 D6 00 01 04 AA BB CC DD", "67 00"},
        Rule{"behindTheEndIsRefused", {SelectG1, SelectWritable}, "00 D6 00 05 01 AA", "6B 00"},
        Rule{"atTheEndIsRefused", {SelectG1, SelectWritable}, "00 D6 00 04 01 AA", "67 00"},
        Rule{"ofAFileNeverWrittenIsRefused", {SelectG1, SelectSecret}, "00 D6 00 00 01 AA", "69 82"},
        Rule{"ofAFileWithSecureMessagingIsRefused", {SelectG1, SelectLarge}, "00 D6 00 00 01 AA", "69 82"},
        Rule{"withoutDataIsRefused", {SelectG1, SelectWritable}, "00 D6 00 00", "67 00"},
        Rule{"withLeIsRefused", {SelectG1, SelectWritable}, "00 D6 00 00 01 AA 00", "67 00"}),
    RowName());

INSTANTIATE_TEST_SUITE_P(
    HashAndSign, CardRule,
    testing::Values(
        Rule{"hashWithoutAnyFileIsRefused", {SelectG1}, Hash, "69 86"},
        Rule{"hashOfAFileWorks", {SelectG1, Select0501}, Hash, "90 00"},
        Rule{"hashOfAFileThatForbidsItIsRefused", {SelectG1, SelectUnsigned}, Hash, "69 85"},
        Rule{"hashInTheMasterFileIsRefused", {SelectIcc}, Hash, "69 85"},
        Rule{"hashInAnApplicationWithoutKeyIsRefused", {SelectOther, Select0501}, Hash, "69 85"},
        Rule{"hashWithLeIsRefused", {SelectG1, Select0501}, "80 2A 90 00 00", "67 00"},
        Rule{"hashWithDataIsRefused", {SelectG1, Select0501}, "80 2A 90 00 01 00", "67 00"},
        Rule{"hashWithAnAlgorithmNumberIsRefused", {SelectG1, Select0501}, "80 2A 90 01", "6A 86"},
        Rule{"hashInThePlainClassIsRefused", {SelectG1, Select0501}, "00 2A 90 00", "6A 86"},
        Rule{"signWithoutAHashIsRefused", {SelectG1, Select0501}, Sign, "69 85"},
        Rule{"signWithoutLeIsRefused", {SelectG1, Select0501, Hash}, "00 2A 9E 9A", "67 00"},
        Rule{
            "signWithTheLengthOfAnotherKeyIsRefused",
            {SelectG1, Select0501, Hash},
            "00 2A 9E 9A 40",
            "67 00"},
        Rule{"signWithOneByteMoreIsRefused", {SelectG1, Select0501, Hash}, "00 2A 9E 9A 81", "67 00"},
        Rule{"signWithLeZeroIsRefused", {SelectG1, Select0501, Hash}, "00 2A 9E 9A 00", "67 00"},
        Rule{"signWithDataIsRefused", {SelectG1, Select0501, Hash}, "00 2A 9E 9A 01 00 80", "67 00"},
        Rule{"signWithOtherParametersIsRefused", {SelectG1, Select0501, Hash}, "00 2A 9E 9B 80", "6A 86"},
        Rule{
            "theHashIsDroppedByTheSelectionOfTheSameApplication",
            {SelectG1, Select0501, Hash, SelectG1},
            Sign,
            "69 85"},
        Rule{
            "theHashIsDroppedByTheSelectionOfAnotherApplication",
            {SelectG1, Select0501, Hash, SelectOther},
            Sign,
            "69 85"},
        Rule{
            "theHashIsDroppedByTheSelectionOfTheMasterFile",
            {SelectG1, Select0501, Hash, SelectMf},
            Sign,
            "69 85"}),
    RowName());

INSTANTIATE_TEST_SUITE_P(
    OtherCommands, CardRule,
    testing::Values(
        Rule{"anUnknownInstructionIsRefused", {}, "00 12 00 00", "6D 00"},
        Rule{"getResponseIsUnknownInT1", {}, "00 C0 00 00 00", "6D 00"},
        Rule{"anUnknownClassIsRefused", {}, "90 A4 04 0C 06 FF 54 41 43 48 4F", "6E 00"},
        Rule{"theClassOfTheHashKnowsNothingElse", {SelectG1, Select0501}, "80 B0 00 00 01", "6D 00"},
        Rule{"secureMessagingWithoutASessionKeyIsRefused", {}, "0C B0 00 00 01", "6A 88"},
        Rule{"challengeOfAnotherLengthIsRefused", {}, "00 84 00 00 04", "67 00"},
        Rule{"challengeWithLeZeroIsRefused", {}, "00 84 00 00 00", "67 00"},
        Rule{"challengeWithoutLeIsRefused", {}, "00 84 00 00", "67 00"},
        Rule{"challengeWithParametersIsRefused", {}, "00 84 01 00 08", "6A 86"},
        Rule{"aCardWithoutPinRefusesVerify", {}, "00 20 00 00 08 31 32 33 34 FF FF FF FF", "6A 88"},
        Rule{"verifyOfAnotherLengthIsRefused", {}, "00 20 00 00 04 31 32 33 34", "67 00"},
        Rule{"verifyWithParametersIsRefused", {}, "00 20 00 01 08 31 32 33 34 FF FF FF FF", "6A 86"},
        Rule{"nothingIsRefused", {}, "", "67 00"}, Rule{"oneByteIsRefused", {}, "00", "67 00"},
        Rule{"threeBytesAreRefused", {}, "00 A4 04", "67 00"},
        Rule{"aHeaderWithLcAndNoDataIsRefused", {}, "00 D6 00 00 05 01", "67 00"}),
    RowName());

TEST(CardState, aRefusedSelectionKeepsApplicationAndFile)
{
    Card card(smallCard());
    ask(card, SelectG1);
    ask(card, SelectLarge);
    for (const char* refused : {SelectG2, SelectIcc, SelectHidden, "00 A4 02 0C 02 05 01 00"}) {
        ASSERT_NE(status(card, refused), "90 00") << refused;
        EXPECT_EQ(ask(card, "00 B0 00 00 02"), data(0, 2) + " 90 00") << refused;
    }
}

TEST(CardState, aRefusedReadByShortIdentifierKeepsTheFile)
{
    Card card(smallCard());
    ask(card, SelectG1);
    ask(card, SelectWritable);
    EXPECT_EQ(status(card, "00 B0 81 0A 01"), "67 00");
    EXPECT_EQ(ask(card, "00 B0 00 00 04"), "11 22 33 44 90 00");
}

TEST(CardState, anUpdateByShortIdentifierMakesItsFileCurrent)
{
    Card card(smallCard());
    ask(card, SelectG1);
    ask(card, Select0501);
    EXPECT_EQ(ask(card, "00 D6 87 00 01 99"), "90 00");
    EXPECT_EQ(ask(card, "00 B0 00 00 04"), "99 22 33 44 90 00");
}

TEST(CardState, aResetGoesBackToTheMasterFileAndKeepsWhatWasWritten)
{
    Card card(smallCard());
    ask(card, SelectG1);
    ask(card, SelectWritable);
    ask(card, "00 D6 00 00 01 AA");
    card.reset();
    EXPECT_EQ(ask(card, "00 B0 00 00 01"), "69 86");
    EXPECT_EQ(ask(card, SelectWritable), "6A 82");
    EXPECT_EQ(ask(card, SelectIcc), "90 00");
    ASSERT_NE(card.file(sim::AidG1, 0x050E), nullptr);
    EXPECT_EQ(toHex(*card.file(sim::AidG1, 0x050E)), "AA 22 33 44");
}

TEST(CardState, twoChallengesDiffer)
{
    Card card(smallCard());
    const std::string first = ask(card, "00 84 00 00 08");
    EXPECT_EQ(fromHex(first).size(), 10u);
    EXPECT_EQ(statusOf(first), "90 00");
    EXPECT_NE(first, ask(card, "00 84 00 00 08"));
}

class CardSignature : public testing::Test
{
  protected:
    void SetUp() override
    {
        ask(m_card, SelectG1);
        ask(m_card, Select0501);
    }

    /// True when the card signs now, and signs `content`.
    bool signs(const Bytes& content)
    {
        const auto answer = m_card.transmit(fromHex(Sign));
        return answer && answer->size() == 130 && toHex(sim::slice(*answer, 128, 2)) == "90 00" &&
               sim::verifySignatureG1(m_key, content, sim::slice(*answer, 0, 128));
    }

    Card m_card{smallCard()};
    sim::PublicKeyG1 m_key{sim::cardPrivateKeyG1().modulus(), sim::cardPrivateKeyG1().exponent()};
};

TEST_F(CardSignature, isMadeOverTheWholeFileWhateverWasRead)
{
    ask(m_card, "00 B0 00 02 03");
    ASSERT_EQ(ask(m_card, Hash), "90 00");
    EXPECT_TRUE(signs(counting(10)));
}

TEST_F(CardSignature, canBeRepeated)
{
    ask(m_card, Hash);
    EXPECT_TRUE(signs(counting(10)));
    EXPECT_TRUE(signs(counting(10)));
}

TEST_F(CardSignature, keepsTheHashOverSelectionAndReadingOfOtherFiles)
{
    ask(m_card, Hash);
    ASSERT_EQ(ask(m_card, SelectLarge), "90 00");
    ASSERT_EQ(status(m_card, "00 B0 00 00 10"), "90 00");
    EXPECT_TRUE(signs(counting(10)));
}

TEST_F(CardSignature, keepsTheHashOverRefusedCommands)
{
    ask(m_card, Hash);
    ASSERT_EQ(ask(m_card, SelectG2), "6A 82");
    ASSERT_EQ(ask(m_card, SelectUnsigned), "90 00");
    ASSERT_EQ(ask(m_card, Hash), "69 85");
    ASSERT_EQ(ask(m_card, "00 2A 9E 9A 40"), "67 00");
    EXPECT_TRUE(signs(counting(10)));
}

TEST_F(CardSignature, coversTheFileHashedLast)
{
    ask(m_card, Hash);
    ask(m_card, SelectLarge);
    ask(m_card, Hash);
    EXPECT_TRUE(signs(counting(LargeFile)));
}

TEST_F(CardSignature, coversTheContentAtTheTimeOfTheHash)
{
    ask(m_card, SelectWritable);
    ask(m_card, Hash);
    ask(m_card, "00 D6 00 00 01 AA");
    EXPECT_TRUE(signs(fromHex("11 22 33 44")));
    ask(m_card, Hash);
    EXPECT_TRUE(signs(fromHex("AA 22 33 44")));
}

TEST_F(CardSignature, isRefusedAfterAReset)
{
    ask(m_card, Hash);
    m_card.reset();
    EXPECT_EQ(ask(m_card, Sign), "69 85");
    ask(m_card, SelectG1);
    EXPECT_EQ(ask(m_card, Sign), "69 85");
}

struct SwitchRule
{
    const char* name;
    void (*set)(Switches&);
    std::vector<std::string> before;
    std::string command;
    std::string answer;
};

void PrintTo(const SwitchRule& rule, std::ostream* out)
{
    *out << rule.command << " -> " << rule.answer;
}

class CardSwitch : public testing::TestWithParam<SwitchRule>
{};

TEST_P(CardSwitch, changesTheAnswer)
{
    sim::CardDescription description = smallCard();
    GetParam().set(description.switches);
    Card card(description);
    for (const std::string& command : GetParam().before) {
        ask(card, command);
    }
    EXPECT_EQ(ask(card, GetParam().command), GetParam().answer);
    // Without the switch the same command answers something else.
    Card usual(smallCard());
    for (const std::string& command : GetParam().before) {
        ask(usual, command);
    }
    EXPECT_NE(ask(usual, GetParam().command), GetParam().answer);
}

void bytesLeft(Switches& switches)
{
    switches.beyondEnd = Switches::BeyondEnd::BytesLeft;
}

void word90E4(Switches& switches)
{
    switches.successWord = 0x90E4;
}

INSTANTIATE_TEST_SUITE_P(
    All, CardSwitch,
    testing::Values(
        SwitchRule{
            "readingBeyondTheEndTellsTheBytesLeft",
            bytesLeft,
            {SelectG1, SelectLarge},
            "00 B0 02 50 20",
            "6C 08"},
        SwitchRule{
            "leZeroBeyondTheEndTellsTheBytesLeft",
            bytesLeft,
            {SelectG1, SelectLarge},
            "00 B0 01 59 00",
            "6C FF"},
        SwitchRule{
            "readingAtTheEndTellsThatNothingIsLeft",
            bytesLeft,
            {SelectG1, SelectLarge},
            "00 B0 02 58 01",
            "6C 00"},
        SwitchRule{"theSuccessWordOfSelectChanges", word90E4, {}, SelectG1, "90 E4"},
        SwitchRule{
            "theSuccessWordOfReadChanges",
            word90E4,
            {SelectG1, SelectLarge},
            "00 B0 00 00 01",
            data(0, 1) + " 90 E4"},
        SwitchRule{
            "anUnknownAidIsRefusedWithTheChosenWord",
            [](Switches& s) { s.selectAidRefused[sim::AidG2] = 0x6400; },
            {},
            SelectG2,
            "64 00"},
        SwitchRule{
            "aKnownAidIsRefusedWithTheChosenWord",
            [](Switches& s) { s.selectAidRefused[sim::AidG1] = 0x6A86; },
            {},
            SelectG1,
            "6A 86"},
        SwitchRule{
            "theMasterFileIsRefusedWithTheChosenWord",
            [](Switches& s) { s.selectMasterFileRefused = 0x6A86; },
            {},
            SelectMf,
            "6A 86"},
        SwitchRule{
            "theOddReadIsRefusedWithTheChosenWord",
            [](Switches& s) { s.oddReadRefused = 0x6A86; },
            {SelectG1, SelectLarge},
            "00 B1 00 00 03 54 01 00 00",
            "6A 86"},
        SwitchRule{
            "aFileIsReadWithAnIntegrityError",
            [](Switches& s) { s.integrityErrors = {0x0504}; },
            {SelectG1, SelectLarge},
            "00 B0 00 00 02",
            data(0, 2) + " 62 81"},
        SwitchRule{
            "aWriteFails",
            [](Switches& s) { s.writesFail = true; },
            {SelectG1, SelectWritable},
            "00 D6 00 00 01 AA",
            "65 81"},
        SwitchRule{
            "aFailedWriteChangesNothing",
            [](Switches& s) { s.writesFail = true; },
            {SelectG1, SelectWritable, "00 D6 00 00 01 AA"},
            "00 B0 00 00 01",
            "11 90 00"},
        SwitchRule{
            "theHashIsRefusedWithTheChosenWord",
            [](Switches& s) { s.hashRefused = 0x6D00; },
            {SelectG1, Select0501},
            Hash,
            "6D 00"},
        SwitchRule{
            "theSignatureIsRefusedWithTheChosenWord",
            [](Switches& s) { s.signRefused = 0x6982; },
            {SelectG1, Select0501, Hash},
            Sign,
            "69 82"}),
    RowName());

TEST(CardSwitches, leZeroCanReturnTheWholeSignature)
{
    sim::CardDescription description = smallCard();
    description.switches.signatureWithLeZero = true;
    Card card(description);
    for (const char* command : {SelectG1, Select0501, Hash}) {
        ask(card, command);
    }
    const std::string withLength = ask(card, Sign);
    EXPECT_EQ(fromHex(withLength).size(), 130u);
    EXPECT_EQ(ask(card, "00 2A 9E 9A 00"), withLength);
}

TEST(CardSwitches, anIntegrityErrorConcernsOnlyTheChosenFile)
{
    sim::CardDescription description = smallCard();
    description.switches.integrityErrors = {0x0504};
    Card card(description);
    ask(card, SelectG1);
    ask(card, Select0501);
    EXPECT_EQ(status(card, "00 B0 00 00 02"), "90 00");
}

TEST(CardSwitches, canBeChangedOnTheLivingCard)
{
    Card card(smallCard());
    Switches switches = card.switches();
    switches.selectAidRefused[sim::AidG1] = 0x6500;
    card.setSwitches(switches);
    EXPECT_EQ(ask(card, SelectG1), "65 00");
}

struct OddRule
{
    const char* name;
    void (*set)(Switches&);
    std::string offset;
    std::string le;
    std::string answer;
};

void PrintTo(const OddRule& rule, std::ostream* out)
{
    *out << rule.offset << " Le " << rule.le;
}

void usual(Switches&) {}

void twoBytes(Switches& switches)
{
    switches.oddHeader = Switches::OddHeader::TwoBytes;
}

void refuseEnd(Switches& switches)
{
    switches.oddEnd = Switches::OddEnd::Refuse;
}

void refuseEndWithBytesLeft(Switches& switches)
{
    refuseEnd(switches);
    bytesLeft(switches);
}

class OddRead : public testing::TestWithParam<OddRule>
{};

TEST_P(OddRead, answers)
{
    sim::CardDescription description = smallCard();
    description.switches.oddReadRefused.reset();
    GetParam().set(description.switches);
    Card card(description);
    ask(card, SelectG1);
    ask(card, SelectLarge);
    const Bytes object = fromHex(GetParam().offset);
    Bytes command = fromHex("00 B1 00 00");
    sim::appendU8(command, static_cast<std::uint32_t>(object.size()));
    sim::appendBytes(command, object);
    sim::appendBytes(command, fromHex(GetParam().le));
    EXPECT_EQ(ask(card, toHex(command)), GetParam().answer);
}

INSTANTIATE_TEST_SUITE_P(
    All, OddRead,
    testing::Values(
        OddRule{
            "leZeroAtMost256BytesWithTheHeader", usual, "54 01 00", "00",
            "53 81 FD " + data(0, 253) + " 90 00"},
        OddRule{"offset255InOneByte", usual, "54 01 FF", "00", "53 81 FD " + data(255, 253) + " 90 00"},
        OddRule{"offset256InTwoBytes", usual, "54 02 01 00", "00", "53 81 FD " + data(256, 253) + " 90 00"},
        OddRule{"theRestWithLeZero", usual, "54 02 01 FA", "00", "53 5E " + data(506, 94) + " 90 00"},
        OddRule{
            "aRestOf127BytesHasAShortHeader", usual, "54 02 01 D9", "00",
            "53 7F " + data(473, 127) + " 90 00"},
        OddRule{
            "aRestOf128BytesHasALongHeader", usual, "54 02 01 D8", "00",
            "53 81 80 " + data(472, 128) + " 90 00"},
        OddRule{"leCountsTheHeader", usual, "54 01 00", "12", "53 10 " + data(0, 16) + " 90 00"},
        OddRule{
            "leThatNoHeaderFitsExactlyGivesOneByteLess", usual, "54 01 00", "82",
            "53 7F " + data(0, 127) + " 90 00"},
        OddRule{"leOfTheHeaderAloneGivesNoData", usual, "54 01 00", "02", "53 00 90 00"},
        OddRule{"leOneIsRefused", usual, "54 01 00", "01", "67 00"},
        OddRule{"noLeIsRefused", usual, "54 01 00", "", "67 00"},
        OddRule{"leBeyondTheEndIsRefused", usual, "54 02 02 57", "04", "67 00"},
        OddRule{"theLastByteIsRead", usual, "54 02 02 57", "03", "53 01 " + data(599, 1) + " 90 00"},
        OddRule{"anOffsetAtTheEndIsRefused", usual, "54 02 02 58", "00", "67 00"},
        OddRule{"anOffsetBehindTheEndIsRefused", usual, "54 02 02 59", "00", "6B 00"},
        OddRule{"anOffsetLongerThanNeededIsRefused", usual, "54 02 00 10", "00", "6A 80"},
        OddRule{"anOffsetOfThreeBytesIsRefused", usual, "54 03 00 01 00", "00", "6A 80"},
        OddRule{"anotherObjectIsRefused", usual, "53 01 00", "00", "6A 80"},
        OddRule{"anObjectCutShortIsRefused", usual, "54 02 01", "00", "6A 80"},
        OddRule{
            "theLongHeaderLeavesOneByteLess", twoBytes, "54 01 00", "00",
            "53 82 00 FC " + data(0, 252) + " 90 00"},
        OddRule{
            "theLongHeaderIsUsedForASmallRest", twoBytes, "54 02 02 54", "00",
            "53 82 00 04 " + data(596, 4) + " 90 00"},
        OddRule{"theRestCanBeRefused", refuseEnd, "54 02 01 FA", "00", "67 00"},
        OddRule{
            "aFullAnswerIsNotRefused", refuseEnd, "54 02 01 5B", "00",
            "53 81 FD " + data(347, 253) + " 90 00"},
        OddRule{
            "theRestCanBeRefusedWithTheLeThatWorks", refuseEndWithBytesLeft, "54 02 01 FA", "00", "6C 60"},
        OddRule{
            "theLeThatWorksReadsTheRest", refuseEndWithBytesLeft, "54 02 01 FA", "60",
            "53 5E " + data(506, 94) + " 90 00"},
        OddRule{"nothingIsLeftAtTheEnd", refuseEndWithBytesLeft, "54 02 02 58", "00", "6C 00"}),
    RowName());

TEST(OddReadOfACard, needsAFileARightAndNoParameters)
{
    sim::CardDescription description = smallCard();
    description.switches.oddReadRefused.reset();
    Card card(description);
    ask(card, SelectG1);
    EXPECT_EQ(ask(card, "00 B1 00 00 03 54 01 00 00"), "69 86");
    ask(card, SelectSecret);
    EXPECT_EQ(ask(card, "00 B1 00 00 03 54 01 00 00"), "69 82");
    EXPECT_EQ(ask(card, "00 B1 00 01 03 54 01 00 00"), "6A 86");
}

TEST(OddReadOfACard, showsAnIntegrityError)
{
    sim::CardDescription description = smallCard();
    description.switches.oddReadRefused.reset();
    description.switches.integrityErrors = {0x0501};
    Card card(description);
    ask(card, SelectG1);
    ask(card, Select0501);
    EXPECT_EQ(ask(card, "00 B1 00 00 03 54 01 08 04"), "53 02 " + data(8, 2) + " 62 81");
}

TEST(CardDescriptions, thatContradictThemselvesAreRefused)
{
    const auto refused = [](void (*spoil)(sim::CardDescription&)) {
        sim::CardDescription description = smallCard();
        spoil(description);
        EXPECT_THROW(Card{description}, std::invalid_argument);
    };
    refused([](sim::CardDescription& card) { card.masterFiles.push_back(card.masterFiles.front()); });
    refused([](sim::CardDescription& card) { card.masterFiles.front().sfid = 30; });
    refused([](sim::CardDescription& card) { card.masterFiles.front().sfid = 31; });
    refused([](sim::CardDescription& card) { card.applications.push_back(card.applications.front()); });
    refused([](sim::CardDescription& card) { card.applications.front().aid.clear(); });
    refused([](sim::CardDescription& card) { card.switches.selectAidRefused[sim::AidG2] = 0x9000; });
    refused([](sim::CardDescription& card) { card.switches.hashRefused = 0x90E4; });
}

} // namespace
