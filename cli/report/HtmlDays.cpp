#include "HtmlDays.h"

#include "DayBand.h"
#include "HtmlText.h"

#include <QLocale>

#include <algorithm>

namespace report {

namespace {

constexpr int bandHeight = 24;
constexpr int hoursBetweenMarks = 3;

/// The class that the style sheet has for a shade.
QLatin1Char classOf(const ShadeName& shade)
{
    return QLatin1Char(shade.name[0]);
}

QString clock(int minute)
{
    return hoursAndMinutes(minute).rightJustified(5, QLatin1Char('0'));
}

/// What is told of a stretch when the pointer stands on it.
QString stretchText(const Stretch& stretch)
{
    if (stretch.isOpen)
        return QStringLiteral("from %1 %2, end not known")
            .arg(clock(stretch.begin), shadeName(stretch.shade));
    return QStringLiteral("%1\u2013%2 %3, %4")
        .arg(
            clock(stretch.begin), clock(stretch.end), shadeName(stretch.shade),
            hoursAndMinutes(stretch.end - stretch.begin));
}

QString sumsText(const Day& day)
{
    QStringList sums;
    for (const ShadeName& each : shadeNames) {
        if (day.*each.sum != 0)
            sums << QLatin1String(each.name) + QLatin1Char(' ') + hoursAndMinutes(day.*each.sum);
    }
    return sums.isEmpty() ? QStringLiteral("no sums") : sums.join(QStringLiteral(", "));
}

/// The stretches that look alike in a group of their own: what they share is said once.
void writeGroup(QTextStream& out, const std::vector<Stretch>& all, const ShadeName& shade, bool isOpen)
{
    bool isEmpty = true;
    for (const Stretch& stretch : all) {
        if (stretch.shade != shade.shade || stretch.isOpen != isOpen)
            continue;
        if (isEmpty)
            out << "<g class=\"" << classOf(shade) << (isOpen ? " o" : "") << "\">";
        isEmpty = false;
        // Without quotes: a card of a year has some ten thousand of these.
        out << "<rect x=" << stretch.begin << " width=" << stretch.end - stretch.begin << "><title>"
            << stretchText(stretch) << "</title></rect>";
    }
    if (!isEmpty)
        out << "</g>";
}

void writeBand(QTextStream& out, const Day& day)
{
    out << "<svg role=img aria-label=\"" << sumsText(day) << "\" viewBox=\"0 0 " << minutesOfDay << ' '
        << bandHeight << "\" preserveAspectRatio=none>";
    const std::vector<Stretch> all = stretches(day);
    for (const ShadeName& each : shadeNames) {
        writeGroup(out, all, each, false);
        writeGroup(out, all, each, true);
    }
    out << "<use href=\"#h\"/></svg>";
}

void writeLegend(QTextStream& out)
{
    out << "<ul class=\"legend\">";
    const auto entry = [&out](const QString& classes, const QString& text) {
        out << "<li><svg aria-hidden=\"true\" viewBox=\"0 0 " << bandHeight << ' ' << bandHeight
            << "\"><g class=\"" << classes << "\"><rect width=\"" << bandHeight << "\"/></g></svg>" << text
            << "</li>";
    };
    for (const ShadeName& each : shadeNames)
        entry(QString(classOf(each)), QLatin1String(each.name));
    entry(QStringLiteral("d o"), QStringLiteral("paler: end not known"));
    out << "</ul>\n";
}

/// The application that alone has all of the days; empty when there is no such.
QString onlyApplication(const std::vector<MergedDay>& days)
{
    const QString& first = days.front().onlyIn;
    const bool isSame = std::all_of(
        days.begin(), days.end(), [&first](const MergedDay& each) { return each.onlyIn == first; });
    return isSame ? first : QString();
}

void writeHead(QTextStream& out)
{
    out << "<thead><tr><th>Date</th><th><div class=\"hours\">";
    for (int hour = 0; hour <= 24; hour += hoursBetweenMarks)
        out << "<span>" << hour << "</span>";
    out << "</div></th>";
    for (const ShadeName& each : shadeNames)
        out << "<th>" << each.heading << "</th>";
    out << "</tr></thead>\n";
}

void writeDay(QTextStream& out, const Day& day, const QString& remark)
{
    const bool beginsWeek = day.date.dayOfWeek() == Qt::Monday;
    out << (beginsWeek ? "<tr class=m>" : "<tr>") << "<th>"
        << QLocale::c().dayName(day.date.dayOfWeek(), QLocale::ShortFormat) << ' '
        << day.date.toString(Qt::ISODate);
    if (!remark.isEmpty())
        out << "<small>" << htmlText(remark) << "</small>";
    out << "</th><td>";
    writeBand(out, day);
    out << "</td>";
    for (const ShadeName& each : shadeNames) {
        const int minutes = day.*each.sum;
        out << (minutes == 0 ? "<td class=z>" : "<td>") << hoursAndMinutes(minutes) << "</td>";
    }
    out << "</tr>\n";
}

} // namespace

void writeBandSigns(QTextStream& out)
{
    out << "<svg class=\"signs\" aria-hidden=\"true\"><path id=\"h\" d=\"";
    for (int hour = hoursBetweenMarks; hour < 24; hour += hoursBetweenMarks)
        out << 'M' << hour * 60 << " 0v" << bandHeight;
    out << "\"/></svg>\n";
}

void writeHtmlDays(QTextStream& out, const std::vector<MergedDay>& days)
{
    if (days.empty())
        return;
    writeLegend(out);
    out << "<p class=\"note\">A day goes from 00:00 to 24:00 UTC, and so do the times in the bands. "
        << openEnd << "</p>\n";
    const QString application = onlyApplication(days);
    if (!application.isEmpty())
        out << "<p class=\"note\">These days are so " << htmlText(onlyInText(application)) << ".</p>\n";
    out << "<table class=\"days\">\n";
    writeHead(out);
    out << "<tbody>\n";
    for (const MergedDay& each : days) {
        const bool needsRemark = application.isEmpty() && !each.onlyIn.isEmpty();
        writeDay(out, each.day, needsRemark ? onlyInText(each.onlyIn) : QString());
    }
    out << "</tbody></table>\n";
}

} // namespace report
