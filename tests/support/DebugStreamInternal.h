#pragma once

#include <QStringList>

// For the test programs' main() only.

namespace test {

void installDebugStream();
void beginDebugStream();

/// Warnings that nobody expected, and expected ones that did not come.
QStringList unexpectedMessages();

} // namespace test
