#include "CardKind.h"

#include "ExpectedCompany.h"
#include "ExpectedDriver.h"
#include "ExpectedWorkshop.h"

#include <simulator/DriverCard.h>

#include <ostream>

namespace test {

namespace {

using Texts = std::vector<CardKind::FailureText>;

constexpr unsigned int fewRecords = 2;

DriverCounts smallDriver()
{
    DriverCounts counts;
    counts.events = 1;
    counts.faults = 1;
    counts.activityLength = 600;
    counts.vehicles = fewRecords;
    counts.places = fewRecords;
    return counts;
}

DriverCountsG2 smallDriverG2(bool version2)
{
    DriverCountsG2 counts;
    counts.events = 1;
    counts.faults = 1;
    counts.activityLength = 600;
    counts.vehicles = fewRecords;
    counts.places = fewRecords;
    counts.gnssPlaces = fewRecords;
    counts.specificConditions = fewRecords;
    counts.vehicleUnits = fewRecords;
    counts.version2 = version2;
    counts.borderCrossings = fewRecords;
    counts.loadUnloadOperations = fewRecords;
    counts.loadTypeEntries = fewRecords;
    return counts;
}

sim::DriverParametersG2 smallDriverParameters(bool version2)
{
    const DriverCounts first = smallDriver();
    const DriverCountsG2 second = smallDriverG2(version2);
    sim::DriverParametersG2 parameters;
    parameters.version2 = version2;
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
    return parameters;
}

WorkshopCounts smallWorkshop()
{
    WorkshopCounts counts;
    counts.events = 1;
    counts.faults = 1;
    counts.activityLength = 300;
    counts.vehicles = fewRecords;
    counts.places = fewRecords;
    counts.calibrations = fewRecords;
    return counts;
}

WorkshopCountsG2 smallWorkshopG2(unsigned int calibrations, bool version2)
{
    WorkshopCountsG2 counts;
    static_cast<WorkshopCounts&>(counts) = smallWorkshop();
    counts.calibrations = calibrations;
    counts.gnssPlaces = fewRecords;
    counts.specificConditions = fewRecords;
    counts.vehicleUnits = fewRecords;
    counts.version2 = version2;
    counts.borderCrossings = fewRecords;
    counts.loadUnloadOperations = fewRecords;
    counts.loadTypeEntries = fewRecords;
    return counts;
}

CompanyCountsG2 smallCompanyG2(bool version2)
{
    CompanyCountsG2 counts;
    counts.activities = fewRecords;
    counts.version2 = version2;
    return counts;
}

Texts operator+(Texts texts, const Texts& more)
{
    texts.insert(texts.end(), more.begin(), more.end());
    return texts;
}

const Texts identificationTexts = {
    {0x0520, "Error reading EF_Identification:"},
    {0x0501, "Error reading EF_Application_Identification:"},
};
const Texts certificateTexts = {
    {0xC100, "Error reading EF_Card_Certificate:"},
    {0xC108, "Error reading EF_CA_Certificate:"},
};
const Texts certificateTextsG2 = {
    {0xC100, "Error reading EF_MA_Certificate:"},
    {0xC108, "Error reading EF_CA_Certificate:"},
    {0xC109, "Error reading EF_Link_Certificate:"},
};
const Texts usageTexts = {
    {0x0502, "Error reading EF_EventsData:"},
    {0x0503, "Error reading EF_FaultsData:"},
    {0x0504, "Error reading EF_Driver_Activity_Data:"},
    {0x0505, "Error reading EF_Vehicles_Used:"},
    {0x0506, "Error reading EF_Places:"},
    {0x0507, "Error reading EF_Current_Usage:"},
    {0x0508, "Error reading EF_Control_Activity_Data:"},
    {0x0522, "Error reading m_EF_Specitifc_Conditions:"},
};
const Texts usageTextsG2 = {
    {0xC101, "Error reading EF_Card_Sign_Certificate:"},
    {0x0523, "Error reading m_EF_Vehicle_Units_Used:"},
    {0x0524, "Error reading m_EF_GNSS_Places:"},
};
const Texts version2Texts = {
    {0x0525, "Error reading EF_Application_Identification_V2:"},
    {0x0526, "Error reading EF_Places_Authentication:"},
    {0x0527, "Error reading EF_GNSS_Places_Authentication:"},
    {0x0528, "Error reading EF_Border_Crossing:"},
    {0x0529, "Error reading EF_Load_Unload_Operations:"},
    {0x0530, "Error reading EF_Load_Type_Entries:"},
};

const Texts driverTexts = {
    {0x050E, "Error reading EF_Card_Download:"},
    {0x0521, "Error reading EF_Driving_License_Info:"},
};

/// Those of version 2.2 have a text for each EF that it added.
CardKind driverOfSecondGeneration(const char* name, const Texts& texts)
{
    const DriverCountsG2 counts = smallDriverG2(!texts.empty());
    return {
        name,
        sim::makeDriverCardG2(smallDriverParameters(counts.version2)),
        expectedDriverStepsG2(counts, smallDriver()),
        expectedDriverChainG2,
        expectedDriverImageG2,
        true,
        0x050E,
        identificationTexts + certificateTextsG2 + usageTexts + usageTextsG2 + driverTexts + texts};
}

CardKind workshopOfSecondGeneration(const char* name, unsigned int calibrations, const Texts& texts)
{
    const WorkshopCountsG2 counts = smallWorkshopG2(calibrations, !texts.empty());
    return {
        name,
        workshopCardG2(counts, smallWorkshop()),
        expectedWorkshopStepsG2(counts, smallWorkshop()),
        expectedWorkshopChainG2,
        expectedWorkshopImageG2,
        true,
        0x0509,
        identificationTexts + certificateTextsG2 + usageTexts + usageTextsG2 +
            Texts{{0x0509, "Error reading EF_Card_Download:"}, {0x050A, "Error reading EF_Calibration:"}} +
            texts};
}

CardKind companyOfSecondGeneration(const char* name, const Texts& texts)
{
    const CompanyCountsG2 counts = smallCompanyG2(!texts.empty());
    return {
        name,
        companyCardG2(counts, fewRecords),
        expectedCompanyStepsG2(counts, fewRecords),
        expectedCompanyChainG2,
        expectedCompanyImageG2,
        true,
        0,
        identificationTexts + certificateTextsG2 + Texts{{0x050D, "Error reading EF_Company_Activity:"}} +
            texts};
}

} // namespace

Chain CardKind::nothingToSave() const
{
    const Entry cause = lib("writeDatasetToFile(): no valid data");
    const Entry step = lib("saveToFile() Failed");
    const Entry last = lib("Failed at saving card data to file");
    return isCompany() ? Chain{cause, step, last} : Chain{step, cause, last};
}

void PrintTo(const CardKind& kind, std::ostream* stream)
{
    *stream << kind.name;
}

CardKind driverKind()
{
    return {
        "driver",
        sim::makeDriverCardG1(smallDriverParameters(false).first),
        expectedDriverSteps(smallDriver()),
        expectedDriverChain,
        [](const sim::CardDescription& card, unsigned int) { return expectedDriverImage(card); },
        false,
        0x050E,
        identificationTexts + certificateTexts + usageTexts + driverTexts};
}

CardKind driverG2Kind()
{
    return driverOfSecondGeneration("driverG2", {});
}

CardKind driverV2Kind()
{
    return driverOfSecondGeneration("driverV2", version2Texts);
}

CardKind workshopKind()
{
    return {
        "workshop",
        workshopCard(smallWorkshop()),
        expectedWorkshopSteps(smallWorkshop()),
        expectedWorkshopChain,
        expectedWorkshopImage,
        false,
        0x0509,
        identificationTexts + certificateTexts + usageTexts +
            Texts{{0x0509, "Error reading EF_Card_Download:"}, {0x050A, "Error reading nEF_Calibration:"}}};
}

CardKind workshopG2Kind()
{
    return workshopOfSecondGeneration("workshopG2", 255, {});
}

CardKind workshopV2Kind()
{
    return workshopOfSecondGeneration(
        "workshopV2", fewRecords, version2Texts + Texts{{0x0531, "Error reading EF_Calibration_Add_Data:"}});
}

CardKind companyKind()
{
    return {
        "company",
        companyCard(fewRecords),
        expectedCompanySteps(fewRecords),
        expectedCompanyChain,
        expectedCompanyImage,
        false,
        0,
        Texts{
            {0x0501, "Error reading EF_Application_Identification:"},
            {0x050D, "Error reading EF_Company_Activity:"}} +
            certificateTexts};
}

CardKind companyG2Kind()
{
    return companyOfSecondGeneration("companyG2", {});
}

CardKind companyV2Kind()
{
    return companyOfSecondGeneration(
        "companyV2", {{0x0525, "Error reading EF_Application_Identification_V2:"}});
}

} // namespace test
