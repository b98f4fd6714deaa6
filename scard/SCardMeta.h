#pragma once

#include <scard/Export.h>

#include <QObject>

namespace scard {

/// Enumerations whose names are available at run time through Qt's meta system.
namespace SCardMeta {
Q_NAMESPACE_EXPORT(SCARD_EXPORT)

/// Equipment type of the tachograph data dictionary: the byte that a card gives for itself, whatever
/// byte that is.
enum Type : unsigned int
{
    Reserved = 0,
    DriverCard = 1,
    WorkshopCard = 2,
    ControlCard = 3,
    CompanyCard = 4,
    ManufacturingCard = 5,
    VehicleUnit = 6,
    MotionSensor = 7,
    DownloadKey = 8,
};
Q_ENUM_NS(Type)

} // namespace SCardMeta

/// The convention by which a download file is named.
enum FilenameRegion : unsigned int
{
    RegionDDD = 0, ///< C_20240305_1407_J_Mustermann_DF000000123456.DDD
    RegionC1B = 1, ///< D__DF0000001234562403051407.C1B
    RegionTGD = 2, ///< C_DF00000012345600_D_20240305_1407.TGD
};

} // namespace scard
