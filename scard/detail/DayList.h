#pragma once

#include <aux/Error.h>
#include <scard/detail/ActivityBuffer.h>

#include <QDate>

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace scard::detail {

/// A driver's days in their list order, found by the calendar date of their local time.
class DayList
{
  public:
    /// Rebuilds the list from EF_Driver_Activity_Data; errors as readDays().
    aux::Error build(const Bytes& ef, std::uint32_t structureLength);

    void clear();
    void sort();

    const std::vector<Day>& days() const { return m_days; }

    /// The first day of that date in list order; null when there is none.
    const Day* first(QDate date) const;

    /// Calls @p use with each day from @p first to @p last, both included, ascending; days of one date in
    /// list order.
    template <typename Use>
    void forEach(QDate first, QDate last, Use use) const
    {
        if (!first.isValid() || !last.isValid())
            return;
        for (std::size_t i = firstAt(first); i < m_byDate.size() && m_byDate[i].first <= last.toJulianDay();
             ++i)
            use(m_days[m_byDate[i].second]);
    }

  private:
    void index();
    std::size_t firstAt(QDate date) const;

    std::vector<Day> m_days;
    std::vector<std::pair<qint64, std::size_t>> m_byDate; ///< Julian day, place in the list
};

} // namespace scard::detail
