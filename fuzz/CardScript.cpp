#include "CardScript.h"

#include <algorithm>

namespace fuzz {

namespace {

// How the card answers, by the first byte; everything below `statusWord` is the success that was asked for.
constexpr std::uint8_t statusWord = 0x80;    ///< two bytes: the status word, and no data
constexpr std::uint8_t otherLength = 0xA0;   ///< one byte: how much longer or shorter, signed
constexpr std::uint8_t rawAnswer = 0xC0;     ///< one byte: the length of all that is answered
constexpr std::uint8_t longRawAnswer = 0xD0; ///< two bytes: the same
constexpr std::uint8_t failedCall = 0xE0;    ///< one byte: the code of the transmission

/// Bytes that a card answers to @p command when it does what was asked; of the odd instruction the most that
/// one answer holds.
std::size_t lengthAsked(const std::vector<std::uint8_t>& command)
{
    const bool isReadBinary = command.size() == 5 && command[1] == 0xB0;
    const bool isSignature = command.size() == 5 && command[1] == 0x2A;
    if (isReadBinary || isSignature)
        return command[4] == 0 ? 256 : command[4];
    const bool isOddReadBinary = command.size() > 5 && command[1] == 0xB1;
    return isOddReadBinary ? 256 : 0;
}

constexpr LONG codes[] = {
    SCARD_W_REMOVED_CARD,       SCARD_W_RESET_CARD,     SCARD_E_NOT_TRANSACTED, SCARD_E_NO_SMARTCARD,
    SCARD_E_NO_SERVICE,         SCARD_E_INVALID_HANDLE, SCARD_E_PROTO_MISMATCH, SCARD_E_INSUFFICIENT_BUFFER,
    SCARD_E_READER_UNAVAILABLE, SCARD_F_COMM_ERROR,
};

} // namespace

std::uint8_t CardScript::byte()
{
    return m_next < m_end ? *m_next++ : 0;
}

std::vector<std::uint8_t> CardScript::bytes(std::size_t count)
{
    const std::size_t there = std::min(count, static_cast<std::size_t>(m_end - m_next));
    std::vector<std::uint8_t> taken(m_next, m_next + there);
    m_next += there;
    taken.resize(count);
    return taken;
}

Answer CardScript::answerTo(const std::vector<std::uint8_t>& command)
{
    if (m_next == m_end)
        return {SCARD_S_SUCCESS, {0x6A, 0x82}};
    const std::uint8_t how = byte();
    if (how >= failedCall)
        return {codes[byte() % (sizeof codes / sizeof *codes)], {}};
    if (how >= longRawAnswer) {
        const std::size_t high = byte();
        return {SCARD_S_SUCCESS, bytes(high << 8 | byte())};
    }
    if (how >= rawAnswer)
        return {SCARD_S_SUCCESS, bytes(byte())};
    if (how >= statusWord && how < otherLength)
        return {SCARD_S_SUCCESS, bytes(2)};

    auto length = static_cast<std::ptrdiff_t>(lengthAsked(command));
    if (how >= otherLength)
        length = std::max<std::ptrdiff_t>(0, length + static_cast<std::int8_t>(byte()));
    Answer answer{SCARD_S_SUCCESS, bytes(static_cast<std::size_t>(length))};
    answer.bytes.insert(answer.bytes.end(), {0x90, 0x00});
    return answer;
}

void appendAnswer(
    std::vector<std::uint8_t>& script, const std::vector<std::uint8_t>& command,
    const std::vector<std::uint8_t>& answer)
{
    const bool isSuccess =
        answer.size() >= 2 && answer[answer.size() - 2] == 0x90 && answer[answer.size() - 1] == 0x00;
    if (isSuccess && answer.size() - 2 == lengthAsked(command)) {
        script.push_back(0);
        script.insert(script.end(), answer.begin(), answer.end() - 2);
        return;
    }
    if (answer.size() == 2)
        script.push_back(statusWord);
    else
        script.insert(
            script.end(), {longRawAnswer, static_cast<std::uint8_t>(answer.size() >> 8),
                           static_cast<std::uint8_t>(answer.size() & 0xFF)});
    script.insert(script.end(), answer.begin(), answer.end());
}

} // namespace fuzz
