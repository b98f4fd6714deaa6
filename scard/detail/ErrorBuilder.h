#pragma once

#include <aux/Error.h>

#include <QString>

// How the library builds and chains its error values.

namespace scard::detail {

/// One entry of the library's own: source "libscard".
aux::Error libraryError(const QString& message, unsigned int id = 0);

/// The id of the first entry, by which callers react to a status word of the card; 0 for success.
unsigned int firstId(const aux::Error& failure);

/// @p lower with an entry of its own for the step that failed because of it, with the same id, behind it.
aux::Error withStep(aux::Error lower, const QString& message);

/// An entry for the step, with the id of @p lower, and the entries of @p lower behind it.
aux::Error ledByStep(const QString& message, aux::Error lower);

/// A FID as it stands in error texts: lower-case hexadecimal without leading zeros.
QString hexFid(unsigned short fid);

} // namespace scard::detail
