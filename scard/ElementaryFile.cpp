#include <scard/ElementaryFile.h>

#include <scard/detail/EfNames.h>

#include <algorithm>
#include <iterator>

namespace scard {

namespace {

constexpr detail::EfName efNames[] = {
    detail::efIcc,
    detail::efIc,
    detail::efApplicationIdentification,
    detail::efEventsData,
    detail::efFaultsData,
    detail::efDriverActivityData,
    detail::efVehiclesUsed,
    detail::efPlaces,
    detail::efCurrentUsage,
    detail::efControlActivityData,
    detail::efCardDownload,
    detail::efCardDownloadWorkshop,
    detail::efCalibrationG2,
    detail::efCompanyActivityData,
    detail::efIdentification,
    detail::efDrivingLicenceInfo,
    detail::efSpecificConditions,
    detail::efVehicleUnitsUsed,
    detail::efGnssPlaces,
    detail::efApplicationIdentificationV2,
    detail::efPlacesAuthentication,
    detail::efGnssPlacesAuthentication,
    detail::efBorderCrossings,
    detail::efLoadUnloadOperations,
    detail::efLoadTypeEntries,
    detail::efCalibrationAddData,
    detail::efCardCertificate,
    detail::efCardSignCertificate,
    detail::efCaCertificate,
    detail::efLinkCertificate,
    detail::efExtendedLength,
    detail::efSensorInstallationData,
    detail::efControllerActivityData,
    detail::efVuConfiguration,
    detail::efDir,
    detail::efAtrInfo,
};

} // namespace

QString efName(unsigned short fid, bool secondGeneration)
{
    if (secondGeneration && fid == detail::efMaCertificate.fid)
        return QString::fromLatin1(detail::efMaCertificate.name);
    const auto* name =
        std::find_if(std::begin(efNames), std::end(efNames), [fid](const detail::EfName& each) {
            return each.fid == fid;
        });
    return name == std::end(efNames) ? QString() : QString::fromLatin1(name->name);
}

} // namespace scard
