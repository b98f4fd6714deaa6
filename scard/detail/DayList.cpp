#include <scard/detail/DayList.h>

#include <scard/detail/SortByTime.h>

#include <QDebug>

#include <algorithm>
#include <utility>

namespace scard::detail {

aux::Error DayList::build(const Bytes& ef, std::uint32_t structureLength)
{
    aux::Error failure = readDays(ef, structureLength, m_days);
    index();
    if (!failure.isEmpty())
        qDebug().noquote() << failure;
    return failure;
}

void DayList::clear()
{
    m_days.clear();
    m_byDate.clear();
}

void DayList::sort()
{
    sortByTime(m_days, &Day::date);
    index();
}

const Day* DayList::first(QDate date) const
{
    const Day* found = nullptr;
    forEach(date, date, [&found](const Day& day) {
        if (!found)
            found = &day;
    });
    return found;
}

void DayList::index()
{
    m_byDate.clear();
    m_byDate.reserve(m_days.size());
    for (std::size_t i = 0; i < m_days.size(); ++i)
        m_byDate.emplace_back(m_days[i].date.date().toJulianDay(), i);
    std::sort(m_byDate.begin(), m_byDate.end());
}

std::size_t DayList::firstAt(QDate date) const
{
    const auto found =
        std::lower_bound(m_byDate.begin(), m_byDate.end(), std::pair{date.toJulianDay(), std::size_t{0}});
    return static_cast<std::size_t>(found - m_byDate.begin());
}

} // namespace scard::detail
