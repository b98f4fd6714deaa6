#include "StopSignal.h"

#include <QDeadlineTimer>

#include <algorithm>
#include <csignal>
#include <poll.h>
#include <unistd.h>

namespace StopSignal {

namespace {

volatile std::sig_atomic_t received = 0;

extern "C" void noteSignal(int number)
{
    received = number;
}

} // namespace

void install()
{
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction action = {};
        if (::sigaction(number, nullptr, &action) != 0 || action.sa_handler == SIG_IGN)
            continue;
        action = {};
        action.sa_handler = noteSignal;
        action.sa_flags = SA_RESTART;
        ::sigaction(number, &action, nullptr);
    }
}

bool requested()
{
    return received != 0;
}

void sleepFor(int milliseconds)
{
    // In slices: a signal that comes just before the poll does not interrupt it.
    constexpr qint64 sliceMs = 250;
    const QDeadlineTimer end(milliseconds);
    while (!requested() && !end.hasExpired())
        ::poll(nullptr, 0, static_cast<int>(std::min(sliceMs, end.remainingTime())));
}

void endProgram()
{
    const int number = received;
    std::signal(number, SIG_DFL);
    std::raise(number);
    constexpr int killed = 128;
    ::_exit(killed + number);
}

} // namespace StopSignal
