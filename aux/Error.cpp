#include <aux/Error.h>

#include <iterator>
#include <utility>

namespace aux {

Error::Error() = default;
Error::Error(const Error& other) = default;
Error::Error(Error&& other) noexcept = default;
Error& Error::operator=(const Error& other) = default;
Error& Error::operator=(Error&& other) noexcept = default;
Error::~Error() = default;

bool Error::isEmpty() const
{
    return m_entries.empty();
}

Error::const_iterator Error::begin() const
{
    return m_entries.begin();
}

Error::const_iterator Error::end() const
{
    return m_entries.end();
}

void Error::append(ErrorData entry)
{
    m_entries.push_back(std::move(entry));
}

Error& Error::operator<<(Error&& step)
{
    const std::vector<ErrorData> entries = std::exchange(step.m_entries, {});
    m_entries.insert(m_entries.end(), entries.begin(), entries.end());
    return *this;
}

QDebug operator<<(QDebug debug, Error const& error)
{
    const QDebugStateSaver saver(debug);
    debug.noquote().nospace();
    const char* separator = "";
    for (const ErrorData& entry : error) {
        debug << separator << entry.getSource() << ": " << entry.getMessage() << " ("
              << QString::number(entry.getId(), 16) << ')';
        separator = " | ";
    }
    return debug;
}

} // namespace aux
