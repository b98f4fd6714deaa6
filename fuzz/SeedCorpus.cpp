// Writes inputs to begin with, made from simulated cards: fuzz_seeds FOLDER makes FOLDER/TARGET of cards with
// few records and FOLDER/full/TARGET of cards with as many as in real life.
#include "CardScript.h"
#include "Target.h"

#include <cli/Downloads.h>
#include <scard/SCardReader.h>
#include <simulator/Card.h>
#include <simulator/DriverCard.h>
#include <simulator/TestPkiG2.h>
#include <support/FileRecords.h>

#include <QDir>
#include <QFile>

#include <cstdio>
#include <set>

namespace {

constexpr unsigned int activitiesFid = 0x0504;
constexpr unsigned int identificationFid = 0x0520;
constexpr unsigned int certificateFids[] = {0xC100, 0xC101, 0xC108, 0xC109};

using Bytes = std::vector<std::uint8_t>;

class Folder
{
  public:
    /// @param prefix of the files' names, so that two may write to the same folder
    explicit Folder(const QString& path, const QString& prefix = {})
        : m_names(path + QLatin1Char('/') + prefix + QStringLiteral("%1"))
    {
        QDir().mkpath(path);
    }

    void add(const QByteArray& bytes)
    {
        QFile file(m_names.arg(m_count++, 3, 10, QLatin1Char('0')));
        fuzz::expect(
            file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.flush(),
            "the inputs can be written");
    }

    void add(const Bytes& bytes)
    {
        add(QByteArray(reinterpret_cast<const char*>(bytes.data()), static_cast<int>(bytes.size())));
    }

  private:
    QString m_names;
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
    Folder verify(root + QStringLiteral("/verify"));
    for (const test::CardFile& download : downloads) {
        image.add(download.file);
        show.add(download.file);
        verify.add(download.file);
        for (const auto region : {scard::RegionDDD, scard::RegionC1B, scard::RegionTGD})
            card.add(scriptOf(download.card, region));
        for (const QByteArray& payload : payloadsOf(download.file, activitiesFid))
            activity.add(withAnnouncedLength(payload));
        for (const QByteArray& payload : payloadsOf(download.file, identificationFid))
            text.add(payload);
    }
}

/// A driver card with few records.
sim::DriverParametersG2 fewRecords()
{
    sim::DriverParametersG2 parameters;
    parameters.first.eventsPerType = 1;
    parameters.first.faultsPerType = 1;
    parameters.first.activityLength = 600;
    parameters.first.vehicles = 2;
    parameters.first.places = 2;
    parameters.eventsPerType = 1;
    parameters.faultsPerType = 1;
    parameters.activityLength = 600;
    parameters.vehicles = 2;
    parameters.places = 2;
    parameters.gnssPlaces = 2;
    parameters.specificConditions = 2;
    parameters.vehicleUnits = 2;
    return parameters;
}

/// What only those who check signatures tell apart: certificates and root keys.
void writeKeySeeds(const QString& root)
{
    Folder verify(root + QStringLiteral("/verify"), QStringLiteral("key"));
    std::set<QByteArray> certificates;
    for (const test::CardFile& download : test::smallDownloads()) {
        for (const unsigned int fid : certificateFids) {
            for (const QByteArray& payload : payloadsOf(download.file, fid))
                certificates.insert(payload);
        }
    }
    for (const QByteArray& certificate : certificates)
        verify.add(certificate);
    verify.add(sim::rootKeyG1());
    for (const sim::CurveDescription& each : sim::curves()) {
        verify.add(sim::rootCertificateG2(each.curve));
        verify.add(sim::previousRootCertificateG2(each.curve));
    }
    sim::DriverParametersG2 padded = fewRecords();
    padded.certificateFiles = sim::CertificateFiles::Padded;
    padded.linkCertificate = sim::CertificateFiles::Empty;
    verify.add(test::driverFileG2(padded));
}

/// Cards with other curves, whose signatures take too long to search with.
void writeCurveSeeds(const QString& root)
{
    Folder verify(root + QStringLiteral("/verify"), QStringLiteral("curve"));
    for (const sim::Curve curve : {sim::Curve::BrainpoolP256r1, sim::Curve::NistP384}) {
        sim::DriverParametersG2 parameters = fewRecords();
        parameters.curve = curve;
        verify.add(test::driverFileG2(parameters));
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
    writeKeySeeds(root);
    // Too large to search with: they are replayed.
    writeSeeds(root + QStringLiteral("/full"), test::realDownloads());
    writeCurveSeeds(root + QStringLiteral("/full"));
    return 0;
}
