#include "CardDownload.h"

#include "../Console.h"
#include "../ImageFile.h"
#include "../LibraryLog.h"
#include "../reader/ReaderSurvey.h"
#include "../StopSignal.h"

#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>

#include <utility>

CardDownload::CardDownload(
    DownloadOptions options, ProgressDisplay& display, QString cardLine, std::function<void()> stopped)
    : m_options(std::move(options)), m_display(display), m_cardLine(std::move(cardLine)),
      m_stopped(std::move(stopped))
{}

DownloadResult CardDownload::run(scard::SCardReader& reader)
{
    m_result = DownloadResult();
    m_done.reset();
    LibraryLog::restart();
    listenTo(reader);

    const WrittenFile written;
    const QDateTime start = QDateTime::currentDateTimeUtc();
    const aux::Error failure = read(reader);
    m_display.end();
    reader.uninit();
    m_result.unreadEfs = LibraryLog::unreadableEfs();

    QString source = written.path();
    if (m_done)
        source = QStringLiteral("/tmp/") + m_done->getFilename();
    if (!failure.isEmpty())
        fail(failure, source.isEmpty() ? written.unfinished() : source);
    if (m_result.code == exitDone || (m_result.code == exitNotStamped && !source.isEmpty())) {
        m_result.downloadedAt = m_done ? m_done->getDownloadTimestamp() : start;
        finish(source);
    }
    return std::move(m_result);
}

void CardDownload::listenTo(scard::SCardReader& reader)
{
    using scard::SCardReader;
    QObject::connect(&reader, &SCardReader::cardType, [this, &reader](scard::SCardMeta::Type type) {
        stopWhenAsked(reader);
        noteType(type);
    });
    QObject::connect(&reader, &SCardReader::cardLanguage, [this](const QLocale& language) {
        if (language.language() == QLocale::C)
            return; // none that there is
        m_result.language = language.name().section(QLatin1Char('_'), 0, 0);
        m_display.printLine(QStringLiteral("Language: ") + m_result.language);
    });
    QObject::connect(&reader, &SCardReader::cardHolder, [this](const QString& name) {
        m_result.holder = name;
        m_display.printLine(QStringLiteral("Holder: ") + printable(name));
    });
    QObject::connect(&reader, &SCardReader::progress, [this, &reader](int percent) {
        stopWhenAsked(reader);
        m_display.setPercent(percent);
    });
    QObject::connect(
        &reader, &SCardReader::readDone,
        [this](const std::shared_ptr<scard::SCardGeneric>& card) { m_done = card; });
}

/// Only where the library is reading: what it reports there comes before the file and the card are written.
void CardDownload::stopWhenAsked(scard::SCardReader& reader)
{
    if (!StopSignal::requested())
        return;
    m_display.end();
    err() << "scard: Stopped while the card was read: there is no file, and the card was not told of a "
             "download."
          << Qt::endl;
    reader.close();
    reader.uninit();
    m_stopped();
}

void CardDownload::noteType(scard::SCardMeta::Type type)
{
    m_result.card = identityWhileRead(type);
    m_display.printLine(m_cardLine + QStringLiteral(": ") + m_result.card->text());
}

aux::Error CardDownload::read(scard::SCardReader& reader)
{
    // A card that was read before would not give EF_ICC and EF_IC any more.
    const ReaderSurvey survey = lookAtReaders();
    if (!survey.readers.empty())
        resetCard(survey.readers.front());
    aux::Error failure = reader.open();
    if (!failure.isEmpty())
        return failure;
    QElapsedTimer elapsed;
    elapsed.start();
    m_display.begin();
    failure = reader.read(m_options.region);
    m_result.durationMs = elapsed.elapsed();
    // The download decides: a card that is gone cannot be disconnected from any more.
    reader.close();
    return failure;
}

void CardDownload::fail(const aux::Error& failure, const QString& file)
{
    FailureScene scene;
    scene.ef = LibraryLog::currentEf();
    scene.unreadEf = LibraryLog::unreadableEfs().value(0);
    scene.file = file;
    if (m_result.card)
        scene.type = m_result.card->type;
    m_result.failure = cardFailureOf(failure, scene);
    m_result.code = m_result.failure->code;
    if (m_result.code == exitNotStamped && file.isEmpty())
        m_result.failure->advice += QStringLiteral(" Its file is in /tmp/.");
}

void CardDownload::finish(const QString& source)
{
    if (m_done)
        m_result.card = identityOf(*m_done);
    if (!m_result.card || !m_result.card->chipSerial)
        identifyFromFile(source);
    if (m_options.folder.isEmpty())
        m_result.file = StoredImage{source, 0, {}, 0};
    else
        bring(source);

    QFile file(m_result.file->path);
    if (!file.open(QIODevice::ReadOnly)) {
        m_result.code = exitNotWritten;
        m_result.failure = ownFailure(
            exitNotWritten,
            QStringLiteral("The finished file %1 cannot be read: %2.")
                .arg(file.fileName(), file.errorString()),
            QStringLiteral("Another program may have taken it away; download the card again."));
        m_result.file.reset();
        return;
    }
    const ImageFile image = imageFileOf(file.readAll());
    m_result.file->size = image.bytes.size();
    m_result.file->sha256 = image.sha256();
    m_result.file->signatures = image.signatures();
    if (image.bytes.isEmpty())
        m_result.unreadEfs.clear(); // nothing was to be read of such a card
    else if (m_options.verifies)
        verify(image.bytes);
}

/// What the card's own certificates say is enough; a root key that was given must fit as well.
void CardDownload::verify(const QByteArray& image)
{
    m_result.verification = verificationOf(m_result.file->path, image, m_options.roots);
    if (m_result.verification->holdsByItself(m_options.roots))
        return;
    const ExitCode code = exitCodeOf(m_result.verification->report.verdict);
    if (m_result.code == exitDone || code == exitAltered)
        m_result.code = code;
}

/// The chip's number from the image: the object that reads a card has it only of some cards.
void CardDownload::identifyFromFile(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return;
    scard::SCardGeneric image(file, m_result.downloadedAt, m_options.region);
    if (!image.readCardInfo().isEmpty())
        return;
    const CardIdentity identity = identityOf(image);
    if (m_result.card)
        m_result.card->chipSerial = identity.chipSerial;
    else
        m_result.card = identity;
}

void CardDownload::bring(const QString& source)
{
    QString name = QFileInfo(source).fileName();
    FinishedFile::Existing existing = m_options.existing;
    if (FinishedFile::isNameless(name)) {
        const QString serial = m_result.card ? m_result.card->chipSerialText() : QString();
        name = FinishedFile::nameFor(m_result.downloadedAt, serial, m_options.region);
        existing = FinishedFile::Existing::Kept;
    }
    const FinishedFile::Placed placed = FinishedFile::place(source, m_options.folder, name, existing);
    m_result.file = StoredImage{placed.path, 0, {}, 0};
    if (placed.failure.isEmpty())
        return;
    const QString stamp = m_result.failure ? QLatin1Char(' ') + m_result.failure->message : QString();
    const aux::Error chain = m_result.failure ? m_result.failure->chain : aux::Error();
    m_result.code = exitNotWritten;
    m_result.failure = ownFailure(
        exitNotWritten, placed.failure + stamp,
        QStringLiteral("The complete download is %1.").arg(placed.path));
    m_result.failure->chain = chain;
}
