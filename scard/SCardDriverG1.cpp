#include <scard/SCardDriverG1.h>

#include <aux/CountryCodes.h>
#include <scard/detail/CardApplication.h>
#include <scard/detail/DriverFileName.h>
#include <scard/detail/DriverG1Table.h>
#include <scard/detail/ErrorBuilder.h>
#include <scard/detail/Fid.h>

#include <QDebug>

#include <utility>

namespace scard {

using detail::ledByStep;
using detail::libraryError;

struct SCardDriverG1::Private
{
    detail::CardApplication application{detail::driverG1Table()};
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
    try {
        d->application.keep(
            detail::fidApplicationIdentification,
            detail::bytesOf(readFrom<DriverCardApplicationIdentification_g1>(
                detail::fidApplicationIdentification, 0, false)));
    } catch (const aux::Error& readFailure) {
        const QString text =
            QStringLiteral("calcDataToRead(): Error reading SCardDriver G1 EF_Application_Identification:");
        qDebug().noquote() << text << readFailure;
        return detail::withStep(readFailure, text);
    }
    addDataToRead(d->application.dataToRead(*this, detail::OnCards::All));
    return {};
}

aux::Error SCardDriverG1::read()
{
    setDataValid(false);
    d->application.clear();
    d->application.keep(detail::fidIcc, detail::bytesOf(iccIdentification()));
    d->application.keep(detail::fidIc, detail::bytesOf(icIdentification()));

    aux::Error failure = d->application.select(*this);
    if (!failure.isEmpty())
        return failure;

    failure = d->application.read(*this, !hasCard(), [this](unsigned short fid) {
        if (fid == detail::fidIdentification)
            announceHolder();
    });
    if (!failure.isEmpty())
        return failure;

    // Not through the virtual slots: a second-generation card's own lists are built by its own read().
    SCardDriverG1::buildDailyActivityList();
    SCardDriverG1::buildUsedVehiclesList();
    SCardDriverG1::buildEventList();
    SCardDriverG1::buildFaultList();
    setDataValid(true);
    return {};
}

aux::Error SCardDriverG1::saveToFile(QFile& file)
{
    aux::Error failure = whyNotSaved(file, "Save failed g1: ", isLoadedFromZubo());
    if (!failure.isEmpty())
        return failure;
    failure = d->application.save(*this, file);
    if (failure.isEmpty())
        return {};
    return ledByStep(QStringLiteral("saveToFile() Failed"), std::move(failure));
}

aux::Error SCardDriverG1::postDownloadTasks()
{
    if (hasImageOnly())
        return {};
    aux::Error failure = d->application.select(*this);
    if (!failure.isEmpty())
        return failure;
    return updateLastCardDownload();
}

DriverCard_EF_Identification SCardDriverG1::getCardIdentification()
{
    return d->application.record<DriverCard_EF_Identification>(detail::fidIdentification);
}

QDateTime SCardDriverG1::getLastCardDownload()
{
    const std::uint32_t seconds = d->application.record<TimeReal>(detail::fidCardDownload).value();
    return QDateTime::fromSecsSinceEpoch(seconds, Qt::LocalTime);
}

QString SCardDriverG1::getCardHolderName()
{
    const DriverCard_EF_Identification identification = SCardDriverG1::getCardIdentification();
    return textfieldToString(identification.holderFirstNames).trimmed() + QStringLiteral(", ") +
           textfieldToString(identification.holderSurname).trimmed();
}

std::vector<SCardDriverG1::_DAILY_ACTIVITIES> SCardDriverG1::getActivities()
{
    return {};
}

std::vector<SCardDriverG1::_VEHICLE_USAGE_INFO> SCardDriverG1::getVehiclesUsed()
{
    return {};
}

std::vector<SCardDriverG1::_EVENT> SCardDriverG1::getEvents()
{
    return {};
}

std::vector<SCardDriverG1::_FAULT> SCardDriverG1::getFaults()
{
    return {};
}

aux::Error SCardDriverG1::buildDailyActivityList()
{
    return {};
}

void SCardDriverG1::buildUsedVehiclesList() {}

void SCardDriverG1::buildEventList() {}

void SCardDriverG1::buildFaultList() {}

void SCardDriverG1::constructFilename()
{
    const DriverCard_EF_Identification identification = SCardDriverG1::getCardIdentification();
    setFilename(detail::driverFileName(
        filenameRegion(), {aux::CountryCodes::countryCodeFromStateID(identification.cardIssuingMemberState),
                           identification.cardNumber, textfieldToString(identification.holderFirstNames),
                           textfieldToString(identification.holderSurname), getDownloadTimestamp()}));
}

aux::Error SCardDriverG1::updateLastCardDownload()
{
    if (!isDataValid())
        return libraryError(QStringLiteral("updateLastCardDownload(): no valid data"));
    const auto now = static_cast<std::uint32_t>(QDateTime::currentSecsSinceEpoch() & 0xFFFFFFFF);
    const auto stamp = toBigEndian<4>(now);
    aux::Error failure = writeTo(detail::fidCardDownload, stamp.size(), stamp.data());
    if (failure.isEmpty())
        return {};
    return ledByStep(
        QStringLiteral("updateLastCardDownload() writeTo() Failed: ID ") +
            detail::hexFid(detail::fidCardDownload),
        std::move(failure));
}

void SCardDriverG1::announceHolder()
{
    constructFilename();
    const DriverCard_EF_Identification identification = SCardDriverG1::getCardIdentification();
    const char language[] = {
        static_cast<char>(identification.cardHolderPreferredLanguage[0]),
        static_cast<char>(identification.cardHolderPreferredLanguage[1]), '\0'};
    emitCardLanguage(language);
    Q_EMIT cardHolderName(SCardDriverG1::getCardHolderName());
}

} // namespace scard
