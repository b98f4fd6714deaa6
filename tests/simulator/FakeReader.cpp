#include "FakeReader.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <stdexcept>
#include <sys/socket.h>
#include <unistd.h>

namespace {

bool waitForInput(int descriptor)
{
    const auto patience = std::chrono::milliseconds(FakeReader::Patience).count();
    pollfd waiting{descriptor, POLLIN, 0};
    return ::poll(&waiting, 1, static_cast<int>(patience)) == 1;
}

} // namespace

FakeReader::FakeReader(Start start) : m_listener(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0))
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    auto* const generic = reinterpret_cast<sockaddr*>(&address);
    if (::bind(m_listener, generic, length) != 0 || ::getsockname(m_listener, generic, &length) != 0) {
        throw std::runtime_error("no port");
    }
    m_port = ntohs(address.sin_port);
    if (start == Start::Listening) {
        listen();
    }
}

FakeReader::~FakeReader()
{
    hangUp();
    ::close(m_listener);
}

void FakeReader::listen()
{
    if (::listen(m_listener, 1) != 0) {
        throw std::runtime_error("the port cannot be listened on");
    }
}

bool FakeReader::acceptCard()
{
    hangUp();
    if (!waitForInput(m_listener)) {
        return false;
    }
    m_connection = ::accept4(m_listener, nullptr, nullptr, SOCK_CLOEXEC);
    return m_connection >= 0;
}

void FakeReader::send(const sim::Bytes& message)
{
    // Two writes, as the driver does it.
    sim::Bytes length;
    sim::appendU16(length, static_cast<std::uint32_t>(message.size()));
    sendRaw(length);
    sendRaw(message);
}

void FakeReader::sendRaw(const sim::Bytes& bytes)
{
    if (::send(m_connection, bytes.data(), bytes.size(), MSG_NOSIGNAL) !=
        static_cast<ssize_t>(bytes.size())) {
        throw std::runtime_error("the card does not take the message");
    }
}

bool FakeReader::receiveExactly(std::uint8_t* to, std::size_t length)
{
    while (length > 0) {
        if (!waitForInput(m_connection)) {
            throw std::runtime_error("the card does not answer");
        }
        const ssize_t got = ::recv(m_connection, to, length, 0);
        if (got <= 0) {
            return false;
        }
        to += got;
        length -= static_cast<std::size_t>(got);
    }
    return true;
}

std::optional<sim::Bytes> FakeReader::receive()
{
    sim::Bytes message(2);
    if (!receiveExactly(message.data(), message.size())) {
        return std::nullopt;
    }
    message.resize(sim::readU16(message, 0));
    if (!receiveExactly(message.data(), message.size())) {
        return std::nullopt;
    }
    return message;
}

std::optional<sim::Bytes> FakeReader::ask(const sim::Bytes& message)
{
    send(message);
    return receive();
}

bool FakeReader::cardIsGone()
{
    return !receive();
}

void FakeReader::hangUp()
{
    if (m_connection >= 0) {
        ::close(m_connection);
        m_connection = -1;
    }
}
