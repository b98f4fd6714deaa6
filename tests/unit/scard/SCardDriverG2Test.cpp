#include "fixtures/ActivityBuffer.h"
#include "fixtures/CardOnImage.h"
#include "fixtures/DriverImage.h"
#include "fixtures/DriverImageG2.h"
#include "fixtures/ImageFailure.h"
#include "fixtures/RecordBytes.h"
#include "QtPrinters.h"

#include <scard/SCardDriverG2.h>
#include <support/DebugStream.h>
#include <support/ErrorChain.h>

#include <gmock/gmock.h>

#include <QDate>
#include <QString>
#include <QStringList>

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

// Driver cards of the second generation on images made by hand.

namespace {

using scard::SCardDriverG1;
using scard::SCardDriverG2;
using scard::SCardGeneric;
using test::ActivityBuffer;
using test::Bytes;
using test::chain;
using test::change;
using test::Ef;
using test::Image;
using test::lib;
using test::libraryFailure;
using test::logged;
using test::loggedErrors;
using test::loggedLabels;
using test::missing;
using test::notAllowed;
using test::noValidData;
using test::progressOf;
using test::rest;
using test::saveToOpenFile;
using test::secondApplication;
using test::smallDriverImage;
using test::smallDriverImageG2;
using test::Version;
using test::work;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

using ImageDriver = test::CardOnImage<SCardDriverG2>;

constexpr std::uint32_t march5 = 0x65E66080; // 2024-03-05 00:00 UTC
constexpr std::uint32_t march6 = march5 + 86400;

const Ef requiredEfs[] = {
    {0x0520, "520", "\nEF_Identification", "Error reading EF_Identification:"},
    {0x0501, "501", "\nEF_Application_Identification", "Error reading EF_Application_Identification:"},
    {0x0502, "502", "\nEF_EventsData", "Error reading EF_EventsData:"},
    {0x0503, "503", "\nEF_FaultsData", "Error reading EF_FaultsData:"},
    {0x0504, "504", "\nEF_Driver_Activity_Data", "Error reading EF_Driver_Activity_Data:"},
    {0x0505, "505", "\nEF_Vehicles_Used", "Error reading EF_Vehicles_Used:"},
};

const Ef requiredEfOfVersion2{
    0x0525, "525", "\nEF_Application_Identification_V2", "Error reading EF_Application_Identification_V2:"};

const Ef certificateEfs[] = {
    {0xC100, "c100", "\nEF_MA_Certificate", "Error reading EF_MA_Certificate:"},
    {0xC101, "c101", "\nEF_Card_Sign_Certificate", "Error reading EF_Card_Sign_Certificate:"},
    {0xC108, "c108", "\nEF_CA_Certificate", "Error reading EF_CA_Certificate:"},
    {0xC109, "c109", "\nEF_Link_Certificate", "Error reading EF_Link_Certificate:"},
};

const Ef optionalEfs[] = {
    {0x050E, "50e", "\nEF_Card_Download", "Error reading EF_Card_Download:"},
    {0x0521, "521", "\nEF_Driving_License_Info", "Error reading EF_Driving_License_Info:"},
    {0x0506, "506", "\nEF_Places", "Error reading EF_Places:"},
    {0x0507, "507", "\nEF_Current_Usage", "Error reading EF_Current_Usage:"},
    {0x0508, "508", "\nEF_Control_Activity_Data", "Error reading EF_Control_Activity_Data:"},
    {0x0522, "522", "\nEF_Specific_Conditions", "Error reading m_EF_Specitifc_Conditions:"},
    {0x0523, "523", "\nEF_Vehicle_Units_Used", "Error reading m_EF_Vehicle_Units_Used:"},
    {0x0524, "524", "\nEF_GNSS_Places", "Error reading m_EF_GNSS_Places:"},
};

const Ef optionalEfsOfVersion2[] = {
    {0x0526, "526", "\nEF_Places_Authentication", "Error reading EF_Places_Authentication:"},
    {0x0527, "527", "\nEF_GNSS_Places_Authentication", "Error reading EF_GNSS_Places_Authentication:"},
    {0x0528, "528", "\nEF_Border_Crossing", "Error reading EF_Border_Crossing:"},
    {0x0529, "529", "\nEF_Load_Unload_Operations", "Error reading EF_Load_Unload_Operations:"},
    {0x0530, "530", "\nEF_Load_Type_Entries", "Error reading EF_Load_Type_Entries:"},
};

const QStringList labelsOfFirst = {
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

const QStringList labelsOfSecond = {
    QStringLiteral("\nEF_Identification"),
    QStringLiteral("\nEF_Application_Identification"),
    QStringLiteral("\nEF_MA_Certificate"),
    QStringLiteral("\nEF_Card_Sign_Certificate"),
    QStringLiteral("\nEF_CA_Certificate"),
    QStringLiteral("\nEF_Link_Certificate"),
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
    QStringLiteral("\nEF_Vehicle_Units_Used"),
    QStringLiteral("\nEF_GNSS_Places"),
};

const QStringList labelsOfVersion2 = {
    QStringLiteral("\nEF_Application_Identification_V2"), QStringLiteral("\nEF_Places_Authentication"),
    QStringLiteral("\nEF_GNSS_Places_Authentication"),    QStringLiteral("\nEF_Border_Crossing"),
    QStringLiteral("\nEF_Load_Unload_Operations"),        QStringLiteral("\nEF_Load_Type_Entries"),
};

const char applicationText[] =
    "calcDataToRead(): Error reading SCardDriver G2 EF_Application_Identification:";
const char applicationV2Text[] =
    "calcDataToRead(): Error reading SCardDriver G2 EF_Application_Identification_V2:";

/// The first application and a changed second one.
Image withSecond(const Image& second)
{
    return smallDriverImage().append(second);
}

bool same(const scard::DriverCard_EF_Identification& left, const scard::DriverCard_EF_Identification& right)
{
    return std::memcmp(&left, &right, sizeof left) == 0;
}

// read()

TEST(SCardDriverG2Read, ReadsBothApplicationsOfACompleteImage)
{
    const struct
    {
        Version version;
        QStringList labels;
    } rows[] = {
        {Version::first, labelsOfFirst + labelsOfSecond},
        {Version::second, labelsOfFirst + labelsOfSecond + labelsOfVersion2},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.labels.size());
        ImageDriver card(smallDriverImageG2(row.version));
        test::DebugStream::clear();

        EXPECT_THAT(chain(card.read()), IsEmpty());

        EXPECT_EQ(loggedLabels(), row.labels);
        EXPECT_THAT(loggedErrors(), IsEmpty());
        EXPECT_EQ(saveToOpenFile(card), notAllowed);
    }
}

TEST(SCardDriverG2Read, TakesAnIdentifiedCard)
{
    const ImageDriver first(smallDriverImageG2(Version::first));
    EXPECT_EQ(first.getCardType(), scard::SCardMeta::DriverCard);
    EXPECT_TRUE(first.is2ndGeneneration());
    EXPECT_FALSE(first.is2_2Generation());
    EXPECT_TRUE(first.isLoadedFromZubo());

    const ImageDriver second(smallDriverImageG2(Version::second));
    EXPECT_TRUE(second.is2ndGeneneration());
    EXPECT_TRUE(second.is2_2Generation());
}

TEST(SCardDriverG2Read, TheAccessorsAnswerFromTheSecondApplication)
{
    ImageDriver card(smallDriverImageG2(Version::second));
    ASSERT_THAT(chain(card.read()), IsEmpty());

    EXPECT_TRUE(same(card.getCardIdentification(), test::johanna()));
    EXPECT_EQ(card.getCardHolderName(), QStringLiteral("Johanna, Musterfrau"));
    EXPECT_EQ(card.getLastCardDownload().toSecsSinceEpoch(), 0x66000000);
    EXPECT_EQ(card.getLastCardDownload().timeSpec(), Qt::LocalTime);
}

TEST(SCardDriverG2Read, HolderLanguageAndFileNameAreThoseOfTheFirstApplication)
{
    ImageDriver card(smallDriverImageG2(Version::second));
    QStringList told;
    QObject::connect(&card, &SCardGeneric::cardLanguage, [&](const QLocale& language) {
        told << QLocale::languageToString(language.language());
    });
    QObject::connect(&card, &SCardGeneric::cardHolderName, [&](const QString& name) { told << name; });

    EXPECT_THAT(chain(card.read()), IsEmpty());

    EXPECT_THAT(told, ElementsAre(QStringLiteral("German"), QStringLiteral("Johannes, Mustermann")));
    EXPECT_EQ(card.getFilename(), QStringLiteral("C_20240305_1407_J_Mustermann_DF000000123456.DDD"));
}

TEST(SCardDriverG2Read, TheFilesOfVersion2AreReadOnCardsOfThatVersionOnly)
{
    Image second = secondApplication(Version::second);
    ImageDriver card(withSecond(second.replace(0x0501, test::driverApplicationG2(Version::first))));
    test::DebugStream::clear();

    EXPECT_THAT(chain(card.read()), IsEmpty());

    EXPECT_EQ(loggedLabels(), labelsOfFirst + labelsOfSecond);
}

TEST(SCardDriverG2Read, TheOrderOfTheRecordsDoesNotMatter)
{
    ImageDriver card(secondApplication(Version::second).append(smallDriverImage()));
    test::DebugStream::clear();

    EXPECT_THAT(chain(card.read()), IsEmpty());

    EXPECT_THAT(loggedErrors(), IsEmpty());
    EXPECT_EQ(card.getCardHolderName(), QStringLiteral("Johanna, Musterfrau"));
}

TEST(SCardDriverG2Read, CanBeDoneAgain)
{
    ActivityBuffer buffer(test::smallG2ActivityBytes);
    buffer.at(30).day(march5, {change(rest, 0)}).day(march6, {change(work, 0)});
    ImageDriver card(withSecond(secondApplication(Version::second).replace(0x0504, buffer.payload())));
    ASSERT_THAT(chain(card.read()), IsEmpty());
    test::DebugStream::clear();

    EXPECT_THAT(chain(card.read()), IsEmpty());

    EXPECT_EQ(loggedLabels(), labelsOfFirst + labelsOfSecond + labelsOfVersion2);
    EXPECT_THAT(loggedErrors(), IsEmpty());
    EXPECT_EQ(card.getCardHolderName(), QStringLiteral("Johanna, Musterfrau"));
    EXPECT_THAT(card.getActivitiesG2(), SizeIs(2));
    EXPECT_EQ(saveToOpenFile(card), notAllowed);
}

void expectFailureWithout(const Ef& ef, Version version)
{
    SCOPED_TRACE(ef.failureText);
    ImageDriver card(withSecond(secondApplication(version).without(ef.fid)));
    test::DebugStream::clear();

    EXPECT_EQ(chain(card.read()), chain(missing(ef.hexFid)));

    EXPECT_EQ(loggedLabels().back(), QString::fromLatin1(ef.label));
    EXPECT_EQ(test::DebugStream::lines().back(), logged(ef.failureText, missing(ef.hexFid)));
    test::DebugStream::clear();
    EXPECT_EQ(saveToOpenFile(card), noValidData);
    EXPECT_THAT(test::DebugStream::lines(), ElementsAre(QStringLiteral("Save failed g2: false false")));
}

TEST(SCardDriverG2Read, AnImageFailsWithoutARequiredEfOfTheSecondApplication)
{
    for (const Ef& ef : requiredEfs)
        expectFailureWithout(ef, Version::first);
}

TEST(SCardDriverG2Read, AnImageOfVersion2FailsWithoutItsRequiredEf)
{
    expectFailureWithout(requiredEfOfVersion2, Version::second);
}

void expectSuccessWithout(const Ef& ef)
{
    SCOPED_TRACE(ef.failureText);
    ImageDriver card(withSecond(secondApplication(Version::second).without(ef.fid)));
    test::DebugStream::clear();

    EXPECT_THAT(chain(card.read()), IsEmpty());

    EXPECT_EQ(loggedLabels(), labelsOfFirst + labelsOfSecond + labelsOfVersion2);
    EXPECT_THAT(loggedErrors(), ElementsAre(logged(ef.failureText, missing(ef.hexFid))));
    EXPECT_EQ(saveToOpenFile(card), notAllowed);
}

TEST(SCardDriverG2Read, AnImageGoesOnWithoutAnOptionalEfOfTheSecondApplication)
{
    for (const Ef& ef : certificateEfs)
        expectSuccessWithout(ef);
    for (const Ef& ef : optionalEfs)
        expectSuccessWithout(ef);
    for (const Ef& ef : optionalEfsOfVersion2)
        expectSuccessWithout(ef);
}

TEST(SCardDriverG2Read, AnImageGoesOnWithoutAllOptionalEfs)
{
    Image second = secondApplication(Version::second).without(0x0002).without(0x0005);
    for (const Ef& ef : certificateEfs)
        second.without(ef.fid);
    for (const Ef& ef : optionalEfs)
        second.without(ef.fid);
    for (const Ef& ef : optionalEfsOfVersion2)
        second.without(ef.fid);
    ImageDriver card(withSecond(second));
    test::DebugStream::clear();

    EXPECT_THAT(chain(card.read()), IsEmpty());

    EXPECT_EQ(loggedErrors().size(), 4 + 8 + 5);
    EXPECT_EQ(card.getCardHolderName(), QStringLiteral("Johanna, Musterfrau"));
}

TEST(SCardDriverG2Read, AnEfOneByteShortIsPassedWhenItIsOptionalAndFailsWhenNot)
{
    const struct
    {
        unsigned short fid;
        std::size_t length;
        const char* text;
        bool required;
    } rows[] = {
        {0x0520, 142, "readFromMem() invalid dataset size:142requested:143", true},
        {0x0501, 16, "readFromMem() invalid dataset size:16requested:17", true},
        {0x050E, 3, "readFromMem() invalid dataset size:3requested:4", false},
        {0x0521, 52, "readFromMem() invalid dataset size:52requested:53", false},
        {0x0502, 791, "readFromMem() invalid dataset size:791requested:792", true},
        {0x0503, 95, "readFromMem() invalid dataset size:95requested:96", true},
        {0x0504, 43, "readFromMem() invalid dataset size:43requested:40", true},
        {0x0504, 3, "readFromMem() invalid dataset size:3requested:2", true},
        {0x0504, 1, "readFromMem() invalid dataset size:1requested:2", true},
        {0x0505, 145, "readFromMem() invalid dataset size:145requested:144", true},
        {0x0505, 1, "readFromMem() invalid dataset size:1requested:2", true},
        {0x0506, 85, "readFromMem() invalid dataset size:85requested:84", false},
        {0x0507, 18, "readFromMem() invalid dataset size:18requested:19", false},
        {0x0508, 45, "readFromMem() invalid dataset size:45requested:46", false},
        {0x0522, 31, "readFromMem() invalid dataset size:31requested:30", false},
        {0x0523, 21, "readFromMem() invalid dataset size:21requested:20", false},
        {0x0524, 91, "readFromMem() invalid dataset size:91requested:90", false},
        {0x0525, 9, "readFromMem() invalid dataset size:9requested:10", true},
        {0x0526, 21, "readFromMem() invalid dataset size:21requested:20", false},
        {0x0527, 26, "readFromMem() invalid dataset size:26requested:25", false},
        {0x0528, 52, "readFromMem() invalid dataset size:52requested:51", false},
        {0x0529, 41, "readFromMem() invalid dataset size:41requested:40", false},
        {0x0530, 21, "readFromMem() invalid dataset size:21requested:20", false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        // Cut, so that the counts in it still say the same.
        Bytes cut = row.fid == 0x0501 ? test::driverApplicationG2(Version::second) : Bytes();
        cut.resize(row.length);
        ImageDriver card(withSecond(secondApplication(Version::second).replace(row.fid, cut)));
        test::DebugStream::clear();

        const test::Chain failure = chain(card.read());

        if (row.required)
            EXPECT_THAT(failure, ElementsAre(lib(row.text, 6700)));
        else
            EXPECT_THAT(failure, IsEmpty());
        ASSERT_EQ(loggedErrors().size(), 1);
        EXPECT_TRUE(loggedErrors().front().contains(QString::fromLatin1(row.text)));
    }
}

TEST(SCardDriverG2Read, WithoutTheSecondApplicationTheSelectionFailsWithItsEntriesBehindTheStep)
{
    ImageDriver card(smallDriverImage());

    EXPECT_THAT(
        chain(card.read()), ElementsAre(
                                lib("read() Select DF_Tachograph failed", 27266),
                                lib("memSelectFile(): Dataset not found", 27266)));
    EXPECT_EQ(saveToOpenFile(card), noValidData);
}

TEST(SCardDriverG2Read, ABlankObjectHasNothingToRead)
{
    SCardDriverG2 card;

    EXPECT_THAT(
        chain(card.read()), ElementsAre(
                                lib("read() Select DF_Tachograph failed", 0),
                                lib("ScSelectFile(): No valid scard connection", 0)));
}

TEST(SCardDriverG2Read, WithoutTheFirstApplicationTheSecondIsRead)
{
    ImageDriver card(secondApplication(Version::second));
    int told = 0;
    QObject::connect(&card, &SCardGeneric::cardLanguage, [&] { ++told; });
    QObject::connect(&card, &SCardGeneric::cardHolderName, [&] { ++told; });
    test::DebugStream::clear();

    EXPECT_THAT(chain(card.read()), IsEmpty());

    EXPECT_EQ(loggedLabels(), labelsOfSecond + labelsOfVersion2);
    EXPECT_EQ(card.getCardHolderName(), QStringLiteral("Johanna, Musterfrau"));
    EXPECT_EQ(told, 0);
    EXPECT_EQ(card.getFilename(), QStringLiteral("CARD_FILENAME_NOT_SET.DDD"));
    EXPECT_THAT(card.getActivities(), IsEmpty());
    EXPECT_EQ(saveToOpenFile(card), notAllowed);
}

TEST(SCardDriverG2Read, ADamagedFirstApplicationDoesNotStopTheSecond)
{
    for (const Ef& ef : requiredEfs) {
        SCOPED_TRACE(ef.failureText);
        ImageDriver card(smallDriverImage().without(ef.fid).append(secondApplication(Version::second)));
        test::DebugStream::clear();

        EXPECT_THAT(chain(card.read()), IsEmpty());

        EXPECT_THAT(loggedErrors(), ElementsAre(logged(ef.failureText, missing(ef.hexFid))));
        const QStringList told = loggedLabels();
        EXPECT_EQ(told.mid(told.size() - 24), labelsOfSecond + labelsOfVersion2);
        EXPECT_EQ(card.getCardHolderName(), QStringLiteral("Johanna, Musterfrau"));
        EXPECT_THAT(card.getActivitiesG2(), SizeIs(1));
        EXPECT_THAT(card.getActivities(), IsEmpty());
        EXPECT_EQ(saveToOpenFile(card), notAllowed);
    }
}

TEST(SCardDriverG2Read, WithoutTheSecondIdentificationTheFirstAnswers)
{
    ImageDriver card(withSecond(secondApplication(Version::first).without(0x0520)));
    ASSERT_FALSE(card.read().isEmpty());

    EXPECT_TRUE(same(card.getCardIdentification(), test::johannes()));
    EXPECT_EQ(card.getCardHolderName(), QStringLiteral("Johannes, Mustermann"));
    EXPECT_EQ(card.getLastCardDownload().toSecsSinceEpoch(), 0x65E66080);
    EXPECT_THAT(card.getActivities(), SizeIs(1));
}

TEST(SCardDriverG2Read, WithoutTheSecondLastDownloadTheFirstAnswers)
{
    ImageDriver card(withSecond(secondApplication(Version::first).without(0x050E)));
    ASSERT_THAT(chain(card.read()), IsEmpty());

    EXPECT_EQ(card.getLastCardDownload().toSecsSinceEpoch(), 0x65E66080);
    EXPECT_EQ(card.getCardHolderName(), QStringLiteral("Johanna, Musterfrau"));
}

TEST(SCardDriverG2Read, ABlankObjectAnswersWithNothing)
{
    SCardDriverG2 card;

    EXPECT_TRUE(same(card.getCardIdentification(), scard::DriverCard_EF_Identification{}));
    EXPECT_EQ(card.getCardHolderName(), QStringLiteral(", "));
    EXPECT_EQ(card.getLastCardDownload().toSecsSinceEpoch(), 0);
    EXPECT_EQ(card.getFilename(), QStringLiteral("CARD_FILENAME_NOT_SET.DDD"));
    EXPECT_FALSE(card.isLoadedFromZubo());
}

TEST(SCardDriverG2Read, CountsTheTwoFilesOfTheIdentification)
{
    ImageDriver card(smallDriverImageG2(Version::first));
    ASSERT_THAT(chain(card.calcDataToRead()), IsEmpty());
    ASSERT_THAT(chain(card.read()), IsEmpty());

    EXPECT_EQ(progressOf(card), QStringLiteral("=== Progress: 33 dataToRead: 3895%:0"));
}

// Certificates

TEST(SCardDriverG2Certificates, AreReadByTheLengthInTheirFirstBytes)
{
    const char* const noSize = "get2ndGenCertificateSize(): Could not read certificate size. Not available?";
    const auto padded = [](Bytes first, std::size_t length) {
        first.resize(length);
        return first;
    };
    const struct
    {
        const char* name;
        Bytes bytes;
        unsigned int size;
    } rows[] = {
        {"length in one byte more", padded({0x7F, 0x21, 0x81, 0xC8}, 300), 204},
        {"length in two bytes more", padded({0x7F, 0x21, 0x82, 0x01, 0x2C}, 305), 305},
        {"short length", padded({0x7F, 0x21, 0x7A}, 125), 125},
        {"empty certificate", padded({0x7F, 0x21, 0x00}, 5), 3},
        {"unusual length byte", padded({0x7F, 0x21, 0x80, 0xFF, 0xFF}, 300), 131},
        {"unusual length byte", padded({0x7F, 0x21, 0x83, 0xFF, 0xFF}, 300), 134},
        {"zeros", Bytes(300), 204},
        {"other tag", padded({0x7F, 0x4E, 0x82, 0x01, 0x2C}, 305), 204},
        {"other first byte", padded({0x5F, 0x21, 0x82, 0x01, 0x2C}, 305), 204},
        {"five bytes", padded({0x7F, 0x21, 0x82, 0x01, 0x2C}, 5), 305},
        {"one byte too few", padded({0x7F, 0x21, 0x81, 0xC8}, 203), 204},
        {"zeros, too few", Bytes(203), 204},
        {"the longest", padded({0x7F, 0x21, 0x82, 0xFF, 0xFA}, 300), 65535},
        {"four bytes", {0x7F, 0x21, 0x81, 0xC8}, 0},
        {"no bytes", {}, 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        ImageDriver card(withSecond(secondApplication(Version::first).replace(0xC100, row.bytes)));
        test::DebugStream::clear();

        EXPECT_THAT(chain(card.calcDataToRead()), IsEmpty());

        EXPECT_EQ(test::DebugStream::lines().filter(QString::fromLatin1(noSize)).isEmpty(), row.size > 0);
        EXPECT_EQ(
            progressOf(card), QStringLiteral("=== Progress: 0 dataToRead: %1%:0").arg(3895 - 205 + row.size));
        test::DebugStream::clear();
        EXPECT_THAT(chain(card.read()), IsEmpty());
        if (row.bytes.size() >= row.size)
            EXPECT_THAT(loggedErrors(), IsEmpty());
        else
            EXPECT_THAT(
                loggedErrors(),
                ElementsAre(logged(
                    "Error reading EF_MA_Certificate:",
                    libraryFailure(
                        {"readFromMem() invalid dataset size:" + std::to_string(row.bytes.size()) +
                         "requested:" + std::to_string(row.size)},
                        6700))));
    }
}

TEST(SCardDriverG2Certificates, OneThatIsMissingCountsNothing)
{
    for (const Ef& ef : certificateEfs) {
        SCOPED_TRACE(ef.failureText);
        const std::size_t length = ef.fid == 0xC100   ? 205
                                   : ef.fid == 0xC101 ? 204
                                   : ef.fid == 0xC108 ? 305
                                                      : 125;
        ImageDriver card(withSecond(secondApplication(Version::first).without(ef.fid)));
        test::DebugStream::clear();

        EXPECT_THAT(chain(card.calcDataToRead()), IsEmpty());

        EXPECT_THAT(
            test::DebugStream::lines().filter(QStringLiteral(
                "get2ndGenCertificateSize(): Could not read certificate size. Not available?")),
            SizeIs(1));
        EXPECT_EQ(progressOf(card), QStringLiteral("=== Progress: 0 dataToRead: %1%:0").arg(3895 - length));
    }
}

// calcDataToRead()

TEST(SCardDriverG2DataToRead, AddsUpBothApplicationsByTheirCounts)
{
    const struct
    {
        const char* name;
        Image image;
        const char* expected;
    } rows[] = {
        {"first version", smallDriverImageG2(Version::first), "=== Progress: 0 dataToRead: 3895%:0"},
        {"version 2.2", smallDriverImageG2(Version::second), "=== Progress: 0 dataToRead: 4071%:0"},
        {"no first application", secondApplication(Version::first), "=== Progress: 0 dataToRead: 2464%:0"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        ImageDriver card(row.image);

        EXPECT_THAT(chain(card.calcDataToRead()), IsEmpty());
        EXPECT_THAT(chain(card.calcDataToRead()), IsEmpty());

        EXPECT_EQ(progressOf(card).toStdString(), row.expected);
    }
}

TEST(SCardDriverG2DataToRead, TheCountsOfAFullCardAreUnsigned)
{
    // Every count at its highest: 255 and 65535.
    Bytes application = test::joined({{0x01, 0x01, 0x01}, Bytes(14, 0xFF)});
    Image second = secondApplication(Version::second)
                       .replace(0x0501, application)
                       .replace(0x0525, test::joined({{0x00, 0x08}, Bytes(8, 0xFF)}));
    ImageDriver card(second);

    EXPECT_THAT(chain(card.calcDataToRead()), IsEmpty());

    const std::uint32_t highest = 65535;
    const std::uint32_t expected = 50 + 839 + 279 + (264 + 48) * 255 + (1 + 48 + 21 + 18 + 5 + 10) * highest +
                                   20 + (17 + 20 + 5 * 3) * highest;
    EXPECT_EQ(progressOf(card), QStringLiteral("=== Progress: 0 dataToRead: %1%:0").arg(expected));
}

TEST(SCardDriverG2Read, CountsBeyondTheRecordsOfTheImageAreRefusedWhereTheEfIsRequired)
{
    // 3 kinds × 24 bytes × 11 groups are there; 255 are announced.
    Bytes application = test::driverApplicationG2(Version::first);
    application[3] = 0xFF;
    ImageDriver card(
        smallDriverImage().append(secondApplication(Version::first).replace(0x0501, application)));

    EXPECT_THAT(
        chain(card.read()), ElementsAre(lib("readFromMem() invalid dataset size:792requested:67320", 6700)));
}

TEST(SCardDriverG2Read, CountsBeyondTheRecordsOfTheImageArePassedWhereTheEfIsOptional)
{
    // Places, GNSS places, conditions and vehicle units: 65,535 each.
    Bytes application = test::driverApplicationG2(Version::first);
    for (std::size_t i = 9; i < application.size(); ++i)
        application[i] = 0xFF;
    ImageDriver card(
        smallDriverImage().append(secondApplication(Version::first).replace(0x0501, application)));

    EXPECT_THAT(chain(card.read()), IsEmpty());

    EXPECT_THAT(card.getPlacesG2(), SizeIs(0));
    EXPECT_THAT(card.getGnssPlaces(), SizeIs(0));
    EXPECT_THAT(card.getSpecificConditionsG2(), SizeIs(0));
    EXPECT_THAT(card.getVehicleUnits(), SizeIs(0));
}

TEST(SCardDriverG2Read, AnImageWithoutAnyRecordsIsRead)
{
    Bytes application = test::driverApplicationG2(Version::second);
    for (std::size_t i = 3; i < application.size(); ++i)
        application[i] = 0;
    Image second = secondApplication(Version::second).replace(0x0501, application).replace(0x0525, Bytes(10));
    ImageDriver card(smallDriverImage().append(second));

    EXPECT_THAT(chain(card.read()), IsEmpty());

    EXPECT_THAT(card.getActivitiesG2(), SizeIs(0));
    EXPECT_THAT(card.getVehiclesUsedG2(), SizeIs(0));
    EXPECT_THAT(card.getEventsG2(), SizeIs(0));
    EXPECT_THAT(card.getFaultsG2(), SizeIs(0));
    EXPECT_THAT(card.getBorderCrossings(), SizeIs(0));
}

TEST(SCardDriverG2DataToRead, AFailureOfTheFirstApplicationStandsBehindTheStep)
{
    ImageDriver card(smallDriverImage().without(0x0501).append(secondApplication(Version::first)));

    EXPECT_THAT(
        chain(card.calcDataToRead()),
        ElementsAre(
            lib("calcDataToRead() failed to call SCardDriverG1::calcDataToRead()", 0),
            lib("memSelectFile(): Dataset not found", 0),
            lib("readFromMem() memSelectFile() Failed: ID 501", 0),
            lib("calcDataToRead(): Error reading SCardDriver G1 EF_Application_Identification:", 0)));
}

TEST(SCardDriverG2DataToRead, AFailureInTheFirstApplicationGivesItsIdToTheStep)
{
    ImageDriver card(smallDriverImage().replace(0x0501, Bytes(9)).append(secondApplication(Version::first)));

    EXPECT_THAT(
        chain(card.calcDataToRead()),
        ElementsAre(
            lib("calcDataToRead() failed to call SCardDriverG1::calcDataToRead()", 6700),
            lib("readFromMem() invalid dataset size:9requested:10", 6700),
            lib("calcDataToRead(): Error reading SCardDriver G1 EF_Application_Identification:", 6700)));
}

TEST(SCardDriverG2DataToRead, NeedsTheApplicationIdentificationOfTheSecondApplication)
{
    ImageDriver without(withSecond(secondApplication(Version::first).without(0x0501)));
    EXPECT_THAT(
        chain(without.calcDataToRead()),
        ElementsAre(
            lib(applicationText, 0), lib("memSelectFile(): Dataset not found", 0),
            lib("readFromMem() memSelectFile() Failed: ID 501", 0)));

    ImageDriver cut(withSecond(secondApplication(Version::first).replace(0x0501, Bytes(16, 0x01))));
    EXPECT_THAT(
        chain(cut.calcDataToRead()),
        ElementsAre(
            lib(applicationText, 6700), lib("readFromMem() invalid dataset size:16requested:17", 6700)));
}

TEST(SCardDriverG2DataToRead, AnImageOfVersion2NeedsTheFilesOfThatVersion)
{
    Image second = secondApplication(Version::second).without(0x0525);
    for (const Ef& ef : optionalEfsOfVersion2)
        second.without(ef.fid);
    ImageDriver without(withSecond(second));
    EXPECT_THAT(
        chain(without.calcDataToRead()),
        ElementsAre(
            lib(applicationV2Text, 0), lib("memSelectFile(): Dataset not found", 0),
            lib("readFromMem() memSelectFile() Failed: ID 525", 0)));

    ImageDriver cut(withSecond(secondApplication(Version::second).replace(0x0525, Bytes(9))));
    EXPECT_THAT(
        chain(cut.calcDataToRead()),
        ElementsAre(
            lib(applicationV2Text, 6700), lib("readFromMem() invalid dataset size:9requested:10", 6700)));
}

// saveToFile() and postDownloadTasks()

TEST(SCardDriverG2Save, AClosedFileIsRefusedFirst)
{
    ImageDriver card(smallDriverImageG2(Version::first));
    test::DebugStream::clear();

    EXPECT_EQ(test::saveToClosedFile(card), test::notOpened);
    EXPECT_THAT(test::DebugStream::lines(), IsEmpty());
    ASSERT_THAT(chain(card.read()), IsEmpty());
    EXPECT_EQ(test::saveToClosedFile(card), test::notOpened);
}

TEST(SCardDriverG2Save, DataThatAreNotValidAreRefusedNextAndTheStreamSaysWhatIsKnown)
{
    SCardDriverG2 blank;
    EXPECT_EQ(saveToOpenFile(blank), noValidData);
    EXPECT_THAT(test::DebugStream::lines(), ElementsAre(QStringLiteral("Save failed g2: false false")));

    ImageDriver unread(smallDriverImageG2(Version::first));
    test::DebugStream::clear();
    EXPECT_EQ(saveToOpenFile(unread), noValidData);
    EXPECT_THAT(test::DebugStream::lines(), ElementsAre(QStringLiteral("Save failed g2: false false")));

    ASSERT_THAT(chain(unread.readCardInfo()), IsEmpty());
    test::DebugStream::clear();
    EXPECT_EQ(saveToOpenFile(unread), noValidData);
    EXPECT_THAT(test::DebugStream::lines(), ElementsAre(QStringLiteral("Save failed g2: false true")));
}

TEST(SCardDriverG2Save, DataOfAnImageAreRefusedAndNothingIsWritten)
{
    ImageDriver card(smallDriverImageG2(Version::second));
    ASSERT_THAT(chain(card.read()), IsEmpty());
    test::DebugStream::clear();

    EXPECT_EQ(saveToOpenFile(card), notAllowed);
    EXPECT_THAT(test::DebugStream::lines(), IsEmpty());
}

TEST(SCardDriverG2PostDownload, AnImageHasNothingToDo)
{
    ImageDriver unread(smallDriverImageG2(Version::first));
    EXPECT_THAT(chain(unread.postDownloadTasks()), IsEmpty());

    ImageDriver read(smallDriverImageG2(Version::second));
    ASSERT_THAT(chain(read.read()), IsEmpty());
    EXPECT_THAT(chain(read.postDownloadTasks()), IsEmpty());

    ImageDriver secondOnly(secondApplication(Version::first));
    EXPECT_THAT(chain(secondOnly.postDownloadTasks()), IsEmpty());
}

TEST(SCardDriverG2PostDownload, WithoutAConnectionTheSelectionOfTheFirstApplicationFails)
{
    SCardDriverG2 card;

    EXPECT_THAT(
        chain(card.postDownloadTasks()), ElementsAre(
                                             lib("read() Select DF_Tachograph failed", 0),
                                             lib("ScSelectFile(): No valid scard connection", 0)));
}

// Days of both applications

std::vector<qint64> datesOf(const std::vector<SCardDriverG1::_DAILY_ACTIVITIES>& days)
{
    std::vector<qint64> dates;
    for (const auto& day : days)
        dates.push_back(day.date.toSecsSinceEpoch());
    return dates;
}

/// A card whose first application has one day and whose second one has this buffer.
Image imageWithDays(const ActivityBuffer& second)
{
    ActivityBuffer first(60);
    first.day(march5 + 43200, {change(work, 0), change(rest, 100)});
    return test::imageWith(first).append(
        secondApplication(Version::first)
            .replace(
                0x0501, test::driverApplicationG2(Version::first, static_cast<unsigned int>(second.length())))
            .replace(0x0504, second.payload()));
}

TEST(SCardDriverG2Days, EachApplicationHasItsOwn)
{
    ActivityBuffer buffer(100);
    buffer.at(80)
        .day(march6 + 43200, {change(work, 0), change(rest, 7)})
        .day(march5 + 43200, {change(rest, 0), change(test::driving, 20), change(rest, 60)});
    ImageDriver card(imageWithDays(buffer));
    ASSERT_THAT(chain(card.read()), IsEmpty());

    EXPECT_THAT(datesOf(card.getActivities()), ElementsAre(march5 + 43200));
    const auto days = card.getActivitiesG2();
    ASSERT_THAT(datesOf(days), ElementsAre(march5 + 43200, march6 + 43200));
    EXPECT_EQ(days[0].rest, 20);
    EXPECT_EQ(days[0].driving, 40);
    EXPECT_THAT(days[0].items, SizeIs(3));
    EXPECT_EQ(days[1].work, 7);
}

TEST(SCardDriverG2Days, TheFiguresAnswerFromTheFirstApplication)
{
    ActivityBuffer buffer(40);
    buffer.day(march5 + 43200, {change(work, 0), change(rest, 7)})
        .day(march6 + 43200, {change(work, 0), change(rest, 9)});
    ImageDriver card(imageWithDays(buffer));
    ASSERT_THAT(chain(card.read()), IsEmpty());

    const QDate march5th(2024, 3, 5);
    int minutes[5] = {};
    EXPECT_TRUE(card.getDayStatistics(march5th, minutes[0], minutes[1], minutes[2], minutes[3], minutes[4]));
    EXPECT_EQ(minutes[0], 100);
    EXPECT_EQ(card.getRemainingDrivingTimeOfDay(march5th), 440);
    EXPECT_EQ(card.getRemainingDrivingTimeOfWeek(march5th.addDays(1)), 3260);
    EXPECT_EQ(card.getTimeToNextBreak(march5th), 170);
    EXPECT_EQ(card.getDateOfLastActivity().toSecsSinceEpoch(), march5 + 43200);
    EXPECT_FALSE(card.getDayStatistics(
        march5th.addDays(1), minutes[0], minutes[1], minutes[2], minutes[3], minutes[4]));
}

TEST(SCardDriverG2Days, TheBuilderWorksOnTheSecondApplication)
{
    ActivityBuffer buffer(40);
    buffer.day(march6, {change(work, 0), change(rest, 7)}).day(march6 + 86400, {}, 41);
    ImageDriver card(imageWithDays(buffer));

    EXPECT_THAT(chain(card.read()), IsEmpty());
    EXPECT_THAT(
        chain(card.buildDailyActivityList()),
        ElementsAre(lib("buildDailyActivityList: Invalid activityRecordLength", 0)));

    EXPECT_THAT(datesOf(card.getActivitiesG2()), ElementsAre(march6));
    EXPECT_THAT(datesOf(card.getActivities()), ElementsAre(march5 + 43200));
    EXPECT_THAT(chain(card.SCardDriverG1::buildDailyActivityList()), IsEmpty());
    EXPECT_THAT(datesOf(card.getActivities()), ElementsAre(march5 + 43200));
}

TEST(SCardDriverG2Days, ALengthWithoutItsBytesFails)
{
    ImageDriver card(smallDriverImageG2(Version::first));
    ASSERT_THAT(chain(card.calcDataToRead()), IsEmpty());

    EXPECT_THAT(
        chain(card.buildDailyActivityList()),
        ElementsAre(lib("buildDailyActivityList: Invalid activityStructureLength", 0)));
    EXPECT_THAT(card.getActivitiesG2(), IsEmpty());
}

TEST(SCardDriverG2Days, ABlankObjectHasNone)
{
    SCardDriverG2 card;

    EXPECT_THAT(chain(card.buildDailyActivityList()), IsEmpty());
    EXPECT_THAT(card.getActivitiesG2(), IsEmpty());
    EXPECT_THAT(card.getActivities(), IsEmpty());
}

} // namespace
