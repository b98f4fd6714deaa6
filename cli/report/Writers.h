#pragma once

#include "Report.h"

#include <QJsonObject>
#include <QString>
#include <QTextStream>

#include <vector>

// A report in each kind of output.

namespace report {

/// How the text view looks.
struct TextStyle
{
    int columns = 80;
    bool hasColours = false;
    bool hasShades = true; ///< the output can show shaded blocks; otherwise letters stand for them
};

void writeText(QTextStream& out, const Report& report, const TextStyle& style);

/// One object for all @p reports, by docs/schema/show.schema.json.
QJsonObject toJson(const std::vector<Report>& reports);

/// One table of all @p reports as RFC 4180 says, with a header line.
/// @return false when no report has a table of that key
bool writeCsv(QTextStream& out, const std::vector<Report>& reports, const QString& table);

/// The keys of all tables that a card of any kind can have.
QStringList csvTables();

/// A page that needs nothing beside itself.
void writeHtml(QTextStream& out, const std::vector<Report>& reports);

} // namespace report
