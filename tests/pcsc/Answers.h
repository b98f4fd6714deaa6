#pragma once

#include <scard/SCardDriverG1.h>
#include <scard/SCardDriverG2.h>

#include <string>

// Everything that a card object answers, as text that can be compared and read.

namespace test {

/// Who and what the card is.
std::string identityOf(scard::SCardDriverG1& card);

/// Lists, figures and records of the first application.
std::string answersOf(scard::SCardDriverG1& card);

/// Lists and records of the second application.
std::string secondAnswersOf(const scard::SCardDriverG2& card);

/// Lines of @p answers that begin with @p name.
int countOf(const std::string& answers, const std::string& name);

} // namespace test
