#include <scard/detail/DriverFileName.h>

#include <QLocale>

#include <algorithm>

namespace scard::detail {

namespace {

/// In the digits 0 to 9, whatever digits the machine's language uses.
QString timeText(const QDateTime& time, const char* format)
{
    return QLocale::c().toString(time, QLatin1String(format));
}

QString driverIdentification(const DriverCardNumber& number)
{
    const unsigned char* first = number.driverIdentification;
    const unsigned char* last = std::find(first, first + sizeof number.driverIdentification, '\0');
    return QString::fromLatin1(reinterpret_cast<const char*>(first), static_cast<int>(last - first));
}

/// An index character of the card number. A zero byte, as on a card that was never personalised,
/// gives none: it would end the file's name there.
QString upperCaseIndex(unsigned char index)
{
    if (index == 0)
        return {};
    const unsigned char upper =
        (index >= 'a' && index <= 'z') ? static_cast<unsigned char>(index - 'a' + 'A') : index;
    return QString(QLatin1Char(static_cast<char>(upper)));
}

} // namespace

QString driverFileName(FilenameRegion region, const DriverFileName& parts)
{
    const QString card = driverIdentification(parts.cardNumber);
    switch (region) {
    case RegionDDD:
        return QStringLiteral("C_") + timeText(parts.timestamp, "yyyyMMdd_hhmm_") + parts.firstNames.left(1) +
               QLatin1Char('_') + parts.surname.trimmed() + QLatin1Char('_') + card.toUpper() +
               QStringLiteral(".DDD");
    case RegionC1B: {
        constexpr int countryWidth = 3;
        return parts.countryCode.leftJustified(countryWidth, QLatin1Char('_'), true) + card.toUpper() +
               timeText(parts.timestamp, "yyMMddhhmm") + QStringLiteral(".C1B");
    }
    case RegionTGD:
        return QStringLiteral("C_") + card.trimmed().toUpper() +
               upperCaseIndex(parts.cardNumber.cardReplacementIndex) +
               upperCaseIndex(parts.cardNumber.cardRenewalIndex) + QLatin1Char('_') + parts.countryCode +
               QLatin1Char('_') + timeText(parts.timestamp, "yyyyMMdd_hhmm") + QStringLiteral(".TGD");
    }
    return {};
}

} // namespace scard::detail
