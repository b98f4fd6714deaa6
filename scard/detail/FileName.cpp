#include <scard/detail/FileName.h>

#include <QByteArray>
#include <QLocale>

#include <algorithm>
#include <cstddef>

namespace scard::detail {

namespace {

/// In the digits 0 to 9, whatever digits the machine's language uses.
QString timeText(const QDateTime& time, const char* format)
{
    return QLocale::c().toString(time, QLatin1String(format));
}

/// Up to a zero byte, as on a card that was never personalised: it would end the file's name there.
template <std::size_t Length>
QString upperCaseNumber(const unsigned char (&characters)[Length])
{
    const unsigned char* last = std::find(characters, characters + Length, '\0');
    return QString::fromLatin1(reinterpret_cast<const char*>(characters), static_cast<int>(last - characters))
        .toUpper();
}

/// An index character of the card number. A zero byte gives none.
QString upperCaseIndex(unsigned char index)
{
    if (index == 0)
        return {};
    const unsigned char upper =
        (index >= 'a' && index <= 'z') ? static_cast<unsigned char>(index - 'a' + 'A') : index;
    return QString(QLatin1Char(static_cast<char>(upper)));
}

/// The card's number as each convention writes it.
struct NumberTexts
{
    QString ddd;
    QString c1b;
    QString tgd;
};

QString fileName(FilenameRegion region, const NumberTexts& number, const FileNameParts& parts)
{
    switch (region) {
    case RegionDDD:
        return QStringLiteral("C_") + timeText(parts.timestamp, "yyyyMMdd_hhmm_") + parts.firstNames.left(1) +
               QLatin1Char('_') + parts.surname.trimmed() + QLatin1Char('_') + number.ddd +
               QStringLiteral(".DDD");
    case RegionC1B: {
        constexpr int countryWidth = 3;
        return parts.countryCode.leftJustified(countryWidth, QLatin1Char('_'), true) + number.c1b +
               timeText(parts.timestamp, "yyMMddhhmm") + QStringLiteral(".C1B");
    }
    case RegionTGD:
        return QStringLiteral("C_") + number.tgd + QLatin1Char('_') + parts.countryCode + QLatin1Char('_') +
               timeText(parts.timestamp, "yyyyMMdd_hhmm") + QStringLiteral(".TGD");
    }
    return {};
}

} // namespace

QString driverFileName(FilenameRegion region, const DriverCardNumber& number, const FileNameParts& parts)
{
    const QString card = upperCaseNumber(number.driverIdentification);
    const QString indices =
        upperCaseIndex(number.cardReplacementIndex) + upperCaseIndex(number.cardRenewalIndex);
    return fileName(region, {card, card, card.trimmed() + indices}, parts);
}

QString workshopFileName(FilenameRegion region, const OwnerCardNumber& number, const FileNameParts& parts)
{
    const QString card = upperCaseNumber(number.ownerIdentification);
    const QString indices = upperCaseIndex(number.cardConsecutiveIndex) +
                            upperCaseIndex(number.cardReplacementIndex) +
                            upperCaseIndex(number.cardRenewalIndex);
    // The name is trimmed before its extension; it begins with a letter, so only its end can have blanks.
    QString ddd = QLatin1Char('_') + card + indices;
    ddd = ddd.trimmed().mid(1);
    return fileName(region, {ddd, card, card.trimmed() + indices}, parts);
}

QString companyFileName(const ExtendedSerialNumber& serial, const QDateTime& timestamp)
{
    // Without the manufacturer code, the last byte.
    constexpr int shownBytes = sizeof serial - sizeof serial.manufacturerCode;
    const QByteArray shown(reinterpret_cast<const char*>(&serial), shownBytes);
    return QStringLiteral("C_") + timeText(timestamp, "yyyyMMdd_hhmm_") + QStringLiteral("Company Card_") +
           QString::fromLatin1(shown.toHex().toUpper()) + QStringLiteral(".DDD");
}

} // namespace scard::detail
