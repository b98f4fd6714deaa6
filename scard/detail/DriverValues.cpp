#include <scard/detail/DriverValues.h>

#include <scard/detail/RecordFields.h>
#include <scard/detail/RecordsByTime.h>

#include <cstdlib>
#include <map>

namespace scard::detail {

namespace {

constexpr std::size_t noPointerBytes = 0;
constexpr std::size_t shortPointerBytes = 1;

/// GeoCoordinates: degrees × 1000 + minutes × 10; empty for 7FFFFF and whatever else lies off the globe.
std::optional<double> degrees(const unsigned char (&bytes)[3], int most)
{
    constexpr int degree = 1000;
    constexpr int tenthsOfMinutesOfDegree = 600;
    auto value = static_cast<std::int32_t>(fromBigEndian(bytes, sizeof bytes));
    if (value & 0x800000)
        value -= 0x1000000;
    const int whole = std::abs(value) / degree;
    const int tenths = std::abs(value) % degree;
    const double size = whole + tenths / double{tenthsOfMinutesOfDegree};
    if (tenths >= tenthsOfMinutesOfDegree || size > most)
        return {};
    return value < 0 ? -size : size;
}

GnssPosition position(const GNSSPlaceRecord& record, std::optional<int> authenticationStatus)
{
    constexpr unsigned char unknownAccuracy = 0xFF;
    constexpr int mostLatitude = 90;
    constexpr int mostLongitude = 180;
    GnssPosition position;
    if (record.timeStamp.value() == 0)
        return position;
    position.time = localTimeIfSet(record.timeStamp);
    if (record.gnssAccuracy != unknownAccuracy)
        position.accuracy = record.gnssAccuracy;
    position.latitude = degrees(record.latitude, mostLatitude);
    position.longitude = degrees(record.longitude, mostLongitude);
    position.authenticationStatus = authenticationStatus;
    return position;
}

GnssPosition position(const GNSSPlaceAuthRecord& record)
{
    return position(record.gnssPlaceRecord, record.authenticationStatus);
}

/// What an EF of authentication states says of each time.
template <typename Record>
class AuthenticationStates
{
  public:
    AuthenticationStates(const Bytes& ef, TimeReal Record::*time)
    {
        forEachRecord<Record>(ef, pointerBytes, [&](const Record& record) {
            m_states.emplace((record.*time).value(), record.authenticationStatus);
        });
    }

    std::optional<int> at(TimeReal time) const
    {
        const auto found = m_states.find(time.value());
        return found == m_states.end() ? std::nullopt : std::optional<int>(found->second);
    }

