#pragma once

#include "Findings.h"
#include "ImageApplications.h"
#include "TrustedRoot.h"

#include <QDateTime>

#include <vector>

namespace scard::verify::detail {

/// One application of the card, checked.
struct CheckedApplication
{
    ApplicationReport report;
    QByteArray card; ///< extended serial number: of the certificates, or else of EF_ICC; empty when unknown
    std::vector<UncoveredPart> uncovered;
};

/// Checks an application of @p image, from the root key to each record.
/// @param index of the application
CheckedApplication checkApplication(
    const ImageApplications& image, std::size_t index, const std::vector<TrustedRoot>& roots,
    const QDateTime& downloadedAt);

} // namespace scard::verify::detail
