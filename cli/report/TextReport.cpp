#include "../Console.h"
#include "DayBand.h"
#include "Merged.h"
#include "Writers.h"

#include <QRegularExpression>

#include <algorithm>

namespace report {

namespace {

/// How a shade looks: a block, a letter where the output has no blocks, an ANSI colour.
struct Look
{
    ushort block;
    char letter;
    const char* colour;
};

constexpr Look looks[shadeCount] = {
    {u' ', ' ', "\x1b[90m"},     // unknown
    {0x00B7, '.', "\x1b[36m"},   // rest
    {0x2591, 'a', "\x1b[33m"},   // availability
    {0x2592, 'w', "\x1b[34;1m"}, // work
    {0x2588, 'D', "\x1b[31m"},   // driving
};
constexpr const char* paler = "\x1b[2m";
constexpr const char* bold = "\x1b[1m";
constexpr const char* plain = "\x1b[0m";

class TextWriter
{
  public:
    TextWriter(QTextStream& out, const Report& report, const TextStyle& style)
        : m_out(out), m_report(report), m_style(style), m_merged(merged(report))
    {}

    void write()
    {
        writeGroup(fileGroup());
        for (const FactGroup& group : m_merged.groups)
            writeGroup(group);
        if (m_merged.hasDays)
            writeDays();
        if (m_report.figures)
            writeFigures(*m_report.figures);
        else if (!m_merged.days.empty())
            writeNote(QString::fromLatin1(noFigures));
        for (const Table& table : m_merged.tables)
            writeTable(table);
        if (m_report.applications.empty())
            writeNote(QString::fromLatin1(notRead));
        if (!m_report.missing.isEmpty())
            writeNote(missingText(m_report));
    }

  private:
    void heading(const QString& title)
    {
        m_out << '\n';
        if (m_style.hasColours)
            m_out << bold << title << plain << '\n';
        else
            m_out << title << '\n';
    }

    /// Columns that a text takes: those of its colours are none.
    static int width(QString text)
    {
        static const QRegularExpression colours(QStringLiteral("\x1b\\[[0-9;]*m"));
        return text.remove(colours).size();
    }

    /// Breaks a text into lines at its blanks, the first behind @p indent, the others behind @p further. A
    /// word that is longer than a line, a checksum, is broken too.
    void writeWrapped(const QString& text, const QString& indent = {}, const QString& further = {})
    {
        QString line = indent;
        bool isBegun = false;
        for (QString word : text.split(QLatin1Char(' '))) {
            if (isBegun && width(line) + 1 + width(word) > m_style.columns) {
                m_out << line << '\n';
                line = further;
                isBegun = false;
            }
            for (int room = m_style.columns - width(line); !isBegun && room > 0 && width(word) > room;) {
                m_out << line << word.left(room) << '\n';
                word = word.mid(room);
                line = further;
            }
            line += (isBegun ? QStringLiteral(" ") : QString()) + word;
            isBegun = true;
        }
        m_out << line << '\n';
    }

    void writeNote(const QString& text)
    {
        m_out << '\n';
        writeWrapped(text);
    }

    FactGroup fileGroup() const
    {
        FactGroup group = m_report.card;
        group.title = m_report.path;
        appendFact(group, "File", sizeText(m_report));
        appendFact(group, "SHA-256", m_report.sha256);
        appendFact(group, "Signatures", signaturesText(m_report));
        return group;
    }

    void writeGroup(const FactGroup& group)
    {
        constexpr int indent = 2;
        heading(printable(group.title));
        int longest = 0;
        for (const Fact& fact : group.facts)
            longest = std::max(longest, fact.column.title.size());
        for (const Fact& fact : group.facts) {
            if (isEmpty(fact.value))
                continue;
            const QString text = printable(textOf(fact.value, m_report.zone));
            const QString title = fact.column.title.leftJustified(longest);
            // On a narrow terminal a long text stands on a line of its own.
            if (indent + longest + 2 + text.size() <= m_style.columns) {
                m_out << "  " << title << "  " << text << '\n';
                continue;
            }
            m_out << "  " << title.trimmed() << '\n';
            writeWrapped(text, QStringLiteral("    "), QStringLiteral("    "));
        }
    }

    // Days

    static constexpr int dateWidth = 10;
    static constexpr int sumWidth = 7;
    static constexpr int sumsWidth = shadeCount * sumWidth;

    /// As many pieces of a day as the line has room for.
    int bandCells() const
    {
        const int room = m_style.columns - dateWidth - 1 - sumsWidth;
        for (const int cells : {96, 72, 48, 24}) {
            if (cells <= room)
                return cells;
        }
        return 24;
    }

    /// On a narrow terminal the sums stand on a line of their own.
    bool sumsBesideBand() const { return m_style.columns >= dateWidth + 1 + bandCells() + sumsWidth; }

    QString bandText(const Day& day) const
    {
        QString text;
        const Stretch* before = nullptr;
        const std::vector<Stretch> cells = band(day, bandCells());
        for (const Stretch& cell : cells) {
            const Look& look = looks[static_cast<std::size_t>(cell.shade)];
            if (m_style.hasColours && !(before && before->looksLike(cell)))
                text += QLatin1String(plain) + QLatin1String(look.colour) +
                        QLatin1String(cell.isOpen ? paler : "");
            text += m_style.hasShades ? QChar(look.block) : QLatin1Char(look.letter);
            before = &cell;
        }
        return m_style.hasColours ? text + QLatin1String(plain) : text;
    }

