// Downloads in a worker thread while the main thread's event loop goes on.
#include <scard/SCardDriverG1.h>
#include <scard/SCardReader.h>

#include <QCoreApplication>
#include <QTextStream>
#include <QThread>
#include <QTimer>

int main(int argc, char* argv[])
{
    QCoreApplication app(argc, argv);
    QTextStream out(stdout);

    int ticks = 0;
    QTimer alive;
    QObject::connect(&alive, &QTimer::timeout, [&] { ++ticks; });
    alive.start(1);

    //! [thread]
    aux::Error failure;
    const auto download = [&] {
        scard::SCardReader reader; // belongs to the thread that makes it
        // With a receiver of the main thread, the functions run there, from its event loop.
        QObject::connect(&reader, &scard::SCardReader::cardHolder, &app, [&](const QString& name) {
            out << "Holder: " << name << Qt::endl;
        });
        QObject::connect(
            &reader, &scard::SCardReader::readDone, &app,
            [&](const std::shared_ptr<scard::SCardGeneric>& card) {
                const auto driver = std::dynamic_pointer_cast<scard::SCardDriverG1>(card);
                out << "Days: " << (driver ? driver->getActivities().size() : 0) << Qt::endl;
            });
        failure = reader.init();
        if (failure.isEmpty())
            failure = reader.open();
        if (failure.isEmpty())
            failure = reader.read(scard::RegionDDD);
        reader.close();
        reader.uninit();
    };
    const std::unique_ptr<QThread> worker(QThread::create(download));
    QObject::connect(worker.get(), &QThread::finished, &app, &QCoreApplication::quit);
    worker->start();
    app.exec();
    worker->wait();
    //! [thread]

    out << (ticks > 0 ? "The main thread went on" : "The main thread stood still") << Qt::endl;
    return failure.isEmpty() ? 0 : 1;
}
