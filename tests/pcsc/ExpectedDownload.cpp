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
    /// All that follows is done in this phase, on the application of this generation.
    void in(Phase phase, unsigned int generation)
    {
        m_phase = phase;
        m_generation = generation;
    }

    void selectName(const std::string& name, bool tolerated = false)
    {
        std::string command = "00 A4 04 0C 06 FF";
        for (const char letter : name)
            command += ' ' + hex(static_cast<unsigned char>(letter), 2);
        Step step = next(Kind::SelectName, 0, command);
        step.name = name;
        step.tolerated = tolerated;
        m_steps.push_back(step);
    }

    /// SELECT, and READ BINARY in pieces of at most 255 bytes.
    void readEf(unsigned short fid, unsigned int length, unsigned int offset = 0, bool tolerated = false)
    {
        const std::size_t begin = m_steps.size();
        m_steps.push_back(next(Kind::SelectEf, fid, "00 A4 02 0C 02 " + hexPair(fid)));
        for (unsigned int position = 0; position < length; position += 255) {
            const unsigned int chunk = std::min(length - position, 255u);
            Step step = next(Kind::Read, fid, "00 B0 " + hexPair(offset + position) + ' ' + hex(chunk, 2));
            step.length = chunk;
            m_steps.push_back(step);
        }
        for (std::size_t i = begin; i < m_steps.size(); ++i)
            m_steps[i].tolerated = tolerated;
    }

    void sign(unsigned short fid)
    {
        m_steps.push_back(next(Kind::Hash, fid, "80 2A 90 00"));
        m_steps.push_back(next(Kind::Sign, fid, m_generation == 1 ? "00 2A 9E 9A 80" : "00 2A 9E 9A 40"));
    }

    /// An EF of the download that is read as one piece and signed.
    void signedEf(unsigned short fid, unsigned int length)
    {
        readEf(fid, length);
        sign(fid);
    }

    /// An EF of a pointer and records behind it, signed.
    void cyclicEf(unsigned short fid, unsigned int pointerLength, unsigned int length)
    {
        readEf(fid, pointerLength);
        readEf(fid, length, pointerLength);
        sign(fid);
    }

    void activities(unsigned int length)
    {
        readEf(0x0504, 2, 0);
        readEf(0x0504, 2, 2);
        readEf(0x0504, length, 4);
        sign(0x0504);
    }

    /// The first bytes of a certificate.
    void probe(unsigned short fid)
    {
        const std::size_t begin = m_steps.size();
        readEf(fid, 5, 0, true);
        for (std::size_t i = begin; i < m_steps.size(); ++i)
            m_steps[i].probe = true;
    }

    void stamp(const std::string& name)
    {
        selectName(name);
        m_steps.push_back(next(Kind::SelectEf, 0x050E, "00 A4 02 0C 02 05 0E"));
        m_steps.push_back(next(Kind::Update, 0x050E, "00 D6 00 00 04"));
    }

    std::vector<Step> take() { return std::move(m_steps); }

  private:
    Step next(Kind kind, unsigned short fid, const std::string& command) const
    {
        Step step;
        step.phase = m_phase;
        step.kind = kind;
        step.fid = fid;
        step.command = command;
        step.generation = m_generation;
        return step;
    }

    Phase m_phase = Phase::Identification;
    unsigned int m_generation = 1;
    std::vector<Step> m_steps;
};

void identifyChip(Script& script)
{
    script.readEf(0x0002, 25, 0, true);
    script.readEf(0x0005, 8, 0, true);
    script.selectName("SMRDT");
}

void totalOfFirst(Script& script)
{
    script.in(Phase::Total, 1);
    script.selectName("TACHO", true);
    script.readEf(0x0501, 10);
}

void readFirst(Script& script, const Counts& counts)
{
    script.in(Phase::Reading, 1);
    script.selectName("TACHO");
    script.signedEf(0x0520, 143);
    script.signedEf(0x0501, 10);
    script.readEf(0xC100, 194);
    script.readEf(0xC108, 194);
    script.signedEf(0x050E, 4);
    script.signedEf(0x0521, 53);
    script.signedEf(0x0502, 6 * counts.events * 24);
    script.signedEf(0x0503, 2 * counts.faults * 24);
    script.activities(counts.activityLength);
    script.cyclicEf(0x0505, 2, counts.vehicles * 31);
    script.cyclicEf(0x0506, 1, counts.places * 10);
    script.signedEf(0x0507, 19);
    script.signedEf(0x0508, 46);
    script.signedEf(0x0522, 280);
}

/// Entries of the card commands and of the reader that used them.
Chain chainOfReader(const Step& step, const Entry& cause)
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
    return chain;
}

