#include "fixtures/Image.h"
#include "QtPrinters.h"

#include <scard/detail/ApplicationName.h>
#include <scard/detail/CardApplication.h>
#include <scard/records/BigEndian.h>
#include <support/DebugStream.h>
#include <support/ErrorChain.h>

#include <gmock/gmock.h>

#include <QTemporaryDir>

namespace {

using namespace scard::detail;
using test::Bytes;
using test::chain;
using test::Image;
using test::ImageFile;
using test::lib;
using testing::ElementsAre;
using testing::IsEmpty;

/// A counting EF, an EF of a head and as many records of two bytes, and a closing one.
const EfTable& threeFiles()
{
    static const EfTable table = [] {
        EfTable rows;
        rows.applicationName = firstGenerationApplication();
        rows.rows = {
            {{0x0001, "EF_Skipped", "skipped:"},
             {{4, fixedCount(1), 1}},
             Signing::Unsigned,
             InImage::Required,
             ReadAt::Identification},
            {{0x0101, "EF_Counts", "counts failed:"},
             {{1, fixedCount(2), 1}},
             Signing::Signed,
             InImage::Required},
            {{0x0102, "EF_Records", "records failed:"},
             {{1, fixedCount(1), 1}, {2, countField(0x0101, 1, 1), 1}},
             Signing::Signed,
             InImage::Optional},
            {{0x0103, "EF_Close", "close failed:"},
             {{1, fixedCount(1), 1}},
             Signing::Unsigned,
             InImage::Required},
        };
        rows.saveOrder = {0x0103, 0x0001, 0x0102, 0x0101};
        return rows;
    }();
    return table;
}

Image threeFilesImage()
{
    return Image()
        .add(0x0103, test::dataG1, {0x77})
        .add(0x0102, test::dataG1, {0x09, 1, 2, 3, 4, 5, 6, 0xEE})
        .add(0x0101, test::dataG1, {0xAB, 3});
}

std::uint32_t bytesOfAllRows(const CardApplication& application)
{
    scard::SCardGeneric noCard(0, QDateTime(), scard::RegionDDD);
    return application.dataToRead(noCard, OnCards::All);
}

class CardApplicationOnImage : public testing::Test
{
  protected:
    aux::Error read(const Image& image)
    {
        ImageFile file(image);
        scard::SCardGeneric card(file, QDateTime(), scard::RegionDDD);
        return application.read(card, [this](unsigned short fid) { announced.push_back(fid); });
    }

