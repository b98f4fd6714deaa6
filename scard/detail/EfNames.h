#pragma once

#include <scard/detail/EfTable.h>
#include <scard/records/Fid.h>

// Names and failure texts of the EFs. They are spelled as they always were, not as the regulation spells
// them: people search their logs for them.

namespace scard::detail {

// clang-format off
constexpr EfName efIcc{fidIcc, "EF_ICC", ""};
constexpr EfName efIc{fidIc, "EF_IC", ""};
constexpr EfName efApplicationIdentification{fidApplicationIdentification, "EF_Application_Identification", "Error reading EF_Application_Identification:"};
constexpr EfName efEventsData{fidEventsData, "EF_EventsData", "Error reading EF_EventsData:"};
constexpr EfName efFaultsData{fidFaultsData, "EF_FaultsData", "Error reading EF_FaultsData:"};
constexpr EfName efDriverActivityData{fidDriverActivityData, "EF_Driver_Activity_Data", "Error reading EF_Driver_Activity_Data:"};
constexpr EfName efVehiclesUsed{fidVehiclesUsed, "EF_Vehicles_Used", "Error reading EF_Vehicles_Used:"};
constexpr EfName efPlaces{fidPlaces, "EF_Places", "Error reading EF_Places:"};
constexpr EfName efCurrentUsage{fidCurrentUsage, "EF_Current_Usage", "Error reading EF_Current_Usage:"};
constexpr EfName efControlActivityData{fidControlActivityData, "EF_Control_Activity_Data", "Error reading EF_Control_Activity_Data:"};
constexpr EfName efCardDownload{fidCardDownload, "EF_Card_Download", "Error reading EF_Card_Download:"};
constexpr EfName efCardDownloadWorkshop{fidCardDownloadWorkshop, "EF_Card_Download", "Error reading EF_Card_Download:"};
constexpr EfName efCalibrationG1{fidCalibration, "EF_Calibration", "Error reading nEF_Calibration:"};
constexpr EfName efCalibrationG2{fidCalibration, "EF_Calibration", "Error reading EF_Calibration:"};
constexpr EfName efCompanyActivityData{fidCompanyActivityData, "EF_Company_Activity_Data", "Error reading EF_Company_Activity:"};
constexpr EfName efIdentification{fidIdentification, "EF_Identification", "Error reading EF_Identification:"};
constexpr EfName efDrivingLicenceInfo{fidDrivingLicenceInfo, "EF_Driving_License_Info", "Error reading EF_Driving_License_Info:"};
constexpr EfName efSpecificConditions{fidSpecificConditions, "EF_Specific_Conditions", "Error reading m_EF_Specitifc_Conditions:"};
constexpr EfName efVehicleUnitsUsed{fidVehicleUnitsUsed, "EF_Vehicle_Units_Used", "Error reading m_EF_Vehicle_Units_Used:"};
constexpr EfName efGnssPlaces{fidGnssPlaces, "EF_GNSS_Places", "Error reading m_EF_GNSS_Places:"};
constexpr EfName efApplicationIdentificationV2{fidApplicationIdentificationV2, "EF_Application_Identification_V2", "Error reading EF_Application_Identification_V2:"};
constexpr EfName efPlacesAuthentication{fidPlacesAuthentication, "EF_Places_Authentication", "Error reading EF_Places_Authentication:"};
constexpr EfName efGnssPlacesAuthentication{fidGnssPlacesAuthentication, "EF_GNSS_Places_Authentication", "Error reading EF_GNSS_Places_Authentication:"};
constexpr EfName efBorderCrossings{fidBorderCrossings, "EF_Border_Crossing", "Error reading EF_Border_Crossing:"};
constexpr EfName efLoadUnloadOperations{fidLoadUnloadOperations, "EF_Load_Unload_Operations", "Error reading EF_Load_Unload_Operations:"};
constexpr EfName efLoadTypeEntries{fidLoadTypeEntries, "EF_Load_Type_Entries", "Error reading EF_Load_Type_Entries:"};
constexpr EfName efCalibrationAddData{fidCalibrationAddData, "EF_Calibration_Add_Data", "Error reading EF_Calibration_Add_Data:"};
constexpr EfName efCardCertificate{fidCardCertificate, "EF_Card_Certificate", "Error reading EF_Card_Certificate:"};
constexpr EfName efMaCertificate{fidCardCertificate, "EF_MA_Certificate", "Error reading EF_MA_Certificate:"};
constexpr EfName efCardSignCertificate{fidCardSignCertificate, "EF_Card_Sign_Certificate", "Error reading EF_Card_Sign_Certificate:"};
constexpr EfName efCaCertificate{fidCaCertificate, "EF_CA_Certificate", "Error reading EF_CA_Certificate:"};
constexpr EfName efLinkCertificate{fidLinkCertificate, "EF_Link_Certificate", "Error reading EF_Link_Certificate:"};

// EFs that no download has: for whoever finds their numbers in a file.
constexpr EfName efExtendedLength{0x0006, "EF_Extended_Length", ""};
constexpr EfName efSensorInstallationData{0x050B, "EF_Sensor_Installation_Data", ""};
constexpr EfName efControllerActivityData{0x050C, "EF_Controller_Activity_Data", ""};
constexpr EfName efVuConfiguration{0x0540, "EF_VU_Configuration", ""};
constexpr EfName efDir{0x2F00, "EF_DIR", ""};
constexpr EfName efAtrInfo{0x2F01, "EF_ATR_INFO", ""};
// clang-format on

} // namespace scard::detail
