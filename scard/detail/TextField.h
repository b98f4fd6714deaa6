#pragma once

#include <QString>

#include <cstddef>

namespace scard::detail {

/// Decodes the characters of a card's text field.
///
/// @param codePage   part of ISO/IEC 8859; 0, 17 to 255 and parts that do not exist are taken as 1
/// @param characters the field's characters; decoding stops at the first zero byte
/// @param length     how many characters the field has
/// @return the text as it is, with the blanks that fill the field
QString decodeText(unsigned char codePage, const unsigned char* characters, std::size_t length);

} // namespace scard::detail
