#include "fixtures/Image.h"
#include "QtPrinters.h"

#include <scard/records/DriverCard.h>
#include <scard/SCardGeneric.h>
#include <support/DebugStream.h>
#include <support/ErrorChain.h>

#include <gmock/gmock.h>

#include <QTemporaryDir>
#include <QTemporaryFile>

#include <array>
#include <cstring>
#include <string>
#include <type_traits>

// The base object as such: how it comes to be, and what its commands say when there is neither a card nor
// an image.

namespace {

using scard::RegionC1B;
using scard::RegionDDD;
using scard::RegionTGD;
using scard::SCardGeneric;
using test::Bytes;
using test::chain;
using test::Image;
using test::ImageFile;
using test::lib;
using test::thrown;
using testing::ElementsAre;
using testing::IsEmpty;

const std::string tacho("\xFFTACHO");
const std::string smrdt("\xFFSMRDT");

QDateTime moment()
{
    return QDateTime(QDate(2024, 3, 5), QTime(14, 7), Qt::UTC);
}

/// Shows what card classes can reach.
class OpenCard : public SCardGeneric
{
  public:
    using SCardGeneric::SCardGeneric;
    OpenCard(const SCardGeneric& other) : SCardGeneric(other) {}

    using SCardGeneric::addDataToRead;
    using SCardGeneric::filenameRegion;
    using SCardGeneric::hasCard;
    using SCardGeneric::iccIdentification;
    using SCardGeneric::icIdentification;
    using SCardGeneric::setFilename;
};

bool allZero(const void* bytes, std::size_t length)
{
    const Bytes zero(length);
    return std::memcmp(bytes, zero.data(), length) == 0;
}

static_assert(std::is_base_of_v<QObject, SCardGeneric>);
static_assert(std::is_copy_constructible_v<SCardGeneric>);
static_assert(!std::is_copy_assignable_v<SCardGeneric>);

TEST(SCardGenericConstruction, OnACardHandleEverythingIsAtItsStart)
{
    for (const long handle : {0L, 1L, -1L}) {
        SCOPED_TRACE(handle);
        const OpenCard card(handle, moment(), RegionC1B);

        EXPECT_EQ(card.hasCard(), handle != 0);
        EXPECT_EQ(card.getCardType(), scard::SCardMeta::Reserved);
        EXPECT_FALSE(card.is2ndGeneneration());
        EXPECT_FALSE(card.is2_2Generation());
        EXPECT_FALSE(card.isLoadedFromZubo());
        EXPECT_EQ(card.getFilename(), QStringLiteral("CARD_FILENAME_NOT_SET.DDD"));
        EXPECT_EQ(card.getDownloadTimestamp(), moment());
        EXPECT_EQ(card.getDownloadTimestamp().timeSpec(), Qt::UTC);
        EXPECT_EQ(card.filenameRegion(), RegionC1B);
        EXPECT_TRUE(allZero(&card.iccIdentification(), 25));
        EXPECT_TRUE(allZero(&card.icIdentification(), 8));
        unsigned int serial = 4711;
        EXPECT_FALSE(card.getCardSerial(serial).isEmpty());
        EXPECT_THAT(test::DebugStream::lines(), IsEmpty());
    }
}

TEST(SCardGenericConstruction, OnAnOpenImageItIsLoadedFromThere)
{
    ImageFile file(Image().add(0x0501, test::dataG1, {1, 2, 3}));

    OpenCard card(file, moment(), RegionTGD);

    EXPECT_TRUE(card.isLoadedFromZubo());
    EXPECT_FALSE(card.hasCard());
    EXPECT_EQ(card.getCardType(), scard::SCardMeta::Reserved);
    EXPECT_FALSE(card.is2ndGeneneration());
    EXPECT_EQ(card.getFilename(), QStringLiteral("CARD_FILENAME_NOT_SET.DDD"));
    EXPECT_EQ(card.getDownloadTimestamp(), moment());
    EXPECT_EQ(card.filenameRegion(), RegionTGD);
    EXPECT_TRUE(allZero(&card.iccIdentification(), 25));
    EXPECT_THAT(chain(card.memSelectFile(tacho)), IsEmpty());
    EXPECT_THAT(test::DebugStream::lines(), IsEmpty());
}

TEST(SCardGenericConstruction, TheImageOutlivesItsFile)
{
    auto file = std::make_unique<ImageFile>(Image().add(0x0505, test::dataG1, {1, 2, 3, 4, 5}));
    SCardGeneric card(*file, moment(), RegionDDD);

    file->close();
    file.reset();

    EXPECT_EQ((card.readFromMem<scard::SpecificConditionRecord>(0x0505, 0).specificConditionType), 5);
}

TEST(SCardGenericConstruction, AllBytesOfAPartlyReadFileAreTaken)
{
    ImageFile file(Image().add(0x0505, test::dataG1, {1, 2, 3, 4, 5}));
    ASSERT_EQ(file.read(7).size(), 7);

    SCardGeneric card(file, moment(), RegionDDD);

    EXPECT_EQ((card.readFromMem<unsigned char>(0x0505, 4)), 5);
}

/// No image is there: lookups find nothing to look in, and the reason stands on the debug stream.
void expectNotLoaded(QFile& file)
{
    SCardGeneric card(file, moment(), RegionDDD);

    EXPECT_TRUE(card.isLoadedFromZubo());
    EXPECT_EQ(
        test::DebugStream::lines().filter(QStringLiteral("SCardGeneric() Could not load file")).size(), 1);
    unsigned int length = 1;
    unsigned int start = 1;
    EXPECT_THAT(
        chain(card.memSelectFile(0x0501, &length, &start)),
        ElementsAre(lib("memSelectFile(): ddd file buffer not mapped", 0)));
    EXPECT_THAT(
        chain(card.memSelectFile(tacho)), ElementsAre(lib("memSelectFile(): Not enough data", 27266)));
    EXPECT_THAT(
        chain(card.ScSelectFile(tacho)), ElementsAre(lib("ScSelectFile(): No valid scard connection", 0)));
    EXPECT_THAT(
        chain(card.ScPerformHashOfFile()),
        ElementsAre(lib("ScPerformHashOfFile(): No valid scard connection", 0)));
}

TEST(SCardGenericConstruction, AFileThatIsNotOpenIsNotLoaded)
{
    ImageFile file(Image().add(0x0501, test::dataG1, {1, 2, 3}));
    file.close();

    expectNotLoaded(file);
}

TEST(SCardGenericConstruction, AFileThatDoesNotExistIsNotLoaded)
{
    const QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("nowhere")));

    expectNotLoaded(file);
}

