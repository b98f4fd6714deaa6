#pragma once

#include <scard/Nation.h>

#include <QDateTime>
#include <QString>

#include <cstdint>
#include <optional>
#include <vector>

/// @file
/// What the records of a workshop card say, as values for the host. Times are local; a null QDateTime stands
/// for a time that the card does not know (stored as 0 or FFFFFFFF). Codes are those of the tachograph data
/// dictionary (Annex 1C, Appendix 1).

namespace scard {

/// Serial number of a piece of equipment (ExtendedSerialNumber).
struct EquipmentSerialNumber
{
    std::uint32_t serialNumber = 0; ///< unique for maker, type and month
    QString monthYear;              ///< of manufacture: mmyy as stored, four hexadecimal digits
    int type = 0;                   ///< the maker's type of the equipment
    int manufacturerCode = 0;       ///< of the equipment's maker
};

/// A seal on the vehicle (SealRecord).
struct Seal
{
    int equipmentType = 0;    ///< what is sealed (EquipmentType)
    QString manufacturerCode; ///< trimmed
    QString identifier;       ///< trimmed
};

/// How many calibrations the card was used for.
struct CalibrationCounters
{
    std::optional<int> total;         ///< since the card was issued; empty when EF_Calibration was not read
    std::optional<int> sinceDownload; ///< before this download; empty when EF_Card_Download was not read
};

/// One calibration, or another use of the card on a vehicle (CalibrationRecord).
struct Calibration
{
    int purpose = 0; ///< CalibrationPurpose: 1 activation, 2 first installation, 3 installation, 4 periodic
                     ///< inspection; second generation: 5 registration entered by the company, 6 time set
                     ///< without calibration; 128 and above: of the vehicle unit's maker
    QString vehicleIdentificationNumber;      ///< trimmed
    Nation nation;                            ///< where the vehicle is registered
    QString registration;                     ///< trimmed
    int vehicleCharacteristicConstant = 0;    ///< w, pulses/km
    int recordingEquipmentConstant = 0;       ///< k, pulses/km
    int tyreCircumference = 0;                ///< l, in 1/8 mm
    QString tyreSize;                         ///< trimmed
    int authorisedSpeed = 0;                  ///< km/h
    std::uint32_t oldOdometer = 0;            ///< km, before
    std::uint32_t newOdometer = 0;            ///< km, after
    QDateTime oldTime;                        ///< before
    QDateTime newTime;                        ///< after
    QDateTime nextCalibration;                ///< when the next one is due
    QString vuPartNumber;                     ///< trimmed
    EquipmentSerialNumber vuSerialNumber;     ///< of the vehicle unit
    EquipmentSerialNumber sensorSerialNumber; ///< of the motion sensor

    /// Of the external satellite receiver. This and what follows: only in the second generation.
    std::optional<EquipmentSerialNumber> gnssSerialNumber;
    std::optional<EquipmentSerialNumber> remoteCommunicationSerialNumber; ///< of that module
    std::optional<bool> refusesFirstGenerationCards;                      ///< of the vehicle unit (VuAbility)
    std::vector<Seal> seals; ///< as many as the record says, at most five
};

/// More about the calibration with the same old time and vehicle; on cards of version 2.2
/// (WorkshopCardCalibrationAddDataRecord).
struct CalibrationAddData
{
    QDateTime oldTime;                   ///< before the calibration
    QString vehicleIdentificationNumber; ///< trimmed
    int defaultLoadType = 0;             ///< 0 undefined, 1 goods, 2 passengers
    Nation country;                      ///< where the calibration was made
    QDateTime countryTime;               ///< of the position from which the country is known
};

} // namespace scard
