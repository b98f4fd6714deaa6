#include "Text.h"

#include <iconv.h>

namespace sim {

namespace {

constexpr std::uint8_t Blank = 0x20;
constexpr int FirstPart = 1;
constexpr int LastPart = 16;

Bytes padded(Bytes text, std::size_t length)
{
    if (text.size() > length) {
        throw std::invalid_argument("text longer than its field");
    }
    text.resize(length, Blank);
    return text;
}

} // namespace

std::optional<Bytes> encodeText(const std::string& utf8, int codePage)
{
    if (codePage < FirstPart || codePage > LastPart) {
        return std::nullopt;
    }
    iconv_t converter = ::iconv_open(("ISO-8859-" + std::to_string(codePage)).c_str(), "UTF-8");
    // The failure value of iconv_open() is -1 made a pointer; there is no part 12.
    if (converter == reinterpret_cast<iconv_t>(-1)) { // NOLINT
        return std::nullopt;
    }
    std::string in = utf8;
    // Every character of these code pages is one byte, and none is shorter in UTF-8.
    std::string out(in.size(), '\0');
    char* from = in.data();
    char* to = out.data();
    std::size_t fromLeft = in.size();
    std::size_t toLeft = out.size();
    // A result above 0 counts characters that were replaced by similar ones.
    const bool done = ::iconv(converter, &from, &fromLeft, &to, &toLeft) == 0;
    ::iconv_close(converter);
    if (!done) {
        return std::nullopt;
    }
    return Bytes(out.begin(), out.end() - static_cast<std::string::difference_type>(toLeft));
}

Bytes textField(const std::string& utf8, int codePage, std::size_t length)
{
    std::optional<Bytes> text = encodeText(utf8, codePage);
    if (!text) {
        throw std::invalid_argument("text cannot be written in this code page");
    }
    Bytes field;
    appendU8(field, static_cast<std::uint32_t>(codePage));
    appendBytes(field, padded(std::move(*text), length));
    return field;
}

Bytes emptyTextField(std::size_t length)
{
    Bytes field = {0x00};
    appendBytes(field, padded({}, length));
    return field;
}

Bytes asciiField(const std::string& text, std::size_t length)
{
    Bytes field;
    for (const char c : text) {
        const auto byte = static_cast<std::uint8_t>(c);
        if (byte < Blank || byte > 0x7E) {
            throw std::invalid_argument("not an ASCII text");
        }
        field.push_back(byte);
    }
    return padded(std::move(field), length);
}

} // namespace sim
