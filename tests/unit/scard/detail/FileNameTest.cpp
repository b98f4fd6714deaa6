#include "QtPrinters.h"

#include <scard/detail/FileName.h>

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace {

using scard::FilenameRegion;
using scard::RegionC1B;
using scard::RegionDDD;
using scard::RegionTGD;

struct Parts
{
    const char* country = "D";
    std::string driverIdentification = "DF000000123456";
    unsigned char replacementIndex = '0';
    unsigned char renewalIndex = '1';
    QString firstNames = QStringLiteral("Johannes");
    QString surname = QStringLiteral("Mustermann");
    QDateTime timestamp{QDate(2024, 3, 5), QTime(14, 7, 59), Qt::UTC};
};

std::string nameBy(FilenameRegion region, const Parts& parts)
{
    scard::DriverCardNumber number{};
    EXPECT_EQ(parts.driverIdentification.size(), sizeof number.driverIdentification);
    std::memcpy(
        number.driverIdentification, parts.driverIdentification.data(), sizeof number.driverIdentification);
    number.cardReplacementIndex = parts.replacementIndex;
    number.cardRenewalIndex = parts.renewalIndex;
    return scard::detail::driverFileName(
               region, number,
               {QString::fromLatin1(parts.country), parts.firstNames, parts.surname, parts.timestamp})
        .toStdString();
}

TEST(DriverFileName, EachRegionHasItsConvention)
{
    EXPECT_EQ(nameBy(RegionDDD, {}), "C_20240305_1407_J_Mustermann_DF000000123456.DDD");
    EXPECT_EQ(nameBy(RegionC1B, {}), "D__DF0000001234562403051407.C1B");
    EXPECT_EQ(nameBy(RegionTGD, {}), "C_DF00000012345601_D_20240305_1407.TGD");
}

TEST(DriverFileName, AnUnknownRegionHasNoName)
{
    for (const unsigned int region : {3U, 4U, 255U, 0xFFFFFFFFU})
        EXPECT_EQ(nameBy(static_cast<FilenameRegion>(region), {}), "") << region;
}

TEST(DriverFileName, CountriesAreFilledAndCutToThreeCharactersInC1bOnly)
{
    const struct
    {
        const char* country;
        const char* c1b;
        const char* tgd;
    } rows[] = {
        {"", "___DF0000001234562403051407.C1B", "C_DF00000012345601__20240305_1407.TGD"},
        {"F", "F__DF0000001234562403051407.C1B", "C_DF00000012345601_F_20240305_1407.TGD"},
        {"AL", "AL_DF0000001234562403051407.C1B", "C_DF00000012345601_AL_20240305_1407.TGD"},
        {"AND", "ANDDF0000001234562403051407.C1B", "C_DF00000012345601_AND_20240305_1407.TGD"},
        {"ABCD", "ABCDF0000001234562403051407.C1B", "C_DF00000012345601_ABCD_20240305_1407.TGD"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.country);
        Parts parts;
        parts.country = row.country;
        EXPECT_EQ(nameBy(RegionC1B, parts), row.c1b);
        EXPECT_EQ(nameBy(RegionTGD, parts), row.tgd);
        EXPECT_EQ(nameBy(RegionDDD, parts), "C_20240305_1407_J_Mustermann_DF000000123456.DDD");
    }
}

TEST(DriverFileName, TheCardTextIsUpperCase)
{
    Parts parts;
    parts.driverIdentification = "df00000012345x";

    EXPECT_EQ(nameBy(RegionDDD, parts), "C_20240305_1407_J_Mustermann_DF00000012345X.DDD");
    EXPECT_EQ(nameBy(RegionC1B, parts), "D__DF00000012345X2403051407.C1B");
    EXPECT_EQ(nameBy(RegionTGD, parts), "C_DF00000012345X01_D_20240305_1407.TGD");
}

TEST(DriverFileName, BlanksOfTheCardTextAreTrimmedInTgdOnly)
{
    Parts parts;
    parts.driverIdentification = " DF 12345     ";

    EXPECT_EQ(nameBy(RegionDDD, parts), "C_20240305_1407_J_Mustermann_ DF 12345     .DDD");
    EXPECT_EQ(nameBy(RegionC1B, parts), "D__ DF 12345     2403051407.C1B");
    EXPECT_EQ(nameBy(RegionTGD, parts), "C_DF 1234501_D_20240305_1407.TGD");
}

TEST(DriverFileName, TheCardTextEndsAtAZeroByte)
{
    Parts parts;
    parts.driverIdentification = std::string("DF123\0\0AB\0CDEF", 14);

    EXPECT_EQ(nameBy(RegionDDD, parts), "C_20240305_1407_J_Mustermann_DF123.DDD");
    EXPECT_EQ(nameBy(RegionC1B, parts), "D__DF1232403051407.C1B");
    EXPECT_EQ(nameBy(RegionTGD, parts), "C_DF12301_D_20240305_1407.TGD");
}

TEST(DriverFileName, TheFirstNamesGiveTheirFirstCharacterUntrimmedInItsOwnCase)
{
    const struct
    {
        const char* name;
        QString firstNames;
        QString expected;
    } rows[] = {
        {"filled up with blanks", QStringLiteral("Anna Maria        "), QStringLiteral("A")},
        {"lower case", QStringLiteral("anna"), QStringLiteral("a")},
        {"beyond ASCII", QStringLiteral("\u0141ukasz"), QStringLiteral("\u0141")},
        {"leading blank", QStringLiteral(" Anna"), QStringLiteral(" ")},
        {"all blanks", QString(35, QLatin1Char(' ')), QStringLiteral(" ")},
        {"empty", QString(), QString()},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        Parts parts;
        parts.firstNames = row.firstNames;
        EXPECT_EQ(
            nameBy(RegionDDD, parts),
            "C_20240305_1407_" + row.expected.toStdString() + "_Mustermann_DF000000123456.DDD");
    }
}

TEST(DriverFileName, TheSurnameIsTrimmedInItsOwnCase)
{
    const struct
    {
        const char* name;
        QString surname;
        QString expected;
    } rows[] = {
        {"filled up with blanks", QStringLiteral("van der Berg         "), QStringLiteral("van der Berg")},
        {"leading blank", QStringLiteral("  Berg"), QStringLiteral("Berg")},
        {"beyond ASCII", QStringLiteral("\u0141\u00F3d\u017A"), QStringLiteral("\u0141\u00F3d\u017A")},
        {"all blanks", QString(35, QLatin1Char(' ')), QString()},
        {"empty", QString(), QString()},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        Parts parts;
        parts.surname = row.surname;
        EXPECT_EQ(
            nameBy(RegionDDD, parts),
            "C_20240305_1407_J_" + row.expected.toStdString() + "_DF000000123456.DDD");
    }
}

TEST(DriverFileName, IndicesAreUpperCase)
{
    Parts parts;
    parts.replacementIndex = 'a';
    parts.renewalIndex = 'z';

    EXPECT_EQ(nameBy(RegionTGD, parts), "C_DF000000123456AZ_D_20240305_1407.TGD");
    EXPECT_EQ(nameBy(RegionDDD, parts), nameBy(RegionDDD, {}));
    EXPECT_EQ(nameBy(RegionC1B, parts), nameBy(RegionC1B, {}));
}

TEST(DriverFileName, AnIndexBeyondAsciiIsOneCharacter)
{
    Parts parts;
    parts.replacementIndex = 0xE9;
    parts.renewalIndex = '{'; // stands right behind the small letters

    EXPECT_EQ(
        nameBy(RegionTGD, parts),
        QStringLiteral("C_DF000000123456\u00E9{_D_20240305_1407.TGD").toStdString());
}

TEST(DriverFileName, AZeroIndexDoesNotEndTheName)
{
    Parts parts;
    parts.replacementIndex = 0;
    parts.renewalIndex = 0;
    EXPECT_EQ(nameBy(RegionTGD, parts), "C_DF000000123456_D_20240305_1407.TGD");

    parts.renewalIndex = '2';
    EXPECT_EQ(nameBy(RegionTGD, parts), "C_DF0000001234562_D_20240305_1407.TGD");
}

TEST(DriverFileName, TheDigitsAreThoseOfTheTimestamp)
{
    Parts parts;
    parts.timestamp = QDateTime(QDate(2009, 12, 31), QTime(0, 0, 0), Qt::UTC);

    EXPECT_EQ(nameBy(RegionDDD, parts), "C_20091231_0000_J_Mustermann_DF000000123456.DDD");
    EXPECT_EQ(nameBy(RegionC1B, parts), "D__DF0000001234560912310000.C1B");
    EXPECT_EQ(nameBy(RegionTGD, parts), "C_DF00000012345601_D_20091231_0000.TGD");
}

TEST(DriverFileName, AnUnpersonalisedCardStillHasAName)
{
    Parts parts;
    parts.country = "";
    parts.driverIdentification = std::string(14, '\0');
    parts.replacementIndex = 0;
    parts.renewalIndex = 0;
    parts.firstNames.clear();
    parts.surname.clear();

    EXPECT_EQ(nameBy(RegionDDD, parts), "C_20240305_1407___.DDD");
    EXPECT_EQ(nameBy(RegionC1B, parts), "___2403051407.C1B");
    EXPECT_EQ(nameBy(RegionTGD, parts), "C___20240305_1407.TGD");
}

} // namespace
