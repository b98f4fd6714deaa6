#pragma once

#include <aux/ErrorData.h>
#include <aux/Export.h>

#include <QDebug>
#include <QMetaType>
#include <QString>

#include <vector>

/// Error values and nation codes: a library of its own, libaux, for which a platform may have its own.
namespace aux {

/// The result of an operation that can fail: empty means success.
///
/// A failure is an ordered list of entries. A step that failed because a lower step failed adds
/// its own entry, so that the whole road of the failure can be read.
///
/// A value: copies are independent, and may be handed to other threads. The library also throws it, from
/// the dataset readers of scard::SCardGeneric.
class AUX_EXPORT Error
{
  public:
    /// Goes over the entries, the first one first; appending invalidates it.
    using const_iterator = std::vector<ErrorData>::const_iterator;

    /// Success: no entries.
    Error();
    /// The same entries as @p other.
    Error(const Error& other);
    /// Takes the entries of @p other over.
    Error(Error&& other) noexcept;
    /// The same entries as @p other, in place of those that were there.
    Error& operator=(const Error& other);
    /// Takes the entries of @p other over, in place of those that were there.
    Error& operator=(Error&& other) noexcept;
    ~Error();

    /// True for success.
    bool isEmpty() const;

    /// At the first entry; it carries the id to react to, for a refusal of the card its status word.
    const_iterator begin() const;
    /// Behind the last entry.
    const_iterator end() const;

    /// Adds one entry behind those that are there.
    void append(ErrorData entry);

    /// Adds the entries of @p step behind those that are there, in their order; @p step is left empty.
    Error& operator<<(Error&& step);

  private:
    std::vector<ErrorData> m_entries;
    QString m_details; ///< kept for the interface's sake; stays null
};

/// Writes every entry in order, "source: message (id in hexadecimal)", separated by " | "; nothing for
/// success.
AUX_EXPORT QDebug operator<<(QDebug debug, Error const& error);

} // namespace aux

Q_DECLARE_METATYPE(aux::Error)
