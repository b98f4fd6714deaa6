// A whole download of a company card of either generation, version 2.2 included, through one
// SCardReader::read().
#include "CardInReader.h"
#include "FullDisk.h"
#include "VerifyImage.h"

#include <simulator/CompanyCard.h>
#include <support/Answers.h>
#include <support/DebugStream.h>
#include <support/ExpectedCompany.h>
#include <support/LoadedAgain.h>

#include <QFile>
#include <QRegularExpression>

#include <gmock/gmock.h>

#include <algorithm>

namespace {

using namespace test;
using scard::SCardCompanyG1;
using scard::SCardCompanyG2;
using testing::Each;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

const CompanyCountsG2 secondGeneration;

const CompanyCountsG2 version22 = [] {
    CompanyCountsG2 counts;
    counts.version2 = true;
    return counts;
}();

constexpr unsigned int fewActivities = 2;

const char* const tacho = "00 A4 04 0C 06 FF 54 41 43 48 4F";
const char* const smrdt = "00 A4 04 0C 06 FF 53 4D 52 44 54";

class DownloadCompanyTest : public CardInReader
{
  protected:
    /// Puts a card in, downloads it and expects nothing else than success.
    Download downloadOf(const sim::CardDescription& description)
    {
        insert(description);
        Download result = download();
        EXPECT_THAT(chain(result.failure), IsEmpty());
        return result;
    }