TEST(SCardGenericConstruction, AFileWithoutANameIsNotLoaded)
{
    QFile file;

    expectNotLoaded(file);
}

TEST(SCardGenericConstruction, AnOpenFileThatWasRemovedIsNotLoaded)
{
    ImageFile file(Image().add(0x0501, test::dataG1, {1, 2, 3}));
    ASSERT_TRUE(QFile::remove(file.fileName()));

    expectNotLoaded(file);
}

TEST(SCardGenericConstruction, AFileThatIsOpenForWritingOnlyIsNotLoaded)
{
    const QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("written")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));

    expectNotLoaded(file);
}

TEST(SCardGenericCopy, TakesOverWhatIdentificationFound)
{
    ImageFile file(Image()
                       .add(0x0002, test::dataG1, test::counted(25, 1))
                       .add(0x0005, test::dataG1, {0xFE, 0xDC, 0xBA, 0x98, 1, 2, 3, 4})
                       .add(0x0501, test::dataG2, {2, 1, 1}));
    OpenCard source(file, moment(), RegionTGD);
    ASSERT_THAT(chain(source.readCardInfo()), IsEmpty());
    source.setFilename(QStringLiteral("C_X.DDD"));

    OpenCard copy(source);

    EXPECT_EQ(copy.getCardType(), scard::SCardMeta::WorkshopCard);
    EXPECT_TRUE(copy.is2ndGeneneration());
    EXPECT_TRUE(copy.is2_2Generation());
    EXPECT_TRUE(copy.isLoadedFromZubo());
    EXPECT_FALSE(copy.hasCard());
    EXPECT_EQ(copy.getFilename(), QStringLiteral("C_X.DDD"));
    EXPECT_EQ(copy.getDownloadTimestamp(), moment());
    EXPECT_EQ(copy.filenameRegion(), RegionTGD);
    EXPECT_EQ(std::memcmp(&copy.iccIdentification(), test::counted(25, 1).data(), 25), 0);
    EXPECT_EQ(copy.icIdentification().icSerialNumber[0], 0xFE);
    EXPECT_THAT(chain(copy.memSelectFile(smrdt)), IsEmpty());
}

