#include <scard/SCardDriverG1.h>

#include <scard/detail/DriverData.h>
#include <scard/detail/DriverG1Table.h>
#include <scard/detail/DrivingTime.h>
#include <scard/detail/ErrorBuilder.h>
#include <scard/detail/FileName.h>
#include <scard/detail/HolderName.h>
#include <scard/detail/RecordFields.h>
#include <scard/detail/SortByTime.h>
#include <scard/records/Fid.h>

#include <utility>

namespace scard {

using detail::ledByStep;

struct Q_DECL_HIDDEN SCardDriverG1::Private
    : detail::DriverData<DriverCardApplicationIdentification_g1, SCardDriverG1::_VEHICLE_USAGE_INFO>
{
    Private() : DriverData(detail::driverG1Table()) {}
};

SCardDriverG1::SCardDriverG1() : SCardDriverG1(SCardGeneric(0L, QDateTime(), RegionDDD)) {}

SCardDriverG1::SCardDriverG1(const SCardGeneric& card) : SCardGeneric(card), d(std::make_unique<Private>()) {}

SCardDriverG1::~SCardDriverG1() = default;

aux::Error SCardDriverG1::calcDataToRead()
{
    aux::Error failure = SCardGeneric::calcDataToRead();
    if (!failure.isEmpty())
        return ledByStep(
            QStringLiteral("calcDataToRead() failed to call SCardGeneric::calcDataToRead()"), failure);
    if (!ScSelectFile(detail::driverG1Table().applicationName).isEmpty())
        return {};
    return d->application.addUp(*this);
}

aux::Error SCardDriverG1::read()
{
    d->clearLists();
    aux::Error failure = d->application.read(*this, [this](unsigned short fid) {
        if (fid == fidIdentification)
            announceHolder();
    });
    if (d->application.hasRequired(*this)) {
        // The lists are those that the image will give. Not through the virtual slots: a second-generation
        // card's own lists are built by its own read().
        SCardDriverG1::buildDailyActivityList();
        SCardDriverG1::buildUsedVehiclesList();
        SCardDriverG1::buildEventList();
        SCardDriverG1::buildFaultList();
    }
    return failure;
}

aux::Error SCardDriverG1::saveToFile(QFile& file)
{
    if (file.isOpen() && !isDataValid())
        detail::logSaveFailed("Save failed g1: ", isLoadedFromZubo());
    return d->application.save(*this, file);
}

aux::Error SCardDriverG1::postDownloadTasks()
{
    return d->application.writeBack(*this, [this] { return updateLastCardDownload(); });
}

DriverCard_EF_Identification SCardDriverG1::getCardIdentification()
{
    return d->application.record<DriverCard_EF_Identification>(fidIdentification);
}

QDateTime SCardDriverG1::getLastCardDownload()
{
    return detail::localTime(d->application.record<TimeReal>(fidCardDownload));
}

QString SCardDriverG1::getCardHolderName()
{
    return detail::holderName(SCardDriverG1::getCardIdentification());
}

std::vector<SCardDriverG1::_DAILY_ACTIVITIES> SCardDriverG1::getActivities()
{
    d->days.sort();
    return d->days.days();
}

std::vector<SCardDriverG1::_VEHICLE_USAGE_INFO> SCardDriverG1::getVehiclesUsed()
{
    detail::sortByTime(d->vehicles, &_VEHICLE_USAGE_INFO::firstUse);
    return d->vehicles;
}

std::vector<SCardDriverG1::_EVENT> SCardDriverG1::getEvents()
{
    detail::sortByTime(d->events, &_EVENT::begin);
    return d->events;
}

std::vector<SCardDriverG1::_FAULT> SCardDriverG1::getFaults()
{
    detail::sortByTime(d->faults, &_FAULT::begin);
    return d->faults;
}

aux::Error SCardDriverG1::buildDailyActivityList()
{
    return d->buildDays();
}

void SCardDriverG1::buildUsedVehiclesList()
{
    d->vehicles = detail::usedVehiclesG1(d->application.bytes(fidVehiclesUsed));
}

void SCardDriverG1::buildEventList()
{
    d->buildEvents();
}

void SCardDriverG1::buildFaultList()
{
    d->buildFaults();
}

bool SCardDriverG1::getDayStatistics(
    QDate date, int& work, int& rest, int& driving, int& availability, int& unknown) const
{
    const detail::Day none;
    const detail::Day* found = d->days.first(date);
    const detail::Day& day = found ? *found : none;
    work = day.work;
    rest = day.rest;
    driving = day.driving;
    availability = day.availability;
    unknown = day.unknown;
    return found != nullptr;
}

QDateTime SCardDriverG1::getDateOfFirstActivity() const
{
    const std::vector<detail::Day>& days = d->days.days();
    return days.empty() ? QDateTime() : days.front().date;
}

QDateTime SCardDriverG1::getDateOfLastActivity() const
{
    const std::vector<detail::Day>& days = d->days.days();
    return days.empty() ? QDateTime() : days.back().date;
}

int SCardDriverG1::getRemainingDrivingTimeOfDay(QDate date) const
{
    return detail::remainingDrivingTimeOfDay(d->days, date);
}

int SCardDriverG1::getRemainingDrivingTimeOfWeek(QDate date) const
{
    return detail::remainingDrivingTimeOfWeek(d->days, date);
}

int SCardDriverG1::getRemainingExtendedDrivingTimeOfWeek(QDate date) const
{
    return detail::remainingExtendedDrivingTimeOfWeek(d->days, date);
}

int SCardDriverG1::getRemainingReducedRestTimeOfWeek(QDate date) const
{
    return detail::remainingReducedRestTimeOfWeek(d->days, date);
}

int SCardDriverG1::getTimeToNextBreak(QDate date) const
{
    return detail::timeToNextBreak(d->days, date);
}

std::vector<Place> SCardDriverG1::getPlaces() const
{
    return detail::placesG1(d->application.bytes(fidPlaces));
}

std::vector<SpecificCondition> SCardDriverG1::getSpecificConditions() const
{
    return detail::specificConditionsG1(d->application.bytes(fidSpecificConditions));
}

CurrentUse SCardDriverG1::getCurrentUse() const
{
    return d->currentUse();
}

ControlActivity SCardDriverG1::getControlActivity() const
{
    return d->controlActivity();
}

DrivingLicence SCardDriverG1::getDrivingLicence() const
{
    return d->drivingLicence();
}

void SCardDriverG1::constructFilename()
{
    const DriverCard_EF_Identification identification = SCardDriverG1::getCardIdentification();
    setFilename(detail::driverFileName(
        filenameRegion(), identification.cardNumber,
        detail::fileNameParts(identification, getDownloadTimestamp())));
}

aux::Error SCardDriverG1::updateLastCardDownload()
{
    const auto now = static_cast<std::uint32_t>(QDateTime::currentSecsSinceEpoch() & 0xFFFFFFFF);
    const auto stamp = toBigEndian<sizeof(TimeReal)>(now);
    return detail::CardApplication::recordDownload(*this, fidCardDownload, {stamp.begin(), stamp.end()});
}

void SCardDriverG1::announceHolder()
{
    constructFilename();
    const DriverCard_EF_Identification identification = SCardDriverG1::getCardIdentification();
    emitCardLanguage(reinterpret_cast<const char*>(identification.cardHolderPreferredLanguage));
    Q_EMIT cardHolderName(SCardDriverG1::getCardHolderName());
}

} // namespace scard
