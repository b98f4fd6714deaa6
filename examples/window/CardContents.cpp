#include "CardContents.h"

#include "DriverContents.h"
#include "Merged.h"

#include <scard/SCardCompanyG2.h>
#include <scard/SCardWorkshopG2.h>

#include <tuple>

namespace {

QString purposeName(int purpose)
{
    switch (purpose) {
    case 1:
        return CardContents::tr("Activation");
    case 2:
        return CardContents::tr("First installation");
    case 3:
        return CardContents::tr("Installation");
    case 4:
        return CardContents::tr("Periodic inspection");
    case 5:
        return CardContents::tr("Registration entered by the company");
    case 6:
        return CardContents::tr("Time set without calibration");
    default:
        return CardContents::tr("Purpose %1").arg(purpose);
    }
}

QString companyActivityName(int type)
{
    switch (type) {
    case 1:
        return CardContents::tr("Card downloaded");
    case 2:
        return CardContents::tr("Vehicle unit downloaded");
    case 3:
        return CardContents::tr("Locked in");
    case 4:
        return CardContents::tr("Locked out");
    default:
        return CardContents::tr("Activity %1").arg(type);
    }
}

TextTable calibrations(const std::vector<scard::Calibration>& items)
{
    TextTable table{
        QStringLiteral("calibrations"),
        CardContents::tr("Calibrations"),
        {CardContents::tr("Time (UTC)"), CardContents::tr("What"), CardContents::tr("VIN"),
         CardContents::tr("Registration"), CardContents::tr("km"), CardContents::tr("Next")},
        {}};
    for (auto item = items.rbegin(); item != items.rend(); ++item)
        table.rows.push_back(
            {timeText(item->newTime), purposeName(item->purpose), item->vehicleIdentificationNumber,
             item->nation.alpha + QLatin1Char(' ') + item->registration, QString::number(item->newOdometer),
             item->nextCalibration.toUTC().date().toString(Qt::ISODate)});
    return table;
}

TextTable companyActivities(const std::vector<scard::CompanyActivity>& items)
{
    TextTable table{
        QStringLiteral("activities"),
        CardContents::tr("Activities"),
        {CardContents::tr("Time (UTC)"), CardContents::tr("What"), CardContents::tr("Card"),
         CardContents::tr("Registration"), CardContents::tr("From (UTC)"), CardContents::tr("To (UTC)")},
        {}};
    for (auto item = items.rbegin(); item != items.rend(); ++item)
        table.rows.push_back(
            {timeText(item->time), companyActivityName(item->activityType), item->cardNumber,
             item->nation.alpha + QLatin1Char(' ') + item->registration, timeText(item->downloadPeriodBegin),
             timeText(item->downloadPeriodEnd)});
    return table;
}

TextTable calibrationsOf(const scard::SCardWorkshopG1& card)
{
    // What was done to a first-generation vehicle unit is in the first application alone, so neither list
    // has all; a calibration that both have is one.
    std::vector<scard::Calibration> items;
    if (const auto* second = dynamic_cast<const scard::SCardWorkshopG2*>(&card))
        items = second->getCalibrationsG2();
    return calibrations(merged(card.getCalibrations(), items, [](const scard::Calibration& item) {
        return std::make_tuple(item.newTime, item.vehicleIdentificationNumber, item.purpose);
    }));
}

TextTable activitiesOf(const scard::SCardCompanyG1& card)
{
    std::vector<scard::CompanyActivity> items;
    if (const auto* second = dynamic_cast<const scard::SCardCompanyG2*>(&card))
        items = second->getCompanyActivitiesG2();
    return companyActivities(
        merged(card.getCompanyActivities(), items, [](const scard::CompanyActivity& item) {
            return std::make_tuple(item.time, item.activityType, item.cardNumber, item.registration);
        }));
}

} // namespace

CardContents contentsOf(scard::SCardGeneric& card)
{
    // A class of the second generation is one of the first, too.
    if (auto* driver = dynamic_cast<scard::SCardDriverG1*>(&card))
        return driverContents(*driver);
    CardContents contents;
    if (const auto* workshop = dynamic_cast<const scard::SCardWorkshopG1*>(&card))
        contents.tables = {calibrationsOf(*workshop)};
    else if (const auto* company = dynamic_cast<const scard::SCardCompanyG1*>(&card))
        contents.tables = {activitiesOf(*company)};
    else
        contents.note =
            CardContents::tr("Cards of this kind are recognised, but not read: the file is empty.");
    return contents;
}

QString cardName(const scard::SCardGeneric& card)
{
    const QString type = cardTypeName(card.getCardType());
    if (card.is2_2Generation())
        return CardContents::tr("%1, second generation, version 2.2").arg(type);
    return card.is2ndGeneneration() ? CardContents::tr("%1, second generation").arg(type)
                                    : CardContents::tr("%1, first generation").arg(type);
}

QString cardTypeName(scard::SCardMeta::Type type)
{
    switch (type) {
    case scard::SCardMeta::DriverCard:
        return CardContents::tr("Driver card");
    case scard::SCardMeta::WorkshopCard:
        return CardContents::tr("Workshop card");
    case scard::SCardMeta::ControlCard:
        return CardContents::tr("Control card");
    case scard::SCardMeta::CompanyCard:
        return CardContents::tr("Company card");
    default:
        return CardContents::tr("Card of type %1").arg(int(type));
    }
}

QString timeText(const QDateTime& time)
{
    return time.toUTC().toString(QStringLiteral("yyyy-MM-dd hh:mm"));
}
