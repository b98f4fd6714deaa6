#include "fixtures/CardOnImage.h"
#include "fixtures/DriverImageG2.h"
#include "fixtures/ImageFailure.h"
#include "fixtures/RecordBytes.h"
#include "fixtures/WorkshopImage.h"
#include "QtPrinters.h"

#include <scard/SCardDriverG2.h>
#include <scard/SCardWorkshopG2.h>
#include <support/DebugStream.h>
#include <support/ErrorChain.h>

#include <gmock/gmock.h>

#include <QDateTime>
#include <QFile>
#include <QString>
#include <QStringList>

#include <optional>
#include <string>
#include <vector>

// Workshop cards of the second generation on images made by hand.

namespace {

using scard::SCardGeneric;
using scard::SCardWorkshopG1;
using scard::SCardWorkshopG2;
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
using test::notAllowed;
using test::noValidData;
using test::progressOf;
using test::saveToOpenFile;
using test::secondWorkshopApplication;
using test::smallWorkshopImage;
using test::smallWorkshopImageG2;
using test::Version;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

using ImageWorkshop = test::CardOnImage<SCardWorkshopG2>;

// Of both applications, in reading order.
const test::Efs identificationEfs = {
    {0x0520, "520", "\nEF_Identification", "Error reading EF_Identification:"},
    {0x0501, "501", "\nEF_Application_Identification", "Error reading EF_Application_Identification:"},
};

// Of the first application.
const test::Efs otherEfsOfFirst = {
    {0xC100, "c100", "\nEF_Card_Certificate", "Error reading EF_Card_Certificate:"},
    {0xC108, "c108", "\nEF_CA_Certificate", "Error reading EF_CA_Certificate:"},
    {0x0509, "509", "\nEF_Card_Download", "Error reading EF_Card_Download:"},
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

// Of the second application.
const test::Efs optionalEfs = {
    {0xC100, "c100", "\nEF_MA_Certificate", "Error reading EF_MA_Certificate:"},
    {0xC101, "c101", "\nEF_Card_Sign_Certificate", "Error reading EF_Card_Sign_Certificate:"},
    {0xC108, "c108", "\nEF_CA_Certificate", "Error reading EF_CA_Certificate:"},
    {0xC109, "c109", "\nEF_Link_Certificate", "Error reading EF_Link_Certificate:"},
    {0x0509, "509", "\nEF_Card_Download", "Error reading EF_Card_Download:"},
};

const test::Efs dataEfs = {
    {0x050A, "50a", "\nEF_Calibration", "Error reading EF_Calibration:"},
    {0x0502, "502", "\nEF_EventsData", "Error reading EF_EventsData:"},
    {0x0503, "503", "\nEF_FaultsData", "Error reading EF_FaultsData:"},
    {0x0504, "504", "\nEF_Driver_Activity_Data", "Error reading EF_Driver_Activity_Data:"},
    {0x0505, "505", "\nEF_Vehicles_Used", "Error reading EF_Vehicles_Used:"},
    {0x0506, "506", "\nEF_Places", "Error reading EF_Places:"},
    {0x0507, "507", "\nEF_Current_Usage", "Error reading EF_Current_Usage:"},
    {0x0508, "508", "\nEF_Control_Activity_Data", "Error reading EF_Control_Activity_Data:"},
    {0x0523, "523", "\nEF_Vehicle_Units_Used", "Error reading m_EF_Vehicle_Units_Used:"},
    {0x0524, "524", "\nEF_GNSS_Places", "Error reading m_EF_GNSS_Places:"},
    {0x0522, "522", "\nEF_Specific_Conditions", "Error reading m_EF_Specitifc_Conditions:"},
};

const Ef requiredEfOfVersion2{
    0x0525, "525", "\nEF_Application_Identification_V2", "Error reading EF_Application_Identification_V2:"};

const test::Efs optionalEfsOfVersion2 = {
    {0x0526, "526", "\nEF_Places_Authentication", "Error reading EF_Places_Authentication:"},
    {0x0527, "527", "\nEF_GNSS_Places_Authentication", "Error reading EF_GNSS_Places_Authentication:"},
    {0x0528, "528", "\nEF_Border_Crossing", "Error reading EF_Border_Crossing:"},
    {0x0529, "529", "\nEF_Load_Unload_Operations", "Error reading EF_Load_Unload_Operations:"},
    {0x0530, "530", "\nEF_Load_Type_Entries", "Error reading EF_Load_Type_Entries:"},
    {0x0531, "531", "\nEF_Calibration_Add_Data", "Error reading EF_Calibration_Add_Data:"},
};

QStringList labelsOfFirst()
{
    return test::labelsOf({identificationEfs, otherEfsOfFirst});
}

QStringList labelsOfSecond(Version version)
{
    QStringList labels = test::labelsOf({identificationEfs, optionalEfs, dataEfs});
    if (version == Version::second)
        labels += test::labelsOf({{requiredEfOfVersion2}, optionalEfsOfVersion2});
    return labels;
}

QStringList allLabels(Version version)
{
    return labelsOfFirst() + labelsOfSecond(version);
}

const char applicationText[] =
    "calcDataToRead(): Error reading SCardWorkshop G2 EF_Application_Identification:";
const char applicationV2Text[] =
    "calcDataToRead(): Error reading SCardWorkshop G2 EF_Application_Identification_V2:";
const char applicationG1Text[] =
    "calcDataToRead(): Error reading SCardWorkshop G1 EF_Application_Identification:";
const char firstFailedText[] = "calcDataToRead() failed to call SCardWorkshopG1::calcDataToRead()";

/// The first application and a changed second one.
Image withSecond(const Image& second)
{
    return smallWorkshopImage().append(second);
}

Bytes bytesOf(const scard::WorkshopCard_EF_Identification& identification)
{
    return test::recordBytes(identification);
}

// read()

TEST(SCardWorkshopG2Read, ReadsEveryEfOfBothApplicationsInTheirOrder)
{
    const struct
    {
        Version version;
        std::size_t efs;
    } rows[] = {{Version::first, 14 + 18}, {Version::second, 14 + 25}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.efs);
        ImageWorkshop card(smallWorkshopImageG2(row.version));
        test::DebugStream::clear();

        EXPECT_THAT(chain(card.read()), IsEmpty());

        EXPECT_THAT(loggedLabels(), SizeIs(row.efs));
        EXPECT_EQ(loggedLabels(), allLabels(row.version));
        EXPECT_EQ(test::DebugStream::lines().count(QStringLiteral("read Tachograph")), 2);
        EXPECT_THAT(loggedErrors(), IsEmpty());
        EXPECT_EQ(saveToOpenFile(card), notAllowed);
    }
}

TEST(SCardWorkshopG2Read, TakesAnIdentifiedCard)
{
    const ImageWorkshop first(smallWorkshopImageG2(Version::first));
    EXPECT_EQ(first.getCardType(), scard::SCardMeta::WorkshopCard);
    EXPECT_TRUE(first.is2ndGeneneration());
    EXPECT_FALSE(first.is2_2Generation());
    EXPECT_TRUE(first.isLoadedFromZubo());

    const ImageWorkshop second(smallWorkshopImageG2(Version::second));
    EXPECT_TRUE(second.is2ndGeneneration());
    EXPECT_TRUE(second.is2_2Generation());
}

TEST(SCardWorkshopG2Read, EachApplicationAnswersForItself)
{
    ImageWorkshop card(smallWorkshopImageG2(Version::second));
    ASSERT_THAT(chain(card.read()), IsEmpty());

    EXPECT_EQ(bytesOf(card.getCardIdentification()), bytesOf(test::petra()));
    EXPECT_EQ(bytesOf(card.getCardIdentificationG2()), bytesOf(test::pierre()));
    EXPECT_EQ(card.getCardHolderName(), QStringLiteral("Petra, Musterfrau"));
    EXPECT_EQ(card.getCalibrationCounters().total, 0x0102);
    EXPECT_EQ(card.getCalibrationCounters().sinceDownload, 7);
    EXPECT_EQ(card.getCalibrationCountersG2().total, 0x0304);
    EXPECT_EQ(card.getCalibrationCountersG2().sinceDownload, 9);
}

TEST(SCardWorkshopG2Read, HolderLanguageAndFileNameAreThoseOfTheFirstApplication)
{
    ImageWorkshop card(smallWorkshopImageG2(Version::second));
    QStringList told;
    QObject::connect(&card, &SCardGeneric::cardLanguage, [&](const QLocale& language) {
        told << QLocale::languageToString(language.language()) << card.getFilename();
    });
    QObject::connect(&card, &SCardGeneric::cardHolderName, [&](const QString& name) {
        told << name << QString::number(loggedLabels().size());
    });
    test::DebugStream::clear();

    EXPECT_THAT(chain(card.read()), IsEmpty());

    ASSERT_THAT(
        told,
        ElementsAre(
            QStringLiteral("German"), QStringLiteral("C_20240305_1407_P_Musterfrau_DW00000001234201.DDD"),
            QStringLiteral("Petra, Musterfrau"), QStringLiteral("1")));
    EXPECT_EQ(card.getFilename(), told.at(1));
}

TEST(SCardWorkshopG2Read, TheFileNameIsBuiltAsForTheFirstGeneration)
{
    const struct
    {
        scard::FilenameRegion region;
        const char* expected;
    } rows[] = {
        {scard::RegionC1B, "D__DW000000012342403051407.C1B"},
        {scard::RegionTGD, "C_DW00000001234201_D_20240305_1407.TGD"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.expected);
        ImageWorkshop card(smallWorkshopImageG2(Version::first));
        card.setFilenameRegion(row.region);

        EXPECT_THAT(chain(card.read()), IsEmpty());

        EXPECT_EQ(card.getFilename().toStdString(), row.expected);
    }
}

TEST(SCardWorkshopG2Read, TheFilesOfVersion2AreReadOnCardsOfThatVersionOnly)
{
    Image second = secondWorkshopApplication(Version::second);
    ImageWorkshop card(withSecond(second.replace(0x0501, test::workshopApplicationG2(Version::first))));
    test::DebugStream::clear();

    EXPECT_THAT(chain(card.read()), IsEmpty());

    EXPECT_EQ(loggedLabels(), allLabels(Version::first));
    EXPECT_THAT(card.getCalibrationAddData(), IsEmpty());
}

TEST(SCardWorkshopG2Read, TheOrderOfTheRecordsDoesNotMatter)
{
    ImageWorkshop card(secondWorkshopApplication(Version::second).append(smallWorkshopImage()));
    test::DebugStream::clear();

    EXPECT_THAT(chain(card.read()), IsEmpty());

    EXPECT_EQ(loggedLabels(), allLabels(Version::second));
    EXPECT_THAT(loggedErrors(), IsEmpty());
    EXPECT_EQ(bytesOf(card.getCardIdentification()), bytesOf(test::petra()));
    EXPECT_EQ(bytesOf(card.getCardIdentificationG2()), bytesOf(test::pierre()));
}

TEST(SCardWorkshopG2Read, CanBeDoneAgain)
{
    ImageWorkshop card(smallWorkshopImageG2(Version::second));
    ASSERT_THAT(chain(card.read()), IsEmpty());
    test::DebugStream::clear();

    EXPECT_THAT(chain(card.read()), IsEmpty());

    EXPECT_EQ(loggedLabels(), allLabels(Version::second));
    EXPECT_THAT(loggedErrors(), IsEmpty());
    EXPECT_EQ(card.getCalibrationCountersG2().total, 0x0304);
    EXPECT_EQ(saveToOpenFile(card), notAllowed);
}

void expectFailureWithout(const Ef& ef)
{
    SCOPED_TRACE(ef.failureText);
    ImageWorkshop card(withSecond(secondWorkshopApplication(Version::second).without(ef.fid)));
    test::DebugStream::clear();

    EXPECT_EQ(chain(card.read()), chain(missing(ef.hexFid)));

    EXPECT_EQ(lastLoggedLabel(), QString::fromLatin1(ef.label));
    ASSERT_THAT(loggedErrors(), ElementsAre(logged(ef.failureText, missing(ef.hexFid))));
    EXPECT_EQ(lastLogged(), loggedErrors().back());
    test::DebugStream::clear();
    EXPECT_EQ(saveToOpenFile(card), noValidData);
    EXPECT_THAT(test::DebugStream::lines(), IsEmpty());
    EXPECT_EQ(
        chain(card.resetCalibrationsSinceDownload()),
        test::Chain{lib("updateLastCardDownload(): no valid data", 0)});
}

TEST(SCardWorkshopG2Read, AnImageFailsWithoutARequiredEfOfTheSecondApplication)
{
    for (const Ef& ef : dataEfs)
        expectFailureWithout(ef);
    expectFailureWithout(requiredEfOfVersion2);
    expectFailureWithout(identificationEfs[0]);
}

TEST(SCardWorkshopG2Read, AnImageFailsWithoutTheApplicationIdentification)
{
    ImageWorkshop card(withSecond(secondWorkshopApplication(Version::first).without(0x0501)));
    test::DebugStream::clear();

    EXPECT_EQ(chain(card.read()), chain(missing("501")));

    EXPECT_EQ(loggedLabels(), labelsOfFirst() + test::labelsOf({identificationEfs}));
    EXPECT_EQ(saveToOpenFile(card), noValidData);
}

TEST(SCardWorkshopG2Read, WithoutPlacesAWorkshopCardFailsWhereADriverCardGoesOn)
{
    const char* text = "Error reading EF_Places:";
    ImageWorkshop workshop(withSecond(secondWorkshopApplication(Version::first).without(0x0506)));
    test::DebugStream::clear();
    EXPECT_EQ(chain(workshop.read()), chain(missing("506")));
    EXPECT_THAT(loggedErrors(), ElementsAre(logged(text, missing("506"))));

    test::CardOnImage<scard::SCardDriverG2> driver(
        test::smallDriverImage().append(test::secondApplication(Version::first).without(0x0506)));
    test::DebugStream::clear();
    EXPECT_THAT(chain(driver.read()), IsEmpty());
    EXPECT_THAT(loggedErrors(), ElementsAre(logged(text, missing("506"))));
}

void expectSuccessWithout(const Ef& ef)
{
    SCOPED_TRACE(ef.failureText);
    ImageWorkshop card(withSecond(secondWorkshopApplication(Version::second).without(ef.fid)));
    test::DebugStream::clear();

    EXPECT_THAT(chain(card.read()), IsEmpty());

    EXPECT_EQ(loggedLabels(), allLabels(Version::second));
    EXPECT_THAT(loggedErrors(), ElementsAre(logged(ef.failureText, missing(ef.hexFid))));
    EXPECT_EQ(saveToOpenFile(card), notAllowed);
}

TEST(SCardWorkshopG2Read, AnImageGoesOnWithoutAnOptionalEfOfTheSecondApplication)
{
    for (const Ef& ef : optionalEfs)
        expectSuccessWithout(ef);
    for (const Ef& ef : optionalEfsOfVersion2)
        expectSuccessWithout(ef);
}

TEST(SCardWorkshopG2Read, AnImageGoesOnWithoutAllOptionalEfs)
{
    Image second = secondWorkshopApplication(Version::second).without(0x0002).without(0x0005);
    for (const Ef& ef : optionalEfs)
        second.without(ef.fid);
    for (const Ef& ef : optionalEfsOfVersion2)
        second.without(ef.fid);
    ImageWorkshop card(withSecond(second));
    test::DebugStream::clear();

    EXPECT_THAT(chain(card.read()), IsEmpty());

    EXPECT_THAT(loggedErrors(), SizeIs(5 + 6));
    EXPECT_EQ(card.getCalibrationCountersG2().total, 0x0304);
    EXPECT_EQ(card.getCalibrationCountersG2().sinceDownload, std::nullopt);
    EXPECT_THAT(card.getCalibrationAddData(), IsEmpty());
}

TEST(SCardWorkshopG2Read, AnEfOneByteShortIsPassedWhenItIsOptionalAndFailsWhenNot)
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
        {0x0501, 18, 19, true, "Error reading EF_Application_Identification:"},
        {0xC101, 203, 204, false, "Error reading EF_Card_Sign_Certificate:"},
        {0x0509, 1, 2, false, "Error reading EF_Card_Download:"},
        {0x050A, 1, 2, true, "Error reading EF_Calibration:"},
        {0x050A, 3, 2, true, "Error reading EF_Calibration:"},
        {0x050A, 537, 534, true, "Error reading EF_Calibration:"},
        {0x0502, 791, 792, true, "Error reading EF_EventsData:"},
        {0x0503, 95, 96, true, "Error reading EF_FaultsData:"},
        {0x0504, 1, 2, true, "Error reading EF_Driver_Activity_Data:"},
        {0x0504, 3, 2, true, "Error reading EF_Driver_Activity_Data:"},
        {0x0504, 43, 40, true, "Error reading EF_Driver_Activity_Data:"},
        {0x0505, 145, 144, true, "Error reading EF_Vehicles_Used:"},
        {0x0506, 1, 2, true, "Error reading EF_Places:"},
        {0x0506, 85, 84, true, "Error reading EF_Places:"},
        {0x0507, 18, 19, true, "Error reading EF_Current_Usage:"},
        {0x0508, 45, 46, true, "Error reading EF_Control_Activity_Data:"},
        {0x0523, 21, 20, true, "Error reading m_EF_Vehicle_Units_Used:"},
        {0x0524, 91, 90, true, "Error reading m_EF_GNSS_Places:"},
        {0x0522, 1, 2, true, "Error reading m_EF_Specitifc_Conditions:"},
        {0x0522, 31, 30, true, "Error reading m_EF_Specitifc_Conditions:"},
        {0x0525, 9, 10, true, "Error reading EF_Application_Identification_V2:"},
        {0x0526, 21, 20, false, "Error reading EF_Places_Authentication:"},
        {0x0527, 26, 25, false, "Error reading EF_GNSS_Places_Authentication:"},
        {0x0528, 52, 51, false, "Error reading EF_Border_Crossing:"},
        {0x0529, 41, 40, false, "Error reading EF_Load_Unload_Operations:"},
        {0x0530, 21, 20, false, "Error reading EF_Load_Type_Entries:"},
        {0x0531, 1, 2, false, "Error reading EF_Calibration_Add_Data:"},
        {0x0531, 82, 81, false, "Error reading EF_Calibration_Add_Data:"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.failureText + std::to_string(row.length));
        // Cut, so that the counts in it still say the same.
        Bytes cut = row.fid == 0x0501 ? test::workshopApplicationG2(Version::second) : Bytes();
        cut.resize(row.length);
        ImageWorkshop card(withSecond(secondWorkshopApplication(Version::second).replace(row.fid, cut)));
        test::DebugStream::clear();
        const test::Chain expected = test::tooShort(row.length, row.requested);