TEST(SCardGenericCopy, TakesOverTheCard)
{
    const OpenCard source(1, moment(), RegionC1B);

    const OpenCard copy(source);

    EXPECT_TRUE(copy.hasCard());
    EXPECT_FALSE(copy.isLoadedFromZubo());
    EXPECT_EQ(copy.filenameRegion(), RegionC1B);
}

TEST(SCardGenericCopy, HasNoCardInfoUntilItsOwnIdentification)
{
    ImageFile file(Image()
                       .add(0x0005, test::dataG1, {0xFE, 0xDC, 0xBA, 0x98, 1, 2, 3, 4})
                       .add(0x0501, test::dataG1, {1, 0, 0}));
    SCardGeneric source(file, moment(), RegionDDD);
    ASSERT_THAT(chain(source.readCardInfo()), IsEmpty());
    SCardGeneric copy(source);

    unsigned int serial = 4711;
    EXPECT_THAT(
        chain(copy.getCardSerial(serial)),
        ElementsAre(lib("getCardSerial(): card info not yet available", 0)));
    EXPECT_EQ(serial, 4711U);

    ASSERT_THAT(chain(copy.readCardInfo()), IsEmpty());
    EXPECT_THAT(chain(copy.getCardSerial(serial)), IsEmpty());
    EXPECT_EQ(serial, 0xFEDCBA98U);
}

TEST(SCardGenericCopy, ProgressStartsAnew)
{
    OpenCard source(0, moment(), RegionDDD);
    source.addDataToRead(1000);
    OpenCard copy(source);
    int emissions = 0;
    QObject::connect(&copy, &SCardGeneric::progress, [&] { ++emissions; });

    copy.emitProgress();

    EXPECT_EQ(emissions, 0);
}

TEST(SCardGenericCopy, DoesNotTakeOverWhoListens)
{
    OpenCard source(0, moment(), RegionDDD);
    int heard = 0;
    QObject::connect(&source, &SCardGeneric::cardLanguage, [&] { ++heard; });
    OpenCard copy(source);

    copy.emitCardLanguage("de");

    EXPECT_EQ(heard, 0);
}

TEST(SCardGenericCopy, IsIndependentOfItsSource)
{
    ImageFile file(Image().add(0x0505, test::dataG1, {1, 2, 3, 4, 5}));
    auto source = std::make_unique<OpenCard>(file, moment(), RegionDDD);
    OpenCard copy(*source);

    source->setFilename(QStringLiteral("other"));
    source->setFilenameRegion(RegionTGD);
    source.reset();

    EXPECT_EQ(copy.getFilename(), QStringLiteral("CARD_FILENAME_NOT_SET.DDD"));
    EXPECT_EQ(copy.filenameRegion(), RegionDDD);
    EXPECT_EQ((copy.readFromMem<unsigned char>(0x0505, 1)), 2);
}

TEST(SCardGeneric, TheRegionCanBeChanged)
{
    OpenCard card(0, moment(), RegionDDD);

    card.setFilenameRegion(RegionTGD);

    EXPECT_EQ(card.filenameRegion(), RegionTGD);
}

TEST(SCardGeneric, TheStepsThatACardClassFillsSucceedWithoutDoingAnything)
{
    const QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("saved")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    SCardGeneric card(0, moment(), RegionDDD);

    EXPECT_THAT(chain(card.calcDataToRead()), IsEmpty());
    EXPECT_THAT(chain(card.saveToFile(file)), IsEmpty());
    EXPECT_THAT(chain(card.postDownloadTasks()), IsEmpty());
    EXPECT_THAT(chain(card.extraTask()), IsEmpty());

    EXPECT_EQ(file.size(), 0);
    EXPECT_THAT(test::DebugStream::lines(), IsEmpty());
}

TEST(SCardGeneric, ReadIdentifiesTheCardOnceMore)
{
    ImageFile file(
        Image().add(0x0005, test::dataG1, {0, 0, 0, 9, 1, 2, 3, 4}).add(0x0501, test::dataG1, {3, 0, 0}));
    SCardGeneric card(file, moment(), RegionDDD);

    EXPECT_THAT(chain(card.read()), IsEmpty());

    EXPECT_EQ(card.getCardType(), scard::SCardMeta::ControlCard);
    unsigned int serial = 0;
    EXPECT_THAT(chain(card.getCardSerial(serial)), IsEmpty());
    EXPECT_EQ(serial, 9U);
}

