#include "DownloadCommand.h"

#include "Console.h"

#include <scard/SCardReader.h>

#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QMetaEnum>
#include <QThread>

#include <chrono>

namespace {

void printWhatArrives(const scard::SCardReader& reader)
{
    QObject::connect(&reader, &scard::SCardReader::cardType, [](scard::SCardMeta::Type type) {
        out() << "Card: " << QMetaEnum::fromType<scard::SCardMeta::Type>().valueToKey(type) << Qt::endl;
    });
    QObject::connect(&reader, &scard::SCardReader::cardLanguage, [](const QLocale& language) {
        out() << "Language: " << language.name().section(QLatin1Char('_'), 0, 0) << Qt::endl;
    });
    QObject::connect(&reader, &scard::SCardReader::cardHolder, [](const QString& name) {
        out() << "Holder: " << printable(name) << Qt::endl;
    });
    QObject::connect(&reader, &scard::SCardReader::progress, [last = -1](int percent) mutable {
        constexpr int stepPercent = 10;
        if (percent / stepPercent == last / stepPercent && last >= 0)
            return;
        last = percent;
        out() << "Progress: " << percent << " %" << Qt::endl;
    });
}

/// Waits until the first reader has a card, or the time is over: opening will then say what is wrong.
void waitForCard(scard::SCardReader& reader, int seconds)
{
    constexpr unsigned int sliceMs = 250;
    bool cardThere = false;
    const auto connection = QObject::connect(
        &reader, &scard::SCardReader::present, [&cardThere](bool present) { cardThere |= present; });
    const QDeadlineTimer end(std::chrono::seconds{seconds});
    while (!cardThere && !end.hasExpired()) {
        QElapsedTimer slice;
        slice.start();
        reader.monitor(sliceMs);
        // A service that is gone answers at once; that must not become a busy loop.
        if (!cardThere && slice.elapsed() < sliceMs)
            QThread::msleep(sliceMs - static_cast<unsigned long>(slice.elapsed()));
    }
    QObject::disconnect(connection);
}

} // namespace

int downloadCard(scard::FilenameRegion region, int waitSeconds)
{
    scard::SCardReader reader;
    printWhatArrives(reader);

    QString path;
    QObject::connect(
        &reader, &scard::SCardReader::readDone, [&path](const std::shared_ptr<scard::SCardGeneric>& card) {
            path = QStringLiteral("/tmp/") + card->getFilename();
        });

    aux::Error failure = reader.init();
    if (failure.isEmpty()) {
        waitForCard(reader, waitSeconds);
        failure = reader.open();
    }
    if (failure.isEmpty()) {
        // From here on: before, an empty reader beside the right one also counts as a removal.
        QObject::connect(
            &reader, &scard::SCardReader::removed, [] { err() << "The card was removed." << Qt::endl; });
        failure = reader.read(region);
        // The download decides; a card that is gone cannot be disconnected from any more.
        reader.close();
    }
    reader.uninit();

    if (!failure.isEmpty()) {
        printFailure(QStringLiteral("The card could not be downloaded"), failure);
        return 1;
    }
    const QFileInfo file(path);
    out() << "File: " << printable(path) << " (" << file.size() << " bytes)" << Qt::endl;
    return 0;
}
