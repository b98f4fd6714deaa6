#include "BandDelegate.h"

#include "DayBand.h"
#include "DayModel.h"

void BandDelegate::paint(
    QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    QStyledItemDelegate::paint(painter, option, index); // background, selection and focus
    if (const auto* model = qobject_cast<const DayModel*>(index.model()))
        DayBand::paint(*painter, DayBand::areaIn(option.rect), model->day(index.row()), option.palette);
}
