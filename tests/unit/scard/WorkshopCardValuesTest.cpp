#include "fixtures/LocalZone.h"
#include "fixtures/RecordBytes.h"
#include "fixtures/ValueChecks.h"
#include "fixtures/WorkshopImage.h"
#include "QtPrinters.h"

#include <scard/detail/WorkshopValues.h>
#include <scard/SCardWorkshopG1.h>
#include <scard/SCardWorkshopG2.h>

#include <gmock/gmock.h>

#include <QDateTime>
#include <QString>

#include <cstdint>
#include <optional>
#include <vector>

// What the records of a workshop card say, as values.

namespace {

using scard::Calibration;
using scard::detail::calibrationAddData;
using scard::detail::calibrationCounters;
using scard::detail::calibrationsG1;
using scard::detail::calibrationsG2;
using test::Bytes;
using test::efWith;
using test::field;
using test::Image;
using test::joined;
using test::notKnown;
using test::number;
using test::put;
using test::registration;
using test::secondsOf;
using test::timeReal;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

using CardG1 = test::ReadCard<scard::SCardWorkshopG1>;
using CardG2 = test::ReadCard<scard::SCardWorkshopG2>;

constexpr std::uint32_t march5 = 0x65E66080; // 2024-03-05 00:00 UTC

constexpr std::size_t sizeG1 = 105;
constexpr std::size_t sizeG2 = 178;
constexpr std::size_t headG1 = 3;
constexpr std::size_t headG2 = 4;

/// The record of the first generation, which that of the second begins with; no two fields alike.
Bytes calibrationBytes()
{
    Bytes record(sizeG1);
    put(record, 0, {0x04});
    put(record, 1, field("VIN4567890123456", 17));
    put(record, 18, {0x10, 0x05});
    put(record, 20, field(" \xC1\xB0 0815", 13));
    put(record, 33, {0x1F, 0x41});
    put(record, 35, {0x9F, 0x42});
    put(record, 37, {0x5D, 0xC3});
    put(record, 39, field("315/80 R22.5", 15));
    put(record, 54, {0xFE});
    put(record, 55, {0x01, 0xE2, 0x40});
    put(record, 58, {0x98, 0x96, 0x7F});
    put(record, 61, {0x65, 0xE6, 0x60, 0x80});
    put(record, 65, {0x65, 0xE6, 0x60, 0x81});
    put(record, 69, {0x80, 0x00, 0x00, 0x00});
    put(record, 73, field(" PART.000 1", 16));
    put(record, 89, {0x01, 0x02, 0x03, 0x04, 0x03, 0x24, 0x06, 0x07});
    put(record, 97, {0xF1, 0xF2, 0xF3, 0xF4, 0x11, 0x99, 0x88, 0xFF});
    return record;
}

/// What only the second generation has behind it, with @p seals announced and all five filled in.
Bytes calibrationTail(unsigned char ability, unsigned char seals)
{
    Bytes tail(sizeG2 - sizeG1);
    put(tail, 0, {0x11, 0x12, 0x13, 0x14, 0x01, 0x22, 0x0A, 0x0B});
    put(tail, 8, {0xE1, 0x22, 0x23, 0x24, 0x12, 0x21, 0x0C, 0x0D});
    put(tail, 16, {ability, seals});
    put(tail, 18, joined({{0x02}, field("AB", 2), field("SEAL0001", 8)}));
    put(tail, 29, joined({{0x03}, field("C", 2), field(" SEAL2", 8)}));
    put(tail, 40, joined({{0x04}, field("EF", 2), field("SEAL0003", 8)}));
    put(tail, 51, joined({{0xF5}, field("GH", 2), field("SEAL0004", 8)}));
    put(tail, 62, joined({{0x06}, field("IJ", 2), field("SEAL0005", 8)}));
    return tail;
}

Bytes calibrationBytesG2(unsigned char ability = 0, unsigned char seals = 0)
{
    return joined({calibrationBytes(), calibrationTail(ability, seals)});
}

/// The record with another time after the calibration.
Bytes calibrationAt(std::uint32_t newTime)
{
    Bytes record = calibrationBytes();
    put(record, 65, timeReal(newTime));
    return record;
}

Bytes calibrationAtG2(std::uint32_t newTime)
{
    return joined({calibrationAt(newTime), Bytes(sizeG2 - sizeG1)});
}

/// EF_Calibration of the first generation: total number, pointer, records.
Bytes efG1(const std::vector<Bytes>& records)
{
    Bytes ef{0x01, 0x02, 0x00};
    for (const Bytes& record : records)
        ef.insert(ef.end(), record.begin(), record.end());
    return ef;
}

Bytes efG2(const std::vector<Bytes>& records)
{
    Bytes ef{0x03, 0x04, 0x00, 0x00};
    for (const Bytes& record : records)
        ef.insert(ef.end(), record.begin(), record.end());
    return ef;
}

std::vector<qint64> newTimesOf(const std::vector<Calibration>& calibrations)
{
    std::vector<qint64> times;
    for (const Calibration& calibration : calibrations)
        times.push_back(secondsOf(calibration.newTime));
    return times;
}

void expectSerial(
    const scard::EquipmentSerialNumber& serial, std::uint32_t number, const char* monthYear, int type,
    int manufacturer)
{
    EXPECT_EQ(serial.serialNumber, number);
    EXPECT_EQ(serial.monthYear.toStdString(), monthYear);
    EXPECT_EQ(serial.type, type);
    EXPECT_EQ(serial.manufacturerCode, manufacturer);
}

void expectFieldsOfBothGenerations(const Calibration& calibration)
{
    EXPECT_EQ(calibration.purpose, 4);
    EXPECT_EQ(calibration.vehicleIdentificationNumber, QStringLiteral("VIN4567890123456"));
    EXPECT_EQ(calibration.nation.numeric, 0x10);
    EXPECT_EQ(calibration.nation.alpha, QStringLiteral("EST"));
    EXPECT_EQ(calibration.registration, QStringLiteral("\u0421\u0410 0815"));
    EXPECT_EQ(calibration.vehicleCharacteristicConstant, 8001);
    EXPECT_EQ(calibration.recordingEquipmentConstant, 40770);
    EXPECT_EQ(calibration.tyreCircumference, 24003);
    EXPECT_EQ(calibration.tyreSize, QStringLiteral("315/80 R22.5"));
    EXPECT_EQ(calibration.authorisedSpeed, 254);
    EXPECT_EQ(calibration.oldOdometer, 123456U);
    EXPECT_EQ(calibration.newOdometer, 9999999U);
    EXPECT_EQ(secondsOf(calibration.oldTime), qint64{march5});
    EXPECT_EQ(secondsOf(calibration.newTime), qint64{march5} + 1);
    EXPECT_EQ(secondsOf(calibration.nextCalibration), qint64{0x80000000});
    EXPECT_EQ(calibration.vuPartNumber, QStringLiteral("PART.000 1"));
    expectSerial(calibration.vuSerialNumber, 0x01020304, "0324", 6, 7);
    expectSerial(calibration.sensorSerialNumber, 0xF1F2F3F4, "1199", 0x88, 0xFF);
}

// Calibrations

TEST(Calibrations, AreDecodedFromTheCardsBytes)
{
    const std::vector<Calibration> calibrations = calibrationsG1(efG1({calibrationBytes()}));

    ASSERT_THAT(calibrations, SizeIs(1));
    expectFieldsOfBothGenerations(calibrations[0]);
    EXPECT_FALSE(calibrations[0].gnssSerialNumber.has_value());
    EXPECT_FALSE(calibrations[0].remoteCommunicationSerialNumber.has_value());
    EXPECT_EQ(calibrations[0].refusesFirstGenerationCards, std::nullopt);
    EXPECT_THAT(calibrations[0].seals, IsEmpty());
}

TEST(CalibrationsG2, BeginLikeThoseOfTheFirstGenerationAndHaveMore)
{
    const std::vector<Calibration> calibrations = calibrationsG2(efG2({calibrationBytesG2(0x01, 2)}));

    ASSERT_THAT(calibrations, SizeIs(1));
    const Calibration& calibration = calibrations[0];
    expectFieldsOfBothGenerations(calibration);
    ASSERT_TRUE(calibration.gnssSerialNumber && calibration.remoteCommunicationSerialNumber);
    expectSerial(*calibration.gnssSerialNumber, 0x11121314, "0122", 0x0A, 0x0B);
    expectSerial(*calibration.remoteCommunicationSerialNumber, 0xE1222324, "1221", 0x0C, 0x0D);
    EXPECT_EQ(calibration.refusesFirstGenerationCards, true);
    ASSERT_THAT(calibration.seals, SizeIs(2));
    EXPECT_EQ(calibration.seals[0].equipmentType, 2);
    EXPECT_EQ(calibration.seals[0].manufacturerCode, QStringLiteral("AB"));
    EXPECT_EQ(calibration.seals[0].identifier, QStringLiteral("SEAL0001"));
    EXPECT_EQ(calibration.seals[1].equipmentType, 3);
    EXPECT_EQ(calibration.seals[1].manufacturerCode, QStringLiteral("C"));
    EXPECT_EQ(calibration.seals[1].identifier, QStringLiteral("SEAL2"));
}

TEST(CalibrationsG2, HaveAsManySealsAsTheRecordSaysAtMostFive)
{
    const struct
    {
        unsigned char announced;
        std::size_t expected;
    } rows[] = {{0, 0}, {1, 1}, {2, 2}, {3, 3}, {4, 4}, {5, 5}, {6, 5}, {255, 5}};
    const int types[] = {2, 3, 4, 0xF5, 6};
    for (const auto& row : rows) {
        SCOPED_TRACE(int{row.announced});
        const auto calibrations = calibrationsG2(efG2({calibrationBytesG2(0, row.announced)}));

        ASSERT_THAT(calibrations, SizeIs(1));
        const std::vector<scard::Seal>& seals = calibrations[0].seals;
        ASSERT_THAT(seals, SizeIs(row.expected));
        for (std::size_t i = 0; i < seals.size(); ++i)
            EXPECT_EQ(seals[i].equipmentType, types[i]);
        if (row.expected == 5) {
            EXPECT_EQ(seals.back().identifier, QStringLiteral("SEAL0005"));
        }
    }
}

TEST(CalibrationsG2, OnlyTheLowestBitSaysThatCardsOfTheFirstGenerationAreRefused)
{
    const struct
    {
        unsigned char ability;
        bool refuses;
    } rows[] = {{0x00, false}, {0x01, true}, {0xFE, false}, {0xFF, true}};
    for (const auto& row : rows) {
        SCOPED_TRACE(int{row.ability});
        const auto calibrations = calibrationsG2(efG2({calibrationBytesG2(row.ability)}));
        ASSERT_THAT(calibrations, SizeIs(1));
        EXPECT_EQ(calibrations[0].refusesFirstGenerationCards, row.refuses);
    }
}

TEST(Calibrations, TimesThatAreNotKnownAreNull)
{
    for (const std::uint32_t never : {0U, notKnown}) {
        SCOPED_TRACE(never);
        Bytes record = calibrationBytes();
        put(record, 61, timeReal(never));
        put(record, 69, timeReal(never));

        for (const auto& calibrations :
             {calibrationsG1(efG1({record})), calibrationsG2(efG2({joined({record, Bytes(73)})}))}) {
            ASSERT_THAT(calibrations, SizeIs(1));
            EXPECT_TRUE(calibrations[0].oldTime.isNull());
            EXPECT_EQ(secondsOf(calibrations[0].newTime), qint64{march5} + 1);
            EXPECT_TRUE(calibrations[0].nextCalibration.isNull());
        }
    }
}

TEST(Calibrations, ATimeAfterItThatIsNotKnownIsNull)
{
    EXPECT_THAT(newTimesOf(calibrationsG1(efG1({calibrationAt(notKnown)}))), ElementsAre(-1));
    EXPECT_THAT(newTimesOf(calibrationsG2(efG2({calibrationAtG2(notKnown)}))), ElementsAre(-1));
}

TEST(Calibrations, AreSortedByTheTimeAfterThemAndSlotsNeverUsedLeftOut)
{
    const Bytes first = efG1(
        {calibrationAt(3000), Bytes(sizeG1), calibrationAt(1000), calibrationAt(0x80000001),
         calibrationAt(2000), Bytes(sizeG1)});
    EXPECT_THAT(newTimesOf(calibrationsG1(first)), ElementsAre(1000, 2000, 3000, 0x80000001));

    const Bytes second = efG2(
        {Bytes(sizeG2), calibrationAtG2(3000), calibrationAtG2(0x80000001), Bytes(sizeG2),
         calibrationAtG2(1000)});
    EXPECT_THAT(newTimesOf(calibrationsG2(second)), ElementsAre(1000, 3000, 0x80000001));
}

TEST(Calibrations, WithoutATimeAreKeptWhenTheySayWhatWasDone)
{
    const Bytes first = efG1({calibrationAt(1000), calibrationAt(0)});
    EXPECT_THAT(newTimesOf(calibrationsG1(first)), ElementsAre(-1, 1000));

    const Bytes second = efG2({calibrationAtG2(0)});
    EXPECT_THAT(newTimesOf(calibrationsG2(second)), ElementsAre(-1));
}

TEST(Calibrations, WithoutPurposeAndTimeAreKeptWhenTheySayOfWhichVehicle)
{
    Bytes record(sizeG1);
    record[1] = 'V';

    EXPECT_THAT(newTimesOf(calibrationsG1(efG1({record}))), ElementsAre(-1));
    EXPECT_THAT(newTimesOf(calibrationsG2(efG2({joined({record, Bytes(73)})}))), ElementsAre(-1));
}

TEST(Calibrations, WithoutAPurposeAreKeptWhenTheySayWhen)
{
    Bytes record = calibrationAt(1000);
    record[0] = 0;

    EXPECT_THAT(newTimesOf(calibrationsG1(efG1({record}))), ElementsAre(1000));
    EXPECT_THAT(newTimesOf(calibrationsG2(efG2({joined({record, Bytes(73)})}))), ElementsAre(1000));
}

TEST(Calibrations, OfOneTimeKeepTheCardsOrder)
{
    std::vector<Bytes> records;
    for (const unsigned char purpose : Bytes{3, 1, 2}) {
        records.push_back(calibrationAt(1000));
        records.back()[0] = purpose;
    }

    const std::vector<Calibration> calibrations = calibrationsG1(efG1(records));

    ASSERT_THAT(calibrations, SizeIs(3));
    EXPECT_EQ(calibrations[0].purpose, 3);
    EXPECT_EQ(calibrations[1].purpose, 1);
    EXPECT_EQ(calibrations[2].purpose, 2);
}

TEST(Calibrations, RegistrationsAreDecodedByTheirCodePage)
{
    const struct
    {
        unsigned char codePage;
        const char* text;
        QString expected;
    } rows[] = {
        {1, "B \xC4\xD6 1", QStringLiteral("B \u00C4\u00D6 1")},
        {2, "\xA3 1", QStringLiteral("\u0141 1")},
        {0, "\xC4", QStringLiteral("\u00C4")},
        {255, "\xC4", QStringLiteral("\u00C4")},
        {7, "\xC1\xC2", QStringLiteral("\u0391\u0392")},
        {1, "", QString()},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.expected.toStdString());
        Bytes record = calibrationBytes();
        put(record, 18, registration(0x0D, row.codePage, row.text));
        const auto calibrations = calibrationsG1(efG1({record}));
        ASSERT_THAT(calibrations, SizeIs(1));
        EXPECT_EQ(calibrations[0].registration, row.expected);
        EXPECT_EQ(calibrations[0].nation.alpha, QStringLiteral("D"));
    }
}

