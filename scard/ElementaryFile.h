#pragma once

#include <scard/Export.h>

#include <QString>

namespace scard {

/// Name of an elementary file, as the debug stream writes it: "EF_Places".
/// @param fid              number of the EF
/// @param secondGeneration which application it is in: some numbers have another name in the second
/// @return empty for a number that no tachograph card uses
SCARD_EXPORT QString efName(unsigned short fid, bool secondGeneration);

} // namespace scard
