#pragma once

/// @file
/// The EFs of tachograph cards by their numbers (Annex 1C, Appendix 2). scard::efName() gives their names.

namespace scard {

constexpr unsigned short fidIcc = 0x0002;                       ///< EF_ICC: the card
constexpr unsigned short fidIc = 0x0005;                        ///< EF_IC: the chip
constexpr unsigned short fidApplicationIdentification = 0x0501; ///< counts of records
constexpr unsigned short fidEventsData = 0x0502;                ///< EF_EventsData
constexpr unsigned short fidFaultsData = 0x0503;                ///< EF_FaultsData
constexpr unsigned short fidDriverActivityData = 0x0504;        ///< the cyclic buffer of days
constexpr unsigned short fidVehiclesUsed = 0x0505;              ///< EF_Vehicles_Used
constexpr unsigned short fidPlaces = 0x0506;                    ///< EF_Places
constexpr unsigned short fidCurrentUsage = 0x0507;              ///< EF_Current_Usage
constexpr unsigned short fidControlActivityData = 0x0508;       ///< the last control
constexpr unsigned short fidCardDownloadWorkshop = 0x0509;      ///< counts calibrations, not a time
constexpr unsigned short fidCalibration = 0x050A;               ///< EF_Calibration
constexpr unsigned short fidCompanyActivityData = 0x050D;       ///< EF_Company_Activity_Data
constexpr unsigned short fidCardDownload = 0x050E;       ///< time of the last download of a driver card
constexpr unsigned short fidIdentification = 0x0520;     ///< card and holder
constexpr unsigned short fidDrivingLicenceInfo = 0x0521; ///< EF_Driving_License_Info
constexpr unsigned short fidSpecificConditions = 0x0522; ///< EF_Specific_Conditions
constexpr unsigned short fidVehicleUnitsUsed = 0x0523;   ///< second generation
constexpr unsigned short fidGnssPlaces = 0x0524;         ///< second generation
constexpr unsigned short fidApplicationIdentificationV2 = 0x0525; ///< version 2.2
constexpr unsigned short fidPlacesAuthentication = 0x0526;        ///< version 2.2
constexpr unsigned short fidGnssPlacesAuthentication = 0x0527;    ///< version 2.2
constexpr unsigned short fidBorderCrossings = 0x0528;             ///< version 2.2
constexpr unsigned short fidLoadUnloadOperations = 0x0529;        ///< version 2.2
constexpr unsigned short fidLoadTypeEntries = 0x0530;             ///< version 2.2
constexpr unsigned short fidCalibrationAddData = 0x0531;          ///< version 2.2, workshop cards
constexpr unsigned short fidCardCertificate = 0xC100; ///< of mutual authentication in the second generation
constexpr unsigned short fidCardSignCertificate = 0xC101; ///< second generation
constexpr unsigned short fidCaCertificate = 0xC108;       ///< of the Member State
constexpr unsigned short fidLinkCertificate = 0xC109;     ///< second generation

} // namespace scard