        EXPECT_EQ(chain(card.read()), row.required ? expected : test::Chain{});

        EXPECT_THAT(
            loggedErrors(),
            ElementsAre(logged(row.failureText, libraryFailure({expected.front().message}, 6700))));
        EXPECT_EQ(saveToOpenFile(card), row.required ? noValidData : notAllowed);
    }
}

TEST(SCardWorkshopG2Read, WithoutTheSecondApplicationTheSelectionFailsWithItsEntriesBehindTheStep)
{
    ImageWorkshop card(smallWorkshopImage());

    EXPECT_THAT(
        chain(card.read()), ElementsAre(
                                lib("read() Select DF_Tachograph failed", 27266),
                                lib("memSelectFile(): Dataset not found", 27266)));
    EXPECT_EQ(card.getCardHolderName(), QStringLiteral("Petra, Musterfrau"));
    EXPECT_EQ(saveToOpenFile(card), noValidData);
}

TEST(SCardWorkshopG2Read, WithoutTheFirstApplicationTheSecondIsRead)
{
    ImageWorkshop card(secondWorkshopApplication(Version::second));
    int told = 0;
    QObject::connect(&card, &SCardGeneric::cardLanguage, [&] { ++told; });
    QObject::connect(&card, &SCardGeneric::cardHolderName, [&] { ++told; });
    test::DebugStream::clear();

    EXPECT_THAT(chain(card.read()), IsEmpty());

    EXPECT_EQ(loggedLabels(), labelsOfSecond(Version::second));
    EXPECT_EQ(told, 0);
    EXPECT_EQ(card.getFilename(), QStringLiteral("CARD_FILENAME_NOT_SET.DDD"));
    EXPECT_EQ(bytesOf(card.getCardIdentification()), Bytes(211));
    EXPECT_EQ(bytesOf(card.getCardIdentificationG2()), bytesOf(test::pierre()));
    EXPECT_EQ(card.getCalibrationCounters().total, std::nullopt);
    EXPECT_EQ(saveToOpenFile(card), notAllowed);
}

