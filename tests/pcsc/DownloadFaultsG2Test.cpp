// What can go wrong at each command of the download of a version 2.2 driver card. A small one: what happens
// at a command does not depend on how many there are.
#include "CardInReader.h"
#include "ExpectedDriver.h"

#include <support/DebugStream.h>

#include <QDir>

#include <gmock/gmock.h>

#include <algorithm>
#include <functional>

namespace {

using namespace test;
using standin::Function;
using testing::IsEmpty;

Counts smallFirst()
{
    Counts counts;
    counts.events = 1;
    counts.faults = 1;
    counts.activityLength = 600;
    counts.vehicles = 4;
    counts.places = 4;
    return counts;
}

CountsG2 smallSecond()
{
    CountsG2 counts;
    counts.events = 1;
    counts.faults = 1;
    counts.activityLength = 600;
    counts.vehicles = 4;
    counts.places = 4;
    counts.gnssPlaces = 4;
    counts.specificConditions = 4;
    counts.vehicleUnits = 4;
    counts.version2 = true;
    counts.borderCrossings = 4;
    counts.loadUnloadOperations = 4;
    counts.loadTypeEntries = 4;
    return counts;
}

const sim::CardDescription& smallCard()
{
    static const sim::CardDescription description = [] {
        const Counts first = smallFirst();
        const CountsG2 second = smallSecond();
        sim::DriverParametersG2 parameters;
        parameters.version2 = true;
        parameters.first.eventsPerType = static_cast<std::uint8_t>(first.events);
        parameters.first.faultsPerType = static_cast<std::uint8_t>(first.faults);
        parameters.first.activityLength = static_cast<std::uint16_t>(first.activityLength);
        parameters.first.vehicles = static_cast<std::uint16_t>(first.vehicles);
        parameters.first.places = static_cast<std::uint8_t>(first.places);
        parameters.eventsPerType = static_cast<std::uint8_t>(second.events);
        parameters.faultsPerType = static_cast<std::uint8_t>(second.faults);
        parameters.activityLength = static_cast<std::uint16_t>(second.activityLength);
        parameters.vehicles = static_cast<std::uint16_t>(second.vehicles);
        parameters.places = static_cast<std::uint16_t>(second.places);
        parameters.gnssPlaces = static_cast<std::uint16_t>(second.gnssPlaces);
        parameters.specificConditions = static_cast<std::uint16_t>(second.specificConditions);
        parameters.vehicleUnits = static_cast<std::uint16_t>(second.vehicleUnits);
        parameters.borderCrossings = static_cast<std::uint16_t>(second.borderCrossings);
        parameters.loadUnloadOperations = static_cast<std::uint16_t>(second.loadUnloadOperations);
        parameters.loadTypeEntries = static_cast<std::uint16_t>(second.loadTypeEntries);
        return sim::makeDriverCardG2(parameters);
    }();
    return description;
}

/// Signatures are the card's own, so a whole image is worked out once for each point it can stop at.
const sim::Bytes& smallImage(unsigned int firstNotRead)
{
    static std::map<unsigned int, sim::Bytes> images;
    const auto known = images.find(firstNotRead);
    if (known != images.end())
        return known->second;
    return images[firstNotRead] = expectedImageG2(smallCard(), firstNotRead);
}

bool isSecondGenerationsNameInIdentification(const Step& step)
{
    return step.phase == Phase::Identification && step.kind == Kind::SelectName;
}

bool isFirstReading(const Step& step)
{
    return step.phase == Phase::Reading && step.generation == 1;
}

class DownloadFaultsG2Test : public CardInReader
{
  protected:
    ~DownloadFaultsG2Test() override { removeFiles(); }

    static void removeFiles()
    {
        QDir tmp("/tmp");
        for (const QString& name : tmp.entryList({"C_*", "CARD_*"}, QDir::Files))
            tmp.remove(name);
    }

    bool stamped(const sim::Bytes& application)
    {
        return *card().file(application, 0x050E) != *sim::Card(smallCard()).file(application, 0x050E);
    }

