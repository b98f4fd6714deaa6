#include <aux/Error.h>
#include <aux/ErrorData.h>
#include <scard/SCardCompanyG2.h>
#include <scard/SCardDriverG2.h>
#include <scard/SCardReader.h>
#include <scard/SCardWorkshopG2.h>

#include <gtest/gtest.h>

#include <cstddef>

// Hosts are compiled against the sizes of what they hold, derive from, or walk over in a std::vector.

namespace {

struct Size
{
    std::size_t bytes;
    const char* type;
    std::size_t withLongPointers;
    std::size_t withShortPointers;
};

constexpr Size sizes[] = {
    Size{sizeof(aux::Error), "aux::Error", 32, 16},
    Size{sizeof(aux::ErrorData), "aux::ErrorData", 24, 12},
    Size{sizeof(scard::SCardReader), "scard::SCardReader", 24, 12},
    Size{sizeof(scard::SCardGeneric), "scard::SCardGeneric", 24, 12},
    Size{sizeof(scard::SCardDriverG1), "scard::SCardDriverG1", 32, 16},
    Size{sizeof(scard::SCardDriverG2), "scard::SCardDriverG2", 40, 20},
    Size{sizeof(scard::SCardWorkshopG1), "scard::SCardWorkshopG1", 32, 16},
    Size{sizeof(scard::SCardWorkshopG2), "scard::SCardWorkshopG2", 40, 20},
    Size{sizeof(scard::SCardCompanyG1), "scard::SCardCompanyG1", 32, 16},
    Size{sizeof(scard::SCardCompanyG2), "scard::SCardCompanyG2", 40, 20},
    Size{sizeof(scard::SCardDriverG1::_DAILY_ITEM), "scard::SCardDriverG1::_DAILY_ITEM", 20, 20},
    Size{sizeof(scard::SCardDriverG1::_DAILY_ACTIVITIES), "scard::SCardDriverG1::_DAILY_ACTIVITIES", 56, 36},
    Size{
        sizeof(scard::SCardDriverG1::_VEHICLE_USAGE_INFO), "scard::SCardDriverG1::_VEHICLE_USAGE_INFO", 32,
        20},
    Size{sizeof(scard::SCardDriverG1::_EVENT), "scard::SCardDriverG1::_EVENT", 40, 24},
    Size{sizeof(scard::SCardDriverG1::_FAULT), "scard::SCardDriverG1::_FAULT", 40, 24},
    Size{
        sizeof(scard::SCardDriverG2::_VEHICLE_USAGE_INFO_G2), "scard::SCardDriverG2::_VEHICLE_USAGE_INFO_G2",
        40, 24},
    Size{sizeof(scard::Nation), "scard::Nation", 16, 8},
    Size{sizeof(scard::GnssPosition), "scard::GnssPosition", 56, 56},
    Size{sizeof(scard::Place), "scard::Place", 96, 80},
    Size{sizeof(scard::SpecificCondition), "scard::SpecificCondition", 16, 8},
    Size{sizeof(scard::CurrentUse), "scard::CurrentUse", 32, 16},
    Size{sizeof(scard::ControlActivity), "scard::ControlActivity", 88, 44},
    Size{sizeof(scard::DrivingLicence), "scard::DrivingLicence", 32, 16},
    Size{sizeof(scard::VehicleUnit), "scard::VehicleUnit", 24, 16},
    Size{sizeof(scard::GnssPlace), "scard::GnssPlace", 72, 72},
    Size{sizeof(scard::BorderCrossing), "scard::BorderCrossing", 96, 80},
    Size{sizeof(scard::LoadUnloadOperation), "scard::LoadUnloadOperation", 80, 72},
    Size{sizeof(scard::LoadTypeEntry), "scard::LoadTypeEntry", 16, 8},
    Size{sizeof(scard::CalibrationCounters), "scard::CalibrationCounters", 16, 16},
    Size{sizeof(scard::EquipmentSerialNumber), "scard::EquipmentSerialNumber", 24, 16},
    Size{sizeof(scard::Calibration), "scard::Calibration", 256, 152},
    Size{sizeof(scard::Seal), "scard::Seal", 24, 12},
    Size{sizeof(scard::CalibrationAddData), "scard::CalibrationAddData", 48, 24},
    Size{sizeof(scard::CompanyActivity), "scard::CompanyActivity", 88, 44},
};

TEST(InterfaceLayout, EachTypeThatHostsAreCompiledAgainstHasTheSizeThatItHad)
{
    for (const Size& size : sizes) {
        const bool isLong = sizeof(void*) == 8;
        EXPECT_EQ(size.bytes, isLong ? size.withLongPointers : size.withShortPointers) << size.type;
    }
}

} // namespace
