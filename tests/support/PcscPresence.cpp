#include "PcscPresence.h"

#include <QDeadlineTimer>

#include <winscard.h>

#include <chrono>

namespace test {

bool waitForPresence(bool present, const char* reader)
{
    SCARDCONTEXT context = 0;
    if (SCardEstablishContext(SCARD_SCOPE_SYSTEM, nullptr, nullptr, &context) != SCARD_S_SUCCESS)
        return false;
    SCARD_READERSTATE state{};
    state.szReader = reader;
    const DWORD wanted = present ? SCARD_STATE_PRESENT : SCARD_STATE_EMPTY;
    const QDeadlineTimer end(std::chrono::seconds{10});
    while (!(state.dwEventState & wanted) && !end.hasExpired()) {
        state.dwCurrentState = state.dwEventState;
        SCardGetStatusChange(context, 500, &state, 1);
    }
    SCardReleaseContext(context);
    return (state.dwEventState & wanted) != 0;
}

} // namespace test
