#include "HtmlDays.h"
#include "HtmlStyle.h"
#include "HtmlText.h"
#include "Merged.h"
#include "Writers.h"

#include <QLocale>
#include <QTimeZone>

#include <algorithm>

namespace report {

namespace {

/// The value of a fact, as text; empty when there is no such fact.
QString factText(const FactGroup& group, const char* key)
{
    const auto found = std::find_if(group.facts.begin(), group.facts.end(), [key](const Fact& fact) {
        return fact.column.key == QLatin1String(key);
    });
    return found == group.facts.end() ? QString() : textOf(found->value, Zone::Utc);
}

/// Texts that say something, with @p separator between them.
QString joined(QStringList texts, const QString& separator)
{
    texts.removeAll(QString());
    return texts.join(separator);
}

QString counted(std::size_t count, const QString& one, const QString& many)
{
    return QString::number(count) + QLatin1Char(' ') + (count == 1 ? one : many);
}

/// The part of a column's title that columns of the same thing share: "vehicle unit" of "vehicle unit, type".
QString subject(const Column& column)
{
    const int comma = column.title.indexOf(QStringLiteral(", "));
    return comma < 0 ? QString() : column.title.left(comma);
}

/// For each column the subject that it shares with another one in small print; otherwise empty.
QStringList sharedSubjects(const Table& table)
{
    QStringList all;
    for (const Column& column : table.columns)
        all << (column.weight == Weight::Detail ? subject(column) : QString());
    QStringList shared;
    for (const QString& each : all)
        shared << (all.count(each) > 1 ? each : QString());
    return shared;
}

/// A value in small print, where decimals do not stand below each other.
QString detailText(const Value& value, Zone zone)
{
    if (const auto* number = std::get_if<double>(&value))
        return QLocale::c().toString(*number, 'f', QLocale::FloatingPointShortest);
    return textOf(value, zone);
}

/// True for a position's time that the row has before: taken when the thing happened it says nothing new.
bool repeatsMoment(const Table& table, const std::vector<Value>& row, std::size_t index)
{
    const auto here = row.begin() + static_cast<std::ptrdiff_t>(index);
    return table.columns[index].key == QLatin1String("position_time") &&
           std::find(row.begin(), here, *here) != here;
}

class HtmlWriter
{
  public:
    /// @param index which of the page's reports it is, for the names of its sections
    HtmlWriter(QTextStream& out, const Report& report, std::size_t index)
        : m_out(out), m_report(report), m_merged(merged(report)),
          m_prefix(QStringLiteral("file%1-").arg(index + 1))
    {}

    /// The holder or the company; the kind of card where neither is known.
    QString title() const
    {
        const QString holder = this->holder();
        return holder.isEmpty() ? kind() : holder;
    }

    QString titleWithKind() const { return joined({holder(), kind()}, QStringLiteral(", ")); }

    void writeLink() { link(QStringLiteral("card"), titleWithKind(), 0); }

    void write()
    {
        m_out << "<article>\n";
        writeHeader();
        writeContents();
        writeWarning();
        m_out << "<div class=\"facts\" id=\"" << m_prefix << "facts\">\n";
        for (const FactGroup& group : m_merged.groups)
            writeFacts(group);
        writeFacts(fileGroup());
        m_out << "</div>\n";
        if (m_merged.hasDays)
            writeDays();
        if (m_report.figures)
            writeFigures(*m_report.figures);
        else if (!m_merged.days.empty())
            note(QString::fromLatin1(noFigures));
        for (std::size_t i = 0; i < m_merged.tables.size(); ++i) {
            if (!m_merged.tables[i].rows.empty())
                writeTable(m_merged.tables[i], tableId(i));
        }
        writeEmptyTables();
        m_out << "</article>\n";
    }

  private:
    QString kind() const { return factText(m_report.card, "type"); }

    QString holder() const
    {
        for (const FactGroup& group : m_merged.groups) {
            if (group.key != QLatin1String("identification"))
                continue;
            const QString company = factText(group, "company_name");
            const QStringList names{factText(group, "surname"), factText(group, "first_names")};
            return company.isEmpty() ? joined(names, QStringLiteral(", ")) : company;
        }
        return QString();
    }

    static QString tableId(std::size_t index) { return QStringLiteral("table%1").arg(index + 1); }

    void link(const QString& id, const QString& text, std::size_t count)
    {
        m_out << "<li><a href=\"#" << m_prefix << id << "\">" << htmlText(text) << "</a>";
        if (count > 0)
            m_out << " <span>" << count << "</span>";
        m_out << "</li>";
    }

    void heading(const QString& id, const QString& title, const QString& remark)
    {
        m_out << "<h2 id=\"" << m_prefix << id << "\">" << htmlText(title) << " <span>" << htmlText(remark)
              << "</span></h2>\n";
    }

