#include "Pcsc.h"

#include <reader.h>

#include <algorithm>
#include <cstring>
#include <strings.h>
#include <utility>

namespace standin {

namespace {

constexpr char pnpNotification[] = "\\\\?PnP?\\Notification";

bool isPnp(const char* name)
{
    return ::strcasecmp(name, pnpNotification) == 0;
}

} // namespace

Pcsc& Pcsc::instance()
{
    static Pcsc pcsc;
    return pcsc;
}

void Pcsc::reset()
{
    *this = Pcsc();
}

void Pcsc::addReader(const std::string& name)
{
    m_readers.push_back({name, nullptr, 0});
}

void Pcsc::removeReader(const std::string& name)
{
    m_readers.erase(
        std::remove_if(
            m_readers.begin(), m_readers.end(), [&](const Reader& reader) { return reader.name == name; }),
        m_readers.end());
}

void Pcsc::insert(const std::string& reader, sim::Card& card)
{
    Reader* target = find(reader);
    target->card = &card;
    ++target->events;
}

void Pcsc::remove(const std::string& reader)
{
    Reader* target = find(reader);
    target->card = nullptr;
    ++target->events;
}

void Pcsc::failCall(Function function, std::size_t index, LONG code)
{
    m_failures[{function, index}] = code;
}

std::size_t Pcsc::count(Function function) const
{
    const auto found = m_counts.find(function);
    return found == m_counts.end() ? 0 : found->second;
}

void Pcsc::clearCalls()
{
    m_calls.clear();
    m_counts.clear();
    m_failures.clear();
}

bool Pcsc::recordAndMayFail(Call call, LONG& code)
{
    const Function function = call.function;
    const std::size_t index = m_counts[function]++;
    if (m_recording)
        m_calls.push_back(std::move(call));
    if (m_failures.empty())
        return false;
    const auto failure = m_failures.find({function, index});
    if (failure == m_failures.end())
        return false;
    code = failure->second;
    return true;
}

Pcsc::Reader* Pcsc::find(const std::string& name)
{
    const auto found = std::find_if(
        m_readers.begin(), m_readers.end(), [&](const Reader& reader) { return reader.name == name; });
    return found == m_readers.end() ? nullptr : &*found;
}

LONG Pcsc::establishContext(DWORD scope, SCARDCONTEXT* context)
{
    Call call{Function::EstablishContext};
    call.scope = scope;
    LONG code = SCARD_S_SUCCESS;
    if (recordAndMayFail(std::move(call), code))
        return code;
    if (!context)
        return SCARD_E_INVALID_PARAMETER;
    *context = m_nextContext++;
    m_contexts[*context] = true;
    return SCARD_S_SUCCESS;
}

LONG Pcsc::releaseContext(SCARDCONTEXT context)
{
    LONG code = SCARD_S_SUCCESS;
    if (recordAndMayFail(Call{Function::ReleaseContext}, code))
        return code;
    return m_contexts.erase(context) == 1 ? SCARD_S_SUCCESS : SCARD_E_INVALID_HANDLE;
}

LONG Pcsc::listReaders(SCARDCONTEXT context, LPSTR names, DWORD* length)
{
    Call call{Function::ListReaders};
    call.capacity = *length;
    LONG code = SCARD_S_SUCCESS;
    if (recordAndMayFail(std::move(call), code))
        return code;
    if (m_contexts.count(context) == 0)
        return SCARD_E_INVALID_HANDLE;
    if (*length != SCARD_AUTOALLOCATE)
        return SCARD_E_INVALID_PARAMETER;
    if (m_readers.empty() && !m_listNobody)
        return SCARD_E_NO_READERS_AVAILABLE;

    std::string list;
    if (!m_listNobody) {
        for (const Reader& reader : m_readers)
            list.append(reader.name).push_back('\0');
    }
    list.push_back('\0');
    auto memory = std::make_unique<char[]>(list.size());
    std::memcpy(memory.get(), list.data(), list.size());
    char* address = memory.get();
    std::memcpy(names, &address, sizeof address);
    *length = list.size();
    m_lists[address] = std::move(memory);
    return SCARD_S_SUCCESS;
}

LONG Pcsc::freeMemory(SCARDCONTEXT context, const void* memory)
{
    LONG code = SCARD_S_SUCCESS;
    if (recordAndMayFail(Call{Function::FreeMemory}, code))
        return code;
    if (m_contexts.count(context) == 0)
        return SCARD_E_INVALID_HANDLE;
    return m_lists.erase(memory) == 1 ? SCARD_S_SUCCESS : SCARD_E_INVALID_PARAMETER;
}

/// One look at the readers, as PC/SC Lite does it: event states anew, true when something changed.
bool Pcsc::updateStates(SCARD_READERSTATE* states, DWORD count, std::size_t readersBefore)
{
    constexpr unsigned eventCounterShift = 16;
    bool changed = false;
    for (DWORD i = 0; i < count; ++i) {
        SCARD_READERSTATE& state = states[i];
        state.dwEventState = 0;
        if (isPnp(state.szReader)) {
            if (m_readers.size() != readersBefore) {
                state.dwEventState = SCARD_STATE_CHANGED;
                changed = true;
            }
            continue;
        }
        const Reader* reader = find(state.szReader);
        if (!reader) {
            state.dwEventState = SCARD_STATE_UNKNOWN | SCARD_STATE_UNAVAILABLE | SCARD_STATE_CHANGED;
            changed = true;
            continue;
        }
        const bool cardThere = reader->card && reader->card->isInserted();
        state.dwEventState =
            (reader->events << eventCounterShift) | (cardThere ? SCARD_STATE_PRESENT : SCARD_STATE_EMPTY);
        const DWORD known = state.dwCurrentState & ~static_cast<DWORD>(SCARD_STATE_CHANGED);
        if (state.dwCurrentState == SCARD_STATE_UNAWARE || known != state.dwEventState) {
            state.dwEventState |= SCARD_STATE_CHANGED;
            changed = true;
        }
    }
    return changed;
}

LONG Pcsc::getStatusChange(SCARDCONTEXT context, DWORD timeoutMs, SCARD_READERSTATE* states, DWORD count)
{
    Call call{Function::GetStatusChange};
    call.timeoutMs = timeoutMs;
    for (DWORD i = 0; i < count; ++i)
        call.watched.emplace_back(states[i].szReader);
    LONG code = SCARD_S_SUCCESS;
    if (recordAndMayFail(std::move(call), code))
        return code;
    if (m_contexts.count(context) == 0)
        return SCARD_E_INVALID_HANDLE;
    for (DWORD i = 0; i < count; ++i) {
        if (!isPnp(states[i].szReader) && !find(states[i].szReader))
            return SCARD_E_UNKNOWN_READER;
    }

    const std::size_t readersBefore = m_readers.size();
    if (updateStates(states, count, readersBefore))
        return SCARD_S_SUCCESS;
    if (timeoutMs > 0 && m_happening) {
        std::exchange(m_happening, nullptr)();
        if (updateStates(states, count, readersBefore))
            return SCARD_S_SUCCESS;
    }
    return SCARD_E_TIMEOUT; // also for a wait without limit: nothing more will happen in here
}

LONG Pcsc::connect(
    SCARDCONTEXT context, const char* reader, DWORD shareMode, DWORD protocols, SCARDHANDLE* handle,
    DWORD* activeProtocol)
{
    Call call{Function::Connect};
    call.reader = reader ? reader : "";
    call.shareMode = shareMode;
    call.protocols = protocols;
    LONG code = SCARD_S_SUCCESS;
    if (recordAndMayFail(std::move(call), code))
        return code;
    if (m_contexts.count(context) == 0)
        return SCARD_E_INVALID_HANDLE;
    const Reader* target = reader ? find(reader) : nullptr;
    if (!target)
        return SCARD_E_UNKNOWN_READER;
    if (!target->card || !target->card->isInserted())
        return SCARD_E_NO_SMARTCARD;
    *handle = m_nextHandle++;
    *activeProtocol = SCARD_PROTOCOL_T1;
    m_handles[*handle] = target->name;
    return SCARD_S_SUCCESS;
}

LONG Pcsc::status(
    SCARDHANDLE handle, char* name, DWORD* nameLength, DWORD* state, DWORD* protocol, unsigned char* atr,
    DWORD* atrLength)
{
    Call call{Function::Status};
    call.capacity = *nameLength;
    call.atrCapacity = *atrLength;
    LONG code = SCARD_S_SUCCESS;
    if (recordAndMayFail(std::move(call), code))
        return code;
    const auto connected = m_handles.find(handle);
    if (connected == m_handles.end())
        return SCARD_E_INVALID_HANDLE;
    Reader* reader = find(connected->second);
    if (!reader)
        return SCARD_E_READER_UNAVAILABLE;
    const sim::Bytes noCard;
    const sim::Bytes& cardAtr = reader->card ? reader->card->atr() : noCard;
    if (*nameLength < reader->name.size() + 1 || *atrLength < cardAtr.size())
        return SCARD_E_INSUFFICIENT_BUFFER;
    std::memcpy(name, reader->name.c_str(), reader->name.size() + 1);
    *nameLength = reader->name.size() + 1;
    std::copy(cardAtr.begin(), cardAtr.end(), atr);
    *atrLength = cardAtr.size();
    *state = SCARD_PRESENT;
    *protocol = SCARD_PROTOCOL_T1;
    return SCARD_S_SUCCESS;
}

LONG Pcsc::transmit(
    SCARDHANDLE handle, const SCARD_IO_REQUEST* protocol, const unsigned char* send, DWORD sendLength,
    unsigned char* receive, DWORD* receiveLength)
{
    Call call{Function::Transmit};
    if (m_recording)
        call.sent.assign(send, send + sendLength);
    call.capacity = *receiveLength;
    call.protocols = protocol ? protocol->dwProtocol : 0;
    LONG code = SCARD_S_SUCCESS;
    if (recordAndMayFail(std::move(call), code))
        return code;
    const auto connected = m_handles.find(handle);
    if (connected == m_handles.end())
        return SCARD_E_INVALID_HANDLE;
    if (!protocol || protocol->dwProtocol != SCARD_PROTOCOL_T1)
        return SCARD_E_PROTO_MISMATCH;
    const Reader* reader = find(connected->second);
    if (!reader)
        return SCARD_E_READER_UNAVAILABLE;
    if (!reader->card)
        return m_removedCode;
    const std::optional<sim::Bytes> answer = reader->card->transmit({send, send + sendLength});
    if (!answer)
        return m_removedCode;
    if (m_afterTransmit)
        m_afterTransmit({send, send + sendLength}, *answer);
    if (answer->size() > *receiveLength) {
        *receiveLength = answer->size();
        return SCARD_E_INSUFFICIENT_BUFFER;
    }
    std::copy(answer->begin(), answer->end(), receive);
    *receiveLength = answer->size();
    return SCARD_S_SUCCESS;
}

LONG Pcsc::disconnect(SCARDHANDLE handle, DWORD disposition)
{
    Call call{Function::Disconnect};
    call.disposition = disposition;
    LONG code = SCARD_S_SUCCESS;
    if (recordAndMayFail(std::move(call), code))
        return code;
    const auto connected = m_handles.find(handle);
    if (connected == m_handles.end())
        return SCARD_E_INVALID_HANDLE;
    Reader* reader = find(connected->second);
    if (disposition == SCARD_RESET_CARD && reader && reader->card)
        reader->card->reset();
    m_handles.erase(connected);
    return SCARD_S_SUCCESS;
}

} // namespace standin