// Neither card nor image

class SCardGenericOnNothing : public testing::Test
{
  protected:
    SCardGeneric card{0, moment(), RegionDDD};
    std::array<unsigned char, 32> buffer{};
    unsigned long received = buffer.size();
};

TEST_F(SCardGenericOnNothing, TransferHasNoReader)
{
    std::array<unsigned char, 4> command{0x80, 0x2A, 0x90, 0x00};

    EXPECT_THAT(
        chain(card.ScDataTransfer(command.data(), command.size(), buffer.data(), received)),
        ElementsAre(lib("ScDataTransfer: no scard reader assigned. Opened from file?", 0)));
}

TEST_F(SCardGenericOnNothing, SelectByFidFailsInTheTransfer)
{
    EXPECT_THAT(
        chain(card.ScSelectFile(0x0502)),
        ElementsAre(
            lib("ScDataTransfer: no scard reader assigned. Opened from file?", 0),
            lib("ScSelectFile Failed: By ID502", 0)));

    const QStringList logged = test::DebugStream::lines().filter(QStringLiteral("ScSelectFile: ID: "));
    ASSERT_EQ(logged.size(), 1);
    EXPECT_TRUE(logged.front().endsWith(QStringLiteral("502")));
}

TEST_F(SCardGenericOnNothing, SelectByNameHasNoConnection)
{
    for (const std::string& name : {tacho, smrdt, std::string(), std::string("much too long a name")}) {
        SCOPED_TRACE(name);
        EXPECT_THAT(
            chain(card.ScSelectFile(name)), ElementsAre(lib("ScSelectFile(): No valid scard connection", 0)));
    }
}

TEST_F(SCardGenericOnNothing, ReadHasNoConnection)
{
    EXPECT_THAT(
        chain(card.ScReadFile(0, 10, buffer.data(), received)),
        ElementsAre(lib("ScReadFile(): No valid scard connection", 0)));
    EXPECT_EQ(received, 0U);
}

TEST_F(SCardGenericOnNothing, LargeReadHasNoConnection)
{
    EXPECT_THAT(
        chain(card.ScReadLargeFile(0, 10, buffer.data(), received)),
        ElementsAre(lib("ScReadLargeFile(): No valid scard connection", 0)));
    EXPECT_EQ(received, 0U);
}

TEST_F(SCardGenericOnNothing, WriteHasNoConnection)
{
    const unsigned char data[] = {1, 2, 3};
    EXPECT_THAT(
        chain(card.ScWriteFile(0, 3, data, buffer.data(), received)),
        ElementsAre(lib("ScWriteFile(): No valid scard connection", 0)));
    EXPECT_EQ(received, 0U);
}

TEST_F(SCardGenericOnNothing, WriteToFailsAtTheSelection)
{
    const unsigned char data[] = {1, 2, 3, 4};
    EXPECT_THAT(
        chain(card.writeTo(0x050E, 4, data)),
        ElementsAre(
            lib("ScDataTransfer: no scard reader assigned. Opened from file?", 0),
            lib("ScSelectFile Failed: By ID50e", 0), lib("writeTo() ScSelectFile() Failed: ID 50e", 0)));
}

TEST_F(SCardGenericOnNothing, HashHasNoConnection)
{
    EXPECT_THAT(
        chain(card.ScPerformHashOfFile()),
        ElementsAre(lib("ScPerformHashOfFile(): No valid scard connection", 0)));
}

TEST_F(SCardGenericOnNothing, SignatureHasNoConnectionAndIs256ZeroBytes)
{
    for (const bool secondGeneration : {false, true}) {
        std::vector<unsigned char> signature{1, 2, 3};
        EXPECT_THAT(
            chain(card.ScComputeSignature(secondGeneration, signature)),
            ElementsAre(lib("ScPerformHashOfFile(): No valid scard connection", 0)));
        EXPECT_EQ(signature, Bytes(256));
    }
}

TEST_F(SCardGenericOnNothing, ReadSignatureThrowsWithTheFid)
{
    EXPECT_THAT(
        thrown([&] { card.readSignature(0x0520, false); }),
        ElementsAre(
            lib("ScPerformHashOfFile(): No valid scard connection", 0),
            lib("readHash() ScPerformHashOfFile() Failed: ID520", 0)));
    EXPECT_THAT(
        thrown([&] { card.readSignature(0xC10A, true); }),
        ElementsAre(
            lib("ScPerformHashOfFile(): No valid scard connection", 0),
            lib("readHash() ScPerformHashOfFile() Failed: IDc10a", 0)));
}

