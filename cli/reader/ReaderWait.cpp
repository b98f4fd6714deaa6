#include "ReaderWait.h"

#include "../StopSignal.h"

#include <QElapsedTimer>

namespace {

constexpr unsigned int monitorSliceMs = 250;

/// A wait that comes back earlier than this, and has not seen a change, cannot wait at all.
constexpr qint64 earlyMs = 200;

/// Waits that come back early with nothing changed, in a row: more than a change between two looks explains.
constexpr int needlessReturnsOfALostReader = 3;

/// Waits after which it is looked all the same.
constexpr int quietWaitsBeforeALook = 10;

constexpr int pauseMs = 100;

} // namespace

ReaderWait::ReaderWait(scard::SCardReader& reader) : m_reader(reader)
{
    m_reader.monitor(0); // the first one reports what is there already
    m_survey = lookAtReaders();
    m_listening =
        QObject::connect(&m_reader, &scard::SCardReader::present, [this] { m_changeReported = true; });
}

ReaderWait::~ReaderWait()
{
    QObject::disconnect(m_listening);
}

void ReaderWait::wait()
{
    m_changeReported = false;
    QElapsedTimer elapsed;
    elapsed.start();
    m_reader.monitor(monitorSliceMs);
    if (elapsed.elapsed() >= earlyMs && !m_changeReported) {
        m_needlessReturns = 0;
        if (++m_quietWaits >= quietWaitsBeforeALook)
            look();
        return;
    }
    const ReaderSurvey before = m_survey;
    look();
    if (!m_survey.sameAs(before)) {
        m_needlessReturns = 0;
        return;
    }
    ++m_needlessReturns;
    StopSignal::sleepFor(pauseMs);
}

bool ReaderWait::isLost() const
{
    return !m_survey.failure.isEmpty() || m_needlessReturns >= needlessReturnsOfALostReader;
}

void ReaderWait::look()
{
    m_quietWaits = 0;
    m_survey = lookAtReaders();
}
