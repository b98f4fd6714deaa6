#include "TimeReal.h"

#include <scard/records/BigEndian.h>

namespace scard::verify::detail {

QDateTime timeOf(const QByteArray& timeReal)
{
    constexpr std::uint32_t none = 0xFFFFFFFF;
    const std::uint32_t seconds =
        fromBigEndian(reinterpret_cast<const unsigned char*>(timeReal.constData()), sizeof(scard::TimeReal));
    return seconds == none ? QDateTime() : QDateTime::fromSecsSinceEpoch(seconds, Qt::UTC);
}

} // namespace scard::verify::detail
