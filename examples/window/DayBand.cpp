#include "DayBand.h"

namespace DayBand {

namespace {

constexpr qreal sideMargin = 12;
constexpr qreal heightMargin = 3;
constexpr qreal openOpacity = 0.4;

void paintHours(QPainter& painter, const QRectF& area, const QPalette& palette)
{
    constexpr int everySixHours = 6 * 60;
    QColor line = palette.color(QPalette::Text);
    line.setAlphaF(0.25);
    painter.setPen(QPen(line, 0)); // one pixel of the screen, whatever its density
    for (int minute = everySixHours; minute < minutesOfDay; minute += everySixHours) {
        const qreal x = xOf(minute, area);
        painter.drawLine(QPointF(x, area.top()), QPointF(x, area.bottom()));
    }
}

} // namespace

QRectF areaIn(const QRect& cell)
{
    return QRectF(cell).adjusted(sideMargin, heightMargin, -sideMargin, -heightMargin);
}

qreal xOf(int minute, const QRectF& area)
{
    return area.left() + area.width() * minute / minutesOfDay;
}

void paint(QPainter& painter, const QRectF& area, const Day& day, const QPalette& palette)
{
    painter.save();
    painter.setClipRect(area);
    painter.fillRect(area, bandColour(palette));
    for (const Stretch& stretch : day.stretches) {
        QRectF piece = area;
        piece.setLeft(xOf(stretch.begin, area));
        piece.setRight(xOf(stretch.end, area));
        paintStretch(painter, piece, stretch, palette);
    }
    paintHours(painter, area, palette);
    painter.restore();
}

void paintStretch(QPainter& painter, const QRectF& area, const Stretch& stretch, const QPalette& palette)
{
    painter.fillRect(area, bandColour(palette)); // a lower one must not leave the tip of one before
    QRectF filled = area;
    filled.setTop(area.bottom() - area.height() * activityHeight(stretch.activity));
    QColor colour = activityColour(stretch.activity, palette);
    if (stretch.isOpen)
        colour.setAlphaF(openOpacity);
    painter.fillRect(filled, colour);
}

} // namespace DayBand
