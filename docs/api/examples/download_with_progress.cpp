// Downloads the card in the first reader and tells what happens meanwhile.
#include <scard/SCardReader.h>

#include <QFileInfo>
#include <QMetaEnum>
#include <QTextStream>

int main()
{
    QTextStream out(stdout);
    //! [connect]
    scard::SCardReader reader;
    QObject::connect(&reader, &scard::SCardReader::cardType, [&](scard::SCardMeta::Type type) {
        out << "Type: " << QMetaEnum::fromType<scard::SCardMeta::Type>().valueToKey(type) << Qt::endl;
    });
    QObject::connect(&reader, &scard::SCardReader::cardHolder, [&](const QString& name) {
        out << "Holder: " << name << Qt::endl;
    });
    QObject::connect(&reader, &scard::SCardReader::cardLanguage, [&](const QLocale& locale) {
        out << "Language: " << QLocale::languageToString(locale.language()) << Qt::endl;
    });
    int shown = -1; // the same percentage comes many times
    QObject::connect(&reader, &scard::SCardReader::progress, [&](int percent) {
        if (percent / 10 != shown)
            out << "Progress: " << percent << " %" << Qt::endl;
        shown = percent / 10;
    });
    //! [connect]

    //! [done]
    std::shared_ptr<scard::SCardGeneric> card;
    QObject::connect(&reader, &scard::SCardReader::readDone, [&](std::shared_ptr<scard::SCardGeneric> done) {
        card = std::move(done);
    });
    //! [done]

    //! [init]
    aux::Error failure = reader.init();
    if (failure.isEmpty())
        failure = reader.open();
    //! [init]
    //! [read]
    if (failure.isEmpty())
        failure = reader.read(scard::RegionDDD);
    //! [read]
    //! [close]
    reader.close();
    reader.uninit();
    //! [close]
    //! [file]
    if (card) {
        const QFileInfo file("/tmp/" + card->getFilename());
        out << "File: " << file.filePath() << ", " << file.size() << " bytes" << Qt::endl;
    }
    //! [file]
    for (const aux::ErrorData& entry : failure)
        out << "Failure: " << entry.getMessage() << Qt::endl;
    return card ? 0 : 1;
}
