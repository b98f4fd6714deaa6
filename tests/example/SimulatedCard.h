#pragma once

#include <QProcess>
#include <QStringList>

/// A card in the virtual reader. SIMCARD in the environment names the program scard-simcard.
class SimulatedCard
{
  public:
    explicit SimulatedCard(const QStringList& options);
    ~SimulatedCard();

    /// True once the reader has it.
    bool isIn() const { return m_isIn; }

    /// Takes it out without a word, whatever it is doing.
    void pull();

  private:
    QProcess m_process;
    bool m_isIn = false;
};
