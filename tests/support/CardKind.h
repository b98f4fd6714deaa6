#pragma once

#include "DownloadScript.h"

#include <iosfwd>
#include <vector>

namespace test {

/// One kind of card, with few records: what happens at a command does not depend on how many there are.
struct CardKind
{
    /// An EF of the generation that the class is for, and the debug stream's words when it cannot be read.
    struct FailureText
    {
        unsigned short fid;
        const char* text;
    };

    const char* name;
    sim::CardDescription card;
    std::vector<Step> steps;

    /// The whole error of a download that ends at @p step because of @p cause.
    Chain (*chain)(const Step& step, const Entry& cause);

    /// The image, of the first application as much as was read before the EF @p firstNotRead.
    sim::Bytes (*image)(const sim::CardDescription& card, unsigned int firstNotRead);

    bool secondGeneration;
    unsigned short writtenFid; ///< EF that is written behind the download; 0 for none
    std::vector<FailureText> texts;

    /// The error of saving a file without content.
    Chain nothingToSave() const;

    bool isCompany() const { return writtenFid == 0; }
};

void PrintTo(const CardKind& kind, std::ostream* stream);

CardKind driverKind();
CardKind driverG2Kind();
CardKind driverV2Kind();
CardKind workshopKind();

/// With so many calibrations that they are read by the command for large EFs.
CardKind workshopG2Kind();

CardKind workshopV2Kind();
CardKind companyKind();
CardKind companyG2Kind();
CardKind companyV2Kind();

} // namespace test
