// What can go wrong at each command and at each PC/SC call of a download, for every kind of card: it ends,
// says exactly what failed, tells the card nothing, and the next download works.
#include "CardInReader.h"
#include "CardKind.h"

#include <support/DebugStream.h>

#include <QDir>

#include <gmock/gmock.h>

#include <algorithm>
#include <functional>
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

class DownloadFaultsOfEachKind : public CardInReader, public testing::WithParamInterface<CardKind>
{
  protected:
    ~DownloadFaultsOfEachKind() override { removeFiles(); }

    static void removeFiles()
    {
        QDir tmp("/tmp");
        for (const QString& name : tmp.entryList({"C_*", "CARD_*"}, QDir::Files))
            tmp.remove(name);
    }

    /// Signatures are the card's own, so a whole image is worked out once for each point it can stop at.
    const sim::Bytes& imageTo(unsigned int firstNotRead)
    {
        const auto known = images.find(firstNotRead);
        if (known != images.end())
            return known->second;
        return images[firstNotRead] = kind.image(kind.card, firstNotRead);
    }

    /// Reading of an application whose failure does not end the download.
    bool isFirstReading(const Step& step) const
    {
        return kind.secondGeneration && step.phase == Phase::Reading && step.generation == 1;
    }

    /// Is the EF that a download writes to not as on a fresh card?
    bool written(const sim::Bytes& application)
    {
        return *card().file(application, kind.writtenFid) !=
               *sim::Card(kind.card).file(application, kind.writtenFid);
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
        insert(kind.card);
        pcsc().clearCalls();
        setFault();
        DebugStream::clear();
        Download result = host.download();
        removeFiles();
        return result;
    }

    void expectNextDownloadToWork()
    {
        const Download next = downloadWith([] {});
        EXPECT_THAT(chain(next.failure), IsEmpty());
        EXPECT_EQ(bytes(next.image), imageTo(0));
        expectWritten(true, true);
    }

