// A whole download of a second-generation driver card, version 2.2 included, through one
// SCardReader::read().
#include "CardInReader.h"
#include "DriverCardV2Transcript.h"
#include "FullDisk.h"
#include "VerifyImage.h"

#include <scard/SCardDriverG2.h>
#include <support/Answers.h>
#include <support/DebugStream.h>
#include <support/ExpectedDriver.h>
#include <support/LoadedAgain.h>

#include <QFile>

#include <gmock/gmock.h>

#include <algorithm>
#include <functional>

namespace {

using namespace test;
using scard::SCardDriverG2;
using scard::SCardReader;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

sim::CardDescription cardWith(const std::function<void(sim::DriverParametersG2&)>& change)
{
    sim::DriverParametersG2 parameters;
    change(parameters);
    return sim::makeDriverCardG2(parameters);
}

class DownloadDriverG2Test : public CardInReader
{
  protected:
    DownloadDriverG2Test() { insert(driverCardG2()); }

    sim::Bytes stampOf(const sim::Bytes& application) { return *card().file(application, 0x050E); }

    bool stamped(const sim::Bytes& application)
    {
        // A card of this minute; the contents were made for another year.
        return sim::readU32(stampOf(application), 0) > 1750000000;
    }
};

TEST_F(DownloadDriverG2Test, ACardOfVersion22GetsExactlyTheseCommandsFromTheFirstSelectToTheSecondStamp)
{
    insert(driverCardV2());
    ASSERT_THAT(chain(download().failure), IsEmpty());
    EXPECT_THAT(withoutStampTimes(commands()), ElementsAreArray(driverCardV2Commands));

    // The script by which the other tests name each command is the same.
    DriverCountsG2 counts;
    counts.version2 = true;
    EXPECT_THAT(commandsOf(expectedDriverStepsG2(counts)), ElementsAreArray(driverCardV2Commands));
}

TEST_F(DownloadDriverG2Test, ACardThatIsNotOfVersion22GetsNoCommandForItsFiles)
{
    ASSERT_THAT(chain(download().failure), IsEmpty());
    EXPECT_THAT(withoutStampTimes(commands()), ElementsAreArray(commandsOf(expectedDriverStepsG2({}))));
    for (const std::string& command : commands())
        for (const char* fid : {"05 25", "05 26", "05 27", "05 28", "05 29", "05 30"})
            EXPECT_NE(command, std::string("00 A4 02 0C 02 ") + fid);
}

TEST_F(DownloadDriverG2Test, WritesTheImageByteForByte)
{
    const Download result = download();
    EXPECT_EQ(bytes(result.image), expectedDriverImageG2(driverCardG2()));
    EXPECT_EQ(result.image.size(), 67502);
}

TEST_F(DownloadDriverG2Test, WritesTheImageOfVersion22ByteForByte)
{
    insert(driverCardV2());
    const Download result = download();
    EXPECT_EQ(bytes(result.image), expectedDriverImageG2(driverCardV2()));
    EXPECT_EQ(result.image.size(), 123406);
}

TEST_F(DownloadDriverG2Test, TheImageRepeatsTheChipsFilesBehindTheFirstApplication)
{
    const QByteArray image = download().image;
    EXPECT_TRUE(image.startsWith(QByteArray::fromHex("0002000019")));
    EXPECT_EQ(image.indexOf(QByteArray::fromHex("0002020019")), 26635);
    EXPECT_EQ(image.mid(5, 25), image.mid(26640, 25));
    EXPECT_EQ(image.mid(26635 + 30, 5), QByteArray::fromHex("0005020008"));
    EXPECT_EQ(image.mid(26635 + 43, 5), QByteArray::fromHex("0501020011"));
}

TEST_F(DownloadDriverG2Test, EverySignatureVerifiesUpToTheRootsOfBothGenerations)
{
    insert(driverCardV2());
    EXPECT_EQ(verifiedSignatures(bytes(download().image)), 12u + 20);
}

TEST_F(DownloadDriverG2Test, ReportsThesePercentages)
{
    insert(driverCardV2());
    const Download result = download();
    EXPECT_THAT(result.progress, ElementsAreArray(driverCardV2Progress));
    DriverCountsG2 counts;
    counts.version2 = true;
    EXPECT_THAT(
        expectedProgress(expectedDriverStepsG2(counts), 120220, 33), ElementsAreArray(driverCardV2Progress));
    // The chip's files are in both applications' totals, and count once as moved.
    EXPECT_TRUE(DebugStream::contains("=== Progress: 176 dataToRead: 120220%:0"));
    EXPECT_TRUE(DebugStream::contains("=== Progress: 120187 dataToRead: 120220%:99"));
}

TEST_F(DownloadDriverG2Test, TheTotalWithoutVersion22IsTheSumOfBothApplications)
{
    const Download result = download();
    EXPECT_THAT(
        result.progress, ElementsAreArray(expectedProgress(expectedDriverStepsG2({}), 24959 + 39801, 33)));
    EXPECT_TRUE(DebugStream::contains("=== Progress: 64727 dataToRead: 64760%:99"));
}

TEST_F(DownloadDriverG2Test, SignalsComeOnceAndInTheOrderOfTheRoad)
{
    const Download result = download();
    EXPECT_THAT(result.types, ElementsAre(scard::SCardMeta::DriverCard));
    EXPECT_EQ(result.languages.size(), 1u);
    EXPECT_EQ(result.holders.size(), 1u);
    EXPECT_THAT(
        result.order,
        ElementsAre("cardType", "progress", "cardLanguage", "cardHolder", "progress", "readDone"));
    EXPECT_EQ(result.errors, 0);
    EXPECT_EQ(result.removed, 0);
}

TEST_F(DownloadDriverG2Test, StampsBothApplicationsWithTheTimeOfTheDownload)
{
    const qint64 before = QDateTime::currentSecsSinceEpoch();
    ASSERT_THAT(chain(download().failure), IsEmpty());
    const qint64 after = QDateTime::currentSecsSinceEpoch();
    for (const sim::Bytes& application : {sim::AidG1, sim::AidG2}) {
        EXPECT_GE(sim::readU32(stampOf(application), 0), before);
        EXPECT_LE(sim::readU32(stampOf(application), 0), after);
    }
}

TEST_F(DownloadDriverG2Test, EachRegionNamesTheFileAsForTheFirstGeneration)
{
    insert(cardWith([](sim::DriverParametersG2& parameters) {
        parameters.first.surname = "Mustermann";
        parameters.first.firstNames = "Jana";
        parameters.first.driverIdentification = "DF000000123456";
    }));
    expectFileOfEachRegion(67502);
}

// The card and its image answer alike.

TEST_F(DownloadDriverG2Test, AnImageLoadedAgainAnswersAsTheCardDid)
{
    for (const sim::CardDescription& description : {driverCardG2(), driverCardV2()}) {
        insert(description);
        const Download result = download();
        auto fromCard = std::dynamic_pointer_cast<SCardDriverG2>(result.card);
        ASSERT_TRUE(fromCard);
        const auto fromImage = loadedAgain<SCardDriverG2>(result);
        ASSERT_TRUE(fromImage);
        EXPECT_THAT(chain(fromImage->calcDataToRead()), IsEmpty());
        EXPECT_THAT(chain(fromImage->read()), IsEmpty());
        EXPECT_EQ(identityOf(*fromImage), identityOf(*fromCard));
        EXPECT_EQ(answersOf(*fromImage), answersOf(*fromCard));
        EXPECT_EQ(secondAnswersOf(*fromImage), secondAnswersOf(*fromCard));
        EXPECT_THAT(chain(fromImage->postDownloadTasks()), IsEmpty());

        const std::string first = answersOf(*fromCard);
        for (const char* name :
             {"day", "period", "vehicle", "event", "fault", "statistics", "remaining", "place", "condition",
              "use", "control", "licence"})
            EXPECT_GT(countOf(first, name), 0) << name;
        const std::string second = secondAnswersOf(*fromCard);
        for (const char* name :
             {"day", "period", "vehicle", "event", "fault", "place", "condition", "use", "control", "licence",
              "unit", "gnss"})
            EXPECT_GT(countOf(second, name), 0) << name;
        for (const char* name : {"border", "load", "loadtype"})
            EXPECT_EQ(countOf(second, name) > 0, fromCard->is2_2Generation()) << name;
    }
}

TEST_F(DownloadDriverG2Test, TheListsOfBothApplicationsTellOfTheSameDays)
{
    insert(driverCardV2());
    const Download result = download();
    auto driver = std::dynamic_pointer_cast<SCardDriverG2>(result.card);
    ASSERT_TRUE(driver);
    const auto first = driver->getActivities();
    const auto second = driver->getActivitiesG2();
    ASSERT_FALSE(first.empty());
    ASSERT_EQ(first.size(), second.size());
    for (std::size_t i = 0; i < first.size(); ++i) {
        EXPECT_EQ(first[i].date, second[i].date);
        EXPECT_EQ(first[i].driving, second[i].driving);
        EXPECT_EQ(first[i].items.size(), second[i].items.size());
    }
    EXPECT_EQ(driver->getVehiclesUsed().size(), driver->getVehiclesUsedG2().size());
    for (const SCardDriverG2::_VEHICLE_USAGE_INFO_G2& vehicle : driver->getVehiclesUsedG2())
        EXPECT_EQ(vehicle.vehicleIdentificationNumber.size(), 17);
    // Of some kinds of events the first application has no place.
    EXPECT_GE(driver->getEventsG2().size(), driver->getEvents().size());
}

// A first application that cannot be read.

TEST_F(DownloadDriverG2Test, AFailureInTheFirstApplicationDoesNotStopTheSecond)
{
    const std::vector<Step> steps = expectedDriverStepsG2({});
    for (const unsigned int fid :
         {0x0520u, 0x0501u, 0xC100u, 0xC108u, 0x050Eu, 0x0521u, 0x0502u, 0x0503u, 0x0504u, 0x0505u, 0x0506u,
          0x0507u, 0x0508u, 0x0522u}) {
        SCOPED_TRACE(fid);
        insert(driverCardG2());
        const auto failing = std::find_if(steps.begin(), steps.end(), [fid](const Step& step) {
            return step.phase == Phase::Reading && step.generation == 1 && step.fid == fid;
        });
        card().failAt(
            static_cast<std::size_t>(failing - steps.begin()),
            sim::Fault::status(sim::sw::AttributesCorrupted));

        const Download result = download();
        EXPECT_THAT(chain(result.failure), IsEmpty());
        ASSERT_TRUE(result.card);
        EXPECT_EQ(bytes(result.image), expectedDriverImageG2(driverCardG2(), fid));
        EXPECT_TRUE(stamped(sim::AidG1));
        EXPECT_TRUE(stamped(sim::AidG2));

        // The commands of the second application follow at once.
        std::vector<Step> sent(steps.begin(), failing + 1);
        const auto second = std::find_if(failing, steps.end(), [](const Step& step) {
            return step.phase == Phase::Reading && step.generation == 2;
        });
        sent.insert(sent.end(), second, steps.end());
        EXPECT_THAT(withoutStampTimes(commands()), ElementsAreArray(commandsOf(sent)));

        auto driver = std::dynamic_pointer_cast<SCardDriverG2>(result.card);
        ASSERT_TRUE(driver);
        // Days and the like are read before the EFs that an image may lack.
        const bool listsRead = fid == 0x0506 || fid == 0x0507 || fid == 0x0508 || fid == 0x0522;
        EXPECT_EQ(driver->getActivities().empty(), !listsRead);
        EXPECT_EQ(driver->getVehiclesUsed().empty(), !listsRead);
        EXPECT_EQ(driver->getEvents().empty(), !listsRead);
        EXPECT_EQ(driver->getFaults().empty(), !listsRead);
        EXPECT_FALSE(driver->getActivitiesG2().empty());
        const auto fromImage = loadedAgain<SCardDriverG2>(result);
        ASSERT_TRUE(fromImage);
        EXPECT_EQ(answersOf(*fromImage), answersOf(*driver));
        EXPECT_EQ(secondAnswersOf(*fromImage), secondAnswersOf(*driver));
        EXPECT_EQ(fromImage->getCardHolderName(), driver->getCardHolderName());
        EXPECT_FALSE(driver->getCardHolderName().isEmpty());
        const bool named = fid != 0x0520;
        EXPECT_EQ(result.path == "/tmp/CARD_FILENAME_NOT_SET.DDD", !named) << result.path.toStdString();
        EXPECT_THAT(result.holders, testing::SizeIs(named ? 1 : 0));
    }
}

TEST_F(DownloadDriverG2Test, ACardWithoutAFirstApplicationIsReadAndSavedAndCannotBeStampedThere)
{
    sim::CardDescription secondOnly = driverCardG2();
    secondOnly.applications.erase(secondOnly.applications.begin());
    insert(secondOnly);
    const Download result = download();
    EXPECT_THAT(
        chain(result.failure),
        ElementsAre(
            lib("read() Select DF_Tachograph failed", 0x6A82), lib("ScDataTransfer failed", 0x6A82),
            lib("ScSelectFile Failed: By Name\xC3\xBFTACHO", 0x6A82), lib("Failed at post download task")));
    EXPECT_FALSE(stamped(sim::AidG2));
    const sim::Bytes whole = expectedDriverImageG2(driverCardG2(), 0x0520);
    EXPECT_EQ(bytes(fileContent("/tmp/CARD_FILENAME_NOT_SET.DDD")), whole);
}

TEST_F(DownloadDriverG2Test, TheFirstApplicationsCountsMustBeReadable)
{
    const std::vector<Step> steps = expectedDriverStepsG2({});
    const auto counts = std::find_if(steps.begin(), steps.end(), [](const Step& step) {
        return step.phase == Phase::Total && step.fid == 0x0501;
    });
    const auto index = static_cast<std::size_t>(counts - steps.begin());
    card().failAt(index, sim::Fault::status(sim::sw::AttributesCorrupted));
    EXPECT_THAT(
        chain(download().failure),
        ElementsAre(
            lib("calcDataToRead() failed to call SCardDriverG1::calcDataToRead()", 0x6400),
            lib("ScDataTransfer failed", 0x6400), lib("ScSelectFile Failed: By ID501", 0x6400),
            lib("readFrom() ScSelectFile() Failed: ID 501", 0x6400),
            lib("calcDataToRead(): Error reading SCardDriver G1 EF_Application_Identification:", 0x6400),
            lib("Failed calculating read data size")));
    EXPECT_EQ(card().commandCount(), index + 1);
}

TEST_F(DownloadDriverG2Test, ASecondReadingThatFailsInTheFirstApplicationForgetsTheListsOfTheFirst)
{
    scard::SCardGeneric identified(connect(), QDateTime::currentDateTimeUtc(), scard::RegionDDD);
    ASSERT_THAT(chain(identified.readCardInfo()), IsEmpty());
    SCardDriverG2 driver(identified);
    ASSERT_THAT(chain(driver.read()), IsEmpty());
    EXPECT_FALSE(driver.getActivities().empty());
    EXPECT_FALSE(driver.getVehiclesUsed().empty());

    card().failAt(card().commandCount(), sim::Fault::status(0x6400)); // the first application's name
    ASSERT_THAT(chain(driver.read()), IsEmpty());
    EXPECT_TRUE(driver.getActivities().empty());
    EXPECT_TRUE(driver.getVehiclesUsed().empty());
    EXPECT_TRUE(driver.getEvents().empty());
    EXPECT_TRUE(driver.getFaults().empty());
    EXPECT_TRUE(driver.getDateOfFirstActivity().isNull());
    EXPECT_FALSE(driver.getActivitiesG2().empty());
    EXPECT_EQ(
        DebugStream::lines()
            .filter("read() first application failed: libscard: read() Select DF_Tachograph failed (6400)")
            .size(),
        1);

    card().failAt(card().commandCount() + 200, sim::Fault::status(0x6400)); // in the second application
    ASSERT_FALSE(driver.read().isEmpty());
    EXPECT_FALSE(driver.getActivities().empty());
    EXPECT_TRUE(driver.getActivitiesG2().empty());
    EXPECT_TRUE(driver.getVehiclesUsedG2().empty());
    EXPECT_TRUE(driver.getEventsG2().empty());
    EXPECT_TRUE(driver.getFaultsG2().empty());
}

// The second application.

TEST_F(DownloadDriverG2Test, ASecondApplicationThatCannotBeSelectedForItsCountsIsLoggedAndEndsTheDownload)
{
    const std::vector<Step> steps = expectedDriverStepsG2({});
    const auto select = std::find_if(steps.begin(), steps.end(), [](const Step& step) {
        return step.phase == Phase::Total && step.name == "SMRDT";
    });
    const auto index = static_cast<std::size_t>(select - steps.begin());
    card().failAt(index, sim::Fault::status(0x6400));
    EXPECT_THAT(
        chain(download().failure),
        ElementsAre(
            lib("calcDataToRead(): Error reading SCardDriver G2 EF_Application_Identification:", 0x6400),
            lib("ScDataTransfer failed", 0x6400), lib("ScSelectFile Failed: By Name\xC3\xBFSMRDT", 0x6400),
            lib("Failed calculating read data size")));
    EXPECT_EQ(card().commandCount(), index + 1);
    EXPECT_EQ(
        DebugStream::lines()
            .filter("calcDataToRead(): Error reading SCardDriver G2 EF_Application_Identification: libscard")
            .size(),
        1);
}

TEST_F(DownloadDriverG2Test, CountsThatNoCardHasEndTheDownload)
{
    // Every count FF: the events are the first EF that is larger than any can be.
    sim::Bytes identification = *card().file(sim::AidG2, 0x0501);
    ASSERT_EQ(identification.size(), 17u);
    for (std::size_t i = 3; i < identification.size(); ++i)
        identification[i] = 0xFF;
    card().setFile(sim::AidG2, 0x0501, identification);
    EXPECT_THAT(
        chain(download().failure),
        ElementsAre(lib("readFrom() dataset exceeds 65535 bytes: ID 502"), lib("Failed reading card data")));
    EXPECT_FALSE(stamped(sim::AidG1));
}

TEST_F(DownloadDriverG2Test, AnEfThatIsTooLongTogetherWithItsPointersEndsTheDownload)
{
    // 65,532 bytes of days, each of which could be read, behind two pointers of two bytes.
    sim::Bytes identification = *card().file(sim::AidG2, 0x0501);
    identification[5] = 0xFF;
    identification[6] = 0xFC;
    card().setFile(sim::AidG2, 0x0501, identification);
    EXPECT_THAT(
        chain(download().failure),
        ElementsAre(lib("readFrom() dataset exceeds 65535 bytes: ID 504"), lib("Failed reading card data")));
    EXPECT_EQ(commands().back(), "00 B0 00 02 02");
    EXPECT_FALSE(stamped(sim::AidG1));
}

TEST_F(DownloadDriverG2Test, ACardWithoutAnyRecordsHasNothingToSaveForItsEvents)
{
    insert(driverCardV2());
    const auto setZero = [this](unsigned short fid, std::size_t from, std::size_t to) {
        sim::Bytes content = *card().file(sim::AidG2, fid);
        for (std::size_t i = from; i < to; ++i)
            content.at(i) = 0;
        card().setFile(sim::AidG2, fid, content);
    };
    setZero(0x0501, 3, 17);
    setZero(0x0525, 2, 10);
    scard::SCardGeneric identified(connect(), QDateTime::currentDateTimeUtc(), scard::RegionDDD);
    ASSERT_THAT(chain(identified.readCardInfo()), IsEmpty());
    SCardDriverG2 driver(identified);
    EXPECT_THAT(chain(driver.calcDataToRead()), IsEmpty());
    EXPECT_THAT(chain(driver.read()), IsEmpty());
    const std::string second = secondAnswersOf(driver);
    for (const char* name :
         {"day", "vehicle", "event", "fault", "place", "condition", "unit", "gnss", "border", "load"})
        EXPECT_EQ(countOf(second, name), 0) << name;

    QFile file("/tmp/C_noRecords");
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    EXPECT_THAT(
        chain(driver.saveToFile(file)),
        ElementsAre(lib("saveToFile() Failed"), lib("writeDatasetToFile(): no valid data")));
}

TEST_F(DownloadDriverG2Test, AVersion22CardWithoutItsCountsFailsBeforeAnythingIsRead)
{
    sim::CardDescription card22 = driverCardV2();
    std::vector<sim::FileDescription>& files = card22.applications.at(1).files;
    files.erase(
        std::remove_if(
            files.begin(), files.end(), [](const sim::FileDescription& file) { return file.fid == 0x0525; }),
        files.end());
    insert(card22);
    const Download result = download();
    EXPECT_THAT(
        chain(result.failure),
        ElementsAre(
            lib("calcDataToRead(): Error reading SCardDriver G2 EF_Application_Identification_V2:", 0x6A82),
            lib("ScDataTransfer failed", 0x6A82), lib("ScSelectFile Failed: By ID525", 0x6A82),
            lib("readFrom() ScSelectFile() Failed: ID 525", 0x6A82),
            lib("Failed calculating read data size")));
    EXPECT_THAT(result.progress, IsEmpty());
    EXPECT_EQ(
        DebugStream::lines()
            .filter(
                "calcDataToRead(): Error reading SCardDriver G2 EF_Application_Identification_V2: libscard")
            .size(),
        1);
    EXPECT_FALSE(stamped(sim::AidG1));
}

TEST_F(DownloadDriverG2Test, ASecondApplicationThatCannotBeReadEndsTheDownloadAndNothingIsStamped)
{
    const std::vector<Step> steps = expectedDriverStepsG2({});
    const auto failing = std::find_if(steps.begin(), steps.end(), [](const Step& step) {
        return step.phase == Phase::Reading && step.generation == 2 && step.fid == 0x0524;
    });
    card().failAt(static_cast<std::size_t>(failing - steps.begin()), sim::Fault::status(0x6400));
    const Download result = download();
    EXPECT_EQ(chain(result.failure), expectedDriverChainG2(*failing, lib("ScDataTransfer failed", 0x6400)));
    EXPECT_EQ(DebugStream::lines().filter("Error reading m_EF_GNSS_Places: libscard").size(), 1);
    EXPECT_FALSE(result.card);
    EXPECT_FALSE(stamped(sim::AidG1));
    EXPECT_FALSE(stamped(sim::AidG2));
}

TEST_F(DownloadDriverG2Test, AReadThatFailedInTheSecondApplicationLeavesNothingToSaveOrStamp)
{
    scard::SCardGeneric identified(connect(), QDateTime::currentDateTimeUtc(), scard::RegionDDD);
    ASSERT_THAT(chain(identified.readCardInfo()), IsEmpty());
    SCardDriverG2 driver(identified);
    ASSERT_THAT(chain(driver.calcDataToRead()), IsEmpty());
    card().failAt(card().commandCount() + 200, sim::Fault::status(0x6400)); // in the second application
    ASSERT_FALSE(driver.read().isEmpty());

    QFile file("/tmp/C_never");
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    EXPECT_THAT(chain(driver.saveToFile(file)), ElementsAre(lib("saveToFile(): no valid data")));
    EXPECT_EQ(file.size(), 0);
    EXPECT_TRUE(DebugStream::contains("Save failed g2: false false"));
    EXPECT_THAT(
        chain(driver.postDownloadTasks()), ElementsAre(lib("updateLastCardDownload(): no valid data")));
    EXPECT_FALSE(stamped(sim::AidG1));

    ASSERT_THAT(chain(driver.readCardInfo()), IsEmpty());
    driver.saveToFile(file);
    EXPECT_TRUE(DebugStream::contains("Save failed g2: false true"));
}

TEST_F(DownloadDriverG2Test, WhenTheFirstStampFailsTheSecondApplicationIsNotTouched)
{
    const std::vector<Step> steps = expectedDriverStepsG2({});
    const auto firstStamp =
        std::find_if(steps.begin(), steps.end(), [](const Step& step) { return step.kind == Kind::Update; });
    card().failAt(
        static_cast<std::size_t>(firstStamp - steps.begin()), sim::Fault::status(sim::sw::WriteFailed));
    const Download result = download();
    EXPECT_EQ(
        chain(result.failure), expectedDriverChainG2(*firstStamp, lib("ScDataTransfer failed", 0x6581)));
    EXPECT_FALSE(stamped(sim::AidG1));
    EXPECT_FALSE(stamped(sim::AidG2));
    EXPECT_EQ(commands().back().substr(0, 14), "00 D6 00 00 04");
}

TEST_F(DownloadDriverG2Test, WhenTheSecondStampFailsTheFirstStays)
{
    const std::vector<Step> steps = expectedDriverStepsG2({});
    card().failAt(steps.size() - 1, sim::Fault::status(sim::sw::WriteFailed));
    const Download result = download();
    EXPECT_EQ(
        chain(result.failure), expectedDriverChainG2(steps.back(), lib("ScDataTransfer failed", 0x6581)));
    EXPECT_TRUE(stamped(sim::AidG1));
    EXPECT_FALSE(stamped(sim::AidG2));
}

// Certificates.

TEST_F(DownloadDriverG2Test, CertificatesOfTheOtherCurveHaveAByteMore)
{
    const sim::CardDescription brainpool =
        cardWith([](sim::DriverParametersG2& parameters) { parameters.curve = sim::Curve::BrainpoolP256r1; });
    insert(brainpool);
    const Download result = download();
    EXPECT_THAT(chain(result.failure), IsEmpty());
    EXPECT_EQ(bytes(result.image), expectedDriverImageG2(brainpool));
    EXPECT_EQ(result.image.size(), 67502 + 4);
    DriverCountsG2 counts;
    counts.certificateLength = 205;
    EXPECT_THAT(withoutStampTimes(commands()), ElementsAreArray(commandsOf(expectedDriverStepsG2(counts))));
}

TEST_F(DownloadDriverG2Test, PaddingBehindACertificateIsNotTaken)
{
    insert(cardWith([](sim::DriverParametersG2& parameters) {
        parameters.certificateFiles = sim::CertificateFiles::Padded;
        parameters.linkCertificate = sim::CertificateFiles::Padded;
    }));
    ASSERT_GT(card().file(sim::AidG2, 0xC101)->size(), 204u);
    const Download result = download();
    EXPECT_THAT(chain(result.failure), IsEmpty());
    EXPECT_EQ(bytes(result.image), expectedDriverImageG2(driverCardG2()));
}

TEST_F(DownloadDriverG2Test, AFileWithoutCertificateGives204Bytes)
{
    const sim::CardDescription empty = cardWith([](sim::DriverParametersG2& parameters) {
        parameters.linkCertificate = sim::CertificateFiles::Empty;
    });
    insert(empty);
    ASSERT_EQ(*card().file(sim::AidG2, 0xC109), sim::Bytes(204, 0x00));
    const Download result = download();
    EXPECT_THAT(chain(result.failure), IsEmpty());
    EXPECT_EQ(bytes(result.image), expectedDriverImageG2(empty));
}

TEST_F(DownloadDriverG2Test, ACertificateFileThatIsMissingCountsNothingAndEndsTheReading)
{
    insert(cardWith([](sim::DriverParametersG2& parameters) {
        parameters.linkCertificate = sim::CertificateFiles::Missing;
    }));
    const Download result = download();
    EXPECT_THAT(
        chain(result.failure),
        ElementsAre(
            lib("ScDataTransfer failed", 0x6A82), lib("ScSelectFile Failed: By IDc109", 0x6A82),
            lib("readFrom() ScSelectFile() Failed: ID c109", 0x6A82), lib("Failed reading card data")));
    EXPECT_EQ(DebugStream::lines().filter("Error reading EF_Link_Certificate: libscard").size(), 1);
    EXPECT_TRUE(DebugStream::contains("=== Progress: 176 dataToRead: 64556%:0"));
    const QStringList lines = DebugStream::lines().filter(
        "get2ndGenCertificateSize(): Could not read certificate size. Not available?");
    ASSERT_EQ(lines.size(), 2); // for the total, and before the reading
    EXPECT_TRUE(lines.front().endsWith("readFrom() ScSelectFile() Failed: ID c109 (6a82)"))
        << lines.front().toStdString();
}

TEST_F(DownloadDriverG2Test, ACertificateFileOfLessThanItsHeaderIsReadWithLength0AndCannotBeSaved)
{
    sim::CardDescription shortFile = driverCardG2();
    for (sim::FileDescription& file : shortFile.applications.at(1).files)
        if (file.fid == 0xC108)
            file.content = {0x7F, 0x21, 0x81};
    insert(shortFile);
    const Download result = download();
    EXPECT_THAT(
        chain(result.failure), ElementsAre(
                                   lib("saveToFile() Failed"), lib("writeDatasetToFile(): no valid data"),
                                   lib("Failed at saving card data to file")));
    EXPECT_FALSE(stamped(sim::AidG1));
    const QStringList lines = DebugStream::lines().filter(
        "get2ndGenCertificateSize(): Could not read certificate size. Not available?");
    ASSERT_EQ(lines.size(), 2);
    EXPECT_TRUE(lines.front().endsWith("readFrom() ScReadFile() Failed: ID c108 (6700)"))
        << lines.front().toStdString();
}

TEST_F(DownloadDriverG2Test, ACertificateThatAnnouncesMoreThanItsFileEndsTheReading)
{
    const struct
    {
        sim::Bytes header;
        const char* step;
    } rows[] = {
        {{0x7F, 0x21, 0x81, 0xFF, 0x00}, "readFrom() ScReadFile() Failed: ID c100"},
        {{0x7F, 0x21, 0x82, 0x01, 0x2C}, "readFrom() ScReadFile() Failed: ID c100"},
        {{0x7F, 0x21, 0x82, 0xFF, 0xFF}, "readFrom() ScReadLargeFile() Failed: ID c100"},
    };
    for (const auto& row : rows) {
        insert(driverCardG2());
        sim::Bytes content = *card().file(sim::AidG2, 0xC100);
        std::copy(row.header.begin(), row.header.end(), content.begin());
        card().setFile(sim::AidG2, 0xC100, content);
        const Download result = download();
        const Chain failure = chain(result.failure);
        ASSERT_GE(failure.size(), 2u) << row.step;
        EXPECT_EQ(failure.front().source, "libscard");
        EXPECT_EQ(failure[failure.size() - 2].message, row.step);
        EXPECT_EQ(failure.back(), lib("Failed reading card data"));
        EXPECT_FALSE(stamped(sim::AidG1));
    }
}

TEST_F(DownloadDriverG2Test, ACardThatSignsWithALargerCurveRefusesTheSignatureLength)
{
    const struct
    {
        sim::Curve curve;
        unsigned int certificateLength;
    } rows[] = {
        {sim::Curve::NistP384, 266},
        {sim::Curve::BrainpoolP384r1, 270},
        {sim::Curve::BrainpoolP512r1, 337},
        {sim::Curve::NistP521, 341},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.certificateLength);
        insert(cardWith([&row](sim::DriverParametersG2& parameters) { parameters.curve = row.curve; }));
        EXPECT_EQ(card().file(sim::AidG2, 0xC101)->size(), row.certificateLength);
        const Download result = download();
        EXPECT_THAT(
            chain(result.failure),
            ElementsAre(
                lib("ScDataTransfer failed", 0x6700), lib("ScComputeHashOfFile Failed ", 0x6700),
                lib("readHash() ScComputeHashOfFile() Failed: ID520", 0x6700),
                lib("Failed reading card data")));
        EXPECT_EQ(commands().back(), "00 2A 9E 9A 40");
        EXPECT_FALSE(stamped(sim::AidG1));
    }
}

