#include "fixtures/CardOnImage.h"
#include "fixtures/CompanyImage.h"
#include "fixtures/ImageFailure.h"
#include "fixtures/RecordBytes.h"
#include "fixtures/ValueChecks.h"
#include "QtPrinters.h"

#include <scard/SCardCompanyG2.h>
#include <support/DebugStream.h>
#include <support/ErrorChain.h>

#include <gmock/gmock.h>

#include <QString>
#include <QStringList>

#include <cstring>
#include <string>
#include <vector>

// Company cards of the second generation on images made by hand. A download makes no image with records of
// that generation's type; these have them, to answer as a card does.

namespace {

using scard::SCardCompanyG2;
using scard::SCardGeneric;
using test::behind;
using test::Bytes;
using test::chain;
using test::companyApplication;
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
using test::smallCompanyImage;
using test::typesOf;
using test::Version;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

using ImageCompany = test::CardOnImage<SCardCompanyG2>;

// In reading order.
const test::Efs efsOfSecond = {
    {0x0520, "520", "\nEF_Identification", "Error reading EF_Identification:"},
    {0x0501, "501", "\nEF_Application_Identification", "Error reading EF_Application_Identification:"},
    {0xC100, "c100", "\nEF_MA_Certificate", "Error reading EF_MA_Certificate:"},
    {0xC108, "c108", "\nEF_CA_Certificate", "Error reading EF_CA_Certificate:"},
    {0xC109, "c109", "\nEF_Link_Certificate", "Error reading EF_Link_Certificate:"},
    {0x050D, "50d", "\nEF_Company_Activity_Data", "Error reading EF_Company_Activity:"},
};

const Ef efOfVersion2{
    0x0525, "525", "\nEF_Application_Identification_V2", "Error reading EF_Application_Identification_V2:"};

const test::Efs efsOfFirst = {
    {0x0501, "501", "\nEF_Application_Identification", "Error reading EF_Application_Identification:"},
    {0xC100, "c100", "\nEF_Card_Certificate", "Error reading EF_Card_Certificate:"},
    {0xC108, "c108", "\nEF_CA_Certificate", "Error reading EF_CA_Certificate:"},
    {0x050D, "50d", "\nEF_Company_Activity_Data", "Error reading EF_Company_Activity:"},
};

QStringList labelsOfSecond(Version version)
{
    QStringList labels = test::labelsOf({efsOfSecond});
    if (version == Version::second)
        labels += test::labelsOf({{efOfVersion2}});
    return labels;
}

QStringList allLabels(Version version)
{
    return labelsOfSecond(version) + test::labelsOf({efsOfFirst});
}

const char applicationText[] =
    "calcDataToRead(): Error reading SCardCompany G2 EF_Application_Identification:";
const char applicationV2Text[] =
    "calcDataToRead(): Error reading SCardCompany G2 EF_Application_Identification_V2:";
const char applicationG1Text[] =
    "calcDataToRead(): Error reading SCardCompany G1 EF_Application_Identification:";
const char firstFailedText[] = "calcDataToRead() failed to call SCardCompanyG1::calcDataToRead()";

Image second(Version version)
{
    return test::secondCompanyApplication(version, test::dataG2);
}

/// The first application and a changed second one.
Image withSecond(const Image& secondApplication)
{
    return smallCompanyImage().append(secondApplication);
}

Image bothApplications(Version version)
{
    return withSecond(second(version));
}

Bytes bytesOf(const scard::CompanyCard_EF_Identification& identification)
{
    return test::recordBytes(identification);
}

// read()

TEST(SCardCompanyG2Read, ReadsTheSecondApplicationAndThenTheFirst)
{
    const struct
    {
        Version version;
        std::size_t efs;
    } rows[] = {{Version::first, 6 + 4}, {Version::second, 7 + 4}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.efs);
        ImageCompany card(bothApplications(row.version));
        test::DebugStream::clear();

        EXPECT_THAT(chain(card.read()), IsEmpty());

        EXPECT_THAT(loggedLabels(), SizeIs(row.efs));
        EXPECT_EQ(loggedLabels(), allLabels(row.version));
        EXPECT_THAT(loggedErrors(), IsEmpty());
        EXPECT_EQ(bytesOf(card.getCardIdentification()), bytesOf(test::spedition()));
        EXPECT_EQ(card.getCardHolderName(), QStringLiteral("Muster Spedition"));
        EXPECT_THAT(typesOf(card.getCompanyActivities()), ElementsAre(1, 2));
        EXPECT_THAT(typesOf(card.getCompanyActivitiesG2()), ElementsAre(3, 4));
        EXPECT_EQ(card.getFilename(), QStringLiteral("C_20240305_1407_Company Card_0012345603240A.DDD"));
        EXPECT_EQ(saveToOpenFile(card), notAllowed);
    }
}

