#include "CardNames.h"

QString cardTypeName(scard::SCardMeta::Type type)
{
    switch (type) {
    case scard::SCardMeta::DriverCard:
        return QStringLiteral("driver card");
    case scard::SCardMeta::WorkshopCard:
        return QStringLiteral("workshop card");
    case scard::SCardMeta::ControlCard:
        return QStringLiteral("control card");
    case scard::SCardMeta::CompanyCard:
        return QStringLiteral("company card");
    case scard::SCardMeta::ManufacturingCard:
        return QStringLiteral("manufacturing card");
    case scard::SCardMeta::VehicleUnit:
        return QStringLiteral("vehicle unit");
    case scard::SCardMeta::MotionSensor:
        return QStringLiteral("motion sensor");
    case scard::SCardMeta::Reserved:
    case scard::SCardMeta::DownloadKey:
        break;
    }
    return QStringLiteral("card of type %1").arg(static_cast<int>(type));
}

QString generationName(bool secondGeneration, bool version2)
{
    if (!secondGeneration)
        return QStringLiteral("first generation");
    return version2 ? QStringLiteral("second generation, version 2.2") : QStringLiteral("second generation");
}
