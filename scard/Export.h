#pragma once

#include <QtCore/qglobal.h>

/// Marks what the library shows to its hosts; everything else stays hidden.
#define SCARD_EXPORT Q_DECL_EXPORT
