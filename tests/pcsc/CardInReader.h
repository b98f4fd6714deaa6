#pragma once

#include <scard/SCardReader.h>
#include <simulator/Card.h>
#include <simulator/DriverCard.h>
#include <standin/Pcsc.h>
#include <support/Host.h>
#include <support/PcscPresence.h>

#include <gtest/gtest.h>

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <memory>
#include <vector>

namespace test {

/// A simulated card in the only reader of the stand-in.
class CardInReader : public testing::Test
{
  protected:
    CardInReader();
    ~CardInReader() override;

    /// Paths of the downloads that lie in "/tmp/", and their removal, with which each test ends.
    static QStringList downloads();
    static void removeDownloads();

    /// Puts another card into the reader.
    sim::Card& insert(sim::CardDescription description);

    sim::Card& card() { return *m_card; }
    static standin::Pcsc& pcsc() { return standin::Pcsc::instance(); }

    /// Lets the card say that it is of another type.
    void setTypeByte(int type);

    /// Connects to the card as a reader's open() does, for a test that drives a card object itself.
    long connect();

    /// Downloads Jana Mustermann's card DF000000123456 by each region, and looks at name and size.
    void expectFileOfEachRegion(int imageSize);

    /// Commands that the card has got, in hexadecimal.
    std::vector<std::string> commands() const;

  private:
    std::unique_ptr<sim::Card> m_card;
};

} // namespace test