TEST(SCardWorkshopG2Read, ADamagedFirstApplicationDoesNotStopTheSecond)
{
    for (const test::Efs& efs : {identificationEfs, otherEfsOfFirst}) {
        for (const Ef& ef : efs) {
            SCOPED_TRACE(ef.failureText);
            ImageWorkshop card(
                smallWorkshopImage().without(ef.fid).append(secondWorkshopApplication(Version::second)));
            test::DebugStream::clear();

            EXPECT_THAT(chain(card.read()), IsEmpty());

            ASSERT_THAT(loggedErrors(), SizeIs(1));
            EXPECT_EQ(loggedErrors().front(), logged(ef.failureText, missing(ef.hexFid)));
            const QStringList told = loggedLabels();
            EXPECT_EQ(told.mid(told.size() - 25), labelsOfSecond(Version::second));
            EXPECT_EQ(card.getCalibrationCountersG2().sinceDownload, 9);
            EXPECT_EQ(saveToOpenFile(card), notAllowed);
        }
    }
}

TEST(SCardWorkshopG2Read, ABlankObjectAnswersWithNothing)
{
    SCardWorkshopG2 card;

    EXPECT_THAT(
        chain(card.read()), ElementsAre(
                                lib("read() Select DF_Tachograph failed", 0),
                                lib("ScSelectFile(): No valid scard connection", 0)));
    EXPECT_EQ(bytesOf(card.getCardIdentification()), Bytes(211));
    EXPECT_EQ(bytesOf(card.getCardIdentificationG2()), Bytes(211));
    EXPECT_EQ(card.getCardHolderName(), QStringLiteral(", "));
    EXPECT_EQ(card.getCalibrationCountersG2().total, std::nullopt);
    EXPECT_EQ(card.getCalibrationCountersG2().sinceDownload, std::nullopt);
    EXPECT_THAT(card.getCalibrationsG2(), IsEmpty());
    EXPECT_THAT(card.getCalibrationAddData(), IsEmpty());
    EXPECT_EQ(card.getFilename(), QStringLiteral("CARD_FILENAME_NOT_SET.DDD"));
}

