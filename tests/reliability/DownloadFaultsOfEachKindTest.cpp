// What can go wrong at each command and at each PC/SC call of a download, for every kind of card: it ends,
// says exactly what failed, tells the card nothing, and the next download works.
#include "RememberingSigner.h"

#include <pcsc/CardInReader.h>
#include <support/CardKind.h>
#include <support/DebugStream.h>
#include <support/FileRecords.h>

#include <QDir>

#include <gmock/gmock.h>

#include <algorithm>
#include <functional>
#include <iostream>
#include <iterator>
#include <map>
#include <set>

namespace {

using namespace test;
using standin::Function;
using testing::ElementsAre;
using testing::IsEmpty;

bool isSecondGenerationsNameInIdentification(const Step& step)
{
    return step.phase == Phase::Identification && step.name == "SMRDT";
}

/// What stands before the second application's first record, its EF_ICC.
sim::Bytes firstApplicationOf(const sim::Bytes& image)
{
    const auto records = recordsOf(image);
    const auto second = std::find_if(
        std::next(records.begin()), records.end(), [](const auto& record) { return record.fid == 0x0002; });
    return sim::slice(image, 0, second == records.end() ? image.size() : second->offset);
}

/// Every code that PC/SC Lite documents for a function, beside success.
std::vector<LONG> codesOf(Function function)
{
    switch (function) {
    case Function::EstablishContext:
        return {SCARD_E_INVALID_PARAMETER, SCARD_E_INVALID_VALUE, SCARD_E_NO_MEMORY,
                SCARD_E_NO_SERVICE,        SCARD_F_COMM_ERROR,    SCARD_F_INTERNAL_ERROR};
    case Function::ReleaseContext:
        return {SCARD_E_INVALID_HANDLE, SCARD_E_NO_SERVICE, SCARD_F_COMM_ERROR};
    case Function::ListReaders:
        return {SCARD_E_INSUFFICIENT_BUFFER, SCARD_E_INVALID_HANDLE,       SCARD_E_INVALID_PARAMETER,
                SCARD_E_NO_MEMORY,           SCARD_E_NO_READERS_AVAILABLE, SCARD_E_NO_SERVICE};
    case Function::FreeMemory:
        return {SCARD_E_INVALID_HANDLE};
    case Function::GetStatusChange:
        return {SCARD_E_CANCELLED,     SCARD_E_INVALID_HANDLE, SCARD_E_INVALID_PARAMETER,
                SCARD_E_INVALID_VALUE, SCARD_E_NO_SERVICE,     SCARD_E_READER_UNAVAILABLE,
                SCARD_E_TIMEOUT,       SCARD_E_UNKNOWN_READER};
    case Function::Connect:
        return {SCARD_E_INVALID_HANDLE,      SCARD_E_INVALID_PARAMETER, SCARD_E_INVALID_VALUE,
                SCARD_E_NO_SERVICE,          SCARD_E_NO_SMARTCARD,      SCARD_E_PROTO_MISMATCH,
                SCARD_E_READER_UNAVAILABLE,  SCARD_E_SHARING_VIOLATION, SCARD_E_UNKNOWN_READER,
                SCARD_E_UNSUPPORTED_FEATURE, SCARD_F_COMM_ERROR,        SCARD_F_INTERNAL_ERROR,
                SCARD_W_UNPOWERED_CARD,      SCARD_W_UNRESPONSIVE_CARD};
    case Function::Status:
        return {SCARD_E_INSUFFICIENT_BUFFER, SCARD_E_INVALID_HANDLE, SCARD_E_INVALID_PARAMETER,
                SCARD_E_NO_MEMORY,           SCARD_E_NO_SERVICE,     SCARD_E_READER_UNAVAILABLE,
                SCARD_F_COMM_ERROR,          SCARD_F_INTERNAL_ERROR, SCARD_W_REMOVED_CARD,
                SCARD_W_RESET_CARD};
    case Function::Transmit:
        return {SCARD_E_INSUFFICIENT_BUFFER, SCARD_E_INVALID_HANDLE,     SCARD_E_INVALID_PARAMETER,
                SCARD_E_INVALID_VALUE,       SCARD_E_NO_SERVICE,         SCARD_E_NOT_TRANSACTED,
                SCARD_E_PROTO_MISMATCH,      SCARD_E_READER_UNAVAILABLE, SCARD_F_COMM_ERROR,
                SCARD_W_REMOVED_CARD,        SCARD_W_RESET_CARD};
    case Function::Disconnect:
        return {
            SCARD_E_INVALID_HANDLE, SCARD_E_INVALID_VALUE, SCARD_E_NO_SERVICE, SCARD_E_NO_SMARTCARD,
            SCARD_F_COMM_ERROR};
    }
    return {};
}

const Entry wrongLength = lib("ScReadFile: Received data size does not match exptectation");

/// So that a report can name a figure.
class FaultsTried : public testing::Environment
{
  public:
    void TearDown() override { std::cout << "faults tried: " << count << '\n'; }
    std::size_t count = 0;
};

auto* const faults = static_cast<FaultsTried*>(testing::AddGlobalTestEnvironment(new FaultsTried));
std::size_t& faultsTried = faults->count;

class DownloadFaultsOfEachKind : public CardInReader, public testing::WithParamInterface<CardKind>
{
  protected:
    /// Signatures are the card's own, so a whole image is worked out once for each point it can stop at.
    const sim::Bytes& imageTo(unsigned int firstNotRead)
    {
        const auto known = images.find(firstNotRead);
        if (known != images.end())
            return known->second;
        return images[firstNotRead] = kind.image(description, firstNotRead);
    }

