#include "ReadBack.h"

using sim::Bytes;
using sim::readU16;

std::uint32_t readU24(const Bytes& bytes, std::size_t offset)
{
    return static_cast<std::uint32_t>(
        bytes.at(offset) << 16 | bytes.at(offset + 1) << 8 | bytes.at(offset + 2));
}

int readBcd(const Bytes& bytes, std::size_t offset)
{
    int value = 0;
    for (std::size_t i = offset; i < offset + 2; ++i) {
        if (bytes.at(i) >> 4 > 9 || (bytes.at(i) & 0x0F) > 9) {
            return -1;
        }
        value = value * 100 + (bytes.at(i) >> 4) * 10 + (bytes.at(i) & 0x0F);
    }
    return value;
}

std::string textOf(const Bytes& bytes, std::size_t offset, std::size_t length)
{
    const Bytes part = sim::slice(bytes, offset, length);
    return std::string(part.begin(), part.end());
}

Bytes everything(const sim::CardDescription& card)
{
    Bytes all = card.atr;
    for (const sim::FileDescription& file : card.masterFiles) {
        sim::appendBytes(all, file.content);
    }
    for (const sim::ApplicationDescription& application : card.applications) {
        for (const sim::FileDescription& file : application.files) {
            sim::appendBytes(all, file.content);
        }
    }
    return all;
}

std::vector<DayRecord> walk(const Bytes& file)
{
    const std::size_t capacity = file.size() - 4;
    const auto at = [&](std::size_t position) {
        return static_cast<std::uint32_t>(
            file.at(4 + position % capacity) << 8 | file.at(4 + (position + 1) % capacity));
    };
    std::vector<DayRecord> days;
    std::size_t position = readU16(file, 0);
    const std::size_t newest = readU16(file, 2);
    while (days.size() < 2000) {
        DayRecord day;
        day.position = position;
        day.previousLength = at(position);
        day.length = at(position + 2);
        day.date = at(position + 4) << 16 | at(position + 6);
        const std::uint32_t presence = at(position + 8);
        day.presence = readBcd(
            {static_cast<std::uint8_t>(presence >> 8), static_cast<std::uint8_t>(presence & 0xFF)}, 0);
        day.distance = at(position + 10);
        for (std::size_t offset = 12; offset + 1 < day.length; offset += 2) {
            day.words.push_back(static_cast<std::uint16_t>(at(position + offset)));
        }
        days.push_back(day);
        if (position == newest || day.length < 14) {
            break;
        }
        position = (position + day.length) % capacity;
    }
    return days;
}

int minuteOf(std::uint16_t word)
{
    return word & 0x07FF;
}

bool isInserted(std::uint16_t word)
{
    return (word & 0x2000) == 0;
}

bool isDriving(std::uint16_t word)
{
    return isInserted(word) && (word & 0x1800) == 0x1800;
}