    /// A fresh card in the reader, with what goes wrong set on it; the host stays the same.
    Download downloadWith(const std::function<void()>& setFault)
    {
        insert(smallCard());
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
        EXPECT_EQ(bytes(next.image), smallImage(0));
        EXPECT_TRUE(stamped(sim::AidG1));
        EXPECT_TRUE(stamped(sim::AidG2));
    }

    /// What every failed download has in common; @p failing is the step that ended it.
    void expectCleanFailure(const Download& result, const Step& failing, const Chain& expected)
    {
        EXPECT_EQ(chain(result.failure), expected);
        EXPECT_FALSE(result.card);
        EXPECT_EQ(result.errors, 0);
        EXPECT_EQ(stamped(sim::AidG1), failing.phase == Phase::Stamp && failing.generation == 2);
        EXPECT_FALSE(stamped(sim::AidG2));
        EXPECT_EQ(pcsc().connectedCards(), 0u);
        EXPECT_EQ(pcsc().listsNotFreed(), 0u);
    }

    /// What one failure at @p step, and none after it, comes to.
    void expectOutcomeOfOneFailure(const Download& result, const Step& step, const Entry& cause)
    {
        if (isSecondGenerationsNameInIdentification(step)) {
            // Counts as the second generation, with no application selected.
            expectCleanFailure(
                result, step,
                {lib("ScDataTransfer failed", 0x6A82), lib("ScSelectFile Failed: By ID501", 0x6A82),
                 lib("readFrom() ScSelectFile() Failed: ID 501", 0x6A82),
                 lib("Failed at reading card information")});
        } else if (step.probe && step.phase == Phase::Reading) {
            // Of a certificate whose length is not known nothing is read, and nothing cannot be saved.
            expectCleanFailure(
                result, step,
                {lib("saveToFile() Failed"), lib("writeDatasetToFile(): no valid data"),
                 lib("Failed at saving card data to file")});
        } else if (step.tolerated || isFirstReading(step)) {
            EXPECT_THAT(chain(result.failure), IsEmpty());
            EXPECT_TRUE(stamped(sim::AidG1));
            EXPECT_TRUE(stamped(sim::AidG2));
            if (step.phase == Phase::Identification) // of the chip's files, which stay zero
                EXPECT_EQ(static_cast<std::size_t>(result.image.size()), smallImage(0).size());
            else
                EXPECT_EQ(
                    bytes(result.image), smallImage(
                                             !isFirstReading(step)           ? 0
                                             : step.kind == Kind::SelectName ? 0x0520
                                                                             : step.fid));
        } else {
            expectCleanFailure(result, step, expectedChainG2(step, cause));
        }
    }

    /// The command whose failure a download ends with, when nothing answers from command @p index on.
    const Step& whereSilenceShows(std::size_t index) const
    {
        // The total of a first application that cannot be selected is 0.
        if (steps[index].phase == Phase::Total && steps[index].name == "TACHO")
            while (steps[index].generation == 1)
                ++index;
        return *std::find_if(
            steps.begin() + static_cast<std::ptrdiff_t>(index), steps.end(), [](const Step& step) {
                return !step.tolerated && !isFirstReading(step) &&
                       !isSecondGenerationsNameInIdentification(step);
            });
    }

