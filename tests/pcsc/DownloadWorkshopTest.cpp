// A whole download of a workshop card of either generation, version 2.2 included, through one
// SCardReader::read().
#include "CardInReader.h"
#include "FullDisk.h"
#include "VerifyImage.h"

#include <simulator/WorkshopCard.h>
#include <support/Answers.h>
#include <support/DebugStream.h>
#include <support/ExpectedWorkshop.h>
#include <support/LoadedAgain.h>

#include <QFile>
#include <QRegularExpression>

#include <gmock/gmock.h>

#include <algorithm>
#include <functional>

namespace {

using namespace test;
using scard::SCardWorkshopG1;
using scard::SCardWorkshopG2;
using testing::Each;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

const WorkshopCountsG2 secondGeneration;

const WorkshopCountsG2 version22 = [] {
    WorkshopCountsG2 counts;
    counts.version2 = true;
    return counts;
}();

class DownloadWorkshopTest : public CardInReader
{
  protected:
    DownloadWorkshopTest() { insert(workshopCard()); }

    /// noOfCalibrationsSinceDownload
    unsigned int counter(const sim::Bytes& application)
    {
        return sim::readU16(*card().file(application, 0x0509), 0);
    }

    /// Puts a card in, downloads it and expects nothing else than success.
    Download downloadOf(const sim::CardDescription& description)
    {
        insert(description);
        Download result = download();
        EXPECT_THAT(chain(result.failure), IsEmpty());
        return result;
    }