TEST(Calibrations, TextsMayFillTheirFieldsOrEndAtAZeroByte)
{
    Bytes full = calibrationBytes();
    put(full, 1, field("ABCDEFGHIJKLMNOPQ", 17));
    put(full, 20, field("1234567890123", 13));
    put(full, 39, field("abcdefghijklmno", 15));
    put(full, 73, field("0123456789ABCDEF", 16));
    const auto filled = calibrationsG1(efG1({full}));
    ASSERT_THAT(filled, SizeIs(1));
    EXPECT_EQ(filled[0].vehicleIdentificationNumber, QStringLiteral("ABCDEFGHIJKLMNOPQ"));
    EXPECT_EQ(filled[0].registration.size(), 13);
    EXPECT_EQ(filled[0].tyreSize, QStringLiteral("abcdefghijklmno"));
    EXPECT_EQ(filled[0].vuPartNumber, QStringLiteral("0123456789ABCDEF"));

    put(full, 1, Bytes(17));
    put(full, 42, {0x00});
    const auto ended = calibrationsG1(efG1({full}));
    ASSERT_THAT(ended, SizeIs(1));
    EXPECT_EQ(ended[0].vehicleIdentificationNumber, QString());
    EXPECT_EQ(ended[0].tyreSize, QStringLiteral("abc"));
}

