#include "Channel.h"

#include <simulator/VpcdLink.h>
#include <support/PcscPresence.h>

#include <chrono>
#include <memory>
#include <stdexcept>
#include <thread>

namespace bench {

namespace {

std::unique_ptr<sim::VpcdLink> link;
std::thread server;

} // namespace

void putIntoReader(sim::Card& card)
{
    link = std::make_unique<sim::VpcdLink>(card, "127.0.0.1", test::virtualReaderPort);
    if (!test::waitForPresence(false) || !link->connect(std::chrono::seconds{5}))
        throw std::runtime_error("no virtual reader: run with scripts/with-virtual-reader.sh");
    server = std::thread([] { link->run(); });
    if (!test::waitForPresence(true))
        throw std::runtime_error("the card is not seen in the virtual reader");
}

void takeOut()
{
    link->stop();
    server.join();
    link.reset();
}

const char* channelName()
{
    return "pcscd";
}

} // namespace bench
