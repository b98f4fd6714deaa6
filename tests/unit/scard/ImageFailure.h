#pragma once

#include <aux/Error.h>
#include <scard/SCardGeneric.h>
#include <support/ErrorChain.h>

#include <QString>
#include <QStringList>

#include <initializer_list>
#include <string>
#include <vector>

// What the steps say on an image, whole or with EFs that it lacks, as error and on the debug stream.

namespace test {

/// An EF as errors and the debug stream name it.
struct Ef
{
    unsigned short fid;
    const char* hexFid;
    const char* label;
    const char* failureText;
};

using Efs = std::vector<Ef>;

/// The labels of EFs in their order.
QStringList labelsOf(std::initializer_list<Efs> groups);

/// An error of the library's own entries with one id.
aux::Error libraryFailure(const std::vector<std::string>& messages, unsigned int id = 0);

/// The error for an EF that the image does not have.
aux::Error missing(const char* hexFid);

/// The entries for an EF that has @p length bytes where @p requested more are wanted.
Chain tooShort(std::size_t length, std::size_t requested);

/// A line of the debug stream: a text and the error behind it.
QString logged(const char* text, const aux::Error& failure);

/// The labels of EFs that went to the debug stream, in their order.
QStringList loggedLabels();

/// The last of them; empty when there is none.
QString lastLoggedLabel();

/// The last line of the debug stream; empty when there is none.
QString lastLogged();

/// The lines of the debug stream that tell of an error.
QStringList loggedErrors();

/// "=== Progress:" as emitProgress() writes it; empty when it writes nothing.
QString progressOf(scard::SCardGeneric& card);

// Why nothing is saved.
extern const Chain notOpened;
extern const Chain noValidData;
extern const Chain notAllowed;

/// Saves to an open file, to which nothing may be written; what saveToFile() says.
Chain saveToOpenFile(scard::SCardGeneric& card);

/// Saves to a file that is not open and must not come into being; what saveToFile() says.
Chain saveToClosedFile(scard::SCardGeneric& card);

} // namespace test
