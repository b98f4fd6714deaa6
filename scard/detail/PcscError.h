#pragma once

#include <aux/Error.h>

#include <QString>

namespace scard::detail {

/// The error of a PC/SC call: source "SCard", the step's message, ": " and PC/SC's own text for
/// @p code. The id is 0: the code survives in the text only.
aux::Error pcscError(const QString& message, long code);

} // namespace scard::detail
