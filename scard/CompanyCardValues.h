#pragma once

#include <scard/Nation.h>

#include <QDateTime>
#include <QString>

/// @file
/// What the records of a company card say, as values for the host. Times are local; a null QDateTime stands
/// for a time that the card does not know (stored as 0 or FFFFFFFF). Codes are those of the tachograph data
/// dictionary (Annex 1C, Appendix 1).

namespace scard {

/// What the company did with its card (CompanyActivityRecord).
struct CompanyActivity
{
    int activityType = 0; ///< 1 downloads a card, 2 downloads a vehicle unit, 3 locks in, 4 locks out
    QDateTime time;       ///< of the activity
    int cardType = 0;     ///< of the card that was downloaded, scard::SCardMeta::Type
    Nation cardNation;    ///< that issued that card
    QString cardNumber;   ///< 16 characters, trimmed; empty when no card was downloaded
    Nation nation;        ///< where the vehicle is registered
    QString registration; ///< trimmed
    QDateTime downloadPeriodBegin; ///< of what was downloaded
    QDateTime downloadPeriodEnd;   ///< likewise
};

} // namespace scard
