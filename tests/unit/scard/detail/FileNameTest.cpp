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

struct WorkshopParts
{
    const char* country = "D";
    std::string owner = "DW00000001234";
    std::string indices = "201"; ///< consecutive, replacement, renewal
    QString firstNames = QStringLiteral("Petra");
    QString surname = QStringLiteral("Musterfrau");
    QDateTime timestamp{QDate(2024, 3, 5), QTime(14, 7, 59), Qt::UTC};
};

std::string workshopNameBy(FilenameRegion region, const WorkshopParts& parts)
{
    scard::OwnerCardNumber number{};
    EXPECT_EQ(parts.owner.size(), sizeof number.ownerIdentification);
    EXPECT_EQ(parts.indices.size(), 3U);
    std::memcpy(number.ownerIdentification, parts.owner.data(), sizeof number.ownerIdentification);
    number.cardConsecutiveIndex = static_cast<unsigned char>(parts.indices.at(0));
    number.cardReplacementIndex = static_cast<unsigned char>(parts.indices.at(1));
    number.cardRenewalIndex = static_cast<unsigned char>(parts.indices.at(2));
    return scard::detail::workshopFileName(
               region, number,
               {QString::fromLatin1(parts.country), parts.firstNames, parts.surname, parts.timestamp})
        .toStdString();
}

TEST(WorkshopFileName, EachRegionHasItsConvention)
{
    EXPECT_EQ(workshopNameBy(RegionDDD, {}), "C_20240305_1407_P_Musterfrau_DW00000001234201.DDD");
    EXPECT_EQ(workshopNameBy(RegionC1B, {}), "D__DW000000012342403051407.C1B");
    EXPECT_EQ(workshopNameBy(RegionTGD, {}), "C_DW00000001234201_D_20240305_1407.TGD");
}

TEST(WorkshopFileName, InC1bHasThreeThirteenAndTenCharacters)
{
    for (const char* country : {"", "F", "AL", "AND", "ABCD"}) {
        WorkshopParts parts;
        parts.country = country;
        EXPECT_EQ(workshopNameBy(RegionC1B, parts).size(), 3U + 13U + 10U + 4U) << country;
    }
}

TEST(WorkshopFileName, AnUnknownRegionHasNoName)
{
    for (const unsigned int region : {3U, 4U, 255U, 0xFFFFFFFFU})
        EXPECT_EQ(workshopNameBy(static_cast<FilenameRegion>(region), {}), "") << region;
}

TEST(WorkshopFileName, CountriesAreFilledAndCutToThreeCharactersInC1bOnly)
{
    const struct
    {
        const char* country;
        const char* c1b;
        const char* tgd;
    } rows[] = {
        {"", "___DW000000012342403051407.C1B", "C_DW00000001234201__20240305_1407.TGD"},
        {"F", "F__DW000000012342403051407.C1B", "C_DW00000001234201_F_20240305_1407.TGD"},
        {"AL", "AL_DW000000012342403051407.C1B", "C_DW00000001234201_AL_20240305_1407.TGD"},
        {"AND", "ANDDW000000012342403051407.C1B", "C_DW00000001234201_AND_20240305_1407.TGD"},
        {"ABCD", "ABCDW000000012342403051407.C1B", "C_DW00000001234201_ABCD_20240305_1407.TGD"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.country);
        WorkshopParts parts;
        parts.country = row.country;
        EXPECT_EQ(workshopNameBy(RegionC1B, parts), row.c1b);
        EXPECT_EQ(workshopNameBy(RegionTGD, parts), row.tgd);
        EXPECT_EQ(workshopNameBy(RegionDDD, parts), workshopNameBy(RegionDDD, {}));
    }
}

TEST(WorkshopFileName, TheCardTextIsUpperCase)
{
    WorkshopParts parts;
    parts.owner = "dw0000000123x";

    EXPECT_EQ(workshopNameBy(RegionDDD, parts), "C_20240305_1407_P_Musterfrau_DW0000000123X201.DDD");
    EXPECT_EQ(workshopNameBy(RegionC1B, parts), "D__DW0000000123X2403051407.C1B");
    EXPECT_EQ(workshopNameBy(RegionTGD, parts), "C_DW0000000123X201_D_20240305_1407.TGD");
}