    /// What every failed download has in common; @p failing is the step that ended it.
    void expectCleanFailure(const Download& result, const Step& failing, const Chain& expected)
    {
        EXPECT_EQ(chain(result.failure), expected);
        EXPECT_FALSE(result.card);
        EXPECT_EQ(result.errors, 0);
        // When the first application cannot be written to, the second is not touched.
        expectWritten(failing.phase == Phase::Stamp && failing.generation == 2, false);
        EXPECT_EQ(pcsc().connectedCards(), 0u);
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
        for (std::size_t position = 0; position < image.size();) {
            const auto payload = image.begin() + static_cast<std::ptrdiff_t>(position) + 5;
            const unsigned int length = sim::readU16(image, position + 3);
            if (sim::readU16(image, position) == fid)
                std::fill(payload, payload + static_cast<std::ptrdiff_t>(length), std::uint8_t{0});
            position += 5 + length;
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

    /// What one failure at @p step, and none after it, comes to.
    void expectOutcomeOfOneFailure(const Download& result, const Step& step, const Entry& cause)
    {
        if (isSecondGenerationsNameInIdentification(step))
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
            expectCleanFailure(result, step, kind.chain(step, cause));
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

    void expectOutcomeOfSilence(const Download& result, std::size_t index, const Entry& cause)
    {
        const Step* shown = whereSilenceShows(index);
        if (shown)
            expectCleanFailure(result, *shown, kind.chain(*shown, cause));
        else
            expectSuccess(result, steps[index]);
    }

    Host host;
    const CardKind& kind = GetParam();
    const std::vector<Step>& steps = kind.steps;
    std::map<unsigned int, sim::Bytes> images;
};

TEST_P(DownloadFaultsOfEachKind, TheSmallCardIsDownloadedByTheseSteps)
{
    expectNextDownloadToWork();
    EXPECT_EQ(withoutStampTimes(commands()), commandsOf(steps));
}

TEST_P(DownloadFaultsOfEachKind, ARefusalAtAnyCommandEndsTheDownloadOrTheFirstApplication)
{
    for (std::size_t index = 0; index < steps.size(); ++index) {
        for (const unsigned int word : {0x6281u, 0x6985u, 0x6F00u}) {
            SCOPED_TRACE(testing::Message() << index << ' ' << steps[index].command);
            const Download result = downloadWith(
                [&] { card().failAt(index, sim::Fault::status(static_cast<std::uint16_t>(word))); });
            expectOutcomeOfOneFailure(result, steps[index], lib("ScDataTransfer failed", word));
        }
    }
    expectNextDownloadToWork();
}

TEST_P(DownloadFaultsOfEachKind, ATransmissionThatFailsOnceEndsTheDownloadOrTheFirstApplication)
{
    for (std::size_t index = 0; index < steps.size(); ++index) {
        SCOPED_TRACE(testing::Message() << index << ' ' << steps[index].command);
        const LONG code = SCARD_E_NOT_TRANSACTED;
        const Download result = downloadWith([&] { pcsc().failCall(Function::Transmit, index, code); });
        expectOutcomeOfOneFailure(
            result, steps[index], test::pcsc("ScDataTransfer SCardTransmit() Failed", code));
    }
    expectNextDownloadToWork();
}

TEST_P(DownloadFaultsOfEachKind, AnAnswerOfNoneOrOneByteAtAnyCommandEndsTheDownloadOrTheFirstApplication)
{
    for (const sim::Bytes& answer : {sim::Bytes{}, sim::Bytes{0x90}}) {
        for (std::size_t index = 0; index < steps.size(); ++index) {
            SCOPED_TRACE(testing::Message() << index << ' ' << steps[index].command);
            const Download result = downloadWith([&] { card().failAt(index, sim::Fault::raw(answer)); });
            expectOutcomeOfOneFailure(
                result, steps[index], lib("ScDataTransfer: answer without status word"));
        }
    }
    expectNextDownloadToWork();
}

TEST_P(DownloadFaultsOfEachKind, ACardPulledAtAnyCommandEndsTheDownload)
{
    for (std::size_t index = 0; index < steps.size(); ++index) {
        SCOPED_TRACE(testing::Message() << index << ' ' << steps[index].command);
        const Download result = downloadWith([&] { card().failAt(index, sim::Fault::pulled()); });
        expectOutcomeOfSilence(
            result, index, test::pcsc("ScDataTransfer SCardTransmit() Failed", SCARD_W_REMOVED_CARD));
        // During identification there is no card object yet whose signal the reader could forward.
        EXPECT_EQ(result.removed > 0, steps[index].phase != Phase::Identification);
        if (index % 10 == 0)
            expectNextDownloadToWork();
    }
}

TEST_P(DownloadFaultsOfEachKind, AReaderThatAnswersNoMoreFromAnyCommandOnEndsTheDownload)
{
    for (std::size_t index = 0; index < steps.size(); ++index) {
        for (const LONG code : {SCARD_W_RESET_CARD, SCARD_E_NO_SERVICE}) {
            SCOPED_TRACE(testing::Message() << index << ' ' << steps[index].command);
            const Download result = downloadWith([&] {
                for (std::size_t later = index; later < steps.size(); ++later)
                    pcsc().failCall(Function::Transmit, later, code);
            });
            expectOutcomeOfSilence(result, index, test::pcsc("ScDataTransfer SCardTransmit() Failed", code));
            EXPECT_EQ(result.removed, 0);
        }
    }
    expectNextDownloadToWork();
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
        SCOPED_TRACE(row.message);
        insert(kind.card);
        pcsc().clearCalls();
        pcsc().failCall(row.function, 0, SCARD_E_NO_SERVICE);
        Host freshHost;
        EXPECT_THAT(
            chain(freshHost.download().failure), ElementsAre(test::pcsc(row.message, SCARD_E_NO_SERVICE)));
        expectWritten(false, false);
        EXPECT_EQ(card().commandCount(), 0u);
        EXPECT_EQ(pcsc().connectedCards(), 0u); // a connection without status is closed by close()
        EXPECT_THAT(chain(freshHost.download().failure), IsEmpty());
        removeFiles();
    }
}

TEST_P(DownloadFaultsOfEachKind, AFailureAfterTheDownloadDoesNotTouchIt)
{
    const Download result =
        downloadWith([this] { pcsc().failCall(Function::Disconnect, 0, SCARD_W_REMOVED_CARD); });
    EXPECT_THAT(chain(result.failure), IsEmpty());
    EXPECT_THAT(
        chain(result.closeFailure),
        ElementsAre(test::pcsc("close: SCardDisconnect() Failed", SCARD_W_REMOVED_CARD)));
    EXPECT_EQ(bytes(result.image), imageTo(0));
    expectWritten(true, true);
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
