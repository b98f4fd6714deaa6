#include <scard/SCardDriverG2.h>

#include <scard/detail/DriverData.h>
#include <scard/detail/DriverG2Table.h>
#include <scard/detail/ErrorBuilder.h>
#include <scard/detail/Fid.h>
#include <scard/detail/HolderName.h>
#include <scard/detail/RecordFields.h>
#include <scard/detail/SortByTime.h>

#include <QDebug>

#include <utility>

namespace scard {

using detail::ledByStep;
using detail::OnCards;

namespace {

/// The error of a step that the debug stream hears of, too.
aux::Error loggedStep(const QString& text, aux::Error failure)
{
    qDebug().noquote() << text << failure;
    return ledByStep(text, std::move(failure));
}

} // namespace

struct SCardDriverG2::Private
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

    failure = ScSelectFile(detail::driverG2Table().applicationName);
    if (failure.isEmpty()) // else the counts would be those of the other application
        failure = d->application.readCounts<DriverCardApplicationIdentification_g2>(
            *this, detail::fidApplicationIdentification);
    if (!failure.isEmpty())
        return loggedStep(
            QStringLiteral("calcDataToRead(): Error reading SCardDriver G2 EF_Application_Identification:"),
            std::move(failure));
    addDataToRead(d->application.dataToRead(*this, OnCards::All));

    if (!is2_2Generation())
        return {};
    failure = d->application.readCounts<DriverCardApplicationIdentification_g2_2>(
        *this, detail::fidApplicationIdentificationV2);
    if (!failure.isEmpty())
        return loggedStep(
            QStringLiteral(
                "calcDataToRead(): Error reading SCardDriver G2 EF_Application_Identification_V2:"),
            std::move(failure));
    addDataToRead(d->application.dataToRead(*this, OnCards::Version2_2));
    return {};
}

aux::Error SCardDriverG2::read()
{
    addBytesRead(sizeof(CardIccIdentification) + sizeof(CardIcIdentification)); // by the identification

    // Whatever becomes of the first application: the second holds all of it and more.
    const aux::Error firstFailure = SCardDriverG1::read();
    if (!firstFailure.isEmpty())
        qDebug().noquote() << "read() first application failed:" << firstFailure;

    setDataValid(false);
    d->restart(iccIdentification(), icIdentification());
    aux::Error failure = d->application.select(*this);
    if (!failure.isEmpty())
        return failure;
    failure = d->application.read(*this, !hasCard(), [](unsigned short) {});
    if (!failure.isEmpty())
        return failure;

    buildDailyActivityList();
    buildUsedVehiclesList();
    buildEventList();
    buildFaultList();
    setDataValid(true);
    return {};
}

aux::Error SCardDriverG2::saveToFile(QFile& file)
{
    aux::Error failure = whyNotSaved(file, "Save failed g2: ", hasCardInfo());
    if (!failure.isEmpty())
        return failure;

    // As far as the first application was read, its records come first.
    file.unsetError();
    aux::Error firstFailure = SCardDriverG1::saveToFile(file);
    const bool recordTorn = !firstFailure.isEmpty() && file.error() != QFileDevice::NoError;
    if (!firstFailure.isEmpty())
        qDebug().noquote() << "saveToFile() first application failed:" << firstFailure;

    failure = d->application.save(*this, file);
    if (!failure.isEmpty())
        return ledByStep(QStringLiteral("saveToFile() Failed"), std::move(failure));
    // Behind a record that is not whole nobody finds the others, and the card must not be stamped for it.
    return recordTorn ? firstFailure : aux::Error();
}

aux::Error SCardDriverG2::postDownloadTasks()
{
    if (hasImageOnly())
        return {};
    aux::Error failure = SCardDriverG1::postDownloadTasks();
    if (!failure.isEmpty())
        return failure;
    failure = d->application.select(*this);
    if (!failure.isEmpty())
        return failure;
    return updateLastCardDownload();
}

DriverCard_EF_Identification SCardDriverG2::getCardIdentification()
{
    if (!d->application.has(detail::fidIdentification))
        return SCardDriverG1::getCardIdentification();
    return d->application.record<DriverCard_EF_Identification>(detail::fidIdentification);
}

QDateTime SCardDriverG2::getLastCardDownload()
{
    if (!d->application.has(detail::fidCardDownload))
        return SCardDriverG1::getLastCardDownload();
    return detail::localTime(d->application.record<TimeReal>(detail::fidCardDownload));
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
    d->vehicles = detail::usedVehiclesG2(d->application.bytes(detail::fidVehiclesUsed));
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
    return detail::placesG2(
        d->application.bytes(detail::fidPlaces), d->application.bytes(detail::fidPlacesAuthentication));
}

std::vector<SpecificCondition> SCardDriverG2::getSpecificConditionsG2() const
{
    return detail::specificConditionsG2(d->application.bytes(detail::fidSpecificConditions));
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
    return detail::vehicleUnits(d->application.bytes(detail::fidVehicleUnitsUsed));
}

std::vector<GnssPlace> SCardDriverG2::getGnssPlaces() const
{
    return detail::gnssPlaces(
        d->application.bytes(detail::fidGnssPlaces),
        d->application.bytes(detail::fidGnssPlacesAuthentication));
}

std::vector<BorderCrossing> SCardDriverG2::getBorderCrossings() const
{
    return detail::borderCrossings(d->application.bytes(detail::fidBorderCrossings));
}

std::vector<LoadUnloadOperation> SCardDriverG2::getLoadUnloadOperations() const
{
    return detail::loadUnloadOperations(d->application.bytes(detail::fidLoadUnloadOperations));
}

std::vector<LoadTypeEntry> SCardDriverG2::getLoadTypeEntries() const
{
    return detail::loadTypeEntries(d->application.bytes(detail::fidLoadTypeEntries));
}

} // namespace scard
