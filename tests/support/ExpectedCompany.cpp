#include "ExpectedCompany.h"

#include <simulator/CompanyCard.h>

namespace test {

namespace {

constexpr unsigned short certificates[] = {0xC100, 0xC108, 0xC109};

/// Read and saved in the same order.
const std::vector<unsigned int> firstOrder = {0x0501, 0xC100, 0xC108, 0x050D};

void totalOfFirst(Script& script)
{
    script.in(Phase::Total, 1);
    script.selectName("TACHO");
    script.readEf(0x0501, 5);
}

void readFirst(Script& script, unsigned int activities)
{
    script.in(Phase::Reading, 1);
    script.selectName("TACHO");
    script.signedEf(0x0501, 5);
    script.readEf(0xC100, 194);
    script.readEf(0xC108, 194);
    script.cyclicEf(0x050D, 2, activities * 46);
}

const char* failureText(const Step& step)
{
    switch (step.fid) {
    case 0x0520:
        return "Error reading EF_Identification:";
    case 0x0501:
        return "Error reading EF_Application_Identification:";
    case 0xC100:
        return step.generation == 1 ? "Error reading EF_Card_Certificate:"
                                    : "Error reading EF_MA_Certificate:";
    case 0xC108:
        return "Error reading EF_CA_Certificate:";
    case 0xC109:
        return "Error reading EF_Link_Certificate:";
    case 0x050D:
        return "Error reading EF_Company_Activity:";
    default:
        return "Error reading EF_Application_Identification_V2:";
    }
}

/// Each entry follows what made it necessary.
Chain following(const Step& step, const Entry& cause, const std::vector<std::string>& totalTexts)
{
    Chain chain = chainOfReader(step, cause);
    if (step.phase == Phase::Total) {
        for (const std::string& text : totalTexts)
            chain.push_back(lib(text, cause.id));
    } else if (step.phase == Phase::Reading) {
        chain.push_back(
            step.kind == Kind::SelectName ? lib("read() Select DF_Tachograph failed", cause.id)
                                          : lib(failureText(step), cause.id));
        chain.push_back(lib("Failed reading card data"));
        return chain;
    }
    return chainOfDownload(step, cause, std::move(chain));
}

} // namespace

sim::CardDescription companyCard(unsigned int activities)
{
    sim::CompanyParameters parameters;
    parameters.activityRecords = static_cast<std::uint16_t>(activities);
    return sim::makeCompanyCardG1(parameters);
}

sim::CardDescription companyCardG2(const CompanyCountsG2& counts, unsigned int firstActivities)
{
    sim::CompanyParametersG2 parameters;
    parameters.first.activityRecords = static_cast<std::uint16_t>(firstActivities);
    parameters.activityRecords = static_cast<std::uint16_t>(counts.activities);
    parameters.version2 = counts.version2;
    return sim::makeCompanyCardG2(parameters);
}

std::vector<Step> expectedCompanySteps(unsigned int activities)
{
    Script script;
    script.identify(1);
    totalOfFirst(script);
    readFirst(script, activities);
    return script.take();
}

std::vector<Step> expectedCompanyStepsG2(const CompanyCountsG2& counts, unsigned int firstActivities)
{
    Script script;
    script.identify(2);
    totalOfFirst(script);
    script.in(Phase::Total, 2);
    script.selectName("SMRDT");
    script.readEf(0x0501, 5);
    for (const unsigned short fid : certificates)
        script.probe(fid);
    if (counts.version2)
        script.readEf(0x0525, 4);

    // The second application comes first.
    script.in(Phase::Reading, 2);
    script.selectName("SMRDT");
    script.readEf(0x0520, 139);
    script.readEf(0x0501, 5);
    for (const unsigned short fid : certificates)
        script.certificate(fid, counts.certificateLength);
    script.readEf(0x050D, 2);
    script.readEf(0x050D, counts.activities * 46, 2);
    if (counts.version2)
        script.readEf(0x0525, 4);
    readFirst(script, firstActivities);
    return script.take();
}

Chain expectedCompanyChain(const Step& step, const Entry& cause)
{
    return following(
        step, cause, {"calcDataToRead(): Error reading SCardCompany G1 EF_Application_Identification:"});
}

Chain expectedCompanyChainG2(const Step& step, const Entry& cause)
{
    if (step.generation == 1)
        return following(
            step, cause,
            {"calcDataToRead(): Error reading SCardCompany G1 EF_Application_Identification:",
             "calcDataToRead() failed to call SCardCompanyG1::calcDataToRead()"});
    return following(
        step, cause,
        {step.fid == 0x0525
             ? "calcDataToRead(): Error reading SCardCompany G2 EF_Application_Identification_V2:"
             : "calcDataToRead(): Error reading SCardCompany G2 EF_Application_Identification:"});
}

sim::Bytes expectedCompanyImage(const sim::CardDescription& card, unsigned int firstNotRead)
{
    ImageWriter image(1);
    image.chip(card);
    image.efsRead(card.applications.front(), firstOrder, firstOrder, firstNotRead);
    return image.bytes;
}

sim::Bytes expectedCompanyImageG2(const sim::CardDescription& card, unsigned int firstNotRead)
{
    const sim::ApplicationDescription& second = card.applications.at(1);
    ImageWriter image(1); // the second application's records have the first generation's type, too
    image.bytes = expectedCompanyImage(card, firstNotRead);
    image.chip(card);
    for (const unsigned int fid : {0x0501u, 0xC100u, 0xC108u, 0xC109u, 0x0520u, 0x050Du})
        image.dataOnly(second, fid);
    if (hasFile(second, 0x0525))
        image.dataOnly(second, 0x0525);
    return image.bytes;
}

} // namespace test
