#pragma once

#include <aux/Error.h>

#include <QJsonArray>

/// The entries of a failure of the library, as every JSON output has them.
QJsonArray entriesJson(const aux::Error& failure);