// The file.

TEST_F(DownloadDriverG2Test, ATornRecordOfTheFirstApplicationIsAFailureWhateverFollows)
{
    scard::SCardGeneric identified(connect(), QDateTime::currentDateTimeUtc(), scard::RegionDDD);
    ASSERT_THAT(chain(identified.readCardInfo()), IsEmpty());
    SCardDriverG2 driver(identified);
    ASSERT_THAT(chain(driver.read()), IsEmpty());

    MomentWithoutRoom file("/tmp/C_torn", 10000); // inside the first application's activities
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
    EXPECT_THAT(
        chain(driver.saveToFile(file)),
        ElementsAre(lib("saveToFile() Failed"), lib("writeDatasetToFile() write failed: File too large")));
    // The second application was written behind it all the same.
    EXPECT_TRUE(fileContent("/tmp/C_torn").mid(10000).startsWith(QByteArray::fromHex("0002020019")));
}

TEST_F(DownloadDriverG2Test, AFullDiskEndsTheSaveAndNothingIsStamped)
{
    for (const rlim_t room : {rlim_t{10000}, rlim_t{40000}}) {
        SCOPED_TRACE(room);
        insert(driverCardG2());
        const FileSizeLimit limit(room);
        const Download result = download();
        EXPECT_THAT(
            chain(result.failure),
            ElementsAre(
                lib("saveToFile() Failed"), lib("writeDatasetToFile() write failed: File too large"),
                lib("Failed at saving card data to file")));
        EXPECT_FALSE(stamped(sim::AidG1));
        EXPECT_FALSE(stamped(sim::AidG2));
    }
}

} // namespace
