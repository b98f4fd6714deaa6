#pragma once

#include <QtCore/qglobal.h>

/// @file
/// Visibility of the library's symbols.

/// Marks what the shared library shows to its users; everything else stays hidden.
#define AUX_EXPORT Q_DECL_EXPORT
