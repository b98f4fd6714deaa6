#include "CardReport.h"

#include "../CardNames.h"
#include "CardFields.h"

#include <scard/records/Fid.h>

namespace report {

namespace {

/// What identification tells of a card and its chip.
struct Chip
{
    scard::SCardMeta::Type type;
    bool isSecondGeneration;
    bool isVersion2_2;
    std::optional<scard::CardIccIdentification> icc;
    std::optional<scard::CardIcIdentification> ic;
};

template <std::size_t Count>
QString hexadecimal(const unsigned char (&bytes)[Count])
{
    return QString::fromLatin1(
        QByteArray(reinterpret_cast<const char*>(bytes), static_cast<int>(Count)).toHex().toUpper());
}

} // namespace

FactGroup cardFacts(scard::SCardGeneric& image)
{
    Chip chip{
        image.getCardType(), image.is2ndGeneneration(), image.is2_2Generation(), std::nullopt, std::nullopt};
    for (const Generation generation : {Generation::First, Generation::Second}) {
        if (!chip.icc)
            chip.icc = recordOf<scard::CardIccIdentification>(image, generation, scard::fidIcc);
        if (!chip.ic)
            chip.ic = recordOf<scard::CardIcIdentification>(image, generation, scard::fidIc);
    }
    const Fields<Chip> fields{
        field<Chip>(
            "type", "Kind",
            [](const Chip& c) {
                return Code{static_cast<int>(c.type), cardTypeName(c.type)};
            }),
        field<Chip>(
            "generation", "Generation",
            [](const Chip& c) {
                return Code{c.isSecondGeneration ? 2 : 1, generationName(c.isSecondGeneration, false)};
            }),
        field<Chip>(
            "version", "Version",
            [](const Chip& c) {
                return c.isVersion2_2 ? std::optional<QString>(QStringLiteral("2.2")) : std::nullopt;
            }),
        field<Chip>(
            "chip_serial_number", "Chip",
            [](const Chip& c) { return c.ic ? hexadecimal(c.ic->icSerialNumber) : QString(); },
            Weight::Detail),
        field<Chip>(
            "approval_number", "Type approval",
            [](const Chip& c) { return c.icc ? characters(c.icc->cardApprovalNumber) : QString(); },
            Weight::Detail),
        field<Chip>(
            "card_serial_number", "Card serial number",
            [](const Chip& c) {
                return c.icc ? hexadecimal(c.icc->cardExtendedSerialNumber.serialNumber) : QString();
            },
            Weight::Detail),
    };
    return makeFacts("card", "Card", chip, fields);
}

} // namespace report
