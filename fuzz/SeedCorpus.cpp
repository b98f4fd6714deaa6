// Writes inputs to begin with, made from simulated cards: fuzz_seeds FOLDER makes FOLDER/TARGET of cards with
// few records and FOLDER/full/TARGET of cards with as many as in real life.
#include "CardScript.h"
#include "Target.h"

#include <cli/Downloads.h>
#include <scard/SCardReader.h>
#include <simulator/Card.h>
#include <support/FileRecords.h>

#include <QDir>
#include <QFile>

#include <cstdio>

namespace {

constexpr unsigned int activitiesFid = 0x0504;
constexpr unsigned int identificationFid = 0x0520;

using Bytes = std::vector<std::uint8_t>;

class Folder
{
  public:
    explicit Folder(const QString& path) : m_path(path) { QDir().mkpath(path); }

    void add(const QByteArray& bytes)
    {
        QFile file(m_path + QStringLiteral("/%1").arg(m_count++, 3, 10, QLatin1Char('0')));
        fuzz::expect(
            file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.flush(),
            "the inputs can be written");
    }

    void add(const Bytes& bytes)
    {
        add(QByteArray(reinterpret_cast<const char*>(bytes.data()), static_cast<int>(bytes.size())));
    }

  private:
    QString m_path;
    int m_count = 0;
};

/// The answers that a whole download of the card consists of.
Bytes scriptOf(const sim::CardDescription& description, scard::FilenameRegion region)
{
    sim::Card card(description);
    Bytes script = {static_cast<std::uint8_t>(region)};
    fuzz::setCard([&](const Bytes& command) {
        const Bytes answer = card.transmit(command).value();
        fuzz::appendAnswer(script, command, answer);
        return fuzz::Answer{SCARD_S_SUCCESS, answer};
    });
    static scard::SCardReader reader;
    static const bool ready = reader.init().isEmpty();
    fuzz::expect(ready && reader.open().isEmpty(), "the scripted card can be used");
    fuzz::expect(reader.read(region).isEmpty(), "the simulated card can be downloaded");
    return script;
}

/// The payloads of the records of @p fid.
std::vector<QByteArray> payloadsOf(const QByteArray& file, unsigned int fid)
{
    std::vector<QByteArray> payloads;
    for (const test::FileRecord& record : test::recordsOf(file)) {
        if (record.fid == fid && record.type % 2 == 0)
            payloads.push_back(file.mid(record.begin(), record.length));
    }
    return payloads;
}

QByteArray withAnnouncedLength(const QByteArray& activities)
{
    constexpr int pointers = 4;
    const int length = activities.size() - pointers;
    return QByteArray(1, static_cast<char>(length >> 8)) + static_cast<char>(length & 0xFF) + activities;
}

void writeSeeds(const QString& root, const std::vector<test::CardFile>& downloads)
{
    Folder image(root + QStringLiteral("/image"));
    Folder show(root + QStringLiteral("/show"));
    Folder card(root + QStringLiteral("/card"));
    Folder activity(root + QStringLiteral("/activity"));
    Folder text(root + QStringLiteral("/text"));
    for (const test::CardFile& download : downloads) {
        image.add(download.file);
        show.add(download.file);
        for (const auto region : {scard::RegionDDD, scard::RegionC1B, scard::RegionTGD})
            card.add(scriptOf(download.card, region));
        for (const QByteArray& payload : payloadsOf(download.file, activitiesFid))
            activity.add(withAnnouncedLength(payload));
        for (const QByteArray& payload : payloadsOf(download.file, identificationFid))
            text.add(payload);
    }
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: fuzz_seeds FOLDER\n");
        return 2;
    }
    fuzz::discardDebugStream();
    const QString root = QFile::decodeName(argv[1]);
    writeSeeds(root, test::smallDownloads());
    // Too large to search with: they are replayed.
    writeSeeds(root + QStringLiteral("/full"), test::realDownloads());
    return 0;
}
