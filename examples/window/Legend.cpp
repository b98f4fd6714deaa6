#include "Legend.h"

#include "DayBand.h"

#include <QPainter>

#include <utility>
#include <vector>

namespace {

constexpr int gap = 6;

std::vector<std::pair<QString, Stretch>> entries()
{
    std::vector<std::pair<QString, Stretch>> all;
    for (int i = 0; i < activityCount; ++i) {
        const auto activity = static_cast<Activity>(i);
        all.emplace_back(activityName(activity), Stretch{0, 0, activity, false});
    }
    all.emplace_back(
        Legend::tr("Paler: in no sum, its end is not known"), Stretch{0, 0, Activity::Driving, true});
    return all;
}

} // namespace

Legend::Legend(QWidget* parent) : QWidget(parent)
{
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

QSize Legend::sizeHint() const
{
    int width = 0;
    for (const auto& [name, stretch] : entries())
        width += entryWidth(name);
    return {width, fontMetrics().height() + gap};
}

void Legend::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    const int side = fontMetrics().height();
    int left = 0;
    for (const auto& [name, stretch] : entries()) {
        const QRect sample(left, (height() - side) / 2, side, side);
        DayBand::paintStretch(painter, sample, stretch, palette());
        painter.setPen(palette().color(QPalette::WindowText));
        painter.drawText(
            QRect(left + side + gap, 0, width(), height()), Qt::AlignVCenter | Qt::TextSingleLine, name);
        left += entryWidth(name);
    }
}

int Legend::entryWidth(const QString& name) const
{
    return fontMetrics().height() + fontMetrics().horizontalAdvance(name) + 4 * gap;
}
