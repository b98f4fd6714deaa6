#include "ExpectedDownload.h"

#include <simulator/DriverCard.h>

#include <algorithm>
#include <cstdio>

namespace test {

namespace {

std::string hex(unsigned int value, int digits)
{
    char text[16];
    std::snprintf(text, sizeof text, "%0*X", digits, value);
    return text;
}

/// 0504 -> "05 04"
std::string hexPair(unsigned int value)
{
    return hex(value >> 8, 2) + ' ' + hex(value & 0xFF, 2);
}

std::string lowerHex(unsigned int value)
{
    char text[16];
    std::snprintf(text, sizeof text, "%x", value);
    return text;
}

class Script
{
  public:
    void selectName(Phase phase, const std::string& name, bool tolerated = false)
    {
        std::string command = "00 A4 04 0C 06 FF";
        for (const char letter : name)
            command += ' ' + hex(static_cast<unsigned char>(letter), 2);
        m_steps.push_back({phase, Kind::SelectName, 0, name, command, 0, tolerated});
    }

    /// SELECT, and READ BINARY in pieces of at most 255 bytes.
    void readEf(
        Phase phase, unsigned short fid, unsigned int length, unsigned int offset = 0, bool tolerated = false)
    {
        m_steps.push_back({phase, Kind::SelectEf, fid, {}, "00 A4 02 0C 02 " + hexPair(fid), 0, tolerated});
        for (unsigned int position = 0; position < length; position += 255) {
            const unsigned int chunk = std::min(length - position, 255u);
            m_steps.push_back(
                {phase,
                 Kind::Read,
                 fid,
                 {},
                 "00 B0 " + hexPair(offset + position) + ' ' + hex(chunk, 2),
                 chunk,
                 tolerated});
        }
    }

    void sign(unsigned short fid)
    {
        m_steps.push_back({Phase::Reading, Kind::Hash, fid, {}, "80 2A 90 00"});
        m_steps.push_back({Phase::Reading, Kind::Sign, fid, {}, "00 2A 9E 9A 80"});
    }

    /// An EF of the download that is read as one piece and signed.
    void signedEf(unsigned short fid, unsigned int length)
    {
        readEf(Phase::Reading, fid, length);
        sign(fid);
    }

    void stamp()
    {
        m_steps.push_back({Phase::Stamp, Kind::SelectEf, 0x050E, {}, "00 A4 02 0C 02 05 0E"});
        m_steps.push_back({Phase::Stamp, Kind::Update, 0x050E, {}, "00 D6 00 00 04"});
    }

    std::vector<Step> take() { return std::move(m_steps); }

