#pragma once

#include "CodeNames.h"
#include "Report.h"

#include <scard/DriverCardValues.h>
#include <scard/SCardGeneric.h>

#include <cstddef>
#include <initializer_list>
#include <optional>

// What the reports of several card kinds have in common.

namespace report {

/// A card's applications by generation.
enum class Generation
{
    First = 1,
    Second = 2,
};

/// How the card calls the application: "TACHO" or "SMRDT".
QString applicationName(Generation generation);

/// Selects the application in the image of a card; an error when the image does not have it.
aux::Error selectApplication(scard::SCardGeneric& image, Generation generation);

/// An empty application of the name that the card gives it.
Application emptyApplication(Generation generation);

/// The record at the start of an EF of an image; nothing when the image does not hold it.
template <typename Record>
std::optional<Record> recordOf(scard::SCardGeneric& image, Generation generation, unsigned short fid)
{
    try {
        if (!selectApplication(image, generation).isEmpty())
            return std::nullopt;
        return image.readFrom<Record>(fid, 0, false);
    } catch (const aux::Error&) {
        return std::nullopt;
    }
}

/// Characters of the card up to the first zero byte, without the blanks that fill their field up.
template <std::size_t Count>
QString characters(const unsigned char (&bytes)[Count])
{
    const auto* text = reinterpret_cast<const char*>(bytes);
    return QString::fromLatin1(text, static_cast<int>(qstrnlen(text, Count))).trimmed();
}

/// A text field of the card, trimmed.
template <typename Field>
QString text(const Field& field)
{
    return scard::SCardGeneric::textfieldToString(field).trimmed();
}

scard::Nation nationOf(unsigned char numeric);

/// A moment by the seconds that the card keeps; null for "never" (0) and "not known" (FFFFFFFF).
QDateTime timeOf(scard::TimeReal time);
CardDay cardDay(scard::TimeReal time);

/// The last characters of a card number: how often it was issued, replaced, renewed.
QString cardIndexes(std::initializer_list<unsigned char> indexes);

/// Who issued the card, and how long it is valid.
template <typename Card>
void appendIssue(Fields<Card>& fields)
{
    // clang-format off
    fields.push_back(field<Card>("issuing_nation", "Issued in", [](const Card& c) { return nationOf(c.cardIssuingMemberState); }));
    fields.push_back(field<Card>("issuing_authority", "Issued by", [](const Card& c) { return text(c.cardIssuingAuthorityName); }));
    fields.push_back(field<Card>("issued", "Issued", [](const Card& c) { return cardDay(c.cardIssueDate); }));
    fields.push_back(field<Card>("valid_from", "Valid from", [](const Card& c) { return cardDay(c.cardValidityBegin); }));
    fields.push_back(field<Card>("valid_until", "Valid until", [](const Card& c) { return cardDay(c.cardExpiryDate); }));
    // clang-format on
}

/// The position in @p position of an item, five columns.
template <typename Item>
void appendPosition(Fields<Item>& fields, scard::GnssPosition Item::*position)
{
    fields.push_back(field<Item>(
        "latitude_degrees", "Latitude", [position](const Item& item) { return (item.*position).latitude; }));
    fields.push_back(field<Item>("longitude_degrees", "Longitude", [position](const Item& item) {
        return (item.*position).longitude;
    }));
    fields.push_back(field<Item>(
        "position_time", "Position taken", [position](const Item& item) { return (item.*position).time; },
        Weight::Detail));
    fields.push_back(field<Item>(
        "position_dilution", "Dilution of precision",
        [position](const Item& item) {
            const std::optional<int> tenths = (item.*position).accuracy;
            return tenths ? std::optional<double>(*tenths / 10.0) : std::nullopt;
        },
        Weight::Detail));
    fields.push_back(field<Item>(
        "position_authentication", "Position",
        [position](const Item& item) {
            const std::optional<int> status = (item.*position).authenticationStatus;
            return status ? std::optional<Code>(positionAuthentication(*status)) : std::nullopt;
        },
        Weight::Detail));
}

/// What the identification of a workshop's and of a company's card say alike.
template <typename Card>
void appendOwnerCard(Fields<Card>& fields)
{
    // clang-format off
    fields.push_back(field<Card>("language", "Language", [](const Card& c) { return characters(c.cardHolderPreferredLanguage); }));
    fields.push_back(field<Card>("card_number", "Card number", [](const Card& c) {
        const scard::OwnerCardNumber& number = c.cardNumber;
        return characters(number.ownerIdentification) +
               cardIndexes({number.cardConsecutiveIndex, number.cardReplacementIndex, number.cardRenewalIndex});
    }));
    // clang-format on
    appendIssue(fields);
}

} // namespace report