TEST(Calibrations, NationsThatAreNotAssignedHaveNoLetters)
{
    Bytes record = calibrationBytes();
    put(record, 18, {0x40});
    const auto calibrations = calibrationsG1(efG1({record}));
    ASSERT_THAT(calibrations, SizeIs(1));
    EXPECT_EQ(calibrations[0].nation.numeric, 0x40);
    EXPECT_EQ(calibrations[0].nation.alpha, QString());
}

TEST(Calibrations, AreInLocalTime)
{
    const struct
    {
        const char* zone;
        QDate date;
        QTime time;
    } rows[] = {
        {"UTC", QDate(2024, 3, 5), QTime(0, 0, 1)},
        {"Europe/Berlin", QDate(2024, 3, 5), QTime(1, 0, 1)},
        {"America/New_York", QDate(2024, 3, 4), QTime(19, 0, 1)},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.zone);
        const test::LocalZone zone(row.zone);
        for (const auto& calibrations :
             {calibrationsG1(efG1({calibrationBytes()})), calibrationsG2(efG2({calibrationBytesG2()}))}) {
            ASSERT_THAT(calibrations, SizeIs(1));
            EXPECT_EQ(calibrations[0].newTime.date(), row.date);
            EXPECT_EQ(calibrations[0].newTime.time(), row.time);
            EXPECT_EQ(calibrations[0].oldTime, calibrations[0].newTime.addSecs(-1));
        }
    }
}

