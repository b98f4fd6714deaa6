#include <scard/detail/HolderName.h>

#include <scard/detail/RecordFields.h>

namespace scard::detail {

QString holderName(const DriverCard_EF_Identification& identification)
{
    return nameText(identification.holderFirstNames) + QStringLiteral(", ") +
           nameText(identification.holderSurname);
}

} // namespace scard::detail
