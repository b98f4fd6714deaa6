// A host that downloads in a worker thread while its main loop receives.
//
// Qt's own locks are inside Qt, where the thread sanitizer does not look; without more it would take each
// event for a race. So the worker holds a lock while it emits, and the main loop takes it before each event:
// what Qt orders is ordered for the sanitizer, too, and nothing else is.
#include <pcsc/CardInReader.h>
#include <support/Answers.h>
#include <support/CardKind.h>
#include <support/ErrorChain.h>
#include <support/LoadedAgain.h>

#include <QCoreApplication>
#include <QEventLoop>
#include <QThread>

#include <gmock/gmock.h>

#include <mutex>
#include <thread>

namespace {

using namespace test;
using scard::SCardReader;
using testing::ElementsAre;
using testing::IsEmpty;

std::mutex handover;

/// Waits until the worker has let go of an event before it comes.
class OrderedEvents : public QObject
{
  public:
    OrderedEvents() { qApp->installEventFilter(this); }

    bool eventFilter(QObject*, QEvent*) override
    {
        const std::lock_guard wait(handover);
        return false;
    }
};

class Receiver : public QObject
{
    Q_OBJECT

  public Q_SLOTS:
    void onType(scard::SCardMeta::Type type) { note("type", type == scard::SCardMeta::DriverCard); }
    void onHolder(const QString& name) { note("holder", name.contains(", ")); }
    void onLanguage(const QLocale& language)
    {
        note("language", language.language() != QLocale::AnyLanguage);
    }
    void onDone(const std::shared_ptr<scard::SCardGeneric>& card)
    {
        note("done", card != nullptr);
        done = card;
    }

  public:
    std::vector<std::string> seen;
    std::vector<int> progress;
    bool alwaysInMainThread = true;
    std::shared_ptr<scard::SCardGeneric> done;

    void noteThread() { alwaysInMainThread &= QThread::currentThread() == qApp->thread(); }

