#include "../ErrorJson.h"
#include "../verify/VerificationJson.h"
#include "Writers.h"

#include <QJsonArray>

namespace report {

namespace {

QJsonObject rowJson(const Table& table, const std::vector<Value>& row, Zone zone)
{
    QJsonObject object;
    for (std::size_t i = 0; i < row.size(); ++i)
        object.insert(table.columns[i].key, jsonOf(row[i], zone));
    return object;
}

QJsonArray tableJson(const Table& table, Zone zone)
{
    QJsonArray rows;
    for (const std::vector<Value>& row : table.rows)
        rows.append(rowJson(table, row, zone));
    return rows;
}

QJsonObject factsJson(const std::vector<Fact>& facts, Zone zone)
{
    QJsonObject object;
    for (const Fact& fact : facts)
        object.insert(fact.column.key, jsonOf(fact.value, zone));
    return object;
}

/// Each day with its periods inside.
QJsonArray daysJson(const std::vector<Day>& days, Zone zone)
{
    const Table table = dayTable(days);
    QJsonArray result;
    for (std::size_t i = 0; i < days.size(); ++i) {
        QJsonObject day = rowJson(table, table.rows[i], zone);
        day.insert(QStringLiteral("periods"), tableJson(periodTable({days[i]}), zone));
        result.append(day);
    }
    return result;
}

QJsonObject applicationJson(const Application& application, Zone zone)
{
    QJsonObject object{
        {QStringLiteral("application"), application.name},
        {QStringLiteral("generation"), application.generation}};
    for (const FactGroup& group : application.groups)
        object.insert(
            group.key, group.facts.empty() ? QJsonValue() : QJsonValue(factsJson(group.facts, zone)));
    if (application.hasDays)
        object.insert(QStringLiteral("days"), daysJson(application.days, zone));
    for (const Table& table : application.tables)
        object.insert(table.key, tableJson(table, zone));
    return object;
}

QJsonValue figuresJson(const Report& report)
{
    if (!report.figures)
        return QJsonValue();
    QJsonObject object = factsJson(report.figures->facts, report.zone);
    object.insert(QStringLiteral("date"), report.figures->date.toString(Qt::ISODate));
    QJsonObject rules;
    for (std::size_t i = 0; i < report.figures->facts.size(); ++i)
        rules.insert(report.figures->facts[i].column.key, report.figures->rules[i]);
    object.insert(QStringLiteral("rules"), rules);
    object.insert(QStringLiteral("note"), QString::fromLatin1(noVerdict));
    return object;
}

QJsonValue damageJson(const Report& report)
{
    if (!report.damage)
        return QJsonValue();
    return QJsonObject{
        {QStringLiteral("message"), report.damage->message},
        {QStringLiteral("ef"), report.damage->ef.isEmpty() ? QJsonValue() : QJsonValue(report.damage->ef)},
        {QStringLiteral("entries"), entriesJson(report.damage->failure)}};
}

QJsonValue dateJson(QDate date)
{
    return date.isValid() ? QJsonValue(date.toString(Qt::ISODate)) : QJsonValue();
}

QJsonObject reportJson(const Report& report)
{
    QJsonArray applications;
    for (const Application& application : report.applications)
        applications.append(applicationJson(application, report.zone));
    return {
        {QStringLiteral("file"),
         QJsonObject{
             {QStringLiteral("path"), report.path},
             {QStringLiteral("size_bytes"), report.size},
             {QStringLiteral("sha256"), report.sha256},
             {QStringLiteral("records"), report.records},
             {QStringLiteral("signatures"), report.signatures},
             {QStringLiteral("is_cut"), report.isCut},
             {QStringLiteral("missing_efs"), QJsonArray::fromStringList(report.missing)}}},
        {QStringLiteral("range"),
         QJsonObject{
             {QStringLiteral("from"), dateJson(report.range.from)},
             {QStringLiteral("until"), dateJson(report.range.until)}}},
        {QStringLiteral("card"), factsJson(report.card.facts, report.zone)},
        {QStringLiteral("applications"), applications},
        {QStringLiteral("figures"), figuresJson(report)},
        {QStringLiteral("damage"), damageJson(report)},
        {QStringLiteral("verification"), verdictJson(report.verification)},
    };
}

} // namespace

QJsonObject toJson(const std::vector<Report>& reports)
{
    QJsonArray downloads;
    for (const Report& report : reports)
        downloads.append(reportJson(report));
    return {
        {QStringLiteral("format"), QStringLiteral("scard-show-1")}, {QStringLiteral("downloads"), downloads}};
}

} // namespace report
