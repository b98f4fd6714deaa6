// Downloads a card and says what to do when that fails.
#include <scard/SCardReader.h>

#include <QTextStream>

#include <iterator>

//! [react]
QString whatToDo(const aux::Error& failure, bool removed)
{
    if (removed)
        return "The card was pulled. Put it in again and leave it in.";
    // PC/SC's own failures have no number: the text is the entry's.
    for (const aux::ErrorData& entry : failure) {
        if (entry.getSource() == "SCard")
            return "The reader does not reach the card. " + entry.getMessage();
    }
    // The cause's number is at the first entry, whatever the steps around it were.
    switch (const unsigned int statusWord = failure.begin()->getId()) {
    case 0:
        return "The download cannot go on. " + failure.begin()->getMessage();
    case 0x6581:
        return "The card cannot be written any more. Its holder needs a new one.";
    case 0x6982:
        return "The card keeps this to itself. Is it a tachograph card of this kind?";
    case 0x6A82:
        return "The card lacks what every such card has. Is it a tachograph card?";
    default:
        return "The card refuses with " + QString::number(statusWord, 16) + ". Clean it and try again.";
    }
}

/// The step of the download that failed stands last.
bool isFileComplete(const aux::Error& failure)
{
    return std::prev(failure.end())->getMessage() == "Failed at post download task";
}
//! [react]

int main()
{
    QTextStream out(stdout);
    scard::SCardReader reader;
    bool removed = false;
    QObject::connect(&reader, &scard::SCardReader::removed, [&] { removed = true; });
    aux::Error failure = reader.init();
    if (failure.isEmpty())
        failure = reader.open();
    if (failure.isEmpty())
        failure = reader.read(scard::RegionDDD);
    reader.close();
    reader.uninit();
    if (failure.isEmpty()) {
        out << "Downloaded" << Qt::endl;
        return 0;
    }
    out << whatToDo(failure, removed) << Qt::endl;
    out << (isFileComplete(failure) ? "The file is whole" : "There is no whole file") << Qt::endl;
    return 1;
}
