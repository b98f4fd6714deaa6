#pragma once

#include <scard/detail/EfTable.h>

#include <cstddef>
#include <vector>

// What an application's table says, against rows written down by hand.

namespace test {

/// Record size, fixed count (0 when something else counts), groups.
using ExpectedPieces = std::vector<std::vector<std::size_t>>;

struct ExpectedRow
{
    unsigned short fid;
    const char* name;
    const char* failureText;
    bool isSigned;
    bool optionalInImage;
    bool version2;
    ExpectedPieces pieces;
};

/// The rows that a download reads, in their order.
void expectRows(const scard::detail::EfTable& table, const std::vector<ExpectedRow>& expectedRows);

/// EF_ICC and EF_IC come with the identification.
void expectIdentificationRows(const scard::detail::EfTable& table);

void expectEverySavedEfIsReadOnce(const scard::detail::EfTable& table);

/// The EFs that say their length themselves.
std::vector<unsigned short> certificatesOf(const scard::detail::EfTable& table);

} // namespace test
