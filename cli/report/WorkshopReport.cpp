#include "CardFields.h"
#include "CardReport.h"
#include "CodeNames.h"

#include <scard/records/Fid.h>
#include <scard/records/WorkshopCard.h>
#include <scard/SCardWorkshopG2.h>

namespace report {

namespace {

using scard::Calibration;
using scard::EquipmentSerialNumber;

FactGroup identification(const std::optional<scard::WorkshopCard_EF_Identification>& card)
{
    using Card = scard::WorkshopCard_EF_Identification;
    Fields<Card> fields{
        field<Card>("surname", "Surname", [](const Card& c) { return text(c.holderSurname); }),
        field<Card>("first_names", "First names", [](const Card& c) { return text(c.holderFirstNames); }),
        field<Card>("workshop_name", "Workshop", [](const Card& c) { return text(c.workshopName); }),
        field<Card>("workshop_address", "Address", [](const Card& c) { return text(c.workshopAddress); }),
    };
    appendOwnerCard(fields);
    return makeFacts("identification", "Card", card, fields);
}

FactGroup counters(const scard::CalibrationCounters& counters)
{
    using Item = scard::CalibrationCounters;
    const Fields<Item> fields{
        field<Item>(
            "calibrations_total", "Calibrations with this card", [](const Item& item) { return item.total; }),
        field<Item>(
            "calibrations_since_download", "Of these since the download before",
            [](const Item& item) { return item.sinceDownload; }),
    };
    return makeFacts("calibration_counters", "Counters", counters, fields);
}

/// The four columns of a piece of equipment; @p get gives it, or nothing.
template <typename Get>
void appendEquipment(Fields<Calibration>& fields, const QString& key, const QString& title, Get get)
{
    struct Part
    {
        const char* key;
        const char* title;
        Kind kind;
        Value (*value)(const EquipmentSerialNumber&);
    };
    static const Part parts[] = {
        {"serial_number", "serial number", Kind::Number,
         [](const EquipmentSerialNumber& e) { return toValue(e.serialNumber); }},
        {"month_year", "made in (month, year)", Kind::Text,
         [](const EquipmentSerialNumber& e) { return toValue(e.monthYear); }},
        {"type", "type", Kind::Number, [](const EquipmentSerialNumber& e) { return toValue(e.type); }},
        {"manufacturer_code", "maker", Kind::Number,
         [](const EquipmentSerialNumber& e) { return toValue(e.manufacturerCode); }},
    };
    for (const Part& part : parts) {
        const auto value = part.value;
        fields.push_back(
            {{key + QLatin1Char('_') + QLatin1String(part.key),
              title + QLatin1String(", ") + QLatin1String(part.title), part.kind, Weight::Detail},
             [get, value](const Calibration& item) {
                 const std::optional<EquipmentSerialNumber> equipment = get(item);
                 return equipment ? value(*equipment) : Value();
             }});
    }
}

Fields<Calibration> calibrationFields(Generation generation)
{
    using Item = Calibration;
    // clang-format off
    Fields<Item> fields{
        field<Item>("time", "Time", [](const Item& c) { return c.newTime; }),
        field<Item>("purpose", "What", [](const Item& c) { return calibrationPurpose(c.purpose); }),
        field<Item>("vin", "VIN", [](const Item& c) { return c.vehicleIdentificationNumber; }),
        field<Item>("vehicle_nation", "Nation", [](const Item& c) { return c.nation; }),
        field<Item>("registration", "Registration", [](const Item& c) { return c.registration; }),
        field<Item>("odometer_km", "km", [](const Item& c) { return c.newOdometer; }),
        field<Item>("next_calibration", "Next", [](const Item& c) { return CardDay{c.nextCalibration}; }),
        field<Item>("old_time", "time before", [](const Item& c) { return c.oldTime; }, Weight::Detail),
        field<Item>("old_odometer_km", "odometer before, km", [](const Item& c) { return c.oldOdometer; }, Weight::Detail),
        field<Item>("vehicle_constant_w_pulses_per_km", "w, pulses/km", [](const Item& c) { return c.vehicleCharacteristicConstant; }, Weight::Detail),
        field<Item>("equipment_constant_k_pulses_per_km", "k, pulses/km", [](const Item& c) { return c.recordingEquipmentConstant; }, Weight::Detail),
        field<Item>("tyre_circumference_l_eighth_mm", "l, 1/8 mm", [](const Item& c) { return c.tyreCircumference; }, Weight::Detail),
        field<Item>("tyre_size", "tyre", [](const Item& c) { return c.tyreSize; }, Weight::Detail),
        field<Item>("authorised_speed_km_per_h", "speed limit, km/h", [](const Item& c) { return c.authorisedSpeed; }, Weight::Detail),
        field<Item>("vu_part_number", "vehicle unit, part number", [](const Item& c) { return c.vuPartNumber; }, Weight::Detail),
    };
    // clang-format on
    appendEquipment(fields, QStringLiteral("vu"), QStringLiteral("vehicle unit"), [](const Item& c) {
        return std::optional<EquipmentSerialNumber>(c.vuSerialNumber);
    });
    appendEquipment(fields, QStringLiteral("sensor"), QStringLiteral("motion sensor"), [](const Item& c) {
        return std::optional<EquipmentSerialNumber>(c.sensorSerialNumber);
    });
    if (generation == Generation::First)
        return fields;
    appendEquipment(fields, QStringLiteral("gnss"), QStringLiteral("satellite receiver"), [](const Item& c) {
        return c.gnssSerialNumber;
    });
    appendEquipment(
        fields, QStringLiteral("remote_communication"), QStringLiteral("remote communication"),
        [](const Item& c) { return c.remoteCommunicationSerialNumber; });
    fields.push_back(field<Item>(
        "refuses_first_generation_cards", "refuses first-generation cards",
        [](const Item& c) { return c.refusesFirstGenerationCards; }, Weight::Detail));
    return fields;
}

/// A seal with the calibration that it belongs to.
struct SealOfCalibration
{
    QDateTime time;
    QString vin;
    scard::Seal seal;
};

Table seals(const std::vector<Calibration>& calibrations)
{
    using Item = SealOfCalibration;
    std::vector<Item> items;
    for (const Calibration& each : calibrations) {
        for (const scard::Seal& seal : each.seals)
            items.push_back({each.newTime, each.vehicleIdentificationNumber, seal});
    }
    const Fields<Item> fields{
        field<Item>("calibration_time", "Calibration", [](const Item& item) { return item.time; }),
        field<Item>("vin", "VIN", [](const Item& item) { return item.vin; }),
        field<Item>(
            "equipment_type", "Seals",
            [](const Item& item) { return equipmentType(item.seal.equipmentType); }),
        field<Item>(
            "manufacturer_code", "Maker", [](const Item& item) { return item.seal.manufacturerCode; }),
        field<Item>("identifier", "Seal", [](const Item& item) { return item.seal.identifier; }),
    };
    return makeTable("seals", "Seals", items, fields, "calibration_time", "calibration_time");
}

Table additions(const std::vector<scard::CalibrationAddData>& items)
{
    using Item = scard::CalibrationAddData;
    const Fields<Item> fields{
        field<Item>("old_time", "Time before", [](const Item& item) { return item.oldTime; }),
        field<Item>("vin", "VIN", [](const Item& item) { return item.vehicleIdentificationNumber; }),
        field<Item>(
            "default_load_type", "Load", [](const Item& item) { return loadType(item.defaultLoadType); }),
        field<Item>("nation", "Calibrated in", [](const Item& item) { return item.country; }),
        field<Item>("nation_time", "Position taken", [](const Item& item) { return item.countryTime; }),
    };
    return makeTable(
        "calibration_additions", "More about calibrations", items, fields, "old_time", "old_time");
}

Application application(
    Generation generation, const std::vector<Calibration>& calibrations,
    const scard::CalibrationCounters& count, scard::SCardGeneric& image)
{
    Application result = emptyApplication(generation);
    result.groups.push_back(identification(
        recordOf<scard::WorkshopCard_EF_Identification>(image, generation, scard::fidIdentification)));
    result.groups.push_back(counters(count));
    result.tables = {makeTable(
        "calibrations", "Calibrations", calibrations, calibrationFields(generation), "time", "time")};
    return result;
}

} // namespace

std::vector<Application> applicationsOf(const scard::SCardWorkshopG1& workshop, scard::SCardGeneric& image)
{
    std::vector<Application> applications{
        application(Generation::First, workshop.getCalibrations(), workshop.getCalibrationCounters(), image)};
    if (const auto* second = dynamic_cast<const scard::SCardWorkshopG2*>(&workshop)) {
        const std::vector<Calibration> calibrations = second->getCalibrationsG2();
        Application application2 =
            application(Generation::Second, calibrations, second->getCalibrationCountersG2(), image);
        application2.tables.push_back(seals(calibrations));
        application2.tables.push_back(additions(second->getCalibrationAddData()));
        applications.push_back(application2);
    }
    return applications;
}

} // namespace report
