#pragma once

#include <QString>

namespace scard {

/// A nation by the number that cards store, and its letters.
struct Nation
{
    int numeric = 0; ///< NationNumeric
    QString alpha;   ///< NationAlpha; empty for 0 (no information) and numbers that are not assigned
};

} // namespace scard
