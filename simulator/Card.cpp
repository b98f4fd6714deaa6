#include "Card.h"

#include <algorithm>
#include <cmath>
#include <thread>
#include <utility>

namespace sim {

namespace {

constexpr std::uint8_t ClassPlain = 0x00;
constexpr std::uint8_t ClassSecureMessaging = 0x0C;
constexpr std::uint8_t ClassHash = 0x80;

constexpr std::uint8_t InsVerify = 0x20;
constexpr std::uint8_t InsPerformSecurityOperation = 0x2A;
constexpr std::uint8_t InsGetChallenge = 0x84;
constexpr std::uint8_t InsSelect = 0xA4;
constexpr std::uint8_t InsReadBinary = 0xB0;
constexpr std::uint8_t InsReadBinaryOdd = 0xB1;
constexpr std::uint8_t InsUpdateBinary = 0xD6;

constexpr std::uint8_t SelectFileUnderCurrent = 0x02;
constexpr std::uint8_t SelectByAid = 0x04;
constexpr std::uint8_t NoAnswerExpected = 0x0C;
constexpr std::uint16_t MasterFileFid = 0x3F00;

constexpr std::uint8_t ShortIdForm = 0x80;
constexpr std::uint8_t ShortIdMask = 0x1F;
constexpr std::uint8_t ShortIdReserved = 0x60;

constexpr std::uint8_t OffsetObject = 0x54;
constexpr std::uint8_t DataObject = 0x53;

/// Le = 00 of a short APDU.
constexpr std::size_t LargestLe = 256;
constexpr std::size_t HeaderLength = 4;
constexpr std::size_t ChallengeLength = 8;
constexpr std::size_t PinLength = 8;

/// T=1 puts NAD, PCB, LEN and LRC around command and answer.
constexpr std::size_t FrameBytesPerExchange = 2 * 4;
/// Start bit, 8 data bits, parity and guard time, plus what a character waits on average.
constexpr double BitTimesPerByte = 11.5;

Bytes statusWord(std::uint32_t word)
{
    Bytes answer;
    appendU16(answer, word);
    return answer;
}

/// Why a file may not be read or written at an offset: the right first, as a card checks it; empty when it
/// may.
std::optional<std::uint16_t> refusal(Access right, const FileDescription& file, std::size_t offset)
{
    if (right != Access::Always) {
        return sw::SecurityNotSatisfied;
    }
    if (offset > file.content.size()) {
        return sw::WrongOffset;
    }
    return std::nullopt;
}

bool isSuccess(std::uint16_t word)
{
    return word == sw::Ok || word == 0x90E4;
}

void requireRefusal(std::uint16_t word)
{
    if (isSuccess(word)) {
        throw std::invalid_argument("a refusal with a success word");
    }
}

void check(const Switches& switches)
{
    for (const auto& [aid, word] : switches.selectAidRefused) {
        requireRefusal(word);
    }
    for (const auto& refusal :
         {switches.selectMasterFileRefused, switches.oddReadRefused, switches.hashRefused,
          switches.signRefused}) {
        if (refusal) {
            requireRefusal(*refusal);
        }
    }
}

void check(const std::vector<FileDescription>& files)
{
    std::set<std::uint16_t> fids;
    std::set<std::uint8_t> sfids;
    for (const FileDescription& file : files) {
        if (!fids.insert(file.fid).second) {
            throw std::invalid_argument("a file identifier twice in one directory");
        }
        if (file.sfid > 30 || (file.sfid != 0 && !sfids.insert(file.sfid).second)) {
            throw std::invalid_argument("a short identifier out of range or twice in one directory");
        }
    }
}

void check(const CardDescription& description)
{
    check(description.switches);
    check(description.masterFiles);
    std::set<Bytes> aids;
    for (const ApplicationDescription& application : description.applications) {
        if (application.aid.empty() || !aids.insert(application.aid).second) {
            throw std::invalid_argument("an application identifier empty or twice");
        }
        check(application.files);
    }
}

/// Pointer to the content of an EF, const as the description is; null when there is none.
template <typename Description>
auto findContent(Description& description, const Bytes& aid, std::uint16_t fid)
    -> decltype(&description.masterFiles.front().content)
{
    auto* files = aid.empty() ? &description.masterFiles : nullptr;
    for (auto& application : description.applications) {
        if (application.aid == aid) {
            files = &application.files;
        }
    }
    if (files) {
        for (auto& file : *files) {
            if (file.fid == fid) {
                return &file.content;
            }
        }
    }
    return nullptr;
}

/// The offset in the data field of the odd READ BINARY: object 54 with the fewest bytes that hold it.
std::optional<std::size_t> offsetFrom(const Bytes& object)
{
    if (object.size() == 3 && object[0] == OffsetObject && object[1] == 1) {
        return object[2];
    }
    if (object.size() == 4 && object[0] == OffsetObject && object[1] == 2 && object[2] != 0) {
        return readU16(object, 2);
    }
    return std::nullopt;
}

/// Tag and length before `length` bytes of data in the answer of the odd READ BINARY.
Bytes dataObjectHeader(std::size_t length, Switches::OddHeader form)
{
    Bytes header = {DataObject};
    const auto value = static_cast<std::uint32_t>(length);
    if (form == Switches::OddHeader::TwoBytes || length > 0xFF) {
        header.push_back(0x82);
        appendU16(header, value);
    } else {
        if (length > 0x7F) {
            header.push_back(0x81);
        }
        appendU8(header, value);
    }
    return header;
}

/// Most data that fit, with their header, into an answer field of `field` bytes.
std::size_t dataThatFit(std::size_t field, Switches::OddHeader form)
{
    std::size_t length = field;
    while (length > 0 && dataObjectHeader(length, form).size() + length > field) {
        --length;
    }
    return length;
}

} // namespace

Fault::Fault(Kind kind, std::size_t length, Bytes answer)
    : m_kind(kind), m_length(length), m_answer(std::move(answer))
{}

Fault Fault::status(std::uint16_t word)
{
    return Fault(Kind::Raw, 0, statusWord(word));
}

Fault Fault::shortAnswer(std::size_t length)
{
    return Fault(Kind::Short, length);
}

Fault Fault::longAnswer(std::size_t extra)
{
    return Fault(Kind::Long, extra);
}

Fault Fault::changedAnswer()
{
    return Fault(Kind::Changed);
}

Fault Fault::raw(Bytes answer)
{
    return Fault(Kind::Raw, 0, std::move(answer));
}

Fault Fault::pulled()
{
    return Fault(Kind::Pulled);
}

std::chrono::nanoseconds byteTime(std::uint8_t ta1, double clockHz)
{
    // ISO 7816-3, tables 7 and 8; 0 = reserved.
    static constexpr int ClockRates[16] = {372, 372, 558, 744, 1116, 1488, 1860,
                                           0,   0,   512, 768, 1024, 1536, 2048};
    static constexpr int BitRateFactors[16] = {0, 1, 2, 4, 8, 16, 32, 64, 12, 20};
    const int clockRate = ClockRates[ta1 >> 4];
    const int factor = BitRateFactors[ta1 & 0x0F];
    if (clockRate == 0 || factor == 0) {
        throw std::invalid_argument("TA1 is a reserved value");
    }
    return byteTimeAtBitRate(clockHz * factor / clockRate);
}

std::chrono::nanoseconds byteTimeAtBitRate(double bitsPerSecond)
{
    if (!(bitsPerSecond >= 1.0)) {
        throw std::invalid_argument("a bit rate below 1 bit/s");
    }
    return std::chrono::nanoseconds(std::llround(BitTimesPerByte * 1.0e9 / bitsPerSecond));
}

struct Card::Command
{
    std::uint8_t cla = 0;
    std::uint8_t ins = 0;
    std::uint8_t p1 = 0;
    std::uint8_t p2 = 0;
    Bytes data;
    /// 1..256; unset: no Le byte.
    std::optional<std::size_t> le;
    /// False: length bytes and length of the command contradict each other, or an extended length.
    bool wellFormed = false;

