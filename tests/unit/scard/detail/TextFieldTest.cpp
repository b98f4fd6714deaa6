#include "QtPrinters.h"

#include <scard/detail/TextField.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

QString decode(unsigned char codePage, const std::string& characters)
{
    // Exactly as long as the field, so that a read behind it is noticed.
    const std::vector<unsigned char> field(characters.begin(), characters.end());
    return scard::detail::decodeText(codePage, field.data(), field.size());
}

TEST(TextField, EachCodePageIsItsPartOfIso8859)
{
    const struct
    {
        unsigned char codePage;
        const char* characters;
        QString expected;
    } rows[] = {
        {1, "M\xFCller \xA3", QStringLiteral("M\u00FCller \u00A3")},
        {2,
         "\xA3\xF3"
         "d\xBC",
         QStringLiteral("\u0141\u00F3d\u017A")},
        {3, "\xA1\xB1", QStringLiteral("\u0126\u0127")},
        {4, "\xA1\xB1", QStringLiteral("\u0104\u0105")},
        {5, "\xB8\xD2\xD0\xDD\xDE\xD2", QStringLiteral("\u0418\u0432\u0430\u043D\u043E\u0432")},
        {7, "\xC1\xE1", QStringLiteral("\u0391\u03B1")},
        {9, "\xDD\xFD", QStringLiteral("\u0130\u0131")},
        {10, "\xA1\xB1", QStringLiteral("\u0104\u0105")},
        {13, "\xA8\xB8", QStringLiteral("\u00D8\u00F8")},
        {14, "\xA1\xA2", QStringLiteral("\u1E02\u1E03")},
        {15, "\xA4\xA6", QStringLiteral("\u20AC\u0160")},
        {16, "\xAA\xBA", QStringLiteral("\u0218\u0219")},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(static_cast<int>(row.codePage));
        EXPECT_EQ(decode(row.codePage, row.characters), row.expected);
    }
}

TEST(TextField, CodePage0IsDecodedAsIso8859Part1)
{
    EXPECT_EQ(decode(0, "M\xFCller \xA3"), QStringLiteral("M\u00FCller \u00A3"));
}

TEST(TextField, CodePage12WhichDoesNotExistIsDecodedAsIso8859Part1)
{
    EXPECT_EQ(decode(12, "M\xFCller \xA3"), QStringLiteral("M\u00FCller \u00A3"));
}

TEST(TextField, CodePagesAbove16AreDecodedAsIso8859Part1)
{
    for (unsigned int codePage = 17; codePage <= 255; ++codePage)
        EXPECT_EQ(
            decode(static_cast<unsigned char>(codePage), "M\xFCller \xA3"),
            QStringLiteral("M\u00FCller \u00A3"))
            << codePage;
}

TEST(TextField, TheCodePageOfKoi8RIsDecodedAsIso8859Part1)
{
    EXPECT_EQ(decode(80, "\xE9"), QStringLiteral("\u00E9"));
}

TEST(TextField, DecodingStopsAtTheFirstZeroByte)
{
    for (const unsigned char codePage : std::vector<unsigned char>{0, 1, 2, 12}) {
        SCOPED_TRACE(static_cast<int>(codePage));
        EXPECT_EQ(decode(codePage, std::string("AB-12\0CD\0", 9)), QStringLiteral("AB-12"));
        EXPECT_EQ(decode(codePage, std::string("\0ABC", 4)), QString());
        EXPECT_EQ(decode(codePage, std::string(35, '\0')), QString());
    }
}

TEST(TextField, AFieldWithoutZeroByteIsDecodedToItsLastCharacter)
{
    for (const unsigned char codePage : std::vector<unsigned char>{0, 1, 2, 12})
        EXPECT_EQ(decode(codePage, "ABCDEFGHIJKLM"), QStringLiteral("ABCDEFGHIJKLM")) << int{codePage};
}

TEST(TextField, BlanksStay)
{
    EXPECT_EQ(decode(1, std::string(35, ' ')), QString(35, QLatin1Char(' ')));
    EXPECT_EQ(decode(2, "  A B  "), QStringLiteral("  A B  "));
}

TEST(TextField, AnEmptyFieldIsAnEmptyText)
{
    EXPECT_EQ(scard::detail::decodeText(1, nullptr, 0), QString());
}

} // namespace
