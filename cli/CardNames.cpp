#include "CardNames.h"

#include "report/CodeNames.h"

QString cardTypeName(scard::SCardMeta::Type type)
{
    // From 8 on the dictionaries of the two generations differ.
    const bool isKnown = type != scard::SCardMeta::Reserved && type <= scard::SCardMeta::MotionSensor;
    return isKnown ? report::equipmentType(type).name
                   : QStringLiteral("card of type %1").arg(static_cast<int>(type));
}

QString generationName(bool secondGeneration, bool version2)
{
    if (!secondGeneration)
        return QStringLiteral("first generation");
    return version2 ? QStringLiteral("second generation, version 2.2") : QStringLiteral("second generation");
}
