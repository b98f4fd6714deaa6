#pragma once

#include "Day.h"

#include <QPainter>
#include <QPalette>
#include <QRectF>

/// How a day is drawn in a cell of a table, and where its hours are.
namespace DayBand {

/// The band in the cell: less high than it, with room for the outer hours' numbers at both sides.
QRectF areaIn(const QRect& cell);

/// Where a minute of the day is in the band.
qreal xOf(int minute, const QRectF& area);

void paint(QPainter& painter, const QRectF& area, const Day& day, const QPalette& palette);

/// One activity in a piece of the band.
void paintStretch(QPainter& painter, const QRectF& area, const Stretch& stretch, const QPalette& palette);

} // namespace DayBand
