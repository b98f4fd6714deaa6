#include "ScriptedReader.h"

#include <algorithm>
#include <cstring>
#include <string>

namespace {

constexpr char readerName[] = "Scripted reader 00 00";
char readerNames[] = "Scripted reader 00 00\0";

fuzz::CardAnswers& card()
{
    static fuzz::CardAnswers answers;
    return answers;
}

} // namespace

void fuzz::setCard(CardAnswers answers)
{
    card() = std::move(answers);
}

extern "C" {

const SCARD_IO_REQUEST g_rgSCardT1Pci = {SCARD_PROTOCOL_T1, sizeof(SCARD_IO_REQUEST)};

LONG SCardEstablishContext(DWORD, LPCVOID, LPCVOID, LPSCARDCONTEXT context)
{
    *context = 1;
    return SCARD_S_SUCCESS;
}

LONG SCardReleaseContext(SCARDCONTEXT)
{
    return SCARD_S_SUCCESS;
}

LONG SCardListReaders(SCARDCONTEXT, LPCSTR, LPSTR readers, LPDWORD length)
{
    *reinterpret_cast<LPSTR*>(readers) = readerNames;
    *length = sizeof readerNames;
    return SCARD_S_SUCCESS;
}

LONG SCardFreeMemory(SCARDCONTEXT, LPCVOID)
{
    return SCARD_S_SUCCESS;
}

LONG SCardGetStatusChange(SCARDCONTEXT, DWORD, SCARD_READERSTATE*, DWORD)
{
    return SCARD_E_TIMEOUT;
}

LONG SCardConnect(SCARDCONTEXT, LPCSTR, DWORD, DWORD, LPSCARDHANDLE handle, LPDWORD protocol)
{
    *handle = 1;
    *protocol = SCARD_PROTOCOL_T1;
    return SCARD_S_SUCCESS;
}

LONG SCardStatus(
    SCARDHANDLE, LPSTR name, LPDWORD nameLength, LPDWORD state, LPDWORD protocol, LPBYTE atr,
    LPDWORD atrLength)
{
    std::strcpy(name, readerName);
    *nameLength = sizeof readerName;
    *state = SCARD_PRESENT;
    *protocol = SCARD_PROTOCOL_T1;
    *atr = 0x3B;
    *atrLength = 1;
    return SCARD_S_SUCCESS;
}

LONG SCardTransmit(
    SCARDHANDLE, const SCARD_IO_REQUEST*, LPCBYTE command, DWORD commandLength, SCARD_IO_REQUEST*,
    LPBYTE receive, LPDWORD received)
{
    const fuzz::Answer answer = card()({command, command + commandLength});
    const DWORD capacity = *received;
    *received = 0;
    if (answer.code != SCARD_S_SUCCESS)
        return answer.code;
    if (answer.bytes.size() > capacity)
        return SCARD_E_INSUFFICIENT_BUFFER;
    std::copy(answer.bytes.begin(), answer.bytes.end(), receive);
    *received = static_cast<DWORD>(answer.bytes.size());
    return SCARD_S_SUCCESS;
}

LONG SCardDisconnect(SCARDHANDLE, DWORD)
{
    return SCARD_S_SUCCESS;
}

const char* pcsc_stringify_error(const LONG)
{
    return "failed";
}
}
