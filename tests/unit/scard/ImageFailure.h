#pragma once

#include <aux/Error.h>

#include <QString>
#include <QStringList>

#include <string>
#include <vector>

// What reading an image says about EFs that it lacks, as error and on the debug stream.

namespace test {

/// An error of the library's own entries with one id.
aux::Error libraryFailure(const std::vector<std::string>& messages, unsigned int id = 0);

/// The error for an EF that the image does not have.
aux::Error missing(const char* hexFid);

/// A line of the debug stream: a text and the error behind it.
QString logged(const char* text, const aux::Error& failure);

/// The labels of EFs that went to the debug stream, in their order.
QStringList loggedLabels();

} // namespace test
