#include <aux/CountryCodes.h>

#include <array>

namespace aux {

namespace {

// By number; 0 is "no information available". 0x14 (Faroe Islands) still stands as FR in the
// official list and is not France, which is 0x11.
constexpr std::array<const char*, 0x3A> assignedCodes = {
    "",   "A",   "AL", "AND", "ARM", "AZ", "B",  "BG",  "BIH", "BY", "CH", "CY", "CZ",  "D",   "DK",
    "E",  "EST", "F",  "FIN", "FL",  "FR", "UK", "GE",  "GR",  "H",  "HR", "I",  "IRL", "IS",  "KZ",
    "L",  "LT",  "LV", "M",   "MC",  "MD", "MK", "N",   "NL",  "P",  "PL", "RO", "RSM", "RUS", "S",
    "SK", "SLO", "TM", "TR",  "UA",  "V",  "YU", "MNE", "SRB", "UZ", "TJ", "KG", "IL",
};

} // namespace

QString CountryCodes::countryCodeFromStateID(int stateId)
{
    switch (stateId) {
    case 0xFD:
        return QStringLiteral("EC"); // European Community
    case 0xFE:
        return QStringLiteral("EUR"); // rest of Europe
    case 0xFF:
        return QStringLiteral("WLD"); // rest of the world
    default:
        break;
    }
    if (stateId < 0 || stateId >= static_cast<int>(assignedCodes.size()))
        return QString();
    return QString::fromLatin1(assignedCodes[static_cast<std::size_t>(stateId)]);
}

} // namespace aux
