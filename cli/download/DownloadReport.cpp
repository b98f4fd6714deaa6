#include "DownloadReport.h"

#include "../CardNames.h"
#include "../Console.h"
#include "../ErrorJson.h"
#include "../JsonValues.h"
#include "../verify/VerificationJson.h"
#include "../verify/VerificationText.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

constexpr double millisecondsPerSecond = 1000;

/// A number with its meaning, as "scard show --json" has them.
QJsonObject coded(int code, const QString& name)
{
    return {{"code", code}, {"name", name}};
}

QJsonValue cardJson(const std::optional<CardIdentity>& card)
{
    if (!card)
        return {};
    return QJsonObject{
        {"type", coded(static_cast<int>(card->type), cardTypeName(card->type))},
        {"generation", coded(card->secondGeneration ? 2 : 1, generationName(card->secondGeneration, false))},
        {"version", card->version2 ? QJsonValue("2.2") : QJsonValue()},
        {"chip_serial_number", textOrNull(card->chipSerialText())},
    };
}

QJsonValue failureJson(const std::optional<CardFailure>& failure)
{
    if (!failure)
        return {};
    return QJsonObject{
        {"message", failure->message},
        {"advice", textOrNull(failure->advice)},
        {"ef", textOrNull(failure->ef)},
        {"entries", entriesJson(failure->chain)},
    };
}

QByteArray oneLine(const QJsonObject& object)
{
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

void printSummary(const DownloadResult& result)
{
    if (result.file) {
        out() << "File: " << printable(result.file->path) << '\n'
              << "Size: " << result.file->size << " bytes\n"
              << "SHA-256: " << result.file->sha256 << '\n'
              << "Signatures: " << result.file->signatures << '\n';
    }
    if (result.verification)
        out() << "Verified: " << verdictSentence(*result.verification) << '\n';
    if (result.file && result.file->size == 0)
        out() << "Note: the file is empty; what is on a card of this kind is not downloaded.\n";
    if (result.file && result.durationMs) {
        const double seconds = static_cast<double>(*result.durationMs) / millisecondsPerSecond;
        out() << "Duration: " << QString::number(seconds, 'f', 1) << " s\n";
    }
}

/// What is not as it should be, beside the verdict on standard output.
void warnOfVerification(const DownloadResult& result)
{
    if (!result.verification || result.code < exitUnproven)
        return;
    const bool isAltered = result.verification->report.verdict == scard::verify::Verdict::Altered;
    err() << "scard: "
          << (isAltered ? "The file is not what its signatures say"
                        : "Not all of the file could be checked by its signatures")
          << ":\n";
    writeReasons(err(), *result.verification);
    if (isAltered)
        err() << "Download the card once more; when it stays so, keep both files.\n";
    err().flush();
}

/// The library goes on without EF_ICC and EF_IC, and without the first of two applications.
void warnOfUnreadEfs(const DownloadResult& result)
{
    if (!result.file || result.unreadEfs.isEmpty())
        return;
    err() << "scard: The card did not give " << result.unreadEfs.join(QStringLiteral(", "))
          << ": the file lacks what is there.\n"
             "Take the card out, put it in again and download it once more."
          << Qt::endl;
}

} // namespace

void printDownload(const DownloadResult& result, ReportStyle style)
{
    switch (style) {
    case ReportStyle::Text:
        printSummary(result);
        break;
    case ReportStyle::Json:
        printJson(downloadJson(result));
        break;
    case ReportStyle::Quiet:
        if (result.file)
            out() << result.file->path << '\n';
        break;
    }
    out().flush();
    warnOfUnreadEfs(result);
    warnOfVerification(result);
    if (result.failure)
        printCardFailure(*result.failure);
}

QByteArray downloadJson(const DownloadResult& result)
{
    QJsonObject json{
        {"format", "scard-download-1"},
        {"exit_code", result.code},
        {"card", cardJson(result.card)},
        {"holder", textOrNull(result.holder)},
        {"language", textOrNull(result.language)},
        {"unread_efs", QJsonArray::fromStringList(result.unreadEfs)},
        {"file", QJsonValue()},
        {"size_bytes", QJsonValue()},
        {"sha256", QJsonValue()},
        {"signatures", QJsonValue()},
        {"duration_seconds", QJsonValue()},
        {"downloaded_at", timeOrNull(result.downloadedAt)},
        {"verification", result.verification ? QJsonValue(verdictJson(*result.verification)) : QJsonValue()},
        {"failure", failureJson(result.failure)},
    };
    if (result.file) {
        json["file"] = result.file->path;
        json["size_bytes"] = result.file->size;
        json["sha256"] = result.file->sha256;
        json["signatures"] = result.file->signatures;
    }
    if (result.durationMs)
        json["duration_seconds"] = static_cast<double>(*result.durationMs) / millisecondsPerSecond;
    return oneLine(json);
}

QByteArray identificationJson(
    const std::optional<CardIdentity>& card, const std::optional<CardFailure>& failure,
    const QDateTime& seenAt)
{
    return oneLine(
        {{"format", "scard-card-1"},
         {"exit_code", failure ? failure->code : exitDone},
         {"card", cardJson(card)},
         {"seen_at", timeOrNull(seenAt)},
         {"failure", failureJson(failure)}});
}

void printJson(const QByteArray& json)
{
    out().setCodec("UTF-8");
    out() << QString::fromUtf8(json) << Qt::endl;
}
