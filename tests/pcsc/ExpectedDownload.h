#pragma once

#include <simulator/Card.h>
#include <support/ErrorChain.h>

#include <QByteArray>

#include <cstdint>
#include <string>
#include <vector>

// What the download of a driver card looks like from the card's side, written down apart from the library:
// the commands in their order, what each belongs to, and what a failure of it must be called.

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
    std::string command;     ///< in hexadecimal; of Update only the header
    unsigned int length = 0; ///< bytes of a Read

    /// A failure here does not end the download.
    bool tolerated = false;

    unsigned int generation = 1; ///< whose application the command is for
    bool probe = false;          ///< looks how long a certificate is
};

/// The driver cards that the tests use, generated once.
const sim::CardDescription& driverCard();
const sim::CardDescription& driverCardG2();
const sim::CardDescription& driverCardV2(); ///< second generation, version 2.2

/// The record counts that decide how long a download is.
struct Counts
{
    unsigned int events = 12;
    unsigned int faults = 24;
    unsigned int activityLength = 13776;
    unsigned int vehicles = 200;
    unsigned int places = 112;
};

/// The same for a second-generation application.
struct CountsG2
{
    unsigned int events = 12;
    unsigned int faults = 24;
    unsigned int activityLength = 13776;
    unsigned int vehicles = 200;
    unsigned int places = 112;
    unsigned int gnssPlaces = 336;
    unsigned int specificConditions = 112;
    unsigned int vehicleUnits = 200;
    unsigned int certificateLength = 204; ///< of each of the four

    bool version2 = false;
    unsigned int borderCrossings = 1120;
    unsigned int loadUnloadOperations = 1624;
    unsigned int loadTypeEntries = 336;
};

std::vector<Step> expectedSteps(const Counts& counts = {});

/// Of a second-generation card, which holds a first-generation application beside its own.
std::vector<Step> expectedStepsG2(const CountsG2& counts, const Counts& first = {});

/// The commands of @p steps, and those that were sent without the time behind each stamp's header.
std::vector<std::string> commandsOf(const std::vector<Step>& steps);
std::vector<std::string> withoutStampTimes(std::vector<std::string> sent);

/// Percentages that the download of @p steps reports, when @p total bytes are announced and @p before have
/// been moved by the identification.
std::vector<int>
expectedProgress(const std::vector<Step>& steps, unsigned int total, unsigned int before = 0);

/// The whole error of a download that ends at @p step because of @p cause.
Chain expectedChain(const Step& step, const Entry& cause);
Chain expectedChainG2(const Step& step, const Entry& cause);

/// The bytes of a file, as the simulated card has them.
sim::Bytes bytes(const QByteArray& image);

/// The image of @p card, its records in order, the signatures made with the card's keys.
sim::Bytes expectedImage(const sim::CardDescription& card);

/// The same of a second-generation card whose first application could be read up to the EF @p firstNotRead;
/// 0 for the whole. EFs that are read later than that one are missing, too.
sim::Bytes expectedImageG2(const sim::CardDescription& card, unsigned int firstNotRead = 0);

} // namespace test
