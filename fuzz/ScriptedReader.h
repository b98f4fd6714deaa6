#pragma once

#include <winscard.h>

#include <cstdint>
#include <functional>
#include <vector>

// The SCard… functions of a program that is linked with this: one reader with one card, which answers each
// command as the program says.

namespace fuzz {

struct Answer
{
    LONG code = SCARD_S_SUCCESS;
    std::vector<std::uint8_t> bytes{}; ///< with the status word
};

using CardAnswers = std::function<Answer(const std::vector<std::uint8_t>& command)>;

void setCard(CardAnswers answers);

} // namespace fuzz
