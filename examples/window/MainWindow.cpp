#include "MainWindow.h"

#include "CardWorker.h"
#include "ContentsView.h"

#include <QCloseEvent>
#include <QFontDatabase>
#include <QGridLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QStyle>
#include <QToolButton>

namespace {

QString stateText(ReaderState state)
{
    switch (state) {
    case ReaderState::NotKnown:
        return MainWindow::tr("Looking for a reader …");
    case ReaderState::NoService:
        return MainWindow::tr("The card service of this machine does not answer. Is pcscd running?");
    case ReaderState::NoReader:
        return MainWindow::tr("There is no card reader. Plug one in.");
    case ReaderState::NoCard:
        return MainWindow::tr("There is no card in the reader. Put one in.");
    case ReaderState::CardIn:
        return MainWindow::tr("A card is in the reader.");
    case ReaderState::Reading:
        return MainWindow::tr("The card is being read. Leave it in the reader.");
    case ReaderState::CardDone:
        // A card that was read gives less of itself until it was out of the reader.
        return MainWindow::tr("Take the card out. It can be put in again, or another one.");
    }
    return {};
}

} // namespace

MainWindow::MainWindow()
    : m_state(new QLabel(this)), m_start(new QPushButton(tr("&Start download"), this)),
      m_progress(new QProgressBar(this)), m_type(new QLabel(this)), m_holder(new QLabel(this)),
      m_file(new QLabel(this)), m_sign(new QLabel(this)), m_message(new QLabel(this)),
      m_more(new QToolButton(this)), m_details(new QLabel(this)), m_contents(new ContentsView(this))
{
    setWindowTitle(tr("Tachograph card"));
    layOut();
    connect(m_start, &QPushButton::clicked, this, &MainWindow::start);
    connect(m_more, &QToolButton::toggled, m_details, &QLabel::setVisible);
    showStatus({});
    m_contents->showSentence(tr("What is on the card will be listed here."));
    startWorker();
}

MainWindow::~MainWindow()
{
    m_thread.quit();
    m_thread.wait(); // for a slice of waiting, or for a download that still runs
}

void MainWindow::startWorker()
{
    qRegisterMetaType<CardStatus>();
    auto* worker = new CardWorker; // no parent: it moves
    worker->moveToThread(&m_thread);
    connect(&m_thread, &QThread::started, worker, &CardWorker::look);
    connect(&m_thread, &QThread::finished, worker, &QObject::deleteLater);
    // Sender and receiver live in different threads, so each signal goes through the receiver's event loop.
    connect(this, &MainWindow::downloadWanted, worker, &CardWorker::download);
    connect(worker, &CardWorker::changed, this, &MainWindow::showStatus);
    m_thread.start();
}

void MainWindow::layOut()
{
    m_state->setObjectName(QStringLiteral("stateLabel"));
    m_start->setObjectName(QStringLiteral("startButton"));
    m_progress->setObjectName(QStringLiteral("progressBar"));
    m_type->setObjectName(QStringLiteral("typeLabel"));
    m_holder->setObjectName(QStringLiteral("holderLabel"));
    m_file->setObjectName(QStringLiteral("fileLabel"));
    m_message->setObjectName(QStringLiteral("messageLabel"));
    m_more->setObjectName(QStringLiteral("moreButton"));
    m_details->setObjectName(QStringLiteral("detailsLabel"));

    QFont large = font();
    large.setPointSizeF(large.pointSizeF() * 1.3);
    m_state->setFont(large);
    m_state->setWordWrap(true);
    m_message->setWordWrap(true);
    QFont bold = font();
    bold.setBold(true);
    m_message->setFont(bold);
    m_more->setText(tr("&Details"));
    m_more->setCheckable(true);
    m_details->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    m_details->setWordWrap(true);
    m_details->hide();
    for (QLabel* label : {m_holder, m_type, m_file, m_details}) {
        label->setTextFormat(Qt::PlainText); // it comes from a card
        label->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    }

    constexpr int lastColumn = 2;
    auto* layout = new QGridLayout(this);
    layout->setColumnStretch(1, 1);
    layout->addWidget(m_state, 0, 0, 1, 2);
    layout->addWidget(m_start, 0, lastColumn);
    layout->addWidget(m_progress, 1, 0, 1, -1);
    int row = 2;
    for (const auto& [title, label] :
         {std::make_pair(tr("Card"), m_type), std::make_pair(tr("Holder"), m_holder),
          std::make_pair(tr("File"), m_file)}) {
        layout->addWidget(new QLabel(title, this), row, 0);
        layout->addWidget(label, row++, 1, 1, -1);
    }
    layout->addWidget(m_sign, row, 0);
    layout->addWidget(m_message, row, 1);
    layout->addWidget(m_more, row++, lastColumn, Qt::AlignRight);
    layout->addWidget(m_details, row++, 1, 1, -1);
    layout->addWidget(m_contents, row, 0, 1, -1);
    layout->setRowStretch(row, 1);
    setMinimumSize(720, 480);
    resize(1000, 700);
}

void MainWindow::start()
{
    CardStatus reading;
    reading.reader = ReaderState::Reading; // at once, for the worker may be in a slice of waiting
    showStatus(reading);
    Q_EMIT downloadWanted();
}

void MainWindow::showStatus(const CardStatus& status)
{
    const auto before = m_status.contents;
    m_status = status;
    showReader();
    showOutcome();
    showContents(before);
    if (m_closesWhenRead && !isReading())
        close();
}

void MainWindow::showReader()
{
    m_state->setText(
        m_closesWhenRead && isReading() ? tr("The window closes when the card has been read.")
                                        : stateText(m_status.reader));
    m_start->setEnabled(m_status.reader == ReaderState::CardIn);
    m_progress->setValue(m_status.percent);
    m_type->setText(m_status.type);
    m_holder->setText(m_status.holder);
    m_file->setText(m_status.file);
}

void MainWindow::showOutcome()
{
    const Failure& failure = m_status.failure;
    const bool isComplete = failure.isEmpty() && m_status.contents;
    const auto sign = failure.isEmpty() ? QStyle::SP_DialogApplyButton : QStyle::SP_MessageBoxWarning;
    const int size = style()->pixelMetric(QStyle::PM_SmallIconSize);
    m_sign->setPixmap(style()->standardIcon(sign).pixmap(windowHandle(), QSize(size, size)));
    m_sign->setVisible(isComplete || !failure.isEmpty());
    m_message->setText(isComplete ? tr("The download is complete.") : failure.sentence);
    m_message->setVisible(isComplete || !failure.isEmpty());
    m_details->setText(failure.details);
    m_more->setVisible(!failure.details.isEmpty());
    if (failure.details.isEmpty())
        m_more->setChecked(false);
}

void MainWindow::showContents(const std::shared_ptr<const CardContents>& before)
{
    if (m_status.contents && m_status.contents != before)
        m_contents->showContents(*m_status.contents);
    else if (isReading())
        m_contents->showSentence(tr("What is on the card will be listed here."));
}

void MainWindow::closeEvent(QCloseEvent* event)
{
    // A download cannot be broken off, and without it ending the thread cannot end. The window stays alive
    // until then instead of standing still.
    m_closesWhenRead = isReading();
    event->setAccepted(!m_closesWhenRead);
    showReader();
}
