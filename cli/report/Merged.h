#pragma once

#include "Report.h"

#include <vector>

namespace report {

/// A day, and which application alone has it so; empty when there is one application or both say the same.
struct MergedDay
{
    Day day;
    QString onlyIn;
};

/// A report as a person wants to read it: what both applications of a card say alike stands there once.
struct Merged
{
    std::vector<FactGroup> groups;
    bool hasDays = false;
    std::vector<MergedDay> days; ///< by date
    std::vector<Table> tables;   ///< of the last application, then what only the first has
};

Merged merged(const Report& report);

/// True when a group says anything.
bool saysSomething(const FactGroup& group);

} // namespace report
