#include "CardWorker.h"

#include <QElapsedTimer>

using scard::SCardReader;

namespace {

constexpr unsigned int sliceMs = 250;
constexpr int pauseMs = 50;
constexpr int retryMs = 1000;
constexpr unsigned int noticeMs = 1000;

} // namespace

CardWorker::CardWorker() : m_nextLook(this) // a child: it moves to the thread with this object
{
    m_nextLook.setSingleShot(true);
    connect(&m_nextLook, &QTimer::timeout, this, &CardWorker::look);
}

CardWorker::~CardWorker()
{
    releaseReader();
}

void CardWorker::look()
{
    if (!m_reader)
        setReader(takeReader());
    if (!m_reader) {
        m_nextLook.start(retryMs);
        return;
    }
    QElapsedTimer elapsed;
    elapsed.start();
    const bool isChanged = waitForChange(sliceMs);
    // A reader object keeps the list of readers that it began with, and does not say that the service was
    // restarted. So after a change, and after a wait that ended too early, a new one tells how things are.
    if (isChanged || elapsed.elapsed() < sliceMs / 2)
        releaseReader();
    // Between two looks the thread's event loop brings what the window wants. Where waiting fails at once,
    // the pause keeps this from using a whole processor.
    m_nextLook.start(m_reader ? 0 : pauseMs);
}

/// Makes a new reader object and says what it finds; without a reader there is no object.
ReaderState CardWorker::takeReader()
{
    releaseReader();
    auto reader = std::make_unique<SCardReader>();
    const aux::Error failure = reader->init();
    if (!failure.isEmpty()) {
        reader->uninit();
        m_isCardDone = false;
        const QString reason = failure.begin()->getMessage();
        return reason.startsWith(QLatin1String("init: ScardEstablishContext()")) ? ReaderState::NoService
                                                                                 : ReaderState::NoReader;
    }
    m_reader = std::move(reader);
    listenToReader();
    waitForChange(0); // the first one tells what is there already
    if (!m_isCardIn.value_or(false)) {
        m_isCardDone = false;
        return ReaderState::NoCard;
    }
    return m_isCardDone ? ReaderState::CardDone : ReaderState::CardIn;
}

void CardWorker::releaseReader()
{
    if (m_reader)
        m_reader->uninit();
    m_reader.reset();
}

void CardWorker::listenToReader()
{
    connect(m_reader.get(), &SCardReader::present, this, [this](bool isPresent) {
        // A new object tells of the first reader first, and that is the one that open() takes.
        if (!m_isCardIn)
            m_isCardIn = isPresent;
    });
    connect(m_reader.get(), &SCardReader::cardType, this, [this](scard::SCardMeta::Type type) {
        m_status.type = cardTypeName(type);
        Q_EMIT changed(m_status);
    });
    connect(m_reader.get(), &SCardReader::cardHolder, this, [this](const QString& name) {
        m_status.holder = name;
        Q_EMIT changed(m_status);
    });
    connect(m_reader.get(), &SCardReader::progress, this, &CardWorker::noteProgress);
    connect(
        m_reader.get(), &SCardReader::readDone, this,
        [this](const std::shared_ptr<scard::SCardGeneric>& card) { noteContents(*card); });
}

bool CardWorker::waitForChange(unsigned int milliseconds)
{
    m_isCardIn.reset();
    m_reader->monitor(milliseconds);
    return m_isCardIn.has_value();
}

void CardWorker::download()
{
    m_nextLook.start(0);
    const ReaderState now = takeReader(); // it may have changed while the request was on its way
    if (now != ReaderState::CardIn) {
        m_status.reader = now;
        Q_EMIT changed(m_status);
        return;
    }
    m_status = CardStatus();
    setReader(ReaderState::Reading);

    const aux::Error error = readCard();
    m_isCardDone = true;
    ReaderState found = takeReader();
    // The command fails at once when a card is pulled; its reader may notice only a moment later.
    if (!error.isEmpty() && found == ReaderState::CardDone && waitForChange(noticeMs))
        found = takeReader();
    if (m_wasPulled && found == ReaderState::CardDone) { // and put in again already
        m_isCardDone = false;
        found = ReaderState::CardIn;
    }
    if (!error.isEmpty())
        m_status.failure = downloadFailure(error, m_wasPulled && m_reader ? ReaderState::NoCard : found);
    else if (m_wasPulled)
        m_status.failure = incompleteFile();
    setReader(found);
}

aux::Error CardWorker::readCard()
{
    m_wasPulled = false;
    const auto listening =
        connect(m_reader.get(), &SCardReader::removed, this, [this] { m_wasPulled = true; });
    aux::Error error = m_reader->open();
    if (error.isEmpty()) {
        error = m_reader->read(scard::RegionDDD);
        m_reader->close(); // fails for a pulled card: the download has said so already
    }
    disconnect(listening);
    return error;
}

void CardWorker::noteProgress(int percent)
{
    constexpr int all = 100;
    percent = qMin(percent, all); // more when the card's counts say less than it holds
    if (percent == m_status.percent)
        return;
    m_status.percent = percent;
    Q_EMIT changed(m_status);
}

void CardWorker::noteContents(scard::SCardGeneric& card)
{
    m_status.percent = 100;
    m_status.type = cardName(card);
    m_status.file = QStringLiteral("/tmp/") + card.getFilename();
    m_status.contents = std::make_shared<const CardContents>(contentsOf(card));
}

void CardWorker::setReader(ReaderState state)
{
    if (m_status.reader == state)
        return;
    m_status.reader = state;
    Q_EMIT changed(m_status);
}