TEST_F(SCardGenericOnNothing, DatasetReadersThrowAtTheSelection)
{
    const test::Chain expected{
        lib("ScDataTransfer: no scard reader assigned. Opened from file?", 0),
        lib("ScSelectFile Failed: By ID502", 0), lib("readFrom() ScSelectFile() Failed: ID 502", 0)};

    EXPECT_EQ(thrown([&] { card.readFrom<scard::CardEventRecord>(0x0502, 12, 6, 0, true); }), expected);
    EXPECT_EQ(thrown([&] { card.readFrom<scard::CardEventRecord>(0x0502, 12, 0, 0, true); }), expected);
    EXPECT_EQ(thrown([&] { card.readFrom<scard::CardEventRecord>(0x0502, 0, true); }), expected);
}

TEST_F(SCardGenericOnNothing, ImageReadersHaveNoImage)
{
    const test::Chain expected{
        lib("memSelectFile(): ddd file buffer not mapped", 0),
        lib("readFromMem() memSelectFile() Failed: ID 502", 0)};

    EXPECT_EQ(thrown([&] { card.readFromMem<scard::CardEventRecord>(0x0502, 12, 6, 0); }), expected);
    EXPECT_EQ(thrown([&] { card.readFromMem<scard::CardEventRecord>(0x0502, 0); }), expected);
}

TEST_F(SCardGenericOnNothing, LookupsHaveNoImage)
{
    unsigned int length = 1;
    unsigned int start = 1;
    EXPECT_THAT(
        chain(card.memSelectFile(0x0501, &length, &start)),
        ElementsAre(lib("memSelectFile(): ddd file buffer not mapped", 0)));
    EXPECT_THAT(
        chain(card.memSelectFile(0x0501, nullptr, nullptr)),
        ElementsAre(lib("memSelectFile(): invalid arguments", 0)));
    EXPECT_THAT(
        chain(card.memSelectFile(tacho)), ElementsAre(lib("memSelectFile(): Not enough data", 27266)));
}

TEST_F(SCardGenericOnNothing, ACommandWithoutACardDoesNotTellThatItWasRemoved)
{
    int removals = 0;
    QObject::connect(&card, &SCardGeneric::removed, [&] { ++removals; });

    card.ScSelectFile(0x0502);
    card.ScReadFile(0, 10, buffer.data(), received);

    EXPECT_EQ(removals, 0);
}

// Progress

class SCardGenericProgress : public testing::Test
{
  protected:
    void SetUp() override
    {
        QObject::connect(
            &card, &SCardGeneric::progress, [this](int percent) { percents.push_back(percent); });
    }

    OpenCard card{0, moment(), RegionDDD};
    std::vector<int> percents;
};

TEST_F(SCardGenericProgress, WithNothingToReadThereIsNoSignalAndNoLine)
{
    card.emitProgress();

    EXPECT_THAT(percents, IsEmpty());
    EXPECT_THAT(test::DebugStream::lines(), IsEmpty());
}

TEST_F(SCardGenericProgress, BeforeTheFirstByteItIsZero)
{
    card.addDataToRead(28183);

    card.emitProgress();

    EXPECT_THAT(percents, ElementsAre(0));
    EXPECT_THAT(
        test::DebugStream::lines(), ElementsAre(QStringLiteral("=== Progress: 0 dataToRead: 28183%:0")));
}

TEST_F(SCardGenericProgress, DataToReadAddsUp)
{
    card.addDataToRead(1000);
    card.addDataToRead(234);

    card.emitProgress();

    EXPECT_THAT(
        test::DebugStream::lines(), ElementsAre(QStringLiteral("=== Progress: 0 dataToRead: 1234%:0")));
}

TEST_F(SCardGenericProgress, CalculatingAnewStartsFromNothing)
{
    card.addDataToRead(1000);

    EXPECT_THAT(chain(card.calcDataToRead()), IsEmpty());
    card.emitProgress();

    EXPECT_THAT(percents, IsEmpty());
}

// Language

