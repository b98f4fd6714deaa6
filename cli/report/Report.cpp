#include "Report.h"

#include <QTime>

#include <algorithm>

namespace report {

const char* const noVerdict =
    "These are simple remaining times by the rule beside each, reckoned from what is on the "
    "card; they are no legal verdict.";

const char* const noFigures =
    "Remaining times cannot be reckoned: the days of the first application are not in the file.";

const char* const notRead =
    "What cards of this kind keep is not read; scard records FILE lists the file's records.";

const char* const openEnd =
    "The last change of a day is drawn to midnight and counts in no sum: the card does not say how long it "
    "lasts.";

namespace {

QDate dateIn(const Value& value, Zone zone)
{
    if (const auto* time = std::get_if<QDateTime>(&value))
        return zone == Zone::Utc ? time->toUTC().date() : time->toLocalTime().date();
    if (const auto* day = std::get_if<CardDay>(&value))
        return day->time.toUTC().date();
    return QDate();
}

bool touches(const Range& range, QDate begin, QDate end)
{
    const bool endsBefore = range.from.isValid() && end.isValid() && end < range.from;
    const bool beginsBehind = range.until.isValid() && begin.isValid() && begin > range.until;
    return !endsBefore && !beginsBehind;
}

/// A period with the date of its day, as one row of the periods' table.
struct PeriodOfDay
{
    QDate date;
    Period period;
};

QDateTime momentOf(QDate date, int minute)
{
    return QDateTime(date, QTime(0, 0), Qt::UTC).addSecs(60LL * minute);
}

} // namespace

QString onlyInText(const QString& application)
{
    return QStringLiteral("only in application ") + application;
}

QString missingText(const Report& report)
{
    if (report.missing.isEmpty())
        return QString();
    return QStringLiteral("Not in the file, or too short: %1.")
        .arg(report.missing.join(QStringLiteral(", ")));
}

QString zoneName(Zone zone)
{
    return zone == Zone::Utc ? QStringLiteral("UTC") : QStringLiteral("local time");
}

QString sizeText(const Report& report)
{
    return QStringLiteral("%1 bytes, %2 records, %3 signatures")
        .arg(report.size)
        .arg(report.records)
        .arg(report.signatures);
}

QString signaturesText(const Report& report)
{
    const Verification& verification = report.verification;
    const bool isKnown =
        verification.valid > 0 || verification.report.verdict == scard::verify::Verdict::Altered;
    return isKnown ? verdictSentence(verification) : QString();
}

void limit(Report& report, const Range& range)
{
    report.range = range;
    for (Application& application : report.applications) {
        const auto isOutside = [&](const Day& day) { return !touches(range, day.date, day.date); };
        application.days.erase(
            std::remove_if(application.days.begin(), application.days.end(), isOutside),
            application.days.end());
        for (Table& table : application.tables) {
            const auto at = [](const std::vector<Value>& row, int column) {
                return column < 0 ? Value() : row.at(static_cast<std::size_t>(column));
            };
            const auto rowIsOutside = [&](const std::vector<Value>& row) {
                return !touches(
                    range, dateIn(at(row, table.begin), report.zone),
                    dateIn(at(row, table.end), report.zone));
            };
            table.rows.erase(
                std::remove_if(table.rows.begin(), table.rows.end(), rowIsOutside), table.rows.end());
        }
    }
}

Table dayTable(const std::vector<Day>& days)
{
    const Fields<Day> fields{
        field<Day>("date", "Date", [](const Day& day) { return day.date.toString(Qt::ISODate); }),
        field<Day>("driving_minutes", "Driving", [](const Day& day) { return Minutes{day.driving}; }),
        field<Day>("work_minutes", "Work", [](const Day& day) { return Minutes{day.work}; }),
        field<Day>(
            "availability_minutes", "Availability", [](const Day& day) { return Minutes{day.availability}; }),
        field<Day>("rest_minutes", "Rest", [](const Day& day) { return Minutes{day.rest}; }),
        field<Day>("unknown_minutes", "Unknown", [](const Day& day) { return Minutes{day.unknown}; }),
    };
    return makeTable("days", "Days", days, fields, "", "");
}

Table periodTable(const std::vector<Day>& days)
{
    std::vector<PeriodOfDay> periods;
    for (const Day& day : days) {
        for (const Period& period : day.periods)
            periods.push_back({day.date, period});
    }
    using Item = PeriodOfDay;
    const Fields<Item> fields{
        field<Item>("date", "Date", [](const Item& item) { return item.date.toString(Qt::ISODate); }),
        field<Item>(
            "begin", "Begin", [](const Item& item) { return momentOf(item.date, item.period.beginMinute); }),
        field<Item>(
            "end", "End",
            [](const Item& item) {
                return item.period.hasEnd ? momentOf(item.date, item.period.endMinute) : QDateTime();
            }),
        field<Item>(
            "duration_minutes", "Duration",
            [](const Item& item) {
                const int minutes = item.period.endMinute - item.period.beginMinute;
                return item.period.hasEnd ? std::optional<Minutes>(Minutes{minutes}) : std::nullopt;
            }),
        field<Item>("activity", "Activity", [](const Item& item) { return item.period.activity; }),
        field<Item>("slot", "Slot", [](const Item& item) { return item.period.slot; }),
        field<Item>(
            "driving_status", "Driving status", [](const Item& item) { return item.period.drivingStatus; }),
        field<Item>("card_status", "Card", [](const Item& item) { return item.period.cardStatus; }),
    };
    return makeTable("periods", "Periods", periods, fields, "begin", "end");
}

} // namespace report
