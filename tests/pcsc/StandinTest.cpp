// The stand-in itself: it must answer as PC/SC does, or what it proves of the library is worth nothing.
#include "CardInReader.h"

#include <gtest/gtest.h>

#include <reader.h>

#include <array>

namespace {

using namespace test;
using standin::Function;

class StandinTest : public CardInReader
{
  protected:
    LONG transmit(const SCARD_IO_REQUEST* protocol = SCARD_PCI_T1, DWORD capacity = 300)
    {
        const std::array<unsigned char, 5> getChallenge{0x00, 0x84, 0x00, 0x00, 0x08};
        received = capacity;
        return SCardTransmit(
            handle, protocol, getChallenge.data(), getChallenge.size(), nullptr, answer.data(), &received);
    }

    SCARDHANDLE handle = connect();
    std::array<unsigned char, 300> answer{};
    DWORD received = 0;
};

TEST_F(StandinTest, ACommandReachesTheCard)
{
    EXPECT_EQ(transmit(), SCARD_S_SUCCESS);
    EXPECT_EQ(received, 10u);
    EXPECT_EQ(answer[8], 0x90);
}

TEST_F(StandinTest, AnotherProtocolIsAMismatch)
{
    EXPECT_EQ(transmit(SCARD_PCI_T0), SCARD_E_PROTO_MISMATCH);
}

TEST_F(StandinTest, ATooSmallBufferIsRefused)
{
    EXPECT_EQ(transmit(SCARD_PCI_T1, 9), SCARD_E_INSUFFICIENT_BUFFER);
}

TEST_F(StandinTest, AHandleThatWasGivenBackIsInvalid)
{
    EXPECT_EQ(SCardDisconnect(handle, SCARD_LEAVE_CARD), SCARD_S_SUCCESS);
    EXPECT_EQ(SCardDisconnect(handle, SCARD_LEAVE_CARD), SCARD_E_INVALID_HANDLE);
    EXPECT_EQ(transmit(), SCARD_E_INVALID_HANDLE);
}

TEST_F(StandinTest, ThePulledCardsCodeCanBeChosen)
{
    card().pull();
    EXPECT_EQ(transmit(), SCARD_W_REMOVED_CARD);
    pcsc().setRemovedCode(SCARD_E_NOT_TRANSACTED);
    EXPECT_EQ(transmit(), SCARD_E_NOT_TRANSACTED);
}

TEST_F(StandinTest, TheNthCallFailsAndOnlyThatOne)
{
    pcsc().failCall(Function::Transmit, 1, SCARD_F_COMM_ERROR);
    EXPECT_EQ(transmit(), SCARD_S_SUCCESS);
    EXPECT_EQ(transmit(), SCARD_F_COMM_ERROR);
    EXPECT_EQ(transmit(), SCARD_S_SUCCESS);
    EXPECT_EQ(pcsc().count(Function::Transmit), 3u);
}

TEST_F(StandinTest, EachReaderIsListedAndTheListHasToBeFreed)
{
    pcsc().addReader("B");
    SCARDCONTEXT context = 0;
    ASSERT_EQ(SCardEstablishContext(SCARD_SCOPE_SYSTEM, nullptr, nullptr, &context), SCARD_S_SUCCESS);
    char* names = nullptr;
    DWORD length = SCARD_AUTOALLOCATE;
    ASSERT_EQ(SCardListReaders(context, nullptr, reinterpret_cast<LPSTR>(&names), &length), SCARD_S_SUCCESS);
    EXPECT_EQ(std::string(names, length), std::string(virtualReaderName) + '\0' + "B" + '\0' + '\0');
    EXPECT_EQ(pcsc().listsNotFreed(), 1u);
    EXPECT_EQ(SCardFreeMemory(context, names), SCARD_S_SUCCESS);
    EXPECT_EQ(SCardReleaseContext(context), SCARD_S_SUCCESS);
    EXPECT_EQ(SCardReleaseContext(context), SCARD_E_INVALID_HANDLE);
}

TEST_F(StandinTest, AStaleContextTouchesNoState)
{
    SCARD_READERSTATE state{};
    state.szReader = virtualReaderName;
    state.dwEventState = 0x1234;
    EXPECT_EQ(SCardGetStatusChange(4711, 0, &state, 1), SCARD_E_INVALID_HANDLE);
    EXPECT_EQ(state.dwEventState, 0x1234u);
}

} // namespace
