#include "CardWatch.h"

#include "../CardNames.h"
#include "../Console.h"
#include "../download/DownloadArguments.h"
#include "../LibraryLog.h"
#include "../StopSignal.h"

#include <cstdlib>
#include <utility>

namespace {

constexpr int retryMs = 1000;

[[noreturn]] void endWatch()
{
    std::exit(finishOutput(exitDone));
}

QString typeNameOf(const std::optional<CardIdentity>& card)
{
    return card ? cardTypeName(card->type) : QString();
}

} // namespace

CardWatch::CardWatch(WatchOptions options) : m_options(std::move(options)), m_command(m_options.command) {}

CardWatch::~CardWatch()
{
    releaseReader();
}

void CardWatch::run()
{
    while (!StopSignal::requested()) {
        const ReaderSurvey survey = m_wait ? m_wait->survey() : lookAtReaders();
        if (!ensureReader(survey))
            continue;
        lookAtCard(survey.readers.front());
        dropLostOutput();
        if (!StopSignal::requested())
            m_wait->wait();
    }
}

/// Sees to it that there is a reader object that knows the readers of @p survey.
bool CardWatch::ensureReader(const ReaderSurvey& survey)
{
    if (!survey.failure.isEmpty()) {
        waitForReader(survey.failure);
        return false;
    }
    if (m_wait && !m_wait->survey().sameReadersAs(m_taken)) {
        releaseReader(); // the object keeps the list it has
        return false;
    }
    if (m_wait && m_wait->isLost()) {
        releaseReader();
        ++m_service;
        return false;
    }
    if (!m_wait)
        takeReader(survey);
    return m_wait != nullptr;
}

void CardWatch::waitForReader(const aux::Error& failure)
{
    if (m_inside)
        cardOut();
    releaseReader();
    ++m_service;
    const QString reason = cardFailureOf(failure).message;
    if (reason != m_toldFailure) {
        err() << "scard: Waiting for a reader: " << reason << Qt::endl;
        printChain(failure);
    }
    m_toldFailure = reason;
    m_toldReader.clear();
    StopSignal::sleepFor(retryMs);
}

void CardWatch::takeReader(const ReaderSurvey& survey)
{
    auto reader = std::make_unique<scard::SCardReader>();
    const aux::Error failure = reader->init();
    if (!failure.isEmpty()) {
        reader->uninit();
        waitForReader(failure);
        return;
    }
    m_reader = std::move(reader);
    m_wait = std::make_unique<ReaderWait>(*m_reader);
    m_taken = survey;
    m_toldFailure.clear();
    const ReaderSeen& first = survey.readers.front();
    if (first.name != m_toldReader)
        err() << "scard: Waiting for a card in " << first.nameText() << '.' << Qt::endl;
    m_toldReader = first.name;
}

void CardWatch::releaseReader()
{
    m_wait.reset();
    if (m_reader)
        m_reader->uninit();
    m_reader.reset();
}

void CardWatch::lookAtCard(const ReaderSeen& reader)
{
    const Insertion now{reader.name, reader.events(), m_service};
    if (m_inside && (!reader.hasCard() || !(*m_inside == now)))
        cardOut();
    if (!reader.hasCard() || m_inside)
        return;
    m_inside = now;
    handle(reader);
}

void CardWatch::cardOut()
{
    m_inside.reset();
    if (m_options.style == ReportStyle::Text)
        out() << "Card out." << Qt::endl;
}

void CardWatch::handle(const ReaderSeen& reader)
{
    if (m_options.downloads)
        download();
    else
        identify(reader);
}

void CardWatch::download()
{
    // A reader object for each card: one that was lost in the meantime cannot spoil it.
    scard::SCardReader reader;
    const aux::Error failure = reader.init();
    DownloadResult result;
    if (failure.isEmpty()) {
        ProgressDisplay display(DownloadArguments::progressStyle(m_options.style));
        result = CardDownload(m_options.download, display, QStringLiteral("Card in"), endWatch).run(reader);
    } else {
        reader.uninit();
        result.failure = cardFailureOf(failure);
        result.code = result.failure->code;
    }
    if (!result.card && m_options.style == ReportStyle::Text)
        out() << "Card in: not known" << Qt::endl;
    printDownload(result, m_options.style);
    m_command.run(result.file ? result.file->path : QString(), result.code, typeNameOf(result.card));
}

void CardWatch::identify(const ReaderSeen& reader)
{
    LibraryLog::restart();
    const QDateTime seenAt = QDateTime::currentDateTimeUtc();
    const IdentifiedCard identified = identifyCard(reader);
    std::optional<CardFailure> failure;
    if (!identified.failure.isEmpty()) {
        FailureScene scene;
        scene.ef = LibraryLog::currentEf();
        failure = cardFailureOf(identified.failure, scene);
    }
    if (m_options.style == ReportStyle::Json)
        printJson(identificationJson(identified.card, failure, seenAt));
    else
        out() << "Card in: " << (identified.card ? identified.card->text() : QStringLiteral("not known"))
              << Qt::endl;
    if (failure)
        printCardFailure(*failure);
    m_command.run({}, failure ? failure->code : exitDone, typeNameOf(identified.card));
}
