#pragma once

#include <QDateTime>
#include <QJsonValue>
#include <QString>

/// The text; null when it is empty.
QJsonValue textOrNull(const QString& text);

/// The moment in ISO 8601, UTC; null when it is not known.
QJsonValue timeOrNull(const QDateTime& time);
