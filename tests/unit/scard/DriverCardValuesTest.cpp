#include "fixtures/DriverImage.h"
#include "fixtures/DriverImageG2.h"
#include "fixtures/RecordBytes.h"
#include "fixtures/ValueChecks.h"
#include "QtPrinters.h"

#include <scard/DriverCardValues.h>
#include <scard/SCardDriverG1.h>
#include <scard/SCardDriverG2.h>
#include <support/ErrorChain.h>

#include <gmock/gmock.h>

#include <QDateTime>
#include <QString>

#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

// What the further records of a driver card say, as values.

namespace {

using scard::SCardDriverG1;
using scard::SCardDriverG2;
using test::Bytes;
using test::chain;
using test::field;
using test::Image;
using test::joined;
using test::notKnown;
using test::number;
using test::registration;
using test::secondsOf;
using test::timeReal;
using test::Version;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr std::uint32_t march5 = 0x65E66080; // 2024-03-05 00:00 UTC

/// FID and payload of a data record.
using Efs = std::vector<std::pair<unsigned short, Bytes>>;

using CardG1 = test::ReadCard<SCardDriverG1>;
using CardG2 = test::ReadCard<SCardDriverG2>;

Image firstWith(const Efs& efs)
{
    Image image = test::smallDriverImage();
    for (const auto& entry : efs)
        image.replace(entry.first, entry.second);
    return image;
}

Image bothWith(const Efs& secondEfs)
{
    Image second = test::secondApplication(Version::second);
    for (const auto& entry : secondEfs)
        second.replace(entry.first, entry.second);
    return test::smallDriverImage().append(second);
}

/// A pointer, @p records and empty slots up to @p count of them.
Bytes cyclic(std::size_t count, std::size_t recordSize, const std::vector<Bytes>& records)
{
    Bytes ef(2 + count * recordSize);
    for (std::size_t i = 0; i < records.size(); ++i)
        test::put(ef, 2 + i * recordSize, records[i]);
    return ef;
}

/// Records from the EF's start and empty slots up to @p size bytes.
Bytes plain(std::size_t size, std::size_t headLength, const std::vector<Bytes>& records)
{
    Bytes ef(size);
    std::size_t offset = headLength;
    for (const Bytes& record : records) {
        test::put(ef, offset, record);
        offset += record.size();
    }
    return ef;
}

template <typename Item>
std::vector<qint64> timesOf(const std::vector<Item>& items)
{
    std::vector<qint64> times;
    for (const Item& item : items)
        times.push_back(secondsOf(item.time));
    return times;
}

void expectNoPosition(const scard::GnssPosition& position)
{
    EXPECT_TRUE(position.time.isNull());
    EXPECT_EQ(position.accuracy, std::nullopt);
    EXPECT_EQ(position.latitude, std::nullopt);
    EXPECT_EQ(position.longitude, std::nullopt);
    EXPECT_EQ(position.authenticationStatus, std::nullopt);
}

// Records of the first generation

Bytes placeG1(std::uint32_t seconds, unsigned char type = 0, unsigned char nation = 0x0D)
{
    return joined({timeReal(seconds), {type, nation, 0x00}, number(123456, 3)});
}

constexpr std::size_t placesSizeG1 = 1 + std::size_t{test::smallCardPlaces} * 10;

TEST(Places, AreDecodedFromTheCardsBytes)
{
    const Bytes record{0x65, 0xE6, 0x60, 0x80, 0x03, 0x0F, 0x11, 0x98, 0x96, 0x7F};
    const CardG1 card(firstWith({{0x0506, plain(placesSizeG1, 1, {record})}}));

    const std::vector<scard::Place> places = card.getPlaces();

    ASSERT_THAT(places, SizeIs(1));
    EXPECT_EQ(secondsOf(places[0].time), qint64{march5});
    EXPECT_EQ(places[0].entryType, 3);
    EXPECT_EQ(places[0].nation.numeric, 0x0F);
    EXPECT_EQ(places[0].nation.alpha, QStringLiteral("E"));
    EXPECT_EQ(places[0].region, 0x11);
    EXPECT_EQ(places[0].odometer, 9999999U);
    expectNoPosition(places[0].position);
}

TEST(Places, AreSortedByTimeAndTheirEmptySlotsLeftOut)
{
    Bytes ef(placesSizeG1);
    test::put(ef, 1, placeG1(3000, 3));
    test::put(ef, 21, placeG1(1000, 1));
    const CardG1 card(firstWith({{0x0506, ef}}));

    EXPECT_THAT(timesOf(card.getPlaces()), ElementsAre(1000, 3000));
}

TEST(Places, ATimeThatIsNotKnownIsNull)
{
    const CardG1 card(firstWith({{0x0506, plain(placesSizeG1, 1, {placeG1(notKnown, 4)})}}));

    EXPECT_THAT(timesOf(card.getPlaces()), ElementsAre(-1));
}

TEST(Places, NationsHaveTheirLetters)
{
    const struct
    {
        unsigned char numeric;
        QString alpha;
    } rows[] = {
        {0x00, QString()},
        {0x0D, QStringLiteral("D")},
        {0x10, QStringLiteral("EST")},
        {0x15, QStringLiteral("UK")},
        {0x40, QString()},
        {0xFD, QStringLiteral("EC")},
        {0xFF, QStringLiteral("WLD")},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(static_cast<int>(row.numeric));
        const CardG1 card(firstWith({{0x0506, plain(placesSizeG1, 1, {placeG1(1, 0, row.numeric)})}}));

        ASSERT_THAT(card.getPlaces(), SizeIs(1));
        EXPECT_EQ(card.getPlaces()[0].nation.numeric, int{row.numeric});
        EXPECT_EQ(card.getPlaces()[0].nation.alpha, row.alpha);
    }
}

TEST(Places, OfAnImageWithoutThemAreNone)
{
    EXPECT_THAT(CardG1(test::smallDriverImage().without(0x0506)).getPlaces(), IsEmpty());
}

TEST(SpecificConditions, AreDecodedSortedAndTheirEmptySlotsLeftOut)
{
    Bytes ef(280);
    test::put(ef, 0, {0x65, 0xE6, 0x60, 0x80, 0x03});
    test::put(ef, 10, {0x65, 0xE6, 0x60, 0x7F, 0x01});
    test::put(ef, 275, {0x65, 0xE6, 0x60, 0x81, 0x04});
    const CardG1 card(firstWith({{0x0522, ef}}));

    const std::vector<scard::SpecificCondition> conditions = card.getSpecificConditions();

    ASSERT_THAT(timesOf(conditions), ElementsAre(march5 - 1, march5, march5 + 1));
    EXPECT_EQ(conditions[0].type, 1);
    EXPECT_EQ(conditions[1].type, 3);
    EXPECT_EQ(conditions[2].type, 4);
}

Bytes currentUseBytes()
{
    return joined({timeReal(march5), registration(0x10, 5, " \xC1\xB0 0815")});
}

void expectCurrentUse(const scard::CurrentUse& use)
{
    EXPECT_EQ(secondsOf(use.begin), qint64{march5});
    EXPECT_EQ(use.nation.numeric, 0x10);
    EXPECT_EQ(use.nation.alpha, QStringLiteral("EST"));
    EXPECT_EQ(use.registration, QStringLiteral("\u0421\u0410 0815"));
}

void expectNoUse(const scard::CurrentUse& use)
{
    EXPECT_TRUE(use.begin.isNull());
    EXPECT_EQ(use.nation.numeric, 0);
    EXPECT_EQ(use.nation.alpha, QString());
    EXPECT_EQ(use.registration, QString());
}

TEST(CurrentUse, IsTheVehicleThatTheCardIsIn)
{
    expectCurrentUse(CardG1(firstWith({{0x0507, currentUseBytes()}})).getCurrentUse());
}

TEST(CurrentUse, IsEmptyWhenTheCardIsInNone)
{
    expectNoUse(CardG1(firstWith({{0x0507, Bytes(19)}})).getCurrentUse());
    expectNoUse(
        CardG1(firstWith({{0x0507, joined({timeReal(notKnown), registration(0, 0, "")})}})).getCurrentUse());
    expectNoUse(CardG1(test::smallDriverImage().without(0x0507)).getCurrentUse());
}

Bytes controlActivityBytes()
{
    return joined(
        {{0xC8},
         timeReal(march5),
         {0x03, 0x0D},
         field("D000000123456001", 16),
         registration(0x11, 1, "AB-123-CD"),
         timeReal(march5 - 86400),
         timeReal(march5 - 1)});
}

void expectControlActivity(const scard::ControlActivity& control)
{
    EXPECT_EQ(control.controlType, 0xC8);
    EXPECT_EQ(secondsOf(control.time), qint64{march5});
    EXPECT_EQ(control.cardType, 3);
    EXPECT_EQ(control.cardNation.numeric, 0x0D);
    EXPECT_EQ(control.cardNation.alpha, QStringLiteral("D"));
    EXPECT_EQ(control.cardNumber, QStringLiteral("D000000123456001"));
    EXPECT_EQ(control.vehicleNation.numeric, 0x11);
    EXPECT_EQ(control.vehicleNation.alpha, QStringLiteral("F"));
    EXPECT_EQ(control.registration, QStringLiteral("AB-123-CD"));
    EXPECT_EQ(secondsOf(control.downloadPeriodBegin), march5 - 86400);
    EXPECT_EQ(secondsOf(control.downloadPeriodEnd), march5 - 1);
}

void expectNoControl(const scard::ControlActivity& control)
{
    EXPECT_EQ(control.controlType, 0);
    EXPECT_TRUE(control.time.isNull());
    EXPECT_EQ(control.cardType, 0);
    EXPECT_EQ(control.cardNation.numeric, 0);
    EXPECT_EQ(control.cardNumber, QString());
    EXPECT_EQ(control.vehicleNation.numeric, 0);
    EXPECT_EQ(control.registration, QString());
    EXPECT_TRUE(control.downloadPeriodBegin.isNull());
    EXPECT_TRUE(control.downloadPeriodEnd.isNull());
}

TEST(ControlActivity, IsTheLastControl)
{
    expectControlActivity(CardG1(firstWith({{0x0508, controlActivityBytes()}})).getControlActivity());
}

TEST(ControlActivity, WithoutADownloadHasNoPeriod)
{
    for (const std::uint32_t never : {0U, notKnown}) {
        SCOPED_TRACE(never);
        const Bytes bytes = joined(
            {{0x10},
             timeReal(march5),
             {0x03, 0x0D},
             field(" D0000001", 16),
             registration(0x11, 1, "AB-123-CD"),
             timeReal(never),
             timeReal(never)});
        const scard::ControlActivity control = CardG1(firstWith({{0x0508, bytes}})).getControlActivity();

        EXPECT_EQ(control.controlType, 0x10);
        EXPECT_EQ(control.cardNumber, QStringLiteral("D0000001"));
        EXPECT_TRUE(control.downloadPeriodBegin.isNull());
        EXPECT_TRUE(control.downloadPeriodEnd.isNull());
    }
}

TEST(ControlActivity, IsEmptyWithoutAControl)
{
    expectNoControl(CardG1(firstWith({{0x0508, Bytes(46)}})).getControlActivity());
    expectNoControl(CardG1(test::smallDriverImage().without(0x0508)).getControlActivity());
}

Bytes licenceBytes()
{
    return joined(
        {{0x02},
         field(
             "Urz\xB1"
             "d",
             35),
         {0x28},
         field("00123/24/0001", 16)});
}

void expectLicence(const scard::DrivingLicence& licence)
{
    EXPECT_EQ(licence.issuingAuthority, QStringLiteral("Urz\u0105d"));
    EXPECT_EQ(licence.issuingNation.numeric, 0x28);
    EXPECT_EQ(licence.issuingNation.alpha, QStringLiteral("PL"));
    EXPECT_EQ(licence.number, QStringLiteral("00123/24/0001"));
}

TEST(DrivingLicence, IsDecodedByItsCodePageAndTrimmed)
{
    expectLicence(CardG1(firstWith({{0x0521, licenceBytes()}})).getDrivingLicence());
}

TEST(DrivingLicence, IsEmptyWhereItWasNotReadOrIsBlank)
{
    const Bytes blank = joined({{0x00}, field("", 35), {0x00}, field("", 16)});
    for (const Image& image : {test::smallDriverImage().without(0x0521), firstWith({{0x0521, blank}})}) {
        const scard::DrivingLicence licence = CardG1(image).getDrivingLicence();
        EXPECT_EQ(licence.issuingAuthority, QString());
        EXPECT_EQ(licence.issuingNation.numeric, 0);
        EXPECT_EQ(licence.issuingNation.alpha, QString());
        EXPECT_EQ(licence.number, QString());
    }
}

TEST(DriverCardValues, OfABlankObjectAreEmpty)
{
    const SCardDriverG1 first;
    EXPECT_THAT(first.getPlaces(), IsEmpty());
    EXPECT_THAT(first.getSpecificConditions(), IsEmpty());
    expectNoUse(first.getCurrentUse());
    expectNoControl(first.getControlActivity());
    EXPECT_EQ(first.getDrivingLicence().issuingAuthority, QString());
    EXPECT_EQ(first.getDrivingLicence().number, QString());

    const SCardDriverG2 second;
    EXPECT_THAT(second.getPlacesG2(), IsEmpty());
    EXPECT_THAT(second.getSpecificConditionsG2(), IsEmpty());
    expectNoUse(second.getCurrentUseG2());
    expectNoControl(second.getControlActivityG2());
    EXPECT_EQ(second.getDrivingLicenceG2().issuingAuthority, QString());
    EXPECT_EQ(second.getDrivingLicenceG2().number, QString());
    EXPECT_THAT(second.getVehicleUnits(), IsEmpty());
    EXPECT_THAT(second.getGnssPlaces(), IsEmpty());
    EXPECT_THAT(second.getBorderCrossings(), IsEmpty());
    EXPECT_THAT(second.getLoadUnloadOperations(), IsEmpty());
    EXPECT_THAT(second.getLoadTypeEntries(), IsEmpty());
}

TEST(DriverCardValues, OfEmptySlotsAreNone)
{
    const CardG2 card(test::smallDriverImageG2(Version::second));

    EXPECT_THAT(card.getPlaces(), IsEmpty());
    EXPECT_THAT(card.getSpecificConditions(), IsEmpty());
    EXPECT_THAT(card.getPlacesG2(), IsEmpty());
    EXPECT_THAT(card.getSpecificConditionsG2(), IsEmpty());
    EXPECT_THAT(card.getVehicleUnits(), IsEmpty());
    EXPECT_THAT(card.getGnssPlaces(), IsEmpty());
    EXPECT_THAT(card.getBorderCrossings(), IsEmpty());
    EXPECT_THAT(card.getLoadUnloadOperations(), IsEmpty());
    EXPECT_THAT(card.getLoadTypeEntries(), IsEmpty());
}

TEST(DriverCardValues, CountsWithoutTheirRecordsMakeNone)
{
    test::CardOnImage<SCardDriverG2> card(test::smallDriverImageG2(Version::second));
    ASSERT_THAT(chain(card.calcDataToRead()), IsEmpty());

    EXPECT_THAT(card.getPlaces(), IsEmpty());
    EXPECT_THAT(card.getPlacesG2(), IsEmpty());
    EXPECT_THAT(card.getVehicleUnits(), IsEmpty());
    EXPECT_THAT(card.getGnssPlaces(), IsEmpty());
    EXPECT_THAT(card.getBorderCrossings(), IsEmpty());
    EXPECT_THAT(card.getLoadUnloadOperations(), IsEmpty());
    EXPECT_THAT(card.getLoadTypeEntries(), IsEmpty());
}

TEST(DriverCardValues, EachApplicationHasItsOwn)
{
    Image first = firstWith({
        {0x0506, plain(placesSizeG1, 1, {placeG1(1000)})},
        {0x0507, currentUseBytes()},
        {0x0508, controlActivityBytes()},
        {0x0521, licenceBytes()},
        {0x0522, plain(280, 0, {{0, 0, 0, 9, 1}})},
    });
    const CardG2 firstOnly(first.append(test::secondApplication(Version::first)));
    EXPECT_THAT(firstOnly.getPlaces(), SizeIs(1));
    EXPECT_THAT(firstOnly.getSpecificConditions(), SizeIs(1));
    expectCurrentUse(firstOnly.getCurrentUse());
    expectControlActivity(firstOnly.getControlActivity());
    expectLicence(firstOnly.getDrivingLicence());
    EXPECT_THAT(firstOnly.getPlacesG2(), IsEmpty());
    EXPECT_THAT(firstOnly.getSpecificConditionsG2(), IsEmpty());
    expectNoUse(firstOnly.getCurrentUseG2());
    expectNoControl(firstOnly.getControlActivityG2());
    EXPECT_EQ(firstOnly.getDrivingLicenceG2().number, QString());

    const CardG2 secondOnly(bothWith({
        {0x0507, currentUseBytes()},
        {0x0508, controlActivityBytes()},
        {0x0521, licenceBytes()},
        {0x0522, cyclic(test::smallG2Conditions, 5, {{0, 0, 0, 9, 4}, {0, 0, 0, 8, 3}})},
    }));
    expectCurrentUse(secondOnly.getCurrentUseG2());
    expectControlActivity(secondOnly.getControlActivityG2());
    expectLicence(secondOnly.getDrivingLicenceG2());
    ASSERT_THAT(timesOf(secondOnly.getSpecificConditionsG2()), ElementsAre(8, 9));
    EXPECT_EQ(secondOnly.getSpecificConditionsG2()[1].type, 4);
    expectNoUse(secondOnly.getCurrentUse());
    expectNoControl(secondOnly.getControlActivity());
    EXPECT_THAT(secondOnly.getSpecificConditions(), IsEmpty());
}

// Positions

/// Paris, 48 degrees 51.5 minutes north, 2 degrees 21.1 minutes east.
const Bytes north{0x00, 0xBD, 0x83};
const Bytes east{0x00, 0x08, 0xA3};
const Bytes noCoordinate{0x7F, 0xFF, 0xFF};

constexpr double parisLatitude = 48 + 51.5 / 60;
constexpr double parisLongitude = 2 + 21.1 / 60;

Bytes position(
    std::uint32_t seconds, const Bytes& latitude = north, const Bytes& longitude = east,
    unsigned char accuracy = 17)
{
    return joined({timeReal(seconds), {accuracy}, latitude, longitude});
}

void expectParis(const scard::GnssPosition& position, std::uint32_t seconds)
{
    EXPECT_EQ(secondsOf(position.time), qint64{seconds});
    EXPECT_EQ(position.accuracy, std::optional<int>(17));
    ASSERT_TRUE(position.latitude && position.longitude);
    EXPECT_NEAR(*position.latitude, parisLatitude, 1e-9);
    EXPECT_NEAR(*position.longitude, parisLongitude, 1e-9);
}

Bytes gnssPlace(std::uint32_t seconds, const Bytes& place, std::uint32_t odometer = 500000)
{
    return joined({timeReal(seconds), place, number(odometer, 3)});
}

/// The position of a card's only place of continuous driving.
scard::GnssPosition decoded(const Bytes& place)
{
    const CardG2 card(bothWith({{0x0524, cyclic(test::smallG2GnssPlaces, 18, {gnssPlace(march5, place)})}}));
    EXPECT_THAT(card.getGnssPlaces(), SizeIs(1));
    return card.getGnssPlaces().empty() ? scard::GnssPosition{} : card.getGnssPlaces()[0].position;
}

TEST(GnssPositions, AreDegreesWithTheirFraction)
{
    const struct
    {
        const char* name;
        Bytes latitude;
        Bytes longitude;
        double expectedLatitude;
        double expectedLongitude;
    } rows[] = {
        {"north and east", north, east, parisLatitude, parisLongitude},
        {"west", north, {0xFF, 0xFB, 0xA8}, parisLatitude, -(1 + 11.2 / 60)},
        {"south", {0xFF, 0x42, 0x7D}, east, -parisLatitude, parisLongitude},
        {"less than a degree", {0x00, 0x00, 0x01}, {0xFF, 0xFF, 0xFF}, 0.1 / 60, -0.1 / 60},
        {"nothing", {0, 0, 0}, {0, 0, 0}, 0, 0},
        {"59.9 minutes", number(10599, 3), number(10599, 3), 10 + 59.9 / 60, 10 + 59.9 / 60},
        {"north pole, date line", number(90000, 3), number(180000, 3), 90, 180},
        {"south pole, date line", number(0xFFFFFF - 89999, 3), number(0xFFFFFF - 179999, 3), -90, -180},
        {"just before", number(89599, 3), number(179599, 3), 89 + 59.9 / 60, 179 + 59.9 / 60},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const scard::GnssPosition result = decoded(position(march5, row.latitude, row.longitude));

        ASSERT_TRUE(result.latitude && result.longitude);
        EXPECT_NEAR(*result.latitude, row.expectedLatitude, 1e-9);
        EXPECT_NEAR(*result.longitude, row.expectedLongitude, 1e-9);
    }
}

TEST(GnssPositions, WhatIsNoPlaceOnEarthIsEmpty)
{
    const struct
    {
        const char* name;
        Bytes latitude;
        Bytes longitude;
    } rows[] = {
        {"not known", noCoordinate, noCoordinate},
        {"60 minutes", number(10600, 3), number(10600, 3)},
        {"99.9 minutes", number(10999, 3), number(10999, 3)},
        {"60 minutes south and west", number(0x1000000 - 10600, 3), number(0x1000000 - 10600, 3)},
        {"a degree too much", number(91000, 3), number(181000, 3)},
        {"a tenth of a minute too much", number(90001, 3), number(180001, 3)},
        {"a degree too much south and west", number(0x1000000 - 91000, 3), number(0x1000000 - 181000, 3)},
        {"lowest numbers", {0x80, 0, 0}, {0x80, 0, 0}},
        {"highest numbers but one", {0x7F, 0xFF, 0xFE}, {0x7F, 0xFF, 0xFE}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const scard::GnssPosition result = decoded(position(march5, row.latitude, row.longitude));

        EXPECT_EQ(result.latitude, std::nullopt);
        EXPECT_EQ(result.longitude, std::nullopt);
        EXPECT_EQ(secondsOf(result.time), qint64{march5});
    }
}

TEST(GnssPositions, ALatitudeDoesNotReachAsFarAsALongitude)
{
    const scard::GnssPosition result = decoded(position(march5, number(100000, 3), number(100000, 3)));

    EXPECT_EQ(result.latitude, std::nullopt);
    EXPECT_EQ(result.longitude, std::optional<double>(100));
}

TEST(GnssPositions, AnAccuracyThatIsNotKnownIsEmpty)
{
    EXPECT_EQ(decoded(position(march5, north, east, 0xFF)).accuracy, std::nullopt);
    EXPECT_EQ(decoded(position(march5, north, east, 0xFE)).accuracy, std::optional<int>(0xFE));
    EXPECT_EQ(decoded(position(march5, north, east, 1)).accuracy, std::optional<int>(1));
}

TEST(GnssPositions, ATimeThatIsNotKnownIsNull)
{
    EXPECT_TRUE(decoded(position(notKnown)).time.isNull());
}

TEST(GnssPositions, ARecordOfZerosIsNoPosition)
{
    expectNoPosition(decoded(Bytes(11)));
}

// Places of the second generation

Bytes placeG2(std::uint32_t seconds, const Bytes& place)
{
    return joined({timeReal(seconds), {0x01, 0x11, 0x00}, number(123456, 3), place});
}

Bytes status(std::uint32_t seconds, unsigned char authenticated)
{
    return joined({timeReal(seconds), {authenticated}});
}

TEST(PlacesG2, AreDecodedFromTheCardsBytes)
{
    const Bytes record{0x65, 0xE6, 0x60, 0x80, 0x05, 0x0F, 0x12, 0x01, 0xE2, 0x40, 0x65,
                       0xE6, 0x60, 0x7E, 0x11, 0x00, 0xBD, 0x83, 0x00, 0x08, 0xA3};
    const CardG2 card(bothWith({{0x0506, cyclic(test::smallG2Places, 21, {record})}}));

    const std::vector<scard::Place> places = card.getPlacesG2();

    ASSERT_THAT(places, SizeIs(1));
    EXPECT_EQ(secondsOf(places[0].time), qint64{march5});
    EXPECT_EQ(places[0].entryType, 5);
    EXPECT_EQ(places[0].nation.numeric, 0x0F);
    EXPECT_EQ(places[0].nation.alpha, QStringLiteral("E"));
    EXPECT_EQ(places[0].region, 0x12);
    EXPECT_EQ(places[0].odometer, 123456U);
    expectParis(places[0].position, march5 - 2);
    EXPECT_EQ(places[0].position.authenticationStatus, std::nullopt);
    EXPECT_THAT(card.getPlaces(), IsEmpty());
}

TEST(PlacesG2, AreSortedAndTheirEmptySlotsLeftOut)
{
    const CardG2 card(bothWith(
        {{0x0506, cyclic(
                      test::smallG2Places, 21,
                      {placeG2(3000, Bytes(11)), Bytes(21), placeG2(1000, position(1000)),
                       placeG2(2000, position(2000))})}}));

    ASSERT_THAT(timesOf(card.getPlacesG2()), ElementsAre(1000, 2000, 3000));
    expectParis(card.getPlacesG2()[0].position, 1000);
    expectNoPosition(card.getPlacesG2()[2].position);
}

TEST(PlacesG2, TakeTheirAuthenticationFromTheRecordOfTheSameTime)
{
    const Bytes places = cyclic(
        test::smallG2Places, 21,
        {placeG2(1000, position(999)), placeG2(2000, position(2000)), placeG2(3000, position(1000))});
    const Bytes statuses =
        cyclic(test::smallG2Places, 5, {status(2000, 0), status(999, 0), Bytes(5), status(1000, 1)});
    const CardG2 card(bothWith({{0x0506, places}, {0x0526, statuses}}));

    const std::vector<scard::Place> result = card.getPlacesG2();

    ASSERT_THAT(timesOf(result), ElementsAre(1000, 2000, 3000));
    EXPECT_EQ(result[0].position.authenticationStatus, std::optional<int>(1));
    EXPECT_EQ(result[1].position.authenticationStatus, std::optional<int>(0));
    EXPECT_EQ(result[2].position.authenticationStatus, std::nullopt);
}

TEST(PlacesG2, WithoutAPositionHaveNothingToAuthenticate)
{
    const CardG2 card(bothWith({
        {0x0506, cyclic(test::smallG2Places, 21, {placeG2(1000, Bytes(11))})},
        {0x0526, cyclic(test::smallG2Places, 5, {status(1000, 0)})},
    }));

    ASSERT_THAT(card.getPlacesG2(), SizeIs(1));
    expectNoPosition(card.getPlacesG2()[0].position);
}

TEST(PlacesG2, HaveNoAuthenticationWithoutItsFile)
{
    const Bytes places = cyclic(test::smallG2Places, 21, {placeG2(1000, position(1000))});
    Image second = test::secondApplication(Version::second).without(0x0526).replace(0x0506, places);
    const CardG2 card(test::smallDriverImage().append(second));

    ASSERT_THAT(card.getPlacesG2(), SizeIs(1));
    EXPECT_EQ(card.getPlacesG2()[0].position.authenticationStatus, std::nullopt);
}

// What only the second generation has

TEST(VehicleUnits, AreDecodedSortedAndTheirEmptySlotsLeftOut)
{
    const Bytes later{0x65, 0xE6, 0x60, 0x80, 0xA1, 0x02, '0', '4', '1', '2'};
    const Bytes earlier{0x65, 0xE6, 0x60, 0x7F, 0x10, 0xFF, 'V', '1', ' ', ' '};
    const CardG2 card(bothWith({{0x0523, cyclic(test::smallG2VehicleUnits, 10, {later, earlier})}}));

    const std::vector<scard::VehicleUnit> units = card.getVehicleUnits();

    ASSERT_THAT(timesOf(units), ElementsAre(march5 - 1, march5));
    EXPECT_EQ(units[0].manufacturerCode, 0x10);
    EXPECT_EQ(units[0].deviceId, 0xFF);
    EXPECT_EQ(units[0].softwareVersion.trimmed(), QStringLiteral("V1"));
    EXPECT_EQ(units[1].manufacturerCode, 0xA1);
    EXPECT_EQ(units[1].deviceId, 2);
    EXPECT_EQ(units[1].softwareVersion, QStringLiteral("0412"));

    const CardG2 other(bothWith({{0x0523, cyclic(test::smallG2VehicleUnits, 10, {Bytes(10), later})}}));
    EXPECT_THAT(timesOf(other.getVehicleUnits()), ElementsAre(march5));
}

TEST(GnssPlaces, AreDecodedFromTheCardsBytes)
{
    const Bytes record{0x65, 0xE6, 0x60, 0x80, 0x65, 0xE6, 0x60, 0x7E, 0x11,
                       0x00, 0xBD, 0x83, 0x00, 0x08, 0xA3, 0x98, 0x96, 0x7F};
    const CardG2 card(bothWith({{0x0524, cyclic(test::smallG2GnssPlaces, 18, {record})}}));

    const std::vector<scard::GnssPlace> places = card.getGnssPlaces();

    ASSERT_THAT(timesOf(places), ElementsAre(march5));
    expectParis(places[0].position, march5 - 2);
    EXPECT_EQ(places[0].odometer, 9999999U);
}

TEST(GnssPlaces, AreSortedAndTakeTheirAuthenticationFromTheRecordOfTheSameTime)
{
    const Bytes places = cyclic(
        test::smallG2GnssPlaces, 18,
        {gnssPlace(3000, position(1000)), gnssPlace(notKnown, position(4000)), Bytes(18),
         gnssPlace(1000, position(999)), gnssPlace(2000, position(2000))});
    const Bytes statuses =
        cyclic(test::smallG2GnssPlaces, 5, {status(2000, 0), status(999, 0), status(1000, 1)});
    const CardG2 card(bothWith({{0x0524, places}, {0x0527, statuses}}));

    std::vector<std::pair<qint64, std::optional<int>>> result;
    for (const scard::GnssPlace& place : card.getGnssPlaces())
        if (!place.time.isNull())
            result.emplace_back(secondsOf(place.time), place.position.authenticationStatus);

    using Row = std::pair<qint64, std::optional<int>>;
    EXPECT_THAT(result, ElementsAre(Row(1000, 1), Row(2000, 0), Row(3000, std::nullopt)));
    EXPECT_THAT(card.getGnssPlaces(), SizeIs(4));
}

TEST(GnssPlaces, HaveNoAuthenticationWithoutItsFile)
{
    const Bytes places = cyclic(test::smallG2GnssPlaces, 18, {gnssPlace(1000, position(1000))});
    Image second = test::secondApplication(Version::second).without(0x0527).replace(0x0524, places);
    const CardG2 card(test::smallDriverImage().append(second));

    ASSERT_THAT(card.getGnssPlaces(), SizeIs(1));
    EXPECT_EQ(card.getGnssPlaces()[0].position.authenticationStatus, std::nullopt);
}

TEST(BorderCrossings, AreDecodedSortedAndTheirEmptySlotsLeftOut)
{
    const Bytes later{0x0D, 0x11, 0x65, 0xE6, 0x60, 0x80, 0x11, 0x00, 0xBD,
                      0x83, 0x00, 0x08, 0xA3, 0x01, 0x01, 0xE2, 0x40};
    const Bytes earlier = joined(
        {{0x00, 0xFF}, position(march5 - 1, noCoordinate, noCoordinate, 0xFF), {0x00}, number(9999999, 3)});
    const CardG2 card(bothWith({{0x0528, cyclic(test::smallG2Crossings, 17, {later, Bytes(17), earlier})}}));

    const std::vector<scard::BorderCrossing> crossings = card.getBorderCrossings();

    ASSERT_THAT(crossings, SizeIs(2));
    EXPECT_EQ(secondsOf(crossings[0].position.time), march5 - 1);
    EXPECT_EQ(crossings[0].left.numeric, 0);
    EXPECT_EQ(crossings[0].left.alpha, QString());
    EXPECT_EQ(crossings[0].entered.numeric, 0xFF);
    EXPECT_EQ(crossings[0].entered.alpha, QStringLiteral("WLD"));
    EXPECT_EQ(crossings[0].position.accuracy, std::nullopt);
    EXPECT_EQ(crossings[0].position.latitude, std::nullopt);
    EXPECT_EQ(crossings[0].position.longitude, std::nullopt);
    EXPECT_EQ(crossings[0].position.authenticationStatus, std::optional<int>(0));
    EXPECT_EQ(crossings[0].odometer, 9999999U);
    EXPECT_EQ(crossings[1].left.numeric, 0x0D);
    EXPECT_EQ(crossings[1].left.alpha, QStringLiteral("D"));
    EXPECT_EQ(crossings[1].entered.alpha, QStringLiteral("F"));
    expectParis(crossings[1].position, march5);
    EXPECT_EQ(crossings[1].position.authenticationStatus, std::optional<int>(1));
    EXPECT_EQ(crossings[1].odometer, 123456U);
}

TEST(BorderCrossings, ATimeThatIsNotKnownIsNull)
{
    const Bytes record = joined({{0x0D, 0x11}, position(notKnown), {0x00}, number(1, 3)});
    const CardG2 card(bothWith({{0x0528, cyclic(test::smallG2Crossings, 17, {record})}}));

    ASSERT_THAT(card.getBorderCrossings(), SizeIs(1));
    EXPECT_TRUE(card.getBorderCrossings()[0].position.time.isNull());
    EXPECT_EQ(card.getBorderCrossings()[0].odometer, 1U);
}

TEST(LoadUnloadOperations, AreDecodedSortedAndTheirEmptySlotsLeftOut)
{
    const Bytes later{0x65, 0xE6, 0x60, 0x80, 0x03, 0x65, 0xE6, 0x60, 0x7E, 0x11,
                      0x00, 0xBD, 0x83, 0x00, 0x08, 0xA3, 0x01, 0x01, 0xE2, 0x40};
    const Bytes earlier = joined({timeReal(march5 - 9), {0x01}, Bytes(12), number(7, 3)});
    const CardG2 card(bothWith({{0x0529, cyclic(test::smallG2Loads, 20, {later, earlier})}}));

    const std::vector<scard::LoadUnloadOperation> loads = card.getLoadUnloadOperations();

    ASSERT_THAT(timesOf(loads), ElementsAre(march5 - 9, march5));
    EXPECT_EQ(loads[0].operation, 1);
    EXPECT_EQ(loads[0].odometer, 7U);
    expectNoPosition(loads[0].position);
    EXPECT_EQ(loads[1].operation, 3);
    expectParis(loads[1].position, march5 - 2);
    EXPECT_EQ(loads[1].position.authenticationStatus, std::optional<int>(1));
    EXPECT_EQ(loads[1].odometer, 123456U);

    const CardG2 other(bothWith({{0x0529, cyclic(test::smallG2Loads, 20, {Bytes(20), later})}}));
    EXPECT_THAT(timesOf(other.getLoadUnloadOperations()), ElementsAre(march5));
}

TEST(LoadTypeEntries, AreDecodedSortedAndTheirEmptySlotsLeftOut)
{
    const CardG2 card(bothWith(
        {{0x0530, cyclic(
                      test::smallG2LoadTypes, 5,
                      {{0x65, 0xE6, 0x60, 0x80, 0x02},
                       Bytes(5),
                       {0x65, 0xE6, 0x60, 0x7F, 0x00},
                       {0x65, 0xE6, 0x60, 0x81, 0x01}})}}));

    const std::vector<scard::LoadTypeEntry> entries = card.getLoadTypeEntries();

    ASSERT_THAT(timesOf(entries), ElementsAre(march5 - 1, march5, march5 + 1));
    EXPECT_EQ(entries[0].loadType, 0);
    EXPECT_EQ(entries[1].loadType, 2);
    EXPECT_EQ(entries[2].loadType, 1);
}

TEST(DriverCardValues, OfVersion2AreNoneOnOlderCards)
{
    Image second = test::secondApplication(Version::second);
    second.replace(0x0501, test::driverApplicationG2(Version::first))
        .replace(0x0530, cyclic(test::smallG2LoadTypes, 5, {{0x65, 0xE6, 0x60, 0x80, 0x02}}));
    const CardG2 card(test::smallDriverImage().append(second));

    EXPECT_THAT(card.getLoadTypeEntries(), IsEmpty());
}

} // namespace
