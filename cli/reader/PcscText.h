#pragma once

#include <aux/Error.h>

#include <QString>

/// PC/SC's own text for @p code.
QString pcscText(long code);

/// The failure of a PC/SC call in the library's words: what was done, ": " and PC/SC's text.
aux::Error pcscFailure(const QString& call, long code);