/// Behind identification, reading and stamp the entries are the same for all cards.
Chain chainOfDownload(const Step& step, const Entry& cause, Chain chain)
{
    const auto entry = [&cause](const std::string& text) { return lib(text, cause.id); };
    switch (step.phase) {
    case Phase::Identification:
        if (step.kind == Kind::SelectName)
            chain.push_back(entry("read() Identify Card Generation failed"));
        chain.push_back(lib("Failed at reading card information"));
        break;
    case Phase::Total:
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

class ImageWriter
{
  public:
    explicit ImageWriter(unsigned int generation) : m_dataType(generation == 1 ? 0x00 : 0x02) {}

    /// EF_ICC and EF_IC.
    void chip(const sim::CardDescription& card)
    {
        for (const unsigned int fid : {0x0002u, 0x0005u})
            record(fid, m_dataType, content(card.masterFiles, fid));
    }

    /// Data, and the card's signature unless the EF is a certificate.
    void ef(const sim::ApplicationDescription& application, unsigned int fid)
    {
        const sim::Bytes data = content(application.files, fid);
        record(fid, m_dataType, data);
        if (fid < 0xC100)
            record(fid, static_cast<std::uint8_t>(m_dataType + 1), application.signer->sign(data));
    }

    sim::Bytes bytes;

  private:
    void record(unsigned int fid, std::uint8_t type, const sim::Bytes& payload)
    {
        sim::appendU16(bytes, fid);
        sim::appendU8(bytes, type);
        sim::appendU16(bytes, static_cast<std::uint32_t>(payload.size()));
        sim::appendBytes(bytes, payload);
    }

    static sim::Bytes content(const std::vector<sim::FileDescription>& files, unsigned int fid)
    {
        return std::find_if(
                   files.begin(), files.end(),
                   [fid](const sim::FileDescription& file) { return file.fid == fid; })
            ->content;
    }

    std::uint8_t m_dataType;
};

constexpr unsigned int firstReadingOrder[] = {0x0520, 0x0501, 0xC100, 0xC108, 0x050E, 0x0521, 0x0502,
                                              0x0503, 0x0504, 0x0505, 0x0506, 0x0507, 0x0508, 0x0522};
constexpr unsigned int firstSavingOrder[] = {0x0501, 0xC100, 0xC108, 0x0520, 0x050E, 0x0521, 0x0502,
                                             0x0503, 0x0504, 0x0505, 0x0506, 0x0507, 0x0508, 0x0522};

/// Of the second generation.
constexpr unsigned short certificates[] = {0xC100, 0xC101, 0xC108, 0xC109};

sim::Bytes firstImage(const sim::CardDescription& card, unsigned int firstNotRead)
{
    const auto* const missing =
        std::find(std::begin(firstReadingOrder), std::end(firstReadingOrder), firstNotRead);
    ImageWriter image(1);
    image.chip(card);
    for (const unsigned int fid : firstSavingOrder) {
        if (std::find(missing, std::end(firstReadingOrder), fid) != std::end(firstReadingOrder))
            break;
        image.ef(card.applications.front(), fid);
    }
    return image.bytes;
}

} // namespace

const sim::CardDescription& driverCard()
{
    static const sim::CardDescription description = sim::makeDriverCardG1();
    return description;
}

const sim::CardDescription& driverCardG2()
{
    static const sim::CardDescription description = sim::makeDriverCardG2();
    return description;
}

const sim::CardDescription& driverCardV2()
{
    static const sim::CardDescription description = [] {
        sim::DriverParametersG2 parameters;
        parameters.version2 = true;
        return sim::makeDriverCardG2(parameters);
    }();
    return description;
}

std::vector<Step> expectedSteps(const Counts& counts)
{
    Script script;
    identifyChip(script);
    script.selectName("TACHO");
    script.readEf(0x0501, 3);
    totalOfFirst(script);
    readFirst(script, counts);
    script.in(Phase::Stamp, 1);
    script.stamp("TACHO");
    return script.take();
}

std::vector<Step> expectedStepsG2(const CountsG2& counts, const Counts& first)
{
    Script script;
    identifyChip(script);
    script.in(Phase::Identification, 2);
    script.readEf(0x0501, 3);

    totalOfFirst(script);
    script.in(Phase::Total, 2);
    script.selectName("SMRDT");
    script.readEf(0x0501, 17);
    for (const unsigned short fid : certificates)
        script.probe(fid);
    if (counts.version2)
        script.readEf(0x0525, 10);

    readFirst(script, first);
    script.in(Phase::Reading, 2);
    script.selectName("SMRDT");
    script.signedEf(0x0520, 143);
    script.signedEf(0x0501, 17);
    for (const unsigned short fid : certificates) {
        script.probe(fid);
        script.readEf(fid, counts.certificateLength);
    }
    script.signedEf(0x050E, 4);
    script.signedEf(0x0521, 53);
    script.signedEf(0x0502, 11 * counts.events * 24);
    script.signedEf(0x0503, 2 * counts.faults * 24);
    script.activities(counts.activityLength);
    script.cyclicEf(0x0505, 2, counts.vehicles * 48);
    script.cyclicEf(0x0506, 2, counts.places * 21);
    script.signedEf(0x0507, 19);
    script.signedEf(0x0508, 46);
    script.cyclicEf(0x0522, 2, counts.specificConditions * 5);
    script.cyclicEf(0x0523, 2, counts.vehicleUnits * 10);
    script.cyclicEf(0x0524, 2, counts.gnssPlaces * 18);
    if (counts.version2) {
        script.signedEf(0x0525, 10);
        script.cyclicEf(0x0526, 2, counts.places * 5);
        script.cyclicEf(0x0527, 2, counts.gnssPlaces * 5);
        script.cyclicEf(0x0528, 2, counts.borderCrossings * 17);
        script.cyclicEf(0x0529, 2, counts.loadUnloadOperations * 20);
        script.cyclicEf(0x0530, 2, counts.loadTypeEntries * 5);
    }

    script.in(Phase::Stamp, 1);
    script.stamp("TACHO");
    script.in(Phase::Stamp, 2);
    script.stamp("SMRDT");
    return script.take();
}

std::vector<std::string> commandsOf(const std::vector<Step>& steps)
{
    std::vector<std::string> commands;
    for (const Step& step : steps)
        commands.push_back(step.command);
    return commands;
}

std::vector<std::string> withoutStampTimes(std::vector<std::string> sent)
{
    const std::string header = "00 D6 00 00 04";
    for (std::string& command : sent)
        if (command.rfind(header, 0) == 0)
            command = header;
    return sent;
}

std::vector<int> expectedProgress(const std::vector<Step>& steps, unsigned int total, unsigned int before)
{
    std::vector<int> percentages;
    unsigned int moved = before;
    for (const Step& step : steps) {
        if (step.phase != Phase::Reading || step.kind != Kind::Read || step.probe)
            continue;
        moved += step.length;
        percentages.push_back(static_cast<int>(100 * moved / total));
    }
    return percentages;
}

Chain expectedChain(const Step& step, const Entry& cause)
{
    Chain chain = chainOfReader(step, cause);
    if (step.phase == Phase::Total)
        chain.push_back(
            lib("calcDataToRead(): Error reading SCardDriver G1 EF_Application_Identification:", cause.id));
    return chainOfDownload(step, cause, std::move(chain));
}

Chain expectedChainG2(const Step& step, const Entry& cause)
{
    Chain chain = chainOfReader(step, cause);
    if (step.phase == Phase::Total) {
        std::string text = "calcDataToRead(): Error reading SCardDriver G2 EF_Application_Identification:";
        if (step.generation == 1) {
            chain.push_back(lib(
                "calcDataToRead(): Error reading SCardDriver G1 EF_Application_Identification:", cause.id));
            text = "calcDataToRead() failed to call SCardDriverG1::calcDataToRead()";
        } else if (step.fid == 0x0525) {
            text = "calcDataToRead(): Error reading SCardDriver G2 EF_Application_Identification_V2:";
        }
        chain.insert(chain.begin(), lib(text, cause.id));
    }
    return chainOfDownload(step, cause, std::move(chain));
}

sim::Bytes bytes(const QByteArray& image)
{
    return {image.begin(), image.end()};
}

sim::Bytes expectedImage(const sim::CardDescription& card)
{
    return firstImage(card, 0);
}

sim::Bytes expectedImageG2(const sim::CardDescription& card, unsigned int firstNotRead)
{
    const sim::ApplicationDescription& second = card.applications.at(1);
    ImageWriter image(2);
    image.bytes = firstImage(card, firstNotRead);
    image.chip(card);
    for (const unsigned int fid :
         {0x0501, 0xC100, 0xC101, 0xC108, 0xC109, 0x0520, 0x050E, 0x0521, 0x0502, 0x0503, 0x0504, 0x0505,
          0x0506, 0x0507, 0x0508, 0x0522, 0x0523, 0x0524})
        image.ef(second, fid);
    const bool version2 =
        std::any_of(second.files.begin(), second.files.end(), [](const sim::FileDescription& file) {
            return file.fid == 0x0525;
        });
    if (version2)
        for (const unsigned int fid : {0x0525, 0x0526, 0x0527, 0x0528, 0x0529, 0x0530})
            image.ef(second, fid);
    return image.bytes;
}

} // namespace test
