#pragma once

#include "ReaderSurvey.h"

#include <scard/SCardReader.h>

/// Waits for what happens at the readers, and notices when the service under a reader object has gone: the
/// object itself cannot tell that from a change.
class ReaderWait
{
  public:
    /// @p reader has been initialised.
    explicit ReaderWait(scard::SCardReader& reader);
    ~ReaderWait();
    ReaderWait(const ReaderWait&) = delete;
    ReaderWait& operator=(const ReaderWait&) = delete;

    /// Waits a quarter of a second, or until something changes.
    void wait();

    /// What the readers were like when something changed last.
    const ReaderSurvey& survey() const { return m_survey; }

    /// True when the reader object will not report anything any more.
    bool isLost() const;

  private:
    void look();

    scard::SCardReader& m_reader;
    ReaderSurvey m_survey;
    QMetaObject::Connection m_listening;
    bool m_changeReported = false;
    int m_quietWaits = 0;
    int m_needlessReturns = 0;
};
