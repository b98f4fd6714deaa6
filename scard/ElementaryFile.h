#pragma once

#include <scard/Export.h>

#include <QString>

namespace scard {

/// What an elementary file is called, as the debug stream writes it: "EF_Places". Names are spelled as the
/// error texts spell them, which is not always as the regulation does. Any thread may ask.
/// @param fid              number of the EF
/// @param secondGeneration which application it is in: some numbers have another name in the second
/// @return empty for a number that no tachograph card uses
SCARD_EXPORT QString efName(unsigned short fid, bool secondGeneration);

} // namespace scard
