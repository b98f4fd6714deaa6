#pragma once

#include <QString>

/// The command that --exec runs after each card.
class HookCommand
{
  public:
    /// @p command for the shell; empty when nothing is run
    explicit HookCommand(QString command);

    /// Runs it with the file as its argument, and with what is known of the card in its environment. A
    /// failure of it is told on standard error. When the program is asked to end, the command and what it
    /// started is ended too.
    void run(const QString& file, int exitCode, const QString& cardType) const;

  private:
    QString m_command;
};
