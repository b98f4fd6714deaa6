#include "fixtures/DriverImage.h"
#include "QtPrinters.h"

#include <scard/SCardCompanyG1.h>
#include <scard/SCardCompanyG2.h>
#include <scard/SCardDriverG1.h>
#include <scard/SCardDriverG2.h>
#include <scard/SCardReader.h>
#include <scard/SCardWorkshopG1.h>
#include <scard/SCardWorkshopG2.h>
#include <support/DebugStream.h>
#include <support/ErrorChain.h>

#include <gmock/gmock.h>

#include <QCoreApplication>
#include <QMetaType>

#include <string>
#include <typeinfo>

// What a reader object does before it meets PC/SC.

namespace {

using scard::RegionDDD;
using scard::RegionTGD;
using scard::SCardDriverG1;
using scard::SCardGeneric;
using scard::SCardReader;
using test::chain;
using test::Image;
using test::ImageFile;
using test::lib;
using testing::ElementsAre;
using testing::IsEmpty;

QDateTime moment()
{
    return QDateTime(QDate(2024, 3, 5), QTime(14, 7), Qt::UTC);
}

TEST(SCardReader, ReadingBeforeOpeningFailsAndTellsNothing)
{
    SCardReader reader;
    int told = 0;
    QObject::connect(&reader, &SCardReader::cardType, [&] { ++told; });
    QObject::connect(&reader, &SCardReader::readDone, [&] { ++told; });
    QObject::connect(&reader, &SCardReader::error, [&] { ++told; });
    QObject::connect(&reader, &SCardReader::progress, [&] { ++told; });

    EXPECT_THAT(chain(reader.read(RegionDDD)), ElementsAre(lib("No SCardReader Connection established", 0)));

    EXPECT_EQ(told, 0);
}

TEST(SCardReader, ADriverCardOfTheFirstGenerationGetsItsClass)
{
    ImageFile file(test::smallDriverImage());
    SCardGeneric generic(file, moment(), RegionTGD);
    ASSERT_THAT(chain(generic.readCardInfo()), IsEmpty());
    SCardReader reader;

    const std::shared_ptr<SCardGeneric> card = reader.generateSpecific(generic);

    ASSERT_NE(dynamic_cast<SCardDriverG1*>(card.get()), nullptr);
    EXPECT_EQ(card.use_count(), 1);
    EXPECT_EQ(card->getCardType(), scard::SCardMeta::DriverCard);
    EXPECT_EQ(card->getDownloadTimestamp(), moment());
    unsigned int serial = 0;
    EXPECT_THAT(
        chain(card->getCardSerial(serial)),
        ElementsAre(lib("getCardSerial(): card info not yet available", 0)));
    EXPECT_THAT(chain(card->read()), IsEmpty());
    EXPECT_EQ(card->getFilename(), QStringLiteral("C_DF00000012345601_D_20240305_1407.TGD"));
}

TEST(SCardReader, TypeAndGenerationChooseTheClass)
{
    const struct
    {
        unsigned char type;
        unsigned char generation;
        unsigned char version;
        const std::type_info& expected;
    } rows[] = {
        {1, test::dataG1, 0, typeid(SCardDriverG1)},
        {1, test::dataG2, 0, typeid(scard::SCardDriverG2)},
        {1, test::dataG2, 1, typeid(scard::SCardDriverG2)},
        {2, test::dataG1, 0, typeid(scard::SCardWorkshopG1)},
        {2, test::dataG1, 1, typeid(scard::SCardWorkshopG1)},
        {2, test::dataG2, 0, typeid(scard::SCardWorkshopG2)},
        {2, test::dataG2, 1, typeid(scard::SCardWorkshopG2)},
        {3, test::dataG1, 0, typeid(SCardGeneric)},
        {3, test::dataG2, 0, typeid(SCardGeneric)},
        {3, test::dataG2, 1, typeid(SCardGeneric)},
        {4, test::dataG1, 0, typeid(scard::SCardCompanyG1)},
        {4, test::dataG1, 1, typeid(scard::SCardCompanyG1)},
        {4, test::dataG2, 0, typeid(scard::SCardCompanyG2)},
        {4, test::dataG2, 1, typeid(scard::SCardCompanyG2)},
    };
    SCardReader reader;
    for (const auto& row : rows) {
        SCOPED_TRACE(row.expected.name() + std::to_string(row.version));
        ImageFile file(Image().add(0x0501, row.generation, {row.type, 1, row.version}));
        SCardGeneric generic(file, moment(), RegionTGD);
        ASSERT_THAT(chain(generic.readCardInfo()), IsEmpty());

        const std::shared_ptr<SCardGeneric> card = reader.generateSpecific(generic);

        const SCardGeneric& made = *card;
        EXPECT_EQ(typeid(made), row.expected);
        EXPECT_NE(&made, &generic);
        EXPECT_EQ(card.use_count(), 1);
        EXPECT_EQ(made.getCardType(), static_cast<scard::SCardMeta::Type>(row.type));
        EXPECT_EQ(made.is2ndGeneneration(), row.generation == test::dataG2);
        EXPECT_EQ(made.is2_2Generation(), row.generation == test::dataG2 && row.version == 1);
        EXPECT_EQ(made.getDownloadTimestamp(), moment());
    }
}

TEST(SCardReader, ATypeThatIdentificationRefusesStaysGeneric)
{
    SCardReader reader;
    for (const unsigned char generation : {test::dataG1, test::dataG2}) {
        for (const unsigned char type : test::Bytes{0, 5, 6, 7, 8, 255}) {
            SCOPED_TRACE(static_cast<int>(type));
            ImageFile file(Image().add(0x0501, generation, {type, 1, 1}));
            SCardGeneric generic(file, moment(), RegionDDD);
            ASSERT_FALSE(generic.readCardInfo().isEmpty());

            const std::shared_ptr<SCardGeneric> card = reader.generateSpecific(generic);

            const SCardGeneric& made = *card;
            EXPECT_EQ(typeid(made), typeid(SCardGeneric));
        }
    }
}

TEST(SCardReader, ACardThatWasNotIdentifiedStaysGeneric)
{
    const SCardGeneric blank(0, moment(), RegionDDD);
    SCardReader reader;

    const std::shared_ptr<SCardGeneric> card = reader.generateSpecific(blank);

    const SCardGeneric& made = *card;
    EXPECT_EQ(typeid(made), typeid(SCardGeneric));
}

TEST(SCardReader, ErrorsTravelToAnotherEventLoop)
{
    SCardReader reader;
    QObject receiver;
    test::Chain received;
    QObject::connect(
        &reader, &SCardReader::error, &receiver,
        [&](const aux::Error& failure) { received = chain(failure); }, Qt::QueuedConnection);
    aux::Error failure;
    failure.append(aux::ErrorData(QStringLiteral("libscard"), QStringLiteral("text"), 7));

    Q_EMIT reader.error(failure);
    EXPECT_THAT(received, IsEmpty());
    QCoreApplication::processEvents();

    EXPECT_THAT(received, ElementsAre(lib("text", 7)));
}

TEST(SCardReader, CardsAndTypesTravelToAnotherEventLoop)
{
    SCardReader reader;
    QObject receiver;
    std::shared_ptr<SCardGeneric> card;
    auto type = scard::SCardMeta::Reserved;
    QObject::connect(
        &reader, &SCardReader::readDone, &receiver,
        [&](const std::shared_ptr<SCardGeneric>& done) { card = done; }, Qt::QueuedConnection);
    QObject::connect(
        &reader, &SCardReader::cardType, &receiver, [&](scard::SCardMeta::Type told) { type = told; },
        Qt::QueuedConnection);
    const auto sent = std::make_shared<SCardGeneric>(0, moment(), RegionDDD);

    Q_EMIT reader.readDone(sent);
    Q_EMIT reader.cardType(scard::SCardMeta::CompanyCard);
    QCoreApplication::processEvents();

    EXPECT_EQ(card, sent);
    EXPECT_EQ(type, scard::SCardMeta::CompanyCard);
}

TEST(SCardReader, MakingOneTouchesNothing)
{
    {
        const SCardReader reader;
    }
    EXPECT_THAT(test::DebugStream::lines(), IsEmpty());
}

} // namespace
