#include "VpcdLink.h"

#include <algorithm>
#include <cerrno>
#include <memory>
#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace sim {

namespace {

constexpr std::uint8_t ControlPowerOff = 0x00;
constexpr std::uint8_t ControlPowerOn = 0x01;
constexpr std::uint8_t ControlReset = 0x02;
constexpr std::uint8_t ControlGetAtr = 0x04;

constexpr std::size_t LengthPrefix = 2;
constexpr std::size_t LargestMessage = 0xFFFF;
/// Between two attempts while the reader does not listen.
constexpr int RetryMs = 20;
constexpr int NoTimeout = -1;

int millisecondsUntil(std::chrono::steady_clock::time_point deadline)
{
    const auto left =
        std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
    return left.count() > 0 ? static_cast<int>(std::min<std::chrono::milliseconds::rep>(left.count(), 60000))
                            : 0;
}

void setTcpOption(int socket, int option)
{
    const int on = 1;
    ::setsockopt(socket, IPPROTO_TCP, option, &on, sizeof on);
}

} // namespace

VpcdLink::VpcdLink(Card& card, std::string host, std::uint16_t port)
    : m_card(card), m_host(std::move(host)), m_port(port),
      m_stopEvent(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
{
    if (m_stopEvent < 0) {
        throw std::system_error(errno, std::generic_category(), "eventfd");
    }
}

VpcdLink::~VpcdLink()
{
    close();
    ::close(m_stopEvent);
}

void VpcdLink::stop() const noexcept
{
    // Never read back, so that a stop before run() is not lost.
    const int before = errno;
    const std::uint64_t one = 1;
    [[maybe_unused]] const ssize_t written = ::write(m_stopEvent, &one, sizeof one);
    errno = before;
}

bool VpcdLink::isStopped() const
{
    return waitFor(-1, 0, 0) == Wait::Stopped;
}

void VpcdLink::close()
{
    if (m_socket >= 0) {
        ::close(m_socket);
        m_socket = -1;
    }
}

/// Waits for `events` on `descriptor` (-1: only for time and stop()).
VpcdLink::Wait VpcdLink::waitFor(int descriptor, short events, int timeoutMs) const
{
    pollfd descriptors[2] = {{m_stopEvent, POLLIN, 0}, {descriptor, events, 0}};
    int ready = 0;
    do {
        ready = ::poll(descriptors, 2, timeoutMs);
    } while (ready < 0 && errno == EINTR);
    if (ready < 0) {
        throw std::system_error(errno, std::generic_category(), "poll");
    }
    if (descriptors[0].revents != 0) {
        return Wait::Stopped;
    }
    return ready == 0 ? Wait::TimedOut : Wait::Ready;
}

bool VpcdLink::connect(std::chrono::milliseconds timeout)
{
    const auto deadline = std::chrono::steady_clock::now() + timeout;
    close();
    do {
        if (tryConnect(deadline)) {
            // The answers are small; without this each waits for the acknowledgement of the one before.
            setTcpOption(m_socket, TCP_NODELAY);
            return true;
        }
        if (waitFor(-1, 0, std::min(RetryMs, millisecondsUntil(deadline))) == Wait::Stopped) {
            return false;
        }
    } while (std::chrono::steady_clock::now() < deadline);
    return false;
}

bool VpcdLink::tryConnect(std::chrono::steady_clock::time_point deadline)
{
    addrinfo hints{};
    hints.ai_family = AF_UNSPEC;
    hints.ai_socktype = SOCK_STREAM;
    addrinfo* found = nullptr;
    if (::getaddrinfo(m_host.c_str(), std::to_string(m_port).c_str(), &hints, &found) != 0) {
        return false;
    }
    const std::unique_ptr<addrinfo, decltype(&::freeaddrinfo)> addresses(found, &::freeaddrinfo);
    for (const addrinfo* address = found; address && m_socket < 0; address = address->ai_next) {
        m_socket = ::socket(
            address->ai_family, address->ai_socktype | SOCK_NONBLOCK | SOCK_CLOEXEC, address->ai_protocol);
        if (m_socket < 0) {
            continue;
        }
        int error = ::connect(m_socket, address->ai_addr, address->ai_addrlen) == 0 ? 0 : errno;
        if (error == EINPROGRESS && waitFor(m_socket, POLLOUT, millisecondsUntil(deadline)) == Wait::Ready) {
            socklen_t length = sizeof error;
            ::getsockopt(m_socket, SOL_SOCKET, SO_ERROR, &error, &length);
        }
        if (error != 0) {
            close();
        }
    }
    return m_socket >= 0;
}

std::optional<VpcdLink::End> VpcdLink::receive(std::uint8_t* to, std::size_t length)
{
    while (length > 0) {
        // The reader driver sends length and bytes of an APDU as two segments and holds the second back until
        // the first is acknowledged. The option does not last, hence each time.
        setTcpOption(m_socket, TCP_QUICKACK);
        const ssize_t got = ::recv(m_socket, to, length, 0);
        if (got > 0) {
            to += got;
            length -= static_cast<std::size_t>(got);
        } else if (got < 0 && (errno == EAGAIN || errno == EINTR)) {
            if (waitFor(m_socket, POLLIN, NoTimeout) == Wait::Stopped) {
                return End::Stopped;
            }
        } else {
            return End::ReaderGone;
        }
    }
    return std::nullopt;
}

std::optional<VpcdLink::End> VpcdLink::send(const Bytes& message)
{
    if (message.size() > LargestMessage) {
        return End::ReaderGone;
    }
    // One segment for prefix and message.
    Bytes out;
    appendU16(out, static_cast<std::uint32_t>(message.size()));
    appendBytes(out, message);
    std::size_t done = 0;
    while (done < out.size()) {
        const ssize_t sent = ::send(m_socket, out.data() + done, out.size() - done, MSG_NOSIGNAL);
        if (sent >= 0) {
            done += static_cast<std::size_t>(sent);
        } else if (errno == EAGAIN || errno == EINTR) {
            if (waitFor(m_socket, POLLOUT, NoTimeout) == Wait::Stopped) {
                return End::Stopped;
            }
        } else {
            return End::ReaderGone;
        }
    }
    return std::nullopt;
}

/// One message of the reader and, where it has one, the answer; the end if it was the last.
std::optional<VpcdLink::End> VpcdLink::serveOne()
{
    Bytes message(LengthPrefix);
    if (const auto end = receive(message.data(), message.size())) {
        return end;
    }
    message.resize(readU16(message, 0));
    if (const auto end = receive(message.data(), message.size())) {
        return end;
    }
    if (message.empty()) {
        return End::ReaderGone;
    }
    if (!m_card.isInserted()) {
        return End::CardPulled;
    }
    if (message.size() > 1) {
        const std::optional<Bytes> answer = m_card.transmit(message);
        if (!answer) {
            return End::CardPulled;
        }
        return send(*answer);
    }
    switch (message[0]) {
    case ControlPowerOff:
    case ControlPowerOn:
    case ControlReset:
        m_card.reset();
        return std::nullopt;
    case ControlGetAtr:
        return send(m_card.atr());
    default:
        return End::ReaderGone;
    }
}

VpcdLink::End VpcdLink::run()
{
    std::optional<End> end;
    if (m_socket < 0) {
        end = End::ReaderGone;
    }
    while (!end) {
        // Also between messages that are already here: a busy reader must not keep stop() waiting.
        end = waitFor(m_socket, POLLIN, NoTimeout) == Wait::Stopped ? End::Stopped : serveOne();
    }
    close();
    return *end;
}

} // namespace sim
