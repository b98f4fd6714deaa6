#include "Answers.h"

#include <QDebug>
#include <QString>
#include <QStringList>

#include <cstring>

namespace test {

namespace {

using scard::SCardDriverG1;
using scard::SCardDriverG2;

class Lines
{
  public:
    /// A line of a name and the values behind it.
    template <typename... Values>
    void add(const char* name, const Values&... values)
    {
        QString line;
        QDebug stream(&line);
        stream.noquote() << name;
        (stream << ... << values);
        m_text += line + QLatin1Char('\n');
    }

    std::string text() const { return m_text.toStdString(); }

  private:
    QString m_text;
};

QString textOf(const scard::Nation& nation)
{
    return QStringLiteral("%1/%2").arg(nation.numeric).arg(nation.alpha);
}

template <typename Number>
QString textOf(const std::optional<Number>& number)
{
    return number ? QString::number(*number, 'g', 12) : QStringLiteral("-");
}

QString textOf(const std::optional<int>& number)
{
    return number ? QString::number(*number) : QStringLiteral("-");
}

QString textOf(const scard::GnssPosition& position)
{
    return QStringList{
        position.time.toString(Qt::ISODate), textOf(position.accuracy), textOf(position.latitude),
        textOf(position.longitude), textOf(position.authenticationStatus)}
        .join(QLatin1Char(' '));
}

void addDays(Lines& lines, const std::vector<SCardDriverG1::_DAILY_ACTIVITIES>& days)
{
    for (const auto& day : days) {
        lines.add("day", day.date, day.work, day.rest, day.driving, day.availability, day.unknown);
        for (const auto& item : day.items)
            lines.add(
                "period", item.start, item.duration, item.drivingStatus, item.cardStatus, item.activity,
                item.slot);
    }
}

void addVehicle(Lines& lines, const SCardDriverG1::_VEHICLE_USAGE_INFO& use, const QString& number)
{
    lines.add(
        "vehicle", use.firstUse, use.lastUse, use.odometerBegin, use.odometerEnd, use.registration, number);
}

template <typename Incident>
void addIncidents(Lines& lines, const char* name, const std::vector<Incident>& incidents)
{
    for (const Incident& each : incidents)
        lines.add(name, each.type, each.begin, each.end, each.reserved1, each.reserved2, each.registration);
}

void addPlaces(Lines& lines, const std::vector<scard::Place>& places)
{
    for (const scard::Place& place : places)
        lines.add(
            "place", place.time, place.entryType, textOf(place.nation), place.region, place.odometer,
            textOf(place.position));
}

void addConditions(Lines& lines, const std::vector<scard::SpecificCondition>& conditions)
{
    for (const scard::SpecificCondition& condition : conditions)
        lines.add("condition", condition.time, condition.type);
}

void addSingleRecords(
    Lines& lines, const scard::CurrentUse& use, const scard::ControlActivity& control,
    const scard::DrivingLicence& licence)
{
    lines.add("use", use.begin, textOf(use.nation), use.registration);
    lines.add(
        "control", control.controlType, control.time, control.cardType, textOf(control.cardNation),
        control.cardNumber, textOf(control.vehicleNation), control.registration, control.downloadPeriodBegin,
        control.downloadPeriodEnd);
    lines.add("licence", licence.issuingAuthority, textOf(licence.issuingNation), licence.number);
}

QString textOf(const scard::EquipmentSerialNumber& number)
{
    return QStringLiteral("%1 %2 %3 %4")
        .arg(number.serialNumber)
        .arg(number.monthYear)
        .arg(number.type)
        .arg(number.manufacturerCode);
}

QString textOf(const std::optional<scard::EquipmentSerialNumber>& number)
{
    return number ? textOf(*number) : QStringLiteral("-");
}

template <typename Record>
QString bytesOf(const Record& record)
{
    return QString::fromLatin1(QByteArray(reinterpret_cast<const char*>(&record), sizeof record).toHex());
}

void addCalibrations(
    Lines& lines, const scard::CalibrationCounters& counters,
    const std::vector<scard::Calibration>& calibrations)
{
    lines.add("counters", textOf(counters.total), textOf(counters.sinceDownload));
    for (const scard::Calibration& each : calibrations) {
        lines.add(
            "calibration", each.purpose, each.vehicleIdentificationNumber, textOf(each.nation),
            each.registration, each.vehicleCharacteristicConstant, each.recordingEquipmentConstant,
            each.tyreCircumference, each.tyreSize, each.authorisedSpeed, each.oldOdometer, each.newOdometer,
            each.oldTime, each.newTime, each.nextCalibration, each.vuPartNumber, textOf(each.vuSerialNumber),
            textOf(each.sensorSerialNumber), textOf(each.gnssSerialNumber),
            textOf(each.remoteCommunicationSerialNumber),
            each.refusesFirstGenerationCards ? (*each.refusesFirstGenerationCards ? "yes" : "no") : "-");
        for (const scard::Seal& seal : each.seals)
            lines.add("seal", seal.equipmentType, seal.manufacturerCode, seal.identifier);
    }
}

std::string activitiesText(const std::vector<scard::CompanyActivity>& activities, Lines lines = {})
{
    for (const scard::CompanyActivity& each : activities)
        lines.add(
            "activity", each.activityType, each.time, each.cardType, textOf(each.cardNation), each.cardNumber,
            textOf(each.nation), each.registration, each.downloadPeriodBegin, each.downloadPeriodEnd);
    return lines.text();
}

} // namespace

std::string identityOf(SCardDriverG1& card)
{
    const scard::DriverCard_EF_Identification identification = card.getCardIdentification();
    Lines lines;
    lines.add("type", static_cast<int>(card.getCardType()), card.is2ndGeneneration(), card.is2_2Generation());
    lines.add("file", card.getFilename(), card.getDownloadTimestamp());
    lines.add("holder", card.getCardHolderName());
    lines.add("downloaded", card.getLastCardDownload());
    lines.add(
        "identification",
        QByteArray(reinterpret_cast<const char*>(&identification), sizeof identification).toHex());
    return lines.text();
}

std::string answersOf(SCardDriverG1& card)
{
    Lines lines;
    const auto days = card.getActivities();
    addDays(lines, days);
    for (const auto& vehicle : card.getVehiclesUsed())
        addVehicle(lines, vehicle, {});
    addIncidents(lines, "event", card.getEvents());
    addIncidents(lines, "fault", card.getFaults());
    lines.add("first", card.getDateOfFirstActivity());
    lines.add("last", card.getDateOfLastActivity());
    for (const auto& day : days) {
        const QDate date = day.date.date();
        int minutes[5];
        const bool found =
            card.getDayStatistics(date, minutes[0], minutes[1], minutes[2], minutes[3], minutes[4]);
        lines.add("statistics", date, found, minutes[0], minutes[1], minutes[2], minutes[3], minutes[4]);
        lines.add(
            "remaining", card.getRemainingDrivingTimeOfDay(date), card.getRemainingDrivingTimeOfWeek(date),
            card.getRemainingExtendedDrivingTimeOfWeek(date), card.getRemainingReducedRestTimeOfWeek(date),
            card.getTimeToNextBreak(date));
    }
    addPlaces(lines, card.getPlaces());
    addConditions(lines, card.getSpecificConditions());
    addSingleRecords(lines, card.getCurrentUse(), card.getControlActivity(), card.getDrivingLicence());
    return lines.text();
}

std::string secondAnswersOf(const SCardDriverG2& card)
{
    Lines lines;
    addDays(lines, card.getActivitiesG2());
    for (const auto& vehicle : card.getVehiclesUsedG2())
        addVehicle(lines, vehicle, vehicle.vehicleIdentificationNumber);
    addIncidents(lines, "event", card.getEventsG2());
    addIncidents(lines, "fault", card.getFaultsG2());
    addPlaces(lines, card.getPlacesG2());
    addConditions(lines, card.getSpecificConditionsG2());
    addSingleRecords(lines, card.getCurrentUseG2(), card.getControlActivityG2(), card.getDrivingLicenceG2());
    for (const scard::VehicleUnit& unit : card.getVehicleUnits())
        lines.add("unit", unit.time, unit.manufacturerCode, unit.deviceId, unit.softwareVersion);
    for (const scard::GnssPlace& place : card.getGnssPlaces())
        lines.add("gnss", place.time, textOf(place.position), place.odometer);
    for (const scard::BorderCrossing& crossing : card.getBorderCrossings())
        lines.add(
            "border", textOf(crossing.left), textOf(crossing.entered), textOf(crossing.position),
            crossing.odometer);
    for (const scard::LoadUnloadOperation& operation : card.getLoadUnloadOperations())
        lines.add(
            "load", operation.time, operation.operation, textOf(operation.position), operation.odometer);
    for (const scard::LoadTypeEntry& entry : card.getLoadTypeEntries())
        lines.add("loadtype", entry.time, entry.loadType);
    return lines.text();
}

std::string answersOf(const scard::SCardWorkshopG1& card)
{
    Lines lines;
    lines.add("holder", card.getCardHolderName(), bytesOf(card.getCardIdentification()));
    addCalibrations(lines, card.getCalibrationCounters(), card.getCalibrations());
    return lines.text();
}

std::string secondAnswersOf(const scard::SCardWorkshopG2& card)
{
    Lines lines;
    lines.add("holder", bytesOf(card.getCardIdentificationG2()));
    addCalibrations(lines, card.getCalibrationCountersG2(), card.getCalibrationsG2());
    for (const scard::CalibrationAddData& each : card.getCalibrationAddData())
        lines.add(
            "more", each.oldTime, each.vehicleIdentificationNumber, each.defaultLoadType,
            textOf(each.country), each.countryTime);
    return lines.text();
}

std::string answersOf(const scard::SCardCompanyG1& card)
{
    return activitiesText(card.getCompanyActivities());
}

std::string secondAnswersOf(const scard::SCardCompanyG2& card)
{
    Lines lines;
    lines.add("holder", card.getCardHolderName(), bytesOf(card.getCardIdentification()));
    return activitiesText(card.getCompanyActivitiesG2(), lines);
}

int countOf(const std::string& answers, const std::string& name)
{
    int count = 0;
    const QStringList lines = QString::fromStdString(answers).split(QLatin1Char('\n'));
    for (const QString& line : lines)
        count += line.startsWith(QString::fromStdString(name) + QLatin1Char(' ')) ? 1 : 0;
    return count;
}

} // namespace test
