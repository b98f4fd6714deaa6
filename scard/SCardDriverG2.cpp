#include <scard/SCardDriverG2.h>

#include <scard/detail/DriverData.h>
#include <scard/detail/DriverG2Table.h>
#include <scard/detail/ErrorBuilder.h>
#include <scard/detail/HolderName.h>
#include <scard/detail/RecordFields.h>
#include <scard/detail/SortByTime.h>
#include <scard/records/Fid.h>

namespace scard {

using detail::ledByStep;

struct Q_DECL_HIDDEN SCardDriverG2::Private
    : detail::DriverData<DriverCardApplicationIdentification_g2, SCardDriverG2::_VEHICLE_USAGE_INFO_G2>
{
    Private() : DriverData(detail::driverG2Table()) {}
};

SCardDriverG2::SCardDriverG2() : d(std::make_unique<Private>()) {}

SCardDriverG2::SCardDriverG2(const SCardGeneric& card) : SCardDriverG1(card), d(std::make_unique<Private>())
{}

SCardDriverG2::~SCardDriverG2() = default;

aux::Error SCardDriverG2::calcDataToRead()
{
    aux::Error failure = SCardDriverG1::calcDataToRead();
    if (!failure.isEmpty())
        return ledByStep(
            QStringLiteral("calcDataToRead() failed to call SCardDriverG1::calcDataToRead()"), failure);
    return d->application.calcDataToRead(*this);
}

aux::Error SCardDriverG2::read()
{
    countIdentification();
    d->clearLists();
    detail::discard("read() first application failed:", SCardDriverG1::read());
    aux::Error failure = d->application.read(*this, [](unsigned short) {});
    if (!failure.isEmpty())
        return failure;
    buildDailyActivityList();
    buildUsedVehiclesList();
    buildEventList();
    buildFaultList();
    return {};
}

aux::Error SCardDriverG2::saveToFile(QFile& file)
{
    if (file.isOpen() && !isDataValid())
        detail::logSaveFailed("Save failed g2: ", hasCardInfo());
    return d->application.saveBehind([this, &file] { return SCardDriverG1::saveToFile(file); }, *this, file);
}

aux::Error SCardDriverG2::postDownloadTasks()
{
    aux::Error failure = SCardDriverG1::postDownloadTasks();
    if (!failure.isEmpty())
        return failure;
    return d->application.writeBack(*this, [this] { return updateLastCardDownload(); });
}

DriverCard_EF_Identification SCardDriverG2::getCardIdentification()
{
    if (!d->application.has(fidIdentification))
        return SCardDriverG1::getCardIdentification();
    return d->application.record<DriverCard_EF_Identification>(fidIdentification);
}

QDateTime SCardDriverG2::getLastCardDownload()
{
    if (!d->application.has(fidCardDownload))
        return SCardDriverG1::getLastCardDownload();
    return detail::localTime(d->application.record<TimeReal>(fidCardDownload));
}

QString SCardDriverG2::getCardHolderName()
{
    return detail::holderName(SCardDriverG2::getCardIdentification());
}

aux::Error SCardDriverG2::buildDailyActivityList()
{
    aux::Error failure = d->buildDays();
    d->days.sort();
    return failure;
}

void SCardDriverG2::buildUsedVehiclesList()
{
    d->vehicles = detail::usedVehiclesG2(d->application.bytes(fidVehiclesUsed));
    detail::sortByTime<_VEHICLE_USAGE_INFO_G2>(d->vehicles, &_VEHICLE_USAGE_INFO_G2::firstUse);
}

void SCardDriverG2::buildEventList()
{
    d->buildEvents();
    detail::sortByTime(d->events, &_EVENT::begin);
}

void SCardDriverG2::buildFaultList()
{
    d->buildFaults();
    detail::sortByTime(d->faults, &_FAULT::begin);
}

std::vector<SCardDriverG1::_DAILY_ACTIVITIES> SCardDriverG2::getActivitiesG2() const
{
    return d->days.days();
}

std::vector<SCardDriverG2::_VEHICLE_USAGE_INFO_G2> SCardDriverG2::getVehiclesUsedG2() const
{
    return d->vehicles;
}

std::vector<SCardDriverG1::_EVENT> SCardDriverG2::getEventsG2() const
{
    return d->events;
}

std::vector<SCardDriverG1::_FAULT> SCardDriverG2::getFaultsG2() const
{
    return d->faults;
}

std::vector<Place> SCardDriverG2::getPlacesG2() const
{
    return detail::placesG2(d->application.bytes(fidPlaces), d->application.bytes(fidPlacesAuthentication));
}

std::vector<SpecificCondition> SCardDriverG2::getSpecificConditionsG2() const
{
    return detail::specificConditionsG2(d->application.bytes(fidSpecificConditions));
}

CurrentUse SCardDriverG2::getCurrentUseG2() const
{
    return d->currentUse();
}

ControlActivity SCardDriverG2::getControlActivityG2() const
{
    return d->controlActivity();
}

DrivingLicence SCardDriverG2::getDrivingLicenceG2() const
{
    return d->drivingLicence();
}

std::vector<VehicleUnit> SCardDriverG2::getVehicleUnits() const
{
    return detail::vehicleUnits(d->application.bytes(fidVehicleUnitsUsed));
}

std::vector<GnssPlace> SCardDriverG2::getGnssPlaces() const
{
    return detail::gnssPlaces(
        d->application.bytes(fidGnssPlaces), d->application.bytes(fidGnssPlacesAuthentication));
}

std::vector<BorderCrossing> SCardDriverG2::getBorderCrossings() const
{
    return detail::borderCrossings(d->application.bytes(fidBorderCrossings));
}

std::vector<LoadUnloadOperation> SCardDriverG2::getLoadUnloadOperations() const
{
    return detail::loadUnloadOperations(d->application.bytes(fidLoadUnloadOperations));
}

std::vector<LoadTypeEntry> SCardDriverG2::getLoadTypeEntries() const
{
    return detail::loadTypeEntries(d->application.bytes(fidLoadTypeEntries));
}

} // namespace scard
