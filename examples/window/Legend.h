#pragma once

#include <QWidget>

/// Says which activity has which colour.
class Legend : public QWidget
{
    Q_OBJECT

  public:
    explicit Legend(QWidget* parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    int entryWidth(const QString& name) const;
};
