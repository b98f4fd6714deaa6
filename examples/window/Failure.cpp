#include "Failure.h"

#include <QStringList>

#include <iterator>

namespace {

QString sentenceOf(const QString& step, ReaderState behind)
{
    // These two come after all was read.
    if (step == QLatin1String("Failed at saving card data to file"))
        return Failure::tr(
            "The file could not be written. Make room in /tmp/, take the card out, put it in again and start "
            "once more.");
    if (step == QLatin1String("Failed at post download task"))
        return Failure::tr(
            "The file in /tmp/ is complete, but the card could not be told of the download. Put it in "
            "again and start once more.");
    switch (behind) {
    case ReaderState::NoService:
        return Failure::tr("The card service stopped before all was read. Start once more when it is back.");
    case ReaderState::NoReader:
        return Failure::tr("The reader was unplugged before all was read. Plug it in and start once more.");
    case ReaderState::NoCard:
        return Failure::tr(
            "The card was pulled out before all was read. Put it in again and start once more.");
    default:
        break;
    }
    if (step == QLatin1String("Failed at reading card information"))
        return Failure::tr("This does not look like a tachograph card.");
    return Failure::tr(
        "The card could not be read to its end. Take it out, put it in again and start once more.");
}

QString detailsOf(const aux::Error& error)
{
    QStringList lines;
    for (const aux::ErrorData& entry : error) {
        QString line = entry.getSource() + QStringLiteral(": ") + entry.getMessage().trimmed();
        if (entry.getId() != 0)
            line += QStringLiteral(" [%1]").arg(entry.getId(), 4, 16, QLatin1Char('0'));
        lines << line;
    }
    return lines.join(QLatin1Char('\n'));
}

} // namespace

Failure downloadFailure(const aux::Error& error, ReaderState behind)
{
    // The last entry names the step that failed, those before it say why.
    const QString step = std::prev(error.end())->getMessage();
    return {sentenceOf(step, behind), detailsOf(error)};
}

Failure incompleteFile()
{
    return {
        Failure::tr(
            "The card was pulled out before all was read, and its file lacks a part. Put it in again and "
            "start once more."),
        {}};
}
