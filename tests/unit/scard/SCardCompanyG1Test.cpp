#include "fixtures/CardOnImage.h"
#include "fixtures/CompanyImage.h"
#include "fixtures/ImageFailure.h"
#include "fixtures/RecordBytes.h"
#include "fixtures/ValueChecks.h"
#include "QtPrinters.h"

#include <scard/SCardCompanyG1.h>
#include <scard/SCardReader.h>
#include <support/DebugStream.h>
#include <support/ErrorChain.h>

#include <gmock/gmock.h>

#include <QString>
#include <QStringList>

#include <string>
#include <typeinfo>
#include <vector>

// Company cards of the first generation on images made by hand, and the files of those of the second.

namespace {

using scard::SCardCompanyG1;
using scard::SCardGeneric;
using test::behind;
using test::Bytes;
using test::chain;
using test::companyApplication;
using test::companyFileG2;
using test::Ef;
using test::Image;
using test::lastLoggedLabel;
using test::lib;
using test::libraryFailure;
using test::logged;
using test::loggedErrors;
using test::loggedLabels;
using test::missing;
using test::notAllowed;
using test::noValidData;
using test::progressOf;
using test::saveToOpenFile;
using test::smallCompanyImage;
using test::typesOf;
using test::Version;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

using ImageCompany = test::CardOnImage<SCardCompanyG1>;

// In reading order.
const test::Efs efs = {
    {0x0501, "501", "\nEF_Application_Identification", "Error reading EF_Application_Identification:"},
    {0xC100, "c100", "\nEF_Card_Certificate", "Error reading EF_Card_Certificate:"},
    {0xC108, "c108", "\nEF_CA_Certificate", "Error reading EF_CA_Certificate:"},
    {0x050D, "50d", "\nEF_Company_Activity_Data", "Error reading EF_Company_Activity:"},
};

const char applicationText[] =
    "calcDataToRead(): Error reading SCardCompany G1 EF_Application_Identification:";

const char fileName[] = "C_20240305_1407_Company Card_0012345603240A.DDD";

// read()

TEST(SCardCompanyG1Read, ReadsEveryEfOfACompleteImageInItsOrder)
{
    ImageCompany card(smallCompanyImage());
    int told = 0;
    QObject::connect(&card, &SCardGeneric::cardLanguage, [&] { ++told; });
    QObject::connect(&card, &SCardGeneric::cardHolderName, [&] { ++told; });
    test::DebugStream::clear();

    EXPECT_THAT(chain(card.read()), IsEmpty());

    EXPECT_EQ(loggedLabels(), test::labelsOf({efs}));
    EXPECT_THAT(loggedErrors(), IsEmpty());
    EXPECT_THAT(typesOf(card.getCompanyActivities()), ElementsAre(1, 2));
    EXPECT_EQ(card.getFilename().toStdString(), fileName);
    // Who the company is stands in an EF that is not read.
    EXPECT_EQ(told, 0);
    EXPECT_EQ(saveToOpenFile(card), notAllowed);
}

TEST(SCardCompanyG1Read, TakesAnIdentifiedCard)
{
    const ImageCompany card(smallCompanyImage());

    EXPECT_EQ(card.getCardType(), scard::SCardMeta::CompanyCard);
    EXPECT_FALSE(card.is2ndGeneneration());
    EXPECT_TRUE(card.isLoadedFromZubo());
}

TEST(SCardCompanyG1Read, TheRegionDoesNotMatterForTheFileName)
{
    for (const unsigned int region : {0U, 1U, 2U, 3U}) {
        SCOPED_TRACE(region);
        ImageCompany card(smallCompanyImage());
        card.setFilenameRegion(static_cast<scard::FilenameRegion>(region));

        EXPECT_THAT(chain(card.read()), IsEmpty());

        EXPECT_EQ(card.getFilename().toStdString(), fileName);
    }
}

TEST(SCardCompanyG1Read, TheFileNameCanBeMadeBeforeReading)
{
    ImageCompany card(smallCompanyImage());
    EXPECT_EQ(card.getFilename(), QStringLiteral("CARD_FILENAME_NOT_SET.DDD"));

    card.constructFilename();

    EXPECT_EQ(card.getFilename().toStdString(), fileName);
}

TEST(SCardCompanyG1Read, ACardThatDoesNotSayItsSerialNumberHasZerosInTheFileName)
{
    ImageCompany card(smallCompanyImage().without(0x0002));

    EXPECT_THAT(chain(card.read()), IsEmpty());

    EXPECT_EQ(card.getFilename(), QStringLiteral("C_20240305_1407_Company Card_00000000000000.DDD"));
}

TEST(SCardCompanyG1Read, AnImageFailsWithoutAnyOfItsEfs)
{
    for (const Ef& ef : efs) {
        SCOPED_TRACE(ef.failureText);
        ImageCompany card(smallCompanyImage().without(ef.fid));
        test::DebugStream::clear();

        EXPECT_EQ(chain(card.read()), behind(missing(ef.hexFid), ef.failureText));

        EXPECT_EQ(lastLoggedLabel(), QString::fromLatin1(ef.label));
        EXPECT_THAT(loggedErrors(), ElementsAre(logged(ef.failureText, missing(ef.hexFid))));
        test::DebugStream::clear();
        EXPECT_EQ(saveToOpenFile(card), noValidData);
        EXPECT_THAT(test::DebugStream::lines(), IsEmpty());
    }
}

TEST(SCardCompanyG1Read, AnEfOneByteShortFails)
{
    const struct
    {
        unsigned short fid;
        std::size_t length;
        std::size_t requested;
        const char* failureText;
    } rows[] = {
        {0x0501, 4, 5, "Error reading EF_Application_Identification:"},
        {0xC100, 193, 194, "Error reading EF_Card_Certificate:"},
        {0xC108, 193, 194, "Error reading EF_CA_Certificate:"},
        {0x050D, 1, 2, "Error reading EF_Company_Activity:"},
        {0x050D, 93, 92, "Error reading EF_Company_Activity:"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.failureText);
        ImageCompany card(smallCompanyImage().replace(row.fid, Bytes(row.length)));
        test::Chain expected = test::tooShort(row.length, row.requested);
        expected.push_back(lib(row.failureText, 6700));

        EXPECT_EQ(chain(card.read()), expected);

        EXPECT_EQ(saveToOpenFile(card), noValidData);
    }
}

TEST(SCardCompanyG1Read, TheChipNeedNotHaveBeenIdentified)
{
    ImageCompany card(smallCompanyImage().without(0x0005));

    EXPECT_THAT(chain(card.read()), IsEmpty());

    EXPECT_EQ(saveToOpenFile(card), notAllowed);
}

TEST(SCardCompanyG1Read, ACardWithoutActivitiesNeedsTheirPointerOnly)
{
    ImageCompany card(
        smallCompanyImage().replace(0x0501, {0x04, 0x00, 0x00, 0x00, 0x00}).replace(0x050D, Bytes(2)));

    EXPECT_THAT(chain(card.read()), IsEmpty());

    EXPECT_THAT(card.getCompanyActivities(), IsEmpty());
    EXPECT_EQ(saveToOpenFile(card), notAllowed);
}

TEST(SCardCompanyG1Read, TheCountHasTwoBytes)
{
    std::vector<Bytes> records(520);
    for (std::size_t i = 0; i < records.size(); ++i)
        records[i] = test::companyActivity(1, static_cast<std::uint32_t>(1000 + i));
    ImageCompany card(smallCompanyImage()
                          .replace(0x0501, {0x04, 0x00, 0x00, 0x02, 0x08})
                          .replace(0x050D, test::companyActivities(520, records)));

    EXPECT_THAT(chain(card.read()), IsEmpty());

    EXPECT_THAT(card.getCompanyActivities(), SizeIs(520));
}

TEST(SCardCompanyG1Read, WithoutTheFirstGenerationTheSelectionFailsAndTheStepStandsBehindItsEntries)
{
    ImageCompany card(test::secondCompanyApplication(Version::first, test::dataG2));
    test::DebugStream::clear();

    EXPECT_THAT(
        chain(card.read()), ElementsAre(
                                lib("memSelectFile(): Dataset not found", 27266),
                                lib("read() Select DF_Tachograph failed", 27266)));
    EXPECT_THAT(loggedLabels(), IsEmpty());
    EXPECT_EQ(saveToOpenFile(card), noValidData);
}

TEST(SCardCompanyG1Read, ABlankObjectHasNothingToReadAndAnswersWithNothing)
{
    SCardCompanyG1 card;

    EXPECT_THAT(
        chain(card.read()), ElementsAre(
                                lib("ScSelectFile(): No valid scard connection", 0),
                                lib("read() Select DF_Tachograph failed", 0)));
    EXPECT_THAT(card.getCompanyActivities(), IsEmpty());
    EXPECT_EQ(card.getCardType(), scard::SCardMeta::Reserved);
    EXPECT_FALSE(card.isLoadedFromZubo());
}

TEST(SCardCompanyG1Read, CanBeDoneAgain)
{
    ImageCompany card(smallCompanyImage());
    ASSERT_THAT(chain(card.read()), IsEmpty());
    test::DebugStream::clear();

    EXPECT_THAT(chain(card.read()), IsEmpty());

    EXPECT_EQ(loggedLabels(), test::labelsOf({efs}));
    EXPECT_THAT(typesOf(card.getCompanyActivities()), ElementsAre(1, 2));
    EXPECT_EQ(card.getFilename().toStdString(), fileName);
    EXPECT_EQ(saveToOpenFile(card), notAllowed);
}

TEST(SCardCompanyG1Read, DoesNotCountTheFilesOfTheIdentification)
{
    ImageCompany card(smallCompanyImage());
    ASSERT_THAT(chain(card.calcDataToRead()), IsEmpty());
    ASSERT_THAT(chain(card.read()), IsEmpty());

    EXPECT_EQ(progressOf(card), QStringLiteral("=== Progress: 0 dataToRead: 520%:0"));
}

// Files of second-generation cards

TEST(SCardCompanyG1OnFileOfG2, TheFileIsIdentifiedAndReadAsOneOfTheFirstGeneration)
{
    for (const Version version : {Version::first, Version::second}) {
        SCOPED_TRACE(version == Version::second);
        test::ImageFile file(companyFileG2(version));
        SCardGeneric generic(file, QDateTime(QDate(2024, 3, 5), QTime(14, 7), Qt::UTC), scard::RegionDDD);
        ASSERT_THAT(chain(generic.readCardInfo()), IsEmpty());
        EXPECT_FALSE(generic.is2ndGeneneration());
        EXPECT_FALSE(generic.is2_2Generation());
        scard::SCardReader reader;

        const std::shared_ptr<SCardGeneric> card = reader.generateSpecific(generic);

        const SCardGeneric& made = *card;
        ASSERT_EQ(typeid(made), typeid(SCardCompanyG1));
        test::DebugStream::clear();
        EXPECT_THAT(chain(card->read()), IsEmpty());
        EXPECT_EQ(loggedLabels(), test::labelsOf({efs}));
        // The second application has 3 and 4.
        EXPECT_THAT(
            typesOf(dynamic_cast<const SCardCompanyG1&>(made).getCompanyActivities()), ElementsAre(1, 2));
        EXPECT_EQ(card->getFilename().toStdString(), fileName);
    }
}

TEST(SCardCompanyG1OnFileOfG2, WithoutTheFirstApplicationsRecordsThoseOfTheSecondAnswer)
{
    ImageCompany card(test::secondCompanyApplication(Version::second, test::dataG1));

    EXPECT_THAT(chain(card.read()), IsEmpty());

    EXPECT_THAT(typesOf(card.getCompanyActivities()), ElementsAre(3, 4));
    EXPECT_EQ(card.getFilename().toStdString(), fileName);
}

TEST(SCardCompanyG1OnFileOfG2, ACertificateOfTheSecondApplicationMayBeTooShortForTheFirst)
{
    ImageCompany card(
        test::secondCompanyApplication(Version::first, test::dataG1).replace(0xC100, test::certificate(125)));
    test::Chain expected = test::tooShort(125, 194);
    expected.push_back(lib("Error reading EF_Card_Certificate:", 6700));

    EXPECT_EQ(chain(card.read()), expected);
}

// calcDataToRead()

TEST(SCardCompanyG1DataToRead, AddsUpTheDownloadByTheCardsCount)
{
    const struct
    {
        Bytes application;
        const char* line;
    } rows[] = {
        {{0x04, 0x00, 0x00, 0x00, 0x00}, "=== Progress: 0 dataToRead: 428%:0"},
        {{0x04, 0x00, 0x00, 0x00, 0x01}, "=== Progress: 0 dataToRead: 474%:0"},
        {{0x04, 0x00, 0x00, 0x00, 0xE6}, "=== Progress: 0 dataToRead: 11008%:0"},
        {{0x04, 0x00, 0x00, 0x01, 0x00}, "=== Progress: 0 dataToRead: 12204%:0"},
        {{0x04, 0x00, 0x00, 0xFF, 0xFF}, "=== Progress: 0 dataToRead: 3015038%:0"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.line);
        ImageCompany card(smallCompanyImage().replace(0x0501, row.application));

        EXPECT_THAT(chain(card.calcDataToRead()), IsEmpty());
        EXPECT_THAT(chain(card.calcDataToRead()), IsEmpty());

        EXPECT_EQ(progressOf(card).toStdString(), row.line);
    }
}

TEST(SCardCompanyG1DataToRead, NeedsTheApplicationIdentification)
{
    const struct
    {
        const char* name;
        Image image;
        aux::Error lower;
    } rows[] = {
        {"missing", smallCompanyImage().without(0x0501), missing("501")},
        {"one byte short", smallCompanyImage().replace(0x0501, Bytes(4)),
         libraryFailure({"readFromMem() invalid dataset size:4requested:5"}, 6700)},
        {"no application", test::secondCompanyApplication(Version::first, test::dataG2),
         libraryFailure({"memSelectFile(): Dataset not found"}, 27266)},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        ImageCompany card(row.image);
        test::DebugStream::clear();

        EXPECT_EQ(chain(card.calcDataToRead()), behind(row.lower, applicationText));

        EXPECT_THAT(test::DebugStream::lines(), ElementsAre(logged(applicationText, row.lower)));
        EXPECT_EQ(progressOf(card), QString());
    }
}

// postDownloadTasks()

TEST(SCardCompanyG1PostDownload, HasNothingToDo)
{
    SCardCompanyG1 blank;
    EXPECT_THAT(chain(blank.postDownloadTasks()), IsEmpty());

    ImageCompany card(smallCompanyImage());
    EXPECT_THAT(chain(card.postDownloadTasks()), IsEmpty());
    ASSERT_THAT(chain(card.read()), IsEmpty());
    EXPECT_THAT(chain(card.postDownloadTasks()), IsEmpty());
}

} // namespace
