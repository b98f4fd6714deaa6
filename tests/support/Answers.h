#pragma once

#include <scard/SCardCompanyG1.h>
#include <scard/SCardCompanyG2.h>
#include <scard/SCardDriverG1.h>
#include <scard/SCardDriverG2.h>
#include <scard/SCardWorkshopG1.h>
#include <scard/SCardWorkshopG2.h>

#include <string>

// Everything that a card object answers, as text that can be compared and read.

namespace test {

/// Who and what the card is.
std::string identityOf(scard::SCardDriverG1& card);

/// Lists, figures and records of the first application.
std::string answersOf(scard::SCardDriverG1& card);

/// Lists and records of the second application.
std::string secondAnswersOf(const scard::SCardDriverG2& card);

/// Holder, counters and calibrations of the first application.
std::string answersOf(const scard::SCardWorkshopG1& card);

/// The same of the second application, and what version 2.2 adds.
std::string secondAnswersOf(const scard::SCardWorkshopG2& card);

/// Activities of the first application.
std::string answersOf(const scard::SCardCompanyG1& card);

/// Holder and activities of the second application.
std::string secondAnswersOf(const scard::SCardCompanyG2& card);

/// Lines of @p answers that begin with @p name.
int countOf(const std::string& answers, const std::string& name);

} // namespace test
