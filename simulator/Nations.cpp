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

/// Latitude and longitude of a town as degrees and minutes, DDMM and DDDMM.
struct Town
{
    int latitude;
    int longitude;
};

/// From 01 on, in the order of NationNumeric.
constexpr Town Towns[FirstGroupEnd] = {
    {4818, 1417}, {4120, 1949}, {4230, 131},  {4011, 4431}, {4024, 4952}, {5051, 421},  {4242, 2319},
    {4351, 1825}, {5354, 2734}, {4722, 832},  {3510, 3322}, {5005, 1425}, {5007, 841},  {5524, 1023},
    {4139, -53},  {5926, 2445}, {4851, 221},  {6010, 2456}, {4708, 931},  {6201, -646}, {5130, -8},
    {4143, 4447}, {4038, 2256}, {4730, 1903}, {4549, 1559}, {4528, 911},  {5321, -616}, {6409, -2156},
    {5110, 7126}, {4937, 608},  {5454, 2354}, {5657, 2406}, {3554, 1431}, {4344, 725},  {4701, 2852},
    {4200, 2126}, {5955, 1045}, {5205, 507},  {3843, -908}, {5224, 1655}, {4426, 2606}, {4356, 1227},
    {5545, 3737}, {5920, 1804}, {4809, 1707}, {4603, 1430}, {3757, 5823}, {4101, 2858}, {5027, 3031},
    {4154, 1227}, {4448, 2028}, {4226, 1916}, {4448, 2028}, {4118, 6914}, {3832, 6847}, {4252, 7435},
    {3147, 3513}};

constexpr int tenthsOfMinute(int degreesAndMinutes)
{
    return degreesAndMinutes / 100 * 600 + degreesAndMinutes % 100 * 10;
}

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

std::optional<Position> nationTown(std::uint8_t numeric)
{
    if (numeric == 0 || numeric > FirstGroupEnd) {
        return std::nullopt;
    }
    const Town& town = Towns[numeric - 1];
    return Position{tenthsOfMinute(town.latitude), tenthsOfMinute(town.longitude)};
}

} // namespace sim