TEST(SCardCompanyG2Read, TakesAnIdentifiedCard)
{
    const ImageCompany first(bothApplications(Version::first));
    EXPECT_EQ(first.getCardType(), scard::SCardMeta::CompanyCard);
    EXPECT_TRUE(first.is2ndGeneneration());
    EXPECT_FALSE(first.is2_2Generation());

    const ImageCompany second(bothApplications(Version::second));
    EXPECT_TRUE(second.is2_2Generation());
}

TEST(SCardCompanyG2Read, TellsLanguageAndCompanyOnceTheIdentificationIsRead)
{
    auto identification = test::spedition();
    identification.companyName = test::nameField(2, "  \xA3uk Transport ");
    std::memcpy(identification.cardHolderPreferredLanguage, "PL", 2);
    ImageCompany card(withSecond(second(Version::first).replace(0x0520, bytesOf(identification))));
    QStringList told;
    QObject::connect(&card, &SCardGeneric::cardLanguage, [&](const QLocale& language) {
        told << QLocale::languageToString(language.language()) << lastLoggedLabel();
    });
    QObject::connect(&card, &SCardGeneric::cardHolderName, [&](const QString& name) {
        told << name << lastLoggedLabel();
    });

    EXPECT_THAT(chain(card.read()), IsEmpty());

    EXPECT_THAT(
        told, ElementsAre(
                  QStringLiteral("Polish"), QStringLiteral("\nEF_Identification"),
                  QStringLiteral("\u0141uk Transport"), QStringLiteral("\nEF_Identification")));
    EXPECT_EQ(card.getCardHolderName(), QStringLiteral("\u0141uk Transport"));
}

TEST(SCardCompanyG2Read, TheCompanyIsAnnouncedBeforeALaterEfFails)
{
    ImageCompany card(withSecond(second(Version::first).without(0x050D)));
    QStringList told;
    QObject::connect(&card, &SCardGeneric::cardHolderName, [&](const QString& name) { told << name; });

    EXPECT_FALSE(card.read().isEmpty());

    EXPECT_THAT(told, ElementsAre(QStringLiteral("Muster Spedition")));
}

TEST(SCardCompanyG2Read, WithoutIdentificationNobodyIsAnnounced)
{
    ImageCompany card(withSecond(second(Version::first).without(0x0520)));
    int told = 0;
    QObject::connect(&card, &SCardGeneric::cardLanguage, [&] { ++told; });
    QObject::connect(&card, &SCardGeneric::cardHolderName, [&] { ++told; });

    EXPECT_FALSE(card.read().isEmpty());

    EXPECT_EQ(told, 0);
}

TEST(SCardCompanyG2Read, TheFileOfVersion2IsReadOnCardsOfThatVersionOnly)
{
    ImageCompany card(
        withSecond(second(Version::second).replace(0x0501, companyApplication(Version::first, 3))));
    test::DebugStream::clear();

    EXPECT_THAT(chain(card.read()), IsEmpty());

    EXPECT_EQ(loggedLabels(), allLabels(Version::first));
}

