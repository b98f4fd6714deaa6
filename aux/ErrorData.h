#pragma once

#include <aux/Export.h>

#include <QString>

namespace aux {

/// One entry of an aux::Error: who reports it, what happened, and a number to react to.
class AUX_EXPORT ErrorData
{
  public:
    /// An entry with these three; both texts are moved from.
    /// @param source  who reports the failure, for example "libscard" or "SCard"
    /// @param message the text for people
    /// @param id      a number that callers can test; 0 when there is none
    ErrorData(QString&& source, QString&& message, unsigned int id);

    /// "libscard" for the library's own words, "SCard" for a failed call of PC/SC.
    QString getSource() const;
    /// The text for people, in English. Hosts may test it: texts do not change.
    QString getMessage() const;
    /// The card's status word where a card refused (6A82, 6982 …), 0 where there is no number.
    unsigned int getId() const;

  private:
    QString m_source;
    QString m_message;
    unsigned int m_id;
};

} // namespace aux