    /// Reading of an application whose failure does not end the download.
    bool isFirstReading(const Step& step) const
    {
        return kind.secondGeneration && step.phase == Phase::Reading && step.generation == 1;
    }

    /// Is the EF that a download writes to not as on a fresh card?
    bool written(const sim::Bytes& application)
    {
        return *card().file(application, kind.writtenFid) != *freshCard.file(application, kind.writtenFid);
    }

    void expectWritten(bool first, bool second)
    {
        if (kind.writtenFid == 0)
            return;
        EXPECT_EQ(written(sim::AidG1), first);
        if (kind.secondGeneration) {
            EXPECT_EQ(written(sim::AidG2), second);
        }
    }

    /// A fresh card in the reader, with what goes wrong set on it; the host stays the same.
    Download downloadWith(const std::function<void()>& setFault)
    {
        ++faultsTried;
        return downloadOnce(setFault);
    }

    Download downloadOnce(const std::function<void()>& setFault)
    {
        insert(description);
        pcsc().clearCalls();
        setFault();
        DebugStream::clear();
        Download result = host.download();
        const QStringList files = downloads();
        fileLeft = files.size() == 1 ? bytes(fileContent(files.front())) : sim::Bytes();
        removeDownloads();
        return result;
    }

    void expectNextDownloadToWork()
    {
        const Download next = downloadOnce([] {});
        EXPECT_THAT(chain(next.failure), IsEmpty());
        EXPECT_EQ(bytes(next.image), imageTo(0));
        expectWritten(true, true);
    }

    /// What every failed download has in common; @p failing is the step that ended it.
    void expectCleanFailure(
        const Download& result, const Step& failing, const Chain& expected, bool executed = false)
    {
        EXPECT_EQ(chain(result.failure), expected);
        EXPECT_FALSE(result.card);
        EXPECT_EQ(result.errors, 0);
        // When the first application cannot be written to, the second is not touched.
        const bool isSecondStamp = failing.phase == Phase::Stamp && failing.generation == 2;
        const bool isWritten = executed && failing.kind == Kind::Update;
        expectWritten(isSecondStamp || isWritten, isSecondStamp && isWritten);
        if (failing.phase == Phase::Stamp) {
            EXPECT_EQ(fileLeft, imageTo(0)); // whole before the card is told
        }
        EXPECT_EQ(pcsc().connectedCards(), 0u);
        EXPECT_EQ(pcsc().openContexts(), 1u);
        EXPECT_EQ(pcsc().listsNotFreed(), 0u);
    }

