#include "ControlCard.h"

#include "Nations.h"
#include "OfficeCard.h"
#include "Text.h"
#include "TimeReal.h"

#include <algorithm>

namespace sim {

namespace {

constexpr std::uint32_t ControlCardStream = 16;
constexpr std::uint16_t ControllerActivityData = 0x050C;

/// One control after the other, up to some days apart, the last at `lastControl`.
std::vector<Bytes> makeControls(const ControlParameters& parameters, Random& random)
{
    constexpr std::uint32_t Used = 40;
    constexpr std::uint32_t LongestPause = 3 * SecondsPerDay;
    constexpr std::uint8_t CardDownload = 0x80;
    constexpr std::uint8_t VuDownloadAndPrinting = 0x60;

    std::vector<Bytes> controls;
    for (std::uint32_t left = std::min<std::uint32_t>(Used, parameters.activityRecords); left-- > 0;) {
        const std::uint32_t before = left * LongestPause + (left > 0 ? random.below(LongestPause) : 0);
        const bool ofCard = random.chance(70);
        OfficeActivity control;
        control.type = ofCard ? CardDownload : VuDownloadAndPrinting;
        control.time = parameters.lastControl - before;
        if (ofCard) {
            control.driverCard = random.digits(14) + "00";
        }
        control.vehicle.nation = parameters.nation;
        control.vehicle.plate = "SIM " + random.digits(4);
        control.periodBegin = control.time - 28 * SecondsPerDay;
        control.periodEnd = control.time;
        controls.push_back(officeActivityRecord(control, parameters.nation, parameters.codePage));
    }
    return controls;
}

OfficeStory makeControlStory(const ControlParameters& parameters)
{
    requireParameter(parameters.activityRecords > 0, "a control card without records");
    requireParameter(parameters.lastControl >= 946684800, "a control before 2000-01-01");
    Random random(parameters.seed, ControlCardStream);
    const NationProfile profile = nationProfile(parameters.nation);
    CardIdentification card;
    card.nation = parameters.nation;
    card.authority =
        encodeText(profile.authority, parameters.codePage) ? profile.authority : "Control Authority";
    card.issued = parameters.lastControl / SecondsPerDay * SecondsPerDay - 300 * SecondsPerDay;
    card.expires = card.issued + 2 * 365 * SecondsPerDay - 1;

    OfficeStory story;
    story.equipment = Equipment::Control;
    story.activityFid = ControllerActivityData;
    story.nation = parameters.nation;
    story.issued = card.issued;
    story.expires = card.expires;
    story.extendedSerialNumber = makeExtendedSerialNumber(random.next(), card.issued, Equipment::Control);
    story.chipSerial = random.next();

    card.number = makeCardNumber(random.digits(OwnerLength), "100");
    Bytes& identification = story.identification;
    appendCardIdentification(identification, card, parameters.codePage);
    for (const char* text : {"Road Police", "Station Road 1", "Road Police", ""}) {
        appendBytes(identification, textField(text, parameters.codePage, NameLength));
    }
    appendBytes(identification, asciiField(profile.language, 2));
    story.activities = makeControls(parameters, random);
    return story;
}

} // namespace

CardDescription makeControlCardG1(const ControlParameters& parameters)
{
    return makeOfficeCardG1(makeControlStory(parameters), parameters.activityRecords);
}

CardDescription makeControlCardG2(const ControlParametersG2& parameters)
{
    requireParameter(parameters.activityRecords > 0, "a control card without records");
    return makeOfficeCardG2(
        makeControlStory(parameters.first), parameters.first.activityRecords,
        {parameters.version2, parameters.activityRecords, parameters.curve, parameters.certificateFiles,
         parameters.linkCertificate});
}

} // namespace sim