  private:
    std::map<std::uint32_t, int> m_states;
};

/// What both generations say of a place.
template <typename Record>
Place place(const Record& record)
{
    Place place;
    place.time = localTimeIfSet(record.entryTime);
    place.entryType = record.entryTypeDailyWorkPeriod;
    place.nation = nation(record.dailyWorkPeriodCountry);
    place.region = record.dailyWorkPeriodRegion;
    place.odometer = record.vehicleOdometerValue.value();
    return place;
}

std::vector<SpecificCondition> specificConditionsBehind(const Bytes& ef, std::size_t pointerLength)
{
    return byTime<SpecificCondition>(
        ef, pointerLength, &SpecificConditionRecord::entryTime, [](const SpecificConditionRecord& record) {
            return SpecificCondition{localTimeIfSet(record.entryTime), record.specificConditionType};
        });
}

} // namespace

std::vector<Place> placesG1(const Bytes& ef)
{
    return byTime<Place>(ef, shortPointerBytes, &PlaceRecord_g1::entryTime, place<PlaceRecord_g1>);
}

std::vector<Place> placesG2(const Bytes& ef, const Bytes& authentication)
{
    const AuthenticationStates states(authentication, &PlaceAuthStatusRecord_g2_2::entryTime);
    return byTime<Place>(
        ef, pointerBytes, &PlaceRecord_g2::entryTime, [&states](const PlaceRecord_g2& record) {
            Place known = place(record);
            known.position = position(record.entryGNSSPlaceRecord, states.at(record.entryTime));
            return known;
        });
}

std::vector<SpecificCondition> specificConditionsG1(const Bytes& ef)
{
    return specificConditionsBehind(ef, noPointerBytes);
}

std::vector<SpecificCondition> specificConditionsG2(const Bytes& ef)
{
    return specificConditionsBehind(ef, pointerBytes);
}

std::vector<VehicleUnit> vehicleUnits(const Bytes& ef)
{
    return byTime<VehicleUnit>(
        ef, pointerBytes, &CardVehicleUnitsRecord_g2::timeStamp, [](const CardVehicleUnitsRecord_g2& record) {
            return VehicleUnit{
                localTimeIfSet(record.timeStamp), record.manufacturerCode, record.deviceID,
                ia5Text(record.vuSoftwareVersion)};
        });
}

std::vector<GnssPlace> gnssPlaces(const Bytes& ef, const Bytes& authentication)
{
    const AuthenticationStates states(authentication, &GNSSAuthStatusADRecord_g2_2::timeStamp);
    return byTime<GnssPlace>(
        ef, pointerBytes, &GNSSContinousDrivingRecord_g2::timeStamp,
        [&states](const GNSSContinousDrivingRecord_g2& record) {
            GnssPlace known;
            known.time = localTimeIfSet(record.timeStamp);
            known.position = position(record.gnssPlaceRecord, states.at(record.timeStamp));
            known.odometer = record.vehicleOdometerValue.value();
            return known;
        });
}

std::vector<BorderCrossing> borderCrossings(const Bytes& ef)
{
    using Record = CardBorderCrossingRecord_g2_2;
    return byTime<BorderCrossing, Record>(
        ef, pointerBytes,
        [](const Record& record) { return record.gnssPlaceAuthRecord.gnssPlaceRecord.timeStamp; },
        [](const Record& record) {
            return BorderCrossing{
                nation(record.countryLeft), nation(record.countryEntered),
                position(record.gnssPlaceAuthRecord), record.vehicleOdometerValue.value()};
        });
}

std::vector<LoadUnloadOperation> loadUnloadOperations(const Bytes& ef)
{
    using Record = CardLoadUnloadRecord_g2_2;
    return byTime<LoadUnloadOperation>(ef, pointerBytes, &Record::timeStamp, [](const Record& record) {
        return LoadUnloadOperation{
            localTimeIfSet(record.timeStamp), record.operationType, position(record.gnssPlaceAuthRecord),
            record.vehicleOdometerValue.value()};
    });
}

std::vector<LoadTypeEntry> loadTypeEntries(const Bytes& ef)
{
    using Record = CardLoadTypeEntryRecord_g2_2;
    return byTime<LoadTypeEntry>(ef, pointerBytes, &Record::timeStamp, [](const Record& record) {
        return LoadTypeEntry{localTimeIfSet(record.timeStamp), record.loadTypeEntered};
    });
}

CurrentUse currentUse(const CardCurrentUse& record)
{
    return {
        localTimeIfSet(record.sessionOpenTime), nation(record.sessionOpenVehicle.vehicleRegistrationNation),
        registrationText(record.sessionOpenVehicle)};
}

ControlActivity controlActivity(const CardControlActivityDataRecord& record)
{
    ControlActivity control;
    control.controlType = record.controlType;
    control.time = localTimeIfSet(record.controlTime);
    control.cardType = record.controlCardNumber.cardType;
    control.cardNation = nation(record.controlCardNumber.cardIssuingMemberState);
    control.cardNumber = ia5Text(record.controlCardNumber.cardNumber);
    control.vehicleNation = nation(record.controlVehicleRegistration.vehicleRegistrationNation);
    control.registration = registrationText(record.controlVehicleRegistration);
    control.downloadPeriodBegin = localTimeIfSet(record.controlDownloadPeriodBegin);
    control.downloadPeriodEnd = localTimeIfSet(record.controlDownloadPeriodEnd);
    return control;
}

DrivingLicence drivingLicence(const CardDrivingLicenceInformation& record)
{
    return {
        nameText(record.drivingLicenceIssuingAuthority), nation(record.drivingLicenceIssuingNation),
        ia5Text(record.drivingLicenceNumber)};
}

} // namespace scard::detail
