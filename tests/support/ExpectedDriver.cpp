#include "ExpectedDriver.h"

#include <simulator/DriverCard.h>

namespace test {

namespace {

void totalOfFirst(Script& script)
{
    script.in(Phase::Total, 1);
    script.selectName("TACHO", true);
    script.readEf(0x0501, 10);
}

void readFirst(Script& script, const DriverCounts& counts)
{
    script.in(Phase::Reading, 1);
    script.selectName("TACHO");
    script.signedEf(0x0520, 143);
    script.signedEf(0x0501, 10);
    script.readEf(0xC100, 194);
    script.readEf(0xC108, 194);
    script.signedEf(0x050E, 4);
    script.signedEf(0x0521, 53);
    script.signedEf(0x0502, 6 * counts.events * 24);
    script.signedEf(0x0503, 2 * counts.faults * 24);
    script.activities(counts.activityLength);
    script.cyclicEf(0x0505, 2, counts.vehicles * 31);
    script.cyclicEf(0x0506, 1, counts.places * 10);
    script.signedEf(0x0507, 19);
    script.signedEf(0x0508, 46);
    script.signedEf(0x0522, 280);
}

const std::vector<unsigned int> firstReadingOrder = {0x0520, 0x0501, 0xC100, 0xC108, 0x050E, 0x0521, 0x0502,
                                                     0x0503, 0x0504, 0x0505, 0x0506, 0x0507, 0x0508, 0x0522};
const std::vector<unsigned int> firstSavingOrder = {0x0501, 0xC100, 0xC108, 0x0520, 0x050E, 0x0521, 0x0502,
                                                    0x0503, 0x0504, 0x0505, 0x0506, 0x0507, 0x0508, 0x0522};

/// Of the second generation.
constexpr unsigned short certificates[] = {0xC100, 0xC101, 0xC108, 0xC109};

/// Of the time only the header is known.
void stamp(Script& script, const std::string& name)
{
    script.update(name, 0x050E, 4, "");
}

sim::Bytes firstImage(const sim::CardDescription& card, unsigned int firstNotRead)
{
    ImageWriter image(1);
    image.chip(card);
    image.efsRead(card.applications.front(), firstReadingOrder, firstSavingOrder, firstNotRead);
    return image.bytes;
}

} // namespace

const sim::CardDescription& driverCard()
{
    static const sim::CardDescription description = sim::makeDriverCardG1();
    return description;
}

const sim::CardDescription& driverCardG2()
{
    static const sim::CardDescription description = sim::makeDriverCardG2();
    return description;
}

const sim::CardDescription& driverCardV2()
{
    static const sim::CardDescription description = [] {
        sim::DriverParametersG2 parameters;
        parameters.version2 = true;
        return sim::makeDriverCardG2(parameters);
    }();
    return description;
}

std::vector<Step> expectedDriverSteps(const DriverCounts& counts)
{
    Script script;
    script.identify(1);
    totalOfFirst(script);
    readFirst(script, counts);
    script.in(Phase::Stamp, 1);
    stamp(script, "TACHO");
    return script.take();
}

std::vector<Step> expectedDriverStepsG2(const DriverCountsG2& counts, const DriverCounts& first)
{
    Script script;
    script.identify(2);

    totalOfFirst(script);
    script.in(Phase::Total, 2);
    script.selectName("SMRDT");
    script.readEf(0x0501, 17);
    for (const unsigned short fid : certificates)
        script.probe(fid);
    if (counts.version2)
        script.readEf(0x0525, 10);

    readFirst(script, first);
    script.in(Phase::Reading, 2);
    script.selectName("SMRDT");
    script.signedEf(0x0520, 143);
    script.signedEf(0x0501, 17);
    for (const unsigned short fid : certificates)
        script.certificate(fid, counts.certificateLength);
    script.signedEf(0x050E, 4);
    script.signedEf(0x0521, 53);
    script.signedEf(0x0502, 11 * counts.events * 24);
    script.signedEf(0x0503, 2 * counts.faults * 24);
    script.activities(counts.activityLength);
    script.cyclicEf(0x0505, 2, counts.vehicles * 48);
    script.cyclicEf(0x0506, 2, counts.places * 21);
    script.signedEf(0x0507, 19);
    script.signedEf(0x0508, 46);
    script.cyclicEf(0x0522, 2, counts.specificConditions * 5);
    script.cyclicEf(0x0523, 2, counts.vehicleUnits * 10);
    script.cyclicEf(0x0524, 2, counts.gnssPlaces * 18);
    if (counts.version2) {
        script.signedEf(0x0525, 10);
        script.cyclicEf(0x0526, 2, counts.places * 5);
        script.cyclicEf(0x0527, 2, counts.gnssPlaces * 5);
        script.cyclicEf(0x0528, 2, counts.borderCrossings * 17);
        script.cyclicEf(0x0529, 2, counts.loadUnloadOperations * 20);
        script.cyclicEf(0x0530, 2, counts.loadTypeEntries * 5);
    }

    script.in(Phase::Stamp, 1);
    stamp(script, "TACHO");
    script.in(Phase::Stamp, 2);
    stamp(script, "SMRDT");
    return script.take();
}

Chain expectedDriverChain(const Step& step, const Entry& cause)
{
    Chain chain = chainOfReader(step, cause);
    if (step.phase == Phase::Total)
        chain.push_back(
            lib("calcDataToRead(): Error reading SCardDriver G1 EF_Application_Identification:", cause.id));
    return chainOfDownload(step, cause, std::move(chain));
}

Chain expectedDriverChainG2(const Step& step, const Entry& cause)
{
    Chain chain = chainOfReader(step, cause);
    if (step.phase == Phase::Total) {
        std::string text = "calcDataToRead(): Error reading SCardDriver G2 EF_Application_Identification:";
        if (step.generation == 1) {
            chain.push_back(lib(
                "calcDataToRead(): Error reading SCardDriver G1 EF_Application_Identification:", cause.id));
            text = "calcDataToRead() failed to call SCardDriverG1::calcDataToRead()";
        } else if (step.fid == 0x0525) {
            text = "calcDataToRead(): Error reading SCardDriver G2 EF_Application_Identification_V2:";
        }
        chain.insert(chain.begin(), lib(text, cause.id));
    }
    return chainOfDownload(step, cause, std::move(chain));
}

sim::Bytes expectedDriverImage(const sim::CardDescription& card)
{
    return firstImage(card, 0);
}

sim::Bytes expectedDriverImageG2(const sim::CardDescription& card, unsigned int firstNotRead)
{
    const sim::ApplicationDescription& second = card.applications.at(1);
    ImageWriter image(2);
    image.bytes = firstImage(card, firstNotRead);
    image.chip(card);
    for (const unsigned int fid :
         {0x0501u, 0xC100u, 0xC101u, 0xC108u, 0xC109u, 0x0520u, 0x050Eu, 0x0521u, 0x0502u, 0x0503u, 0x0504u,
          0x0505u, 0x0506u, 0x0507u, 0x0508u, 0x0522u, 0x0523u, 0x0524u})
        image.ef(second, fid);
    if (hasFile(second, 0x0525))
        for (const unsigned int fid : {0x0525u, 0x0526u, 0x0527u, 0x0528u, 0x0529u, 0x0530u})
            image.ef(second, fid);
    return image.bytes;
}

} // namespace test