TEST(SCardWorkshopG2Read, EachApplicationCountsTheTwoFilesOfTheIdentification)
{
    ImageWorkshop card(smallWorkshopImageG2(Version::first));
    ASSERT_THAT(chain(card.calcDataToRead()), IsEmpty());
    ASSERT_THAT(chain(card.read()), IsEmpty());

    EXPECT_EQ(progressOf(card), QStringLiteral("=== Progress: 66 dataToRead: 4405%:1"));
}

TEST(SCardWorkshopG2Read, AnImageWithoutAnyRecordsIsRead)
{
    Bytes application = test::workshopApplicationG2(Version::second);
    for (std::size_t i = 3; i < application.size(); ++i)
        application[i] = 0;
    Image second =
        secondWorkshopApplication(Version::second).replace(0x0501, application).replace(0x0525, Bytes(10));
    second.replace(0x050A, {0x00, 0x00, 0x00, 0x00}).replace(0x0502, {}).replace(0x0503, {});
    second.replace(0x0504, Bytes(4));
    for (const unsigned short fid : std::vector<unsigned short>{
             0x0505, 0x0506, 0x0522, 0x0523, 0x0524, 0x0526, 0x0527, 0x0528, 0x0529, 0x0530, 0x0531})
        second.replace(fid, Bytes(2));
    ImageWorkshop card(withSecond(second));
    test::DebugStream::clear();

    EXPECT_THAT(chain(card.read()), IsEmpty());

    EXPECT_THAT(loggedErrors(), IsEmpty());
    EXPECT_EQ(card.getCalibrationCountersG2().total, 0);
}

