#include "SimulatedCard.h"

SimulatedCard::SimulatedCard(const QStringList& options)
{
    m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    m_process.start(qEnvironmentVariable("SIMCARD"), options);
    QByteArray said;
    while (!m_isIn && m_process.waitForReadyRead()) {
        said += m_process.readAllStandardOutput();
        m_isIn = said.contains("is in the reader");
    }
}

SimulatedCard::~SimulatedCard()
{
    pull();
}

void SimulatedCard::pull()
{
    m_process.kill();
    m_process.waitForFinished();
}
