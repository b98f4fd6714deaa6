#pragma once

#include "CardIdentity.h"

#include <aux/Error.h>

#include <QByteArray>
#include <QString>

#include <optional>
#include <vector>

/// One reader at one moment.
struct ReaderSeen
{
    QByteArray name;         ///< as PC/SC calls it
    unsigned long state = 0; ///< SCARD_STATE_… of PC/SC; the upper half counts the cards that came and went

    QString nameText() const;
    bool hasCard() const;
    bool isMute() const;      ///< the card in it does not answer
    bool isUnpowered() const; ///< the card in it cannot be powered
    bool isExclusive() const; ///< a program has the card to itself
    bool isInUse() const;     ///< a program is connected to the card

    /// Another number after each card that was put in or taken out.
    unsigned long events() const;

    bool operator==(const ReaderSeen& other) const;
};

/// The card service and its readers at one moment.
struct ReaderSurvey
{
    aux::Error failure; ///< why no reader could be asked; empty when there is at least one
    bool serviceReachable = false;
    std::vector<ReaderSeen> readers; ///< in PC/SC's order; the first is the one that is used

    /// True when nothing changed between two looks.
    bool sameAs(const ReaderSurvey& other) const;

    /// True when the readers are the same ones in the same order, whatever is in them.
    bool sameReadersAs(const ReaderSurvey& other) const;
};

/// Looks at service and readers with a PC/SC context of its own. Does not touch a card.
ReaderSurvey lookAtReaders();

struct IdentifiedCard
{
    aux::Error failure;
    std::optional<CardIdentity> card; ///< empty when it failed
};

/// Asks the card in @p reader what it is, and leaves it as a card that was just put in; but for a card that
/// another program uses.
IdentifiedCard identifyCard(const ReaderSeen& reader);

/// Makes the card in @p reader as one that was just put in; but for a card that another program uses.
void resetCard(const ReaderSeen& reader);
