#include <scard/detail/RecordFields.h>

#include <aux/CountryCodes.h>
#include <scard/SCardGeneric.h>

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
    return SCardGeneric::textfieldToString(name).trimmed();
}

QString registrationText(const VehicleRegistrationIdentification& registration)
{
    return SCardGeneric::textfieldToString(registration.vehicleRegistrationNumber).trimmed();
}

Nation nation(unsigned char nationNumeric)
{
    return {nationNumeric, aux::CountryCodes::countryCodeFromStateID(nationNumeric)};
}

} // namespace scard::detail
