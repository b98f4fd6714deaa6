#include "Writers.h"

#include <algorithm>

namespace report {

namespace {

constexpr const char* lineEnd = "\r\n";

QString quoted(QString cell)
{
    const bool needsQuotes = std::any_of(cell.begin(), cell.end(), [](QChar letter) {
        return letter == QLatin1Char('"') || letter == QLatin1Char(',') || letter == QLatin1Char('\r') ||
               letter == QLatin1Char('\n');
    });
    if (!needsQuotes)
        return cell;
    return QLatin1Char('"') + cell.replace(QLatin1Char('"'), QLatin1String("\"\"")) + QLatin1Char('"');
}

void writeLine(QTextStream& out, const QStringList& cells)
{
    QStringList line;
    std::transform(cells.begin(), cells.end(), std::back_inserter(line), quoted);
    out << line.join(QLatin1Char(',')) << lineEnd;
}

/// A table with the file and the application that it is from.
struct Source
{
    QString path;
    QString application;
    Table table;
    Zone zone;
};

std::vector<Table> tablesOf(const Application& application)
{
    std::vector<Table> tables = application.tables;
    if (application.hasDays) {
        tables.push_back(dayTable(application.days));
        tables.push_back(periodTable(application.days));
    }
    return tables;
}

std::vector<Source> sourcesOf(const std::vector<Report>& reports, const QString& key)
{
    std::vector<Source> sources;
    for (const Report& report : reports) {
        for (const Application& application : report.applications) {
            for (const Table& table : tablesOf(application)) {
                if (table.key == key)
                    sources.push_back({report.path, application.name, table, report.zone});
            }
        }
    }
    return sources;
}

/// Every column that any of the tables has: those of the second generation say more.
std::vector<Column> columnsOf(const std::vector<Source>& sources)
{
    std::vector<Column> columns;
    for (const Source& source : sources) {
        for (const Column& column : source.table.columns) {
            const bool isKnown = std::any_of(
                columns.begin(), columns.end(), [&](const Column& each) { return each.key == column.key; });
            if (!isKnown)
                columns.push_back(column);
        }
    }
    return columns;
}

QStringList cellsOf(const Source& source, const std::vector<Value>& row, const std::vector<Column>& columns)
{
    QStringList cells{source.path, source.application};
    for (const Column& column : columns) {
        Value value;
        for (std::size_t i = 0; i < row.size(); ++i) {
            if (source.table.columns[i].key == column.key)
                value = row[i];
        }
        cells << csvOf(value, column.kind, source.zone);
    }
    return cells;
}

} // namespace

QStringList csvTables()
{
    return {
        QStringLiteral("days"),
        QStringLiteral("periods"),
        QStringLiteral("vehicles"),
        QStringLiteral("events"),
        QStringLiteral("faults"),
        QStringLiteral("places"),
        QStringLiteral("specific_conditions"),
        QStringLiteral("vehicle_units"),
        QStringLiteral("gnss_places"),
        QStringLiteral("border_crossings"),
        QStringLiteral("load_unload_operations"),
        QStringLiteral("load_type_entries"),
        QStringLiteral("calibrations"),
        QStringLiteral("seals"),
        QStringLiteral("calibration_additions"),
        QStringLiteral("company_activities")};
}

bool writeCsv(QTextStream& out, const std::vector<Report>& reports, const QString& table)
{
    const std::vector<Source> sources = sourcesOf(reports, table);
    if (sources.empty())
        return false;
    const std::vector<Column> columns = columnsOf(sources);
    QStringList header{QStringLiteral("file"), QStringLiteral("application")};
    for (const Column& column : columns) {
        for (const QString& suffix : csvSuffixes(column.kind))
            header << column.key + suffix;
    }
    writeLine(out, header);
    for (const Source& source : sources) {
        for (const std::vector<Value>& row : source.table.rows)
            writeLine(out, cellsOf(source, row, columns));
    }
    return true;
}

} // namespace report