  private:
    void note(const std::string& what, bool good)
    {
        noteThread();
        seen.push_back(good ? what : what + " is wrong");
    }
};

/// Calls @p use with each signal of the reader.
template <typename Use>
void forEachSignal(Use use)
{
    use(&SCardReader::cardType);
    use(&SCardReader::cardHolder);
    use(&SCardReader::cardLanguage);
    use(&SCardReader::progress);
    use(&SCardReader::readDone);
    use(&SCardReader::present);
    use(&SCardReader::removed);
}

/// Connects by @p connectSignals; slots are called in the order in which they were connected.
template <typename ConnectSignals>
void connectOrdered(SCardReader& reader, ConnectSignals connectSignals)
{
    forEachSignal([&](auto signal) { QObject::connect(&reader, signal, [] { handover.lock(); }); });
    connectSignals(reader);
    forEachSignal([&](auto signal) { QObject::connect(&reader, signal, [] { handover.unlock(); }); });
}

/// Does @p work in a worker thread while this thread's event loop runs.
template <typename Work>
void runInWorker(Work work)
{
    const OrderedEvents ordered;
    QEventLoop loop;
    std::thread worker([&] {
        work();
        const std::lock_guard lock(handover);
        QMetaObject::invokeMethod(&loop, &QEventLoop::quit, Qt::QueuedConnection);
    });
    loop.exec();
    worker.join();
    QCoreApplication::processEvents();
}

aux::Error downloadOnce(SCardReader& reader)
{
    aux::Error failure = reader.open();
    if (failure.isEmpty())
        failure = reader.read(scard::RegionDDD);
    reader.close();
    return failure;
}

/// Downloads in a worker thread while this thread's event loop runs.
template <typename ConnectSignals>
void downloadInWorker(ConnectSignals connectSignals)
{
    aux::Error failure;
    std::unique_ptr<SCardReader>
        reader; // ends behind the worker: Qt counts uses that the sanitizer does not see
    runInWorker([&] {
        reader = std::make_unique<SCardReader>();
        connectOrdered(*reader, connectSignals);
        failure = reader->init();
        if (failure.isEmpty())
            failure = downloadOnce(*reader);
        reader->uninit();
    });
    EXPECT_THAT(chain(failure), IsEmpty());
}

class WorkerThreadTest : public CardInReader
{};

TEST_F(WorkerThreadTest, EverySignalReachesAReceiverInTheMainThread)
{
    Receiver receiver;
    downloadInWorker([&receiver](SCardReader& reader) {
        QObject::connect(&reader, &SCardReader::cardType, &receiver, &Receiver::onType);
        QObject::connect(&reader, &SCardReader::cardHolder, &receiver, &Receiver::onHolder);
        QObject::connect(&reader, &SCardReader::cardLanguage, &receiver, &Receiver::onLanguage);
        QObject::connect(&reader, &SCardReader::readDone, &receiver, &Receiver::onDone);
        QObject::connect(&reader, &SCardReader::progress, &receiver, [&receiver](int percent) {
            receiver.noteThread();
            receiver.progress.push_back(percent);
        });
    });
    EXPECT_THAT(receiver.seen, ElementsAre("type", "language", "holder", "done"));
    EXPECT_TRUE(receiver.alwaysInMainThread);
    ASSERT_FALSE(receiver.progress.empty());
    EXPECT_EQ(receiver.progress.back(), 99);
    ASSERT_TRUE(receiver.done);
    EXPECT_EQ(fileContent("/tmp/" + receiver.done->getFilename()).size(), 26635);
}

TEST_F(WorkerThreadTest, SignalsConnectedByNameArriveToo)
{
    Receiver receiver;
    downloadInWorker([&receiver](SCardReader& reader) {
        QObject::connect(
            &reader, SIGNAL(cardType(scard::SCardMeta::Type)), &receiver,
            SLOT(onType(scard::SCardMeta::Type)));
        QObject::connect(
            &reader, SIGNAL(readDone(std::shared_ptr<scard::SCardGeneric>)), &receiver,
            SLOT(onDone(std::shared_ptr<scard::SCardGeneric>)));
    });
    EXPECT_THAT(receiver.seen, ElementsAre("type", "done"));
    EXPECT_TRUE(receiver.alwaysInMainThread);
}

/// What the main loop learns of a card of any kind that it has been given.
std::string everythingOf(scard::SCardGeneric& card)
{
    if (auto* driver = dynamic_cast<scard::SCardDriverG1*>(&card))
        return identityOf(*driver) + answersOf(*driver);
    if (auto* workshop = dynamic_cast<scard::SCardWorkshopG1*>(&card))
        return answersOf(*workshop);
    if (auto* company = dynamic_cast<scard::SCardCompanyG1*>(&card))
        return answersOf(*company);
    return {};
}

TEST_F(WorkerThreadTest, TheMainLoopAsksOneCardWhileTheWorkerReadsTheNext)
{
    const std::vector<CardKind> kinds = {driverKind(),     driverV2Kind(), workshopKind(),
                                         workshopV2Kind(), companyKind(),  companyV2Kind()};
    const std::size_t rounds = 2;
    std::vector<std::string> answers;
    std::vector<Chain> failures;
    std::unique_ptr<SCardReader> reader; // it and the cards end behind the worker, as above
    std::vector<std::shared_ptr<scard::SCardGeneric>> cards;
    runInWorker([&] {
        reader = std::make_unique<SCardReader>();
        connectOrdered(*reader, [&](SCardReader& each) {
            QObject::connect(
                &each, &SCardReader::readDone, qApp, [&](const std::shared_ptr<scard::SCardGeneric>& card) {
                    cards.push_back(card);
                    answers.push_back(everythingOf(*card));
                });
        });
        reader->init();
        for (std::size_t i = 0; i < rounds * kinds.size(); ++i) {
            insert(kinds[i % kinds.size()].card);
            failures.push_back(chain(downloadOnce(*reader)));
        }
        reader->uninit();
    });
    EXPECT_THAT(failures, testing::Each(IsEmpty()));
    ASSERT_EQ(answers.size(), rounds * kinds.size());
    EXPECT_THAT(answers, testing::Each(testing::Not(IsEmpty())));
    for (std::size_t i = 2; i < kinds.size(); ++i) // a driver's file name and stamp have the time in them
        EXPECT_EQ(answers[i], answers[i + kinds.size()]);
}

TEST_F(WorkerThreadTest, CardsFromFilesAreReadInSeveralThreadsAtOnce)
{
    insert(driverV2Kind().card);
    const Download download = test::download();
    const std::string expected = answersOf(*loadedAgain<scard::SCardDriverG2>(download));
    constexpr std::size_t threads = 4;
    std::string answers[threads];
    std::vector<std::thread> workers;
    for (std::string& answer : answers)
        workers.emplace_back(
            [&answer, &download] { answer = answersOf(*loadedAgain<scard::SCardDriverG2>(download)); });
    for (std::thread& worker : workers)
        worker.join();
    EXPECT_THAT(answers, testing::Each(expected));
}

TEST_F(WorkerThreadTest, AnErrorCanTravelBetweenThreads)
{
    SCardReader reader;
    EXPECT_NE(QMetaType::type("aux::Error"), static_cast<int>(QMetaType::UnknownType));
    Chain seen;
    QObject receiver;
    QObject::connect(
        &reader, &SCardReader::error, &receiver,
        [&seen](const aux::Error& failure) { seen = chain(failure); }, Qt::QueuedConnection);
    aux::Error failure;
    failure.append(aux::ErrorData("host", "said by the host", 7));
    Q_EMIT reader.error(failure);
    QCoreApplication::processEvents();
    EXPECT_THAT(seen, ElementsAre(Entry{"host", "said by the host", 7}));
}

} // namespace

#include "WorkerThreadTest.moc"
