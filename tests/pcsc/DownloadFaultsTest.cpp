// More of what can go wrong at each command and at each PC/SC call, with a full first-generation driver card:
// every status word, every code, wrong lengths.
#include "CardInReader.h"
#include "ExpectedDriver.h"

#include <support/DebugStream.h>

#include <QDir>

#include <gmock/gmock.h>

#include <functional>

namespace {

using namespace test;
using standin::Function;
using testing::ElementsAre;
using testing::IsEmpty;

class DownloadFaultsTest : public CardInReader
{
  protected:
    DownloadFaultsTest()
    {
        for (const sim::FileDescription& file : driverCard().applications.front().files)
            if (file.fid == 0x050E)
                unstamped = file.content;
    }

    ~DownloadFaultsTest() override { removeFiles(); }

    static void removeFiles()
    {
        QDir tmp("/tmp");
        for (const QString& name : tmp.entryList({"C_*"}, QDir::Files))
            tmp.remove(name);
    }

    bool stamped() { return *card().file(sim::AidG1, 0x050E) != unstamped; }

    /// A fresh card in the reader, with what goes wrong set on it; the host stays the same.
    Download downloadWith(const std::function<void()>& setFault)
    {
        insert(driverCard());
        pcsc().clearCalls();
        setFault();
        DebugStream::clear();
        return host.download();
    }

    /// A fresh card after the failure gives the whole image, to the same host.
    void expectNextDownloadToWork()
    {
        const Download next = downloadWith([] {});
        EXPECT_THAT(chain(next.failure), IsEmpty());
        EXPECT_EQ(bytes(next.image), image);
        EXPECT_TRUE(stamped());
    }

    /// What every failed download has in common.
    void expectCleanFailure(const Download& result, const Chain& expected)
    {
        EXPECT_EQ(chain(result.failure), expected);
        EXPECT_FALSE(result.card);
        EXPECT_EQ(result.errors, 0);
        EXPECT_FALSE(stamped());
        EXPECT_EQ(pcsc().connectedCards(), 0u);
        EXPECT_EQ(pcsc().openContexts(), 1u);
        EXPECT_EQ(pcsc().listsNotFreed(), 0u);
    }

