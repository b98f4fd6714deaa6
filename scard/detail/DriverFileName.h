#pragma once

#include <scard/records/DriverCard.h>
#include <scard/SCardMeta.h>

#include <QDateTime>
#include <QString>

namespace scard::detail {

/// What the name of a driver card's download file is made of.
struct DriverFileName
{
    QString countryCode; ///< letters of the nation that issued the card
    DriverCardNumber cardNumber;
    QString firstNames; ///< decoded, blanks and all
    QString surname;    ///< decoded, blanks and all
    QDateTime timestamp;
};

/// The file name by the convention @p region; empty for a region that does not exist.
QString driverFileName(FilenameRegion region, const DriverFileName& parts);

} // namespace scard::detail
