#include "Arguments.h"
#include "Commands.h"
#include "Console.h"
#include "report/ReadReport.h"
#include "report/Writers.h"
#include "verify/RootKeys.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QSaveFile>

#include <algorithm>

namespace {

using report::Report;

/// What the arguments ask for.
struct Wishes
{
    QStringList files;
    bool asJson = false;
    QString csvTable;
    QString htmlPath;
    report::Range range;
    report::Zone zone = report::Zone::Local;
    std::vector<scard::verify::RootKey> roots;
};

void describe(Arguments& options)
{
    options.addFlag(QStringLiteral("json"), QStringLiteral("As JSON, with everything that is known."));
    options.addValue(
        QStringLiteral("csv"), QStringLiteral("table"),
        QStringLiteral("One table as CSV, with a row for each application of the card that says it: %1.")
            .arg(report::csvTables().join(QStringLiteral(", "))));
    options.addValue(
        QStringLiteral("html"), QStringLiteral("OUT"),
        QStringLiteral("As a page for a browser or a printer, into the file OUT; - is standard output."));
    options.addValue(
        QStringLiteral("from"), QStringLiteral("date"),
        QStringLiteral("Leave out what was before (2024-03-05)."));
    options.addValue(
        QStringLiteral("until"), QStringLiteral("date"),
        QStringLiteral("Leave out what came after that day."));
    options.addFlag(
        QStringLiteral("utc"),
        QStringLiteral(
            "Times in UTC, as the card keeps them, instead of local time. Days are always those of UTC."));
    RootKeys::add(options);
    options.addPositional(QStringLiteral("FILE..."), QStringLiteral("Downloads of cards."));
}

/// Takes a date from the option @p name; false when it is none.
bool takeDate(const Arguments& options, const QString& name, QDate& date)
{
    if (!options.isSet(name))
        return true;
    // Qt::ISODate would take any text behind the date.
    date = QDate::fromString(options.value(name), QStringLiteral("yyyy-MM-dd"));
    return date.isValid();
}

std::optional<ExitCode> takeWishes(const Arguments& options, Wishes& wishes)
{
    wishes.files = options.positional();
    wishes.asJson = options.isSet(QStringLiteral("json"));
    wishes.csvTable = options.value(QStringLiteral("csv"));
    wishes.htmlPath = options.value(QStringLiteral("html"));
    if (options.isSet(QStringLiteral("utc")))
        wishes.zone = report::Zone::Utc;
    if (wishes.files.isEmpty())
        return options.usageError(QStringLiteral("no file given."));
    const int formats = int(wishes.asJson) + int(options.isSet(QStringLiteral("csv"))) +
                        int(options.isSet(QStringLiteral("html")));
    if (formats > 1)
        return options.usageError(QStringLiteral("--json, --csv and --html exclude each other."));
    if (options.isSet(QStringLiteral("csv")) && !report::csvTables().contains(wishes.csvTable))
        return options.usageError(QStringLiteral("there is no table \"%1\"; %2.")
                                      .arg(wishes.csvTable, report::csvTables().join(QStringLiteral(", "))));
    if (options.isSet(QStringLiteral("html")) && wishes.htmlPath.isEmpty())
        return options.usageError(QStringLiteral("--html wants the name of a file."));
    for (const auto& [name, date] :
         {std::pair{"from", &wishes.range.from}, std::pair{"until", &wishes.range.until}}) {
        if (!takeDate(options, QString::fromLatin1(name), *date))
            return options.usageError(QStringLiteral("\"%1\" is no date; 2024-03-05 is one.")
                                          .arg(options.value(QString::fromLatin1(name))));
    }
    if (wishes.range.from.isValid() && wishes.range.until.isValid() && wishes.range.until < wishes.range.from)
        return options.usageError(QStringLiteral("--until is before --from."));
    return RootKeys::read(options, wishes.roots);
}

/// Why a page must not take the place of what stands at @p path; empty when it may. A slip of the hand must
/// not cost a download.
QString whyNoPage(const QString& path)
{
    const QFileInfo info(path);
    if (!info.exists())
        return QString();
    if (!info.isFile())
        return QStringLiteral("%1 is no ordinary file.").arg(path);
    QFile file(path);
    const QByteArray mark = QByteArrayLiteral("<!DOCTYPE html>");
    if (info.size() > 0 && (!file.open(QIODevice::ReadOnly) || file.read(mark.size()) != mark))
        return QStringLiteral("%1 exists and is no page; it is left as it is.").arg(path);
    return QString();
}

ExitCode writeHtmlFile(const std::vector<Report>& reports, const QString& path)
{
    if (path == QLatin1String("-")) {
        out().setCodec("UTF-8");
        report::writeHtml(out(), reports);
        return exitDone;
    }
    const QString reason = whyNoPage(path);
    if (!reason.isEmpty()) {
        err() << "scard: " << printable(reason) << "\nName another file for the page." << Qt::endl;
        return exitNotWritten;
    }
    QSaveFile file(path);
    const auto failed = [&file, &path] {
        err() << "scard: " << printable(path) << " could not be written: " << file.errorString() << '.'
              << Qt::endl;
        return exitNotWritten;
    };
    if (!file.open(QIODevice::WriteOnly))
        return failed();
    QTextStream stream(&file);
    stream.setCodec("UTF-8");
    report::writeHtml(stream, reports);
    stream.flush();
    return file.commit() ? exitDone : failed();
}

ExitCode write(const std::vector<Report>& reports, const Wishes& wishes)
{
    if (wishes.asJson) {
        out().setCodec("UTF-8");
        out() << QJsonDocument(report::toJson(reports)).toJson(QJsonDocument::Compact) << '\n';
        return exitDone;
    }
    if (!wishes.csvTable.isEmpty()) {
        out().setCodec("UTF-8");
        if (report::writeCsv(out(), reports, wishes.csvTable) || reports.empty())
            return exitDone;
        err() << "scard: no card of this kind keeps the table " << wishes.csvTable << '.' << Qt::endl;
        return exitUsage;
    }
    if (!wishes.htmlPath.isEmpty())
        return reports.empty() ? exitDone : writeHtmlFile(reports, wishes.htmlPath);
    report::TextStyle style;
    style.columns = outputColumns();
    style.hasColours = outputHasColours();
    style.hasShades = outputCanShow(QString::fromUtf8("\u00B7\u2591\u2592\u2588"));
    for (const Report& each : reports)
        report::writeText(out(), each, style);
    return exitDone;
}

} // namespace

ExitCode runShow(const QStringList& arguments)
{
    Arguments options(
        QStringLiteral("scard show"),
        QStringLiteral(
            "Shows what is on a download: whose card it is, and what it keeps. Of a damaged file what can "
            "be read is shown."));
    describe(options);
    if (const std::optional<ExitCode> end = options.read(arguments))
        return *end;
    Wishes wishes;
    if (const std::optional<ExitCode> end = takeWishes(options, wishes))
        return *end;

    ExitCode code = exitDone;
    std::vector<Report> reports;
    std::vector<report::ReadResult> failures;
    for (const QString& path : wishes.files) {
        report::ReadResult result = report::readReport(path, wishes.range, wishes.zone, wishes.roots);
        code = std::max(code, result.code);
        if (result.report)
            reports.push_back(*std::move(result.report));
        if (!result.message.isEmpty())
            failures.push_back(std::move(result));
    }
    code = std::max(code, write(reports, wishes));
    code = finishOutput(code);
    for (const report::ReadResult& failure : failures) {
        err() << "scard: " << printable(failure.message) << '\n' << failure.advice << Qt::endl;
        printChain(failure.failure);
    }
    return code;
}
