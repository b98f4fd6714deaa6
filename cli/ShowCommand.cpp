#include "ShowCommand.h"

#include "Console.h"

#include <scard/SCardDriverG1.h>
#include <scard/SCardDriverG2.h>
#include <scard/SCardReader.h>

#include <QFile>
#include <QLoggingCategory>
#include <QMetaEnum>

#include <algorithm>
#include <cstdlib>
#include <memory>
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
    const QString begin = QStringLiteral("Error reading ");
    if (text.startsWith(begin))
        unreadableEf = text.mid(begin.size()).section(QLatin1Char(':'), 0, 0);
    if (type != QtDebugMsg || showDebugStream)
        err() << text << Qt::endl;
}

/// Reads everything, and says in @p ef which EF ended it.
aux::Error readNaming(scard::SCardDriverG1& driver, QString& ef)
{
    showDebugStream = QLoggingCategory::defaultCategory()->isDebugEnabled();
    QLoggingCategory::setFilterRules(QString());
    const QtMessageHandler before = qInstallMessageHandler(noteUnreadableEf);
    unreadableEf.clear();
    aux::Error failure = driver.read();
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

void printDays(const Days& days, int wanted)
{
    const std::size_t shown = std::min(days.size(), static_cast<std::size_t>(wanted));
    // The card's days and minutes are those of UTC.
    out() << "Days (UTC): " << days.size() << ", the last " << shown << ":\n";
    out() << "              driving     work     rest  available  unknown\n";
    for (auto day = days.end() - static_cast<std::ptrdiff_t>(shown); day != days.end(); ++day) {
        out() << "  " << day->date.toUTC().toString(QStringLiteral("yyyy-MM-dd")) << "  "
              << duration(day->driving).rightJustified(7) << "  " << duration(day->work).rightJustified(7)
              << "  " << duration(day->rest).rightJustified(7) << "  "
              << duration(day->availability).rightJustified(9) << "  "
              << duration(day->unknown).rightJustified(7) << '\n';
    }
}

} // namespace

int showDownload(const QString& path, int days)
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
    const auto driver = std::dynamic_pointer_cast<scard::SCardDriverG1>(card);
    if (!driver) {
        err() << "scard: " << path << ": cards of this kind are not shown." << Qt::endl;
        return 1;
    }
    QString ef;
    failure = readNaming(*driver, ef);
    out() << "Holder: " << printable(driver->getCardHolderName()) << '\n'
          << "Downloaded before (local time): " << lastDownload(*driver) << '\n';
    printDays(daysOf(*driver), days);
    out().flush();
    if (!failure.isEmpty()) {
        printFailure(
            QStringLiteral("scard: %1 could not be read to its end, %2 is missing or short").arg(path, ef),
            failure);
        return 1;
    }
    return 0;
}
