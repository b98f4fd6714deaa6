#pragma once

namespace scard {

// The EFs by their numbers (Appendix 2).
constexpr unsigned short fidIcc = 0x0002;
constexpr unsigned short fidIc = 0x0005;
constexpr unsigned short fidApplicationIdentification = 0x0501;
constexpr unsigned short fidEventsData = 0x0502;
constexpr unsigned short fidFaultsData = 0x0503;
constexpr unsigned short fidDriverActivityData = 0x0504;
constexpr unsigned short fidVehiclesUsed = 0x0505;
constexpr unsigned short fidPlaces = 0x0506;
constexpr unsigned short fidCurrentUsage = 0x0507;
constexpr unsigned short fidControlActivityData = 0x0508;
constexpr unsigned short fidCardDownloadWorkshop = 0x0509; ///< counts calibrations, not a time
constexpr unsigned short fidCalibration = 0x050A;
constexpr unsigned short fidCompanyActivityData = 0x050D;
constexpr unsigned short fidCardDownload = 0x050E;
constexpr unsigned short fidIdentification = 0x0520;
constexpr unsigned short fidDrivingLicenceInfo = 0x0521;
constexpr unsigned short fidSpecificConditions = 0x0522;
constexpr unsigned short fidVehicleUnitsUsed = 0x0523;
constexpr unsigned short fidGnssPlaces = 0x0524;
constexpr unsigned short fidApplicationIdentificationV2 = 0x0525;
constexpr unsigned short fidPlacesAuthentication = 0x0526;
constexpr unsigned short fidGnssPlacesAuthentication = 0x0527;
constexpr unsigned short fidBorderCrossings = 0x0528;
constexpr unsigned short fidLoadUnloadOperations = 0x0529;
constexpr unsigned short fidLoadTypeEntries = 0x0530;
constexpr unsigned short fidCalibrationAddData = 0x0531;
constexpr unsigned short fidCardCertificate = 0xC100; ///< of mutual authentication in the second generation
constexpr unsigned short fidCardSignCertificate = 0xC101;
constexpr unsigned short fidCaCertificate = 0xC108;
constexpr unsigned short fidLinkCertificate = 0xC109;

} // namespace scard
