#pragma once

#include <QHeaderView>

/// A table's header with the hours of the day above the bands.
class HourHeader : public QHeaderView
{
    Q_OBJECT

  public:
    explicit HourHeader(QWidget* parent = nullptr);

  protected:
    void paintSection(QPainter* painter, const QRect& rect, int column) const override;
};
