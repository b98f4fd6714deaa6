#pragma once

#include "Day.h"

#include <QAbstractTableModel>

#include <vector>

/// A driver's days, a row for each.
class DayModel : public QAbstractTableModel
{
    Q_OBJECT

  public:
    enum Column
    {
        Date,
        Band,
        FirstSum, ///< one for each activity from here on
    };

    explicit DayModel(std::vector<Day> days, QObject* parent = nullptr);

    const Day& day(int row) const { return m_days[static_cast<std::size_t>(row)]; }

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

  private:
    QString text(const Day& day, int column) const;

    std::vector<Day> m_days;
};
