#include "CardBehindPcscd.h"

#include <support/PcscPresence.h>

#include <chrono>

namespace test {

namespace {

constexpr std::chrono::seconds patience{10};

} // namespace

sim::CardDescription janasCard()
{
    sim::DriverParameters parameters;
    parameters.surname = "Mustermann";
    parameters.firstNames = "Jana";
    parameters.driverIdentification = "DF000000123456";
    parameters.language = "de";
    return sim::makeDriverCardG1(parameters);
}

CardBehindPcscd::~CardBehindPcscd()
{
    takeOut();
    waitForPresence(false);
}

void CardBehindPcscd::insert(const sim::CardDescription& description)
{
    takeOut();
    m_card = std::make_unique<sim::Card>(description);
    insertAgain();
}

void CardBehindPcscd::insertAgain()
{
    // pcscd must have seen the last card leave, or it takes the new one for it.
    ASSERT_TRUE(waitForPresence(false));
    m_card->insert();
    m_link = std::make_unique<sim::VpcdLink>(*m_card, "127.0.0.1", virtualReaderPort);
    ASSERT_TRUE(m_link->connect(patience));
    m_server = std::thread([link = m_link.get()] { link->run(); });
    ASSERT_TRUE(waitForPresence(true));
}

void CardBehindPcscd::takeOut()
{
    if (m_link)
        m_link->stop();
    if (m_server.joinable())
        m_server.join();
    m_link.reset();
}

} // namespace test
