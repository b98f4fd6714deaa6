#include "fixtures/DriverImage.h"
#include "fixtures/DriverImageG2.h"
#include "fixtures/RecordBytes.h"
#include "fixtures/ValueChecks.h"
#include "QtPrinters.h"

#include <scard/SCardDriverG1.h>
#include <scard/SCardDriverG2.h>
#include <support/ErrorChain.h>

#include <gmock/gmock.h>

#include <QDate>
#include <QDateTime>
#include <QString>

#include <algorithm>
#include <cstdint>
#include <ctime>
#include <string>
#include <utility>
#include <vector>

// The lists of vehicles, events and faults.

namespace {

using scard::SCardDriverG1;
using scard::SCardDriverG2;
using test::Bytes;
using test::chain;
using test::eventRecord;
using test::Image;
using test::notKnown;
using test::registration;
using test::secondsOf;
using test::vehicleRecord;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

using Event = SCardDriverG1::_EVENT;
using Fault = SCardDriverG1::_FAULT;
using Vehicle = SCardDriverG1::_VEHICLE_USAGE_INFO;
using VehicleG2 = SCardDriverG2::_VEHICLE_USAGE_INFO_G2;

constexpr std::uint32_t march5 = 0x65E66080; // 2024-03-05 00:00 UTC

constexpr std::size_t eventSize = 24;
constexpr std::size_t vehicleSize = 31;
constexpr std::size_t vehicleSizeG2 = 48;

/// Position in the EF and the record there.
using Slots = std::vector<std::pair<std::size_t, Bytes>>;

Bytes ef(std::size_t headLength, std::size_t count, std::size_t recordSize, const Slots& used)
{
    Bytes bytes(headLength + count * recordSize);
    for (const auto& slot : used)
        test::put(bytes, headLength + slot.first * recordSize, slot.second);
    return bytes;
}

/// The small driver card with these numbers of slots and what is in them.
Image imageWith(unsigned int vehicles, const Slots& used)
{
    return test::smallDriverImage()
        .replace(0x0501, test::driverApplication(2, 1, 20, vehicles, 3))
        .replace(0x0505, ef(2, vehicles, vehicleSize, used));
}

Image imageWithEvents(unsigned int perType, const Slots& used)
{
    return test::smallDriverImage()
        .replace(0x0501, test::driverApplication(perType, 1, 20, 2, 3))
        .replace(0x0502, ef(0, perType * 6, eventSize, used));
}

Image imageWithFaults(unsigned int perType, const Slots& used)
{
    return test::smallDriverImage()
        .replace(0x0501, test::driverApplication(2, perType, 20, 2, 3))
        .replace(0x0503, ef(0, perType * 2, eventSize, used));
}

using CardG1 = test::ReadCard<SCardDriverG1>;
using CardG2 = test::ReadCard<SCardDriverG2>;

template <typename Item>
std::vector<qint64> beginsOf(const std::vector<Item>& items)
{
    std::vector<qint64> begins;
    for (const Item& item : items)
        begins.push_back(secondsOf(item.begin));
    return begins;
}

template <typename Item>
std::vector<int> typesOf(const std::vector<Item>& items)
{
    std::vector<int> types;
    for (const Item& item : items)
        types.push_back(item.type);
    return types;
}

template <typename Item>
std::vector<std::uint32_t> odometersOf(const std::vector<Item>& items)
{
    std::vector<std::uint32_t> odometers;
    for (const Item& item : items)
        odometers.push_back(item.odometerBegin);
    return odometers;
}

// Vehicles

TEST(VehiclesUsed, AreDecodedFromTheCardsBytes)
{
    const Bytes record{0x01, 0x86, 0xA0, 0x98, 0x96, 0x7F, 0x65, 0xE6, 0x60, 0x80, 0x65,
                       0xE6, 0xD1, 0x00, 0x0D, 0x01, 'B',  ' ',  'A',  'B',  ' ',  '1',
                       '2',  '3',  '4',  ' ',  ' ',  ' ',  ' ',  0x01, 0x23};
    ASSERT_THAT(record, SizeIs(vehicleSize));
    CardG1 card(imageWith(2, {{0, record}}));

    const std::vector<Vehicle> vehicles = card.getVehiclesUsed();

    ASSERT_THAT(vehicles, SizeIs(1));
    EXPECT_EQ(vehicles[0].odometerBegin, 100000U);
    EXPECT_EQ(vehicles[0].odometerEnd, 9999999U);
    EXPECT_EQ(secondsOf(vehicles[0].firstUse), qint64{march5});
    EXPECT_EQ(secondsOf(vehicles[0].lastUse), 0x65E6D100);
    EXPECT_EQ(vehicles[0].registration, QStringLiteral("B AB 1234"));
}

TEST(VehiclesUsed, TheOdometersAreUnsigned)
{
    CardG1 card(imageWith(1, {{0, vehicleRecord(0x800000, 0xFFFFFF, 1, 2)}}));

    ASSERT_THAT(card.getVehiclesUsed(), SizeIs(1));
    EXPECT_EQ(card.getVehiclesUsed()[0].odometerBegin, 0x800000U);
    EXPECT_EQ(card.getVehiclesUsed()[0].odometerEnd, 0xFFFFFFU);
}

TEST(VehiclesUsed, ASlotWithoutLastUseIsEmpty)
{
    CardG1 card(imageWith(3, {{0, vehicleRecord(1, 2, march5, 0)}, {1, vehicleRecord(3, 4, 0, march5)}}));

    const std::vector<Vehicle> vehicles = card.getVehiclesUsed();

    ASSERT_THAT(odometersOf(vehicles), ElementsAre(3));
    EXPECT_EQ(secondsOf(vehicles[0].firstUse), 0);
}

TEST(VehiclesUsed, EmptySlotsDoNotEndTheList)
{
    CardG1 card(imageWith(
        6, {{1, vehicleRecord(1, 1, 100, 101)},
            {3, vehicleRecord(3, 3, 300, 301)},
            {5, vehicleRecord(5, 5, 500, 501)}}));

    EXPECT_THAT(odometersOf(card.getVehiclesUsed()), ElementsAre(1, 3, 5));
}

TEST(VehiclesUsed, ALastUseThatIsNotKnownStaysATime)
{
    CardG1 card(imageWith(1, {{0, vehicleRecord(1, 2, notKnown, notKnown)}}));

    const std::vector<Vehicle> vehicles = card.getVehiclesUsed();

    ASSERT_THAT(vehicles, SizeIs(1));
    EXPECT_EQ(secondsOf(vehicles[0].firstUse), 0xFFFFFFFF);
    EXPECT_EQ(secondsOf(vehicles[0].lastUse), 0xFFFFFFFF);
    EXPECT_EQ(vehicles[0].lastUse.date().year(), 2106);
}

TEST(VehiclesUsed, AreSortedByFirstUseAndThePointerDoesNotMatter)
{
    Image image = imageWith(
        4, {{0, vehicleRecord(3, 0, 3000, 1)},
            {1, vehicleRecord(4, 0, 0x80000000, 1)},
            {2, vehicleRecord(1, 0, 1000, 9)},
            {3, vehicleRecord(2, 0, 2000, 5)}});
    CardG1 card(image);
    EXPECT_THAT(odometersOf(card.getVehiclesUsed()), ElementsAre(1, 2, 3, 4));

    Bytes bytes = ef(2, 4, vehicleSize, {{0, vehicleRecord(1, 0, 1, 1)}, {3, vehicleRecord(2, 0, 2, 1)}});
    test::put(bytes, 0, {0x00, 0x01});
    EXPECT_THAT(odometersOf(CardG1(image.replace(0x0505, bytes)).getVehiclesUsed()), ElementsAre(1, 2));
    test::put(bytes, 0, {0xFF, 0xFF});
    EXPECT_THAT(odometersOf(CardG1(image.replace(0x0505, bytes)).getVehiclesUsed()), ElementsAre(1, 2));
}

TEST(VehiclesUsed, ACardWithoutSlotsHasNone)
{
    EXPECT_THAT(CardG1(imageWith(0, {})).getVehiclesUsed(), IsEmpty());
}

TEST(VehiclesUsed, MoreSlotsThanAByteCountsAreVisited)
{
    CardG1 card(imageWith(
        300, {{0, vehicleRecord(1, 0, 1, 1)},
              {255, vehicleRecord(2, 0, 2, 1)},
              {256, vehicleRecord(3, 0, 3, 1)},
              {299, vehicleRecord(4, 0, 4, 1)}}));

    EXPECT_THAT(odometersOf(card.getVehiclesUsed()), ElementsAre(1, 2, 3, 4));
}

TEST(VehiclesUsed, TheRegistrationIsDecodedByItsCodePageAndTrimmed)
{
    const struct
    {
        const char* name;
        Bytes vehicle;
        QString expected;
    } rows[] = {
        {"ISO 8859-1", registration(0x0D, 1, "M\xDC 1"), QStringLiteral("M\u00DC 1")},
        {"ISO 8859-5", registration(0x07, 5, "\xC1\xB0 0815 \xC2"),
         QStringLiteral("\u0421\u0410 0815 \u0422")},
        {"ISO 8859-15", registration(0x11, 15, "\xA4 1"), QStringLiteral("\u20AC 1")},
        {"no part of ISO 8859", registration(0x11, 96, "\xC4 1"), QStringLiteral("\u00C4 1")},
        {"code page 0", registration(0x11, 0, "\xC4 1"), QStringLiteral("\u00C4 1")},
        {"blanks on both sides", registration(0x0D, 1, "  B 1"), QStringLiteral("B 1")},
        {"full to its end", registration(0x0D, 1, "ABCDEFGHIJKLM"), QStringLiteral("ABCDEFGHIJKLM")},
        {"blanks only", registration(0, 0, ""), QString()},
        {"zeros only", Bytes(15), QString()},
        {"zero in the middle", registration(0x0D, 1, std::string("AB\0CD", 5)), QStringLiteral("AB")},
        {"nation not known", registration(0xFF, 1, "B 1"), QStringLiteral("B 1")},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        CardG1 card(imageWith(1, {{0, vehicleRecord(1, 2, 3, 4, row.vehicle)}})
                        .replace(0x0502, ef(0, 12, eventSize, {{0, eventRecord(3, 1, 2, row.vehicle)}}))
                        .replace(0x0503, ef(0, 2, eventSize, {{0, eventRecord(0x35, 1, 2, row.vehicle)}})));

        ASSERT_THAT(card.getVehiclesUsed(), SizeIs(1));
        EXPECT_EQ(card.getVehiclesUsed()[0].registration, row.expected);
        ASSERT_THAT(card.getEvents(), SizeIs(1));
        EXPECT_EQ(card.getEvents()[0].registration, row.expected);
        ASSERT_THAT(card.getFaults(), SizeIs(1));
        EXPECT_EQ(card.getFaults()[0].registration, row.expected);
    }
}

// Events and faults

TEST(Events, AreDecodedFromTheCardsBytes)
{
    const Bytes record{0x05, 0x65, 0xE6, 0x60, 0x80, 0x65, 0xE6, 0xD1, 0x00, 0x0D, 0x01, 'B',
                       ' ',  'A',  'B',  ' ',  '1',  '2',  '3',  '4',  ' ',  ' ',  ' ',  ' '};
    ASSERT_THAT(record, SizeIs(eventSize));
    CardG1 card(imageWithEvents(2, {{2, record}}));

    const std::vector<Event> events = card.getEvents();

    ASSERT_THAT(events, SizeIs(1));
    EXPECT_EQ(events[0].type, 5);
    EXPECT_EQ(secondsOf(events[0].begin), qint64{march5});
    EXPECT_EQ(secondsOf(events[0].end), 0x65E6D100);
    EXPECT_EQ(events[0].reserved1, 0);
    EXPECT_EQ(events[0].reserved2, 0);
    EXPECT_EQ(events[0].registration, QStringLiteral("B AB 1234"));
}

TEST(Faults, AreDecodedFromTheCardsBytes)
{
    const Bytes record{0x35, 0x65, 0xE6, 0x60, 0x80, 0x65, 0xE6, 0xD1, 0x00, 0x0D, 0x01, 'B',
                       ' ',  'A',  'B',  ' ',  '1',  '2',  '3',  '4',  ' ',  ' ',  ' ',  ' '};
    CardG1 card(imageWithFaults(2, {{1, record}}));

    const std::vector<Fault> faults = card.getFaults();

    ASSERT_THAT(faults, SizeIs(1));
    EXPECT_EQ(faults[0].type, 0x35);
    EXPECT_EQ(secondsOf(faults[0].begin), qint64{march5});
    EXPECT_EQ(secondsOf(faults[0].end), 0x65E6D100);
    EXPECT_EQ(faults[0].reserved1, 0);
    EXPECT_EQ(faults[0].reserved2, 0);
    EXPECT_EQ(faults[0].registration, QStringLiteral("B AB 1234"));
}

TEST(EventsAndFaults, HaveTheTypesOfTheCard)
{
    for (const int type : {0x01, 0x7F, 0x80, 0xFF}) {
        SCOPED_TRACE(type);
        const Slots used{{0, eventRecord(static_cast<unsigned char>(type), 1, 2)}};
        EXPECT_THAT(typesOf(CardG1(imageWithEvents(1, used)).getEvents()), ElementsAre(type));
        EXPECT_THAT(typesOf(CardG1(imageWithFaults(1, used)).getFaults()), ElementsAre(type));
    }
}

TEST(EventsAndFaults, ATimeThatIsNotKnownIsNullAndATimeOfZeroIsNot)
{
    const struct
    {
        const char* name;
        std::uint32_t begin;
        std::uint32_t end;
        qint64 expectedBegin;
        qint64 expectedEnd;
    } rows[] = {
        {"still open", march5, notKnown, march5, -1},
        {"begin not known", notKnown, march5, -1, march5},
        {"neither known", notKnown, notKnown, -1, -1},
        {"end never written", march5, 0, march5, 0},
        {"both zero", 0, 0, 0, 0},
        {"the last second", 0xFFFFFFFE, 0xFFFFFFFE, 0xFFFFFFFE, 0xFFFFFFFE},
        {"beyond 2038", 0x80000000, 0x80000001, 0x80000000, 0x80000001},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const Slots used{{0, eventRecord(3, row.begin, row.end)}};
        CardG1 withEvent(imageWithEvents(1, used));
        CardG1 withFault(imageWithFaults(1, used));

        ASSERT_THAT(withEvent.getEvents(), SizeIs(1));
        EXPECT_EQ(secondsOf(withEvent.getEvents()[0].begin), row.expectedBegin);
        EXPECT_EQ(secondsOf(withEvent.getEvents()[0].end), row.expectedEnd);
        ASSERT_THAT(withFault.getFaults(), SizeIs(1));
        EXPECT_EQ(secondsOf(withFault.getFaults()[0].begin), row.expectedBegin);
        EXPECT_EQ(secondsOf(withFault.getFaults()[0].end), row.expectedEnd);
    }
}

TEST(EventsAndFaults, AnEndOfZeroIsTheEpochInLocalTime)
{
    CardG1 card(imageWithEvents(1, {{0, eventRecord(3, march5, 0)}}));
    ASSERT_THAT(card.getEvents(), SizeIs(1));

    const std::time_t epoch = 0;
    std::tm local{};
    ASSERT_NE(::localtime_r(&epoch, &local), nullptr);
    const QDateTime end = card.getEvents()[0].end;
    EXPECT_EQ(end.date(), QDate(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday));
    EXPECT_EQ(end.time(), QTime(local.tm_hour, local.tm_min));
}

TEST(EventsAndFaults, ASlotOfTypeZeroIsEmptyWhateverElseItHolds)
{
    const Slots used{{0, eventRecord(0, march5, march5)}, {1, eventRecord(0x31, march5, march5)}};

    EXPECT_THAT(typesOf(CardG1(imageWithEvents(1, used)).getEvents()), ElementsAre(0x31));
    EXPECT_THAT(typesOf(CardG1(imageWithFaults(1, used)).getFaults()), ElementsAre(0x31));
}

TEST(Events, OfAllGroupsComeInOneListByBegin)
{
    // Groups of three: the second one empty, empty slots before used ones.
    CardG1 card(imageWithEvents(
        3, {{1, eventRecord(0x03, 5000, 0)},
            {2, eventRecord(0x03, 100, 0)},
            {6, eventRecord(0x06, 3000, 0)},
            {11, eventRecord(0x08, 0x80000000, 0)},
            {14, eventRecord(0x09, 200, 0)},
            {17, eventRecord(0x12, 150, 0)}}));

    const std::vector<Event> events = card.getEvents();

    EXPECT_THAT(beginsOf(events), ElementsAre(100, 150, 200, 3000, 5000, 0x80000000));
    EXPECT_THAT(typesOf(events), ElementsAre(0x03, 0x12, 0x09, 0x06, 0x03, 0x08));
}

TEST(Faults, OfBothGroupsComeInOneListByBegin)
{
    CardG1 card(imageWithFaults(
        3, {{1, eventRecord(0x35, 500, 0)}, {2, eventRecord(0x32, 100, 0)}, {5, eventRecord(0x40, 300, 0)}}));

    const std::vector<Fault> faults = card.getFaults();

    EXPECT_THAT(beginsOf(faults), ElementsAre(100, 300, 500));
    EXPECT_THAT(typesOf(faults), ElementsAre(0x32, 0x40, 0x35));
}

TEST(EventsAndFaults, OneWithoutBeginIsSortedAsQtSortsANullTime)
{
    const Slots used{
        {0, eventRecord(3, march5, 0)}, {1, eventRecord(4, notKnown, 0)}, {2, eventRecord(5, 1000, 0)}};
    const auto earlier = [](const auto& left, const auto& right) { return left.begin < right.begin; };

    const std::vector<Event> events = CardG1(imageWithEvents(1, used)).getEvents();
    ASSERT_THAT(events, SizeIs(3));
    EXPECT_TRUE(std::is_sorted(events.begin(), events.end(), earlier));

    const std::vector<Fault> faults = CardG1(imageWithFaults(2, used)).getFaults();
    ASSERT_THAT(faults, SizeIs(3));
    EXPECT_TRUE(std::is_sorted(faults.begin(), faults.end(), earlier));
}

TEST(Events, TheMostThatACountCanSayAreVisited)
{
    // 255 slots in each of six groups.
    CardG1 card(imageWithEvents(
        255, {{0, eventRecord(3, 1, 0)},
              {254, eventRecord(3, 2, 0)},
              {255, eventRecord(5, 3, 0)},
              {6 * 255 - 1, eventRecord(0x12, 4, 0)}}));

    EXPECT_THAT(beginsOf(card.getEvents()), ElementsAre(1, 2, 3, 4));
}

TEST(Faults, TheMostThatACountCanSayAreVisited)
{
    CardG1 card(imageWithFaults(255, {{0, eventRecord(0x31, 1, 0)}, {2 * 255 - 1, eventRecord(0x40, 2, 0)}}));

    EXPECT_THAT(beginsOf(card.getFaults()), ElementsAre(1, 2));
}

TEST(EventsAndFaults, ACardWithoutSlotsHasNone)
{
    EXPECT_THAT(CardG1(imageWithEvents(0, {})).getEvents(), IsEmpty());
    EXPECT_THAT(CardG1(imageWithFaults(0, {})).getFaults(), IsEmpty());
}

// The builders

Image fullImage()
{
    return imageWith(2, {{0, vehicleRecord(1, 2, 3, 4)}, {1, vehicleRecord(5, 6, 7, 8)}})
        .replace(0x0502, ef(0, 12, eventSize, {{0, eventRecord(3, 1, 2)}, {11, eventRecord(0x12, 3, 4)}}))
        .replace(0x0503, ef(0, 2, eventSize, {{0, eventRecord(0x31, 1, 2)}, {1, eventRecord(0x40, 3, 4)}}));
}

TEST(UsageLists, BuildingAgainDoesNotDoubleThem)
{
    CardG1 card(fullImage());

    card.buildUsedVehiclesList();
    card.buildEventList();
    card.buildFaultList();
    EXPECT_THAT(card.getVehiclesUsed(), SizeIs(2));
    EXPECT_THAT(card.getEvents(), SizeIs(2));
    EXPECT_THAT(card.getFaults(), SizeIs(2));

    EXPECT_THAT(chain(card.read()), IsEmpty());
    EXPECT_THAT(card.getVehiclesUsed(), SizeIs(2));
    EXPECT_THAT(card.getEvents(), SizeIs(2));
    EXPECT_THAT(card.getFaults(), SizeIs(2));
}

TEST(UsageLists, OfABlankObjectAreEmpty)
{
    SCardDriverG1 card;

    card.buildUsedVehiclesList();
    card.buildEventList();
    card.buildFaultList();

    EXPECT_THAT(card.getVehiclesUsed(), IsEmpty());
    EXPECT_THAT(card.getEvents(), IsEmpty());
    EXPECT_THAT(card.getFaults(), IsEmpty());
}

TEST(UsageLists, CountsWithoutTheirRecordsMakeNoItems)
{
    test::CardOnImage<SCardDriverG1> card(fullImage());
    ASSERT_THAT(chain(card.calcDataToRead()), IsEmpty());

    card.buildUsedVehiclesList();
    card.buildEventList();
    card.buildFaultList();

    EXPECT_THAT(card.getVehiclesUsed(), IsEmpty());
    EXPECT_THAT(card.getEvents(), IsEmpty());
    EXPECT_THAT(card.getFaults(), IsEmpty());
}

TEST(UsageLists, AreNotBuiltWhenARequiredEfIsMissing)
{
    test::CardOnImage<SCardDriverG1> card(fullImage().without(0x0505));
    ASSERT_FALSE(card.read().isEmpty());

    EXPECT_THAT(card.getEvents(), IsEmpty());
    EXPECT_THAT(card.getFaults(), IsEmpty());
}

// The second application

Bytes vehicleRecordG2(
    std::uint32_t odometerBegin, std::uint32_t firstUse, std::uint32_t lastUse,
    const std::string& vehicleIdentificationNumber)
{
    return test::joined(
        {vehicleRecord(odometerBegin, 0x0186A0, firstUse, lastUse, registration(0x11, 1, "AB-123-CD")),
         test::field(vehicleIdentificationNumber, 17)});
}

/// Both applications, the first one full, the second one with these EFs.
Image imageWithSecond(const std::vector<std::pair<unsigned short, Bytes>>& efs)
{
    Image second = test::secondApplication(test::Version::first);
    for (const auto& entry : efs)
        second.replace(entry.first, entry.second);
    return fullImage().append(second);
}

TEST(VehiclesUsedG2, AreDecodedFromTheCardsBytes)
{
    CardG2 card(imageWithSecond(
        {{0x0505, ef(2, test::smallG2Vehicles, vehicleSizeG2,
                     {{0, vehicleRecordG2(0x000102, march5, 0x65E6D100, "WDB9634031L123456")}})}}));

    const std::vector<VehicleG2> vehicles = card.getVehiclesUsedG2();

    ASSERT_THAT(vehicles, SizeIs(1));
    EXPECT_EQ(vehicles[0].odometerBegin, 0x000102U);
    EXPECT_EQ(vehicles[0].odometerEnd, 100000U);
    EXPECT_EQ(secondsOf(vehicles[0].firstUse), qint64{march5});
    EXPECT_EQ(secondsOf(vehicles[0].lastUse), 0x65E6D100);
    EXPECT_EQ(vehicles[0].registration, QStringLiteral("AB-123-CD"));
    EXPECT_EQ(vehicles[0].vehicleIdentificationNumber, QStringLiteral("WDB9634031L123456"));
}

TEST(VehiclesUsedG2, FollowTheRulesOfTheFirstGeneration)
{
    CardG2 card(imageWithSecond(
        {{0x0505, ef(2, test::smallG2Vehicles, vehicleSizeG2,
                     {{0, vehicleRecordG2(1, march5, 0, "EMPTY")},
                      {1, vehicleRecordG2(2, march5, notKnown, " LATER")},
                      {2, vehicleRecordG2(3, 1000, 1, "")}})}}));

    const std::vector<VehicleG2> vehicles = card.getVehiclesUsedG2();

    ASSERT_THAT(odometersOf(vehicles), ElementsAre(3, 2));
    EXPECT_EQ(secondsOf(vehicles[1].lastUse), 0xFFFFFFFF);
    EXPECT_EQ(vehicles[0].vehicleIdentificationNumber, QString());
    EXPECT_EQ(vehicles[1].vehicleIdentificationNumber, QStringLiteral("LATER"));
}

TEST(EventsG2, OfElevenGroupsComeInOneListByBegin)
{
    // Groups of three.
    CardG2 card(imageWithSecond(
        {{0x0502, ef(0, std::size_t{test::smallG2Events} * 11, eventSize,
                     {{1, eventRecord(0x03, march5 + 900, notKnown)},
                      {16, eventRecord(0x0A, notKnown, march5)},
                      {29, eventRecord(0x0E, march5 + 300, 0)},
                      {32, eventRecord(0x19, march5, march5)}})}}));

    const std::vector<Event> events = card.getEventsG2();

    EXPECT_THAT(typesOf(events), testing::UnorderedElementsAre(0x03, 0x0A, 0x0E, 0x19));
    ASSERT_THAT(events, SizeIs(4));
    EXPECT_TRUE(std::is_sorted(events.begin(), events.end(), [](const Event& left, const Event& right) {
        return left.begin < right.begin;
    }));
    EXPECT_EQ(events.back().type, 0x03);
    EXPECT_TRUE(events.back().end.isNull());
    EXPECT_EQ(events.back().reserved1, 0);
    EXPECT_EQ(events.back().reserved2, 0);
    EXPECT_EQ(events.back().registration, QStringLiteral("B AB 1234"));
}

TEST(FaultsG2, OfBothGroupsComeInOneListByBegin)
{
    CardG2 card(imageWithSecond(
        {{0x0503, ef(0, std::size_t{test::smallG2Faults} * 2, eventSize,
                     {{0, eventRecord(0x36, 900, notKnown)}, {3, eventRecord(0x40, 100, 0)}})}}));

    const std::vector<Fault> faults = card.getFaultsG2();

    ASSERT_THAT(typesOf(faults), ElementsAre(0x40, 0x36));
    EXPECT_EQ(secondsOf(faults[0].end), 0);
    EXPECT_TRUE(faults[1].end.isNull());
}

TEST(UsageListsG2, TheGettersOfTheFirstGenerationAnswerFromTheFirstApplication)
{
    CardG2 card(imageWithSecond({}));

    EXPECT_THAT(card.getVehiclesUsed(), SizeIs(2));
    EXPECT_THAT(card.getEvents(), SizeIs(2));
    EXPECT_THAT(card.getFaults(), SizeIs(2));
    EXPECT_THAT(card.getVehiclesUsedG2(), IsEmpty());
    EXPECT_THAT(card.getEventsG2(), IsEmpty());
    EXPECT_THAT(card.getFaultsG2(), IsEmpty());
}

TEST(UsageListsG2, BuildingAgainDoesNotDoubleThemNorTouchTheFirst)
{
    CardG2 card(imageWithSecond({
        {0x0505, ef(2, test::smallG2Vehicles, vehicleSizeG2, {{0, vehicleRecordG2(1, 1, 1, "")}})},
        {0x0502, ef(0, std::size_t{test::smallG2Events} * 11, eventSize, {{0, eventRecord(3, 1, 2)}})},
        {0x0503, ef(0, std::size_t{test::smallG2Faults} * 2, eventSize, {{0, eventRecord(0x31, 1, 2)}})},
    }));

    card.buildUsedVehiclesList();
    card.buildEventList();
    card.buildFaultList();

    EXPECT_THAT(card.getVehiclesUsedG2(), SizeIs(1));
    EXPECT_THAT(card.getEventsG2(), SizeIs(1));
    EXPECT_THAT(card.getFaultsG2(), SizeIs(1));
    EXPECT_THAT(card.getVehiclesUsed(), SizeIs(2));
    EXPECT_THAT(card.getEvents(), SizeIs(2));
    EXPECT_THAT(card.getFaults(), SizeIs(2));
}

TEST(UsageListsG2, OfABlankObjectAreEmpty)
{
    SCardDriverG2 card;

    card.buildUsedVehiclesList();
    card.buildEventList();
    card.buildFaultList();

    EXPECT_THAT(card.getVehiclesUsedG2(), IsEmpty());
    EXPECT_THAT(card.getEventsG2(), IsEmpty());
    EXPECT_THAT(card.getFaultsG2(), IsEmpty());
}

} // namespace
