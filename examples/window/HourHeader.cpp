#include "HourHeader.h"

#include "DayBand.h"
#include "DayModel.h"

HourHeader::HourHeader(QWidget* parent) : QHeaderView(Qt::Horizontal, parent)
{
    setHighlightSections(false);
    setSectionsClickable(false);
}

void HourHeader::paintSection(QPainter* painter, const QRect& rect, int column) const
{
    painter->save();
    QHeaderView::paintSection(painter, rect, column);
    painter->restore();
    if (column != DayModel::Band)
        return;

    constexpr int lastHour = 24;
    constexpr int step = 3;
    constexpr int minutesOfHour = 60;
    const QRectF area = DayBand::areaIn(rect);
    const qreal width = fontMetrics().horizontalAdvance(QStringLiteral("000"));
    painter->save();
    painter->setPen(palette().color(QPalette::ButtonText));
    for (int hour = 0; hour <= lastHour; hour += step) {
        const qreal x = DayBand::xOf(hour * minutesOfHour, area);
        painter->drawText(
            QRectF(x - width / 2, rect.top(), width, rect.height()), Qt::AlignCenter, QString::number(hour));
    }
    painter->restore();
}
