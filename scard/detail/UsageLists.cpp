#include <scard/detail/UsageLists.h>

#include <scard/detail/RecordFields.h>
#include <scard/records/DriverCard.h>

#include <utility>

namespace scard::detail {

namespace {

/// Calls @p use with each vehicle record that is in use, and what all generations say in it.
template <typename Record, typename Use>
void forEachVehicle(const Bytes& ef, Use use)
{
    forEachRecord<Record>(ef, sizeof(UInt16), [&use](const Record& record) {
        if (record.vehicleLastUse.value() == 0)
            return;
        SCardDriverG1::_VEHICLE_USAGE_INFO usage;
        usage.firstUse = localTime(record.vehicleFirstUse);
        usage.lastUse = localTime(record.vehicleLastUse);
        usage.odometerBegin = record.vehicleOdometerBegin.value();
        usage.odometerEnd = record.vehicleOdometerEnd.value();
        usage.registration = registrationText(record.vehicleRegistration);
        use(record, std::move(usage));
    });
}

/// Events, or faults: records of the same layout.
template <typename Record, typename Item>
std::vector<Item> incidents(const Bytes& ef, unsigned char Record::*type)
{
    std::vector<Item> items;
    forEachRecord<Record>(ef, 0, [&](const Record& record) {
        if (record.*type == 0)
            return;
        Item item;
        item.type = record.*type;
        item.begin = localTimeUnlessUnknown(record.beginTime);
        item.end = localTimeUnlessUnknown(record.endTime);
        item.registration = registrationText(record.vehicleRegistration);
        items.push_back(std::move(item));
    });
    return items;
}

} // namespace

std::vector<SCardDriverG1::_VEHICLE_USAGE_INFO> usedVehiclesG1(const Bytes& ef)
{
    std::vector<SCardDriverG1::_VEHICLE_USAGE_INFO> vehicles;
    forEachVehicle<CardVehicleRecord_g1>(
        ef, [&vehicles](const CardVehicleRecord_g1&, SCardDriverG1::_VEHICLE_USAGE_INFO usage) {
            vehicles.push_back(std::move(usage));
        });
    return vehicles;
}

std::vector<SCardDriverG2::_VEHICLE_USAGE_INFO_G2> usedVehiclesG2(const Bytes& ef)
{
    std::vector<SCardDriverG2::_VEHICLE_USAGE_INFO_G2> vehicles;
    forEachVehicle<CardVehicleRecord_g2>(
        ef, [&vehicles](const CardVehicleRecord_g2& record, SCardDriverG1::_VEHICLE_USAGE_INFO usage) {
            vehicles.push_back({std::move(usage), ia5Text(record.vehicleIdentificationNumber)});
        });
    return vehicles;
}

std::vector<SCardDriverG1::_EVENT> events(const Bytes& ef)
{
    return incidents<CardEventRecord, SCardDriverG1::_EVENT>(ef, &CardEventRecord::eventType);
}

std::vector<SCardDriverG1::_FAULT> faults(const Bytes& ef)
{
    return incidents<CardFaultRecord, SCardDriverG1::_FAULT>(ef, &CardFaultRecord::faultType);
}

} // namespace scard::detail
