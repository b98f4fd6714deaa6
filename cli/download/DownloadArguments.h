#pragma once

#include "../Arguments.h"
#include "CardDownload.h"
#include "DownloadReport.h"

/// The options that `scard download` and `scard watch` have in common.
namespace DownloadArguments {

void add(Arguments& arguments);

/// True when an option was given that says something of a download only.
bool anyGiven(const Arguments& arguments);

/// What the options say, into @p options and @p style. @return how the program ends already: after a wrong
/// option was named, or after a folder that cannot be written to; empty when the command may go on.
std::optional<ExitCode> read(const Arguments& arguments, DownloadOptions& options, ReportStyle& style);

/// How progress is shown beside a report of @p style: a bar on a terminal, lines elsewhere and where the
/// debug stream is shown, nothing where a program reads.
ProgressDisplay::Style progressStyle(ReportStyle style);

} // namespace DownloadArguments
