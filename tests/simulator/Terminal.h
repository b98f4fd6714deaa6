// A terminal without keys: what it can ask a card for, in whole commands.
#pragma once

#include "Card.h"

#include <optional>

class Terminal
{
  public:
    explicit Terminal(sim::CardDescription description);

    sim::Card& card() { return m_card; }

    /// The whole answer in hexadecimal digits; the command likewise.
    std::string ask(const std::string& command);

    // Status words in hexadecimal digits.
    std::string select(const sim::Bytes& aid);
    std::string select(std::uint16_t fid);
    /// Writes to the beginning of the current file.
    std::string update(const sim::Bytes& content);
    std::string hash();

    /// The current file's first `size` bytes; nullopt when a command fails.
    std::optional<sim::Bytes> read(std::size_t size);
    /// Of the current file's content; nullopt when a command fails.
    std::optional<sim::Bytes> sign(std::size_t signatureLength);

  private:
    std::optional<sim::Bytes> dataOf(const sim::Bytes& command);

    sim::Card m_card;
};
