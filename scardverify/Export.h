#pragma once

#include <QtCore/qglobal.h>

/// @file
/// Visibility of the library's symbols.

/// Marks what the library shows to its hosts; everything else stays hidden.
#define SCARDVERIFY_EXPORT Q_DECL_EXPORT
