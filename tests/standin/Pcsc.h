#pragma once

#include <simulator/Card.h>

#include <winscard.h>

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

// The SCard… functions of a program that is linked with this: they reach simulated cards in simulated
// readers, record each call and fail when they are told to.

namespace standin {

enum class Function
{
    EstablishContext,
    ReleaseContext,
    ListReaders,
    FreeMemory,
    GetStatusChange,
    Connect,
    Status,
    Transmit,
    Disconnect,
};

/// One call as it came; what the function does not have stays empty.
struct Call
{
    Function function;
    std::string reader{};
    DWORD shareMode = 0;
    DWORD protocols = 0;
    DWORD disposition = 0;
    DWORD scope = 0;
    DWORD timeoutMs = 0;
    std::vector<std::string> watched{}; ///< readers of SCardGetStatusChange
    DWORD capacity = 0;                 ///< of the receive or name buffer
    DWORD atrCapacity = 0;
    std::vector<std::uint8_t> sent{};
};

class Pcsc
{
  public:
    static Pcsc& instance();

    /// Back to a running service without readers, calls or failures.
    void reset();

    void addReader(const std::string& name);
    void removeReader(const std::string& name);

    /// Puts @p card, which stays the caller's, into a reader.
    void insert(const std::string& reader, sim::Card& card);
    void remove(const std::string& reader);

    /// The call number @p index (0-based) of @p function returns @p code and does nothing else.
    void failCall(Function function, std::size_t index, LONG code);

    /// The listing succeeds and names nobody, as a remote PC/SC may do.
    void listNobody(bool on) { m_listNobody = on; }

    /// What SCardTransmit returns for a card that is gone; W_REMOVED_CARD by default.
    void setRemovedCode(LONG code) { m_removedCode = code; }

    /// Runs once when SCardGetStatusChange has to wait.
    void whileWaiting(std::function<void()> happening) { m_happening = std::move(happening); }

    /// Runs at each command that the card has executed, before its answer is handed over.
    using AfterTransmit = std::function<void(const sim::Bytes& command, const sim::Bytes& answer)>;
    void afterTransmit(AfterTransmit happening) { m_afterTransmit = std::move(happening); }

    const std::vector<Call>& calls() const { return m_calls; }
    std::size_t count(Function function) const;

    /// Counts and records from the beginning, and forgets failures that have not come.
    void clearCalls();

    /// A benchmark must not be charged for the recording.
    void setRecording(bool on) { m_recording = on; }

    std::size_t openContexts() const { return m_contexts.size(); }
    std::size_t connectedCards() const { return m_handles.size(); }
    std::size_t listsNotFreed() const { return m_lists.size(); }

    /// Frees the lists whose return was refused.
    void forgetLists() { m_lists.clear(); }

    // The functions behind the C names.
    LONG establishContext(DWORD scope, SCARDCONTEXT* context);
    LONG releaseContext(SCARDCONTEXT context);
    LONG listReaders(SCARDCONTEXT context, LPSTR names, DWORD* length);
    LONG freeMemory(SCARDCONTEXT context, const void* memory);
    LONG getStatusChange(SCARDCONTEXT context, DWORD timeoutMs, SCARD_READERSTATE* states, DWORD count);
    LONG connect(
        SCARDCONTEXT context, const char* reader, DWORD shareMode, DWORD protocols, SCARDHANDLE* handle,
        DWORD* activeProtocol);
    LONG status(
        SCARDHANDLE handle, char* name, DWORD* nameLength, DWORD* state, DWORD* protocol, unsigned char* atr,
        DWORD* atrLength);
    LONG transmit(
        SCARDHANDLE handle, const SCARD_IO_REQUEST* protocol, const unsigned char* send, DWORD sendLength,
        unsigned char* receive, DWORD* receiveLength);
    LONG disconnect(SCARDHANDLE handle, DWORD disposition);

  private:
    struct Reader
    {
        std::string name;
        sim::Card* card = nullptr;
        DWORD events = 0; ///< insertions and removals so far
    };

    bool recordAndMayFail(Call call, LONG& code);
    Reader* find(const std::string& name);
    bool updateStates(SCARD_READERSTATE* states, DWORD count, std::size_t readersBefore);

    std::vector<Reader> m_readers;
    std::map<SCARDHANDLE, std::string> m_handles;
    std::map<SCARDCONTEXT, bool> m_contexts;
    std::map<const void*, std::unique_ptr<char[]>> m_lists;
    SCARDCONTEXT m_nextContext = 1000;
    SCARDHANDLE m_nextHandle = 5000;
    bool m_listNobody = false;
    bool m_recording = true;
    LONG m_removedCode = SCARD_W_REMOVED_CARD;
    std::function<void()> m_happening;
    AfterTransmit m_afterTransmit;
    std::vector<Call> m_calls;
    std::map<Function, std::size_t> m_counts;
    std::map<std::pair<Function, std::size_t>, LONG> m_failures;
};

} // namespace standin
