#pragma once

#include <aux/Export.h>

#include <QString>

namespace aux {

/// The nation codes of the tachograph data dictionary (NationNumeric and NationAlpha, Annex 1C,
/// Appendix 1; list of the laboratory that assigns them). No state: any thread may ask.
class AUX_EXPORT CountryCodes
{
  public:
    /// The letters (one to three) of the nation with the number @p stateId, for example "D" for 13.
    /// Empty for 0 (no information available) and for every number that is not assigned.
    static QString countryCodeFromStateID(int stateId);
};

} // namespace aux
