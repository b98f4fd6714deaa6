#include <scard/SCardWorkshopG2.h>

#include <scard/detail/CardApplication.h>
#include <scard/detail/ErrorBuilder.h>
#include <scard/detail/WorkshopG2Table.h>
#include <scard/detail/WorkshopValues.h>
#include <scard/records/Fid.h>

namespace scard {

struct Q_DECL_HIDDEN SCardWorkshopG2::Private
{
    detail::CardApplication application{detail::workshopG2Table()};
};

SCardWorkshopG2::SCardWorkshopG2() : d(std::make_unique<Private>()) {}

SCardWorkshopG2::SCardWorkshopG2(const SCardGeneric& card)
    : SCardWorkshopG1(card), d(std::make_unique<Private>())
{}

SCardWorkshopG2::~SCardWorkshopG2() = default;

aux::Error SCardWorkshopG2::calcDataToRead()
{
    aux::Error failure = SCardWorkshopG1::calcDataToRead();
    if (!failure.isEmpty())
        return detail::ledByStep(
            QStringLiteral("calcDataToRead() failed to call SCardWorkshopG1::calcDataToRead()"), failure);
    return d->application.calcDataToRead(*this);
}

aux::Error SCardWorkshopG2::read()
{
    countIdentification();
    detail::discard("read() first application failed:", SCardWorkshopG1::read());
    return d->application.read(*this, [](unsigned short) {});
}

aux::Error SCardWorkshopG2::saveToFile(QFile& file)
{
    return d->application.saveBehind(
        [this, &file] { return SCardWorkshopG1::saveToFile(file); }, *this, file);
}

aux::Error SCardWorkshopG2::postDownloadTasks()
{
    aux::Error failure = SCardWorkshopG1::postDownloadTasks();
    if (!failure.isEmpty())
        return failure;
    return d->application.writeBack(*this, [this] { return resetCalibrationsSinceDownload(); });
}

WorkshopCard_EF_Identification SCardWorkshopG2::getCardIdentificationG2() const
{
    return d->application.record<WorkshopCard_EF_Identification>(fidIdentification);
}

CalibrationCounters SCardWorkshopG2::getCalibrationCountersG2() const
{
    return detail::calibrationCounters(
        d->application.bytes(fidCalibration), d->application.bytes(fidCardDownloadWorkshop));
}

std::vector<Calibration> SCardWorkshopG2::getCalibrationsG2() const
{
    return detail::calibrationsG2(d->application.bytes(fidCalibration));
}

std::vector<CalibrationAddData> SCardWorkshopG2::getCalibrationAddData() const
{
    return detail::calibrationAddData(d->application.bytes(fidCalibrationAddData));
}

} // namespace scard