void expectFailureWithout(const Ef& ef)
{
    SCOPED_TRACE(ef.failureText);
    ImageCompany card(withSecond(second(Version::second).without(ef.fid)));
    test::DebugStream::clear();

    EXPECT_EQ(chain(card.read()), behind(missing(ef.hexFid), ef.failureText));

    EXPECT_EQ(lastLoggedLabel(), QString::fromLatin1(ef.label));
    EXPECT_THAT(loggedErrors(), ElementsAre(logged(ef.failureText, missing(ef.hexFid))));
    test::DebugStream::clear();
    EXPECT_EQ(saveToOpenFile(card), noValidData);
    EXPECT_THAT(test::DebugStream::lines(), IsEmpty());
}

TEST(SCardCompanyG2Read, FailsWithoutAnyEfOfTheSecondApplication)
{
    for (const Ef& ef : efsOfSecond) {
        if (ef.fid != 0x0501)
            expectFailureWithout(ef);
    }
    expectFailureWithout(efOfVersion2);
}

TEST(SCardCompanyG2Read, FailsWithoutTheApplicationIdentification)
{
    ImageCompany card(withSecond(second(Version::first).without(0x0501)));
    test::DebugStream::clear();

    EXPECT_EQ(chain(card.read()), behind(missing("501"), "Error reading EF_Application_Identification:"));

    EXPECT_THAT(
        loggedLabels(),
        ElementsAre(
            QStringLiteral("\nEF_Identification"), QStringLiteral("\nEF_Application_Identification")));
    EXPECT_EQ(saveToOpenFile(card), noValidData);
}

TEST(SCardCompanyG2Read, AnEfOneByteShortFails)
{
    const struct
    {
        unsigned short fid;
        std::size_t length;
        std::size_t requested;
        const char* failureText;
    } rows[] = {
        {0x0520, 138, 139, "Error reading EF_Identification:"},
        {0x0501, 4, 5, "Error reading EF_Application_Identification:"},
        {0xC100, 203, 204, "Error reading EF_MA_Certificate:"},
        {0xC108, 203, 204, "Error reading EF_CA_Certificate:"},
        {0xC109, 203, 204, "Error reading EF_Link_Certificate:"},
        {0x050D, 1, 2, "Error reading EF_Company_Activity:"},
        {0x050D, 139, 138, "Error reading EF_Company_Activity:"},
        {0x0525, 3, 4, "Error reading EF_Application_Identification_V2:"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.failureText);
        // Cut, so that the version in it is still the same.
        Bytes cut = row.fid == 0x0501 ? companyApplication(Version::second, 3) : Bytes();
        cut.resize(row.length);
        ImageCompany card(withSecond(second(Version::second).replace(row.fid, cut)));
        test::Chain expected = test::tooShort(row.length, row.requested);
        expected.push_back(lib(row.failureText, 6700));

        EXPECT_EQ(chain(card.read()), expected);

        EXPECT_EQ(saveToOpenFile(card), noValidData);
    }
}

TEST(SCardCompanyG2Read, ADamagedFirstApplicationDoesNotStopTheSecond)
{
    for (const Ef& ef : efsOfFirst) {
        SCOPED_TRACE(ef.failureText);
        ImageCompany card(smallCompanyImage().without(ef.fid).append(second(Version::second)));
        test::DebugStream::clear();

        EXPECT_THAT(chain(card.read()), IsEmpty());

        EXPECT_EQ(loggedLabels().mid(0, 7), labelsOfSecond(Version::second));
        EXPECT_EQ(lastLoggedLabel(), QString::fromLatin1(ef.label));
        EXPECT_TRUE(loggedErrors().contains(logged(ef.failureText, missing(ef.hexFid))));
        EXPECT_THAT(card.getCompanyActivities(), IsEmpty());
        EXPECT_THAT(typesOf(card.getCompanyActivitiesG2()), ElementsAre(3, 4));
        EXPECT_EQ(saveToOpenFile(card), notAllowed);
    }
}