    /// The first application was read up to @p step, or is not at all what failed.
    void expectSuccess(const Download& result, const Step& step)
    {
        EXPECT_THAT(chain(result.failure), IsEmpty());
        expectWritten(true, true);
        if (step.phase == Phase::Identification)
            EXPECT_EQ(bytes(result.image), withZeros(imageTo(0), step.fid));
        else if (isFirstReading(step))
            EXPECT_EQ(
                bytes(result.image), imageTo(step.kind == Kind::SelectName ? firstOfReading() : step.fid));
        else
            EXPECT_EQ(bytes(result.image), imageTo(0));
    }

    /// The image of a card whose chip's file @p fid could not be read.
    static sim::Bytes withZeros(sim::Bytes image, unsigned int fid)
    {
        for (const auto& record : recordsOf(image)) {
            if (record.fid == fid)
                std::fill_n(&image[record.begin()], record.length, std::uint8_t{0});
        }
        return image;
    }

    /// FID of the EF with which the reading of the first application begins.
    unsigned int firstOfReading() const
    {
        return std::find_if(
                   steps.begin(), steps.end(),
                   [this](const Step& step) { return isFirstReading(step) && step.fid != 0; })
            ->fid;
    }

    /// What one failure at @p step, and none after it, comes to; @p executed when the card did what it was
    /// told all the same.
    void expectOutcomeOfOneFailure(
        const Download& result, const Step& step, const Entry& cause, bool executed = false)
    {
        if (isSecondGenerationsNameInIdentification(step) && executed && kind.secondGeneration)
            // Whatever was said, the application is selected.
            expectWholeDownload(result);
        else if (isSecondGenerationsNameInIdentification(step))
            // Counts as the second generation, with no application selected.
            expectCleanFailure(
                result, step,
                {lib("ScDataTransfer failed", 0x6A82), lib("ScSelectFile Failed: By ID501", 0x6A82),
                 lib("readFrom() ScSelectFile() Failed: ID 501", 0x6A82),
                 lib("Failed at reading card information")});
        else if (step.probe && step.phase == Phase::Reading)
            // Of a certificate whose length is not known nothing is read, and nothing cannot be saved.
            expectCleanFailure(result, step, kind.nothingToSave());
        else if (step.tolerated || isFirstReading(step))
            expectSuccess(result, step);
        else
            expectCleanFailure(result, step, kind.chain(step, cause), executed);
    }

    /// The command whose failure a download ends with when nothing answers from command @p index on; none
    /// when only the first application is lost.
    const Step* whereSilenceShows(std::size_t index) const
    {
        // Without an answer to the second generation's name the card counts as one of it, and its type cannot
        // be read.
        const auto name = std::find_if(steps.begin(), steps.end(), isSecondGenerationsNameInIdentification);
        if (steps.begin() + static_cast<std::ptrdiff_t>(index) <= name)
            return &*std::find_if(name, steps.end(), [](const Step& step) {
                return step.kind == Kind::SelectEf && step.fid == 0x0501;
            });
        // The total of a driver card's first application that cannot be selected is 0.
        if (steps[index].phase == Phase::Total && steps[index].kind == Kind::SelectName &&
            steps[index].tolerated)
            while (steps[index].phase == Phase::Total && steps[index].generation == 1)
                ++index;
        const auto shown = std::find_if(
            steps.begin() + static_cast<std::ptrdiff_t>(index), steps.end(),
            [this](const Step& step) { return !step.tolerated && !isFirstReading(step); });
        return shown == steps.end() ? nullptr : &*shown;
    }

    /// The transmission of command @p index returns @p first, each behind it @p later.
    void expectOutcomeOfSilence(const Download& result, std::size_t index, LONG first, LONG later)
    {
        const Step* shown = whereSilenceShows(index);
        if (shown) {
            const LONG code = shown == &steps[index] ? first : later;
            expectCleanFailure(
                result, *shown,
                kind.chain(*shown, test::pcsc("ScDataTransfer SCardTransmit() Failed", code)));
        } else {
            expectSuccess(result, steps[index]);
        }
    }

