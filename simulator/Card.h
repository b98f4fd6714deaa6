// The model of a tachograph card: commands in, answers and status words out, with the states a real card has.
// It refuses what a real card refuses. No reader and no line: see VpcdLink for those.
#pragma once

#include "CardDescription.h"

#include <atomic>
#include <chrono>
#include <random>

namespace sim {

/// What goes wrong at one command.
class Fault
{
  public:
    /// The command is not executed and answers `word`.
    static Fault status(std::uint16_t word);
    /// The command is executed, its data are cut to `length` bytes; the status word stays.
    static Fault shortAnswer(std::size_t length);
    /// The command is executed, `extra` bytes are added before the status word.
    static Fault longAnswer(std::size_t extra);
    /// The command is executed, the last bit of its first data byte changes on the way: no checksum saw it.
    static Fault changedAnswer();
    /// The command is not executed, the answer is exactly `answer` (it may have 0 or 1 byte).
    static Fault raw(Bytes answer);
    /// The card is pulled with this command: no answer, until it is inserted again.
    static Fault pulled();

  private:
    friend class Card;
    enum class Kind
    {
        Short,
        Long,
        Changed,
        Raw,
        Pulled
    };

    explicit Fault(Kind kind, std::size_t length = 0, Bytes answer = {});

    Kind m_kind;
    std::size_t m_length;
    Bytes m_answer;
};

struct Exchange
{
    Bytes command;
    /// Empty when the card was pulled with this command.
    Bytes answer;
};

/// Time of one byte on the line (11.5 bit times in T=1) from the interface byte TA1 of the ATR (11 where the
/// ATR has none) and the reader's clock; throws std::invalid_argument for reserved TA1 values.
std::chrono::nanoseconds byteTime(std::uint8_t ta1, double clockHz = 4.0e6);
/// The same from a bit rate in bits per second.
std::chrono::nanoseconds byteTimeAtBitRate(double bitsPerSecond);

/// One thread at a time, except for pull(), isInserted() and commandCount(), which any thread may call.
class Card
{
  public:
    /// An inserted, powered card: MF current, no current EF, no stored hash. Throws std::invalid_argument for
    /// a description that contradicts itself (the same FID or AID twice, a refusal by a success word).
    explicit Card(CardDescription description);
    Card(const Card&) = delete;
    Card& operator=(const Card&) = delete;

    const Bytes& atr() const { return m_description.atr; }

    /// Power on or warm reset. What was written stays.
    void reset();

    /// One command, one answer with its status word; nullopt: no card is there any more. Any bytes are
    /// allowed.
    std::optional<Bytes> transmit(const Bytes& command);

    void pull();
    /// Puts a pulled card back; it starts as after reset().
    void insert();
    bool isInserted() const;

    /// Lets the command number `commandIndex` (0-based, counted as commandCount() does) fail; it happens
    /// once. A second fault at the same index replaces the first.
    void failAt(std::size_t commandIndex, Fault fault);
    /// Forgets all faults that have not happened.
    void clearFaults();

    /// Commands since construction or clearLog(), whether logged or not; those sent without a card do not
    /// count.
    std::size_t commandCount() const;
    const std::vector<Exchange>& log() const { return m_log; }
    /// Empties the log and starts the count again at 0; faults not yet happened stay set.
    void clearLog();
    void setLogging(bool on);

    /// Each exchange takes this long for each byte of command, answer and their T=1 block frames; 0 = no
    /// delay.
    void setByteDelay(std::chrono::nanoseconds perByte);

    /// Content of an EF, `aid` empty = of the MF; null when there is none. Valid until the file is changed.
    const Bytes* file(const Bytes& aid, std::uint16_t fid) const;
    /// Replaces an EF's content, whatever its rights; throws std::invalid_argument when there is no such EF.
    void setFile(const Bytes& aid, std::uint16_t fid, Bytes content);

    const Switches& switches() const { return m_description.switches; }
    /// Throws std::invalid_argument as the constructor does.
    void setSwitches(Switches switches);

  private:
    struct Command;

    Bytes execute(const Bytes& bytes);
    Bytes select(const Command& command);
    Bytes selectApplication(const Command& command);
    Bytes selectFile(const Command& command);
    Bytes selectMasterFile(const Command& command);
    Bytes readBinary(const Command& command);
    Bytes readBinaryOdd(const Command& command);
    Bytes updateBinary(const Command& command);
    Bytes performHash(const Command& command);
    Bytes computeSignature(const Command& command);
    Bytes getChallenge(const Command& command);
    Bytes verify(const Command& command) const;

    Bytes success(Bytes data = {}) const;
    Bytes readAnswer(const FileDescription& file, Bytes data) const;
    Bytes beyondEnd(std::size_t bytesLeft) const;
    FileDescription* addressedFile(const Command& command, std::size_t& offset, std::uint16_t& error);
    std::vector<FileDescription>& currentFiles();
    void enter(ApplicationDescription* application);

    CardDescription m_description;
    /// Null: the MF is current.
    ApplicationDescription* m_application = nullptr;
    FileDescription* m_file = nullptr;
    std::optional<Bytes> m_hash;

    std::atomic<bool> m_inserted = true;
    std::atomic<std::size_t> m_commandCount = 0;
    bool m_logging = true;
    std::vector<Exchange> m_log;
    std::map<std::size_t, Fault> m_faults;
    std::chrono::nanoseconds m_byteDelay{0};
    std::mt19937 m_challenges;
};

} // namespace sim
