#pragma once

#include <aux/Export.h>

#include <QString>

namespace aux {

/// One entry of an aux::Error: who reports it, what happened, and a number to react to.
class AUX_EXPORT ErrorData
{
  public:
    /// @param source  who reports the failure, for example "libscard" or "SCard"
    /// @param message the text for people
    /// @param id      a number that callers can test; 0 when there is none
    ErrorData(QString&& source, QString&& message, unsigned int id);

    QString getSource() const;
    QString getMessage() const;
    unsigned int getId() const;

  private:
    QString m_source;
    QString m_message;
    unsigned int m_id;
};

} // namespace aux
