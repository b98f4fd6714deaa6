#pragma once

#include <scard/Export.h>

#include <QObject>

namespace scard {

/// Enumerations whose names are available at run time through Qt's meta system.
namespace SCardMeta {
Q_NAMESPACE_EXPORT(SCARD_EXPORT)

/// Equipment type of the tachograph data dictionary (EquipmentType, Annex 1C, Appendix 1): the byte that a
/// card gives for itself, whatever byte that is.
enum Type : unsigned int
{
    Reserved = 0,          ///< also before the card was identified
    DriverCard = 1,        ///< SCardDriverG1, SCardDriverG2
    WorkshopCard = 2,      ///< SCardWorkshopG1, SCardWorkshopG2
    ControlCard = 3,       ///< is identified, has no class of its own
    CompanyCard = 4,       ///< SCardCompanyG1, SCardCompanyG2
    ManufacturingCard = 5, ///< this and what follows: no card that can be downloaded
    VehicleUnit = 6,       ///< in records only
    MotionSensor = 7,      ///< in records only
    DownloadKey = 8,       ///< in records only; the second generation's dictionary has a GNSS facility here
};
Q_ENUM_NS(Type)

} // namespace SCardMeta

/// The convention by which a download file is named. Times are UTC, the name is made of the card's contents.
/// Files of company cards are named alike in all of them: C_20240305_1407_Company Card_00F1E2D3012001.DDD.
enum FilenameRegion : unsigned int
{
    RegionDDD = 0, ///< time, initial, surname, number: C_20240305_1407_J_Mustermann_DF000000123456.DDD
    RegionC1B = 1, ///< nation, number, time: D__DF0000001234562403051407.C1B
    RegionTGD = 2, ///< number with indices, nation, time: C_DF00000012345600_D_20240305_1407.TGD
};

} // namespace scard
