#include "DownloadScript.h"

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

const sim::Bytes& content(const std::vector<sim::FileDescription>& files, unsigned int fid)
{
    return std::find_if(
               files.begin(), files.end(),
               [fid](const sim::FileDescription& file) { return file.fid == fid; })
        ->content;
}

} // namespace

void Script::in(Phase phase, unsigned int generation)
{
    m_phase = phase;
    m_generation = generation;
}

void Script::selectName(const std::string& name, bool tolerated)
{
    std::string command = "00 A4 04 0C 06 FF";
    for (const char letter : name)
        command += ' ' + hex(static_cast<unsigned char>(letter), 2);
    Step step = next(Kind::SelectName, 0, command);
    step.name = name;
    step.tolerated = tolerated;
    m_steps.push_back(step);
}

void Script::readEf(unsigned short fid, unsigned int length, unsigned int offset, bool tolerated)
{
    const std::size_t begin = m_steps.size();
    m_steps.push_back(next(Kind::SelectEf, fid, "00 A4 02 0C 02 " + hexPair(fid)));
    if (length >= 32768)
        readLargePieces(fid, length, offset);
    else
        readPieces(fid, length, offset);
    for (std::size_t i = begin; i < m_steps.size(); ++i)
        m_steps[i].tolerated = tolerated;
}

void Script::readPieces(unsigned short fid, unsigned int length, unsigned int offset)
{
    for (unsigned int position = 0; position < length; position += 255) {
        const unsigned int chunk = std::min(length - position, 255u);
        Step step = next(Kind::Read, fid, "00 B0 " + hexPair(offset + position) + ' ' + hex(chunk, 2));
        step.length = chunk;
        m_steps.push_back(step);
    }
}

void Script::readLargePieces(unsigned short fid, unsigned int length, unsigned int offset)
{
    for (unsigned int position = 0; position < length; position += 253) {
        const unsigned int from = offset + position;
        Step step = next(
            Kind::ReadLarge, fid,
            from < 256 ? "00 B1 00 00 03 54 01 " + hex(from, 2) + " 00"
                       : "00 B1 00 00 04 54 02 " + hexPair(from) + " 00");
        step.length = std::min(length - position, 253u);
        m_steps.push_back(step);
    }
}

void Script::sign(unsigned short fid)
{
    m_steps.push_back(next(Kind::Hash, fid, "80 2A 90 00"));
    m_steps.push_back(next(Kind::Sign, fid, m_generation == 1 ? "00 2A 9E 9A 80" : "00 2A 9E 9A 40"));
}

void Script::signedEf(unsigned short fid, unsigned int length)
{
    readEf(fid, length);
    sign(fid);
}

void Script::cyclicEf(unsigned short fid, unsigned int pointerLength, unsigned int length)
{
    readEf(fid, pointerLength);
    readEf(fid, length, pointerLength);
    sign(fid);
}

void Script::activities(unsigned int length)
{
    readEf(0x0504, 2, 0);
    readEf(0x0504, 2, 2);
    readEf(0x0504, length, 4);
    sign(0x0504);
}

void Script::probe(unsigned short fid)
{
    const std::size_t begin = m_steps.size();
    readEf(fid, 5, 0, true);
    for (std::size_t i = begin; i < m_steps.size(); ++i)
        m_steps[i].probe = true;
}

void Script::certificate(unsigned short fid, unsigned int length)
{
    probe(fid);
    readEf(fid, length);
}

void Script::identify(unsigned int generation)
{
    in(Phase::Identification, 1);
    readEf(0x0002, 25, 0, true);
    readEf(0x0005, 8, 0, true);
    selectName("SMRDT");
    if (generation == 1)
        selectName("TACHO");
    in(Phase::Identification, generation);
    readEf(0x0501, 3);
}

void Script::update(const std::string& name, unsigned short fid, unsigned int length, const std::string& data)
{
    selectName(name);
    m_steps.push_back(next(Kind::SelectEf, fid, "00 A4 02 0C 02 " + hexPair(fid)));
    m_steps.push_back(next(Kind::Update, fid, "00 D6 00 00 " + hex(length, 2) + data));
}

Step Script::next(Kind kind, unsigned short fid, const std::string& command) const
{
    Step step;
    step.phase = m_phase;
    step.kind = kind;
    step.fid = fid;
    step.command = command;
    step.generation = m_generation;
    return step;
}

std::vector<std::string> commandsOf(const std::vector<Step>& steps)
{
    std::vector<std::string> commands;
    for (const Step& step : steps)
        commands.push_back(step.command);
    return commands;
}

std::vector<std::string> commandsOf(const sim::Card& card)
{
    std::vector<std::string> commands;
    for (const sim::Exchange& exchange : card.log())
        commands.push_back(sim::toHex(exchange.command));
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
        if (step.phase != Phase::Reading || (step.kind != Kind::Read && step.kind != Kind::ReadLarge) ||
            step.probe)
            continue;
        moved += step.length;
        percentages.push_back(static_cast<int>(100 * moved / total));
    }
    return percentages;
}

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
    case Kind::ReadLarge:
        chain.push_back(entry("ScReadLargeFile Failed "));
        chain.push_back(entry("readFrom() ScReadLargeFile() Failed: ID " + fid));
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

void ImageWriter::chip(const sim::CardDescription& card)
{
    for (const unsigned int fid : {0x0002u, 0x0005u})
        record(fid, m_dataType, content(card.masterFiles, fid));
}

void ImageWriter::ef(const sim::ApplicationDescription& application, unsigned int fid)
{
    dataOnly(application, fid);
    if (fid < 0xC100)
        record(
            fid, static_cast<std::uint8_t>(m_dataType + 1),
            application.signer->sign(content(application.files, fid)));
}

void ImageWriter::dataOnly(const sim::ApplicationDescription& application, unsigned int fid)
{
    record(fid, m_dataType, content(application.files, fid));
}

void ImageWriter::efsRead(
    const sim::ApplicationDescription& application, const std::vector<unsigned int>& readingOrder,
    const std::vector<unsigned int>& savingOrder, unsigned int firstNotRead)
{
    const auto missing = std::find(readingOrder.begin(), readingOrder.end(), firstNotRead);
    for (const unsigned int fid : savingOrder) {
        if (std::find(missing, readingOrder.end(), fid) != readingOrder.end())
            break;
        ef(application, fid);
    }
}

void ImageWriter::record(unsigned int fid, std::uint8_t type, const sim::Bytes& payload)
{
    sim::appendU16(bytes, fid);
    sim::appendU8(bytes, type);
    sim::appendU16(bytes, static_cast<std::uint32_t>(payload.size()));
    sim::appendBytes(bytes, payload);
}

sim::Bytes bytes(const QByteArray& image)
{
    return {image.begin(), image.end()};
}

bool hasFile(const sim::ApplicationDescription& application, unsigned int fid)
{
    return std::any_of(
        application.files.begin(), application.files.end(),
        [fid](const sim::FileDescription& file) { return file.fid == fid; });
}

} // namespace test