TEST(SCardGenericLanguage, TheFirstTwoCharactersNameTheLanguageInAnyCase)
{
    const struct
    {
        const char* given;
        const char* expected;
    } rows[] = {
        {"de", "de"}, {"DE", "de"},  {"De", "de"},   {"dE", "de"},   {"fi", "fi"},
        {"EL", "el"}, {"deu", "de"}, {"enGB", "en"}, {"PLxx", "pl"}, {"bg \n", "bg"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.given);
        SCardGeneric card(0, moment(), RegionDDD);
        std::vector<QLocale> languages;
        QObject::connect(&card, &SCardGeneric::cardLanguage, [&](const QLocale& language) {
            languages.push_back(language);
        });

        card.emitCardLanguage(row.given);

        ASSERT_EQ(languages.size(), 1U);
        EXPECT_EQ(languages.front(), QLocale(QString::fromLatin1(row.expected)));
        EXPECT_NE(languages.front().language(), QLocale::C);
    }
}

TEST(SCardGenericLanguage, WhatIsNoLanguageGivesQtsDefaultForAnUnknownName)
{
    for (const char* given : {"xx", "XX", "d", "", "  ", "12", "\xFF\xFF"}) {
        SCOPED_TRACE(given);
        SCardGeneric card(0, moment(), RegionDDD);
        std::vector<QLocale> languages;
        QObject::connect(&card, &SCardGeneric::cardLanguage, [&](const QLocale& language) {
            languages.push_back(language);
        });

        card.emitCardLanguage(given);

        ASSERT_EQ(languages.size(), 1U);
        EXPECT_EQ(languages.front(), QLocale(QStringLiteral("xx")));
    }
}

TEST(SCardGenericLanguage, NoMoreThanTwoCharactersAreLookedAt)
{
    // Not zero-terminated, as it stands in the card's bytes.
    const std::vector<char> two{'f', 'r'};
    SCardGeneric card(0, moment(), RegionDDD);
    std::vector<QLocale> languages;
    QObject::connect(
        &card, &SCardGeneric::cardLanguage, [&](const QLocale& language) { languages.push_back(language); });

    card.emitCardLanguage(two.data());

    ASSERT_EQ(languages.size(), 1U);
    EXPECT_EQ(languages.front().language(), QLocale::French);
}

// Text fields

template <std::size_t Length>
void fill(unsigned char (&characters)[Length], const std::string& text)
{
    std::memset(characters, ' ', Length);
    std::memcpy(characters, text.data(), std::min(text.size(), Length));
}

TEST(SCardGenericTextField, ANameHas35Characters)
{
    scard::Name name{};
    name.codePage = 2;
    fill(
        name.name, "\xA3\xF3"
                   "d\xBC");
    EXPECT_EQ(
        SCardGeneric::textfieldToString(name),
        QStringLiteral("\u0141\u00F3d\u017A") + QString(31, QLatin1Char(' ')));

    fill(name.name, std::string(35, 'x'));
    EXPECT_EQ(SCardGeneric::textfieldToString(name), QString(35, QLatin1Char('x')));

    name.name[5] = 0;
    EXPECT_EQ(SCardGeneric::textfieldToString(name), QString(5, QLatin1Char('x')));
}

TEST(SCardGenericTextField, AnAddressHas35Characters)
{
    scard::Address address{};
    address.codePage = 255;
    fill(address.address, "M\xFCnchen");
    EXPECT_EQ(
        SCardGeneric::textfieldToString(address),
        QStringLiteral("M\u00FCnchen") + QString(28, QLatin1Char(' ')));

    fill(address.address, std::string(35, 'x'));
    EXPECT_EQ(SCardGeneric::textfieldToString(address), QString(35, QLatin1Char('x')));
}

TEST(SCardGenericTextField, ARegistrationNumberHas13Characters)
{
    scard::VehicleRegistrationNumber number{};
    number.codePage = 0;
    fill(number.vehicleRegNumber, "ABCDEFGHIJKLM");
    EXPECT_EQ(SCardGeneric::textfieldToString(number), QStringLiteral("ABCDEFGHIJKLM"));

    number.vehicleRegNumber[5] = 0;
    EXPECT_EQ(SCardGeneric::textfieldToString(number), QStringLiteral("ABCDE"));

    fill(number.vehicleRegNumber, "");
    EXPECT_EQ(SCardGeneric::textfieldToString(number), QString(13, QLatin1Char(' ')));
}

} // namespace