    CardApplication application{threeFiles()};
    std::vector<unsigned short> announced;
};

TEST_F(CardApplicationOnImage, ReadsThePiecesOneBehindTheOtherByTheCountsReadBefore)
{
    EXPECT_THAT(chain(read(threeFilesImage())), IsEmpty());

    EXPECT_THAT(application.bytes(0x0101), ElementsAre(0xAB, 3));
    EXPECT_THAT(application.bytes(0x0102), ElementsAre(0x09, 1, 2, 3, 4, 5, 6));
    EXPECT_THAT(application.bytes(0x0103), ElementsAre(0x77));
}

TEST_F(CardApplicationOnImage, AnnouncesEachEfThatWasReadInTheTablesOrder)
{
    EXPECT_THAT(chain(read(threeFilesImage())), IsEmpty());

    EXPECT_THAT(announced, ElementsAre(0x0101, 0x0102, 0x0103));
    EXPECT_THAT(
        test::DebugStream::lines(),
        ElementsAre(
            QStringLiteral("\nEF_Counts"), QStringLiteral("\nEF_Records"), QStringLiteral("\nEF_Close")));
}

TEST_F(CardApplicationOnImage, SaysThatReadingBeginsWithTheTablesWords)
{
    EfTable table = threeFiles();
    table.readingText = "now reading";
    application = CardApplication(table);
    EXPECT_THAT(chain(read(threeFilesImage())), IsEmpty());
    ASSERT_EQ(test::DebugStream::lines().size(), 4);
    EXPECT_EQ(test::DebugStream::lines().front(), QStringLiteral("now reading"));

    test::DebugStream::clear();
    EXPECT_FALSE(read(Image().add(0x0101, test::dataG2, {1, 2, 3, 4, 5, 6})).isEmpty());
    EXPECT_FALSE(test::DebugStream::contains(QStringLiteral("now reading")));
}

TEST_F(CardApplicationOnImage, ATableSaysWhereAStepsOwnEntryStandsAndWhetherAnEfHasOne)
{
    EfTable table = threeFiles();
    table.stepEntry = OwnEntry::Last;
    table.efFailure = EfFailure::RowsText;
    application = CardApplication(table);
    EXPECT_THAT(
        chain(read(threeFilesImage().without(0x0103))),
        ElementsAre(
            lib("memSelectFile(): Dataset not found"), lib("readFromMem() memSelectFile() Failed: ID 103"),
            lib("close failed:")));
    EXPECT_THAT(
        chain(read(Image().add(0x0101, test::dataG2, {1, 2, 3, 4, 5, 6}))),
        ElementsAre(
            lib("memSelectFile(): Dataset not found", 0x6A82),
            lib("read() Select DF_Tachograph failed", 0x6A82)));
}

TEST_F(CardApplicationOnImage, ACountsEfThatCannotBeReadEndsTheTotalWithItsText)
{
    for (const OwnEntry place : {OwnEntry::First, OwnEntry::Last}) {
        EfTable table = threeFiles();
        table.counts = {{0x0101, "counts unknown:"}};
        table.totalEntry = place;
        application = CardApplication(table);
        ImageFile file(threeFilesImage().without(0x0101));
        scard::SCardGeneric card(file, QDateTime(), scard::RegionDDD);
        test::Chain expected = {
            lib("memSelectFile(): Dataset not found"), lib("readFromMem() memSelectFile() Failed: ID 101")};
        expected.insert(place == OwnEntry::First ? expected.begin() : expected.end(), lib("counts unknown:"));
        EXPECT_EQ(chain(application.calcDataToRead(card)), expected);
        EXPECT_EQ(test::DebugStream::lines().filter(QStringLiteral("counts unknown: libscard")).size(), 1);
        test::DebugStream::clear();
    }
}

TEST_F(CardApplicationOnImage, ACountOfZeroReadsTheHeadOnly)
{
    EXPECT_THAT(chain(read(threeFilesImage().replace(0x0101, {0xAB, 0}).replace(0x0102, {0x09}))), IsEmpty());

    EXPECT_THAT(application.bytes(0x0102), ElementsAre(0x09));
}

TEST_F(CardApplicationOnImage, AMissingOptionalEfIsLoggedAndPassed)
{
    EXPECT_THAT(chain(read(threeFilesImage().without(0x0102))), IsEmpty());

    EXPECT_THAT(announced, ElementsAre(0x0101, 0x0103));
    EXPECT_THAT(application.bytes(0x0102), IsEmpty());
    const QStringList logged = test::DebugStream::lines().filter(QStringLiteral("records failed:"));
    ASSERT_EQ(logged.size(), 1);
    EXPECT_TRUE(logged.front().startsWith(QStringLiteral("records failed: ")));
    EXPECT_TRUE(logged.front().contains(QStringLiteral("memSelectFile(): Dataset not found")));
}

TEST_F(CardApplicationOnImage, AMissingRequiredEfEndsTheWalk)
{
    EXPECT_THAT(
        chain(read(threeFilesImage().without(0x0101))),
        ElementsAre(
            lib("memSelectFile(): Dataset not found"), lib("readFromMem() memSelectFile() Failed: ID 101")));

    EXPECT_THAT(announced, IsEmpty());
    EXPECT_FALSE(test::DebugStream::contains(QStringLiteral("\nEF_Records")));
}

TEST_F(CardApplicationOnImage, AnEfThatEndsInsideAPieceIsNotKept)
{
    EXPECT_THAT(chain(read(threeFilesImage().replace(0x0102, {0x09, 1, 2, 3}))), IsEmpty());

    EXPECT_THAT(application.bytes(0x0102), IsEmpty());
}

TEST_F(CardApplicationOnImage, SavesInSavingOrderWithTheSignaturesOfSignedRows)
{
    ASSERT_THAT(chain(read(threeFilesImage().replace(0x0102, {0x09, 1, 2, 3, 4, 5, 6}))), IsEmpty());
    application.keep(0x0001, {1, 2, 3, 4});
    const QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("saved")));
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    scard::SCardGeneric card(0, QDateTime(), scard::RegionDDD);

    EXPECT_THAT(chain(application.write(card, file)), IsEmpty());

    // An image has no signatures to give: 256 zero bytes stand for each.
    const Bytes signature(256);
    const Bytes expected = Image()
                               .add(0x0103, test::dataG1, {0x77})
                               .add(0x0001, test::dataG1, {1, 2, 3, 4})
                               .add(0x0102, test::dataG1, {0x09, 1, 2, 3, 4, 5, 6})
                               .add(0x0102, test::signatureG1, signature)
                               .add(0x0101, test::dataG1, {0xAB, 3})
                               .add(0x0101, test::signatureG1, signature)
                               .bytes();
    ASSERT_TRUE(file.seek(0));
    const QByteArray saved = file.readAll();
    EXPECT_EQ(Bytes(saved.begin(), saved.end()), expected);
}