    void expectWholeDownload(const Download& result, bool exact = true)
    {
        EXPECT_THAT(chain(result.failure), IsEmpty());
        expectWritten(true, true);
        if (exact)
            EXPECT_EQ(bytes(result.image), imageTo(0));
        else
            EXPECT_EQ(bytes(result.image).size(), imageTo(0).size());
    }

    /// The card said that it has no second application.
    void expectFirstGenerationOnly(const Download& result)
    {
        EXPECT_THAT(chain(result.failure), IsEmpty());
        expectWritten(true, false);
        EXPECT_EQ(bytes(result.image), firstApplicationOf(imageTo(0)));
    }

    /// A whole download whose signature of @p step is @p change bytes longer.
    void expectOtherSignature(const Download& result, const Step& step, int change)
    {
        EXPECT_THAT(chain(result.failure), IsEmpty());
        expectWritten(true, true);
        const sim::Bytes& good = imageTo(0);
        const sim::Bytes image = bytes(result.image);
        ASSERT_EQ(static_cast<int>(image.size()), static_cast<int>(good.size()) + change);
        const auto signature = recordOf(good, step.fid, step.generation == 1 ? 0x01 : 0x03);
        const std::size_t lengthField = signature.offset + 3;
        const auto atOf = [](const sim::Bytes& bytes, std::size_t at) {
            return bytes.begin() + static_cast<std::ptrdiff_t>(at);
        };
        EXPECT_TRUE(std::equal(good.begin(), atOf(good, lengthField), image.begin()));
        EXPECT_EQ(
            static_cast<int>(sim::readU16(image, lengthField)), static_cast<int>(signature.length) + change);
        EXPECT_TRUE(
            std::equal(atOf(good, signature.end()), good.end(), atOf(image, signature.end()) + change));
    }

    void expectOutcomeOfCutAnswer(const Download& result, std::size_t index, unsigned int length)
    {
        const Step& step = steps[index];
        if (step.kind == Kind::Read) {
            expectOutcomeOfOneFailure(result, step, wrongLength);
        } else if (step.kind == Kind::Sign) {
            const int whole = step.generation == 1 ? 128 : 64;
            expectOtherSignature(result, step, static_cast<int>(length) - whole);
        } else if (step.kind == Kind::ReadLarge && length == 0) {
            expectCleanFailure(
                result, step, {lib("readFrom() no data received: ID 50a"), lib("Failed reading card data")});
        } else {
            // A large read goes on where the answer ended; the others have no data to lose.
            expectWholeDownload(result);
        }
    }

    void expectOutcomeOfLongAnswer(const Download& result, std::size_t index)
    {
        const Step& step = steps[index];
        if (step.kind == Kind::Read)
            expectOutcomeOfOneFailure(result, step, wrongLength);
        else if (step.kind == Kind::Sign)
            expectOtherSignature(result, step, 1);
        else if (step.kind == Kind::ReadLarge && !hasRoom(index, 1))
            expectOutcomeOfOneFailure(
                result, step,
                test::pcsc("ScDataTransfer SCardTransmit() Failed", SCARD_E_INSUFFICIENT_BUFFER));
        else
            // What nobody asked for is left; a large read takes it for data.
            expectWholeDownload(result, step.kind != Kind::ReadLarge);
    }

    /// Does the buffer of the EF that command @p index reads take so many bytes more than were asked for?
    bool hasRoom(std::size_t index, std::size_t more) const
    {
        const std::size_t spareBytes = 5;
        const std::size_t objectHeader = steps[index].length < 128 ? 2 : 3;
        const std::size_t header = steps[index].kind == Kind::ReadLarge ? objectHeader : 0;
        const std::size_t statusWord = 2;
        std::size_t left = 0;
        for (std::size_t i = index;
             i < steps.size() && steps[i].fid == steps[index].fid && steps[i].kind == steps[index].kind; ++i)
            left += steps[i].length;
        return header + steps[index].length + more + statusWord <= left + spareBytes;
    }

