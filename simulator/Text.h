// Text fields of a card: a code page byte, then characters of a part of ISO 8859, blank padded.
#pragma once

#include "Bytes.h"

#include <optional>
#include <string>

namespace sim {

/// Characters of a Name and of a VehicleRegistrationNumber, without their code page byte.
constexpr std::size_t NameLength = 35;
constexpr std::size_t PlateLength = 13;

/// The characters of a UTF-8 text in ISO 8859 part `codePage`; nullopt when the part does not exist or lacks
/// one of them, or the text is no UTF-8.
std::optional<Bytes> encodeText(const std::string& utf8, int codePage);

/// Code page byte and `length` characters; throws std::invalid_argument when the text cannot be encoded or is
/// longer.
Bytes textField(const std::string& utf8, int codePage, std::size_t length);
/// The default content of a text field: code page 0, blanks.
Bytes emptyTextField(std::size_t length);

/// ASCII text without code page byte, blank padded; throws std::invalid_argument for other characters or a
/// longer text.
Bytes asciiField(const std::string& text, std::size_t length);

} // namespace sim
