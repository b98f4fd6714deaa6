// A card's bytes taken apart again, with nothing of the code that wrote them.
#pragma once

#include "CardDescription.h"

constexpr std::uint32_t SecondsPerDay = 86400;

std::uint32_t readU24(const sim::Bytes& bytes, std::size_t offset);
/// 1234 from 12 34; -1 when a digit is none.
int readBcd(const sim::Bytes& bytes, std::size_t offset);

std::string textOf(const sim::Bytes& bytes, std::size_t offset, std::size_t length);

/// ATR and all EFs of a card, one after the other.
sim::Bytes everything(const sim::CardDescription& card);

struct DayRecord
{
    std::size_t position = 0;
    std::size_t previousLength = 0;
    std::size_t length = 0;
    std::uint32_t date = 0;
    int presence = 0;
    std::uint32_t distance = 0;
    std::vector<std::uint16_t> words;
};

/// From the oldest to the newest day of EF_Driver_Activity_Data, each found by the length of the one before.
std::vector<DayRecord> walk(const sim::Bytes& file);

// Of an ActivityChangeInfo.
int minuteOf(std::uint16_t word);
bool isInserted(std::uint16_t word);
bool isDriving(std::uint16_t word);
