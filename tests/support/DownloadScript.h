#pragma once

#include "ErrorChain.h"

#include <simulator/Card.h>

#include <QByteArray>

#include <cstdint>
#include <string>
#include <vector>

// What a download looks like from the card's side, written down apart from the library: the commands in their
// order, what each belongs to, what a failure of it must be called, and the image. Here is what all kinds of
// cards have in common.

namespace test {

enum class Phase
{
    Identification,
    Total,
    Reading,
    Stamp
};

enum class Kind
{
    SelectName,
    SelectEf,
    Read,
    ReadLarge,
    Hash,
    Sign,
    Update
};

/// One command of a download.
struct Step
{
    Phase phase = Phase::Identification;
    Kind kind = Kind::SelectEf;
    unsigned short fid = 0;  ///< 0 for SelectName
    std::string name;        ///< letters of the application, for SelectName
    std::string command;     ///< in hexadecimal; of a stamp with a time only the header
    unsigned int length = 0; ///< bytes of a Read or ReadLarge

    /// A failure here does not end the download.
    bool tolerated = false;

    unsigned int generation = 1; ///< whose application the command is for
    bool probe = false;          ///< looks how long a certificate is
};

/// Writes steps down, one behind the other.
class Script
{
  public:
    /// All that follows is done in this phase, on the application of this generation.
    void in(Phase phase, unsigned int generation);

    void selectName(const std::string& name, bool tolerated = false);

    /// SELECT, and READ BINARY in pieces of at most 255 bytes; of 32,768 bytes and more with the odd
    /// instruction, of which each answer has room for 253.
    void readEf(unsigned short fid, unsigned int length, unsigned int offset = 0, bool tolerated = false);

    void sign(unsigned short fid);

    /// An EF of the download that is read as one piece and signed.
    void signedEf(unsigned short fid, unsigned int length);

    /// An EF of a pointer and records behind it, signed.
    void cyclicEf(unsigned short fid, unsigned int pointerLength, unsigned int length);

    void activities(unsigned int length);

    /// The first bytes of a certificate.
    void probe(unsigned short fid);

    /// A certificate of the second generation.
    void certificate(unsigned short fid, unsigned int length);

    /// EF_ICC, EF_IC, and which generation and type the card is of.
    void identify(unsigned int generation);

    /// Select the application, select the EF and write @p data to it; a time is not known before.
    void update(const std::string& name, unsigned short fid, unsigned int length, const std::string& data);

    std::vector<Step> take() { return std::move(m_steps); }

  private:
    Step next(Kind kind, unsigned short fid, const std::string& command) const;
    void readPieces(unsigned short fid, unsigned int length, unsigned int offset);
    void readLargePieces(unsigned short fid, unsigned int length, unsigned int offset);

    Phase m_phase = Phase::Identification;
    unsigned int m_generation = 1;
    std::vector<Step> m_steps;
};

/// The commands of @p steps, those that @p card has got, and these without the time behind each stamp's
/// header.
std::vector<std::string> commandsOf(const std::vector<Step>& steps);
std::vector<std::string> commandsOf(const sim::Card& card);
std::vector<std::string> withoutStampTimes(std::vector<std::string> sent);

/// Percentages that the download of @p steps reports, when @p total bytes are announced and @p before have
/// been moved by the identification.
std::vector<int>
expectedProgress(const std::vector<Step>& steps, unsigned int total, unsigned int before = 0);

/// Entries of the card commands and of the reader that used them.
Chain chainOfReader(const Step& step, const Entry& cause);

/// @p chain with what the steps of the download add, on driver and workshop cards: a step's own entry leads.
Chain chainOfDownload(const Step& step, const Entry& cause, Chain chain);

/// Writes an image down, record behind record.
class ImageWriter
{
  public:
    explicit ImageWriter(unsigned int generation) : m_dataType(generation == 1 ? 0x00 : 0x02) {}

    /// EF_ICC and EF_IC.
    void chip(const sim::CardDescription& card);

    /// Data, and the card's signature unless the EF is a certificate.
    void ef(const sim::ApplicationDescription& application, unsigned int fid);

    /// Data alone.
    void dataOnly(const sim::ApplicationDescription& application, unsigned int fid);

    /// The signed records of @p application in @p savingOrder, up to the one before the first that was not
    /// read because the reading in @p readingOrder ended at @p firstNotRead; 0 for all.
    void efsRead(
        const sim::ApplicationDescription& application, const std::vector<unsigned int>& readingOrder,
        const std::vector<unsigned int>& savingOrder, unsigned int firstNotRead);

    sim::Bytes bytes;

  private:
    void record(unsigned int fid, std::uint8_t type, const sim::Bytes& payload);

    std::uint8_t m_dataType;
};

/// The bytes of a file, as the simulated card has them.
sim::Bytes bytes(const QByteArray& image);

/// True when @p application has the EF.
bool hasFile(const sim::ApplicationDescription& application, unsigned int fid);

} // namespace test