TEST(Calibrations, OnlyWholeRecordsCount)
{
    const Bytes first = efG1({calibrationAt(1000), calibrationAt(2000)});
    EXPECT_THAT(calibrationsG1(Bytes(first.begin(), first.end() - 1)), SizeIs(1));
    EXPECT_THAT(calibrationsG1(Bytes(first.begin(), first.begin() + headG1 + sizeG1)), SizeIs(1));
    EXPECT_THAT(calibrationsG1(Bytes(first.begin(), first.begin() + headG1 + sizeG1 - 1)), IsEmpty());
    for (std::ptrdiff_t length = 0; length <= std::ptrdiff_t{headG1}; ++length)
        EXPECT_THAT(calibrationsG1(Bytes(first.begin(), first.begin() + length)), IsEmpty());

    const Bytes second = efG2({calibrationAtG2(1000), calibrationAtG2(2000)});
    EXPECT_THAT(calibrationsG2(Bytes(second.begin(), second.end() - 1)), SizeIs(1));
    EXPECT_THAT(calibrationsG2(Bytes(second.begin(), second.begin() + headG2 + sizeG2 - 1)), IsEmpty());
    for (std::ptrdiff_t length = 0; length <= std::ptrdiff_t{headG2}; ++length)
        EXPECT_THAT(calibrationsG2(Bytes(second.begin(), second.begin() + length)), IsEmpty());
}

