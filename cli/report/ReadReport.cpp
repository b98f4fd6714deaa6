#include "ReadReport.h"

#include "../ImageFile.h"
#include "../LibraryLog.h"
#include "../ReadFile.h"
#include "CardFields.h"
#include "CardReport.h"

#include <scard/SCardReader.h>

#include <QFile>
#include <QTemporaryFile>

#include <algorithm>
#include <memory>

namespace report {

namespace {

ReadResult
failed(ExitCode code, const QString& message, const QString& advice, const aux::Error& failure = {})
{
    ReadResult result;
    result.code = code;
    result.message = message;
    result.advice = advice;
    result.failure = failure;
    return result;
}

/// Where a file that is too short ends; empty when it does not end inside a record.
QString cutText(const ImageFile& file)
{
    if (!file.isCut())
        return QString();
    if (file.trailing > 0)
        return QStringLiteral("%1 bytes stand behind its last record").arg(file.trailing);
    const ImageRecord& last = file.records.back();
    const QString name = last.efName().isEmpty() ? QStringLiteral("an unknown EF") : last.efName();
    return QStringLiteral("it ends inside %1 of %2, %3 of %4 bytes are there")
        .arg(last.isSignature() ? QStringLiteral("the signature") : QStringLiteral("the data"), name)
        .arg(last.available)
        .arg(last.header.length);
}

void describe(Report& report, const QString& path, const ImageFile& file)
{
    report.path = path;
    report.size = file.bytes.size();
    report.sha256 = file.sha256();
    report.records = static_cast<int>(file.records.size());
    report.signatures = file.signatures();
    report.isCut = file.isCut();
}

/// The day that the figures are for: the last that is shown.
QDate lastDay(const Report& report)
{
    const std::vector<Day>& days = report.applications.front().days;
    return days.empty() ? QDate() : days.back().date;
}

void describeCard(Report& report, scard::SCardGeneric& card, scard::SCardGeneric& image)
{
    report.card = cardFacts(image);
    if (auto* driver = dynamic_cast<scard::SCardDriverG1*>(&card))
        report.applications = applicationsOf(*driver, image);
    else if (const auto* workshop = dynamic_cast<const scard::SCardWorkshopG1*>(&card))
        report.applications = applicationsOf(*workshop, image);
    else if (const auto* company = dynamic_cast<const scard::SCardCompanyG1*>(&card))
        report.applications = applicationsOf(*company, image);
}

/// What came of reading the card's object.
struct Reading
{
    aux::Error failure;
    QStringList missing; ///< EFs
    QString ef;          ///< the one that the failure is about
};

QString lastOf(const QStringList& texts)
{
    return texts.isEmpty() ? QString() : texts.back();
}

/// Reads the first application alone.
aux::Error readFirstApplication(scard::SCardGeneric& card)
{
    if (auto* driver = dynamic_cast<scard::SCardDriverG1*>(&card))
        return driver->SCardDriverG1::read();
    if (auto* workshop = dynamic_cast<scard::SCardWorkshopG1*>(&card))
        return workshop->SCardWorkshopG1::read();
    if (auto* company = dynamic_cast<scard::SCardCompanyG1*>(&card))
        return company->SCardCompanyG1::read();
    return {};
}

/// Makes the lists of what there is: read() does so only when nothing that it needs is missing.
void buildLists(scard::SCardGeneric& card)
{
    auto* driver = dynamic_cast<scard::SCardDriverG1*>(&card);
    if (!driver)
        return;
    driver->SCardDriverG1::buildDailyActivityList();
    driver->SCardDriverG1::buildUsedVehiclesList();
    driver->SCardDriverG1::buildEventList();
    driver->SCardDriverG1::buildFaultList();
    driver->buildDailyActivityList();
    driver->buildUsedVehiclesList();
    driver->buildEventList();
    driver->buildFaultList();
}

/// Reads as much as there is of both applications.
Reading readCard(scard::SCardGeneric& card, scard::SCardGeneric& image)
{
    LibraryLog::restart();
    Reading reading;
    reading.failure = card.read();
    reading.missing = LibraryLog::unreadableEfs();
    reading.ef = lastOf(reading.missing);
    if (reading.missing.isEmpty())
        return reading;
    // A card of the second generation tells no failure of its first application, and a company card does not
    // read it behind one of the second. One that is not in the file at all is no failure.
    if (image.is2ndGeneneration() && selectApplication(image, Generation::First).isEmpty()) {
        LibraryLog::restart();
        const aux::Error failure = readFirstApplication(card);
        const QStringList missing = LibraryLog::unreadableEfs();
        for (const QString& ef : missing) {
            if (!reading.missing.contains(ef))
                reading.missing << ef;
        }
        if (reading.failure.isEmpty() && !failure.isEmpty()) {
            reading.failure = failure;
            reading.ef = lastOf(missing);
        }
    }
    buildLists(card);
    return reading;
}

/// The image of a file, as far as it says what card it is of.
struct Identified
{
    std::unique_ptr<scard::SCardGeneric> image;
    aux::Error failure;
    bool firstOnly = false; ///< the second application does not say what card it is of
};

std::unique_ptr<scard::SCardGeneric> imageOf(QFile& file)
{
    return std::make_unique<scard::SCardGeneric>(file, QDateTime::currentDateTimeUtc(), scard::RegionDDD);
}

/// A file that ends at the start of the second application is taken for one of the second generation, and
/// then for none at all. Its first application is whole.
bool identifyFirstApplication(const ImageFile& file, Identified& identified)
{
    QTemporaryFile part;
    // The library wants a file that has a name; a temporary one gets it when somebody asks.
    if (!part.open() || part.fileName().isEmpty())
        return false;
    for (const ImageRecord& record : file.records) {
        const qint64 length = static_cast<qint64>(scard::recordHeaderLength) + record.available;
        if (!record.isSecondGeneration())
            part.write(file.bytes.mid(static_cast<int>(record.offset), static_cast<int>(length)));
    }
    if (part.size() == file.bytes.size() || !part.seek(0))
        return false;
    auto image = imageOf(part);
    if (!image->readCardInfo().isEmpty())
        return false;
    identified.image = std::move(image);
    identified.firstOnly = true;
    return true;
}

Identified identify(const QString& path, const ImageFile& file)
{
    QFile device(path);
    device.open(QIODevice::ReadOnly);
    Identified identified{imageOf(device), {}, false};
    const aux::Error failure = identified.image->readCardInfo();
    if (!failure.isEmpty() && !identifyFirstApplication(file, identified))
        identified.failure = failure;
    return identified;
}

/// What is wrong with the file; nothing when all that the card should keep is there.
std::optional<Damage>
damageOf(const QString& path, const ImageFile& file, const Reading& reading, bool firstOnly)
{
    QStringList reasons;
    if (file.isCut())
        reasons << cutText(file);
    if (firstOnly)
        reasons << QStringLiteral("its second application does not say what card it is of");
    if (!reading.failure.isEmpty() && !reading.ef.isEmpty())
        reasons << QStringLiteral("%1 is missing or short").arg(reading.ef);
    if (!reading.failure.isEmpty() && reasons.isEmpty())
        reasons << QStringLiteral("an application of the card is missing");
    if (reasons.isEmpty())
        return std::nullopt;
    return Damage{
        QStringLiteral("%1 is damaged: %2.").arg(path, reasons.join(QStringLiteral("; "))),
        reading.failure.isEmpty() ? QString() : reading.ef, reading.failure};
}

} // namespace

ReadResult readReport(
    const QString& path, const Range& range, Zone zone, const std::vector<scard::verify::RootKey>& roots)
{
    const FileBytes input = readFile(path);
    if (!input.message.isEmpty())
        return failed(input.code, input.message, input.advice);
    const ImageFile file = imageFileOf(input.bytes);

    LibraryLog::restart();
    const Identified identified = identify(path, file);
    const QStringList notIdentifying = LibraryLog::unreadableEfs();
    if (!identified.failure.isEmpty()) {
        const QString cut = cutText(file);
        return failed(
            exitDamagedFile,
            QStringLiteral("%1 says of no tachograph card that it is its download%2.")
                .arg(path, cut.isEmpty() ? QString() : QStringLiteral(": ") + cut),
            QStringLiteral("scard records FILE lists what is in it."), identified.failure);
    }
    scard::SCardGeneric& image = *identified.image;
    const std::shared_ptr<scard::SCardGeneric> card = scard::SCardReader().generateSpecific(image);
    const Reading reading = readCard(*card, image);

    ReadResult result;
    Report report;
    report.zone = zone;
    describe(report, path, file);
    report.verification = verificationOf(path, file.bytes, roots);
    describeCard(report, *card, image);
    limit(report, range);
    auto* driver = dynamic_cast<scard::SCardDriverG1*>(card.get());
    if (driver != nullptr && lastDay(report).isValid())
        report.figures = figuresOf(*driver, lastDay(report));
    for (const QString& ef : notIdentifying) {
        if (!reading.missing.contains(ef))
            report.missing << ef;
    }
    report.missing << reading.missing;
    report.damage = damageOf(path, file, reading, identified.firstOnly);
    if (report.damage) {
        result.code = exitDamagedFile;
        result.message = report.damage->message;
        result.advice =
            QStringLiteral("What could be read is shown. Download the card again while it can be had.");
        result.failure = reading.failure;
    }
    result.report = std::move(report);
    return result;
}

} // namespace report