    Host host;
    const std::vector<Step> steps = expectedStepsG2(smallSecond(), smallFirst());
};

TEST_F(DownloadFaultsG2Test, TheSmallCardIsDownloadedByTheseSteps)
{
    expectNextDownloadToWork();
    EXPECT_EQ(withoutStampTimes(commands()), commandsOf(steps));
}

TEST_F(DownloadFaultsG2Test, ARefusalAtAnyCommandEndsTheDownloadOrTheFirstApplication)
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

TEST_F(DownloadFaultsG2Test, ATransmissionThatFailsOnceEndsTheDownloadOrTheFirstApplication)
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

TEST_F(DownloadFaultsG2Test, AnAnswerOfNoneOrOneByteAtAnyCommandEndsTheDownloadOrTheFirstApplication)
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

TEST_F(DownloadFaultsG2Test, ACardPulledAtAnyCommandEndsTheDownload)
{
    for (std::size_t index = 0; index < steps.size(); ++index) {
        SCOPED_TRACE(testing::Message() << index << ' ' << steps[index].command);
        const Download result = downloadWith([&] { card().failAt(index, sim::Fault::pulled()); });
        const Step& shown = whereSilenceShows(index);
        expectCleanFailure(
            result, shown,
            expectedChainG2(
                shown, test::pcsc("ScDataTransfer SCardTransmit() Failed", SCARD_W_REMOVED_CARD)));
        // During identification there is no card object yet whose signal the reader could forward.
        EXPECT_EQ(result.removed > 0, steps[index].phase != Phase::Identification);
        if (index % 10 == 0)
            expectNextDownloadToWork();
    }
}

TEST_F(DownloadFaultsG2Test, AReaderThatAnswersNoMoreFromAnyCommandOnEndsTheDownload)
{
    for (std::size_t index = 0; index < steps.size(); ++index) {
        for (const LONG code : {SCARD_W_RESET_CARD, SCARD_E_NO_SERVICE}) {
            SCOPED_TRACE(testing::Message() << index << ' ' << steps[index].command);
            const Download result = downloadWith([&] {
                for (std::size_t later = index; later < steps.size(); ++later)
                    pcsc().failCall(Function::Transmit, later, code);
            });
            const Step& shown = whereSilenceShows(index);
            expectCleanFailure(
                result, shown,
                expectedChainG2(shown, test::pcsc("ScDataTransfer SCardTransmit() Failed", code)));
            EXPECT_EQ(result.removed, 0);
        }
    }
    expectNextDownloadToWork();
}

TEST_F(DownloadFaultsG2Test, AnEfThatIsMissingInTheSecondApplicationIsNamedOnTheDebugStream)
{
    const struct
    {
        unsigned short fid;
        const char* text;
    } rows[] = {
        {0x0520, "Error reading EF_Identification:"},
        {0x0501, "Error reading EF_Application_Identification:"},
        {0xC100, "Error reading EF_MA_Certificate:"},
        {0xC101, "Error reading EF_Card_Sign_Certificate:"},
        {0xC108, "Error reading EF_CA_Certificate:"},
        {0xC109, "Error reading EF_Link_Certificate:"},
        {0x050E, "Error reading EF_Card_Download:"},
        {0x0521, "Error reading EF_Driving_License_Info:"},
        {0x0502, "Error reading EF_EventsData:"},
        {0x0503, "Error reading EF_FaultsData:"},
        {0x0504, "Error reading EF_Driver_Activity_Data:"},
        {0x0505, "Error reading EF_Vehicles_Used:"},
        {0x0506, "Error reading EF_Places:"},
        {0x0507, "Error reading EF_Current_Usage:"},
        {0x0508, "Error reading EF_Control_Activity_Data:"},
        {0x0522, "Error reading m_EF_Specitifc_Conditions:"},
        {0x0523, "Error reading m_EF_Vehicle_Units_Used:"},
        {0x0524, "Error reading m_EF_GNSS_Places:"},
        {0x0525, "Error reading EF_Application_Identification_V2:"},
        {0x0526, "Error reading EF_Places_Authentication:"},
        {0x0527, "Error reading EF_GNSS_Places_Authentication:"},
        {0x0528, "Error reading EF_Border_Crossing:"},
        {0x0529, "Error reading EF_Load_Unload_Operations:"},
        {0x0530, "Error reading EF_Load_Type_Entries:"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        const auto step = std::find_if(steps.begin(), steps.end(), [&row](const Step& each) {
            return each.phase == Phase::Reading && each.generation == 2 && each.fid == row.fid && !each.probe;
        });
        const Download result = downloadWith([&] {
            card().failAt(static_cast<std::size_t>(step - steps.begin()), sim::Fault::status(0x6A82));
        });
        expectCleanFailure(result, *step, expectedChainG2(*step, lib("ScDataTransfer failed", 0x6A82)));
        const QStringList lines = DebugStream::lines().filter(row.text);
        ASSERT_EQ(lines.size(), 1);
        EXPECT_TRUE(
            lines.front().startsWith(QLatin1String(row.text) + " libscard: ScDataTransfer failed (6a82) | "));
    }
}

} // namespace
