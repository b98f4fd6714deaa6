#include <aux/ErrorData.h>

#include <utility>

namespace aux {

ErrorData::ErrorData(QString&& source, QString&& message, unsigned int id)
    : m_source(std::move(source)), m_message(std::move(message)), m_id(id)
{}

QString ErrorData::getSource() const
{
    return m_source;
}

QString ErrorData::getMessage() const
{
    return m_message;
}

unsigned int ErrorData::getId() const
{
    return m_id;
}

} // namespace aux