// The C interface. Programs that are linked with this file call it instead of libpcsclite's, of which only
// the error texts and the protocol constants are left.

using standin::Pcsc;

extern "C" {

LONG SCardEstablishContext(DWORD scope, LPCVOID, LPCVOID, LPSCARDCONTEXT context)
{
    return Pcsc::instance().establishContext(scope, context);
}

LONG SCardReleaseContext(SCARDCONTEXT context)
{
    return Pcsc::instance().releaseContext(context);
}

LONG SCardListReaders(SCARDCONTEXT context, LPCSTR, LPSTR names, LPDWORD length)
{
    return Pcsc::instance().listReaders(context, names, length);
}

LONG SCardFreeMemory(SCARDCONTEXT context, LPCVOID memory)
{
    return Pcsc::instance().freeMemory(context, memory);
}

LONG SCardGetStatusChange(SCARDCONTEXT context, DWORD timeoutMs, SCARD_READERSTATE* states, DWORD count)
{
    return Pcsc::instance().getStatusChange(context, timeoutMs, states, count);
}

LONG SCardConnect(
    SCARDCONTEXT context, LPCSTR reader, DWORD shareMode, DWORD protocols, LPSCARDHANDLE handle,
    LPDWORD activeProtocol)
{
    return Pcsc::instance().connect(context, reader, shareMode, protocols, handle, activeProtocol);
}

LONG SCardStatus(
    SCARDHANDLE handle, LPSTR name, LPDWORD nameLength, LPDWORD state, LPDWORD protocol, LPBYTE atr,
    LPDWORD atrLength)
{
    return Pcsc::instance().status(handle, name, nameLength, state, protocol, atr, atrLength);
}

LONG SCardTransmit(
    SCARDHANDLE handle, const SCARD_IO_REQUEST* sendProtocol, LPCBYTE send, DWORD sendLength,
    SCARD_IO_REQUEST*, LPBYTE receive, LPDWORD receiveLength)
{
    return Pcsc::instance().transmit(handle, sendProtocol, send, sendLength, receive, receiveLength);
}

LONG SCardDisconnect(SCARDHANDLE handle, DWORD disposition)
{
    return Pcsc::instance().disconnect(handle, disposition);
}
}
