#pragma once

#include "../verify/Verification.h"
#include "Table.h"

#include <aux/Error.h>

#include <QDate>
#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

// All that a download says, before it becomes text, JSON, CSV or HTML.

namespace report {

/// What the holder did from one minute of a day to the next change.
struct Period
{
    int beginMinute = 0; ///< of the day, UTC
    int endMinute = 0;   ///< of the last period of a day the day's end, for the card does not know another
    bool hasEnd = true;  ///< false for the last period: it does not count in the day's sums
    Code activity;       ///< 0 rest, 1 availability, 2 work, 3 driving
    Code slot;           ///< 0 driver, 1 co-driver
    Code drivingStatus;  ///< single or crew; without a card in the slot unknown or known
    Code cardStatus;     ///< 0 inserted, 1 not inserted
};

/// One day of the card's calendar (UTC); sums in minutes.
struct Day
{
    QDate date;
    int driving = 0;
    int work = 0;
    int availability = 0;
    int rest = 0;
    int unknown = 0;
    std::vector<Period> periods;
};

constexpr int minutesOfDay = 24 * 60;

/// One application of the card with all that it keeps.
struct Application
{
    QString name; ///< "TACHO" or "SMRDT"
    int generation = 1;
    std::vector<FactGroup> groups;
    bool hasDays = false; ///< a driver card's application
    std::vector<Day> days;
    std::vector<Table> tables;
};

/// Remaining times by the end of a day; of driver cards.
struct Figures
{
    QDate date;
    std::vector<Fact> facts;
    std::vector<QString> rules; ///< as many as facts: the rule that each follows
};

/// Why not everything could be shown.
struct Damage
{
    QString message; ///< one sentence
    QString ef;      ///< the EF that is missing or short; empty when it is not known
    aux::Error failure;
};

/// The days that were asked for, in the zone of the report; null where there is no limit.
struct Range
{
    QDate from;
    QDate until; ///< the last day
};

struct Report
{
    QString path;
    qint64 size = 0; ///< bytes
    QString sha256;
    int records = 0;
    int signatures = 0;
    bool isCut = false;
    Verification verification; ///< what the signatures say

    FactGroup card; ///< type, generation, chip
    std::vector<Application> applications;
    std::optional<Figures> figures;
    QStringList missing; ///< EFs that are not in the file, or too short
    std::optional<Damage> damage;

    Range range;
    Zone zone = Zone::Local;
};

// Sentences of the views for people.

/// Stands below the figures.
extern const char* const noVerdict;

/// Stands in place of the figures.
extern const char* const noFigures;

/// Stands in place of all lists.
extern const char* const notRead;

/// Stands beside the days when the last change of one is drawn.
extern const char* const openEnd;

/// What one of two applications alone says: "only in application TACHO".
QString onlyInText(const QString& application);

/// Names the EFs that are missing; empty when none is.
QString missingText(const Report& report);

/// "local time" or "UTC".
QString zoneName(Zone zone);

/// How large the file is and what is in it.
QString sizeText(const Report& report);

/// Whether the signatures hold; empty when that cannot be known.
QString signaturesText(const Report& report);

/// Leaves only the days and rows that touch @p range; what has no time stays.
void limit(Report& report, const Range& range);

/// The days as a table, one row a day, and their periods, one row a period.
Table dayTable(const std::vector<Day>& days);
Table periodTable(const std::vector<Day>& days);

} // namespace report
