#include <scard/detail/RecordFields.h>

#include <aux/CountryCodes.h>
#include <scard/detail/TextField.h>

namespace scard::detail {

QDateTime localTime(TimeReal time)
{
    return QDateTime::fromSecsSinceEpoch(time.value(), Qt::LocalTime);
}

QDateTime localTimeUnlessUnknown(TimeReal time)
{
    return time.value() == unknownTime ? QDateTime() : localTime(time);
}

QDateTime localTimeIfSet(TimeReal time)
{
    return time.value() == 0 ? QDateTime() : localTimeUnlessUnknown(time);
}

QString nameText(const Name& name)
{
    return decodeText(name.codePage, name.name, sizeof name.name).trimmed();
}

QString registrationText(const VehicleRegistrationIdentification& registration)
{
    const VehicleRegistrationNumber& number = registration.vehicleRegistrationNumber;
    return decodeText(number.codePage, number.vehicleRegNumber, sizeof number.vehicleRegNumber).trimmed();
}

Nation nation(unsigned char nationNumeric)
{
    return {nationNumeric, aux::CountryCodes::countryCodeFromStateID(nationNumeric)};
}

} // namespace scard::detail