    std::uint16_t p1p2() const { return static_cast<std::uint16_t>(p1 << 8 | p2); }

    /// The four cases of ISO 7816-3, short form. Takes at least a header.
    explicit Command(const Bytes& bytes) : cla(bytes[0]), ins(bytes[1]), p1(bytes[2]), p2(bytes[3])
    {
        const std::size_t body = bytes.size() - HeaderLength;
        if (body == 0) {
            wellFormed = true;
            return;
        }
        const std::size_t first = bytes[HeaderLength];
        if (body == 1) {
            le = first == 0 ? LargestLe : first;
            wellFormed = true;
            return;
        }
        if (first == 0 || body < 1 + first || body > 2 + first) {
            return;
        }
        data = slice(bytes, HeaderLength + 1, first);
        if (body == 2 + first) {
            le = bytes.back() == 0 ? LargestLe : bytes.back();
        }
        wellFormed = true;
    }
};

Card::Card(CardDescription description) : m_description(std::move(description))
{
    check(m_description);
}

void Card::reset()
{
    enter(nullptr);
}

void Card::enter(ApplicationDescription* application)
{
    m_application = application;
    m_file = nullptr;
    m_hash.reset();
}

void Card::pull()
{
    m_inserted = false;
}

void Card::insert()
{
    reset();
    m_inserted = true;
}

bool Card::isInserted() const
{
    return m_inserted;
}

void Card::failAt(std::size_t commandIndex, Fault fault)
{
    m_faults.insert_or_assign(commandIndex, std::move(fault));
}

void Card::clearFaults()
{
    m_faults.clear();
}

std::size_t Card::commandCount() const
{
    return m_commandCount;
}

void Card::clearLog()
{
    m_log.clear();
    m_commandCount = 0;
}

void Card::setLogging(bool on)
{
    m_logging = on;
}

void Card::setByteDelay(std::chrono::nanoseconds perByte)
{
    m_byteDelay = perByte;
}

const Bytes* Card::file(const Bytes& aid, std::uint16_t fid) const
{
    return findContent(m_description, aid, fid);
}

void Card::setFile(const Bytes& aid, std::uint16_t fid, Bytes content)
{
    Bytes* stored = findContent(m_description, aid, fid);
    if (!stored) {
        throw std::invalid_argument("no such file on the card");
    }
    *stored = std::move(content);
}

void Card::setSwitches(Switches switches)
{
    check(switches);
    m_description.switches = std::move(switches);
}

std::optional<Bytes> Card::transmit(const Bytes& command)
{
    if (!m_inserted) {
        return std::nullopt;
    }
    const std::size_t index = m_commandCount++;
    std::optional<Fault> fault;
    if (const auto found = m_faults.find(index); found != m_faults.end()) {
        fault = std::move(found->second);
        m_faults.erase(found);
    }

    Bytes answer;
    if (!fault) {
        answer = execute(command);
    } else if (fault->m_kind == Fault::Kind::Raw) {
        answer = std::move(fault->m_answer);
    } else if (fault->m_kind == Fault::Kind::Pulled) {
        pull();
    } else {
        answer = execute(command);
        const std::size_t length = answer.size() - 2;
        const auto statusAt = answer.begin() + static_cast<Bytes::difference_type>(length);
        if (fault->m_kind == Fault::Kind::Long) {
            answer.insert(statusAt, fault->m_length, 0xEE);
        } else if (fault->m_kind == Fault::Kind::Changed) {
            if (length > 0) {
                answer.front() ^= 0x01;
            }
        } else if (fault->m_length < length) {
            answer.erase(answer.begin() + static_cast<Bytes::difference_type>(fault->m_length), statusAt);
        }
    }

    if (m_logging) {
        m_log.push_back({command, answer});
    }
    if (!m_inserted) {
        return std::nullopt;
    }
    if (m_byteDelay.count() > 0) {
        const std::size_t bytes = command.size() + answer.size() + FrameBytesPerExchange;
        std::this_thread::sleep_for(m_byteDelay * static_cast<std::chrono::nanoseconds::rep>(bytes));
    }
    return answer;
}

Bytes Card::execute(const Bytes& bytes)
{
    if (bytes.size() < HeaderLength) {
        return statusWord(sw::WrongLength);
    }
    const Command command(bytes);
    if (command.cla == ClassSecureMessaging) {
        // Without mutual authentication there is no key to check the command with.
        return statusWord(sw::ReferenceNotFound);
    }
    if (command.cla != ClassPlain && command.cla != ClassHash) {
        return statusWord(sw::ClassUnknown);
    }
    if (command.cla == ClassHash) {
        return command.ins == InsPerformSecurityOperation ? performHash(command)
                                                          : statusWord(sw::InstructionUnknown);
    }
    switch (command.ins) {
    case InsSelect:
        return select(command);
    case InsReadBinary:
        return readBinary(command);
    case InsReadBinaryOdd:
        return readBinaryOdd(command);
    case InsUpdateBinary:
        return updateBinary(command);
    case InsPerformSecurityOperation:
        return computeSignature(command);
    case InsGetChallenge:
        return getChallenge(command);
    case InsVerify:
        return verify(command);
    default:
        return statusWord(sw::InstructionUnknown);
    }
}

Bytes Card::success(Bytes data) const
{
    appendU16(data, m_description.switches.successWord);
    return data;
}

Bytes Card::readAnswer(const FileDescription& file, Bytes data) const
{
    if (m_description.switches.integrityErrors.count(file.fid) != 0) {
        appendU16(data, sw::IntegrityError);
        return data;
    }
    return success(std::move(data));
}

Bytes Card::beyondEnd(std::size_t bytesLeft) const
{
    if (m_description.switches.beyondEnd == Switches::BeyondEnd::Refuse) {
        return statusWord(sw::WrongLength);
    }
    return statusWord(sw::WrongLe | static_cast<std::uint32_t>(bytesLeft & 0xFF));
}

std::vector<FileDescription>& Card::currentFiles()
{
    return m_application ? m_application->files : m_description.masterFiles;
}

Bytes Card::select(const Command& command)
{
    if (command.p2 != NoAnswerExpected) {
        return statusWord(sw::WrongParameters);
    }
    // In T=1 a selection without answer must not carry Le.
    if (!command.wellFormed || command.data.empty() || command.le) {
        return statusWord(sw::WrongLength);
    }
    switch (command.p1) {
    case SelectByAid:
        return selectApplication(command);
    case SelectFileUnderCurrent:
        return selectFile(command);
    case 0x00:
        return selectMasterFile(command);
    default:
        return statusWord(sw::WrongParameters);
    }
}

Bytes Card::selectApplication(const Command& command)
{
    const auto& refused = m_description.switches.selectAidRefused;
    if (const auto found = refused.find(command.data); found != refused.end()) {
        return statusWord(found->second);
    }
    for (ApplicationDescription& application : m_description.applications) {
        if (application.aid == command.data) {
            enter(&application);
            return success();
        }
    }
    return statusWord(sw::FileNotFound);
}

Bytes Card::selectFile(const Command& command)
{
    if (command.data.size() != 2) {
        return statusWord(sw::WrongLength);
    }
    const std::uint16_t fid = readU16(command.data, 0);
    for (FileDescription& file : currentFiles()) {
        if (file.fid == fid) {
            if (file.select != Access::Always) {
                return statusWord(sw::SecurityNotSatisfied);
            }
            m_file = &file;
            return success();
        }
    }
    return statusWord(sw::FileNotFound);
}

Bytes Card::selectMasterFile(const Command& command)
{
    if (const auto& refused = m_description.switches.selectMasterFileRefused) {
        return statusWord(*refused);
    }
    if (command.data.size() != 2) {
        return statusWord(sw::WrongLength);
    }
    if (readU16(command.data, 0) != MasterFileFid) {
        return statusWord(sw::FileNotFound);
    }
    enter(nullptr);
    return success();
}

/// The EF a READ or UPDATE BINARY means, by short identifier or the current one; null: `error` says why not.
FileDescription* Card::addressedFile(const Command& command, std::size_t& offset, std::uint16_t& error)
{
    if ((command.p1 & ShortIdForm) == 0) {
        offset = command.p1p2();
        error = sw::NoCurrentFile;
        return m_file;
    }
    if ((command.p1 & ShortIdReserved) != 0) {
        error = sw::WrongParameters;
        return nullptr;
    }
    const std::uint8_t sfid = command.p1 & ShortIdMask;
    for (FileDescription& file : currentFiles()) {
        if (sfid != 0 && file.sfid == sfid) {
            if (file.select != Access::Always) {
                error = sw::SecurityNotSatisfied;
                return nullptr;
            }
            offset = command.p2;
            return &file;
        }
    }
    error = sw::FileNotFound;
    return nullptr;
}

Bytes Card::readBinary(const Command& command)
{
    if (!command.wellFormed || !command.data.empty() || !command.le) {
        return statusWord(sw::WrongLength);
    }
    std::size_t offset = 0;
    std::uint16_t error = 0;
    FileDescription* file = addressedFile(command, offset, error);
    if (!file) {
        return statusWord(error);
    }
    if (const std::optional<std::uint16_t> refused = refusal(file->read, *file, offset)) {
        return statusWord(*refused);
    }
    const std::size_t left = file->content.size() - offset;
    if (*command.le > left) {
        return beyondEnd(left);
    }
    m_file = file;
    return readAnswer(*file, slice(file->content, offset, *command.le));
}

Bytes Card::readBinaryOdd(const Command& command)
{
    const Switches& switches = m_description.switches;
    if (switches.oddReadRefused) {
        return statusWord(*switches.oddReadRefused);
    }
    if (command.p1p2() != 0) {
        return statusWord(sw::WrongParameters);
    }
    // Le counts the whole answer object: one byte would not even hold its header.
    if (!command.wellFormed || command.data.empty() || !command.le || *command.le == 1) {
        return statusWord(sw::WrongLength);
    }
    const std::optional<std::size_t> offset = offsetFrom(command.data);
    if (!offset) {
        return statusWord(sw::WrongData);
    }
    if (!m_file) {
        return statusWord(sw::NoCurrentFile);
    }
    if (const std::optional<std::uint16_t> refused = refusal(m_file->read, *m_file, *offset)) {
        return statusWord(*refused);
    }
    const std::size_t left = m_file->content.size() - *offset;
    std::size_t length = dataThatFit(*command.le, switches.oddHeader);
    if (length > left) {
        const bool takesRest =
            *command.le == LargestLe && switches.oddEnd == Switches::OddEnd::Rest && left > 0;
        if (!takesRest) {
            return beyondEnd(left == 0 ? 0 : dataObjectHeader(left, switches.oddHeader).size() + left);
        }
        length = left;
    }
    Bytes answer = dataObjectHeader(length, switches.oddHeader);
    appendBytes(answer, slice(m_file->content, *offset, length));
    return readAnswer(*m_file, std::move(answer));
}

Bytes Card::updateBinary(const Command& command)
{
    if (!command.wellFormed || command.data.empty() || command.le) {
        return statusWord(sw::WrongLength);
    }
    std::size_t offset = 0;
    std::uint16_t error = 0;
    FileDescription* file = addressedFile(command, offset, error);
    if (!file) {
        return statusWord(error);
    }
    if (const std::optional<std::uint16_t> refused = refusal(file->update, *file, offset)) {
        return statusWord(*refused);
    }
    if (command.data.size() > file->content.size() - offset) {
        return statusWord(sw::WrongLength);
    }
    if (m_description.switches.writesFail) {
        return statusWord(sw::WriteFailed);
    }
    std::copy(
        command.data.begin(), command.data.end(),
        file->content.begin() + static_cast<Bytes::difference_type>(offset));
    m_file = file;
    return success();
}

Bytes Card::performHash(const Command& command)
{
    if (command.p1p2() != 0x9000) {
        return statusWord(sw::WrongParameters);
    }
    if (!command.wellFormed || !command.data.empty() || command.le) {
        return statusWord(sw::WrongLength);
    }
    if (m_description.switches.hashRefused) {
        return statusWord(*m_description.switches.hashRefused);
    }
    if (!m_file) {
        return statusWord(sw::NoCurrentFile);
    }
    if (!m_application || !m_application->signer || !m_file->hashable) {
        return statusWord(sw::ConditionsNotSatisfied);
    }
    m_hash = m_application->signer->hash(m_file->content);
    return success();
}

Bytes Card::computeSignature(const Command& command)
{
    if (command.p1p2() != 0x9E9A) {
        return statusWord(sw::WrongParameters);
    }
    if (!command.wellFormed || !command.data.empty() || !command.le) {
        return statusWord(sw::WrongLength);
    }
    if (m_description.switches.signRefused) {
        return statusWord(*m_description.switches.signRefused);
    }
    if (!m_hash) {
        return statusWord(sw::ConditionsNotSatisfied);
    }
    // A hash is only ever stored in an application with a signer, and dropped when the application is left.
    const Signer& signer = *m_application->signer;
    const bool whole = *command.le == LargestLe && m_description.switches.signatureWithLeZero;
    if (!whole && *command.le != signer.signatureLength()) {
        return statusWord(sw::WrongLength);
    }
    return success(signer.signHash(*m_hash));
}

Bytes Card::getChallenge(const Command& command)
{
    if (command.p1p2() != 0) {
        return statusWord(sw::WrongParameters);
    }
    if (!command.wellFormed || !command.data.empty() || command.le != ChallengeLength) {
        return statusWord(sw::WrongLength);
    }
    Bytes challenge;
    while (challenge.size() < ChallengeLength) {
        appendU32(challenge, static_cast<std::uint32_t>(m_challenges()));
    }
    return success(std::move(challenge));
}

Bytes Card::verify(const Command& command) const
{
    if (command.p1p2() != 0) {
        return statusWord(sw::WrongParameters);
    }
    if (!command.wellFormed || command.data.size() != PinLength || command.le) {
        return statusWord(sw::WrongLength);
    }
    // Only workshop cards have a PIN.
    return statusWord(sw::ReferenceNotFound);
}

} // namespace sim