// calcDataToRead()

TEST(SCardWorkshopG2DataToRead, AddsUpBothApplicationsByTheirCounts)
{
    const struct
    {
        const char* name;
        Image image;
        const char* expected;
    } rows[] = {
        // 1388 of the first application; 52 + 839 of certificates + 296 + 264 × 3 + 48 × 2 + 40 + 48 × 3
        // + 21 × 4 + 178 × 3 + 18 × 5 + 5 × 6 + 10 × 2
        {"first version", smallWorkshopImageG2(Version::first), "=== Progress: 0 dataToRead: 4405%:0"},
        // 22 + 17 × 3 + 20 × 2 + 27 × 3 + 5 × (4 + 5 + 4) more
        {"version 2.2", smallWorkshopImageG2(Version::second), "=== Progress: 0 dataToRead: 4664%:0"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        ImageWorkshop card(row.image);

        EXPECT_THAT(chain(card.calcDataToRead()), IsEmpty());
        EXPECT_THAT(chain(card.calcDataToRead()), IsEmpty());

        EXPECT_EQ(progressOf(card).toStdString(), row.expected);
    }
}

TEST(SCardWorkshopG2DataToRead, ThreeCalibrationsAddTheirRecordsInBothFiles)
{
    const auto totalWith = [](Version version, unsigned char calibrations) {
        Bytes application = test::workshopApplicationG2(version);
        application[12] = calibrations;
        ImageWorkshop card(withSecond(secondWorkshopApplication(version).replace(0x0501, application)));
        EXPECT_THAT(chain(card.calcDataToRead()), IsEmpty());
        return progressOf(card);
    };

    EXPECT_EQ(totalWith(Version::first, 0), QStringLiteral("=== Progress: 0 dataToRead: 3871%:0"));
    EXPECT_EQ(totalWith(Version::first, 3), QStringLiteral("=== Progress: 0 dataToRead: 4405%:0"));
    EXPECT_EQ(totalWith(Version::second, 0), QStringLiteral("=== Progress: 0 dataToRead: 4049%:0"));
    EXPECT_EQ(totalWith(Version::second, 3), QStringLiteral("=== Progress: 0 dataToRead: 4664%:0"));
}

TEST(SCardWorkshopG2DataToRead, ACertificateThatIsMissingCountsNothing)
{
    const struct
    {
        unsigned short fid;
        unsigned int rest;
    } rows[] = {{0xC100, 4200}, {0xC101, 4201}, {0xC108, 4100}, {0xC109, 4280}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.fid);
        ImageWorkshop card(withSecond(secondWorkshopApplication(Version::first).without(row.fid)));
        test::DebugStream::clear();

        EXPECT_THAT(chain(card.calcDataToRead()), IsEmpty());

        EXPECT_THAT(
            test::DebugStream::lines().filter(QStringLiteral(
                "get2ndGenCertificateSize(): Could not read certificate size. Not available?")),
            SizeIs(1));
        EXPECT_EQ(progressOf(card), QStringLiteral("=== Progress: 0 dataToRead: %1%:0").arg(row.rest));
    }
}

