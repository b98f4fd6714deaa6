#include "HtmlDays.h"

#include "DayBand.h"
#include "Html.h"

#include <QLocale>

#include <algorithm>
#include <array>

namespace report {

namespace {

constexpr int bandHeight = 24;
constexpr int hoursBetweenMarks = 3;

/// The shades as people read them: what weighs most first. Their signs are the classes of the style sheet.
struct Sign
{
    Shade shade;
    char letter;
    const char* title;
    int Day::*sum;
};

constexpr std::array<Sign, shadeCount> signs{{
    {Shade::Driving, 'd', "Driving", &Day::driving},
    {Shade::Work, 'w', "Work", &Day::work},
    {Shade::Availability, 'a', "Available", &Day::availability},
    {Shade::Rest, 'r', "Rest", &Day::rest},
    {Shade::Unknown, 'u', "Unknown", &Day::unknown},
}};

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
    for (const Sign& sign : signs) {
        if (day.*sign.sum != 0)
            sums << shadeName(sign.shade) + QLatin1Char(' ') + hoursAndMinutes(day.*sign.sum);
    }
    return sums.isEmpty() ? QStringLiteral("no sums") : sums.join(QStringLiteral(", "));
}

/// The stretches that look alike in a group of their own: what they share is said once.
void writeGroup(QTextStream& out, const std::vector<Stretch>& all, const Sign& sign, bool isOpen)
{
    bool isEmpty = true;
    for (const Stretch& stretch : all) {
        if (stretch.shade != sign.shade || stretch.isOpen != isOpen)
            continue;
        if (isEmpty)
            out << "<g class=\"" << sign.letter << (isOpen ? " o" : "") << "\">";
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
    for (const Sign& sign : signs) {
        writeGroup(out, all, sign, false);
        writeGroup(out, all, sign, true);
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
    for (const Sign& sign : signs)
        entry(QString(QLatin1Char(sign.letter)), shadeName(sign.shade));
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
    for (const Sign& sign : signs)
        out << "<th>" << sign.title << "</th>";
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
    for (const Sign& sign : signs) {
        const int minutes = day.*sign.sum;
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
    out << "<p class=\"note\">A day goes from 00:00 to 24:00 UTC, and so do the times in the bands. The last "
           "change of a day is drawn to midnight and counts in no sum: the card does not say how long it "
           "lasts.</p>\n";
    const QString application = onlyApplication(days);
    if (!application.isEmpty())
        out << "<p class=\"note\">These days are so only in application " << htmlText(application)
            << ".</p>\n";
    out << "<table class=\"days\">\n";
    writeHead(out);
    out << "<tbody>\n";
    for (const MergedDay& each : days) {
        const bool needsRemark = application.isEmpty() && !each.onlyIn.isEmpty();
        writeDay(
            out, each.day, needsRemark ? QStringLiteral("only in application ") + each.onlyIn : QString());
    }
    out << "</tbody></table>\n";
}

} // namespace report
