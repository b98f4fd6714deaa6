#pragma once

#include <scard/detail/RecordFields.h>

#include <QString>

namespace scard::detail {

/// First names, ", ", surname, both trimmed; of a driver's or a workshop's EF_Identification.
template <typename Identification>
QString holderName(const Identification& identification)
{
    return nameText(identification.holderFirstNames) + QStringLiteral(", ") +
           nameText(identification.holderSurname);
}

} // namespace scard::detail
