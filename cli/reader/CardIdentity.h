#pragma once

#include <scard/SCardGeneric.h>

#include <QString>

#include <optional>

/// What a card is, as far as it could be told.
struct CardIdentity
{
    scard::SCardMeta::Type type = scard::SCardMeta::Reserved;
    bool secondGeneration = false;
    bool version2 = false;                  ///< version 2.2 of the second generation
    std::optional<unsigned int> chipSerial; ///< of EF_IC; empty when it was not read

    /// "driver card, second generation, version 2.2"
    QString text() const;

    /// "0A1B2C3D"; empty when the number is not known.
    QString chipSerialText() const;
};

/// What an identified card, or the image of one, is.
CardIdentity identityOf(const scard::SCardGeneric& card);

/// What the card is of which the library reports @p type while it is being downloaded.
CardIdentity identityWhileRead(scard::SCardMeta::Type type);
