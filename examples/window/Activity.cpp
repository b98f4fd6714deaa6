#include "Activity.h"

#include <QCoreApplication>

namespace {

bool isDark(const QPalette& palette)
{
    return palette.color(QPalette::Base).lightnessF() < 0.5;
}

} // namespace

QString activityName(Activity activity)
{
    switch (activity) {
    case Activity::Driving:
        return QCoreApplication::translate("Activity", "Driving");
    case Activity::Work:
        return QCoreApplication::translate("Activity", "Work");
    case Activity::Availability:
        return QCoreApplication::translate("Activity", "Available");
    case Activity::Rest:
        return QCoreApplication::translate("Activity", "Rest");
    case Activity::Unknown:
        break;
    }
    return QCoreApplication::translate("Activity", "Unknown");
}

QColor activityColour(Activity activity, const QPalette& palette)
{
    switch (activity) {
    case Activity::Driving:
        return isDark(palette) ? QColor(0xd5, 0x5e, 0x00) : QColor(0xb8, 0x43, 0x00);
    case Activity::Work:
        return {0x3b, 0x94, 0xcf};
    case Activity::Availability:
        return {0xe6, 0x9f, 0x00};
    case Activity::Rest:
        return {0x00, 0x9e, 0x73};
    case Activity::Unknown:
        break;
    }
    return bandColour(palette);
}

qreal activityHeight(Activity activity)
{
    switch (activity) {
    case Activity::Driving:
        return 1;
    case Activity::Work:
        return 0.7;
    case Activity::Availability:
        return 0.45;
    case Activity::Rest:
        return 0.22;
    case Activity::Unknown:
        break;
    }
    return 0;
}

QColor bandColour(const QPalette& palette)
{
    return isDark(palette) ? QColor(0x3a, 0x40, 0x46) : QColor(0xe6, 0xe9, 0xec);
}
