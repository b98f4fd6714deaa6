// A card that answers every command of a download as the input says: SCardReader::read() of all kinds.
#include "CardScript.h"
#include "Target.h"

#include <scard/SCardReader.h>

#include <QDir>

#include <cstdlib>
#include <typeinfo>

namespace {

/// Downloads go to "/tmp/" under names that the card decides; nobody else's files may be there.
void expectTmpOfOurOwn()
{
    static const bool own = std::getenv("OWN_TMP") != nullptr;
    fuzz::expect(own, "the program runs in a \"/tmp/\" of its own (tests/support/own-tmp.sh)");
}

void removeDownloads()
{
    QDir tmp(QStringLiteral("/tmp"));
    const QStringList names =
        tmp.entryList({QStringLiteral("C_*"), QStringLiteral("*.C1B")}, QDir::Files | QDir::Hidden);
    for (const QString& name : names)
        tmp.remove(name);
}

/// Is the command one that changes the card?
bool isWrite(const std::vector<std::uint8_t>& command)
{
    return command.size() > 1 && (command[1] == 0xD6 || command[1] == 0xD7);
}

/// One reader for card after card, as hosts have it.
scard::SCardReader& reader()
{
    static scard::SCardReader reader;
    static const bool ready = reader.init().isEmpty();
    fuzz::expect(ready, "the scripted reader can be used");
    return reader;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::discardDebugStream();
    expectTmpOfOurOwn();
    if (size == 0)
        return 0;

    fuzz::CardScript script(data + 1, size - 1);
    std::size_t writes = 0;
    fuzz::setCard([&](const std::vector<std::uint8_t>& command) {
        writes += isWrite(command) ? 1 : 0;
        return script.answerTo(command);
    });

    QObject host;
    std::shared_ptr<scard::SCardGeneric> card;
    QObject::connect(
        &reader(), &scard::SCardReader::readDone, &host,
        [&](const std::shared_ptr<scard::SCardGeneric>& done) { card = done; });
    QObject::connect(&reader(), &scard::SCardReader::progress, &host, [](int percent) {
        fuzz::expect(percent >= 0, "progress is no negative number");
    });
    fuzz::expect(reader().open().isEmpty(), "the scripted card can be connected to");
    const aux::Error failure = reader().read(static_cast<scard::FilenameRegion>(data[0] % 3));
    reader().close();

    fuzz::expect(failure.isEmpty() == bool(card), "a card is handed over when, and only when, all went well");
    fuzz::expect(writes <= 2, "each application is told once");
    if (card) {
        const QString path = QStringLiteral("/tmp/") + card->getFilename();
        // Of a control card, for one, nobody knows what to read; its file is empty.
        const scard::SCardGeneric& object = *card;
        const bool hasClass = typeid(object) != typeid(scard::SCardGeneric);
        fuzz::expect(QFileInfo::exists(path), "a download that went well has a file");
        fuzz::expect(
            (QFileInfo(path).size() > 0) == hasClass,
            "the file has records when the card's type has a class");
        fuzz::expect(
            QFileInfo(path).dir() == QDir(QStringLiteral("/tmp")), "the file is in \"/tmp/\" itself");
    }
    removeDownloads();
    return 0;
}
