// Downloads a card and brings the file from "/tmp/" into a folder: write_elsewhere FOLDER
#include <scard/SCardReader.h>

#include <QDir>
#include <QFile>
#include <QTextStream>

#include <unistd.h>

//! [bring]
/// Under its name the file is there as a whole or not at all, and none that is there is replaced.
bool bring(const QString& from, const QString& to)
{
    QFile source(from);
    QFile part(to + ".part");
    if (!source.open(QIODevice::ReadOnly) || !part.open(QIODevice::WriteOnly | QIODevice::NewOnly))
        return false;
    const QByteArray bytes = source.readAll();
    const bool whole = part.write(bytes) == bytes.size() && part.flush() && ::fsync(part.handle()) == 0;
    part.close();
    if (!whole || !part.rename(to)) {
        part.remove();
        return false;
    }
    return source.remove();
}
//! [bring]

int main(int argc, char* argv[])
{
    QTextStream out(stdout);
    const QDir folder(argc > 1 ? argv[1] : ".");
    scard::SCardReader reader;
    //! [when]
    // By now the card was told: what fails from here on is the host's to mend, with the file in "/tmp/".
    bool brought = false;
    QObject::connect(
        &reader, &scard::SCardReader::readDone, [&](const std::shared_ptr<scard::SCardGeneric>& card) {
            const QString name = card->getFilename();
            brought = bring("/tmp/" + name, folder.filePath(name));
            out << (brought ? "Brought: " + folder.filePath(name) : "Still there: /tmp/" + name) << Qt::endl;
        });
    //! [when]
    aux::Error failure = reader.init();
    if (failure.isEmpty())
        failure = reader.open();
    if (failure.isEmpty())
        failure = reader.read(scard::RegionDDD);
    reader.close();
    reader.uninit();
    return failure.isEmpty() && brought ? 0 : 1;
}
