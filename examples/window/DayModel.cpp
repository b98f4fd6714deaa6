#include "DayModel.h"

#include <QLocale>

#include <utility>

DayModel::DayModel(std::vector<Day> days, QObject* parent)
    : QAbstractTableModel(parent), m_days(std::move(days))
{}

int DayModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_days.size());
}

int DayModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : FirstSum + activityCount;
}

QVariant DayModel::data(const QModelIndex& index, int role) const
{
    const Day& shown = day(index.row());
    switch (role) {
    case Qt::DisplayRole:
        return text(shown, index.column());
    case Qt::TextAlignmentRole:
        return int(Qt::AlignVCenter | (index.column() < FirstSum ? Qt::AlignLeft : Qt::AlignRight));
    case Qt::ToolTipRole:
    case Qt::AccessibleTextRole: // the band is no text
        return index.column() == Band ? changesOf(shown) : QVariant();
    default:
        return {};
    }
}

QVariant DayModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation == Qt::Vertical)
        return {};
    if (role == Qt::TextAlignmentRole)
        return int(Qt::AlignVCenter | (section < FirstSum ? Qt::AlignLeft : Qt::AlignRight));
    if (role != Qt::DisplayRole)
        return {};
    if (section == Date)
        return tr("Day (UTC)");
    return section == Band ? QString() : activityName(static_cast<Activity>(section - FirstSum));
}

QString DayModel::text(const Day& day, int column) const
{
    switch (column) {
    case Date:
        return QLocale().toString(day.date, QStringLiteral("ddd yyyy-MM-dd"));
    case Band:
        return {};
    default:
        return hoursAndMinutes(day.sum(static_cast<Activity>(column - FirstSum)));
    }
}
