#pragma once

#include "../ExitCode.h"
#include "Report.h"

#include <QString>

#include <optional>

namespace report {

/// What came of one file.
struct ReadResult
{
    ExitCode code = exitDone;
    std::optional<Report> report; ///< as much as could be read; nothing when it is no card's download
    QString message;              ///< what is wrong, one sentence; empty when nothing is
    QString advice;               ///< what to do about it
    aux::Error failure;           ///< the library's entries
};

/// Reads the download at @p path, limited to @p range.
/// @param roots the keys that its certificates may lead to
ReadResult readReport(
    const QString& path, const Range& range, Zone zone,
    const std::vector<scard::verify::RootKey>& roots = {});

} // namespace report
