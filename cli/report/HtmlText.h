#pragma once

#include <QString>

namespace report {

/// Any text of a card or of a path as it may stand in a page, between tags and between quotes alike.
QString htmlText(const QString& text);

} // namespace report