    /// Calls @p tryFault with the number of each command, then downloads a card without fault.
    template <typename TryFault>
    void forEachCommand(TryFault tryFault)
    {
        static const auto stride =
            static_cast<std::size_t>(std::max(1, qEnvironmentVariableIntValue("FAULT_STRIDE")));
        const auto openFiles = QDir("/proc/self/fd").count();
        for (std::size_t index = 0; index < steps.size(); ++index) {
            if (++m_combinations % stride != 0)
                continue;
            SCOPED_TRACE(testing::Message() << index << ' ' << steps[index].command);
            tryFault(index);
            expectNextDownloadToWork();
            if (HasFailure())
                return; // the rest would say the same a thousand times
        }
        EXPECT_EQ(QDir("/proc/self/fd").count(), openFiles);
    }

    Host host;
    const CardKind& kind = GetParam();
    const sim::CardDescription description = withRememberedSignatures(kind.card);
    const sim::Card freshCard{description};
    const std::vector<Step>& steps = kind.steps;
    std::map<unsigned int, sim::Bytes> images;
    sim::Bytes fileLeft; ///< of the last download, if it left one

  private:
    std::size_t m_combinations = 0;
};

TEST_P(DownloadFaultsOfEachKind, TheSmallCardIsDownloadedByTheseSteps)
{
    expectNextDownloadToWork();
    EXPECT_EQ(withoutStampTimes(commands()), commandsOf(steps));
}

TEST_P(DownloadFaultsOfEachKind, ARefusalAtAnyCommandEndsTheDownloadOrTheFirstApplication)
{
    for (const unsigned int word :
         {0x6110u, 0x6281u, 0x6282u, 0x6300u, 0x63C3u, 0x6400u, 0x6500u, 0x6581u, 0x6688u, 0x6700u, 0x6881u,
          0x6882u, 0x6883u, 0x6900u, 0x6982u, 0x6983u, 0x6985u, 0x6986u, 0x6987u, 0x6988u, 0x6A80u, 0x6A81u,
          0x6A82u, 0x6A86u, 0x6A87u, 0x6A88u, 0x6B00u, 0x6C10u, 0x6D00u, 0x6E00u, 0x6F00u}) {
        forEachCommand([&](std::size_t index) {
            SCOPED_TRACE(QString::number(word, 16).toStdString());
            const Download result = downloadWith(
                [&] { card().failAt(index, sim::Fault::status(static_cast<std::uint16_t>(word))); });
            if (isSecondGenerationsNameInIdentification(steps[index]) && word == 0x6A82)
                expectFirstGenerationOnly(result);
            else
                expectOutcomeOfOneFailure(result, steps[index], lib("ScDataTransfer failed", word));
        });
    }
}

TEST_P(DownloadFaultsOfEachKind, ATransmissionThatFailsOnceEndsTheDownloadOrTheFirstApplication)
{
    for (const LONG code : codesOf(Function::Transmit)) {
        forEachCommand([&](std::size_t index) {
            SCOPED_TRACE(pcsc_stringify_error(code));
            const Download result = downloadWith([&] { pcsc().failCall(Function::Transmit, index, code); });
            expectOutcomeOfOneFailure(
                result, steps[index], test::pcsc("ScDataTransfer SCardTransmit() Failed", code));
        });
    }
}

TEST_P(DownloadFaultsOfEachKind, AnAnswerOfNoneOrOneByteAtAnyCommandEndsTheDownloadOrTheFirstApplication)
{
    for (const sim::Bytes& answer : {sim::Bytes{}, sim::Bytes{0x90}}) {
        forEachCommand([&](std::size_t index) {
            const Download result = downloadWith([&] { card().failAt(index, sim::Fault::raw(answer)); });
            expectOutcomeOfOneFailure(
                result, steps[index], lib("ScDataTransfer: answer without status word"));
        });
    }
}

TEST_P(DownloadFaultsOfEachKind, AnAnswerOfTheWrongLengthIsRefusedWhereTheLengthIsKnown)
{
    forEachCommand([&](std::size_t index) {
        const Step& step = steps[index];
        for (const unsigned int length : {0u, std::max(1u, step.length) - 1}) {
            SCOPED_TRACE(testing::Message() << "cut to " << length);
            expectOutcomeOfCutAnswer(
                downloadWith([&] { card().failAt(index, sim::Fault::shortAnswer(length)); }), index, length);
        }
        expectOutcomeOfLongAnswer(
            downloadWith([&] { card().failAt(index, sim::Fault::longAnswer(1)); }), index);
    });
}

TEST_P(DownloadFaultsOfEachKind, AnAnswerThatDoesNotFitTheBufferIsRefused)
{
    forEachCommand([&](std::size_t index) {
        const Step& step = steps[index];
        constexpr std::size_t more = 300;
        const Download result = downloadWith([&] { card().failAt(index, sim::Fault::longAnswer(more)); });
        if (step.kind == Kind::ReadLarge && hasRoom(index, more))
            expectWholeDownload(result, false); // as on the line: nobody counts there
        else if (step.kind == Kind::Read && hasRoom(index, more))
            expectOutcomeOfOneFailure(result, step, wrongLength);
        else
            expectOutcomeOfOneFailure(
                result, step,
                test::pcsc("ScDataTransfer SCardTransmit() Failed", SCARD_E_INSUFFICIENT_BUFFER), true);
    });
}

TEST_P(DownloadFaultsOfEachKind, ACardPulledAtAnyCommandEndsTheDownload)
{
    for (const LONG code : {SCARD_E_NOT_TRANSACTED, SCARD_E_NO_SMARTCARD, SCARD_W_REMOVED_CARD}) {
        forEachCommand([&](std::size_t index) {
            SCOPED_TRACE(pcsc_stringify_error(code));
            // The command that it is pulled with fails in one way or another, those behind it alike.
            const Download result = downloadWith([&] {
                card().failAt(index, sim::Fault::pulled());
                if (code != SCARD_W_REMOVED_CARD)
                    pcsc().failCall(Function::Transmit, index, code);
                for (std::size_t later = index + 1; later < steps.size(); ++later)
                    pcsc().failCall(Function::Transmit, later, SCARD_W_REMOVED_CARD);
            });
            expectOutcomeOfSilence(result, index, code, SCARD_W_REMOVED_CARD);
            // During identification there is no card object yet whose signal the reader could forward.
            const bool isTold =
                steps[index].phase != Phase::Identification &&
                (code == SCARD_W_REMOVED_CARD || pcsc().count(Function::Transmit) > index + 1);
            EXPECT_EQ(result.removed > 0, isTold);
        });
    }
}

TEST_P(DownloadFaultsOfEachKind, AReaderThatAnswersNoMoreFromAnyCommandOnEndsTheDownload)
{
    for (const LONG code : {SCARD_W_RESET_CARD, SCARD_E_NO_SERVICE, SCARD_E_INVALID_HANDLE}) {
        forEachCommand([&](std::size_t index) {
            SCOPED_TRACE(pcsc_stringify_error(code));
            const Download result = downloadWith([&] {
                for (std::size_t later = index; later < steps.size(); ++later)
                    pcsc().failCall(Function::Transmit, later, code);
            });
            expectOutcomeOfSilence(result, index, code, code);
            EXPECT_EQ(result.removed, 0);
        });
    }
}

TEST_P(DownloadFaultsOfEachKind, AFailedStartNamesThePcscCallAndCanBeTriedAgain)
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
        for (const LONG code : codesOf(row.function)) {
            SCOPED_TRACE(testing::Message() << row.message << ' ' << pcsc_stringify_error(code));
            ++faultsTried;
            insert(description);
            pcsc().clearCalls();
            pcsc().failCall(row.function, 0, code);
            Host freshHost;
            EXPECT_THAT(chain(freshHost.download().failure), ElementsAre(test::pcsc(row.message, code)));
            expectWritten(false, false);
            EXPECT_EQ(card().commandCount(), 0u);
            EXPECT_EQ(pcsc().listsNotFreed(), 0u);
            EXPECT_EQ(pcsc().connectedCards(), 0u); // a connection without status is closed by close()
            EXPECT_THAT(chain(freshHost.download().failure), IsEmpty());
            expectWritten(true, true);
            removeDownloads();
        }
    }
}

