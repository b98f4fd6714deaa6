#include "fixtures/CompanyImage.h"
#include "fixtures/LocalZone.h"
#include "fixtures/RecordBytes.h"
#include "fixtures/ValueChecks.h"
#include "QtPrinters.h"

#include <scard/detail/CompanyValues.h>
#include <scard/SCardCompanyG1.h>
#include <scard/SCardCompanyG2.h>

#include <gmock/gmock.h>

#include <QDateTime>
#include <QString>

#include <cstdint>
#include <vector>

// What the records of a company card say, as values.

namespace {

using scard::CompanyActivity;
using scard::detail::companyActivities;
using test::Bytes;
using test::field;
using test::notKnown;
using test::put;
using test::registration;
using test::secondsOf;
using test::timeReal;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr std::uint32_t march5 = 0x65E66080; // 2024-03-05 00:00 UTC

/// 46 bytes, no two fields alike.
Bytes activityBytes(std::uint32_t seconds = march5)
{
    Bytes record(46);
    put(record, 0, {0x02});
    put(record, 1, timeReal(seconds));
    put(record, 5, {0x01, 0x28});
    put(record, 7, field(" PL0000001234501", 16));
    put(record, 23, {0x10, 0x05});
    put(record, 25, field(" \xC1\xB0 0815", 13));
    put(record, 38, {0x65, 0xE6, 0x60, 0x00});
    put(record, 42, {0x80, 0x00, 0x00, 0x01});
    return record;
}

/// EF_Company_Activity_Data: pointer and records.
Bytes efOf(const std::vector<Bytes>& records)
{
    return test::companyActivities(records.size(), records);
}

std::vector<qint64> timesOf(const std::vector<CompanyActivity>& activities)
{
    std::vector<qint64> times;
    for (const CompanyActivity& activity : activities)
        times.push_back(secondsOf(activity.time));
    return times;
}

void expectFields(const CompanyActivity& activity)
{
    EXPECT_EQ(activity.activityType, 2);
    EXPECT_EQ(secondsOf(activity.time), qint64{march5});
    EXPECT_EQ(activity.cardType, 1);
    EXPECT_EQ(activity.cardNation.numeric, 0x28);
    EXPECT_EQ(activity.cardNation.alpha, QStringLiteral("PL"));
    EXPECT_EQ(activity.cardNumber, QStringLiteral("PL0000001234501"));
    EXPECT_EQ(activity.nation.numeric, 0x10);
    EXPECT_EQ(activity.nation.alpha, QStringLiteral("EST"));
    EXPECT_EQ(activity.registration, QStringLiteral("\u0421\u0410 0815"));
    EXPECT_EQ(secondsOf(activity.downloadPeriodBegin), qint64{march5} - 128);
    EXPECT_EQ(secondsOf(activity.downloadPeriodEnd), qint64{0x80000001});
}

TEST(CompanyActivities, AreDecodedFromTheCardsBytes)
{
    const std::vector<CompanyActivity> activities = companyActivities(efOf({activityBytes()}));

    ASSERT_THAT(activities, SizeIs(1));
    expectFields(activities[0]);
}

TEST(CompanyActivities, AreSortedByTimeAndSlotsNeverUsedLeftOut)
{
    Bytes emptySlot(46);
    put(emptySlot, 23, registration(0, 0, ""));
    const Bytes ef = efOf(
        {activityBytes(3000), emptySlot, activityBytes(1000), Bytes(46), activityBytes(0x80000000),
         activityBytes(2000)});

    EXPECT_THAT(timesOf(companyActivities(ef)), ElementsAre(1000, 2000, 3000, 0x80000000));
}

TEST(CompanyActivities, WithoutATimeAreKeptWhenTheySayWhatWasDone)
{
    Bytes typeless = activityBytes(2000);
    typeless[0] = 0;
    const Bytes ef = efOf({activityBytes(1000), activityBytes(0), typeless});

    EXPECT_THAT(timesOf(companyActivities(ef)), ElementsAre(-1, 1000, 2000));
}

TEST(CompanyActivities, OfOneTimeKeepTheCardsOrder)
{
    std::vector<Bytes> records;
    for (const unsigned char type : Bytes{4, 1, 3}) {
        records.push_back(activityBytes(1000));
        records.back()[0] = type;
    }

    const std::vector<CompanyActivity> activities = companyActivities(efOf(records));

    ASSERT_THAT(activities, SizeIs(3));
    EXPECT_EQ(activities[0].activityType, 4);
    EXPECT_EQ(activities[1].activityType, 1);
    EXPECT_EQ(activities[2].activityType, 3);
}

TEST(CompanyActivities, TimesThatAreNotKnownAreNull)
{
    EXPECT_THAT(timesOf(companyActivities(efOf({activityBytes(notKnown)}))), ElementsAre(-1));
    for (const std::uint32_t never : {0U, notKnown}) {
        SCOPED_TRACE(never);
        Bytes record = activityBytes();
        put(record, 38, timeReal(never));
        put(record, 42, timeReal(never));
        const std::vector<CompanyActivity> activities = companyActivities(efOf({record}));
        ASSERT_THAT(timesOf(activities), ElementsAre(march5));
        EXPECT_TRUE(activities[0].downloadPeriodBegin.isNull());
        EXPECT_TRUE(activities[0].downloadPeriodEnd.isNull());
    }
}

TEST(CompanyActivities, WithoutACardOrAVehicleHaveNoneToName)
{
    Bytes record(46);
    put(record, 0, {0x03});
    put(record, 1, timeReal(1000));
    put(record, 7, field("", 16));
    put(record, 23, registration(0, 0, ""));

    const std::vector<CompanyActivity> activities = companyActivities(efOf({record}));

    ASSERT_THAT(activities, SizeIs(1));
    EXPECT_EQ(activities[0].activityType, 3);
    EXPECT_EQ(activities[0].cardType, 0);
    EXPECT_EQ(activities[0].cardNation.numeric, 0);
    EXPECT_EQ(activities[0].cardNation.alpha, QString());
    EXPECT_EQ(activities[0].cardNumber, QString());
    EXPECT_EQ(activities[0].nation.alpha, QString());
    EXPECT_EQ(activities[0].registration, QString());
}

TEST(CompanyActivities, RegistrationsAreDecodedByTheirCodePage)
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
        {7, "\xC1\xC2", QStringLiteral("\u0391\u0392")},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.expected.toStdString());
        Bytes record = activityBytes();
        put(record, 23, registration(0x40, row.codePage, row.text));
        const std::vector<CompanyActivity> activities = companyActivities(efOf({record}));
        ASSERT_THAT(activities, SizeIs(1));
        EXPECT_EQ(activities[0].registration, row.expected);
        EXPECT_EQ(activities[0].nation.numeric, 0x40);
        EXPECT_EQ(activities[0].nation.alpha, QString());
    }
}

