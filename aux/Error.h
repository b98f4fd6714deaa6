#pragma once

#include <aux/ErrorData.h>
#include <aux/Export.h>

#include <QDebug>
#include <QMetaType>
#include <QString>

#include <vector>

namespace aux {

/// The result of an operation that can fail: empty means success.
///
/// A failure is an ordered list of entries. A step that failed because a lower step failed adds
/// its own entry, so that the whole road of the failure can be read.
class AUX_EXPORT Error
{
  public:
    using const_iterator = std::vector<ErrorData>::const_iterator;

    /// Success: no entries.
    Error();
    Error(const Error& other);
    Error(Error&& other) noexcept;
    Error& operator=(const Error& other);
    Error& operator=(Error&& other) noexcept;
    ~Error();

    /// True for success.
    bool isEmpty() const;

    const_iterator begin() const;
    const_iterator end() const;

    /// Adds one entry behind those that are there.
    void append(ErrorData entry);

    /// Adds the entries of @p step behind those that are there, in their order; @p step is left empty.
    Error& operator<<(Error&& step);

  private:
    std::vector<ErrorData> m_entries;
    QString m_details; ///< kept for the interface's sake; stays null
};

/// Writes every entry in order, "source: message (id in hexadecimal)", separated by " | ".
AUX_EXPORT QDebug operator<<(QDebug debug, Error const& error);

} // namespace aux

Q_DECLARE_METATYPE(aux::Error)
