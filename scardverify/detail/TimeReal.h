#pragma once

#include <QByteArray>
#include <QDateTime>

namespace scard::verify::detail {

/// The moment (UTC) that the four bytes of a TimeReal say; null for FFFFFFFF, which stands for none.
QDateTime timeOf(const QByteArray& timeReal);

} // namespace scard::verify::detail