    QString legend() const
    {
        QStringList names;
        for (int index = 0; index < shadeCount; ++index) {
            const Look& look = looks[index];
            const QChar sign = m_style.hasShades ? QChar(look.block) : QLatin1Char(look.letter);
            QString text = sign == QLatin1Char(' ') ? QStringLiteral("blank") : QString(sign);
            if (m_style.hasColours)
                text = QLatin1String(look.colour) + text + QLatin1String(plain);
            names << text + QLatin1Char(' ') + shadeName(static_cast<Shade>(index));
        }
        return names.join(QStringLiteral(", "));
    }

    /// Hours above the band, one every two or three hours, as they fit.
    QString hours() const
    {
        const int cellsAnHour = bandCells() / 24;
        const int hoursApart = cellsAnHour > 2 ? 2 : 3;
        QString line;
        for (int hour = 0; hour < 24; hour += hoursApart)
            line += QString::number(hour).leftJustified(cellsAnHour * hoursApart);
        return line;
    }

    void writeDays()
    {
        heading(QStringLiteral("Days (00:00 to 24:00 UTC): %1").arg(m_merged.days.size()));
        if (m_merged.days.empty())
            return;
        writeWrapped(legend(), QStringLiteral("  "), QStringLiteral("  "));
        QString sums;
        for (const ShadeName& each : shadeNames)
            sums += QString::fromLatin1(each.shortHeading).rightJustified(sumWidth);
        m_out << QString(dateWidth + 1, QLatin1Char(' ')) << hours();
        m_out << (sumsBesideBand() ? QString() : QStringLiteral("\n")) << sums << '\n';
        bool hasOpen = false;
        for (const MergedDay& merged : m_merged.days) {
            writeDay(merged.day);
            if (!merged.onlyIn.isEmpty())
                m_out << "    (so " << onlyInText(merged.onlyIn) << ")\n";
            hasOpen = hasOpen || (!merged.day.periods.empty() && !merged.day.periods.back().hasEnd);
        }
        if (hasOpen)
            writeWrapped(QString::fromLatin1(openEnd));
    }

    void writeDay(const Day& day)
    {
        m_out << day.date.toString(Qt::ISODate) << ' ' << bandText(day);
        if (!sumsBesideBand())
            m_out << '\n';
        for (const ShadeName& each : shadeNames)
            m_out << hoursAndMinutes(day.*each.sum).rightJustified(sumWidth);
        m_out << '\n';
    }

    void writeFigures(const Figures& figures)
    {
        heading(QStringLiteral("Remaining times by the end of %1").arg(figures.date.toString(Qt::ISODate)));
        for (std::size_t i = 0; i < figures.facts.size(); ++i) {
            const Fact& fact = figures.facts[i];
            writeWrapped(
                QStringLiteral("%1: %2 (%3)")
                    .arg(fact.column.title, textOf(fact.value, m_report.zone), figures.rules[i]),
                QStringLiteral("  "), QStringLiteral("      "));
        }
        writeWrapped(QString::fromLatin1(noVerdict));
    }

    // Tables

    void writeTable(const Table& table)
    {
        heading(
            QStringLiteral("%1 (%2): %3").arg(table.title, zoneName(m_report.zone)).arg(table.rows.size()));
        if (table.rows.empty())
            return;
        std::vector<std::size_t> shown;
        std::vector<int> widths;
        for (std::size_t i = 0; i < table.columns.size(); ++i) {
            if (table.columns[i].weight == Weight::Detail)
                continue;
            int width = table.columns[i].title.size();
            for (const std::vector<Value>& row : table.rows)
                width = std::max(width, textOf(row[i], m_report.zone).size());
            shown.push_back(i);
            widths.push_back(width);
        }
        QStringList titles;
        for (const std::size_t column : shown)
            titles << table.columns[column].title;
        writeRow(titles, table, shown, widths);
        for (const std::vector<Value>& row : table.rows) {
            QStringList cells;
            for (const std::size_t column : shown)
                cells << printable(textOf(row[column], m_report.zone));
            writeRow(cells, table, shown, widths);
        }
    }

    /// A row that is too long for the terminal goes on below, further in; all rows at the same column.
    void writeRow(
        const QStringList& cells, const Table& table, const std::vector<std::size_t>& shown,
        const std::vector<int>& widths)
    {
        QString line = QStringLiteral("  ");
        bool isFirst = true;
        for (std::size_t i = 0; i < shown.size(); ++i) {
            const Kind kind = table.columns[shown[i]].kind;
            const QString& cell = cells[static_cast<int>(i)];
            const QString text =
                isNumeric(kind) ? cell.rightJustified(widths[i]) : cell.leftJustified(widths[i]);
            if (!isFirst && line.size() + 2 + widths[i] > m_style.columns) {
                m_out << trimmedRight(line) << '\n';
                line = QStringLiteral("      ");
                isFirst = true;
            }
            line += (isFirst ? QString() : QStringLiteral("  ")) + text;
            isFirst = false;
        }
        m_out << trimmedRight(line) << '\n';
    }

    static QString trimmedRight(QString text)
    {
        while (text.endsWith(QLatin1Char(' ')))
            text.chop(1);
        return text;
    }

    QTextStream& m_out;
    const Report& m_report;
    const TextStyle m_style;
    const Merged m_merged;
};

} // namespace

void writeText(QTextStream& out, const Report& report, const TextStyle& style)
{
    TextWriter(out, report, style).write();
}

} // namespace report
