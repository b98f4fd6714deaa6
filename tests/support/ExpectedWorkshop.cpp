#include "ExpectedWorkshop.h"

#include <simulator/WorkshopCard.h>

namespace test {

namespace {

constexpr unsigned short certificates[] = {0xC100, 0xC101, 0xC108, 0xC109};

const std::vector<unsigned int> firstReadingOrder = {0x0520, 0x0501, 0xC100, 0xC108, 0x0509, 0x050A, 0x0502,
                                                     0x0503, 0x0504, 0x0505, 0x0506, 0x0507, 0x0508, 0x0522};
const std::vector<unsigned int> firstSavingOrder = {0x0501, 0xC100, 0xC108, 0x0520, 0x0509, 0x050A, 0x0502,
                                                    0x0503, 0x0504, 0x0505, 0x0506, 0x0507, 0x0508, 0x0522};

void totalOfFirst(Script& script)
{
    script.in(Phase::Total, 1);
    script.selectName("TACHO");
    script.readEf(0x0501, 11);
}

void readFirst(Script& script, const WorkshopCounts& counts)
{
    script.in(Phase::Reading, 1);
    script.selectName("TACHO");
    script.signedEf(0x0520, 211);
    script.signedEf(0x0501, 11);
    script.readEf(0xC100, 194);
    script.readEf(0xC108, 194);
    script.signedEf(0x0509, 2);
    script.readEf(0x050A, 2);
    script.readEf(0x050A, 1, 2);
    script.readEf(0x050A, counts.calibrations * 105, 3);
    script.sign(0x050A);
    script.signedEf(0x0502, 6 * counts.events * 24);
    script.signedEf(0x0503, 2 * counts.faults * 24);
    script.activities(counts.activityLength);
    script.cyclicEf(0x0505, 2, counts.vehicles * 31);
    script.cyclicEf(0x0506, 1, counts.places * 10);
    script.signedEf(0x0507, 19);
    script.signedEf(0x0508, 46);
    script.signedEf(0x0522, 10);
}

void readSecond(Script& script, const WorkshopCountsG2& counts)
{
    script.in(Phase::Reading, 2);
    script.selectName("SMRDT");
    script.signedEf(0x0520, 211);
    script.signedEf(0x0501, 19);
    for (const unsigned short fid : certificates)
        script.certificate(fid, counts.certificateLength);
    script.signedEf(0x0509, 2);
    script.readEf(0x050A, 2);
    script.readEf(0x050A, 2, 2);
    script.readEf(0x050A, counts.calibrations * 178, 4);
    script.sign(0x050A);
    script.signedEf(0x0502, 11 * counts.events * 24);
    script.signedEf(0x0503, 2 * counts.faults * 24);
    script.activities(counts.activityLength);
    script.cyclicEf(0x0505, 2, counts.vehicles * 48);
    script.cyclicEf(0x0506, 2, counts.places * 21);
    script.signedEf(0x0507, 19);
    script.signedEf(0x0508, 46);
    script.cyclicEf(0x0523, 2, counts.vehicleUnits * 10);
    script.cyclicEf(0x0524, 2, counts.gnssPlaces * 18);
    script.cyclicEf(0x0522, 2, counts.specificConditions * 5);
    if (!counts.version2)
        return;
    script.signedEf(0x0525, 10);
    script.cyclicEf(0x0526, 2, counts.places * 5);
    script.cyclicEf(0x0527, 2, counts.gnssPlaces * 5);
    script.cyclicEf(0x0528, 2, counts.borderCrossings * 17);
    script.cyclicEf(0x0529, 2, counts.loadUnloadOperations * 20);
    script.cyclicEf(0x0530, 2, counts.loadTypeEntries * 5);
    script.cyclicEf(0x0531, 2, counts.calibrations * 27);
}

void resetCounter(Script& script, unsigned int generation)
{
    script.in(Phase::Stamp, generation);
    script.update(generation == 1 ? "TACHO" : "SMRDT", 0x0509, 2, " 00 00");
}

} // namespace

sim::CardDescription workshopCard(const WorkshopCounts& counts)
{
    sim::WorkshopParameters parameters;
    parameters.eventsPerType = static_cast<std::uint8_t>(counts.events);
    parameters.faultsPerType = static_cast<std::uint8_t>(counts.faults);
    parameters.activityLength = static_cast<std::uint16_t>(counts.activityLength);
    parameters.vehicles = static_cast<std::uint16_t>(counts.vehicles);
    parameters.places = static_cast<std::uint8_t>(counts.places);
    parameters.calibrations = static_cast<std::uint8_t>(counts.calibrations);
    return sim::makeWorkshopCardG1(parameters);
}

sim::CardDescription workshopCardG2(const WorkshopCountsG2& counts, const WorkshopCounts& first)
{
    sim::WorkshopParametersG2 parameters;
    parameters.first.eventsPerType = static_cast<std::uint8_t>(first.events);
    parameters.first.faultsPerType = static_cast<std::uint8_t>(first.faults);
    parameters.first.activityLength = static_cast<std::uint16_t>(first.activityLength);
    parameters.first.vehicles = static_cast<std::uint16_t>(first.vehicles);
    parameters.first.places = static_cast<std::uint8_t>(first.places);
    parameters.first.calibrations = static_cast<std::uint8_t>(first.calibrations);
    parameters.eventsPerType = static_cast<std::uint8_t>(counts.events);
    parameters.faultsPerType = static_cast<std::uint8_t>(counts.faults);
    parameters.activityLength = static_cast<std::uint16_t>(counts.activityLength);
    parameters.vehicles = static_cast<std::uint16_t>(counts.vehicles);
    parameters.places = static_cast<std::uint16_t>(counts.places);
    parameters.calibrations = static_cast<std::uint16_t>(counts.calibrations);
    parameters.gnssPlaces = static_cast<std::uint16_t>(counts.gnssPlaces);
    parameters.specificConditions = static_cast<std::uint16_t>(counts.specificConditions);
    parameters.vehicleUnits = static_cast<std::uint16_t>(counts.vehicleUnits);
    parameters.version2 = counts.version2;
    parameters.borderCrossings = static_cast<std::uint16_t>(counts.borderCrossings);
    parameters.loadUnloadOperations = static_cast<std::uint16_t>(counts.loadUnloadOperations);
    parameters.loadTypeEntries = static_cast<std::uint16_t>(counts.loadTypeEntries);
    return sim::makeWorkshopCardG2(parameters);
}

std::vector<Step> expectedWorkshopSteps(const WorkshopCounts& counts)
{
    Script script;
    script.identify(1);
    totalOfFirst(script);
    readFirst(script, counts);
    resetCounter(script, 1);
    return script.take();
}

std::vector<Step> expectedWorkshopStepsG2(const WorkshopCountsG2& counts, const WorkshopCounts& first)
{
    Script script;
    script.identify(2);
    totalOfFirst(script);
    script.in(Phase::Total, 2);
    script.selectName("SMRDT");
    script.readEf(0x0501, 19);
    for (const unsigned short fid : certificates)
        script.probe(fid);
    if (counts.version2)
        script.readEf(0x0525, 10);
    readFirst(script, first);
    readSecond(script, counts);
    resetCounter(script, 1);
    resetCounter(script, 2);
    return script.take();
}

Chain expectedWorkshopChain(const Step& step, const Entry& cause)
{
    Chain chain = chainOfReader(step, cause);
    if (step.phase == Phase::Total)
        chain.insert(
            chain.begin(),
            lib("calcDataToRead(): Error reading SCardWorkshop G1 EF_Application_Identification:", cause.id));
    return chainOfDownload(step, cause, std::move(chain));
}

Chain expectedWorkshopChainG2(const Step& step, const Entry& cause)
{
    Chain chain = chainOfReader(step, cause);
    if (step.phase == Phase::Total) {
        const auto lead = [&](const std::string& text) { chain.insert(chain.begin(), lib(text, cause.id)); };
        if (step.generation == 1) {
            lead("calcDataToRead(): Error reading SCardWorkshop G1 EF_Application_Identification:");
            lead("calcDataToRead() failed to call SCardWorkshopG1::calcDataToRead()");
        } else if (step.fid == 0x0525) {
            lead("calcDataToRead(): Error reading SCardWorkshop G2 EF_Application_Identification_V2:");
        } else {
            lead("calcDataToRead(): Error reading SCardWorkshop G2 EF_Application_Identification:");
        }
    }
    return chainOfDownload(step, cause, std::move(chain));
}

sim::Bytes expectedWorkshopImage(const sim::CardDescription& card, unsigned int firstNotRead)
{
    ImageWriter image(1);
    image.chip(card);
    image.efsRead(card.applications.front(), firstReadingOrder, firstSavingOrder, firstNotRead);
    return image.bytes;
}

sim::Bytes expectedWorkshopImageG2(const sim::CardDescription& card, unsigned int firstNotRead)
{
    const sim::ApplicationDescription& second = card.applications.at(1);
    ImageWriter image(2);
    image.bytes = expectedWorkshopImage(card, firstNotRead);
    image.chip(card);
    for (const unsigned int fid :
         {0x0501u, 0xC100u, 0xC101u, 0xC108u, 0xC109u, 0x0520u, 0x0509u, 0x050Au, 0x0502u, 0x0503u, 0x0504u,
          0x0505u, 0x0506u, 0x0507u, 0x0508u, 0x0523u, 0x0524u, 0x0522u})
        image.ef(second, fid);
    if (hasFile(second, 0x0525))
        for (const unsigned int fid : {0x0525u, 0x0526u, 0x0527u, 0x0528u, 0x0529u, 0x0530u, 0x0531u})
            image.ef(second, fid);
    return image.bytes;
}

} // namespace test
