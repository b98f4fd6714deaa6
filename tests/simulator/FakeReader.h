// The reader driver's end of a vpcd connection: listens on a free port of the loopback and speaks in whole
// messages.
#pragma once

#include "Bytes.h"

#include <chrono>
#include <optional>

class FakeReader
{
  public:
    /// Long enough for a busy machine; only a failing test waits so long.
    static constexpr std::chrono::seconds Patience{20};

    /// Deaf: the port is its own, but nobody listens there before listen().
    enum class Start
    {
        Listening,
        Deaf
    };

    explicit FakeReader(Start start = Start::Listening);
    ~FakeReader();
    FakeReader(const FakeReader&) = delete;
    FakeReader& operator=(const FakeReader&) = delete;

    std::uint16_t port() const { return m_port; }

    /// Waits for a card; false when none comes.
    bool acceptCard();
    void send(const sim::Bytes& message);
    /// Bytes without a length before them.
    void sendRaw(const sim::Bytes& bytes);
    /// The next message; nullopt when the card is taken out.
    std::optional<sim::Bytes> receive();
    std::optional<sim::Bytes> ask(const sim::Bytes& message);
    /// True when the card is taken out without another message.
    bool cardIsGone();
    /// Closes the connection to the card.
    void hangUp();
    void listen();

  private:
    bool receiveExactly(std::uint8_t* to, std::size_t length);

    int m_listener = -1;
    int m_connection = -1;
    std::uint16_t m_port = 0;
};
