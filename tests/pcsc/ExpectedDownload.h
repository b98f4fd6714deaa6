#pragma once

#include <simulator/Card.h>
#include <support/ErrorChain.h>

#include <cstdint>
#include <string>
#include <vector>

// What the download of a first-generation driver card looks like from the card's side, written down
// apart from the library: the commands in their order, what each belongs to, and what a failure of it
// must be called.

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
    Phase phase;
    Kind kind;
    unsigned short fid = 0;  ///< 0 for SelectName
    std::string name;        ///< letters of the application, for SelectName
    std::string command;     ///< in hexadecimal; of Update only the header
    unsigned int length = 0; ///< bytes of a Read

    /// A failure here does not end the download.
    bool tolerated = false;
};

/// The driver card that the tests use, generated once.
const sim::CardDescription& driverCard();

/// The record counts that decide how long a download is.
struct Counts
{
    unsigned int events = 12;
    unsigned int faults = 24;
    unsigned int activityLength = 13776;
    unsigned int vehicles = 200;
    unsigned int places = 112;
};

std::vector<Step> expectedSteps(const Counts& counts = {});

/// Percentages that the download of @p steps reports, when @p total bytes are announced.
std::vector<int> expectedProgress(const std::vector<Step>& steps, unsigned int total);

/// The whole error of a download that ends at @p step because of @p cause.
Chain expectedChain(const Step& step, const Entry& cause);

/// The image of @p card, its records in order, the signatures made with the card's key.
sim::Bytes expectedImage(const sim::CardDescription& card);

} // namespace test
