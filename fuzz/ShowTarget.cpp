// `scard show` and `scard records` on a file's bytes, in all formats.
#include "InputFile.h"
#include "Target.h"

#include <cli/ImageFile.h>
#include <cli/report/ReadReport.h>
#include <cli/report/Writers.h>

#include <QJsonDocument>
#include <QTextStream>

#include <algorithm>

namespace {

/// A terminal must not be told anything by a card.
bool isHarmless(const QString& text)
{
    return std::none_of(text.begin(), text.end(), [](QChar character) {
        return (character.category() == QChar::Other_Control && character != QLatin1Char('\n')) ||
               character.category() == QChar::Other_Format;
    });
}

void write(const std::vector<report::Report>& reports)
{
    for (const report::Report& each : reports) {
        for (const int columns : {40, 120}) {
            QString text;
            QTextStream stream(&text);
            report::TextStyle style;
            style.columns = columns;
            report::writeText(stream, each, style);
            stream.flush();
            fuzz::expect(isHarmless(text), "a report for people has no control characters");
        }
    }
    for (const QString& table : report::csvTables()) {
        QString text;
        QTextStream stream(&text);
        report::writeCsv(stream, reports, table);
    }
    QString page;
    QTextStream stream(&page);
    report::writeHtml(stream, reports);
    stream.flush();
    fuzz::expect(!page.contains(QLatin1String("<script")), "a page runs nothing");

    const QJsonDocument document(report::toJson(reports));
    const QByteArray json = document.toJson(QJsonDocument::Compact);
    fuzz::expect(
        reports.empty() || QJsonDocument::fromJson(json) == document,
        "JSON can be read, and is what was written");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::discardDebugStream();
    const fuzz::InputFile file(data, size);
    const report::ReadResult result = report::readReport(file.path(), {}, report::Zone::Local);
    fuzz::expect(result.code == exitDone || !result.message.isEmpty(), "what is wrong is said");
    if (result.report)
        write({*result.report});

    const ImageFile records =
        imageFileOf(QByteArray(reinterpret_cast<const char*>(data), static_cast<int>(size)));
    fuzz::expect(records.records.size() <= size / 5 + 1, "there are no more records than have room");
    return 0;
}
