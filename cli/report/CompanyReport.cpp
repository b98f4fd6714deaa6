#include "CardFields.h"
#include "CardReport.h"
#include "CodeNames.h"

#include <scard/records/CompanyCard.h>
#include <scard/records/Fid.h>
#include <scard/SCardCompanyG2.h>

namespace report {

namespace {

FactGroup identification(const std::optional<scard::CompanyCard_EF_Identification>& card)
{
    using Card = scard::CompanyCard_EF_Identification;
    Fields<Card> fields{
        field<Card>("company_name", "Company", [](const Card& c) { return text(c.companyName); }),
        field<Card>("company_address", "Address", [](const Card& c) { return text(c.companyAddress); }),
    };
    appendOwnerCard(fields);
    return makeFacts("identification", "Card", card, fields);
}

Table activities(const std::vector<scard::CompanyActivity>& items)
{
    using Item = scard::CompanyActivity;
    const Fields<Item> fields{
        field<Item>("time", "Time", [](const Item& item) { return item.time; }),
        field<Item>("activity", "What", [](const Item& item) { return companyActivity(item.activityType); }),
        field<Item>(
            "card_type", "Kind of card", [](const Item& item) { return equipmentType(item.cardType); }),
        field<Item>("card_nation", "Card of", [](const Item& item) { return item.cardNation; }),
        field<Item>("card_number", "Card number", [](const Item& item) { return item.cardNumber; }),
        field<Item>("vehicle_nation", "Nation", [](const Item& item) { return item.nation; }),
        field<Item>("registration", "Registration", [](const Item& item) { return item.registration; }),
        field<Item>(
            "download_period_begin", "Downloaded from",
            [](const Item& item) { return item.downloadPeriodBegin; }, Weight::Detail),
        field<Item>(
            "download_period_end", "Downloaded until",
            [](const Item& item) { return item.downloadPeriodEnd; }, Weight::Detail),
    };
    return makeTable("company_activities", "Activities", items, fields, "time", "time");
}

Application application(
    Generation generation, const std::vector<scard::CompanyActivity>& items, scard::SCardGeneric& image)
{
    Application result = emptyApplication(generation);
    // A company card of the first generation shows its identification to nobody, so there may be none.
    result.groups.push_back(identification(
        recordOf<scard::CompanyCard_EF_Identification>(image, generation, scard::fidIdentification)));
    result.tables.push_back(activities(items));
    return result;
}

} // namespace

std::vector<Application> applicationsOf(const scard::SCardCompanyG1& company, scard::SCardGeneric& image)
{
    std::vector<Application> applications{
        application(Generation::First, company.getCompanyActivities(), image)};
    if (const auto* second = dynamic_cast<const scard::SCardCompanyG2*>(&company))
        applications.push_back(application(Generation::Second, second->getCompanyActivitiesG2(), image));
    return applications;
}

} // namespace report
