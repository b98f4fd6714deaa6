#include "ShowCommand.h"

#include "Console.h"

#include <scard/SCardCompanyG1.h>
#include <scard/SCardCompanyG2.h>
#include <scard/SCardDriverG1.h>
#include <scard/SCardDriverG2.h>
#include <scard/SCardReader.h>
#include <scard/SCardWorkshopG1.h>
#include <scard/SCardWorkshopG2.h>

#include <QFile>
#include <QLoggingCategory>
#include <QMap>
#include <QMetaEnum>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <optional>
#include <vector>

namespace {

using Days = std::vector<scard::SCardDriverG1::_DAILY_ACTIVITIES>;

QString generationText(const scard::SCardGeneric& card)
{
    if (!card.is2ndGeneneration())
        return QStringLiteral("first generation");
    return card.is2_2Generation() ? QStringLiteral("second generation, version 2.2")
                                  : QStringLiteral("second generation");
}

/// The first application's days; the second's when the first was not read.
Days daysOf(scard::SCardDriverG1& driver)
{
    Days days = driver.getActivities();
    const auto* second = dynamic_cast<const scard::SCardDriverG2*>(&driver);
    return days.empty() && second ? second->getActivitiesG2() : days;
}

/// A card that was never downloaded says 0.
QString lastDownload(scard::SCardDriverG1& driver)
{
    const QDateTime time = driver.getLastCardDownload();
    return time.toSecsSinceEpoch() == 0 ? QStringLiteral("not known")
                                        : time.toString(QStringLiteral("yyyy-MM-dd hh:mm"));
}

/// The library names an EF that it cannot read on the debug stream only.
QString unreadableEf;
bool showDebugStream = false;

void noteUnreadableEf(QtMsgType type, const QMessageLogContext&, const QString& text)
{
    // Some names have a letter or two before "EF_".
    const int name = text.indexOf(QLatin1String("EF_"));
    if (text.startsWith(QLatin1String("Error reading ")) && name >= 0)
        unreadableEf = text.mid(name).section(QLatin1Char(':'), 0, 0);
    if (type != QtDebugMsg || showDebugStream)
        err() << text << Qt::endl;
}

/// Reads everything, and says in @p ef which EF ended it.
aux::Error readNaming(scard::SCardGeneric& card, QString& ef)
{
    showDebugStream = QLoggingCategory::defaultCategory()->isDebugEnabled();
    QLoggingCategory::setFilterRules(QString());
    const QtMessageHandler before = qInstallMessageHandler(noteUnreadableEf);
    unreadableEf.clear();
    aux::Error failure = card.read();
    qInstallMessageHandler(before);
    ef = unreadableEf;
    return failure;
}

/// Minutes as hours and minutes.
QString duration(int minutes)
{
    const QString sign = minutes < 0 ? QStringLiteral("-") : QString();
    minutes = std::abs(minutes);
    return sign + QStringLiteral("%1:%2").arg(minutes / 60).arg(minutes % 60, 2, 10, QLatin1Char('0'));
}

/// Prints how many items there are under a title, and the last of them, each by @p print.
template <typename Item, typename Print>
void printLast(const char* title, const std::vector<Item>& items, int wanted, const char* head, Print print)
{
    const std::size_t shown = std::min(items.size(), static_cast<std::size_t>(wanted));
    out() << title << " (UTC): " << items.size() << ", the last " << shown << ":\n" << head;
    std::for_each(items.end() - static_cast<std::ptrdiff_t>(shown), items.end(), print);
}

// The card's days and times are those of UTC.

QString dayText(const QDateTime& time)
{
    return time.isNull() ? QStringLiteral("not known") : time.toUTC().toString(QStringLiteral("yyyy-MM-dd"));
}

QString timeText(const QDateTime& time)
{
    return time.isNull() ? QStringLiteral("not known       ")
                         : time.toUTC().toString(QStringLiteral("yyyy-MM-dd hh:mm"));
}

QString vehicleText(const scard::Nation& nation, const QString& registration)
{
    return printable((nation.alpha + QLatin1Char(' ') + registration).trimmed());
}

QString wordFor(const QMap<int, QString>& words, int code)
{
    return words.value(code, QStringLiteral("code %1").arg(code));
}

void print(scard::SCardDriverG1& driver, int wanted)
{
    out() << "Holder: " << printable(driver.getCardHolderName()) << '\n'
          << "Downloaded before (local time): " << lastDownload(driver) << '\n';
    printLast(
        "Days", daysOf(driver), wanted, "              driving     work     rest  available  unknown\n",
        [](const scard::SCardDriverG1::_DAILY_ACTIVITIES& day) {
            out() << "  " << dayText(day.date) << "  " << duration(day.driving).rightJustified(7) << "  "
                  << duration(day.work).rightJustified(7) << "  " << duration(day.rest).rightJustified(7)
                  << "  " << duration(day.availability).rightJustified(9) << "  "
                  << duration(day.unknown).rightJustified(7) << '\n';
        });
}

/// What there is to show of a workshop card.
struct WorkshopCard
{
    scard::WorkshopCard_EF_Identification identification;
    scard::CalibrationCounters counters;
    std::vector<scard::Calibration> calibrations;
};

/// From the second application, which knows more; what could not be read there, from the first.
WorkshopCard contentsOf(const scard::SCardWorkshopG1& workshop)
{
    WorkshopCard contents{
        workshop.getCardIdentification(), workshop.getCalibrationCounters(), workshop.getCalibrations()};
    const auto* second = dynamic_cast<const scard::SCardWorkshopG2*>(&workshop);
    if (!second)
        return contents;
    const scard::WorkshopCard_EF_Identification identification = second->getCardIdentificationG2();
    if (identification.cardIssueDate.value() != 0)
        contents.identification = identification;
    const scard::CalibrationCounters counters = second->getCalibrationCountersG2();
    if (counters.sinceDownload)
        contents.counters.sinceDownload = counters.sinceDownload;
    if (counters.total) { // EF_Calibration was read
        contents.counters.total = counters.total;
        contents.calibrations = second->getCalibrationsG2();
    }
    return contents;
}

void print(const scard::SCardWorkshopG1& workshop, int wanted)
{
    static const QMap<int, QString> purposes{
        {1, QStringLiteral("activation")},           {2, QStringLiteral("first installation")},
        {3, QStringLiteral("installation")},         {4, QStringLiteral("periodic inspection")},
        {5, QStringLiteral("registration entered")}, {6, QStringLiteral("time set")}};
    const auto number = [](const std::optional<int>& value) {
        return value ? QString::number(*value) : QStringLiteral("not known");
    };
    const auto text = [](const auto& field) {
        return printable(scard::SCardGeneric::textfieldToString(field).trimmed());
    };
    const WorkshopCard contents = contentsOf(workshop);
    out() << "Holder: " << text(contents.identification.holderFirstNames) << ", "
          << text(contents.identification.holderSurname) << '\n'
          << "Workshop: " << text(contents.identification.workshopName) << ", "
          << text(contents.identification.workshopAddress) << '\n'
          << "Calibrations with this card: " << number(contents.counters.total)
          << ", since the download before: " << number(contents.counters.sinceDownload) << '\n';
    printLast("Calibrations", contents.calibrations, wanted, "", [](const scard::Calibration& each) {
        out() << "  " << timeText(each.newTime) << "  "
              << printable(each.vehicleIdentificationNumber).leftJustified(17) << "  "
              << vehicleText(each.nation, each.registration).leftJustified(17) << "  "
              << QString::number(each.newOdometer).rightJustified(7) << " km  "
              << wordFor(purposes, each.purpose) << ", next " << dayText(each.nextCalibration) << '\n';
    });
}

/// The second application of a company card is found only in files of other programs; it is shown where there
/// is no first.
void print(const scard::SCardCompanyG1& company, int wanted)
{
    static const QMap<int, QString> words{
        {1, QStringLiteral("card downloaded")},
        {2, QStringLiteral("vehicle unit downloaded")},
        {3, QStringLiteral("locked in")},
        {4, QStringLiteral("locked out")}};
    std::vector<scard::CompanyActivity> activities = company.getCompanyActivities();
    const auto* second = dynamic_cast<const scard::SCardCompanyG2*>(&company);
    if (second)
        out() << "Holder: " << printable(second->getCardHolderName()) << '\n';
    if (second && activities.empty())
        activities = second->getCompanyActivitiesG2();
    printLast("Activities", activities, wanted, "", [](const scard::CompanyActivity& each) {
        out() << "  " << timeText(each.time) << "  " << wordFor(words, each.activityType);
        if (!each.registration.isEmpty())
            out() << ", vehicle " << vehicleText(each.nation, each.registration);
        if (!each.cardNumber.isEmpty())
            out() << ", card " << vehicleText(each.cardNation, each.cardNumber);
        out() << '\n';
    });
}

/// False when cards of this kind are not shown.
bool printContents(scard::SCardGeneric& card, int wanted)
{
    if (auto* driver = dynamic_cast<scard::SCardDriverG1*>(&card))
        print(*driver, wanted);
    else if (const auto* workshop = dynamic_cast<const scard::SCardWorkshopG1*>(&card))
        print(*workshop, wanted);
    else if (const auto* company = dynamic_cast<const scard::SCardCompanyG1*>(&card))
        print(*company, wanted);
    else
        return false;
    return true;
}

} // namespace

int showDownload(const QString& path, int newest)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        err() << "scard: " << path << ": " << file.errorString() << Qt::endl;
        return 1;
    }
    scard::SCardGeneric image(file, QDateTime::currentDateTimeUtc(), scard::RegionDDD);
    aux::Error failure = image.readCardInfo();
    if (!failure.isEmpty()) {
        printFailure(QStringLiteral("scard: %1 is no download of a tachograph card").arg(path), failure);
        return 1;
    }
    out() << "Card: " << QMetaEnum::fromType<scard::SCardMeta::Type>().valueToKey(image.getCardType()) << ", "
          << generationText(image) << '\n';

    const std::shared_ptr<scard::SCardGeneric> card = scard::SCardReader().generateSpecific(image);
    QString ef;
    failure = readNaming(*card, ef);
    if (!printContents(*card, newest)) {
        out().flush();
        err() << "scard: " << path << ": cards of this kind are not shown." << Qt::endl;
        return 1;
    }
    out().flush();
    if (!failure.isEmpty()) {
        printFailure(
            QStringLiteral("scard: %1 could not be read to its end, %2 is missing or short").arg(path, ef),
            failure);
        return 1;
    }
    return 0;
}