TEST_P(DownloadFaultsOfEachKind, AFailureAfterTheDownloadDoesNotTouchIt)
{
    for (const LONG code : codesOf(Function::Disconnect)) {
        SCOPED_TRACE(pcsc_stringify_error(code));
        const Download result = downloadWith([code] { pcsc().failCall(Function::Disconnect, 0, code); });
        EXPECT_THAT(
            chain(result.closeFailure), ElementsAre(test::pcsc("close: SCardDisconnect() Failed", code)));
        expectWholeDownload(result);
    }
}

TEST_P(DownloadFaultsOfEachKind, AFailureBesideTheDownloadDoesNotTouchIt)
{
    for (const LONG code : codesOf(Function::FreeMemory)) {
        SCOPED_TRACE(pcsc_stringify_error(code));
        ++faultsTried;
        insert(description);
        pcsc().clearCalls();
        pcsc().failCall(Function::FreeMemory, 0, code);
        Host freshHost;
        expectWholeDownload(freshHost.download());
        removeDownloads();
        pcsc().forgetLists(); // what PC/SC does not take back stays
    }
    scard::SCardReader reader;
    int announced = 0;
    QObject::connect(&reader, &scard::SCardReader::present, [&announced] { ++announced; });
    ASSERT_TRUE(reader.init().isEmpty());
    for (const LONG code : codesOf(Function::GetStatusChange)) {
        SCOPED_TRACE(pcsc_stringify_error(code));
        ++faultsTried;
        pcsc().clearCalls();
        pcsc().failCall(Function::GetStatusChange, 0, code);
        EXPECT_THAT(chain(reader.monitor(0)), IsEmpty());
        EXPECT_EQ(announced, 0);
        expectNextDownloadToWork();
    }
    for (const LONG code : codesOf(Function::ReleaseContext)) {
        SCOPED_TRACE(pcsc_stringify_error(code));
        ++faultsTried;
        pcsc().clearCalls();
        pcsc().failCall(Function::ReleaseContext, 0, code);
        EXPECT_THAT(
            chain(reader.uninit()), ElementsAre(test::pcsc("uninit: SCardReleaseContext() Failed", code)));
        expectNextDownloadToWork();
    }
    EXPECT_THAT(chain(reader.uninit()), IsEmpty());
}

