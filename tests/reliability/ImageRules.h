#pragma once

#include <cli/Downloads.h>
#include <support/ErrorChain.h>

#include <QByteArray>

#include <iosfwd>
#include <map>
#include <optional>
#include <set>
#include <utility>
#include <vector>

// What a reading takes from an image, and what must come of it: written down apart from the library.

namespace test {

/// Where the payload of a record lies.
struct Taken
{
    int start = 0;
    int length = 0;

    bool operator==(const Taken& other) const { return start == other.start && length == other.length; }
    bool operator<(const Taken& other) const
    {
        return std::pair(start, length) < std::pair(other.start, other.length);
    }
};

/// An EF and its record's type: 0 in the first application, 2 in the second.
using EfKey = std::pair<unsigned int, unsigned int>;

/// The records that a reading takes.
struct Selection
{
    std::map<EfKey, Taken> efs;
    std::set<unsigned int> types; ///< of all whole records

    bool hasSecond() const { return types.count(2) > 0; }
};

/// The numbers of all EFs that a tachograph card has.
const std::vector<unsigned int>& knownEfs();

/// The first whole record of each EF and type counts. A record that ends behind the file is none: reading
/// goes on behind its header.
Selection selectionOf(const QByteArray& file);

bool isCompany(const CardFile& download);

/// EFs without which an application of a card cannot be read, in the order in which they are read.
std::vector<unsigned int> neededEfs(const CardFile& download, bool isSecond);

/// The error of reading an image of @p download that was damaged so that @p left is what a reading takes;
/// none where the damage changed what says how long the EFs are. The bytes that were asked for are left out
/// of it.
/// @param good selectionOf() the undamaged file
std::optional<Chain> expectedFailure(const CardFile& download, const Selection& good, const Selection& left);

/// @p failure without the numbers of bytes that were asked for.
Chain withoutRequested(Chain failure);

/// The error of an image that lacks an EF.
Chain missingEf(unsigned int fid);

/// The error of an image in which an EF has @p length bytes, as withoutRequested() gives it.
Chain shortEf(int length);

/// The error of an image that has no application.
Chain noApplication(bool isTooShort);

void PrintTo(const CardFile& download, std::ostream* stream);

} // namespace test
