// A host that downloads in a worker thread while its main loop receives.
#include "CardInReader.h"

#include <support/ErrorChain.h>

#include <QCoreApplication>
#include <QEventLoop>
#include <QThread>

#include <gmock/gmock.h>

#include <thread>

namespace {

using namespace test;
using scard::SCardReader;
using testing::ElementsAre;
using testing::IsEmpty;

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

using WorkerThreadTest = CardInReader;

void connectAll(SCardReader& reader, Receiver& receiver)
{
    QObject::connect(&reader, &SCardReader::cardType, &receiver, &Receiver::onType);
    QObject::connect(&reader, &SCardReader::cardHolder, &receiver, &Receiver::onHolder);
    QObject::connect(&reader, &SCardReader::cardLanguage, &receiver, &Receiver::onLanguage);
    QObject::connect(&reader, &SCardReader::readDone, &receiver, &Receiver::onDone);
    QObject::connect(&reader, &SCardReader::progress, &receiver, [&receiver](int percent) {
        receiver.noteThread();
        receiver.progress.push_back(percent);
    });
}

void connectByName(SCardReader& reader, Receiver& receiver)
{
    QObject::connect(
        &reader, SIGNAL(cardType(scard::SCardMeta::Type)), &receiver, SLOT(onType(scard::SCardMeta::Type)));
    QObject::connect(
        &reader, SIGNAL(readDone(std::shared_ptr<scard::SCardGeneric>)), &receiver,
        SLOT(onDone(std::shared_ptr<scard::SCardGeneric>)));
}

/// Downloads in a worker thread while this thread's event loop runs.
void downloadInWorker(Receiver& receiver, void (*connectSignals)(SCardReader&, Receiver&))
{
    aux::Error failure;
    QEventLoop loop;
    std::thread worker([&] {
        SCardReader reader;
        connectSignals(reader, receiver);
        failure = reader.init();
        if (failure.isEmpty())
            failure = reader.open();
        if (failure.isEmpty())
            failure = reader.read(scard::RegionDDD);
        reader.close();
        reader.uninit();
        QMetaObject::invokeMethod(&loop, &QEventLoop::quit, Qt::QueuedConnection);
    });
    loop.exec();
    worker.join();
    QCoreApplication::processEvents();
    EXPECT_THAT(chain(failure), IsEmpty());
}

TEST_F(WorkerThreadTest, EverySignalReachesAReceiverInTheMainThread)
{
    Receiver receiver;
    downloadInWorker(receiver, connectAll);
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
    downloadInWorker(receiver, connectByName);
    EXPECT_THAT(receiver.seen, ElementsAre("type", "done"));
    EXPECT_TRUE(receiver.alwaysInMainThread);
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