TEST(CompanyActivities, AreInLocalTime)
{
    const struct
    {
        const char* zone;
        QDate date;
        QTime time;
    } rows[] = {
        {"UTC", QDate(2024, 3, 5), QTime(0, 0)},
        {"Europe/Berlin", QDate(2024, 3, 5), QTime(1, 0)},
        {"America/New_York", QDate(2024, 3, 4), QTime(19, 0)},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.zone);
        const test::LocalZone zone(row.zone);
        const std::vector<CompanyActivity> activities = companyActivities(efOf({activityBytes()}));
        ASSERT_THAT(activities, SizeIs(1));
        EXPECT_EQ(activities[0].time.date(), row.date);
        EXPECT_EQ(activities[0].time.time(), row.time);
        EXPECT_EQ(activities[0].downloadPeriodBegin, activities[0].time.addSecs(-128));
    }
}

TEST(CompanyActivities, OnlyWholeRecordsCount)
{
    const Bytes ef = efOf({activityBytes(1000), activityBytes(2000)});
    EXPECT_THAT(companyActivities(Bytes(ef.begin(), ef.end() - 1)), SizeIs(1));
    EXPECT_THAT(companyActivities(Bytes(ef.begin(), ef.begin() + 2 + 46)), SizeIs(1));
    for (std::ptrdiff_t length = 0; length < 2 + 46; ++length)
        EXPECT_THAT(companyActivities(Bytes(ef.begin(), ef.begin() + length)), IsEmpty());
}

TEST(CompanyActivities, EachApplicationHasItsOwn)
{
    test::Image image = test::smallCompanyImage().replace(0x050D, efOf({activityBytes(), Bytes(46)}));
    image.append(test::secondCompanyApplication(test::Version::first, test::dataG2)
                     .replace(0x050D, efOf({activityBytes(9000), Bytes(46), activityBytes(8000)})));
    const test::ReadCard<scard::SCardCompanyG2> card(image);

    ASSERT_THAT(card.getCompanyActivities(), SizeIs(1));
    expectFields(card.getCompanyActivities()[0]);
    EXPECT_THAT(timesOf(card.getCompanyActivitiesG2()), ElementsAre(8000, 9000));
}

TEST(CompanyActivities, CountsWithoutTheirRecordsMakeNone)
{
    test::CardOnImage<scard::SCardCompanyG1> card(test::smallCompanyImage());
    ASSERT_THAT(test::chain(card.calcDataToRead()), IsEmpty());

    EXPECT_THAT(card.getCompanyActivities(), IsEmpty());
}

} // namespace
