// Bytes, texts and dates as they stand in the files of a card.

#include "Text.h"
#include "Bytes.h"
#include "Nations.h"
#include "RowName.h"
#include "TimeReal.h"

#include <gtest/gtest.h>

namespace {

using sim::Bytes;
using sim::fromHex;
using sim::toHex;

TEST(ByteStrings, areBigEndian)
{
    Bytes bytes;
    sim::appendU8(bytes, 0x101);
    sim::appendU16(bytes, 0x0203);
    sim::appendU24(bytes, 0x040506);
    sim::appendU32(bytes, 0xF708090A);
    EXPECT_EQ(toHex(bytes), "01 02 03 04 05 06 F7 08 09 0A");
    EXPECT_EQ(sim::readU16(bytes, 1), 0x0203);
    EXPECT_EQ(sim::readU32(bytes, 6), 0xF708090Au);
}

TEST(ByteStrings, areNotReadBeyondTheirEnd)
{
    const Bytes bytes = fromHex("01 02 03");
    EXPECT_THROW(sim::readU16(bytes, 2), std::out_of_range);
    EXPECT_THROW(sim::readU32(bytes, 0), std::out_of_range);
    EXPECT_THROW(sim::slice(bytes, 2, 2), std::out_of_range);
    EXPECT_THROW(sim::slice(bytes, 4, 0), std::out_of_range);
    EXPECT_TRUE(sim::slice(bytes, 3, 0).empty());
}

TEST(ByteStrings, areReadFromHexadecimalText)
{
    EXPECT_EQ(fromHex("0aFf 10"), (Bytes{0x0A, 0xFF, 0x10}));
    EXPECT_THROW(fromHex("0"), std::invalid_argument);
    EXPECT_THROW(fromHex("0G"), std::invalid_argument);
}

struct TextRow
{
    const char* name;
    int codePage;
    const char* utf8;
    /// Empty: cannot be written.
    const char* bytes;
};

void PrintTo(const TextRow& row, std::ostream* out)
{
    *out << row.utf8;
}

class EncodedText : public testing::TestWithParam<TextRow>
{};

TEST_P(EncodedText, isThatOfTheCodePage)
{
    const auto bytes = sim::encodeText(GetParam().utf8, GetParam().codePage);
    EXPECT_EQ(bytes ? toHex(*bytes) : "", GetParam().bytes);
}

INSTANTIATE_TEST_SUITE_P(
    All, EncodedText,
    testing::Values(
        TextRow{"latin1", 1, "Müß", "4D FC DF"}, TextRow{"latin2", 2, "Łódź", "A3 F3 64 BC"},
        TextRow{"cyrillic", 5, "Иван", "B8 D2 D0 DD"}, TextRow{"greek", 7, "Νίκος", "CD DF EA EF F2"},
        TextRow{"turkish", 9, "Şğ", "DE F0"}, TextRow{"baltic", 13, "Jānis", "4A E2 6E 69 73"},
        TextRow{"latin9", 15, "€", "A4"}, TextRow{"latin10", 16, "Ș", "AA"},
        TextRow{"characterOfAnotherCodePage", 1, "Łódź", ""}, TextRow{"partThatDoesNotExist", 12, "A", ""},
        TextRow{"partZero", 0, "A", ""}, TextRow{"partBehindTheLast", 17, "A", ""},
        TextRow{"brokenUtf8", 1, "\xC3", ""}),
    RowName());

TEST(TextFields, arePaddedWithBlanksBehindTheirCodePage)
{
    EXPECT_EQ(toHex(sim::textField("Ä", 1, 3)), "01 C4 20 20");
    EXPECT_EQ(toHex(sim::textField("", 5, 2)), "05 20 20");
    EXPECT_EQ(toHex(sim::emptyTextField(2)), "00 20 20");
    EXPECT_EQ(toHex(sim::asciiField("D1", 4)), "44 31 20 20");
}

TEST(TextFields, refuseWhatDoesNotFit)
{
    EXPECT_THROW(sim::textField("ABCD", 1, 3), std::invalid_argument);
    EXPECT_THROW(sim::textField("Ł", 1, 3), std::invalid_argument);
    EXPECT_THROW(sim::asciiField("ABC", 2), std::invalid_argument);
    EXPECT_THROW(sim::asciiField("Ä", 4), std::invalid_argument);
    EXPECT_THROW(sim::asciiField("\x1F", 4), std::invalid_argument);
}

TEST(Nations, haveTheLettersOfTheCodeList)
{
    EXPECT_EQ(sim::nationAlpha(0x00), "");
    EXPECT_EQ(sim::nationAlpha(0x0D), "D");
    EXPECT_EQ(sim::nationAlpha(0x12), "FIN");
    EXPECT_EQ(sim::nationAlpha(0x15), "UK");
    EXPECT_EQ(sim::nationAlpha(0x1F), "LT");
    EXPECT_EQ(sim::nationAlpha(0x28), "PL");
    EXPECT_EQ(sim::nationAlpha(0x34), "MNE");
    EXPECT_EQ(sim::nationAlpha(0x39), "IL");
    EXPECT_EQ(sim::nationAlpha(0x3A), "");
    EXPECT_EQ(sim::nationAlpha(0xFC), "");
    EXPECT_EQ(sim::nationAlpha(0xFD), "EC");
    EXPECT_EQ(sim::nationAlpha(0xFF), "WLD");
}

TEST(Times, areTheSecondsOfTheCalendar)
{
    EXPECT_EQ(sim::timeOf({1970, 1, 1}), 0u);
    EXPECT_EQ(sim::timeOf({2024, 3, 5}), 0x65E66080u);
    EXPECT_EQ(sim::timeOf({2000, 3, 1}), 951868800u);
    EXPECT_EQ(sim::timeOf({2100, 3, 1}), 4107542400u);
    EXPECT_THROW(sim::timeOf({2023, 2, 29}), std::invalid_argument);
    EXPECT_THROW(sim::timeOf({2100, 2, 29}), std::invalid_argument);
    EXPECT_THROW(sim::timeOf({2024, 13, 1}), std::invalid_argument);
    EXPECT_THROW(sim::timeOf({2024, 0, 1}), std::invalid_argument);
    EXPECT_THROW(sim::timeOf({2024, 1, 0}), std::invalid_argument);
    EXPECT_THROW(sim::timeOf({1969, 12, 31}), std::invalid_argument);
    EXPECT_THROW(sim::timeOf({2106, 2, 8}), std::invalid_argument);
}

TEST(Times, comeBackAsTheSameDate)
{
    for (std::uint32_t time = 0; time < 0xFFFFFFFFu - 40 * sim::SecondsPerDay;
         time += 37 * sim::SecondsPerDay) {
        ASSERT_EQ(sim::timeOf(sim::dateOf(time)), time);
    }
}

TEST(Times, knowTheirWeekday)
{
    EXPECT_EQ(sim::weekdayOf(0), 3);
    EXPECT_EQ(sim::weekdayOf(sim::timeOf({2024, 3, 4})), 0);
    EXPECT_EQ(sim::weekdayOf(sim::timeOf({2024, 3, 10}) + 86399), 6);
}

} // namespace
