#pragma once

#include "ScriptedReader.h"

#include <cstddef>
#include <cstdint>
#include <vector>

// A card's answers as bytes that a search can change one by one and still have a card: a byte that says how
// the card answers, then what it answers.

namespace fuzz {

/// Takes the answers from a script, command by command.
class CardScript
{
  public:
    CardScript(const std::uint8_t* data, std::size_t size) : m_next(data), m_end(data + size) {}

    /// The answer to @p command. A script that has ended answers that there is no such file.
    Answer answerTo(const std::vector<std::uint8_t>& command);

  private:
    std::uint8_t byte();
    std::vector<std::uint8_t> bytes(std::size_t count);

    const std::uint8_t* m_next;
    const std::uint8_t* m_end;
};

/// Appends to @p script what makes it give @p answer, with its status word, to @p command.
void appendAnswer(
    std::vector<std::uint8_t>& script, const std::vector<std::uint8_t>& command,
    const std::vector<std::uint8_t>& answer);

} // namespace fuzz
