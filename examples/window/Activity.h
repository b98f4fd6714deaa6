#pragma once

#include <QColor>
#include <QPalette>
#include <QString>

/// What a driver does, in the order in which it is shown.
enum class Activity
{
    Driving,
    Work,
    Availability,
    Rest,
    Unknown,
};

constexpr int activityCount = 5;

QString activityName(Activity activity);

/// Told apart on light and dark palettes, and by people who see fewer colours.
QColor activityColour(Activity activity, const QPalette& palette);

/// How much of a band's height it fills: the colours are not all there is to tell activities apart.
qreal activityHeight(Activity activity);

/// Behind the activities; what is unknown is drawn as nothing else.
QColor bandColour(const QPalette& palette);
