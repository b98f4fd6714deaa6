#pragma once

#include <simulator/Bytes.h>

#include <QByteArray>
#include <QList>

namespace test {

/// FID and type of each record of @p image, three bytes each.
QList<QByteArray> recordHeadersOf(const QByteArray& image);

/// Checks each signature of @p image against the certificates in it, and these up to the test roots.
/// @return signatures that hold
std::size_t verifiedSignatures(const sim::Bytes& image);

} // namespace test