TEST_P(DownloadFaultsOfEachKind, AnEfThatIsMissingIsNamedOnTheDebugStream)
{
    const unsigned int generation = kind.secondGeneration ? 2 : 1;
    std::set<unsigned short> seen;
    for (std::size_t index = 0; index < steps.size(); ++index) {
        const Step& step = steps[index];
        if (step.phase != Phase::Reading || step.generation != generation || step.fid == 0 || step.probe ||
            !seen.insert(step.fid).second)
            continue;
        const auto row =
            std::find_if(kind.texts.begin(), kind.texts.end(), [&step](const CardKind::FailureText& each) {
                return each.fid == step.fid;
            });
        ASSERT_NE(row, kind.texts.end()) << std::hex << step.fid;
        SCOPED_TRACE(row->text);
        const Download result = downloadWith([&] { card().failAt(index, sim::Fault::status(0x6A82)); });
        expectCleanFailure(result, step, kind.chain(step, lib("ScDataTransfer failed", 0x6A82)));
        const QStringList lines = DebugStream::lines().filter(QLatin1String(row->text) + " libscard: ");
        ASSERT_EQ(lines.size(), 1);
        EXPECT_TRUE(lines.front().startsWith(
            QLatin1String(row->text) + " libscard: ScDataTransfer failed (6a82) | "));
    }
    EXPECT_EQ(seen.size(), kind.texts.size());
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, DownloadFaultsOfEachKind,
    testing::Values(
        driverKind(), driverG2Kind(), driverV2Kind(), workshopKind(), workshopG2Kind(), workshopV2Kind(),
        companyKind(), companyG2Kind(), companyV2Kind()),
    [](const auto& kindInfo) { return std::string(kindInfo.param.name); });

} // namespace
