#include "Nations.h"

namespace sim {

namespace {

constexpr std::uint8_t FirstGroupEnd = 0x39;

/// Annex 1B, Appendix 1: NationAlpha in the order of NationNumeric.
constexpr const char* Alphas[FirstGroupEnd + 1] = {
    "",   "A",   "AL", "AND", "ARM", "AZ", "B",  "BG",  "BIH", "BY", "CH", "CY", "CZ",  "D",   "DK",
    "E",  "EST", "F",  "FIN", "FL",  "FR", "UK", "GE",  "GR",  "H",  "HR", "I",  "IRL", "IS",  "KZ",
    "L",  "LT",  "LV", "M",   "MC",  "MD", "MK", "N",   "NL",  "P",  "PL", "RO", "RSM", "RUS", "S",
    "SK", "SLO", "TM", "TR",  "UA",  "V",  "YU", "MNE", "SRB", "UZ", "TJ", "KG", "IL"};

const std::vector<NationProfile>& profiles()
{
    static const std::vector<NationProfile> all = {
        {0x01,
         "de",
         "Amt der Wiener Landesregierung",
         {"Gruber", "Hofer", "Pichler", "Steiner", "Bäck"},
         {"Franz", "Günther", "Maria", "Lukas"},
         "W-#### @",
         {0x0D, 0x18, 0x1A}},
        {0x07,
         "bg",
         "Изпълнителна агенция АА",
         {"Иванов", "Георгиев", "Димитров", "Петров"},
         {"Георги", "Иван", "Николай", "Стефан"},
         "CA #### @@",
         {0x29, 0x17}},
        {0x0C,
         "cs",
         "Magistrát města Brna",
         {"Novák", "Dvořák", "Černý", "Procházka"},
         {"Jiří", "Tomáš", "Petr", "Zdeněk"},
         "#B# ####",
         {0x0D, 0x28, 0x2D}},
        {0x0D,
         "de",
         "Kraftfahrt-Bundesamt",
         {"Müller", "Schäfer", "Köhler", "Weiß", "Petersen", "Lange"},
         {"Jürgen", "Uwe", "Karl-Heinz", "Sabine", "Dirk"},
         "HH-@@ ###",
         {0x26, 0x11, 0x28, 0x01}},
        {0x0F,
         "es",
         "Ministerio de Fomento",
         {"García Núñez", "Muñoz Ortega", "Fernández Gil", "Ibáñez"},
         {"José María", "Andrés", "Iñaki", "Lucía"},
         "#### @@@",
         {0x11, 0x27}},
        {0x11,
         "fr",
         "Imprimerie Nationale",
         {"Lefèvre", "Moreau", "Bérenger", "François"},
         {"Jérôme", "Benoît", "Hélène", "Luc"},
         "@@-###-@@",
         {0x06, 0x0F, 0x0D, 0x1A}},
        {0x12,
         "fi",
         "Liikenteen turvallisuusvirasto",
         {"Hämäläinen", "Mäkinen", "Korhonen", "Järvinen"},
         {"Jukka", "Päivi", "Seppo", "Yrjö"},
         "@@@-###",
         {0x2C, 0x10}},
        {0x15,
         "en",
         "DVLA",
         {"Thompson", "Hughes", "Baker", "O'Neill"},
         {"Graham", "Kevin", "Alison", "Stuart"},
         "@@## @@@",
         {0x1B, 0x11}},
        {0x17,
         "el",
         "Υπουργείο Μεταφορών",
         {"Παπαδόπουλος", "Γεωργίου", "Νικολάου", "Δημητρίου"},
         {"Γιώργος", "Νίκος", "Κώστας", "Ελένη"},
         "YX@ ####",
         {0x07, 0x24}},
        {0x1A,
         "it",
         "Camera di Commercio di Torino",
         {"Rossi", "Esposito", "Colombo", "Nicolò"},
         {"Giuseppe", "Niccolò", "Paola", "Marco"},
         "@@ ### @@",
         {0x11, 0x01, 0x0A}},
        {0x20,
         "lv",
         "Ceļu satiksmes drošības direkcija",
         {"Bērziņš", "Kalniņš", "Ozoliņš", "Liepa"},
         {"Jānis", "Andris", "Māris", "Līga"},
         "@@-####",
         {0x10, 0x1F}},
        {0x26,
         "nl",
         "Kiwa Register",
         {"de Vries", "Bakker", "Visser", "van den Berg"},
         {"Henk", "Joost", "Marieke", "René"},
         "##-B@@-#",
         {0x06, 0x0D}},
        {0x28,
         "pl",
         "Polska Wytwórnia Papierów Wart.",
         {"Kowalski", "Wiśniewski", "Wójcik", "Zieliński"},
         {"Stanisław", "Paweł", "Łukasz", "Grażyna"},
         "WX #####",
         {0x0D, 0x0C, 0x2D}},
        {0x2C,
         "sv",
         "Transportstyrelsen",
         {"Johansson", "Sjöberg", "Åkesson", "Lindström"},
         {"Göran", "Lars", "Åsa", "Björn"},
         "@@@ ###",
         {0x0E, 0x25, 0x12}},
    };
    return all;
}

} // namespace

std::string nationAlpha(std::uint8_t numeric)
{
    switch (numeric) {
    case 0xFD:
        return "EC";
    case 0xFE:
        return "EUR";
    case 0xFF:
        return "WLD";
    default:
        return numeric <= FirstGroupEnd ? Alphas[numeric] : "";
    }
}

NationProfile nationProfile(std::uint8_t numeric)
{
    for (const NationProfile& profile : profiles()) {
        if (profile.numeric == numeric) {
            return profile;
        }
    }
    return {
        numeric,
        "en",
        "Card Issuing Authority",
        {"Martin", "Novak", "Horvat", "Simon", "Weber"},
        {"Peter", "Anna", "Daniel", "Viktor"},
        "@@ ### @@",
        {numeric}};
}

} // namespace sim
