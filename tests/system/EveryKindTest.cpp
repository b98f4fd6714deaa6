// Every kind of card by every naming convention through the real pcscd.
#include "CardBehindPcscd.h"

#include <simulator/CompanyCard.h>
#include <simulator/ControlCard.h>
#include <simulator/WorkshopCard.h>
#include <support/ErrorChain.h>
#include <support/ExpectedCompany.h>
#include <support/ExpectedDriver.h>
#include <support/ExpectedWorkshop.h>

#include <QFile>
#include <QRegularExpression>

#include <gmock/gmock.h>

#include <algorithm>
#include <ostream>

namespace {

using namespace test;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

enum class Generation
{
    First,
    Second,
    Version22
};

constexpr Generation generations[] = {Generation::First, Generation::Second, Generation::Version22};

/// What the download of a card comes to.
struct Kind
{
    std::string name;
    scard::SCardMeta::Type type;
    sim::CardDescription card;
    std::vector<Step> steps;
    sim::Bytes image;
    unsigned short counterFid; ///< EF that is 0 behind the download; 0 for none
    std::vector<std::pair<scard::FilenameRegion, const char*>> names;
};

void PrintTo(const Kind& kind, std::ostream* stream)
{
    *stream << kind.name;
}

std::string nameOf(const char* card, Generation generation)
{
    constexpr const char* suffixes[] = {"", "G2", "V2"};
    return std::string(card) + suffixes[static_cast<int>(generation)];
}

Kind driver(Generation generation)
{
    sim::DriverParametersG2 parameters;
    parameters.first.surname = "Mustermann";
    parameters.first.firstNames = "Jana";
    parameters.first.driverIdentification = "DF000000123456";
    parameters.version2 = generation == Generation::Version22;
    DriverCountsG2 counts;
    counts.version2 = parameters.version2;
    Kind kind{
        nameOf("driver", generation),
        scard::SCardMeta::DriverCard,
        sim::makeDriverCardG1(parameters.first),
        expectedDriverSteps(),
        {},
        0,
        {{scard::RegionDDD, R"(^/tmp/C_\d{8}_\d{4}_J_Mustermann_DF000000123456\.DDD$)"},
         {scard::RegionC1B, R"(^/tmp/D__DF000000123456\d{10}\.C1B$)"},
         {scard::RegionTGD, R"(^/tmp/C_DF000000123456[0-9A-Z]{2}_D_\d{8}_\d{4}\.TGD$)"}}};
    if (generation == Generation::First) {
        kind.image = expectedDriverImage(kind.card);
    } else {
        kind.card = sim::makeDriverCardG2(parameters);
        kind.steps = expectedDriverStepsG2(counts);
        kind.image = expectedDriverImageG2(kind.card);
    }
    return kind;
}

Kind workshop(Generation generation)
{
    sim::WorkshopParametersG2 parameters;
    parameters.first.surname = "Fitter";
    parameters.first.firstNames = "Jo";
    parameters.first.ownerIdentification = "DW00000012345";
    parameters.first.indices = "102";
    parameters.version2 = generation == Generation::Version22;
    WorkshopCountsG2 counts;
    counts.version2 = parameters.version2;
    Kind kind{
        nameOf("workshop", generation),
        scard::SCardMeta::WorkshopCard,
        sim::makeWorkshopCardG1(parameters.first),
        expectedWorkshopSteps(),
        {},
        0x0509,
        {{scard::RegionDDD, R"(^/tmp/C_\d{8}_\d{4}_J_Fitter_DW00000012345102\.DDD$)"},
         {scard::RegionC1B, R"(^/tmp/D__DW00000012345\d{10}\.C1B$)"},
         {scard::RegionTGD, R"(^/tmp/C_DW00000012345102_D_\d{8}_\d{4}\.TGD$)"}}};
    if (generation == Generation::First) {
        kind.image = expectedWorkshopImage(kind.card);
    } else {
        kind.card = sim::makeWorkshopCardG2(parameters);
        kind.steps = expectedWorkshopStepsG2(counts);
        kind.image = expectedWorkshopImageG2(kind.card);
    }
    return kind;
}

Kind company(Generation generation)
{
    sim::CompanyParametersG2 parameters;
    parameters.first.serial = {0x00, 0x12, 0x34, 0x56, 0x03, 0x24, 0x0A, 0x7F};
    parameters.version2 = generation == Generation::Version22;
    CompanyCountsG2 counts;
    counts.version2 = parameters.version2;
    const char* name = R"(^/tmp/C_\d{8}_\d{4}_Company Card_0012345603240A\.DDD$)";
    Kind kind{
        nameOf("company", generation),
        scard::SCardMeta::CompanyCard,
        sim::makeCompanyCardG1(parameters.first),
        expectedCompanySteps(),
        {},
        0,
        {{scard::RegionDDD, name}, {scard::RegionC1B, name}, {scard::RegionTGD, name}}};
    if (generation == Generation::First) {
        kind.image = expectedCompanyImage(kind.card);
    } else {
        kind.card = sim::makeCompanyCardG2(parameters);
        kind.steps = expectedCompanyStepsG2(counts);
        kind.image = expectedCompanyImageG2(kind.card);
    }
    return kind;
}

/// Identified twice, and nothing else.
Kind control(Generation generation)
{
    sim::ControlParametersG2 parameters;
    parameters.version2 = generation == Generation::Version22;
    Script script;
    script.identify(generation == Generation::First ? 1 : 2);
    std::vector<Step> steps = script.take();
    const std::vector<Step> again = steps;
    for (const Step& step : again) {
        // The chip's files cannot be selected any more.
        const bool isSent = step.kind != test::Kind::Read || (step.fid != 0x0002 && step.fid != 0x0005);
        if (isSent)
            steps.push_back(step);
    }
    const char* name = "^/tmp/CARD_FILENAME_NOT_SET\\.DDD$";
    return {
        nameOf("control", generation),
        scard::SCardMeta::ControlCard,
        generation == Generation::First ? sim::makeControlCardG1(parameters.first)
                                        : sim::makeControlCardG2(parameters),
        steps,
        {},
        0,
        {{scard::RegionDDD, name}, {scard::RegionC1B, name}, {scard::RegionTGD, name}}};
}

std::vector<Kind> everyKind()
{
    std::vector<Kind> kinds;
    for (const Generation generation : generations)
        for (Kind (*kind)(Generation) : {driver, workshop, company, control})
            kinds.push_back(kind(generation));
    return kinds;
}

class EveryKind : public CardBehindPcscd, public testing::WithParamInterface<Kind>
{};

TEST_P(EveryKind, IsDownloadedByEachConvention)
{
    const Kind& kind = GetParam();
    for (const auto& [region, pattern] : kind.names) {
        SCOPED_TRACE(pattern);
        insert(kind.card);
        const Download result = download(region);
        takeOut();
        EXPECT_THAT(chain(result.failure), IsEmpty());
        EXPECT_THAT(result.types, ElementsAre(kind.type));
        EXPECT_TRUE(QRegularExpression(pattern).match(result.path).hasMatch()) << result.path.toStdString();
        EXPECT_EQ(bytes(result.image), kind.image);
        EXPECT_THAT(withoutStampTimes(commandsOf(card())), ElementsAreArray(commandsOf(kind.steps)));
        EXPECT_EQ(result.removed, 0);
        for (const sim::ApplicationDescription& application : kind.card.applications)
            if (kind.counterFid != 0) {
                EXPECT_EQ(*card().file(application.aid, kind.counterFid), sim::Bytes(2, 0x00));
            }
        QFile::remove(result.path);
    }
}

INSTANTIATE_TEST_SUITE_P(Pcscd, EveryKind, testing::ValuesIn(everyKind()), [](const auto& kindInfo) {
    return kindInfo.param.name;
});

class PulledWorkshopCard : public CardBehindPcscd
{};

TEST_F(PulledWorkshopCard, KeepsItsCountersUntilTheFileIsWhole)
{
    const sim::CardDescription workshop = workshopCardG2({});
    const sim::Bytes counter = *sim::Card(workshop).file(sim::AidG2, 0x0509);
    const std::vector<Step> steps = expectedWorkshopStepsG2({});
    const auto large = std::find_if(
        steps.begin(), steps.end(), [](const Step& step) { return step.kind == test::Kind::ReadLarge; });
    for (const std::size_t index : {std::size_t{100}, static_cast<std::size_t>(large - steps.begin()) + 90}) {
        insert(workshop);
        card().failAt(index, sim::Fault::pulled());
        const Download result = download();
        EXPECT_FALSE(result.failure.isEmpty());
        EXPECT_FALSE(result.card);
        takeOut();
        EXPECT_EQ(*card().file(sim::AidG1, 0x0509), counter);
        EXPECT_EQ(*card().file(sim::AidG2, 0x0509), counter);

        insertAgain();
        const Download next = download();
        EXPECT_THAT(chain(next.failure), IsEmpty());
        EXPECT_EQ(bytes(next.image), expectedWorkshopImageG2(workshop));
        QFile::remove(next.path);
    }
}

} // namespace
