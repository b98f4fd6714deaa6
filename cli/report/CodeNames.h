#pragma once

#include "Value.h"

#include <cstddef>

// What the codes of the tachograph data dictionary (Annex 1C, Appendix 1) mean, in words.

namespace report {

struct CodeName
{
    int code;
    const char* name;
};

/// The codes of one data type: called with a number it gives number and name.
class CodeList
{
  public:
    template <std::size_t Count>
    constexpr explicit CodeList(const CodeName (&names)[Count]) : m_begin(names), m_end(names + Count)
    {}

    Code operator()(qint64 code) const;

  private:
    const CodeName* m_begin;
    const CodeName* m_end;
};

extern const CodeList eventOrFault;             ///< EventFaultType
extern const CodeList activity;                 ///< of an ActivityChangeInfo
extern const CodeList slot;                     ///< likewise
extern const CodeList cardStatus;               ///< likewise
extern const CodeList drivingStatusWithCard;    ///< likewise, of a slot with a card in it
extern const CodeList drivingStatusWithoutCard; ///< likewise
extern const CodeList placeEntryType;           ///< EntryTypeDailyWorkPeriod
extern const CodeList spanishRegion;            ///< RegionNumeric: of Spain alone; 0 is no information
extern const CodeList specificCondition;        ///< SpecificConditionType
extern const CodeList loadOperation;            ///< OperationType
extern const CodeList loadType;                 ///< LoadType
extern const CodeList positionAuthentication;   ///< PositionAuthenticationStatus
extern const CodeList calibrationPurpose;       ///< CalibrationPurpose
extern const CodeList companyActivity;          ///< CompanyActivityType
extern const CodeList equipmentType;            ///< EquipmentType

/// ControlType: the names of all bits that are set.
Code controlType(int bits);

} // namespace report