TEST(SCardCompanyG2Read, WithoutTheFirstApplicationTheSecondIsRead)
{
    ImageCompany card(second(Version::second));
    test::DebugStream::clear();

    EXPECT_THAT(chain(card.read()), IsEmpty());

    EXPECT_EQ(loggedLabels(), labelsOfSecond(Version::second));
    EXPECT_THAT(card.getCompanyActivities(), IsEmpty());
    EXPECT_THAT(typesOf(card.getCompanyActivitiesG2()), ElementsAre(3, 4));
    EXPECT_EQ(saveToOpenFile(card), notAllowed);
}

TEST(SCardCompanyG2Read, AFileOfADownloadHasNoSecondApplication)
{
    ImageCompany card(test::companyFileG2(Version::second));
    test::DebugStream::clear();

    EXPECT_THAT(
        chain(card.read()), ElementsAre(
                                lib("memSelectFile(): Dataset not found", 27266),
                                lib("read() Select DF_Tachograph failed", 27266)));
    EXPECT_THAT(loggedLabels(), IsEmpty());
    EXPECT_EQ(saveToOpenFile(card), noValidData);
}

TEST(SCardCompanyG2Read, ACardWithoutActivitiesNeedsTheirPointerOnly)
{
    ImageCompany card(withSecond(second(Version::first)
                                     .replace(0x0501, companyApplication(Version::first, 0))
                                     .replace(0x050D, {0x00, 0x00})));

    EXPECT_THAT(chain(card.read()), IsEmpty());

    EXPECT_THAT(card.getCompanyActivitiesG2(), IsEmpty());
    EXPECT_THAT(typesOf(card.getCompanyActivities()), ElementsAre(1, 2));
}

TEST(SCardCompanyG2Read, CanBeDoneAgain)
{
    ImageCompany card(bothApplications(Version::second));
    ASSERT_THAT(chain(card.read()), IsEmpty());
    test::DebugStream::clear();

    EXPECT_THAT(chain(card.read()), IsEmpty());

    EXPECT_EQ(loggedLabels(), allLabels(Version::second));
    EXPECT_THAT(typesOf(card.getCompanyActivitiesG2()), ElementsAre(3, 4));
    EXPECT_EQ(saveToOpenFile(card), notAllowed);
}

TEST(SCardCompanyG2Read, ABlankObjectHasNothingToReadAndAnswersWithNothing)
{
    SCardCompanyG2 card;

    EXPECT_THAT(
        chain(card.read()), ElementsAre(
                                lib("ScSelectFile(): No valid scard connection", 0),
                                lib("read() Select DF_Tachograph failed", 0)));
    EXPECT_EQ(bytesOf(card.getCardIdentification()), Bytes(139));
    EXPECT_EQ(card.getCardHolderName(), QString());
    EXPECT_THAT(card.getCompanyActivities(), IsEmpty());
    EXPECT_THAT(card.getCompanyActivitiesG2(), IsEmpty());
}

TEST(SCardCompanyG2Read, DoesNotCountTheFilesOfTheIdentification)
{
    ImageCompany card(bothApplications(Version::first));
    ASSERT_THAT(chain(card.calcDataToRead()), IsEmpty());
    ASSERT_THAT(chain(card.read()), IsEmpty());

    EXPECT_EQ(progressOf(card), QStringLiteral("=== Progress: 0 dataToRead: 1472%:0"));
}

// calcDataToRead()

