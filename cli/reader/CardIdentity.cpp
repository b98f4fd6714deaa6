#include "CardIdentity.h"

#include "../CardNames.h"
#include "../LibraryLog.h"

QString CardIdentity::text() const
{
    return cardTypeName(type) + QStringLiteral(", ") + generationName(secondGeneration, version2);
}

QString CardIdentity::chipSerialText() const
{
    constexpr int digits = 8;
    constexpr int hexadecimal = 16;
    if (!chipSerial)
        return {};
    return QStringLiteral("%1").arg(*chipSerial, digits, hexadecimal, QLatin1Char('0')).toUpper();
}

CardIdentity identityOf(const scard::SCardGeneric& card)
{
    CardIdentity identity;
    identity.type = card.getCardType();
    identity.secondGeneration = card.is2ndGeneneration();
    identity.version2 = card.is2_2Generation();
    unsigned int serial = 0;
    // Zero is what an EF_IC that could not be read leaves behind.
    if (card.getCardSerial(serial).isEmpty() && serial != 0)
        identity.chipSerial = serial;
    return identity;
}

CardIdentity identityWhileRead(scard::SCardMeta::Type type)
{
    CardIdentity identity;
    identity.type = type;
    identity.secondGeneration = LibraryLog::isSecondGeneration();
    identity.version2 = LibraryLog::isVersion2();
    return identity;
}