  private:
    std::vector<Step> m_steps;
};

} // namespace

const sim::CardDescription& driverCard()
{
    static const sim::CardDescription description = sim::makeDriverCardG1();
    return description;
}

std::vector<Step> expectedSteps(const Counts& counts)
{
    Script script;
    script.readEf(Phase::Identification, 0x0002, 25, 0, true);
    script.readEf(Phase::Identification, 0x0005, 8, 0, true);
    script.selectName(Phase::Identification, "SMRDT");
    script.selectName(Phase::Identification, "TACHO");
    script.readEf(Phase::Identification, 0x0501, 3);

    script.selectName(Phase::Total, "TACHO", true);
    script.readEf(Phase::Total, 0x0501, 10);

    script.selectName(Phase::Reading, "TACHO");
    script.signedEf(0x0520, 143);
    script.signedEf(0x0501, 10);
    script.readEf(Phase::Reading, 0xC100, 194);
    script.readEf(Phase::Reading, 0xC108, 194);
    script.signedEf(0x050E, 4);
    script.signedEf(0x0521, 53);
    script.signedEf(0x0502, 6 * counts.events * 24);
    script.signedEf(0x0503, 2 * counts.faults * 24);
    script.readEf(Phase::Reading, 0x0504, 2, 0);
    script.readEf(Phase::Reading, 0x0504, 2, 2);
    script.readEf(Phase::Reading, 0x0504, counts.activityLength, 4);
    script.sign(0x0504);
    script.readEf(Phase::Reading, 0x0505, 2, 0);
    script.readEf(Phase::Reading, 0x0505, counts.vehicles * 31, 2);
    script.sign(0x0505);
    script.readEf(Phase::Reading, 0x0506, 1, 0);
    script.readEf(Phase::Reading, 0x0506, counts.places * 10, 1);
    script.sign(0x0506);
    script.signedEf(0x0507, 19);
    script.signedEf(0x0508, 46);
    script.signedEf(0x0522, 280);

    script.selectName(Phase::Stamp, "TACHO");
    script.stamp();
    return script.take();
}

std::vector<int> expectedProgress(const std::vector<Step>& steps, unsigned int total)
{
    std::vector<int> percentages;
    unsigned int moved = 0;
    for (const Step& step : steps) {
        if (step.phase != Phase::Reading || step.kind != Kind::Read)
            continue;
        moved += step.length;
        percentages.push_back(static_cast<int>(100 * moved / total));
    }
    return percentages;
}

Chain expectedChain(const Step& step, const Entry& cause)
{
    const std::string fid = lowerHex(step.fid);
    const auto entry = [&cause](const std::string& text) { return lib(text, cause.id); };

    Chain chain{cause};
    switch (step.kind) {
    case Kind::SelectName:
        chain.push_back(entry("ScSelectFile Failed: By Name\xC3\xBF" + step.name));
        break;
    case Kind::SelectEf:
        chain.push_back(entry("ScSelectFile Failed: By ID" + fid));
        chain.push_back(entry(
            (step.phase == Phase::Stamp ? "writeTo() ScSelectFile() Failed: ID "
                                        : "readFrom() ScSelectFile() Failed: ID ") +
            fid));
        break;
    case Kind::Read:
        if (cause.message != "ScReadFile: Received data size does not match exptectation")
            chain.push_back(entry("ScReadFile Failed "));
        chain.push_back(entry("readFrom() ScReadFile() Failed: ID " + fid));
        break;
    case Kind::Hash:
        chain.push_back(entry("ScPerformHashOfFile Failed "));
        chain.push_back(entry("readHash() ScPerformHashOfFile() Failed: ID" + fid));
        break;
    case Kind::Sign:
        chain.push_back(entry("ScComputeHashOfFile Failed "));
        chain.push_back(entry("readHash() ScComputeHashOfFile() Failed: ID" + fid));
        break;
    case Kind::Update:
        chain.push_back(entry("ScWriteFile Failed "));
        chain.push_back(entry("writeTo() ScReadFile() Failed: ID " + fid));
        break;
    }

    switch (step.phase) {
    case Phase::Identification:
        if (step.kind == Kind::SelectName)
            chain.push_back(entry("read() Identify Card Generation failed"));
        chain.push_back(lib("Failed at reading card information"));
        break;
    case Phase::Total:
        chain.push_back(
            entry("calcDataToRead(): Error reading SCardDriver G1 EF_Application_Identification:"));
        chain.push_back(lib("Failed calculating read data size"));
        break;
    case Phase::Reading:
        if (step.kind == Kind::SelectName)
            chain.insert(chain.begin(), entry("read() Select DF_Tachograph failed"));
        chain.push_back(lib("Failed reading card data"));
        break;
    case Phase::Stamp:
        chain.insert(
            chain.begin(), step.kind == Kind::SelectName
                               ? entry("read() Select DF_Tachograph failed")
                               : entry("updateLastCardDownload() writeTo() Failed: ID 50e"));
        chain.push_back(lib("Failed at post download task"));
        break;
    }
    return chain;
}

sim::Bytes expectedImage(const sim::CardDescription& card)
{
    const sim::ApplicationDescription& application = card.applications.front();
    sim::Bytes image;
    const auto record = [&image](int fid, std::uint8_t type, const sim::Bytes& payload) {
        sim::appendU16(image, static_cast<std::uint32_t>(fid));
        sim::appendU8(image, type);
        sim::appendU16(image, static_cast<std::uint32_t>(payload.size()));
        sim::appendBytes(image, payload);
    };
    const auto content = [](const std::vector<sim::FileDescription>& files, int fid) {
        return std::find_if(
                   files.begin(), files.end(),
                   [fid](const sim::FileDescription& file) { return file.fid == fid; })
            ->content;
    };

    for (const int fid : {0x0002, 0x0005})
        record(fid, 0x00, content(card.masterFiles, fid));
    for (const int fid :
         {0x0501, 0xC100, 0xC108, 0x0520, 0x050E, 0x0521, 0x0502, 0x0503, 0x0504, 0x0505, 0x0506, 0x0507,
          0x0508, 0x0522}) {
        const sim::Bytes data = content(application.files, fid);
        record(fid, 0x00, data);
        if (fid != 0xC100 && fid != 0xC108)
            record(fid, 0x01, application.signer->sign(data));
    }
    return image;
}

} // namespace test
