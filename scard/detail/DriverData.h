#pragma once

#include <scard/detail/CardApplication.h>
#include <scard/detail/DayList.h>
#include <scard/detail/DriverValues.h>
#include <scard/detail/UsageLists.h>
#include <scard/records/DriverCard.h>
#include <scard/records/Fid.h>
#include <scard/SCardDriverG1.h>

#include <QDebug>

#include <vector>

namespace scard::detail {

/// Tells the debug stream why nothing is saved: @p text, the data-valid flag, which is not set, and another
/// one.
inline void logSaveFailed(const char* text, bool flag)
{
    qDebug().noquote() << QByteArray(text) + "false" << (flag ? "true" : "false");
}

/// What one application of a driver card holds, and the lists that are made of it. @p Identification is the
/// record of its EF_Application_Identification, @p Vehicle an item of its list of vehicles.
template <typename Identification, typename Vehicle>
struct DriverData
{
    explicit DriverData(const EfTable& table) : application(table) {}

    /// Forgets what was made of an earlier reading.
    void clearLists()
    {
        days.clear();
        vehicles.clear();
        events.clear();
        faults.clear();
    }

    aux::Error buildDays()
    {
        const auto identification = application.record<Identification>(fidApplicationIdentification);
        return days.build(
            application.bytes(fidDriverActivityData), identification.activityStructureLength.value());
    }

    void buildEvents() { events = detail::events(application.bytes(fidEventsData)); }
    void buildFaults() { faults = detail::faults(application.bytes(fidFaultsData)); }

    CurrentUse currentUse() const
    {
        return detail::currentUse(application.record<CardCurrentUse>(fidCurrentUsage));
    }

    ControlActivity controlActivity() const
    {
        return detail::controlActivity(
            application.record<CardControlActivityDataRecord>(fidControlActivityData));
    }

    DrivingLicence drivingLicence() const
    {
        return detail::drivingLicence(
            application.record<CardDrivingLicenceInformation>(fidDrivingLicenceInfo));
    }

    CardApplication application;
    DayList days;
    std::vector<Vehicle> vehicles;
    std::vector<SCardDriverG1::_EVENT> events;
    std::vector<SCardDriverG1::_FAULT> faults;
};

} // namespace scard::detail