    void note(const QString& text) { m_out << "<p class=\"note\">" << htmlText(text) << "</p>\n"; }

    void writeHeader()
    {
        m_out << "<header id=\"" << m_prefix << "card\">\n";
        m_out << "<h1>" << htmlText(title()) << "</h1>\n";
        const QString generation = factText(m_report.card, "generation");
        const QString version = factText(m_report.card, "version");
        const QString versionText = version.isEmpty() ? QString() : QStringLiteral("version ") + version;
        m_out << "<p>" << htmlText(joined({kind(), generation, versionText}, QStringLiteral(", ")))
              << "</p>\n";
        m_out << "</header>\n";
    }

    void writeContents()
    {
        m_out << "<nav aria-label=\"Contents\"><ul>";
        link(QStringLiteral("facts"), QStringLiteral("Card and file"), 0);
        if (m_merged.hasDays)
            link(QStringLiteral("days"), QStringLiteral("Days"), m_merged.days.size());
        if (m_report.figures)
            link(QStringLiteral("figures"), QStringLiteral("Remaining times"), 0);
        for (std::size_t i = 0; i < m_merged.tables.size(); ++i) {
            const Table& table = m_merged.tables[i];
            if (!table.rows.empty())
                link(tableId(i), table.title, table.rows.size());
        }
        m_out << "</ul></nav>\n";
    }

    void writeWarning()
    {
        const QString missing = missingText(m_report);
        if (m_report.damage) {
            m_out
                << "<div class=\"warn\" role=\"note\">\n<p><strong>This file is damaged; what could be read "
                   "is shown.</strong></p>\n<p>"
                << htmlText(m_report.damage->message) << "</p>\n";
            if (!missing.isEmpty())
                m_out << "<p>" << htmlText(missing) << "</p>\n";
            m_out << "</div>\n";
        } else if (!missing.isEmpty()) {
            note(missing);
        }
        if (m_report.applications.empty())
            note(QString::fromLatin1(notRead));
    }

    /// What the file is, what of it is shown, and in which zone.
    FactGroup fileGroup() const
    {
        FactGroup group = m_report.card;
        group.title = QStringLiteral("Card and file");
        appendFact(group, "File", m_report.path);
        appendFact(group, "Size", sizeText(m_report));
        appendFact(group, "SHA-256", m_report.sha256);
        appendFact(group, "Signatures", signaturesText(m_report));
        appendFact(group, "Shown", rangeText());
        appendFact(group, "Times", timesText());
        return group;
    }

    QString rangeText() const
    {
        const Range& range = m_report.range;
        QStringList limits;
        if (range.from.isValid())
            limits << QStringLiteral("from ") + range.from.toString(Qt::ISODate);
        if (range.until.isValid())
            limits << QStringLiteral("until ") + range.until.toString(Qt::ISODate);
        return limits.isEmpty() ? QString() : QStringLiteral("only ") + limits.join(QLatin1Char(' '));
    }

    /// "Local time" says nothing to whom the page is sent.
    QString timesText() const
    {
        if (m_report.zone == Zone::Utc)
            return QStringLiteral("UTC");
        const QString zone = QString::fromLatin1(QTimeZone::systemTimeZoneId());
        return zoneName(m_report.zone) + (zone.isEmpty() ? QString() : QStringLiteral(" of ") + zone) +
               (m_merged.hasDays ? QStringLiteral("; days are those of UTC") : QString());
    }

    void writeFacts(const FactGroup& group)
    {
        m_out << "<section><h2>" << htmlText(group.title) << "</h2><dl>\n";
        for (const Fact& fact : group.facts) {
            if (isEmpty(fact.value))
                continue;
            m_out << "<div><dt>" << htmlText(fact.column.title) << "</dt><dd>"
                  << htmlText(textOf(fact.value, m_report.zone)) << "</dd></div>\n";
        }
        m_out << "</dl></section>\n";
    }

    void writeDays()
    {
        m_out << "<section>\n";
        heading(
            QStringLiteral("days"), QStringLiteral("Days"),
            counted(m_merged.days.size(), QStringLiteral("day"), QStringLiteral("days")) +
                QStringLiteral(", UTC"));
        writeHtmlDays(m_out, m_merged.days);
        m_out << "</section>\n";
    }

    void writeFigures(const Figures& figures)
    {
        m_out << "<section>\n";
        heading(
            QStringLiteral("figures"), QStringLiteral("Remaining times"),
            QStringLiteral("by the end of ") + figures.date.toString(Qt::ISODate));
        m_out
            << "<table class=\"figures\"><thead><tr><th>What is left</th><th></th><th>Rule</th></tr></thead>"
               "\n<tbody>\n";
        for (std::size_t i = 0; i < figures.facts.size(); ++i) {
            const Fact& fact = figures.facts[i];
            m_out << "<tr><th scope=\"row\">" << htmlText(fact.column.title) << "</th><td>"
                  << htmlText(textOf(fact.value, m_report.zone)) << "</td><td>" << htmlText(figures.rules[i])
                  << "</td></tr>\n";
        }
        m_out << "</tbody></table>\n";
        note(QString::fromLatin1(noVerdict));
        m_out << "</section>\n";
    }

