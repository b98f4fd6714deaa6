#include <scard/detail/CompanyValues.h>

#include <scard/detail/RecordFields.h>
#include <scard/detail/RecordsByTime.h>
#include <scard/records/CompanyCard.h>

namespace scard::detail {

std::vector<CompanyActivity> companyActivities(const Bytes& ef)
{
    using Record = CompanyActivityRecord;
    const auto isUsed = [](const Record& record) {
        return record.companyActivityType != 0 || record.companyActivityTime.value() != 0;
    };
    const auto timeOf = [](const Record& record) { return record.companyActivityTime; };
    return usedByTime<CompanyActivity, Record>(ef, pointerBytes, isUsed, timeOf, [](const Record& record) {
        CompanyActivity known;
        known.activityType = record.companyActivityType;
        known.time = localTimeIfSet(record.companyActivityTime);
        known.cardType = record.cardNumberInformation.cardType;
        known.cardNation = nation(record.cardNumberInformation.cardIssuingMemberState);
        known.cardNumber = ia5Text(record.cardNumberInformation.cardNumber);
        known.nation = nation(record.vehicleRegistrationInformation.vehicleRegistrationNation);
        known.registration = registrationText(record.vehicleRegistrationInformation);
        known.downloadPeriodBegin = localTimeIfSet(record.downloadPeriodBegin);
        known.downloadPeriodEnd = localTimeIfSet(record.downloadPeriodEnd);
        return known;
    });
}

} // namespace scard::detail