TEST(Calibrations, EachApplicationHasItsOwn)
{
    Image image = test::smallWorkshopImage().replace(0x050A, efG1({calibrationAt(1000), Bytes(sizeG1)}));
    image.append(test::secondWorkshopApplication(test::Version::first)
                     .replace(0x050A, efG2({calibrationAtG2(4000), Bytes(sizeG2), calibrationAtG2(3000)})));
    const CardG2 card(image);

    ASSERT_THAT(newTimesOf(card.getCalibrations()), ElementsAre(1000));
    ASSERT_THAT(newTimesOf(card.getCalibrationsG2()), ElementsAre(3000, 4000));
    EXPECT_FALSE(card.getCalibrations()[0].gnssSerialNumber.has_value());
    EXPECT_TRUE(card.getCalibrationsG2()[0].gnssSerialNumber.has_value());
}

TEST(Calibrations, CountsWithoutTheirRecordsMakeNone)
{
    test::CardOnImage<scard::SCardWorkshopG2> card(test::smallWorkshopImageG2(test::Version::second));
    ASSERT_THAT(test::chain(card.calcDataToRead()), IsEmpty());

    EXPECT_THAT(card.getCalibrations(), IsEmpty());
    EXPECT_THAT(card.getCalibrationsG2(), IsEmpty());
    EXPECT_THAT(card.getCalibrationAddData(), IsEmpty());
    EXPECT_EQ(card.getCalibrationCounters().total, std::nullopt);
    EXPECT_EQ(card.getCalibrationCountersG2().total, std::nullopt);
}