TEST(WorkshopFileName, EachOfTheThreeIndicesIsUpperCase)
{
    WorkshopParts parts;
    parts.indices = "abz";

    EXPECT_EQ(workshopNameBy(RegionDDD, parts), "C_20240305_1407_P_Musterfrau_DW00000001234ABZ.DDD");
    EXPECT_EQ(workshopNameBy(RegionTGD, parts), "C_DW00000001234ABZ_D_20240305_1407.TGD");
    EXPECT_EQ(workshopNameBy(RegionC1B, parts), workshopNameBy(RegionC1B, {}));
}

TEST(WorkshopFileName, AnIndexBeyondAsciiIsOneCharacter)
{
    WorkshopParts parts;
    parts.indices = "0\xE9{"; // the last one stands right behind the small letters

    EXPECT_EQ(
        workshopNameBy(RegionTGD, parts),
        QStringLiteral("C_DW000000012340\u00E9{_D_20240305_1407.TGD").toStdString());
}

TEST(WorkshopFileName, AZeroIndexDoesNotEndTheName)
{
    WorkshopParts parts;
    parts.indices = std::string("\0\0\0", 3);
    EXPECT_EQ(workshopNameBy(RegionDDD, parts), "C_20240305_1407_P_Musterfrau_DW00000001234.DDD");
    EXPECT_EQ(workshopNameBy(RegionTGD, parts), "C_DW00000001234_D_20240305_1407.TGD");

    parts.indices = std::string("\0a\0", 3);
    EXPECT_EQ(workshopNameBy(RegionDDD, parts), "C_20240305_1407_P_Musterfrau_DW00000001234A.DDD");
    EXPECT_EQ(workshopNameBy(RegionTGD, parts), "C_DW00000001234A_D_20240305_1407.TGD");
}

TEST(WorkshopFileName, TheCardTextEndsAtAZeroByte)
{
    WorkshopParts parts;
    parts.owner = std::string("DW123\0\0AB\0CDE", 13);

    EXPECT_EQ(workshopNameBy(RegionDDD, parts), "C_20240305_1407_P_Musterfrau_DW123201.DDD");
    EXPECT_EQ(workshopNameBy(RegionC1B, parts), "D__DW1232403051407.C1B");
    EXPECT_EQ(workshopNameBy(RegionTGD, parts), "C_DW123201_D_20240305_1407.TGD");
}

TEST(WorkshopFileName, BlanksOfTheCardTextAreTrimmedInTgdOnly)
{
    WorkshopParts parts;
    parts.owner = " DW 12345    ";

    EXPECT_EQ(workshopNameBy(RegionDDD, parts), "C_20240305_1407_P_Musterfrau_ DW 12345    201.DDD");
    EXPECT_EQ(workshopNameBy(RegionC1B, parts), "D__ DW 12345    2403051407.C1B");
    EXPECT_EQ(workshopNameBy(RegionTGD, parts), "C_DW 12345201_D_20240305_1407.TGD");
}

TEST(WorkshopFileName, InDddTheWholeNameIsTrimmed)
{
    WorkshopParts parts;
    parts.indices = "   ";
    EXPECT_EQ(workshopNameBy(RegionDDD, parts), "C_20240305_1407_P_Musterfrau_DW00000001234.DDD");
    EXPECT_EQ(workshopNameBy(RegionTGD, parts), "C_DW00000001234   _D_20240305_1407.TGD");

    parts.indices = "1\t\n";
    EXPECT_EQ(workshopNameBy(RegionDDD, parts), "C_20240305_1407_P_Musterfrau_DW000000012341.DDD");

    parts.owner = "DW 1234      ";
    parts.indices = "   ";
    EXPECT_EQ(workshopNameBy(RegionDDD, parts), "C_20240305_1407_P_Musterfrau_DW 1234.DDD");
    EXPECT_EQ(workshopNameBy(RegionC1B, parts), "D__DW 1234      2403051407.C1B");

    parts.owner = std::string(13, ' ');
    parts.surname = QString(35, QLatin1Char(' '));
    EXPECT_EQ(workshopNameBy(RegionDDD, parts), "C_20240305_1407_P__.DDD");
}

