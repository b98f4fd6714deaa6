#pragma once

#include "CardDownload.h"

#include <QByteArray>

/// How the result of a download is told.
enum class ReportStyle
{
    Text,
    Json, ///< one object on one line
    Quiet ///< the path of the finished file only
};

/// Tells @p result on standard output, a failure on standard error.
void printDownload(const DownloadResult& result, ReportStyle style);

/// One JSON object on one line, as docs/schema/download.schema.json says.
QByteArray downloadJson(const DownloadResult& result);

/// The same of a card that was only identified, as docs/schema/card.schema.json says.
QByteArray identificationJson(
    const std::optional<CardIdentity>& card, const std::optional<CardFailure>& failure,
    const QDateTime& seenAt);

/// Prints one line of JSON, in UTF-8 whatever the locale.
void printJson(const QByteArray& json);