    static std::string progressLine(unsigned int read, unsigned int total)
    {
        return "=== Progress: " + std::to_string(read) + " dataToRead: " + std::to_string(total) + "%:";
    }
};

// Commands and image.

TEST_F(DownloadWorkshopTest, ACardOfTheFirstGenerationGetsTheseCommandsAndGivesThisImage)
{
    const sim::CardDescription workshop = workshopCard();
    const Download result = downloadOf(workshop);
    EXPECT_THAT(commands(), ElementsAreArray(commandsOf(expectedWorkshopSteps())));
    EXPECT_EQ(bytes(result.image), expectedWorkshopImage(workshop));
    EXPECT_EQ(result.image.size(), 30721);
    EXPECT_TRUE(std::dynamic_pointer_cast<SCardWorkshopG1>(result.card));
    EXPECT_FALSE(std::dynamic_pointer_cast<SCardWorkshopG2>(result.card));
}

TEST_F(DownloadWorkshopTest, ACardOfTheSecondGenerationGetsTheseCommandsAndGivesThisImage)
{
    const sim::CardDescription workshop = workshopCardG2(secondGeneration);
    const Download result = downloadOf(workshop);
    EXPECT_THAT(commands(), ElementsAreArray(commandsOf(expectedWorkshopStepsG2(secondGeneration))));
    EXPECT_EQ(bytes(result.image), expectedWorkshopImageG2(workshop));
    EXPECT_EQ(result.image.size(), 30721 + 50276);
    EXPECT_TRUE(std::dynamic_pointer_cast<SCardWorkshopG2>(result.card));
}

TEST_F(DownloadWorkshopTest, ACardOfVersion22GetsTheseCommandsAndGivesThisImage)
{
    const sim::CardDescription workshop = workshopCardG2(version22);
    const Download result = downloadOf(workshop);
    EXPECT_THAT(commands(), ElementsAreArray(commandsOf(expectedWorkshopStepsG2(version22))));
    EXPECT_EQ(bytes(result.image), expectedWorkshopImageG2(workshop));
    EXPECT_EQ(result.image.size(), 30721 + 50276 + 7833);
}

TEST_F(DownloadWorkshopTest, ACardThatIsNotOfVersion22GetsNoCommandForItsFilesAndHasNoneInItsImage)
{
    const Download result = downloadOf(workshopCardG2(secondGeneration));
    for (const char* fid : {"05 25", "05 26", "05 27", "05 28", "05 29", "05 30", "05 31"}) {
        EXPECT_THAT(commands(), Each(Not(std::string("00 A4 02 0C 02 ") + fid)));
        const QByteArray record = QByteArray::fromHex(fid) + '\x02';
        EXPECT_FALSE(recordHeadersOf(result.image).contains(record)) << fid;
    }
}

TEST_F(DownloadWorkshopTest, CertificatesOfTheOtherCurveHaveAByteMoreAndTheirPaddingIsNotTaken)
{
    sim::WorkshopParametersG2 parameters;
    parameters.curve = sim::Curve::BrainpoolP256r1;
    WorkshopCountsG2 counts;
    counts.certificateLength = 205;
    const sim::CardDescription exact = sim::makeWorkshopCardG2(parameters);
    parameters.certificateFiles = sim::CertificateFiles::Padded;
    parameters.linkCertificate = sim::CertificateFiles::Padded;
    for (const sim::CardDescription& description : {exact, sim::makeWorkshopCardG2(parameters)}) {
        const Download result = downloadOf(description);
        EXPECT_THAT(commands(), ElementsAreArray(commandsOf(expectedWorkshopStepsG2(counts))));
        EXPECT_EQ(bytes(result.image), expectedWorkshopImageG2(exact));
        EXPECT_EQ(result.image.size(), 30721 + 50276 + 4);
    }
}

TEST_F(DownloadWorkshopTest, EverySignatureVerifiesUpToTheRootsOfBothGenerations)
{
    EXPECT_EQ(verifiedSignatures(bytes(downloadOf(workshopCard()).image)), 12u);
    EXPECT_EQ(verifiedSignatures(bytes(downloadOf(workshopCardG2(secondGeneration)).image)), 12u + 14);
    EXPECT_EQ(verifiedSignatures(bytes(downloadOf(workshopCardG2(version22)).image)), 12u + 21);
}

// Totals and progress.

TEST_F(DownloadWorkshopTest, TheLastPercentageIs100)
{
    const struct
    {
        sim::CardDescription card;
        std::vector<Step> steps;
        unsigned int total;
        unsigned int before; ///< EF_ICC and EF_IC, once for each application
    } rows[] = {
        {workshopCard(), expectedWorkshopSteps(), 29045, 33},
        {workshopCardG2(secondGeneration), expectedWorkshopStepsG2(secondGeneration), 29045 + 49210, 66},
        {workshopCardG2(version22), expectedWorkshopStepsG2(version22), 29045 + 49210 + 7315, 66},
    };
    for (const auto& row : rows) {
        DebugStream::clear();
        const Download result = downloadOf(row.card);
        EXPECT_THAT(result.progress, ElementsAreArray(expectedProgress(row.steps, row.total, row.before)));
        EXPECT_EQ(result.progress.back(), 100);
        EXPECT_TRUE(
            DebugStream::contains(QString::fromStdString(progressLine(row.total, row.total) + "100")));
    }
}

TEST_F(DownloadWorkshopTest, ThreeCalibrationsAddTheirRecordsOfBothFiles)
{
    WorkshopCounts first;
    first.calibrations = 0;
    WorkshopCountsG2 none = version22;
    none.calibrations = 0;
    WorkshopCountsG2 three = version22;
    three.calibrations = 3;
    constexpr unsigned int fixed = 29045 - 255 * 105 + 49210 - 255 * 178 + 7315 - 255 * 27;

    downloadOf(workshopCardG2(none, first));
    EXPECT_TRUE(DebugStream::contains(QString::fromStdString(progressLine(fixed, fixed) + "100")));
    downloadOf(workshopCardG2(three, first));
    constexpr unsigned int withThree = fixed + 3 * 178 + 3 * 27;
    EXPECT_TRUE(DebugStream::contains(QString::fromStdString(progressLine(withThree, withThree) + "100")));
}

TEST_F(DownloadWorkshopTest, WithoutCalibrationsOnlyTheHeadOfTheirFileIsRead)
{
    WorkshopCounts none;
    none.calibrations = 0;
    const sim::CardDescription workshop = workshopCard(none);
    const Download result = downloadOf(workshop);
    EXPECT_EQ(bytes(result.image), expectedWorkshopImage(workshop));
    const std::vector<std::string> sent = commands();
    const auto first = std::find(sent.begin(), sent.end(), "00 A4 02 0C 02 05 0A");
    ASSERT_GE(sent.end() - first, 7);
    EXPECT_THAT(
        std::vector<std::string>(first, first + 7),
        ElementsAre(
            "00 A4 02 0C 02 05 0A", "00 B0 00 00 02", "00 A4 02 0C 02 05 0A", "00 B0 00 02 01",
            "00 A4 02 0C 02 05 0A", "80 2A 90 00", "00 2A 9E 9A 80"));
    const int header = result.image.indexOf(QByteArray::fromHex("050a00"));
    EXPECT_EQ(result.image.mid(header + 3, 2), QByteArray::fromHex("0003"));
    const auto object = std::dynamic_pointer_cast<SCardWorkshopG1>(result.card);
    ASSERT_TRUE(object);
    EXPECT_THAT(object->getCalibrations(), IsEmpty());
}

// The one EF that is too large for the ordinary command.

std::vector<std::string> largeReads(const std::vector<std::string>& sent)
{
    std::vector<std::string> large;
    std::copy_if(sent.begin(), sent.end(), std::back_inserter(large), [](const std::string& command) {
        return command.rfind("00 B1", 0) == 0;
    });
    return large;
}

TEST_F(DownloadWorkshopTest, AllCalibrationsOfASecondGenerationCardAreReadBy180LargeReads)
{
    const sim::CardDescription workshop = workshopCardG2(secondGeneration);
    downloadOf(workshop);
    ASSERT_EQ(card().file(sim::AidG2, 0x050A)->size(), 45394u);
    const std::vector<std::string> large = largeReads(commands());
    ASSERT_EQ(large.size(), 180u);
    EXPECT_EQ(large.front(), "00 B1 00 00 03 54 01 04 00");
    EXPECT_EQ(large.at(1), "00 B1 00 00 04 54 02 01 01 00");
    EXPECT_EQ(large.back(), "00 B1 00 00 04 54 02 B0 EB 00"); // 4 + 179 x 253
}

TEST_F(DownloadWorkshopTest, TheLargeReadBeginsWith185Calibrations)
{
    for (const unsigned int calibrations : {184u, 185u}) {
        WorkshopCountsG2 counts;
        counts.calibrations = calibrations;
        const sim::CardDescription workshop = workshopCardG2(counts);
        const Download result = downloadOf(workshop);
        EXPECT_THAT(commands(), ElementsAreArray(commandsOf(expectedWorkshopStepsG2(counts))));
        EXPECT_EQ(bytes(result.image), expectedWorkshopImageG2(workshop));
        EXPECT_EQ(largeReads(commands()).empty(), calibrations == 184u);
    }
}

TEST_F(DownloadWorkshopTest, ACardThatRefusesTheRestOfALargeFileEndsTheDownloadAndKeepsItsCounters)
{
    const struct
    {
        sim::Switches::BeyondEnd answer;
        unsigned int word;
    } rows[] = {
        {sim::Switches::BeyondEnd::Refuse, 0x6700},
        {sim::Switches::BeyondEnd::BytesLeft, 0x6C69}, // 103 bytes, two more for the head of their object
    };
    for (const auto& row : rows) {
        sim::CardDescription workshop = workshopCardG2(secondGeneration);
        workshop.switches.oddEnd = sim::Switches::OddEnd::Refuse;
        workshop.switches.beyondEnd = row.answer;
        insert(workshop);
        EXPECT_THAT(
            chain(download().failure),
            ElementsAre(
                lib("ScDataTransfer failed", row.word), lib("ScReadLargeFile Failed ", row.word),
                lib("readFrom() ScReadLargeFile() Failed: ID 50a", row.word),
                lib("Failed reading card data")));
        EXPECT_EQ(largeReads(commands()).size(), 180u);
        EXPECT_EQ(counter(sim::AidG1), 7u);
        EXPECT_EQ(counter(sim::AidG2), 7u);
    }
}

TEST_F(DownloadWorkshopTest, AFourByteHeadOnTheLastAnswerDoesNotFitItsBuffer)
{
    sim::CardDescription workshop = workshopCardG2(secondGeneration);
    workshop.switches.oddHeader = sim::Switches::OddHeader::TwoBytes;
    insert(workshop);
    const Download result = download();
    EXPECT_THAT(
        chain(result.failure),
        ElementsAre(
            test::pcsc("ScDataTransfer SCardTransmit() Failed", SCARD_E_INSUFFICIENT_BUFFER),
            lib("ScReadLargeFile Failed "), lib("readFrom() ScReadLargeFile() Failed: ID 50a"),
            lib("Failed reading card data")));
    // Each answer before it has room for 252 bytes, and is taken.
    EXPECT_EQ(largeReads(commands()).size(), 181u);
    EXPECT_EQ(largeReads(commands()).at(1), "00 B1 00 00 04 54 02 01 00 00");
    EXPECT_EQ(counter(sim::AidG1), 7u);
}

TEST_F(DownloadWorkshopTest, ACardWithoutTheLargeReadEndsTheDownload)
{
    sim::CardDescription workshop = workshopCardG2(secondGeneration);
    workshop.switches.oddReadRefused = sim::sw::InstructionUnknown;
    insert(workshop);
    EXPECT_THAT(
        chain(download().failure),
        ElementsAre(
            lib("ScDataTransfer failed", 0x6D00), lib("ScReadLargeFile Failed ", 0x6D00),
            lib("readFrom() ScReadLargeFile() Failed: ID 50a", 0x6D00), lib("Failed reading card data")));
    EXPECT_EQ(counter(sim::AidG1), 7u);
}

// What the host hears.

TEST_F(DownloadWorkshopTest, HolderAndLanguageComeOnceFromTheFirstApplication)
{
    for (const sim::CardDescription& description : {workshopCard(), workshopCardG2(version22)}) {
        const Download result = downloadOf(description);
        EXPECT_THAT(result.types, ElementsAre(scard::SCardMeta::WorkshopCard));
        EXPECT_THAT(result.languages, ElementsAre("de_DE"));
        const auto object = std::dynamic_pointer_cast<SCardWorkshopG1>(result.card);
        ASSERT_TRUE(object);
        EXPECT_THAT(result.holders, ElementsAre(object->getCardHolderName()));
        EXPECT_THAT(
            result.order,
            ElementsAre("cardType", "progress", "cardLanguage", "cardHolder", "progress", "readDone"));
        EXPECT_EQ(result.errors, 0);
        EXPECT_EQ(result.removed, 0);
    }
}

TEST_F(DownloadWorkshopTest, EachRegionNamesTheFileWithTheIndicesOfTheCard)
{
    const struct
    {
        scard::FilenameRegion region;
        const char* pattern;
    } rows[] = {
        {scard::RegionDDD, R"(^/tmp/C_\d{8}_\d{4}_J_Fitter_DW00000012345A2Z\.DDD$)"},
        {scard::RegionC1B, R"(^/tmp/D__DW00000012345\d{10}\.C1B$)"},
        {scard::RegionTGD, R"(^/tmp/C_DW00000012345A2Z_D_\d{8}_\d{4}\.TGD$)"},
    };
    sim::WorkshopParametersG2 parameters;
    parameters.first.surname = "Fitter";
    parameters.first.firstNames = "Jo";
    parameters.first.ownerIdentification = "dw00000012345";
    parameters.first.indices = "a2z";
    for (const sim::CardDescription& description :
         {sim::makeWorkshopCardG1(parameters.first), sim::makeWorkshopCardG2(parameters)}) {
        for (const auto& row : rows) {
            SCOPED_TRACE(row.pattern);
            insert(description);
            const Download result = download(row.region);
            EXPECT_THAT(chain(result.failure), IsEmpty());
            EXPECT_TRUE(QRegularExpression(row.pattern).match(result.path).hasMatch())
                << result.path.toStdString();
            EXPECT_GE(result.image.size(), 30721);
        }
    }
}

TEST_F(DownloadWorkshopTest, TheDebugStreamTellsWhichApplicationIsRead)
{
    downloadOf(workshopCardG2(secondGeneration));
    EXPECT_EQ(DebugStream::lines().filter("read Tachograph").size(), 2);
}

// The counter.

TEST_F(DownloadWorkshopTest, TheCountersAreResetInEachApplicationAndTheObjectKeepsWhatItRead)
{
    const Download result = downloadOf(workshopCardG2(version22));
    EXPECT_EQ(counter(sim::AidG1), 0u);
    EXPECT_EQ(counter(sim::AidG2), 0u);
    const auto object = std::dynamic_pointer_cast<SCardWorkshopG2>(result.card);
    ASSERT_TRUE(object);
    EXPECT_EQ(object->getCalibrationCounters().sinceDownload, 7);
    EXPECT_EQ(object->getCalibrationCountersG2().sinceDownload, 7);
    const std::vector<std::string> sent = commands();
    EXPECT_THAT(
        std::vector<std::string>(sent.end() - 6, sent.end()),
        ElementsAre(
            "00 A4 04 0C 06 FF 54 41 43 48 4F", "00 A4 02 0C 02 05 09", "00 D6 00 00 02 00 00",
            "00 A4 04 0C 06 FF 53 4D 52 44 54", "00 A4 02 0C 02 05 09", "00 D6 00 00 02 00 00"));
}

TEST_F(DownloadWorkshopTest, AFailedResetNamesTheDriverCardsFileAndLeavesTheDownload)
{
    sim::CardDescription workshop = workshopCard();
    workshop.switches.writesFail = true;
    insert(workshop);
    EXPECT_THAT(
        chain(download().failure),
        ElementsAre(
            lib("updateLastCardDownload() writeTo() Failed: ID 50e", 0x6581),
            lib("ScDataTransfer failed", 0x6581), lib("ScWriteFile Failed ", 0x6581),
            lib("writeTo() ScReadFile() Failed: ID 509", 0x6581), lib("Failed at post download task")));
    EXPECT_EQ(counter(sim::AidG1), 7u);
    const QStringList files = downloads();
    ASSERT_EQ(files.size(), 1);
    EXPECT_EQ(bytes(fileContent(files.front())), expectedWorkshopImage(workshop));
}

TEST_F(DownloadWorkshopTest, WhenTheFirstResetFailsTheSecondApplicationIsNotTouched)
{
    insert(workshopCardG2(secondGeneration));
    const std::vector<Step> steps = expectedWorkshopStepsG2(secondGeneration);
    const auto firstReset =
        std::find_if(steps.begin(), steps.end(), [](const Step& step) { return step.kind == Kind::Update; });
    card().failAt(
        static_cast<std::size_t>(firstReset - steps.begin()), sim::Fault::status(sim::sw::WriteFailed));
    EXPECT_EQ(
        chain(download().failure),
        expectedWorkshopChainG2(*firstReset, lib("ScDataTransfer failed", 0x6581)));
    EXPECT_EQ(counter(sim::AidG1), 7u);
    EXPECT_EQ(counter(sim::AidG2), 7u);
    EXPECT_EQ(commands().back(), "00 D6 00 00 02 00 00");
}

TEST_F(DownloadWorkshopTest, WhenTheSecondResetFailsTheFirstStays)
{
    insert(workshopCardG2(secondGeneration));
    const std::vector<Step> steps = expectedWorkshopStepsG2(secondGeneration);
    card().failAt(steps.size() - 1, sim::Fault::status(sim::sw::WriteFailed));
    EXPECT_EQ(
        chain(download().failure),
        expectedWorkshopChainG2(steps.back(), lib("ScDataTransfer failed", 0x6581)));
    EXPECT_EQ(counter(sim::AidG1), 0u);
    EXPECT_EQ(counter(sim::AidG2), 7u);
}

TEST_F(DownloadWorkshopTest, ATornRecordOfTheFirstApplicationIsAFailureWhateverFollows)
{
    insert(workshopCardG2(secondGeneration));
    scard::SCardGeneric identified(connect(), QDateTime::currentDateTimeUtc(), scard::RegionDDD);
    ASSERT_THAT(chain(identified.readCardInfo()), IsEmpty());
    SCardWorkshopG2 workshop(identified);
    ASSERT_THAT(chain(workshop.read()), IsEmpty());

    MomentWithoutRoom file("/tmp/C_torn", 10000); // inside the first application's calibrations
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
    EXPECT_THAT(
        chain(workshop.saveToFile(file)),
        ElementsAre(lib("saveToFile() Failed"), lib("writeDatasetToFile() write failed: File too large")));
    EXPECT_TRUE(fileContent("/tmp/C_torn").mid(10000).startsWith(QByteArray::fromHex("0002020019")));
}

TEST_F(DownloadWorkshopTest, AFullDiskEndsTheSaveAndNothingIsReset)
{
    for (const rlim_t room : {rlim_t{10000}, rlim_t{60000}}) { // in the calibrations of either application
        SCOPED_TRACE(room);
        insert(workshopCardG2(secondGeneration));
        const FileSizeLimit limit(room);
        const Download result = download();
        EXPECT_THAT(
            chain(result.failure),
            ElementsAre(
                lib("saveToFile() Failed"), lib("writeDatasetToFile() write failed: File too large"),
                lib("Failed at saving card data to file")));
        EXPECT_EQ(counter(sim::AidG1), 7u);
        EXPECT_EQ(counter(sim::AidG2), 7u);
    }
}

// What is on the card.

TEST_F(DownloadWorkshopTest, AnImageLoadedAgainAnswersAsTheCardDid)
{
    const Download first = downloadOf(workshopCard());
    const auto fromCard = std::dynamic_pointer_cast<SCardWorkshopG1>(first.card);
    const auto fromImage = loadedAgain<SCardWorkshopG1>(first);
    ASSERT_TRUE(fromCard && fromImage);
    EXPECT_EQ(answersOf(*fromImage), answersOf(*fromCard));
    EXPECT_EQ(fromImage->getFilename(), fromCard->getFilename());
    EXPECT_EQ(countOf(answersOf(*fromCard), "calibration"), 40);
    EXPECT_THAT(chain(fromImage->postDownloadTasks()), IsEmpty());

    for (const WorkshopCountsG2& counts : {secondGeneration, version22}) {
        const Download second = downloadOf(workshopCardG2(counts));
        const auto onCard = std::dynamic_pointer_cast<SCardWorkshopG2>(second.card);
        const auto onImage = loadedAgain<SCardWorkshopG2>(second);
        ASSERT_TRUE(onCard && onImage);
        EXPECT_EQ(answersOf(*onImage), answersOf(*onCard));
        EXPECT_EQ(secondAnswersOf(*onImage), secondAnswersOf(*onCard));
        EXPECT_EQ(onImage->getFilename(), onCard->getFilename());
        const std::string answers = secondAnswersOf(*onCard);
        EXPECT_EQ(countOf(answers, "calibration"), 40);
        EXPECT_GT(countOf(answers, "seal"), 0);
        EXPECT_EQ(countOf(answers, "more"), counts.version2 ? 40 : 0);
        EXPECT_THAT(chain(onImage->postDownloadTasks()), IsEmpty());
        QFile file("/tmp/C_again");
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        EXPECT_THAT(
            chain(onImage->saveToFile(file)),
            ElementsAre(lib("saveToFile(): not allowed on data read from file ")));
        EXPECT_EQ(file.size(), 0);
    }
}

TEST_F(DownloadWorkshopTest, MoreAboutACalibrationHasItsOldTimeAndVehicle)
{
    const auto object =
        std::dynamic_pointer_cast<SCardWorkshopG2>(downloadOf(workshopCardG2(version22)).card);
    ASSERT_TRUE(object);
    const std::vector<scard::Calibration> calibrations = object->getCalibrationsG2();
    const std::vector<scard::CalibrationAddData> more = object->getCalibrationAddData();
    ASSERT_EQ(calibrations.size(), more.size());
    for (const scard::CalibrationAddData& each : more) {
        EXPECT_EQ(
            std::count_if(
                calibrations.begin(), calibrations.end(),
                [&each](const scard::Calibration& calibration) {
                    return calibration.oldTime == each.oldTime &&
                           calibration.vehicleIdentificationNumber == each.vehicleIdentificationNumber;
                }),
            1);
    }
}

// A first application that cannot be read.

TEST_F(DownloadWorkshopTest, AFailureInTheFirstApplicationDoesNotStopTheSecond)
{
    const sim::CardDescription workshop = workshopCardG2(secondGeneration);
    const std::vector<Step> steps = expectedWorkshopStepsG2(secondGeneration);
    for (const unsigned int fid : {0x0520u, 0x050Au, 0x0522u}) {
        SCOPED_TRACE(fid);
        insert(workshop);
        const auto failing = std::find_if(steps.begin(), steps.end(), [fid](const Step& step) {
            return step.phase == Phase::Reading && step.generation == 1 && step.fid == fid;
        });
        card().failAt(
            static_cast<std::size_t>(failing - steps.begin()),
            sim::Fault::status(sim::sw::AttributesCorrupted));
        const Download result = download();
        EXPECT_THAT(chain(result.failure), IsEmpty());
        EXPECT_EQ(bytes(result.image), expectedWorkshopImageG2(workshop, fid));
        EXPECT_EQ(counter(sim::AidG1), 0u);
        EXPECT_EQ(counter(sim::AidG2), 0u);
        const bool named = fid != 0x0520;
        EXPECT_EQ(result.path == "/tmp/CARD_FILENAME_NOT_SET.DDD", !named) << result.path.toStdString();
        EXPECT_EQ(result.holders.size(), named ? 1u : 0u);
        const auto object = std::dynamic_pointer_cast<SCardWorkshopG2>(result.card);
        const auto again = loadedAgain<SCardWorkshopG2>(result);
        ASSERT_TRUE(object && again);
        EXPECT_EQ(secondAnswersOf(*again), secondAnswersOf(*object));
        EXPECT_EQ(countOf(secondAnswersOf(*again), "calibration"), 40);
        EXPECT_EQ(object->getCalibrations().empty(), fid != 0x0522);
    }
}

TEST_F(DownloadWorkshopTest, ACardWithoutAFirstApplicationCannotBeCounted)
{
    sim::CardDescription secondOnly = workshopCardG2(secondGeneration);
    secondOnly.applications.erase(secondOnly.applications.begin());
    insert(secondOnly);
    EXPECT_THAT(
        chain(download().failure),
        ElementsAre(
            lib("calcDataToRead() failed to call SCardWorkshopG1::calcDataToRead()", 0x6A82),
            lib("calcDataToRead(): Error reading SCardWorkshop G1 EF_Application_Identification:", 0x6A82),
            lib("ScDataTransfer failed", 0x6A82), lib("ScSelectFile Failed: By Name\xC3\xBFTACHO", 0x6A82),
            lib("Failed calculating read data size")));
    EXPECT_EQ(counter(sim::AidG2), 7u);
}

TEST_F(DownloadWorkshopTest, AReadThatDidNotFinishLeavesNothingToSaveOrReset)
{
    insert(workshopCardG2(secondGeneration));
    scard::SCardGeneric identified(connect(), QDateTime::currentDateTimeUtc(), scard::RegionDDD);
    ASSERT_THAT(chain(identified.readCardInfo()), IsEmpty());
    SCardWorkshopG2 workshop(identified);
    ASSERT_THAT(chain(workshop.calcDataToRead()), IsEmpty());
    const std::vector<Step> steps = expectedWorkshopStepsG2(secondGeneration);
    const auto inSecond = std::find_if(steps.begin(), steps.end(), [](const Step& step) {
        return step.phase == Phase::Reading && step.generation == 2 && step.fid == 0x0524;
    });
    card().failAt(static_cast<std::size_t>(inSecond - steps.begin()), sim::Fault::status(0x6400));
    ASSERT_FALSE(workshop.read().isEmpty());

    QFile file("/tmp/C_never");
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    EXPECT_THAT(chain(workshop.saveToFile(file)), ElementsAre(lib("saveToFile(): no valid data")));
    EXPECT_EQ(file.size(), 0);
    EXPECT_FALSE(DebugStream::contains("Save failed"));
    EXPECT_THAT(
        chain(workshop.postDownloadTasks()), ElementsAre(lib("updateLastCardDownload(): no valid data")));
    EXPECT_EQ(counter(sim::AidG1), 7u);
    EXPECT_EQ(counter(sim::AidG2), 7u);
}

TEST_F(DownloadWorkshopTest, ASecondReadingThatFailsForgetsWhatTheFirstHasRead)
{
    insert(workshopCardG2(version22));
    scard::SCardGeneric identified(connect(), QDateTime::currentDateTimeUtc(), scard::RegionDDD);
    ASSERT_THAT(chain(identified.readCardInfo()), IsEmpty());
    SCardWorkshopG2 workshop(identified);
    ASSERT_THAT(chain(workshop.read()), IsEmpty());
    EXPECT_EQ(workshop.getCalibrationsG2().size(), 40u);

    const std::size_t sentBefore = card().commandCount();
    card().failAt(sentBefore, sim::Fault::status(0x6400));     // the first application's name
    card().failAt(sentBefore + 1, sim::Fault::status(0x6400)); // the second's
    EXPECT_FALSE(workshop.read().isEmpty());
    EXPECT_THAT(workshop.getCalibrations(), IsEmpty());
    EXPECT_THAT(workshop.getCalibrationsG2(), IsEmpty());
    EXPECT_THAT(workshop.getCalibrationAddData(), IsEmpty());
    EXPECT_FALSE(workshop.getCalibrationCounters().total);
    EXPECT_FALSE(workshop.getCalibrationCountersG2().sinceDownload);
}

TEST_F(DownloadWorkshopTest, CountsThatNoCardHasEndTheDownload)
{
    // Every count FF: the calibrations are the first EF that is larger than any can be.
    insert(workshopCardG2(secondGeneration));
    sim::Bytes identification = *card().file(sim::AidG2, 0x0501);
    ASSERT_EQ(identification.size(), 19u);
    std::fill(identification.begin() + 3, identification.end(), std::uint8_t{0xFF});
    card().setFile(sim::AidG2, 0x0501, identification);
    EXPECT_THAT(
        chain(download().failure),
        ElementsAre(lib("readFrom() dataset exceeds 65535 bytes: ID 50a"), lib("Failed reading card data")));
    EXPECT_EQ(counter(sim::AidG1), 7u);
}

} // namespace