// Counters

TEST(CalibrationCounters, HaveTwoBytesEach)
{
    const auto counters = calibrationCounters(efWith(3 + 105, 0, {0x12, 0x34, 0x56}), {0xFE, 0xDC});
    EXPECT_EQ(counters.total, 0x1234);
    EXPECT_EQ(counters.sinceDownload, 0xFEDC);

    const auto zero = calibrationCounters(Bytes(4), Bytes(2));
    EXPECT_EQ(zero.total, 0);
    EXPECT_EQ(zero.sinceDownload, 0);
}

TEST(CalibrationCounters, OfAnEfThatWasNotReadAreEmpty)
{
    EXPECT_EQ(calibrationCounters({}, {0x00, 0x01}).total, std::nullopt);
    EXPECT_EQ(calibrationCounters({}, {0x00, 0x01}).sinceDownload, 1);
    EXPECT_EQ(calibrationCounters({0x00, 0x02, 0x00}, {}).total, 2);
    EXPECT_EQ(calibrationCounters({0x00, 0x02, 0x00}, {}).sinceDownload, std::nullopt);
    EXPECT_EQ(calibrationCounters({0x01}, {0x01}).total, std::nullopt);
    EXPECT_EQ(calibrationCounters({0x01}, {0x01}).sinceDownload, std::nullopt);
}

TEST(CalibrationCounters, OfAnImageWithoutTheDownloadCountHaveTheTotalOnly)
{
    const CardG1 first(test::smallWorkshopImage().without(0x0509));
    EXPECT_EQ(first.getCalibrationCounters().total, 0x0102);
    EXPECT_EQ(first.getCalibrationCounters().sinceDownload, std::nullopt);

    const CardG2 second(test::smallWorkshopImageG2(test::Version::second).without(0x0509));
    EXPECT_EQ(second.getCalibrationCounters().sinceDownload, std::nullopt);
    EXPECT_EQ(second.getCalibrationCountersG2().total, 0x0304);
    EXPECT_EQ(second.getCalibrationCountersG2().sinceDownload, std::nullopt);
}

// Further data about calibrations

/// 27 bytes, no two fields alike.
Bytes addDataBytes(std::uint32_t oldTime, std::uint32_t countryTime = march5 + 7)
{
    Bytes record(27);
    put(record, 0, timeReal(oldTime));
    put(record, 4, field(" VIN 890123456", 17));
    put(record, 21, {0x02, 0x28});
    put(record, 23, timeReal(countryTime));
    return record;
}

Bytes addDataEf(const std::vector<Bytes>& records)
{
    Bytes ef{0x00, 0x02};
    for (const Bytes& record : records)
        ef.insert(ef.end(), record.begin(), record.end());
    return ef;
}

