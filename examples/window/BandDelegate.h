#pragma once

#include <QStyledItemDelegate>

/// Draws the cell of a DayModel that has the day itself.
class BandDelegate : public QStyledItemDelegate
{
    Q_OBJECT

  public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void
    paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
};
