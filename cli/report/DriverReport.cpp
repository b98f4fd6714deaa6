#include "CardFields.h"
#include "CardReport.h"
#include "CodeNames.h"

#include <scard/records/DriverCard.h>
#include <scard/records/Fid.h>
#include <scard/SCardDriverG2.h>

#include <algorithm>

namespace report {

namespace {

using Driver = scard::SCardDriverG1;
using DriverG2 = scard::SCardDriverG2;

Day dayOf(const Driver::_DAILY_ACTIVITIES& activities)
{
    Day day{
        activities.date.toUTC().date(),
        activities.driving,
        activities.work,
        activities.availability,
        activities.rest,
        activities.unknown,
        {}};
    for (std::size_t i = 0; i < activities.items.size(); ++i) {
        const Driver::_DAILY_ITEM& item = activities.items[i];
        const bool isLast = i + 1 == activities.items.size();
        Period period;
        period.beginMinute = item.start;
        // The library's duration is modulo 65,536: where the later time stands first it is none.
        period.endMinute = isLast ? item.start : activities.items[i + 1].start;
        period.activity = activity(item.activity);
        period.slot = slot(item.slot);
        period.drivingStatus = item.cardStatus == 0 ? drivingStatusWithCard(item.drivingStatus)
                                                    : drivingStatusWithoutCard(item.drivingStatus);
        period.cardStatus = cardStatus(item.cardStatus);
        day.periods.push_back(period);
    }
    if (!day.periods.empty()) {
        Period& last = day.periods.back();
        last.hasEnd = false;
        last.endMinute = std::max(last.beginMinute, minutesOfDay);
    }
    return day;
}

std::vector<Day> daysOf(const std::vector<Driver::_DAILY_ACTIVITIES>& activities)
{
    std::vector<Day> days;
    std::transform(activities.begin(), activities.end(), std::back_inserter(days), dayOf);
    return days;
}

/// BCD, yyyymmdd, digit by digit: some cards have no day or month.
QString birthDate(const unsigned char (&bcd)[4])
{
    const QString digits =
        QString::fromLatin1(QByteArray(reinterpret_cast<const char*>(bcd), sizeof bcd).toHex());
    if (digits == QLatin1String("00000000"))
        return QString();
    return digits.left(4) + QLatin1Char('-') + digits.mid(4, 2) + QLatin1Char('-') + digits.mid(6);
}

FactGroup identification(const std::optional<scard::DriverCard_EF_Identification>& card)
{
    using Card = scard::DriverCard_EF_Identification;
    Fields<Card> fields{
        field<Card>("surname", "Surname", [](const Card& c) { return text(c.holderSurname); }),
        field<Card>("first_names", "First names", [](const Card& c) { return text(c.holderFirstNames); }),
        field<Card>("birth_date", "Born", [](const Card& c) { return birthDate(c.cardHolderBirthDate); }),
        field<Card>(
            "language", "Language", [](const Card& c) { return characters(c.cardHolderPreferredLanguage); }),
        field<Card>(
            "card_number", "Card number",
            [](const Card& c) {
                return characters(c.cardNumber.driverIdentification) +
                       cardIndexes({c.cardNumber.cardReplacementIndex, c.cardNumber.cardRenewalIndex});
            }),
    };
    appendIssue(fields);
    return makeFacts("identification", "Card", card, fields);
}

FactGroup download(const std::optional<scard::TimeReal>& time)
{
    const Fields<scard::TimeReal> fields{field<scard::TimeReal>(
        "last_download", "Downloaded before", [](const scard::TimeReal& t) { return timeOf(t); })};
    return makeFacts("download", "Download", time, fields);
}

FactGroup licence(const scard::DrivingLicence& licence)
{
    using Item = scard::DrivingLicence;
    const Fields<Item> fields{
        field<Item>("number", "Number", [](const Item& item) { return item.number; }),
        field<Item>("issuing_nation", "Issued in", [](const Item& item) { return item.issuingNation; }),
        field<Item>("issuing_authority", "Issued by", [](const Item& item) { return item.issuingAuthority; }),
    };
    return makeFacts("driving_licence", "Driving licence", licence, fields);
}

FactGroup currentUse(const scard::CurrentUse& use)
{
    using Item = scard::CurrentUse;
    const Fields<Item> fields{
        field<Item>("begin", "In a vehicle since", [](const Item& item) { return item.begin; }),
        field<Item>("vehicle_nation", "Nation", [](const Item& item) { return item.nation; }),
        field<Item>("registration", "Registration", [](const Item& item) { return item.registration; }),
    };
    return makeFacts("current_use", "Vehicle at the download", use, fields);
}

FactGroup control(const scard::ControlActivity& control)
{
    using Item = scard::ControlActivity;
    const Fields<Item> fields{
        field<Item>(
            "control_type", "Control", [](const Item& item) { return controlType(item.controlType); }),
        field<Item>("time", "Time", [](const Item& item) { return item.time; }),
        field<Item>(
            "card_type", "Kind of card", [](const Item& item) { return equipmentType(item.cardType); }),
        field<Item>("card_nation", "Card of", [](const Item& item) { return item.cardNation; }),
        field<Item>("card_number", "Card number", [](const Item& item) { return item.cardNumber; }),
        field<Item>("vehicle_nation", "Nation", [](const Item& item) { return item.vehicleNation; }),
        field<Item>("registration", "Registration", [](const Item& item) { return item.registration; }),
        field<Item>(
            "download_period_begin", "Downloaded from",
            [](const Item& item) { return item.downloadPeriodBegin; }),
        field<Item>(
            "download_period_end", "Downloaded until",
            [](const Item& item) { return item.downloadPeriodEnd; }),
    };
    return makeFacts("control_activity", "Last control", control, fields);
}

/// The columns of a vehicle of either generation.
template <typename Item>
Fields<Item> vehicleFields()
{
    return {
        field<Item>("first_use", "From", [](const Item& item) { return item.firstUse; }),
        field<Item>("last_use", "To", [](const Item& item) { return item.lastUse; }),
        field<Item>("registration", "Registration", [](const Item& item) { return item.registration; }),
        field<Item>("odometer_begin_km", "km", [](const Item& item) { return item.odometerBegin; }),
        field<Item>("odometer_end_km", "to km", [](const Item& item) { return item.odometerEnd; }),
    };
}

Table vehicles(const std::vector<Driver::_VEHICLE_USAGE_INFO>& items)
{
    return makeTable(
        "vehicles", "Vehicles", items, vehicleFields<Driver::_VEHICLE_USAGE_INFO>(), "first_use", "last_use");
}

Table vehiclesG2(const std::vector<DriverG2::_VEHICLE_USAGE_INFO_G2>& items)
{
    using Item = DriverG2::_VEHICLE_USAGE_INFO_G2;
    Fields<Item> fields = vehicleFields<Item>();
    fields.push_back(
        field<Item>("vin", "VIN", [](const Item& item) { return item.vehicleIdentificationNumber; }));
    return makeTable("vehicles", "Vehicles", items, fields, "first_use", "last_use");
}

/// Events and faults have the same fields.
template <typename Item>
Table incidents(const char* key, const char* title, const std::vector<Item>& items)
{
    const Fields<Item> fields{
        field<Item>("begin", "From", [](const Item& item) { return item.begin; }),
        field<Item>("end", "To", [](const Item& item) { return item.end; }),
        field<Item>("type", "What", [](const Item& item) { return eventOrFault(item.type); }),
        field<Item>("registration", "Registration", [](const Item& item) { return item.registration; }),
    };
    return makeTable(key, title, items, fields, "begin", "end");
}

Table places(const std::vector<scard::Place>& items, Generation generation)
{
    using Item = scard::Place;
    Fields<Item> fields{
        field<Item>("time", "Time", [](const Item& item) { return item.time; }),
        field<Item>("entry_type", "What", [](const Item& item) { return placeEntryType(item.entryType); }),
        field<Item>("nation", "Nation", [](const Item& item) { return item.nation; }),
        field<Item>(
            "region", "Region", [](const Item& item) { return spanishRegion(item.region); }, Weight::Detail),
        field<Item>("odometer_km", "km", [](const Item& item) { return item.odometer; }),
    };
    if (generation == Generation::Second)
        appendPosition(fields, &Item::position);
    return makeTable("places", "Places", items, fields, "time", "time");
}

Table conditions(const std::vector<scard::SpecificCondition>& items)
{
    using Item = scard::SpecificCondition;
    const Fields<Item> fields{
        field<Item>("time", "Time", [](const Item& item) { return item.time; }),
        field<Item>("type", "Condition", [](const Item& item) { return specificCondition(item.type); }),
    };
    return makeTable("specific_conditions", "Specific conditions", items, fields, "time", "time");
}

Table vehicleUnits(const std::vector<scard::VehicleUnit>& items)
{
    using Item = scard::VehicleUnit;
    const Fields<Item> fields{
        field<Item>("time", "From", [](const Item& item) { return item.time; }),
        field<Item>("manufacturer_code", "Maker", [](const Item& item) { return item.manufacturerCode; }),
        field<Item>("device_id", "Type", [](const Item& item) { return item.deviceId; }),
        field<Item>("software_version", "Software", [](const Item& item) { return item.softwareVersion; }),
    };
    return makeTable("vehicle_units", "Vehicle units", items, fields, "time", "time");
}

Table gnssPlaces(const std::vector<scard::GnssPlace>& items)
{
    using Item = scard::GnssPlace;
    Fields<Item> fields{
        field<Item>("time", "Time", [](const Item& item) { return item.time; }),
        field<Item>("odometer_km", "km", [](const Item& item) { return item.odometer; }),
    };
    appendPosition(fields, &Item::position);
    return makeTable("gnss_places", "Positions after three hours of driving", items, fields, "time", "time");
}

Table borderCrossings(const std::vector<scard::BorderCrossing>& items)
{
    using Item = scard::BorderCrossing;
    Fields<Item> fields{
        field<Item>("time", "Time", [](const Item& item) { return item.position.time; }),
        field<Item>("nation_left", "Left", [](const Item& item) { return item.left; }),
        field<Item>("nation_entered", "Entered", [](const Item& item) { return item.entered; }),
        field<Item>("odometer_km", "km", [](const Item& item) { return item.odometer; }),
    };
    appendPosition(fields, &Item::position);
    return makeTable("border_crossings", "Border crossings", items, fields, "time", "time");
}

Table loads(const std::vector<scard::LoadUnloadOperation>& items)
{
    using Item = scard::LoadUnloadOperation;
    Fields<Item> fields{
        field<Item>("time", "Time", [](const Item& item) { return item.time; }),
        field<Item>("operation", "What", [](const Item& item) { return loadOperation(item.operation); }),
        field<Item>("odometer_km", "km", [](const Item& item) { return item.odometer; }),
    };
    appendPosition(fields, &Item::position);
    return makeTable("load_unload_operations", "Loading and unloading", items, fields, "time", "time");
}

Table loadTypes(const std::vector<scard::LoadTypeEntry>& items)
{
    using Item = scard::LoadTypeEntry;
    const Fields<Item> fields{
        field<Item>("time", "From", [](const Item& item) { return item.time; }),
        field<Item>("load_type", "Load", [](const Item& item) { return loadType(item.loadType); }),
    };
    return makeTable("load_type_entries", "Kinds of load", items, fields, "time", "time");
}

/// What both applications keep in EFs of the same content.
void appendOwnFacts(Application& application, scard::SCardGeneric& image, Generation generation)
{
    application.groups.push_back(identification(
        recordOf<scard::DriverCard_EF_Identification>(image, generation, scard::fidIdentification)));
    application.groups.push_back(
        download(recordOf<scard::TimeReal>(image, generation, scard::fidCardDownload)));
}

Application firstApplication(Driver& driver, scard::SCardGeneric& image)
{
    Application application = emptyApplication(Generation::First);
    appendOwnFacts(application, image, Generation::First);
    application.groups.push_back(licence(driver.getDrivingLicence()));
    application.groups.push_back(currentUse(driver.getCurrentUse()));
    application.groups.push_back(control(driver.getControlActivity()));
    application.hasDays = true;
    application.days = daysOf(driver.getActivities());
    application.tables = {
        vehicles(driver.getVehiclesUsed()),
        incidents("events", "Events", driver.getEvents()),
        incidents("faults", "Faults", driver.getFaults()),
        places(driver.getPlaces(), Generation::First),
        conditions(driver.getSpecificConditions()),
    };
    return application;
}

Application secondApplication(const DriverG2& driver, scard::SCardGeneric& image)
{
    Application application = emptyApplication(Generation::Second);
    appendOwnFacts(application, image, Generation::Second);
    application.groups.push_back(licence(driver.getDrivingLicenceG2()));
    application.groups.push_back(currentUse(driver.getCurrentUseG2()));
    application.groups.push_back(control(driver.getControlActivityG2()));
    application.hasDays = true;
    application.days = daysOf(driver.getActivitiesG2());
    application.tables = {
        vehiclesG2(driver.getVehiclesUsedG2()),
        incidents("events", "Events", driver.getEventsG2()),
        incidents("faults", "Faults", driver.getFaultsG2()),
        places(driver.getPlacesG2(), Generation::Second),
        conditions(driver.getSpecificConditionsG2()),
        vehicleUnits(driver.getVehicleUnits()),
        gnssPlaces(driver.getGnssPlaces()),
        borderCrossings(driver.getBorderCrossings()),
        loads(driver.getLoadUnloadOperations()),
        loadTypes(driver.getLoadTypeEntries()),
    };
    return application;
}

} // namespace

std::vector<Application> applicationsOf(scard::SCardDriverG1& driver, scard::SCardGeneric& image)
{
    std::vector<Application> applications{firstApplication(driver, image)};
    if (const auto* second = dynamic_cast<const DriverG2*>(&driver))
        applications.push_back(secondApplication(*second, image));
    return applications;
}

Figures figuresOf(const scard::SCardDriverG1& driver, QDate date)
{
    struct Figure
    {
        const char* key;
        const char* title;
        int (scard::SCardDriverG1::*get)(QDate) const;
        bool isTime;
        const char* rule;
    };
    // clang-format off
    static const Figure figures[] = {
        {"remaining_driving_day_minutes", "Driving left on this day", &Driver::getRemainingDrivingTimeOfDay, true,
         "9:00 less driving and work of the day"},
        {"remaining_driving_week_minutes", "Driving left in these seven days", &Driver::getRemainingDrivingTimeOfWeek, true,
         "56:00 less driving and work of the day and the six before it"},
        {"remaining_extended_days", "Days of more than 9:00 left", &Driver::getRemainingExtendedDrivingTimeOfWeek, false,
         "2 less the days of these seven with more than 9:00 of driving and work"},
        {"remaining_reduced_rests", "Short rests left", &Driver::getRemainingReducedRestTimeOfWeek, false,
         "3 less the days of these seven that leave less than 11:00 beside driving and work"},
        {"time_to_next_break_minutes", "Driving left before a break", &Driver::getTimeToNextBreak, true,
         "4:30 less driving and work of the day since breaks of 45 minutes in sum"},
    };
    // clang-format on
    Figures result;
    result.date = date;
    // The library goes by the date that the day's beginning has in local time.
    const QDate localDate = QDateTime(date, QTime(0, 0), Qt::UTC).toLocalTime().date();
    for (const Figure& figure : figures) {
        const int number = (driver.*figure.get)(localDate);
        const Column column{
            QString::fromLatin1(figure.key), QString::fromLatin1(figure.title),
            figure.isTime ? Kind::Minutes : Kind::Number, Weight::Main};
        result.facts.push_back(
            {column, figure.isTime ? Value(Minutes{number}) : Value(static_cast<qint64>(number))});
        result.rules.push_back(QString::fromLatin1(figure.rule));
    }
    return result;
}

} // namespace report
