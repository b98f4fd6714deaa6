#pragma once

#include "FileRules.h"

#include <QByteArray>

#include <map>

namespace scard::verify::detail {

/// Bytes that the EFs of an application have, by their numbers: fixed, or by the record counts that the card
/// signs in its application identification. A signature names no EF, so the length is what tells EFs apart:
/// anyone may write the few bytes of EF_Card_Download and have the card sign them.
/// @param identification  EF_Application_Identification; empty when its counts cannot be taken
/// @param identification2 EF_Application_Identification_V2, as above
std::map<unsigned short, int>
fileLengths(const Expected& expected, const QByteArray& identification, const QByteArray& identification2);

} // namespace scard::verify::detail