    /// FID and type of each record.
    static QList<QByteArray> headersOf(const Download& result) { return recordHeadersOf(result.image); }
};

QList<QByteArray> fromHex(std::initializer_list<const char*> texts)
{
    QList<QByteArray> all;
    for (const char* text : texts)
        all.append(QByteArray::fromHex(text));
    return all;
}

// Commands and image.

TEST_F(DownloadCompanyTest, ACardOfTheFirstGenerationGetsExactlyTheseCommands)
{
    downloadOf(companyCard(fewActivities));
    const std::vector<std::string> literal = {
        // who it is
        "00 A4 02 0C 02 00 02", "00 B0 00 00 19", "00 A4 02 0C 02 00 05", "00 B0 00 00 08", smrdt, tacho,
        "00 A4 02 0C 02 05 01", "00 B0 00 00 03",
        // how much there is
        tacho, "00 A4 02 0C 02 05 01", "00 B0 00 00 05",
        // EF by EF
        tacho, "00 A4 02 0C 02 05 01", "00 B0 00 00 05", "80 2A 90 00", "00 2A 9E 9A 80",
        "00 A4 02 0C 02 C1 00", "00 B0 00 00 C2", "00 A4 02 0C 02 C1 08", "00 B0 00 00 C2",
        "00 A4 02 0C 02 05 0D", "00 B0 00 00 02", "00 A4 02 0C 02 05 0D", "00 B0 00 02 5C", "80 2A 90 00",
        "00 2A 9E 9A 80"};
    EXPECT_THAT(commands(), ElementsAreArray(literal));
    EXPECT_THAT(commandsOf(expectedCompanySteps(fewActivities)), ElementsAreArray(literal));
}

TEST_F(DownloadCompanyTest, ACardOfVersion22GetsExactlyTheseCommands)
{
    CompanyCountsG2 counts = version22;
    counts.activities = fewActivities;
    downloadOf(companyCardG2(counts, fewActivities));
    const std::vector<std::string> literal = {
        // who it is
        "00 A4 02 0C 02 00 02", "00 B0 00 00 19", "00 A4 02 0C 02 00 05", "00 B0 00 00 08", smrdt,
        "00 A4 02 0C 02 05 01", "00 B0 00 00 03",
        // how much there is
        tacho, "00 A4 02 0C 02 05 01", "00 B0 00 00 05", smrdt, "00 A4 02 0C 02 05 01", "00 B0 00 00 05",
        "00 A4 02 0C 02 C1 00", "00 B0 00 00 05", "00 A4 02 0C 02 C1 08", "00 B0 00 00 05",
        "00 A4 02 0C 02 C1 09", "00 B0 00 00 05", "00 A4 02 0C 02 05 25", "00 B0 00 00 04",
        // the second application
        smrdt, "00 A4 02 0C 02 05 20", "00 B0 00 00 8B", "00 A4 02 0C 02 05 01", "00 B0 00 00 05",
        "00 A4 02 0C 02 C1 00", "00 B0 00 00 05", "00 A4 02 0C 02 C1 00", "00 B0 00 00 CC",
        "00 A4 02 0C 02 C1 08", "00 B0 00 00 05", "00 A4 02 0C 02 C1 08", "00 B0 00 00 CC",
        "00 A4 02 0C 02 C1 09", "00 B0 00 00 05", "00 A4 02 0C 02 C1 09", "00 B0 00 00 CC",
        "00 A4 02 0C 02 05 0D", "00 B0 00 00 02", "00 A4 02 0C 02 05 0D", "00 B0 00 02 5C",
        "00 A4 02 0C 02 05 25", "00 B0 00 00 04",
        // the first
        tacho, "00 A4 02 0C 02 05 01", "00 B0 00 00 05", "80 2A 90 00", "00 2A 9E 9A 80",
        "00 A4 02 0C 02 C1 00", "00 B0 00 00 C2", "00 A4 02 0C 02 C1 08", "00 B0 00 00 C2",
        "00 A4 02 0C 02 05 0D", "00 B0 00 00 02", "00 A4 02 0C 02 05 0D", "00 B0 00 02 5C", "80 2A 90 00",
        "00 2A 9E 9A 80"};
    EXPECT_THAT(commands(), ElementsAreArray(literal));
    EXPECT_THAT(commandsOf(expectedCompanyStepsG2(counts, fewActivities)), ElementsAreArray(literal));
}

TEST_F(DownloadCompanyTest, CommandsAndImagesOfAllActivities)
{
    sim::CardDescription company = companyCard();
    Download result = downloadOf(company);
    EXPECT_THAT(commands(), ElementsAreArray(commandsOf(expectedCompanySteps())));
    EXPECT_EQ(bytes(result.image), expectedCompanyImage(company));
    EXPECT_EQ(result.image.size(), 11304);
    EXPECT_TRUE(std::dynamic_pointer_cast<SCardCompanyG1>(result.card));
    EXPECT_FALSE(std::dynamic_pointer_cast<SCardCompanyG2>(result.card));

    company = companyCardG2(secondGeneration);
    result = downloadOf(company);
    EXPECT_THAT(commands(), ElementsAreArray(commandsOf(expectedCompanyStepsG2(secondGeneration))));
    EXPECT_EQ(bytes(result.image), expectedCompanyImageG2(company));
    EXPECT_EQ(result.image.size(), 11304 + 11411);
    EXPECT_TRUE(std::dynamic_pointer_cast<SCardCompanyG2>(result.card));

    company = companyCardG2(version22);
    result = downloadOf(company);
    EXPECT_THAT(commands(), ElementsAreArray(commandsOf(expectedCompanyStepsG2(version22))));
    EXPECT_EQ(bytes(result.image), expectedCompanyImageG2(company));
    EXPECT_EQ(result.image.size(), 11304 + 11411 + 9);
}

TEST_F(DownloadCompanyTest, TheSecondApplicationIsSavedUnsignedAndWithTheTypeOfTheFirst)
{
    EXPECT_EQ(
        headersOf(downloadOf(companyCard())),
        fromHex({"000200", "000500", "050100", "050101", "c10000", "c10800", "050d00", "050d01"}));
    const QList<QByteArray> first = headersOf(downloadOf(companyCard()));
    EXPECT_EQ(
        headersOf(downloadOf(companyCardG2(secondGeneration))),
        first + fromHex({"000200", "000500", "050100", "c10000", "c10800", "c10900", "052000", "050d00"}));
    EXPECT_EQ(
        headersOf(downloadOf(companyCardG2(version22))),
        first +
            fromHex(
                {"000200", "000500", "050100", "c10000", "c10800", "c10900", "052000", "050d00", "052500"}));
}

TEST_F(DownloadCompanyTest, BothSignaturesOfTheFirstApplicationVerifyUpToTheRoot)
{
    EXPECT_EQ(verifiedSignatures(bytes(downloadOf(companyCard()).image)), 2u);
    // Behind the second application's certificates only a look at the first record of each number helps.
    EXPECT_EQ(verifiedSignatures(bytes(downloadOf(companyCardG2(version22)).image.left(11304))), 2u);
}

TEST_F(DownloadCompanyTest, CertificatesOfTheOtherCurveHaveAByteMoreAndTheirPaddingIsNotTaken)
{
    sim::CompanyParametersG2 parameters;
    parameters.curve = sim::Curve::BrainpoolP256r1;
    CompanyCountsG2 counts;
    counts.certificateLength = 205;
    const sim::CardDescription exact = sim::makeCompanyCardG2(parameters);
    parameters.certificateFiles = sim::CertificateFiles::Padded;
    parameters.linkCertificate = sim::CertificateFiles::Padded;
    for (const sim::CardDescription& description : {exact, sim::makeCompanyCardG2(parameters)}) {
        const Download result = downloadOf(description);
        EXPECT_THAT(commands(), ElementsAreArray(commandsOf(expectedCompanyStepsG2(counts))));
        EXPECT_EQ(bytes(result.image), expectedCompanyImageG2(exact));
    }
}

TEST_F(DownloadCompanyTest, WithoutActivitiesTheFileIsItsPointerAlone)
{
    const Download first = downloadOf(companyCard(0));
    EXPECT_EQ(bytes(first.image), expectedCompanyImage(companyCard(0)));
    EXPECT_EQ(first.image.count(QByteArray::fromHex("050d000002")), 1);

    CompanyCountsG2 none = version22;
    none.activities = 0;
    const sim::CardDescription company = companyCardG2(none, 0);
    const Download second = downloadOf(company);
    EXPECT_EQ(bytes(second.image), expectedCompanyImageG2(company));
    EXPECT_EQ(second.image.count(QByteArray::fromHex("050d000002")), 2);
}

// Totals and progress.

TEST_F(DownloadCompanyTest, TheTotalHasTheChipsFilesAndTheProgressHasThemNot)
{
    const struct
    {
        sim::CardDescription card;
        std::vector<Step> steps;
        unsigned int total;
        int last;
    } rows[] = {
        {companyCard(), expectedCompanySteps(), 11008, 99},
        {companyCard(0), expectedCompanySteps(0), 428, 92},
        {companyCardG2(secondGeneration), expectedCompanyStepsG2(secondGeneration), 11008 + 11371, 99},
        {companyCardG2(version22), expectedCompanyStepsG2(version22), 11008 + 11371 + 4, 99},
    };
    for (const auto& row : rows) {
        const Download result = downloadOf(row.card);
        EXPECT_THAT(result.progress, ElementsAreArray(expectedProgress(row.steps, row.total)));
        EXPECT_EQ(result.progress.back(), row.last);
    }
}

// What the host hears.

TEST_F(DownloadCompanyTest, ACardOfTheFirstGenerationTellsNoHolder)
{
    const Download result = downloadOf(companyCard());
    EXPECT_THAT(result.types, ElementsAre(scard::SCardMeta::CompanyCard));
    EXPECT_THAT(result.order, ElementsAre("cardType", "progress", "readDone"));
}

TEST_F(DownloadCompanyTest, ACardOfTheSecondGenerationTellsTheCompanysNameAndLanguage)
{
    sim::CompanyParametersG2 parameters;
    parameters.first.companyName = "Muster Transport";
    parameters.first.language = "fr";
    const Download result = downloadOf(sim::makeCompanyCardG2(parameters));
    EXPECT_THAT(result.holders, ElementsAre("Muster Transport"));
    EXPECT_THAT(result.languages, ElementsAre("fr_FR"));
    EXPECT_THAT(
        result.order,
        ElementsAre("cardType", "progress", "cardLanguage", "cardHolder", "progress", "readDone"));
}

TEST_F(DownloadCompanyTest, EveryRegionNamesTheFileByTheCardsSerialNumber)
{
    sim::CompanyParametersG2 parameters;
    parameters.first.serial = {0x00, 0x12, 0x34, 0x56, 0x03, 0x24, 0x0A, 0x7F};
    const QRegularExpression pattern(R"(^/tmp/C_\d{8}_\d{4}_Company Card_0012345603240A\.DDD$)");
    for (const sim::CardDescription& description :
         {sim::makeCompanyCardG1(parameters.first), sim::makeCompanyCardG2(parameters)}) {
        for (const scard::FilenameRegion region : {scard::RegionDDD, scard::RegionC1B, scard::RegionTGD}) {
            insert(description);
            const Download result = download(region);
            EXPECT_THAT(chain(result.failure), IsEmpty());
            EXPECT_TRUE(pattern.match(result.path).hasMatch()) << result.path.toStdString();
        }
    }
}

TEST_F(DownloadCompanyTest, NothingIsWrittenToTheCard)
{
    for (const sim::CardDescription& description : {companyCard(), companyCardG2(version22)}) {
        downloadOf(description);
        EXPECT_THAT(commands(), Each(Not(StartsWith("00 D6"))));
    }
}

// Cards that do not sign.

TEST_F(DownloadCompanyTest, ACardOfTheFirstGenerationThatDoesNotSignEndsTheDownload)
{
    const struct
    {
        std::optional<std::uint16_t> sim::Switches::*refusal;
        unsigned int word;
        Chain commandEntries;
    } rows[] = {
        {&sim::Switches::hashRefused,
         0x6D00,
         {lib("ScPerformHashOfFile Failed ", 0x6D00),
          lib("readHash() ScPerformHashOfFile() Failed: ID501", 0x6D00)}},
        {&sim::Switches::hashRefused,
         0x6985,
         {lib("ScPerformHashOfFile Failed ", 0x6985),
          lib("readHash() ScPerformHashOfFile() Failed: ID501", 0x6985)}},
        {&sim::Switches::signRefused,
         0x6985,
         {lib("ScComputeHashOfFile Failed ", 0x6985),
          lib("readHash() ScComputeHashOfFile() Failed: ID501", 0x6985)}},
    };
    for (const auto& row : rows) {
        sim::CardDescription company = companyCard();
        company.switches.*row.refusal = static_cast<std::uint16_t>(row.word);
        insert(company);
        const Download result = download();
        EXPECT_THAT(
            chain(result.failure),
            ElementsAre(
                lib("ScDataTransfer failed", row.word), row.commandEntries[0], row.commandEntries[1],
                lib("Error reading EF_Application_Identification:", row.word),
                lib("Failed reading card data")));
        EXPECT_FALSE(result.card);
        EXPECT_THAT(downloads(), IsEmpty());
    }
}

TEST_F(DownloadCompanyTest, ACardOfTheSecondGenerationThatDoesNotSignGivesItsSecondApplication)
{
    sim::CardDescription company = companyCardG2(version22);
    company.switches.hashRefused = sim::sw::InstructionUnknown;
    const Download result = downloadOf(company);
    EXPECT_EQ(bytes(result.image), expectedCompanyImageG2(company, 0x0501));
    EXPECT_EQ(
        DebugStream::lines()
            .filter("read() first application failed: libscard: ScDataTransfer failed (6d00)")
            .size(),
        1);
    EXPECT_EQ(
        DebugStream::lines()
            .filter("saveToFile() first application failed: libscard: writeDatasetToFile(): no valid data")
            .size(),
        1);
}

// A first application that cannot be read.

TEST_F(DownloadCompanyTest, AFailureInTheFirstApplicationIsDropped)
{
    const sim::CardDescription company = companyCardG2(version22);
    const std::vector<Step> steps = expectedCompanyStepsG2(version22);
    for (const unsigned int fid : {0x0501u, 0xC100u, 0xC108u, 0x050Du}) {
        SCOPED_TRACE(fid);
        insert(company);
        const auto failing = std::find_if(steps.begin(), steps.end(), [fid](const Step& step) {
            return step.phase == Phase::Reading && step.generation == 1 && step.fid == fid;
        });
        const auto index = static_cast<std::size_t>(failing - steps.begin());
        card().failAt(index, sim::Fault::status(sim::sw::AttributesCorrupted));
        const Download result = download();
        EXPECT_THAT(chain(result.failure), IsEmpty());
        EXPECT_EQ(bytes(result.image), expectedCompanyImageG2(company, fid));
        EXPECT_EQ(card().commandCount(), index + 1);
        const auto object = std::dynamic_pointer_cast<SCardCompanyG2>(result.card);
        ASSERT_TRUE(object);
        EXPECT_THAT(object->getCompanyActivities(), IsEmpty());
        EXPECT_FALSE(object->getCompanyActivitiesG2().empty());
        EXPECT_TRUE(result.path.contains("_Company Card_")) << result.path.toStdString();
    }
}

TEST_F(DownloadCompanyTest, ACardWithoutAFirstApplicationCannotBeCounted)
{
    sim::CardDescription secondOnly = companyCardG2(secondGeneration);
    secondOnly.applications.erase(secondOnly.applications.begin());
    insert(secondOnly);
    EXPECT_THAT(
        chain(download().failure),
        ElementsAre(
            lib("ScDataTransfer failed", 0x6A82), lib("ScSelectFile Failed: By Name\xC3\xBFTACHO", 0x6A82),
            lib("calcDataToRead(): Error reading SCardCompany G1 EF_Application_Identification:", 0x6A82),
            lib("calcDataToRead() failed to call SCardCompanyG1::calcDataToRead()", 0x6A82),
            lib("Failed calculating read data size")));
}

TEST_F(DownloadCompanyTest, AReadThatDidNotFinishLeavesNothingToSave)
{
    insert(companyCardG2(secondGeneration));
    scard::SCardGeneric identified(connect(), QDateTime::currentDateTimeUtc(), scard::RegionDDD);
    ASSERT_THAT(chain(identified.readCardInfo()), IsEmpty());
    SCardCompanyG2 company(identified);
    QFile file("/tmp/C_never");
    EXPECT_THAT(chain(company.saveToFile(file)), ElementsAre(lib("saveToFile(): File not opened")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    EXPECT_THAT(chain(company.saveToFile(file)), ElementsAre(lib("saveToFile(): no valid data")));
    card().failAt(card().commandCount() + 1, sim::Fault::status(0x6400)); // the first EF
    EXPECT_THAT(
        chain(company.read()),
        ElementsAre(
            lib("ScDataTransfer failed", 0x6400), lib("ScSelectFile Failed: By ID520", 0x6400),
            lib("readFrom() ScSelectFile() Failed: ID 520", 0x6400),
            lib("Error reading EF_Identification:", 0x6400)));
    EXPECT_THAT(chain(company.saveToFile(file)), ElementsAre(lib("saveToFile(): no valid data")));
    EXPECT_EQ(file.size(), 0);
    EXPECT_FALSE(DebugStream::contains("Save failed"));
}

TEST_F(DownloadCompanyTest, ASecondReadingThatFailsForgetsWhatTheFirstHasRead)
{
    insert(companyCardG2(version22));
    scard::SCardGeneric identified(connect(), QDateTime::currentDateTimeUtc(), scard::RegionDDD);
    ASSERT_THAT(chain(identified.readCardInfo()), IsEmpty());
    SCardCompanyG2 company(identified);
    ASSERT_THAT(chain(company.read()), IsEmpty());
    EXPECT_FALSE(company.getCompanyActivities().empty());

    card().failAt(card().commandCount(), sim::Fault::status(0x6400)); // the second application's name
    EXPECT_THAT(
        chain(company.read()),
        ElementsAre(
            lib("ScDataTransfer failed", 0x6400), lib("ScSelectFile Failed: By Name\xC3\xBFSMRDT", 0x6400),
            lib("read() Select DF_Tachograph failed", 0x6400)));
    EXPECT_THAT(company.getCompanyActivities(), IsEmpty());
    EXPECT_THAT(company.getCompanyActivitiesG2(), IsEmpty());
    EXPECT_EQ(company.getCardHolderName(), QString());
}

TEST_F(DownloadCompanyTest, ASecondDownloadWithoutResetIsNamedWithoutASerialNumber)
{
    downloadOf(companyCard());
    const Download second = download();
    EXPECT_THAT(chain(second.failure), IsEmpty());
    EXPECT_TRUE(second.path.endsWith("_Company Card_00000000000000.DDD")) << second.path.toStdString();
    EXPECT_EQ(second.image.size(), 11304);
}

// The file.

TEST_F(DownloadCompanyTest, AFullDiskEndsTheSave)
{
    const struct
    {
        sim::CardDescription card;
        rlim_t room;
    } rows[] = {
        {companyCard(), 5000},                    // inside the activities
        {companyCardG2(secondGeneration), 5000},  // inside those of the first application
        {companyCardG2(secondGeneration), 15000}, // inside those of the second
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.room);
        insert(row.card);
        const FileSizeLimit limit(row.room);
        const Download result = download();
        EXPECT_THAT(
            chain(result.failure),
            ElementsAre(
                lib("writeDatasetToFile() write failed: File too large"), lib("saveToFile() Failed"),
                lib("Failed at saving card data to file")));
        EXPECT_FALSE(result.card);
        // What was written of it stays.
        const QStringList files = downloads();
        ASSERT_EQ(files.size(), 1);
        EXPECT_EQ(fileContent(files.front()).size(), static_cast<int>(row.room));
        removeDownloads();
    }
}

TEST_F(DownloadCompanyTest, ATornRecordOfTheFirstApplicationIsAFailureWhateverFollows)
{
    insert(companyCardG2(secondGeneration));
    scard::SCardGeneric identified(connect(), QDateTime::currentDateTimeUtc(), scard::RegionDDD);
    ASSERT_THAT(chain(identified.readCardInfo()), IsEmpty());
    SCardCompanyG2 company(identified);
    ASSERT_THAT(chain(company.read()), IsEmpty());

    MomentWithoutRoom file("/tmp/C_torn", 5000); // inside the first application's activities
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
    EXPECT_THAT(
        chain(company.saveToFile(file)),
        ElementsAre(lib("writeDatasetToFile() write failed: File too large"), lib("saveToFile() Failed")));
    EXPECT_TRUE(fileContent("/tmp/C_torn").mid(5000).startsWith(QByteArray::fromHex("0002000019")));
}

// Card and image.

TEST_F(DownloadCompanyTest, AnImageOfTheFirstGenerationAnswersAsTheCardDid)
{
    const Download result = downloadOf(companyCard());
    const auto fromCard = std::dynamic_pointer_cast<SCardCompanyG1>(result.card);
    const auto fromImage = loadedAgain<SCardCompanyG1>(result);
    ASSERT_TRUE(fromCard && fromImage);
    EXPECT_EQ(answersOf(*fromImage), answersOf(*fromCard));
    EXPECT_GT(countOf(answersOf(*fromCard), "activity"), 10);
    EXPECT_EQ(fromImage->getFilename(), fromCard->getFilename());
    QFile file("/tmp/C_again");
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    EXPECT_THAT(
        chain(fromImage->saveToFile(file)),
        ElementsAre(lib("saveToFile(): not allowed on data read from file ")));
    EXPECT_THAT(chain(fromImage->postDownloadTasks()), IsEmpty());
}

TEST_F(DownloadCompanyTest, AnImageOfTheSecondGenerationIsReadAsOneOfTheFirst)
{
    for (const CompanyCountsG2& counts : {secondGeneration, version22}) {
        const Download result = downloadOf(companyCardG2(counts));
        const auto fromCard = std::dynamic_pointer_cast<SCardCompanyG2>(result.card);
        const auto fromImage = loadedAgain<SCardCompanyG1>(result);
        ASSERT_TRUE(fromCard && fromImage);
        EXPECT_FALSE(fromImage->is2ndGeneneration());
        EXPECT_FALSE(std::dynamic_pointer_cast<SCardCompanyG2>(fromImage));
        EXPECT_EQ(answersOf(*fromImage), answersOf(*fromCard));
        EXPECT_EQ(fromImage->getFilename(), fromCard->getFilename());
    }
}

TEST_F(DownloadCompanyTest, AnImageWithoutItsFirstApplicationAnswersFromTheSecondsRecords)
{
    sim::CardDescription company = companyCardG2(version22);
    company.switches.hashRefused = sim::sw::ConditionsNotSatisfied;
    const Download result = downloadOf(company);
    const auto fromCard = std::dynamic_pointer_cast<SCardCompanyG2>(result.card);
    const auto fromImage = loadedAgain<SCardCompanyG1>(result);
    ASSERT_TRUE(fromCard && fromImage);
    EXPECT_FALSE(fromImage->is2ndGeneneration());
    EXPECT_EQ(fromImage->getCompanyActivities().size(), fromCard->getCompanyActivitiesG2().size());
    EXPECT_FALSE(fromImage->getCompanyActivities().empty());
}

} // namespace