TEST(WorkshopFileName, TheFirstNamesGiveTheirFirstCharacterUntrimmedInItsOwnCase)
{
    const struct
    {
        const char* name;
        QString firstNames;
        QString expected;
    } rows[] = {
        {"filled up with blanks", QStringLiteral("Petra Maria        "), QStringLiteral("P")},
        {"lower case", QStringLiteral("petra"), QStringLiteral("p")},
        {"beyond ASCII", QStringLiteral("\u0141ukasz"), QStringLiteral("\u0141")},
        {"leading blank", QStringLiteral(" Petra"), QStringLiteral(" ")},
        {"all blanks", QString(35, QLatin1Char(' ')), QStringLiteral(" ")},
        {"empty", QString(), QString()},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        WorkshopParts parts;
        parts.firstNames = row.firstNames;
        EXPECT_EQ(
            workshopNameBy(RegionDDD, parts),
            "C_20240305_1407_" + row.expected.toStdString() + "_Musterfrau_DW00000001234201.DDD");
    }
}

TEST(WorkshopFileName, TheSurnameIsTrimmedInItsOwnCase)
{
    WorkshopParts parts;
    parts.surname = QStringLiteral("  van der \u0141\u00F3d\u017A   ");

    EXPECT_EQ(
        workshopNameBy(RegionDDD, parts),
        QStringLiteral("C_20240305_1407_P_van der \u0141\u00F3d\u017A_DW00000001234201.DDD").toStdString());
}

TEST(WorkshopFileName, TheDigitsAreThoseOfTheTimestamp)
{
    WorkshopParts parts;
    parts.timestamp = QDateTime(QDate(2009, 12, 31), QTime(0, 0, 0), Qt::UTC);

    EXPECT_EQ(workshopNameBy(RegionDDD, parts), "C_20091231_0000_P_Musterfrau_DW00000001234201.DDD");
    EXPECT_EQ(workshopNameBy(RegionC1B, parts), "D__DW000000012340912310000.C1B");
    EXPECT_EQ(workshopNameBy(RegionTGD, parts), "C_DW00000001234201_D_20091231_0000.TGD");
}

TEST(WorkshopFileName, AnUnpersonalisedCardStillHasAName)
{
    WorkshopParts parts;
    parts.country = "";
    parts.owner = std::string(13, '\0');
    parts.indices = std::string(3, '\0');
    parts.firstNames.clear();
    parts.surname.clear();

    EXPECT_EQ(workshopNameBy(RegionDDD, parts), "C_20240305_1407___.DDD");
    EXPECT_EQ(workshopNameBy(RegionC1B, parts), "___2403051407.C1B");
    EXPECT_EQ(workshopNameBy(RegionTGD, parts), "C___20240305_1407.TGD");
}

std::string companyName(
    const scard::ExtendedSerialNumber& serial,
    const QDateTime& timestamp = QDateTime(QDate(2024, 3, 5), QTime(14, 7, 59), Qt::UTC))
{
    return scard::detail::companyFileName(serial, timestamp).toStdString();
}

TEST(CompanyFileName, HasTheSerialNumberWithoutTheMakersCode)
{
    EXPECT_EQ(
        companyName({{0x00, 0x12, 0x34, 0x56}, {0x03, 0x24}, 0x0A, 0x00}),
        "C_20240305_1407_Company Card_0012345603240A.DDD");
    EXPECT_EQ(
        companyName({{0x00, 0x12, 0x34, 0x56}, {0x03, 0x24}, 0x0A, 0xBC}),
        "C_20240305_1407_Company Card_0012345603240A.DDD");
}

TEST(CompanyFileName, TheSerialNumberHasFourteenUpperCaseDigits)
{
    EXPECT_EQ(companyName({}), "C_20240305_1407_Company Card_00000000000000.DDD");
    EXPECT_EQ(
        companyName({{0xAB, 0xCD, 0xEF, 0x01}, {0x0A, 0xF0}, 0xFE, 0xFF}),
        "C_20240305_1407_Company Card_ABCDEF010AF0FE.DDD");
    EXPECT_EQ(
        companyName({{0x00, 0x00, 0x00, 0x00}, {0x00, 0x00}, 0x01, 0x00}),
        "C_20240305_1407_Company Card_00000000000001.DDD");
}

TEST(CompanyFileName, TheDigitsAreThoseOfTheTimestamp)
{
    EXPECT_EQ(
        companyName({}, QDateTime(QDate(2009, 12, 31), QTime(23, 59, 59), Qt::UTC)),
        "C_20091231_2359_Company Card_00000000000000.DDD");
}

} // namespace
