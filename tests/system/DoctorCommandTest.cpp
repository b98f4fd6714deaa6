// `scard doctor` as a person uses it.
#include "CardBehindPcscd.h"
#include "CardService.h"

#include <simulator/ControlCard.h>
#include <support/ExpectedDriver.h>
#include <support/PcscPresence.h>
#include <support/RunningProgram.h>

#include <gmock/gmock.h>

#include <winscard.h>

namespace {

using namespace test;
using testing::HasSubstr;
using testing::Not;

/// A program that is connected to the card in the first reader.
class OtherProgram
{
  public:
    explicit OtherProgram(DWORD mode)
    {
        DWORD protocol = 0;
        EXPECT_EQ(SCardEstablishContext(SCARD_SCOPE_SYSTEM, nullptr, nullptr, &m_context), SCARD_S_SUCCESS);
        EXPECT_EQ(
            SCardConnect(m_context, virtualReaderName, mode, SCARD_PROTOCOL_T1, &m_card, &protocol),
            SCARD_S_SUCCESS);
    }
    ~OtherProgram()
    {
        SCardDisconnect(m_card, SCARD_LEAVE_CARD);
        SCardReleaseContext(m_context);
    }
    OtherProgram(const OtherProgram&) = delete;
    OtherProgram& operator=(const OtherProgram&) = delete;

  private:
    SCARDCONTEXT m_context = 0;
    SCARDHANDLE m_card = 0;
};

class DoctorCommandTest : public CardBehindPcscd
{};

TEST_F(DoctorCommandTest, SaysWhatACardIs)
{
    insert(driverCardV2());
    const Outcome outcome = scardProgram({"doctor"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(
        outcome.out, "Card service: answers\n"
                     "Reader: Simulated reader 00 00 (used): card\n"
                     "Reader: Simulated reader 00 01: no card\n"
                     "Card: driver card, second generation, version 2.2\n");
}

TEST_F(DoctorCommandTest, LeavesTheCardAsItWasPutIn)
{
    insert(driverCard());
    EXPECT_EQ(scardProgram({"doctor"}).exitCode, 0);
    const Outcome outcome = scardProgram({"download", "--json"});
    EXPECT_THAT(outcome.out, HasSubstr("\"unread_efs\":[]"));
    EXPECT_EQ(outcome.err, "");
}

TEST_F(DoctorCommandTest, SaysThatThereIsNoCard)
{
    ASSERT_TRUE(waitForPresence(false));
    const Outcome outcome = scardProgram({"doctor"});
    EXPECT_EQ(outcome.exitCode, 3);
    EXPECT_THAT(
        outcome.out, HasSubstr("Card: There is no card in the reader that is used.\n"
                               "  Put the card into Simulated reader 00 00, chip first.\n"));
}

TEST_F(DoctorCommandTest, SaysThatThereIsNoService)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("PCSCLITE_CSOCK_NAME", "/run/pcscd/nobody.comm");
    const Outcome outcome = scardProgram({"doctor"}, environment);
    EXPECT_EQ(outcome.exitCode, 2);
    EXPECT_EQ(
        outcome.out, "Card service: The card service of this machine does not answer.\n"
                     "  Is pcscd installed and running? \"systemctl start pcscd.socket\" starts it.\n");
}

TEST_F(DoctorCommandTest, SaysThatThereIsNoReader)
{
    CardService service;
    service.stop();
    service.start(CardService::Readers::None);
    const Outcome outcome = scardProgram({"doctor"});
    EXPECT_EQ(outcome.exitCode, 2);
    EXPECT_THAT(
        outcome.out,
        HasSubstr("Card service: answers\nReader: There is no card reader.\n  Plug a reader in"));
}

TEST_F(DoctorCommandTest, SaysThatAnotherProgramHasTheCardToItself)
{
    insert(driverCard());
    const OtherProgram other(SCARD_SHARE_EXCLUSIVE);
    const Outcome outcome = scardProgram({"doctor"});
    EXPECT_EQ(outcome.exitCode, 4);
    EXPECT_THAT(
        outcome.out, HasSubstr("(used): card, held by another program\n"
                               "Reader: Simulated reader 00 01: no card\n"
                               "Card: Another program has the card to itself.\n"
                               "  End that program, and try again.\n"));
}

TEST_F(DoctorCommandTest, DoesNotDisturbAnotherProgram)
{
    insert(driverCard());
    {
        const OtherProgram other(SCARD_SHARE_SHARED);
        const Outcome outcome = scardProgram({"doctor"});
        EXPECT_EQ(outcome.exitCode, 0);
        EXPECT_THAT(outcome.out, HasSubstr("Card: Another program is connected to the card"));
    }
    takeOut();
    EXPECT_EQ(card().commandCount(), 0U);
}

TEST_F(DoctorCommandTest, KnowsACardThatIsNoTachographCard)
{
    sim::CardDescription other = driverCard();
    other.applications.clear();
    insert(other);
    const Outcome outcome = scardProgram({"doctor"});
    EXPECT_EQ(outcome.exitCode, 4);
    EXPECT_THAT(outcome.out, HasSubstr("Card: The card in the reader is not a tachograph card.\n"));
    EXPECT_THAT(outcome.err, Not(HasSubstr("libscard: ")));
    EXPECT_THAT(
        scardProgram({"doctor", "--verbose"}).err, HasSubstr("libscard: ScDataTransfer failed [6A82]"));
}

TEST_F(DoctorCommandTest, RefusesArguments)
{
    const Outcome outcome = scardProgram({"doctor", "me"});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(outcome.err, "scard doctor: unexpected argument \"me\".\nSee: scard doctor --help\n");
}

} // namespace