    Host host;
    sim::Bytes unstamped;
    const sim::Bytes image = expectedImage(driverCard());
    const std::vector<Step> steps = expectedSteps();
};

/// The command whose failure a download ends with, when nothing answers from command @p index on.
std::size_t whereSilenceShows(const std::vector<Step>& steps, std::size_t index)
{
    constexpr std::size_t secondGenerationsName = 4;
    constexpr std::size_t typeFile = 6;
    constexpr std::size_t totalsName = 8;
    constexpr std::size_t readingsName = 11;
    // EF_ICC and EF_IC are tried and left. Without an answer to the second generation's name the card
    // counts as one of it, and its type cannot be read.
    if (index <= secondGenerationsName)
        return typeFile;
    // The total of an application that cannot be selected is 0; the reading then fails.
    if (index == totalsName && steps[index].phase == Phase::Total)
        return readingsName;
    return index;
}

TEST_F(DownloadFaultsTest, ACardPulledAtAnyCommandEndsTheDownload)
{
    for (std::size_t index = 0; index < steps.size(); ++index) {
        SCOPED_TRACE(index);
        const Download result = downloadWith([&] { card().failAt(index, sim::Fault::pulled()); });
        const Entry cause = test::pcsc("ScDataTransfer SCardTransmit() Failed", SCARD_W_REMOVED_CARD);

        expectCleanFailure(result, expectedChain(steps[whereSilenceShows(steps, index)], cause));
        // During identification there is no card object yet whose signal the reader could forward. The
        // selection for the total is tried and left, so the next command meets the same empty reader.
        const bool totalsName = steps[index].phase == Phase::Total && steps[index].kind == Kind::SelectName;
        EXPECT_EQ(result.removed, steps[index].phase == Phase::Identification ? 0 : totalsName ? 2 : 1);
        expectNextDownloadToWork();
    }
}

/// The chain of a refusal at one command, empty when the download goes on without it.
Chain chainOfRefusal(const std::vector<Step>& steps, std::size_t index, const Entry& cause, unsigned int word)
{
    if (steps[index].tolerated)
        return {};
    const bool secondGenerationsName = steps[index].name == "SMRDT";
    if (secondGenerationsName && word == 0x6A82)
        return {}; // the plain answer of a first-generation card
    if (secondGenerationsName)
        // Taken for a card of the second generation, with no application selected.
        return {
            lib("ScDataTransfer failed", 0x6A82), lib("ScSelectFile Failed: By ID501", 0x6A82),
            lib("readFrom() ScSelectFile() Failed: ID 501", 0x6A82),
            lib("Failed at reading card information")};
    return expectedChain(steps[index], cause);
}

TEST_F(DownloadFaultsTest, AReaderThatAnswersNoMoreFromAnyCommandOnEndsTheDownload)
{
    for (std::size_t index = 0; index < steps.size(); ++index) {
        for (const LONG code : {SCARD_E_NOT_TRANSACTED, SCARD_W_RESET_CARD, SCARD_E_NO_SERVICE}) {
            SCOPED_TRACE(testing::Message() << index << ' ' << pcsc_stringify_error(code));
            const Download result = downloadWith([&] {
                for (std::size_t later = index; later < steps.size(); ++later)
                    pcsc().failCall(Function::Transmit, later, code);
            });
            const Entry cause = test::pcsc("ScDataTransfer SCardTransmit() Failed", code);
            expectCleanFailure(result, expectedChain(steps[whereSilenceShows(steps, index)], cause));
            EXPECT_EQ(result.removed, 0);
            expectNextDownloadToWork();
        }
    }
}

TEST_F(DownloadFaultsTest, EachTransmissionThatFailsOnceEndsTheDownloadOrIsTolerated)
{
    for (std::size_t index = 0; index < steps.size(); ++index) {
        for (const LONG code :
             {SCARD_E_NOT_TRANSACTED, SCARD_E_PROTO_MISMATCH, SCARD_E_NO_SMARTCARD, SCARD_W_RESET_CARD,
              SCARD_E_INSUFFICIENT_BUFFER, SCARD_F_COMM_ERROR}) {
            SCOPED_TRACE(testing::Message() << index << ' ' << pcsc_stringify_error(code));
            const Download result = downloadWith([&] { pcsc().failCall(Function::Transmit, index, code); });
            const Chain expected =
                chainOfRefusal(steps, index, test::pcsc("ScDataTransfer SCardTransmit() Failed", code), 0);
            if (expected.empty()) {
                EXPECT_THAT(chain(result.failure), IsEmpty());
                EXPECT_TRUE(stamped());
            } else {
                expectCleanFailure(result, expected);
            }
        }
        expectNextDownloadToWork();
    }
}

TEST_F(DownloadFaultsTest, AFailedStartNamesThePcscCallAndCanBeTriedAgain)
{
    const struct
    {
        Function function;
        const char* message;
    } rows[] = {
        {Function::EstablishContext, "init: ScardEstablishContext() Failed!"},
        {Function::ListReaders, "init: SCardListReaders() Failed"},
        {Function::Connect, "open: SCardConnect() Failed"},
        {Function::Status, "open: SCardStatus() Failed"},
    };
    for (const auto& row : rows) {
        for (const LONG code :
             {SCARD_E_NO_SERVICE, SCARD_E_NO_MEMORY, SCARD_E_INVALID_HANDLE, SCARD_E_SHARING_VIOLATION,
              SCARD_F_COMM_ERROR, SCARD_W_UNRESPONSIVE_CARD, SCARD_E_PROTO_MISMATCH}) {
            SCOPED_TRACE(testing::Message() << row.message << ' ' << pcsc_stringify_error(code));
            pcsc().failCall(row.function, pcsc().count(row.function), code);
            insert(driverCard());
            Host freshHost;
            const Download result = freshHost.download();
            EXPECT_THAT(chain(result.failure), ElementsAre(test::pcsc(row.message, code)));
            EXPECT_FALSE(stamped());
            EXPECT_EQ(pcsc().listsNotFreed(), 0u);
            EXPECT_EQ(pcsc().connectedCards(), 0u); // a connection without status is closed by close()
            EXPECT_THAT(chain(freshHost.download().failure), IsEmpty());
        }
    }
}

TEST_F(DownloadFaultsTest, EachStatusWordAtEachCommandEndsTheDownload)
{
    for (const unsigned int word :
         {0x6281u, 0x6282u, 0x6300u, 0x63C3u, 0x6400u, 0x6500u, 0x6581u, 0x6688u, 0x6700u, 0x6881u, 0x6882u,
          0x6883u, 0x6900u, 0x6982u, 0x6983u, 0x6985u, 0x6986u, 0x6987u, 0x6988u, 0x6A80u, 0x6A81u, 0x6A82u,
          0x6A86u, 0x6A87u, 0x6A88u, 0x6B00u, 0x6C10u, 0x6110u, 0x6D00u, 0x6E00u, 0x6F00u}) {
        for (std::size_t index = 0; index < steps.size(); ++index) {
            SCOPED_TRACE(testing::Message() << index << ' ' << std::hex << word);
            const Download result = downloadWith(
                [&] { card().failAt(index, sim::Fault::status(static_cast<std::uint16_t>(word))); });
            const Chain expected = chainOfRefusal(steps, index, lib("ScDataTransfer failed", word), word);
            if (expected.empty()) {
                EXPECT_THAT(chain(result.failure), IsEmpty());
                EXPECT_EQ(result.image.size(), 26635);
                EXPECT_TRUE(stamped());
            } else {
                expectCleanFailure(result, expected);
            }
        }
        expectNextDownloadToWork();
    }
}

TEST_F(DownloadFaultsTest, AnAnswerOfNoneOrOneByteAtAnyCommandEndsTheDownload)
{
    for (const sim::Bytes& answer : {sim::Bytes{}, sim::Bytes{0x90}}) {
        for (std::size_t index = 0; index < steps.size(); ++index) {
            SCOPED_TRACE(index);
            const Download result = downloadWith([&] { card().failAt(index, sim::Fault::raw(answer)); });
            const Chain expected =
                chainOfRefusal(steps, index, lib("ScDataTransfer: answer without status word"), 0);
            if (expected.empty())
                EXPECT_THAT(chain(result.failure), IsEmpty());
            else
                expectCleanFailure(result, expected);
        }
    }
    expectNextDownloadToWork();
}

TEST_F(DownloadFaultsTest, AWrongLengthAtAnyReadEndsTheDownload)
{
    const Entry mismatch = lib("ScReadFile: Received data size does not match exptectation");
    for (std::size_t index = 0; index < steps.size(); ++index) {
        if (steps[index].kind != Kind::Read)
            continue;
        SCOPED_TRACE(index);
        for (const unsigned int length : {0u, steps[index].length - 1}) {
            const Download result =
                downloadWith([&] { card().failAt(index, sim::Fault::shortAnswer(length)); });
            if (steps[index].tolerated)
                EXPECT_THAT(chain(result.failure), IsEmpty());
            else
                expectCleanFailure(result, expectedChain(steps[index], mismatch));
        }
        const Download longer = downloadWith([&] { card().failAt(index, sim::Fault::longAnswer(1)); });
        if (steps[index].tolerated)
            EXPECT_THAT(chain(longer.failure), IsEmpty());
        else
            expectCleanFailure(longer, expectedChain(steps[index], mismatch));
    }
    expectNextDownloadToWork();
}

TEST_F(DownloadFaultsTest, AFailedStampLeavesTheFile)
{
    const Download result = downloadWith([&] {
        sim::Switches switches = card().switches();
        switches.writesFail = true;
        card().setSwitches(switches);
    });
    expectCleanFailure(result, expectedChain(steps.back(), lib("ScDataTransfer failed", 0x6581)));
    const QStringList files = QDir("/tmp").entryList({"C_*"}, QDir::Files);
    ASSERT_EQ(files.size(), 1);
    const QByteArray left = fileContent("/tmp/" + files.front());
    EXPECT_EQ(bytes(left), image);
}

} // namespace
