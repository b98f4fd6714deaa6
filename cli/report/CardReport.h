#pragma once

#include "Report.h"

#include <scard/SCardCompanyG1.h>
#include <scard/SCardDriverG1.h>
#include <scard/SCardWorkshopG1.h>

#include <vector>

namespace report {

// Every application of a card with all that the library tells of it, the first generation's first.
// @param image the same download, identified; what the card's object does not tell is read from its records

std::vector<Application> applicationsOf(scard::SCardDriverG1& driver, scard::SCardGeneric& image);
std::vector<Application> applicationsOf(const scard::SCardWorkshopG1& workshop, scard::SCardGeneric& image);
std::vector<Application> applicationsOf(const scard::SCardCompanyG1& company, scard::SCardGeneric& image);

/// Type, generation and chip of the card.
FactGroup cardFacts(scard::SCardGeneric& image);

/// The remaining times by the end of @p date, a day of the card's calendar.
Figures figuresOf(const scard::SCardDriverG1& driver, QDate date);

} // namespace report