TEST(SCardWorkshopG2DataToRead, AFailureInTheFirstApplicationStandsBehindTheStepWithItsId)
{
    const struct
    {
        Image first;
        test::Chain expected;
    } rows[] = {
        {smallWorkshopImage().without(0x0501),
         {lib(firstFailedText, 0), lib(applicationG1Text, 0), lib("memSelectFile(): Dataset not found", 0),
          lib("readFromMem() memSelectFile() Failed: ID 501", 0)}},
        {smallWorkshopImage().replace(0x0501, Bytes(10)),
         {lib(firstFailedText, 6700), lib(applicationG1Text, 6700),
          lib("readFromMem() invalid dataset size:10requested:11", 6700)}},
        {Image(),
         {lib(firstFailedText, 27266), lib(applicationG1Text, 27266),
          lib("memSelectFile(): Dataset not found", 27266)}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.expected.back().message);
        Image image = row.first;
        ImageWorkshop card(image.append(secondWorkshopApplication(Version::first)));

        EXPECT_EQ(chain(card.calcDataToRead()), row.expected);
    }
}

void expectTotalFails(const Image& second, const char* text, const aux::Error& lower)
{
    SCOPED_TRACE(text);
    ImageWorkshop card(withSecond(second));
    test::DebugStream::clear();
    test::Chain expected = chain(lower);
    expected.insert(expected.begin(), lib(text, expected.front().id));

    EXPECT_EQ(chain(card.calcDataToRead()), expected);

    EXPECT_EQ(lastLogged(), logged(text, lower));
}

