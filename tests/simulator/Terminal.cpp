#include "Terminal.h"

#include <algorithm>

using sim::Bytes;

Terminal::Terminal(sim::CardDescription description) : m_card(std::move(description)) {}

std::string Terminal::ask(const std::string& command)
{
    return sim::toHex(m_card.transmit(sim::fromHex(command)).value_or(Bytes{}));
}

std::string Terminal::select(const Bytes& aid)
{
    return ask("00 A4 04 0C 06 " + sim::toHex(aid));
}

std::string Terminal::select(std::uint16_t fid)
{
    Bytes bytes;
    sim::appendU16(bytes, fid);
    return ask("00 A4 02 0C 02 " + sim::toHex(bytes));
}

std::string Terminal::update(const Bytes& content)
{
    return ask(
        "00 D6 00 00 " + sim::toHex({static_cast<std::uint8_t>(content.size())}) + sim::toHex(content));
}

std::string Terminal::hash()
{
    return ask("80 2A 90 00");
}

std::optional<Bytes> Terminal::dataOf(const Bytes& command)
{
    const Bytes answer = m_card.transmit(command).value_or(Bytes{});
    if (answer.size() < 2 || sim::readU16(answer, answer.size() - 2) != sim::sw::Ok) {
        return std::nullopt;
    }
    return sim::slice(answer, 0, answer.size() - 2);
}

std::optional<Bytes> Terminal::read(std::size_t size)
{
    Bytes content;
    while (content.size() < size) {
        const std::size_t step = std::min<std::size_t>(255, size - content.size());
        // Beyond 7FFF only the odd form reaches.
        const bool odd = content.size() > 0x7FFF;
        Bytes command = {0x00, odd ? std::uint8_t{0xB1} : std::uint8_t{0xB0}};
        if (odd) {
            sim::appendBytes(command, {0x00, 0x00, 0x04, 0x54, 0x02});
        }
        sim::appendU16(command, static_cast<std::uint32_t>(content.size()));
        command.push_back(odd ? std::uint8_t{0x00} : static_cast<std::uint8_t>(step));
        std::optional<Bytes> data = dataOf(command);
        if (!data || data->empty()) {
            return std::nullopt;
        }
        if (odd) {
            // 53 and a length of one byte, or of two from 80 on.
            data->erase(data->begin(), data->begin() + (data->at(1) == 0x81 ? 3 : 2));
        }
        sim::appendBytes(content, *data);
    }
    return content;
}

std::optional<Bytes> Terminal::sign(std::size_t signatureLength)
{
    if (hash() != "90 00") {
        return std::nullopt;
    }
    return dataOf({0x00, 0x2A, 0x9E, 0x9A, static_cast<std::uint8_t>(signatureLength)});
}
