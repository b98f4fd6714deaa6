// Type, generation and serial of an inserted card.
#include "CardInReader.h"

#include <support/DebugStream.h>
#include <support/ErrorChain.h>
#include <support/ExpectedDriver.h>

#include <gmock/gmock.h>

namespace {

using namespace test;
using testing::ElementsAre;
using testing::IsEmpty;

class IdentificationTest : public CardInReader
{
  protected:
    aux::Error identify()
    {
        generic = std::make_unique<scard::SCardGeneric>(
            connect(), QDateTime::currentDateTimeUtc(), scard::RegionDDD);
        DebugStream::clear();
        return generic->readCardInfo();
    }

    /// A copy of the driver card's application under the second generation's name.
    static sim::CardDescription secondGenerationCard(std::uint8_t high, std::uint8_t low)
    {
        sim::CardDescription description = driverCard();
        sim::ApplicationDescription second = description.applications.front();
        second.aid = sim::AidG2;
        for (sim::FileDescription& file : second.files) {
            if (file.fid == 0x0501) {
                file.content[1] = high;
                file.content[2] = low;
            }
        }
        description.applications.push_back(second);
        return description;
    }

    std::unique_ptr<scard::SCardGeneric> generic;
};

TEST_F(IdentificationTest, AFirstGenerationDriverCard)
{
    EXPECT_THAT(chain(identify()), IsEmpty());
    EXPECT_EQ(generic->getCardType(), scard::SCardMeta::DriverCard);
    EXPECT_FALSE(generic->is2ndGeneneration());
    EXPECT_FALSE(generic->is2_2Generation());
    EXPECT_FALSE(generic->isLoadedFromZubo());
    EXPECT_EQ(generic->getFilename(), "CARD_FILENAME_NOT_SET.DDD");
    EXPECT_THAT(
        commands(), ElementsAre(
                        "00 A4 02 0C 02 00 02", "00 B0 00 00 19", "00 A4 02 0C 02 00 05", "00 B0 00 00 08",
                        "00 A4 04 0C 06 FF 53 4D 52 44 54", "00 A4 04 0C 06 FF 54 41 43 48 4F",
                        "00 A4 02 0C 02 05 01", "00 B0 00 00 03"));
}

TEST_F(IdentificationTest, WhatItDoesStandsOnTheDebugStream)
{
    identify();
    EXPECT_THAT(
        DebugStream::lines(),
        ElementsAre(
            "\nEF_ICC", "ScSelectFile: ID: 2", "\nEF_IC", "ScSelectFile: ID: 5",
            QStringLiteral("ScSelectFile: Name: \u00FFSMRDT"), "ScDataTransfer: Status: 6a82",
            QStringLiteral("ScSelectFile: Name: \u00FFTACHO"), "ScSelectFile: ID: 501",
            "Card Type: Driver Card", "Card Structure Version: 0", "Card Generation: first generation"));
}

TEST_F(IdentificationTest, TheSerialIsTheChips)
{
    identify();
    unsigned int serial = 0;
    EXPECT_THAT(chain(generic->getCardSerial(serial)), IsEmpty());
    EXPECT_EQ(serial, sim::readU32(*card().file(sim::MasterFile, 0x0005), 0));
}

TEST_F(IdentificationTest, NoSerialBeforeIdentification)
{
    const scard::SCardGeneric unidentified(connect(), QDateTime::currentDateTimeUtc(), scard::RegionDDD);
    unsigned int serial = 4711;
    EXPECT_THAT(
        chain(unidentified.getCardSerial(serial)),
        ElementsAre(lib("getCardSerial(): card info not yet available")));
    EXPECT_EQ(serial, 4711u);
}

TEST_F(IdentificationTest, ACardWhoseChipFileCannotBeReadHasSerialZero)
{
    card().failAt(3, sim::Fault::status(0x6982));
    EXPECT_THAT(chain(identify()), IsEmpty());
    unsigned int serial = 4711;
    EXPECT_THAT(chain(generic->getCardSerial(serial)), IsEmpty());
    EXPECT_EQ(serial, 0u);
    EXPECT_TRUE(DebugStream::contains(
        "Error reading EF_IC: libscard: ScDataTransfer failed (6982) | libscard: ScReadFile Failed  (6982) | "
        "libscard: readFrom() ScReadFile() Failed: ID 5 (6982)"));
}

TEST_F(IdentificationTest, ACardWhoseOwnFileCannotBeReadIsStillIdentified)
{
    card().failAt(0, sim::Fault::status(0x6A82));
    EXPECT_THAT(chain(identify()), IsEmpty());
    EXPECT_TRUE(DebugStream::contains("Error reading EF_ICC: libscard: ScDataTransfer failed (6a82) | "
                                      "libscard: ScSelectFile Failed: By ID2 "
                                      "(6a82) | libscard: readFrom() ScSelectFile() Failed: ID 2 (6a82)"));
}

TEST_F(IdentificationTest, EachTypeIsNamed)
{
    const struct
    {
        std::uint8_t type;
        const char* line;
    } rows[] = {
        {1, "Card Type: Driver Card"},
        {2, "Card Type: Workshop Card"},
        {3, "Card Type: Control Card"},
        {4, "Card Type: Company Card"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.line);
        setTypeByte(row.type);
        card().reset();
        EXPECT_THAT(chain(identify()), IsEmpty());
        EXPECT_EQ(generic->getCardType(), row.type);
        EXPECT_TRUE(DebugStream::contains(row.line));
    }
}

TEST_F(IdentificationTest, TheVersionsLowByteComesFirst)
{
    const struct
    {
        std::uint8_t high, low;
        int version;
        bool is2_2;
    } rows[] = {
        {0x00, 0x00, 0, false},   {0x01, 0x00, 1, false},   {0x01, 0x01, 257, true},
        {0x00, 0x01, 256, false}, {0xFF, 0x00, 255, false}, {0xFF, 0xFF, 65535, true},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.version);
        insert(secondGenerationCard(row.high, row.low));
        EXPECT_THAT(chain(identify()), IsEmpty());
        EXPECT_TRUE(generic->is2ndGeneneration());
        EXPECT_EQ(generic->is2_2Generation(), row.is2_2);
        EXPECT_TRUE(DebugStream::contains(QStringLiteral("Card Structure Version: %1").arg(row.version)));
        EXPECT_TRUE(DebugStream::contains("Card Generation: second generation"));
    }
}

