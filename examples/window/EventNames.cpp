#include "EventNames.h"

#include <QCoreApplication>

#include <algorithm>
#include <iterator>

namespace {

struct EventName
{
    int type;
    const char* name;
};

// clang-format off
constexpr EventName names[] = {
    {0x00, QT_TRANSLATE_NOOP("EventNames", "General event, no details")},
    {0x01, QT_TRANSLATE_NOOP("EventNames", "Insertion of a non-valid card")},
    {0x02, QT_TRANSLATE_NOOP("EventNames", "Card conflict")},
    {0x03, QT_TRANSLATE_NOOP("EventNames", "Time overlap")},
    {0x04, QT_TRANSLATE_NOOP("EventNames", "Driving without an appropriate card")},
    {0x05, QT_TRANSLATE_NOOP("EventNames", "Card insertion while driving")},
    {0x06, QT_TRANSLATE_NOOP("EventNames", "Last use of the card not closed correctly")},
    {0x07, QT_TRANSLATE_NOOP("EventNames", "Over speeding")},
    {0x08, QT_TRANSLATE_NOOP("EventNames", "Power supply interruption")},
    {0x09, QT_TRANSLATE_NOOP("EventNames", "Motion data error")},
    {0x0A, QT_TRANSLATE_NOOP("EventNames", "Vehicle motion conflict")},
    {0x0B, QT_TRANSLATE_NOOP("EventNames", "Time conflict between satellite receiver and vehicle unit")},
    {0x0C, QT_TRANSLATE_NOOP("EventNames", "Communication error with the remote communication facility")},
    {0x0D, QT_TRANSLATE_NOOP("EventNames", "Absence of position information from the satellite receiver")},
    {0x0E, QT_TRANSLATE_NOOP("EventNames", "Communication error with the external satellite receiver")},
    {0x0F, QT_TRANSLATE_NOOP("EventNames", "Satellite positioning anomaly")},
    {0x10, QT_TRANSLATE_NOOP("EventNames", "Vehicle unit security breach attempt, no details")},
    {0x11, QT_TRANSLATE_NOOP("EventNames", "Motion sensor authentication failure")},
    {0x12, QT_TRANSLATE_NOOP("EventNames", "Tachograph card authentication failure")},
    {0x13, QT_TRANSLATE_NOOP("EventNames", "Unauthorised change of motion sensor")},
    {0x14, QT_TRANSLATE_NOOP("EventNames", "Card data input integrity error")},
    {0x15, QT_TRANSLATE_NOOP("EventNames", "Stored user data integrity error")},
    {0x16, QT_TRANSLATE_NOOP("EventNames", "Internal data transfer error")},
    {0x17, QT_TRANSLATE_NOOP("EventNames", "Unauthorised case opening")},
    {0x18, QT_TRANSLATE_NOOP("EventNames", "Hardware sabotage")},
    {0x19, QT_TRANSLATE_NOOP("EventNames", "Tamper detection of the satellite receiver")},
    {0x1A, QT_TRANSLATE_NOOP("EventNames", "External satellite receiver authentication failure")},
    {0x1B, QT_TRANSLATE_NOOP("EventNames", "External satellite receiver certificate expired")},
    {0x1C, QT_TRANSLATE_NOOP("EventNames", "Inconsistency between motion data and stored driver activity")},
    {0x20, QT_TRANSLATE_NOOP("EventNames", "Motion sensor security breach attempt, no details")},
    {0x21, QT_TRANSLATE_NOOP("EventNames", "Motion sensor: authentication failure")},
    {0x22, QT_TRANSLATE_NOOP("EventNames", "Motion sensor: stored data integrity error")},
    {0x23, QT_TRANSLATE_NOOP("EventNames", "Motion sensor: internal data transfer error")},
    {0x24, QT_TRANSLATE_NOOP("EventNames", "Motion sensor: unauthorised case opening")},
    {0x25, QT_TRANSLATE_NOOP("EventNames", "Motion sensor: hardware sabotage")},
    {0x30, QT_TRANSLATE_NOOP("EventNames", "Recording equipment fault, no details")},
    {0x31, QT_TRANSLATE_NOOP("EventNames", "Vehicle unit internal fault")},
    {0x32, QT_TRANSLATE_NOOP("EventNames", "Printer fault")},
    {0x33, QT_TRANSLATE_NOOP("EventNames", "Display fault")},
    {0x34, QT_TRANSLATE_NOOP("EventNames", "Downloading fault")},
    {0x35, QT_TRANSLATE_NOOP("EventNames", "Motion sensor fault")},
    {0x36, QT_TRANSLATE_NOOP("EventNames", "Internal satellite receiver fault")},
    {0x37, QT_TRANSLATE_NOOP("EventNames", "External satellite receiver fault")},
    {0x38, QT_TRANSLATE_NOOP("EventNames", "Remote communication facility fault")},
    {0x39, QT_TRANSLATE_NOOP("EventNames", "Intelligent transport systems interface fault")},
    {0x3A, QT_TRANSLATE_NOOP("EventNames", "Internal sensor fault")},
    {0x40, QT_TRANSLATE_NOOP("EventNames", "Card fault, no details")},
};
// clang-format on

} // namespace

QString eventName(int type)
{
    const auto* const row = std::find_if(
        std::begin(names), std::end(names), [type](const EventName& each) { return each.type == type; });
    if (row == std::end(names))
        return QCoreApplication::translate("EventNames", "Type %1").arg(type);
    return QCoreApplication::translate("EventNames", row->name);
}
