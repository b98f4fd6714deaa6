#include "fixtures/Image.h"
#include "fixtures/ImageFailure.h"
#include "QtPrinters.h"

#include <scard/SCardGeneric.h>
#include <support/DebugStream.h>
#include <support/ErrorChain.h>

#include <gmock/gmock.h>

#include <cstring>
#include <string>

// Type, generation and version of images made by hand.

namespace {

using scard::RegionDDD;
using scard::SCardGeneric;
using test::Bytes;
using test::chain;
using test::Image;
using test::ImageFile;
using test::lib;
using test::logged;
using test::missing;
using testing::ElementsAre;
using testing::IsEmpty;

const Bytes serialNumber{0xFE, 0xDC, 0xBA, 0x98, 1, 2, 3, 4};

/// ICC, IC and an application identification of both the generic and some further bytes.
Image imageOf(unsigned char dataType, unsigned char cardType, unsigned char version0, unsigned char version1)
{
    return Image()
        .add(0x0002, test::dataG1, test::counted(25, 1))
        .add(0x0005, test::dataG1, serialNumber)
        .add(0x0501, dataType, {cardType, version0, version1, 12, 24, 0x35, 0xD0, 0, 200, 112});
}

class Identified : public SCardGeneric
{
  public:
    explicit Identified(const Image& image) : Identified(ImageFile(image)) {}

    const aux::Error result = readCardInfo();

    using SCardGeneric::addDataToRead;
    using SCardGeneric::iccIdentification;
    using SCardGeneric::icIdentification;

  private:
    explicit Identified(ImageFile&& file) : SCardGeneric(file, QDateTime(), RegionDDD) {}
};

TEST(Identification, AnImageOfTheFirstGeneration)
{
    const Identified card(imageOf(test::dataG1, 1, 0, 0));

    EXPECT_THAT(chain(card.result), IsEmpty());
    EXPECT_EQ(card.getCardType(), scard::SCardMeta::DriverCard);
    EXPECT_FALSE(card.is2ndGeneneration());
    EXPECT_FALSE(card.is2_2Generation());
    EXPECT_EQ(std::memcmp(&card.iccIdentification(), test::counted(25, 1).data(), 25), 0);
    EXPECT_EQ(std::memcmp(&card.icIdentification(), serialNumber.data(), 8), 0);
    EXPECT_THAT(
        test::DebugStream::lines(),
        ElementsAre(
            QStringLiteral("\nEF_ICC"), QStringLiteral("\nEF_IC"), QStringLiteral("Card Type: Driver Card"),
            QStringLiteral("Card Structure Version: 0"),
            QStringLiteral("Card Generation: first generation")));
}

TEST(Identification, AnImageOfTheSecondGeneration)
{
    const Identified card(imageOf(test::dataG2, 2, 1, 0));

    EXPECT_THAT(chain(card.result), IsEmpty());
    EXPECT_EQ(card.getCardType(), scard::SCardMeta::WorkshopCard);
    EXPECT_TRUE(card.is2ndGeneneration());
    EXPECT_FALSE(card.is2_2Generation());
    EXPECT_EQ(std::memcmp(&card.iccIdentification(), test::counted(25, 1).data(), 25), 0);
    EXPECT_THAT(
        test::DebugStream::lines(),
        ElementsAre(
            QStringLiteral("\nEF_ICC"), QStringLiteral("\nEF_IC"), QStringLiteral("Card Type: Workshop Card"),
            QStringLiteral("Card Structure Version: 1"),
            QStringLiteral("Card Generation: second generation")));
}

TEST(Identification, AnImageOfBothGenerationsIsOfTheSecond)
{
    const Identified card(imageOf(test::dataG1, 1, 0, 0).add(0x0501, test::dataG2, {4, 1, 1}));

    EXPECT_THAT(chain(card.result), IsEmpty());
    EXPECT_TRUE(card.is2ndGeneneration());
    EXPECT_TRUE(card.is2_2Generation());
    EXPECT_EQ(card.getCardType(), scard::SCardMeta::CompanyCard);
}

TEST(Identification, TypesOneToFourAreKnown)
{
    const struct
    {
        unsigned char type;
        const char* line;
    } rows[] = {
        {1, "Card Type: Driver Card"},
        {2, "Card Type: Workshop Card"},
        {3, "Card Type: Control Card"},
        {4, "Card Type: Company Card"},
    };
    for (const auto& row : rows) {
        for (const unsigned char generation : {test::dataG1, test::dataG2}) {
            SCOPED_TRACE(row.line);
            test::DebugStream::clear();
            const Identified card(imageOf(generation, row.type, 0, 0));
            EXPECT_THAT(chain(card.result), IsEmpty());
            EXPECT_EQ(card.getCardType(), row.type);
            EXPECT_TRUE(test::DebugStream::contains(QString::fromLatin1(row.line)));
            unsigned int serial = 0;
            EXPECT_TRUE(card.getCardSerial(serial).isEmpty());
            EXPECT_EQ(serial, 0xFEDCBA98U);
        }
    }
}

TEST(Identification, OtherTypesAreRefused)
{
    for (const unsigned char type : Bytes{0, 5, 6, 7, 8, 9, 0x81, 0xFF}) {
        for (const unsigned char generation : {test::dataG1, test::dataG2}) {
            SCOPED_TRACE(static_cast<int>(type));
            test::DebugStream::clear();
            const Identified card(imageOf(generation, type, 0, 0));
            EXPECT_THAT(chain(card.result), ElementsAre(lib("read() Unknown Card Type", 0)));
            EXPECT_TRUE(
                test::DebugStream::contains(QStringLiteral("Card Type: Unknown Card: %1").arg(int{type})));
            EXPECT_THAT(test::DebugStream::lines().filter(QStringLiteral("Card Generation")), IsEmpty());
            unsigned int serial = 4711;
            EXPECT_THAT(
                chain(card.getCardSerial(serial)),
                ElementsAre(lib("getCardSerial(): card info not yet available", 0)));
            EXPECT_EQ(serial, 4711U);
        }
    }
}

TEST(Identification, VersionBytesAreCombinedWithTheFirstOneLow)
{
    const struct
    {
        unsigned char first;
        unsigned char second;
        const char* line;
        bool version2;
    } rows[] = {
        {0x00, 0x00, "Card Structure Version: 0", false},
        {0x01, 0x00, "Card Structure Version: 1", false},
        {0xFF, 0x00, "Card Structure Version: 255", false},
        {0x00, 0x01, "Card Structure Version: 256", false},
        {0x01, 0x01, "Card Structure Version: 257", true},
        {0x02, 0x01, "Card Structure Version: 258", true},
        {0x00, 0x02, "Card Structure Version: 512", true},
        {0xFF, 0xFF, "Card Structure Version: 65535", true},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.line);
        test::DebugStream::clear();
        const Identified second(imageOf(test::dataG2, 1, row.first, row.second));
        EXPECT_TRUE(second.result.isEmpty());
        EXPECT_EQ(second.is2_2Generation(), row.version2);
        EXPECT_TRUE(test::DebugStream::contains(QString::fromLatin1(row.line)));

        const Identified first(imageOf(test::dataG1, 1, row.first, row.second));
        EXPECT_TRUE(first.result.isEmpty());
        EXPECT_FALSE(first.is2_2Generation());
    }
}

