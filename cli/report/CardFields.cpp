#include "CardFields.h"

#include <aux/CountryCodes.h>

namespace report {

QString applicationName(Generation generation)
{
    return generation == Generation::First ? QStringLiteral("TACHO") : QStringLiteral("SMRDT");
}

aux::Error selectApplication(scard::SCardGeneric& image, Generation generation)
{
    return image.ScSelectFile("\xFF" + applicationName(generation).toStdString());
}

Application emptyApplication(Generation generation)
{
    Application application;
    application.name = applicationName(generation);
    application.generation = static_cast<int>(generation);
    return application;
}

scard::Nation nationOf(unsigned char numeric)
{
    return {numeric, aux::CountryCodes::countryCodeFromStateID(numeric)};
}

QDateTime timeOf(scard::TimeReal time)
{
    constexpr quint32 notKnown = 0xFFFFFFFF;
    if (time.value() == 0 || time.value() == notKnown)
        return QDateTime();
    return QDateTime::fromSecsSinceEpoch(time.value());
}

CardDay cardDay(scard::TimeReal time)
{
    return {timeOf(time)};
}

QString cardIndexes(std::initializer_list<unsigned char> indexes)
{
    QString text;
    for (const unsigned char index : indexes) {
        if (index != 0) // of a card that was never personalised
            text += QLatin1Char(static_cast<char>(index));
    }
    return text.trimmed();
}

} // namespace report
