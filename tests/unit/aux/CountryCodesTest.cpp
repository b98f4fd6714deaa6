#include "QtPrinters.h"

#include <aux/CountryCodes.h>

#include <gtest/gtest.h>

#include <limits>

namespace {

struct Nation
{
    int number;
    const char* letters;
    const char* name;
};

constexpr Nation nations[] = {
    {0x01, "A", "Austria"},
    {0x02, "AL", "Albania"},
    {0x03, "AND", "Andorra"},
    {0x04, "ARM", "Armenia"},
    {0x05, "AZ", "Azerbaijan"},
    {0x06, "B", "Belgium"},
    {0x07, "BG", "Bulgaria"},
    {0x08, "BIH", "Bosnia-Herzegovina"},
    {0x09, "BY", "Belarus"},
    {0x0A, "CH", "Switzerland"},
    {0x0B, "CY", "Cyprus"},
    {0x0C, "CZ", "Czech Republic"},
    {0x0D, "D", "Germany"},
    {0x0E, "DK", "Denmark"},
    {0x0F, "E", "Spain"},
    {0x10, "EST", "Estonia"},
    {0x11, "F", "France"},
    {0x12, "FIN", "Finland"},
    {0x13, "FL", "Liechtenstein"},
    {0x14, "FR", "Faroe Islands"},
    {0x15, "UK", "United Kingdom"},
    {0x16, "GE", "Georgia"},
    {0x17, "GR", "Greece"},
    {0x18, "H", "Hungary"},
    {0x19, "HR", "Croatia"},
    {0x1A, "I", "Italy"},
    {0x1B, "IRL", "Ireland"},
    {0x1C, "IS", "Iceland"},
    {0x1D, "KZ", "Kazakhstan"},
    {0x1E, "L", "Luxembourg"},
    {0x1F, "LT", "Lithuania"},
    {0x20, "LV", "Latvia"},
    {0x21, "M", "Malta"},
    {0x22, "MC", "Monaco"},
    {0x23, "MD", "Moldova"},
    {0x24, "MK", "(North) Macedonia"},
    {0x25, "N", "Norway"},
    {0x26, "NL", "Netherlands"},
    {0x27, "P", "Portugal"},
    {0x28, "PL", "Poland"},
    {0x29, "RO", "Romania"},
    {0x2A, "RSM", "San Marino"},
    {0x2B, "RUS", "Russia"},
    {0x2C, "S", "Sweden"},
    {0x2D, "SK", "Slovakia"},
    {0x2E, "SLO", "Slovenia"},
    {0x2F, "TM", "Turkmenistan"},
    {0x30, "TR", "Turkey"},
    {0x31, "UA", "Ukraine"},
    {0x32, "V", "Vatican City"},
    {0x33, "YU", "Yugoslavia (old)"},
    {0x34, "MNE", "Montenegro"},
    {0x35, "SRB", "Serbia"},
    {0x36, "UZ", "Uzbekistan"},
    {0x37, "TJ", "Tajikistan"},
    {0x38, "KG", "Kyrgyz Republic"},
    {0x39, "IL", "Israel"},
    {0xFD, "EC", "European Community"},
    {0xFE, "EUR", "rest of Europe"},
    {0xFF, "WLD", "rest of the world"},
};

QString lettersOf(int number)
{
    return aux::CountryCodes::countryCodeFromStateID(number);
}

TEST(CountryCodes, EveryAssignedNationHasItsLetters)
{
    for (const Nation& nation : nations) {
        SCOPED_TRACE(nation.name);
        EXPECT_EQ(lettersOf(nation.number).toStdString(), nation.letters);
    }
}

TEST(CountryCodes, LettersAreOneToThree)
{
    for (const Nation& nation : nations) {
        SCOPED_TRACE(nation.name);
        EXPECT_GE(lettersOf(nation.number).size(), 1);
        EXPECT_LE(lettersOf(nation.number).size(), 3);
    }
}

TEST(CountryCodes, NoInformationAvailableIsEmpty)
{
    EXPECT_TRUE(lettersOf(0).isEmpty());
}

TEST(CountryCodes, ReservedNumbersAreEmpty)
{
    for (int number = 0x3A; number <= 0xFC; ++number)
        EXPECT_TRUE(lettersOf(number).isEmpty()) << number;
}

TEST(CountryCodes, NumbersThatNoByteHoldsAreEmpty)
{
    for (const int number :
         {-1, -13, 256, 256 + 13, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()})
        EXPECT_TRUE(lettersOf(number).isEmpty()) << number;
}

} // namespace
