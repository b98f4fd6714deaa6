#pragma once

#include <simulator/Card.h>
#include <simulator/DriverCard.h>
#include <simulator/VpcdLink.h>
#include <support/Host.h>

#include <gtest/gtest.h>

#include <memory>
#include <thread>

namespace test {

/// The first-generation card of a driver whose name and number the tests know.
sim::CardDescription janasCard();

/// A simulated card that can be put into the virtual reader of the pcscd beside this program.
class CardBehindPcscd : public testing::Test
{
  protected:
    ~CardBehindPcscd() override;

    /// Puts a card into the reader; the link serves it from a thread of its own.
    void insert(const sim::CardDescription& description);

    /// The same card once more, as a driver puts it back.
    void insertAgain();

    /// Takes the card out and waits until the link has noticed.
    void takeOut();

    /// The card; its files and its log only after takeOut(), while the link does not use it.
    sim::Card& card() { return *m_card; }

  private:
    std::unique_ptr<sim::Card> m_card;
    std::unique_ptr<sim::VpcdLink> m_link;
    std::thread m_server;
};

} // namespace test