TEST(SCardWorkshopG2DataToRead, NeedsTheApplicationIdentificationOfTheSecondApplication)
{
    expectTotalFails(
        secondWorkshopApplication(Version::first).without(0x0501), applicationText, missing("501"));
    expectTotalFails(
        secondWorkshopApplication(Version::first).replace(0x0501, Bytes(18, 0x02)), applicationText,
        libraryFailure({"readFromMem() invalid dataset size:18requested:19"}, 6700));
}

TEST(SCardWorkshopG2DataToRead, NeedsTheSecondApplication)
{
    expectTotalFails(Image(), applicationText, libraryFailure({"memSelectFile(): Dataset not found"}, 27266));
}

TEST(SCardWorkshopG2DataToRead, AnImageOfVersion2NeedsTheCountsOfThatVersion)
{
    expectTotalFails(
        secondWorkshopApplication(Version::second).without(0x0525), applicationV2Text, missing("525"));
    expectTotalFails(
        secondWorkshopApplication(Version::second).replace(0x0525, Bytes(9)), applicationV2Text,
        libraryFailure({"readFromMem() invalid dataset size:9requested:10"}, 6700));
}

// saveToFile() and postDownloadTasks()

TEST(SCardWorkshopG2Save, TheFirstApplicationAloneDoesNotMakeTheDataValid)
{
    ImageWorkshop card(withSecond(secondWorkshopApplication(Version::second).without(0x0525)));
    ASSERT_FALSE(card.read().isEmpty());

    EXPECT_EQ(saveToOpenFile(card), noValidData);
}

