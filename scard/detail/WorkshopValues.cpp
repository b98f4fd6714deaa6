#include <scard/detail/WorkshopValues.h>

#include <scard/detail/RecordFields.h>
#include <scard/detail/RecordsByTime.h>
#include <scard/records/WorkshopCard.h>

#include <QByteArray>

#include <algorithm>

namespace scard::detail {

namespace {

// Both begin with calibrationTotalNumber; the pointer behind it has one byte in the first generation.
constexpr std::size_t headG1 = sizeof(UInt16) + 1;
constexpr std::size_t headG2 = sizeof(UInt16) + sizeof(UInt16);

std::optional<int> numberAtStart(const Bytes& ef)
{
    if (ef.size() < sizeof(UInt16))
        return {};
    return static_cast<int>(fromBigEndian(ef.data(), sizeof(UInt16)));
}

EquipmentSerialNumber serialNumber(const ExtendedSerialNumber& record)
{
    const auto* monthYear = reinterpret_cast<const char*>(record.monthYear);
    return {
        fromBigEndian(record.serialNumber, sizeof record.serialNumber),
        QString::fromLatin1(QByteArray(monthYear, sizeof record.monthYear).toHex().toUpper()), record.type,
        record.manufacturerCode};
}

Calibration calibration(const CalibrationRecord_g1& record)
{
    Calibration known;
    known.purpose = record.calibrationPurpose;
    known.vehicleIdentificationNumber = ia5Text(record.vehicleIdentificationNumber);
    known.nation = nation(record.vehicleRegistration.vehicleRegistrationNation);
    known.registration = registrationText(record.vehicleRegistration);
    known.vehicleCharacteristicConstant = static_cast<int>(record.wVehicleCharacteristicConstant.value());
    known.recordingEquipmentConstant = static_cast<int>(record.kConstantOfRecordingEquipment.value());
    known.tyreCircumference = static_cast<int>(record.lTyreCircumference.value());
    known.tyreSize = ia5Text(record.tyreSize);
    known.authorisedSpeed = record.authorisedSpeed;
    known.oldOdometer = record.oldOdometerValue.value();
    known.newOdometer = record.newOdometerValue.value();
    known.oldTime = localTimeIfSet(record.oldTimeValue);
    known.newTime = localTimeIfSet(record.newTimeValue);
    known.nextCalibration = localTimeIfSet(record.nextCalibrationDate);
    known.vuPartNumber = ia5Text(record.vuPartNumber);
    known.vuSerialNumber = serialNumber(record.vuSerialNumber);
    known.sensorSerialNumber = serialNumber(record.sensorSerialNumber);
    return known;
}

Calibration calibration(const CalibrationRecord_g2& record)
{
    constexpr unsigned char firstGenerationRefused = 0x01;
    Calibration known = calibration(record.firstGeneration);
    known.gnssSerialNumber = serialNumber(record.sensorGNSSSerialNumber);
    known.remoteCommunicationSerialNumber = serialNumber(record.rcmSerialNumber);
    known.refusesFirstGenerationCards = (record.vuAbility & firstGenerationRefused) != 0;
    const std::size_t seals = std::min<std::size_t>(record.noOfSealRecords, std::size(record.sealRecords));
    for (std::size_t i = 0; i < seals; ++i) {
        const SealRecord& seal = record.sealRecords[i];
        known.seals.push_back(
            {seal.equipmentType, ia5Text(seal.sealManufacturerCode), ia5Text(seal.sealIdentifier)});
    }
    return known;
}

const CalibrationRecord_g1& firstGenerationOf(const CalibrationRecord_g1& record)
{
    return record;
}

const CalibrationRecord_g1& firstGenerationOf(const CalibrationRecord_g2& record)
{
    return record.firstGeneration;
}

template <typename Record>
std::vector<Calibration> calibrations(const Bytes& ef, std::size_t head)
{
    // A record without a time may still say something: only one that says nothing at all is left out.
    const auto isUsed = [](const Record& record) {
        const CalibrationRecord_g1& known = firstGenerationOf(record);
        return known.calibrationPurpose != 0 || known.newTimeValue.value() != 0 ||
               !ia5Text(known.vehicleIdentificationNumber).isEmpty();
    };
    const auto timeOf = [](const Record& record) { return firstGenerationOf(record).newTimeValue; };
    return usedByTime<Calibration, Record>(
        ef, head, isUsed, timeOf, [](const Record& record) { return calibration(record); });
}

} // namespace

CalibrationCounters calibrationCounters(const Bytes& calibration, const Bytes& cardDownload)
{
    return {numberAtStart(calibration), numberAtStart(cardDownload)};
}

std::vector<Calibration> calibrationsG1(const Bytes& ef)
{
    return calibrations<CalibrationRecord_g1>(ef, headG1);
}

std::vector<Calibration> calibrationsG2(const Bytes& ef)
{
    return calibrations<CalibrationRecord_g2>(ef, headG2);
}

std::vector<CalibrationAddData> calibrationAddData(const Bytes& ef)
{
    using Record = WorkshopCardCalibrationAddDataRecord_g2_2;
    const auto isUsed = [](const Record& record) {
        return record.oldTimeValue.value() != 0 || !ia5Text(record.vehicleIdentificationNumber).isEmpty();
    };
    const auto timeOf = [](const Record& record) { return record.oldTimeValue; };
    return usedByTime<CalibrationAddData, Record>(ef, pointerBytes, isUsed, timeOf, [](const Record& record) {
        return CalibrationAddData{
            localTimeIfSet(record.oldTimeValue), ia5Text(record.vehicleIdentificationNumber),
            record.byDefaultLoadType, nation(record.calibrationCountry),
            localTimeIfSet(record.calibrationCountryTimestamp)};
    });
}

} // namespace scard::detail
