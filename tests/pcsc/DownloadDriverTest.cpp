// A whole download of a first-generation driver card through one SCardReader::read().
#include "CardInReader.h"
#include "DriverCardTranscript.h"
#include "VerifyImage.h"

#include <scard/SCardDriverG1.h>
#include <simulator/ControlCard.h>
#include <support/Answers.h>
#include <support/DebugStream.h>
#include <support/ExpectedDriver.h>
#include <support/LoadedAgain.h>

#include <QFile>
#include <QFileInfo>

#include <gmock/gmock.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <sys/statvfs.h>

namespace {

using namespace test;
using scard::SCardReader;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

using DownloadDriverTest = CardInReader;

/// A driver card of another layout: 304 vehicles is more than any real card has.
sim::CardDescription driverCardWith(const std::function<void(sim::DriverParameters&)>& change)
{
    sim::DriverParameters parameters;
    change(parameters);
    return sim::makeDriverCardG1(parameters);
}

sim::Bytes contentOf(const sim::Card& card, unsigned short fid)
{
    return *card.file(sim::AidG1, fid);
}

void expectNothingSaved(const Download& result)
{
    EXPECT_THAT(
        chain(result.failure),
        ElementsAre(lib("saveToFile(): File not opened"), lib("Failed at saving card data to file")));
    EXPECT_FALSE(result.card);
}

TEST_F(DownloadDriverTest, SendsExactlyTheseCommandsFromTheFirstSelectToTheStamp)
{
    const qint64 before = QDateTime::currentSecsSinceEpoch();
    const Download result = download();
    const qint64 after = QDateTime::currentSecsSinceEpoch();
    ASSERT_THAT(chain(result.failure), IsEmpty());

    std::vector<std::string> sent = commands();
    ASSERT_FALSE(sent.empty());
    const std::size_t headerLength = std::strlen("00 D6 00 00 04");
    const std::string stamp = sent.back().substr(headerLength);
    sent.back().resize(headerLength);
    EXPECT_THAT(sent, ElementsAreArray(driverCardCommands));

    // The script by which the other tests name each command is the same.
    EXPECT_THAT(commandsOf(expectedDriverSteps()), ElementsAreArray(driverCardCommands));

    const sim::Bytes time = sim::fromHex(stamp);
    ASSERT_EQ(time.size(), 4u);
    EXPECT_GE(sim::readU32(time, 0), before);
    EXPECT_LE(sim::readU32(time, 0), after);
    EXPECT_EQ(contentOf(card(), 0x050E), time);
}

TEST_F(DownloadDriverTest, NeedsNoMoreCommandsThanOrderAndChunkSizeAsk)
{
    download();
    // Identification 8, total 3, reading 154, stamp 3.
    EXPECT_EQ(card().commandCount(), 168u);
}

TEST_F(DownloadDriverTest, WritesTheImageByteForByte)
{
    const Download result = download();
    EXPECT_EQ(bytes(result.image), expectedDriverImage(driverCard()));
    EXPECT_EQ(result.image.size(), 26635);
}

TEST_F(DownloadDriverTest, TheTwelveSignaturesVerifyUpToTheRoot)
{
    EXPECT_EQ(verifiedSignatures(bytes(download().image)), 12u);
}

TEST_F(DownloadDriverTest, ReportsThesePercentages)
{
    const unsigned total = 983 + 144 * 12 + 48 * 24 + 13776 + 31 * 200 + 10 * 112;
    ASSERT_EQ(total, 24959u);
    const Download result = download();
    EXPECT_THAT(result.progress, ElementsAreArray(driverCardProgress));
    EXPECT_THAT(expectedProgress(expectedDriverSteps(), total), ElementsAreArray(driverCardProgress));
    // EF_ICC and EF_IC are in the total and not in what is moved.
    EXPECT_EQ(result.progress.back(), 99);
    EXPECT_TRUE(DebugStream::contains("=== Progress: 143 dataToRead: 24959%:0"));
    EXPECT_TRUE(DebugStream::contains("=== Progress: 24926 dataToRead: 24959%:99"));
}

TEST_F(DownloadDriverTest, TheTotalFor304VehiclesIs28183)
{
    insert(driverCardWith([](sim::DriverParameters& parameters) { parameters.vehicles = 304; }));
    DriverCounts counts;
    counts.vehicles = 304;
    const Download result = download();
    EXPECT_THAT(chain(result.failure), IsEmpty());
    EXPECT_THAT(result.progress, ElementsAreArray(expectedProgress(expectedDriverSteps(counts), 28183)));
    EXPECT_TRUE(DebugStream::contains("=== Progress: 28150 dataToRead: 28183%:99"));
}

TEST_F(DownloadDriverTest, ACardWithoutVehicleRecordsGivesOnlyTheirPointer)
{
    sim::Bytes identification = contentOf(card(), 0x0501);
    identification[7] = identification[8] = 0;
    card().setFile(sim::AidG1, 0x0501, identification);
    card().setFile(sim::AidG1, 0x0505, {0x00, 0x00});
    DriverCounts counts;
    counts.vehicles = 0;

    const Download result = download();
    EXPECT_THAT(chain(result.failure), IsEmpty());
    EXPECT_THAT(withoutStampTimes(commands()), ElementsAreArray(commandsOf(expectedDriverSteps(counts))));
    EXPECT_THAT(
        result.progress, ElementsAreArray(expectedProgress(expectedDriverSteps(counts), 24959 - 6200)));
    EXPECT_TRUE(result.image.contains(QByteArray::fromHex("05050000020000050501")));
}

TEST_F(DownloadDriverTest, SignalsComeInTheOrderOfTheRoad)
{
    const Download result = download();
    EXPECT_THAT(result.types, ElementsAre(scard::SCardMeta::DriverCard));
    ASSERT_EQ(result.languages.size(), 1u);
    ASSERT_EQ(result.holders.size(), 1u);
    EXPECT_THAT(
        result.order,
        ElementsAre("cardType", "progress", "cardLanguage", "cardHolder", "progress", "readDone"));
    EXPECT_EQ(result.errors, 0);
    EXPECT_EQ(result.removed, 0);
}

TEST_F(DownloadDriverTest, TypeIsKnownBeforeAnyDatasetIsRead)
{
    SCardReader reader;
    std::size_t commandsUntilType = 0;
    QObject::connect(&reader, &SCardReader::cardType, [&](scard::SCardMeta::Type) {
        commandsUntilType = card().commandCount();
    });
    reader.init();
    reader.open();
    reader.read(scard::RegionDDD);
    EXPECT_EQ(commandsUntilType, 8u);
}

TEST_F(DownloadDriverTest, HolderAndLanguageAreThoseOfTheCard)
{
    insert(driverCardWith([](sim::DriverParameters& parameters) {
        parameters.codePage = 2;
        parameters.nation = 0x28;
        parameters.surname = "Łukasiewicz";
        parameters.firstNames = "Zdzisław Józef";
        parameters.language = "pl";
    }));
    const Download result = download();
    EXPECT_THAT(result.holders, ElementsAre(QString::fromUtf8("Zdzisław Józef, Łukasiewicz")));
    EXPECT_THAT(result.languages, ElementsAre("pl_PL"));
    EXPECT_TRUE(result.path.contains(QString::fromUtf8("_Z_Łukasiewicz_")));
    EXPECT_EQ(result.image.size(), 26635);
}

TEST_F(DownloadDriverTest, EachRegionNamesTheFileByItsConvention)
{
    insert(driverCardWith([](sim::DriverParameters& parameters) {
        parameters.surname = "Mustermann";
        parameters.firstNames = "Jana";
        parameters.driverIdentification = "DF000000123456";
    }));
    expectFileOfEachRegion(26635);
}

TEST_F(DownloadDriverTest, TheFileNameHoldsTheTimeInUtc)
{
    const QDateTime before = QDateTime::currentDateTimeUtc();
    const Download result = download();
    const QDateTime after = QDateTime::currentDateTimeUtc();
    const QString time = result.card->getFilename().mid(2, 13);
    EXPECT_TRUE(time == before.toString("yyyyMMdd_hhmm") || time == after.toString("yyyyMMdd_hhmm"));
    EXPECT_GE(result.card->getDownloadTimestamp(), before.addMSecs(-1));
    EXPECT_LE(result.card->getDownloadTimestamp(), after);
    EXPECT_EQ(result.card->getDownloadTimestamp().timeSpec(), Qt::UTC);
}

TEST_F(DownloadDriverTest, TheCardObjectKeepsTheLastDownloadAsItWasRead)
{
    const std::uint32_t lastDownload = 1700000000;
    insert(
        driverCardWith([&](sim::DriverParameters& parameters) { parameters.lastDownload = lastDownload; }));
    const Download result = download();
    auto driver = std::dynamic_pointer_cast<scard::SCardDriverG1>(result.card);
    ASSERT_TRUE(driver);
    EXPECT_EQ(driver->getLastCardDownload(), QDateTime::fromSecsSinceEpoch(lastDownload, Qt::LocalTime));
    EXPECT_EQ(driver->getLastCardDownload().timeSpec(), Qt::LocalTime);
    EXPECT_NE(sim::readU32(contentOf(card(), 0x050E), 0), lastDownload);
}

TEST_F(DownloadDriverTest, AnImageLoadedAgainAnswersAsTheCardDid)
{
    const Download result = download();
    auto fromCard = std::dynamic_pointer_cast<scard::SCardDriverG1>(result.card);
    ASSERT_TRUE(fromCard);

    const auto fromImage = loadedAgain<scard::SCardDriverG1>(result);
    ASSERT_TRUE(fromImage);
    EXPECT_THAT(chain(fromImage->calcDataToRead()), IsEmpty());
    EXPECT_THAT(chain(fromImage->read()), IsEmpty());

    EXPECT_EQ(identityOf(*fromImage), identityOf(*fromCard));
    EXPECT_EQ(answersOf(*fromImage), answersOf(*fromCard));
    EXPECT_GT(countOf(answersOf(*fromCard), "period"), 0);
    EXPECT_THAT(chain(fromImage->postDownloadTasks()), IsEmpty());
}

TEST_F(DownloadDriverTest, ReadBeforeOpenSaysSoAndSendsNothing)
{
    SCardReader reader;
    int signalsSeen = 0;
    QObject::connect(&reader, &SCardReader::cardType, [&](scard::SCardMeta::Type) { ++signalsSeen; });
    QObject::connect(&reader, &SCardReader::error, [&](const aux::Error&) { ++signalsSeen; });
    EXPECT_THAT(
        chain(reader.read(scard::RegionDDD)), ElementsAre(lib("No SCardReader Connection established")));
    EXPECT_EQ(signalsSeen, 0);
    EXPECT_EQ(card().commandCount(), 0u);
}

TEST_F(DownloadDriverTest, ReadAfterCloseFailsInsideTheCardCommands)
{
    SCardReader reader;
    reader.init();
    reader.open();
    reader.close();
    const Chain failure = chain(reader.read(scard::RegionDDD));
    ASSERT_FALSE(failure.empty());
    EXPECT_EQ(failure.front(), test::pcsc("ScDataTransfer SCardTransmit() Failed", SCARD_E_INVALID_HANDLE));
    EXPECT_EQ(failure.back(), lib("Failed at reading card information"));
    reader.uninit();
}

TEST_F(DownloadDriverTest, ACardWithoutTachographApplicationIsRefused)
{
    sim::CardDescription other = driverCard();
    other.applications.clear();
    insert(other);
    const Download result = download();
    EXPECT_THAT(
        chain(result.failure),
        ElementsAre(
            lib("ScDataTransfer failed", 0x6A82), lib("ScSelectFile Failed: By Name\xC3\xBFTACHO", 0x6A82),
            lib("read() Identify Card Generation failed", 0x6A82),
            lib("Failed at reading card information")));
    EXPECT_THAT(result.types, IsEmpty());
}

TEST_F(DownloadDriverTest, TypeBytesThatNoCardHasAreRefused)
{
    for (const int type : {0, 5, 6, 7, 8, 255}) {
        SCOPED_TRACE(type);
        setTypeByte(type);
        card().reset();
        const Download result = download();
        EXPECT_THAT(
            chain(result.failure),
            ElementsAre(lib("read() Unknown Card Type"), lib("Failed at reading card information")));
        EXPECT_THAT(result.types, IsEmpty());
        EXPECT_TRUE(DebugStream::contains(QStringLiteral("Card Type: Unknown Card: %1").arg(type)));
    }
}

TEST_F(DownloadDriverTest, AControlCardGivesAnEmptyFileAndTheGenericObject)
{
    sim::ControlParametersG2 version2;
    version2.version2 = true;
    for (const sim::CardDescription& control :
         {sim::makeControlCardG1(), sim::makeControlCardG2(), sim::makeControlCardG2(version2)}) {
        insert(control);
        const Download result = download();
        EXPECT_THAT(chain(result.failure), IsEmpty());
        EXPECT_THAT(result.types, ElementsAre(scard::SCardMeta::ControlCard));
        ASSERT_TRUE(result.card);
        EXPECT_EQ(result.card->getCardType(), scard::SCardMeta::ControlCard);
        EXPECT_EQ(result.card->is2ndGeneneration(), control.applications.size() == 2);
        EXPECT_EQ(result.card->metaObject(), &scard::SCardGeneric::staticMetaObject);
        EXPECT_EQ(result.path, "/tmp/CARD_FILENAME_NOT_SET.DDD");
        EXPECT_TRUE(QFileInfo::exists(result.path));
        EXPECT_EQ(result.image.size(), 0);
        EXPECT_THAT(result.progress, IsEmpty());
        EXPECT_THAT(result.order, ElementsAre("cardType", "readDone"));
    }
}

TEST_F(DownloadDriverTest, ASecondDownloadWithoutResetGoesOnWithoutTheChipsFiles)
{
    ASSERT_THAT(chain(download().failure), IsEmpty());
    const sim::Bytes firstStamp = contentOf(card(), 0x050E);
    // The master file's EFs cannot be selected from inside the application that stayed selected.
    const Download second = download();
    EXPECT_THAT(chain(second.failure), IsEmpty());
    sim::CardDescription withoutChipFiles = driverCard();
    for (sim::FileDescription& file : withoutChipFiles.masterFiles)
        std::fill(file.content.begin(), file.content.end(), std::uint8_t{0});
    for (sim::FileDescription& file : withoutChipFiles.applications.front().files) {
        if (file.fid == 0x050E)
            file.content = firstStamp; // of the first download
    }
    EXPECT_EQ(bytes(second.image), expectedDriverImage(withoutChipFiles));
}

TEST_F(DownloadDriverTest, OneReaderObjectDownloadsCardAfterCard)
{
    Host host;
    const Download first = host.download();
    EXPECT_THAT(chain(first.failure), IsEmpty());

    insert(driverCardWith([](sim::DriverParameters& parameters) { parameters.seed = 2; }));
    const Download second = host.download();
    EXPECT_THAT(chain(second.failure), IsEmpty());
    EXPECT_NE(first.card, second.card);
    EXPECT_NE(first.image, second.image);
    EXPECT_EQ(second.types.size(), 1u);
    EXPECT_EQ(second.holders.size(), 1u);
    EXPECT_EQ(second.progress, first.progress);

    // The first object is the host's; what it says goes on reaching those who listen to the reader.
    EXPECT_NE(first.card->getFilename(), second.card->getFilename());
}

TEST_F(DownloadDriverTest, AShorterSignatureIsKeptAsTheCardGaveIt)
{
    const struct
    {
        std::size_t length;
        const char* record;
    } rows[] = {{0, "0520010000"}, {100, "0520010064"}};
    for (const auto& row : rows) {
        insert(driverCard());
        card().failAt(15, sim::Fault::shortAnswer(row.length)); // the signature of EF_Identification
        const Download result = download();
        EXPECT_THAT(chain(result.failure), IsEmpty());
        EXPECT_EQ(result.image.size(), 26635 - 128 + static_cast<int>(row.length));
        EXPECT_TRUE(result.image.contains(QByteArray::fromHex(row.record)));
        EXPECT_NE(contentOf(card(), 0x050E), *sim::Card(driverCard()).file(sim::AidG1, 0x050E));
    }
}

TEST_F(DownloadDriverTest, SuccessIsAlso90E4)
{
    sim::Switches switches = card().switches();
    switches.successWord = 0x90E4;
    card().setSwitches(switches);
    const Download result = download();
    EXPECT_THAT(chain(result.failure), IsEmpty());
    EXPECT_EQ(bytes(result.image), expectedDriverImage(driverCard()));
}

TEST_F(DownloadDriverTest, DataWithAWarningIsAnError)
{
    sim::Switches switches = card().switches();
    switches.integrityErrors = {0x0504};
    card().setSwitches(switches);
    const Download result = download();
    EXPECT_THAT(
        chain(result.failure),
        ElementsAre(
            lib("ScDataTransfer failed", 0x6281), lib("ScReadFile Failed ", 0x6281),
            lib("readFrom() ScReadFile() Failed: ID 504", 0x6281), lib("Failed reading card data")));
    EXPECT_TRUE(DebugStream::contains("ScDataTransfer: Status: 6281"));
}

// The file.

TEST_F(DownloadDriverTest, AHolderWithAPathSeparatorWritesNothingAnywhere)
{
    insert(
        driverCardWith([](sim::DriverParameters& parameters) { parameters.surname = "../../etc/shadow"; }));
    const sim::Bytes unstamped = contentOf(card(), 0x050E);
    expectNothingSaved(download());
    EXPECT_EQ(contentOf(card(), 0x050E), unstamped);
}

TEST_F(DownloadDriverTest, AnUnknownRegionHasNoFileName)
{
    const sim::Bytes unstamped = contentOf(card(), 0x050E);
    expectNothingSaved(download(static_cast<scard::FilenameRegion>(3)));
    EXPECT_EQ(contentOf(card(), 0x050E), unstamped);
}

TEST_F(DownloadDriverTest, AnEmptyHolderStillGetsAFile)
{
    insert(driverCardWith(
        [](sim::DriverParameters& parameters) { parameters.driverIdentification = "DF000000123456"; }));
    sim::Bytes identification = contentOf(card(), 0x0520);
    std::fill_n(identification.begin() + 65, 72, std::uint8_t{0});
    card().setFile(sim::AidG1, 0x0520, identification);
    const Download result = download();
    EXPECT_THAT(chain(result.failure), IsEmpty());
    EXPECT_TRUE(result.path.endsWith("___DF000000123456.DDD")) << result.path.toStdString();
    EXPECT_THAT(result.holders, ElementsAre(", "));
}

/// Leaves so much of "/tmp/" free; in the program's own "/tmp/" only.
class FullDisk
{
  public:
    explicit FullDisk(qint64 bytesLeft) : m_filler("/tmp/filler")
    {
        struct statvfs disk = {};
        EXPECT_EQ(::statvfs("/tmp", &disk), 0);
        if (disk.f_blocks * disk.f_frsize > 128u << 20) {
            ADD_FAILURE() << "run with tests/support/own-tmp.sh";
            return;
        }
        EXPECT_TRUE(m_filler.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
        const QByteArray block(1 << 16, 'x');
        while (m_filler.write(block) > 0) {
        }
        EXPECT_TRUE(m_filler.resize(m_filler.size() - bytesLeft));
    }

    ~FullDisk() { m_filler.remove(); }

    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;

  private:
    QFile m_filler;
};

TEST_F(DownloadDriverTest, AFullDiskIsToldTheCardIsNotStampedAndTheFileStaysAsFarAsItGot)
{
    const struct
    {
        const char* where;
        qint64 bytesLeft;
        const char* failure;
    } rows[] = {
        {"at once", 0, "writeDatasetToFile() write failed: No space left on device"},
        {"inside the activities", 2 * 4096, "writeDatasetToFile() write failed: No space left on device"},
        {"inside the signature of the vehicles", 6 * 4096,
         "writeSignatureToFile() write failed: No space left on device"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.where);
        insert(driverCard());
        const sim::Bytes unstamped = contentOf(card(), 0x050E);
        {
            const FullDisk disk(row.bytesLeft);
            const Download result = download();
            EXPECT_THAT(
                chain(result.failure),
                ElementsAre(
                    lib("saveToFile() Failed"), lib(row.failure), lib("Failed at saving card data to file")));
            EXPECT_FALSE(result.card);
            EXPECT_EQ(contentOf(card(), 0x050E), unstamped);
        }
        const QStringList left = downloads();
        ASSERT_EQ(left.size(), 1);
        const sim::Bytes partial = bytes(fileContent(left.front()));
        EXPECT_EQ(partial.size(), static_cast<std::size_t>(row.bytesLeft));
        const sim::Bytes whole = expectedDriverImage(driverCard());
        EXPECT_TRUE(std::equal(partial.begin(), partial.end(), whole.begin()));
        removeDownloads();

        card().reset();
        EXPECT_EQ(bytes(download().image), whole);
        removeDownloads();
    }
}

} // namespace
