#pragma once

#include "Merged.h"

#include <QTextStream>

#include <vector>

namespace report {

/// What the bands of all days of a page refer to; stands once, before the first of them.
void writeBandSigns(QTextStream& out);

/// The days below their heading: legend, and a row with band and sums for each.
void writeHtmlDays(QTextStream& out, const std::vector<MergedDay>& days);

} // namespace report
