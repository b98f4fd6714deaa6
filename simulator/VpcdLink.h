// Puts a Card into the virtual reader of a pcscd: the card's end of the reader driver's TCP connection.
#pragma once

#include "Card.h"

#include <string>

namespace sim {

/// One insertion: connect() puts the card into the reader, run() serves it, the end of run() takes it out.
class VpcdLink
{
  public:
    /// Why run() came back.
    enum class End
    {
        Stopped,    ///< stop() was called
        ReaderGone, ///< the reader closed the connection or broke the message format
        CardPulled, ///< the card is not inserted any more
    };

    /// `card` must outlive the link. While run() works only its thread may use the card, but for what Card
    /// allows to any thread. Throws std::system_error when the system is out of descriptors.
    VpcdLink(Card& card, std::string host, std::uint16_t port);
    ~VpcdLink();
    VpcdLink(const VpcdLink&) = delete;
    VpcdLink& operator=(const VpcdLink&) = delete;

    /// Connects to the reader, trying again while nobody listens; false after `timeout`, after stop() or when
    /// the host is unknown. May be called again after run().
    bool connect(std::chrono::milliseconds timeout);

    /// Serves the reader until one of the ends; closes the connection, which takes the card out. Without a
    /// connection it returns ReaderGone at once. A card pulled from another thread is noticed at the reader's
    /// next message.
    End run();

    /// Ends connect() and run() now and for good. Any thread, also a signal handler.
    void stop() const noexcept;
    bool isStopped() const;

  private:
    enum class Wait
    {
        Ready,
        Stopped,
        TimedOut
    };

    Wait waitFor(int descriptor, short events, int timeoutMs) const;
    bool tryConnect(std::chrono::steady_clock::time_point deadline);
    std::optional<End> receive(std::uint8_t* to, std::size_t length);
    std::optional<End> send(const Bytes& message);
    std::optional<End> serveOne();
    void close();

    Card& m_card;
    std::string m_host;
    std::uint16_t m_port;
    int m_socket = -1;
    int m_stopEvent = -1;
};

} // namespace sim