TEST(SCardWorkshopG2PostDownload, AnImageHasNothingToDo)
{
    ImageWorkshop unread(smallWorkshopImageG2(Version::first));
    EXPECT_THAT(chain(unread.postDownloadTasks()), IsEmpty());

    ImageWorkshop read(smallWorkshopImageG2(Version::second));
    ASSERT_THAT(chain(read.read()), IsEmpty());
    EXPECT_THAT(chain(read.postDownloadTasks()), IsEmpty());

    ImageWorkshop firstOnly(smallWorkshopImage());
    EXPECT_THAT(chain(firstOnly.postDownloadTasks()), IsEmpty());
}

TEST(SCardWorkshopG2PostDownload, AnImageThatCouldNotBeLoadedIsNoImage)
{
    QFile nowhere;
    SCardWorkshopG2 card(SCardGeneric(nowhere, QDateTime(), scard::RegionDDD));
    ASSERT_TRUE(card.isLoadedFromZubo());

    EXPECT_THAT(
        chain(card.postDownloadTasks()), ElementsAre(
                                             lib("read() Select DF_Tachograph failed", 0),
                                             lib("ScSelectFile(): No valid scard connection", 0)));
}

TEST(SCardWorkshopG2PostDownload, WithoutAConnectionTheSelectionOfTheFirstApplicationFails)
{
    SCardWorkshopG2 card;

    EXPECT_THAT(
        chain(card.postDownloadTasks()), ElementsAre(
                                             lib("read() Select DF_Tachograph failed", 0),
                                             lib("ScSelectFile(): No valid scard connection", 0)));
}

TEST(SCardWorkshopG2PostDownload, TheResetWritesToTheApplicationThatIsSelected)
{
    ImageWorkshop card(withSecond(secondWorkshopApplication(Version::first).without(0x0509)));
    ASSERT_THAT(chain(card.read()), IsEmpty());

    EXPECT_THAT(
        chain(card.resetCalibrationsSinceDownload()),
        ElementsAre(
            lib("updateLastCardDownload() writeTo() Failed: ID 50e", 0),
            lib("memSelectFile(): Dataset not found", 0), lib("writeTo() ScSelectFile() Failed: ID 509", 0)));
    ASSERT_THAT(chain(card.ScSelectFile("\xFFTACHO")), IsEmpty());
    EXPECT_THAT(chain(card.resetCalibrationsSinceDownload()), IsEmpty());
}

} // namespace