TEST(SCardCompanyG2DataToRead, AddsUpBothApplicationsByTheirCounts)
{
    const struct
    {
        const char* name;
        Image image;
        const char* expected;
    } rows[] = {
        // 428 + 46 × 2; 38 + 205 + 305 + 125 + 141 + 46 × 3
        {"first version", bothApplications(Version::first), "=== Progress: 0 dataToRead: 1472%:0"},
        {"version 2.2", bothApplications(Version::second), "=== Progress: 0 dataToRead: 1476%:0"},
        {"no activities",
         withSecond(second(Version::first).replace(0x0501, companyApplication(Version::first, 0))),
         "=== Progress: 0 dataToRead: 1334%:0"},
        {"highest count",
         withSecond(second(Version::first).replace(0x0501, companyApplication(Version::first, 0xFFFF))),
         "=== Progress: 0 dataToRead: 3015944%:0"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        ImageCompany card(row.image);

        EXPECT_THAT(chain(card.calcDataToRead()), IsEmpty());
        EXPECT_THAT(chain(card.calcDataToRead()), IsEmpty());

        EXPECT_EQ(progressOf(card).toStdString(), row.expected);
    }
}

TEST(SCardCompanyG2DataToRead, ACertificateThatIsMissingCountsNothing)
{
    const struct
    {
        unsigned short fid;
        unsigned int rest;
    } rows[] = {{0xC100, 1267}, {0xC108, 1167}, {0xC109, 1347}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.fid);
        ImageCompany card(withSecond(second(Version::first).without(row.fid)));

        EXPECT_THAT(chain(card.calcDataToRead()), IsEmpty());

        EXPECT_EQ(progressOf(card), QStringLiteral("=== Progress: 0 dataToRead: %1%:0").arg(row.rest));
    }
}

TEST(SCardCompanyG2DataToRead, TheStepStandsBehindAFailureInTheFirstApplication)
{
    const struct
    {
        Image first;
        test::Chain expected;
    } rows[] = {
        {smallCompanyImage().without(0x0501),
         {lib("memSelectFile(): Dataset not found", 0),
          lib("readFromMem() memSelectFile() Failed: ID 501", 0), lib(applicationG1Text, 0),
          lib(firstFailedText, 0)}},
        {smallCompanyImage().replace(0x0501, Bytes(4)),
         {lib("readFromMem() invalid dataset size:4requested:5", 6700), lib(applicationG1Text, 6700),
          lib(firstFailedText, 6700)}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.expected.front().message);
        Image image = row.first;
        ImageCompany card(image.append(second(Version::first)));

        EXPECT_EQ(chain(card.calcDataToRead()), row.expected);
    }
}

void expectTotalFails(const Image& secondApplication, const char* text, const aux::Error& lower)
{
    SCOPED_TRACE(text);
    ImageCompany card(withSecond(secondApplication));
    test::DebugStream::clear();

    EXPECT_EQ(chain(card.calcDataToRead()), behind(lower, text));

    EXPECT_EQ(lastLogged(), logged(text, lower));
}

TEST(SCardCompanyG2DataToRead, NeedsTheApplicationIdentificationOfTheSecondApplication)
{
    expectTotalFails(second(Version::first).without(0x0501), applicationText, missing("501"));
    expectTotalFails(
        second(Version::first).replace(0x0501, Bytes(4, 0x04)), applicationText,
        libraryFailure({"readFromMem() invalid dataset size:4requested:5"}, 6700));
}

TEST(SCardCompanyG2DataToRead, ACardOfVersion2NeedsTheFileOfThatVersion)
{
    expectTotalFails(second(Version::second).without(0x0525), applicationV2Text, missing("525"));
    expectTotalFails(
        second(Version::second).replace(0x0525, Bytes(3)), applicationV2Text,
        libraryFailure({"readFromMem() invalid dataset size:3requested:4"}, 6700));
}

// postDownloadTasks()

TEST(SCardCompanyG2PostDownload, HasNothingToDo)
{
    SCardCompanyG2 blank;
    EXPECT_THAT(chain(blank.postDownloadTasks()), IsEmpty());

    ImageCompany card(bothApplications(Version::first));
    EXPECT_THAT(chain(card.postDownloadTasks()), IsEmpty());
}

} // namespace
