#include "fixtures/DriverImage.h"
#include "fixtures/ImageFailure.h"
#include "QtPrinters.h"

#include <scard/SCardDriverG1.h>
#include <support/DebugStream.h>
#include <support/ErrorChain.h>

#include <gmock/gmock.h>

#include <cstring>
#include <ctime>
#include <string>

// Driver cards of the first generation on images made by hand.

namespace {

using scard::RegionC1B;
using scard::RegionDDD;
using scard::RegionTGD;
using scard::SCardDriverG1;
using scard::SCardGeneric;
using test::chain;
using test::Ef;
using test::Image;
using test::ImageFile;
using test::lib;
using test::libraryFailure;
using test::logged;
using test::loggedLabels;
using test::missing;
using test::notAllowed;
using test::noValidData;
using test::saveToOpenFile;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

QDateTime moment()
{
    return QDateTime(QDate(2024, 3, 5), QTime(14, 7), Qt::UTC);
}

/// A driver card object on an image, made the way a host makes it.
class ImageDriver : public SCardDriverG1
{
  public:
    explicit ImageDriver(const Image& image) : ImageDriver(ImageFile(image)) {}

  private:
    explicit ImageDriver(ImageFile&& file) : SCardDriverG1(SCardGeneric(file, moment(), RegionDDD)) {}
};

const Ef requiredEfs[] = {
    {0x0520, "520", "\nEF_Identification", "Error reading EF_Identification:"},
    {0x0501, "501", "\nEF_Application_Identification", "Error reading EF_Application_Identification:"},
    {0x0502, "502", "\nEF_EventsData", "Error reading EF_EventsData:"},
    {0x0503, "503", "\nEF_FaultsData", "Error reading EF_FaultsData:"},
    {0x0504, "504", "\nEF_Driver_Activity_Data", "Error reading EF_Driver_Activity_Data:"},
    {0x0505, "505", "\nEF_Vehicles_Used", "Error reading EF_Vehicles_Used:"},
};

const Ef optionalEfs[] = {
    {0xC100, "c100", "\nEF_Card_Certificate", "Error reading EF_Card_Certificate:"},
    {0xC108, "c108", "\nEF_CA_Certificate", "Error reading EF_CA_Certificate:"},
    {0x050E, "50e", "\nEF_Card_Download", "Error reading EF_Card_Download:"},
    {0x0521, "521", "\nEF_Driving_License_Info", "Error reading EF_Driving_License_Info:"},
    {0x0506, "506", "\nEF_Places", "Error reading EF_Places:"},
    {0x0507, "507", "\nEF_Current_Usage", "Error reading EF_Current_Usage:"},
    {0x0508, "508", "\nEF_Control_Activity_Data", "Error reading EF_Control_Activity_Data:"},
    {0x0522, "522", "\nEF_Specific_Conditions", "Error reading m_EF_Specitifc_Conditions:"},
};

const QStringList labels = {
    QStringLiteral("\nEF_Identification"),
    QStringLiteral("\nEF_Application_Identification"),
    QStringLiteral("\nEF_Card_Certificate"),
    QStringLiteral("\nEF_CA_Certificate"),
    QStringLiteral("\nEF_Card_Download"),
    QStringLiteral("\nEF_Driving_License_Info"),
    QStringLiteral("\nEF_EventsData"),
    QStringLiteral("\nEF_FaultsData"),
    QStringLiteral("\nEF_Driver_Activity_Data"),
    QStringLiteral("\nEF_Vehicles_Used"),
    QStringLiteral("\nEF_Places"),
    QStringLiteral("\nEF_Current_Usage"),
    QStringLiteral("\nEF_Control_Activity_Data"),
    QStringLiteral("\nEF_Specific_Conditions"),
};

// read()

TEST(SCardDriverG1Read, ReadsACompleteImage)
{
    ImageDriver card(test::smallDriverImage());

    EXPECT_THAT(chain(card.read()), IsEmpty());

    const scard::DriverCard_EF_Identification identification = card.getCardIdentification();
    const scard::DriverCard_EF_Identification expected = test::johannes();
    EXPECT_EQ(std::memcmp(&identification, &expected, sizeof expected), 0);
    EXPECT_EQ(card.getCardHolderName(), QStringLiteral("Johannes, Mustermann"));
    EXPECT_EQ(card.getLastCardDownload().toSecsSinceEpoch(), 0x65E66080);
    EXPECT_EQ(card.getFilename(), QStringLiteral("C_20240305_1407_J_Mustermann_DF000000123456.DDD"));
    EXPECT_EQ(loggedLabels(), labels);
    EXPECT_THAT(test::DebugStream::lines().filter(QStringLiteral("Error")), IsEmpty());
}

TEST(SCardDriverG1Read, TakesAnIdentifiedCardWithItsTimestampAndRegion)
{
    ImageFile file(test::smallDriverImage());
    SCardGeneric generic(file, moment(), RegionC1B);
    ASSERT_THAT(chain(generic.readCardInfo()), IsEmpty());

    SCardDriverG1 card(generic);

    EXPECT_EQ(card.getCardType(), scard::SCardMeta::DriverCard);
    EXPECT_FALSE(card.is2ndGeneneration());
    EXPECT_TRUE(card.isLoadedFromZubo());
    EXPECT_EQ(card.getDownloadTimestamp(), moment());
    EXPECT_EQ(card.getFilename(), QStringLiteral("CARD_FILENAME_NOT_SET.DDD"));
    EXPECT_THAT(chain(card.read()), IsEmpty());
    EXPECT_EQ(card.getFilename(), QStringLiteral("D__DF0000001234562403051407.C1B"));
}

TEST(SCardDriverG1Read, EachRegionNamesTheFile)
{
    const struct
    {
        scard::FilenameRegion region;
        const char* expected;
    } rows[] = {
        {RegionDDD, "C_20240305_1407_J_Mustermann_DF000000123456.DDD"},
        {RegionC1B, "D__DF0000001234562403051407.C1B"},
        {RegionTGD, "C_DF00000012345601_D_20240305_1407.TGD"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.expected);
        ImageDriver card(test::smallDriverImage());
        card.setFilenameRegion(row.region);

        EXPECT_THAT(chain(card.read()), IsEmpty());

        EXPECT_EQ(card.getFilename().toStdString(), row.expected);
    }
}

TEST(SCardDriverG1Read, AnUnknownCountryLeavesItsPlaceEmpty)
{
    auto identification = test::johannes();
    identification.cardIssuingMemberState = 0x40;
    ImageDriver card(test::smallDriverImage(identification));
    card.setFilenameRegion(RegionC1B);

    EXPECT_THAT(chain(card.read()), IsEmpty());

    EXPECT_EQ(card.getFilename(), QStringLiteral("___DF0000001234562403051407.C1B"));
}

TEST(SCardDriverG1Read, TellsLanguageAndHolderOnceTheFileNameIsMade)
{
    ImageDriver card(test::smallDriverImage());
    QStringList told;
    QObject::connect(&card, &SCardGeneric::cardLanguage, [&](const QLocale& language) {
        told << QStringLiteral("language ") + QLocale::languageToString(language.language())
             << card.getFilename();
    });
    QObject::connect(&card, &SCardGeneric::cardHolderName, [&](const QString& name) {
        told << QStringLiteral("holder ") + name << loggedLabels().back();
    });

    EXPECT_THAT(chain(card.read()), IsEmpty());

    EXPECT_THAT(
        told, ElementsAre(
                  QStringLiteral("language German"),
                  QStringLiteral("C_20240305_1407_J_Mustermann_DF000000123456.DDD"),
                  QStringLiteral("holder Johannes, Mustermann"), QStringLiteral("\nEF_Identification")));
}

TEST(SCardDriverG1Read, TheLanguageMayBeWrittenInCapitals)
{
    auto identification = test::johannes();
    std::memcpy(identification.cardHolderPreferredLanguage, "FI", 2);
    ImageDriver card(test::smallDriverImage(identification));
    std::vector<QLocale> languages;
    QObject::connect(
        &card, &SCardGeneric::cardLanguage, [&](const QLocale& language) { languages.push_back(language); });

    EXPECT_THAT(chain(card.read()), IsEmpty());

    ASSERT_THAT(languages, SizeIs(1));
    EXPECT_EQ(languages.front().language(), QLocale::Finnish);
}

TEST(SCardDriverG1Read, TheHolderIsDecodedByItsCodePageAndTrimmed)
{
    const struct
    {
        const char* name;
        scard::Name firstNames;
        scard::Name surname;
        QString expected;
    } rows[] = {
        {"two code pages", test::nameField(2, "\xA3ukasz"), test::nameField(1, "M\xFCller"),
         QStringLiteral("\u0141ukasz, M\u00FCller")},
        {"blanks on both sides", test::nameField(1, "  Anna Maria "), test::nameField(1, " van der Berg"),
         QStringLiteral("Anna Maria, van der Berg")},
        {"field full to its end", test::nameField(1, std::string(35, 'x')),
         test::nameField(1, std::string(35, 'y')),
         QString(35, QLatin1Char('x')) + QStringLiteral(", ") + QString(35, QLatin1Char('y'))},
        {"no first names", test::nameField(1, ""), test::nameField(1, "Berg"), QStringLiteral(", Berg")},
        {"no names", test::nameField(0, ""), scard::Name{}, QStringLiteral(", ")},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        auto identification = test::johannes();
        identification.holderFirstNames = row.firstNames;
        identification.holderSurname = row.surname;
        ImageDriver card(test::smallDriverImage(identification));
        QStringList told;
        QObject::connect(&card, &SCardGeneric::cardHolderName, [&](const QString& name) { told << name; });

        EXPECT_THAT(chain(card.read()), IsEmpty());

        EXPECT_EQ(card.getCardHolderName(), row.expected);
        EXPECT_THAT(told, ElementsAre(row.expected));
    }
}

TEST(SCardDriverG1Read, AnImageGoesOnWithoutAnOptionalEf)
{
    for (const Ef& ef : optionalEfs) {
        SCOPED_TRACE(ef.failureText);
        test::DebugStream::clear();
        ImageDriver card(test::smallDriverImage().without(ef.fid));

        EXPECT_THAT(chain(card.read()), IsEmpty());

        EXPECT_EQ(loggedLabels(), labels);
        EXPECT_THAT(
            test::DebugStream::lines().filter(QStringLiteral("Error")),
            ElementsAre(logged(ef.failureText, missing(ef.hexFid))));
        // The data are valid: only the missing card is held against it.
        EXPECT_EQ(saveToOpenFile(card), notAllowed);
    }
}

TEST(SCardDriverG1Read, AnImageGoesOnWithoutAllOptionalEfs)
{
    Image image = test::smallDriverImage().without(0x0002).without(0x0005);
    for (const Ef& ef : optionalEfs)
        image.without(ef.fid);
    ImageDriver card(image);

    EXPECT_THAT(chain(card.read()), IsEmpty());

    EXPECT_EQ(test::DebugStream::lines().filter(QStringLiteral("Error")).size(), 8);
    EXPECT_EQ(card.getLastCardDownload().toSecsSinceEpoch(), 0);
}

TEST(SCardDriverG1Read, AShortOptionalEfIsPassedLikeAMissingOne)
{
    ImageDriver card(test::smallDriverImage().replace(0x0506, test::Bytes(30)));

    EXPECT_THAT(chain(card.read()), IsEmpty());

    EXPECT_THAT(
        test::DebugStream::lines().filter(QStringLiteral("Error")),
        ElementsAre(logged(
            "Error reading EF_Places:",
            libraryFailure({"readFromMem() invalid dataset size:30requested:30"}, 6700))));
}

TEST(SCardDriverG1Read, AnImageFailsWithoutARequiredEf)
{
    for (const Ef& ef : requiredEfs) {
        SCOPED_TRACE(ef.failureText);
        test::DebugStream::clear();
        ImageDriver card(test::smallDriverImage().without(ef.fid));

        EXPECT_EQ(chain(card.read()), chain(missing(ef.hexFid)));

        EXPECT_EQ(loggedLabels().back(), QString::fromLatin1(ef.label));
        EXPECT_EQ(test::DebugStream::lines().back(), logged(ef.failureText, missing(ef.hexFid)));
        EXPECT_EQ(saveToOpenFile(card), noValidData);
    }
}

TEST(SCardDriverG1Read, ARequiredEfThatIsOneByteShortFails)
{
    const struct
    {
        const char* name;
        unsigned short fid;
        std::size_t length;
        const char* text;
    } rows[] = {
        {"identification", 0x0520, 142, "readFromMem() invalid dataset size:142requested:143"},
        {"application identification", 0x0501, 9, "readFromMem() invalid dataset size:9requested:10"},
        {"events", 0x0502, 287, "readFromMem() invalid dataset size:287requested:288"},
        {"faults", 0x0503, 47, "readFromMem() invalid dataset size:47requested:48"},
        {"activities", 0x0504, 23, "readFromMem() invalid dataset size:23requested:20"},
        {"activities, newest pointer", 0x0504, 3, "readFromMem() invalid dataset size:3requested:2"},
        {"activities, oldest pointer", 0x0504, 1, "readFromMem() invalid dataset size:1requested:2"},
        {"vehicles", 0x0505, 63, "readFromMem() invalid dataset size:63requested:62"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        ImageDriver card(test::smallDriverImage().replace(row.fid, test::Bytes(row.length)));
        EXPECT_THAT(chain(card.read()), ElementsAre(lib(row.text, 6700)));
    }
}

TEST(SCardDriverG1Read, WithoutIdentificationNobodyIsAnnounced)
{
    ImageDriver card(test::smallDriverImage().without(0x0520));
    int told = 0;
    QObject::connect(&card, &SCardGeneric::cardLanguage, [&] { ++told; });
    QObject::connect(&card, &SCardGeneric::cardHolderName, [&] { ++told; });

    EXPECT_FALSE(card.read().isEmpty());

    EXPECT_EQ(told, 0);
    EXPECT_EQ(card.getFilename(), QStringLiteral("CARD_FILENAME_NOT_SET.DDD"));
}

TEST(SCardDriverG1Read, TheHolderIsAnnouncedBeforeALaterEfFails)
{
    ImageDriver card(test::smallDriverImage().without(0x0501));
    QStringList told;
    QObject::connect(&card, &SCardGeneric::cardHolderName, [&](const QString& name) { told << name; });

    EXPECT_FALSE(card.read().isEmpty());

    EXPECT_THAT(told, ElementsAre(QStringLiteral("Johannes, Mustermann")));
    EXPECT_EQ(card.getFilename(), QStringLiteral("C_20240305_1407_J_Mustermann_DF000000123456.DDD"));
}

TEST(SCardDriverG1Read, TheOrderOfTheRecordsDoesNotMatter)
{
    Image image;
    image.add(0x0522, test::dataG1, test::Bytes(280)).add(0x0505, test::dataG1, test::Bytes(64));
    image.add(0x0504, test::dataG1, test::Bytes(24)).add(0x0503, test::dataG1, test::Bytes(48));
    image.add(0xC209, 0x81, {1, 2, 3}).add(0x0502, test::dataG1, test::Bytes(288));
    image.add(0x0501, test::dataG1, test::driverApplication(2, 1, 20, 2, 3));
    image.add(0x0520, test::dataG1, test::recordBytes(test::johannes()));
    ImageDriver card(image);

    EXPECT_THAT(chain(card.read()), IsEmpty());

    EXPECT_EQ(card.getCardHolderName(), QStringLiteral("Johannes, Mustermann"));
}

TEST(SCardDriverG1Read, ACardWithoutVehicleRecordsNeedsTheirPointerOnly)
{
    ImageDriver card(test::smallDriverImage()
                         .replace(0x0501, test::driverApplication(0, 0, 0, 0, 0))
                         .replace(0x0502, {})
                         .replace(0x0503, {})
                         .replace(0x0504, test::Bytes(4))
                         .replace(0x0505, test::Bytes(2))
                         .replace(0x0506, test::Bytes(1)));

    EXPECT_THAT(chain(card.read()), IsEmpty());

    EXPECT_THAT(test::DebugStream::lines().filter(QStringLiteral("Error")), IsEmpty());
}

TEST(SCardDriverG1Read, TakesTheFirstGenerationsDatasetsOfAnImageOfBoth)
{
    auto other = test::johannes();
    other.holderSurname = test::nameField(1, "Elsewhere");
    Image image;
    image.add(0x0520, test::dataG2, test::recordBytes(other)).add(0x0501, test::dataG2, test::Bytes(17));
    const test::Bytes firstGeneration = test::smallDriverImage().bytes();
    test::Bytes bytes = image.bytes();
    bytes.insert(bytes.end(), firstGeneration.begin(), firstGeneration.end());
    ImageFile file(bytes);
    SCardGeneric generic(file, moment(), RegionDDD);
    ASSERT_THAT(chain(generic.ScSelectFile("\xFFSMRDT")), IsEmpty());

    SCardDriverG1 card(generic);

    EXPECT_THAT(chain(card.read()), IsEmpty());
    EXPECT_EQ(card.getCardHolderName(), QStringLiteral("Johannes, Mustermann"));
}

TEST(SCardDriverG1Read, CanBeDoneAgain)
{
    ImageDriver card(test::smallDriverImage());
    ASSERT_THAT(chain(card.read()), IsEmpty());
    QStringList told;
    QObject::connect(&card, &SCardGeneric::cardHolderName, [&](const QString& name) { told << name; });

    EXPECT_THAT(chain(card.read()), IsEmpty());

    EXPECT_THAT(told, ElementsAre(QStringLiteral("Johannes, Mustermann")));
}

TEST(SCardDriverG1Read, WithoutTheFirstGenerationTheSelectionFailsWithItsEntriesBehindTheStep)
{
    ImageDriver card(Image().add(0x0501, test::dataG2, {1, 1, 1}));

    EXPECT_THAT(
        chain(card.read()), ElementsAre(
                                lib("read() Select DF_Tachograph failed", 27266),
                                lib("memSelectFile(): Dataset not found", 27266)));
}

// calcDataToRead()

TEST(SCardDriverG1DataToRead, AddsUpTheDownloadByTheCardsCounts)
{
    const struct
    {
        const char* name;
        test::Bytes application;
        const char* line;
    } rows[] = {
        {"usual card", test::driverApplication(12, 24, 13776, 304, 112),
         "=== Progress: 0 dataToRead: 28183%:0"},
        {"no records", test::driverApplication(0, 0, 0, 0, 0), "=== Progress: 0 dataToRead: 983%:0"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        test::DebugStream::clear();
        ImageDriver card(test::smallDriverImage().replace(0x0501, row.application));

        EXPECT_THAT(chain(card.calcDataToRead()), IsEmpty());
        EXPECT_THAT(chain(card.calcDataToRead()), IsEmpty());

        card.emitProgress();
        EXPECT_THAT(test::DebugStream::lines(), ElementsAre(QString::fromLatin1(row.line)));
    }
}

TEST(SCardDriverG1DataToRead, WithoutTheFirstGenerationNothingIsAdded)
{
    ImageDriver card(Image().add(0x0501, test::dataG2, {1, 1, 1}));

    EXPECT_THAT(chain(card.calcDataToRead()), IsEmpty());

    card.emitProgress();
    EXPECT_THAT(test::DebugStream::lines(), IsEmpty());
}

TEST(SCardDriverG1DataToRead, WithoutAConnectionNothingIsAdded)
{
    SCardDriverG1 card;

    EXPECT_THAT(chain(card.calcDataToRead()), IsEmpty());

    card.emitProgress();
    EXPECT_THAT(test::DebugStream::lines(), IsEmpty());
}

TEST(SCardDriverG1DataToRead, NeedsTheApplicationIdentification)
{
    const char* text = "calcDataToRead(): Error reading SCardDriver G1 EF_Application_Identification:";
    const struct
    {
        const char* name;
        Image image;
        aux::Error lower;
    } rows[] = {
        {"missing", test::smallDriverImage().without(0x0501), missing("501")},
        {"one byte short", test::smallDriverImage().replace(0x0501, test::Bytes(9)),
         libraryFailure({"readFromMem() invalid dataset size:9requested:10"}, 6700)},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        test::DebugStream::clear();
        ImageDriver card(row.image);

        test::Chain expected = chain(row.lower);
        expected.push_back(lib(text, expected.front().id));
        EXPECT_EQ(chain(card.calcDataToRead()), expected);

        EXPECT_THAT(test::DebugStream::lines(), ElementsAre(logged(text, row.lower)));
        test::DebugStream::clear();
        card.emitProgress();
        EXPECT_THAT(test::DebugStream::lines(), IsEmpty());
    }
}

// saveToFile()

TEST(SCardDriverG1Save, AClosedFileIsRefusedFirst)
{
    ImageDriver card(test::smallDriverImage());

    EXPECT_EQ(test::saveToClosedFile(card), test::notOpened);
    EXPECT_THAT(test::DebugStream::lines(), IsEmpty());
    ASSERT_THAT(chain(card.read()), IsEmpty());
    EXPECT_EQ(test::saveToClosedFile(card), test::notOpened);
}

TEST(SCardDriverG1Save, DataThatAreNotValidAreRefusedNext)
{
    ImageDriver onImage(test::smallDriverImage());
    EXPECT_EQ(saveToOpenFile(onImage), noValidData);
    EXPECT_THAT(test::DebugStream::lines(), ElementsAre(QStringLiteral("Save failed g1: false true")));

    test::DebugStream::clear();
    SCardDriverG1 onNothing;
    EXPECT_EQ(saveToOpenFile(onNothing), noValidData);
    EXPECT_THAT(test::DebugStream::lines(), ElementsAre(QStringLiteral("Save failed g1: false false")));
}

TEST(SCardDriverG1Save, DataOfAnImageAreRefusedAndNothingIsWritten)
{
    ImageDriver card(test::smallDriverImage());
    ASSERT_THAT(chain(card.read()), IsEmpty());
    test::DebugStream::clear();

    EXPECT_EQ(saveToOpenFile(card), notAllowed);

    EXPECT_THAT(test::DebugStream::lines(), IsEmpty());
}

// postDownloadTasks() and the download stamp

TEST(SCardDriverG1PostDownload, AnImageHasNothingToDo)
{
    ImageDriver unread(test::smallDriverImage());
    EXPECT_THAT(chain(unread.postDownloadTasks()), IsEmpty());

    ImageDriver read(test::smallDriverImage().without(0x050E));
    ASSERT_THAT(chain(read.read()), IsEmpty());
    EXPECT_THAT(chain(read.postDownloadTasks()), IsEmpty());
}

TEST(SCardDriverG1PostDownload, AnImageOfTheSecondGenerationOnlyHasNothingToDo)
{
    ImageDriver card(Image().add(0x0501, test::dataG2, {1, 1, 1}));

    EXPECT_THAT(chain(card.postDownloadTasks()), IsEmpty());
}

TEST(SCardDriverG1PostDownload, AnImageThatCouldNotBeLoadedIsNoImage)
{
    QFile missing;
    SCardDriverG1 card(scard::SCardGeneric(missing, QDateTime(), scard::RegionDDD));
    ASSERT_TRUE(card.isLoadedFromZubo());

    EXPECT_THAT(
        chain(card.postDownloadTasks()), ElementsAre(
                                             lib("read() Select DF_Tachograph failed", 0),
                                             lib("ScSelectFile(): No valid scard connection", 0)));
}

TEST(SCardDriverG1PostDownload, WithoutAConnectionTheSelectionFailsWithItsEntriesBehindTheStep)
{
    SCardDriverG1 card;

    EXPECT_THAT(
        chain(card.postDownloadTasks()), ElementsAre(
                                             lib("read() Select DF_Tachograph failed", 0),
                                             lib("ScSelectFile(): No valid scard connection", 0)));
}

TEST(SCardDriverG1Stamp, NeedsValidData)
{
    SCardDriverG1 blank;
    EXPECT_THAT(
        chain(blank.updateLastCardDownload()),
        ElementsAre(lib("updateLastCardDownload(): no valid data", 0)));

    ImageDriver failed(test::smallDriverImage().without(0x0505));
    ASSERT_FALSE(failed.read().isEmpty());
    EXPECT_THAT(
        chain(failed.updateLastCardDownload()),
        ElementsAre(lib("updateLastCardDownload(): no valid data", 0)));
}

TEST(SCardDriverG1Stamp, AFailedWriteStandsBehindTheStep)
{
    ImageDriver card(test::smallDriverImage().without(0x050E));
    ASSERT_THAT(chain(card.read()), IsEmpty());

    EXPECT_THAT(
        chain(card.updateLastCardDownload()),
        ElementsAre(
            lib("updateLastCardDownload() writeTo() Failed: ID 50e", 0),
            lib("memSelectFile(): Dataset not found", 0), lib("writeTo() ScSelectFile() Failed: ID 50e", 0)));
}

TEST(SCardDriverG1Stamp, DoesNotChangeTheObjectsOwnTime)
{
    ImageDriver card(test::smallDriverImage(test::johannes(), 1000000000));
    ASSERT_THAT(chain(card.read()), IsEmpty());

    EXPECT_THAT(chain(card.updateLastCardDownload()), IsEmpty());

    EXPECT_EQ(card.getLastCardDownload().toSecsSinceEpoch(), 1000000000);
}

// Getters

TEST(SCardDriverG1Getters, ABlankObjectAnswersWithNothing)
{
    SCardDriverG1 card;

    const scard::DriverCard_EF_Identification identification = card.getCardIdentification();
    EXPECT_EQ(std::memcmp(&identification, test::Bytes(143).data(), 143), 0);
    EXPECT_EQ(card.getCardHolderName(), QStringLiteral(", "));
    EXPECT_EQ(card.getLastCardDownload().toSecsSinceEpoch(), 0);
    EXPECT_EQ(card.getFilename(), QStringLiteral("CARD_FILENAME_NOT_SET.DDD"));
    EXPECT_EQ(card.getCardType(), scard::SCardMeta::Reserved);
    EXPECT_FALSE(card.isLoadedFromZubo());
    unsigned int serial = 0;
    EXPECT_FALSE(card.getCardSerial(serial).isEmpty());
}

TEST(SCardDriverG1Getters, ABlankObjectHasNothingToRead)
{
    SCardDriverG1 card;

    EXPECT_THAT(
        chain(card.read()), ElementsAre(
                                lib("read() Select DF_Tachograph failed", 0),
                                lib("ScSelectFile(): No valid scard connection", 0)));
}

TEST(SCardDriverG1Getters, TheLastDownloadIsInLocalTime)
{
    // Both sides of the changes to and from summer time in Europe and America, 2024.
    for (const unsigned int seconds :
         {0U, 1U, 1709596800U, 1710053999U, 1710054000U, 1711846799U, 1711846800U, 1730000000U, 1729990799U,
          1729990800U, 1730613599U, 1730613600U, 2147483647U}) {
        SCOPED_TRACE(seconds);
        ImageDriver card(test::smallDriverImage(test::johannes(), seconds));
        ASSERT_THAT(chain(card.read()), IsEmpty());

        const QDateTime time = card.getLastCardDownload();

        const auto systemTime = static_cast<std::time_t>(seconds);
        std::tm local{};
        ASSERT_NE(::localtime_r(&systemTime, &local), nullptr);
        EXPECT_EQ(time.timeSpec(), Qt::LocalTime);
        EXPECT_EQ(time.toSecsSinceEpoch(), seconds);
        EXPECT_EQ(time.date(), QDate(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday));
        EXPECT_EQ(time.time(), QTime(local.tm_hour, local.tm_min, local.tm_sec));
    }
}

TEST(SCardDriverG1Getters, TheLastDownloadIsAnUnsignedNumber)
{
    for (const unsigned int seconds : {0x80000000U, 0xFFFFFFFFU}) {
        SCOPED_TRACE(seconds);
        ImageDriver card(test::smallDriverImage(test::johannes(), seconds));
        ASSERT_THAT(chain(card.read()), IsEmpty());

        EXPECT_EQ(card.getLastCardDownload().toSecsSinceEpoch(), qint64{seconds});
        EXPECT_EQ(card.getLastCardDownload().timeSpec(), Qt::LocalTime);
    }
}

} // namespace