TEST(Identification, TheThreeGenericBytesAreEnough)
{
    const Identified card(Image().add(0x0501, test::dataG1, {1, 0, 0}));

    EXPECT_THAT(chain(card.result), IsEmpty());
    EXPECT_EQ(card.getCardType(), scard::SCardMeta::DriverCard);
}

TEST(Identification, AnImageWithoutIccAndIcIsIdentifiedWithSerialZero)
{
    const Identified card(Image().add(0x0501, test::dataG1, {1, 0, 0}));

    EXPECT_THAT(chain(card.result), IsEmpty());
    unsigned int serial = 4711;
    EXPECT_THAT(chain(card.getCardSerial(serial)), IsEmpty());
    EXPECT_EQ(serial, 0U);
    EXPECT_TRUE(test::DebugStream::contains(logged("Error reading EF_ICC:", missing("2"))));
    EXPECT_TRUE(test::DebugStream::contains(logged("Error reading EF_IC:", missing("5"))));
}

TEST(Identification, AShortIccDoesNotStandInTheWayOfTheIc)
{
    const Identified card(imageOf(test::dataG1, 1, 0, 0).replace(0x0002, test::counted(24, 1)));

    EXPECT_THAT(chain(card.result), IsEmpty());
    EXPECT_EQ(std::memcmp(&card.iccIdentification(), Bytes(25).data(), 25), 0);
    EXPECT_EQ(std::memcmp(&card.icIdentification(), serialNumber.data(), 8), 0);
    const QStringList lines = test::DebugStream::lines().filter(QStringLiteral("Error reading EF_ICC:"));
    ASSERT_EQ(lines.size(), 1);
    EXPECT_TRUE(lines.front().contains(QStringLiteral("readFromMem() invalid dataset size:24requested:25")));
    EXPECT_THAT(test::DebugStream::lines().filter(QStringLiteral("Error reading EF_IC:")), IsEmpty());
}

