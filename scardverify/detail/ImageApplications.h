#pragma once

#include "Findings.h"

#include <QByteArray>

#include <vector>

namespace scard::verify::detail {

/// A data record and the signature behind it.
struct DataRecord
{
    long long offset = 0; ///< of the header, bytes from the start of the image
    unsigned short fid = 0;
    QByteArray payload;             ///< points into the image
    QByteArray signature;           ///< points into the image; empty when there is none
    long long signatureOffset = -1; ///< of its record's header; -1 when there is none
};

/// A signature record that no data record stands before.
struct LooseSignature
{
    long long offset = 0;
    unsigned short fid = 0;
    unsigned short length = 0; ///< bytes of payload
};

/// What an image has of one application.
struct ImageApplication
{
    Generation generation = Generation::First;
    std::vector<DataRecord> records; ///< in the order of the file
    std::vector<LooseSignature> looseSignatures;

    /// The first record of an EF, which is the one that readers take; null when there is none.
    const DataRecord* find(unsigned short fid) const;
};

/// An image, sorted.
struct ImageApplications
{
    std::vector<ImageApplication> applications; ///< those that have a record, the first generation's first
    Findings findings;                          ///< about what belongs to no application
    std::vector<UncoveredPart> uncovered;       ///< records of no known type
};

/// Sorts the records of @p image, which must outlive the result. A record that is cut is left out.
ImageApplications applicationsOf(const QByteArray& image);

} // namespace scard::verify::detail
