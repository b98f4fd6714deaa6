#include <scard/SCardCompanyG1.h>
#include <scard/SCardCompanyG2.h>
#include <scard/SCardDriverG1.h>
#include <scard/SCardDriverG2.h>
#include <scard/SCardGeneric.h>
#include <scard/SCardWorkshopG1.h>
#include <scard/SCardWorkshopG2.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <type_traits>

// Hosts are compiled against the order of the virtual operations.

namespace {

using scard::SCardCompanyG1;
using scard::SCardCompanyG2;
using scard::SCardDriverG1;
using scard::SCardDriverG2;
using scard::SCardGeneric;
using scard::SCardWorkshopG1;
using scard::SCardWorkshopG2;

constexpr std::ptrdiff_t notVirtual = -1;

/// The slot of a virtual operation, read out of the pointer to it. Itanium C++ ABI: the first word is 1
/// + the offset in the table; on ARM, where odd addresses have a meaning, it is the offset and the low
/// bit of the second word says that the operation is virtual.
template <typename Operation>
std::ptrdiff_t slotOf(Operation operation)
{
    std::ptrdiff_t words[2];
    static_assert(sizeof operation == sizeof words);
    std::memcpy(words, &operation, sizeof words);
#if defined(__arm__) || defined(__aarch64__)
    const bool isVirtual = (words[1] & 1) != 0;
    const std::ptrdiff_t offset = words[0];
#else
    const bool isVirtual = (words[0] & 1) != 0;
    const std::ptrdiff_t offset = words[0] - 1;
#endif
    return isVirtual ? offset / static_cast<std::ptrdiff_t>(sizeof(void*)) : notVirtual;
}

struct LastOfQObject : QObject
{
    static std::ptrdiff_t slot() { return slotOf(&LastOfQObject::disconnectNotify); }
};

TEST(VirtualSlots, AreReadRightlyFromQObject)
{
    // metaObject, qt_metacast, qt_metacall, two destructors, event, eventFilter
    EXPECT_EQ(slotOf(&QObject::metaObject), 0);
    EXPECT_EQ(slotOf(&QObject::event), 5);
    EXPECT_EQ(slotOf(&QObject::eventFilter), 6);
    EXPECT_EQ(slotOf(&QObject::objectName), notVirtual);
}

TEST(VirtualSlots, TheDownloadStepsFollowQObject)
{
    const std::ptrdiff_t first = LastOfQObject::slot() + 1;
    EXPECT_EQ(slotOf(&SCardGeneric::calcDataToRead), first);
    EXPECT_EQ(slotOf(&SCardGeneric::read), first + 1);
    EXPECT_EQ(slotOf(&SCardGeneric::saveToFile), first + 2);
    EXPECT_EQ(slotOf(&SCardGeneric::postDownloadTasks), first + 3);
    EXPECT_EQ(slotOf(&SCardGeneric::extraTask), first + 4);
}

TEST(VirtualSlots, TheDriverCardKeepsTheStepsInTheirSlots)
{
    EXPECT_EQ(slotOf(&SCardDriverG1::calcDataToRead), slotOf(&SCardGeneric::calcDataToRead));
    EXPECT_EQ(slotOf(&SCardDriverG1::read), slotOf(&SCardGeneric::read));
    EXPECT_EQ(slotOf(&SCardDriverG1::saveToFile), slotOf(&SCardGeneric::saveToFile));
    EXPECT_EQ(slotOf(&SCardDriverG1::postDownloadTasks), slotOf(&SCardGeneric::postDownloadTasks));
    EXPECT_EQ(slotOf(&SCardDriverG1::extraTask), slotOf(&SCardGeneric::extraTask));
}

TEST(VirtualSlots, TheDriverCardsOperationsFollowTheSteps)
{
    const std::ptrdiff_t first = slotOf(&SCardGeneric::extraTask) + 1;
    EXPECT_EQ(slotOf(&SCardDriverG1::getCardIdentification), first);
    EXPECT_EQ(slotOf(&SCardDriverG1::getLastCardDownload), first + 1);
    EXPECT_EQ(slotOf(&SCardDriverG1::getCardHolderName), first + 2);
    EXPECT_EQ(slotOf(&SCardDriverG1::getActivities), first + 3);
    EXPECT_EQ(slotOf(&SCardDriverG1::getVehiclesUsed), first + 4);
    EXPECT_EQ(slotOf(&SCardDriverG1::getEvents), first + 5);
    EXPECT_EQ(slotOf(&SCardDriverG1::getFaults), first + 6);
    EXPECT_EQ(slotOf(&SCardDriverG1::buildDailyActivityList), first + 7);
    EXPECT_EQ(slotOf(&SCardDriverG1::buildUsedVehiclesList), first + 8);
    EXPECT_EQ(slotOf(&SCardDriverG1::buildEventList), first + 9);
    EXPECT_EQ(slotOf(&SCardDriverG1::buildFaultList), first + 10);
}

TEST(VirtualSlots, TheSecondGenerationKeepsEverySlotOfTheFirst)
{
    EXPECT_EQ(slotOf(&SCardDriverG2::calcDataToRead), slotOf(&SCardDriverG1::calcDataToRead));
    EXPECT_EQ(slotOf(&SCardDriverG2::read), slotOf(&SCardDriverG1::read));
    EXPECT_EQ(slotOf(&SCardDriverG2::saveToFile), slotOf(&SCardDriverG1::saveToFile));
    EXPECT_EQ(slotOf(&SCardDriverG2::postDownloadTasks), slotOf(&SCardDriverG1::postDownloadTasks));
    EXPECT_EQ(slotOf(&SCardDriverG2::extraTask), slotOf(&SCardDriverG1::extraTask));
    EXPECT_EQ(slotOf(&SCardDriverG2::getCardIdentification), slotOf(&SCardDriverG1::getCardIdentification));
    EXPECT_EQ(slotOf(&SCardDriverG2::getLastCardDownload), slotOf(&SCardDriverG1::getLastCardDownload));
    EXPECT_EQ(slotOf(&SCardDriverG2::getCardHolderName), slotOf(&SCardDriverG1::getCardHolderName));
    EXPECT_EQ(slotOf(&SCardDriverG2::getActivities), slotOf(&SCardDriverG1::getActivities));
    EXPECT_EQ(slotOf(&SCardDriverG2::getVehiclesUsed), slotOf(&SCardDriverG1::getVehiclesUsed));
    EXPECT_EQ(slotOf(&SCardDriverG2::getEvents), slotOf(&SCardDriverG1::getEvents));
    EXPECT_EQ(slotOf(&SCardDriverG2::getFaults), slotOf(&SCardDriverG1::getFaults));
    EXPECT_EQ(slotOf(&SCardDriverG2::buildDailyActivityList), slotOf(&SCardDriverG1::buildDailyActivityList));
    EXPECT_EQ(slotOf(&SCardDriverG2::buildUsedVehiclesList), slotOf(&SCardDriverG1::buildUsedVehiclesList));
    EXPECT_EQ(slotOf(&SCardDriverG2::buildEventList), slotOf(&SCardDriverG1::buildEventList));
    EXPECT_EQ(slotOf(&SCardDriverG2::buildFaultList), slotOf(&SCardDriverG1::buildFaultList));
}

template <typename Class, typename Operation>
constexpr bool isOf(Operation Class::*)
{
    return std::is_same_v<Class, SCardDriverG1>;
}

TEST(VirtualSlots, TheListGettersOfTheFirstGenerationAreNotOverridden)
{
    EXPECT_TRUE(isOf(&SCardDriverG2::getActivities));
    EXPECT_TRUE(isOf(&SCardDriverG2::getVehiclesUsed));
    EXPECT_TRUE(isOf(&SCardDriverG2::getEvents));
    EXPECT_TRUE(isOf(&SCardDriverG2::getFaults));
}

TEST(VirtualSlots, WhatIsCalledDirectlyHasNoSlot)
{
    EXPECT_EQ(slotOf(&SCardGeneric::readCardInfo), notVirtual);
    EXPECT_EQ(slotOf(&SCardDriverG1::constructFilename), notVirtual);
    EXPECT_EQ(slotOf(&SCardDriverG1::updateLastCardDownload), notVirtual);
}

TEST(VirtualSlots, FiguresAndValuesHaveNoSlot)
{
    EXPECT_EQ(slotOf(&SCardDriverG1::getDayStatistics), notVirtual);
    EXPECT_EQ(slotOf(&SCardDriverG1::getDateOfFirstActivity), notVirtual);
    EXPECT_EQ(slotOf(&SCardDriverG1::getDateOfLastActivity), notVirtual);
    EXPECT_EQ(slotOf(&SCardDriverG1::getRemainingDrivingTimeOfDay), notVirtual);
    EXPECT_EQ(slotOf(&SCardDriverG1::getRemainingDrivingTimeOfWeek), notVirtual);
    EXPECT_EQ(slotOf(&SCardDriverG1::getRemainingExtendedDrivingTimeOfWeek), notVirtual);
    EXPECT_EQ(slotOf(&SCardDriverG1::getRemainingReducedRestTimeOfWeek), notVirtual);
    EXPECT_EQ(slotOf(&SCardDriverG1::getTimeToNextBreak), notVirtual);
    EXPECT_EQ(slotOf(&SCardDriverG1::getPlaces), notVirtual);
    EXPECT_EQ(slotOf(&SCardDriverG1::getSpecificConditions), notVirtual);
    EXPECT_EQ(slotOf(&SCardDriverG1::getCurrentUse), notVirtual);
    EXPECT_EQ(slotOf(&SCardDriverG1::getControlActivity), notVirtual);
    EXPECT_EQ(slotOf(&SCardDriverG1::getDrivingLicence), notVirtual);
    EXPECT_EQ(slotOf(&SCardDriverG2::getActivitiesG2), notVirtual);
    EXPECT_EQ(slotOf(&SCardDriverG2::getVehiclesUsedG2), notVirtual);
    EXPECT_EQ(slotOf(&SCardDriverG2::getEventsG2), notVirtual);
    EXPECT_EQ(slotOf(&SCardDriverG2::getFaultsG2), notVirtual);
    EXPECT_EQ(slotOf(&SCardDriverG2::getPlacesG2), notVirtual);
    EXPECT_EQ(slotOf(&SCardDriverG2::getSpecificConditionsG2), notVirtual);
    EXPECT_EQ(slotOf(&SCardDriverG2::getCurrentUseG2), notVirtual);
    EXPECT_EQ(slotOf(&SCardDriverG2::getControlActivityG2), notVirtual);
    EXPECT_EQ(slotOf(&SCardDriverG2::getDrivingLicenceG2), notVirtual);
    EXPECT_EQ(slotOf(&SCardDriverG2::getVehicleUnits), notVirtual);
    EXPECT_EQ(slotOf(&SCardDriverG2::getGnssPlaces), notVirtual);
    EXPECT_EQ(slotOf(&SCardDriverG2::getBorderCrossings), notVirtual);
    EXPECT_EQ(slotOf(&SCardDriverG2::getLoadUnloadOperations), notVirtual);
    EXPECT_EQ(slotOf(&SCardDriverG2::getLoadTypeEntries), notVirtual);
}

/// The next slot behind those of @p Card.
template <typename Card>
struct Behind : Card
{
    virtual void next() {}

