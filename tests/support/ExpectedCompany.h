#pragma once

#include "DownloadScript.h"

// The download of a company card.

namespace test {

/// What decides how long the download of a second-generation application is.
struct CompanyCountsG2
{
    unsigned int activities = 230;
    unsigned int certificateLength = 204; ///< of each of the three
    bool version2 = false;
};

/// Cards of these counts.
sim::CardDescription companyCard(unsigned int activities = 230);
sim::CardDescription companyCardG2(const CompanyCountsG2& counts, unsigned int firstActivities = 230);

std::vector<Step> expectedCompanySteps(unsigned int activities = 230);

/// Of a second-generation card, which holds a first-generation application beside its own.
std::vector<Step> expectedCompanyStepsG2(const CompanyCountsG2& counts, unsigned int firstActivities = 230);

/// The whole error of a download that ends at @p step because of @p cause.
Chain expectedCompanyChain(const Step& step, const Entry& cause);
Chain expectedCompanyChainG2(const Step& step, const Entry& cause);

/// The image of @p card, its records in order, the signatures of the first generation made with the card's
/// key; of the first application as much as was read before the EF @p firstNotRead, 0 for the whole.
sim::Bytes expectedCompanyImage(const sim::CardDescription& card, unsigned int firstNotRead = 0);
sim::Bytes expectedCompanyImageG2(const sim::CardDescription& card, unsigned int firstNotRead = 0);

} // namespace test
