#include "CodeNames.h"

#include <QStringList>

#include <algorithm>

namespace report {

namespace {

// clang-format off
constexpr CodeName eventsAndFaults[] = {
    {0x00, "general event, no details"},
    {0x01, "insertion of a non-valid card"},
    {0x02, "card conflict"},
    {0x03, "time overlap"},
    {0x04, "driving without an appropriate card"},
    {0x05, "card insertion while driving"},
    {0x06, "last card session not correctly closed"},
    {0x07, "over speeding"},
    {0x08, "power supply interruption"},
    {0x09, "motion data error"},
    {0x0A, "vehicle motion conflict"},
    {0x0B, "time conflict between satellite receiver and vehicle unit"},
    {0x0C, "communication error with the remote communication facility"},
    {0x0D, "absence of position information from the satellite receiver"},
    {0x0E, "communication error with the external satellite receiver"},
    {0x0F, "satellite positioning anomaly"},
    {0x10, "vehicle unit security breach attempt, no details"},
    {0x11, "motion sensor authentication failure"},
    {0x12, "tachograph card authentication failure"},
    {0x13, "unauthorised change of motion sensor"},
    {0x14, "card data input integrity error"},
    {0x15, "stored user data integrity error"},
    {0x16, "internal data transfer error"},
    {0x17, "unauthorised case opening"},
    {0x18, "hardware sabotage"},
    {0x19, "tamper detection of the satellite receiver"},
    {0x1A, "external satellite receiver authentication failure"},
    {0x1B, "external satellite receiver certificate expired"},
    {0x1C, "inconsistency between motion data and stored driver activity"},
    {0x20, "motion sensor security breach attempt, no details"},
    {0x21, "motion sensor: authentication failure"},
    {0x22, "motion sensor: stored data integrity error"},
    {0x23, "motion sensor: internal data transfer error"},
    {0x24, "motion sensor: unauthorised case opening"},
    {0x25, "motion sensor: hardware sabotage"},
    {0x30, "recording equipment fault, no details"},
    {0x31, "vehicle unit internal fault"},
    {0x32, "printer fault"},
    {0x33, "display fault"},
    {0x34, "downloading fault"},
    {0x35, "motion sensor fault"},
    {0x36, "internal satellite receiver fault"},
    {0x37, "external satellite receiver fault"},
    {0x38, "remote communication facility fault"},
    {0x39, "intelligent transport systems interface fault"},
    {0x3A, "internal sensor fault"},
    {0x40, "card fault, no details"},
};
constexpr CodeName activityNames[] = {{0, "rest"}, {1, "availability"}, {2, "work"}, {3, "driving"}};
constexpr CodeName slotNames[] = {{0, "driver"}, {1, "co-driver"}};
constexpr CodeName cardStatuses[] = {{0, "inserted"}, {1, "not inserted"}};
constexpr CodeName statusesWithCard[] = {{0, "single"}, {1, "crew"}};
constexpr CodeName statusesWithoutCard[] = {{0, "unknown"}, {1, "known"}};
constexpr CodeName placeEntryTypes[] = {
    {0, "begin, time of card insertion or entry"},
    {1, "end, time of card withdrawal or entry"},
    {2, "begin, time entered by hand"},
    {3, "end, time entered by hand"},
    {4, "begin, assumed by the vehicle unit"},
    {5, "end, assumed by the vehicle unit"},
    {6, "begin, time of the satellite position"},
    {7, "end, time of the satellite position"},
};
constexpr CodeName spanishRegions[] = {
    {0x01, "Andalucía"}, {0x02, "Aragón"}, {0x03, "Asturias"}, {0x04, "Cantabria"}, {0x05, "Cataluña"},
    {0x06, "Castilla-León"}, {0x07, "Castilla-La-Mancha"}, {0x08, "Valencia"}, {0x09, "Extremadura"},
    {0x0A, "Galicia"}, {0x0B, "Baleares"}, {0x0C, "Canarias"}, {0x0D, "La Rioja"}, {0x0E, "Madrid"},
    {0x0F, "Murcia"}, {0x10, "Navarra"}, {0x11, "País Vasco"},
};
constexpr CodeName specificConditionNames[] = {
    {1, "out of scope, begin"}, {2, "out of scope, end"}, {3, "ferry or train crossing, begin"},
    {4, "ferry or train crossing, end"},
};
constexpr CodeName loadOperationNames[] = {{1, "load"}, {2, "unload"}, {3, "load and unload"}};
constexpr CodeName loadTypeNames[] = {{0, "undefined"}, {1, "goods"}, {2, "passengers"}};
constexpr CodeName positionAuthentications[] = {{0, "not authenticated"}, {1, "authenticated"}};
constexpr CodeName calibrationPurposes[] = {
    {1, "activation"}, {2, "first installation"}, {3, "installation"}, {4, "periodic inspection"},
    {5, "registration entered by the company"}, {6, "time set without calibration"},
};
constexpr CodeName companyActivityNames[] = {
    {1, "card downloaded"}, {2, "vehicle unit downloaded"}, {3, "locked in"}, {4, "locked out"},
};
constexpr CodeName equipmentTypes[] = {
    {1, "driver card"}, {2, "workshop card"}, {3, "control card"}, {4, "company card"}, {5, "manufacturing card"},
    {6, "vehicle unit"}, {7, "motion sensor"}, {8, "external satellite receiver"}, {9, "remote communication device"},
    {10, "intelligent transport systems interface"}, {11, "plaque"}, {12, "adapter of an M1 or N1 vehicle"},
    {13, "European root certification authority"}, {14, "certification authority of a member state"},
    {15, "external satellite receiver connection"}, {16, "unused"}, {17, "driver card, signing"},
    {18, "workshop card, signing"}, {19, "vehicle unit, signing"},
};
constexpr CodeName controlBits[] = {
    {0x80, "card downloaded"}, {0x40, "vehicle unit downloaded"}, {0x20, "printed"}, {0x10, "displayed"},
    {0x08, "calibration checked"},
};
// clang-format on

} // namespace

const CodeList eventOrFault(eventsAndFaults);
const CodeList activity(activityNames);
const CodeList slot(slotNames);
const CodeList cardStatus(cardStatuses);
const CodeList drivingStatusWithCard(statusesWithCard);
const CodeList drivingStatusWithoutCard(statusesWithoutCard);
const CodeList placeEntryType(placeEntryTypes);
const CodeList spanishRegion(spanishRegions);
const CodeList specificCondition(specificConditionNames);
const CodeList loadOperation(loadOperationNames);
const CodeList loadType(loadTypeNames);
const CodeList positionAuthentication(positionAuthentications);
const CodeList calibrationPurpose(calibrationPurposes);
const CodeList companyActivity(companyActivityNames);
const CodeList equipmentType(equipmentTypes);

Code CodeList::operator()(qint64 code) const
{
    const CodeName* name =
        std::find_if(m_begin, m_end, [code](const CodeName& each) { return each.code == code; });
    return {static_cast<int>(code), name == m_end ? QString() : QString::fromUtf8(name->name)};
}

Code controlType(int bits)
{
    QStringList names;
    for (const CodeName& bit : controlBits) {
        if ((bits & bit.code) != 0)
            names << QString::fromLatin1(bit.name);
    }
    return {bits, names.join(QStringLiteral(", "))};
}

} // namespace report