std::vector<qint64> oldTimesOf(const std::vector<scard::CalibrationAddData>& items)
{
    std::vector<qint64> times;
    for (const scard::CalibrationAddData& item : items)
        times.push_back(secondsOf(item.oldTime));
    return times;
}

TEST(CalibrationAddData, IsDecodedFromTheCardsBytes)
{
    const auto items = calibrationAddData(addDataEf({addDataBytes(march5)}));

    ASSERT_THAT(items, SizeIs(1));
    EXPECT_EQ(secondsOf(items[0].oldTime), qint64{march5});
    EXPECT_EQ(items[0].vehicleIdentificationNumber, QStringLiteral("VIN 890123456"));
    EXPECT_EQ(items[0].defaultLoadType, 2);
    EXPECT_EQ(items[0].country.numeric, 0x28);
    EXPECT_EQ(items[0].country.alpha, QStringLiteral("PL"));
    EXPECT_EQ(secondsOf(items[0].countryTime), qint64{march5} + 7);
}

TEST(CalibrationAddData, IsSortedByTheTimeBeforeAndSlotsNeverUsedAreLeftOut)
{
    const Bytes ef = addDataEf(
        {addDataBytes(3000), Bytes(27), addDataBytes(0x80000000), addDataBytes(1000), addDataBytes(2000)});

    EXPECT_THAT(oldTimesOf(calibrationAddData(ef)), ElementsAre(1000, 2000, 3000, 0x80000000));
}

TEST(CalibrationAddData, WithoutATimeIsKeptWhenItSaysOfWhichVehicle)
{
    EXPECT_THAT(
        oldTimesOf(calibrationAddData(addDataEf({addDataBytes(1000), addDataBytes(0)}))),
        ElementsAre(-1, 1000));
}

TEST(CalibrationAddData, TimesThatAreNotKnownAreNull)
{
    const auto unknownTimes = calibrationAddData(addDataEf({addDataBytes(notKnown, notKnown)}));
    ASSERT_THAT(oldTimesOf(unknownTimes), ElementsAre(-1));
    EXPECT_TRUE(unknownTimes[0].countryTime.isNull());

    const auto noPosition = calibrationAddData(addDataEf({addDataBytes(1000, 0)}));
    ASSERT_THAT(noPosition, SizeIs(1));
    EXPECT_TRUE(noPosition[0].countryTime.isNull());
}

TEST(CalibrationAddData, IsInLocalTime)
{
    const test::LocalZone zone("America/New_York");
    const auto items = calibrationAddData(addDataEf({addDataBytes(march5)}));

    ASSERT_THAT(items, SizeIs(1));
    EXPECT_EQ(items[0].oldTime.date(), QDate(2024, 3, 4));
    EXPECT_EQ(items[0].oldTime.time(), QTime(19, 0));
    EXPECT_EQ(items[0].countryTime.time(), QTime(19, 0, 7));
}

TEST(CalibrationAddData, OnlyWholeRecordsCount)
{
    const Bytes ef = addDataEf({addDataBytes(1000), addDataBytes(2000)});
    EXPECT_THAT(calibrationAddData(Bytes(ef.begin(), ef.end() - 1)), SizeIs(1));
    for (std::ptrdiff_t length = 0; length < 2 + 27; ++length)
        EXPECT_THAT(calibrationAddData(Bytes(ef.begin(), ef.begin() + length)), IsEmpty());
}

TEST(CalibrationAddData, ComesWithVersion2Only)
{
    const auto imageOf = [](test::Version version) {
        return test::smallWorkshopImage().append(
            test::secondWorkshopApplication(test::Version::second)
                .replace(0x0501, test::workshopApplicationG2(version))
                .replace(0x0531, addDataEf({addDataBytes(5000), addDataBytes(4000), Bytes(27)})));
    };

    EXPECT_THAT(
        oldTimesOf(CardG2(imageOf(test::Version::second)).getCalibrationAddData()), ElementsAre(4000, 5000));
    EXPECT_THAT(CardG2(imageOf(test::Version::first)).getCalibrationAddData(), IsEmpty());
}

} // namespace
