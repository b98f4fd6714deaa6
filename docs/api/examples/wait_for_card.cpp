// Waits for a card, downloads it, and waits until it is taken out: wait_for_card [SECONDS]
#include <scard/SCardReader.h>

#include <QElapsedTimer>
#include <QTextStream>
#include <QThread>

#include <functional>

//! [wait]
/// Lets the reader watch until @p seen or until the time is over.
bool waitUntil(scard::SCardReader& reader, qint64 milliseconds, const std::function<bool()>& seen)
{
    constexpr unsigned int turn = 1000;
    constexpr qint64 noWait = 10;
    QElapsedTimer total;
    total.start();
    while (!seen()) {
        if (total.hasExpired(milliseconds))
            return false;
        QElapsedTimer thisTurn;
        thisTurn.start();
        reader.monitor(turn);
        if (thisTurn.elapsed() < noWait)
            QThread::msleep(100); // PC/SC answered at once, perhaps with a failure: do not spin
    }
    return true;
}
//! [wait]

int main(int argc, char* argv[])
{
    const qint64 limit = 1000 * (argc > 1 ? QString(argv[1]).toLongLong() : 60);
    QTextStream out(stdout);
    scard::SCardReader reader;
    if (!reader.init().isEmpty())
        return 1;
    //! [present]
    bool present = false; // in any of the readers; open() takes the first one's
    bool removed = false;
    QObject::connect(&reader, &scard::SCardReader::present, [&](bool is) { present = present || is; });
    QObject::connect(&reader, &scard::SCardReader::removed, [&] { removed = true; });
    //! [present]
    out << "Waiting for a card" << Qt::endl;
    if (!waitUntil(reader, limit, [&] { return present; }))
        return 1;
    out << "A card is there" << Qt::endl;
    aux::Error failure = reader.open();
    if (failure.isEmpty())
        failure = reader.read(scard::RegionDDD);
    reader.close();
    out << (failure.isEmpty() ? "Downloaded: take the card out" : "Not downloaded") << Qt::endl;
    removed = false;
    if (waitUntil(reader, limit, [&] { return removed; }))
        out << "The card is out" << Qt::endl;
    reader.uninit();
    return failure.isEmpty() ? 0 : 1;
}
