#include <scard/SCardWorkshopG1.h>

#include <scard/detail/CardApplication.h>
#include <scard/detail/ErrorBuilder.h>
#include <scard/detail/FileName.h>
#include <scard/detail/HolderName.h>
#include <scard/detail/WorkshopG1Table.h>
#include <scard/detail/WorkshopValues.h>
#include <scard/records/Fid.h>

namespace scard {

struct Q_DECL_HIDDEN SCardWorkshopG1::Private
{
    detail::CardApplication application{detail::workshopG1Table()};
};

SCardWorkshopG1::SCardWorkshopG1() : SCardWorkshopG1(SCardGeneric(0L, QDateTime(), RegionDDD)) {}

SCardWorkshopG1::SCardWorkshopG1(const SCardGeneric& card)
    : SCardGeneric(card), d(std::make_unique<Private>())
{}

SCardWorkshopG1::~SCardWorkshopG1() = default;

aux::Error SCardWorkshopG1::calcDataToRead()
{
    aux::Error failure = SCardGeneric::calcDataToRead();
    if (!failure.isEmpty())
        return detail::ledByStep(
            QStringLiteral("calcDataToRead() failed to call SCardGeneric::calcDataToRead()"), failure);
    return d->application.calcDataToRead(*this);
}

aux::Error SCardWorkshopG1::read()
{
    countIdentification();
    return d->application.read(*this, [this](unsigned short fid) {
        if (fid == fidIdentification)
            announceHolder();
    });
}

aux::Error SCardWorkshopG1::saveToFile(QFile& file)
{
    return d->application.save(*this, file);
}

aux::Error SCardWorkshopG1::postDownloadTasks()
{
    return d->application.writeBack(*this, [this] { return resetCalibrationsSinceDownload(); });
}

void SCardWorkshopG1::constructFilename()
{
    const WorkshopCard_EF_Identification identification = SCardWorkshopG1::getCardIdentification();
    setFilename(detail::workshopFileName(
        filenameRegion(), identification.cardNumber,
        detail::fileNameParts(identification, getDownloadTimestamp())));
}

aux::Error SCardWorkshopG1::resetCalibrationsSinceDownload()
{
    const std::vector<unsigned char> none(sizeof(UInt16), 0);
    return detail::CardApplication::recordDownload(*this, fidCardDownloadWorkshop, none);
}

WorkshopCard_EF_Identification SCardWorkshopG1::getCardIdentification() const
{
    return d->application.record<WorkshopCard_EF_Identification>(fidIdentification);
}

QString SCardWorkshopG1::getCardHolderName() const
{
    return detail::holderName(SCardWorkshopG1::getCardIdentification());
}

CalibrationCounters SCardWorkshopG1::getCalibrationCounters() const
{
    return detail::calibrationCounters(
        d->application.bytes(fidCalibration), d->application.bytes(fidCardDownloadWorkshop));
}

std::vector<Calibration> SCardWorkshopG1::getCalibrations() const
{
    return detail::calibrationsG1(d->application.bytes(fidCalibration));
}

void SCardWorkshopG1::announceHolder()
{
    constructFilename();
    const WorkshopCard_EF_Identification identification = SCardWorkshopG1::getCardIdentification();
    emitCardLanguage(reinterpret_cast<const char*>(identification.cardHolderPreferredLanguage));
    Q_EMIT cardHolderName(SCardWorkshopG1::getCardHolderName());
}

} // namespace scard
