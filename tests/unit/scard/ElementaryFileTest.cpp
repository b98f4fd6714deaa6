#include <QtPrinters.h>

#include <scard/ElementaryFile.h>
#include <scard/records/Fid.h>

#include <gtest/gtest.h>

namespace {

TEST(ElementaryFileTest, NamesEveryEfOfATachographCard)
{
    const struct
    {
        unsigned short fid;
        const char* first;
        const char* second;
    } rows[] = {
        {scard::fidIcc, "EF_ICC", nullptr},
        {scard::fidIc, "EF_IC", nullptr},
        {scard::fidApplicationIdentification, "EF_Application_Identification", nullptr},
        {scard::fidEventsData, "EF_EventsData", nullptr},
        {scard::fidFaultsData, "EF_FaultsData", nullptr},
        {scard::fidDriverActivityData, "EF_Driver_Activity_Data", nullptr},
        {scard::fidVehiclesUsed, "EF_Vehicles_Used", nullptr},
        {scard::fidPlaces, "EF_Places", nullptr},
        {scard::fidCurrentUsage, "EF_Current_Usage", nullptr},
        {scard::fidControlActivityData, "EF_Control_Activity_Data", nullptr},
        {scard::fidCardDownloadWorkshop, "EF_Card_Download", nullptr},
        {scard::fidCalibration, "EF_Calibration", nullptr},
        {scard::fidCompanyActivityData, "EF_Company_Activity_Data", nullptr},
        {scard::fidCardDownload, "EF_Card_Download", nullptr},
        {scard::fidIdentification, "EF_Identification", nullptr},
        {scard::fidDrivingLicenceInfo, "EF_Driving_License_Info", nullptr},
        {scard::fidSpecificConditions, "EF_Specific_Conditions", nullptr},
        {scard::fidVehicleUnitsUsed, "EF_Vehicle_Units_Used", nullptr},
        {scard::fidGnssPlaces, "EF_GNSS_Places", nullptr},
        {scard::fidApplicationIdentificationV2, "EF_Application_Identification_V2", nullptr},
        {scard::fidPlacesAuthentication, "EF_Places_Authentication", nullptr},
        {scard::fidGnssPlacesAuthentication, "EF_GNSS_Places_Authentication", nullptr},
        {scard::fidBorderCrossings, "EF_Border_Crossing", nullptr},
        {scard::fidLoadUnloadOperations, "EF_Load_Unload_Operations", nullptr},
        {scard::fidLoadTypeEntries, "EF_Load_Type_Entries", nullptr},
        {scard::fidCalibrationAddData, "EF_Calibration_Add_Data", nullptr},
        {scard::fidCardCertificate, "EF_Card_Certificate", "EF_MA_Certificate"},
        {scard::fidCardSignCertificate, "EF_Card_Sign_Certificate", nullptr},
        {scard::fidCaCertificate, "EF_CA_Certificate", nullptr},
        {scard::fidLinkCertificate, "EF_Link_Certificate", nullptr},
        {0x0006, "EF_Extended_Length", nullptr},
        {0x050B, "EF_Sensor_Installation_Data", nullptr},
        {0x050C, "EF_Controller_Activity_Data", nullptr},
        {0x0540, "EF_VU_Configuration", nullptr},
        {0x2F00, "EF_DIR", nullptr},
        {0x2F01, "EF_ATR_INFO", nullptr},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(scard::efName(row.fid, false), QString(row.first));
        EXPECT_EQ(scard::efName(row.fid, true), QString(row.second ? row.second : row.first));
    }
}

TEST(ElementaryFileTest, HasNoNameForOtherNumbers)
{
    constexpr unsigned short unused[] = {0x0000, 0x0001, 0x0500, 0x0532, 0x3F00, 0xC102, 0xC209, 0xFFFF};
    for (const unsigned short fid : unused) {
        EXPECT_EQ(scard::efName(fid, false), QString()) << fid;
        EXPECT_EQ(scard::efName(fid, true), QString()) << fid;
    }
}

} // namespace