TEST_F(CardApplicationOnImage, SavingAnEfThatWasNotReadFails)
{
    ASSERT_THAT(chain(read(threeFilesImage().without(0x0102))), IsEmpty());
    application.keep(0x0001, {1, 2, 3, 4});
    const QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("saved")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    scard::SCardGeneric card(0, QDateTime(), scard::RegionDDD);

    EXPECT_THAT(
        chain(application.write(card, file)), ElementsAre(lib("writeDatasetToFile(): no valid data", 0)));
}

TEST_F(CardApplicationOnImage, KnowsWhetherAllIsThereThatAnImageMustHave)
{
    scard::SCardGeneric noCard(0, QDateTime(), scard::RegionDDD);
    EXPECT_FALSE(application.hasRequired(noCard));
    ASSERT_THAT(chain(read(threeFilesImage().without(0x0102))), IsEmpty());
    EXPECT_FALSE(application.hasRequired(noCard)); // EF_Skipped comes with the identification
    application.keep(0x0001, {1, 2, 3, 4});
    EXPECT_TRUE(application.hasRequired(noCard));
    EXPECT_FALSE(application.has(0x0102));
    EXPECT_TRUE(application.has(0x0101));
}

TEST_F(CardApplicationOnImage, AnEfThatIsNotOnTheCardIsNotRequired)
{
    EfTable table = threeFiles();
    table.rows.back().onCards = OnCards::Version2_2;
    CardApplication other(table);
    other.keep(0x0001, {1, 2, 3, 4});
    other.keep(0x0101, {0xAB, 3});
    scard::SCardGeneric noCard(0, QDateTime(), scard::RegionDDD);
    EXPECT_TRUE(other.hasRequired(noCard));
}

TEST_F(CardApplicationOnImage, RowsOfVersion22ArePassedOnOtherCards)
{
    EfTable table = threeFiles();
    table.rows.back().onCards = OnCards::Version2_2;
    application = CardApplication(table);
    EXPECT_THAT(chain(read(threeFilesImage().without(0x0103))), IsEmpty());
    EXPECT_THAT(announced, ElementsAre(0x0101, 0x0102));
    scard::SCardGeneric noCard(0, QDateTime(), scard::RegionDDD);
    EXPECT_EQ(application.dataToRead(noCard, OnCards::All), 4U + 2 + 1 + 6);
    EXPECT_EQ(application.dataToRead(noCard, OnCards::Version2_2), 1U);
}

TEST_F(CardApplicationOnImage, SelectsByTheTablesName)
{
    ImageFile file(threeFilesImage());
    scard::SCardGeneric card(file, QDateTime(), scard::RegionDDD);
    EXPECT_THAT(chain(application.select(card)), IsEmpty());

    ImageFile ofOtherGeneration(Image().add(0x0101, test::dataG2, {1, 2, 3, 4, 5, 6}));
    scard::SCardGeneric other(ofOtherGeneration, QDateTime(), scard::RegionDDD);
    EXPECT_THAT(
        chain(application.select(other)), ElementsAre(
                                              lib("read() Select DF_Tachograph failed", 0x6A82),
                                              lib("memSelectFile(): Dataset not found", 0x6A82)));
}

TEST_F(CardApplicationOnImage, EachReadingStartsAnew)
{
    ASSERT_THAT(chain(read(threeFilesImage())), IsEmpty());

    EXPECT_THAT(chain(read(threeFilesImage().without(0x0102))), IsEmpty());

    EXPECT_THAT(application.bytes(0x0101), ElementsAre(0xAB, 3));
    EXPECT_THAT(application.bytes(0x0102), IsEmpty());
}

TEST(CardApplication, ARecordThatWasNotReadIsAllZero)
{
    CardApplication application(threeFiles());
    EXPECT_EQ(application.record<scard::TimeReal>(0x0101).value(), 0U);

    application.keep(0x0101, {1, 2, 3});
    EXPECT_EQ(application.record<scard::TimeReal>(0x0101).value(), 0U);

    application.keep(0x0101, {1, 2, 3, 4, 5});
    EXPECT_EQ(application.record<scard::TimeReal>(0x0101).value(), 0x01020304U);
}

TEST(CardApplication, AddsUpTheBytesOfAllRows)
{
    CardApplication application(threeFiles());
    EXPECT_EQ(bytesOfAllRows(application), 4U + 2 + 1 + 1);

    application.keep(0x0101, {0xAB, 200});
    EXPECT_EQ(bytesOfAllRows(application), 4U + 2 + 1 + 400 + 1);
}

TEST(CardApplication, ACountBehindTheEndOfItsEfIsZero)
{
    CardApplication application(threeFiles());
    application.keep(0x0101, {0xAB});

    EXPECT_EQ(bytesOfAllRows(application), 8U);
}

} // namespace
