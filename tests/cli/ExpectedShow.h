#pragma once

#include "Downloads.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QJsonValue>

// What `scard show --json` must say of a card, taken from the bytes that the simulator made it of and from
// the calendar of the C library.

namespace test {

enum class Zone
{
    Local,
    Utc,
};

/// A moment as the output writes it; null for 0 and FFFFFFFF.
QJsonValue isoTime(std::uint32_t time, Zone zone);

/// The applications, codes without their words.
QJsonArray expectedApplications(const CardFile& download, Zone zone);

/// Type, generation and chip, likewise.
QJsonObject expectedCard(const CardFile& download);

/// The remaining times by the last day of @p days but that to the next break, by the rules in words.
QJsonObject expectedFigures(const QJsonArray& days);

/// @p value without words of codes, with degrees in millionths, and with lists in an order that does not
/// depend on which of two entries of the same time stands first.
QJsonValue comparable(const QJsonValue& value);

} // namespace test