TEST(Identification, AnImageOfNeitherGenerationIsNotIdentified)
{
    const Identified card(Image().add(0x0501, test::signatureG1, {1}).add(0x0501, test::signatureG2, {1}));

    EXPECT_THAT(
        chain(card.result), ElementsAre(
                                lib("memSelectFile(): Dataset not found", 27266),
                                lib("read() Identify Card Generation failed", 27266)));
    EXPECT_EQ(card.getCardType(), scard::SCardMeta::Reserved);
}

TEST(Identification, AnImageOfFourBytesIsNotIdentified)
{
    ImageFile file(Bytes{0x05, 0x01, 0x00, 0x00});
    SCardGeneric card(file, QDateTime(), RegionDDD);

    EXPECT_THAT(
        chain(card.readCardInfo()), ElementsAre(
                                        lib("memSelectFile(): Not enough data", 27266),
                                        lib("read() Identify Card Generation failed", 27266)));
    EXPECT_TRUE(test::DebugStream::contains(logged("Error reading EF_ICC:", missing("2"))));
}

TEST(Identification, AnImageWithoutApplicationIdentificationKeepsItsGenerationOnly)
{
    const struct
    {
        const char* name;
        unsigned char type;
        bool second;
    } rows[] = {{"first", test::dataG1, false}, {"second", test::dataG2, true}};
    const char* text = "Error reading Generic EF_Application_Identification (Card Type):";
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        test::DebugStream::clear();
        const Identified card(Image().add(0x0520, row.type, {1, 2, 3}));
        EXPECT_EQ(chain(card.result), chain(missing("501")));
        EXPECT_EQ(card.is2ndGeneneration(), row.second);
        EXPECT_EQ(card.getCardType(), scard::SCardMeta::Reserved);
        EXPECT_TRUE(test::DebugStream::contains(logged(text, missing("501"))));
        unsigned int serial = 0;
        EXPECT_FALSE(card.getCardSerial(serial).isEmpty());
    }
}

TEST(Identification, TheOtherGenerationsApplicationIdentificationIsNotTaken)
{
    const Identified card(imageOf(test::dataG1, 1, 0, 0).add(0x0520, test::dataG2, {1, 2, 3}));

    EXPECT_EQ(chain(card.result), chain(missing("501")));
    EXPECT_TRUE(card.is2ndGeneneration());
}

TEST(Identification, AShortApplicationIdentificationIsRefused)
{
    const Identified card(Image().add(0x0501, test::dataG1, {1, 0}));

    EXPECT_THAT(
        chain(card.result), ElementsAre(lib("readFromMem() invalid dataset size:2requested:3", 6700)));
}

TEST(Identification, WithoutCardAndImageOnlyTheApplicationIdentificationsFailureIsReturned)
{
    SCardGeneric card(0, QDateTime(), RegionDDD);

    // The selection fails with the id 0, and only "file not found" leads to the first generation.
    EXPECT_THAT(
        chain(card.readCardInfo()),
        ElementsAre(
            lib("ScDataTransfer: no scard reader assigned. Opened from file?", 0),
            lib("ScSelectFile Failed: By ID501", 0), lib("readFrom() ScSelectFile() Failed: ID 501", 0)));
    EXPECT_TRUE(card.is2ndGeneneration());
}

TEST(Identification, IdentifyingAgainGivesTheSame)
{
    for (const unsigned char generation : {test::dataG1, test::dataG2}) {
        SCOPED_TRACE(static_cast<int>(generation));
        Identified card(imageOf(generation, 1, 1, 1));

        EXPECT_THAT(chain(card.readCardInfo()), IsEmpty());

        EXPECT_EQ(card.getCardType(), scard::SCardMeta::DriverCard);
        EXPECT_EQ(card.is2ndGeneneration(), generation == test::dataG2);
        EXPECT_EQ(std::memcmp(&card.iccIdentification(), test::counted(25, 1).data(), 25), 0);
        unsigned int serial = 0;
        EXPECT_TRUE(card.getCardSerial(serial).isEmpty());
        EXPECT_EQ(serial, 0xFEDCBA98U);
    }
}

TEST(Identification, StartsTheProgressAnew)
{
    Identified card(imageOf(test::dataG1, 1, 0, 0));
    int emissions = 0;
    QObject::connect(&card, &SCardGeneric::progress, [&] { ++emissions; });
    card.addDataToRead(1000);

    EXPECT_THAT(chain(card.readCardInfo()), IsEmpty());
    card.emitProgress();

    EXPECT_EQ(emissions, 0);
}

TEST(Identification, AFailureStartsTheProgressAnewToo)
{
    Identified card(Image().add(0x0501, test::signatureG1, {1}));
    int emissions = 0;
    QObject::connect(&card, &SCardGeneric::progress, [&] { ++emissions; });
    card.addDataToRead(1000);

    EXPECT_FALSE(card.readCardInfo().isEmpty());
    card.emitProgress();

    EXPECT_EQ(emissions, 0);
}

} // namespace
