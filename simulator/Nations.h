// Nations of the tachograph system: the codes, and what people, plates and authorities there are called.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace sim {

/// NationAlpha of a NationNumeric, without padding; empty for 00 and reserved codes.
std::string nationAlpha(std::uint8_t numeric);

/// Texts are UTF-8.
struct NationProfile
{
    std::uint8_t numeric;
    /// Two lower-case letters.
    std::string language;
    std::string authority;
    std::vector<std::string> surnames;
    std::vector<std::string> firstNames;
    /// '@' stands for a letter, '#' for a digit.
    std::string plate;
    /// Where its drivers go abroad.
    std::vector<std::uint8_t> neighbours;
};

/// A profile in plain ASCII where there is none for the nation.
NationProfile nationProfile(std::uint8_t numeric);

/// North and east are positive; in tenths of a minute.
struct Position
{
    int latitude = 0;
    int longitude = 0;
};

/// A town on the nation's trunk roads; nullopt for codes that are no single nation.
std::optional<Position> nationTown(std::uint8_t numeric);

} // namespace sim