    // Tables

    /// How the cells of a column are set; empty for those that are set as they come.
    static QString columnClass(Kind kind, int position)
    {
        if (isNumeric(kind))
            return QStringLiteral("n%1").arg(position);
        return kind == Kind::Code ? QStringLiteral("t%1").arg(position) : QString();
    }

    void writeTable(const Table& table, const QString& id)
    {
        m_out << "<section>\n";
        heading(
            id, table.title,
            counted(table.rows.size(), QStringLiteral("entry"), QStringLiteral("entries")) +
                QStringLiteral(", ") + zoneName(m_report.zone));
        QString titles;
        QStringList classes;
        int shown = 0;
        for (const Column& column : table.columns) {
            if (column.weight == Weight::Detail)
                continue;
            titles += QStringLiteral("<th>") + htmlText(column.title) + QStringLiteral("</th>");
            classes << columnClass(column.kind, ++shown);
        }
        m_out << "<div class=\"scroll\" tabindex=\"0\" role=\"region\" aria-labelledby=\"" << m_prefix << id
              << "\"><table class=\"" << joined(classes, QStringLiteral(" ")) << "\"><thead><tr>" << titles
              << "</tr></thead>\n<tbody>\n";
        const QStringList subjects = sharedSubjects(table);
        for (const std::vector<Value>& row : table.rows) {
            writeRow(table, row);
            const QString details = smallPrint(table, row, subjects);
            if (!details.isEmpty())
                m_out << "<tr><td colspan=" << shown << "><div>" << htmlText(details) << "</div></td></tr>\n";
        }
        m_out << "</tbody></table></div>\n</section>\n";
    }

    void writeRow(const Table& table, const std::vector<Value>& row)
    {
        m_out << "<tr>";
        for (std::size_t i = 0; i < row.size(); ++i) {
            if (table.columns[i].weight == Weight::Main)
                m_out << "<td>" << htmlText(textOf(row[i], m_report.zone)) << "</td>";
        }
        m_out << "</tr>\n";
    }

    /// What the row's less important columns say; those of the same subject name it once.
    QString smallPrint(const Table& table, const std::vector<Value>& row, const QStringList& subjects) const
    {
        QStringList parts;
        QString before;
        for (std::size_t i = 0; i < row.size(); ++i) {
            const Column& column = table.columns[i];
            if (column.weight == Weight::Main || isEmpty(row[i]) || repeatsMoment(table, row, i))
                continue;
            const QString text = detailText(row[i], m_report.zone);
            const QString& subject = subjects[static_cast<int>(i)];
            const QString property = column.title.mid(subject.size() + 2) + QLatin1Char(' ') + text;
            if (subject.isEmpty())
                parts << column.title + QStringLiteral(": ") + text;
            else if (subject == before)
                parts.last() += QStringLiteral(", ") + property;
            else
                parts << subject + QStringLiteral(": ") + property;
            before = subject;
        }
        return parts.join(QStringLiteral(" \u00B7 "));
    }

    void writeEmptyTables()
    {
        QStringList titles;
        for (const Table& table : m_merged.tables) {
            if (table.rows.empty())
                titles << table.title;
        }
        if (!titles.isEmpty())
            note(
                QStringLiteral("Nothing to show in: ") + titles.join(QStringLiteral(", ")) +
                QLatin1Char('.'));
    }

    QTextStream& m_out;
    const Report& m_report;
    const Merged m_merged;
    const QString m_prefix;
};

} // namespace

void writeHtml(QTextStream& out, const std::vector<Report>& reports)
{
    std::vector<HtmlWriter> writers;
    writers.reserve(reports.size());
    for (const Report& report : reports)
        writers.emplace_back(out, report, writers.size());
    const QString title = writers.size() == 1
                              ? writers.front().titleWithKind()
                              : counted(writers.size(), QStringLiteral("card"), QStringLiteral("cards"));

    out << "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
           "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; style-src "
           "'unsafe-inline'\">\n"
           "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n<title>"
        << htmlText(title) << "</title>\n<style>" << htmlStyle << "</style>\n</head>\n<body>\n";
    writeBandSigns(out);
    if (writers.size() > 1) {
        out << "<nav aria-label=\"Cards\"><ul>";
        for (HtmlWriter& writer : writers)
            writer.writeLink();
        out << "</ul></nav>\n";
    }
    out << "<main>\n";
    for (HtmlWriter& writer : writers)
        writer.write();
    out << "</main>\n</body>\n</html>\n";
}

} // namespace report