TEST_F(IdentificationTest, AFirstGenerationCardIsNeverOfVersion2_2)
{
    sim::Bytes identification = *card().file(sim::AidG1, 0x0501);
    identification[1] = identification[2] = 1;
    card().setFile(sim::AidG1, 0x0501, identification);
    identify();
    EXPECT_FALSE(generic->is2_2Generation());
}

TEST_F(IdentificationTest, AnyRefusalButFileNotFoundMeansTheSecondGeneration)
{
    for (const int word : {0x6A86, 0x6400, 0x6982, 0x6D00}) {
        SCOPED_TRACE(word);
        card().reset();
        card().clearLog();
        card().failAt(4, sim::Fault::status(static_cast<std::uint16_t>(word)));
        // No application is selected, so the type cannot be read.
        EXPECT_THAT(
            chain(identify()),
            ElementsAre(
                lib("ScDataTransfer failed", 0x6A82), lib("ScSelectFile Failed: By ID501", 0x6A82),
                lib("readFrom() ScSelectFile() Failed: ID 501", 0x6A82)));
        EXPECT_TRUE(generic->is2ndGeneneration());
        unsigned int serial = 0;
        EXPECT_FALSE(generic->getCardSerial(serial).isEmpty());
    }
}

TEST_F(IdentificationTest, WithoutEitherApplicationItIsNoTachographCard)
{
    sim::CardDescription description = driverCard();
    description.applications.clear();
    insert(description);
    EXPECT_THAT(
        chain(identify()),
        ElementsAre(
            lib("ScDataTransfer failed", 0x6A82), lib("ScSelectFile Failed: By Name\xC3\xBFTACHO", 0x6A82),
            lib("read() Identify Card Generation failed", 0x6A82)));
}

TEST_F(IdentificationTest, TheTypeFilesFailureIsReturnedAsItIs)
{
    card().failAt(7, sim::Fault::status(0x6982));
    EXPECT_THAT(
        chain(identify()), ElementsAre(
                               lib("ScDataTransfer failed", 0x6982), lib("ScReadFile Failed ", 0x6982),
                               lib("readFrom() ScReadFile() Failed: ID 501", 0x6982)));
    EXPECT_TRUE(DebugStream::contains(
        "Error reading Generic EF_Application_Identification (Card Type): libscard: ScDataTransfer failed "
        "(6982) "
        "| libscard: ScReadFile Failed  (6982) | libscard: readFrom() ScReadFile() Failed: ID 501 (6982)"));
}

TEST_F(IdentificationTest, ASpecificObjectStartsWithWhatIdentificationFound)
{
    identify();
    scard::SCardReader reader;
    const std::shared_ptr<scard::SCardGeneric> specific = reader.generateSpecific(*generic);
    EXPECT_EQ(specific->getCardType(), scard::SCardMeta::DriverCard);
    EXPECT_EQ(specific->getDownloadTimestamp(), generic->getDownloadTimestamp());
    unsigned int serial = 0;
    EXPECT_FALSE(specific->getCardSerial(serial).isEmpty()); // until its own identification
    card().reset();
    EXPECT_THAT(chain(specific->readCardInfo()), IsEmpty());
    EXPECT_THAT(chain(specific->getCardSerial(serial)), IsEmpty());
}

TEST_F(IdentificationTest, TheGenericObjectReadsByIdentifyingAgain)
{
    identify();
    card().reset();
    card().clearLog();
    EXPECT_THAT(chain(generic->read()), IsEmpty());
    EXPECT_EQ(card().commandCount(), 8u);
}

} // namespace