    static std::ptrdiff_t slot() { return slotOf(&Behind::next); }
};

template <typename Card>
void expectTheStepsAndNothingMore()
{
    EXPECT_EQ(slotOf(&Card::calcDataToRead), slotOf(&SCardGeneric::calcDataToRead));
    EXPECT_EQ(slotOf(&Card::read), slotOf(&SCardGeneric::read));
    EXPECT_EQ(slotOf(&Card::saveToFile), slotOf(&SCardGeneric::saveToFile));
    EXPECT_EQ(slotOf(&Card::postDownloadTasks), slotOf(&SCardGeneric::postDownloadTasks));
    EXPECT_EQ(slotOf(&Card::extraTask), slotOf(&SCardGeneric::extraTask));
    EXPECT_EQ(Behind<Card>::slot(), slotOf(&SCardGeneric::extraTask) + 1);
}

TEST(VirtualSlots, WorkshopAndCompanyCardsKeepTheStepsInTheirSlotsAndAddNone)
{
    expectTheStepsAndNothingMore<SCardGeneric>();
    expectTheStepsAndNothingMore<SCardWorkshopG1>();
    expectTheStepsAndNothingMore<SCardWorkshopG2>();
    expectTheStepsAndNothingMore<SCardCompanyG1>();
    expectTheStepsAndNothingMore<SCardCompanyG2>();
}

TEST(VirtualSlots, TheDriverCardAddsElevenOperations)
{
    EXPECT_EQ(Behind<SCardDriverG1>::slot(), slotOf(&SCardGeneric::extraTask) + 12);
    EXPECT_EQ(Behind<SCardDriverG2>::slot(), slotOf(&SCardGeneric::extraTask) + 12);
}

template <typename Class, typename Implementer>
constexpr bool isImplementedBy(aux::Error (Implementer::*)())
{
    return std::is_same_v<Class, Implementer>;
}

TEST(VirtualSlots, EachWorkshopAndCompanyClassHasItsOwnSteps)
{
    EXPECT_TRUE(isImplementedBy<SCardWorkshopG1>(&SCardWorkshopG1::calcDataToRead));
    EXPECT_TRUE(isImplementedBy<SCardWorkshopG1>(&SCardWorkshopG1::read));
    EXPECT_TRUE(isImplementedBy<SCardWorkshopG1>(&SCardWorkshopG1::postDownloadTasks));
    EXPECT_TRUE(isImplementedBy<SCardGeneric>(&SCardWorkshopG1::extraTask));
    EXPECT_TRUE(isImplementedBy<SCardWorkshopG2>(&SCardWorkshopG2::calcDataToRead));
    EXPECT_TRUE(isImplementedBy<SCardWorkshopG2>(&SCardWorkshopG2::read));
    EXPECT_TRUE(isImplementedBy<SCardWorkshopG2>(&SCardWorkshopG2::postDownloadTasks));
    EXPECT_TRUE(isImplementedBy<SCardCompanyG1>(&SCardCompanyG1::calcDataToRead));
    EXPECT_TRUE(isImplementedBy<SCardCompanyG1>(&SCardCompanyG1::read));
    EXPECT_TRUE(isImplementedBy<SCardGeneric>(&SCardCompanyG1::postDownloadTasks));
    EXPECT_TRUE(isImplementedBy<SCardCompanyG2>(&SCardCompanyG2::calcDataToRead));
    EXPECT_TRUE(isImplementedBy<SCardCompanyG2>(&SCardCompanyG2::read));
    EXPECT_TRUE(isImplementedBy<SCardGeneric>(&SCardCompanyG2::postDownloadTasks));
}

TEST(VirtualSlots, WhatWorkshopAndCompanyCardsAddHasNoSlot)
{
    EXPECT_EQ(slotOf(&SCardWorkshopG1::constructFilename), notVirtual);
    EXPECT_EQ(slotOf(&SCardWorkshopG1::resetCalibrationsSinceDownload), notVirtual);
    EXPECT_EQ(slotOf(&SCardWorkshopG1::getCardIdentification), notVirtual);
    EXPECT_EQ(slotOf(&SCardWorkshopG1::getCardHolderName), notVirtual);
    EXPECT_EQ(slotOf(&SCardWorkshopG1::getCalibrationCounters), notVirtual);
    EXPECT_EQ(slotOf(&SCardWorkshopG1::getCalibrations), notVirtual);
    EXPECT_EQ(slotOf(&SCardWorkshopG2::getCardIdentificationG2), notVirtual);
    EXPECT_EQ(slotOf(&SCardWorkshopG2::getCalibrationCountersG2), notVirtual);
    EXPECT_EQ(slotOf(&SCardWorkshopG2::getCalibrationsG2), notVirtual);
    EXPECT_EQ(slotOf(&SCardWorkshopG2::getCalibrationAddData), notVirtual);
    EXPECT_EQ(slotOf(&SCardCompanyG1::constructFilename), notVirtual);
    EXPECT_EQ(slotOf(&SCardCompanyG1::getCompanyActivities), notVirtual);
    EXPECT_EQ(slotOf(&SCardCompanyG2::getCardIdentification), notVirtual);
    EXPECT_EQ(slotOf(&SCardCompanyG2::getCardHolderName), notVirtual);
    EXPECT_EQ(slotOf(&SCardCompanyG2::getCompanyActivitiesG2), notVirtual);
}

} // namespace
