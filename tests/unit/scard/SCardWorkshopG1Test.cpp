#include "fixtures/CardOnImage.h"
#include "fixtures/ImageFailure.h"
#include "fixtures/RecordBytes.h"
#include "fixtures/WorkshopImage.h"
#include "QtPrinters.h"

#include <scard/SCardWorkshopG1.h>
#include <support/DebugStream.h>
#include <support/ErrorChain.h>

#include <gmock/gmock.h>

#include <QDateTime>
#include <QFile>
#include <QString>
#include <QStringList>

#include <cstring>
#include <optional>
#include <string>
#include <vector>

// Workshop cards of the first generation on images made by hand.

namespace {

using scard::SCardGeneric;
using scard::SCardWorkshopG1;
using test::Bytes;
using test::chain;
using test::Ef;
using test::Image;
using test::lastLogged;
using test::lastLoggedLabel;
using test::lib;
using test::libraryFailure;
using test::logged;
using test::loggedErrors;
using test::loggedLabels;
using test::missing;
using test::nameField;
using test::notAllowed;
using test::noValidData;
using test::petra;
using test::progressOf;
using test::saveToOpenFile;
using test::smallWorkshopImage;
using test::workshopApplication;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

using ImageWorkshop = test::CardOnImage<SCardWorkshopG1>;

// In reading order.
const test::Efs identificationEfs = {
    {0x0520, "520", "\nEF_Identification", "Error reading EF_Identification:"},
    {0x0501, "501", "\nEF_Application_Identification", "Error reading EF_Application_Identification:"},
};

const test::Efs optionalEfs = {
    {0xC100, "c100", "\nEF_Card_Certificate", "Error reading EF_Card_Certificate:"},
    {0xC108, "c108", "\nEF_CA_Certificate", "Error reading EF_CA_Certificate:"},
    {0x0509, "509", "\nEF_Card_Download", "Error reading EF_Card_Download:"},
};

const test::Efs dataEfs = {
    {0x050A, "50a", "\nEF_Calibration", "Error reading nEF_Calibration:"},
    {0x0502, "502", "\nEF_EventsData", "Error reading EF_EventsData:"},
    {0x0503, "503", "\nEF_FaultsData", "Error reading EF_FaultsData:"},
    {0x0504, "504", "\nEF_Driver_Activity_Data", "Error reading EF_Driver_Activity_Data:"},
    {0x0505, "505", "\nEF_Vehicles_Used", "Error reading EF_Vehicles_Used:"},
    {0x0506, "506", "\nEF_Places", "Error reading EF_Places:"},
    {0x0507, "507", "\nEF_Current_Usage", "Error reading EF_Current_Usage:"},
    {0x0508, "508", "\nEF_Control_Activity_Data", "Error reading EF_Control_Activity_Data:"},
    {0x0522, "522", "\nEF_Specific_Conditions", "Error reading m_EF_Specitifc_Conditions:"},
};

QStringList allLabels()
{
    return test::labelsOf({identificationEfs, optionalEfs, dataEfs});
}

const char applicationText[] =
    "calcDataToRead(): Error reading SCardWorkshop G1 EF_Application_Identification:";

const test::Chain noDataToReset{lib("updateLastCardDownload(): no valid data", 0)};

const char petrasFileName[] = "C_20240305_1407_P_Musterfrau_DW00000001234201.DDD";

std::vector<unsigned char> bytesOf(const scard::WorkshopCard_EF_Identification& identification)
{
    return test::recordBytes(identification);
}

/// What a card tells of its holder while it is read, each with what is known then.
QStringList toldWhileReading(SCardGeneric& card, test::Chain& failure)
{
    QStringList told;
    const QObject listener;
    QObject::connect(&card, &SCardGeneric::cardLanguage, &listener, [&](const QLocale& language) {
        told << QStringLiteral("language ") + QLocale::languageToString(language.language())
             << card.getFilename();
    });
    QObject::connect(&card, &SCardGeneric::cardHolderName, &listener, [&](const QString& name) {
        told << QStringLiteral("holder ") + name << lastLoggedLabel();
    });
    failure = chain(card.read());
    return told;
}

// read()

TEST(SCardWorkshopG1Read, ReadsEveryEfOfACompleteImageInItsOrder)
{
    ImageWorkshop card(smallWorkshopImage());
    test::DebugStream::clear();

    EXPECT_THAT(chain(card.read()), IsEmpty());

    EXPECT_EQ(loggedLabels(), allLabels());
    EXPECT_THAT(loggedLabels(), SizeIs(14));
    EXPECT_TRUE(test::DebugStream::contains(QStringLiteral("read Tachograph")));
    EXPECT_THAT(loggedErrors(), IsEmpty());
    EXPECT_EQ(bytesOf(card.getCardIdentification()), bytesOf(petra()));
    EXPECT_EQ(card.getCardHolderName(), QStringLiteral("Petra, Musterfrau"));
    EXPECT_EQ(card.getCalibrationCounters().total, 0x0102);
    EXPECT_EQ(card.getCalibrationCounters().sinceDownload, 7);
    EXPECT_THAT(card.getCalibrations(), IsEmpty());
    EXPECT_EQ(card.getFilename().toStdString(), petrasFileName);
    EXPECT_EQ(saveToOpenFile(card), notAllowed);
}

TEST(SCardWorkshopG1Read, TakesAnIdentifiedCard)
{
    const ImageWorkshop card(smallWorkshopImage());

    EXPECT_EQ(card.getCardType(), scard::SCardMeta::WorkshopCard);
    EXPECT_FALSE(card.is2ndGeneneration());
    EXPECT_FALSE(card.is2_2Generation());
    EXPECT_TRUE(card.isLoadedFromZubo());
    EXPECT_EQ(card.getFilename(), QStringLiteral("CARD_FILENAME_NOT_SET.DDD"));
}

TEST(SCardWorkshopG1Read, EachRegionNamesTheFile)
{
    const struct
    {
        unsigned int region;
        const char* expected;
    } rows[] = {
        {0, petrasFileName},
        {1, "D__DW000000012342403051407.C1B"},
        {2, "C_DW00000001234201_D_20240305_1407.TGD"},
        {3, ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.expected);
        ImageWorkshop card(smallWorkshopImage());
        card.setFilenameRegion(static_cast<scard::FilenameRegion>(row.region));

        EXPECT_THAT(chain(card.read()), IsEmpty());

        EXPECT_EQ(card.getFilename().toStdString(), row.expected);
    }
}

TEST(SCardWorkshopG1Read, TheFileNameCanBeMadeAgainForAnotherRegion)
{
    ImageWorkshop card(smallWorkshopImage());
    ASSERT_THAT(chain(card.read()), IsEmpty());

    card.setFilenameRegion(scard::RegionTGD);
    EXPECT_EQ(card.getFilename().toStdString(), petrasFileName);
    card.constructFilename();

    EXPECT_EQ(card.getFilename(), QStringLiteral("C_DW00000001234201_D_20240305_1407.TGD"));
}

TEST(SCardWorkshopG1Read, AFirstNameThatIsABlankKeepsItsPlaceInTheFileName)
{
    auto identification = petra();
    identification.holderFirstNames = nameField(1, "");
    ImageWorkshop card(smallWorkshopImage(identification));

    EXPECT_THAT(chain(card.read()), IsEmpty());

    EXPECT_EQ(card.getFilename(), QStringLiteral("C_20240305_1407_ _Musterfrau_DW00000001234201.DDD"));
}

TEST(SCardWorkshopG1Read, TellsLanguageAndHolderOnceTheFileNameIsMade)
{
    ImageWorkshop card(smallWorkshopImage());
    test::Chain failure;

    EXPECT_THAT(
        toldWhileReading(card, failure),
        ElementsAre(
            QStringLiteral("language German"), QString::fromLatin1(petrasFileName),
            QStringLiteral("holder Petra, Musterfrau"), QStringLiteral("\nEF_Identification")));
    EXPECT_THAT(failure, IsEmpty());
}

TEST(SCardWorkshopG1Read, TheHolderIsAnnouncedBeforeALaterEfFails)
{
    ImageWorkshop card(smallWorkshopImage().without(0x0522));
    test::Chain failure;

    EXPECT_THAT(toldWhileReading(card, failure), SizeIs(4));

    EXPECT_EQ(failure, chain(missing("522")));
    EXPECT_EQ(card.getFilename().toStdString(), petrasFileName);
    EXPECT_EQ(card.getCardHolderName(), QStringLiteral("Petra, Musterfrau"));
}

TEST(SCardWorkshopG1Read, WithoutIdentificationNobodyIsAnnounced)
{
    ImageWorkshop card(smallWorkshopImage().without(0x0520));
    test::Chain failure;

    EXPECT_THAT(toldWhileReading(card, failure), IsEmpty());

    EXPECT_EQ(failure, chain(missing("520")));
    EXPECT_EQ(card.getFilename(), QStringLiteral("CARD_FILENAME_NOT_SET.DDD"));
}

TEST(SCardWorkshopG1Read, TheLanguageMayBeWrittenInCapitals)
{
    auto identification = petra();
    std::memcpy(identification.cardHolderPreferredLanguage, "FI", 2);
    ImageWorkshop card(smallWorkshopImage(identification));
    test::Chain failure;

    const QStringList told = toldWhileReading(card, failure);

    ASSERT_THAT(told, SizeIs(4));
    EXPECT_EQ(told.front(), QStringLiteral("language Finnish"));
}

TEST(SCardWorkshopG1Read, TheHolderIsDecodedByItsCodePageAndTrimmed)
{
    const struct
    {
        const char* name;
        scard::Name firstNames;
        scard::Name surname;
        QString expected;
    } rows[] = {
        {"two code pages", nameField(2, "\xA3ukasz"), nameField(1, "M\xFCller"),
         QStringLiteral("\u0141ukasz, M\u00FCller")},
        {"blanks on both sides", nameField(1, "  Anna Maria "), nameField(1, " van der Berg"),
         QStringLiteral("Anna Maria, van der Berg")},
        {"no first names", nameField(1, ""), nameField(1, "Musterwerkstatt"),
         QStringLiteral(", Musterwerkstatt")},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        auto identification = petra();
        identification.holderFirstNames = row.firstNames;
        identification.holderSurname = row.surname;
        ImageWorkshop card(smallWorkshopImage(identification));
        QStringList told;
        QObject::connect(&card, &SCardGeneric::cardHolderName, [&](const QString& name) { told << name; });

        EXPECT_THAT(chain(card.read()), IsEmpty());

        EXPECT_EQ(card.getCardHolderName(), row.expected);
        EXPECT_THAT(told, ElementsAre(row.expected));
    }
}

TEST(SCardWorkshopG1Read, AnImageGoesOnWithoutAnOptionalEf)
{
    for (const Ef& ef : optionalEfs) {
        SCOPED_TRACE(ef.failureText);
        ImageWorkshop card(smallWorkshopImage().without(ef.fid));
        test::DebugStream::clear();

        EXPECT_THAT(chain(card.read()), IsEmpty());

        EXPECT_EQ(loggedLabels(), allLabels());
        EXPECT_THAT(loggedErrors(), ElementsAre(logged(ef.failureText, missing(ef.hexFid))));
        // The data are valid: only the missing card is held against it.
        EXPECT_EQ(saveToOpenFile(card), notAllowed);
    }
}

TEST(SCardWorkshopG1Read, AnImageWithoutCertificatesAndCountersIsReadToTheEnd)
{
    Image image = smallWorkshopImage().without(0x0002).without(0x0005);
    for (const Ef& ef : optionalEfs)
        image.without(ef.fid);
    ImageWorkshop card(image);
    test::DebugStream::clear();

    EXPECT_THAT(chain(card.read()), IsEmpty());

    EXPECT_EQ(loggedLabels(), allLabels());
    EXPECT_THAT(loggedErrors(), SizeIs(3));
    EXPECT_EQ(saveToOpenFile(card), notAllowed);
}

void expectFailureWithout(const Ef& ef)
{
    SCOPED_TRACE(ef.failureText);
    ImageWorkshop card(smallWorkshopImage().without(ef.fid));
    test::DebugStream::clear();

    EXPECT_EQ(chain(card.read()), chain(missing(ef.hexFid)));

    EXPECT_EQ(lastLoggedLabel(), QString::fromLatin1(ef.label));
    EXPECT_EQ(lastLogged(), logged(ef.failureText, missing(ef.hexFid)));
    test::DebugStream::clear();
    EXPECT_EQ(saveToOpenFile(card), noValidData);
    EXPECT_THAT(test::DebugStream::lines(), IsEmpty());
    EXPECT_EQ(chain(card.resetCalibrationsSinceDownload()), noDataToReset);
}

TEST(SCardWorkshopG1Read, AnImageFailsWithoutARequiredEf)
{
    for (const Ef& ef : identificationEfs)
        expectFailureWithout(ef);
    for (const Ef& ef : dataEfs)
        expectFailureWithout(ef);
}

TEST(SCardWorkshopG1Read, AnEfOneByteShortIsPassedWhenItIsOptionalAndFailsWhenNot)
{
    const struct
    {
        unsigned short fid;
        std::size_t length;
        std::size_t requested;
        bool required;
        const char* failureText;
    } rows[] = {
        {0x0520, 210, 211, true, "Error reading EF_Identification:"},
        {0x0501, 10, 11, true, "Error reading EF_Application_Identification:"},
        {0xC100, 193, 194, false, "Error reading EF_Card_Certificate:"},
        {0xC108, 193, 194, false, "Error reading EF_CA_Certificate:"},
        {0x0509, 1, 2, false, "Error reading EF_Card_Download:"},
        {0x050A, 1, 2, true, "Error reading nEF_Calibration:"},
        {0x050A, 2, 1, true, "Error reading nEF_Calibration:"},
        {0x050A, 212, 210, true, "Error reading nEF_Calibration:"},
        {0x0502, 287, 288, true, "Error reading EF_EventsData:"},
        {0x0503, 47, 48, true, "Error reading EF_FaultsData:"},
        {0x0504, 1, 2, true, "Error reading EF_Driver_Activity_Data:"},
        {0x0504, 3, 2, true, "Error reading EF_Driver_Activity_Data:"},
        {0x0504, 23, 20, true, "Error reading EF_Driver_Activity_Data:"},
        {0x0505, 1, 2, true, "Error reading EF_Vehicles_Used:"},
        {0x0505, 63, 62, true, "Error reading EF_Vehicles_Used:"},
        {0x0506, 30, 30, true, "Error reading EF_Places:"},
        {0x0507, 18, 19, true, "Error reading EF_Current_Usage:"},
        {0x0508, 45, 46, true, "Error reading EF_Control_Activity_Data:"},
        {0x0522, 9, 10, true, "Error reading m_EF_Specitifc_Conditions:"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.failureText + std::to_string(row.length));
        ImageWorkshop card(smallWorkshopImage().replace(row.fid, Bytes(row.length)));
        test::DebugStream::clear();
        const test::Chain expected = test::tooShort(row.length, row.requested);

        EXPECT_EQ(chain(card.read()), row.required ? expected : test::Chain{});

        EXPECT_THAT(
            loggedErrors(),
            ElementsAre(logged(row.failureText, libraryFailure({expected.front().message}, 6700))));
        EXPECT_EQ(saveToOpenFile(card), row.required ? noValidData : notAllowed);
    }
}

TEST(SCardWorkshopG1Read, ACardWithoutCalibrationsNeedsTheHeaderOfTheirEfOnly)
{
    const Bytes application = workshopApplication(2, 1, 20, 2, 3, 0);
    ImageWorkshop card(smallWorkshopImage().replace(0x0501, application).replace(0x050A, {0x12, 0x34, 0x00}));
    test::DebugStream::clear();

    EXPECT_THAT(chain(card.read()), IsEmpty());

    EXPECT_THAT(loggedErrors(), IsEmpty());
    EXPECT_EQ(card.getCalibrationCounters().total, 0x1234);
    EXPECT_THAT(card.getCalibrations(), IsEmpty());
}

TEST(SCardWorkshopG1Read, ACardWithoutAnyRecordsIsRead)
{
    ImageWorkshop card(smallWorkshopImage()
                           .replace(0x0501, workshopApplication(0, 0, 0, 0, 0, 0))
                           .replace(0x050A, Bytes(3))
                           .replace(0x0502, {})
                           .replace(0x0503, {})
                           .replace(0x0504, Bytes(4))
                           .replace(0x0505, Bytes(2))
                           .replace(0x0506, Bytes(1)));
    test::DebugStream::clear();

    EXPECT_THAT(chain(card.read()), IsEmpty());

    EXPECT_THAT(loggedErrors(), IsEmpty());
}

TEST(SCardWorkshopG1Read, TheHighestNumberOfCalibrationsIsUnsigned)
{
    Bytes calibrations(3 + std::size_t{255} * 105);
    test::put(calibrations, 3 + std::size_t{254} * 105 + 65, test::timeReal(1000));
    test::put(calibrations, 3 + std::size_t{254} * 105, {0x01});
    const Bytes application = workshopApplication(2, 1, 20, 2, 3, 255);
    ImageWorkshop card(smallWorkshopImage().replace(0x0501, application).replace(0x050A, calibrations));

    EXPECT_THAT(chain(card.read()), IsEmpty());

    EXPECT_THAT(card.getCalibrations(), SizeIs(1));
}

TEST(SCardWorkshopG1Read, TheOrderOfTheRecordsDoesNotMatter)
{
    Image image;
    image.add(0x0522, test::dataG1, Bytes(10)).add(0x0508, test::dataG1, Bytes(46));
    image.add(0x0507, test::dataG1, Bytes(19)).add(0x0506, test::dataG1, Bytes(31));
    image.add(0x0505, test::dataG1, Bytes(64)).add(0x0504, test::dataG1, Bytes(24));
    image.add(0x0503, test::dataG1, Bytes(48)).add(0xC209, 0x81, {1, 2, 3});
    image.add(0x0502, test::dataG1, Bytes(288)).add(0x050A, test::dataG1, Bytes(213));
    image.add(0x0501, test::dataG1, workshopApplication(2, 1, 20, 2, 3, 2));
    image.add(0x0520, test::dataG1, bytesOf(petra()));
    ImageWorkshop card(image);
    test::DebugStream::clear();

    EXPECT_THAT(chain(card.read()), IsEmpty());

    EXPECT_EQ(loggedLabels(), allLabels());
    EXPECT_EQ(card.getCardHolderName(), QStringLiteral("Petra, Musterfrau"));
}

TEST(SCardWorkshopG1Read, TakesTheFirstGenerationsDatasetsOfAnImageOfBoth)
{
    ImageWorkshop card(test::secondWorkshopApplication(test::Version::second).append(smallWorkshopImage()));
    ASSERT_TRUE(card.is2ndGeneneration());

    EXPECT_THAT(chain(card.read()), IsEmpty());

    EXPECT_EQ(card.getCardHolderName(), QStringLiteral("Petra, Musterfrau"));
    EXPECT_EQ(card.getCalibrationCounters().sinceDownload, 7);
}

TEST(SCardWorkshopG1Read, WithoutTheFirstGenerationTheSelectionFailsWithItsEntriesBehindTheStep)
{
    ImageWorkshop card(test::secondWorkshopApplication(test::Version::first));
    test::DebugStream::clear();

    EXPECT_THAT(
        chain(card.read()), ElementsAre(
                                lib("read() Select DF_Tachograph failed", 27266),
                                lib("memSelectFile(): Dataset not found", 27266)));
    EXPECT_THAT(loggedLabels(), IsEmpty());
    EXPECT_EQ(saveToOpenFile(card), noValidData);
}

TEST(SCardWorkshopG1Read, AnImageTooShortForARecordHasNoApplication)
{
    ImageWorkshop card{Image()};

    EXPECT_THAT(
        chain(card.read()), ElementsAre(
                                lib("read() Select DF_Tachograph failed", 27266),
                                lib("memSelectFile(): Not enough data", 27266)));
}

TEST(SCardWorkshopG1Read, CanBeDoneAgain)
{
    ImageWorkshop card(smallWorkshopImage());
    test::Chain failure;
    ASSERT_THAT(chain(card.read()), IsEmpty());
    test::DebugStream::clear();

    EXPECT_THAT(
        toldWhileReading(card, failure),
        ElementsAre(
            QStringLiteral("language German"), QString::fromLatin1(petrasFileName),
            QStringLiteral("holder Petra, Musterfrau"), QStringLiteral("\nEF_Identification")));

    EXPECT_THAT(failure, IsEmpty());
    EXPECT_EQ(loggedLabels(), allLabels());
    EXPECT_EQ(card.getCalibrationCounters().total, 0x0102);
    EXPECT_EQ(saveToOpenFile(card), notAllowed);
}

TEST(SCardWorkshopG1Read, CountsTheTwoFilesOfTheIdentification)
{
    ImageWorkshop card(smallWorkshopImage());
    ASSERT_THAT(chain(card.calcDataToRead()), IsEmpty());
    ASSERT_THAT(chain(card.read()), IsEmpty());

    // 730 + 144 × 2 + 48 + 20 + 31 × 2 + 10 × 3 + 105 × 2
    EXPECT_EQ(progressOf(card), QStringLiteral("=== Progress: 33 dataToRead: 1388%:2"));
}

// calcDataToRead()

TEST(SCardWorkshopG1DataToRead, AddsUpTheDownloadByTheCardsCounts)
{
    const struct
    {
        const char* name;
        Bytes application;
        const char* line;
    } rows[] = {
        {"no records", workshopApplication(0, 0, 0, 0, 0, 0), "=== Progress: 0 dataToRead: 730%:0"},
        {"small card", workshopApplication(2, 1, 20, 2, 3, 2), "=== Progress: 0 dataToRead: 1388%:0"},
        {"usual card", workshopApplication(3, 6, 492, 8, 8, 255), "=== Progress: 0 dataToRead: 29045%:0"},
        {"highest counts", workshopApplication(255, 255, 65535, 65535, 255, 255),
         "=== Progress: 0 dataToRead: 2176135%:0"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        ImageWorkshop card(smallWorkshopImage().replace(0x0501, row.application));

        EXPECT_THAT(chain(card.calcDataToRead()), IsEmpty());
        EXPECT_THAT(chain(card.calcDataToRead()), IsEmpty());

        EXPECT_EQ(progressOf(card).toStdString(), row.line);
    }
}

TEST(SCardWorkshopG1DataToRead, NeedsTheApplicationIdentification)
{
    const struct
    {
        const char* name;
        Image image;
        aux::Error lower;
    } rows[] = {
        {"missing", smallWorkshopImage().without(0x0501), missing("501")},
        {"one byte short", smallWorkshopImage().replace(0x0501, Bytes(10)),
         libraryFailure({"readFromMem() invalid dataset size:10requested:11"}, 6700)},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        ImageWorkshop card(row.image);
        test::DebugStream::clear();
        test::Chain expected = chain(row.lower);
        expected.insert(expected.begin(), lib(applicationText, expected.front().id));

        EXPECT_EQ(chain(card.calcDataToRead()), expected);

        EXPECT_THAT(test::DebugStream::lines(), ElementsAre(logged(applicationText, row.lower)));
        EXPECT_EQ(progressOf(card), QString());
    }
}

TEST(SCardWorkshopG1DataToRead, NeedsTheFirstApplication)
{
    ImageWorkshop card(test::secondWorkshopApplication(test::Version::first));
    test::DebugStream::clear();

    EXPECT_THAT(
        chain(card.calcDataToRead()),
        ElementsAre(lib(applicationText, 27266), lib("memSelectFile(): Dataset not found", 27266)));

    EXPECT_THAT(
        test::DebugStream::lines(),
        ElementsAre(logged(applicationText, libraryFailure({"memSelectFile(): Dataset not found"}, 27266))));
    EXPECT_EQ(progressOf(card), QString());
}

TEST(SCardWorkshopG1DataToRead, NeedsACardOrAnImage)
{
    SCardWorkshopG1 card;

    EXPECT_THAT(
        chain(card.calcDataToRead()),
        ElementsAre(lib(applicationText, 0), lib("ScSelectFile(): No valid scard connection", 0)));
    EXPECT_EQ(progressOf(card), QString());
}

TEST(SCardWorkshopG1DataToRead, DoesNotMakeTheDataValid)
{
    ImageWorkshop card(smallWorkshopImage());
    ASSERT_THAT(chain(card.calcDataToRead()), IsEmpty());

    EXPECT_EQ(saveToOpenFile(card), noValidData);
}

// postDownloadTasks() and the count since the last download

TEST(SCardWorkshopG1PostDownload, AnImageHasNothingToDo)
{
    ImageWorkshop unread(smallWorkshopImage());
    EXPECT_THAT(chain(unread.postDownloadTasks()), IsEmpty());

    ImageWorkshop read(smallWorkshopImage().without(0x0509));
    ASSERT_THAT(chain(read.read()), IsEmpty());
    EXPECT_THAT(chain(read.postDownloadTasks()), IsEmpty());

    ImageWorkshop secondOnly(test::secondWorkshopApplication(test::Version::first));
    EXPECT_THAT(chain(secondOnly.postDownloadTasks()), IsEmpty());
}

TEST(SCardWorkshopG1PostDownload, AnImageThatCouldNotBeLoadedIsNoImage)
{
    QFile nowhere;
    SCardWorkshopG1 card(SCardGeneric(nowhere, QDateTime(), scard::RegionDDD));
    ASSERT_TRUE(card.isLoadedFromZubo());

    EXPECT_THAT(
        chain(card.postDownloadTasks()), ElementsAre(
                                             lib("read() Select DF_Tachograph failed", 0),
                                             lib("ScSelectFile(): No valid scard connection", 0)));
}

TEST(SCardWorkshopG1PostDownload, WithoutAConnectionTheSelectionFailsWithItsEntriesBehindTheStep)
{
    SCardWorkshopG1 card;

    EXPECT_THAT(
        chain(card.postDownloadTasks()), ElementsAre(
                                             lib("read() Select DF_Tachograph failed", 0),
                                             lib("ScSelectFile(): No valid scard connection", 0)));
}

TEST(SCardWorkshopG1Reset, NeedsValidData)
{
    SCardWorkshopG1 blank;
    EXPECT_EQ(chain(blank.resetCalibrationsSinceDownload()), noDataToReset);

    ImageWorkshop unread(smallWorkshopImage());
    EXPECT_EQ(chain(unread.resetCalibrationsSinceDownload()), noDataToReset);
}

TEST(SCardWorkshopG1Reset, AFailedWriteStandsBehindTheStepUnderTheDriverCardsNumber)
{
    ImageWorkshop card(smallWorkshopImage().without(0x0509));
    ASSERT_THAT(chain(card.read()), IsEmpty());

    EXPECT_THAT(
        chain(card.resetCalibrationsSinceDownload()),
        ElementsAre(
            lib("updateLastCardDownload() writeTo() Failed: ID 50e", 0),
            lib("memSelectFile(): Dataset not found", 0), lib("writeTo() ScSelectFile() Failed: ID 509", 0)));
}

TEST(SCardWorkshopG1Reset, DoesNotChangeTheObjectsOwnCount)
{
    ImageWorkshop card(smallWorkshopImage());
    ASSERT_THAT(chain(card.read()), IsEmpty());

    EXPECT_THAT(chain(card.resetCalibrationsSinceDownload()), IsEmpty());

    EXPECT_EQ(card.getCalibrationCounters().sinceDownload, 7);
}

// Getters

TEST(SCardWorkshopG1Getters, ABlankObjectAnswersWithNothing)
{
    SCardWorkshopG1 card;

    EXPECT_EQ(bytesOf(card.getCardIdentification()), Bytes(211));
    EXPECT_EQ(card.getCardHolderName(), QStringLiteral(", "));
    EXPECT_EQ(card.getCalibrationCounters().total, std::nullopt);
    EXPECT_EQ(card.getCalibrationCounters().sinceDownload, std::nullopt);
    EXPECT_THAT(card.getCalibrations(), IsEmpty());
    EXPECT_EQ(card.getFilename(), QStringLiteral("CARD_FILENAME_NOT_SET.DDD"));
    EXPECT_EQ(card.getCardType(), scard::SCardMeta::Reserved);
    EXPECT_FALSE(card.isLoadedFromZubo());
}

TEST(SCardWorkshopG1Getters, ABlankObjectHasNothingToRead)
{
    SCardWorkshopG1 card;

    EXPECT_THAT(
        chain(card.read()), ElementsAre(
                                lib("read() Select DF_Tachograph failed", 0),
                                lib("ScSelectFile(): No valid scard connection", 0)));
}

} // namespace
