#pragma once

#include "../Arguments.h"

#include <scardverify/RootKey.h>

#include <vector>

/// The option that names files with root keys, the same in every command that checks signatures.
namespace RootKeys {

void add(Arguments& arguments);

bool anyGiven(const Arguments& arguments);

/// Reads the files. @return how the program ends already: after one that is no root key was named; empty
/// when the command may go on.
std::optional<ExitCode> read(const Arguments& arguments, std::vector<scard::verify::RootKey>& roots);

} // namespace RootKeys
